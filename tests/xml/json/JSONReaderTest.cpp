#include "zamrit/xml/json/JSONReader.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/AllJSONWays.h"
#include "tests/support/JSONShortForm.h"
#include "tests/support/Raised.h"

namespace {

using namespace zm;

constexpr std::uint16_t cUTF8 = 65001, cUTF16 = 1200;

std::string ShortForm(std::string_view Document, bool AllowSurroundingSpace = false, std::uint16_t Page = cUTF8) {
  TZmJSONReader reader;
  reader.SetAllowSurroundingSpace(AllowSurroundingSpace);
  return TShortForm().Read(reader, Document, Page);
}

struct TCase {
  std::string Document, Events;
};

#define NO_VALUE "\"\", t, f, n, 0..9, ., + or -\" expected, but "
#define NO_ESCAPE "\"\", \\, /, b, f, n, r, t or u\" expected, but "

const TCase cDocuments[] = {
    {"", "D D"},
    {"  ", "D D"},
    {"true", "D B(true) D"},
    {" 42 ", "D N(42) D"},
    {"\"x\"\r\n\t", "D S(x) D"},
    {"null", "D Z(null) D"},
    {"[]", "D [ ] D"},
    {"[1,]", "D [ N(1) ] D"},
    {"[ ]", "D [ ] D"},
    {"{}", "D { } D"},
    {"{ }", "D { } D"},
    {"{\"a\":[true,false,null,\"s\",-1.5e3,{}],\"\":{\"b\":[[]]}}",
     "D { a: [ B(true) B(false) Z(null) S(s) N(-1.5e3) { } ] ; : { b: [ [ ] ] ; } ; } D"},
    {"{\"a\":1}{\"b\":2}", "D { a: N(1) ; } { b: N(2) ; } D"},
    {"[1][2]3", "D [ N(1) ] [ N(2) ] N(3) D"},
    {"{\"a\":1,\"a\":2}", "D { a: N(1) ; a: N(2) ; } D"},
    // What is passed over without a word.
    {"+1", "D N(+1) D"},
    {"[.5,-,1e,E,1.2.3,00012]", "D [ N(.5) N(-) N(1e) N(E) N(1.2.3) N(00012) ] D"},
    {"trueX", "D B(true) D"},
    {"12]", "D N(12) D"},
    {"12 rest", "D N(12) D"},
    {"\"abc", "D S(abc) D"},
    {"[1 2, 3]", "D [ N(1) N(3) ] D"},
    {"[1}2, 3]", "D [ N(1) N(3) ] D"},
    {"{\"a\":1 \"b\":2}", "D { a: N(1) ; } D"},
    {"{\"a\":1] ,\"b\":\"x\" junk}", "D { a: N(1) ; b: S(x) ; } D"},
    {"{\"a\" junk : 1}", "D { a: N(1) ; } D"},
    {"{junk \"a\":1}", "D { a: N(1) ; } D"},
    {"{ /* a */ \"x\": 1 }", "D { x: N(1) ; } D"},
    {"{\"a\":1", "D { a: N(1) ; } D"},
    {"[[{\"a\":true", "D [ [ { a: B(true) ; } ] ] D"},
    {"[\"a\nb\x01\"]", "D [ S(a\nb\x01) ] D"},
    {"[\"a\" \"b,3]", "D [ S(a) N(3) ] D"},
    // Escapes.
    {R"(["\u00e9","\"\\\/\b\f\n\r\t","a\\"])", R"(D [ S(\u00e9) S(\"\\\/\b\f\n\r\t) S(a\\) ] D)"},
    {R"(["\u12",3,"x"])", R"(D [ S(\u12",3,) ] D)"},
    {R"({"\u":1,"b":2})", R"(D { \u":1,: N(2) ; } D)"},
    {R"(["\u\"\\"])", R"(D [ S(\u\"\\"]) ] D)"},
    {R"(["\u\"\\n"])", R"(D [ S(\u\"\\n) ] D)"},
    {"[\"\\u\xF0\x9F\x98\x80\xF0\x9F\x98\x80\"]", "D [ S(\\u\xF0\x9F\x98\x80\xF0\x9F\x98\x80) ] D"},
    {"[\"\\u\xF0\x9F\x98\x80\"\"]", "D [ S(\\u\xF0\x9F\x98\x80\") ] D"},
    {R"(["\u12)", R"(D [ S(\u12) ] D)"},
    // What is refused, and where.
    {"[,]", "D [ 1:2 " NO_VALUE "\",\" found!"},
    {"[1,,2]", "D [ N(1) 1:4 " NO_VALUE "\",\" found!"},
    {"[", "D [ 1:2 " NO_VALUE "\"\" found!"},
    {"{\"a\":1}\n", "D { a: N(1) ; } 1:8 " NO_VALUE "\"\n\" found!"},
    {"\n{}", "D 1:1 " NO_VALUE "\"\n\" found!"},
    {"{\"a\":1,}", "D { a: N(1) ; 1:9 \"\"\" expected, but \"\" found!"},
    {"{\n\"a", "D { a: 2:3 " NO_VALUE "\"\" found!"},
    {"[\"\\x\"]", "D [ 1:4 " NO_ESCAPE "\"x\" found!"},
    {"[\"\\\xF0\x9F\x98\x80\"]", "D [ 1:4 " NO_ESCAPE "\"\xF0\x9F\x98\x80\" found!"},
    {"\"a\\", "D 1:4 " NO_ESCAPE "\"\" found!"},
    {"tru", "D 1:4 \"e\" expected, but \"\" found!"},
    {"[nul!]", "D [ 1:6 \"l\" expected, but \"]\" found!"},
    {"[falSe]", "D [ 1:6 \"s\" expected, but \"e\" found!"},
    {"true x", "D B(true) 1:6 \"\" expected, but \"x\" found!"},
    {"\"a\"\n\"b\"", "D S(a) 2:1 \"\" expected, but \"\"\" found!"},
    {"1,2", "D N(1) 1:3 \"\" expected, but \"2\" found!"},
    {"\xEF\xBB\xBF[]", "D 1:1 " NO_VALUE "\"\xEF\xBB\xBF\" found!"},
};

TEST(JSONReader, TellsWhatStandsInTheText) {
  for (const auto& [document, events] : cDocuments) EXPECT_EQ(ShortForm(document), events) << document;
}

TEST(JSONReader, TakesWhiteSpaceAroundTopLevelValuesWhenAsked) {
  const TCase cases[] = {
      {"\r\n\t{ \"a\" : [ ] } \n", "D { a: [ ] ; } D"},
      {"\n[1]\n[2]\n", "D [ N(1) ] [ N(2) ] D"},
      {"1\n2 \"x\"\ntrue null\n{}", "D N(1) N(2) S(x) B(true) Z(null) { } D"},
      {"12,\n3", "D N(12) N(3) D"},
      {"12 rest", "D N(12) 1:4 " NO_VALUE "\"r\" found!"},
      {"true,false", "D B(true) 1:6 \"\" expected, but \"f\" found!"},
  };
  for (const auto& [document, events] : cases) EXPECT_EQ(ShortForm(document, true), events) << document;
}

TEST(JSONReader, TellsTheSameInEveryStorageAndInPieces) {
  for (const auto& [document, events] : cDocuments)
    for (const std::uint16_t page : {cUTF8, cUTF16, std::uint16_t{1201}, std::uint16_t{936}})
      for (std::size_t size = 1; size <= 5; ++size) {
        const TAllJSONWays ways(TZmEncoding::ConvertW(FromUTF8(document), page), page, size % 2 == 0, size);
        EXPECT_EQ(ways.Whole, ways.Plain) << document << " in page " << page;
        EXPECT_EQ(ways.InPieces, ways.Whole) << document << " in page " << page << " by " << size;
      }
}

/// Reads through a single-byte page, which a descendant may ask for.
struct TLatinReader : TZmJSONReader {
  void InternalParse() override {
    FParser->SetContentCodePage(1252);
    TZmJSONReader::InternalParse();
  }
};

TEST(JSONReader, FindsTheEncoding) {
  const auto wide = [](std::u16string_view text) {
    return std::string(reinterpret_cast<const char*>(text.data()), text.size() * 2);
  };
  const std::string refused = ToUTF8(_SEncodingNotSupported);
  const struct {
    std::string Document;
    std::uint16_t Page;
    std::string Events;
  } cases[] = {
      {"[\"\xC3\xA9\"]", 0, "D [ S(\xC3\xA9) ] D"},
      {"[\"\xC3\xA9\"]", 1252, "D [ S(\xC3\xA9) ] D"},
      {"[\"\xE9\"]", 1252, "D [ S(\xEF\xBF\xBD) ] D"},
      {wide(u"[\"\u00E9\"]"), 1252, "D [ S(\xC3\xA9) ] D"},
      {wide(u"[]"), 0, "D [ ] D"},
      {"1", 0, refused},
      {"1", cUTF8, "D N(1) D"},
      {"12", 0, "D N(12) D"},
      {"123", 1252, "D N(123) D"},
      {std::string("\0[\0]", 4), 0, refused},
      {std::string("\0\0\0[", 4), 0, refused},
      {std::string("[\0\0\0", 4), 0, refused},
  };
  for (const auto& [document, page, events] : cases) EXPECT_EQ(ShortForm(document, false, page), events);
  TLatinReader latin;
  EXPECT_EQ(TShortForm().Read(latin, "{\"\xE9\":\"\x80\\n\"}"), "D { \xC3\xA9: S(\xE2\x82\xAC\\n) ; } D");
}

TEST(JSONReader, AgreesWithThePlainReaderOnAnything) {
  static constexpr std::string_view pieces[] = {"{",
                                                "}",
                                                "[",
                                                "]",
                                                ",",
                                                ":",
                                                "\"",
                                                "\\",
                                                "\\u12",
                                                "true",
                                                "nul",
                                                "l",
                                                "1",
                                                "e",
                                                " ",
                                                "\n",
                                                "\r",
                                                "\xC3\xA9",
                                                "\xF0\x9F\x98\x80",
                                                "\xE2\x82",
                                                "{\"a\":",
                                                "\"b\":",
                                                "\",",
                                                "\"],[\""};
  std::mt19937 random(7);
  for (int i = 0; i < 20000; ++i) {
    std::string document = i % 2 == 0 ? "[" : "";
    for (auto left = random() % 24; left > 0; --left) document += pieces[random() % std::size(pieces)];
    const TAllJSONWays ways(document, cUTF8, i % 3 == 0, 1 + random() % 7);
    ASSERT_EQ(ways.Whole, ways.Plain) << document;
    ASSERT_EQ(ways.InPieces, ways.Whole) << document;
  }
}

TEST(JSONReader, KeepsATokenTogetherWhenTheWindowMoves) {
  std::string document = "[";
  for (const std::size_t size : {65530u, 300000u, 3u, 1000000u})
    document += "{\"" + std::string(size, 'n') + "\":\"" + std::string(size, 'v') + "\\n\"}, " +
                std::string(size, '7') + std::string(size, ' ') + ",";
  document += "true]";
  EXPECT_TRUE(TAllJSONWays(document, cUTF8, false, 4093).Agree());
}

TEST(JSONReader, NestsAMillionDeep) {
  constexpr std::size_t depth = 1000000;
  struct TDepth : TZmJSONDefaultHandler {
    std::size_t Starts = 0, Ends = 0;
    void StartArray() override { ++Starts; }
    void StartObject() override { ++Starts; }
    void EndArray() override { ++Ends; }
    void EndObject() override { ++Ends; }
  };
  std::string mixed;
  for (std::size_t i = 0; i < depth / 2; ++i) mixed += "{\"a\":[";
  for (const auto& text : {std::string(depth, '[') + "1", mixed + "1", mixed + "]"}) {
    TDepth handler;
    TZmJSONReader reader;
    reader.SetHandler(&handler);
    reader.Parse(std::string_view(text), cUTF8);
    EXPECT_EQ(handler.Starts, depth);
    EXPECT_EQ(handler.Ends, depth);
  }
}

TEST(JSONReader, NeedsBothHandlersAndTellsNobodyWithoutThem) {
  TShortForm handler;
  TZmJSONReader reader;
  EXPECT_EQ(Raised<EZmJSONException>([&] { reader.Parse("12"); }), "No contenthandler has been assigned!");
  reader.SetContentHandler(&handler);
  EXPECT_EQ(Raised<EZmJSONException>([&] { reader.Parse("12"); }), "No errorhandler has been assigned!");
  EXPECT_EQ(handler.Text, "");
}

TEST(JSONReader, KnowsItsPlaceAndNameOnlyWhileItReads) {
  struct TAsking : TZmJSONDefaultHandler {
    IZmJSONLocator* Locator = nullptr;
    std::string Places;
    void StartMember(StringView) override { Places += PlaceText(Locator->GetLineNr(), Locator->GetColNr()); }
    void EndObject() override {
      Places += ToUTF8(Locator->GetPublicID().Text());
      throw EZmTextParserEOF();
    }
  } handler;
  TZmJSONReader reader;
  EXPECT_EQ(reader.GetPublicID().Text(), IntToStr(static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(&reader))));
  handler.Locator = &reader;
  reader.SetHandler(&handler);
  EXPECT_EQ(Raised<EZmTextParserEOF>([&] { reader.Parse(u"{\n \"a\":1}", u"id"); }), "Unexpected end of input!");
  EXPECT_EQ(handler.Places, "2:4 id");
  EXPECT_EQ(reader.GetLineNr(), -1);
  // The end-of-input exception is remembered until the next failure.
  EXPECT_EQ(Raised<EZmTextParserEOF>([&] { reader.Parse(u"{\"a\":1}"); }), "Unexpected end of input!");
  EXPECT_EQ(handler.Places, "2:4 id-1:-1 ");
  reader.SetHandler(nullptr);
}

