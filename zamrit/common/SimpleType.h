#pragma once

#include "zamrit/common/ZmTypes.h"
#include "zamrit/platform/Components.h"
#include "zamrit/platform/reflection/TypeBuilder.h"

namespace zm {

/// The base of classes that wrap one simple value and stand in a document as that value.
class TZmCustomSimpleType : public TPersistent {
  ZM_OBJECT(TZmCustomSimpleType, TPersistent)
 public:
  /// On the description of a descendant: names the type of the wrapped value, as in
  /// T.Attribute<TZmCustomSimpleType::TWraps>(&zm::TypeOf<int>).
  class TWraps : public TCustomAttribute {
   public:
    explicit TWraps(const TRttiType* (*Type)()) : FType(Type) {}
    const TRttiType* WrappedType() const { return FType(); }

   private:
    const TRttiType* (*FType)();
  };

  /// The wrapped value's descriptor of a descendant, or nil where its description does not name one.
  static const TZmTypeInfo* ValueTypeInfo(const TRttiType* Class) {
    const auto* wraps = Class ? Class->GetAttribute<TWraps>() : nullptr;
    return wraps ? TZmTypes::GetTypeInfo(wraps->WrappedType()) : nullptr;
  }
  /// Null or unassigned where there is none.
  virtual Variant GetAsVariant() const = 0;
  /// Raises what the conversion raises.
  virtual void SetValue(const TValue& Value) = 0;
};

}  // namespace zm
