#include <algorithm>
#include <typeinfo>

#include "zamrit/platform/reflection/Reflection.h"
#include "zamrit/xml/json/NodesDetail.h"

namespace zm::detail {

namespace {

// Clears a value out of a record; what its extra holds of it too.
void ForgetValue(TJSONNode* Node) {
  Node->FirstChild() = nullptr;
  if (Node->Has(jfExtra)) Node->Extra->Value = Variant();
  Node->Size = 0;
  Node->Flags &= ~(jfTypeMask | jfClassMask | jfMarked | jfVariant | jfSurrogates | jfKeepsChildren | jfList);
}

// The owner's hold goes; the object ends unless somebody else holds it.
void LetGo(TZmJSONBase& Object) {
  Object.SetAutoDestroy(true);
  Object._Release();
}

bool IsHeldBesides(TZmJSONBase& Object) {
  const int count = Object._AddRef();
  Object._Release();
  return count < 0 || count > 2;
}

}  // namespace

void RaiseNotOfClass() { throw EInvalidCast(u"The node is not of the class that is asked for!"); }

TZmJSONBase* TJSONNodes::ValueOf(TJSONTree& Tree, TJSONNode* Node) {
  if (TZmJSONBase* const object = Node->Object()) return object;
  TJSONExtra& extra = Tree.ExtraOf(Node);
  switch (Node->Class()) {
    case jcObject:
      return extra.Node = Adopt(new TZmJSONObject(Tree, Node, false));
    case jcArray:
      return extra.Node = Adopt(new TZmJSONArray(Tree, Node, false));
    case jcSimple:
      return extra.Node = Adopt(new TZmJSONSimpleType(Tree, Node, false));
    default:
      return nullptr;
  }
}

TZmJSONMember* TJSONNodes::MemberOf(TJSONTree& Tree, TJSONNode* Node) {
  TJSONExtra& extra = Tree.ExtraOf(Node);
  if (!extra.Member) extra.Member = Adopt(new TZmJSONMember(Tree, Node, true));
  return static_cast<TZmJSONMember*>(extra.Member);
}

bool TJSONNodes::IsDerived(const TZmJSONBase& Object) {
  const std::type_info& type = typeid(Object);
  return type != typeid(TZmJSONDocument) && type != typeid(TZmJSONObject) && type != typeid(TZmJSONArray) &&
         type != typeid(TZmJSONSimpleType) && type != typeid(TZmJSONMember);
}

TZmJSONBase* TJSONNodes::NewValue(TZmJSONBase* Owner, TZmJSONDataType DataType) {
  switch (ClassOf(DataType)) {
    case jcObject:
      return Adopt(new TZmJSONObject(Owner));
    case jcArray:
      return Adopt(new TZmJSONArray(Owner));
    default:
      return Adopt(new TZmJSONSimpleType(Owner));
  }
}

void TJSONNodes::FillList(TZmJSONBase& Object) {
  if (Object.FList) {
    TJSONList& list = *Object.FList;
    TJSONNode* child = list.Count() > 0 ? list[list.Count() - 1]->Next : Object.FNode->FirstChild();
    for (; child; child = child->Next) list.Add(child);
    return;
  }
  std::vector<TJSONNode*> items;
  items.reserve(Object.FNode->Size);
  for (TJSONNode* child = Object.FNode->FirstChild(); child; child = child->Next) items.push_back(child);
  Object.FList = std::make_unique<TJSONList>(std::move(items));
}

void TJSONList::AddHeld(TZmJSONBase* Object) {
  FItems.push_back(nullptr);
  FHeld.resize(FItems.size());
  FHeld.back() = Object;
}

void TJSONList::Delete(std::size_t Index) {
  const bool fromFront = Index < Count() / 2;
  const std::size_t unused = fromFront && FFirst >= Count() ? FFirst + 1 : 0;
  const auto first = static_cast<std::ptrdiff_t>(FFirst), at = first + static_cast<std::ptrdiff_t>(Index);
  const auto erase = [&](auto& Items) {
    if (!fromFront) {
      Items.erase(Items.begin() + at);
      return;
    }
    std::move_backward(Items.begin() + first, Items.begin() + at, Items.begin() + at + 1);
    Items.erase(Items.begin(), Items.begin() + static_cast<std::ptrdiff_t>(unused));
  };
  if (!FHeld.empty()) {
    FHeld.resize(FItems.size());
    erase(FHeld);
  }
  erase(FItems);
  FFirst += fromFront;
  FFirst -= unused;
}

void TJSONList::Swap(std::size_t Index1, std::size_t Index2) {
  std::swap(FItems[FFirst + Index1], FItems[FFirst + Index2]);
  if (FHeld.empty()) return;
  FHeld.resize(FItems.size());
  std::swap(FHeld[FFirst + Index1], FHeld[FFirst + Index2]);
}

namespace {

// The last index, counted from First on, of what is there, or Count.
template <class T>
std::size_t LastIndexOf(const std::vector<T*>& Items, std::size_t First, const T* Item, std::size_t Count) {
  for (std::size_t i = Items.size(); i-- > First;)
    if (Items[i] == Item) return i - First;
  return Count;
}

}  // namespace

std::size_t TJSONList::Find(const TJSONNode* Node) const { return LastIndexOf(FItems, FFirst, Node, Count()); }
std::size_t TJSONList::FindHeld(const TZmJSONBase* Object) const { return LastIndexOf(FHeld, FFirst, Object, Count()); }

namespace {

void CheckIndex(const TJSONList& List, int Index) {
  if (Index < 0 || static_cast<std::size_t>(Index) >= List.Count())
    throw EListError(u"List index out of bounds (%d)", {Index});
}

}  // namespace

TZmJSONBase* TJSONNodes::ItemOf(TZmJSONBase& Object, int Index) {
  const TJSONList& list = ListOf(Object);
  CheckIndex(list, Index);
  const auto index = static_cast<std::size_t>(Index);
  if (TZmJSONBase* const held = list.HeldAt(index)) return held;
  if (list.IsGone(index)) return nullptr;
  return list.Shown ? ValueOf(*list.Shown, list[index]) : ChildOf(*Object.FTree, list[index]);
}

void TJSONNodes::Exchange(TZmJSONBase& Object, int Index1, int Index2) {
  TJSONList& list = ListOf(Object);
  CheckIndex(list, Index1);
  CheckIndex(list, Index2);
  const auto low = static_cast<std::size_t>(std::min(Index1, Index2));
  const auto high = static_cast<std::size_t>(std::max(Index1, Index2));
  if (low == high) return;
  list.Swap(low, high);
  if (Object.FNode->Has(jfList)) return;
  const auto join = [&](std::size_t Index) {
    list[Index]->Next = Index + 1 < list.Count() ? list[Index + 1] : nullptr;
  };
  if (low == 0)
    Object.FNode->FirstChild() = list[0];
  else
    join(low - 1);
  join(low);
  join(high - 1);
  join(high);
}

void TJSONNodes::Show(TZmJSONArray& List, TJSONTree& Tree, std::vector<TJSONNode*>&& Nodes) {
  TZmJSONBase& object = List;
  object.FList = std::make_unique<TJSONList>(std::move(Nodes));
  object.FNode->Flags |= jfList;
  Tree.AddView();
  object.FList->Shown = &Tree;
}

void TJSONNodes::Begin(TZmJSONBase& Object, TZmJSONBase* Owner, std::uint32_t Flags) {
  Object.FTree = Owner ? Owner->FTree : new TJSONTree;
  Object.FTree->AddRef();
  Object.FIsMember = (Flags & jfMember) != 0;
  Object.FNode = nullptr;
  try {
    TJSONTree& tree = *Object.FTree;
    if (Owner && Owner->FIsMember) {
      FreeValue(tree, Owner->FNode);
      tree.ExtraOf(Owner->FNode).Node = &Object;
      Object.FNode = Owner->FNode;
      Object.FNode->Flags |= Flags;
    } else {
      TJSONNode* const node = tree.NewNode(Flags);
      node->Owner = Owner ? Owner->FNode : nullptr;
      TJSONExtra& extra = tree.ExtraOf(node);
      (Object.FIsMember ? extra.Member : extra.Node) = &Object;
      Object.FNode = node;
    }
    Object.SetAutoDestroy(!Owner);
    if (Owner) Owner->InsertObject(&Object);
  } catch (...) {
    if (Object.FNode) End(Object);
    Object.FTree->Release();
    throw;
  }
}

void TJSONNodes::Insert(TZmJSONBase& Owner, TZmJSONBase& Object) {
  TJSONNode* const node = Object.FNode;
  if (!Owner.FNode->IsContainer() || Owner.FIsMember) Owner.RaiseNotSupported(u"InsertObject");
  if (node->Owner != Owner.FNode || node->Has(jfLinked)) return Hold(Owner, Object);
  Link(Owner, node);
  Object._AddRef();
}

void TJSONNodes::Hold(TZmJSONBase& Owner, TZmJSONBase& Object) {
  ListOf(Owner).AddHeld(&Object);
  Owner.FNode->Flags |= jfList;
  Object._AddRef();
}

TJSONTree& TJSONNodes::TreeOf(TJSONNode* Node) {
  while (Node->Owner) Node = Node->Owner;
  return *(Node->Extra->Node ? Node->Extra->Node : Node->Extra->Member)->FTree;  // what has no owner has an object
}

void TJSONNodes::Link(TZmJSONBase& Owner, TJSONNode* Node) {
  TJSONList& list = ListOf(Owner);
  list.Add(Node);
  TJSONNode* const owner = Owner.FNode;
  if (owner->Has(jfList)) {  // whose chain need not be in order
    Node->Next = owner->FirstChild();
    owner->FirstChild() = Node;
  } else {
    (list.Count() > 1 ? list[list.Count() - 2]->Next : owner->FirstChild()) = Node;
  }
  Node->Flags |= jfLinked;
  ++owner->Size;
}

void TJSONNodes::Unlink(TZmJSONBase& Owner, TJSONNode* Node) {
  TJSONNode* const owner = Owner.FNode;
  TJSONList& list = ListOf(Owner);
  const std::size_t found = list.Count() > 0 && list[0] == Node ? 0 : list.Find(Node);
  TJSONNode* before = found > 0 && found < list.Count() ? list[found - 1] : nullptr;
  if (owner->Has(jfList) && !(before && before->Next == Node)) {  // not always, but mostly, the one before in the list
    before = nullptr;
    for (TJSONNode* child = owner->FirstChild(); child != Node; child = child->Next) before = child;
  }
  (before ? before->Next : owner->FirstChild()) = Node->Next;
  if (found < list.Count()) list.Delete(found);
  Node->Next = nullptr;
  Node->Flags &= ~std::uint32_t{jfLinked};
  --owner->Size;
}

void TJSONNodes::Remove(TZmJSONBase& Owner, TZmJSONBase& Object) {
  TJSONNode* const node = Object.FNode;
  if (node->Owner == Owner.FNode && node->Has(jfLinked)) {
    Unlink(Owner, node);
    node->Owner = nullptr;
  } else {
    if (!Owner.FNode->Has(jfList)) return;
    TJSONList& list = *Owner.FList;
    if (const std::size_t held = list.FindHeld(&Object); held < list.Count()) {
      list.Delete(held);
    } else {
      if (const std::size_t shown = list.Find(node); shown < list.Count()) list.Delete(shown);
      return;  // what a path has found is not held
    }
  }
  Object._Release();
}

void TJSONNodes::SplitValue(TJSONTree& Tree, TJSONNode* Member) {
  constexpr std::uint32_t notItsOwn = jfMember | jfWide | jfExtra | jfOwnName | jfNameSurrogates | jfLinked;
  TJSONNode* const own = Tree.NewNode(Member->Flags & ~notItsOwn);
  own->Size = Member->Size;
  own->First = Member->FirstChild();
  TJSONExtra& extra = Tree.ExtraOf(own);
  std::swap(extra.Node, Member->Extra->Node);
  extra.Value = std::move(Member->Extra->Value);
  if (own->IsContainer())
    for (TJSONNode* child = own->FirstChild(); child; child = child->Next) child->Owner = own;
  extra.Node->FNode = own;
  ForgetValue(Member);
}

void TJSONNodes::Detach(TZmJSONBase& Object) {
  if (Object.FIsMember != Object.FNode->Has(jfMember)) return;
  if (TZmJSONBase* const owner = Object.FNode->Has(jfLinked) ? Object.GetOwner() : nullptr) {
    owner->RemoveObject(&Object);
    if (Object.FNode->Has(jfLinked)) Unlink(*owner, Object.FNode);  // an override has kept it
  }
  Object.FNode->Owner = nullptr;
}

void TJSONNodes::FreeValue(TJSONTree& Tree, TJSONNode* Member) {
  if (Member->Class() == jcNone) return;
  if (TZmJSONBase* const object = Member->Object()) {
    if (IsHeldBesides(*object)) SplitValue(Tree, Member);
    LetGo(*object);  // its end clears the member's value
  } else {
    if (Member->IsContainer()) PushChildren(Tree, Member);
    ForgetValue(Member);
  }
  Drain(Tree);
}

void TJSONNodes::PushChildren(TJSONTree& Tree, TJSONNode* Node) {
  TJSONNode* child = Node->FirstChild();
  Node->FirstChild() = nullptr;
  Node->Size = 0;
  if (Tree.Leaving && !Node->Has(jfMarked)) return;
  while (child) {
    TJSONNode* const next = child->Next;
    child->Owner = nullptr;
    child->Flags &= ~std::uint32_t{jfLinked};
    if (!Tree.Leaving || child->Has(jfExtra) || child->Has(jfMarked)) {
      child->Next = Tree.Pending;
      Tree.Pending = child;
    }
    child = next;
  }
}

void TJSONNodes::LeaveChildren(TJSONNode* Node) {
  for (TJSONNode* child = Node->FirstChild(); child;) {
    TJSONNode* const next = child->Next;
    child->Owner = child->Next = nullptr;
    child->Flags &= ~std::uint32_t{jfLinked};
    if (TZmJSONBase* const object = child->Object()) object->_Release();
    child = next;
  }
  Node->FirstChild() = nullptr;
  Node->Size = 0;
}

void TJSONNodes::Drain(TJSONTree& Tree) {
  if (Tree.Freeing) return;
  Tree.AddRef();
  Tree.Freeing = true;
  while (TJSONNode* const node = Tree.Pending) {
    Tree.Pending = node->Next;
    node->Next = nullptr;
    Dispose(Tree, node);
  }
  Tree.Freeing = false;
  Tree.Release();
}

// Of a node that has no owner any more: its object, which ends or goes on with it, or the record itself.
void TJSONNodes::Dispose(TJSONTree& Tree, TJSONNode* Node) {
  if (Node->Has(jfExtra)) {
    if (Node->Extra->Member) return LetGo(*Node->Extra->Member);
    if (TZmJSONBase* const object = Node->Extra->Node) {
      TJSONTree::DropName(Node);
      Node->Flags &= ~std::uint32_t{jfMember};
      return LetGo(*object);
    }
  }
  if (Node->IsContainer()) PushChildren(Tree, Node);
  Tree.DropExtra(Node);
  TJSONTree::DropName(Node);
  if (!Tree.Leaving) Tree.Recycle(Node);
}

void TJSONNodes::End(TZmJSONBase& Object) {
  TJSONTree& tree = *Object.FTree;
  TJSONNode* const node = Object.FNode;
  Detach(Object);
  if (Object.FIsMember) {
    node->Extra->Member = nullptr;
    Dispose(tree, node);
  } else {
    if (node->IsContainer()) FreeChildren(Object);
    node->Extra->Node = nullptr;
    if (node->Has(jfMember)) {
      ForgetValue(node);
    } else {
      tree.DropExtra(node);
      node->Flags &= ~(jfClassMask | jfLinked);
      if (!tree.Leaving) tree.Recycle(node);
    }
  }
  Drain(tree);
}

void TJSONNodes::FreeListed(TZmJSONBase& Object) {
  std::unique_ptr<TJSONList> list = std::move(Object.FList);
  Object.FNode->Flags &= ~std::uint32_t{jfList};
  if (!Object.FNode->Has(jfKeepsChildren)) {
    for (std::size_t i = list->Count(); i-- > 0;)
      if (TZmJSONBase* const object = list->HeldAt(i)) object->FreeObject();
  }
  LetGoOf(std::move(list));
}

// Containers may hold each other without end: those that end meanwhile wait for their turn.
void TJSONNodes::LetGoOf(std::unique_ptr<TJSONList> List) {
  thread_local TJSONList* running = nullptr;
  if (running) {
    List->LetGoNext = std::move(running->LetGoNext);
    running->LetGoNext = std::move(List);
    return;
  }
  for (; List; List = std::move(List->LetGoNext)) {
    running = List.get();
    for (std::size_t i = List->Count(); i-- > 0;)
      if (TZmJSONBase* const object = List->HeldAt(i)) object->_Release();
  }
  running = nullptr;
}

void TJSONNodes::Renew(TZmJSONBase& Document) {
  TJSONTree* tree = new TJSONTree;
  tree->AddRef();
  try {
    TJSONNode* const node = tree->NewNode(ClassFlags(jcDocument, jdtNull));
    tree->ExtraOf(node).Node = &Document;
    Document.FNode->Extra->Node = nullptr;
    Document.FNode = node;
  } catch (...) {
    tree->Release();
    throw;
  }
  std::swap(Document.FTree, tree);
  tree->Release();
}

void TJSONNodes::FreeChildren(TZmJSONBase& Object) {
  if (Object.FNode->Has(jfList)) FreeListed(Object);
  Object.FList.reset();
  TJSONTree& tree = *Object.FTree;
  if (Object.FNode->Has(jfKeepsChildren)) return LeaveChildren(Object.FNode);
  if (Object.FNode->Class() != jcDocument || tree.Freeing || tree.HasViews()) {  // a view asks the records themselves
    PushChildren(tree, Object.FNode);
    return Drain(tree);
  }
  if (!Object.FNode->FirstChild()) return;
  tree.AddRef();
  tree.Leaving = true;
  PushChildren(tree, Object.FNode);
  Drain(tree);
  tree.Leaving = false;
  tree.Release();
}

}  // namespace zm::detail
