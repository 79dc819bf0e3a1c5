#include "zamrit/platform/Variant.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/Raised.h"

namespace {

using namespace zm;

constexpr double cInfinity = std::numeric_limits<double>::infinity();

TEST(VariantTest, KeepsTypeAndValue) {
  struct TCase {
    Variant Value;
    int Type;
    const char16_t* Text;
    double Number;  // NAN: none
  };
  const double none = std::nan("");
  const TCase cases[] = {
      {Variant(), 0, u"", none},
      {Null(), 1, u"", none},
      {std::int16_t{-3}, 2, u"-3", -3},
      {7, 3, u"7", 7},
      {1.5f, 4, u"1.5", 1.5},
      {0.1, 5, u"0.1", 0.1},
      {Extended{2}, 5, u"2", 2},
      {Currency::FromScaled(-12345), 6, u"-1.2345", -1.2345},
      {TDateTime(45352.5), 7, u"2024-03-01 12:00:00.000", 45352.5},
      {TDate(1), 7, u"1899-12-31 00:00:00.000", 1},
      {true, 11, u"True", 1},
      {std::int8_t{-1}, 16, u"-1", -1},
      {std::uint8_t{200}, 17, u"200", 200},
      {std::uint16_t{65535}, 18, u"65535", 65535},
      {std::uint32_t{4294967295u}, 19, u"4294967295", 4294967295.0},
      {std::int64_t{-5}, 20, u"-5", -5},
      {~std::uint64_t{0}, 21, u"18446744073709551615", 18446744073709551616.0},
      {5LL, 20, u"5", 5},
      {u"text", 258, u"text", none},
      {String(u"12.5"), 258, u"12.5", 12.5},
      {Variant::FromUTF8("\xC3\xA9"), 258, u"\u00e9", none},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(ToUTF8(c.Text));
    EXPECT_EQ(c.Type, VarType(c.Value));
    EXPECT_EQ(c.Text, VarToStr(c.Value));
    if (std::isnan(c.Number)) {
      EXPECT_THROW(c.Value.AsDouble(), EVariantTypeCastError);
    } else {
      EXPECT_EQ(c.Number, VarToReal(c.Value));
    }
    const Variant copy = c.Value;
    EXPECT_EQ(c.Value, copy);
    EXPECT_EQ(c.Type, VarType(Variant(std::move(const_cast<Variant&>(copy)))));
    EXPECT_TRUE(VarIsEmpty(copy));
  }
}

TEST(VariantTest, Converts) {
  EXPECT_EQ(2, Variant(2.5).AsInteger());
  EXPECT_EQ(16, Variant(u"$10").AsInteger());
  EXPECT_EQ(2, Variant(u"1.5").AsInteger());
  EXPECT_EQ(1, VarToInteger(Variant(true)));
  EXPECT_EQ(std::uint64_t{1} << 63, Variant(std::uint64_t{1} << 63).AsUInt64());
  EXPECT_EQ(~std::uint64_t{0}, Variant(u"18446744073709551615").AsUInt64());
  EXPECT_EQ(10000000000000000000u, Variant(1e19).AsUInt64());
  EXPECT_THROW(Variant(0x1p64).AsUInt64(), ERangeError);
  const std::int64_t amounts[][2] = {{25000, 2}, {-35000, -4}, {-25001, -3}, {9007199254740985001, 900719925474099}};
  for (const auto& [scaled, whole] : amounts) EXPECT_EQ(whole, Variant(Currency::FromScaled(scaled)).AsInteger());
  EXPECT_EQ(u"922337203685477.5807", VarToStr(VarAsType(u"922337203685477.5807", varCurrency)));
  for (const char16_t* text : {u"TRUE", u"1", u"-0.5"}) EXPECT_TRUE(Variant(text).AsBoolean());
  for (const char16_t* text : {u"False", u"0"}) EXPECT_FALSE(Variant(text).AsBoolean());
  EXPECT_EQ(45352.5, Variant(u"2024-03-01 12:00").AsDateTime());
  EXPECT_EQ(45352.0, Variant(u"2024-03-01").AsDateTime());
  EXPECT_EQ(1.5, Variant(u"1.5").AsDateTime());
  EXPECT_EQ("Could not convert variant of type (String) into type (Int64)",
            Raised<EVariantTypeCastError>([] { Variant(u"x").AsInteger(); }));
  EXPECT_EQ("Could not convert variant of type (Null) into type (Boolean)",
            Raised<EVariantTypeCastError>([] { Null().AsBoolean(); }));
  EXPECT_EQ("Could not convert variant of type (Null) into type (Date)",
            Raised<EVariantTypeCastError>([] { Null().AsDateTime(); }));
  EXPECT_EQ("Could not convert variant of type (Integer) into type (String)",
            Raised<EVariantTypeCastError>([] { Variant(1).TextRef(); }));
  EXPECT_EQ("Could not convert variant of type (String) into type (Date)",
            Raised<EVariantTypeCastError>([] { Variant(u"2024-02-30").AsDateTime(); }));
  for (const auto& call : std::vector<std::function<void()>>{
           [] { Variant(~std::uint64_t{0}).AsInteger(); }, [] { Variant(-1).AsUInt64(); },
           [] { Variant(1e19).AsInteger(); }, [] { VarToInteger(Variant(2147483648)); },
           [] { VarAsType(300, varByte); }, [] { VarAsType(-1, varLongWord); }, [] { VarAsType(1e300, varSingle); },
           [] { VarAsType(1e18, varCurrency); }})
    EXPECT_THROW(call(), ERangeError);

  EXPECT_EQ(Variant(std::uint8_t{12}), VarAsType(u"12", varByte));
  EXPECT_EQ(Variant(u"1.5"), VarAsType(1.5, varOleStr));
  EXPECT_EQ(Variant(1.0f), VarAsType(true, varSingle));
  EXPECT_THROW(VarAsType(Null(), varUString), EVariantTypeCastError);
  EXPECT_THROW(VarAsType(1, 99), EVariantTypeCastError);
}

TEST(VariantTest, Compares) {
  struct TCase {
    Variant Left;
    char Sign;  // '<', '=', '>', or '?' for without order
    Variant Right;
  };
  const std::int64_t large = std::int64_t{1} << 53;
  const TCase cases[] = {
      {1, '=', 1.0},
      {std::int8_t{-1}, '<', std::uint64_t{0}},
      {~std::uint64_t{0}, '>', std::int64_t{-1}},
      {large + 1, '>', static_cast<double>(large)},
      {static_cast<double>(large), '<', large + 1},
      {std::numeric_limits<std::int64_t>::max(), '<', 0x1p63},
      {~std::uint64_t{0}, '<', 0x1p64},
      {std::numeric_limits<std::int64_t>::min(), '=', -0x1p63},
      {-3, '>', -3.5},
      {-3, '<', -2.5},
      {3, '<', 3.5},
      {1, '<', cInfinity},
      {1, '?', std::nan("")},
      {Currency(0.1), '<', Currency(0.2)},
      {Currency(0.1), '=', 0.1},
      {Currency(-3.5), '<', -3},
      {Currency::FromScaled(9223372036854770001), '>', std::int64_t{922337203685477}},
      {~std::uint64_t{0}, '=', u"18446744073709551615"},
      {TDateTime(2), '>', 1.5},
      {u"a", '<', u"b"},
      {u"10", '<', u"9"},
      {u"10", '>', 9},
      {9007199254740993, '=', u"9007199254740993"},
      {1.5, '=', u"1.5"},
      {false, '<', true},
      {true, '=', 7},
      {u"false", '<', true},
      {TDateTime(45352), '=', u"2024-03-01"},
      {Null(), '=', Null()},
      {Null(), '?', 0},
      {Variant(), '=', Variant()},
      {Variant(), '?', Null()},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(ToUTF8(VarToStr(c.Left)) + c.Sign + ToUTF8(VarToStr(c.Right)));
    EXPECT_EQ(c.Sign == '=', VarCmpEQ(c.Left, c.Right));
    EXPECT_EQ(c.Sign != '=', VarCmpNE(c.Left, c.Right));
    EXPECT_EQ(c.Sign == '<', VarCmpLT(c.Left, c.Right));
    EXPECT_EQ(c.Sign == '<' || c.Sign == '=', VarCmpLE(c.Left, c.Right));
    EXPECT_EQ(c.Sign == '>', VarCmpGT(c.Left, c.Right));
    EXPECT_EQ(c.Sign == '>' || c.Sign == '=', VarCmpGE(c.Left, c.Right));
  }
  EXPECT_EQ("Could not convert variant of type (String) into type (Double)",
            Raised<EVariantTypeCastError>([] { VarCmpEQ(1, u"x"); }));
  EXPECT_THROW(VarCmpEQ(true, u"x"), EVariantTypeCastError);
  EXPECT_THROW(VarCmpLT(VarArrayOf({1}), 1), EVariantTypeCastError);
}

TEST(VariantTest, AddsAndNegates) {
  const std::int64_t max = std::numeric_limits<std::int64_t>::max();
  struct TCase {
    Variant Left, Right, Sum;
  };
  const TCase cases[] = {
      {1, std::uint8_t{2}, std::int64_t{3}},
      {max, 1, 0x1p63},
      {~std::uint64_t{0}, 1, 0x1p64},
      {1, 1.5, 2.5},
      {true, 1, std::int64_t{2}},
      {u"a", 1, u"a1"},
      {1.5, u"b", u"1.5b"},
      {Null(), u"a", Null()},
      {1, Null(), Null()},
      {TDateTime(2), 1, TDateTime(3)},
      {Currency(0.1), Currency(0.2), Currency(0.3)},
      {Currency(0.5), 1, Currency(1.5)},
      {Currency(0.5), 1.5, 2.0},
  };
  for (const TCase& c : cases) EXPECT_EQ(c.Sum, c.Left + c.Right) << ToUTF8(VarToStr(c.Sum));
  EXPECT_THROW(VarAdd(Variant(), 1), EVariantTypeCastError);
  EXPECT_THROW(VarAdd(VarArrayOf({}), 1), EVariantTypeCastError);
  EXPECT_THROW(VarAdd(Currency(922337203685477), Currency(1e10)), ERangeError);

  EXPECT_EQ(Variant(std::int64_t{-5}), -Variant(5));
  EXPECT_EQ(Variant(0x1p63), VarNeg(std::numeric_limits<std::int64_t>::min()));
  EXPECT_EQ(Variant(-1.5), VarNeg(u"1.5"));
  EXPECT_EQ(Variant(std::int64_t{-2}), VarNeg(u"2"));
  EXPECT_EQ(Variant(Currency(-1)), VarNeg(Currency(1)));
  EXPECT_TRUE(VarNeg(Null()).IsNull());
  EXPECT_THROW(VarNeg(u"x"), EVariantTypeCastError);
}

TEST(VariantTest, KeepsArrays) {
  Variant array = VarArrayCreate(-1, 1, varInteger);
  EXPECT_EQ(varArray | varInteger, VarType(array));
  VarArrayPut(array, 1, u"12");
  const Variant copy = array;
  VarArrayPut(array, -1, 5);
  EXPECT_EQ(Variant(0), VarArrayGet(copy, -1));
  EXPECT_EQ(Variant(5), VarArrayGet(array, -1));
  EXPECT_EQ(Variant(12), VarArrayGet(array, 1));
  EXPECT_NE(copy, array);
  VarArrayRedim(array, 2);
  EXPECT_EQ(2, VarArrayHighBound(array));
  EXPECT_EQ(Variant(0), VarArrayGet(array, 2));
  EXPECT_EQ(1, VarArrayHighBound(copy));
  EXPECT_EQ("Variant array index out of bounds (-2)", Raised<EVariantArrayError>([&] { VarArrayGet(array, -2); }));
  EXPECT_EQ("The variant is not an array", Raised<EVariantArrayError>([] { VarArrayLowBound(1); }));
  EXPECT_THROW(VarArrayPut(array, 0, u"x"), EVariantTypeCastError);
  EXPECT_THROW(VarArrayCreate(0, -2, varInteger), EVariantArrayError);
  EXPECT_THROW(VarArrayCreate(0, std::numeric_limits<std::int64_t>::max(), varInteger), EVariantArrayError);
  EXPECT_THROW(VarArrayCreate(0, 1, varNull), EVariantArrayError);
  EXPECT_THROW(array.AsString(), EVariantTypeCastError);
  const std::int64_t last = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ(last, VarArrayHighBound(VarArrayCreate(last, last, varInteger)));
  Variant self = VarArrayOf({1});
  VarArrayPut(self, 0, self);
  EXPECT_EQ(VarArrayOf({VarArrayOf({1})}), self);
}

TEST(VariantTest, ComparesWhatIsSharedOnce) {
  Variant left = 1, right = 1;
  for (int i = 0; i < 60; ++i) left = VarArrayOf({left, left}), right = VarArrayOf({right, right});
  EXPECT_EQ(left, right);
}

TEST(VariantTest, NestsWithoutAStack) {
  Variant deep = 1, other = 1;
  for (int i = 0; i < 1000000; ++i) {
    deep = VarArrayOf({deep, i});
    other = VarArrayOf({other, i});
  }
  const Variant copy = deep;
  EXPECT_EQ(deep, other);
  VarArrayPut(other, 1, 7);
  EXPECT_NE(deep, other);
}

}  // namespace
