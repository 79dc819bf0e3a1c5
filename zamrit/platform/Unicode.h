#pragma once

#include "zamrit/platform/Strings.h"

namespace zm {

/// The normalization forms of Unicode.
enum TNormalForm { nfC = 1, nfD = 2, nfKC = 5, nfKD = 6 };

/// The text in a normalization form; lone surrogates stay. Raises ERangeError for a form that there is not. Linear.
String NormalizeText(StringView Text, TNormalForm Form);

/// Compares two texts by the root collation of Unicode, the same on every machine: -1, 0 or 1. Where case is ignored,
/// texts that differ in nothing else are equal. Linear; ten to a hundred times the cost of comparing units. Any thread.
int CompareCollated(StringView Left, StringView Right, bool IgnoreCase);

/// The simple mappings of a character, independent of any locale.
char32_t UpperChar(char32_t Char);
char32_t LowerChar(char32_t Char);

}  // namespace zm
