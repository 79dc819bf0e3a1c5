#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if !defined(ZM_SCALAR) && (defined(__SSE2__) || defined(_M_X64))
#define ZM_SSE2 1
#include <emmintrin.h>
#elif !defined(ZM_SCALAR) && defined(__ARM_NEON) && defined(__aarch64__)
#define ZM_NEON 1
#include <arm_neon.h>
#endif

// For the few lines that run for every token.
#if defined(__GNUC__)
#define ZM_INLINE inline __attribute__((always_inline))
#define ZM_NOINLINE __attribute__((noinline))
// Memory that is going to be read soon.
#define ZM_PREFETCH(Address) __builtin_prefetch(Address)
#else
#define ZM_INLINE inline
#define ZM_NOINLINE
#define ZM_PREFETCH(Address) static_cast<void>(Address)
#endif

// The one place with vector instructions. A lane type looks at 16 units of text (bytes, or UTF-16 units) at once: Load
// takes them, Eq and AtMost compare each with a unit, Bits gives the outcome as a mask whose bit i is unit i.
// Everything that scans is written once over a lane type; the scalar one is always built, and tests hold the two
// together.
namespace zm::detail {

template <class U>
struct TScalarLanes {
  using Unit = U;
  struct TVector {
    U Units[16];
  };
  using TMask = std::uint32_t;

  static TVector Load(const U* P) {
    TVector v;
    std::memcpy(v.Units, P, sizeof v.Units);
    return v;
  }
  static TMask Eq(const TVector& V, U C) {
    return Collect(V, [C](U u) { return u == C; });
  }
  static TMask AtMost(const TVector& V, U C) {
    return Collect(V, [C](U u) { return AsUnsigned(u) <= AsUnsigned(C); });
  }
  static TMask Or(TMask A, TMask B) { return A | B; }
  static TMask Not(TMask M) { return ~M & 0xFFFF; }
  static std::uint32_t Bits(TMask M) { return M; }
  static void Widen(const TVector& V, char16_t* Out) {
    for (int i = 0; i < 16; ++i) Out[i] = AsUnsigned(V.Units[i]);
  }

 private:
  static char16_t AsUnsigned(U u) {
    if constexpr (sizeof(U) == 1)
      return static_cast<unsigned char>(u);
    else
      return u;
  }
  template <class F>
  static TMask Collect(const TVector& V, F Test) {
    TMask m = 0;
    for (unsigned i = 0; i < 16; ++i) m |= static_cast<TMask>(Test(V.Units[i])) << i;
    return m;
  }
};

#if defined(ZM_SSE2)

template <class U>
struct TVectorLanes;

template <>
struct TVectorLanes<char> {
  using Unit = char;
  using TVector = __m128i;
  using TMask = __m128i;

  static TVector Load(const char* P) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(P)); }
  static TMask Eq(TVector V, char C) { return _mm_cmpeq_epi8(V, _mm_set1_epi8(C)); }
  static TMask AtMost(TVector V, char C) {
    return _mm_cmpeq_epi8(_mm_subs_epu8(V, _mm_set1_epi8(C)), _mm_setzero_si128());
  }
  static TMask Or(TMask A, TMask B) { return _mm_or_si128(A, B); }
  static TMask Not(TMask M) { return _mm_cmpeq_epi8(M, _mm_setzero_si128()); }
  static std::uint32_t Bits(TMask M) { return static_cast<std::uint32_t>(_mm_movemask_epi8(M)); }
  static void Widen(TVector V, char16_t* Out) {
    auto to = reinterpret_cast<__m128i*>(Out);
    _mm_storeu_si128(to, _mm_unpacklo_epi8(V, _mm_setzero_si128()));
    _mm_storeu_si128(to + 1, _mm_unpackhi_epi8(V, _mm_setzero_si128()));
  }
};

template <>
struct TVectorLanes<char16_t> {
  using Unit = char16_t;
  struct TVector {
    __m128i Low, High;
  };
  using TMask = __m128i;

  static TVector Load(const char16_t* P) {
    auto from = reinterpret_cast<const __m128i*>(P);
    return {_mm_loadu_si128(from), _mm_loadu_si128(from + 1)};
  }
  static TMask Eq(TVector V, char16_t C) {
    const __m128i c = _mm_set1_epi16(static_cast<short>(C));
    return _mm_packs_epi16(_mm_cmpeq_epi16(V.Low, c), _mm_cmpeq_epi16(V.High, c));
  }
  static TMask AtMost(TVector V, char16_t C) {
    const __m128i c = _mm_set1_epi16(static_cast<short>(C)), zero = _mm_setzero_si128();
    return _mm_packs_epi16(_mm_cmpeq_epi16(_mm_subs_epu16(V.Low, c), zero),
                           _mm_cmpeq_epi16(_mm_subs_epu16(V.High, c), zero));
  }
  static TMask Or(TMask A, TMask B) { return _mm_or_si128(A, B); }
  static TMask Not(TMask M) { return _mm_cmpeq_epi8(M, _mm_setzero_si128()); }
  static std::uint32_t Bits(TMask M) { return static_cast<std::uint32_t>(_mm_movemask_epi8(M)); }
};

#elif defined(ZM_NEON)

