#include "zamrit/xml/xpath/PredicateDetail.h"

namespace zm::detail {

void FilterByPredicate(TZmDOMObjectList&, StringView, bool, TZmXPathCollationClass) {
  throw EZmDomSyntax(u"Predicates in node paths are not supported yet!");
}

}  // namespace zm::detail
