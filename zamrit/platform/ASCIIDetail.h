#pragma once

#include <algorithm>
#include <string_view>

#include "zamrit/platform/Strings.h"

namespace zm::detail {

inline bool IsASCII(StringView Text) {
  return std::all_of(Text.begin(), Text.end(), [](char16_t c) { return c < 0x80; });
}
inline bool IsASCII(std::string_view Text) {
  return std::all_of(Text.begin(), Text.end(), [](char c) { return !(c & 0x80); });
}

constexpr bool IsDigit(char16_t C) { return C >= u'0' && C <= u'9'; }

template <class Char>
constexpr Char LowerASCII(Char C) {
  return C >= 'A' && C <= 'Z' ? static_cast<Char>(C | 0x20) : C;
}
template <class Char>
constexpr Char UpperASCII(Char C) {
  return C >= 'a' && C <= 'z' ? static_cast<Char>(C & ~0x20) : C;
}

}  // namespace zm::detail
