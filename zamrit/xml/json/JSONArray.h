#pragma once

#include "zamrit/xml/json/JSONBase.h"

namespace zm {

/// An array. One without an owner is a plain collection: it does not free its elements at its end. Its elements can be
/// gone over: `for (TZmJSONBase* e : *array)`.
class TZmJSONArray : public TZmJSONBase, public virtual IZmJSONArray {
  ZM_OBJECT(TZmJSONArray, TZmJSONBase)
 public:
  /// Without elements; under Owner, or for itself where that is nil.
  explicit TZmJSONArray(TZmJSONBase* Owner = nullptr);

  TZmJSONArray* GetAsArray() override { return this; }
  int Count() override;
  /// The element at an index; of the nodes that a path found, nil for one that is gone. EListError outside.
  TZmJSONBase* Item(int Index) override;
  /// Appends an object, an array, or a simple value of the type: a null, an empty string, a null number, false.
  TZmJSONBase* AddValue(TZmJSONDataType DataType) override;
  /// Appends a simple value that is written as the text stands, between quotation marks where it is a string.
  TZmJSONBase* AddValue(TZmJSONDataType DataType, const TZmAnyText& Value) override;
  /// Appends the value of a Variant. An array is refused with EInvalidCast, and leaves an empty array behind.
  TZmJSONBase* AddValue(const Variant& Value) override;
  /// Frees an element. Quick for the first and the last, else linear. EListError outside.
  void DeleteValue(int Index) override;
  /// Frees a node, also one that is no element. Nothing for nil.
  void RemoveValue(TZmJSONBase* Value) override;
  /// Exchanges two elements. EListError for an index outside.
  void Exchange(int Index1, int Index2) override;

  TZmIntf<IZmJSONBase> AddValueIntf1(TZmJSONDataType DataType) override;
  TZmIntf<IZmJSONBase> AddValueIntf2(TZmJSONDataType DataType, const TZmAnyText& Value) override;
  TZmIntf<IZmJSONBase> AddValueIntf3(const Variant& Value) override;
  void RemoveValueIntf(const TZmIntf<IZmJSONBase>& Value) override;

  auto begin() { return detail::TJSONIterator<TZmJSONBase>(this, 0); }
  auto end() { return detail::TJSONIterator<TZmJSONBase>(this, -1); }

 private:
  friend class detail::TJSONNodes;
  using TZmJSONBase::TZmJSONBase;
};

}  // namespace zm
