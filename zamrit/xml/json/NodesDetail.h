#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "zamrit/xml/json/JSONArray.h"
#include "zamrit/xml/json/JSONDocument.h"
#include "zamrit/xml/json/JSONMember.h"
#include "zamrit/xml/json/JSONObject.h"
#include "zamrit/xml/json/JSONSimpleType.h"
#include "zamrit/xml/json/TreeDetail.h"

namespace zm::detail {

/// The children of a container by index.
class TJSONList {
 public:
  TJSONTree* Shown = nullptr;  ///< the tree of items that a selection has put here without making objects of them
  std::unique_ptr<TJSONList> LetGoNext;  ///< while its owner ends: the one to be let go of next

  TJSONList() = default;
  explicit TJSONList(std::vector<TJSONNode*>&& Items) : FItems(std::move(Items)) {}
  TJSONList(const TJSONList&) = delete;
  TJSONList& operator=(const TJSONList&) = delete;
  ~TJSONList() {
    if (Shown) Shown->RemoveView();
  }

  std::size_t Count() const { return FItems.size() - FFirst; }
  TJSONNode* operator[](std::size_t Index) const;
  /// The object where the item is a node of another owner that has been inserted, else nil.
  TZmJSONBase* HeldAt(std::size_t Index) const { return FItems[FFirst + Index] ? nullptr : FHeld[FFirst + Index]; }

  void Add(TJSONNode* Node) { FItems.push_back(Node); }
  /// Whether what a selection has put there has been freed since.
  bool IsGone(std::size_t Index) const {
    const TJSONNode* const node = FItems[FFirst + Index];
    return node && node->Has(jfFree);
  }

  /// Takes over a reference.
  void AddHeld(TZmJSONBase* Object);
  /// Costs what there is up to the nearer end.
  void Delete(std::size_t Index);
  void Swap(std::size_t Index1, std::size_t Index2);
  /// The last index of an item, or Count.
  std::size_t Find(const TJSONNode* Node) const;
  std::size_t FindHeld(const TZmJSONBase* Object) const;

 private:
  std::vector<TJSONNode*> FItems;   // nil for one that is held
  std::vector<TZmJSONBase*> FHeld;  // by the same index, no longer than FItems
  std::size_t FFirst = 0;           // what stands before it has been deleted
};

/// Between the records of a tree and their objects.
class TJSONNodes {
 public:
  static TJSONTree& Tree(TZmJSONBase& Object) { return *Object.FTree; }
  static TJSONNode* Node(TZmJSONBase& Object) { return Object.FNode; }
  static bool IsMember(TZmJSONBase& Object) { return Object.FIsMember; }

  /// The object of a value, and of a member, made when it is asked for first.
  static TZmJSONBase* ValueOf(TJSONTree& Tree, TJSONNode* Node);
  static TZmJSONMember* MemberOf(TJSONTree& Tree, TJSONNode* Node);
  /// The object that a container has as a child: the member where it is one.
  static TZmJSONBase* ChildOf(TJSONTree& Tree, TJSONNode* Node) {
    if (Node->Has(jfMember)) return MemberOf(Tree, Node);
    return ValueOf(Tree, Node);
  }
  /// Whether the class is an application's own, whose overrides are to be called.
  static bool IsDerived(const TZmJSONBase& Object);
  /// Makes a new object counted: the owner's hold is its first.
  template <class T>
  static T* Adopt(T* Object) {
    Object->TZmObject::AfterConstruction();
    return Object;
  }
  /// A new value under Owner.
  static TZmJSONBase* NewValue(TZmJSONBase* Owner, TZmJSONDataType DataType);

  /// The children of a container's object by index. What has been loaded behind those that are there is added.
  static TJSONList& ListOf(TZmJSONBase& Object) {
    if (!Object.FList || (!Object.FNode->Has(jfList) && Object.FList->Count() != Object.FNode->Size)) [[unlikely]]
      FillList(Object);
    return *Object.FList;
  }
  static std::size_t CountOf(TZmJSONBase& Object) {
    return Object.FNode->Has(jfList) ? Object.FList->Count() : Object.FNode->Size;
  }
  /// The object of a child. EListError for an index outside.
  static TZmJSONBase* ItemOf(TZmJSONBase& Object, int Index);
  static void Exchange(TZmJSONBase& Object, int Index1, int Index2);
  /// Makes an array show nodes of a tree.
  static void Show(TZmJSONArray& List, TJSONTree& Tree, std::vector<TJSONNode*>&& Nodes);
  /// Appends a node of another owner to the children, and holds it.
  static void Hold(TZmJSONBase& Owner, TZmJSONBase& Object);
  /// The tree of a node, which costs a step a level.
  static TJSONTree& TreeOf(TJSONNode* Node);

  /// Makes the record of a new object, and puts it under Owner.
  static void Begin(TZmJSONBase& Object, TZmJSONBase* Owner, std::uint32_t Flags);
  /// Gives up the record of an object that ends, and frees what stands under it.
  static void End(TZmJSONBase& Object);
  static void Insert(TZmJSONBase& Owner, TZmJSONBase& Object);
  static void Remove(TZmJSONBase& Owner, TZmJSONBase& Object);
  /// Frees the children of a container, or lets go of them where it does not own them.
  static void FreeChildren(TZmJSONBase& Object);
  /// Frees the value of a member. An object of it that somebody holds goes on with a record of its own.
  static void FreeValue(TJSONTree& Tree, TJSONNode* Member);
  /// Gives the value of a member, which has an object, a record of its own. The member is left without one.
  static void SplitValue(TJSONTree& Tree, TJSONNode* Member);
  /// Takes a member or an element from its owner.
  static void Detach(TZmJSONBase& Object);
  /// An emptied document leaves its arena to the nodes that are held, and goes on with a new one.
  static void Renew(TZmJSONBase& Document);

 private:
  static void FillList(TZmJSONBase& Object);
  static void Link(TZmJSONBase& Owner, TJSONNode* Node);
  static void Unlink(TZmJSONBase& Owner, TJSONNode* Node);
  static void Drain(TJSONTree& Tree);
  static void Dispose(TJSONTree& Tree, TJSONNode* Node);
  static void PushChildren(TJSONTree& Tree, TJSONNode* Node);
  static void LeaveChildren(TJSONNode* Node);
  static void FreeListed(TZmJSONBase& Object);
  static void LetGoOf(std::unique_ptr<TJSONList> List);
};

inline TJSONNode* TJSONList::operator[](std::size_t Index) const {
  TJSONNode* const node = FItems[FFirst + Index];
  return node ? node : TJSONNodes::Node(*FHeld[FFirst + Index]);
}

/// Raises EInvalidCast.
[[noreturn]] void RaiseNotOfClass();

}  // namespace zm::detail
