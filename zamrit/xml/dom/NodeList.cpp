#include "zamrit/xml/dom/NodeList.h"

#include <algorithm>
#include <limits>

#include "zamrit/platform/Exceptions.h"
#include "zamrit/xml/dom/TreeDetail.h"
#include "zamrit/xml/dom/WatchDetail.h"

namespace zm {

using detail::TDOMTree;

namespace {

// Applications and selections may put nodes of any kind in a list.
template <class T>
T* Cast(TZmDOMNode* Node, TZmDOMNodeType Type) {
  if (Node && Node->GetNodeType() != Type) throw EInvalidCast(u"Invalid class typecast");
  return static_cast<T*>(Node);
}

}  // namespace

TZmDOMNode* TZmDOMNodeListBaseEnumerator::GetCurrent() const { return FList.GetItem(FIndex); }
bool TZmDOMNodeListBaseEnumerator::MoveNext() {
  if (FIndex + 1 >= FList.Count()) return false;
  ++FIndex;
  return true;
}
TZmDOMElement* TZmDOMElementListEnumerator::GetCurrent() const {
  return Cast<TZmDOMElement>(TZmDOMNodeListBaseEnumerator::GetCurrent(), ntElement);
}

TZmDOMNodeListBase::~TZmDOMNodeListBase() {
  if (FDOMNodeListImpl) FDOMNodeListImpl->ObjectGone();
  if (FWatched) detail::TDOMWatch::End();
}

bool TZmDOMNodeListBase::CanAutoDestroy() const { return !IsHeld() && TZmDOMObject::CanAutoDestroy() && !FParent; }

// Of children the list knows as many from the front as somebody has asked for, and their number once it was counted.
// Both stay right while children come and go, so that a loop over indexes may edit.
bool TZmDOMNodeListBase::Know(int Index) const {
  if (Index < Size()) return true;
  if (FKind == TKind::Own || Size() == FCount) return false;
  if (FKind == TKind::Namespaces) {
    TDOMTree::CollectNamespaces(static_cast<TZmDOMElement*>(Owner()), FList);
    FCount = Size();
    return Index < FCount;
  }
  TZmDOMNode* node = FList.empty() ? TDOMTree::FirstOfKind(Owner(), FKind) : TDOMTree::NextOfKind(FList.back(), FKind);
  for (; node; node = TDOMTree::NextOfKind(node, FKind)) {
    FList.push_back(node);
    if (Index < Size()) return true;
  }
  FCount = Size();
  return false;
}

int TZmDOMNodeListBase::Count() const {
  if (FKind != TKind::Own && FCount < 0) Know(std::numeric_limits<int>::max());
  return FKind == TKind::Own ? Size() : FCount;
}

TZmDOMNode* TZmDOMNodeListBase::GetItem(int Index) const {
  if (Index < 0 || !Know(Index)) throw EListError(u"List index out of bounds (%d)", {Index});
  FCursor = Index;
  if (FWatched) detail::TDOMWatch::Check(At(Index));
  return At(Index);
}

// Whether the parent's chain, or the mark on the node, says that it is in a list of children.
bool TZmDOMNodeListBase::IsChild(const TZmDOMNode* Node) const {
  if (!Node || !FParent || FShown == TKind::Namespaces || Node->GetParent() != FParent) return false;
  return TDOMTree::IsOfKind(Node, FShown) && TDOMTree::Has(Node, FKind == TKind::Own ? Mark() : detail::dfLinked);
}

int TZmDOMNodeListBase::KnownIndexOf(const TZmDOMNode* Node) const {
  for (int i = FCursor - 1; i <= FCursor + 1; ++i)
    if (i >= 0 && i < Size() && At(i) == Node) return FCursor = i;
  if (Size() > 0 && At(Size() - 1) == Node) return Size() - 1;
  return Size() > 0 && At(0) == Node ? 0 : -1;
}

int TZmDOMNodeListBase::IndexOf(const TZmDOMNode* Node) const {
  const int known = KnownIndexOf(Node);
  if (known >= 0) return known;
  const bool child = Node && FParent && FShown != TKind::Namespaces && Node->GetParent() == FParent;
  if (child && !IsChild(Node) && (!FHasOthers || TDOMTree::IsOfKind(Node, FShown))) return -1;
  Know(std::numeric_limits<int>::max());
  const auto begin = FList.begin() + static_cast<std::ptrdiff_t>(FHead);
  const auto found = std::find(begin, FList.end(), Node);
  return found == FList.end() ? -1 : FCursor = static_cast<int>(found - begin);
}

void TZmDOMNodeListBase::Depart() {
  if (FKind == TKind::Own) return;
  Know(std::numeric_limits<int>::max());
  FKind = TKind::Own;
  if (!FParent || FShown == TKind::Namespaces) return;
  TDOMTree::Flags(FParent) |= detail::dfOwnLists;
  for (TZmDOMNode* const node : FList) TDOMTree::SetFlag(node, Mark(), true);
}

void TZmDOMNodeListBase::MarkChild(TZmDOMNode* Node, bool Value) {
  if (FParent && Node->GetParent() == FParent && TDOMTree::IsOfKind(Node, FShown))
    TDOMTree::SetFlag(Node, Mark(), Value);
  else if (Value)
    FHasOthers = true;
}

void TZmDOMNodeListBase::Forget() {
  FList.clear();
  FHead = 0;
  FCount = -1;
  FKind = FShown;
  FHasOthers = false;
}

void TZmDOMNodeListBase::ChainChanged(TZmDOMNode* Added) {
  TZmDOMNode* const before = TDOMTree::Previous(Added);
  if (!before || !TDOMTree::IsOfKind(before, FKind)) {
    FList.clear();
  } else if (FList.empty() || FList.back() != before) {
    const int known = KnownIndexOf(before) + 1;
    FList.resize(static_cast<std::size_t>(known));
  } else if (FCount == Size()) {
    FList.push_back(Added);
  }
  if (FCount >= 0) ++FCount;
}

void TZmDOMNodeListBase::NodeLeaves(TZmDOMNode* Node) {
  if (FKind == TKind::Own) {
    const int index = IndexOf(Node);
    if (index >= 0) Erase(index);
    TDOMTree::SetFlag(Node, Mark(), false);
    return;
  }
  FList.resize(static_cast<std::size_t>(std::max(KnownIndexOf(Node), 0)));
  if (FCount >= 0) --FCount;
}

// Also in front, so that a million insertions there cost no more than behind.
void TZmDOMNodeListBase::MakeRoom(bool InFront) {
  const std::size_t room = FList.size() + 8;
  if (InFront && FHead == 0) {
    FList.insert(FList.begin(), room, nullptr);
    FHead = room;
  }
  if (FList.size() == FList.capacity()) FList.reserve(FList.size() + room);
}

void TZmDOMNodeListBase::Insert(int Index, TZmDOMNode* Node) {
  if (Index == 0 && FHead > 0) {
    FList[--FHead] = Node;
  } else {
    FList.insert(FList.begin() + static_cast<std::ptrdiff_t>(FHead) + Index, Node);
  }
}

void TZmDOMNodeListBase::Erase(int Index) {
  if (Index == 0 && FHead + 1 < FList.size())
    ++FHead;
  else
    FList.erase(FList.begin() + static_cast<std::ptrdiff_t>(FHead) + Index);
  if (FHead < FList.size()) return;
  FList.clear();
  FHead = 0;
}

bool TZmDOMNodeListBase::ContainsNode(const TZmDOMNode* Node) const { return IsChild(Node) || IndexOf(Node) >= 0; }

// A child stands in a list of children once: those who walk the tree could not tell where they are.
void TZmDOMNodeListBase::Add(TZmDOMNode* Node, TZmDOMAbsPosition Position) {
  Assert(Node != nullptr, u"Assertion failure (xml/uZmXMLDOM)");
  Depart();
  MakeRoom(Position != rdpLast && Size() > 0);
  if (IsChild(Node)) Erase(IndexOf(Node));
  Insert(Position == rdpLast ? Size() : 0, Node);
  MarkChild(Node, true);
}

void TZmDOMNodeListBase::Add(TZmDOMNode* Node, TZmDOMNode* Ref, TZmDOMPosition Position) {
  if (Position == rdpFirst || Position == rdpLast) return Add(Node, Position);
  if (!Ref) return Add(Node, Position == rdpBefore ? rdpFirst : rdpLast);
  Add(Node, Position, Ref);
}

void TZmDOMNodeListBase::Add(TZmDOMNode* Node, TZmDOMRelPosition Position, TZmDOMNode* Ref) {
  Assert(Node && Ref, u"Assertion failure (xml/uZmXMLDOM)");
  if (Ref == Node && ContainsNode(Node)) return;
  Depart();
  if (IndexOf(Ref) < 0) return Add(Node, Position == rdpBefore ? rdpFirst : rdpLast);
  MakeRoom(Position == rdpBefore && IndexOf(Ref) == 0);
  if (IsChild(Node)) Erase(IndexOf(Node));
  Insert(IndexOf(Ref) + (Position == rdpBefore ? 0 : 1), Node);
  MarkChild(Node, true);
}

TZmDOMNode* TZmDOMNodeListBase::Delete(TZmDOMNode* Node) {
  Depart();
  const int index = IndexOf(Node);
  if (index < 0) return nullptr;
  Erase(index);
  MarkChild(Node, false);
  return Node;
}

TZmDOMNode* TZmDOMNodeListBase::Delete(const TZmAnyText& Name, TZmDOMSelectOptions Options) {
  TZmDOMNode* const found = Find(Name, Options);
  return found ? Delete(found) : nullptr;
}

TZmDOMNode* TZmDOMNodeListBase::Delete(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName) {
  TZmDOMNode* const found = Find(NamespaceURI, LocalName);
  return found ? Delete(found) : nullptr;
}

void TZmDOMNodeListBase::Clear() {
  Depart();
  for (int i = 0; i < Size(); ++i)
    if (IsChild(At(i))) TDOMTree::SetFlag(At(i), Mark(), false);
  FList.clear();
  FHead = 0;
}

TZmDOMNode* TZmDOMNodeListBase::First() const {
  if (!Know(0)) throw EZmDomNotFound(u"Failed to get the first node!\r\nThe list contains no nodes.");
  return At(0);
}

TZmDOMNode* TZmDOMNodeListBase::Last() const {
  if (!Know(0)) throw EZmDomNotFound(u"Failed to get the first node!\r\nThe list contains no nodes.");
  if (FKind == TKind::Own || FKind == TKind::Namespaces) return At(Count() - 1);
  return TDOMTree::LastOfKind(Owner(), FKind);
}

TZmDOMNode* TZmDOMNodeListBase::Next(const TZmDOMNode* Node) const {
  if (FKind != TKind::Own && IsChild(Node)) return TDOMTree::NextOfKind(Node, FKind);
  const int index = IndexOf(Node) + 1;
  return index < Count() ? At(index) : nullptr;
}

TZmDOMNode* TZmDOMNodeListBase::Previous(const TZmDOMNode* Node) const {
  if (FKind != TKind::Own && IsChild(Node)) return TDOMTree::PreviousOfKind(Node, FKind);
  const int index = IndexOf(Node);
  return index > 0 ? At(index - 1) : nullptr;
}

TZmDOMElement* TZmDOMElementList::GetItem(int Index) const {
  return Cast<TZmDOMElement>(TZmDOMNodeListBase::GetItem(Index), ntElement);
}

TZmDOMAttribute* TZmDOMAttrList::GetItem(int Index) const {
  return Cast<TZmDOMAttribute>(TZmDOMNodeListBase::GetItem(Index), ntAttribute);
}

TZmDOMAttribute* TZmDOMAttrList::FindNamespace(const TZmAnyText& URI) const {
  const String uri = URI.Text();
  for (int i = Count(); i-- > 0;) {
    TZmDOMAttribute* const attribute = GetItem(i);
    if (attribute->IsNamespace() && attribute->GetNodeValue() == uri) return attribute;
  }
  return nullptr;
}

}  // namespace zm
