#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <variant>

#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/Strings.h"

namespace zm {

/// A Variant is not of the type that is asked for.
ZM_EXCEPTION(EVariantTypeCastError, Exception);

/// A value of a type known at run time: unassigned, null, boolean, whole number, floating number or text.
class Variant {
 public:
  /// Unassigned.
  Variant() = default;
  template <std::same_as<bool> T>
  Variant(T Value) : FValue(Value) {}  // NOLINT(google-explicit-constructor)
  template <std::integral T>
  requires(!std::same_as<T, bool> && (std::signed_integral<T> || sizeof(T) < sizeof(std::int64_t))) Variant(T Value)
      : FValue(static_cast<std::int64_t>(Value)) {}          // NOLINT(google-explicit-constructor)
  Variant(double Value) : FValue(Value) {}                   // NOLINT(google-explicit-constructor)
  Variant(String Value) : FValue(std::move(Value)) {}        // NOLINT(google-explicit-constructor)
  Variant(StringView Value) : FValue(String(Value)) {}       // NOLINT(google-explicit-constructor)
  Variant(const char16_t* Value) : FValue(String(Value)) {}  // NOLINT(google-explicit-constructor)

  Variant(const Variant&);
  Variant(Variant&&) noexcept;
  Variant& operator=(const Variant&);
  Variant& operator=(Variant&&) noexcept;
  ~Variant();

  /// Whether the value is unassigned.
  bool IsEmpty() const { return std::holds_alternative<std::monostate>(FValue); }
  bool IsNull() const { return std::holds_alternative<TNull>(FValue); }

  /// The value, where it is of that type; otherwise EVariantTypeCastError is raised. A whole number is also a floating
  /// one.
  bool AsBoolean() const;
  std::int64_t AsInteger() const;
  double AsDouble() const;
  /// Valid as long as this value stays as it is.
  const String& AsString() const;

  /// Whether both are of the same type and have the same value.
  friend bool operator==(const Variant& Left, const Variant& Right) = default;

 private:
  friend Variant Null();

  struct TNull {
    friend bool operator==(TNull, TNull) = default;
  };
  using TValueType = std::variant<std::monostate, TNull, bool, std::int64_t, double, String>;

  template <class T>
  const T& As() const;
  [[noreturn]] void RaiseCast(std::size_t Type) const;

  TValueType FValue;
};

/// The null value.
Variant Null();

}  // namespace zm
