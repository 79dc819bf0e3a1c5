#include "zamrit/xml/dom/Collations.h"

#include <algorithm>

#include "zamrit/platform/Unicode.h"

namespace zm {

namespace {

char16_t LowerASCII(char16_t C) { return C >= u'A' && C <= u'Z' ? static_cast<char16_t>(C | 0x20) : C; }

int PosFrom1(StringView::size_type At) { return At == StringView::npos ? 0 : static_cast<int>(At) + 1; }

class TIgnoringCase final : public TZmXPathCollation {
 public:
  int Compare(StringView A, StringView B) const override { return CompareCollated(A, B, true); }
  int Pos(StringView SubStr, StringView Str) const override {
    if (SubStr.empty()) return 0;
    const auto at = std::search(Str.begin(), Str.end(), SubStr.begin(), SubStr.end(),
                                [](char16_t a, char16_t b) { return LowerASCII(a) == LowerASCII(b); });
    return at == Str.end() ? 0 : static_cast<int>(at - Str.begin()) + 1;
  }
  bool IgnoresCase() const override { return true; }
};

class TMindingCase final : public TZmXPathCollation {
 public:
  int Compare(StringView A, StringView B) const override { return CompareCollated(A, B, false); }
  int Pos(StringView SubStr, StringView Str) const override { return SubStr.empty() ? 0 : PosFrom1(Str.find(SubStr)); }
  bool IgnoresCase() const override { return false; }
};

constexpr TIgnoringCase IgnoringCase;
constexpr TMindingCase MindingCase;

bool IsASCII(StringView Text) {
  return std::all_of(Text.begin(), Text.end(), [](char16_t c) { return c < 0x80; });
}

}  // namespace

const TZmXPathCollationClass TZmXPathCollationASCIICI = &IgnoringCase;
const TZmXPathCollationClass TZmXPathCollationCodepoint = &MindingCase;
TZmXPathCollationClass DefaultXPathCollation = &IgnoringCase;

bool TZmXPathCollation::SameText(StringView A, StringView B) const {
  if (A == B) return true;
  if (!IsASCII(A) || !IsASCII(B)) return Compare(A, B) == 0;
  return IgnoresCase() && std::equal(A.begin(), A.end(), B.begin(), B.end(),
                                     [](char16_t a, char16_t b) { return LowerASCII(a) == LowerASCII(b); });
}

}  // namespace zm
