#pragma once

#include "zamrit/common/TextParser.h"

namespace zm {

/// A reference to a skip with an operand in the form of the source.
using TZmXMLTextParserSkipFunc = TZmTextParserRef<void, TZmTextParserSkipOp, const void*>;
/// A reference to the test of the current character; the flag says whether to raise on a difference.
using TZmXMLTextParserCheckFunc = TZmTextParserRef<bool, const void*, bool>;

/// The text cursor of the XML reader: the delimiters in the form of the source, and the encoding taken from the text
/// where nobody has named it.
class TZmXMLParser : public TZmTextParser {
  ZM_OBJECT(TZmXMLParser, TZmTextParser)
 public:
  /// With DetectCodePage a byte order mark decides the page, then the argument; where both leave it open, the encoding
  /// of the XML declaration, and UTF-8 without one. Raises EConvertError for an encoding that is not known.
  TZmXMLParser(TStream* Stream, bool OwnsStream, bool DetectCodePage, std::uint16_t CodePage);

  void SetCharacterSetType(TZmCharacterSetType Type) override;

  /// Skips while the comparison holds against the character that the operand points at, one of the fields below.
  TZmXMLTextParserSkipFunc SkipWhile;
  /// Whether the current character equals the one pointed at. On a difference raises EZmXMLParseError with code 2 when
  /// asked to.
  TZmXMLTextParserCheckFunc CheckCurrChar;

  const void* FAmp = nullptr;
  const void* FApos = nullptr;
  const void* FEqual = nullptr;
  const void* FGt = nullptr;
  const void* FLt = nullptr;
  const void* FQuest = nullptr;
  const void* FQuote = nullptr;
  const void* FSlash = nullptr;
  const void* FSpace = nullptr;
  const void* FExcl = nullptr;
  const void* FLine = nullptr;
  const void* FColon = nullptr;
  const void* FSemiColon = nullptr;
  const void* FBracketOA = nullptr;
  const void* FBracketCA = nullptr;

  /// Raises EZmXMLParseError with code 3 where the current character cannot begin a local name.
  void CheckValidNameStartChar();
  /// Raises EZmXMLParseError with code 2: Expected should stand where the cursor is.
  [[noreturn]] void RaiseNotWellFormed(StringView Expected);

 private:
  friend class detail::TSourceForms<TZmXMLParser>;

  template <class U>
  void BindDelimiters();
  void ReadEncoding();
  /// The current character for a message: empty at the end and on NUL, both halves of a pair.
  String CurrText();
};

}  // namespace zm
