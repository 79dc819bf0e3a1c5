#include "zamrit/common/ValueHelper.h"

#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

#include "zamrit/platform/Numbers.h"
#include "zamrit/platform/reflection/Reflection.h"

namespace zm {

namespace {

/// What stands behind a Variant or a TValue, where that is something. It refers to the value.
TValue HeldBy(const TValue& Value) {
  const TValue* held = &Value;
  while (held->GetTypeInfo() == TypeOf<TValue>()) held = static_cast<const TValue*>(held->GetReferenceToRawData());
  if (held->GetTypeKind() != tkVariant) return held->GetView();
  TValue content = TValue::FromVariant(*static_cast<const Variant*>(held->GetReferenceToRawData()));
  return content.IsEmpty() ? held->GetView() : content;
}

const TRttiTextType* TextType(const TValue& Value) { return dynamic_cast<const TRttiTextType*>(Value.GetTypeInfo()); }

bool IsUnsigned64(const TValue& Value) {
  const auto* type = dynamic_cast<const TRttiOrdinalType*>(Value.GetTypeInfo());
  return type && type->GetTypeSize() == 8 && !type->IsSigned();
}

/// A number that T holds when it is rounded.
template <class T>
bool RoundInto(long double Number, T& Result) {
  const long double rounded = std::nearbyint(Number);
  // The limits above 2^53 are no floating numbers everywhere: compare with the power of two behind them.
  const long double end = std::ldexp(1.0L, std::numeric_limits<T>::digits);
  if (!(rounded < end && rounded >= (std::is_signed_v<T> ? -end : 0.0L))) return false;
  Result = static_cast<T>(rounded);
  return true;
}

template <class T>
bool NarrowInto(std::int64_t Number, bool Unsigned, T& Result) {
  const bool fits = Unsigned ? std::in_range<T>(static_cast<std::uint64_t>(Number)) : std::in_range<T>(Number);
  if (fits) Result = static_cast<T>(Number);
  return fits;
}

bool ReadFloat(const TValue& Value, bool Convert, Extended& Result) {
  std::int64_t number = 0;
  if (Value.GetTypeKind() == tkFloat)
    Result = static_cast<const TRttiFloatType*>(Value.GetTypeInfo())->Read(Value.GetReferenceToRawData());
  else if (const TRttiTextType* text = TextType(Value))
    return Convert && TryStrToExtended(text->Read(Value.GetReferenceToRawData()), Result);
  else if (Value.TryAsOrdinal(number))
    Result =
        IsUnsigned64(Value) ? static_cast<Extended>(static_cast<std::uint64_t>(number)) : static_cast<Extended>(number);
  else
    return false;
  return true;
}

template <class T>
bool ReadWhole(const TValue& Value, bool Convert, T& Result) {
  std::int64_t number = 0;
  if (const TRttiTextType* text = TextType(Value)) {
    const String digits = text->Read(Value.GetReferenceToRawData());
    if (Convert && TryStrToInt64(digits, number)) return NarrowInto(number, false, Result);
  } else if (Value.TryAsOrdinal(number)) {
    return NarrowInto(number, IsUnsigned64(Value) || Value.GetTypeKind() == tkSet, Result);
  }
  Extended real = 0;
  return ReadFloat(Value, Convert, real) && RoundInto(real, Result);
}

bool ReadBoolean(const TValue& Value, bool Convert, bool& Result) {
  if (const TRttiTextType* text = TextType(Value); text && Convert) {
    const String word = text->Read(Value.GetReferenceToRawData());
    if (SameText(word, u"true") || SameText(word, u"false")) {
      Result = SameText(word, u"true");
      return true;
    }
  }
  Extended number = 0;
  if (!ReadFloat(Value, Convert, number)) return false;
  Result = number != 0;
  return true;
}

bool TryConvert(const TValue& Value, const TRttiType* Type, TValue& Result) {
  try {
    return Value.TryCast(Type, Result);
  } catch (const ERangeError&) {
    return false;
  }
}

bool ReadOrdinal(const TValue& Value, const TRttiType& Type, TValue& Result) {
  std::int64_t number = 0;
  const TTypeKind kind = Type.GetTypeKind();
  if (&Type == TypeOf<bool>()) {
    bool value = false;
    if (!ReadBoolean(Value, true, value)) return false;
    Result = TValue::From(value);
    return true;
  }
  const TRttiTextType* text = TextType(Value);
  const bool named =
      text && kind == tkEnumeration &&
      static_cast<const TRttiEnumerationType&>(Type).GetEnumValue(text->Read(Value.GetReferenceToRawData()), number);
  if (!named && !ReadWhole(Value, true, number)) return false;
  try {
    Result = TValue::FromOrdinal(&Type, number);
  } catch (const ERangeError&) {
    return false;
  }
  return true;
}

}  // namespace

bool TValueClassHelper::IsNull() const {
  const TValue held = HeldBy(FValue);
  switch (held.GetTypeKind()) {
    case tkUnknown:
      return true;
    case tkVariant: {
      const auto& value = *static_cast<const Variant*>(held.GetReferenceToRawData());
      return value.IsNull() || value.IsEmpty();
    }
    case tkInterface:
      return !held.AsInterface();
    case tkClass:
    case tkPointer:
    case tkClassRef:
      return *static_cast<void* const*>(held.GetReferenceToRawData()) == nullptr;
    default:
      return false;
  }
}

const TZmTypeInfo* TValueClassHelper::ZmTypeInfo() const {
  return TZmTypes::GetTypeInfo(FValue.GetTypeKind() == tkVariant ? HeldBy(FValue).GetTypeInfo() : FValue.GetTypeInfo());
}

TZmTypeKind TValueClassHelper::TypeKind() const {
  const TZmTypeInfo* info = ZmTypeInfo();
  return info ? info->TypeKind : rtkUnknown;
}

TZmMainTypeKind TValueClassHelper::MainTypeKind() const { return TZmTypes::ToMainTypeKind(TypeKind()); }

template <class T>
T TValueClassHelper::ToWhole(bool Convert, T Default) const {
  T result = Default;
  return ReadWhole(HeldBy(FValue), Convert, result) ? result : Default;
}

template <class T>
T TValueClassHelper::ToFloat(bool Convert, T Default) const {
  Extended result = 0;
  if (!ReadFloat(HeldBy(FValue), Convert, result)) return Default;
  if (std::isfinite(result) && std::fabs(result) > std::numeric_limits<T>::max()) return Default;
  return static_cast<T>(result);
}

std::uint8_t TValueClassHelper::ToByte(bool Convert, std::uint8_t Default) const { return ToWhole(Convert, Default); }
std::uint16_t TValueClassHelper::ToWord(bool Convert, std::uint16_t Default) const { return ToWhole(Convert, Default); }
std::uint32_t TValueClassHelper::ToLongWord(bool Convert, std::uint32_t Default) const {
  return ToWhole(Convert, Default);
}
std::uint64_t TValueClassHelper::ToUInt64(bool Convert, std::uint64_t Default) const {
  return ToWhole(Convert, Default);
}
std::int8_t TValueClassHelper::ToShortInt(bool Convert, std::int8_t Default) const { return ToWhole(Convert, Default); }
std::int16_t TValueClassHelper::ToSmallInt(bool Convert, std::int16_t Default) const {
  return ToWhole(Convert, Default);
}
std::int32_t TValueClassHelper::ToInteger(bool Convert, std::int32_t Default) const {
  return ToWhole(Convert, Default);
}
std::int64_t TValueClassHelper::ToInt64(bool Convert, std::int64_t Default) const { return ToWhole(Convert, Default); }
float TValueClassHelper::ToSingle(bool Convert, float Default) const { return ToFloat(Convert, Default); }
double TValueClassHelper::ToDouble(bool Convert, double Default) const { return ToFloat(Convert, Default); }
Extended TValueClassHelper::ToExtended(bool Convert, Extended Default) const { return ToFloat(Convert, Default); }

bool TValueClassHelper::ToBoolean(bool Convert, bool Default) const {
  bool result = Default;
  return ReadBoolean(HeldBy(FValue), Convert, result) ? result : Default;
}

String TValueClassHelper::ToWideString(bool Strict, StringView Default) const {
  const TValue held = HeldBy(FValue);
  const TZmTypeInfo* info = TZmTypes::GetTypeInfo(held.GetTypeInfo());
  const bool simple = info && info->GetIsSimpleType() && info->TypeKind != rtkVariant;
  return simple && (!Strict || TextType(held)) ? held.ToString() : String(Default);
}

bool TValueClassHelper::ToType(const TRttiType* Type, TValue& Result) const {
  if (TryConvert(FValue, Type, Result)) return true;
  const TValue held = HeldBy(FValue);
  switch (Type->GetTypeKind()) {
    case tkInteger:
    case tkInt64:
      if (Type == TypeOf<std::uint64_t>()) {
        std::uint64_t number = 0;
        if (!ReadWhole(held, true, number)) return false;
        Result = TValue::From(number);
        return true;
      }
      return ReadOrdinal(held, *Type, Result);
    case tkEnumeration:
      return ReadOrdinal(held, *Type, Result);
    case tkFloat: {
      Extended number = 0;
      return ReadFloat(held, true, number) && TryConvert(TValue::From(number), Type, Result);
    }
    default: {
      const TZmTypeInfo* info = TZmTypes::GetTypeInfo(held.GetTypeInfo());
      return info && info->GetIsSimpleType() && TValue::From(held.ToString()).TryCast(Type, Result);
    }
  }
}

}  // namespace zm
