#include "zamrit/xml/xpath/Terms.h"

#include "zamrit/common/SysUtils.h"
#include "zamrit/common/ZmTypes.h"
#include "zamrit/platform/ASCIIDetail.h"
#include "zamrit/xml/xpath/ParsingDetail.h"
#include "zamrit/xml/xpath/ValuePathDetail.h"

namespace zm {

using detail::TTruth;
using detail::TValuePath;

namespace {

TZmDOMNode* Candidate(const TZmDOMObjectList& List, int Position) {
  return static_cast<TZmDOMNode*>(List[static_cast<std::size_t>(Position)]);
}

Variant ValueOf(const TZmDOMNode* Node) {
  String text;
  return detail::NodeValue(Node, text) ? Variant(std::move(text)) : Null();
}

}  // namespace

TTruth TZmXPathBaseTerm::Truth(const TZmDOMObjectList& List, int Position) {
  Variant value;
  Value(value, List, Position);
  return ZmVarIsEmpty(value) ? TTruth::Empty : detail::TruthOf(value.AsBoolean());
}

StringView TZmXPathBaseTerm::Text(const TZmDOMObjectList& List, int Position, String& Scratch) {
  Variant value;
  Value(value, List, Position);
  return Scratch = ZmVarToStr(value);
}

// Constants.

TZmXPathConstantTerm::TZmXPathConstantTerm(TZmXPathEquation* Equation, TZmTextParser& Parser)
    : TZmXPathConstantTerm(Equation, Variant()) {
  const auto isNumber = [](char16_t c) { return detail::IsDigit(c) || c == u'.'; };
  String text;
  if (Parser.CurrChar() == u'"') {
    Parser.Next();
    for (char16_t c = Parser.CurrChar(); c != u'"' && !detail::IsEnd(Parser, c); c = Parser.CurrChar()) {
      text += c;
      Parser.Next();
    }
    if (!Parser._GetEOF()) Parser.Next();
    FValue = std::move(text);
    return;
  }
  if (!isNumber(Parser.CurrChar())) throw EZmDomSyntax(u"Either a number of a string was expected!");
  while (!Parser._GetEOF() && isNumber(Parser.CurrChar())) text += Parser.ReadChar();
  std::int64_t whole = 0;
  double real = 0;
  if (TryStrToInt64(text, whole))
    FValue = whole;
  else if (TryStrToFloat(text, real))
    FValue = real;
  else
    throw EZmDomSyntax(u"Either a number or a string was expected!");
}

void TZmXPathConstantTerm::Value(Variant& Result, const TZmDOMObjectList&, int) { Result = FValue; }

StringView TZmXPathConstantTerm::Text(const TZmDOMObjectList&, int, String& Scratch) {
  return VarIsStr(FValue) ? StringView(FValue.TextRef()) : StringView(Scratch = ZmVarToStr(FValue));
}

// Paths.

TZmXPathValueTerm::TZmXPathValueTerm(TZmXPathEquation* Equation, String Path, int Depth)
    : TZmXPathBaseTerm(Equation, false, detail::TTermKind::Path), FPath(std::move(Path)), FDepth(Depth) {}
TZmXPathValueTerm::~TZmXPathValueTerm() = default;

TValuePath& TZmXPathValueTerm::Reader() {
  if (!FReader) FReader = std::make_unique<TValuePath>(FPath, *FEquation, FDepth);
  return *FReader;
}

TZmOwner<TZmDOMNodeList> TZmXPathValueTerm::Nodes(const TZmDOMObjectList& List, int Position) const {
  return Candidate(List, Position)->CreateNodeList(FPath, FEquation->GetSelectOptions());
}

void TZmXPathValueTerm::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  const TValuePath::TNodes nodes(Reader(), Candidate(List, Position));
  if (nodes.Count() < 2) {
    Result = nodes.Count() == 0 ? Null() : ValueOf(nodes[0]);
    return;
  }
  Result = VarArrayCreate(0, static_cast<std::int64_t>(nodes.Count()) - 1, varVariant);
  for (std::size_t i = 0; i < nodes.Count(); ++i) VarArrayPut(Result, static_cast<std::int64_t>(i), ValueOf(nodes[i]));
}

