#include "zamrit/xml/dom/Node.h"

#include "zamrit/common/TextStreams.h"
#include "zamrit/xml/dom/TreeDetail.h"

namespace zm {

using detail::TDOMTree;

TZmDOMNode::~TZmDOMNode() {
  detail::TDOMWatch::NodeGone(this);
  TDOMTree::DropExtra(this);
  if (HasFlag(detail::dfHeapText)) delete[] FText;
}

detail::TDOMNamedNode::~TDOMNamedNode() {
  if (HasFlag(dfOwnName)) TDOMTree::FreeName(FName);
}

StringView TZmDOMNode::GetLocalName() const { return TDOMTree::Name(this).LocalName; }
StringView TZmDOMNode::GetPrefix() const { return TDOMTree::Name(this).Prefix; }
StringView TZmDOMNode::GetQualifiedName() const { return TDOMTree::Name(this).QName; }

void TZmDOMNode::SetLocalName(const TZmAnyText& Name) { TDOMTree::SetName(this, String(GetPrefix()), Name.Text()); }

void TZmDOMNode::SetPrefix(const TZmAnyText& Prefix) { TDOMTree::SetName(this, Prefix.Text(), String(GetLocalName())); }

void TZmDOMNode::SetQualifiedName(const TZmAnyText& Name) {
  const String name = Name.Text();
  const std::size_t colon = name.find(u':');
  if (colon == String::npos)
    TDOMTree::SetName(this, {}, name);
  else
    TDOMTree::SetName(this, StringView(name).substr(0, colon), StringView(name).substr(colon + 1));
}

TZmDOMDocument* TZmDOMNode::GetDOMDocument() const { return FParent ? FParent->GetDOMDocument() : nullptr; }

TZmDOMObjectImpl* TZmDOMNode::GetDOMImpl() const {
  const detail::TDOMExtra* const extra = TDOMTree::ExtraIfAny(this);
  return extra ? extra->Impl : nullptr;
}

void TZmDOMNode::SetDOMImpl(TZmDOMObjectImpl* Impl) {
  if (Impl || HasFlag(detail::dfExtra)) TDOMTree::Extra(this).Impl = Impl;
}

TZmDOMNodeList& TZmDOMNode::ChildNodes() {
  return static_cast<TZmDOMNodeList&>(TDOMTree::List(this, TDOMTree::TKind::All));
}

TZmDOMNode* TZmDOMNode::FirstChild() const {
  return TDOMTree::CanHaveChildren(this) ? TDOMTree::FirstOfKind(this, TDOMTree::TKind::All) : nullptr;
}
TZmDOMNode* TZmDOMNode::LastChild() const {
  return TDOMTree::CanHaveChildren(this) ? TDOMTree::LastOfKind(this, TDOMTree::TKind::All) : nullptr;
}
TZmDOMNode* TZmDOMNode::NextSibling() const { return TDOMTree::NextOfKind(this, TDOMTree::TKind::All); }
TZmDOMNode* TZmDOMNode::PreviousSibling() const { return TDOMTree::PreviousOfKind(this, TDOMTree::TKind::All); }

TZmDOMLoadState TZmDOMNode::GetLoadState() const {
  if (GetNodeType() == ntDocument)
    return TDOMTree::LoadState(const_cast<TZmDOMDocument*>(static_cast<const TZmDOMDocument*>(this)));
  const detail::TDOMExtra* const extra = TDOMTree::ExtraIfAny(this);
  return extra ? extra->LoadState : lsUninitialized;
}
void TZmDOMNode::SetLoadState(TZmDOMLoadState State) {
  if (GetNodeType() == ntDocument)
    TDOMTree::LoadState(static_cast<TZmDOMDocument*>(this)) = State;
  else if (State != GetLoadState())
    TDOMTree::Extra(this).LoadState = State;
}

namespace {

const TZmDOMParseError& NoEvent() {
  static const TZmDOMParseError none;
  return none;
}

}  // namespace

const TZmDOMParseError& TZmDOMNode::GetOnParseWarning() const {
  return HasFlag(detail::dfExtra) ? FExtra->OnParseWarning : NoEvent();
}
const TZmDOMParseError& TZmDOMNode::GetOnParseError() const {
  return HasFlag(detail::dfExtra) ? FExtra->OnParseError : NoEvent();
}
const TZmDOMParseError& TZmDOMNode::GetOnParseFatalError() const {
  return HasFlag(detail::dfExtra) ? FExtra->OnParseFatalError : NoEvent();
}
void TZmDOMNode::SetOnParseWarning(TZmDOMParseError Event) { TDOMTree::Extra(this).OnParseWarning = std::move(Event); }
void TZmDOMNode::SetOnParseError(TZmDOMParseError Event) { TDOMTree::Extra(this).OnParseError = std::move(Event); }
void TZmDOMNode::SetOnParseFatalError(TZmDOMParseError Event) {
  TDOMTree::Extra(this).OnParseFatalError = std::move(Event);
}
void TZmDOMNode::DoDOMParseWarning(IZmSAXLocator* Locator, StringView Message, bool& Handled) {
  if (GetOnParseWarning()) GetOnParseWarning()(Locator, Message, Handled);
}
void TZmDOMNode::DoDOMParseError(IZmSAXLocator* Locator, StringView Message, bool& Handled) {
  if (GetOnParseError()) GetOnParseError()(Locator, Message, Handled);
}
void TZmDOMNode::DoDOMParseFatalError(IZmSAXLocator* Locator, StringView Message, bool& Handled) {
  if (GetOnParseFatalError()) GetOnParseFatalError()(Locator, Message, Handled);
}

bool TZmDOMNode::GetPreserveSpace() const { return FParent ? ParentNode()->GetPreserveSpace() : DefaultPreserveCase; }
String TZmDOMNode::GetNodeValue() const { return {}; }
String TZmDOMNode::GetText() const { return {}; }
String TZmDOMNode::GetNamespaceURI() const { return TDOMTree::HeldURI(this); }
String TZmDOMNode::GetInnerXML() const { return {}; }
String TZmDOMNode::GetFormattedInnerXML() const { return {}; }
void TZmDOMNode::SetNodeValue(const TZmAnyText&) {
  throw EZmDomNotSupported(u"The SetNodeValue is not supported by the TZmDomNode");
}
void TZmDOMNode::SetInnerXML(const TZmAnyText&) {
  throw EZmDomNotSupported(u"The SetInnerXML is not supported by the TZmDomNode");
}
void TZmDOMNode::RefreshNamespaces() { TDOMTree::RefreshBelow(this); }
void TZmDOMNode::NormalizeTextNodes() {}

void TZmDOMNode::SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted) {
  int level = -1;
  _SaveToStream(Stream, CodePage, Formatted, level);
}

