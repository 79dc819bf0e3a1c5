#include "zamrit/platform/Arena.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <utility>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace zm {

namespace {

constexpr std::size_t cFirst = 512, cHuge = std::size_t{2} << 20, cHugeFrom = std::size_t{256} << 10;
constexpr std::size_t cKept = std::size_t{64} << 20;

void FreeHuge(char* Memory) noexcept { ::operator delete (Memory, std::align_val_t{cHuge}); }

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
    while (FCount > 0) FreeHuge(FBlocks[--FCount].Memory);
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

char* NewHuge(std::size_t& Size) {
  Size = (Size + cHuge - 1) / cHuge * cHuge;
  if (char* const kept = KeptBlocks().Get(Size)) return kept;
  char* const memory = static_cast<char*>(::operator new (Size, std::align_val_t{cHuge}));
#if defined(__linux__) && defined(MADV_HUGEPAGE)
  madvise(memory, Size, MADV_HUGEPAGE);
#endif
  return memory;
}

void GiveBackHuge(char* Memory, std::size_t Size) noexcept {
  if (!KeptBlocks().Put(Memory, Size)) FreeHuge(Memory);
}

}  // namespace

TArena::~TArena() {
  for (const TBlock& block : FBlocks) {
    if (block.Size >= cHuge)
      GiveBackHuge(block.Memory, block.Size);
    else if (block.Size >= cPage)
      ::operator delete (block.Memory, std::align_val_t{cPage});
    else
      ::operator delete(block.Memory);
  }
}

// Blocks of a page and more begin and end at the bounds of pages.
void TArena::AddBlock(std::size_t Least) {
  FBlocks.reserve(FBlocks.size() + 1);
  TBlock block{nullptr, std::max({Least, cFirst, FReserved < cHugeFrom ? FReserved : FReserved / 8})};
  if (block.Size > cHugeFrom || FReserved >= cHugeFrom) {
    block.Memory = NewHuge(block.Size);
  } else if (block.Size >= cPage) {
    block.Size = (block.Size + cPage - 1) / cPage * cPage;
    block.Memory = static_cast<char*>(::operator new (block.Size, std::align_val_t{cPage}));
  } else {
    block.Size = (block.Size + 7) & ~std::size_t{7};
    block.Memory = static_cast<char*>(::operator new(block.Size));
  }
  FBlocks.push_back(block);
  FReserved += block.Size;
  FLow = block.Memory;
  FHigh = block.Memory + block.Size;
}

void TArena::ReleaseKept() { KeptBlocks().Clear(); }

}  // namespace zm
