#pragma once

#include <utility>
#include <vector>

#include "Input.h"

namespace zmtool {

/// What was counted, and how often it was met.
using TCounts = std::vector<std::pair<const char*, long long>>;

TCounts CountXML(TInput& Input, std::uint16_t CodePage);
/// Kind is tkJSON or tkForm.
TCounts CountJSON(TInput& Input, TTextKind Kind, std::uint16_t CodePage);

}  // namespace zmtool
