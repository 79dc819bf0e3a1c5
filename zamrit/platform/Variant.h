#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <type_traits>
#include <utility>

#include "zamrit/platform/DateTime.h"
#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/Numbers.h"
#include "zamrit/platform/Strings.h"

namespace zm {

/// A Variant does not convert to the type that is asked for.
ZM_EXCEPTION(EVariantTypeCastError, Exception);
/// A Variant array has no element at an index, or what should be one is none.
ZM_EXCEPTION(EVariantArrayError, Exception);

/// The type codes of Variants. The values are fixed.
enum TVarType : std::uint16_t {
  varEmpty = 0,  ///< unassigned
  varNull = 1,
  varSmallint = 2,
  varInteger = 3,
  varSingle = 4,
  varDouble = 5,
  varCurrency = 6,
  varDate = 7,
  varOleStr = 8,  ///< kept as varUString
  varBoolean = 11,
  varVariant = 12,  ///< of the elements of an array: each has its own type
  varShortInt = 16,
  varByte = 17,
  varWord = 18,
  varLongWord = 19,
  varInt64 = 20,
  varUInt64 = 21,
  varString = 256,  ///< kept as varUString
  varUString = 258,
  varTypeMask = 0x0FFF,
  varArray = 0x2000,
};

namespace detail {
struct TVariantText;
struct TVariantArray;
}  // namespace detail

/// A value of a type known at run time: unassigned, null, a number of any width, an amount, a date, a boolean, a text
/// or an array of Variants. A copy shares texts and arrays until one of the two is written to, and costs no allocation.
class Variant {
 public:
  /// Unassigned.
  Variant() noexcept = default;
  template <std::same_as<bool> T>
  Variant(T Value) noexcept : FType(varBoolean) {  // NOLINT(google-explicit-constructor)
    FData.Int = Value;
  }
  /// A whole number in the width of its type.
  template <std::integral T>
  requires(!std::same_as<T, bool> && !std::same_as<T, char> && !std::same_as<T, wchar_t> && !std::same_as<T, char8_t> &&
           !std::same_as<T, char16_t> && !std::same_as<T, char32_t>) Variant(T Value)
  noexcept : FType(CodeOf<T>()) {                  // NOLINT(google-explicit-constructor)
    FData.Int = static_cast<std::int64_t>(Value);  // NOLINT(bugprone-signed-char-misuse): it is a number
  }
  Variant(float Value) noexcept : FType(varSingle) { FData.Real = Value; }   // NOLINT(google-explicit-constructor)
  Variant(double Value) noexcept : FType(varDouble) { FData.Real = Value; }  // NOLINT(google-explicit-constructor)
  /// Kept as a double.
  Variant(Extended Value) noexcept : Variant(static_cast<double>(Value)) {}  // NOLINT(google-explicit-constructor)
  Variant(Currency Value) noexcept : FType(varCurrency) { FData.Int = Value.GetScaled(); }  // NOLINT
  template <std::derived_from<TDateTime> T>
  Variant(T Value) noexcept : FType(varDate) {  // NOLINT(google-explicit-constructor)
    FData.Real = Value;
  }
  Variant(String Value);                                      // NOLINT(google-explicit-constructor)
  Variant(StringView Value) : Variant(String(Value)) {}       // NOLINT(google-explicit-constructor)
  Variant(const char16_t* Value) : Variant(String(Value)) {}  // NOLINT(google-explicit-constructor)
  static Variant FromUTF8(std::string_view Value) { return zm::FromUTF8(Value); }

  Variant(const Variant& Other) noexcept : FType(Other.FType), FData(Other.FData) {
    if (IsShared()) AddReference();
  }
  Variant(Variant&& Other) noexcept : FType(std::exchange(Other.FType, varEmpty)), FData(Other.FData) {}
  Variant& operator=(Variant Other) noexcept {
    std::swap(FType, Other.FType);
    std::swap(FData, Other.FData);
    return *this;
  }
  ~Variant() {
    if (IsShared()) Release();
  }

  /// The type code; of an array varArray and that of its elements.
  std::uint16_t GetType() const { return FType; }
  /// Whether the value is unassigned.
  bool IsEmpty() const { return FType == varEmpty; }
  bool IsNull() const { return FType == varNull; }

  /// \name Conversions
  /// Numbers convert to numbers, a floating one to a whole one by rounding to even, with ERangeError where it does not
  /// fit; a boolean is 1 or 0; a text is read as a number, a date, or "true" and "false" in any case. As text a boolean
  /// is "True" or "False", a date "2024-03-01 10:00:00.000", null and unassigned are empty. EVariantTypeCastError for
  /// all else.
  ///@{
  bool AsBoolean() const;
  std::int64_t AsInteger() const;
  std::uint64_t AsUInt64() const;
  double AsDouble() const;
  Currency AsCurrency() const;
  TDateTime AsDateTime() const;
  String AsString() const;
  ///@}
  /// The text without a copy: valid as long as this value stays as it is. EVariantTypeCastError for what is no text.
  const String& TextRef() const;

