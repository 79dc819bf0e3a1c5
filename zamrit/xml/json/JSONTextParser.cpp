#include "zamrit/xml/json/JSONTextParser.h"

#include "zamrit/common/Encoding.h"
#include "zamrit/platform/CodePages.h"
#include "zamrit/platform/TextDetail.h"
#include "zamrit/xml/json/JSONErrors.h"

namespace zm {
namespace {

// The skips and tests of one storage, through its own raw operations.
void SkipA(TZmTextParser& Parser, TZmTextParserSkipOp Op, const void* Char) {
  Parser.SrcASkipWhileA(Op, *static_cast<const char*>(Char));
}
void SkipU(TZmTextParser& Parser, TZmTextParserSkipOp Op, const void* Char) {
  Parser.SrcUSkipWhileA(Op, *static_cast<const char*>(Char));
}
void SkipW(TZmTextParser& Parser, TZmTextParserSkipOp Op, const void* Char) {
  Parser.SrcWSkipWhileW(Op, *static_cast<const char16_t*>(Char));
}

template <class U, class Ref>
bool Check(TZmTextParser& Parser, const Ref& CurrentUnit, const void* Char, bool Raise) {
  const U expected = *static_cast<const U*>(Char);
  if (CurrentUnit() == expected) return true;
  const auto wide = static_cast<char16_t>(expected);
  if (Raise) static_cast<TZmJSONTextParser&>(Parser).RaiseNotWellFormed({&wide, 1});
  return false;
}
bool CheckA(TZmTextParser& Parser, const void* Char, bool Raise) {
  return Check<char>(Parser, Parser.SrcACurrChar, Char, Raise);
}
bool CheckU(TZmTextParser& Parser, const void* Char, bool Raise) {
  return Check<char>(Parser, Parser.SrcUCurrChar, Char, Raise);
}
bool CheckW(TZmTextParser& Parser, const void* Char, bool Raise) {
  return Check<char16_t>(Parser, Parser.SrcWCurrChar, Char, Raise);
}

}  // namespace

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
  const auto form = [](const char& narrow, const char16_t& wide) -> const void* {
    if constexpr (sizeof(U) == 1) {
      (void)wide;
      return &narrow;
    } else {
      (void)narrow;
      return &wide;
    }
  };
  FApos = form(cZmAposA, cZmAposW);
  FQuote = form(cZmQuoteA, cZmQuoteW);
  FSpace = form(cZmSpaceA, cZmSpaceW);
  FColon = form(cZmColonA, cZmColonW);
  FBackSlash = form(cZmBackSlashA, cZmBackSlashW);
  FBracketO = form(cZmBracketOA, cZmBracketOW);
  FBracketC = form(cZmBracketCA, cZmBracketCW);
  FBraceO = form(cZmBraceOA, cZmBraceOW);
  FBraceC = form(cZmBraceCA, cZmBraceCW);
  FEqual = form(cZmEqualA, cZmEqualW);
}

void TZmJSONTextParser::SetCharacterSetType(TZmCharacterSetType Type) {
  TZmTextParser::SetCharacterSetType(Type);
  switch (Type) {
    case cstWide:
      BindDelimiters<char16_t>();
      SkipWhile.Bind(this, SkipW);
      CheckCurrChar.Bind(this, CheckW);
      break;
    case cstUTF8:
      BindDelimiters<char>();
      SkipWhile.Bind(this, SkipU);
      CheckCurrChar.Bind(this, CheckU);
      break;
    default:
      BindDelimiters<char>();
      SkipWhile.Bind(this, SkipA);
      CheckCurrChar.Bind(this, CheckA);
      break;
  }
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
