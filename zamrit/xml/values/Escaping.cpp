#include "zamrit/xml/values/Escaping.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include "zamrit/platform/Numbers.h"
#include "zamrit/platform/ScanDetail.h"
#include "zamrit/platform/TextDetail.h"
#include "zamrit/xml/values/EntitiesDetail.h"

namespace zm {
namespace {

using detail::TVectorLanes;

template <class U>
using TView = std::basic_string_view<U>;
template <class U>
using TText = std::basic_string<U>;

// What stands for a unit that must not stand itself. The longest is "&quot;".
template <class U>
struct TReplacement {
  U Units[6] = {};
  std::size_t Length = 0;

  constexpr void Append(std::string_view Text) {
    for (const char c : Text) Units[Length++] = static_cast<U>(c);
  }
  constexpr operator TView<U>() const { return {Units, Length}; }  // NOLINT(google-explicit-constructor)
};

template <class U>
constexpr auto MakeReplacements() {
  std::array<TReplacement<U>, '>' + 1> table{};
  for (unsigned c = 1; c < 32; ++c) {
    const char digits[] = {static_cast<char>('0' + c / 10), static_cast<char>('0' + c % 10)};
    table[c].Append("&#");
    table[c].Append(std::string_view(digits, 2).substr(c < 10 ? 1 : 0));
    table[c].Append(";");
  }
  table['<'].Append("&lt;");
  table['>'].Append("&gt;");
  table['&'].Append("&amp;");
  table['\''].Append("&apos;");
  table['"'].Append("&quot;");
  return table;
}

template <class U>
constexpr auto cReplacements = MakeReplacements<U>();

// Matches what is replaced, and code 0.
template <class U>
class TReplaced {
 public:
  TReplaced(bool EscapeApos, bool EscapeQuot) : FApos(EscapeApos ? '\'' : '<'), FQuot(EscapeQuot ? '"' : '<') {}

  ZM_INLINE auto operator()(const typename TVectorLanes<U>::TVector& V) const {
    using TLanes = TVectorLanes<U>;
    return TLanes::Or(TLanes::Or(TLanes::AtMost(V, 31), TLanes::Or(TLanes::Eq(V, FApos), TLanes::Eq(V, FQuot))),
                      detail::TAnyOf<TLanes, '<', '>', '&'>()(V));
  }

