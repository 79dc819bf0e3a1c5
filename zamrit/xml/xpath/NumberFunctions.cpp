#include <cmath>
#include <cstdint>

#include "zamrit/common/SysUtils.h"
#include "zamrit/common/ZmTypes.h"
#include "zamrit/platform/Numbers.h"
#include "zamrit/xml/xpath/FunctionLibrary.h"

namespace zm {

namespace {

// Of a number or a date, of a boolean 1 or 0, of anything else null.
template <class F>
Variant OfNumber(const Variant& Value, F Of) {
  switch (TZmTypes::VarMainTypeKind(Value)) {
    case mtkInteger:
    case mtkFloat:
    case mtkDateTime:
      return Of(Value);
    case mtkBoolean:
      return Value.AsBoolean() ? 1 : 0;
    default:
      return Null();
  }
}

Variant Magnitude(const Variant& Value) {
  if (TZmTypes::VarMainTypeKind(Value) != mtkInteger) return std::fabs(Value.AsDouble());
  const std::int64_t number = Value.AsInteger();
  return number < 0 ? VarNeg(number) : number;
}

// Ties go to the even number.
Variant Nearest(const Variant& Value) { return Round(Value.AsDouble()); }

}  // namespace

void TZmXPathFnAbs::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(1, 1, u"The \"fn:abs(num)\" function must contain 1 parameter!");
  Result = OfNumber(ParamValue(0, List, Position), Magnitude);
}

void TZmXPathFnCeiling::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(1, 1, u"The \"fn:ceiling(num)\" function must contain 1 parameter!");
  Result = OfNumber(ParamValue(0, List, Position), [](const Variant& v) { return VarToInteger(Ceil(v.AsDouble())); });
}

void TZmXPathFnFloor::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(1, 1, u"The \"fn:floor(num)\" function must contain 1 parameter!");
  Result = OfNumber(ParamValue(0, List, Position), [](const Variant& v) { return VarToInteger(Floor(v.AsDouble())); });
}

void TZmXPathFnRound::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(1, 1, u"The \"fn:round(num)\" function must contain 1 parameter!");
  Result = OfNumber(ParamValue(0, List, Position), Nearest);
}

void TZmXPathFnRoundHalfToEven::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(1, 1, u"The \"fn:half-to-even(num)\" function must contain 1 parameter!");
  Result = OfNumber(ParamValue(0, List, Position), Nearest);
}

void TZmXPathFnNumber::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(0, 1, u"The \"fn:number(arg)\" function may contain 0 or 1 parameter, but not more!");
  const TZmDOMNode* node = NodeParam(List, Position, u"fn:number(arg)");
  Extended number = 0;
  if (node && TryStrToExtended(NodeText(*node), number)) {
    Result = number;
    return;
  }
  Result = node ? Variant(node->GetNodeValue()) : ParamValue(0, List, Position);
  if (!ZmVarIsEmpty(Result)) Result = ZmVarToExtended(Result, 0, true);
}

void TZmXPathFnTrue::Value(Variant& Result, const TZmDOMObjectList&, int) { Result = true; }

void TZmXPathFnFalse::Value(Variant& Result, const TZmDOMObjectList&, int) { Result = false; }

void TZmXPathFnBoolean::Value(Variant& Result, const TZmDOMObjectList&, int) {
  CheckCount(1, 1, u"The \"fn:boolean(arg)\" function must have 1 parameter!");
  if (const auto* list = dynamic_cast<const TZmXPathListTerm*>(&Param(0))) {
    Result = list->Count() > 0 && dynamic_cast<const TZmXPathValueTerm*>(list->GetTerm(0)) != nullptr;
    return;
  }
  const auto* constant = dynamic_cast<const TZmXPathConstantTerm*>(&Param(0));
  const Variant value = constant ? constant->GetValue() : Null();
  switch (TZmTypes::VarMainTypeKind(value)) {
    case mtkInteger:
    case mtkFloat:
      Result = value.AsDouble() != 0;
      break;
    case mtkString:
      Result = !value.TextRef().empty();
      break;
    case mtkBoolean:
      Result = value;
      break;
    default:
      throw EZmXPathException(u"FORG0006", u"An invalid parameter was passed to fn:boolean(arg)");
  }
}

void TZmXPathFnNot::Value(Variant&, const TZmDOMObjectList&, int) {
  throw Exception(u"\"not\" has no value: it can only stand at the start of an operand!");
}

}  // namespace zm
