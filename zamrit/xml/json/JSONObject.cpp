#include "zamrit/xml/json/JSONObject.h"

#include <utility>
#include <vector>

#include "zamrit/common/SysUtils.h"
#include "zamrit/common/ZmTypes.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/NodesDetail.h"
#include "zamrit/xml/json/SimpleDetail.h"
#include "zamrit/xml/values/DateTimes.h"
#include "zamrit/xml/values/Numbers.h"

namespace zm {

using detail::TJSONNode;
using detail::TJSONNodes;

TZmJSONObject::TZmJSONObject(TZmJSONBase* Owner)
    : TZmJSONBase(Owner, detail::ClassFlags(detail::jcObject, jdtObject)) {}

void TZmJSONObject::InsertObject(TZmJSONBase* Object) {
  Assert(TJSONNodes::IsMember(*Object), u"The children of an object are members!");
  TZmJSONBase::InsertObject(Object);
}

String TZmJSONObject::GetName() { return u"<object>"; }

int TZmJSONObject::Count() { return static_cast<int>(TJSONNodes::CountOf(*this)); }
TZmJSONBase* TZmJSONObject::Item(int Index) { return TJSONNodes::ItemOf(*this, Index); }

TZmJSONMember* TZmJSONObject::AddMember(const TZmAnyText& Name) {
  TZmJSONMember* const member = TJSONNodes::Adopt(new TZmJSONMember(this));
  member->SetName(Name);
  FLastMember = TJSONNodes::Node(*member);
  return member;
}

TZmJSONMember* TZmJSONObject::AddMember(const TZmAnyText& Name, TZmJSONDataType DataType) {
  TZmJSONMember* const member = AddMember(Name);
  member->CreateValue(DataType);
  return member;
}

TZmJSONMember* TZmJSONObject::AddMember(const TZmAnyText& Name, TZmJSONDataType DataType, const TZmAnyText& Value) {
  TZmJSONMember* const member = AddMember(Name);
  TZmJSONBase* const value = member->CreateValue(DataType);
  if (TJSONNodes::Node(*value)->Class() != detail::jcSimple) detail::RaiseNotOfClass();
  detail::SetSimple(TJSONNodes::Tree(*value), TJSONNodes::Node(*value), Value.Text(), DataType);
  return member;
}

TZmJSONMember* TZmJSONObject::AddMember(const TZmAnyText& Name, const Variant& Value) {
  switch (TZmTypes::VarMainTypeKind(Value)) {
    case mtkInteger:
      return AddMember(Name, jdtNumber, ZmInt64ToXML(VarToInt64(Value)));
    case mtkFloat:
      return AddMember(Name, jdtNumber, ZmDoubleToXML(VarToReal(Value)));
    case mtkString:
      return AddMember(Name, jdtString, Value.TextRef());
    case mtkBoolean:
      return AddMember(Name, jdtBoolean, ZmBoolToXML(Value.AsBoolean()));
    case mtkDateTime:
      return AddMember(Name, jdtString, ZmDateTimeToXML(Value.AsDateTime()));
    case mtkArray: {
      TZmJSONMember* const member = AddMember(Name, jdtArray);
      const std::int64_t high = VarArrayHighBound(Value);
      for (std::int64_t i = VarArrayLowBound(Value); i <= high; ++i)
        member->GetValueObj()->AddValue(VarArrayGet(Value, i));
      return member;
    }
    default:
      return AddMember(Name, jdtNull, ZmVarToStr(Value));
  }
}

TZmJSONMember* TZmJSONObject::FindMember(const TZmAnyText& Name, bool IgnoreCase) {
  const detail::TJSONName name(Name, IgnoreCase);
  TJSONNode* const node = TJSONNodes::Node(*this);
  detail::TJSONTree& tree = TJSONNodes::Tree(*this);
  if (node->Has(detail::jfList)) {
    const detail::TJSONList& list = TJSONNodes::ListOf(*this);
    for (std::size_t i = 0; i < list.Count(); ++i)
      if (name.Is(detail::AsMember(*list[i])))
        return static_cast<TZmJSONMember*>(TJSONNodes::ItemOf(*this, static_cast<int>(i)));
    return nullptr;
  }
  for (TJSONNode* child = node->FirstChild(); child; child = child->Next)
    if (name.Is(detail::AsMember(*child))) return TJSONNodes::MemberOf(tree, child);
  return nullptr;
}

TZmJSONMember* TZmJSONObject::GetMember(const TZmAnyText& Name, TZmJDOCSelectOptions Options) {
  if (TZmJSONMember* const member = FindMember(Name, Options.Has(jsoCaseInsensitive))) return member;
  if (Options.Has(jsoCreate)) return AddMember(Name);
  if (Options.Has(jsoRaise)) throw EZmJSONException(_cZmJSONNoMember, {Name.Text()}, 5);
  return nullptr;
}

void TZmJSONObject::DeleteMember(int Index) { Item(Index)->FreeObject(); }
void TZmJSONObject::RemoveMember(TZmJSONMember* Member) {
  if (Member) Member->FreeObject();
}

TZmJSONMember* TZmJSONObject::GetLastMember() {
  if (!FLastMember) return Count() > 0 ? static_cast<TZmJSONMember*>(TJSONNodes::ItemOf(*this, Count() - 1)) : nullptr;
  if (FLastMember->Owner != TJSONNodes::Node(*this)) return nullptr;
  return TJSONNodes::MemberOf(TJSONNodes::Tree(*this), FLastMember);
}

String TZmJSONObject::GetPath() {
  std::vector<TJSONNode*> members;
  for (TJSONNode* node = TJSONNodes::Node(*this); node; node = node->Owner)
    if (node->Has(detail::jfMember)) members.push_back(node);
  String path = u"#/";
  for (auto at = members.rbegin(); at != members.rend(); ++at) {
    if (at != members.rbegin()) path += u'/';
    path += NameOf(detail::AsMember(**at));
  }
  return path;
}

TZmIntf<IZmJSONMember> TZmJSONObject::AddMemberIntf1(const TZmAnyText& Name) { return {AddMember(Name)}; }
TZmIntf<IZmJSONMember> TZmJSONObject::AddMemberIntf2(const TZmAnyText& Name, TZmJSONDataType DataType) {
  return {AddMember(Name, DataType)};
}
TZmIntf<IZmJSONMember> TZmJSONObject::AddMemberIntf3(const TZmAnyText& Name, TZmJSONDataType DataType,
                                                     const TZmAnyText& Value) {
  return {AddMember(Name, DataType, Value)};
}
TZmIntf<IZmJSONMember> TZmJSONObject::AddMemberIntf4(const TZmAnyText& Name, const Variant& Value) {
  return {AddMember(Name, Value)};
}
void TZmJSONObject::RemoveMemberIntf(const TZmIntf<IZmJSONMember>& Member) {
  if (Member) RemoveMember(static_cast<TZmJSONMember*>(Member->Implementor()));
}

}  // namespace zm