  /// Whether both are of the same type and have the same value; arrays element by element.
  friend bool operator==(const Variant& Left, const Variant& Right);

 private:
  friend Variant Null();
  friend struct detail::TVariantArray;
  friend class TVariantAccess;

  template <class T>
  static constexpr std::uint16_t CodeOf() {
    constexpr bool isSigned = std::is_signed_v<T>;
    switch (sizeof(T)) {
      case 1:
        return isSigned ? varShortInt : varByte;
      case 2:
        return isSigned ? varSmallint : varWord;
      case 4:
        return isSigned ? varInteger : varLongWord;
      default:
        return isSigned ? varInt64 : varUInt64;
    }
  }
  bool IsShared() const { return FType >= varString; }
  void AddReference() const noexcept;
  void Release() noexcept;
  [[noreturn]] void RaiseCast(std::uint16_t Type) const;

  std::uint16_t FType = varEmpty;
  union {
    std::int64_t Int;
    double Real;
    detail::TVariantText* Text;
    detail::TVariantArray* Array;
  } FData{};
};
static_assert(sizeof(Variant) == 16);

/// The null value.
Variant Null();

inline std::uint16_t VarType(const Variant& Value) { return Value.GetType(); }
inline bool VarIsNull(const Variant& Value) { return Value.IsNull(); }
inline bool VarIsEmpty(const Variant& Value) { return Value.IsEmpty(); }
inline bool VarIsArray(const Variant& Value) { return (Value.GetType() & varArray) != 0; }
inline bool VarIsStr(const Variant& Value) { return Value.GetType() == varUString; }
/// Whole and floating numbers, amounts and booleans.
bool VarIsNumeric(const Variant& Value);

/// \name Conversions by name
/// Those of Variant; VarToInteger raises ERangeError for what 32 bits cannot hold.
///@{
double VarToReal(const Variant& Value);
std::int32_t VarToInteger(const Variant& Value);
std::int64_t VarToInt64(const Variant& Value);
String VarToStr(const Variant& Value);
///@}
/// The value in another type: one of the simple codes. EVariantTypeCastError for another code and as in the
/// conversions.
Variant VarAsType(const Variant& Value, std::uint16_t Type);

/// \name Arrays
/// Of one dimension, with a lowest and a highest index. Elements are of one type, to which what is put in is converted,
/// or of varVariant: then each is what it is, an array too. EVariantArrayError for an index outside, for what is no
/// array, and for bounds that are none.
///@{
/// The elements are zero, empty, or unassigned. An array without elements has High below Low by 1.
Variant VarArrayCreate(std::int64_t Low, std::int64_t High, std::uint16_t ElementType);
/// Of varVariant, from 0.
Variant VarArrayOf(std::initializer_list<Variant> Values);
std::int64_t VarArrayLowBound(const Variant& Value);
std::int64_t VarArrayHighBound(const Variant& Value);
/// Shares the element: no copy is made.
Variant VarArrayGet(const Variant& Value, std::int64_t Index);
void VarArrayPut(Variant& Value, std::int64_t Index, Variant Element);
/// Moves the highest index.
void VarArrayRedim(Variant& Value, std::int64_t High);
///@}

/// \name Comparison
/// Numbers, amounts and dates by value, exactly, but for an amount and a floating number, which compare as floating
/// numbers; texts by code units; of a text and a number the text counts as a number, of a boolean and anything else
/// that as a boolean, of a date and a text the text as a date. Null equals null alone, unassigned unassigned alone, and
/// neither is less than anything. EVariantTypeCastError for arrays and for texts that do not convert.
///@{
bool VarCmpEQ(const Variant& Left, const Variant& Right);
bool VarCmpNE(const Variant& Left, const Variant& Right);
bool VarCmpLT(const Variant& Left, const Variant& Right);
bool VarCmpLE(const Variant& Left, const Variant& Right);
bool VarCmpGT(const Variant& Left, const Variant& Right);
bool VarCmpGE(const Variant& Left, const Variant& Right);
///@}

/// The sum: null where either is null; the two texts joined where either is a text; a date where either is one, an
/// amount where both are or the other is whole; whole numbers in 64 bits, in floating form where those do not hold it.
/// EVariantTypeCastError for arrays and unassigned.
Variant VarAdd(const Variant& Left, const Variant& Right);
/// The negative: null of null, a number of a text. EVariantTypeCastError as above.
Variant VarNeg(const Variant& Value);
template <std::same_as<Variant> T>
Variant operator+(const T& Left, const T& Right) {
  return VarAdd(Left, Right);
}
template <std::same_as<Variant> T>
Variant operator-(const T& Value) {
  return VarNeg(Value);
}

}  // namespace zm
