#pragma once

#include "zamrit/platform/AnyText.h"
#include "zamrit/platform/Objects.h"
#include "zamrit/xml/dom/Document.h"
#include "zamrit/xml/dom/Interfaces.h"

namespace zm {

/// \name Quick trees
///@{
/// A document with a root element of that name, or an empty one for an empty name.
TZmOwner<TZmDOMDocument> ZmCreateDOM(const TZmAnyText& RootName = u"", const TZmAnyText& NamespaceURI = u"");
/// The same for a program that lives on handles: the document lasts as long as handles on it or below it.
TZmIntf<IZmDOMDocument> ZmCreateDOMIntf(const TZmAnyText& RootName = u"", const TZmAnyText& NamespaceURI = u"");
/// Adds an element with a text, which may be empty, behind the children of a document or element. The root element of
/// a document that has none, otherwise a further one.
TZmDOMElement* ZmAddElement(TZmDOMNode* Parent, const TZmAnyText& Name, const TZmAnyText& Text = u"");
/// Adds an attribute, or sets the one of that name.
TZmDOMAttribute* ZmAddAttribute(TZmDOMElement* Element, const TZmAnyText& Name, const TZmAnyText& Value);
/// The text of a document, indented. EZmDomSyntax with line and column where it is refused.
String ZmFormatXML(const TZmAnyText& XML);
///@}

}  // namespace zm
