#include "zamrit/xml/dom/Collations.h"

#include <algorithm>
#include <vector>

#include "zamrit/platform/ASCIIDetail.h"
#include "zamrit/platform/ScanDetail.h"
#include "zamrit/platform/Unicode.h"

namespace zm {

using detail::IsASCII;
using detail::LowerASCII;
using detail::UpperASCII;

namespace {

char16_t Same(char16_t C) { return C; }

/// For each start of the text how long the longest end of it is that is a start of the whole text, too.
template <class F>
std::vector<std::size_t> Overlaps(StringView Text, F Fold) {
  std::vector<std::size_t> lengths(Text.size() + 1);
  std::size_t length = 0;
  for (std::size_t i = 1; i < Text.size(); ++i) {
    while (length > 0 && Fold(Text[i]) != Fold(Text[length])) length = lengths[length];
    if (Fold(Text[i]) == Fold(Text[length])) ++length;
    lengths[i + 1] = length;
  }
  return lengths;
}

/// The place of SubStr from 1, 0 where there is none. Each unit is looked at about twice at most.
template <class F>
int PosInSteps(StringView SubStr, StringView Str, std::size_t From, F Fold) {
  const std::vector<std::size_t> overlaps = Overlaps(SubStr, Fold);
  std::size_t length = 0;
  for (std::size_t i = From; i < Str.size(); ++i) {
    while (length > 0 && Fold(Str[i]) != Fold(SubStr[length])) length = overlaps[length];
    if (Fold(Str[i]) == Fold(SubStr[length])) ++length;
    if (length == SubStr.size()) return static_cast<int>(i + 2 - length);
  }
  return 0;
}

/// The same, which goes from one unit like the first one to the next, as long as little is compared there in vain.
/// Other is the first unit in the other case.
template <class F>
int PosOf(StringView SubStr, StringView Str, char16_t Other, F Fold) {
  using TLanes = detail::TVectorLanes<char16_t>;
  if (SubStr.empty() || SubStr.size() > Str.size()) return 0;
  const char16_t* const begin = Str.data();
  const char16_t* const end = begin + (Str.size() - SubStr.size() + 1);  // behind the last place
  const auto isFirst = [first = SubStr[0], Other](const TLanes::TVector& v) {
    return TLanes::Or(TLanes::Eq(v, first), TLanes::Eq(v, Other));
  };
  std::size_t compared = 0;
  for (const char16_t* at = begin; (at = detail::Find<TLanes>(at, end, isFirst)) != end; ++at) {
    std::size_t same = 1;
    while (same < SubStr.size() && Fold(at[same]) == Fold(SubStr[same])) ++same;
    const auto place = static_cast<std::size_t>(at - begin);
    if (same == SubStr.size()) return static_cast<int>(place) + 1;
    compared += same;
    if (compared > 256 + 4 * place) return PosInSteps(SubStr, Str, place + 1, Fold);
  }
  return 0;
}

class TIgnoringCase final : public TZmXPathCollation {
 public:
  int Compare(StringView A, StringView B) const override { return CompareCollated(A, B, true); }
  int Pos(StringView SubStr, StringView Str) const override {
    if (SubStr.empty()) return 0;
    const char16_t lower = LowerASCII(SubStr[0]);
    return PosOf(SubStr, Str, lower == SubStr[0] ? UpperASCII(lower) : lower, LowerASCII<char16_t>);
  }
};

class TMindingCase final : public TZmXPathCollation {
 public:
  int Compare(StringView A, StringView B) const override { return CompareCollated(A, B, false); }
  int Pos(StringView SubStr, StringView Str) const override {
    return SubStr.empty() ? 0 : PosOf(SubStr, Str, SubStr[0], Same);
  }
};

constexpr TIgnoringCase IgnoringCase;
constexpr TMindingCase MindingCase;

}  // namespace

const TZmXPathCollationClass TZmXPathCollationASCIICI = &IgnoringCase;
const TZmXPathCollationClass TZmXPathCollationCodepoint = &MindingCase;
TZmXPathCollationClass DefaultXPathCollation = &IgnoringCase;

bool TZmXPathCollation::IsBuiltIn() const { return this == &IgnoringCase || this == &MindingCase; }

bool TZmXPathCollation::SameText(StringView A, StringView B) const {
  if (!IsBuiltIn()) return Compare(A, B) == 0;
  if (A == B) return true;
  if (!IsASCII(A) || !IsASCII(B)) return Compare(A, B) == 0;
  return this == &IgnoringCase && std::equal(A.begin(), A.end(), B.begin(), B.end(),
                                             [](char16_t a, char16_t b) { return LowerASCII(a) == LowerASCII(b); });
}

}  // namespace zm
