#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/Raised.h"
#include "zamrit/platform/CodePages.h"

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr std::uint16_t cPages[] = {65001, 1200,  1201,  12000, 12001, 65000, 20127, 28591, 28592, 28593, 28594, 28595,
                                    28596, 28597, 28598, 28599, 28600, 28601, 28603, 28604, 28605, 38598, 1250,  1251,
                                    1252,  1253,  1254,  1255,  1256,  1257,  1258,  874,   20866, 21866, 932,   936,
                                    949,   950,   54936, 51932, 50220, 50225, 52936, 437,   720,   737,   775,   850,
                                    852,   855,   857,   858,   860,   861,   862,   863,   864,   865,   866,   869,
                                    37,    500,   870,   875,   1026,  1047,  1140,  1149,  10000, 10007, 10029, 10081};

// Decodes in pieces of InSize bytes into OutSize units at a time.
zm::String DecodeInPieces(zm::TPageDecoder& Decoder, std::string_view Bytes, std::size_t InSize, std::size_t OutSize) {
  zm::String text;
  std::vector<char16_t> room(OutSize);
  for (bool ended = false; !ended;) {
    const auto piece = Bytes.substr(0, InSize);
    Bytes.remove_prefix(piece.size());
    ended = piece.empty();
    const char *in = piece.data(), *const end = in + piece.size();
    for (bool written = true; in != end || written;) {
      char16_t* out = room.data();
      Decoder.Decode(in, end, out, room.data() + OutSize, ended);
      text.append(room.data(), out);
      written = out != room.data();
    }
  }
  return text;
}

TEST(CodePages, Names) {
  const struct {
    zm::StringView Name;
    std::uint16_t Page;
  } cases[] = {
      {u"UTF-8", 65001},
      {u" utf8\t", 65001},
      {u"unicode-1-1-utf-8", 65001},
      {u"cp65001", 65001},
      {u"ibm-1208", 65001},
      {u"UTF-16", 1200},
      {u"utf-16le", 1200},
      {u"UCS-2", 1200},
      {u"cp1200", 1200},
      {u"UTF-16BE", 1201},
      {u"windows-1201", 1201},
      {u"UTF-32", 12000},
      {u"utf-32le", 12000},
      {u"UTF-32BE", 12001},
      {u"us-ascii", 20127},
      {u"ASCII", 20127},
      {u"cp367", 20127},
      {u"ISO-8859-1", 28591},
      {u"latin1", 28591},
      {u"cp819", 28591},
      {u"iso_8859-15", 28605},
      {u"Windows-1252", 1252},
      {u"cp1251", 1251},
      {u"CP437", 437},
      {u"IBM850", 850},
      {u"koi8-r", 20866},
      {u"KOI8-U", 21866},
      {u"Shift_JIS", 932},
      {u"sjis", 932},
      {u"windows-31j", 932},
      {u"cp932", 932},
      {u"gbk", 936},
      {u"GB2312", 936},
      {u"cp936", 936},
      {u"euc-kr", 949},
      {u"ks_c_5601-1987", 949},
      {u"cp949", 949},
      {u"Big5", 950},
      {u"cp950", 950},
      {u"gb18030", 54936},
      {u"EUC-JP", 51932},
      {u"iso-2022-jp", 50220},
      {u"csISO2022JP", 50220},
      {u"macintosh", 10000},
      {u"IBM037", 37},
      {u"ebcdic-cp-us", 37},
      {u"windows-57002", 57002},
      {u"ibm-922", 922},
      {u"cp922", 922},
  };
  for (const auto& c : cases) EXPECT_EQ(zm::CodePageOfName(c.Name), c.Page) << zm::ToUTF8(c.Name);
}

TEST(CodePages, EveryPageIsKnownByItsName) {
  for (const auto page : cPages) {
    EXPECT_TRUE(zm::IsKnownCodePage(page)) << page;
    EXPECT_EQ(zm::CodePageOfName(zm::CodePageName(page)), page);
  }
  EXPECT_EQ(zm::CodePageName(1200), u"UTF-16");
  EXPECT_EQ(zm::CodePageName(0), u"UTF-8");
  EXPECT_EQ(zm::CodePageName(932), u"Shift_JIS");
  EXPECT_EQ(zm::CodePageName(922), u"cp922");
}

