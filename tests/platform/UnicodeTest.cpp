#include "zamrit/platform/Unicode.h"

#include <gtest/gtest.h>

#include "zamrit/platform/Exceptions.h"

namespace {

using zm::String;
using zm::StringView;

TEST(NormalizeText, HasFourForms) {
  const struct {
    StringView Text, C, D, KC, KD;
  } cases[] = {{u"", u"", u"", u"", u""},
               {u"\u1E69", u"\u1E69", u"s\u0323\u0307", u"\u1E69", u"s\u0323\u0307"},
               {u"s\u0307\u0323", u"\u1E69", u"s\u0323\u0307", u"\u1E69", u"s\u0323\u0307"},
               {u"\uFB01\uAC01", u"\uFB01\uAC01", u"\uFB01\u1100\u1161\u11A8", u"fi\uAC01", u"fi\u1100\u1161\u11A8"},
               {u"\u212B\xD800", u"\u00C5\xD800", u"A\u030A\xD800", u"\u00C5\xD800", u"A\u030A\xD800"}};
  for (const auto& c : cases) {
    EXPECT_EQ(zm::NormalizeText(c.Text, zm::nfC), c.C);
    EXPECT_EQ(zm::NormalizeText(c.Text, zm::nfD), c.D);
    EXPECT_EQ(zm::NormalizeText(c.Text, zm::nfKC), c.KC);
    EXPECT_EQ(zm::NormalizeText(c.Text, zm::nfKD), c.KD);
  }
  EXPECT_EQ(zm::NormalizeText(String(1000, u'\uFDFA'), zm::nfKD).size(), 18'000u);
  EXPECT_THROW(zm::NormalizeText(u"", static_cast<zm::TNormalForm>(3)), zm::ERangeError);
}

// Marks of several orders, some of which decompose only in the compatibility forms; the result is known in pieces.
TEST(NormalizeText, LongRunsOfMarksTakeLinearTime) {
  const std::size_t count = 200'000;
  for (const auto form : {zm::nfC, zm::nfD, zm::nfKC, zm::nfKD}) {
    const bool composes = form == zm::nfC || form == zm::nfKC, isCompatible = form == zm::nfKC || form == zm::nfKD;
    String marks, kana, pairs, pairsOut(count, u'\u0F71');
    for (std::size_t i = 0; i < count; ++i) {
      marks += u"\u0301\u0323";
      kana += u"\u0301\uFF9E";
      pairs += u'\u0F73';
    }
    const String low(count, u'\u0323'), high(count, u'\u0301');
    EXPECT_EQ(zm::NormalizeText(u"x" + marks + u"y", form), u"x" + low + high + u"y");
    EXPECT_EQ(zm::NormalizeText(pairs, form), pairsOut + String(count, u'\u0F72'));
    EXPECT_EQ(zm::NormalizeText(u"x" + kana, form), u"x" + (isCompatible ? String(count, u'\u3099') + high : kana));
    const String kept = composes ? u"\u00E9" : u"e\u0301";
    EXPECT_EQ(zm::NormalizeText(u"e" + high, form), kept + high.substr(1));
  }
}

}  // namespace
