#include <gtest/gtest.h>

#include <string>

#include "zamrit/common/TextStreams.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/JSONTextParser.h"

using namespace zm;

namespace {

constexpr StringView cDelimiters = u"'\" :\\[]{}=";

// The delimiters in the order of the text above.
const void* TZmJSONTextParser::*const cFields[] = {&TZmJSONTextParser::FApos,      &TZmJSONTextParser::FQuote,
                                                   &TZmJSONTextParser::FSpace,     &TZmJSONTextParser::FColon,
                                                   &TZmJSONTextParser::FBackSlash, &TZmJSONTextParser::FBracketO,
                                                   &TZmJSONTextParser::FBracketC,  &TZmJSONTextParser::FBraceO,
                                                   &TZmJSONTextParser::FBraceC,    &TZmJSONTextParser::FEqual};

}  // namespace

TEST(JSONTextParser, HasItsDelimitersInTheFormOfTheSource) {
  for (const std::uint16_t page : {cZmPageUTF8, cZmPageUTF16}) {
    const auto narrow = Create<TZmStringStream>(ToUTF8(cDelimiters), page);
    const auto wide = Create<TZmStringStream>(String(cDelimiters));
    TStream* const source = page == cZmPageUTF8 ? static_cast<TStream*>(narrow.get()) : wide.get();
    const auto parser = Create<TZmJSONTextParser>(source, false, page);
    for (std::size_t i = 0; i < cDelimiters.size(); ++i) {
      for (std::size_t field = 0; field < cDelimiters.size(); ++field)
        EXPECT_EQ(parser->CheckCurrChar((*parser).*cFields[field], false), field == i) << page << ' ' << i << field;
      parser->NextChar();
    }
  }
}

TEST(JSONTextParser, RaisesOnADifferenceWhenAskedTo) {
  const auto source = Create<TZmStringStream>(String(u"[\xD83D\xDE00"));
  const auto parser = Create<TZmJSONTextParser>(source.get(), false, cZmPageUTF16);
  const auto refusal = [&] {
    try {
      parser->CheckCurrChar(parser->FBraceO, true);
    } catch (const EZmJSONParseError& e) {
      return std::to_string(e.GetCode()) + e.what();
    }
    return std::string();
  };
  EXPECT_EQ(refusal(), "2The document is not wellformed!\r\n\"{\" expected, but \"[\" found!");
  parser->NextChar();
  EXPECT_EQ(refusal(), "2The document is not wellformed!\r\n\"{\" expected, but \"\xF0\x9F\x98\x80\" found!");
  parser->NextChar();
  parser->NextChar();
  EXPECT_EQ(refusal(), "2The document is not wellformed!\r\n\"{\" expected, but \"\" found!");
}
