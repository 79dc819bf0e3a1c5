#include <gtest/gtest.h>

#include <cstdint>

#include "zamrit/platform/Exceptions.h"

namespace {

using namespace std::string_view_literals;

// Bytes and the code points that they are; each maximal ill-formed sequence is one U+FFFD.
struct TBytesCase {
  std::string_view Bytes;
  zm::StringView Text;
};
const TBytesCase cBytesCases[] = {
    {"\0"sv, u"\0"sv},
    {"\x7F", u"\u007F"},
    {"\xC2\x80", u"\u0080"},
    {"\xDF\xBF", u"\u07FF"},
    {"\xE0\xA0\x80", u"\u0800"},
    {"\xED\x9F\xBF", u"\uD7FF"},
    {"\xEE\x80\x80", u"\uE000"},
    {"\xEF\xBF\xBF", u"\uFFFF"},
    {"\xF0\x90\x80\x80", u"\U00010000"},
    {"\xF4\x8F\xBF\xBF", u"\U0010FFFF"},
    {"\x80", u"\uFFFD"},
    {"\xBF\x80", u"\uFFFD\uFFFD"},
    {"\xC0\xAF", u"\uFFFD\uFFFD"},
    {"\xC1\xBF", u"\uFFFD\uFFFD"},
    {"\xC2", u"\uFFFD"},
    {"\xDF\xC2\x80", u"\uFFFD\u0080"},
    {"\xE0\x80\x80", u"\uFFFD\uFFFD\uFFFD"},
    {"\xE0\x9F\xBF", u"\uFFFD\uFFFD\uFFFD"},
    {"\xE0\xA0", u"\uFFFD"},
    {"\xE1", u"\uFFFD"},
    {"\xE1\x80\xE2\x82\xAC", u"\uFFFD\u20AC"},
    {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
    {"\xED\xAF\xBF\xED\xBF\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"\xED\x9F", u"\uFFFD"},
    {"\xEF\xBF", u"\uFFFD"},
    {"\xF0\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"\xF0\x8F\xBF\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"\xF0", u"\uFFFD"},
    {"\xF0\x90", u"\uFFFD"},
    {"\xF0\x9F\x98", u"\uFFFD"},
    {"\xF1\x80\x80\xE1\x80\xC2"
     "b\x80"
     "c\x80\xBF"
     "d",
     u"\uFFFD\uFFFD\uFFFDb\uFFFDc\uFFFD\uFFFDd"},
    {"\xF4\x8F\xBF", u"\uFFFD"},
    {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"\xF5\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"\xF8\x88\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"\xFE\xFF", u"\uFFFD\uFFFD"},
};

TEST(UTF8, IsReadAtEveryOffset) {
  const TBytesCase fills[] = {{"x", u"x"}, {"\xD0\xB6", u"\u0436"}, {"\xE2\x82\xAC ", u"\u20AC "}};
  for (const auto& [bytes, text] : cBytesCases)
    for (const auto& before : fills)
      for (const auto& behind : fills) {
        std::string in;
        zm::String out;
        for (int i = 0; i < 34; i++, in += before.Bytes, out += before.Text) {
          ASSERT_EQ(zm::FromUTF8(in + std::string(bytes)), out + zm::String(text)) << i << " in front, none behind";
          std::string inBehind = in + std::string(bytes);
          zm::String outBehind = out + zm::String(text);
          for (int j = 0; j < 18; j += 3) {
            for (int k = 0; k < 3; k++, inBehind += behind.Bytes) outBehind += behind.Text;
            ASSERT_EQ(zm::FromUTF8(inBehind), outBehind) << i << " in front, " << j + 3 << " behind";
          }
        }
      }
}

TEST(UTF8, EveryCodePointComesBack) {
  zm::String all;
  std::size_t bytes = 0;
  for (char32_t c = 0; c < 0x110000; c++) {
    if (c >= 0xD800 && c < 0xE000) continue;
    if (c >= 0x10000) all += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
    all += static_cast<char16_t>(c < 0x10000 ? c : 0xDC00 + (c & 0x3FF));
    bytes += c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
  }
  const auto narrow = zm::ToUTF8(all);
  EXPECT_EQ(narrow.size(), bytes);
  EXPECT_TRUE(zm::FromUTF8(narrow) == all);
}

TEST(UTF8, LoneSurrogatesAreReplaced) {
  EXPECT_EQ(zm::ToUTF8(u"\xD83D\xDE00|\xD83D|\xDE00\xD83D|\xD83D\xD83D\xDE00"),
            "\xF0\x9F\x98\x80|\xEF\xBF\xBD|\xEF\xBF\xBD\xEF\xBF\xBD|\xEF\xBF\xBD\xF0\x9F\x98\x80");
}

TEST(Format, FillsPlaceholders) {
  const zm::String text = u"t";
  EXPECT_EQ(zm::Format(u"", {}), u"");
  EXPECT_EQ(zm::Format(u"a%sb%d%%c%s", {text, -12, u"\xD800"}), u"atb-12%c\xD800");
  EXPECT_EQ(zm::Format(u"%s%d", {INT64_MIN, std::uint8_t{255}}), u"-9223372036854775808255");
  EXPECT_EQ(zm::Format(u"%s", {u"%d"}), u"%d");
  for (const zm::StringView bad : {u"%d"sv, u"%x"sv, u"%"sv, u"%s%s"sv, u"%5d"sv})
    EXPECT_THROW(zm::Format(bad, {text}), zm::EConvertError) << zm::ToUTF8(bad);
}

TEST(SameText, IgnoresCaseBySimpleFolding) {
  const zm::StringView same[][2] = {{u"", u""},
                                    {u"aZ09[", u"Az09["},
                                    {u"\u00C4\u0416", u"\u00E4\u0436"},
                                    {u"\u017Fet", u"SET"},  // long s
                                    {u"o\u212A", u"OK"},    // Kelvin sign
                                    {u"\u212B", u"\u00E5"},
                                    {u"\u03A3\u03C3\u03C2", u"\u03C2\u03A3\u03C3"},
                                    {u"\u00DF", u"\u1E9E"},
                                    {u"x\U00010400", u"X\U00010428"},
                                    {u"\xD801", u"\xD801"}};
  for (const auto& [left, right] : same) {
    EXPECT_TRUE(zm::SameText(left, right)) << zm::ToUTF8(left);
    EXPECT_TRUE(zm::SameText(right, left)) << zm::ToUTF8(right);
    EXPECT_EQ(zm::FoldCase(left), zm::FoldCase(right));
  }
  const zm::StringView different[][2] = {{u"a", u"b"},       {u"a", u"aa"},          {u"@[", u"`{"},
                                         {u"\u00DF", u"ss"}, {u"\u0130", u"i"},      {u"\u00D7", u"\u00F7"},
                                         {u"k", u"\u014B"},  {u"\xD801", u"\xD802"}, {u"\U00010400", u"\U00010429"}};
  for (const auto& [left, right] : different) {
    EXPECT_FALSE(zm::SameText(left, right)) << zm::ToUTF8(left);
    EXPECT_FALSE(zm::SameText(right, left)) << zm::ToUTF8(left);
  }
}

TEST(LowerCase, MapsEachCharacterToOne) {
  EXPECT_EQ(zm::LowerCase(u"aZ@[\u00C4\u03A3\u0130\u1E9E\U00010400\xD801"), u"az@[\u00E4\u03C3i\u00DF\U00010428\xD801");
}

TEST(Trim, TakesControlCharactersToo) {
  const zm::StringView text = u"\0\t \u00A0 a b\r\n\x1F"sv;
  EXPECT_EQ(zm::Trim(text), u"\u00A0 a b");
  EXPECT_EQ(zm::Trim(text).data(), text.data() + 3);
  EXPECT_EQ(zm::Trim(u" \n"), u"");
  EXPECT_EQ(zm::Trim(u""), u"");
}

TEST(IntToStr, CoversTheWholeRange) {
  EXPECT_EQ(zm::IntToStr(0), u"0");
  EXPECT_EQ(zm::IntToStr(INT64_MAX), u"9223372036854775807");
  EXPECT_EQ(zm::IntToStr(INT64_MIN), u"-9223372036854775808");
}

}  // namespace
