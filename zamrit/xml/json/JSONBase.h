#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>

#include "zamrit/platform/Lists.h"
#include "zamrit/xml/json/ModelInterfaces.h"

namespace zm {

class TZmJSONBase;
class TZmJSONSimpleType;
class TZmJSONMember;
class TZmJSONObject;
class TZmJSONArray;
class TZmJSONDocument;

namespace detail {

class TJSONTree;
class TJSONNodes;
struct TJSONNode;
class TJSONList;

/// Goes over the children of a node, which may be added to meanwhile.
template <class T>
class TJSONIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = T*;
  using difference_type = std::ptrdiff_t;
  using pointer = T**;
  using reference = T*;

  TJSONIterator(TZmJSONBase* Node, int Index) : FNode(Node), FIndex(Index) {}
  T* operator*() const;
  TJSONIterator& operator++() {
    ++FIndex;
    return *this;
  }
  /// Only a comparison with the end is meant: whether there are no children left.
  bool operator==(const TJSONIterator& End) const;

 private:
  TZmJSONBase* FNode;
  int FIndex;
};

}  // namespace detail

/// A list of nodes that it does not own.
class TZmJSONNodeList : public TObjectList {
  ZM_OBJECT(TZmJSONNodeList, TObjectList)
 public:
  TZmJSONNodeList() : TObjectList(false) {}
  TZmJSONBase* operator[](int Index) const;
  /// Replaces the content by that of another list.
  void Assign(const TZmJSONNodeList& List);
};

/// Any node of the JSON model: the operations of all kinds of nodes. Each class overrides those that mean something to
/// it; the others raise EZmJSONException "Instances of %s do not support the %s method!", code 9.
///
/// The owner of a node holds it. A node that is deleted from its owner goes, or, while a handle or a TZmOwner holds it,
/// lives on without an owner until the last of them goes. Pointers that the operations return are valid as long as the
/// node is; what they return belongs to the tree unless they return a TZmOwner. A tree, with all that has been taken
/// out of it, is used by one thread at a time. No operation recurses on the depth of the tree.
///
/// Nodes are kept as small records; an object of this class is made for one when it is first asked for. Names, paths
/// and texts are taken in UTF-16 and in UTF-8.
class TZmJSONBase : public TZmObject, public virtual IZmJSONBase {
  ZM_OBJECT(TZmJSONBase, TZmObject)
 public:
  ~TZmJSONBase() override;

