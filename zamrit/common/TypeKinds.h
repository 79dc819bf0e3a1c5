#pragma once

#include <cstdint>

namespace zm {

/// What a walk over values branches on. The ordinals are fixed: ranges and sets of them are tested.
enum TZmTypeKind : std::uint8_t {
  rtkUnknown = 0,
  rtkByte = 1,
  rtkWord = 2,
  rtkLongWord = 3,
  rtkUInt64 = 4,
  rtkShortInt = 5,
  rtkSmallInt = 6,
  rtkInteger = 7,
  rtkInt64 = 8,
  rtkSingle = 9,
  rtkDouble = 10,
  rtkExtended = 11,
  rtkText = 12,  ///< the first of the six kinds of text
  rtkChar = rtkText,
  rtkWideChar = 13,
  rtkShortString = 14,
  rtkAnsiString = 15,
  rtkWideString = 16,
  rtkString = 17,  ///< the last of the six kinds of text
  rtkBoolean = 18,
  rtkEnumeration = 19,
  rtkSet = 20,
  rtkDate = 21,
  rtkTime = 22,
  rtkDateTime = 23,
  rtkVariant = 24,
  rtkArray = 25,
  rtkDynArray = 26,
  rtkRecord = 27,
  rtkClass = 28,
  rtkInterface = 29,
  rtkPointer = 31,
  rtkMethod = 32,
  rtkClassRef = 34,
};

/// The coarse kind of a value.
enum TZmMainTypeKind { mtkNone, mtkInteger, mtkFloat, mtkString, mtkBoolean, mtkDateTime, mtkArray };

/// By which of its names a type is looked up: "string", "System.string", or the name it has in a schema.
enum TZmTypeNameType { tntName, tntQualifiedName, tntSchemaName };

/// The type of a JSON value.
enum TZmJSONDataType { jdtNull, jdtString, jdtNumber, jdtBoolean, jdtObject, jdtArray };
/// The types of JSON values that hold no others.
using TZmJSONSimpleDataType = TZmJSONDataType;

/// The data type of a value in an XML schema.
enum TZmSchemaDataType {
  sdtAny = 0,
  sdtObject = 1,
  sdtArray = 2,
  sdtByte = 3,
  sdtShort = 4,
  sdtInt = 5,
  sdtLong = 6,
  sdtUnsignedByte = 7,
  sdtUnsignedShort = 8,
  sdtUnsignedInt = 9,
  sdtUnsignedLong = 10,
  sdtFloat = 11,
  sdtDouble = 12,
  sdtDecimal = 13,
  sdtString = 14,
  sdtBase64Binary = 15,
  sdtHexBinary = 16,
  sdtBoolean = 17,
  sdtDate = 18,
  sdtTime = 19,
  sdtDateTime = 20,
  sdtDuration = 21,
};

/// The forms into which values are serialized. The library serializes into the first two.
enum TZmDataSerializationFormatType { dsfJSON, dsfXML, dsfBinary, dsfText, dsfCSV };
using TZmSerializeFormat = TZmDataSerializationFormatType;
/// The display name of each form.
inline constexpr const char16_t* ZmDataSerializationFormatType[] = {u"JSON", u"XML", u"Binary", u"Text", u"CSV"};

}  // namespace zm
