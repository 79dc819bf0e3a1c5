#pragma once

#include <cstdint>

#include "zamrit/platform/Streams.h"
#include "zamrit/xml/json/JSONBase.h"

namespace zm::detail {

/// Writes a node to a stream, in UTF-16 or UTF-8 by CodePage, without a mark.
void WriteJSON(TZmJSONBase& Node, TStream* Stream, bool Format, int Level, bool Indent, std::uint16_t CodePage);
/// The node as a text.
String JSONTextOf(TZmJSONBase& Node, bool Format);

}  // namespace zm::detail
