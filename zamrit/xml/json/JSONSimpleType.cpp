#include "zamrit/xml/json/JSONSimpleType.h"

#include "zamrit/common/SysUtils.h"
#include "zamrit/common/ZmTypes.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/NodesDetail.h"
#include "zamrit/xml/json/SimpleDetail.h"
#include "zamrit/xml/json/Values.h"

namespace zm {

namespace detail {

Variant ValueOfSimple(const TJSONNode& Node) {
  if (Node.Has(jfVariant)) return Node.Extra->Value;
  const std::string_view text = Node.RawText();
  return text.data() ? Variant(WidenText(text, Node.Has(jfSurrogates))) : Null();
}

void SetSimple(TJSONTree& Tree, TJSONNode* Node, Variant Value, TZmJSONDataType Type) {
  Tree.ExtraOf(Node).Value = std::move(Value);
  Node->Flags |= jfVariant;
  Node->SetType(Type);
}

String TextOfSimple(const TJSONNode& Node) {
  if (!Node.Has(jfVariant) && Node.RawText().data()) return WidenText(Node.RawText(), Node.Has(jfSurrogates));
  const Variant value = ValueOfSimple(Node);
  if (TZmTypes::VarMainTypeKind(value) == mtkString) return value.TextRef();
  switch (Node.Type()) {
    case jdtNull:
      return {};
    case jdtString:
      return ZmVarToStr(value);
    case jdtNumber:
      return ZmVarToJSON(value);
    case jdtBoolean:
      return ZmVarToBool(value, false) ? u"true" : u"false";
    default:
      throw EZmJSONException(_cZmJSONUnexpectedType, 6);
  }
}

}  // namespace detail

using detail::TJSONNodes;

TZmJSONSimpleType::TZmJSONSimpleType(TZmJSONBase* Owner)
    : TZmJSONBase(Owner, detail::ClassFlags(detail::jcSimple, jdtNull)) {}

bool TZmJSONSimpleType::GetAsBoolean() { return ZmVarToBool(GetAsVariant(), false); }
double TZmJSONSimpleType::GetAsDouble() { return ZmVarToDouble(GetAsVariant(), 0); }
std::int32_t TZmJSONSimpleType::GetAsInteger() { return ZmVarToInt(GetAsVariant(), 0); }
std::int64_t TZmJSONSimpleType::GetAsLargeInt() { return ZmVarToInt64(GetAsVariant(), 0); }
String TZmJSONSimpleType::GetAsString() { return detail::TextOfSimple(*TJSONNodes::Node(*this)); }
Variant TZmJSONSimpleType::GetAsVariant() { return detail::ValueOfSimple(*TJSONNodes::Node(*this)); }

void TZmJSONSimpleType::SetAsBoolean(bool Value) { Set(Value, jdtBoolean); }
void TZmJSONSimpleType::SetAsDouble(double Value) { Set(Value, jdtNumber); }
void TZmJSONSimpleType::SetAsInteger(std::int32_t Value) { Set(Value, jdtNumber); }
void TZmJSONSimpleType::SetAsString(const TZmAnyText& Value) { Set(Value.Text(), jdtString); }
void TZmJSONSimpleType::SetAsLargeInt(std::int64_t Value) { Set(Value, jdtNumber); }
void TZmJSONSimpleType::SetAsVariant(const Variant& Value) {
  const TZmJSONDataType type = ZmVarTypeToJSONType(Value);
  Set(Value, type == jdtArray ? jdtNull : type);
}

void TZmJSONSimpleType::Set(Variant Value, TZmJSONDataType Type) {
  detail::SetSimple(TJSONNodes::Tree(*this), TJSONNodes::Node(*this), std::move(Value), Type);
}

}  // namespace zm