  /// \name Vocabulary
  ///@{
  /// Appends a node to the children and holds it. A node whose owner is another one stays its owner's too.
  virtual void InsertObject(TZmJSONBase* Object);
  /// Takes a child out and gives up the hold on it. Nothing where it is no child. Linear.
  virtual void RemoveObject(TZmJSONBase* Object);
  /// The node as JSON, on one line.
  String GetAsJSON() override;
  /// Loads a text. An empty one clears the node.
  void SetAsJSON(StringView Text) override;
  /// The name of a member; of an object, "<object>".
  String GetName() override;
  /// The value of a member, or nil.
  virtual TZmJSONBase* GetValueObj();
  /// Not offered by any class.
  virtual void SetValue(TZmJSONBase* Value);
  /// Renames a member, whatever names there are beside it.
  void SetName(const TZmAnyText& Name) override;
  /// A simple value, or that of a member, as a type; false or 0 where it does not convert.
  bool GetAsBoolean() override;
  double GetAsDouble() override;
  std::int32_t GetAsInteger() override;
  std::int64_t GetAsLargeInt() override;
  /// The text of a simple value, or of that of a member.
  String GetAsString() override;
  /// The value as it is kept: what was loaded is a text, whatever its type.
  Variant GetAsVariant() override;
  /// Not offered by any class.
  TValue GetAsValue() override;
  /// An object itself, or that of a member, which gets one where it has no value.
  virtual TZmJSONObject* GetAsObject();
  /// The same for an array.
  virtual TZmJSONArray* GetAsArray();
  TZmIntf<IZmJSONObject> GetAsObjectIntf() override;
  TZmIntf<IZmJSONArray> GetAsArrayIntf() override;
  /// Sets a simple value and its type, or that of a member, which gets one where it has none.
  void SetAsBoolean(bool Value) override;
  void SetAsDouble(double Value) override;
  void SetAsInteger(std::int32_t Value) override;
  void SetAsString(const TZmAnyText& Value) override;
  void SetAsLargeInt(std::int64_t Value) override;
  void SetAsVariant(const Variant& Value) override;
  /// Reads a stream from where it stands, in a code page or as an HTTP form. An empty stream clears the node. A
  /// document gets a new root, an array the values added; of an object, the value of the member that came last is
  /// replaced, and of a member its value. What came before an error stays. Raises what the reader raises,
  /// EZmJSONException "oeps?" with code 0 for a value that has no place, and EConvertError for an escape that is none.
  virtual void LoadFromStream(TStream* Stream, std::uint16_t CodePage, bool FormURLEncoded);
  /// Writes UTF-16 without a mark. Level is the depth that formatted text is indented by, two blanks each; Indent asks
  /// for them in front of the first character too.
  virtual void SaveToStream(TStream* Stream, bool Format, int Level, bool Indent);
  /// How many elements or members there are.
  int Count() override;
  /// Appends an element to an array, and returns it; gives a member without a value one.
  virtual TZmJSONBase* AddValue(TZmJSONDataType DataType);
  /// A simple value that is written as the text stands, between quotation marks where it is a string.
  virtual TZmJSONBase* AddValue(TZmJSONDataType DataType, const TZmAnyText& Value);
  /// A simple value. EInvalidCast for an array.
  virtual TZmJSONBase* AddValue(const Variant& Value);
  /// Frees an element of an array, by itself and by its index. A member raises EStackOverflow for both.
  virtual void RemoveValue(TZmJSONBase* Value);
  virtual void DeleteValue(int Index);
  /// Appends a member to an object, whatever names there are, and returns it.
  virtual TZmJSONMember* AddMember(const TZmAnyText& Name);
  /// With a value: an object, an array, or a null that a setter makes something of.
  virtual TZmJSONMember* AddMember(const TZmAnyText& Name, TZmJSONDataType DataType);
  /// With a simple value that is written as the text stands, between quotation marks where it is a string.
  virtual TZmJSONMember* AddMember(const TZmAnyText& Name, TZmJSONDataType DataType, const TZmAnyText& Value);
  /// With the value of a Variant, which may be an array.
  virtual TZmJSONMember* AddMember(const TZmAnyText& Name, const Variant& Value);
  /// Frees a member of an object, by its index and by itself.
  virtual void DeleteMember(int Index);
  virtual void RemoveMember(TZmJSONMember* Member);
  /// The first member of a name, or nil. Linear, as all that looks for names.
  virtual TZmJSONMember* FindMember(const TZmAnyText& Name, bool IgnoreCase = false);
  /// The same; where there is none, what the options say.
  virtual TZmJSONMember* GetMember(const TZmAnyText& Name, TZmJDOCSelectOptions Options);
  /// The element or member at an index. EListError outside.
  virtual TZmJSONBase* Item(int Index);
  ///@}

