#pragma once

#include <string_view>

#include "zamrit/common/TypeKinds.h"
#include "zamrit/common/ZmTypes.h"
#include "zamrit/platform/DateTime.h"
#include "zamrit/platform/Strings.h"
#include "zamrit/platform/Variant.h"
#include "zamrit/platform/reflection/Value.h"

namespace zm {

/// The text as it stands between the quotation marks of a JSON string: quotation marks, backslashes and solidi behind a
/// backslash, U+0008, U+0009, U+000A, U+000C and U+000D as "\b" and the like, U+0001 to U+0007 dropped, everything from
/// U+0100 on as "\u" and four digits. All else stays. Linear.
String ZmStrToJSON(StringView Text);
/// The text without its escapes. A backslash in front of any other character is dropped; "\%41" puts the one byte 41
/// into the UTF-16 text, whose bytes behind it are then out of step, as "%41" does where DataType is jdtNumber. An
/// escape that the text ends in gives nothing. Raises EConvertError for a digit that is none. Linear.
String ZmJSONtoStr(StringView Text, TZmJSONDataType DataType);

/// Reads JSON text into a document and writes it: the first on one line, the second in lines. Raises what
/// loading raises.
String ZmFormatJSON(StringView Text);
String ZmFormatJSON(std::string_view UTF8);

/// The type of JSON value that a Variant becomes.
TZmJSONDataType ZmVarTypeToJSONType(const Variant& Value);
/// A Variant as JSON: dates and texts between quotation marks, arrays between brackets, and "null" for null,
/// unassigned, infinities and what is not a number or no date. Does not raise.
String ZmVarToJSON(const Variant& Value);

/// \name Dates and times from JSON
/// "/Date(1000)/" is milliseconds since 1970; of such a text the first six and the last two characters are not looked
/// at. All else is read as in XML; an empty text is 0. Raises EConvertError for a text that is neither.
///@{
TDateTime ZmJSONToDate(StringView Text);
TDateTime ZmJSONToTime(StringView Text);
TDateTime ZmJSONToDateTime(StringView Text);
///@}
/// \name Dates and times from JSON, with a default for what the above refuse
///@{
TDateTime ZmJSONToDateDef(StringView Text, TDateTime Default);
TDateTime ZmJSONToTimeDef(StringView Text, TDateTime Default);
TDateTime ZmJSONToDateTimeDef(StringView Text, TDateTime Default);
///@}
/// \name Dates and times from a Variant
/// Null gives the default; numbers and dates count as days; texts are read as above. EConvertError for all else.
///@{
TDateTime ZmJSONToDate(const Variant& Value, TDateTime Default);
TDateTime ZmJSONToTime(const Variant& Value, TDateTime Default);
TDateTime ZmJSONToDateTime(const Variant& Value, TDateTime Default);
///@}

/// The name of a type in a JSON schema, as "integer", its format, as "int32", and, unless SchemaType is nil, its schema
/// type. Classes and records are "object", arrays "array", enumerations and sets "string".
String ZmJSONType(const TZmTypeInfo* TypeInfo, String& Format, TZmSchemaDataType* SchemaType = nullptr);
String ZmJSONType(const TRttiType* Type, String& Format, TZmSchemaDataType* SchemaType = nullptr);

/// Reads JSON text, without the quotation marks of a string, as a value of a simple type. Raises EConvertError
/// for a date or an escape in a string that is none, else Exception with a text that begins "Failed to convert" where
/// it does not read as a value of the type, or the type is not simple. A type that is not known
/// by name, or nil, raises EZmUnknownType with Raise, and gives an empty value without it.
TValue ZmJSONToVal(StringView Text, const TZmTypeInfo* TypeInfo, bool Raise);
TValue ZmJSONToVal(StringView Text, StringView TypeName, bool Raise);

/// A value of a simple type in its XML form. Classes, records, arrays and interfaces are not offered yet: they raise
/// ENotSupportedException.
String ZmValToJSON(const TValue& Value);

}  // namespace zm
