// The XML reader over any bytes: whole and in pieces the events are the same, and those of the plain reader.

#include <cstdint>

#include "tests/support/AllWays.h"

// The first byte chooses the page, the two bits above it the settings, the second the size of a read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  static constexpr std::uint16_t pages[] = {65001, 1200, 1252, 0, 932, 1201};
  if (Size < 2) return 0;
  const TSetup setup{pages[(Data[0] & 31) % std::size(pages)], (Data[0] & 32) != 0, (Data[0] & 64) == 0,
                     Data[1] % 16 + std::size_t{1}};
  if (!TAllWays({std::string(reinterpret_cast<const char*>(Data) + 2, Size - 2)}, setup).Agree()) __builtin_trap();
  return 0;
}
