#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>

#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/Strings.h"

namespace zm {

/// The widest floating number of the platform: 18 digits or more where it is wider than a double.
using Extended = long double;

/// An amount with four decimals, exact: from -922337203685477.5808 to 922337203685477.5807.
class Currency {
 public:
  constexpr Currency() = default;
  /// Rounded to the fourth decimal, ties to even. ERangeError where it does not fit.
  explicit Currency(Extended Value);
  /// Value in units of 1/10000.
  static constexpr Currency FromScaled(std::int64_t Value) {
    Currency result;
    result.FScaled = Value;
    return result;
  }
  constexpr std::int64_t GetScaled() const { return FScaled; }
  explicit operator double() const { return static_cast<double>(static_cast<Extended>(FScaled) / 10000); }
  friend constexpr auto operator<=>(Currency Left, Currency Right) = default;

 private:
  std::int64_t FScaled = 0;
};

/// The separators of numbers.
struct TFormatSettings {
  char16_t DecimalSeparator = u'.';
  char16_t ThousandSeparator = u',';
};

/// \name Whole numbers from text
/// Blanks in front, a sign, decimal digits, or "$" or "0x" and hexadecimal digits, and nothing behind. A decimal number
/// must fit the type; a hexadecimal one may have up to 8 or 16 digits, leading zeros not counted, and then stands for
/// its bits: "$FFFFFFFF" is -1. All else raises EConvertError "'%s' is not a valid integer value", gives the default,
/// or false with Value left as it is. Linear.
///@{
std::int32_t StrToInt(StringView Text);
std::int32_t StrToIntDef(StringView Text, std::int32_t Default);
bool TryStrToInt(StringView Text, std::int32_t& Value);
std::int64_t StrToInt64(StringView Text);
std::int64_t StrToInt64Def(StringView Text, std::int64_t Default);
bool TryStrToInt64(StringView Text, std::int64_t& Value);
///@}

/// The number in upper-case hexadecimal, with zeros in front up to Digits digits.
String IntToHex(std::uint64_t Value, int Digits);

/// \name Floating numbers from text
/// Blanks around, a sign, digits with at most one decimal separator, an exponent behind "e"; thousands separators among
/// the digits in front of the decimal separator do not count. "INF" and "NAN" in any case. Correctly rounded to the
/// type; too small a number is 0. All else, and a number too large, raises EConvertError "'%s' is not a valid floating
/// point value", gives the default, or false with Value left as it is. Linear.
///@{
double StrToFloat(StringView Text, const TFormatSettings& Settings = {});
double StrToFloatDef(StringView Text, double Default, const TFormatSettings& Settings = {});
bool TryStrToFloat(StringView Text, double& Value, const TFormatSettings& Settings = {});
float StrToSingle(StringView Text, const TFormatSettings& Settings = {});
float StrToSingleDef(StringView Text, float Default, const TFormatSettings& Settings = {});
bool TryStrToSingle(StringView Text, float& Value, const TFormatSettings& Settings = {});
Extended StrToExtended(StringView Text, const TFormatSettings& Settings = {});
Extended StrToExtendedDef(StringView Text, Extended Default, const TFormatSettings& Settings = {});
bool TryStrToExtended(StringView Text, Extended& Value, const TFormatSettings& Settings = {});
///@}

/// The number with up to 15 significant digits, an Extended with up to 18: in plain digits where the decimal point lies
/// within or right behind them and the number is 0.00001 or more, else as "1.5E20" or "1E-6". Infinities and
/// not-a-number are "INF", "-INF" and "NAN"; negative zero is "0".
String FloatToStr(double Value, const TFormatSettings& Settings = {});
String FloatToStr(Extended Value, const TFormatSettings& Settings = {});
inline String FloatToStr(float Value, const TFormatSettings& Settings = {}) {
  return FloatToStr(static_cast<double>(Value), Settings);
}

/// \name Rounding
/// Up, down, to the nearest with ties to the even one, and towards 0. ERangeError for what 64 bits cannot hold.
///@{
std::int64_t Ceil(double Value);
std::int64_t Floor(double Value);
std::int64_t Round(double Value);
std::int64_t Trunc(double Value);
///@}

}  // namespace zm
