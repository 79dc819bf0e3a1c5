#pragma once

#include <cstdint>

#include "zamrit/platform/Numbers.h"
#include "zamrit/platform/Strings.h"
#include "zamrit/platform/Variant.h"

namespace zm {

/// \name Numbers and booleans as XML text
/// Whole numbers in decimal; ZmUInt64ToXML writes the bits as a signed number, so from 2^63 on it is negative. Floats
/// as FloatToStr writes them, with "." whatever the locale. Booleans as "true" and "false".
///@{
String ZmShortIntToXML(std::int8_t Value);
String ZmSmallIntToXML(std::int16_t Value);
String ZmLongIntToXML(std::int32_t Value);
String ZmIntToXML(std::int32_t Value);
String ZmInt64ToXML(std::int64_t Value);
String ZmByteToXML(std::uint8_t Value);
String ZmWordToXML(std::uint16_t Value);
String ZmLongWordToXML(std::uint32_t Value);
String ZmCardinalToXML(std::uint32_t Value);
String ZmUInt64ToXML(std::uint64_t Value);
String ZmDoubleToXML(double Value);
String ZmExtToXML(Extended Value);
String ZmBoolToXML(bool Value);
///@}

/// \name Numbers from XML text
/// An empty text is 0. Any other goes through StrToInt, or StrToInt64 for the two 64-bit types, and is cut to the type:
/// "300" is the byte 44. Floats go through StrToFloat, where "," may part thousands: "1,000.5". Raises EConvertError
/// for text that is no number.
///@{
std::int8_t ZmXMLToShortint(StringView Text);
std::int16_t ZmXMLToSmallint(StringView Text);
std::int32_t ZmXMLToInt(StringView Text);
std::int64_t ZmXMLToInt64(StringView Text);
std::uint8_t ZmXMLToByte(StringView Text);
std::uint16_t ZmXMLToWord(StringView Text);
std::uint32_t ZmXMLToLongword(StringView Text);
std::uint64_t ZmXMLToUInt64(StringView Text);
float ZmXMLToSingle(StringView Text);
double ZmXMLToDouble(StringView Text);
Extended ZmXMLToExtended(StringView Text);
///@}

/// \name Numbers from XML text, with a default
/// As above, but text that is no number gives the default. An empty text is 0 all the same. They never raise.
///@{
std::int8_t ZmXMLToShortintDef(StringView Text, std::int8_t Default);
std::int16_t ZmXMLToSmallintDef(StringView Text, std::int16_t Default);
std::int32_t ZmXMLToIntDef(StringView Text, std::int32_t Default);
std::int64_t ZmXMLToInt64Def(StringView Text, std::int64_t Default);
std::uint8_t ZmXMLToByteDef(StringView Text, std::uint8_t Default);
std::uint16_t ZmXMLToWordDef(StringView Text, std::uint16_t Default);
std::uint32_t ZmXMLToLongwordDef(StringView Text, std::uint32_t Default);
std::uint64_t ZmXMLToUInt64Def(StringView Text, std::uint64_t Default);
float ZmXMLToSingleDef(StringView Text, float Default);
double ZmXMLToDoubleDef(StringView Text, double Default);
Extended ZmXMLToExtendedDef(StringView Text, Extended Default);
///@}

/// \name Numbers from a Variant
/// Null gives the default. Whole numbers are cut to the type; ERangeError where a 32-bit number is asked for, or for a
/// narrower one, and the value does not fit 32 bits. Booleans give whole numbers 1 and 0. Text goes through StrToInt,
/// StrToInt64 or the reader of floats. A date and time is a double or extended of days. Raises EConvertError "The given
/// value is not a valid ... value!" for any other value, and for text that is no number.
///@{
std::int8_t ZmXMLToShortint(const Variant& Value, std::int8_t Default);
std::int16_t ZmXMLToSmallint(const Variant& Value, std::int16_t Default);
std::int32_t ZmXMLToInt(const Variant& Value, std::int32_t Default);
std::int64_t ZmXMLToInt64(const Variant& Value, std::int64_t Default);
std::uint8_t ZmXMLToByte(const Variant& Value, std::uint8_t Default);
std::uint16_t ZmXMLToWord(const Variant& Value, std::uint16_t Default);
std::uint32_t ZmXMLToLongword(const Variant& Value, std::uint32_t Default);
std::uint64_t ZmXMLToUInt64(const Variant& Value, std::uint64_t Default);
float ZmXMLToSingle(const Variant& Value, float Default);
double ZmXMLToDouble(const Variant& Value, double Default);
Extended ZmXMLToExtended(const Variant& Value, Extended Default);
///@}

/// Whether the text is "1" or, whatever its case, "true".
bool ZmXMLToBool(StringView Text);
/// Null gives the default, a boolean its value, text the same as above, a whole number whether its low byte is not 0.
/// Raises EConvertError "The given value is not a valid Boolean value!" for any other value.
bool ZmXMLToBool(const Variant& Value, bool Default);

}  // namespace zm
