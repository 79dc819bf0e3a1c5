#include "zamrit/xml/json/JSONTextParser.h"

#include "zamrit/common/Encoding.h"
#include "zamrit/common/SourceFormsDetail.h"
#include "zamrit/platform/CodePages.h"
#include "zamrit/platform/TextDetail.h"
#include "zamrit/xml/json/JSONErrors.h"

namespace zm {

TZmJSONTextParser::TZmJSONTextParser(TStream* Stream, bool OwnsStream, std::uint16_t CodePage)
    : TZmTextParser(Stream, OwnsStream, CodePage) {
  TZmJSONTextParser::SetCharacterSetType(FCharacterSetType);
  if (CodePage == 0 || MaxCharSize(CodePage) == 1) DetectEncoding();
}

void TZmJSONTextParser::DetectEncoding() {
  unsigned zeros = 0;
  for (unsigned bit = 8; bit != 0; bit >>= 1)
    if (ReadCharA() == cZmEOFA) zeros |= bit;
  switch (zeros) {
    case 0b1110:
    case 0b1010:
    case 0b0111:
      throw Exception(_SEncodingNotSupported);
    case 0b0101:
      SetCharacterSetType(cstWide);
      SetContentCodePage(cZmPageUTF16);
      break;
    default:
      SetCharacterSetType(cstUTF8);
      SetContentCodePage(cZmPageUTF8);
      break;
  }
  First();
}

template <class U>
void TZmJSONTextParser::BindDelimiters() {
  FApos = detail::FormOf<U>(cZmAposA, cZmAposW);
  FQuote = detail::FormOf<U>(cZmQuoteA, cZmQuoteW);
  FSpace = detail::FormOf<U>(cZmSpaceA, cZmSpaceW);
  FColon = detail::FormOf<U>(cZmColonA, cZmColonW);
  FBackSlash = detail::FormOf<U>(cZmBackSlashA, cZmBackSlashW);
  FBracketO = detail::FormOf<U>(cZmBracketOA, cZmBracketOW);
  FBracketC = detail::FormOf<U>(cZmBracketCA, cZmBracketCW);
  FBraceO = detail::FormOf<U>(cZmBraceOA, cZmBraceOW);
  FBraceC = detail::FormOf<U>(cZmBraceCA, cZmBraceCW);
  FEqual = detail::FormOf<U>(cZmEqualA, cZmEqualW);
}

void TZmJSONTextParser::SetCharacterSetType(TZmCharacterSetType Type) {
  TZmTextParser::SetCharacterSetType(Type);
  detail::TSourceForms<TZmJSONTextParser>::Bind(*this, Type);
}

void TZmJSONTextParser::RaiseNotWellFormed(StringView Expected) {
  String found;
  if (const char16_t c = CurrChar(); c != cZmEOF) {
    found = c;
    if (detail::IsHighSurrogate(c) && detail::IsLowSurrogate(PeekChar())) found += PeekChar();
  }
  throw EZmJSONParseError(_cZmJSONNotWellFormed, {Expected, found}, jecSyntax);
}

}  // namespace zm
