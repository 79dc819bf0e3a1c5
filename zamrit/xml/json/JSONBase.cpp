#include "zamrit/xml/json/JSONBase.h"

#include "zamrit/common/Encoding.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/platform/reflection/Reflection.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/LoaderDetail.h"
#include "zamrit/xml/json/NodesDetail.h"
#include "zamrit/xml/json/PathDetail.h"
#include "zamrit/xml/json/WriterDetail.h"

namespace zm {

using detail::TJSONNodes;

namespace {

template <class I, class T>
TZmIntf<I> As(T* Object) {
  return TZmIntf<I>(Object);
}

}  // namespace

TZmJSONBase* TZmJSONNodeList::operator[](int Index) const {
  return static_cast<TZmJSONBase*>(TObjectList::operator[](Index));
}

void TZmJSONNodeList::Assign(const TZmJSONNodeList& List) {
  if (&List == this) return;
  Clear();
  SetCapacity(List.GetCount());
  for (TObject* const object : List) Add(object);
}

TZmJSONBase::TZmJSONBase(TZmJSONBase* Owner, std::uint32_t Flags) { TJSONNodes::Begin(*this, Owner, Flags); }

TZmJSONBase::TZmJSONBase(detail::TJSONTree& Tree, detail::TJSONNode* Node, bool IsMember)
    : FTree(&Tree), FNode(Node), FIsMember(IsMember) {
  FTree->AddRef();
  SetAutoDestroy(false);
}

TZmJSONBase::~TZmJSONBase() {
  TJSONNodes::End(*this);
  FTree->Release();
}

void TZmJSONBase::AfterConstruction() {
  TZmObject::AfterConstruction();
  FMade = true;
  if (GetOwner()) _AddRef();
}

void TZmJSONBase::Free() {
  const bool made = std::exchange(FMade, false);
  if (!made && GetOwner()) return FreeObject();
  if (made || !GetAutoDestroy()) TZmObject::Free();
}

void TZmJSONBase::RaiseNotSupported(StringView Method) {
  throw EZmJSONException(_cZmJSONMethodNotSupported, {ClassName(), Method}, 9);
}

void TZmJSONBase::InsertObject(TZmJSONBase* Object) { TJSONNodes::Insert(*this, *Object); }
void TZmJSONBase::RemoveObject(TZmJSONBase* Object) { TJSONNodes::Remove(*this, *Object); }

TZmJSONBase* TZmJSONBase::GetOwner() {
  if (FNode->Has(detail::jfMember) && !FIsMember) return TJSONNodes::MemberOf(*FTree, FNode);
  return FNode->Owner ? TJSONNodes::ValueOf(*FTree, FNode->Owner) : nullptr;
}

void TZmJSONBase::DestroyObjects() {
  if (FIsMember) return TJSONNodes::FreeValue(*FTree, FNode);
  if (!FNode->IsContainer()) return;
  if (TJSONNodes::IsDerived(*this) && !FNode->Has(detail::jfKeepsChildren)) {  // it may watch its children go
    for (std::size_t i = TJSONNodes::CountOf(*this); i-- > 0;)
      if (i < TJSONNodes::CountOf(*this) && TJSONNodes::ListOf(*this)[i]->Owner == FNode)
        TJSONNodes::ItemOf(*this, static_cast<int>(i))->FreeObject();
  }
  const bool renew = FNode->Class() == detail::jcDocument && FNode->FirstChild();
  TJSONNodes::FreeChildren(*this);
  if (renew) TJSONNodes::Renew(*this);
}

void TZmJSONBase::FreeObject() {
  _AddRef();
  if (FNode->Has(detail::jfMember) && !FIsMember)
    GetOwner()->RemoveObject(this);
  else
    TJSONNodes::Detach(*this);
  SetAutoDestroy(true);
  _Release();
}

TZmJSONDocument* TZmJSONBase::GetDocument() {
  detail::TJSONNode* top = FNode;
  while (top->Owner) top = top->Owner;
  if (top->Class() != detail::jcDocument || !top->Object()) detail::RaiseNotOfClass();
  return static_cast<TZmJSONDocument*>(top->Object());
}

// What the classes of nodes do not override.

String TZmJSONBase::GetName() { RaiseNotSupported(u"GetName"); }
TZmJSONBase* TZmJSONBase::GetValueObj() { RaiseNotSupported(u"GetValue"); }
void TZmJSONBase::SetValue(TZmJSONBase*) { RaiseNotSupported(u"SetValue"); }
void TZmJSONBase::SetName(const TZmAnyText&) { RaiseNotSupported(u"SetName"); }
bool TZmJSONBase::GetAsBoolean() { RaiseNotSupported(u"GetAsBoolean"); }
double TZmJSONBase::GetAsDouble() { RaiseNotSupported(u"GetAsDouble"); }
std::int32_t TZmJSONBase::GetAsInteger() { RaiseNotSupported(u"GetAsInteger"); }
std::int64_t TZmJSONBase::GetAsLargeInt() { RaiseNotSupported(u"GetAsLargeInt"); }
String TZmJSONBase::GetAsString() { RaiseNotSupported(u"GetAsString"); }
Variant TZmJSONBase::GetAsVariant() { RaiseNotSupported(u"GetAsVariant"); }
TValue TZmJSONBase::GetAsValue() { RaiseNotSupported(u"GetAsValue"); }
TZmJSONObject* TZmJSONBase::GetAsObject() { RaiseNotSupported(u"GetAsObject"); }
TZmJSONArray* TZmJSONBase::GetAsArray() { RaiseNotSupported(u"GetAsArray"); }
void TZmJSONBase::SetAsBoolean(bool) { RaiseNotSupported(u"SetAsBoolean"); }
void TZmJSONBase::SetAsDouble(double) { RaiseNotSupported(u"SetAsDouble"); }
void TZmJSONBase::SetAsInteger(std::int32_t) { RaiseNotSupported(u"SetAsInteger"); }
void TZmJSONBase::SetAsString(const TZmAnyText&) { RaiseNotSupported(u"SetAsString"); }
void TZmJSONBase::SetAsLargeInt(std::int64_t) { RaiseNotSupported(u"SetAsLargeInt"); }
void TZmJSONBase::SetAsVariant(const Variant&) { RaiseNotSupported(u"SetAsVariant"); }
int TZmJSONBase::Count() { RaiseNotSupported(u"Count"); }
TZmJSONBase* TZmJSONBase::AddValue(TZmJSONDataType) { RaiseNotSupported(u"AddValue"); }
TZmJSONBase* TZmJSONBase::AddValue(TZmJSONDataType, const TZmAnyText&) { RaiseNotSupported(u"AddValue"); }
TZmJSONBase* TZmJSONBase::AddValue(const Variant&) { RaiseNotSupported(u"AddValue"); }
TZmJSONMember* TZmJSONBase::AddMember(const TZmAnyText&) { RaiseNotSupported(u"AddMember"); }
TZmJSONMember* TZmJSONBase::AddMember(const TZmAnyText&, TZmJSONDataType) { RaiseNotSupported(u"AddMember"); }
TZmJSONMember* TZmJSONBase::AddMember(const TZmAnyText&, TZmJSONDataType, const TZmAnyText&) {
  RaiseNotSupported(u"AddMember");
}
TZmJSONMember* TZmJSONBase::AddMember(const TZmAnyText&, const Variant&) { RaiseNotSupported(u"AddMember"); }
void TZmJSONBase::DeleteMember(int) { RaiseNotSupported(u"DeleteMember"); }
void TZmJSONBase::RemoveMember(TZmJSONMember*) { RaiseNotSupported(u"RemoveMember"); }
TZmJSONMember* TZmJSONBase::FindMember(const TZmAnyText&, bool) { RaiseNotSupported(u"FindMember"); }
TZmJSONMember* TZmJSONBase::GetMember(const TZmAnyText&, TZmJDOCSelectOptions) { RaiseNotSupported(u"Member"); }
TZmJSONBase* TZmJSONBase::Item(int) { RaiseNotSupported(u"Item"); }

// These three call themselves on the class that they name.

void TZmJSONBase::DeleteValue(int) { RaiseEndlessOn(FIsMember, u"DeleteValue"); }
void TZmJSONBase::RemoveValue(TZmJSONBase*) { RaiseEndlessOn(FIsMember, u"RemoveValue"); }
void TZmJSONBase::SetAsValue(const TValue&) {
  RaiseEndlessOn(!FIsMember && FNode->Class() == detail::jcSimple, u"SetAsValue");
}

void TZmJSONBase::RaiseEndlessOn(bool Itself, StringView Method) {
  if (Itself) throw EStackOverflow(u"Stack overflow");
  RaiseNotSupported(Method);
}

// In terms of the others.

TZmIntf<IZmJSONObject> TZmJSONBase::GetAsObjectIntf() { return As<IZmJSONObject>(GetAsObject()); }
TZmIntf<IZmJSONArray> TZmJSONBase::GetAsArrayIntf() { return As<IZmJSONArray>(GetAsArray()); }
TZmIntf<IZmJSONBase> TZmJSONBase::GetValue() { return As<IZmJSONBase>(GetValueObj()); }
TZmIntf<IZmJSONBase> TZmJSONBase::GetItem(int Index) { return As<IZmJSONBase>(Item(Index)); }
TZmIntf<IZmJSONMember> TZmJSONBase::FindMemberIntf(const TZmAnyText& Name, bool IgnoreCase) {
  return As<IZmJSONMember>(FindMember(Name, IgnoreCase));
}
TZmIntf<IZmJSONMember> TZmJSONBase::GetMemberIntf(const TZmAnyText& Name, TZmJDOCSelectOptions Options) {
  return As<IZmJSONMember>(GetMember(Name, Options));
}
TZmJSONMember* TZmJSONBase::GetMemberEx1(const TZmAnyText& Name) { return GetMember(Name, {jsoCreate}); }
TZmIntf<IZmJSONMember> TZmJSONBase::GetMemberEx(const TZmAnyText& Name) {
  return As<IZmJSONMember>(GetMember(Name, {jsoCreate}));
}
bool TZmJSONBase::HasMember(const TZmAnyText& Name, bool IgnoreCase) { return FindMember(Name, IgnoreCase) != nullptr; }
TZmJSONDataType TZmJSONBase::GetJSONType() { return FIsMember ? jdtNull : FNode->Type(); }

String TZmJSONBase::GetAsJSON() { return detail::JSONTextOf(*this, false); }
String TZmJSONBase::GetFormattedJSON() { return detail::JSONTextOf(*this, true); }
void TZmJSONBase::SaveToStream(TStream* Stream, bool Format, int Level, bool Indent) {
  detail::WriteJSON(*this, Stream, Format, Level, Indent, cZmPageUTF16);
}

void TZmJSONBase::SetAsJSON(StringView Text) {
  if (Text.empty()) return DestroyObjects();
  TZmStringStream stream(cZmBorrow, Text);
  LoadFromStream(&stream, cZmPageUTF16, false);
}
void TZmJSONBase::LoadFromStream(TStream* Stream) { LoadFromStream(Stream, ZmGetCodePage(Stream), false); }
void TZmJSONBase::LoadFromStream(TStream* Stream, std::uint16_t CodePage, bool FormURLEncoded) {
  if (Stream->GetSize() == 0) return DestroyObjects();
  detail::LoadJSON(*this, Stream, CodePage, FormURLEncoded);
}

TZmOwner<TZmJSONArray> TZmJSONBase::CreateNodeList(const TZmAnyText& Path, TZmJDOCSelectOptions Options) {
  TZmOwner<TZmJSONArray> list = Create<TZmJSONArray>();
  detail::TJSONSelection found = detail::SelectJSON(*this, Path.Text(), Options);
  if (found.Nodes.empty() && Options.Has(jsoRaise)) throw EZmJSONException(_cZmJSONInvalidPathNoNodes, 11);
  if (found.Tree)
    TJSONNodes::Show(*list, *found.Tree, std::move(found.Nodes));
  else
    for (detail::TJSONNode* const node : found.Nodes)
      TJSONNodes::Hold(*list, *TJSONNodes::ValueOf(TJSONNodes::TreeOf(node), node));
  return list;
}
TZmJSONBase* TZmJSONBase::SelectSingleNode(const TZmAnyText& Path, TZmJDOCSelectOptions Options) {
  const auto [found, tree] = detail::SelectJSON(*this, Path.Text(), Options);
  if (!found.empty()) return TJSONNodes::ValueOf(tree ? *tree : TJSONNodes::TreeOf(found[0]), found[0]);
  if (Options.Has(jsoRaise)) throw EZmJSONException(_cZmJSONInvalidPathNoNodes, 11);
  return nullptr;
}
TZmIntf<IZmJSONArray> TZmJSONBase::SelectIntf(const TZmAnyText& Path, TZmJDOCSelectOptions Options) {
  return TZmIntf<IZmJSONArray>(CreateNodeList(Path, Options));
}

}  // namespace zm
