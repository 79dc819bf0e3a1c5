#pragma once

#include "zamrit/common/ZmTypes.h"
#include "zamrit/platform/reflection/Value.h"

namespace zm {

/// Looks at a TValue as the walks over values do. Refers to the value, which must live as long.
class TValueClassHelper {
 public:
  explicit TValueClassHelper(const TValue& Value) : FValue(Value) {}

  /// Whether the value is empty, or holds a nil object, interface, pointer or class, or a null or unassigned Variant.
  bool IsNull() const;
  /// The descriptor of what the value holds; nil for an empty value. A Variant counts as what it holds.
  const TZmTypeInfo* ZmTypeInfo() const;
  /// rtkUnknown for an empty value. A nil object is of the class kind. A Variant is of the kind of what it holds, of
  /// the Variant kind where that is nothing or an array.
  TZmTypeKind TypeKind() const;
  TZmMainTypeKind MainTypeKind() const;

  /// The value as a number: numbers that fit, floating ones rounded to even, booleans and enumerations by their
  /// ordinal, dates as days. With Convert texts that read as a number are taken too. All else gives Default. Never
  /// raises.
  std::uint8_t ToByte(bool Convert, std::uint8_t Default) const;
  std::uint16_t ToWord(bool Convert, std::uint16_t Default) const;
  std::uint32_t ToLongWord(bool Convert, std::uint32_t Default) const;
  std::uint64_t ToUInt64(bool Convert, std::uint64_t Default) const;
  std::int8_t ToShortInt(bool Convert, std::int8_t Default) const;
  std::int16_t ToSmallInt(bool Convert, std::int16_t Default) const;
  std::int32_t ToInteger(bool Convert, std::int32_t Default) const;
  std::int64_t ToInt64(bool Convert, std::int64_t Default) const;
  float ToSingle(bool Convert, float Default) const;
  double ToDouble(bool Convert, double Default) const;
  Extended ToExtended(bool Convert, Extended Default) const;
  /// A number is true unless it is 0. With Convert also texts: "true" and "false" in any case, or a number.
  bool ToBoolean(bool Convert, bool Default) const;
  /// The value as a text, as TValue::ToString gives it, for every simple kind; with Strict for texts and characters
  /// alone. All else, nil included, gives Default.
  String ToWideString(bool Strict, StringView Default) const;
  /// Converts as TValue::TryCast does, and numbers, booleans, enumerations and texts into each other as far as the
  /// value reads as one. Returns whether it was done.
  bool ToType(const TRttiType* Type, TValue& Result) const;

  String AsString() const { return FValue.AsString(); }
  bool AsBoolean() const { return FValue.AsBoolean(); }

 private:
  template <class T>
  T ToWhole(bool Convert, T Default) const;
  template <class T>
  T ToFloat(bool Convert, T Default) const;

  const TValue& FValue;
};

}  // namespace zm
