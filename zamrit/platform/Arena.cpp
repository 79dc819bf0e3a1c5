#include "zamrit/platform/Arena.h"

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace zm {

namespace {

constexpr std::size_t cFirst = 512, cKept = std::size_t{64} << 20;

std::size_t RoundUp(std::size_t Size, std::size_t To) { return (Size + To - 1) / To * To; }

// Large blocks of arenas that are gone, up to a bound.
class TKeptBlocks {
 public:
  // A block of at least Size bytes, and not of much more; nil where there is none.
  char* Get(std::size_t& Size) noexcept {
    const std::lock_guard lock(FMutex);
    std::size_t best = FCount;
    for (std::size_t i = 0; i < FCount; ++i)
      if (FBlocks[i].Size >= Size && FBlocks[i].Size <= 2 * Size &&
          (best == FCount || FBlocks[i].Size < FBlocks[best].Size))
        best = i;
    if (best == FCount) return nullptr;
    const TKept found = FBlocks[best];
    FBlocks[best] = FBlocks[--FCount];
    FBytes -= Size = found.Size;
    return found.Memory;
  }

  bool Put(char* Memory, std::size_t Size) noexcept {
    const std::lock_guard lock(FMutex);
    if (FCount == std::size(FBlocks) || FBytes + Size > cKept) return false;
    FBlocks[FCount++] = {Memory, Size};
    FBytes += Size;
    return true;
  }

  void Clear() noexcept {
    const std::lock_guard lock(FMutex);
    while (FCount > 0) std::free(FBlocks[--FCount].Memory);
    FBytes = 0;
  }

 private:
  struct TKept {
    char* Memory;
    std::size_t Size;
  };

  std::mutex FMutex;
  TKept FBlocks[32];
  std::size_t FCount = 0;
  std::size_t FBytes = 0;
};

TKeptBlocks& KeptBlocks() {
  static TKeptBlocks& kept = *new TKeptBlocks;
  return kept;
}

// The C library is asked itself: the aligned operator new looks up functions in all shared libraries when it is first
// called.
char* NewHuge(std::size_t& Size) {
  Size = RoundUp(Size, TArena::cHuge);
  if (char* const kept = KeptBlocks().Get(Size)) return kept;
  char* const memory = static_cast<char*>(std::aligned_alloc(TArena::cHuge, Size));
  if (!memory) throw std::bad_alloc();
#if defined(__linux__) && defined(MADV_HUGEPAGE)
  madvise(memory, Size, MADV_HUGEPAGE);
#endif
  return memory;
}

void GiveBackHuge(char* Memory, std::size_t Size) noexcept {
  if (!KeptBlocks().Put(Memory, Size)) std::free(Memory);
}

}  // namespace

TArena::~TArena() {
  for (const TBlock& block : FBlocks) {
    if (block.Size >= cHuge)
      GiveBackHuge(block.Memory, block.Size);
    else
      ::operator delete(block.Memory);
  }
}

void TArena::AddBlock(std::size_t Least, std::size_t Alignment) {
  FBlocks.reserve(FBlocks.size() + 1);
  const std::size_t growth = FReserved < FHugeFrom ? std::min(FReserved, FHugeFrom - FReserved) : FReserved / 8;
  const std::size_t expected = FExpected > FReserved ? FExpected - FReserved : 0;
  TBlock block{nullptr, RoundUp(std::max({Least, cFirst, growth, expected}), Alignment)};
  std::size_t skipped = 0;
  if (block.Size > FHugeFrom || FReserved >= FHugeFrom) {
    block.Memory = NewHuge(block.Size);
  } else {
    if (Alignment > alignof(std::max_align_t)) block.Size += Alignment - alignof(std::max_align_t);
    block.Memory = static_cast<char*>(::operator new(block.Size));
    skipped = -reinterpret_cast<std::uintptr_t>(block.Memory) % Alignment;
  }
  FBlocks.push_back(block);
  FReserved += block.Size;
  FLow = block.Memory + skipped;
  FHigh = block.Memory + block.Size;
}

void TArena::ReleaseKept() { KeptBlocks().Clear(); }

}  // namespace zm
