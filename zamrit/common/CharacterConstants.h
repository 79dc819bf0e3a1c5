#pragma once

#include <cstdint>
#include <string_view>

namespace zm {

// Each constant stands as a wide character (suffix W and without a suffix) and as a narrow one (suffix A), so that a
// parser can point at it in the form of its source.
#define ZM_CHARACTER(Stem, Char)               \
  inline constexpr char16_t Stem##W = u##Char; \
  inline constexpr char Stem##A = Char;        \
  inline constexpr char16_t Stem = Stem##W

ZM_CHARACTER(cZmAmp, '&');
ZM_CHARACTER(cZmApos, '\'');
ZM_CHARACTER(cZmAt, '@');
ZM_CHARACTER(cZmBackSlash, '\\');
ZM_CHARACTER(cZmBraceC, '}');
ZM_CHARACTER(cZmBraceO, '{');
ZM_CHARACTER(cZmBracketC, ']');
ZM_CHARACTER(cZmBracketO, '[');
ZM_CHARACTER(cZmColon, ':');
ZM_CHARACTER(cZmComma, ',');
ZM_CHARACTER(cZmCR, '\r');
ZM_CHARACTER(cZmLF, '\n');
ZM_CHARACTER(cZmDollar, '$');
ZM_CHARACTER(cZmDot, '.');
ZM_CHARACTER(cZmEOF, '\0');
ZM_CHARACTER(cZmEqual, '=');
ZM_CHARACTER(cZmExcl, '!');
ZM_CHARACTER(cZmGt, '>');
ZM_CHARACTER(cZmLine, '-');
ZM_CHARACTER(cZmLt, '<');
ZM_CHARACTER(cZmPercent, '%');
ZM_CHARACTER(cZmPlus, '+');
ZM_CHARACTER(cZmQuest, '?');
ZM_CHARACTER(cZmQuote, '"');
ZM_CHARACTER(cZmRBracketC, ')');
ZM_CHARACTER(cZmRBracketO, '(');
ZM_CHARACTER(cZmSemiColon, ';');
ZM_CHARACTER(cZmSlash, '/');
ZM_CHARACTER(cZmSpace, ' ');
ZM_CHARACTER(cZm0, '0');
ZM_CHARACTER(cZm9, '9');

#undef ZM_CHARACTER

/// A set of 8-bit characters: the code points up to U+00FF.
class TZmCharSet {
 public:
  constexpr TZmCharSet() = default;
  /// The characters of a text.
  constexpr TZmCharSet(std::string_view Chars) {  // NOLINT(google-explicit-constructor)
    for (const char c : Chars) Add(static_cast<unsigned char>(c));
  }
  /// The characters from First to Last, both included.
  static constexpr TZmCharSet Range(char First, char Last) {
    TZmCharSet set;
    for (int c = static_cast<unsigned char>(First); c <= static_cast<unsigned char>(Last); ++c)
      set.Add(static_cast<unsigned char>(c));
    return set;
  }
  friend constexpr TZmCharSet operator|(TZmCharSet Left, const TZmCharSet& Right) {
    for (int i = 0; i < 4; ++i) Left.FBits[i] |= Right.FBits[i];
    return Left;
  }

  constexpr bool Has(char16_t C) const { return C < 256 && (FBits[C >> 6] >> (C & 63) & 1) != 0; }
  /// Whether all members are below 0x80, so that stored units can be compared as they are.
  constexpr bool IsASCII() const { return (FBits[2] | FBits[3]) == 0; }

 private:
  constexpr void Add(unsigned char C) { FBits[C >> 6] |= std::uint64_t{1} << (C & 63); }
  std::uint64_t FBits[4] = {};
};

}  // namespace zm
