#include "zamrit/xml/dom/CharacterData.h"

#include "zamrit/xml/dom/Attribute.h"
#include "zamrit/xml/dom/TreeDetail.h"
#include "zamrit/xml/values/Escaping.h"

namespace zm {

using detail::TDOMTree;

String TZmDOMCharacterData::GetNodeValue() const {
  return GetNodeType() == ntText ? TDOMTree::Decoded(this) : TDOMTree::Text(this);
}

void TZmDOMCharacterData::SetNodeValue(const TZmAnyText& Value) {
  if (GetNodeType() == ntText)
    TDOMTree::SetText(this, ZmStrToXML(StringView(Value.Text()), true, true));
  else
    TDOMTree::SetText(this, Value.Text());
}

TZmOwner<TZmDOMNode> TZmDOMCharacterData::CreateClone() const {
  TZmOwner<TZmDOMNode> clone;
  if (GetNodeType() == ntComment)
    clone = Create<TZmDOMComment>();
  else if (GetNodeType() == ntCDATA)
    clone = Create<TZmDOMCDATA>();
  else
    clone = Create<TZmDOMText>();
  TDOMTree::SetRawText(clone.get(), TDOMTree::RawText(this), HasFlag(detail::dfSurrogates));
  return clone;
}

TZmDOMAttribute* TZmDOMAttribute::GetNamespace() const {
  const TZmDOMElement* const element = OwnerElement();
  if (!element) return nullptr;
  return TDOMTree::FindPrefix(TDOMTree::ScopeOf(ParentNode()), GetPrefix());
}

TZmDOMElement* TZmDOMAttribute::OwnerElement() const {
  TZmDOMNode* const parent = ParentNode();
  return parent && parent->GetNodeType() == ntElement ? static_cast<TZmDOMElement*>(parent) : nullptr;
}

TZmDOMAttribute* TZmDOMAttribute::NextAttribute() const {
  return static_cast<TZmDOMAttribute*>(TDOMTree::NextOfKind(this, TDOMTree::TKind::Attributes));
}

String TZmDOMAttribute::GetNodeValue() const { return TDOMTree::Decoded(this); }

String TZmDOMAttribute::GetNamespaceURI() const {
  const TZmDOMAttribute* const declaration = GetNamespace();
  return declaration ? declaration->GetNodeValue() : TDOMTree::HeldURI(this);
}

void TZmDOMAttribute::SetNodeValue(const TZmAnyText& Value) {
  TDOMTree::SetText(this, ZmStrToXML(StringView(Value.Text()), false, true));
}

TZmOwner<TZmDOMNode> TZmDOMAttribute::CreateClone() const {
  TZmOwner<TZmDOMNode> clone = Create<TZmDOMAttribute>();
  TDOMTree::SetName(clone.get(), GetPrefix(), GetLocalName());
  TDOMTree::SetRawText(clone.get(), TDOMTree::RawText(this), HasFlag(detail::dfSurrogates));
  return clone;
}

String TZmDOMProcessingInstruction::GetData() const { return TDOMTree::Text(this); }
void TZmDOMProcessingInstruction::SetData(const TZmAnyText& Data) { TDOMTree::SetText(this, Data.Text()); }

TZmOwner<TZmDOMNode> TZmDOMProcessingInstruction::CreateClone() const {
  TZmOwner<TZmDOMNode> clone = Create<TZmDOMProcessingInstruction>();
  TDOMTree::SetName(clone.get(), GetPrefix(), GetLocalName());
  TDOMTree::SetRawText(clone.get(), TDOMTree::RawText(this), HasFlag(detail::dfSurrogates));
  return clone;
}

}  // namespace zm
