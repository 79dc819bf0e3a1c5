#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "zamrit/platform/Streams.h"

namespace zm::detail {

/// Moves a stream to the first character above the blank and returns it; where there is none, to the last character,
/// with 0.
inline char16_t SkipBlanks(TStream& Stream, std::uint16_t CodePage) {
  const bool swapped = CodePage == 1201;
  const std::size_t unit = CodePage == 1200 || swapped ? 2 : 1;
  const auto back = [&](std::size_t Bytes) { Stream.Seek(-static_cast<std::int64_t>(Bytes), soCurrent); };
  std::array<unsigned char, 4096> block;
  std::size_t wanted = 64;  // the first characters decide in most texts
  for (;; wanted = block.size()) {
    std::size_t count = 0;
    while (count < wanted) {
      const std::size_t more = Stream.Read(block.data() + count, wanted - count);
      if (more == 0) break;
      count += more;
    }
    for (std::size_t at = 0; at + unit <= count; at += unit) {
      const unsigned first = block[at], second = unit == 2 ? block[at + 1] : 0u;
      const auto c = static_cast<char16_t>(swapped ? first << 8 | second : second << 8 | first);
      if (c <= u' ') continue;
      back(count - at);
      return c;
    }
    if (count == wanted) continue;
    if (Stream.GetPosition() >= static_cast<std::int64_t>(unit)) back(unit);
    return 0;
  }
}

}  // namespace zm::detail
