#include <bit>

#include "zamrit/platform/TextDetail.h"
#include "zamrit/xml/dom/TreeDetail.h"
#include "zamrit/xml/dom/WriterDetail.h"

namespace zm::detail {

void TTreeOutput::NewBlock(std::size_t Size) {
  auto block = std::make_unique_for_overwrite<char[]>(Size);
  const auto used = static_cast<std::size_t>(FAt - FBlock.get());
  if (used > 0) std::memcpy(block.get(), FBlock.get(), used);
  FBlock = std::move(block);
  FAt = FBlock.get() + used;
  FEnd = FBlock.get() + Size;
}

// A small block serves those who write single nodes.
void TTreeOutput::MakeRoom() {
  if (static_cast<std::size_t>(FEnd - FBlock.get()) < cBlock)
    NewBlock(cBlock);
  else
    Flush();
}

void TTreeOutput::PutLong(std::string_view Text) {
  if (FPage == cZmPageUTF8 && Text.size() >= cBlock / 2) {
    Flush();
    return FStream->WriteBuffer(Text.data(), Text.size());
  }
  while (!Text.empty()) {
    char* const to = Room(cMost);
    const std::size_t count = std::min(Text.size(), static_cast<std::size_t>(FEnd - to) - cPad);
    std::memcpy(to, Text.data(), count);
    Take(to + count);
    Text.remove_prefix(count);
  }
}

void TTreeOutput::PutSurrogates(std::string_view Text) {
  if (FPage == cZmPageUTF8) {
    String wide;
    TDOMTree::Widen(Text, true, wide);
    return Put(wide);
  }
  FSurrogates = true;
  while (!Text.empty()) {
    const std::string_view piece = Text.substr(0, cMost);
    Put(piece);
    FSurrogates = true;  // of what is left in a block that went out meanwhile
    Text.remove_prefix(piece.size());
  }
}

void TTreeOutput::PutManyBlanks(std::size_t Count) {
  for (; Count > 0;) {
    const std::size_t count = std::min(Count, cMost);
    char* const to = Room(count);
    std::memset(to, ' ', count);
    Take(to + count);
    Count -= count;
  }
}

void TTreeOutput::Flush() {
  if (FPage != cZmPageUTF8) return WriteConverted();
  const auto count = static_cast<std::size_t>(FAt - FBlock.get());
  FAt = FBlock.get();
  if (count > 0) FStream->WriteBuffer(FBlock.get(), count);
}

// A character that the block ends in the middle of stays for the next.
void TTreeOutput::WriteConverted() {
  char* const begin = FBlock.get();
  char* end = FAt;
  while (end > begin && FAt - end < 3 && IsTrail(end[-1])) --end;
  const bool cut = end > begin && static_cast<unsigned char>(end[-1]) >= 0xC0 &&
                   std::countl_one(static_cast<unsigned char>(end[-1])) > FAt - end + 1;
  end = cut ? end - 1 : FAt;
  FWide.clear();
  TDOMTree::Widen({begin, static_cast<std::size_t>(end - begin)}, FSurrogates, FWide);
  const auto left = static_cast<std::size_t>(FAt - end);
  std::memmove(begin, end, left);
  FAt = begin + left;
  FSurrogates = false;
  if (FWide.empty()) return;
  if (FPage == cZmPageUTF16 && std::endian::native == std::endian::little)
    return FStream->WriteBuffer(FWide.data(), FWide.size() * sizeof(char16_t));
  const RawByteString bytes = TZmEncoding::ConvertW(FWide, FPage);
  FStream->WriteBuffer(bytes.data(), bytes.size());
}

}  // namespace zm::detail
