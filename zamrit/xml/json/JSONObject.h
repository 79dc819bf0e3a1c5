#pragma once

#include "zamrit/xml/json/JSONMember.h"

namespace zm {

/// An object. Names may repeat; all operations go by the order of the members. Its members can be gone over:
/// `for (TZmJSONMember* m : *object)`.
class TZmJSONObject : public TZmJSONBase, public virtual IZmJSONObject {
  ZM_OBJECT(TZmJSONObject, TZmJSONBase)
 public:
  /// Without members; under Owner, or for itself where that is nil.
  explicit TZmJSONObject(TZmJSONBase* Owner = nullptr);

  /// EAssertionFailed for what is no member.
  void InsertObject(TZmJSONBase* Object) override;
  /// "<object>".
  String GetName() override;
  TZmJSONObject* GetAsObject() override { return this; }
  int Count() override;
  /// The member at an index. EListError outside.
  TZmJSONBase* Item(int Index) override;
  /// Appends a member without a value, whatever names there are.
  TZmJSONMember* AddMember(const TZmAnyText& Name) override;
  TZmJSONMember* AddMember(const TZmAnyText& Name, TZmJSONDataType DataType) override;
  /// With a simple value that is written as the text stands, between quotation marks where it is a string.
  TZmJSONMember* AddMember(const TZmAnyText& Name, TZmJSONDataType DataType, const TZmAnyText& Value) override;
  /// With the value of a Variant; an array becomes an array. What is not a number and infinities are written as NAN,
  /// INF and -INF, which is no JSON. ERangeError for an integer beyond 64 bits with a sign.
  TZmJSONMember* AddMember(const TZmAnyText& Name, const Variant& Value) override;
  /// The first member of that name, or nil. Linear.
  TZmJSONMember* FindMember(const TZmAnyText& Name, bool IgnoreCase = false) override;
  /// The same; where there is none, a new one with jsoCreate, EZmJSONException code 5 with jsoRaise.
  TZmJSONMember* GetMember(const TZmAnyText& Name, TZmJDOCSelectOptions Options) override;
  /// Frees a member. Quick for the first and the last, else linear. EListError outside.
  void DeleteMember(int Index) override;
  /// Frees a member, also that of another object. Nothing for nil.
  void RemoveMember(TZmJSONMember* Member) override;

  /// The way from the root, as "#/a/b": the names of the members on it.
  String GetPath();
  /// The member that AddMember or loading has made last, or nil where there is none or it has gone.
  TZmJSONMember* GetLastMember();

  TZmIntf<IZmJSONMember> AddMemberIntf1(const TZmAnyText& Name) override;
  TZmIntf<IZmJSONMember> AddMemberIntf2(const TZmAnyText& Name, TZmJSONDataType DataType) override;
  TZmIntf<IZmJSONMember> AddMemberIntf3(const TZmAnyText& Name, TZmJSONDataType DataType,
                                        const TZmAnyText& Value) override;
  TZmIntf<IZmJSONMember> AddMemberIntf4(const TZmAnyText& Name, const Variant& Value) override;
  void RemoveMemberIntf(const TZmIntf<IZmJSONMember>& Member) override;

  auto begin() { return detail::TJSONIterator<TZmJSONMember>(this, 0); }
  auto end() { return detail::TJSONIterator<TZmJSONMember>(this, -1); }

 private:
  friend class detail::TJSONNodes;
  using TZmJSONBase::TZmJSONBase;
  detail::TJSONNode* FLastMember = nullptr;
};

}  // namespace zm
