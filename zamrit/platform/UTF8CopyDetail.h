#pragma once

#include <bit>
#include <cstring>

#include "zamrit/platform/TextDetail.h"

namespace zm::detail {

/// Copies [P, End) to Out by whole vectors, as long as it is ASCII and may be read that far, and returns how much is
/// done. Writes up to 16 bytes more.
ZM_INLINE std::size_t CopyASCII(const char* P, const char* End, const char* Readable, char* Out) {
  using Lanes = TVectorLanes<char>;
  const char* const begin = P;
  for (; P < End && Readable - P >= 16; P += 16, Out += 16) {
    std::memcpy(Out, P, 16);
    const std::uint32_t others = Lanes::Bits(Lanes::Not(Lanes::AtMost(Lanes::Load(P), '\x7F'))) | 0x10000;
    const std::ptrdiff_t run = std::countr_zero(others);
    if (run >= End - P) return static_cast<std::size_t>(End - begin);
    if (run < 16) return static_cast<std::size_t>(P + run - begin);
  }
  return static_cast<std::size_t>((P < End ? P : End) - begin);
}

/// Whether [P, End) is well-formed UTF-8.
inline bool IsWellFormedUTF8(const char* P, const char* End) {
  const auto follows = [&P](int At) { return (P[At] & 0xC0) == 0x80; };
  while (P < End) {
    const auto lead = static_cast<unsigned char>(*P);
    if (lead < 0x80) {
      ++P;
    } else if (lead < 0xE0 && lead >= 0xC2 && End - P >= 2 && follows(1)) {
      P += 2;
    } else if (lead > 0xE0 && lead < 0xED && End - P >= 3 && follows(1) && follows(2)) {
      P += 3;
    } else {
      const TCodePoint c = DecodeUTF8(P, End);
      if (c.Code == cReplacement && (c.Length != 3 || *P != '\xEF')) return false;
      P += c.Length;
    }
  }
  return true;
}

}  // namespace zm::detail
