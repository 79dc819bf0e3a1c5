#include <gtest/gtest.h>

#include "tests/support/AllWays.h"
#include "zamrit/common/TextStreams.h"

namespace {

using namespace std::string_view_literals;
using zm::TZmTextParser;

static_assert(zm::cstAnsi == 0 && zm::cstWide == 1 && zm::cstUTF8 == 2);
static_assert(zm::tsoEqual == 0 && zm::tsoNotEqual == 3 && zm::tsoSmallerEqual == 4 && zm::tsoInSet == 6);

// Calls Test with a parser over the bytes: as a block at an even and at an odd address, and as streams of short reads.
template <class F>
void EachWay(const std::string& Bytes, std::uint16_t Page, F Test) {
  for (const std::size_t shift : {0u, 1u}) {
    SCOPED_TRACE("page " + std::to_string(Page) + ", block");
    const std::string block = std::string(shift, 'x') + Bytes;
    Test(*zm::Create<TZmTextParser>(block.data() + shift, Bytes.size(), Page));
  }
  for (std::size_t readSize = 1; readSize <= 5; readSize++) {
    SCOPED_TRACE("page " + std::to_string(Page) + ", reads of " + std::to_string(readSize));
    TShortStream stream(Bytes, readSize);
    Test(*zm::Create<TZmTextParser>(&stream, false, Page));
  }
}

// The same for every page that has all of the text.
template <class F>
void EachSource(zm::StringView Text, F Test) {
  SCOPED_TRACE(EventText("text", {Text}));
  static constexpr std::uint16_t pages[] = {65001, 1200, 1201, 1252};
  for (const auto page : pages) {
    const auto bytes = zm::TZmEncoding::ConvertW(Text, page);
    if (zm::TZmEncoding::ConvertA(bytes, page) == Text)
      EachWay(bytes, page, [&Test, page](TZmTextParser& parser) { Test(parser, page); });
  }
}

const zm::StringView cTexts[] = {u"",
                                 u"a",
                                 u"a\u00E9\u20AC\U0001F600z\U0001F601",
                                 u"\r\n\r\r\n\nx\n \r",
                                 u"\0<\0"sv,
                                 u"aa <\u00E9\u00E9\u20AC < \uFFFD\0b"sv};

char16_t At(zm::StringView Text, std::size_t Index) { return Index < Text.size() ? Text[Index] : zm::cZmEOF; }
void GoTo(TZmTextParser& Parser, std::size_t Index) {
  Parser.First();
  Parser.SkipChars(static_cast<int>(Index));
}

TEST(TextParser, GivesEachCharacterWithItsNeighboursAndPlace) {
  for (const auto text : cTexts)
    EachSource(text, [text](TZmTextParser& parser, std::uint16_t) {
      int line = 1, column = 1;
      for (std::size_t i = 0; i <= text.size(); i++) {
        ASSERT_EQ(parser.PeekChar(), At(text, i + 1)) << i;
        ASSERT_EQ(parser.CurrChar(), At(text, i)) << i;
        ASSERT_EQ(parser.PrevCharW(), i == 0 ? zm::cZmEOF : text[i - 1]) << i;
        ASSERT_EQ(parser.PeekString(3), text.substr(i, 3)) << i;
        ASSERT_EQ(parser._GetEOF(), i == text.size()) << i;
        ASSERT_EQ(parser.GetLineNr(), line) << i;
        ASSERT_EQ(parser.GetColNr(), column) << i;
        const bool ends = At(text, i) == u'\n' || (At(text, i) == u'\r' && At(text, i + 1) != u'\n');
        line += ends;
        column = ends ? 1 : column + 1;
        if (i == text.size()) break;
        ASSERT_NO_THROW(parser.CheckEOF());
        const auto position = parser.GetPosition();
        ASSERT_EQ(parser.ReadChar(), text[i]) << i;
        ASSERT_GT(parser.GetPosition(), position) << i;
      }
      parser.NextChar();
      parser.SkipChars(2);
      EXPECT_EQ(parser.ReadCharW(), zm::cZmEOF);
      EXPECT_EQ(parser.ReadCharA(), zm::cZmEOFA);
      EXPECT_EQ(parser.PeekString(3), u"");
      try {
        parser.CheckEOF();
        ADD_FAILURE() << "no exception";
      } catch (const zm::EZmException& e) {
        EXPECT_NE(dynamic_cast<const zm::EZmTextParserEOF*>(&e), nullptr);
        EXPECT_EQ(e.GetMessage(), u"Unexpected end of input!");
      }
    });
}

TEST(TextParser, SelectsBetweenAllPlaces) {
  for (const auto text : cTexts)
    EachSource(text, [text](TZmTextParser& parser, std::uint16_t) {
      for (std::size_t from = 0; from <= text.size(); from++)
        for (std::size_t to = from; to <= text.size(); to++) {
          GoTo(parser, from);
          parser.SetMark(zm::tppMark1);
          ASSERT_EQ(parser.GetPos(zm::tppMark1), parser.GetCurPos());
          parser.SkipChars(static_cast<int>(to - from));
          parser.SetMark(zm::tppMark2);
          const auto selected = text.substr(from, to - from);
          ASSERT_EQ(parser.Selected(zm::tppMark1, zm::tppCurrent, false), selected) << from;
          ASSERT_EQ(parser.Selected(zm::tppMark1, zm::tppCurrentIncl, false), text.substr(from, to - from + 1)) << from;
          ASSERT_EQ(parser.Selected(zm::tppMark2, zm::tppMark1, false), u"");
          ASSERT_EQ(parser.SelectedW(zm::tppMark1, zm::tppMark2, true), selected) << from;
          ASSERT_EQ(parser.GetPos(zm::tppMark1), 0) << "cleared";
          ASSERT_EQ(parser.Selected(zm::tppMark1, zm::tppCurrent, true), text.substr(0, to)) << "from the start on";
          ASSERT_EQ(parser.GetPos(zm::tppMark2), parser.GetCurPos());
          parser.ClearMark(zm::tppMark2);
          ASSERT_EQ(parser.GetPos(zm::tppMark2), 0);
          ASSERT_EQ(parser.PeekString(99), text.substr(to)) << "the cursor stays";
        }
    });
}

void SkipAsStored(TZmTextParser& Parser, std::uint16_t Page, zm::TZmTextParserSkipOp Op, char16_t C) {
  if (Page == 1252)
    Parser.SrcASkipWhileA(Op, static_cast<char>(C));
  else if (Page == 65001)
    Parser.SrcUSkipWhileA(Op, static_cast<char>(C));
  else
    Parser.SrcWSkipWhileW(Op, C);
}

TEST(TextParser, SkipsWhileTheComparisonHolds) {
  const auto holds = [](zm::TZmTextParserSkipOp op, char16_t c, char16_t operand) {
    return op == zm::tsoEqual ? c == operand : op == zm::tsoNotEqual ? c != operand : c <= operand;
  };
  for (const auto text : cTexts)
    EachSource(text, [text, holds](TZmTextParser& parser, std::uint16_t page) {
      for (const auto op : {zm::tsoEqual, zm::tsoNotEqual, zm::tsoSmallerEqual})
        for (const char16_t operand : u"a <\x7F\u00E9\u20AC\xD83D\xDE00\xDE01\uFFFD\0"sv)
          for (std::size_t from = 0; from <= text.size(); from++) {
            std::size_t stop = from;
            while (stop < text.size() && holds(op, text[stop], operand)) stop++;
            for (const bool asStored : {false, true}) {
              if (asStored && operand >= 0x80) continue;
              GoTo(parser, from);
              asStored ? SkipAsStored(parser, page, op, operand) : parser.SkipWhile(op, operand);
              ASSERT_EQ(parser.PeekString(99), text.substr(stop))
                  << "from " << from << " op " << op << ' ' << int{operand};
              ASSERT_EQ(parser._GetEOF(), stop == text.size());
            }
          }
    });
}

TEST(TextParser, TakesANarrowOperandForItsCodePoint) {
  int wide = 0;
  EachSource(u"\u00E9\u00E9x", [&wide](TZmTextParser& parser, std::uint16_t page) {
    if (page != 1200) return;
    ++wide;
    SkipAsStored(parser, 1252, zm::tsoEqual, u'\u00E9');
    EXPECT_EQ(parser.PeekString(9), u"x");
  });
  EXPECT_GT(wide, 0);
}

TEST(TextParser, SkipsWhileASetHoldsOrNot) {
  const std::pair<zm::TZmCharSet, zm::StringView> sets[] = {{zm::TZmCharSet::Range('\x01', ' ') | "<"sv, u" <\r\n"},
                                                            {"az<\0"sv, u"az<\0"sv},
                                                            {"a\xE9\x80"sv, u"a\u00E9\u0080"}};
  for (const auto text : cTexts)
    EachSource(text, [text, &sets](TZmTextParser& parser, std::uint16_t) {
      for (const auto& [set, members] : sets)
        for (const bool in : {true, false})
          for (std::size_t from = 0; from <= text.size(); from++) {
            std::size_t stop = from;
            while (stop < text.size() && (members.find(text[stop]) != members.npos) == in) stop++;
            GoTo(parser, from);
            parser.SkipWhileSet(in ? zm::tsoInSet : zm::tsoNotInSet, set);
            ASSERT_EQ(parser.PeekString(99), text.substr(stop)) << "from " << from << " in " << in;
          }
    });
}

TEST(TextParser, ReplacesWhatIsIllFormed) {
  const std::pair<std::pair<std::string_view, std::uint16_t>, zm::StringView> cases[] = {
      {{"a\xE2\x82z\xED\xA0\x80\xF0\x9F\x98", 65001}, u"a\uFFFDz\uFFFD\uFFFD\uFFFD\uFFFD"},
      {{"a\0b\0c"sv, 1200}, u"ab\uFFFD"},
      {{"\0a\0b\0"sv, 1201}, u"ab\uFFFD"},
      {{"a\0\x3D\xD8\x7A\0"sv, 1200}, u"a\xD83Dz"}};
  for (const auto& [source, text] : cases)
    EachWay(std::string(source.first), source.second, [text = text](TZmTextParser& parser) {
      for (std::size_t i = 0; i < text.size(); i++) ASSERT_EQ(parser.ReadChar(), text[i]) << i;
      EXPECT_TRUE(parser._GetEOF());
      EXPECT_EQ(parser.PrevCharW(), text.back());
      EXPECT_EQ(parser.Selected(zm::tppMark1, zm::tppCurrent, true), text);
    });
}

// The trail byte of the first character is a bar.
TEST(TextParser, KeepsTheTrailBytesOfADoubleBytePageApart) {
  EachWay("\x83\x7C\x83\x5C\xB1|x", 932, [](TZmTextParser& parser) {
    parser.SkipWhile(zm::tsoNotEqual, u'|');
    EXPECT_EQ(parser.Selected(zm::tppMark1, zm::tppCurrent, false), u"\u30DD\u30BD\uFF71");
    EXPECT_EQ(parser.GetColNr(), 4);
    EXPECT_EQ(parser.PeekString(9), u"|x");
  });
}

TEST(TextParser, LearnsItsPageLater) {
  const struct {
    std::string_view Bytes;
    std::uint16_t Page;
    zm::StringView Text;
  } cases[] = {{"<?\xC1 \xE9", 20866, u"<?\u0430 \u0418"},
               {"<?\xD0\xB0 ", 65001, u"<?\u0430 "},
               {"<?\x83\x7C ", 932, u"<?\u30DD "},
               {"<\0?\0"sv, 1200, u"<?"},
               {"\0<\0?"sv, 1201, u"<?"}};
  for (const auto& c : cases)
    EachWay(std::string(c.Bytes), 0, [&c](TZmTextParser& parser) {
      for (const char byte : c.Bytes) ASSERT_EQ(parser.ReadCharW(), static_cast<unsigned char>(byte));
      ASSERT_TRUE(parser._GetEOF());
      parser.SetContentCodePage(c.Page);
      parser.First();
      EXPECT_EQ(parser.PeekString(99), c.Text);
      parser.Last();
      EXPECT_TRUE(parser._GetEOF());
      EXPECT_EQ(parser.PrevCharW(), c.Text.back());
    });
  EachWay("\xE9\xC1", 0, [](TZmTextParser& parser) {
    EXPECT_EQ(parser.ReadChar(), u'\u00E9');
    parser.SetContentCodePage(20866);
    EXPECT_EQ(parser.PeekString(9), u"\u0430") << "from here on";
    EXPECT_THROW(parser.SetContentCodePage(9), zm::EConvertError);
  });
}

TEST(TextParser, StartsWhereItsStreamStands) {
  struct TWatched : TShortStream {
    TWatched(const std::string& Bytes, bool& AGone) : TShortStream(Bytes, 3), Gone(AGone) {}
    ~TWatched() override { Gone = true; }
    bool& Gone;
  };
  const std::string bytes = "skipped<a>";
  bool gone = false;
  TWatched stream(bytes, gone);
  zm::TZmMemoryStream inPlace(bytes.data(), bytes.size());
  for (zm::TStream* const source : {static_cast<zm::TStream*>(&stream), static_cast<zm::TStream*>(&inPlace)}) {
    source->SetPosition(7);
    const auto parser = zm::Create<TZmTextParser>(source, false, std::uint16_t{65001});
    EXPECT_EQ(parser->GetPosition(), 0);
    EXPECT_EQ(parser->PrevCharW(), zm::cZmEOF);
    parser->Last();
    EXPECT_EQ(parser->GetPosition(), 3);
    parser->First();
    EXPECT_EQ(parser->PeekString(9), u"<a>");
  }
  EXPECT_FALSE(gone);
  { zm::Create<TZmTextParser>(zm::Create<TWatched>(bytes, gone).release(), true, std::uint16_t{65001}); }
  EXPECT_TRUE(gone);
}

constexpr std::uint16_t cLongPages[] = {65001, 1200, 932};

struct TCountedSeeks : TShortStream {
  using TShortStream::TShortStream;
  std::int64_t Seek(std::int64_t Offset, zm::TSeekOrigin Origin) override {
    Seeks++;
    return TShortStream::Seek(Offset, Origin);
  }
  int Seeks = 0;
};

// Several MB, far more than what is kept of a stream.
TEST(TextParser, RunsThroughLongStreams) {
  zm::String lines;
  for (int i = 0; i < 100000; i++) lines += u"\u30DD line " + zm::IntToStr(i) + (i % 3 == 0 ? u"\r\n" : u"\n");
  const zm::String text = u"\uFF71|" + lines + u"#x";
  for (const std::uint16_t page : cLongPages) {
    SCOPED_TRACE(page);
    const auto bytes = "skip" + zm::TZmEncoding::ConvertW(text, page);
    TCountedSeeks stream(bytes, 70001);
    stream.SetPosition(4);
    auto parser = zm::Create<TZmTextParser>(&stream, false, page);
    stream.Seeks = 0;
    parser->SkipWhile(zm::tsoNotEqual, u'|');
    EXPECT_EQ(parser->ReadChar(), u'|');
    parser->SetMark(zm::tppMark1);
    parser->SkipWhile(zm::tsoNotEqual, u'#');
    parser->SetMark(zm::tppMark2);
    parser->Last();
    EXPECT_EQ(parser->PrevCharW(), u'x');
    EXPECT_EQ(parser->GetColNr(), 3);
    EXPECT_TRUE(parser->Selected(zm::tppMark1, zm::tppMark2, true) == lines);
    EXPECT_EQ(stream.Seeks, 0) << "held by its mark";

    stream.SetPosition(4);
    parser = zm::Create<TZmTextParser>(&stream, false, page);
    parser->SkipWhile(zm::tsoNotEqual, u'#');
    EXPECT_LT(parser->Window().End - parser->Window().Begin, 1 << 20) << "what no mark needs is forgotten";
    EXPECT_EQ(parser->GetLineNr(), 100001);
    EXPECT_TRUE(parser->Selected(zm::tppMark1, zm::tppCurrent, true) == u"\uFF71|" + lines) << "from a forgotten place";
    EXPECT_EQ(parser->GetLineNr(), 100001);
    EXPECT_EQ(parser->PeekString(9), u"#x");
    parser->First();
    EXPECT_EQ(parser->CurrChar(), u'\uFF71');
  }
}

TEST(TextParser, CountsALineEndThatAWindowCutsOnce) {
  zm::String text;
  for (int i = 0; i < 200000; i++) text += u"\r\n";
  for (const std::uint16_t page : cLongPages)
    for (const zm::StringView before : {u""sv, u" "sv}) {  // one of the two lets a window end between CR and LF
      const auto bytes = zm::TZmEncoding::ConvertW(zm::String(before) + text + u"#", page);
      TShortStream stream(bytes, bytes.size());
      const auto parser = zm::Create<TZmTextParser>(&stream, false, page);
      parser->SkipWhile(zm::tsoNotEqual, u'#');
      EXPECT_EQ(PlaceText(parser->GetLineNr(), parser->GetColNr()), "200001:1 ") << page;
    }
}

}  // namespace
