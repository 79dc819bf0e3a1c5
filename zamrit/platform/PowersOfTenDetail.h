#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

// Turns binary numbers into decimal ones and back with one multiplication, which says itself when it does not know.
namespace zm::detail {

/// 128 bits of a number.
struct TWide {
  std::uint64_t High, Low;
};

constexpr TWide Multiply(std::uint64_t Left, std::uint64_t Right) {
  const std::uint64_t l0 = Left & 0xFFFFFFFF, l1 = Left >> 32, r0 = Right & 0xFFFFFFFF, r1 = Right >> 32;
  const std::uint64_t low = l0 * r0, middle = l1 * r0 + (low >> 32), other = l0 * r1 + (middle & 0xFFFFFFFF);
  return {l1 * r1 + (middle >> 32) + (other >> 32), other << 32 | (low & 0xFFFFFFFF)};
}

/// Ten times the value, and a tenth of it, without the power of two that sets the highest bit again. Never too large.
constexpr TWide TenTimes(TWide Value) {
  const TWide sum = {Value.High + (Value.High >> 2), Value.Low + (Value.High << 62 | Value.Low >> 2)};
  const std::uint64_t high = sum.High + (sum.Low < Value.Low ? 1 : 0);
  if (high >= Value.High) return {high, sum.Low};
  return {high >> 1 | std::uint64_t{1} << 63, high << 63 | sum.Low >> 1};
}

constexpr TWide Tenth(TWide Value) {
  const std::uint64_t rest = Value.High % 5;
  const std::uint64_t fifth = rest * (~std::uint64_t{0} / 5) + Value.Low / 5 + (rest + Value.Low % 5) / 5;
  const std::uint64_t low = Value.Low - fifth - 1;
  const std::uint64_t high = Value.High - Value.High / 5 - (Value.Low <= fifth ? 1 : 0);
  return high >> 63 != 0 ? TWide{high, low} : TWide{high << 1 | low >> 63, low << 1};
}

inline constexpr int cLastPower = 330;

/// The powers of ten from -cLastPower on, cut to 128 bits: each step loses less than 1.25 of the last bit, so that a
/// power is less than 2^-118 of itself too small.
inline constexpr auto cPowers = [] {
  std::array<TWide, 2 * cLastPower + 1> powers{};
  TWide up{std::uint64_t{1} << 63, 0}, down = up;
  for (std::size_t i = 0; i <= cLastPower; ++i) {
    powers[cLastPower + i] = up;
    powers[cLastPower - i] = down;
    up = TenTimes(up);
    down = Tenth(down);
  }
  return powers;
}();

/// The logarithms, rounded down, of the powers in reach.
constexpr int FloorLog2OfTen(int Power) { return Power * 217706 >> 16; }
constexpr int FloorLog10OfTwo(int Power) { return Power * 315653 >> 20; }

/// Mantissa, its highest bit set, times a power of ten, in units of 2^(FloorLog2OfTen(Power) - 63). Less than 2^11
/// units too small; the highest bit is set or the one below it.
inline TWide Scale(std::uint64_t Mantissa, int Power) {
  const int place = Power + cLastPower;
  const TWide power = cPowers[static_cast<std::size_t>(place)];
  TWide product = Multiply(Mantissa, power.High);
  const std::uint64_t carry = Multiply(Mantissa, power.Low).High;
  product.Low += carry;
  product.High += product.Low < carry ? 1 : 0;
  return product;
}

/// The nearest whole number when Bits bits of the high half and all of the low half are behind the point. Nothing where
/// the number lies so near to a half that what Scale cut off decides.
inline std::optional<std::uint64_t> RoundOff(TWide Value, int Bits) {
  constexpr std::uint64_t half = std::uint64_t{1} << 63, doubt = 1 << 14;
  const std::uint64_t fraction = Bits == 0 ? Value.Low : Value.High << (64 - Bits) | Value.Low >> Bits;
  if (fraction <= half && fraction > half - doubt) return std::nullopt;
  return (Value.High >> Bits) + (fraction > half ? 1 : 0);
}

}  // namespace zm::detail
