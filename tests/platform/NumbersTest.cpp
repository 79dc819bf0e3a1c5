#include "zamrit/platform/Numbers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "tests/support/Raised.h"

namespace {

using namespace zm;

TEST(NumbersTest, ReadsWholeNumbers) {
  struct TCase {
    const char16_t* Text;
    std::int64_t Value;
    bool In32;  // StrToInt reads it too
  };
  constexpr std::int64_t cMin = std::numeric_limits<std::int64_t>::min(),
                         cMax = std::numeric_limits<std::int64_t>::max();
  const TCase cases[] = {
      {u"0", 0, true},
      {u" \t-12", -12, true},
      {u"+7", 7, true},
      {u"0000000000000000000000007", 7, true},
      {u"2147483647", 2147483647, true},
      {u"-2147483648", -2147483648, true},
      {u"2147483648", 2147483648, false},
      {u"9223372036854775807", cMax, false},
      {u"-9223372036854775808", cMin, false},
      {u"$7f", 127, true},
      {u"0x10", 16, true},
      {u"-0X10", -16, true},
      {u"$0000000000000000000000001", 1, true},
      {u"$FFFFFFFFF", 0xFFFFFFFFF, false},
      {u"$FFFFFFFFFFFFFFFF", -1, false},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(ToUTF8(c.Text));
    EXPECT_EQ(c.Value, StrToInt64(c.Text));
    EXPECT_EQ(c.In32 ? c.Value : 77, StrToIntDef(c.Text, 77));
  }
  EXPECT_EQ(-1, StrToInt(u"$FFFFFFFF"));
  EXPECT_EQ(1, StrToInt(u"-$FFFFFFFF"));
  for (const char16_t* text : {u"", u" ", u"-", u"+-1", u"1 ", u"1x", u"$", u"0x", u"$G", u"x10", u"\u0661", u"1,000",
                               u"9223372036854775808", u"-9223372036854775809", u"$10000000000000000"}) {
    EXPECT_EQ(ToUTF8(Format(u"'%s' is not a valid integer value", {text})),
              Raised<EConvertError>([&] { StrToInt64(text); }));
    std::int64_t kept = 5;
    EXPECT_FALSE(TryStrToInt64(text, kept));
    EXPECT_EQ(5, kept);
  }
  EXPECT_EQ(u"00FF", IntToHex(255, 4));
  EXPECT_EQ(u"FFFFFFFFFFFFFFFF", IntToHex(~std::uint64_t{0}, 2));
}

TEST(NumbersTest, ReadsFloatingNumbers) {
  struct TCase {
    const char16_t* Text;
    double Value;
  };
  const double infinity = std::numeric_limits<double>::infinity();
  const TCase cases[] = {
      {u"0", 0},
      {u" 1.5\t", 1.5},
      {u"-.5", -.5},
      {u"5.", 5},
      {u"+1e3", 1000},
      {u"1E-2", .01},
      {u"1,000,000.25", 1000000.25},
      {u"1,5", 15},
      {u"1,,2", 12},
      {u"9007199254740993", 9007199254740992.0},
      {u"0.1", 0.1},
      {u"123456789012345.67", 123456789012345.67},
      {u"1e400000000000000000000", -1},
      {u"1e309", -1},
      {u"0e5", 0},
      {u"0e999999999999999999999", 0},
      {u"1e-400", 0},
      {u"1e-99999999999999999999", 0},
      {u"INF", infinity},
      {u"-inf", -infinity},
      {u"+Inf", infinity},
      {u"", -1},
      {u".", -1},
      {u"-", -1},
      {u"e5", -1},
      {u"1e", -1},
      {u"1e+", -1},
      {u"1.2.3", -1},
      {u"1.000,5", -1},
      {u",5", -1},
      {u"1 000", -1},
      {u"0x10", -1},
      {u"infinity", -1},
      {u"1.5f", -1},
      {u"\u0131nf", -1},
  };
  for (const TCase& c : cases) EXPECT_EQ(c.Value, StrToFloatDef(c.Text, -1)) << ToUTF8(c.Text);
  EXPECT_TRUE(std::isnan(StrToFloat(u"nan")));
  EXPECT_TRUE(std::signbit(StrToFloat(u"-0")));
  EXPECT_EQ(1000.5, StrToFloat(u"1.000,5", {u',', u'.'}));
  EXPECT_EQ(1e308, StrToFloat(u"1" + String(308, u'0')));
  EXPECT_EQ(1, StrToFloat(u"1." + String(1000000, u'0')));
  EXPECT_EQ(16777216.0f, StrToSingle(u"16777217"));
  EXPECT_EQ(-1, StrToSingleDef(u"1e39", -1));
  EXPECT_EQ(std::strtold("1.234567890123456789", nullptr), StrToExtended(u"1.234567890123456789"));
  EXPECT_EQ(std::numeric_limits<Extended>::denorm_min(), StrToExtended(u"3.6E-4951"));
  EXPECT_EQ(0, StrToExtendedDef(u"1e-9999", -1));
  EXPECT_EQ("'1x' is not a valid floating point value", Raised<EConvertError>([] { StrToFloat(u"1x"); }));
}

// In one operation or through the general way: what is read is what the standard library reads.
TEST(NumbersTest, ReadsNumbersExactly) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 20000; ++i) {
    std::string digits;
    const std::uint64_t count = 1 + random() % 20, point = random() % (count + 1);
    for (std::uint64_t k = 0; k < count; ++k) {
      if (k == point) digits += '.';
      digits += static_cast<char>('0' + random() % 10);
    }
    const int reach = i % 4 == 1 ? 60 : 700;
    if (i % 2 != 0) digits += "e" + std::to_string(static_cast<int>(random() % 700) % reach - reach / 2);
    const String text = FromUTF8(digits);
    const double real = std::strtod(digits.c_str(), nullptr);
    EXPECT_EQ(std::isinf(real) ? -1 : real, StrToFloatDef(text, -1)) << digits;
    const float single = std::strtof(digits.c_str(), nullptr);
    EXPECT_EQ(std::isinf(single) ? -1 : single, StrToSingleDef(text, -1)) << digits;
    EXPECT_EQ(std::strtold(digits.c_str(), nullptr), StrToExtended(text)) << digits;
  }
}

