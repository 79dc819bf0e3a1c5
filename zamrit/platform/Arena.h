#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

namespace zm {

/// Memory that is given out piece by piece and taken back as a whole. It comes from blocks that grow with what they
/// hold; from a bound on they are multiples of 2 MB, under huge pages where the system has them, and some of those are
/// kept for the next arena when one ends. What is not in use at the end of a block is at most an eighth of the
/// whole, or a block. An arena is used by one thread at a time, different arenas by any.
class TArena {
 public:
  /// Bytes behind a text of Room that may be written over.
  static constexpr std::size_t cPad = 16;
  static constexpr std::size_t cPage = 4096;
  static constexpr std::size_t cHuge = std::size_t{2} << 20;

  /// HugeFrom: how much comes in small pages at most, up to 1 MB. A huge page costs as much time as 128 KB in small
  /// ones when it is first touched, and is resident as a whole.
  explicit TArena(std::size_t HugeFrom = std::size_t{256} << 10) : FHugeFrom(HugeFrom) {}
  ~TArena();
  TArena(const TArena&) = delete;
  TArena& operator=(const TArena&) = delete;

  /// About Size bytes are going to be taken, so that the next block should have so much, up to a huge page.
  void Expect(std::size_t Size) { FExpected = FReserved + (Size < cHuge ? Size : cHuge); }

  /// Size bytes, aligned to 8. Raises std::bad_alloc.
  void* Take(std::size_t Size) {
    Size = (Size + 7) & ~std::size_t{7};
    if (static_cast<std::size_t>(FHigh - FLow) < Size) [[unlikely]]
      AddBlock(Size);
    return FHigh -= Size;
  }
  /// A page, aligned to its size, from an arena that gives nothing but pages. One stands behind the other, so that
  /// whoever reads them in turn reads memory upward, which is fetched ahead across their bounds. Raises std::bad_alloc.
  void* TakePage() {
    if (static_cast<std::size_t>(FHigh - FLow) < cPage) [[unlikely]]
      AddBlock(cPage, cPage);
    return std::exchange(FLow, FLow + cPage);
  }
  /// Room for a text of up to Size bytes and cPad more, which counts as taken once Keep is told where the text ends.
  char* Room(std::size_t Size) {
    if (static_cast<std::size_t>(FHigh - FLow) < Size + cPad) [[unlikely]]
      AddBlock(Size + cPad);
    return FLow;
  }
  /// Takes the room up to End.
  void Keep(char* End) { FLow = End; }
  /// A copy of a text.
  std::string_view Copy(std::string_view Text) {
    char* const to = Room(Text.size());
    if (!Text.empty()) std::memcpy(to, Text.data(), Text.size());
    Keep(to + Text.size());
    return {to, Text.size()};
  }

  /// Gives the blocks that are kept for coming arenas back to the system. Any thread.
  static void ReleaseKept();

 private:
  struct TBlock {
    char* Memory;
    std::size_t Size;
  };

  // A block whose low end is aligned.
  void AddBlock(std::size_t Least, std::size_t Alignment = 8);

  // Texts and pages are taken from the low end of a block upward, the rest from the high end downward.
  char* FLow = nullptr;
  char* FHigh = nullptr;
  std::vector<TBlock> FBlocks;
  const std::size_t FHugeFrom;
  std::size_t FReserved = 0;
  std::size_t FExpected = 0;  // what FReserved should come to next
};

}  // namespace zm
