#include "zamrit/xml/sax/XMLParser.h"

#include "zamrit/common/Encoding.h"
#include "zamrit/common/uZmSysUtils.h"
#include "zamrit/platform/TextDetail.h"
#include "zamrit/xml/sax/NameCharsDetail.h"
#include "zamrit/xml/sax/XMLErrors.h"

namespace zm {
namespace {

std::uint16_t PageOf(TStream* Stream, bool DetectCodePage, std::uint16_t CodePage) {
  const std::uint16_t marked = DetectCodePage ? ZmGetCodePage(Stream) : std::uint16_t{0};
  return marked ? marked : CodePage;
}

// The value of the pseudo-attribute "encoding" of an XML declaration, or an empty text.
String EncodingOf(const String& Declaration) {
  const std::size_t found = LowerCase(Declaration).find(u"encoding");
  if (found == String::npos) return {};
  const std::size_t equal = Declaration.find(u'=', found);
  if (equal == String::npos) return {};
  const StringView quoted = Trim(StringView(Declaration).substr(equal + 1));
  if (quoted.size() <= 1) return {};
  return String(quoted.substr(1, quoted.find(quoted[0], 1) - 1));
}

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
  if (Raise) static_cast<TZmXMLParser&>(Parser).RaiseNotWellFormed(static_cast<char16_t>(expected));
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

TZmXMLParser::TZmXMLParser(TStream* Stream, bool OwnsStream, bool DetectCodePage, std::uint16_t CodePage)
    : TZmTextParser(Stream, OwnsStream, CodePage = PageOf(Stream, DetectCodePage, CodePage)) {
  TZmXMLParser::SetCharacterSetType(FCharacterSetType);
  if (CodePage == 0) ReadEncoding();
}

void TZmXMLParser::ReadEncoding() {
  std::uint16_t page = 0;
  SkipWhile(tsoNotEqual, FLt);
  bool declared = true;
  for (const char16_t expected : StringView(u"<?xml ")) declared = declared && ReadChar() == expected;
  if (declared) {
    SetMark(tppMark1);
    SkipWhile(tsoNotEqual, FGt);
    const String encoding = EncodingOf(Selected(tppMark1, tppCurrent, true));
    if (!encoding.empty() && !ZmSameText(encoding, u"UTF-8")) page = ZmCodePage(encoding);
  }
  if (page == 0) {
    if (FCharacterSetType == cstAnsi) SetCharacterSetType(cstUTF8);
    page = cZmPageUTF8;
  }
  SetContentCodePage(page);
  First();
}

template <class U>
void TZmXMLParser::BindDelimiters() {
  const auto form = [](const char& narrow, const char16_t& wide) -> const void* {
    if constexpr (sizeof(U) == 1) {
      (void)wide;
      return &narrow;
    } else {
      (void)narrow;
      return &wide;
    }
  };
  FAmp = form(cZmAmpA, cZmAmpW);
  FApos = form(cZmAposA, cZmAposW);
  FEqual = form(cZmEqualA, cZmEqualW);
  FGt = form(cZmGtA, cZmGtW);
  FLt = form(cZmLtA, cZmLtW);
  FQuest = form(cZmQuestA, cZmQuestW);
  FQuote = form(cZmQuoteA, cZmQuoteW);
  FSlash = form(cZmSlashA, cZmSlashW);
  FSpace = form(cZmSpaceA, cZmSpaceW);
  FExcl = form(cZmExclA, cZmExclW);
  FLine = form(cZmLineA, cZmLineW);
  FColon = form(cZmColonA, cZmColonW);
  FSemiColon = form(cZmSemiColonA, cZmSemiColonW);
  FBracketOA = form(cZmBracketOA, cZmBracketOW);
  FBracketCA = form(cZmBracketCA, cZmBracketCW);
}

void TZmXMLParser::SetCharacterSetType(TZmCharacterSetType Type) {
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

String TZmXMLParser::CurrText() {
  const char16_t c = CurrChar();
  if (c == cZmEOF) return {};
  String text(1, c);
  if (detail::IsHighSurrogate(c) && detail::IsLowSurrogate(PeekChar())) text.push_back(PeekChar());
  return text;
}

void TZmXMLParser::CheckValidNameStartChar() {
  const char16_t c = CurrChar();
  if (c == cZmColon) throw EZmXMLParseError(_cZmXMLInvalidNameStartchar1, {CurrText()}, xecInvalidNameStartChar);
  if (!detail::IsNameStartChar(c))
    throw EZmXMLParseError(_cZmXMLInvalidNameStartchar2, {CurrText()}, xecInvalidNameStartChar);
}

void TZmXMLParser::RaiseNotWellFormed(char16_t Expected) {
  throw EZmXMLParseError(_cZmXMLNotWellFormed, {String(1, Expected), CurrText()}, xecNotWellFormed);
}

}  // namespace zm
