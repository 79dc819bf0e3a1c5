#pragma once

#include "zamrit/common/ZmTypes.h"
#include "zamrit/platform/DateTime.h"
#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/Variant.h"

namespace zm::detail {

/// The outcome of Read, or the default where it raises.
template <class F>
TDateTime DateOr(TDateTime Default, F Read) {
  try {
    return Read();
  } catch (const Exception&) {
    return Default;
  }
}

/// A Variant as a number of days; text by ReadText, null as the default.
template <class F>
TDateTime DateFromVariant(const Variant& Value, TDateTime Default, StringView TypeName, F ReadText) {
  if (Value.IsNull()) return Default;
  switch (TZmTypes::VarMainTypeKind(Value)) {
    case mtkInteger:
    case mtkFloat:
    case mtkDateTime:
      return VarToReal(Value);
    case mtkString:
      return ReadText(Value.TextRef());
    default:
      throw EConvertError(u"The given value is not a valid %s value!", {TypeName});
  }
}

}  // namespace zm::detail
