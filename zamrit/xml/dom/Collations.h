#pragma once

#include "zamrit/platform/Strings.h"

namespace zm {

/// How texts compare: a class of operations, of which there are no objects. Those of the library compare by the root
/// collation of Unicode, the same everywhere; two ASCII texts are equal there exactly when their characters are. An
/// application may add its own: names and values compare by them, but names within predicates by code points.
class TZmXPathCollation {
 public:
  /// -1, 0 or 1.
  virtual int Compare(StringView A, StringView B) const = 0;
  /// The place of the first SubStr in Str, from 1; 0 where there is none, or where SubStr is empty. Linear in both.
  virtual int Pos(StringView SubStr, StringView Str) const = 0;
  /// Whether Compare gives 0. Under the classes of the library it costs no more than a comparison of characters where
  /// both texts are ASCII.
  bool SameText(StringView A, StringView B) const;
  /// Whether it is one of the two classes of the library.
  bool IsBuiltIn() const;

  TZmXPathCollation(const TZmXPathCollation&) = delete;
  TZmXPathCollation& operator=(const TZmXPathCollation&) = delete;

 protected:
  constexpr TZmXPathCollation() = default;
  ~TZmXPathCollation() = default;
};

/// A reference to a collation class.
using TZmXPathCollationClass = const TZmXPathCollation*;

/// Ignores case; Pos ignores the case of ASCII letters alone.
extern const TZmXPathCollationClass TZmXPathCollationASCIICI;
/// Minds case. The order is that of words, not of code points.
extern const TZmXPathCollationClass TZmXPathCollationCodepoint;

/// What new documents compare names by: TZmXPathCollationASCIICI at first. Written before trees are made; not guarded.
extern TZmXPathCollationClass DefaultXPathCollation;

}  // namespace zm
