#pragma once

namespace zm::detail {

/// What JSONEscape answers for a character that is left out.
inline constexpr char cJSONDropped = 1;

/// The letter that a character below U+0100 is written as behind a backslash, or 0 for one that stays.
constexpr char JSONEscape(char16_t Unit) {
  switch (Unit) {
    case u'\b':
      return 'b';
    case u'\t':
      return 't';
    case u'\n':
      return 'n';
    case u'\f':
      return 'f';
    case u'\r':
      return 'r';
    case u'"':
    case u'/':
    case u'\\':
      return static_cast<char>(Unit);
    default:
      return Unit >= 1 && Unit <= 7 ? cJSONDropped : '\0';
  }
}

}  // namespace zm::detail
