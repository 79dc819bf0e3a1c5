#include "zamrit/xml/json/JSONArray.h"

#include <utility>

#include "zamrit/xml/json/NodesDetail.h"
#include "zamrit/xml/json/SimpleDetail.h"
#include "zamrit/xml/json/Values.h"

namespace zm {

using detail::TJSONNodes;

TZmJSONArray::TZmJSONArray(TZmJSONBase* Owner)
    : TZmJSONBase(Owner, detail::ClassFlags(detail::jcArray, jdtArray) | (Owner ? 0u : detail::jfKeepsChildren)) {}

int TZmJSONArray::Count() { return static_cast<int>(TJSONNodes::CountOf(*this)); }
TZmJSONBase* TZmJSONArray::Item(int Index) { return TJSONNodes::ItemOf(*this, Index); }

TZmJSONBase* TZmJSONArray::AddValue(TZmJSONDataType DataType) {
  TZmJSONBase* const value = TJSONNodes::NewValue(this, DataType);
  TJSONNodes::Node(*value)->SetType(DataType);
  return value;
}

TZmJSONBase* TZmJSONArray::AddValue(TZmJSONDataType DataType, const TZmAnyText& Value) {
  TZmJSONBase* const value = AddValue(DataType);
  if (TJSONNodes::Node(*value)->Class() != detail::jcSimple) detail::RaiseNotOfClass();
  detail::SetSimple(TJSONNodes::Tree(*value), TJSONNodes::Node(*value), Value.Text(), DataType);
  return value;
}

TZmJSONBase* TZmJSONArray::AddValue(const Variant& Value) {
  const TZmJSONDataType type = ZmVarTypeToJSONType(Value);
  TZmJSONBase* const value = AddValue(type);
  if (TJSONNodes::Node(*value)->Class() != detail::jcSimple) detail::RaiseNotOfClass();
  detail::SetSimple(TJSONNodes::Tree(*value), TJSONNodes::Node(*value), Value, type);
  return value;
}

void TZmJSONArray::DeleteValue(int Index) {
  if (TZmJSONBase* const item = Item(Index)) item->FreeObject();
}
void TZmJSONArray::RemoveValue(TZmJSONBase* Value) {
  if (Value) Value->FreeObject();
}

void TZmJSONArray::Exchange(int Index1, int Index2) { TJSONNodes::Exchange(*this, Index1, Index2); }

TZmIntf<IZmJSONBase> TZmJSONArray::AddValueIntf1(TZmJSONDataType DataType) { return {AddValue(DataType)}; }
TZmIntf<IZmJSONBase> TZmJSONArray::AddValueIntf2(TZmJSONDataType DataType, const TZmAnyText& Value) {
  return {AddValue(DataType, Value)};
}
TZmIntf<IZmJSONBase> TZmJSONArray::AddValueIntf3(const Variant& Value) { return {AddValue(Value)}; }
void TZmJSONArray::RemoveValueIntf(const TZmIntf<IZmJSONBase>& Value) {
  if (Value) RemoveValue(static_cast<TZmJSONBase*>(Value->Implementor()));
}

}  // namespace zm
