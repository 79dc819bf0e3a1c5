#include "zamrit/platform/RegEx.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/support/Raised.h"

namespace {

using zm::String;
using zm::StringView;
using zm::TRegEx;

String Repeat(StringView Text, std::size_t Count) {
  String out;
  while (Count-- > 0) out += Text;
  return out;
}

TEST(RegEx, OptionsChangeWhatMatches) {
  const struct {
    StringView Pattern, Input;
    zm::TRegExOption Option;
    bool Without, With;
  } cases[] = {{u"a.b", u"a\nb", zm::roSingleLine, false, true},
               {u"^b$", u"a\nb\nc", zm::roMultiLine, false, true},
               {u"\u00E4\U00010400", u"\u00C4\U00010428", zm::roIgnoreCase, false, true},
               {u"a b # c", u"ab", zm::roIgnorePatternSpace, false, true},
               {u"^\\w\\d$", u"\u0436\u0663", zm::roIgnoreCase, true, true},
               {u"^.$", u"\U0001F600", zm::roIgnoreCase, true, true}};
  for (const auto& c : cases) {
    EXPECT_EQ(TRegEx(c.Pattern).IsMatch(c.Input), c.Without) << zm::ToUTF8(c.Pattern);
    EXPECT_EQ(TRegEx(c.Pattern, {c.Option}).IsMatch(c.Input), c.With) << zm::ToUTF8(c.Pattern);
  }
  EXPECT_EQ(TRegEx(u"(a)(?<n>b)").Match(u"ab").Groups.size(), 3u);
  EXPECT_EQ(TRegEx(u"(a)(?<n>b)", {zm::roExplicitCapture}).Match(u"ab").Groups.size(), 2u);
}

TEST(RegEx, MatchesTellPlacesAndGroups) {
  const TRegEx expression(u"(?<key>\\w+)=(\\d+)?");
  const String input = u"\U0001F600 a=1, bc=";
  const auto matches = expression.Matches(input);
  ASSERT_EQ(matches.size(), 2u);
  EXPECT_EQ(matches[0].Index, 3u);
  EXPECT_EQ(matches[0].Value.data(), input.data() + 3);
  EXPECT_EQ(matches[1].Value, u"bc=");
  const int key = expression.GroupNumber(u"key");
  ASSERT_EQ(key, 1);
  EXPECT_EQ(matches[1].Groups[1].Index, 8u);
  EXPECT_EQ(matches[1].Groups[1].Value, u"bc");
  EXPECT_FALSE(matches[1].Groups[2].Success);
  EXPECT_EQ(expression.GroupNumber(u"ke"), -1);
  EXPECT_FALSE(expression.Match(u"-").Success);
}

TEST(RegEx, ReplaceReadsReferences) {
  const StringView cases[][4] = {{u"(a)(b)?", u"xay", u"[$0$1\\1${1}$2]", u"x[aaaa]y"},
                                 {u"(?<n>a)", u"a", u"${n}${m}${2}$2|${n", u"a|${n"},
                                 {u"(a)", u"a", u"$12\\10$$1\\$1\\\\1", u"a2a0$1$1\\1"},
                                 {u"(.)(.)(.)(.)(.)(.)(.)(.)(.)(.)(.)", u"abcdefghijk", u"$11$12$1", u"ka2a"},
                                 {u"a", u"a", u"$", u"$"},
                                 {u"a", u"a", u"\\n${}\\", u"\\n${}\\"},
                                 {u"x*", u"axb", u"-", u"-a--b-"},
                                 {u"", u"\U0001F600a", u".", u".\U0001F600.a."},
                                 {u"a|", u"aab", u"<$0>", u"<a><a><>b<>"},
                                 {u"b", u"", u"c", u""},
                                 {u"a\\K", u"aab", u"!", u"a!a!b"}};
  for (const auto& [pattern, input, replacement, out] : cases)
    EXPECT_EQ(TRegEx::Replace(input, pattern, replacement), out) << zm::ToUTF8(pattern);
}

TEST(RegEx, SplitKeepsEmptyParts) {
  using TParts = std::vector<StringView>;
  EXPECT_EQ(TRegEx::Split(u",a;b,", u"[,;]"), (TParts{u"", u"a", u"b", u""}));
  EXPECT_EQ(TRegEx::Split(u"a\U0001F600b", u""), (TParts{u"a", u"\U0001F600", u"b"}));
  EXPECT_EQ(TRegEx::Split(u"ab", u"(x)"), (TParts{u"ab"}));
  EXPECT_EQ(TRegEx::Split(u"", u","), TParts{});
}

TEST(RegEx, LoneSurrogatesAreReplacementCharacters) {
  EXPECT_TRUE(TRegEx(u"^a.-$").IsMatch(u"a\xDC00-"));
  EXPECT_TRUE(TRegEx(u"^\xD800$").IsMatch(u"\uFFFD"));
  EXPECT_FALSE(TRegEx(u"\xDE00").IsMatch(u"\U0001F600"));
  EXPECT_EQ(TRegEx(u"x").Replace(u"\xD83Dx\xDE00x\xD83D", u"$0-"), u"\xD83Dx-\xDE00x-\xD83D");
}

TEST(RegEx, BadPatternsAreTold) {
  EXPECT_EQ(Raised<zm::ERegularExpressionError>([] { TRegEx::IsMatch(u"", u"a(b"); }),
            "Error in regular expression at offset 3: missing closing parenthesis");
  for (const String& bad : {String(u"[b-a]"), String(u"\\C"), String(u"\\x{D800}"), Repeat(u"(", 100'000),
                            Repeat(u"(", 251) + Repeat(u")", 251), Repeat(u"a", 10'000'000)})
    EXPECT_THROW(TRegEx{bad}, zm::ERegularExpressionError);
}

// With and without JIT.
TEST(RegEx, LimitsHold) {
  const std::string tooMany = "The regular expression needs too many steps for this text!";
  for (const StringView way : {u"", u"(*NO_JIT)"}) {
    const auto raised = [&](StringView Pattern, const String& Input) {
      return Raised<zm::ERegularExpressionError>([&] { TRegEx(String(way).append(Pattern)).IsMatch(Input); });
    };
    EXPECT_EQ(raised(u"(a+)+$", Repeat(u"a", 40) + u"!"), tooMany);
    EXPECT_EQ(raised(u"(?:a|b)*c", Repeat(u"ab", 5'000'000) + u"c"), tooMany);
    EXPECT_EQ(raised(u"(?:a|b)*c", Repeat(u"ab", 50'000) + u"c"), "nothing was raised");
    EXPECT_EQ(raised(u"^(\\((?1)*\\))", Repeat(u"(", 100'000)), "nothing was raised");
    EXPECT_EQ(raised(u"(?(DEFINE)(?<k>b\\K))a(?=(?&k))", u"ab"),
              "The regular expression sets the start of a match outside of it!");
    EXPECT_EQ(TRegEx(String(way) + u"a").Replace(Repeat(u"ab", 1'000'000), u"").size(), 1'000'000u);
  }
}

TEST(RegEx, ShortcutsTellExpressionsApart) {
  for (int i = 0; i < 60; ++i) {
    const String pattern = u"^x" + zm::IntToStr(i % 20) + u"$", input = u"X" + zm::IntToStr(i % 20);
    EXPECT_FALSE(TRegEx::IsMatch(input, pattern));
    EXPECT_TRUE(TRegEx::IsMatch(input, pattern, {zm::roIgnoreCase}));
  }
}

TEST(RegEx, IsSharedByThreads) {
  const TRegEx expression(u"(\\d+)-(\\d+)");
  const auto work = [&expression](int Base) {
    for (int i = 0; i < 2000; ++i) {
      const String left = zm::IntToStr(Base + i);
      ASSERT_EQ(expression.Replace(left + u"-7", u"$2-$1"), u"7-" + left);
    }
  };
  std::thread other(work, 0);
  work(100'000);
  other.join();
}

}  // namespace
