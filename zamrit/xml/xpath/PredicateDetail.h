#pragma once

#include "zamrit/xml/dom/DOMObject.h"

namespace zm::detail {

/// Keeps those candidates of a step that a predicate, given with its brackets, holds for; they keep their order.
void FilterByPredicate(TZmDOMObjectList& Candidates, StringView Predicate, bool LocalNames,
                       TZmXPathCollationClass Collation);

}  // namespace zm::detail
