#pragma once

#include "zamrit/xml/xpath/NodePathDetail.h"
#include "zamrit/xml/xpath/Terms.h"

namespace zm::detail {

/// A predicate of a step, ready to be asked of one list of candidates after the other.
class TPredicate {
 public:
  /// Text is the predicate with its brackets, Depth how deep it stands within others. With Repeats the same candidates
  /// may come again, and what held for them is remembered if it is nothing but theirs: within others it would be worked
  /// out as often as there are ways to share out the levels of the tree. EZmDomSyntax or Exception for what is no
  /// predicate.
  TPredicate(StringView Text, bool LocalNames, TZmXPathCollationClass Collation, int Depth, bool Repeats);

  /// Keeps those for which the predicate holds; they keep their order. All are candidates until it is through. Kept is
  /// room for the work.
  void Filter(TZmDOMObjectList& Candidates, TZmDOMObjectList& Kept);

 private:
  bool Holds(const TZmDOMObjectList& Candidates, int Index);

  TZmOwner<TZmXPathEquation> FEquation;
  bool FRemembers;
  TNodeSet FAsked, FHolds;
};

}  // namespace zm::detail
