#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "zamrit/platform/Variant.h"

namespace zm::detail {

struct TVariantText {
  std::atomic<std::size_t> References = 1;
  String Text;
};

struct TVariantArray {
  std::atomic<std::size_t> References = 1;
  std::uint16_t ElementType = varVariant;
  std::int64_t Low = 0;
  std::vector<Variant> Elements;
  TVariantArray* NextToFree = nullptr;
};

/// What conversions and operations tell apart.
enum TVariantKind { vkNone, vkWhole, vkUnsigned, vkReal, vkCurrency, vkDate, vkBoolean, vkText, vkArray };

TVariantKind KindOf(std::uint16_t Type);
/// The name of a type in messages.
StringView VarTypeName(std::uint16_t Type);
[[noreturn]] void RaiseVariantCast(std::uint16_t From, std::uint16_t To);

}  // namespace zm::detail
