#pragma once

#include "zamrit/common/TextParser.h"

namespace zm {

/// A reference to a skip with an operand in the form of the source.
using TZmJSONTextParserSkipFunc = TZmTextParserRef<void, TZmTextParserSkipOp, const void*>;
/// A reference to the test of the current character; the flag says whether to raise on a difference.
using TZmJSONTextParserCheckFunc = TZmTextParserRef<bool, const void*, bool>;

/// The text cursor of the JSON readers: the delimiters in the form of the source, and the encoding taken from the text.
class TZmJSONTextParser : public TZmTextParser {
  ZM_OBJECT(TZmJSONTextParser, TZmTextParser)
 public:
  /// UTF-16, UTF-8 and double-byte pages are taken as they are named. For page 0 and any single-byte page the zeros
  /// among the first four bytes decide between UTF-8 and UTF-16 little endian; UTF-16 big endian and UTF-32 raise
  /// Exception with _SEncodingNotSupported. A text of one byte looks like UTF-32.
  TZmJSONTextParser(TStream* Stream, bool OwnsStream, std::uint16_t CodePage);

  void SetCharacterSetType(TZmCharacterSetType Type) override;

  /// Skips while the comparison holds against the character that the operand points at, one of the fields below.
  TZmJSONTextParserSkipFunc SkipWhile;
  /// Whether the current character equals the one pointed at. On a difference raises EZmJSONParseError with code 2 when
  /// asked to.
  TZmJSONTextParserCheckFunc CheckCurrChar;

  const void* FApos = nullptr;
  const void* FQuote = nullptr;
  const void* FSpace = nullptr;
  const void* FColon = nullptr;
  const void* FBackSlash = nullptr;
  const void* FBracketO = nullptr;
  const void* FBracketC = nullptr;
  const void* FBraceO = nullptr;
  const void* FBraceC = nullptr;
  const void* FEqual = nullptr;

  /// Raises EZmJSONParseError with code 2: Expected should stand where the cursor is.
  [[noreturn]] void RaiseNotWellFormed(StringView Expected);

 private:
  friend class detail::TSourceForms<TZmJSONTextParser>;

  template <class U>
  void BindDelimiters();
  void DetectEncoding();
};

}  // namespace zm
