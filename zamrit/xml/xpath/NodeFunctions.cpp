#include <algorithm>

#include "zamrit/common/Logger.h"
#include "zamrit/xml/dom/Document.h"
#include "zamrit/xml/xpath/FunctionLibrary.h"
#include "zamrit/xml/xpath/ParsingDetail.h"

namespace zm {

namespace {

TZmDOMNode& Required(TZmDOMNode* Node, StringView Complaint) {
  if (!Node) throw EZmXPathException(u"XPTY0004", Complaint);
  return *Node;
}

bool IsDeclaration(const TZmDOMNode& Node) {
  return Node.GetNodeType() == ntAttribute && static_cast<const TZmDOMAttribute&>(Node).IsNamespace();
}

String DocumentURI(const TZmDOMNode& Node) {
  const TZmDOMDocument* document = Node.GetDOMDocument();
  return document ? document->GetDocumentURI() : String();
}

}  // namespace

void TZmXPathFnText::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  const auto children = Context(List, Position).Children();
  Result = std::any_of(children.begin(), children.end(),
                       [](const TZmDOMNode* child) { return child->GetNodeType() == ntText; });
}

void TZmXPathFnNodeName::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(0, 1, u"The \"fn:node-name(node)\" function may only have 1 parameter!");
  const TZmDOMNode& node = Required(NodeParam(List, Position, u"fn:node-name(node)"),
                                    u"The node parameter of function \"fn:node-name(node)\" must be a node!");
  const TZmDOMNode& context = Context(List, Position);
  if (IsDeclaration(node))
    Result = node.GetPrefix().empty() ? StringView() : node.GetLocalName();
  else
    Result = FEquation->GetMatchOption() == soQualifiedName ? context.GetQualifiedName() : context.GetLocalName();
}

void TZmXPathFnNilled::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(0, 1, u"The \"fn:nilled(node)\" function may only have 1 parameter!");
  TZmDOMNode& node = Required(NodeParam(List, Position, u"fn:nilled(node)"),
                              u"The node parameter of function \"fn:nilled(node)\" must be a node!");
  Result = Null();
  if (node.GetNodeType() != ntElement) return;
  auto& element = static_cast<TZmDOMElement&>(node);
  const TZmDOMAttribute* nil = FEquation->GetMatchOption() == soQualifiedName
                                   ? element.FindAttribute(cZmSchemaInstanceURI, u"nil")
                                   : element.FindAttribute(u"nil", FEquation->GetSelectOptions());
  Result = nil && FEquation->GetCollation()->SameText(nil->GetNodeValue(), u"true");
}

void TZmXPathFnString::ParseParams(TZmTextParser& Parser) {
  detail::SkipBlanks(Parser);
  const char16_t next = Parser._GetEOF() ? u'\0' : Parser.CurrChar();
  if (next == u'(')
    throw EZmXPathException(u"XPTY0004", u"The arg parameter of function \"fn:string(arg)\" may not be a sequence!");
  if (next == u'[')
    throw EZmXPathException(u"FOTY0014",
                            u"The arg parameter of function \"fn:string(arg)\" may not be a map or array!");
  TZmXPathFunction::ParseParams(Parser);
}

void TZmXPathFnString::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(0, 1, u"The \"fn:string(arg)\" function may contain 0 or 1 parameter, but not more!");
  const TZmDOMNode* node = NodeParam(List, Position, u"fn:string(arg)");
  Result = StringView(node ? NodeText(*node) : ParamText(0, List, Position));
}

void TZmXPathFnData::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(0, 1, u"The \"fn:data(arg)\" function may contain 0 or 1 parameter, but not more!");
  const TZmDOMNode* node = NodeParam(List, Position, u"fn:data(arg)");
  Result = StringView(node ? NodeText(*node) : ParamText(0, List, Position));
}

void TZmXPathFnBaseUri::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(0, 1, u"The \"fn:base-uri(arg)\" function may contain 0 or 1 parameter, but not more!");
  const TZmDOMNode& node = Required(NodeParam(List, Position, u"fn:base-uri(arg)"),
                                    u"The arg parameter of function \"fn:base-uri(arg)\" must be a node!");
  const String uri = node.GetNamespaceURI();
  Result = uri.empty() ? DocumentURI(node) : uri;
}

void TZmXPathFnDocumentUri::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(0, 1, u"The \"fn:document-uri(arg)\" function may contain 0 or 1 parameter, but not more!");
  Result = DocumentURI(Required(NodeParam(List, Position, u"fn:document-uri(arg)"),
                                u"The arg parameter of function \"fn:document-uri(arg)\" must be a node!"));
}

void TZmXPathFnError::Value(Variant&, const TZmDOMObjectList& List, int Position) {
  CheckCount(0, 3, u"The \"fn:error()\" function has a maximum of 3 parameters!");
  if (ParamCount() == 0) throw EZmXPathException(u"FOER0000", u"An exception was raised");
  String texts[3];
  for (int i = 0; i < ParamCount(); ++i) texts[i] = VarToStr(ParamValue(i, List, Position));
  throw EZmXPathException(texts[0], texts[1], texts[2]);
}

void TZmXPathFnTrace::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(2, 2, u"The \"fn:trace(value, label)\" function must contain 2 parameters!");
  Result = Variant();
  String message(ParamText(1, List, Position));
  const auto value = ParamText(0, List, Position);
  if (!StringView(value).empty()) message.append(u"; value=").append(value);
  if (const auto logger = ZmGetLogger()) logger->Trace(message, u"XPath");
}

}  // namespace zm
