#pragma once

#include <cstddef>

namespace zm::detail {

constexpr std::size_t cPage = 4096;

/// A block of at least Size bytes, a whole number of pages and aligned to them; Size becomes what there is. Past 1 MB
/// it is of the kind that large arenas have. Raises std::bad_alloc.
char* NewPages(std::size_t& Size);
void FreePages(char* Memory, std::size_t Size) noexcept;

}  // namespace zm::detail