TEST(CodePages, UnknownOnes) {
  const std::string long64(64, 'x');
  const struct {
    std::string Name, Shown;
  } cases[] = {
      {"", ""},
      {"  ", ""},
      {"x", "x"},
      {"-", "-"},
      {"utf-8,version=1", "utf-8,version=1"},
      {"cp0", "cp0"},
      {"cp1", "cp1"},
      {"cp65537", "cp65537"},
      {"cp-1252", "cp-1252"},
      {"SCSU", "SCSU"},
      {"utf\0x"s, "utf"},
      {"\xC3\xA4", "\xC3\xA4"},
      {long64, long64},
      {long64 + "x", long64 + "\xE2\x80\xA6"},
      {std::string(63, 'x') + "\xF0\x9F\x98\x80", std::string(63, 'x') + "\xE2\x80\xA6"},
      {std::string(1 << 20, '.'), std::string(64, '.') + "\xE2\x80\xA6"},
  };
  for (const auto& c : cases) {
    const auto find = [&] { zm::CodePageOfName(zm::FromUTF8(c.Name)); };
    EXPECT_EQ(Raised<zm::EConvertError>(find).substr(0, 18 + c.Shown.size()), "Unknown encoding \"" + c.Shown);
  }
  for (const auto page : std::initializer_list<std::uint16_t>{1, 1199, 28606, 28607, 65535}) {
    if (zm::IsKnownCodePage(page)) continue;  // ISO-8859-16 is not in every ICU
    const std::string text = "Unknown code page " + std::to_string(page);
    EXPECT_EQ(Raised<zm::EConvertError>([&] { zm::CodePageName(page); }), text);
    EXPECT_EQ(Raised<zm::EConvertError>([&] { zm::EncodePage(u"", page); }), text);
    EXPECT_EQ(Raised<zm::EConvertError>([&] { zm::DecodePage("", page); }), text);
    EXPECT_EQ(zm::MaxCharSize(page), 0);
    EXPECT_EQ(zm::SingleBytePage(page), nullptr);
  }
  EXPECT_FALSE(zm::IsKnownCodePage(1));
}

TEST(CodePages, GreatestCharacterSize) {
  for (const auto& [page, size] : {std::pair<std::uint16_t, int>{0, 4},
                                   {65001, 4},
                                   {1200, 4},
                                   {1201, 4},
                                   {12000, 4},
                                   {20127, 1},
                                   {1252, 1},
                                   {37, 1},
                                   {866, 1},
                                   {932, 2},
                                   {936, 2},
                                   {949, 2},
                                   {950, 2},
                                   {51932, 3},
                                   {54936, 4}})
    EXPECT_EQ(zm::MaxCharSize(page), size) << page;
}

TEST(CodePages, SingleByteTables) {
  const struct {
    std::uint16_t Page;
    unsigned char Byte;
    char16_t Character;
  } cases[] = {{0, 0xE4, 0xE4},      {28591, 0x85, 0x85},  {1252, 0x80, 0x20AC}, {1252, 0x81, 0x81},
               {1251, 0xE0, 0x430},  {20866, 0xC1, 0x430}, {437, 0x82, 0xE9},    {437, 0x1A, 0x1A},
               {437, 0x7F, 0x7F},    {874, 0xA1, 0xE01},   {874, 0xDB, 0xFFFD},  {20127, 0x80, 0xFFFD},
               {1253, 0xAA, 0xFFFD}, {10000, 0x80, 0xC4}};
  for (const auto& c : cases) EXPECT_EQ(zm::SingleBytePage(c.Page)[c.Byte], c.Character) << c.Page << ' ' << +c.Byte;
  for (const auto page : std::initializer_list<std::uint16_t>{65001, 1200, 1201, 12000, 65000, 932, 50220, 37, 1047})
    EXPECT_EQ(zm::SingleBytePage(page), nullptr) << page;
}

