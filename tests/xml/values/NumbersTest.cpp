#include "zamrit/xml/values/Numbers.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <locale>
#include <random>
#include <string>
#include <tuple>

#include "tests/support/Raised.h"
#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/Strings.h"

namespace {

using namespace zm;

// What each reader makes of its arguments, in the order in which they are declared.
template <class... Arguments>
auto ReadIntegers(const Arguments&... A) {
  return std::tuple(ZmXMLToShortint(A...), ZmXMLToSmallint(A...), ZmXMLToInt(A...), ZmXMLToInt64(A...),
                    ZmXMLToByte(A...), ZmXMLToWord(A...), ZmXMLToLongword(A...), ZmXMLToUInt64(A...));
}
// A default of any type.
struct TSeven {
  template <class T>
  operator T() const {  // NOLINT(google-explicit-constructor)
    return static_cast<T>(7);
  }
};
auto ReadIntegersDef(StringView Text) {
  const TSeven seven;
  return std::tuple(ZmXMLToShortintDef(Text, seven), ZmXMLToSmallintDef(Text, seven), ZmXMLToIntDef(Text, seven),
                    ZmXMLToInt64Def(Text, seven), ZmXMLToByteDef(Text, seven), ZmXMLToWordDef(Text, seven),
                    ZmXMLToLongwordDef(Text, seven), ZmXMLToUInt64Def(Text, seven));
}
template <class... Arguments>
auto ReadFloats(const Arguments&... A) {
  return std::tuple(ZmXMLToSingle(A...), ZmXMLToDouble(A...), ZmXMLToExtended(A...));
}

auto ReadFloatsDef(StringView Text) {
  const TSeven seven;
  return std::tuple(ZmXMLToSingleDef(Text, seven), ZmXMLToDoubleDef(Text, seven), ZmXMLToExtendedDef(Text, seven));
}

using TIntegers = decltype(ReadIntegers(StringView()));
using TFloats = decltype(ReadFloats(StringView()));

TEST(XMLNumbers, IntegersAreCutToTheirWidth) {
  const std::pair<const char16_t*, TIntegers> cases[] = {
      {u"", {0, 0, 0, 0, 0, 0, 0, 0}},
      {u"300", {44, 300, 300, 300, 44, 300, 300, 300}},
      {u"200", {-56, 200, 200, 200, 200, 200, 200, 200}},
      {u"-70000", {-112, -4464, -70000, -70000, 144, 61072, 4294897296, 18446744073709481616u}},
      {u"$10", {16, 16, 16, 16, 16, 16, 16, 16}},
      {u"$FFFFFFFF", {-1, -1, -1, 4294967295, 255, 65535, 4294967295, 4294967295}},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(ReadIntegers(StringView(text)), expected) << ToUTF8(text);
    EXPECT_EQ(ReadIntegersDef(text), expected) << ToUTF8(text);
  }
  const TIntegers sevens(7, 7, 7, 7, 7, 7, 7, 7);
  EXPECT_EQ(ReadIntegersDef(u"x"), sevens);
  EXPECT_EQ(ReadIntegers(Null(), TSeven()), sevens);
  EXPECT_EQ(ReadIntegers(Variant(u"300"), TSeven()), cases[1].second);
  EXPECT_EQ(ReadIntegers(Variant(300), TSeven()), cases[1].second);
  EXPECT_EQ(ReadIntegers(Variant(true), TSeven()), TIntegers(1, 1, 1, 1, 1, 1, 1, 1));
  EXPECT_EQ(ZmXMLToUInt64(Variant(std::numeric_limits<std::uint64_t>::max()), 0), ~std::uint64_t{0});
  EXPECT_EQ(ZmXMLToLongwordDef(u"4294967295", 9), 9u);
  EXPECT_EQ(ZmXMLToUInt64Def(u"9223372036854775808", 9), 9u);
  EXPECT_EQ(Raised<EConvertError>([] { ZmXMLToLongword(u"4294967295"); }), "'4294967295' is not a valid integer value");
  EXPECT_EQ(Raised<EConvertError>([] { ZmXMLToByte(u"1x"); }), "'1x' is not a valid integer value");
  EXPECT_EQ(Raised<EConvertError>([] { ZmXMLToInt(Variant(u""), 5); }), "'' is not a valid integer value");
}

TEST(XMLNumbers, FloatsAreReadWithPointAndComma) {
  const std::pair<const char16_t*, TFloats> cases[] = {
      {u"", {0.f, 0., 0.L}},
      {u"1.5", {1.5f, 1.5, 1.5L}},
      {u"1,5", {15.f, 15., 15.L}},
      {u"1,000.5", {1000.5f, 1000.5, 1000.5L}},
      {u"-0.1e1", {-1.f, -1., -1.L}},
      {u"0.1", {0.1f, 0.1, 0.1L}},
      {u"-inf", {-INFINITY, -INFINITY, -INFINITY}},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(ReadFloats(StringView(text)), expected) << ToUTF8(text);
    EXPECT_EQ(ReadFloats(Variant(text), TSeven()), expected) << ToUTF8(text);
    EXPECT_EQ(ReadFloatsDef(text), expected) << ToUTF8(text);
  }
  EXPECT_EQ(ReadFloatsDef(u"x"), TFloats(7, 7, 7));
  EXPECT_EQ(ReadFloats(Null(), TSeven()), TFloats(7, 7, 7));
  EXPECT_EQ(ReadFloats(Variant(3), TSeven()), TFloats(3, 3, 3));
  EXPECT_EQ(ReadFloats(Variant(2.5), TSeven()), TFloats(2.5f, 2.5, 2.5L));
  EXPECT_EQ(ZmXMLToDouble(Variant(TDateTime(2.25)), 7), 2.25);
  EXPECT_EQ(ZmXMLToExtended(Variant(std::numeric_limits<std::int64_t>::max()), 7), 9223372036854775807.L);
  EXPECT_EQ(Raised<EConvertError>([] { ZmXMLToDouble(u"1.5.5"); }), "'1.5.5' is not a valid floating point value");
}

TEST(XMLNumbers, OtherKindsOfVariantsAreRaised) {
  const auto check = [](auto Read, const std::string& TypeName, std::initializer_list<Variant> Values) {
    for (const Variant& value : Values)
      EXPECT_EQ(Raised<EConvertError>([&] { Read(value); }), "The given value is not a valid " + TypeName + " value!");
  };
  const auto checkInteger = [&check](auto Read, const std::string& TypeName) {
    check(Read, TypeName, {Variant(), Variant(1.0), Variant(Currency(1)), Variant(TDateTime(1)), VarArrayOf({1})});
  };
#define READ(Name) [](const Variant& Value) { ZmXMLTo##Name(Value, TSeven()); }
  checkInteger(READ(Shortint), "shortint");
  checkInteger(READ(Smallint), "smallint");
  checkInteger(READ(Int), "integer");
  checkInteger(READ(Int64), "integer");
  checkInteger(READ(UInt64), "integer");
  checkInteger(READ(Byte), "Byte");
  checkInteger(READ(Word), "Word");
  checkInteger(READ(Longword), "LongWord");
  check(READ(Single), "Single", {Variant(), Variant(true), Variant(TDateTime(1)), VarArrayOf({1})});
  check(READ(Double), "Double", {Variant(), Variant(true), VarArrayOf({1})});
  check(READ(Extended), "Extended", {Variant(), Variant(true), VarArrayOf({1})});
  check(READ(Bool), "Boolean", {Variant(), Variant(1.0), Variant(TDateTime(1)), VarArrayOf({1})});
#undef READ
}

TEST(XMLNumbers, Booleans) {
  for (const auto* text : {u"1", u"true", u"TRUE", u"True"}) EXPECT_TRUE(ZmXMLToBool(text)) << ToUTF8(text);
  for (const auto* text : {u"", u"0", u"false", u"yes", u" true", u"true ", u"01"})
    EXPECT_FALSE(ZmXMLToBool(text)) << ToUTF8(text);
  EXPECT_TRUE(ZmXMLToBool(Null(), true));
  EXPECT_TRUE(ZmXMLToBool(Variant(u"tRUE"), false));
  EXPECT_FALSE(ZmXMLToBool(Variant(u"x"), true));
  EXPECT_TRUE(ZmXMLToBool(Variant(true), false));
  EXPECT_TRUE(ZmXMLToBool(Variant(257), false));
  EXPECT_FALSE(ZmXMLToBool(Variant(256), true));
  EXPECT_EQ(ZmBoolToXML(true) + ZmBoolToXML(false), u"truefalse");
}

TEST(XMLNumbers, WholeNumbersAreWrittenInDecimal) {
  EXPECT_EQ(ZmShortIntToXML(-128), u"-128");
  EXPECT_EQ(ZmSmallIntToXML(-32768), u"-32768");
  EXPECT_EQ(ZmLongIntToXML(-2147483647 - 1), u"-2147483648");
  EXPECT_EQ(ZmIntToXML(0), u"0");
  EXPECT_EQ(ZmInt64ToXML(std::numeric_limits<std::int64_t>::min()), u"-9223372036854775808");
  EXPECT_EQ(ZmByteToXML(255), u"255");
  EXPECT_EQ(ZmWordToXML(65535), u"65535");
  EXPECT_EQ(ZmLongWordToXML(4294967295), u"4294967295");
  EXPECT_EQ(ZmCardinalToXML(4294967295), u"4294967295");
  EXPECT_EQ(ZmUInt64ToXML(std::numeric_limits<std::uint64_t>::max()), u"-1");
  std::mt19937_64 random(1);
  for (int i = 0; i < 1000; ++i) {
    const auto value = static_cast<std::int64_t>(random()) >> random() % 64;
    EXPECT_EQ(ZmXMLToInt64(ZmInt64ToXML(value)), value);
    EXPECT_EQ(ZmXMLToUInt64(ZmUInt64ToXML(static_cast<std::uint64_t>(value))), static_cast<std::uint64_t>(value));
  }
}

class TCommaPoint : public std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
};

TEST(XMLNumbers, FloatsIgnoreTheLocale) {
  const std::string locale = std::setlocale(LC_ALL, nullptr);
  const std::locale old = std::locale::global(std::locale(std::locale::classic(), new TCommaPoint));
  for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8"})
    if (std::setlocale(LC_ALL, name)) break;
  EXPECT_EQ(ZmDoubleToXML(1.5), u"1.5");
  EXPECT_EQ(ZmDoubleToXML(-1e-7), u"-1E-7");
  EXPECT_EQ(ZmExtToXML(0.1L), u"0.1");
  EXPECT_EQ(ZmExtToXML(-INFINITY), u"-INF");
  EXPECT_EQ(ZmXMLToDouble(u"2.25"), 2.25);
  std::mt19937_64 random(1);
  for (int i = 0; i < 1000; ++i) {
    const double value = std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 200) - 160);
    const String text = ZmDoubleToXML(value);
    EXPECT_NEAR(ZmXMLToDouble(text) / value, 1, 1e-14);
    EXPECT_EQ(ZmDoubleToXML(ZmXMLToDouble(text)), text);
  }
  std::locale::global(old);
  std::setlocale(LC_ALL, locale.c_str());
}

}  // namespace
