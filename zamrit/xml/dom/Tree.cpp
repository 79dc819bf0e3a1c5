#include <algorithm>
#include <cstring>
#include <typeinfo>

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
  const TDOMName* const old = std::exchange(named->FName, name);
  if (Has(Node, dfOwnName)) FreeName(old);
  Node->SetFlag(dfOwnName, !borrow);
  if (!borrow) Spoil(document);
  if (Node->GetNodeType() != ntAttribute) return;
  const bool was = Has(Node, dfDeclaration);
  Node->SetFlag(dfDeclaration, name->IsDeclaration);
  if ((was || name->IsDeclaration) && Node->FParent) DeclarationsChanged(static_cast<TZmDOMNode*>(Node->FParent));
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
    if (List.At(Index)->FParent == List.FParent) {
      List.FCursor = Index;
      return List.At(Index);
    }
  return nullptr;
}

TZmDOMNode* TDOMTree::FirstOfKind(const TZmDOMNode* Parent, TKind Kind) {
  if (const TZmDOMNodeListBase* const own = OwnList(Parent, Kind)) return ChildIn(*own, 0, 1);
  TZmDOMNode* node = First(Parent);
  if (Kind == TKind::Attributes && !Has(Parent, dfLateAttributes))
    return node && node->GetNodeType() == ntAttribute ? node : nullptr;
  while (node && !IsOfKind(node, Kind)) node = node->FNext;
  return node;
}

TZmDOMNode* TDOMTree::LastOfKind(const TZmDOMNode* Parent, TKind Kind) {
  if (const TZmDOMNodeListBase* const own = OwnList(Parent, Kind)) return ChildIn(*own, own->Size() - 1, -1);
  if (Kind == TKind::Attributes && !Has(Parent, dfLateAttributes)) {  // few, in front of perhaps many others
    TZmDOMNode* last = nullptr;
    for (TZmDOMNode* node = First(Parent); node && node->GetNodeType() == ntAttribute; node = node->FNext) last = node;
    return last;
  }
  TZmDOMNode* node = Last(Parent);
  while (node && !IsOfKind(node, Kind)) node = Previous(node);
  return node;
}

TZmDOMNode* TDOMTree::NextOfKind(const TZmDOMNode* Node, TKind Kind) {
  const auto* const parent = static_cast<const TZmDOMNode*>(Node->FParent);
  if (!parent) return nullptr;
  if (const TZmDOMNodeListBase* const own = OwnList(parent, Kind)) return ChildIn(*own, own->IndexOf(Node) + 1, 1);
  TZmDOMNode* next = Node->FNext;
  if (Kind == TKind::Attributes && !Has(parent, dfLateAttributes))
    return next && next->GetNodeType() == ntAttribute ? next : nullptr;
  while (next && !IsOfKind(next, Kind)) next = next->FNext;
  return next;
}

TZmDOMNode* TDOMTree::PreviousOfKind(const TZmDOMNode* Node, TKind Kind) {
  const auto* const parent = static_cast<const TZmDOMNode*>(Node->FParent);
  if (!parent) return nullptr;
  if (const TZmDOMNodeListBase* const own = OwnList(parent, Kind)) return ChildIn(*own, own->IndexOf(Node) - 1, -1);
  TZmDOMNode* previous = Previous(Node);
  while (previous && !IsOfKind(previous, Kind)) previous = Previous(previous);
  return previous;
}

void TDOMTree::ChildAdded(TZmDOMNode* Parent, TZmDOMNode* Node, TZmDOMNode* Ref, TZmDOMPosition Position) {
  const TKind kind = KindOf(Node);
  if (Parent->GetNodeType() == ntElement && kind != TKind::All) {
    const bool relative = Ref && (Position == rdpBefore || Position == rdpAfter);
    if (relative && !IsOfKind(Ref, kind) && !OwnList(Parent, kind)) {
      // Next to a node of another kind it goes to an end of its own list. Is that where the chain has it? A long way to
      // the next of the kind is not gone each time: the list departs, and is right in any case.
      TZmDOMNode* beside = Position == rdpBefore ? Previous(Node) : Node->FNext;
      for (int far = 0; beside && !IsOfKind(beside, kind) && far < 64; ++far)
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
  if (!Parent->HasFlag(dfExtra)) return;
  if (TZmDOMNodeListBase* const list = ListIfAny(Parent, TKind::All)) list->NodeLeaves(Node);
  if (KindOf(Node) == TKind::All) return;
  if (TZmDOMNodeListBase* const list = ListIfAny(Parent, KindOf(Node))) list->NodeLeaves(Node);
}

// Life.

bool TDOMTree::IsOwnClass(const TZmDOMObject& Object) {
  const std::type_info& type = typeid(Object);
  for (const std::type_info* const known :
       {&typeid(TZmDOMElement), &typeid(TZmDOMAttribute), &typeid(TZmDOMText), &typeid(TZmDOMCDATA),
        &typeid(TZmDOMComment), &typeid(TZmDOMProcessingInstruction), &typeid(TZmDOMDocument), &typeid(TZmDOMNodeList),
        &typeid(TZmDOMElementList), &typeid(TZmDOMAttrList)})
    if (type == *known) return false;
  return true;
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
  Unlink(Parent, Node);
  if (Parent->GetNodeType() == ntDocument) {
    auto* const document = static_cast<TZmDOMDocument*>(Parent);
    if (document->FRootNode == Node) document->FRootNode = nullptr;
  }
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

// What is held below is a branch of its own from the child on that is reached first: the companion of a held node
// holds those of all nodes above it.
void TDOMTree::FreeChildren(TZmDOMNode* Top) {
  PutDeclarationsFirst(Top);
  TZmDOMNode* node = Last(Top);
  while (node) {
    auto* const parent = static_cast<TZmDOMNode*>(node->FParent);
    if (node->IsHeld() || Has(node, dfMade)) {
      Leave(node);
      try {
        node->SetParentNode(nullptr);
      } catch (...) {
        CutLoose(node);
      }
    } else if (CanHaveChildren(node) && Last(node)) {
      node->FFlags |= dfDestroying;
      PutDeclarationsFirst(node);
      node = Last(node);
      continue;
    } else {
      if (IsDerived(node)) node->BeforeDestruction();
      Unlink(parent, node);
      node->FParent = nullptr;
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
  if (CanHaveChildren(Node)) FreeChildren(Node);
  if (IsDerived(Node)) Node->BeforeDestruction();
  Destroy(Node);
}

}  // namespace zm::detail
