#include "zamrit/xml/dom/Element.h"

#include "zamrit/common/TextStreams.h"
#include "zamrit/platform/ScopeDetail.h"
#include "zamrit/xml/dom/TreeDetail.h"

namespace zm {

using detail::TDOMTree;
using TKind = TDOMTree::TKind;

namespace {

TZmDOMElement* AsElement(TZmDOMNode* Node) { return static_cast<TZmDOMElement*>(Node); }
TZmDOMAttribute* AsAttribute(TZmDOMNode* Node) { return static_cast<TZmDOMAttribute*>(Node); }

}  // namespace

TZmDOMElement::TZmDOMElement(const TZmAnyText& Name) : TZmDOMElement() { TZmDOMNode::SetQualifiedName(Name); }

TZmDOMElement::~TZmDOMElement() { TDOMTree::DropScope(this); }

TZmDOMDocument* TZmDOMElement::GetDOMDocument() const { return FScope ? FScope->Document : nullptr; }

TZmDOMAttrList& TZmDOMElement::Attributes() {
  return static_cast<TZmDOMAttrList&>(TDOMTree::List(this, TKind::Attributes));
}
TZmDOMElementList& TZmDOMElement::Elements() {
  return static_cast<TZmDOMElementList&>(TDOMTree::List(this, TKind::Elements));
}
TZmDOMNodeList& TZmDOMElement::CharNodes() {
  return static_cast<TZmDOMNodeList&>(TDOMTree::List(this, TKind::Characters));
}
TZmDOMAttrList& TZmDOMElement::Namespaces() {
  return static_cast<TZmDOMAttrList&>(TDOMTree::List(this, TKind::Namespaces));
}

int TZmDOMElement::ElementCount() const {
  int count = 0;
  for (TZmDOMElement* e = FirstElement(); e; e = e->NextElement()) ++count;
  return count;
}
int TZmDOMElement::AttributeCount() const {
  int count = 0;
  for (TZmDOMAttribute* a = FirstAttribute(); a; a = a->NextAttribute()) ++count;
  return count;
}
bool TZmDOMElement::HasAttribute(const TZmAnyText& Name, TZmDOMSelectOptions Options) {
  return FindAttribute(Name, Options) != nullptr;
}
bool TZmDOMElement::HasChildElement(const TZmAnyText& Name, TZmDOMSelectOptions Options) {
  return FindElement(Name, Options) != nullptr;
}
TZmDOMElement* TZmDOMElement::FirstElement() const { return AsElement(TDOMTree::FirstOfKind(this, TKind::Elements)); }
TZmDOMElement* TZmDOMElement::LastElement() const { return AsElement(TDOMTree::LastOfKind(this, TKind::Elements)); }
TZmDOMElement* TZmDOMElement::NextElement() const { return AsElement(TDOMTree::NextOfKind(this, TKind::Elements)); }
TZmDOMElement* TZmDOMElement::PreviousElement() const {
  return AsElement(TDOMTree::PreviousOfKind(this, TKind::Elements));
}
TZmDOMElement* TZmDOMElement::ParentElement() const {
  TZmDOMNode* const parent = ParentNode();
  return parent && parent->GetNodeType() == ntElement ? AsElement(parent) : nullptr;
}
TZmDOMAttribute* TZmDOMElement::FirstAttribute() const {
  return AsAttribute(TDOMTree::FirstOfKind(this, TKind::Attributes));
}
TZmDOMAttribute* TZmDOMElement::LastAttribute() const {
  return AsAttribute(TDOMTree::LastOfKind(this, TKind::Attributes));
}
TZmDOMAttribute* TZmDOMElement::FindNamespace(const TZmAnyText& URI) {
  return TDOMTree::FindNamespaceURI(this, URI.Text());
}

namespace {

template <class T>
T* Added(TZmDOMElement& To, TZmOwner<T> Node, TZmDOMPosition Position, TZmDOMNode* Ref) {
  T* const node = Node.get();
  To.AddChild(node, Ref, Position);
  Node.reset();
  return node;
}

template <class T>
T* AddedText(TZmDOMElement& To, const TZmAnyText& Text, TZmDOMPosition Position, TZmDOMNode* Ref) {
  TZmOwner<T> node = Create<T>();
  node->SetNodeValue(Text);
  return Added(To, std::move(node), Position, Ref);
}

}  // namespace

TZmDOMText* TZmDOMElement::AddText(const TZmAnyText& Text) { return InsertText(Text, rdpLast); }
TZmDOMCDATA* TZmDOMElement::AddCDATA(const TZmAnyText& Text) { return InsertCDATA(Text, rdpLast); }
TZmDOMComment* TZmDOMElement::AddComment(const TZmAnyText& Text) { return InsertComment(Text, rdpLast); }
TZmDOMElement* TZmDOMElement::AddElement(const TZmAnyText& Name) { return InsertElement(Name, rdpLast); }
TZmDOMText* TZmDOMElement::InsertText(const TZmAnyText& Text, TZmDOMPosition Position, TZmDOMNode* Ref) {
  return AddedText<TZmDOMText>(*this, Text, Position, Ref);
}
TZmDOMCDATA* TZmDOMElement::InsertCDATA(const TZmAnyText& Text, TZmDOMPosition Position, TZmDOMNode* Ref) {
  return AddedText<TZmDOMCDATA>(*this, Text, Position, Ref);
}
TZmDOMComment* TZmDOMElement::InsertComment(const TZmAnyText& Text, TZmDOMPosition Position, TZmDOMNode* Ref) {
  return AddedText<TZmDOMComment>(*this, Text, Position, Ref);
}
TZmDOMElement* TZmDOMElement::InsertElement(const TZmAnyText& Name, TZmDOMPosition Position, TZmDOMNode* Ref) {
  return Added(*this, Create<TZmDOMElement>(Name), Position, Ref);
}

TZmDOMElement* TZmDOMElement::AddElement(const TZmAnyText& NamespaceURI, const TZmAnyText& Name) {
  TZmOwner<TZmDOMElement> element = Create<TZmDOMElement>(Name);
  element->SetNamespaceURI(NamespaceURI);
  return Added(*this, std::move(element), rdpLast, nullptr);
}

TZmDOMAttribute* TZmDOMElement::AddAttribute(const TZmAnyText& Name) {
  TZmOwner<TZmDOMAttribute> attribute = Create<TZmDOMAttribute>();
  attribute->SetQualifiedName(Name);
  return Added(*this, std::move(attribute), rdpLast, nullptr);
}

TZmDOMAttribute* TZmDOMElement::AddAttribute(const TZmAnyText& NamespaceURI, const TZmAnyText& Name) {
  TZmDOMAttribute* const attribute = AddAttribute(Name);
  const String uri = NamespaceURI.Text();
  if (attribute->GetNamespaceURI() == uri || uri.empty()) return attribute;
  String prefix(attribute->GetPrefix());
  const TZmDOMAttribute* const known = TDOMTree::FindNamespaceURI(this, uri);
  if (prefix.empty() && known && !known->GetPrefix().empty())
    attribute->SetPrefix(known->GetLocalName());
  else
    AttributeByName(prefix.empty() ? String(u"xmlns") : u"xmlns:" + prefix, {soCreate, soQualifiedName})
        ->SetNodeValue(uri);
  return attribute;
}

String TZmDOMElement::GetAttribute(const TZmAnyText& Name) {
  const TZmDOMAttribute* const attribute = FindAttribute(Name);
  return attribute ? attribute->GetNodeValue() : String();
}

String TZmDOMElement::GetAttributeNS(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName) {
  const TZmDOMAttribute* const attribute = FindAttribute(NamespaceURI, LocalName);
  return attribute ? attribute->GetNodeValue() : String();
}

void TZmDOMElement::SetAttribute(const TZmAnyText& Name, const TZmAnyText& Value) {
  TZmDOMAttribute* attribute = FindAttribute(Name);
  if (!attribute) attribute = AddAttribute(Name);
  attribute->SetNodeValue(Value);
}

void TZmDOMElement::SetAttributeNS(const TZmAnyText& NamespaceURI, const TZmAnyText& QualifiedName,
                                   const TZmAnyText& Value) {
  AttributeByName(NamespaceURI, QualifiedName, true)->SetNodeValue(Value);
}

int TZmDOMElement::GetCDATACount() const {
  int count = 0;
  for (const TZmDOMNode* n = TDOMTree::FirstOfKind(this, TKind::Characters); n;
       n = TDOMTree::NextOfKind(n, TKind::Characters))
    count += n->GetNodeType() == ntCDATA;
  return count;
}

String TZmDOMElement::GetCDATA(int Index) const {
  int left = Index;
  for (const TZmDOMNode* n = TDOMTree::FirstOfKind(this, TKind::Characters); n;
       n = TDOMTree::NextOfKind(n, TKind::Characters))
    if (n->GetNodeType() == ntCDATA && left-- == 0) return n->GetNodeValue();
  throw EZmDomNotFound(u"There is no CDATA element with index %d!", {Index});
}

String TZmDOMElement::GetChildElementValue(const Variant& Index) {
  TZmDOMElement* const child = Elements().GetItemEx(Index, coReturnNil);
  return child ? child->GetText() : String();
}

void TZmDOMElement::SetNamespaceURI(const TZmAnyText& URI) {
  const String uri = URI.Text();
  if (!FParent) {
    TDOMTree::HoldURI(this, uri);
    SetFlag(detail::dfNamespaceSet);
    return;
  }
  TZmDOMAttribute* const found = TDOMTree::FindNamespaceURI(this, uri);
  const bool prefixed = !GetPrefix().empty();
  if (found ? prefixed == found->GetPrefix().empty() : HasFlag(detail::dfNamespaceSet)) {
    DeclareNamespace(uri);
    if (FScope) TDOMTree::Relink(this);
  } else if (found) {
    FNamespace = found;
  }
}

void TZmDOMElement::DeclareNamespace(StringView URI) {
  const String name = GetPrefix().empty() ? String(u"xmlns") : u"xmlns:" + String(GetPrefix());
  TZmDOMAttribute* declaration = FindAttribute(name, {soQualifiedName});
  if (!declaration) declaration = AddAttribute(name);
  declaration->SetNodeValue(URI);
  FNamespace = declaration;
  TDOMTree::HoldURI(this, {});
  SetFlag(detail::dfNamespaceSet, false);
}

String TZmDOMElement::GetNamespaceURI() const {
  if (FNamespace) return FNamespace->GetNodeValue();
  return FParent && !TDOMTree::IsKept(this) ? String() : TDOMTree::HeldURI(this);
}

void TZmDOMElement::SetPrefix(const TZmAnyText& Prefix) {
  TZmDOMNode::SetPrefix(Prefix);
  if (FScope) FNamespace = TDOMTree::FindPrefix(FScope, GetPrefix());
}

void TZmDOMElement::SetQualifiedName(const TZmAnyText& Name) {
  TZmDOMNode::SetQualifiedName(Name);
  if (FScope) FNamespace = TDOMTree::FindPrefix(FScope, GetPrefix());
}

void TZmDOMElement::RefreshNamespaces() {
  TDOMTree::RefreshElement(this);
  TDOMTree::RefreshBelow(this);
}

void TZmDOMElement::SetDOMDocument(TZmDOMDocument* Document) { TDOMTree::EnterDocument(this, Document); }

void TZmDOMElement::SetParentNode(TZmDOMObject* Parent) {
  const TZmDOMObject* const from = FParent;
  if (!IsDestroying()) {
    if (FNamespace || (FParent && FParent != Parent)) {
      TDOMTree::HoldURI(this, GetNamespaceURI());
      SetFlag(detail::dfNamespaceSet);
    }
  }
  {
    SetFlag(detail::dfMoving);
    const detail::TFinally moved([this] { SetFlag(detail::dfMoving, false); });
    TZmDOMNode::SetParentNode(Parent);
  }
  if (IsDestroying()) return;
  if (Parent && Parent != from) {
    const String uri = TDOMTree::HeldURI(this);
    if (!uri.empty()) SetNamespaceURI(uri);
  }
  bool preserve;
  if (const TZmDOMAttribute* const space = FindAttribute(u"xml:space", {soQualifiedName}))
    preserve = SameText(space->GetNodeValue(), u"preserve");
  else
    preserve = ParentElement() ? ParentElement()->GetPreserveSpace() : DefaultPreserveCase;
  if (preserve != GetPreserveSpace()) _SetPreseveSpace(preserve);
}

void TZmDOMElement::_SetPreseveSpace(bool Value) {
  SetFlag(detail::dfPreserveSpace, Value);
  for (TZmDOMNode* node = TDOMTree::Following(this, this); node;) {
    bool own = false;
    if (node->GetNodeType() == ntElement) {
      auto* const element = static_cast<TZmDOMElement*>(node);
      own = element->HasAttributes() && element->HasAttribute(u"xml:space", {soQualifiedName});
      if (!own) element->SetFlag(detail::dfPreserveSpace, Value);
    }
    node = TDOMTree::Following(node, this, !own);
  }
}

void TZmDOMElement::SetPreseveSpace(bool Value) {
  TZmDOMAttribute* space = FindAttribute(u"xml:space", {soQualifiedName});
  if (!space) space = AddAttribute(u"xml:space");
  space->SetNodeValue(Value ? u"preserve" : u"default");
  _SetPreseveSpace(Value);
}

void TZmDOMElement::AddChild(TZmDOMNode* Node, TZmDOMNode* Ref, TZmDOMPosition Position) {
  TZmDOMNode::AddChild(Node, Ref, Position);
}

void TZmDOMElement::RemoveChild(TZmDOMNode* Node) {
  if (!Node) return;
  Assert(Node->GetParent() == this, u"The specified ChildNode is not a child of this element!");
  TZmDOMNode::RemoveChild(Node);
}

String TZmDOMElement::GetNodeValue() const {
  String text;
  for (const TZmDOMNode* n = TDOMTree::FirstOfKind(this, TKind::Characters); n;
       n = TDOMTree::NextOfKind(n, TKind::Characters))
    text += n->GetNodeValue();
  return text;
}

// Elements in front of those behind: its own texts first, then each child's in turn.
String TZmDOMElement::GetText() const {
  String text = GetNodeValue();
  for (const TZmDOMElement* element = FirstElement(); element;) {
    if (TDOMTree::IsDerived(element)) {
      text += element->GetText();
    } else {
      text += element->TZmDOMElement::GetNodeValue();
      if (const TZmDOMElement* const first = element->FirstElement()) {
        element = first;
        continue;
      }
    }
    while (element != this && !element->NextElement()) element = element->ParentElement();
    element = element == this ? nullptr : element->NextElement();
  }
  return text;
}

void TZmDOMElement::SetNodeValue(const TZmAnyText& Value) { SetNodeValueEx(Value, false); }

void TZmDOMElement::SetNodeValueEx(const TZmAnyText& Value, bool AsCDATA) {
  const String text = Value.Text();
  const detail::TDOMKeep keep(this);
  for (TZmDOMNode *node = TDOMTree::LastOfKind(this, TKind::Characters), *previous; node; node = previous) {
    previous = TDOMTree::PreviousOfKind(node, TKind::Characters);
    RemoveChild(node);
  }
  if (text.empty()) return;
  if (AsCDATA)
    AddCDATA(text);
  else
    AddText(text);
}

namespace {

void RemoveContent(TZmDOMElement& Element) {
  for (TZmDOMNode* node = Element.LastChild(); node;) {
    TZmDOMNode* const previous = node->PreviousSibling();
    if (node->GetNodeType() != ntAttribute) Element.RemoveChild(node);
    node = previous;
  }
}

}  // namespace

// Read between tags, as it may begin and end with text.
void TZmDOMElement::SetInnerXML(const TZmAnyText& XML) {
  const StringView start = u"<x>", end = u"</x>";
  const String xml = XML.Text();
  const detail::TDOMKeep keep(this);
  RemoveContent(*this);
  if (xml.empty()) return;
  const auto stream = Create<TZmStringStream>(String(start).append(xml).append(end));
  const auto removeTags = [this] {
    TZmDOMElement* const tags = LastElement();
    if (!tags) return;
    while (TZmDOMNode* const node = tags->FirstChild()) AppendChild(node);
    RemoveChild(tags);
  };
  try {
    Load(stream.get(), cZmPageUTF16, static_cast<int>(start.size()));
  } catch (...) {
    removeTags();
    throw;
  }
  removeTags();
}

void TZmDOMElement::SetNodeValueEx(const TZmAnyText& Value) {
  const String text = Value.Text();
  const detail::TDOMKeep keep(this);
  RemoveContent(*this);
  if (!text.empty()) AddText(text);
}

void TZmDOMElement::NormalizeTextNodes() {
  const detail::TDOMKeep keep(this);
  for (TZmDOMNode* node = TDOMTree::Following(this, this); node;) {
    TZmDOMNode* next = TDOMTree::Following(node, this);
    if (node->GetNodeType() == ntText) {
      std::string joined(TDOMTree::RawText(node));
      bool lone = TDOMTree::Has(node, detail::dfSurrogates);
      const std::size_t alone = joined.size();
      while (TDOMTree::Next(node) && TDOMTree::Next(node)->GetNodeType() == ntText) {
        TZmDOMNode* const behind = TDOMTree::Next(node);
        joined += TDOMTree::RawText(behind);
        lone |= TDOMTree::Has(behind, detail::dfSurrogates);
        behind->ParentNode()->RemoveChild(behind);
      }
      if (joined.size() != alone) TDOMTree::SetRawText(node, joined, lone);
      next = TDOMTree::Following(node, this);
      if (joined.empty()) node->ParentNode()->RemoveChild(node);
    }
    node = next;
  }
}

TZmOwner<TZmDOMNode> TZmDOMElement::CreateClone() const {
  TZmOwner<TZmDOMElement> clone = Create<TZmDOMElement>();
  TDOMTree::SetName(clone.get(), GetPrefix(), GetLocalName());
  const String uri = GetNamespaceURI();
  if (!uri.empty()) clone->SetNamespaceURI(uri);
  clone->SetFlag(detail::dfPreserveSpace, GetPreserveSpace());
  return clone;
}

}  // namespace zm
