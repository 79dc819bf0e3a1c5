#pragma once

#include <cstddef>
#include <cstdint>

#include "zamrit/platform/ScanDetail.h"
#include "zamrit/platform/Strings.h"

namespace zm::detail {

constexpr char16_t cReplacement = 0xFFFD;

constexpr bool IsHighSurrogate(char32_t C) { return (C & 0xFFFFFC00) == 0xD800; }
constexpr bool IsLowSurrogate(char32_t C) { return (C & 0xFFFFFC00) == 0xDC00; }
constexpr bool IsSurrogate(char32_t C) { return (C & 0xFFFFF800) == 0xD800; }
constexpr char16_t HighSurrogate(char32_t C) { return static_cast<char16_t>(0xD7C0 + (C >> 10)); }
constexpr char16_t LowSurrogate(char32_t C) { return static_cast<char16_t>(0xDC00 + (C & 0x3FF)); }
constexpr char32_t JoinSurrogates(char16_t High, char16_t Low) {
  return 0x10000 + ((static_cast<char32_t>(High) & 0x3FF) << 10) + (static_cast<char32_t>(Low) & 0x3FF);
}

/// A code point and the number of bytes that it takes.
struct TCodePoint {
  char32_t Code;
  int Length;
};

inline bool IsTrail(char C) { return (C & 0xC0) == 0x80; }
inline unsigned TrailBits(char C) { return static_cast<unsigned char>(C) & 0x3Fu; }

/// The code point at P, P < End. A maximal ill-formed sequence is U+FFFD.
inline TCodePoint DecodeUTF8(const char* P, const char* End) {
  const std::ptrdiff_t left = End - P;
  const unsigned lead = static_cast<unsigned char>(*P);
  if (lead < 0x80) return {lead, 1};
  if (lead < 0xC2 || lead > 0xF4) return {cReplacement, 1};
  if (lead < 0xE0) {
    if (left < 2 || !IsTrail(P[1])) return {cReplacement, 1};
    return {(lead & 0x1F) << 6 | TrailBits(P[1]), 2};
  }
  const unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const unsigned high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  const unsigned second = left < 2 ? 0 : static_cast<unsigned char>(P[1]);
  if (second < low || second > high) return {cReplacement, 1};
  if (left < 3 || !IsTrail(P[2])) return {cReplacement, 2};
  if (lead < 0xF0) return {(lead & 0xF) << 12 | TrailBits(P[1]) << 6 | TrailBits(P[2]), 3};
  if (left < 4 || !IsTrail(P[3])) return {cReplacement, 3};
  return {(lead & 7) << 18 | TrailBits(P[1]) << 12 | TrailBits(P[2]) << 6 | TrailBits(P[3]), 4};
}

/// Writes a code point as UTF-16 and returns the place behind it.
inline char16_t* PutUTF16(char32_t Code, char16_t* Out) {
  if (Code < 0x10000) {
    *Out++ = static_cast<char16_t>(Code);
  } else {
    *Out++ = HighSurrogate(Code);
    *Out++ = LowSurrogate(Code);
  }
  return Out;
}

/// Room that a widening needs behind the text that it writes.
constexpr std::size_t cWidenPad = 16;

template <class Lanes>
ZM_NOINLINE char16_t* WidenUTF8Far(const char* P, const char* End, const char* Readable, char16_t* Out) {
  while (P < End) {
    if (!(*P & 0x80) && Readable - P >= 16) {
      const auto v = Lanes::Load(P);
      Lanes::Widen(v, Out);
      const std::uint32_t others = Lanes::Bits(Lanes::Not(Lanes::AtMost(v, '\x7F'))) | 0x10000;
      const std::ptrdiff_t run = std::countr_zero(others);
      if (run >= End - P) return Out + (End - P);
      P += run;
      Out += run;
      continue;
    }
    // A run of other scripts, with single blanks and the like between its words.
    do {
      const unsigned lead = static_cast<unsigned char>(*P);
      if (lead >= 0xC2 && lead < 0xE0 && End - P >= 2 && IsTrail(P[1])) {
        *Out++ = static_cast<char16_t>((lead & 0x1F) << 6 | TrailBits(P[1]));
        P += 2;
      } else if (lead > 0xE0 && lead < 0xED && End - P >= 3 && IsTrail(P[1]) && IsTrail(P[2])) {
        *Out++ = static_cast<char16_t>((lead & 0xF) << 12 | TrailBits(P[1]) << 6 | TrailBits(P[2]));
        P += 3;
      } else {
        const TCodePoint c = DecodeUTF8(P, End);
        Out = PutUTF16(c.Code, Out);
        P += c.Length;
      }
      if (P < End && !(*P & 0x80)) *Out++ = static_cast<unsigned char>(*P++);
    } while (P < End && (*P & 0x80 || Readable - P < 16));
  }
  return Out;
}

/// Converts [P, End) to UTF-16 at Out and returns the end of it. May read up to Readable, which is End or lies behind
/// it, and needs room for End - P + cWidenPad units.
template <class Lanes = TVectorLanes<char>>
ZM_INLINE char16_t* WidenUTF8(const char* P, const char* End, const char* Readable, char16_t* Out) {
  if (Readable - P >= 16) [[likely]] {
    const auto v = Lanes::Load(P);
    Lanes::Widen(v, Out);
    const std::uint32_t others = Lanes::Bits(Lanes::Not(Lanes::AtMost(v, '\x7F'))) | 0x10000;
    const std::ptrdiff_t run = std::countr_zero(others);
    if (run >= End - P) [[likely]]
      return Out + (End - P);
    P += run;
    Out += run;
  }
  return WidenUTF8Far<Lanes>(P, End, Readable, Out);
}

/// As WidenUTF8, for bytes that a table turns into characters and that agree with ASCII below 0x80.
template <class Lanes = TVectorLanes<char>>
char16_t* WidenBytes(const char* P, const char* End, const char* Readable, char16_t* Out, const char16_t* Table) {
  while (P < End) {
    if (Readable - P >= 16) {
      const auto v = Lanes::Load(P);
      Lanes::Widen(v, Out);
      const std::ptrdiff_t run = End - P < 16 ? End - P : 16;
      if (Lanes::Bits(Lanes::AtMost(v, '\x7F')) != 0xFFFF)
        for (std::ptrdiff_t i = 0; i < run; ++i) Out[i] = Table[static_cast<unsigned char>(P[i])];
      P += run;
      Out += run;
    } else {
      *Out++ = Table[static_cast<unsigned char>(*P++)];
    }
  }
  return Out;
}

/// Appends the UTF-8 form of Text to Out; a lone surrogate becomes U+FFFD.
void AppendUTF8(StringView Text, std::string& Out);
/// Appends the UTF-16 form of Text to Out.
void AppendUTF16(std::string_view Text, String& Out);

}  // namespace zm::detail
