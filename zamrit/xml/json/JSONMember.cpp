#include "zamrit/xml/json/JSONMember.h"

#include "zamrit/xml/json/NodesDetail.h"
#include "zamrit/xml/json/Values.h"

namespace zm {

using detail::TJSONNodes;

TZmJSONMember::TZmJSONMember(TZmJSONBase* Owner) : TZmJSONBase(Owner, detail::jfMember) {}

void TZmJSONMember::InsertObject(TZmJSONBase* Object) {
  if (TJSONNodes::Node(*Object) != TJSONNodes::Node(*this)) RaiseNotSupported(u"InsertObject");
  Object->_AddRef();
}

void TZmJSONMember::RemoveObject(TZmJSONBase* Object) {
  if (Object == this || TJSONNodes::Node(*Object) != TJSONNodes::Node(*this)) return;
  TJSONNodes::SplitValue(TJSONNodes::Tree(*this), TJSONNodes::Node(*this));
  Object->_Release();
}

TZmJSONBase* TZmJSONMember::GetValueObj() {
  detail::TJSONNode* const node = TJSONNodes::Node(*this);
  return node->Class() == detail::jcNone ? nullptr : TJSONNodes::ValueOf(TJSONNodes::Tree(*this), node);
}

String TZmJSONMember::GetName() { return NameOf(detail::AsMember(*TJSONNodes::Node(*this))); }
void TZmJSONMember::SetName(const TZmAnyText& Name) {
  TJSONNodes::Tree(*this).SetName(&detail::AsMember(*TJSONNodes::Node(*this)), Name);
}

TZmJSONBase* TZmJSONMember::CreateValue(TZmJSONDataType DataType) { return TJSONNodes::NewValue(this, DataType); }
TZmIntf<IZmJSONBase> TZmJSONMember::CreateValueIntf(TZmJSONDataType DataType) { return {CreateValue(DataType)}; }

TZmJSONBase* TZmJSONMember::AddValue(TZmJSONDataType DataType) {
  return GetValueObj() ? TZmJSONBase::AddValue(DataType) : CreateValue(DataType);
}

// The value where it is a simple one, else nil.
TZmJSONSimpleType* TZmJSONMember::Simple() {
  const bool simple = TJSONNodes::Node(*this)->Class() == detail::jcSimple;
  return simple ? static_cast<TZmJSONSimpleType*>(GetValueObj()) : nullptr;
}

TZmJSONSimpleType* TZmJSONMember::SimpleMade(TZmJSONDataType DataType) {
  if (!GetValueObj()) CreateValue(DataType);
  return Simple();
}

bool TZmJSONMember::GetAsBoolean() { return Simple() ? Simple()->GetAsBoolean() : TZmJSONBase::GetAsBoolean(); }
double TZmJSONMember::GetAsDouble() { return Simple() ? Simple()->GetAsDouble() : TZmJSONBase::GetAsDouble(); }
std::int32_t TZmJSONMember::GetAsInteger() { return Simple() ? Simple()->GetAsInteger() : TZmJSONBase::GetAsInteger(); }
std::int64_t TZmJSONMember::GetAsLargeInt() {
  return Simple() ? Simple()->GetAsLargeInt() : TZmJSONBase::GetAsLargeInt();
}
String TZmJSONMember::GetAsString() { return Simple() ? Simple()->GetAsString() : TZmJSONBase::GetAsString(); }
Variant TZmJSONMember::GetAsVariant() { return Simple() ? Simple()->GetAsVariant() : TZmJSONBase::GetAsVariant(); }

TZmJSONObject* TZmJSONMember::GetAsObject() {
  TZmJSONBase* const value = GetValueObj() ? GetValueObj() : CreateValue(jdtObject);
  return TJSONNodes::Node(*value)->Class() == detail::jcObject ? value->GetAsObject() : TZmJSONBase::GetAsObject();
}
TZmJSONArray* TZmJSONMember::GetAsArray() {
  TZmJSONBase* const value = GetValueObj() ? GetValueObj() : CreateValue(jdtArray);
  return TJSONNodes::Node(*value)->Class() == detail::jcArray ? value->GetAsArray() : TZmJSONBase::GetAsArray();
}

void TZmJSONMember::SetAsBoolean(bool Value) {
  TZmJSONSimpleType* const value = SimpleMade(jdtBoolean);
  value ? value->SetAsBoolean(Value) : TZmJSONBase::SetAsBoolean(Value);
}
void TZmJSONMember::SetAsDouble(double Value) {
  TZmJSONSimpleType* const value = SimpleMade(jdtNumber);
  value ? value->SetAsDouble(Value) : TZmJSONBase::SetAsDouble(Value);
}
void TZmJSONMember::SetAsInteger(std::int32_t Value) {
  TZmJSONSimpleType* const value = SimpleMade(jdtNumber);
  value ? value->SetAsInteger(Value) : TZmJSONBase::SetAsInteger(Value);
}
void TZmJSONMember::SetAsLargeInt(std::int64_t Value) {
  TZmJSONSimpleType* const value = SimpleMade(jdtNumber);
  value ? value->SetAsLargeInt(Value) : TZmJSONBase::SetAsLargeInt(Value);
}
void TZmJSONMember::SetAsString(const TZmAnyText& Value) {
  TZmJSONSimpleType* const value = SimpleMade(jdtString);
  value ? value->SetAsString(Value) : TZmJSONBase::SetAsString(Value);
}
void TZmJSONMember::SetAsVariant(const Variant& Value) {
  TZmJSONSimpleType* const value = SimpleMade(ZmVarTypeToJSONType(Value));
  value ? value->SetAsVariant(Value) : TZmJSONBase::SetAsVariant(Value);
}

}  // namespace zm
