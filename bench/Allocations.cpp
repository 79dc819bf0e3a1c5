#include "Allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::uint64_t> allocations;

}  // namespace

std::uint64_t zm::bench::Allocations() { return allocations.load(std::memory_order_relaxed); }

// The forms for arrays and those that do not throw come down to these.
void* operator new(std::size_t Size) {
  // Not one atomic step: exact for one thread, and free.
  allocations.store(allocations.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
  if (void* block = std::malloc(Size ? Size : 1)) return block;
  throw std::bad_alloc();
}

void operator delete(void* Block) noexcept { std::free(Block); }
void operator delete(void* Block, std::size_t) noexcept { std::free(Block); }