  /// Frees the children, from the last to the first, or lets go of them where they are not owned.
  void DestroyObjects();
  /// Takes the node from its owner, and ends it unless somebody holds it.
  void FreeObject();
  /// The node as JSON in lines: members of an object stand on one line between those of its braces.
  String GetFormattedJSON();
  /// LoadFromStream with the page that a byte order mark shows.
  void LoadFromStream(TStream* Stream);
  /// The document. EInvalidCast where the topmost owner is none. Costs a step a level.
  TZmJSONDocument* GetDocument();
  /// The parent, nil for a document and for a node that stands for itself.
  TZmJSONBase* GetOwner();
  /// Handles of what the operations without "Intf" in their names return; empty where those return nil.
  TZmIntf<IZmJSONBase> GetValue() override;
  TZmIntf<IZmJSONBase> GetItem(int Index) override;
  TZmIntf<IZmJSONMember> FindMemberIntf(const TZmAnyText& Name, bool IgnoreCase = false) override;
  TZmIntf<IZmJSONMember> GetMemberIntf(const TZmAnyText& Name, TZmJDOCSelectOptions Options) override;
  /// The member of a name, added if it is missing.
  TZmJSONMember* GetMemberEx1(const TZmAnyText& Name);
  TZmIntf<IZmJSONMember> GetMemberEx(const TZmAnyText& Name) override;
  /// GetMember under another name.
  TZmJSONMember* Member(const TZmAnyText& Name, TZmJDOCSelectOptions Options) { return GetMember(Name, Options); }
  bool HasMember(const TZmAnyText& Name, bool IgnoreCase = false) override;
  /// Not offered by any class; a simple value raises EStackOverflow.
  void SetAsValue(const TValue& Value) override;
  /// How a simple value is written, or the kind of the node: jdtObject, jdtArray; jdtNull for members and documents.
  TZmJSONDataType GetJSONType() override;

  /// \name Paths
  /// "$" starts at the root, "@" at this node; docs/json.md tells the language. A path that is none raises
  /// EZmJSONException, code 13 to 17, EConvertError for an index that is no number, such as `[1-2]`, and
  /// EAssertionFailed for a filter with a term missing; a filter that compares an object or array, code 9. With
  /// jsoRaise, code 11 where the path leads to nothing.
  ///@{
  /// The first node found, or nil.
  TZmJSONBase* SelectSingleNode(const TZmAnyText& Path, TZmJDOCSelectOptions Options = {});
  template <std::same_as<bool> Bool>
  TZmJSONBase* SelectSingleNode(const TZmAnyText& Path, Bool Raise) {
    return SelectSingleNode(Path, RaiseOption(Raise));
  }
  /// All nodes found, as an array that only shows them: valid as long as they are.
  TZmOwner<TZmJSONArray> CreateNodeList(const TZmAnyText& Path, TZmJDOCSelectOptions Options = {});
  template <std::same_as<bool> Bool>
  TZmOwner<TZmJSONArray> CreateNodeList(const TZmAnyText& Path, Bool Raise) {
    return CreateNodeList(Path, RaiseOption(Raise));
  }
  TZmIntf<IZmJSONArray> SelectIntf(const TZmAnyText& Path, TZmJDOCSelectOptions Options = {}) override;
  ///@}

  void AfterConstruction() override;
  /// Gives up the hold of whoever made the node; by hand, on a node of a tree, as FreeObject.
  void Free() override;
  TObject* Implementor() override { return this; }

 protected:
  /// For the classes of nodes: a new node under Owner, or one that stands for itself. Flags says of what kind.
  TZmJSONBase(TZmJSONBase* Owner, std::uint32_t Flags);
  /// The object of a node that is there.
  TZmJSONBase(detail::TJSONTree& Tree, detail::TJSONNode* Node, bool IsMember);

  /// Raises EZmJSONException code 9 in the name of this node's class.
  [[noreturn]] void RaiseNotSupported(StringView Method);

 private:
  friend class detail::TJSONNodes;

  [[noreturn]] void RaiseEndlessOn(bool Itself, StringView Method);
  static TZmJDOCSelectOptions RaiseOption(bool Raise) {
    return Raise ? TZmJDOCSelectOptions{jsoRaise} : TZmJDOCSelectOptions{};
  }

  detail::TJSONTree* FTree;
  detail::TJSONNode* FNode;
  std::unique_ptr<detail::TJSONList> FList;
  bool FIsMember;
  bool FMade = false;  // by Create, whose owner has not ended yet
};

template <class T>
T* detail::TJSONIterator<T>::operator*() const {
  return static_cast<T*>(FNode->Item(FIndex));
}
template <class T>
bool detail::TJSONIterator<T>::operator==(const TJSONIterator&) const {
  return FIndex >= FNode->Count();
}

}  // namespace zm
