#include <gtest/gtest.h>

#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/Raised.h"
#include "zamrit/platform/CodePages.h"

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

using TPages = std::initializer_list<std::uint16_t>;

// Decodes in pieces of InSize bytes into OutSize units at a time.
zm::String DecodeInPieces(zm::TPageDecoder& Decoder, std::string_view Bytes, std::size_t InSize, std::size_t OutSize) {
  zm::String text;
  std::vector<char16_t> room(OutSize);
  for (bool ended = false; !ended;) {
    const auto piece = Bytes.substr(0, InSize);
    Bytes.remove_prefix(piece.size());
    ended = Bytes.empty();
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

TEST(CodePages, NamesAndSizes) {
  // The preferred name stands first.
  const struct {
    std::uint16_t Page;
    int MaxCharSize;
    const char* Names;
  } cases[] = {{65001, 4, "UTF-8 utf8 unicode-1-1-utf-8 cp65001 ibm-1208"},
               {1200, 4, "UTF-16 utf-16le UCS-2 cp1200 windows-1200"},
               {1201, 4, "UTF-16BE windows-1201"},
               {12000, 4, "UTF-32LE UTF-32"},
               {12001, 4, "UTF-32BE"},
               {20127, 1, "US-ASCII ascii ANSI_X3.4-1968 cp367"},
               {28591, 1, "ISO-8859-1 latin1 iso_8859-1 cp819 windows-28591"},
               {28605, 1, "ISO-8859-15 latin-9"},
               {1252, 1, "windows-1252 CP1252"},
               {437, 1, "IBM437 cp437"},
               {20866, 1, "KOI8-R csKOI8R"},
               {37, 1, "IBM037 cp037 ebcdic-cp-us"},
               {932, 2, "Shift_JIS sjis windows-31j cp932"},
               {936, 2, "GBK gb2312 cp936"},
               {949, 2, "EUC-KR ks_c_5601-1987 cp949"},
               {950, 2, "Big5 cp950"},
               {51932, 3, "EUC-JP"},
               {54936, 4, "GB18030"},
               {50220, 6, "ISO-2022-JP csISO2022JP"},
               {922, 1, "cp922 ibm-922 windows-922"},
               {57002, 4, "cp57002 windows-57002"}};
  for (const auto& c : cases) {
    EXPECT_EQ(zm::MaxCharSize(c.Page), c.MaxCharSize) << c.Page;
    EXPECT_EQ(zm::ToUTF8(zm::CodePageName(c.Page)), std::string(c.Names).substr(0, std::string(c.Names).find(' ')));
    std::istringstream names(c.Names);
    for (std::string name; names >> name;)
      EXPECT_EQ(zm::CodePageOfName(zm::FromUTF8("\t" + name + " ")), c.Page) << name;
  }
  EXPECT_EQ(zm::CodePageName(0), u"UTF-8");
}

TEST(CodePages, UnknownOnes) {
  const std::string long64(64, 'x'), long63(63, 'x'), cut = "\xE2\x80\xA6";
  const std::pair<std::string, std::string> cases[] = {{" \t", ""},
                                                       {"-", "-"},
                                                       {"cp0", "cp0"},
                                                       {"cp65537", "cp65537"},
                                                       {"SCSU", "SCSU"},
                                                       {long64, long64},
                                                       {long64 + "x", long64 + cut},
                                                       {long63 + "\xF0\x9F\x98\x80", long63 + cut},
                                                       {"\xC3\xA4", "\xC3\xA4"},
                                                       {"utf-8,version=1", "utf-8,version=1"},
                                                       {std::string(1 << 20, 'x'), long64 + cut}};
  for (const auto& c : cases)
    EXPECT_EQ(Raised<zm::EConvertError>([&] { zm::CodePageOfName(zm::FromUTF8(c.first)); }),
              "Unknown encoding \"" + c.second + "\"");
  EXPECT_THROW(zm::CodePageOfName(u"utf\0-8"s), zm::EConvertError);
  for (const auto page : TPages{1, 1199, 28607, 65535}) {
    const std::string text = "Unknown code page " + std::to_string(page);
    EXPECT_EQ(Raised<zm::EConvertError>([&] { zm::CodePageName(page); }), text);
    EXPECT_EQ(Raised<zm::EConvertError>([&] { zm::EncodePage(u"", page); }), text);
    EXPECT_EQ(Raised<zm::EConvertError>([&] { zm::DecodePage("", page); }), text);
    EXPECT_FALSE(zm::IsKnownCodePage(page));
    EXPECT_EQ(zm::MaxCharSize(page), 0);
    EXPECT_EQ(zm::SingleBytePage(page), nullptr);
  }
}

struct TSample {
  std::uint16_t Page;
  zm::StringView Text;
  std::string_view Bytes;
};

TEST(CodePages, BothWays) {
  const TSample cases[] = {{0, u"\u00E4\u20AC", "\xC3\xA4\xE2\x82\xAC"},
                           {1200, u"\u20ACa\xD83D", "\xAC\x20\x61\0\x3D\xD8"sv},
                           {1201, u"\u20ACa\xD83D", "\x20\xAC\0a\xD8\x3D"sv},
                           {12000, u"a\U0001F600", "a\0\0\0\0\xF6\x01\0"sv},
                           {12001, u"a\U0001F600", "\0\0\0a\0\x01\xF6\0"sv},
                           {65000, u"a\u00E4", "a+AOQ-"},
                           {1252, u"\u20AC\u00E4", "\x80\xE4"},
                           {437, u"\x1A\u00E9", "\x1A\x82"},
                           {37, u"aA1", "\x81\xC1\xF1"},
                           {932, u"\u8868\\\uFF71", "\x95\x5C\x5C\xB1"},
                           {949, u"\uD55C\uB620", "\xC7\xD1\x8C\x63"},
                           {50220, u"a\u3042b", "a\x1B$B$\"\x1B(Bb"},
                           {54936, u"\u20AC\U0001F600", "\xA2\xE3\x94\x39\xFC\x36"}};
  for (const auto& c : cases) {
    EXPECT_EQ(zm::EncodePage(c.Text, c.Page), c.Bytes) << c.Page;
    EXPECT_EQ(zm::DecodePage(c.Bytes, c.Page), c.Text) << c.Page;
  }
}

TEST(CodePages, CharactersThatAPageDoesNotHave) {
  const TSample cases[] = {
      {1252, u"a\u0430\U0001F600\xD83D\xDE00", "a???"}, {1252, u"\xD83D\x62\xDE00", "?b?"},
      {20127, u"\u00E4\uFFFD\u200B\uFF21", "????"},     {37, u"\u0430\u200B", "\x6F\x6F"},
      {932, u"\u0E01\U0001F600\u200B\xDE00", "????"},   {50220, u"\u0E01\u3042\u0E01", "?\x1B$B$\"\x1B(B?"},
      {65001, u"\xD83D\x62", "\xEF\xBF\xBD\x62"},       {12000, u"\xD83D", "\xFD\xFF\0\0"sv}};
  for (const auto& c : cases) EXPECT_EQ(zm::EncodePage(c.Text, c.Page), c.Bytes) << c.Page;
}

// The text is the same however bytes and room are cut, also by a decoder that has been used before.
TEST(CodePages, BadBytes) {
  const TSample cases[] = {{65001, u"\uFFFD(\uFFFD\uFFFDx\uFFFD", "\xE2\x82(\xC0\xAFx\xF0\x9F\x98"},
                           {65001, u"\uFEFFa\uFFFE\U0010FFFF", "\xEF\xBB\xBF\x61\xEF\xBF\xBE\xF4\x8F\xBF\xBF"},
                           {1200, u"\xDE00\x61\xFFFD", "\0\xDE\x61\0b"sv},
                           {1201, u"\xDE00\x61\x62\xFFFD", "\xDE\0\0a\0bc"sv},
                           {12000, u"a\uFFFD\uFFFD\uFFFD", "a\0\0\0\0\xD8\0\0\0\0\x11\0b\0\0"sv},
                           {932, u"\uFFFD\"\u8868\uFFFDa\uFFFD", "\x81\"\x95\x5C\xA0\x61\x95"},
                           {936, u"\uFFFD<\u4E2D\uFFFD", "\x81<\xD6\xD0\xD6"},
                           {950, u"\uFFFD<\u529F\uFFFD", "\x81<\xA5\x5C\xA5"},
                           {51932, u"\uFFFD<\u3042\uFFFD", "\x8F<\xA4\xA2\xA4"},
                           {54936, u"\U0001F600\uFFFD<\uFFFD", "\x94\x39\xFC\x36\x81<\x94\x39\xFC"},
                           {50220, u"a\u3042b\u3042", "a\x1B$B$\"\x1B(Bb\x1B$B$\""},
                           {37, u"aA1", "\x81\xC1\xF1"}};
  for (const auto& c : cases) {
    EXPECT_EQ(zm::DecodePage(c.Bytes, c.Page), c.Text) << c.Page;
    zm::TPageDecoder decoder(c.Page);
    char16_t room[8];
    char16_t* end = room;
    const char* byte = "\xE2";
    decoder.Decode(byte, byte + 1, end, room + 8, false);
    decoder.Reset();
    for (std::size_t in = 1; in <= 5; ++in)
      for (std::size_t out = 1; out <= 3; ++out)
        EXPECT_EQ(DecodeInPieces(decoder, c.Bytes, in, out), c.Text) << c.Page << ' ' << in << ' ' << out;
  }
}

}  // namespace
