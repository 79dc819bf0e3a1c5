#include "zamrit/xml/dom/Companions.h"

#include "zamrit/xml/dom/TreeDetail.h"

namespace zm {

TZmDOMObjectImpl* TZmDOMNodeListBase::CreateDOMImpl(TZmDOMObject* Object) { return new TZmDOMNodeListImpl(Object); }
TZmDOMObjectImpl* TZmDOMElementList::CreateDOMImpl(TZmDOMObject* Object) { return new TZmDOMElementListImpl(Object); }
TZmDOMObjectImpl* TZmDOMAttrList::CreateDOMImpl(TZmDOMObject* Object) { return new TZmDOMAttrListImpl(Object); }
TZmDOMObjectImpl* TZmDOMCharacterData::CreateDOMImpl(TZmDOMObject* Object) {
  return new TZmDOMCharacterDataImpl(Object);
}
TZmDOMObjectImpl* TZmDOMText::CreateDOMImpl(TZmDOMObject* Object) { return new TZmDOMTextImpl(Object); }
TZmDOMObjectImpl* TZmDOMCDATA::CreateDOMImpl(TZmDOMObject* Object) { return new TZmDOMCDATAImpl(Object); }
TZmDOMObjectImpl* TZmDOMComment::CreateDOMImpl(TZmDOMObject* Object) { return new TZmDOMCommentImpl(Object); }
TZmDOMObjectImpl* TZmDOMAttribute::CreateDOMImpl(TZmDOMObject* Object) { return new TZmDOMAttributeImpl(Object); }
TZmDOMObjectImpl* TZmDOMProcessingInstruction::CreateDOMImpl(TZmDOMObject* Object) {
  return new TZmDOMProcessingInstructionImpl(Object);
}
TZmDOMObjectImpl* TZmDOMElement::CreateDOMImpl(TZmDOMObject* Object) { return new TZmDOMElementImpl(Object); }
TZmDOMObjectImpl* TZmDOMDocument::CreateDOMImpl(TZmDOMObject* Object) { return new TZmDOMDocumentImpl(Object); }

void TZmDOMObjectImpl::RaiseGone() { throw EZmDomInvalidState(u"The object behind the handle has been freed!"); }

namespace {

template <class I, class T>
TZmIntf<I> NamedNode(const TZmAnyText& Name) {
  const TZmOwner<T> node = Create<T>();
  node->SetQualifiedName(Name);
  return Supports<I>(node.get());
}

template <class I, class T>
TZmIntf<I> TextNode(const TZmAnyText& Text) {
  const TZmOwner<T> node = Create<T>();
  node->SetNodeValue(Text);
  return Supports<I>(node.get());
}

}  // namespace

TZmIntf<IZmDOMElement> TZmDOMDocumentImpl::CreateElement(const TZmAnyText& Name) {
  return NamedNode<IZmDOMElement, TZmDOMElement>(Name);
}
TZmIntf<IZmDOMAttribute> TZmDOMDocumentImpl::CreateAttribute(const TZmAnyText& Name) {
  return NamedNode<IZmDOMAttribute, TZmDOMAttribute>(Name);
}
TZmIntf<IZmDOMText> TZmDOMDocumentImpl::CreateText(const TZmAnyText& Text) {
  return TextNode<IZmDOMText, TZmDOMText>(Text);
}
TZmIntf<IZmDOMCDATA> TZmDOMDocumentImpl::CreateCDATA(const TZmAnyText& Text) {
  return TextNode<IZmDOMCDATA, TZmDOMCDATA>(Text);
}
TZmIntf<IZmDOMComment> TZmDOMDocumentImpl::CreateComment(const TZmAnyText& Text) {
  return TextNode<IZmDOMComment, TZmDOMComment>(Text);
}
TZmIntf<IZmDOMProcessingInstruction> TZmDOMDocumentImpl::CreateProcessingInstruction(const TZmAnyText& Target,
                                                                                     const TZmAnyText& Data) {
  auto node = NamedNode<IZmDOMProcessingInstruction, TZmDOMProcessingInstruction>(Target);
  node->SetData(Data);
  return node;
}

void TZmDOMDocumentImpl::LoadFromStream(TStream*) {
  throw EZmDomNotSupported(
      u"The LoadFromStream is not supported by the DOM Document. Use the LoadFromStreamEx instead.");
}

void TZmDOMDocumentImpl::SaveToStream(TStream*) {
  throw EZmDomNotSupported(u"The SaveToStream is not supported by the DOM Document. Use the SaveToStreamEx instead.");
}

}  // namespace zm