void TZmDOMNode::SaveToJSONStream(TStream* Stream, std::uint16_t CodePage, bool Formatted) {
  int level = -1;
  _SaveToJSONStream(Stream, CodePage, Formatted, level);
}

void TZmDOMNode::Clear() {
  if (!TDOMTree::CanHaveChildren(this)) return;
  const detail::TDOMKeep keep(this);
  if (TDOMTree::IsDerived(this) && !IsDestroying()) {  // it may watch its children go
    while (TZmDOMNode* const last = LastChild()) RemoveChild(last);
    return;
  }
  const bool declares = HasFlag(detail::dfDeclares) && !IsDestroying();
  if (declares) TDOMTree::CutLinkToOwn(static_cast<TZmDOMElement*>(this));
  TDOMTree::FreeChildren(this);
  if (declares) TDOMTree::DeclarationsChanged(this);
}

TZmDOMNode* TZmDOMNode::AddChild(const TZmDOMNodeClass& NodeClass, TZmDOMNode* Ref, TZmDOMPosition Position) {
  TZmOwner<TZmDOMNode> node = NodeClass.Create();
  TZmDOMNode* const added = node.get();
  AddChild(added, Ref, Position);
  node.reset();
  return added;
}

void TZmDOMNode::AddChild(TZmDOMNode* Node, TZmDOMNode* Ref, TZmDOMPosition Position) {
  Assert(Node != nullptr, u"Assertion failure (xml/uZmXMLDOM)");
  if (!TDOMTree::CanHaveChildren(this) || Node->GetNodeType() == ntDocument)
    throw EZmDomHierarchyRequest(u"A node of the type %s cannot have a child of the type %s!",
                                 {ZmDOMNodeTypes[GetNodeType()], ZmDOMNodeTypes[Node->GetNodeType()]});
  if (Node == this) throw EZmDomHierarchyRequest(u"A node cannot be moved below itself!");
  const bool mayBeAbove =
      TDOMTree::CanHaveChildren(Node) &&
      (Node->HasFlag(detail::dfOwnLists) || TDOMTree::FirstOfKind(Node, TDOMTree::TKind::Elements) != nullptr);
  if (mayBeAbove && (Node->FParent || !GetDOMDocument()))  // else it is not above what is in a document
    for (const TZmDOMObject* above = FParent; above; above = above->GetParent())
      if (above == Node) throw EZmDomHierarchyRequest(u"A node cannot be moved below itself!");
  if (Ref == Node) Ref = nullptr;
  TZmDOMNode* const from = Node->ParentNode();
  const bool declaration = Node->HasFlag(detail::dfDeclaration);
  const detail::TDOMKeep keep(from ? from : Node);  // Node may be all that holds what it leaves, and Ref stand there
  TDOMTree::Leave(Node);
  if (declaration && from && from != this) {
    Node->FParent = nullptr;  // for the time in which those who were linked to it seek another
    try {
      TDOMTree::DeclarationLeft(from, Node);
    } catch (...) {
      TDOMTree::CutLinksTo(Node, from);
    }
    Node->FParent = from;
  }
  try {
    Node->SetParentNode(this);
    TZmDOMNode* before = nullptr;
    const bool known = Ref && Ref->FParent == this && TDOMTree::Has(Ref, detail::dfLinked);
    if (Position == rdpFirst || (Position == rdpBefore && !known))
      before = TDOMTree::First(this);
    else if (Position == rdpBefore)
      before = Ref;
    else if (Position == rdpAfter && known)
      before = Ref->FNext;
    TDOMTree::Link(this, Node, before);
    TDOMTree::ChildAdded(this, Node, Ref, Position);
    if (TDOMTree::IsDerived(Node)) SetFlag(detail::dfHasDerived);
    if (GetNodeType() == ntDocument && Node->FNext) TDOMTree::Rescan(static_cast<TZmDOMDocument*>(this));
    if (declaration && from == this)
      TDOMTree::DeclarationsChanged(this);
    else if (declaration)
      TDOMTree::DeclarationCame(this, Node);
  } catch (...) {
    if (declaration) TDOMTree::CutLinksTo(Node, this);
    TDOMTree::ForgetViews(this);
    TDOMTree::Leave(Node);
    TDOMTree::CutLoose(Node);
    if (from && !Node->IsHeld() && !Node->HasFlag(detail::dfMade)) TDOMTree::Dispose(Node);
    throw;
  }
}

