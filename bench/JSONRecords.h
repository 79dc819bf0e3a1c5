#pragma once

#include <cstddef>
#include <string>

namespace zm::bench {

/// An array of records of at least Size bytes, an object each: numbers, texts with letters beyond ASCII, words, nested
/// arrays and objects. The same on every machine.
std::string GeneratedJSON(std::size_t Size);

}  // namespace zm::bench
