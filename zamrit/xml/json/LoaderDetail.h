#pragma once

#include <cstdint>

#include "zamrit/platform/Streams.h"
#include "zamrit/xml/json/JSONBase.h"

namespace zm::detail {

/// Reads a stream into a node.
void LoadJSON(TZmJSONBase& Target, TStream* Stream, std::uint16_t CodePage, bool FormURLEncoded);

}  // namespace zm::detail
