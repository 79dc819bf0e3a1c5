#pragma once

#include <cstddef>
#include <cstdint>

#include "zamrit/platform/Strings.h"

namespace zm::detail {

/// The longest name that can be an entity.
constexpr std::size_t cLongestEntity = 8;

/// What entities are told apart by, of a name of up to cLongestEntity units. Only the low byte of each unit counts;
/// with c0 to c7 as those bytes, zero behind the end, the bytes of the key from the most significant down are c0 + c7,
/// c1 + c6, c2 + c5 and c3 + c4, each modulo 256.
constexpr std::int32_t EntityKey(StringView Name) {
  std::uint32_t front = 0, back = 0;  // c0 to c3 and c7 to c4, each from the most significant byte down
  for (std::size_t i = 0; i < Name.size(); ++i) {
    const std::uint32_t byte = Name[i] & 0xFFu;
    if (i < 4)
      front |= byte << (24 - 8 * i);
    else
      back |= byte << (8 * i - 32);
  }
  constexpr std::uint32_t tops = 0x80808080;
  return static_cast<std::int32_t>(((front & ~tops) + (back & ~tops)) ^ ((front ^ back) & tops));
}

/// The character of a named reference, 0 where there is none. Names are not compared: every one that folds to the key
/// of an entity is that entity.
char16_t EntityOf(StringView Name);

}  // namespace zm::detail
