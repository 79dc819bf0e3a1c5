#pragma once

#include "zamrit/xml/json/JSONBase.h"

namespace zm {

/// A string, number, boolean or null. What has been loaded is kept as its text, whatever it is: a number is written
/// back letter for letter.
class TZmJSONSimpleType : public TZmJSONBase, public virtual IZmJSONSimpleType {
  ZM_OBJECT(TZmJSONSimpleType, TZmJSONBase)
 public:
  /// Null, under Owner, or for itself where that is nil.
  explicit TZmJSONSimpleType(TZmJSONBase* Owner = nullptr);

  /// \name Getters
  /// What does not convert is false or 0.
  ///@{
  bool GetAsBoolean() override;
  double GetAsDouble() override;
  std::int32_t GetAsInteger() override;
  std::int64_t GetAsLargeInt() override;
  ///@}
  /// The text: of a null that was loaded "null", of one that was set the empty text.
  String GetAsString() override;
  Variant GetAsVariant() override;
  void SetAsBoolean(bool Value) override;
  void SetAsDouble(double Value) override;
  void SetAsInteger(std::int32_t Value) override;
  void SetAsString(const TZmAnyText& Value) override;
  void SetAsLargeInt(std::int64_t Value) override;
  /// A number, string or boolean by the kind of the value; a date is a string, all else null.
  void SetAsVariant(const Variant& Value) override;

 private:
  friend class detail::TJSONNodes;
  using TZmJSONBase::TZmJSONBase;
  void Set(Variant Value, TZmJSONDataType Type);
};

}  // namespace zm
