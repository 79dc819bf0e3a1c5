#include "zamrit/xml/json/JSONSimpleType.h"

#include <algorithm>
#include <typeinfo>

#include "zamrit/common/SysUtils.h"
#include "zamrit/common/ZmTypes.h"
#include "zamrit/platform/Numbers.h"
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
namespace {

/// Reads a short text as it was loaded, without a Variant of it. False leaves it to the general way.
template <class T, class F>
bool ReadLoaded(TZmJSONSimpleType& Object, T& Value, F Read) {
  constexpr std::size_t most = 32;
  const detail::TJSONNode& node = *TJSONNodes::Node(Object);
  const std::string_view text = node.RawText();
  if (node.Has(detail::jfVariant) || text.size() > most || typeid(Object) != typeid(TZmJSONSimpleType)) return false;
  char16_t wide[most];
  std::transform(text.begin(), text.end(), wide, [](char c) { return static_cast<unsigned char>(c); });
  return Read(StringView(wide, text.size()), Value);
}

}  // namespace

double TZmJSONSimpleType::GetAsDouble() {
  double number = 0;
  const auto read = [](StringView Text, double& Value) { return TryStrToFloat(Text, Value); };
  return ReadLoaded(*this, number, read) ? number : ZmVarToDouble(GetAsVariant(), 0);
}
std::int32_t TZmJSONSimpleType::GetAsInteger() {
  std::int64_t number = 0;
  const bool fits = ReadLoaded(*this, number, TryStrToInt64) && number == static_cast<std::int32_t>(number);
  return fits ? static_cast<std::int32_t>(number) : ZmVarToInt(GetAsVariant(), 0);
}
std::int64_t TZmJSONSimpleType::GetAsLargeInt() {
  std::int64_t number = 0;
  return ReadLoaded(*this, number, TryStrToInt64) ? number : ZmVarToInt64(GetAsVariant(), 0);
}
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
