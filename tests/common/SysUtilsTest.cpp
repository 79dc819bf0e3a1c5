#include "zamrit/common/SysUtils.h"

#include <gtest/gtest.h>

namespace {

using zm::String;
using zm::StringView;

TEST(StringReplace, FindsFirstOrAll) {
  const struct {
    StringView Text, Old, New;
    zm::TReplaceFlags Flags;
    StringView Out;
  } cases[] = {{u"abcabc", u"ab", u"X", {}, u"Xcabc"},
               {u"abcabc", u"ab", u"X", {zm::rfReplaceAll}, u"XcXc"},
               {u"aaa", u"aa", u"aaa", {zm::rfReplaceAll}, u"aaaa"},
               {u"\u00C4x\u00E4", u"\u00E4", u"", {zm::rfReplaceAll, zm::rfIgnoreCase}, u"x"},
               {u"aA", u"A", u"b", {zm::rfReplaceAll}, u"ab"},
               {u"abc", u"", u"X", {zm::rfReplaceAll}, u"abc"},
               {u"", u"a", u"b", {zm::rfReplaceAll}, u""}};
  for (const auto& c : cases) EXPECT_EQ(zm::StringReplace(c.Text, c.Old, c.New, c.Flags), c.Out) << zm::ToUTF8(c.Text);
}

// Texts that repeat themselves, in which a plain search would take quadratic time.
TEST(StringReplace, TakesLinearTime) {
  const std::size_t half = 500'000;
  const String run(half, u'a'), text = run + run;
  for (const String& missing : {u"b" + run, run + u"b", run.substr(0, half / 2) + u"b" + run.substr(0, half / 2)})
    EXPECT_EQ(zm::StringReplace(text, missing, u"", {zm::rfReplaceAll}), text);
  EXPECT_EQ(zm::StringReplace(text, run.substr(0, half / 10), u"x", {zm::rfReplaceAll}), String(20, u'x'));
}

TEST(ZmTokenize, TakesTheSeparatorAsPlainText) {
  using TTokens = std::vector<String>;
  const std::tuple<StringView, StringView, TTokens> cases[] = {{u"a | b", u" | ", {u"a", u"b"}},
                                                               {u".a..b.", u".", {u"", u"a", u"", u"b", u""}},
                                                               {u"ab", u"x", {u"ab"}},
                                                               {u"ab", u"", {u"ab"}},
                                                               {u"", u",", {}}};
  for (const auto& [text, separator, tokens] : cases) EXPECT_EQ(zm::ZmTokenize(text, separator), tokens);
}

TEST(ZmStripLiterals, TakesOnePair) {
  const StringView cases[][2] = {{u"'a'", u"a"},     {u"\"'a'\"", u"'a'"}, {u"''", u""},   {u"'", u"'"},
                                 {u"'a\"", u"'a\""}, {u"`a`", u"`a`"},     {u"a'", u"a'"}, {u"", u""}};
  for (const auto& [text, out] : cases) EXPECT_EQ(zm::ZmStripLiterals(text), out);
}

TEST(ZmPadLeft, KeepsLongerTexts) {
  EXPECT_EQ(zm::ZmPadLeft(u"7", 3, u'0'), u"007");
  EXPECT_EQ(zm::ZmPadLeft(u"", 2), u"  ");
  EXPECT_EQ(zm::ZmPadLeft(u"1234", 3), u"1234");
}

TEST(ZmCharCase, SpellsByMode) {
  const struct {
    int Mode;
    StringView Text;
    char16_t Separator;
    StringView Out;
  } cases[] = {{0, u"aB c", u' ', u"aB c"},
               {1, u"a\u00E9\U00010428\xD801", 0, u"A\u00C9\U00010400\xD801"},
               {2, u"A\u00C9b", 0, u"a\u00E9b"},
               {3, u"aB1\u00C9", 0, u"Ab1\u00E9"},
               {4, u"the bIG  one", 0, u"The Big  One"},
               {4, u"the-bIG one", u'-', u"The-Big one"},
               {5, u" the BIG", 0, u" The big"},
               {6, u"string", 0, u"String"},
               {6, u"first_name", u'_', u"FirstName"},
               {7, u"First Name", u' ', u"firstName"},
               {7, u" first  name x", u' ', u"firstNameX"},
               {7, u"First name", 0, u"first name"},
               {7, u"ID", u' ', u"iD"},
               {7, u"\u00C9tat", u' ', u"\u00E9tat"},
               {7, u"", u' ', u""}};
  for (const auto& c : cases)
    EXPECT_EQ(zm::ZmCharCase(c.Text, static_cast<zm::TZmCharCase>(c.Mode), c.Separator), c.Out)
        << c.Mode << zm::ToUTF8(c.Text);
}

TEST(ZmSimplifyString, LeavesSingleBlanks) {
  const StringView cases[][2] = {
      {u"\r\n a\t \nb  c d ", u"a b c d"}, {u"\u00A0\u00E9", u"\u00A0\u00E9"}, {u" \t", u""}};
  for (const auto& [text, out] : cases) EXPECT_EQ(zm::ZmSimplifyString(text), out);
}

TEST(ZmVarTo, GivesTheDefaultForWhatIsEmptyOrDoesNotConvert) {
  const zm::Variant empty, null = zm::Null(), text(u"x"), number(u" 12"), big(INT64_MAX), half(2.5);
  for (const auto* none : {&empty, &null}) {
    EXPECT_TRUE(zm::ZmVarIsEmpty(*none));
    EXPECT_EQ(zm::ZmVarToInt(*none, 7, true), 7);
    EXPECT_EQ(zm::ZmVarToStr(*none), u"");
    EXPECT_EQ(zm::ZmVarToStr(*none, u"d"), u"d");
    EXPECT_EQ(zm::ZmVarBool(*none, -1), -1);
  }
  EXPECT_EQ(zm::ZmVarToInt(text, 7), 7);
  EXPECT_EQ(zm::ZmVarToDouble(text, 1.5), 1.5);
  EXPECT_EQ(zm::ZmVarToBool(text, true), true);
  EXPECT_EQ(zm::ZmVarToDateTime(text, zm::TDateTime(1.5)), zm::TDateTime(1.5));
  EXPECT_THROW(zm::ZmVarToInt64(text, 7, true), zm::EVariantTypeCastError);
  EXPECT_THROW(zm::ZmVarToExtended(text, 7, true), zm::EVariantTypeCastError);
  EXPECT_EQ(zm::ZmVarToInt(big, 7), 7);
  EXPECT_THROW(zm::ZmVarToInt(big, 7, true), zm::ERangeError);

  EXPECT_EQ(zm::ZmVarToInt(number, 7), 12);
  EXPECT_EQ(zm::ZmVarToInt64(big, 7), INT64_MAX);
  EXPECT_EQ(zm::ZmVarToInt(half, 7), 2);
  EXPECT_EQ(zm::ZmVarToExtended(big, 7), static_cast<zm::Extended>(INT64_MAX));
  EXPECT_EQ(zm::ZmVarToExtended(UINT64_MAX, 7), static_cast<zm::Extended>(UINT64_MAX));
  EXPECT_EQ(zm::ZmVarToExtended(u"0.1", 7), 0.1L);
  EXPECT_EQ(zm::ZmVarToStr(half), u"2.5");
  EXPECT_EQ(zm::ZmVarBool(zm::Variant(true), 0), 1);
  EXPECT_EQ(zm::ZmVarBool(u"FALSE", 1), 0);
}

}  // namespace
