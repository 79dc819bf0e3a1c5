#pragma once

#include <cstdint>

namespace zm::bench {

/// How often the program has allocated by operator new so far.
std::uint64_t Allocations();

}  // namespace zm::bench
