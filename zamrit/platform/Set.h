#pragma once

#include <cstdint>
#include <initializer_list>
#include <type_traits>

namespace zm {

/// A set of values of an enumeration, each of which lies in 0 to 63.
template <class E>
class TSet {
  static_assert(std::is_enum_v<E>, "a set is one of an enumeration");

 public:
  constexpr TSet() = default;
  /// A single value stands for the set of it.
  constexpr TSet(E Value) { Include(Value); }  // NOLINT(google-explicit-constructor)
  constexpr TSet(std::initializer_list<E> Values) {
    for (E value : Values) Include(value);
  }
  /// The set whose bit n stands for the value n.
  static constexpr TSet FromBits(std::uint64_t Bits) {
    TSet set;
    set.FBits = Bits;
    return set;
  }

  constexpr std::uint64_t GetBits() const { return FBits; }
  constexpr bool IsEmpty() const { return FBits == 0; }
  constexpr bool Has(E Value) const { return (FBits & Bit(Value)) != 0; }
  constexpr TSet& Include(E Value) {
    FBits |= Bit(Value);
    return *this;
  }
  constexpr TSet& Exclude(E Value) {
    FBits &= ~Bit(Value);
    return *this;
  }
  friend constexpr bool operator==(TSet Left, TSet Right) = default;

 private:
  /// Nothing for a value outside the range.
  static constexpr std::uint64_t Bit(E Value) {
    const auto number = static_cast<std::int64_t>(Value);
    return number >= 0 && number < 64 ? std::uint64_t{1} << number : 0;
  }

  std::uint64_t FBits = 0;
};

}  // namespace zm
