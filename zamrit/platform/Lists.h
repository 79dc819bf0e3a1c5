#pragma once

#include <utility>
#include <vector>

#include "zamrit/platform/Components.h"
#include "zamrit/platform/Objects.h"
#include "zamrit/platform/Streams.h"
#include "zamrit/platform/Strings.h"

namespace zm {

/// From which end TObjectList::IndexOf seeks.
enum TListDirection { ldFromBeginning, ldFromEnd };

/// A list of objects. Where it owns them, an object that leaves it other than by Extract is freed. An index outside the
/// list raises EListError. May also stand on the stack or in a member.
class TObjectList : public TObject {
  ZM_OBJECT(TObjectList, TObject)
 public:
  explicit TObjectList(bool OwnsObjects = true) : FOwnsObjects(OwnsObjects) {}
  ~TObjectList() override;

  bool GetOwnsObjects() const { return FOwnsObjects; }
  void SetOwnsObjects(bool Value) { FOwnsObjects = Value; }

  int GetCount() const { return static_cast<int>(FItems.size()); }
  int GetCapacity() const { return static_cast<int>(FItems.capacity()); }
  /// Makes room for Value objects. A value below the count changes nothing.
  void SetCapacity(int Value);

  TObject* operator[](int Index) const { return FItems[Check(Index)]; }
  TObject* First() const { return (*this)[0]; }
  TObject* Last() const { return (*this)[GetCount() - 1]; }
  /// Replaces the object at an index.
  void Put(int Index, TObject* Object);

  /// Appends an object and returns its index. Constant time.
  int Add(TObject* Object);
  /// Inserts in front of the object at Index, or at the end where Index is the count.
  void Insert(int Index, TObject* Object);
  /// Removes the object at an index. Constant time at the end.
  void Delete(int Index);
  /// Removes an object and returns the index that it had, or -1. Linear.
  int Remove(TObject* Object);
  /// Takes an object out without freeing it and returns it, or nil where it is not in the list. Linear.
  TObject* Extract(TObject* Object);
  /// Removes all, from the last to the first.
  void Clear();

  /// The index of an object, seen from either end, or -1. Linear.
  int IndexOf(const TObject* Object, TListDirection Direction = ldFromBeginning) const;
  void Exchange(int Index1, int Index2);
  /// Moves an object to another index; what lies between moves up or down by one.
  void Move(int From, int To);

  auto begin() const { return FItems.begin(); }
  auto end() const { return FItems.end(); }

 private:
  std::size_t Check(int Index) const;
  void FreeOwned(TObject* Object) const;

  std::vector<TObject*> FItems;
  bool FOwnsObjects;
};

/// A list of texts, each with an object that the list does not own by itself. Descendants store them. An index outside
/// the list raises EStringListError.
class TStrings : public TPersistent {
  ZM_OBJECT(TStrings, TPersistent)
 public:
  virtual int GetCount() const = 0;
  /// The text at an index. Valid until the list changes.
  virtual const String& Get(int Index) const = 0;
  virtual void Put(int Index, StringView Text) = 0;
  virtual TObject* GetObject(int Index) const = 0;
  virtual void PutObject(int Index, TObject* Object) = 0;
  virtual void InsertObject(int Index, StringView Text, TObject* Object) = 0;
  virtual void Delete(int Index) = 0;
  virtual void Clear() = 0;

  void Insert(int Index, StringView Text) { InsertObject(Index, Text, nullptr); }
  /// Appends a text and returns its index.
  int Add(StringView Text) { return AddObject(Text, nullptr); }
  virtual int AddObject(StringView Text, TObject* Object);
  /// The index of a text, case ignored here, or -1.
  virtual int IndexOf(StringView Text) const;

  /// The index of the first line "Name=...", or -1. Linear.
  int IndexOfName(StringView Name) const;
  /// The text before the first "=" of a line, empty where it has none.
  StringView GetName(int Index) const;
  /// What stands behind "=" in the first line of that name, empty where there is none. Linear.
  StringView GetValue(StringView Name) const;
  /// Sets the value of a name: changes its first line or appends one. An empty value removes the line.
  void SetValue(StringView Name, StringView Value);

  /// All texts, each followed by carriage return and line feed.
  String GetText() const;
  /// Replaces the content by the lines of a text, which CR LF, LF or CR end.
  void SetText(StringView Text);
  /// Reads UTF-8 lines from where Stream stands up to its end. A mark in front is skipped.
  void LoadFromStream(TStream* Stream);
  /// Writes GetText in UTF-8, without a mark.
  void SaveToStream(TStream* Stream) const;

  /// Takes over texts and objects of another TStrings.
  void Assign(TPersistent* Source) override;

 protected:
  struct TItem {
    String Text;
    TObject* Object = nullptr;
  };

  /// Replaces the content, by one Add after another here.
  virtual void Fill(std::vector<TItem>&& Items);
};

/// What a sorted TStringList does with a text that it has: leave it out, take it too, or raise EStringListError.
enum TDuplicates { dupIgnore, dupAccept, dupError };

/// A list of texts in memory. Sorted, it keeps their order and finds by halving, and neither Insert nor Put may be
/// used. Order goes by UTF-16 units, of the folded texts where case is ignored. May also stand on the stack or in a
/// member.
class TStringList : public TStrings {
  ZM_OBJECT(TStringList, TStrings)
 public:
  TStringList() = default;
  ~TStringList() override;

  int GetCount() const override { return static_cast<int>(FItems.size()); }
  const String& Get(int Index) const override { return FItems[Check(Index)].Text; }
  const String& operator[](int Index) const { return Get(Index); }
  void Put(int Index, StringView Text) override;
  TObject* GetObject(int Index) const override { return FItems[Check(Index)].Object; }
  void PutObject(int Index, TObject* Object) override { FItems[Check(Index)].Object = Object; }
  void InsertObject(int Index, StringView Text, TObject* Object) override;
  void Delete(int Index) override;
  void Clear() override;
  /// In a sorted list returns the index of the text that was there where duplicates are ignored; the object is then
  /// left to the caller.
  int AddObject(StringView Text, TObject* Object) override;
  int IndexOf(StringView Text) const override;

  /// Whether a sorted list has a text. Index is its place, the first of equal ones, or where it would be inserted.
  bool Find(StringView Text, int& Index) const;
  /// Sorts once; equal texts keep their order.
  void Sort();

  bool GetSorted() const { return FSorted; }
  /// Sorts, and keeps sorted from here on.
  void SetSorted(bool Value);
  TDuplicates GetDuplicates() const { return FDuplicates; }
  /// Says what happens to texts that are added to a sorted list from here on. dupIgnore at first.
  void SetDuplicates(TDuplicates Value) { FDuplicates = Value; }
  bool GetCaseSensitive() const { return FCaseSensitive; }
  /// Off at first. A sorted list is sorted again.
  void SetCaseSensitive(bool Value);
  bool GetOwnsObjects() const { return FOwnsObjects; }
  /// Whether an object is freed when its text is removed. Off at first.
  void SetOwnsObjects(bool Value) { FOwnsObjects = Value; }

 protected:
  void Fill(std::vector<TItem>&& Items) override;

 private:
  std::size_t Check(int Index) const;
  void CheckUnsorted() const;
  bool Same(StringView Left, StringView Right) const;
  bool Before(StringView Left, StringView Right) const;
  void SortItems(std::vector<TItem>& Items) const;

  std::vector<TItem> FItems;
  TDuplicates FDuplicates = dupIgnore;
  bool FSorted = false;
  bool FCaseSensitive = false;
  bool FOwnsObjects = false;
};

}  // namespace zm
