#include <cmath>
#include <compare>
#include <limits>

#include "zamrit/platform/Variant.h"
#include "zamrit/platform/VariantDetail.h"

namespace zm {

using namespace detail;

namespace {

constexpr auto cUnordered = std::partial_ordering::unordered;

/// A whole number of any width against a floating one, without rounding either.
std::partial_ordering CompareWhole(std::int64_t Left, bool IsUnsigned, double Right) {
  if (std::isnan(Right)) return cUnordered;
  const bool negative = !IsUnsigned && Left < 0;
  if (negative) {
    if (Right >= 0) return std::partial_ordering::less;
    if (Right < -0x1p63) return std::partial_ordering::greater;
    const double whole = std::trunc(Right);
    const auto order = Left <=> static_cast<std::int64_t>(whole);
    return std::is_neq(order) ? std::partial_ordering(order) : 0.0 <=> Right - whole;
  }
  if (Right < 0) return std::partial_ordering::greater;
  if (Right >= 0x1p64) return std::partial_ordering::less;
  const double whole = std::trunc(Right);
  const auto order = static_cast<std::uint64_t>(Left) <=> static_cast<std::uint64_t>(whole);
  return std::is_neq(order) ? std::partial_ordering(order) : 0.0 <=> Right - whole;
}

std::partial_ordering Reversed(std::partial_ordering Order) {
  if (std::is_lt(Order)) return std::partial_ordering::greater;
  return std::is_gt(Order) ? std::partial_ordering::less : Order;
}

struct TNumber {
  bool Exact;  // Whole + Decimals / 10000
  bool Unsigned;
  std::int64_t Whole;
  std::int64_t Decimals;
  double Real;  // of a text and an amount too
};

TNumber NumberOf(const Variant& Value) {
  switch (KindOf(VarType(Value))) {
    case vkBoolean:
    case vkWhole:
      return {true, false, Value.AsInteger(), 0, 0};
    case vkUnsigned:
      return {true, true, static_cast<std::int64_t>(Value.AsUInt64()), 0, 0};
    case vkCurrency: {
      const std::int64_t scaled = Value.AsCurrency().GetScaled();
      const std::int64_t decimals = (scaled % 10000 + 10000) % 10000;
      return {true, false, scaled / 10000 - (scaled % 10000 < 0 ? 1 : 0), decimals, Value.AsDouble()};
    }
    case vkText: {
      std::int64_t whole = 0;
      if (TryStrToInt64(Value.TextRef(), whole)) return {true, false, whole, 0, 0};
      Extended large = 0;
      if (TryStrToExtended(Value.TextRef(), large) && large >= 0x1p63L && large < 0x1p64L)
        return {true, true, static_cast<std::int64_t>(static_cast<std::uint64_t>(large)), 0,
                static_cast<double>(large)};
      return {false, false, 0, 0, Value.AsDouble()};
    }
    default:
      return {false, false, 0, 0, Value.AsDouble()};
  }
}

std::partial_ordering CompareNumbers(const Variant& Left, const Variant& Right) {
  const TNumber left = NumberOf(Left), right = NumberOf(Right);
  if (left.Exact && right.Exact) {
    const bool leftNegative = !left.Unsigned && left.Whole < 0, rightNegative = !right.Unsigned && right.Whole < 0;
    if (leftNegative != rightNegative) return rightNegative <=> leftNegative;
    const auto order = static_cast<std::uint64_t>(left.Whole) <=> static_cast<std::uint64_t>(right.Whole);
    return std::is_neq(order) ? order : left.Decimals <=> right.Decimals;
  }
  // An amount counts as the floating number next to it: 0.1 is no other floating number than the amount 0.1.
  if (left.Exact && VarType(Left) != varCurrency) return CompareWhole(left.Whole, left.Unsigned, right.Real);
  if (right.Exact && VarType(Right) != varCurrency)
    return Reversed(CompareWhole(right.Whole, right.Unsigned, left.Real));
  return left.Real <=> right.Real;
}

std::partial_ordering Compare(const Variant& Left, const Variant& Right) {
  const TVariantKind left = KindOf(VarType(Left)), right = KindOf(VarType(Right));
  if (left == vkNone || right == vkNone)
    return VarType(Left) == VarType(Right) ? std::partial_ordering::equivalent : cUnordered;
  if (left == vkArray || right == vkArray) RaiseVariantCast(VarType(left == vkArray ? Left : Right), varDouble);
  if (left == vkText && right == vkText) return Left.TextRef() <=> Right.TextRef();
  if (left == vkBoolean || right == vkBoolean) return Left.AsBoolean() <=> Right.AsBoolean();
  if ((left == vkDate && right == vkText) || (left == vkText && right == vkDate))
    return static_cast<double>(Left.AsDateTime()) <=> static_cast<double>(Right.AsDateTime());
  return CompareNumbers(Left, Right);
}

Variant AddWhole(std::int64_t Left, std::int64_t Right) {
  const bool overflows = Right > 0 ? Left > std::numeric_limits<std::int64_t>::max() - Right
                                   : Left < std::numeric_limits<std::int64_t>::min() - Right;
  if (overflows) return static_cast<double>(Left) + static_cast<double>(Right);
  return Left + Right;
}

bool FitsInt64(const Variant& Value) {
  return VarType(Value) != varUInt64 || Value.AsUInt64() <= std::uint64_t{std::numeric_limits<std::int64_t>::max()};
}

bool IsWhole(TVariantKind Kind) { return Kind == vkWhole || Kind == vkUnsigned || Kind == vkBoolean; }

Variant AddCurrency(const Variant& Left, const Variant& Right) {
  const Variant sum = AddWhole(VarAsType(Left, varCurrency).AsCurrency().GetScaled(),
                               VarAsType(Right, varCurrency).AsCurrency().GetScaled());
  if (VarType(sum) == varDouble) throw ERangeError(u"The value does not fit a currency");
  return Currency::FromScaled(sum.AsInteger());
}

}  // namespace

bool VarCmpEQ(const Variant& Left, const Variant& Right) { return std::is_eq(Compare(Left, Right)); }
bool VarCmpNE(const Variant& Left, const Variant& Right) { return std::is_neq(Compare(Left, Right)); }
bool VarCmpLT(const Variant& Left, const Variant& Right) { return std::is_lt(Compare(Left, Right)); }
bool VarCmpLE(const Variant& Left, const Variant& Right) { return std::is_lteq(Compare(Left, Right)); }
bool VarCmpGT(const Variant& Left, const Variant& Right) { return std::is_gt(Compare(Left, Right)); }
bool VarCmpGE(const Variant& Left, const Variant& Right) { return std::is_gteq(Compare(Left, Right)); }

Variant VarAdd(const Variant& Left, const Variant& Right) {
  if (Left.IsNull() || Right.IsNull()) return Null();
  const TVariantKind left = KindOf(VarType(Left)), right = KindOf(VarType(Right));
  if (left == vkText || right == vkText)
    return VarAsType(Left, varUString).TextRef() + VarAsType(Right, varUString).TextRef();
  if (left == vkDate || right == vkDate) return TDateTime(Left.AsDouble() + Right.AsDouble());
  if ((left == vkCurrency && (right == vkCurrency || IsWhole(right))) || (right == vkCurrency && IsWhole(left)))
    return AddCurrency(Left, Right);
  if (IsWhole(left) && IsWhole(right) && FitsInt64(Left) && FitsInt64(Right))
    return AddWhole(Left.AsInteger(), Right.AsInteger());
  return Left.AsDouble() + Right.AsDouble();
}

Variant VarNeg(const Variant& Value) {
  if (Value.IsNull()) return Value;
  switch (KindOf(VarType(Value))) {
    case vkBoolean:
    case vkWhole:
    case vkUnsigned: {
      if (!FitsInt64(Value)) return -Value.AsDouble();
      const std::int64_t number = Value.AsInteger();
      if (number == std::numeric_limits<std::int64_t>::min()) return -static_cast<double>(number);
      return -number;
    }
    case vkCurrency: {
      const std::int64_t scaled = Value.AsCurrency().GetScaled();
      if (scaled == std::numeric_limits<std::int64_t>::min()) throw ERangeError(u"The value does not fit a currency");
      return Currency::FromScaled(-scaled);
    }
    case vkDate:
      return TDateTime(-Value.AsDouble());
    case vkText: {
      const TNumber number = NumberOf(Value);
      return number.Exact && !number.Unsigned ? VarNeg(number.Whole) : Variant(-number.Real);
    }
    default:
      return -Value.AsDouble();
  }
}

}  // namespace zm
