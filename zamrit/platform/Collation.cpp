#include <unicode/ucol.h>

#include <algorithm>
#include <cstdint>
#include <limits>

#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/Unicode.h"

namespace zm {

namespace {

// Never closed, and not changed once it is made, so that any thread may compare by it.
const UCollator* OpenCollator(UCollationStrength Strength) {
  UErrorCode error = U_ZERO_ERROR;
  UCollator* const collator = ucol_open("root", &error);
  if (U_FAILURE(error)) throw ENotSupportedException(u"The tables of the root collation are missing");
  ucol_setStrength(collator, Strength);
  return collator;
}

std::int32_t Length(StringView Text) {
  constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::min(Text.size(), most));
}

}  // namespace

int CompareCollated(StringView Left, StringView Right, bool IgnoreCase) {
  static const UCollator* const ignoring = OpenCollator(UCOL_SECONDARY);
  static const UCollator* const minding = OpenCollator(UCOL_TERTIARY);
  return ucol_strcoll(IgnoreCase ? ignoring : minding, Left.data(), Length(Left), Right.data(), Length(Right));
}

}  // namespace zm
