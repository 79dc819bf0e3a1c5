#include "zamrit/xml/sax/XMLParser.h"

#include "zamrit/common/Encoding.h"
#include "zamrit/common/SourceFormsDetail.h"
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
  FAmp = detail::FormOf<U>(cZmAmpA, cZmAmpW);
  FApos = detail::FormOf<U>(cZmAposA, cZmAposW);
  FEqual = detail::FormOf<U>(cZmEqualA, cZmEqualW);
  FGt = detail::FormOf<U>(cZmGtA, cZmGtW);
  FLt = detail::FormOf<U>(cZmLtA, cZmLtW);
  FQuest = detail::FormOf<U>(cZmQuestA, cZmQuestW);
  FQuote = detail::FormOf<U>(cZmQuoteA, cZmQuoteW);
  FSlash = detail::FormOf<U>(cZmSlashA, cZmSlashW);
  FSpace = detail::FormOf<U>(cZmSpaceA, cZmSpaceW);
  FExcl = detail::FormOf<U>(cZmExclA, cZmExclW);
  FLine = detail::FormOf<U>(cZmLineA, cZmLineW);
  FColon = detail::FormOf<U>(cZmColonA, cZmColonW);
  FSemiColon = detail::FormOf<U>(cZmSemiColonA, cZmSemiColonW);
  FBracketOA = detail::FormOf<U>(cZmBracketOA, cZmBracketOW);
  FBracketCA = detail::FormOf<U>(cZmBracketCA, cZmBracketCW);
}

void TZmXMLParser::SetCharacterSetType(TZmCharacterSetType Type) {
  TZmTextParser::SetCharacterSetType(Type);
  detail::TSourceForms<TZmXMLParser>::Bind(*this, Type);
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

void TZmXMLParser::RaiseNotWellFormed(StringView Expected) {
  throw EZmXMLParseError(_cZmXMLNotWellFormed, {Expected, CurrText()}, xecNotWellFormed);
}

}  // namespace zm
