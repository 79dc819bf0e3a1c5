#include "zamrit/platform/Numbers.h"

#include <locale.h>  // NOLINT(modernize-deprecated-headers): newlocale and strtod_l are of POSIX
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers)

#include <algorithm>
#include <array>
#include <bit>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>
#include <system_error>
#include <type_traits>

#include "zamrit/platform/PowersOfTenDetail.h"

namespace zm {

using namespace detail;

namespace {

bool IsBlank(char16_t Unit) { return Unit == u' ' || Unit == u'\t'; }

/// -1 for what is no digit.
int HexDigit(char16_t Unit) {
  if (Unit >= u'0' && Unit <= u'9') return Unit - u'0';
  const int letter = Unit | 0x20;
  return Unit < 0x80 && letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

template <class T>
bool ReadHex(StringView Digits, bool Negative, T& Value) {
  using TBits = std::make_unsigned_t<T>;
  if (Digits.empty()) return false;
  TBits bits = 0;
  for (char16_t unit : Digits) {
    const int digit = HexDigit(unit);
    if (digit < 0 || bits >> (sizeof(T) * 8 - 4) != 0) return false;
    bits = static_cast<TBits>(bits << 4 | static_cast<TBits>(digit));
  }
  Value = static_cast<T>(Negative ? TBits{0} - bits : bits);
  return true;
}

template <class T>
bool ReadDecimal(StringView Digits, bool Negative, T& Value) {
  if (Digits.empty()) return false;
  while (Digits.size() > 1 && Digits.front() == u'0') Digits.remove_prefix(1);
  if (Digits.size() > std::numeric_limits<T>::digits10 + 1) return false;  // what is left cannot overflow 64 bits
  std::uint64_t number = 0;
  for (char16_t unit : Digits) {
    const unsigned digit = static_cast<unsigned>(unit) - u'0';
    if (digit > 9) return false;
    number = number * 10 + digit;
  }
  if (number > static_cast<std::uint64_t>(std::numeric_limits<T>::max()) + (Negative ? 1 : 0)) return false;
  Value = static_cast<T>(Negative ? 0 - number : number);
  return true;
}

template <class T>
bool ReadWhole(StringView Text, T& Value) {
  while (!Text.empty() && IsBlank(Text.front())) Text.remove_prefix(1);
  const bool negative = Text.starts_with(u'-');
  if (negative || Text.starts_with(u'+')) Text.remove_prefix(1);
  if (Text.starts_with(u'$')) return ReadHex(Text.substr(1), negative, Value);
  if (Text.starts_with(u"0x") || Text.starts_with(u"0X")) return ReadHex(Text.substr(2), negative, Value);
  return ReadDecimal(Text, negative, Value);
}

template <class T>
T NeedWhole(StringView Text) {
  T value = 0;
  if (!ReadWhole(Text, value)) throw EConvertError(u"'%s' is not a valid integer value", {Text});
  return value;
}

/// What std::from_chars gives no value for: infinity for a number too large, the nearest one for a number too small.
template <class T>
T ReadOutOfRange(const char* Text) {
  static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
  if constexpr (std::is_same_v<T, float>) return strtof_l(Text, nullptr, plain);
  if constexpr (std::is_same_v<T, double>) return strtod_l(Text, nullptr, plain);
  return static_cast<T>(strtold_l(Text, nullptr, plain));
}

/// The number in the characters that std::from_chars takes, without sign and separators.
class TNarrowNumber {
 public:
  /// False where Text, without sign and blanks, holds anything but digits, separators and an exponent.
  bool Take(StringView Text, const TFormatSettings& Settings) {
    if (Text.size() >= sizeof FShort) {
      FLong.resize(Text.size());
      FBegin = FLong.data();
    }
    FEnd = FBegin;
    bool digits = false, point = false;
    for (std::size_t i = 0; i < Text.size(); ++i) {
      const char16_t unit = Text[i];
      if (unit >= u'0' && unit <= u'9') {
        digits = true;
        *FEnd++ = static_cast<char>(unit);
      } else if (unit == Settings.DecimalSeparator && !point) {
        point = true;
        *FEnd++ = '.';
      } else if ((unit | 0x20) == u'e' && digits) {
        digits = TakeExponent(Text.substr(i + 1));
        break;
      } else if (unit != Settings.ThousandSeparator || point || !digits) {
        return false;
      }
    }
    *FEnd = '\0';
    return digits;
  }

  template <class T>
  bool Read(T& Value) const {
    T value = 0;
    const auto [end, error] = std::from_chars(FBegin, FEnd, value);
    if (end != FEnd || error == std::errc::invalid_argument) return false;
    if (error == std::errc::result_out_of_range) value = ReadOutOfRange<T>(FBegin);
    if (std::isinf(value)) return false;
    Value = value;
    return true;
  }

 private:
  bool TakeExponent(StringView Text) {
    *FEnd++ = 'e';
    if (Text.starts_with(u'-')) *FEnd++ = '-';
    if (Text.starts_with(u'-') || Text.starts_with(u'+')) Text.remove_prefix(1);
    if (Text.empty()) return false;
    for (char16_t unit : Text) {
      if (unit < u'0' || unit > u'9') return false;
      *FEnd++ = static_cast<char>(unit);
    }
    return true;
  }

  char FShort[64];
  std::string FLong;
  char* FBegin = FShort;
  char* FEnd = FShort;
};

/// Reads up to 19 significant digits with a decimal separator and an exponent as Digits * 10^Power. False says nothing
/// about any other text.
bool ReadDigits(StringView Text, char16_t Separator, std::uint64_t& Digits, std::ptrdiff_t& Power) {
  const char16_t* at = Text.data();
  const char16_t* const end = at + Text.size();
  const char16_t* point = nullptr;
  Digits = 0;
  for (; at != end; ++at) {
    const unsigned digit = static_cast<unsigned>(*at) - u'0';
    if (digit <= 9) {
      if (Digits >= 1000000000000000000) return false;
      Digits = Digits * 10 + digit;
    } else if (*at == Separator && !point) {
      point = at;
    } else {
      break;
    }
  }
  if (at - Text.data() == (point ? 1 : 0)) return false;
  Power = point ? point + 1 - at : 0;
  if (at == end) return true;
  if ((*at++ | 0x20) != u'e') return false;
  const bool negative = at != end && *at == u'-';
  if (negative || (at != end && *at == u'+')) ++at;
  if (at == end || end - at > 4) return false;
  int exponent = 0;
  for (; at != end; ++at) {
    const unsigned digit = static_cast<unsigned>(*at) - u'0';
    if (digit > 9) return false;
    exponent = exponent * 10 + static_cast<int>(digit);
  }
  Power += negative ? -exponent : exponent;
  return true;
}

/// The largest whole number up to which T has all, as far as 64 bits go.
template <class T>
inline constexpr std::uint64_t cExact = ~std::uint64_t{0} >> (64 - std::min(std::numeric_limits<T>::digits, 64));

/// How many powers of ten T has exactly: 5 to that power fits its mantissa.
template <class T>
constexpr int CountPowers() {
  int count = 0;
  for (std::uint64_t power = 1; power <= cExact<T> / 5; power *= 5) ++count;
  return count;
}

template <class T>
constexpr auto MakePowers() {
  std::array<T, CountPowers<T>() + 1> powers{};
  T power = 1;
  for (T& entry : powers) {
    entry = power;
    power *= 10;
  }
  return powers;
}

/// Where the digits and the power of ten are exact in T: then one division is correctly rounded.
template <class T>
bool ComposeExactly(std::uint64_t Digits, std::ptrdiff_t Power, T& Value) {
  static constexpr auto powers = MakePowers<T>();
  if (FLT_EVAL_METHOD != 0 || Digits > cExact<T> || Power > 0 || -Power >= std::ssize(powers)) return false;
  Value = static_cast<T>(Digits) / powers[static_cast<std::size_t>(-Power)];
  return true;
}

/// Mantissa * 2^(Exponent - digits of T), which T has; the mantissa fills these digits, or is the power of two above.
template <class T>
T Normal(std::uint64_t Mantissa, int Exponent) {
  using TLimits = std::numeric_limits<T>;
  if constexpr (TLimits::is_iec559 && sizeof(T) <= sizeof Mantissa) {
    using TBits = std::conditional_t<sizeof(T) == sizeof Mantissa, std::uint64_t, std::uint32_t>;
    constexpr TBits hidden = TBits{1} << (TLimits::digits - 1);
    const auto field = static_cast<TBits>(Exponent + TLimits::max_exponent - 2);
    return std::bit_cast<T>(static_cast<TBits>(field * hidden + (static_cast<TBits>(Mantissa) - hidden)));
  } else {
    return std::ldexp(static_cast<T>(Mantissa), Exponent - TLimits::digits);
  }
}

/// Digits * 10^Power, correctly rounded. False where the general way has to decide.
template <class T>
bool Compose(std::uint64_t Digits, std::ptrdiff_t Power, T& Value) {
  using TLimits = std::numeric_limits<T>;
  if constexpr (TLimits::digits <= 64) {
    if (ComposeExactly(Digits, Power, Value)) return true;
    if (Digits == 0 || Power < -cLastPower || Power > cLastPower) return false;
    const int power = static_cast<int>(Power), shift = std::countl_zero(Digits);
    TWide number = Scale(Digits << shift, power);
    int exponent = FloorLog2OfTen(power) + 65 - shift;
    if (number.High >> 63 == 0) {
      number = {number.High << 1 | number.Low >> 63, number.Low << 1};
      --exponent;
    }
    if (exponent < TLimits::min_exponent || exponent >= TLimits::max_exponent) return false;
    const auto mantissa = RoundOff(number, 64 - TLimits::digits);
    if (!mantissa || *mantissa == 0) return false;
    Value = Normal<T>(*mantissa, exponent);
    return true;
  } else {
    return ComposeExactly(Digits, Power, Value);
  }
}

template <class T>
bool ReadFloat(StringView Text, T& Value, const TFormatSettings& Settings) {
  while (!Text.empty() && IsBlank(Text.front())) Text.remove_prefix(1);
  while (!Text.empty() && IsBlank(Text.back())) Text.remove_suffix(1);
  const bool negative = Text.starts_with(u'-');
  if (negative || Text.starts_with(u'+')) Text.remove_prefix(1);
  T value = 0;
  std::uint64_t digits = 0;
  std::ptrdiff_t power = 0;
  if (ReadDigits(Text, Settings.DecimalSeparator, digits, power) && Compose(digits, power, value)) {
    Value = negative ? -value : value;
    return true;
  }
  TNarrowNumber number;
  if (number.Take(Text, Settings)) {
    if (!number.Read(value)) return false;
  } else if (SameText(Text, u"INF")) {
    value = std::numeric_limits<T>::infinity();
  } else if (SameText(Text, u"NAN")) {
    value = std::numeric_limits<T>::quiet_NaN();
  } else {
    return false;
  }
  Value = negative ? -value : value;
  return true;
}

template <class T>
T NeedFloat(StringView Text, const TFormatSettings& Settings) {
  T value = 0;
  if (!ReadFloat(Text, value, Settings)) throw EConvertError(u"'%s' is not a valid floating point value", {Text});
  return value;
}

/// The significant digits of a number above 0, without zeros at the end, and the power of ten of the first.
struct TDecimal {
  char Digits[32];
  int Count = 0;
  int Exponent = 0;

  void Take(std::uint64_t Number, int Power) {
    Count = static_cast<int>(std::to_chars(Digits, std::end(Digits), Number).ptr - Digits);
    Exponent = Power;
    DropZeros();
  }

  /// Takes what std::to_chars writes in scientific form: "d.dddde-dd".
  void Take(const char* Text, const char* End) {
    const char* mark = End - 4;
    while (*mark != 'e') mark -= 1;
    Exponent = 0;
    for (const char* at = mark + 2; at != End; ++at) Exponent = Exponent * 10 + (*at - '0');
    if (mark[1] == '-') Exponent = -Exponent;
    Digits[0] = Text[0];
    Count = static_cast<int>(mark - Text) - 1;
    std::memcpy(Digits + 1, Text + 2, static_cast<std::size_t>(Count - 1));
    DropZeros();
  }

 private:
  void DropZeros() {
    while (Count > 1 && Digits[Count - 1] == '0') --Count;
  }
};

/// Rounds Value to MaxDigits digits. False where the general way has to decide.
template <int MaxDigits, class T>
bool TakeApart(T Value, TDecimal& Number) {
  if constexpr (std::numeric_limits<T>::digits <= 64) {
    constexpr std::uint64_t limit = cPowers[cLastPower + MaxDigits].High >> (63 - FloorLog2OfTen(MaxDigits));
    int exponent = 0;
    const auto mantissa = static_cast<std::uint64_t>(std::frexp(Value, &exponent) * static_cast<T>(0x1p64));
    if (exponent < -1000 || exponent > 1024) return false;
    int place = FloorLog10OfTwo(exponent - 1);  // of the first digit, or one too low
    for (;; ++place) {
      const int power = MaxDigits - 1 - place;
      const auto digits = RoundOff(Scale(mantissa, power), 63 - exponent - FloorLog2OfTen(power));
      if (!digits) return false;
      if (*digits > limit) continue;
      Number.Take(*digits, *digits == limit ? place + 1 : place);
      return true;
    }
  } else {
    return false;
  }
}

template <int MaxDigits, class T>
TDecimal ToDecimal(T Value) {
  TDecimal number;
  if (TakeApart<MaxDigits>(Value, number)) return number;
  char text[48];
  number.Take(text, std::to_chars(text, std::end(text), Value, std::chars_format::scientific, MaxDigits - 1).ptr);
  return number;
}

/// A text of ASCII characters that is put together in place.
class TNarrowText {
 public:
  void Add(char Unit) { *FEnd++ = Unit; }
  void Add(const char* Text, int Count) {
    std::memcpy(FEnd, Text, static_cast<std::size_t>(Count));
    FEnd += Count;
  }
  void AddZeros(int Count) {
    std::memset(FEnd, '0', static_cast<std::size_t>(Count));
    FEnd += Count;
  }
  void AddNumber(int Number) { FEnd = std::to_chars(FEnd, std::end(FText), Number).ptr; }
  void AddSeparator() {
    FSeparator = FEnd - FText;
    *FEnd++ = '.';
  }
  String Widen(char16_t Separator) const {
    String text(static_cast<const char*>(FText), static_cast<const char*>(FEnd));
    if (FSeparator >= 0) text[static_cast<std::size_t>(FSeparator)] = Separator;
    return text;
  }

 private:
  char FText[64];
  char* FEnd = FText;
  std::ptrdiff_t FSeparator = -1;
};

template <int MaxDigits, class T>
String WriteFloat(T Value, char16_t Separator) {
  if (std::isnan(Value)) return u"NAN";
  if (std::isinf(Value)) return Value < 0 ? u"-INF" : u"INF";
  if (Value == 0) return u"0";
  const TDecimal number = ToDecimal<MaxDigits>(std::fabs(Value));
  const int whole = number.Exponent + 1;  // digits in front of the separator
  TNarrowText text;
  if (Value < 0) text.Add('-');
  if (whole > MaxDigits || whole < -4) {
    text.Add(number.Digits[0]);
    if (number.Count > 1) {
      text.AddSeparator();
      text.Add(number.Digits + 1, number.Count - 1);
    }
    text.Add('E');
    text.AddNumber(number.Exponent);
  } else if (whole <= 0) {
    text.Add('0');
    text.AddSeparator();
    text.AddZeros(-whole);
    text.Add(number.Digits, number.Count);
  } else if (number.Count <= whole) {
    text.Add(number.Digits, number.Count);
    text.AddZeros(whole - number.Count);
  } else {
    text.Add(number.Digits, whole);
    text.AddSeparator();
    text.Add(number.Digits + whole, number.Count - whole);
  }
  return text.Widen(Separator);
}

[[noreturn]] void RaiseNotWhole() { throw ERangeError(u"The value does not fit an integer"); }

template <class T>
std::int64_t ToWhole(T Value) {
  if (!(Value >= T{-0x1p63} && Value < T{0x1p63})) RaiseNotWhole();
  return static_cast<std::int64_t>(Value);
}

template <class T>
std::int64_t RoundToEven(T Value) {
  const T down = std::floor(Value);
  const T rest = Value - down;
  const bool up = rest > T{0.5} || (rest == T{0.5} && std::fmod(down, T{2}) != 0);
  return ToWhole(up ? down + 1 : down);
}

}  // namespace

// The whole and the rest are scaled apart, as the product of all digits need not fit an Extended.
Currency::Currency(Extended Value) {
  const Extended whole = std::trunc(Value);
  const std::int64_t units = ToWhole(whole), rest = RoundToEven((Value - whole) * 10000);
  constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
  const bool fits = units >= -(most / 10000) && units <= most / 10000 &&
                    (rest > 0 ? units * 10000 <= most - rest : units * 10000 >= -most - 1 - rest);
  if (!fits) RaiseNotWhole();
  FScaled = units * 10000 + rest;
}

std::int32_t StrToInt(StringView Text) { return NeedWhole<std::int32_t>(Text); }
bool TryStrToInt(StringView Text, std::int32_t& Value) { return ReadWhole(Text, Value); }
std::int32_t StrToIntDef(StringView Text, std::int32_t Default) {
  ReadWhole(Text, Default);
  return Default;
}
std::int64_t StrToInt64(StringView Text) { return NeedWhole<std::int64_t>(Text); }
bool TryStrToInt64(StringView Text, std::int64_t& Value) { return ReadWhole(Text, Value); }
std::int64_t StrToInt64Def(StringView Text, std::int64_t Default) {
  ReadWhole(Text, Default);
  return Default;
}

String IntToHex(std::uint64_t Value, int Digits) {
  String text;
  for (; Value != 0 || static_cast<int>(text.size()) < Digits; Value >>= 4) text += u"0123456789ABCDEF"[Value & 15];
  std::reverse(text.begin(), text.end());
  return text;
}

double StrToFloat(StringView Text, const TFormatSettings& Settings) { return NeedFloat<double>(Text, Settings); }
bool TryStrToFloat(StringView Text, double& Value, const TFormatSettings& Settings) {
  return ReadFloat(Text, Value, Settings);
}
double StrToFloatDef(StringView Text, double Default, const TFormatSettings& Settings) {
  ReadFloat(Text, Default, Settings);
  return Default;
}
float StrToSingle(StringView Text, const TFormatSettings& Settings) { return NeedFloat<float>(Text, Settings); }
bool TryStrToSingle(StringView Text, float& Value, const TFormatSettings& Settings) {
  return ReadFloat(Text, Value, Settings);
}
float StrToSingleDef(StringView Text, float Default, const TFormatSettings& Settings) {
  ReadFloat(Text, Default, Settings);
  return Default;
}
Extended StrToExtended(StringView Text, const TFormatSettings& Settings) { return NeedFloat<Extended>(Text, Settings); }
bool TryStrToExtended(StringView Text, Extended& Value, const TFormatSettings& Settings) {
  return ReadFloat(Text, Value, Settings);
}
Extended StrToExtendedDef(StringView Text, Extended Default, const TFormatSettings& Settings) {
  ReadFloat(Text, Default, Settings);
  return Default;
}

String FloatToStr(double Value, const TFormatSettings& Settings) {
  return WriteFloat<15>(Value, Settings.DecimalSeparator);
}
String FloatToStr(Extended Value, const TFormatSettings& Settings) {
  return WriteFloat<18>(Value, Settings.DecimalSeparator);
}

std::int64_t Ceil(double Value) { return ToWhole(std::ceil(Value)); }
std::int64_t Floor(double Value) { return ToWhole(std::floor(Value)); }
std::int64_t Trunc(double Value) { return ToWhole(std::trunc(Value)); }
std::int64_t Round(double Value) { return RoundToEven(Value); }

}  // namespace zm
