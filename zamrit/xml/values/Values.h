#pragma once

#include <cstdint>

#include "zamrit/common/ZmTypes.h"
#include "zamrit/platform/Strings.h"
#include "zamrit/platform/Variant.h"
#include "zamrit/platform/reflection/Value.h"

namespace zm {

/// The XML text of a Variant, escaped: whole numbers (unsigned 32-bit ones as signed), booleans, floating numbers,
/// dates in local time, texts. An array is the text "<array length="2"><element nr="0">...", escaped as a whole, so
/// that the texts in it are escaped once more at each level. Raises Exception "ZmVariantToXml; invalid variant type
/// %d!" for null, unassigned and what else has no text, and Exception for arrays nested deeper than 64 levels.
String ZmVariantToXML(const Variant& Value);

/// The text of a Variant with its references resolved; null gives Default. Floating numbers, booleans and dates are
/// written as XML; of an array the texts of the elements are joined by line ends. Raises EConvertError "The given value
/// is not a valid String value!" for all else, whole numbers included.
String ZmXMLToStr(const Variant& Value, StringView Default);

/// Reads a text as a Variant of a simple kind, in its own width. Raises Exception "Failed to convert the value "%s" to
/// a variant value of type %s!" for another kind or a text that does not read as one.
Variant ZmXMLToVariant(StringView Text, TZmTypeKind Kind);
/// The same for a type by any of its names, through the Variant type code of the type, which must be one of those
/// below: Byte, Word, LongWord, ShortInt and UInt64 are read by their kinds alone.
Variant ZmXMLToVariant(StringView Text, StringView TypeName);
/// The same for the Variant type codes 2 to 8, 11, 12, 20, 256 and 258, and for arrays of them, which are read from
/// what ZmVariantToXML writes. A Variant becomes a text, or an array where the text is one. Arrays begin at 0 and nest
/// up to 64 levels. Raises Exception "ZmXMLToVariant(%s); Unsupported VarType" for another code, and what the readers
/// raise for texts.
Variant ZmXMLToVariant(StringView Text, std::uint16_t VarType);

/// Reads a text as a value of a simple type. Raises Exception "Failed to convert the value "%s" to a value of type %s!"
/// where the text does not read as one, and "Failed to convert "%s" into a TValue!\r\nThe type %s is not supported."
/// for a type that is not simple. By name: any of the type's names; one that is unknown raises EZmUnknownType.
TValue ZmXMLToValue(StringView Text, const TZmTypeInfo* TypeInfo);
TValue ZmXMLToValue(StringView Text, StringView TypeName);

/// The XML text of a value of a simple type, escaped; enumerations by name, sets as names between commas; a ZmXMLString
/// as it stands. An empty value and a nil reference are the empty text. Raises Exception for a type that is not simple.
String ZmValToXML(const TValue& Value);

namespace detail {

/// The descriptor of a type under any of its names. EZmUnknownType where there is none.
const TZmTypeInfo* TypeOfAnyName(StringView Name);

/// Raises Exception: the text does not read as a value of the type.
[[noreturn]] void RaiseNotConverted(StringView Text, StringView TypeName);

/// The value of an enumeration or set by name or number. Returns false where the text is neither.
bool TextToOrdinal(StringView Text, const TRttiType& Type, TValue& Result);

}  // namespace detail

}  // namespace zm