TEST(NumbersTest, WritesFloatingNumbers) {
  struct TCase {
    double Value;
    const char16_t* Text;
  };
  const TCase cases[] = {
      {0, u"0"},
      {-0.0, u"0"},
      {1.5, u"1.5"},
      {-0.1, u"-0.1"},
      {100, u"100"},
      {1.0 / 3, u"0.333333333333333"},
      {123456789012345, u"123456789012345"},
      {999999999999999.5, u"1E15"},
      {1e15, u"1E15"},
      {1.5e20, u"1.5E20"},
      {0.00001, u"0.00001"},
      {0.0000123, u"0.0000123"},
      {0.000009999, u"9.999E-6"},
      {5e-324, u"4.94065645841247E-324"},
      {std::numeric_limits<double>::max(), u"1.79769313486232E308"},
      {std::numeric_limits<double>::infinity(), u"INF"},
      {-std::numeric_limits<double>::infinity(), u"-INF"},
      {std::nan(""), u"NAN"},
  };
  for (const TCase& c : cases) EXPECT_EQ(ToUTF8(c.Text), ToUTF8(FloatToStr(c.Value)));
  EXPECT_EQ(u"1,5", FloatToStr(1.5, {u',', u'.'}));
  EXPECT_EQ(u"0.1", FloatToStr(Extended{0.1L}));
  EXPECT_EQ(u"0.333333333333333333", FloatToStr(1.0L / 3));
  EXPECT_EQ(u"123456789012345678", FloatToStr(Extended{123456789012345678.0L}));
}

std::string DigitsOf(std::string Text) {
  Text.resize(std::min(Text.size(), Text.find_first_of("eE")));
  std::erase_if(Text, [](char c) { return c == '.' || c == '-'; });
  Text.erase(Text.find_last_not_of('0') + 1);
  return Text.substr(Text.find_first_not_of('0'));
}

template <class T>
void ExpectNearest(T Value, int Count) {
  if (!std::isfinite(Value) || Value == 0) return;
  char exact[64];
  *std::to_chars(exact, exact + sizeof exact, Value, std::chars_format::scientific, Count - 1).ptr = '\0';
  const std::string text = ToUTF8(FloatToStr(Value));
  EXPECT_EQ(DigitsOf(exact), DigitsOf(text));
  EXPECT_EQ(std::strtold(exact, nullptr), std::strtold(text.c_str(), nullptr));
}

TEST(NumbersTest, WritesTheNearestDigits) {
  std::mt19937_64 random(2);
  for (int i = 0; i < 20000; ++i) {
    const std::uint64_t bits = random();
    double any;
    std::memcpy(&any, &bits, sizeof any);
    ExpectNearest(any, 15);
    ExpectNearest(std::uniform_real_distribution<double>(-1000, 1000)(random), 15);
    ExpectNearest(static_cast<double>(bits % 1000000000000000 * 10 + 5), 15);  // half of the last digit is cut
    ExpectNearest(std::ldexp(static_cast<Extended>(random()), static_cast<int>(bits % 2400) - 1264), 18);
  }
}

TEST(NumbersTest, Rounds) {
  struct TCase {
    double Value;
    std::int64_t Ceil, Floor, Round, Trunc;
  };
  const TCase cases[] = {
      {2.5, 3, 2, 2, 2},
      {3.5, 4, 3, 4, 3},
      {-2.5, -2, -3, -2, -2},
      {-0.5, 0, -1, 0, 0},
      {0.49999999999999994, 1, 0, 0, 0},
      {2251799813685249.5, 2251799813685250, 2251799813685249, 2251799813685250, 2251799813685249},
      {-0x1p63, std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::min(),
       std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::min()},
  };
  for (const TCase& c : cases) {
    EXPECT_EQ(c.Ceil, Ceil(c.Value));
    EXPECT_EQ(c.Floor, Floor(c.Value));
    EXPECT_EQ(c.Round, Round(c.Value));
    EXPECT_EQ(c.Trunc, Trunc(c.Value));
  }
  for (double value : {0x1p63, -0x1.8p63, std::nan(""), HUGE_VAL})
    EXPECT_EQ("The value does not fit an integer", Raised<ERangeError>([&] { Round(value); }));
  EXPECT_EQ(12345, Currency(1.23450000001).GetScaled());
  EXPECT_EQ(-10000, Currency(-1).GetScaled());
  EXPECT_EQ(9223372036854770000, Currency(922337203685477).GetScaled());
  for (const std::int64_t scaled : {5629517387772982731, 7280706196208556553, INT64_MAX, INT64_MIN}) {
    const Currency amount = Currency::FromScaled(scaled);
    const std::int64_t whole = scaled / 10000, rest = scaled % 10000;
    EXPECT_EQ(scaled, Currency(static_cast<Extended>(whole) + static_cast<Extended>(rest) / 10000).GetScaled());
    EXPECT_EQ(static_cast<double>(static_cast<Extended>(scaled) / 10000), static_cast<double>(amount));
  }
  EXPECT_THROW(Currency(922337203685477.58085L), ERangeError);
  EXPECT_LT(Currency(-1), Currency(0.5));
  EXPECT_THROW(Currency(1e15), ERangeError);
}

}  // namespace
