#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace zm {

/// Text inside the library: UTF-16 code units. Lone surrogates are kept as they stand.
using String = std::u16string;
/// A text that is only read. A view handed to a handler is valid until the handler returns.
using StringView = std::u16string_view;
/// 8-bit text whose code page stands beside it.
using RawByteString = std::string;

/// UTF-16 to UTF-8. A lone surrogate becomes U+FFFD. Linear.
std::string ToUTF8(StringView Text);
/// UTF-8 to UTF-16. Each maximal ill-formed sequence becomes one U+FFFD. Linear.
String FromUTF8(std::string_view Text);

/// One argument of Format: a text or a whole number.
class TFormatArg {
 public:
  TFormatArg(StringView Text) : FText(Text), FIsNumber(false) {}      // NOLINT(google-explicit-constructor)
  TFormatArg(const String& Text) : TFormatArg(StringView(Text)) {}    // NOLINT(google-explicit-constructor)
  TFormatArg(const char16_t* Text) : TFormatArg(StringView(Text)) {}  // NOLINT(google-explicit-constructor)
  template <class T, class = std::enable_if_t<std::is_integral_v<T>>>
  TFormatArg(T Number) : FNumber(static_cast<std::int64_t>(Number)), FIsNumber(true) {}  // NOLINT

 private:
  friend String Format(StringView Pattern, std::initializer_list<TFormatArg> Arguments);
  StringView FText;
  std::int64_t FNumber = 0;
  bool FIsNumber;
};

/// Replaces "%s" by the next argument as text, "%d" by the next argument, which must be a number, and "%%" by a per
/// cent sign. Raises EConvertError for another placeholder, for a missing argument or for a text under "%d".
String Format(StringView Pattern, std::initializer_list<TFormatArg> Arguments);

/// A number in decimal digits, with "-" in front where it is negative.
String IntToStr(std::int64_t Value);

/// The text without the characters up to U+0020 at both ends. The view points into Text.
StringView Trim(StringView Text);
/// The text with every character in lower case by simple Unicode mapping, independent of any locale.
String LowerCase(StringView Text);
/// Whether two texts are equal when case is ignored: ASCII first, simple Unicode folding beyond it.
bool SameText(StringView Left, StringView Right);
/// The text under simple Unicode case folding: equal results mean SameText.
String FoldCase(StringView Text);

}  // namespace zm
