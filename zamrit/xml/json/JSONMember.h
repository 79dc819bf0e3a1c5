#pragma once

#include "zamrit/xml/json/JSONBase.h"

namespace zm {

/// A name with a value, which may be missing. Getters and setters are those of the value: a setter makes one that is
/// missing, as GetAsObject and GetAsArray do; what is no simple value refuses them in the name of the member.
class TZmJSONMember : public TZmJSONBase, public virtual IZmJSONMember {
  ZM_OBJECT(TZmJSONMember, TZmJSONBase)
 public:
  /// Without name and value.
  explicit TZmJSONMember(TZmJSONBase* Owner = nullptr);

  void InsertObject(TZmJSONBase* Object) override;
  void RemoveObject(TZmJSONBase* Object) override;
  /// The value, or nil.
  TZmJSONBase* GetValueObj() override;
  String GetName() override;
  void SetName(const TZmAnyText& Name) override;
  bool GetAsBoolean() override;
  double GetAsDouble() override;
  std::int32_t GetAsInteger() override;
  std::int64_t GetAsLargeInt() override;
  String GetAsString() override;
  Variant GetAsVariant() override;
  TZmJSONObject* GetAsObject() override;
  TZmJSONArray* GetAsArray() override;
  TZmIntf<IZmJSONObject> GetAsObjectIntf() override { return TZmJSONBase::GetAsObjectIntf(); }
  TZmIntf<IZmJSONArray> GetAsArrayIntf() override { return TZmJSONBase::GetAsArrayIntf(); }
  TZmIntf<IZmJSONBase> GetValue() override { return TZmJSONBase::GetValue(); }
  void SetAsBoolean(bool Value) override;
  void SetAsDouble(double Value) override;
  void SetAsInteger(std::int32_t Value) override;
  void SetAsString(const TZmAnyText& Value) override;
  void SetAsLargeInt(std::int64_t Value) override;
  void SetAsVariant(const Variant& Value) override;
  using TZmJSONBase::AddValue;
  /// CreateValue where there is no value yet.
  TZmJSONBase* AddValue(TZmJSONDataType DataType) override;
  TObject* Implementor() override { return this; }

  /// Replaces the value by a new one: an object, an array, or a null that a setter makes something of.
  TZmJSONBase* CreateValue(TZmJSONDataType DataType);
  TZmIntf<IZmJSONBase> CreateValueIntf(TZmJSONDataType DataType) override;

 private:
  friend class detail::TJSONNodes;
  using TZmJSONBase::TZmJSONBase;
  TZmJSONSimpleType* Simple();
  TZmJSONSimpleType* SimpleMade(TZmJSONDataType DataType);
};

}  // namespace zm
