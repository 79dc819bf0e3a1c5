#include "zamrit/xml/dom/Functions.h"

namespace zm {

TZmOwner<TZmDOMDocument> ZmCreateDOM(const TZmAnyText& RootName, const TZmAnyText& NamespaceURI) {
  TZmOwner<TZmDOMDocument> document = Create<TZmDOMDocument>();
  if (!RootName.Text().empty()) document->CreateRootNode(RootName, NamespaceURI);
  return document;
}

TZmIntf<IZmDOMDocument> ZmCreateDOMIntf(const TZmAnyText& RootName, const TZmAnyText& NamespaceURI) {
  return Supports<IZmDOMDocument>(ZmCreateDOM(RootName, NamespaceURI).get());
}

TZmDOMElement* ZmAddElement(TZmDOMNode* Parent, const TZmAnyText& Name, const TZmAnyText& Text) {
  TZmOwner<TZmDOMElement> element = Create<TZmDOMElement>(Name);
  if (!Text.Text().empty()) element->AddText(Text);
  return Parent->AppendChild(std::move(element));
}

TZmDOMAttribute* ZmAddAttribute(TZmDOMElement* Element, const TZmAnyText& Name, const TZmAnyText& Value) {
  TZmDOMAttribute* attribute = Element->FindAttribute(Name, {soQualifiedName});
  if (!attribute) attribute = Element->AddAttribute(Name);
  attribute->SetNodeValue(Value);
  return attribute;
}

String ZmFormatXML(const TZmAnyText& XML) {
  const TZmOwner<TZmDOMDocument> document = Create<TZmDOMDocument>();
  document->LoadFromXML(StringView(XML.Text()));
  return document->GetFormattedXML();
}

}  // namespace zm
