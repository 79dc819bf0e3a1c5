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
  while (P < End) {
    if (!(*P & 0x80)) {
      ++P;
      continue;
    }
    const TCodePoint c = DecodeUTF8(P, End);
    if (c.Code == cReplacement && (c.Length != 3 || *P != '\xEF')) return false;
    P += c.Length;
  }
  return true;
}

}  // namespace zm::detail
