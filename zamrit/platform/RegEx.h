#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/Set.h"
#include "zamrit/platform/Strings.h"

namespace zm {

/// A pattern is no regular expression, or a match took more than the limits allow.
ZM_EXCEPTION(ERegularExpressionError, Exception);

/// How a pattern is read.
enum TRegExOption {
  roIgnoreCase,
  roMultiLine,           ///< "^" and "$" match at line ends too
  roExplicitCapture,     ///< plain parentheses capture nothing, named groups do
  roSingleLine,          ///< "." matches line ends too
  roIgnorePatternSpace,  ///< white space in the pattern does not count, "#" begins a comment
};
using TRegExOptions = TSet<TRegExOption>;

/// What a group took part with. The view points into the input.
struct TRegExGroup {
  bool Success = false;   ///< whether the group took part in the match
  std::size_t Index = 0;  ///< from 0, in UTF-16 units
  StringView Value;
};

/// A match, or the lack of one. Valid as long as the input.
struct TRegExMatch {
  bool Success = false;
  std::size_t Index = 0;  ///< from 0, in UTF-16 units
  StringView Value;
  std::vector<TRegExGroup> Groups;  ///< by number, 0 is the whole match; empty without success
};

/// A Perl-compatible regular expression over UTF-16. Case, `\w`, `\d`, `\s` and `\b` follow Unicode, and a line ends
/// at U+000A alone. `\C` is refused. A lone surrogate in pattern or input is matched as U+FFFD; results show it as it
/// stands.
///
/// Every match operation raises ERegularExpressionError "The regular expression needs too many steps for this text!"
/// where the search from one place of the input exceeds 10,000,000 steps or 64 MB, or all of it takes longer than a
/// second and a microsecond for each unit of the input.
///
/// Cheap to copy. Its operations can run in several threads at once.
class TRegEx {
 public:
  /// Compiles a pattern. Raises ERegularExpressionError with what is wrong and the offset of it, in UTF-16 units from
  /// 0; parentheses go 250 deep at most.
  explicit TRegEx(StringView Pattern, TRegExOptions Options = {});

  /// Whether the expression matches anywhere in the input.
  bool IsMatch(StringView Input) const;
  /// The first match.
  TRegExMatch Match(StringView Input) const;
  /// All matches from left to right. Where one is empty, the next is sought from the same place on and must not be
  /// empty there.
  std::vector<TRegExMatch> Matches(StringView Input) const;

  /// The input with every match replaced. In the replacement stand:
  /// - `$1`, `${1}` and `\1` for a group by number, `${name}` by name, `$0` for the whole match: of digits without
  ///   braces as many count as give a group that there is, but one at least. A group that took no part, or that the
  ///   pattern does not have, gives nothing;
  /// - `$$` and `\$` for "$", `\\` for a backslash;
  /// - everything else for itself.
  String Replace(StringView Input, StringView Replacement) const;

  /// The parts of the input between the matches, empty ones too; groups are not among them. An empty match at either
  /// end does not split, and an empty input has no parts. The views point into the input.
  std::vector<StringView> Split(StringView Input) const;

  /// The number of a named group, the lowest where several bear the name, or -1.
  int GroupNumber(StringView Name) const;

  // The shortcuts keep the expressions last used by this thread, so that a loop does not compile one at each step.
  static bool IsMatch(StringView Input, StringView Pattern, TRegExOptions Options = {});
  static String Replace(StringView Input, StringView Pattern, StringView Replacement, TRegExOptions Options = {});
  static std::vector<StringView> Split(StringView Input, StringView Pattern, TRegExOptions Options = {});

 private:
  class TCode;
  class TSearch;
  std::shared_ptr<const TCode> FCode;
};

}  // namespace zm