StringView TZmXPathValueTerm::Text(const TZmDOMObjectList& List, int Position, String& Scratch) {
  const TZmDOMNode* one = nullptr;
  bool isOne = false;
  Reader().Each(Candidate(List, Position), [&](const TZmDOMNode* node) {
    isOne = !one;
    one = node;
    return !isOne;
  });
  if (!isOne || !detail::NodeValue(one, Scratch)) Scratch.clear();
  return Scratch;
}

// Calls.

void TZmXPathFunctionTerm::AfterConstruction() {
  TZmXPathBaseTerm::AfterConstruction();
  if (TZmTextParser* const parser = std::exchange(FParser, nullptr)) ParseParams(*parser);
}

void TZmXPathFunctionTerm::ParseParams(TZmTextParser& Parser) {
  for (int depth = 1; depth > 0 && !Parser._GetEOF();) {
    const char16_t c = Parser.ReadChar();
    depth += c == u'(' ? 1 : c == u')' ? -1 : 0;
  }
}

void TZmXPathFirstNode::Value(Variant& Result, const TZmDOMObjectList&, int Position) { Result = Position == 0; }
void TZmXPathLastNode::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  Result = static_cast<std::size_t>(Position) + 1 == List.size();
}
void TZmXPathFnPositionTerm::Value(Variant& Result, const TZmDOMObjectList&, int Position) { Result = Position + 1; }
void TZmXPathFnNodeTerm::Value(Variant& Result, const TZmDOMObjectList&, int) { Result = true; }

// Parentheses.

TTruth TZmXPathChildTerm::ChildTruth(const TZmDOMObjectList& List, int Position, StringView Complaint) const {
  const auto& childs = FEquation->GetChilds();
  if (childs.size() != 1) throw Exception(u"An invalid expression was detected!\r\n" + String(Complaint));
  bool hasEmpty = false;
  const bool value = childs[0]->Evaluate(List, Position, hasEmpty);
  return hasEmpty ? TTruth::Empty : detail::TruthOf(value);
}

void TZmXPathChildTerm::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  Result = ChildTruth(List, Position, u"Check the parenthesis.") == TTruth::Yes;
}

void TZmXPathNot::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  Result = ChildTruth(List, Position, u"A \"not\" operator must have a child value.") == TTruth::No;
}

void TZmXPathChildNodeX::Value(Variant& Result, const TZmDOMObjectList&, int Position) { Result = FIndex == Position; }

TTruth TZmXPathHasNode::Truth(const TZmDOMObjectList& List, int Position) {
  if (FPath->GetKind() == detail::TTermKind::Path)
    return detail::TruthOf(static_cast<TZmXPathValueTerm&>(*FPath).Reader().LeadsToAny(Candidate(List, Position)));
  Variant value;
  FPath->Value(value, List, Position);
  return detail::TruthOf(!ZmVarIsEmpty(value));
}

void TZmXPathHasNode::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  Result = Truth(List, Position) == TTruth::Yes;
}

// Lists.

TZmXPathListTerm::TZmXPathListTerm(TZmXPathEquation* Equation, TZmTextParser& Parser, char16_t Closing)
    : TZmXPathBaseTerm(Equation) {
  Parser.Next();
  FList = detail::ReadTerms(*Equation, Parser, Closing);
}

void TZmXPathListTerm::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  String joined;
  bool isNull = false;  // as the sum of anything and null
  Variant value;
  for (const auto& term : FList) {
    term->Value(value, List, Position);
    isNull |= value.IsNull();
    if (!isNull) joined += u", " + VarToStr(Variant(u"") + value);
  }
  Result = isNull || joined.empty() ? String() : joined.substr(2);
}

}  // namespace zm
