#include "zamrit/xml/xpath/Functions.h"

#include <unordered_map>

#include "zamrit/common/SysUtils.h"
#include "zamrit/xml/xpath/FunctionLibrary.h"
#include "zamrit/xml/xpath/ParsingDetail.h"
#include "zamrit/xml/xpath/ValuePathDetail.h"

namespace zm {

// Registries.

namespace {

struct TFunctionEntry {
  TZmXPathFunctionClass Class;
  bool IsOwn;  // of the library
};
using TFunctions = std::unordered_map<String, TFunctionEntry>;
using TCollations = std::unordered_map<String, TZmXPathCollationClass>;

TFunctions& RegisteredFunctions() {
  static TFunctions functions{
#define ZM_XPATH_FUNCTION_ENTRY(Name, Suffix) {Name, {TZmXPathFunctionClass::Of<TZmXPathFn##Suffix>(), true}},
      ZM_XPATH_FUNCTIONS(ZM_XPATH_FUNCTION_ENTRY){u"string", {TZmXPathFunctionClass::Of<TZmXPathFnString>(), true}}};
#undef ZM_XPATH_FUNCTION_ENTRY
  return functions;
}

TCollations& RegisteredCollations() {
  static TCollations collations{
      {u"http://www.w3.org/2005/xpath-functions/collation/html-ascii-case-insensitive", TZmXPathCollationASCIICI},
      {u"http://www.w3.org/2005/xpath-functions/collation/codepoint", TZmXPathCollationCodepoint}};
  return collations;
}

}  // namespace

void RegisterXPathFunction(StringView Name, TZmXPathFunctionClass FunctionClass) {
  RegisteredFunctions().try_emplace(String(Name), TFunctionEntry{FunctionClass, false});
}

TZmOwner<TZmXPathBaseTerm> CreateFunctionTerm(StringView Name, TZmXPathEquation* Equation, TZmTextParser* Parser) {
  const TFunctions& functions = RegisteredFunctions();
  const auto found = functions.find(String(Name));
  if (found == functions.end()) throw EZmDomSyntax(u"The filter contains an unsupported function (%s)!", {Name});
  if (Equation && !found->second.IsOwn) Equation->NotePlace();
  return found->second.Class.Create(Equation, Parser);
}

void RegisterXPathCollation(StringView URI, TZmXPathCollationClass Collation) {
  RegisteredCollations().try_emplace(String(URI), Collation);
}

TZmXPathCollationClass FindXPathCollation(StringView URI) {
  const TCollations& collations = RegisteredCollations();
  const auto found = collations.find(String(URI));
  if (found == collations.end()) throw EZmDomSyntax(u"The collation \"%s\" is not supported!", {URI});
  return found->second;
}

// What functions have in common.

void TZmXPathFunction::ParseParams(TZmTextParser& Parser) { FParams = detail::ReadTerms(*FEquation, Parser, u')'); }

Variant TZmXPathFunction::ParamValue(int Index, const TZmDOMObjectList& List, int Position) const {
  Variant value;
  Param(Index).Value(value, List, Position);
  return value;
}

TZmXPathFunction::TText TZmXPathFunction::ParamText(int Index, const TZmDOMObjectList& List, int Position) {
  return TText(FRooms[Index % 2], [&](String& scratch) { return Param(Index).Text(List, Position, scratch); });
}

TZmXPathFunction::TText TZmXPathFunction::NodeText(const TZmDOMNode& Node) {
  return TText(FRooms[0], [&](String& scratch) -> StringView {
    if (!detail::NodeValue(&Node, scratch)) scratch = Node.GetNodeValue();
    return scratch;
  });
}

TZmDOMNode& TZmXPathFunction::SingleNode(TZmXPathValueTerm& Argument, const TZmDOMObjectList& List, int Position,
                                         StringView Signature) const {
  const detail::TValuePath::TNodes nodes(Argument.Reader(), &Context(List, Position));
  if (nodes.Count() == 0)
    throw EZmXPathException(u"XPDY0002", Format(u"The node parameter of function \"%s\" may not be nil!", {Signature}));
  if (nodes.Count() > 1)
    throw EZmXPathException(u"XPTY0004",
                            Format(u"The node parameter of function \"%s\" must be a single node!", {Signature}));
  return *nodes[0];
}

TZmDOMNode* TZmXPathFunction::NodeParam(const TZmDOMObjectList& List, int Position, StringView Signature) const {
  if (ParamCount() == 0) return &Context(List, Position);
  auto* const path = dynamic_cast<TZmXPathValueTerm*>(&Param(0));
  return path ? &SingleNode(*path, List, Position, Signature) : nullptr;
}

void TZmXPathFunction::CheckCount(int Least, int Most, StringView Message) const {
  if (ParamCount() < Least || ParamCount() > Most) throw EZmDomSyntax(Message);
}

}  // namespace zm
