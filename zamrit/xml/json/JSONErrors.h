#pragma once

#include "zamrit/common/ZmObject.h"

namespace zm {

/// The root of what goes wrong while JSON is read or worked with; the code says what.
class EZmJSONException : public EZmException {
 public:
  using EZmException::EZmException;
};

/// A JSON text, path or access that is refused.
class EZmJSONParseError : public EZmJSONException {
 public:
  using EZmJSONException::EZmJSONException;
};

inline constexpr StringView _cZmJSONEncodingNotSupported = u"The specified encoding is not supported!";
inline constexpr StringView _cZmJSONNotWellFormed =
    u"The document is not wellformed!\r\n\"%s\" expected, but \"%s\" found!";
inline constexpr StringView _cZmJSONNoContentHandler = u"No contenthandler has been assigned!";
inline constexpr StringView _cZmJSONNoErrorHandler = u"No errorhandler has been assigned!";
inline constexpr StringView _cZmJSONNoFile = u"There is no file \"%s\"";
inline constexpr StringView _cZmJSONNoMember = u"There is no member with the name \"%s\"!";
inline constexpr StringView _cZmJSONUnexpectedType = u"Unexptected JSON type!";
inline constexpr StringView _cZmJSONArrayExpected = u"Array expected. %s found.";
inline constexpr StringView _cZmJSONObjectExpected = u"Object expected. %s found.";
inline constexpr StringView _cZmJSONMethodNotSupported = u"Instances of %s do not support the %s method!";
inline constexpr StringView _cZmJSONNoRoot = u"There is no root value!";
inline constexpr StringView _cZmJSONInvalidPathNoNodes = u"The specified path returned no nodes!";
inline constexpr StringView _cZmJSONInvaliPathMultipleNodes = u"The specified path returned more than 1 node!";
inline constexpr StringView _cZmJSONInvalidPath = u"The specified path is not a valid JSON path.";
inline constexpr StringView _cZmJSONInvalidCharInPath1 =
    u"The specified path is not a valid JSON path. Character '%s' was expected, however '%s' was found.";
inline constexpr StringView _cZmJSONInvalidCharInPath2 =
    u"The specified path is not a valid JSON path. A character ('%s') was detected on an invalid position.";
inline constexpr StringView _cZmJSONNoSupportForScriptExpr = u"Script expressions are not yet supported!";
inline constexpr StringView _cZmJSONScriptExprTooComplex =
    u"The specified script expression is too complex or not valid!";
inline constexpr StringView _cZmJSONAlreadyParsing = u"The reader is already parsing!";

/// The message of the plain Exception for UTF-16 big endian and UTF-32.
inline constexpr StringView _SEncodingNotSupported = u"The encoding is not supported!";

/// The codes that the readers' exceptions carry.
enum TZmJSONErrorCode { jecSyntax = 2, jecNoContentHandler = 3, jecNoErrorHandler = 4, jecAlreadyParsing = 18 };

}  // namespace zm
