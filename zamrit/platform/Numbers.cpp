#include "zamrit/platform/Numbers.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>
#include <system_error>

namespace zm {

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

/// The number in the characters that std::from_chars takes, without sign and separators.
class TNarrowNumber {
 public:
  /// False where Text, without sign and blanks, holds anything but digits, separators and an exponent.
  bool Take(StringView Text, const TFormatSettings& Settings) {
    if (Text.size() > sizeof FShort) {
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
        return TakeExponent(Text.substr(i + 1));
      } else if (unit != Settings.ThousandSeparator || point || !digits) {
        return false;
      }
    }
    return digits;
  }

  template <class T>
  bool Read(T& Value) const {
    T value = 0;
    const auto [end, error] = std::from_chars(FBegin, FEnd, value);
    if (error == std::errc::result_out_of_range) {
      if (!IsSmall()) return false;
      value = 0;
    } else if (error != std::errc() || end != FEnd) {
      return false;
    }
    Value = value;
    return true;
  }

 private:
  bool TakeExponent(StringView Text) {
    *FEnd++ = 'e';
    FExponent = FEnd;
    if (Text.starts_with(u'-')) *FEnd++ = '-';
    if (Text.starts_with(u'-') || Text.starts_with(u'+')) Text.remove_prefix(1);
    if (Text.empty()) return false;
    for (char16_t unit : Text) {
      if (unit < u'0' || unit > u'9') return false;
      *FEnd++ = static_cast<char>(unit);
    }
    return true;
  }

  /// Of a number out of range: whether it is too small.
  bool IsSmall() const {
    const char* const mantissaEnd = FExponent ? FExponent - 1 : FEnd;
    const char* const point = std::find(static_cast<const char*>(FBegin), mantissaEnd, '.');
    const char* const first =
        std::find_if(static_cast<const char*>(FBegin), mantissaEnd, [](char c) { return c != '0' && c != '.'; });
    std::ptrdiff_t exponent = 0;
    if (FExponent && std::from_chars(FExponent, FEnd, exponent).ec != std::errc()) return *FExponent == '-';
    const std::ptrdiff_t place = first < point ? point - first : point - first + 1;
    return first == mantissaEnd || exponent < -place;
  }

  char FShort[64];
  std::string FLong;
  char* FBegin = FShort;
  char* FEnd = FShort;
  const char* FExponent = nullptr;
};

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

/// Reads plain digits with a decimal separator where the digits and the power of ten are exact in T: then one division
/// is correctly rounded. False says nothing about any other text.
template <class T>
bool ReadExact(StringView Text, T& Value, char16_t Separator) {
  static constexpr auto powers = MakePowers<T>();
  if (FLT_EVAL_METHOD != 0 || Text.empty() || Text.size() > 19) return false;
  std::uint64_t digits = 0;
  const char16_t* point = nullptr;
  const char16_t* const end = Text.data() + Text.size();
  for (const char16_t* at = Text.data(); at != end; ++at) {
    const unsigned digit = static_cast<unsigned>(*at) - u'0';
    if (digit <= 9)
      digits = digits * 10 + digit;
    else if (*at == Separator && !point && Text.size() > 1)
      point = at;
    else
      return false;
  }
  const std::size_t decimals = point ? static_cast<std::size_t>(end - point) - 1 : 0;
  if (digits > cExact<T> || decimals >= powers.size()) return false;
  Value = static_cast<T>(digits) / powers[decimals];
  return true;
}

template <class T>
bool ReadFloat(StringView Text, T& Value, const TFormatSettings& Settings) {
  while (!Text.empty() && IsBlank(Text.front())) Text.remove_prefix(1);
  while (!Text.empty() && IsBlank(Text.back())) Text.remove_suffix(1);
  const bool negative = Text.starts_with(u'-');
  if (negative || Text.starts_with(u'+')) Text.remove_prefix(1);
  T value = 0;
  if (ReadExact(Text, value, Settings.DecimalSeparator)) {
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

  /// Takes what std::to_chars writes in scientific form: "d.dddde-dd".
  void Take(const char* Text, const char* End) {
    const char* mark = End - 4;
    while (*mark != 'e') mark -= 1;
    Exponent = 0;
    for (const char* at = mark + 2; at != End; ++at) Exponent = Exponent * 10 + (*at - '0');
    if (mark[1] == '-') Exponent = -Exponent;
    Digits[0] = Text[0];
    Count = 1;
    if (mark - Text > 2) {
      std::memcpy(Digits + 1, Text + 2, static_cast<std::size_t>(mark - Text - 2));
      Count = static_cast<int>(mark - Text) - 1;
    }
    DropZeros();
  }

  /// Cuts 16 or 17 digits, the nearest to the number with so many, to 15. False where half a digit is cut off: then the
  /// number itself has to decide.
  bool Cut() {
    const int tail = (Digits[15] - '0') * 10 + (Count > 16 ? Digits[16] - '0' : 0);
    if (tail == 50) return false;
    Count = 15;
    if (tail > 50) RoundUp();
    DropZeros();
    return true;
  }

 private:
  void RoundUp() {
    while (Count > 0 && Digits[Count - 1] == '9') --Count;
    if (Count > 0) {
      ++Digits[Count - 1];
      return;
    }
    Digits[0] = '1';
    Count = 1;
    ++Exponent;
  }
  void DropZeros() {
    while (Count > 1 && Digits[Count - 1] == '0') --Count;
  }
};

TDecimal ToDecimal(double Value) {
  TDecimal number;
  char text[32];
  if (Value >= std::numeric_limits<double>::min()) {
    number.Take(text, std::to_chars(text, std::end(text), Value, std::chars_format::scientific).ptr);
    if (number.Count <= 15 || number.Cut()) return number;
  }
  number.Take(text, std::to_chars(text, std::end(text), Value, std::chars_format::scientific, 14).ptr);
  return number;
}

TDecimal ToDecimal(Extended Value) {
  TDecimal number;
  char text[48];
  number.Take(text, std::to_chars(text, std::end(text), Value, std::chars_format::scientific, 17).ptr);
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

template <class T>
String WriteFloat(T Value, int MaxDigits, char16_t Separator) {
  if (std::isnan(Value)) return u"NAN";
  if (std::isinf(Value)) return Value < 0 ? u"-INF" : u"INF";
  if (Value == 0) return u"0";
  const TDecimal number = ToDecimal(std::fabs(Value));
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

std::int64_t ToWhole(double Value) {
  if (!(Value >= -0x1p63 && Value < 0x1p63)) throw ERangeError(u"The value does not fit an integer");
  return static_cast<std::int64_t>(Value);
}

}  // namespace

Currency::Currency(double Value) : FScaled(Round(Value * 10000)) {}

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
  return WriteFloat(Value, 15, Settings.DecimalSeparator);
}
String FloatToStr(Extended Value, const TFormatSettings& Settings) {
  return WriteFloat(Value, 18, Settings.DecimalSeparator);
}

std::int64_t Ceil(double Value) { return ToWhole(std::ceil(Value)); }
std::int64_t Floor(double Value) { return ToWhole(std::floor(Value)); }
std::int64_t Trunc(double Value) { return ToWhole(std::trunc(Value)); }
std::int64_t Round(double Value) {
  const double down = std::floor(Value);
  const double rest = Value - down;
  const bool up = rest > 0.5 || (rest == 0.5 && std::fmod(down, 2) != 0);
  return ToWhole(up ? down + 1 : down);
}

}  // namespace zm
