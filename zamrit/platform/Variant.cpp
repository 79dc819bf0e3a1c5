#include "zamrit/platform/Variant.h"

#include <iterator>

namespace zm {

Variant::Variant(const Variant&) = default;
Variant::Variant(Variant&&) noexcept = default;
Variant& Variant::operator=(const Variant&) = default;
Variant& Variant::operator=(Variant&&) noexcept = default;
Variant::~Variant() = default;

template <class T>
const T& Variant::As() const {
  if (const T* value = std::get_if<T>(&FValue)) return *value;
  RaiseCast(TValueType(T()).index());
}

bool Variant::AsBoolean() const { return As<bool>(); }

std::int64_t Variant::AsInteger() const { return As<std::int64_t>(); }

const String& Variant::AsString() const { return As<String>(); }

double Variant::AsDouble() const {
  const auto* whole = std::get_if<std::int64_t>(&FValue);
  return whole ? static_cast<double>(*whole) : As<double>();
}

void Variant::RaiseCast(std::size_t Type) const {
  static constexpr StringView names[] = {u"Unassigned", u"Null", u"Boolean", u"Int64", u"Double", u"String"};
  static_assert(std::size(names) == std::variant_size_v<TValueType>);
  throw EVariantTypeCastError(u"Could not convert variant of type (%s) into type (%s)",
                              {names[FValue.index()], names[Type]});
}

Variant Null() {
  Variant null;
  null.FValue = Variant::TNull();
  return null;
}

}  // namespace zm
