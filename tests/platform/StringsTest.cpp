#include <gtest/gtest.h>

#include <cstdint>

#include "zamrit/platform/Exceptions.h"

namespace {

using namespace std::string_view_literals;

// Sequences that are well-formed, with their text; that are cut, one U+FFFD each; and in which each byte is one U+FFFD.
const std::pair<std::string_view, zm::StringView> cWellFormed[] = {
    {"\0\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF"sv, u"\0\u007F\u0080\u07FF\u0800\uD7FF"sv},
    {"\xEE\x80\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\uE000\uFFFF\U00010000\U0010FFFF"}};
const std::string_view cCut[] = {"\x80",         "\xBF",         "\xC2",     "\xDF",     "\xE0", "\xE0\xA0",
                                 "\xE1\x80",     "\xED",         "\xED\x9F", "\xEF\xBF", "\xF0", "\xF0\x90",
                                 "\xF0\x9F\x98", "\xF1\x80\x80", "\xF4",     "\xF4\x8F", "\xFF", "\xF4\x8F\xBF"};
const std::string_view cBad[] = {"\xC0\xAF\xC1\xBF\xFE\xFF", "\xE0\x80\x80\xE0\x9F\xBF",
                                 "\xED\xA0\x80\xED\xAF\xBF\xED\xBF\xBF", "\xF0\x80\x80\x80\xF0\x8F\xBF\xBF",
                                 "\xF4\x90\x80\x80\xF5\x80\x80\x80\xF8\x88\x80\x80\x80"};

TEST(UTF8, IsReadAtEveryOffset) {
  std::vector<std::pair<std::string, zm::String>> cases(std::begin(cWellFormed), std::end(cWellFormed));
  for (const auto cut : cCut) cases.emplace_back(cut, u"\uFFFD");
  for (const auto bad : cBad) cases.emplace_back(bad, zm::String(bad.size(), u'\uFFFD'));
  cases.emplace_back("\xF1\x80\x80\xE1\x80\xC2", u"\uFFFD\uFFFD\uFFFD");
  const std::pair<std::string, zm::String> fills[] = {
      {"x", u"x"}, {"\xD0\xB6", u"\u0436"}, {"\xE2\x82\xAC ", u"\u20AC "}};
  for (const auto& [bytes, text] : cases)
    for (const auto& before : fills)
      for (const auto& behind : fills) {
        std::string in = bytes;
        zm::String out = text;
        for (int i = 0; i < 34; i++, in = before.first + in, out = before.second + out) {
          std::string inBehind = in;
          zm::String outBehind = out;
          for (int j = 0; j < 18; j++, inBehind += behind.first, outBehind += behind.second)
            ASSERT_EQ(zm::FromUTF8(inBehind), outBehind) << i << " in front, " << j << " behind";
        }
      }
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
                                    {u"\u03A3\u03C3\u03C2", u"\u03C2\u03A3\u03C3"},
                                    {u"\u00DF", u"\u1E9E"},
                                    {u"x\U00010400", u"X\U00010428"},
                                    {u"\xD801", u"\xD801"}};
  const zm::StringView different[][2] = {{u"a", u"b"},       {u"a", u"aa"},          {u"@[", u"`{"},
                                         {u"\u00DF", u"ss"}, {u"\u0130", u"i"},      {u"\u00D7", u"\u00F7"},
                                         {u"k", u"\u014B"},  {u"\xD801", u"\xD802"}, {u"\U00010400", u"\U00010429"}};
  const auto check = [](zm::StringView left, zm::StringView right, bool areSame) {
    EXPECT_EQ(zm::SameText(left, right), areSame) << zm::ToUTF8(left);
    EXPECT_EQ(zm::SameText(right, left), areSame) << zm::ToUTF8(left);
    EXPECT_EQ(zm::FoldCase(left) == zm::FoldCase(right), areSame) << zm::ToUTF8(left);
  };
  for (const auto& [left, right] : same) check(left, right, true);
  for (const auto& [left, right] : different) check(left, right, false);
}

TEST(Trim, TakesControlCharactersToo) {
  const zm::StringView text = u"\0\t \u00A0 a b\r\n\x1F"sv;
  EXPECT_EQ(zm::Trim(text), u"\u00A0 a b");
  EXPECT_EQ(zm::Trim(text).data(), text.data() + 3);
  EXPECT_EQ(zm::Trim(u" \n"), u"");
  EXPECT_EQ(zm::Trim(u""), u"");
}

}  // namespace
