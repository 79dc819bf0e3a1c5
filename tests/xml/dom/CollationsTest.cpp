#include "zamrit/xml/dom/Collations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

namespace {

using namespace zm;

// As the definition has it, unit by unit.
int PosByUnits(StringView SubStr, StringView Str, bool IgnoreCase) {
  const auto lower = [&](char16_t c) {
    return IgnoreCase && c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c | 32) : c;
  };
  const auto at = std::search(Str.begin(), Str.end(), SubStr.begin(), SubStr.end(),
                              [&](char16_t a, char16_t b) { return lower(a) == lower(b); });
  return SubStr.empty() || at == Str.end() ? 0 : static_cast<int>(at - Str.begin()) + 1;
}

TEST(Collations, PosFindsTheFirst) {
  EXPECT_EQ(TZmXPathCollationASCIICI->Pos(u"[Z", u"{z[z"), 3) << "letters alone have case";
  unsigned seed = 1;
  const auto random = [&](unsigned below) { return (seed = seed * 1103515245 + 12345) / 65536 % below; };
  for (int i = 0; i < 20'000; ++i) {
    String text, sought;
    const unsigned letters = 2 + random(5);
    for (unsigned n = random(i % 100 ? 40 : 2000); n > 0; --n) text += u"aAbB\u00e9["[random(letters)];
    for (unsigned n = random(i % 100 ? 6 : 300); n > 0; --n) sought += u"aAbB\u00e9["[random(letters)];
    if (i % 3 == 0 && !text.empty()) sought = text.substr(random(static_cast<unsigned>(text.size())), 200);
    ASSERT_EQ(TZmXPathCollationASCIICI->Pos(sought, text), PosByUnits(sought, text, true));
    ASSERT_EQ(TZmXPathCollationCodepoint->Pos(sought, text), PosByUnits(sought, text, false));
  }
}

TEST(Collations, PosStaysLinear) {
  const String text(4'000'000, u'a');
  for (const TZmXPathCollationClass collation : {TZmXPathCollationASCIICI, TZmXPathCollationCodepoint}) {
    EXPECT_EQ(collation->Pos(String(1'000'000, u'a') + u"b", text), 0);
    EXPECT_EQ(collation->Pos(String(1'000'000, u'a') + u"b", text + u"b"), 3'000'001);
  }
}

}  // namespace