inline std::uint32_t NeonBits(uint8x16_t M) {
  static constexpr std::uint8_t weights[16] = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
  const uint8x16_t bits = vandq_u8(M, vld1q_u8(weights));
  return static_cast<std::uint32_t>(vaddv_u8(vget_low_u8(bits))) |
         static_cast<std::uint32_t>(vaddv_u8(vget_high_u8(bits))) << 8;
}

template <class U>
struct TVectorLanes;

template <>
struct TVectorLanes<char> {
  using Unit = char;
  using TVector = uint8x16_t;
  using TMask = uint8x16_t;

  static TVector Load(const char* P) { return vld1q_u8(reinterpret_cast<const std::uint8_t*>(P)); }
  static TMask Eq(TVector V, char C) { return vceqq_u8(V, vdupq_n_u8(static_cast<std::uint8_t>(C))); }
  static TMask AtMost(TVector V, char C) { return vcleq_u8(V, vdupq_n_u8(static_cast<std::uint8_t>(C))); }
  static TMask Or(TMask A, TMask B) { return vorrq_u8(A, B); }
  static TMask Not(TMask M) { return vmvnq_u8(M); }
  static std::uint32_t Bits(TMask M) { return NeonBits(M); }
  static void Widen(TVector V, char16_t* Out) {
    auto to = reinterpret_cast<std::uint16_t*>(Out);
    vst1q_u16(to, vmovl_u8(vget_low_u8(V)));
    vst1q_u16(to + 8, vmovl_u8(vget_high_u8(V)));
  }
};

template <>
struct TVectorLanes<char16_t> {
  using Unit = char16_t;
  struct TVector {
    uint16x8_t Low, High;
  };
  using TMask = uint8x16_t;

  static TVector Load(const char16_t* P) {
    auto from = reinterpret_cast<const std::uint16_t*>(P);
    return {vld1q_u16(from), vld1q_u16(from + 8)};
  }
  static TMask Eq(TVector V, char16_t C) {
    const uint16x8_t c = vdupq_n_u16(C);
    return vcombine_u8(vmovn_u16(vceqq_u16(V.Low, c)), vmovn_u16(vceqq_u16(V.High, c)));
  }
  static TMask AtMost(TVector V, char16_t C) {
    const uint16x8_t c = vdupq_n_u16(C);
    return vcombine_u8(vmovn_u16(vcleq_u16(V.Low, c)), vmovn_u16(vcleq_u16(V.High, c)));
  }
  static TMask Or(TMask A, TMask B) { return vorrq_u8(A, B); }
  static TMask Not(TMask M) { return vmvnq_u8(M); }
  static std::uint32_t Bits(TMask M) { return NeonBits(M); }
};

#else

template <class U>
using TVectorLanes = TScalarLanes<U>;

#endif

/// The outcome of Match for up to 16 units from P on, without touching what lies at End or behind it.
template <class Lanes, class Match>
ZM_INLINE std::uint32_t BitsAt(const typename Lanes::Unit* P, const typename Lanes::Unit* End, Match Matches) {
  const std::ptrdiff_t left = End - P;
  if (left >= 16) [[likely]]
    return Lanes::Bits(Matches(Lanes::Load(P)));
  typename Lanes::Unit tail[16] = {};
  std::memcpy(tail, P, static_cast<std::size_t>(left) * sizeof *P);
  return Lanes::Bits(Matches(Lanes::Load(tail))) & ((1u << left) - 1);
}

/// The first unit in [P, End) for which Match holds, or End.
template <class Lanes, class Match>
ZM_NOINLINE const typename Lanes::Unit* FindFar(const typename Lanes::Unit* P, const typename Lanes::Unit* End,
                                                Match Matches) {
  while (P < End) {
    if (const std::uint32_t bits = BitsAt<Lanes>(P, End, Matches)) return P + std::countr_zero(bits);
    P += End - P < 16 ? End - P : 16;
  }
  return End;
}

/// The same for what is mostly near: the first 16 units are looked at in place.
template <class Lanes, class Match>
ZM_INLINE const typename Lanes::Unit* Find(const typename Lanes::Unit* P, const typename Lanes::Unit* End,
                                           Match Matches) {
  if (End - P >= 16) [[likely]] {
    if (const std::uint32_t bits = Lanes::Bits(Matches(Lanes::Load(P)))) [[likely]]
      return P + std::countr_zero(bits);
    P += 16;
  }
  return FindFar<Lanes>(P, End, Matches);
}

/// Matches one unit of several.
template <class Lanes, char... Chars>
struct TAnyOf {
  ZM_INLINE typename Lanes::TMask operator()(const typename Lanes::TVector& V) const {
    return Any(V, static_cast<typename Lanes::Unit>(Chars)...);
  }

 private:
  template <class... Rest>
  static ZM_INLINE typename Lanes::TMask Any(const typename Lanes::TVector& V, typename Lanes::Unit C, Rest... Others) {
    if constexpr (sizeof...(Rest) == 0)
      return Lanes::Eq(V, C);
    else
      return Lanes::Or(Lanes::Eq(V, C), Any(V, Others...));
  }
};

/// Matches white space and control characters (up to U+0020) and one unit of several.
template <class Lanes, char... Chars>
struct TSpaceOrAnyOf {
  ZM_INLINE typename Lanes::TMask operator()(const typename Lanes::TVector& V) const {
    return Lanes::Or(Lanes::AtMost(V, static_cast<typename Lanes::Unit>(' ')), TAnyOf<Lanes, Chars...>()(V));
  }
};

}  // namespace zm::detail
