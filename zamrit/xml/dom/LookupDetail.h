#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

#include "zamrit/xml/dom/TreeDetail.h"

namespace zm::detail {

/// How a lookup or a selection compares names.
struct TLookupRules {
  TZmXPathCollationClass Collation;
  bool LocalNames;

  /// What the options say, else what the object goes by. Raises Exception for both soCaseSensitive and
  /// soCaseInsensitive.
  static TLookupRules Of(const TZmDOMObject& Object, TZmDOMSelectOptions Options);
};

/// The prefix and the local name of a text, cut at the first colon.
inline std::pair<StringView, StringView> SplitName(StringView Name) {
  const std::size_t colon = Name.find(u':');
  if (colon == StringView::npos) return {{}, Name};
  return {Name.substr(0, colon), Name.substr(colon + 1)};
}

/// A text that others are compared with under a collation. Where both are ASCII one of the library is not asked.
class TTextTest {
 public:
  TTextTest(StringView Text, TZmXPathCollationClass Collation);

  bool Matches(StringView Text, bool IsASCII) const {
    if (!IsASCII || !FIsASCII) return FCollation->SameText(Text, FText);
    if (Text.size() != FText.size()) return false;
    return FIsFolded ? MatchesFolded(Text) : Text == FText;
  }

 private:
  bool MatchesFolded(StringView Text) const;

  String FText;
  TZmXPathCollationClass FCollation;
  bool FIsASCII;   // and may be compared as such
  bool FIsFolded;  // to lower case, as case does not matter
};

/// The names that a step or a lookup asks for. It remembers which records of names it has seen, so that a node costs
/// a few instructions; nodes must not be renamed while it lives.
class TNameTest {
 public:
  /// Names of that qualified or, by the rules, local form.
  static TNameTest OfName(StringView Name, const TLookupRules& Rules);
  /// Names of that prefix and that local name, "*" standing for any.
  TNameTest(StringView Prefix, StringView LocalName, TZmXPathCollationClass Collation);

  bool Matches(const TZmDOMNode* Node) {
    const TDOMName* const name = &TDOMTree::Name(Node);
    if (name == FMatching) return true;
    const auto key = reinterpret_cast<std::uintptr_t>(name);
    const std::uintptr_t seen = FSeen[Slot(key)];
    if ((seen & ~std::uintptr_t{1}) == key) [[likely]]
      return (seen & 1) != 0;
    return Compare(Node, *name);
  }

 private:
  TNameTest() = default;
  static constexpr int cSlots = 4;  // as a power of two
  static std::size_t Slot(std::uintptr_t Key) {
    return static_cast<std::uint32_t>((Key >> 3) * 0x9E3779B1u) >> (32 - cSlots);
  }
  bool Compare(const TZmDOMNode* Node, const TDOMName& Name);

  std::optional<TTextTest> FPrefix, FLocalName, FQName;          // without a value: any
  const TDOMName* FMatching = nullptr;                           // the last record that was one of those
  std::array<std::uintptr_t, std::size_t{1} << cSlots> FSeen{};  // records, and in the lowest bit what came of them
};

}  // namespace zm::detail
