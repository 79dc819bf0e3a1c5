#pragma once

#include "zamrit/common/ZmObject.h"

namespace zm {

/// The root of what goes wrong while XML is read.
class EZmXMLException : public EZmException {
 public:
  using EZmException::EZmException;
};

/// An error of the XML reader or of its containers; the code says which.
class EZmXMLParseError : public EZmXMLException {
 public:
  using EZmXMLException::EZmXMLException;
};

inline constexpr StringView _cZmXMLEncodingNotSupported = u"The specified encoding is not supported!";
inline constexpr StringView _cZmXMLNotWellFormed =
    u"The document is not wellformed!\r\n\"%s\" expected, but \"%s\" found!";
inline constexpr StringView _cZmXMLInvalidNameStartchar1 =
    u"The current character \"%s\" is only a valid NameStartChar when NameSpaces are not supported!";
inline constexpr StringView _cZmXMLInvalidNameStartchar2 =
    u"The current character \"%s\" is not a valid NameStartChar!";
inline constexpr StringView _cZmXMLListIndexOutOfBounds1 = u"List index (%d) out of bounds!";
inline constexpr StringView _cZmXMLListIndexOutOfBounds2 = u"List index (%s) out of bounds!";
inline constexpr StringView _cZmXMLListIndexOutOfBounds3 = u"List index (%s-%s) out of bounds!";
inline constexpr StringView _cZmXMLDOCTypeExpected = u"\"DOCTYPE\" expected, but \"%s\" found";
inline constexpr StringView _cZmXMLCDATAExpected = u"![CDATA[ expected, but \"%s\" found";
inline constexpr StringView _cZmXMLMissingAttribute = u"The document is not wellformed!\r\nMissing attribute value.";
inline constexpr StringView _cZmXMLELMNotClosed =
    u"The document is not wellformed!\r\nAn element was not closed correctly (Row: %d, Col: %d).";
inline constexpr StringView _cZmXMLMultipleRoot =
    u"The document is not wellformed!\r\nA XML document may not contain multiple root elements.";
inline constexpr StringView _cZmXMLNoContentHandler = u"No contenthandler has been assigned!";
inline constexpr StringView _cZmXMLNoErrorHandler = u"No errorhandler has been assigned!";
inline constexpr StringView _cZmXMLInvalidTextAtRoot =
    u"The document is not wellformed!\r\nAn invalid token was detected at the root level of the document.";
inline constexpr StringView _cZmXMLNoLexicalHandler = u"No lexicalhandler has been assigned!";
inline constexpr StringView _cZmXMLAlreadyParsing = u"The reader is already parsing!";

/// The codes that EZmXMLParseError carries.
enum TZmXMLErrorCode {
  xecNotWellFormed = 2,
  xecInvalidNameStartChar = 3,
  xecListIndexOutOfBounds = 4,
  xecDOCTypeExpected = 5,
  xecCDATAExpected = 6,
  xecMissingAttribute = 7,
  xecElementNotClosed = 8,
  xecMultipleRoot = 9,
  xecNoContentHandler = 10,
  xecNoErrorHandler = 11,
  xecInvalidTextAtRoot = 12,
  xecNoLexicalHandler = 13,
  xecAlreadyParsing = 14
};

}  // namespace zm
