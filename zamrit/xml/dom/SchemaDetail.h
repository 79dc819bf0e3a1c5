#pragma once

#include "zamrit/xml/dom/TreeDetail.h"

namespace zm::detail {

/// The namespaces of XML Schema.
enum class TSchemaSpace { None, Schema, Instance };

/// Which of them an attribute stands in, in a tree without a document too.
TSchemaSpace SchemaSpaceOf(const TZmDOMAttribute* Attribute);

}  // namespace zm::detail
