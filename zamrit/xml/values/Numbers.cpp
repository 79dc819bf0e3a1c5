#include "zamrit/xml/values/Numbers.h"

#include <type_traits>

#include "zamrit/common/SysUtils.h"
#include "zamrit/common/ZmTypes.h"
#include "zamrit/platform/Exceptions.h"

namespace zm {
namespace {

template <class T>
constexpr bool cIsWide = sizeof(T) == sizeof(std::int64_t);

[[noreturn]] void RaiseInvalid(const char16_t* TypeName) {
  throw EConvertError(u"The given value is not a valid %s value!", {TypeName});
}

// The number of a text as T.
template <class T>
T Parse(StringView Text) {
  if constexpr (std::is_same_v<T, float>)
    return StrToSingle(Text);
  else if constexpr (std::is_same_v<T, double>)
    return StrToFloat(Text);
  else if constexpr (std::is_same_v<T, Extended>)
    return StrToExtended(Text);
  else if constexpr (cIsWide<T>)
    return static_cast<T>(StrToInt64(Text));
  else
    return static_cast<T>(StrToInt(Text));
}

template <class T>
bool TryParse(StringView Text, T& Value) {
  if constexpr (std::is_same_v<T, float>) {
    return TryStrToSingle(Text, Value);
  } else if constexpr (std::is_same_v<T, double>) {
    return TryStrToFloat(Text, Value);
  } else if constexpr (std::is_same_v<T, Extended>) {
    return TryStrToExtended(Text, Value);
  } else {
    std::conditional_t<cIsWide<T>, std::int64_t, std::int32_t> number = 0;
    bool valid;
    if constexpr (cIsWide<T>)
      valid = TryStrToInt64(Text, number);
    else
      valid = TryStrToInt(Text, number);
    if (valid) Value = static_cast<T>(number);
    return valid;
  }
}

template <class T>
T ReadText(StringView Text) {
  return Text.empty() ? T{0} : Parse<T>(Text);
}

template <class T>
T ReadTextDef(StringView Text, T Default) {
  if (Text.empty()) return T{0};
  TryParse(Text, Default);
  return Default;
}

// A whole number by its bits, so that the unsigned ones of 64 bits count, too.
std::int64_t WideBits(const Variant& Value) {
  return VarType(Value) == varUInt64 ? static_cast<std::int64_t>(Value.AsUInt64()) : VarToInt64(Value);
}

template <class T>
T ReadVariant(const Variant& Value, T Default, const char16_t* TypeName) {
  if (Value.IsNull()) return Default;
  const TZmMainTypeKind kind = TZmTypes::VarMainTypeKind(Value);
  if constexpr (std::is_integral_v<T>) {
    switch (kind) {
      case mtkInteger:
        return static_cast<T>(cIsWide<T> ? WideBits(Value) : VarToInteger(Value));
      case mtkString:
        return Parse<T>(Value.TextRef());
      case mtkBoolean:
        return static_cast<T>(ZmVarBool(Value, 0));
      default:
        RaiseInvalid(TypeName);
    }
  } else {
    if (kind == mtkString) return ReadText<T>(Value.TextRef());
    if (kind == mtkInteger || kind == mtkFloat || (kind == mtkDateTime && !std::is_same_v<T, float>))
      return static_cast<T>(ZmVarToExtended(Value, 0, true));
    RaiseInvalid(TypeName);
  }
}

}  // namespace

#define ZM_INTEGER_WRITER(Name, Type) \
  String Zm##Name##ToXML(Type Value) { return IntToStr(static_cast<std::int64_t>(Value)); }

ZM_INTEGER_WRITER(ShortInt, std::int8_t)
ZM_INTEGER_WRITER(SmallInt, std::int16_t)
ZM_INTEGER_WRITER(LongInt, std::int32_t)
ZM_INTEGER_WRITER(Int, std::int32_t)
ZM_INTEGER_WRITER(Int64, std::int64_t)
ZM_INTEGER_WRITER(Byte, std::uint8_t)
ZM_INTEGER_WRITER(Word, std::uint16_t)
ZM_INTEGER_WRITER(LongWord, std::uint32_t)
ZM_INTEGER_WRITER(Cardinal, std::uint32_t)
ZM_INTEGER_WRITER(UInt64, std::uint64_t)

#undef ZM_INTEGER_WRITER

// The settings of FloatToStr are no locale's: the separator is the point.
String ZmDoubleToXML(double Value) { return FloatToStr(Value); }
String ZmExtToXML(Extended Value) { return FloatToStr(Value); }
String ZmBoolToXML(bool Value) { return Value ? u"true" : u"false"; }

#define ZM_READERS(Name, Type, TypeName)                                                                   \
  Type ZmXMLTo##Name(StringView Text) { return ReadText<Type>(Text); }                                     \
  Type ZmXMLTo##Name(const Variant& Value, Type Default) { return ReadVariant(Value, Default, TypeName); } \
  Type ZmXMLTo##Name##Def(StringView Text, Type Default) { return ReadTextDef(Text, Default); }

ZM_READERS(Shortint, std::int8_t, u"shortint")
ZM_READERS(Smallint, std::int16_t, u"smallint")
ZM_READERS(Int, std::int32_t, u"integer")
ZM_READERS(Int64, std::int64_t, u"integer")
ZM_READERS(Byte, std::uint8_t, u"Byte")
ZM_READERS(Word, std::uint16_t, u"Word")
ZM_READERS(Longword, std::uint32_t, u"LongWord")
ZM_READERS(UInt64, std::uint64_t, u"integer")
ZM_READERS(Single, float, u"Single")
ZM_READERS(Double, double, u"Double")
ZM_READERS(Extended, Extended, u"Extended")

#undef ZM_READERS

bool ZmXMLToBool(StringView Text) { return Text == u"1" || SameText(Text, u"true"); }

bool ZmXMLToBool(const Variant& Value, bool Default) {
  if (Value.IsNull()) return Default;
  switch (TZmTypes::VarMainTypeKind(Value)) {
    case mtkInteger:
      return static_cast<std::uint8_t>(WideBits(Value)) != 0;
    case mtkString:
      return ZmXMLToBool(Value.TextRef());
    case mtkBoolean:
      return Value.AsBoolean();
    default:
      RaiseInvalid(u"Boolean");
  }
}

}  // namespace zm
