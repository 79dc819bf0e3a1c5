#pragma once

#include <vector>

#include "zamrit/xml/xpath/Terms.h"

namespace zm::detail {

/// Skips U+0020 alone.
inline void SkipBlanks(TZmTextParser& Parser) {
  while (Parser.CurrChar() == u' ') Parser.Next();
}

/// Whether the text has ended; C is the current character.
inline bool IsEnd(TZmTextParser& Parser, char16_t C) { return C == cZmEOF && Parser._GetEOF(); }

[[noreturn]] void RaiseTooDeep();

/// Reads terms separated by commas up to a closing bracket or the end, and skips the bracket. A blank
/// in front of the bracket counts as the start of one more term.
std::vector<TZmOwner<TZmXPathBaseTerm>> ReadTerms(TZmXPathEquation& Equation, TZmTextParser& Parser, char16_t Closing);

}  // namespace zm::detail
