#pragma once

#include "zamrit/xml/xpath/Terms.h"

namespace zm::detail {

/// A predicate of a step, ready to be asked of one list of candidates after the other.
class TPredicate {
 public:
  /// Text is the predicate with its brackets, Depth how deep it stands within others. EZmDomSyntax or Exception for
  /// what is no predicate.
  TPredicate(StringView Text, bool LocalNames, TZmXPathCollationClass Collation, int Depth);

  /// Keeps those for which the predicate holds; they keep their order. All are candidates until it is through. Kept is
  /// room for the work.
  void Filter(TZmDOMObjectList& Candidates, TZmDOMObjectList& Kept) const;

 private:
  TZmOwner<TZmXPathEquation> FEquation;
};

}  // namespace zm::detail
