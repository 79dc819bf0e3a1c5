#include <algorithm>
#include <array>
#include <cstring>
#include <typeinfo>

#include "zamrit/platform/ScopeDetail.h"
#include "zamrit/platform/TextDetail.h"
#include "zamrit/xml/dom/TreeDetail.h"
#include "zamrit/xml/values/Escaping.h"

namespace zm::detail {

// The chain of children.

TZmDOMNode* TDOMTree::Following(const TZmDOMNode* Node, const TZmDOMNode* Top, bool Deep) {
  if (Deep && CanHaveChildren(Node))
    if (TZmDOMNode* const first = First(Node)) return first;
  while (Node != Top) {
    if (Node->FNext) return Node->FNext;
    Node = static_cast<const TZmDOMNode*>(Node->FParent);
  }
  return nullptr;
}

void TDOMTree::Link(TZmDOMNode* Parent, TZmDOMNode* Node, TZmDOMNode* Before) {
  const auto isAttribute = [](const TZmDOMNode* node) { return node && node->GetNodeType() == ntAttribute; };
  const TZmDOMNode* const left = Before ? Previous(Before) : Last(Parent);
  if (isAttribute(Node) ? left && !isAttribute(left) : isAttribute(Before)) Parent->FFlags |= dfLateAttributes;
  if (!Before) return LinkLast(Parent, Node);
  TZmDOMNode*& first = FirstOf(Parent);
  Node->FNext = Before;
  Node->FPrevious = Before->FPrevious;
  if (Before == first)
    first = Node;
  else
    Before->FPrevious->FNext = Node;
  Before->FPrevious = Node;
  Node->FFlags |= dfLinked;
}

void TDOMTree::Unlink(TZmDOMNode* Parent, TZmDOMNode* Node) {
  if (!Node->HasFlag(dfLinked)) return;
  TZmDOMNode*& first = FirstOf(Parent);
  TZmDOMNode* const next = Node->FNext;
  if (Node == first)
    first = next;
  else
    Node->FPrevious->FNext = next;
  if (next)
    next->FPrevious = Node->FPrevious;
  else if (first)
    first->FPrevious = Node->FPrevious;
  Node->FNext = Node->FPrevious = nullptr;
  Node->FFlags &= ~dfLinked;
}

TDOMExtra& TDOMTree::Extra(TZmDOMNode* Node) {
  if (!Node->HasFlag(dfExtra)) {
    auto extra = std::make_unique<TDOMExtra>();
    if (CanHaveChildren(Node))
      extra->First = Node->FFirst;
    else
      extra->Text = Node->FText;
    Node->FExtra = extra.release();
    Node->FFlags |= dfExtra;
    if (Node->GetNodeType() != ntDocument) Spoil(Node->GetDOMDocument());
  }
  return *Node->FExtra;
}

void TDOMTree::DropExtra(TZmDOMNode* Node) {
  if (!Node->HasFlag(dfExtra)) return;
  const std::unique_ptr<TDOMExtra> extra(Node->FExtra);
  if (CanHaveChildren(Node))
    Node->FFirst = extra->First;
  else
    Node->FText = extra->Text;
  Node->FFlags &= ~dfExtra;
  if (extra->Impl) extra->Impl->ObjectGone();
}

// Names.

namespace {
constexpr std::size_t cManyNames = 10'000;
}  // namespace

void TDOMTree::SetName(TZmDOMNode* Node, StringView Prefix, StringView LocalName) {
  if (!HasName(Node)) return;
  auto* const named = static_cast<TDOMNamedNode*>(Node);
  TZmDOMDocument* const document = Node->GetDOMDocument();
  // Only what stands in the memory of a document may borrow a name from it: it cannot outlive it. Names stay there, so
  // that without an end of new ones they are the nodes' own.
  const bool borrow = document && document->FHome->NameCount() < cManyNames &&
                      (!Has(Node, dfArena) || &TDOMHome::Of(Node) == document->FHome);
  const TDOMName* const name = borrow ? document->FHome->Intern(Prefix, LocalName) : NewName(Prefix, LocalName);
  TDOMScope* const scope = Has(Node, dfDeclaration) && Node->FParent && Has(Node->FParent, dfOwnScope)
                               ? static_cast<TZmDOMElement*>(Node->FParent)->FScope
                               : nullptr;
  if (scope) scope->ForgetName(static_cast<TZmDOMAttribute*>(Node));
  const TDOMName* const old = std::exchange(named->FName, name);
  if (Has(Node, dfOwnName)) FreeName(old);
  Node->SetFlag(dfOwnName, !borrow);
  if (!borrow) Spoil(document);
  auto* const parent = static_cast<TZmDOMNode*>(Node->FParent);
  if (document == parent && parent) document->FScanned = nullptr;
  if (Node->GetNodeType() != ntAttribute) return;
  const bool was = Has(Node, dfDeclaration);
  Node->SetFlag(dfDeclaration, name->IsDeclaration);
  if (!parent || !(was || name->IsDeclaration)) return;
  if (!was) return DeclarationCame(parent, Node);
  if (!name->IsDeclaration) return DeclarationLeft(parent, Node);
  if (scope) scope->NoteName(static_cast<TZmDOMAttribute*>(Node));
  Relink(parent);
}

void TDOMTree::OwnName(TZmDOMNode* Node) {
  if (!HasName(Node) || Has(Node, dfOwnName) || Has(Node, dfArena)) return;
  auto* const named = static_cast<TDOMNamedNode*>(Node);
  if (named->FName == &cNoDOMName) return;
  named->FName = NewName(named->FName->Prefix, named->FName->LocalName);
  Node->SetFlag(dfOwnName);
}

// Texts.

namespace {

void AppendSurrogate(char16_t Unit, std::string& Out) {
  Out += '\xED';
  Out += static_cast<char>(0x80 | (Unit >> 6 & 0x3F));
  Out += static_cast<char>(0x80 | (Unit & 0x3F));
}

}  // namespace

bool TDOMTree::Narrow(StringView Text, std::string& Out) {
  bool lone = false;
  std::size_t from = 0;
  for (std::size_t i = 0; i < Text.size(); ++i) {
    const char16_t c = Text[i];
    if (!IsSurrogate(c)) continue;
    if (IsHighSurrogate(c) && i + 1 < Text.size() && IsLowSurrogate(Text[i + 1])) {
      ++i;
      continue;
    }
    AppendUTF8(Text.substr(from, i - from), Out);
    AppendSurrogate(c, Out);
    from = i + 1;
    lone = true;
  }
  AppendUTF8(Text.substr(from), Out);
  return lone;
}

namespace {

void WidenLone(std::string_view Text, String& Out) {
  std::size_t from = 0;
  for (std::size_t i = 0; i + 2 < Text.size(); ++i) {
    if (Text[i] != '\xED' || (Text[i + 1] & 0xE0) != 0xA0) continue;
    AppendUTF16(Text.substr(from, i - from), Out);
    Out += static_cast<char16_t>(0xD000 | TrailBits(Text[i + 1]) << 6 | TrailBits(Text[i + 2]));
    from = i + 3;
    i += 2;
  }
  AppendUTF16(Text.substr(from), Out);
}

}  // namespace

void TDOMTree::Widen(std::string_view UTF8, bool Surrogates, String& Out) {
  if (Surrogates)
    WidenLone(UTF8, Out);
  else
    AppendUTF16(UTF8, Out);
}

String TDOMTree::Text(const TZmDOMNode* Node) {
  String text;
  Widen(RawText(Node), Has(Node, dfSurrogates), text);
  return text;
}

String TDOMTree::Decoded(const TZmDOMNode* Node) {
  String text = Text(Node);
  return text.find(u'&') == String::npos ? text : ZmXMLToStr(StringView(text));
}

void TDOMTree::SetText(TZmDOMNode* Node, StringView Text) {
  std::string narrow;
  const bool surrogates = Narrow(Text, narrow);
  SetRawText(Node, narrow, surrogates);
}

void TDOMTree::SetRawText(TZmDOMNode* Node, std::string_view UTF8, bool Surrogates) {
  if (UTF8.size() > ~std::uint32_t{0}) throw EZmDomStringSize(u"A value of 4 GB and more cannot be held!");
  char* const bytes = UTF8.empty() ? nullptr : new char[UTF8.size()];
  if (bytes) std::memcpy(bytes, UTF8.data(), UTF8.size());
  const char*& text = Node->HasFlag(dfExtra) ? Node->FExtra->Text : Node->FText;
  if (Has(Node, dfHeapText)) delete[] text;
  text = bytes;
  Node->FSize = static_cast<std::uint32_t>(UTF8.size());
  Node->SetFlag(dfHeapText, bytes != nullptr);
  Node->SetFlag(dfSurrogates, Surrogates);
  if (bytes) Spoil(Node->GetDOMDocument());
}

// Lists of children.

TDOMTree::TKind TDOMTree::KindOf(const TZmDOMNode* Node) {
  switch (Node->GetNodeType()) {
    case ntElement:
      return TKind::Elements;
    case ntAttribute:
      return TKind::Attributes;
    case ntText:
    case ntCDATA:
    case ntComment:
      return TKind::Characters;
    default:
      return TKind::All;
  }
}

TZmDOMNodeListBase* TDOMTree::ListIfAny(const TZmDOMNode* Node, TKind Kind) {
  TDOMExtra* const extra = ExtraIfAny(Node);
  if (!extra) return nullptr;
  switch (Kind) {
    case TKind::Elements:
      return extra->Elements.get();
    case TKind::Attributes:
      return extra->Attributes.get();
    case TKind::Characters:
      return extra->CharNodes.get();
    case TKind::Namespaces:
      return extra->Namespaces.get();
    default:
      return extra->ChildNodes.get();
  }
}

TZmDOMNodeListBase& TDOMTree::List(TZmDOMNode* Node, TKind Kind) {
  TDOMExtra& extra = Extra(Node);
  const auto made = [&](auto& list) -> TZmDOMNodeListBase& {
    if (!list) {
      list = std::make_unique<std::remove_reference_t<decltype(*list)>>();
      list->FParent = Node;
      list->FKind = list->FShown = Kind;
    }
    return *list;
  };
  switch (Kind) {
    case TKind::Elements:
      return made(extra.Elements);
    case TKind::Attributes:
      return made(extra.Attributes);
    case TKind::Characters:
      return made(extra.CharNodes);
    case TKind::Namespaces:
      return made(extra.Namespaces);
    default:
      return made(extra.ChildNodes);
  }
}

// The list that rules the order of a kind, where it is not the chain.
TZmDOMNodeListBase* TDOMTree::OwnList(const TZmDOMNode* Parent, TKind Kind) {
  if (!Has(Parent, dfOwnLists)) [[likely]]
    return nullptr;
  TZmDOMNodeListBase* const list = ListIfAny(Parent, Kind);
  return list && list->FKind == TKind::Own ? list : nullptr;
}

// What somebody has put in a list of children that is none is passed over.
TZmDOMNode* TDOMTree::ChildIn(const TZmDOMNodeListBase& List, int Index, int Step) {
  for (; Index >= 0 && Index < List.Size(); Index += Step)
    if (List.At(Index)->FParent == List.FParent && IsOfKind(List.At(Index), List.FShown)) {
      List.FCursor = Index;
      return List.At(Index);
    }
  return nullptr;
}

void TDOMGaps::Note(TZmDOMNode* Left, TZmDOMNode* Right) {
  FBehind[Left] = Right;
  try {
    FBefore[Right] = Left;
  } catch (...) {
    FBehind.erase(Left);
    throw;
  }
}

// Another child takes the place of that at one end of a way.
bool TDOMGaps::Rename(TWays& From, TWays& To, TZmDOMNode* Old, TZmDOMNode* New) {
  auto way = From.extract(Old);
  if (!way) return false;
  way.key() = New;
  To.find(way.mapped())->second = New;
  From.insert(std::move(way));
  return true;
}

void TDOMGaps::Drop(TWays& From, TWays& To, TZmDOMNode* Node) {
  const auto way = From.find(Node);
  if (way == From.end()) return;
  To.erase(way->second);
  From.erase(way);
}

void TDOMGaps::Came(TZmDOMNode* Node, std::optional<TZmDOMNode*> Left, std::optional<TZmDOMNode*> Right) {
  if (Left) Rename(FBehind, FBefore, *Left, Node);
  if (Right && !Left) Rename(FBefore, FBehind, *Right, Node);
  if (Left || Right) return;
  FBehind.clear();
  FBefore.clear();
}

void TDOMGaps::Leaves(TZmDOMNode* Node, std::optional<TZmDOMNode*> Left, std::optional<TZmDOMNode*> Right) {
  const auto before = FBefore.find(Node), behind = FBehind.find(Node);
  if (before != FBefore.end() && behind != FBehind.end()) {
    TZmDOMNode *const left = before->second, *const right = behind->second;
    FBefore.erase(before);
    FBehind.erase(behind);
    FBehind.find(left)->second = right;
    FBefore.find(right)->second = left;
    return;
  }
  if (Left && Rename(FBehind, FBefore, Node, *Left)) return;
  if (Right && Rename(FBefore, FBehind, Node, *Right)) return;
  Drop(FBehind, FBefore, Node);
  Drop(FBefore, FBehind, Node);
}

std::unique_ptr<TDOMGaps>* TDOMTree::Gaps(TDOMExtra* Extra, TKind Kind) {
  if (!Extra) return nullptr;
  switch (Kind) {
    case TKind::Elements:
      return &Extra->ElementGaps;
    case TKind::Attributes:
      return &Extra->AttributeGaps;
    case TKind::Characters:
      return &Extra->CharacterGaps;
    default:
      return nullptr;
  }
}

// Node is where From has led to so far.
TZmDOMNode* TDOMTree::BesideFar(const TZmDOMNode* Parent, const TZmDOMNode* From, TZmDOMNode* Node, TKind Kind,
                                bool Back) {
  if (const auto* const gaps = Gaps(ExtraIfAny(Parent), Kind); gaps && *gaps) {
    const auto known = (*gaps)->Ways(Back).find(From);
    if (known != (*gaps)->Ways(Back).end()) return known->second;
  }
  while (Node && !IsOfKind(Node, Kind)) Node = Back ? Previous(Node) : Node->FNext;
  try {
    std::unique_ptr<TDOMGaps>& gaps = *Gaps(&Extra(const_cast<TZmDOMNode*>(Parent)), Kind);
    if (!gaps) gaps = std::make_unique<TDOMGaps>();
    auto* const from = const_cast<TZmDOMNode*>(From);
    gaps->Note(Back ? Node : from, Back ? from : Node);
  } catch (const std::bad_alloc&) {  // then the way is gone again
  }
  return Node;
}

// The next of a kind, nil behind the last; no value where it is far.
std::optional<TZmDOMNode*> TDOMTree::Near(const TZmDOMNode* Node, TKind Kind, bool Back) {
  TZmDOMNode* near = Back ? Previous(Node) : Node->FNext;
  for (int i = 0; i < cFar; ++i) {
    if (!near || IsOfKind(near, Kind)) return near;
    near = Back ? Previous(near) : near->FNext;
  }
  return {};
}

TZmDOMNode* TDOMTree::FirstOfKind(const TZmDOMNode* Parent, TKind Kind) {
  if (const TZmDOMNodeListBase* const own = OwnList(Parent, Kind)) return ChildIn(*own, 0, 1);
  if (Kind == TKind::Attributes && !Has(Parent, dfLateAttributes)) {
    TZmDOMNode* const node = First(Parent);
    return node && node->GetNodeType() == ntAttribute ? node : nullptr;
  }
  return Beside<false>(Parent, nullptr, Kind);
}

TZmDOMNode* TDOMTree::LastOfKind(const TZmDOMNode* Parent, TKind Kind) {
  if (const TZmDOMNodeListBase* const own = OwnList(Parent, Kind)) return ChildIn(*own, own->Size() - 1, -1);
  if (Kind == TKind::Attributes && !Has(Parent, dfLateAttributes)) {  // few, in front of perhaps many others
    TZmDOMNode* last = nullptr;
    TZmDOMNode* node = First(Parent);
    int passed = 0;
    for (; node && node->GetNodeType() == ntAttribute && passed < cFar; node = node->FNext, ++passed) last = node;
    if (passed < cFar) return last;
  }
  return Beside<true>(Parent, nullptr, Kind);
}

TZmDOMNode* TDOMTree::NextOfKind(const TZmDOMNode* Node, TKind Kind) {
  const auto* const parent = static_cast<const TZmDOMNode*>(Node->FParent);
  if (!parent) return nullptr;
  if (const TZmDOMNodeListBase* const own = OwnList(parent, Kind)) return ChildIn(*own, own->IndexOf(Node) + 1, 1);
  if (Kind == TKind::Attributes && !Has(parent, dfLateAttributes)) {
    TZmDOMNode* const next = Node->FNext;
    return next && next->GetNodeType() == ntAttribute ? next : nullptr;
  }
  return Beside<false>(parent, Node, Kind);
}

TZmDOMNode* TDOMTree::PreviousOfKind(const TZmDOMNode* Node, TKind Kind) {
  const auto* const parent = static_cast<const TZmDOMNode*>(Node->FParent);
  if (!parent) return nullptr;
  if (const TZmDOMNodeListBase* const own = OwnList(parent, Kind)) return ChildIn(*own, own->IndexOf(Node) - 1, -1);
  return Beside<true>(parent, Node, Kind);
}

void TDOMTree::ChildAdded(TZmDOMNode* Parent, TZmDOMNode* Node, TZmDOMNode* Ref, TZmDOMPosition Position) {
  const TKind kind = KindOf(Node);
  if (const auto* const gaps = Gaps(ExtraIfAny(Parent), kind); gaps && *gaps)
    (*gaps)->Came(Node, Near(Node, kind, true), Near(Node, kind, false));
  if (Parent->GetNodeType() == ntElement && kind != TKind::All) {
    const bool relative = Ref && (Position == rdpBefore || Position == rdpAfter);
    if (relative && !IsOfKind(Ref, kind) && !OwnList(Parent, kind)) {
      // Next to a node of another kind it goes to an end of its own list. Is that where the chain has it? A long way to
      // the next of the kind is not gone each time: the list departs, and is right in any case.
      TZmDOMNode* beside = Position == rdpBefore ? Previous(Node) : Node->FNext;
      for (int far = 0; beside && !IsOfKind(beside, kind) && far < cFar; ++far)
        beside = Position == rdpBefore ? Previous(beside) : beside->FNext;
      if (beside) {
        TZmDOMNodeListBase& list = List(Parent, kind);
        list.Forget();
        list.Delete(Node);
      }
    }
    if (TZmDOMNodeListBase* const own = OwnList(Parent, kind))
      own->Add(Node, Ref, Position);
    else if (TZmDOMNodeListBase* const list = ListIfAny(Parent, kind))
      list->ChainChanged(Node);
  }
  if (TZmDOMNodeListBase* const own = OwnList(Parent, TKind::All))
    own->Add(Node, Ref, Position);
  else if (TZmDOMNodeListBase* const list = ListIfAny(Parent, TKind::All))
    list->ChainChanged(Node);
}

void TDOMTree::ChildLeaves(TZmDOMNode* Parent, TZmDOMNode* Node) {
  if (!Parent->HasFlag(dfExtra) || !Has(Node, dfLinked)) return;
  const TKind kind = KindOf(Node);
  for (const TKind shown : {TKind::All, TKind::Elements, TKind::Attributes, TKind::Characters})
    if (TZmDOMNodeListBase* const list = ListIfAny(Parent, shown))
      if (IsOfKind(Node, shown) || list->FHasOthers) list->NodeLeaves(Node);
  if (kind == TKind::All) return;
  if (const auto* const gaps = Gaps(ExtraIfAny(Parent), kind); gaps && *gaps)
    (*gaps)->Leaves(Node, Near(Node, kind, true), Near(Node, kind, false));
}

// Life.

bool TDOMTree::IsOwnClass(const TZmDOMObject& Object) {
  static const std::array known{&typeid(TZmDOMElement),  &typeid(TZmDOMAttribute), &typeid(TZmDOMText),
                                &typeid(TZmDOMCDATA),    &typeid(TZmDOMComment),   &typeid(TZmDOMProcessingInstruction),
                                &typeid(TZmDOMDocument), &typeid(TZmDOMNodeList),  &typeid(TZmDOMElementList),
                                &typeid(TZmDOMAttrList)};
  const std::type_info& type = typeid(Object);
  // The address tells nearly always, and sooner than the names.
  return std::find(known.begin(), known.end(), &type) == known.end() &&
         std::none_of(known.begin(), known.end(), [&](const std::type_info* one) { return *one == type; });
}

void TDOMTree::Destroy(TZmDOMNode* Node) noexcept {
  if (!Has(Node, dfArena)) {
    delete Node;
    return;
  }
  TDOMHome& home = TDOMHome::Of(Node);
  Node->~TZmDOMNode();
  home.NodeGone();
}

void TDOMTree::LeaveFrom(TZmDOMNode* Parent, TZmDOMNode* Node) {
  if (!Parent) return;
  ChildLeaves(Parent, Node);
  if (Parent->GetNodeType() == ntDocument) {
    auto* const document = static_cast<TZmDOMDocument*>(Parent);
    if (document->FRootNode == Node) document->FRootNode = nullptr;
    if (document->FScanned == Node) document->FScanned = Previous(Node);
  }
  Unlink(Parent, Node);
}

void TDOMTree::MakeLoose(TZmDOMNode* Node) {
  try {
    Node->SetParentNode(nullptr);
  } catch (...) {
    if (Node->FParent) throw;
  }
}

namespace {

// Declarations go last: a held node that becomes loose takes the URI from them.
void PutDeclarationsFirst(TZmDOMNode* Node) {
  if (!TDOMTree::Has(Node, dfDeclares) || !TDOMTree::Has(Node, dfLateAttributes)) return;
  TZmDOMNode* next;
  for (TZmDOMNode* child = TDOMTree::First(Node); child; child = next) {
    next = TDOMTree::Next(child);
    if (!TDOMTree::Has(child, dfDeclaration)) continue;
    TDOMTree::Unlink(Node, child);
    TDOMTree::Link(Node, child, TDOMTree::First(Node));
  }
}

}  // namespace

namespace {

// Of an application's classes each calls the next. Those that stand deeper than this are told when what is below them
// has gone, so that depth does not become stack.
constexpr int cMostNested = 64;
thread_local int Nested = 0;

}  // namespace

void TDOMTree::RunBeforeDestruction(TZmDOMNode* Node) {
  ++Nested;
  const TFinally leave([] { --Nested; });
  Node->BeforeDestruction();
  if (CanHaveChildren(Node)) FreeChildren(Node);  // what an override has left
}

// A child leaves a parent that goes, or is cleared. An application's class of parent may watch it.
void TDOMTree::LetGo(TZmDOMNode* Parent, TZmDOMNode* Node, bool Held) {
  if (!Held) Node->FFlags |= dfDestroying;
  try {
    if (IsDerived(Parent) && Node->FParent == Parent) Parent->RemoveChild(Node);
  } catch (...) {  // it goes all the same
  }
  if (Node->FParent != Parent) return;
  Leave(Node);
  if (!Held) {
    Node->FParent = nullptr;
    return;
  }
  try {
    Node->SetParentNode(nullptr);
  } catch (...) {
    CutLoose(Node);
  }
}

// What is held below is a branch of its own from the child on that is reached first: the companion of a held node
// holds those of all nodes above it.
void TDOMTree::FreeChildren(TZmDOMNode* Top) {
  ClearLists(Top);
  PutDeclarationsFirst(Top);
  TZmDOMNode* node = Last(Top);
  while (node) {
    auto* const parent = static_cast<TZmDOMNode*>(node->FParent);
    if (node->IsHeld() || Has(node, dfMade)) {
      LetGo(parent, node, true);
    } else if (CanHaveChildren(node) && Last(node) && !(IsDerived(node) && Nested < cMostNested)) {
      node->FFlags |= dfDestroying;
      ClearLists(node);
      PutDeclarationsFirst(node);
      node = Last(node);
      continue;
    } else {
      if (IsDerived(node)) RunBeforeDestruction(node);
      LetGo(parent, node, false);
      Destroy(node);
    }
    node = Last(parent);
    if (!node && parent != Top) node = parent;
  }
  ClearLists(Top);
}

void TDOMTree::ClearLists(TZmDOMNode* Node) {
  for (const TKind kind : {TKind::All, TKind::Elements, TKind::Attributes, TKind::Characters})
    if (TZmDOMNodeListBase* const list = ListIfAny(Node, kind)) list->Forget();
  for (const TKind kind : {TKind::Elements, TKind::Attributes, TKind::Characters})
    if (auto* const gaps = Gaps(ExtraIfAny(Node), kind)) gaps->reset();
}

void TDOMTree::ForgetViews(TZmDOMNode* Node) {
  for (const TKind kind : {TKind::All, TKind::Elements, TKind::Attributes, TKind::Characters})
    if (TZmDOMNodeListBase* const list = ListIfAny(Node, kind); list && list->FKind != TKind::Own) list->Forget();
}

void TDOMTree::ForgetChildren(TZmDOMNode* Node) {
  FirstOf(Node) = nullptr;
  ClearLists(Node);
}

String TDOMTree::EncodingIn(StringView Declaration) {
  const std::size_t word = LowerCase(Declaration).find(u"encoding");
  if (word == String::npos) return {};
  const std::size_t open = Declaration.find(u'"', word);
  if (open == String::npos) return {};
  const std::size_t close = Declaration.find(u'"', open + 1);
  if (close == String::npos) return {};
  return String(Trim(Declaration.substr(open + 1, close - open - 1)));
}

void TDOMTree::Dispose(TZmDOMNode* Node) {
  if (CanHaveChildren(Node) && !(IsDerived(Node) && Nested < cMostNested)) FreeChildren(Node);
  if (IsDerived(Node)) RunBeforeDestruction(Node);
  Destroy(Node);
}

}  // namespace zm::detail