 private:
  U FApos, FQuot;
};

// Calls Found for each unit of [P, End) for which Match holds.
template <class U, class Match, class F>
ZM_INLINE void ForEach(const U* P, const U* End, Match Matches, F Found) {
  using TLanes = TVectorLanes<U>;
  const auto walk = [&Found](const U* Block, std::uint32_t Bits) {
    for (; Bits; Bits &= Bits - 1) Found(Block + std::countr_zero(Bits));
  };
  const bool small = End - P < 16;
  for (; End - P >= 16; P += 16) walk(P, TLanes::Bits(Matches(TLanes::Load(P))));
  if (P == End) return;
  walk(P, small ? detail::BitsAt<TLanes>(P, End, Matches)
                : TLanes::Bits(Matches(TLanes::Load(End - 16))) >> (16 - (End - P)));
}

// Hands runs that stay as they are to Keep and replacements to Replace.
template <bool DropZero, class U, class FKeep, class FReplace>
ZM_INLINE void Escape(TView<U> Text, TReplaced<U> Replaced, FKeep Keep, FReplace Replace) {
  const U *run = Text.data(), *end = run + Text.size();
  ForEach(run, end, Replaced, [&](const U* At) {
    const std::size_t code = static_cast<std::make_unsigned_t<U>>(*At);
    if (!DropZero && code == 0) return;
    if (At != run) Keep(TView<U>(run, At));
    if (code != 0) Replace(TView<U>(cReplacements<U>[code]));
    run = At + 1;
  });
  if (run != end) Keep(TView<U>(run, end));
}

template <bool DropZero, class U>
TText<U> Escaped(TView<U> Text, bool EscapeApos, bool EscapeQuot) {
  TText<U> out;
  const auto append = [&out, Text](TView<U> Piece) {
    // The whole text needs exactly its own room, the first piece of more than one some for replacements, too.
    if (out.empty() && Piece.size() < Text.size()) out.reserve(Text.size() + Text.size() / 4 + 16);
    out.append(Piece);
  };
  Escape<DropZero>(Text, TReplaced<U>(EscapeApos, EscapeQuot), append, append);
  return out;
}

constexpr unsigned cNoDigit = 255;

constexpr unsigned DigitOf(char32_t C) {
  if (C >= '0' && C <= '9') return C - '0';
  C |= 0x20;
  return C >= 'a' && C <= 'f' ? C - 'a' + 10 : cNoDigit;
}

void AppendWide(StringView Text, String& Out) { Out += Text; }
void AppendWide(std::string_view Text, String& Out) { detail::AppendUTF16(Text, Out); }

// The unit of a numeric reference, Number being what stands behind its "#": what StrToInt makes of it, which is asked
// itself for more than eight digits and for all that is not digits alone.
template <class U>
char16_t CodeOfNumber(TView<U> Number) {
  const bool hex = !Number.empty() && (Number[0] == 'x' || Number[0] == 'X');
  if (hex) Number.remove_prefix(1);
  std::uint32_t value = 0;
  bool plain = !Number.empty() && Number.size() <= 8;
  for (std::size_t i = 0; plain && i < Number.size(); ++i) {
    const unsigned digit = DigitOf(static_cast<std::make_unsigned_t<U>>(Number[i]));
    plain = digit < (hex ? 16 : 10);
    value = value * (hex ? 16 : 10) + digit;
  }
  if (plain) return static_cast<char16_t>(value);
  String text(hex ? u"$" : u"");
  AppendWide(Number, text);
  return static_cast<char16_t>(StrToInt(text));
}

// The character of a named reference, 0 where there is none.
char16_t CodeOfName(StringView Name) { return detail::EntityOf(Name); }

char16_t CodeOfName(std::string_view Name) {
  const auto lower = [Name](std::size_t I) { return I < Name.size() ? Name[I] | 0x20 : 0; };
  switch (lower(0)) {
    case 'a':
      return lower(1) == 'm' ? u'&' : u'\'';
    case 'g':
      return u'>';
    case 'l':
      return u'<';
    case 'q':
      return u'"';
    default:
      return 0;
  }
}

// Appends the unit of a reference; Before is that of the reference right in front of it, or 0.
void AppendCode(String& Out, char16_t Code, char16_t) { Out.push_back(Code); }

// Two halves of a pair in a row make one character, as they do in a string stream.
void AppendCode(RawByteString& Out, char16_t Code, char16_t Before) {
  if (detail::IsHighSurrogate(Before) && detail::IsLowSurrogate(Code)) {
    Out.resize(Out.size() - 3);
    const char16_t pair[] = {Before, Code};
    detail::AppendUTF8({pair, 2}, Out);
  } else {
    detail::AppendUTF8({&Code, 1}, Out);
  }
}

template <class U>
TText<U> Decoded(TView<U> Text) {
  using TLanes = TVectorLanes<U>;
  TText<U> out;
  const U *run = Text.data(), *end = run + Text.size();
  char16_t before = 0;
  for (const U* p = run; (p = detail::Find<TLanes>(p, end, detail::TAnyOf<TLanes, '&'>())) != end;) {
    const U* start = p;
    p = detail::Find<TLanes>(start + 1, end, detail::TAnyOf<TLanes, ' ', ';'>());
    if (p == end) break;
    if (*p == ' ') continue;
    const TView<U> reference(start + 1, p);
    const bool numeric = !reference.empty() && reference[0] == '#';
    const char16_t code = numeric ? CodeOfNumber(reference.substr(1)) : CodeOfName(reference);
    if (code == 0 && !numeric) continue;
    if (run != start) before = 0;
    out.reserve(Text.size());  // no reference is shorter than its character
    out.append(run, start);
    AppendCode(out, code, before);
    before = code;
    run = p + 1;
  }
  out.append(run, end);
  return out;
}

}  // namespace

void ZmStrToXML(const char16_t* Text, int Length, TZmStringStream* Stream, bool EscapeApos, bool EscapeQuot) {
  if (Length <= 0) return;
  Escape<false>(
      StringView(Text, static_cast<std::size_t>(Length)), TReplaced<char16_t>(EscapeApos, EscapeQuot),
      [Stream](StringView Piece) { Stream->WriteBuffer(Piece.data(), Piece.size() * sizeof(char16_t)); },
      [Stream](StringView Piece) { Stream->Add(Piece); });
}

RawByteString ZmStrToXML(std::string_view Text, bool EscapeApos, bool EscapeQuot) {
  return Escaped<false>(Text, EscapeApos, EscapeQuot);
}

String ZmStrToXML(StringView Text, bool EscapeApos, bool EscapeQuot) {
  return Escaped<true>(Text, EscapeApos, EscapeQuot);
}

RawByteString ZmXMLToStr(std::string_view Text) { return Decoded(Text); }

String ZmXMLToStr(StringView Text) { return Decoded(Text); }

}  // namespace zm
