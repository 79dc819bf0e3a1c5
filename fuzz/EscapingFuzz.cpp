// Escaping and its reverse over any text, 16-bit and 8-bit: as the plain implementation does it, and nothing is lost.

#include <cstdint>
#include <cstring>
#include <string>

#include "tests/support/PlainEscaping.h"

namespace {

template <class U>
bool Agrees(const std::uint8_t* Data, std::size_t Size, bool EscapeApos, bool EscapeQuot) {
  std::basic_string<U> text(Size / sizeof(U), U{0});
  if (!text.empty()) std::memcpy(text.data(), Data, text.size() * sizeof(U));
  return EscapingAgrees<U>(text, EscapeApos, EscapeQuot);
}

}  // namespace

// The bits of the first byte choose the width of a unit and what is escaped.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  if (Size < 1) return 0;
  const auto agrees = Data[0] & 1 ? Agrees<char16_t> : Agrees<char>;
  if (!agrees(Data + 1, Size - 1, (Data[0] & 2) != 0, (Data[0] & 4) != 0)) __builtin_trap();
  return 0;
}