TEST(JSONReader, MayBeUsedFromInsideAnEvent) {
  struct TMeddler : TZmJSONDefaultHandler {
    TZmOwner<TZmJSONReader> Reader = Create<TZmJSONReader>();
    TShortForm Next;
    std::string Refusal;
    void StartMember(StringView) override {
      Refusal = Raised<EZmJSONException>([this] { Reader->Parse("2"); });
      Reader->SetContentHandler(&Next);
    }
  } meddler;
  TZmJSONReader* const reader = meddler.Reader.get();
  reader->SetHandler(&meddler);
  reader->Parse("{\"a\":1}");
  EXPECT_EQ(meddler.Refusal, "The reader is already parsing!");
  EXPECT_EQ(meddler.Next.Text, "N(1) ; } D");

  struct TFreeing : TZmJSONDefaultHandler {
    TZmOwner<TZmJSONReader> Reader = Create<TZmJSONReader>();
    int Events = 0;
    void StartObject() override { Reader.reset(); }
    void EndObject() override { ++Events; }
  } freeing;
  freeing.Reader->SetHandler(&freeing);
  freeing.Reader->Parse("{\"a\":1}");
  EXPECT_EQ(freeing.Events, 1);
}

TEST(JSONReader, ReadsAFileByItsByteOrderMark) {
  const std::string name = testing::TempDir() + "zamrit-json-mark.json";
  {
    TFileStream file(std::string_view(name), fmCreate);
    file.WriteBuffer("\xEF\xBB\xBF[\"\xC3\xA9\"]", 9);
  }
  TZmJSONReader reader;
  TShortForm handler;
  reader.SetHandler(&handler);
  reader.ParseFile(name);
  EXPECT_EQ(handler.Text, "D [ S(\xC3\xA9) ] D");
  EXPECT_THROW(reader.ParseFile(name + ".missing"), EFOpenError);
}

}  // namespace