TEST(CodePages, EveryByteOfASingleBytePageComesBack) {
  for (const auto page : cPages) {
    const char16_t* table = zm::SingleBytePage(page);
    if (!table) continue;
    zm::TPageDecoder decoder(page);
    for (int byte = 0; byte < 256; ++byte) {
      const std::string bytes(20, static_cast<char>(byte));  // long enough for a vector
      const zm::String text = zm::DecodePage(bytes, page);
      ASSERT_EQ(text, zm::String(20, table[byte])) << page << ' ' << byte;
      ASSERT_EQ(DecodeInPieces(decoder, bytes, 7, 3), text);
      ASSERT_TRUE(byte >= 0x80 || table[byte] == byte) << page << ' ' << byte;
      ASSERT_TRUE(table[byte] == 0xFFFD || zm::DecodePage(zm::EncodePage(text, page), page) == text)
          << page << ' ' << byte;
    }
  }
}

struct TSample {
  std::uint16_t Page;
  zm::StringView Text;
  std::string_view Bytes;
};

TEST(CodePages, Samples) {
  const TSample cases[] = {
      {0, u"\u00E4\u20AC", "\xC3\xA4\xE2\x82\xAC"},
      {65001, u"a\U0001F600", "a\xF0\x9F\x98\x80"},
      {1200, u"\u20ACa\xD83D",
       "\xAC\x20"sv
       "a\0\x3D\xD8"sv},
      {1201, u"\u20ACa\xD83D", "\x20\xAC\0a\xD8\x3D"sv},
      {12000, u"a\U0001F600", "a\0\0\0\0\xF6\x01\0"sv},
      {12001, u"a\U0001F600", "\0\0\0a\0\x01\xF6\0"sv},
      {65000, u"a\u00E4", "a+AOQ-"},
      {1252, u"\u20AC\u00E4", "\x80\xE4"},
      {437, u"\x1A\u00E9", "\x1A\x82"},
      {37, u"aA1", "\x81\xC1\xF1"},
      {932, u"\u8868\\\uFF71", "\x95\x5C\x5C\xB1"},
      {936, u"\u4E2D", "\xD6\xD0"},
      {949, u"\uD55C\uB620", "\xC7\xD1\x8C\x63"},
      {950, u"\u529F", "\xA5\x5C"},
      {51932, u"\u3042", "\xA4\xA2"},
      {50220, u"a\u3042b", "a\x1B$B$\"\x1B(Bb"},
      {54936, u"\u20AC\U0001F600", "\xA2\xE3\x94\x39\xFC\x36"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(zm::EncodePage(c.Text, c.Page), c.Bytes) << c.Page;
    EXPECT_EQ(zm::DecodePage(c.Bytes, c.Page), c.Text) << c.Page;
  }
}

TEST(CodePages, CharactersThatAPageDoesNotHave) {
  const TSample cases[] = {
      {1252, u"a\u0430\U0001F600\xD83D\xDE00", "a???"},
      {1252,
       u"\xD83D"
       u"b\xDE00",
       "?b?"},
      {20127, u"\u00E4\uFFFD\u200B\uFF21", "????"},
      {37, u"\u0430\u200B", "\x6F\x6F"},
      {932, u"\u0E01\U0001F600\u200B\xDE00", "????"},
      {50220, u"\u0E01\u3042\u0E01", "?\x1B$B$\"\x1B(B?"},
      {65001,
       u"\xD83D"
       u"b",
       "\xEF\xBF\xBD"
       "b"},
      {12000, u"\xD83D", "\xFD\xFF\0\0"sv},
  };
  for (const auto& c : cases) EXPECT_EQ(zm::EncodePage(c.Text, c.Page), c.Bytes) << c.Page;
}

// The text is the same however bytes and room are cut, also by a decoder that has been used before.
TEST(CodePages, BadBytes) {
  const TSample cases[] = {
      {65001, u"\uFFFD(\uFFFD\uFFFDx\uFFFD", "\xE2\x82(\xC0\xAFx\xF0\x9F\x98"},
      {65001, u"\uFEFFa\uFFFE\U0010FFFF",
       "\xEF\xBB\xBF"
       "a\xEF\xBF\xBE\xF4\x8F\xBF\xBF"},
      {1200,
       u"\xDE00"
       u"a\xFFFD",
       "\0\xDE"
       "a\0b"sv},
      {1201,
       u"\xDE00"
       u"ab\xFFFD",
       "\xDE\0\0a\0bc"sv},
      {12000, u"a\uFFFD\uFFFD\uFFFD", "a\0\0\0\0\xD8\0\0\0\0\x11\0b\0\0"sv},
      {932, u"\uFFFD\"\u8868\uFFFDa\uFFFD",
       "\x81\"\x95\x5C\xA0"
       "a\x95"},
      {936, u"\uFFFD<\u4E2D\uFFFD", "\x81<\xD6\xD0\xD6"},
      {950, u"\uFFFD<\u529F\uFFFD", "\x81<\xA5\x5C\xA5"},
      {51932, u"\uFFFD<\u3042\uFFFD", "\x8F<\xA4\xA2\xA4"},
      {54936, u"\U0001F600\uFFFD<\uFFFD", "\x94\x39\xFC\x36\x81<\x94\x39\xFC"},
      {50220, u"a\u3042b\u3042", "a\x1B$B$\"\x1B(Bb\x1B$B$\""},
      {37, u"aA1", "\x81\xC1\xF1"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(zm::DecodePage(c.Bytes, c.Page), c.Text) << c.Page;
    zm::TPageDecoder decoder(c.Page);
    for (std::size_t in = 1; in <= 5; ++in)
      for (std::size_t out = 1; out <= 3; ++out)
        EXPECT_EQ(DecodeInPieces(decoder, c.Bytes, in, out), c.Text) << c.Page << ' ' << in << ' ' << out;
    char16_t room[8];
    char16_t* out = room;
    const char* byte = "\xE2\x82";
    decoder.Decode(byte, byte + 1, out, room + 8, false);
    decoder.Reset();
    EXPECT_EQ(DecodeInPieces(decoder, c.Bytes, 99, 99), c.Text) << c.Page;
  }
}

// All sequences of bytes at the edges of what UTF-8 allows.
TEST(CodePages, StreamedUTF8IsAsWhole) {
  constexpr std::string_view edges = "a\x7F\x80\x8F\x90\x9F\xA0\xBF\xC1\xC2\xDF\xE0\xE1\xED\xEF\xF0\xF1\xF4\xF5";
  zm::TPageDecoder decoder(65001);
  std::string bytes(4, 'a');
  for (std::size_t i = 0; i < edges.size() * edges.size() * edges.size() * edges.size(); ++i) {
    for (std::size_t rest = i, at = 0; at < 4; ++at, rest /= edges.size()) bytes[at] = edges[rest % edges.size()];
    ASSERT_EQ(DecodeInPieces(decoder, bytes, 1 + i % 4, 8), zm::FromUTF8(bytes)) << i;
  }
}

TEST(CodePages, LongTextsInPagesOfSeveralBytes) {
  zm::String text;
  for (int i = 0; i < 20000; ++i) text += u"a\u4E2D\u00B1";
  for (const auto page : std::initializer_list<std::uint16_t>{936, 54936, 1201, 12001}) {
    const std::string bytes = zm::EncodePage(text, page);
    EXPECT_EQ(zm::DecodePage(bytes, page), text) << page;
    zm::TPageDecoder decoder(page);
    EXPECT_EQ(DecodeInPieces(decoder, bytes, 1021, 64), text) << page;
  }
}

TEST(CodePages, FirstUseByManyThreads) {
  std::vector<std::thread> threads;
  std::vector<const char16_t*> tables(8);
  for (auto& table : tables)
    threads.emplace_back([&table] {
      for (const auto page : std::initializer_list<std::uint16_t>{28592, 28594, 28597, 775, 869})
        table = zm::SingleBytePage(page);
    });
  for (auto& thread : threads) thread.join();
  for (const auto* table : tables) EXPECT_EQ(table, zm::SingleBytePage(869));
}

}  // namespace