void TZmDOMNode::RemoveChild(TZmDOMNode* Node) {
  Assert(Node != nullptr && Node->FParent == this, u"Assertion failure (xml/uZmXMLDOM)");
  const bool declaration = Node->HasFlag(detail::dfDeclaration);
  const bool held = Node->IsHeld() || Node->HasFlag(detail::dfMade);
  const detail::TDOMKeep keep(this);
  if (held || TDOMTree::IsDerived(Node)) TDOMTree::MakeLoose(Node);
  Node->FParent = nullptr;
  TDOMTree::LeaveFrom(this, Node);
  const auto dispose = [&] {
    if (!held && Node->CanAutoDestroy()) TDOMTree::Dispose(Node);
  };
  try {
    if (declaration) TDOMTree::DeclarationLeft(this, Node);
  } catch (...) {
    TDOMTree::CutLinksTo(Node, this);
    dispose();
    throw;
  }
  dispose();
}

void TZmDOMNode::AppendChild(TZmDOMNode* Node) { AddChild(Node, nullptr, rdpLast); }

TZmOwner<TZmDOMNode> TZmDOMNode::CloneNode(bool Deep) const {
  TZmOwner<TZmDOMNode> clone = CreateClone();
  if (!TDOMTree::CanHaveChildren(this)) return clone;
  TDOMTree::TCopies declarations;
  TZmDOMNode* to = clone.get();
  for (const TZmDOMNode* node = FirstChild(); node;) {
    if (!Deep && node->GetNodeType() != ntAttribute) {
      node = node->NextSibling();
      continue;
    }
    TZmOwner<TZmDOMNode> copy = node->CreateClone();
    TZmDOMNode* const added = copy.get();
    TDOMTree::CopyNamespace(node, added, declarations);
    to->AppendChild(std::move(copy));
    TDOMTree::LinkCopy(node, added, declarations);
    if (const TZmDOMNode* const first = node->FirstChild()) {
      node = first;
      to = added;
      continue;
    }
    while (node != this && !node->NextSibling()) {
      node = node->ParentNode();
      if (node != this) to = to->ParentNode();
    }
    node = node == this ? nullptr : node->NextSibling();
  }
  return clone;
}

void TZmDOMNode::SetDOMDocument(TZmDOMDocument* Document) { TDOMTree::EnterDocument(this, Document); }

void TZmDOMNode::SetParentNode(TZmDOMObject* Parent) {
  const detail::TDOMKeep keep(FParent ? FParent : this);  // a handle below may be all that holds the tree that is left
  const bool leaves = FParent && FParent != Parent;
  TZmDOMDocument* const old = GetDOMDocument();
  TZmDOMDocument* const next = Parent ? Parent->GetDOMDocument() : nullptr;
  if (!IsDestroying() && old && old != next) TDOMTree::LeaveDocument(this, old);
  TZmDOMObject::SetParentNode(Parent);
  if (IsDestroying()) return;
  if (old != next || (!next && leaves)) SetDOMDocument(next);
  if (!next) return;
  TDOMTree::Spoil(next);
  if (GetNodeType() == ntElement || (TDOMTree::IsDerived(this) && TDOMTree::LoadState(next) != lsLoading))
    RefreshNamespaces();
}

bool TZmDOMNode::CanAutoDestroy() const { return !IsHeld() && TZmDOMObject::CanAutoDestroy(); }

void TZmDOMNode::BeforeDestruction() {
  const detail::TDOMKeep keep(FParent ? FParent : this);  // handles below may be all that holds the tree
  SetFlag(detail::dfDestroying);
  Clear();
  if (FParent) {
    if (FParent->IsDestroying() && !TDOMTree::IsDerived(FParent)) {
      TDOMTree::Leave(this);
      FParent = nullptr;
    } else {
      ParentNode()->RemoveChild(this);
    }
  }
  TZmDOMObject::BeforeDestruction();
}

}  // namespace zm
