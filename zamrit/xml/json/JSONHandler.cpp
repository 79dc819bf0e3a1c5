#include "zamrit/xml/json/JSONHandler.h"

#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/NodesDetail.h"
#include "zamrit/xml/json/SimpleDetail.h"
#include "zamrit/xml/json/Values.h"

namespace zm {

using detail::TJSONNodes;

namespace {

detail::TJSONClass ClassOfNode(TZmJSONBase* Node) {
  return Node && !TJSONNodes::IsMember(*Node) ? TJSONNodes::Node(*Node)->Class() : detail::jcNone;
}

[[noreturn]] void RaiseNoPlace() { throw EZmJSONException(u"oeps?", 0); }

TZmJSONBase* NewMemberValue(TZmJSONBase* Object, TZmJSONDataType DataType) {
  TZmJSONMember* const member = static_cast<TZmJSONObject*>(Object)->GetLastMember();
  if (!member) RaiseNoPlace();
  return member->CreateValue(DataType);
}

}  // namespace

void TZmJSONHandler::Start(TZmJSONDataType DataType) {
  switch (ClassOfNode(FCurrValue)) {
    case detail::jcDocument:
      FCurrValue = static_cast<TZmJSONDocument*>(FCurrValue)->CreateRootValue(DataType);
      return;
    case detail::jcArray:
      FCurrValue = FCurrValue->AddValue(DataType);
      return;
    case detail::jcObject:
      FCurrValue = NewMemberValue(FCurrValue, DataType);
      return;
    default:
      if (!FCurrValue || !TJSONNodes::IsMember(*FCurrValue)) RaiseNoPlace();
      FCurrValue = static_cast<TZmJSONMember*>(FCurrValue)->CreateValue(DataType);
  }
}

void TZmJSONHandler::StartMember(StringView Name) {
  if (ClassOfNode(FCurrValue) != detail::jcObject) throw Exception(u"Invalid objecttype");
  FCurrValue->AddMember(Name);
}

void TZmJSONHandler::Value(TZmJSONDataType DataType, StringView Text) {
  TZmJSONBase* value;
  switch (ClassOfNode(FCurrValue)) {
    case detail::jcObject:
      value = NewMemberValue(FCurrValue, DataType);
      break;
    case detail::jcArray:
      value = FCurrValue->AddValue(DataType);
      break;
    default:
      RaiseNoPlace();
  }
  if (ClassOfNode(value) != detail::jcSimple) detail::RaiseNotOfClass();
  detail::SetSimple(TJSONNodes::Tree(*value), TJSONNodes::Node(*value), ZmJSONtoStr(Text, DataType), DataType);
}

void TZmJSONHandler::Leave() {
  do FCurrValue = FCurrValue ? FCurrValue->GetOwner() : nullptr;
  while (FCurrValue && ClassOfNode(FCurrValue) < detail::jcObject);
}

}  // namespace zm
