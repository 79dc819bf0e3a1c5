#pragma once

#include "zamrit/xml/json/TreeDetail.h"

namespace zm::detail {

/// The value of a simple record: a text where it was loaded, null where none was set.
Variant ValueOfSimple(const TJSONNode& Node);
void SetSimple(TJSONTree& Tree, TJSONNode* Node, Variant Value, TZmJSONDataType Type);
/// What GetAsString answers for it.
String TextOfSimple(const TJSONNode& Node);

}  // namespace zm::detail
