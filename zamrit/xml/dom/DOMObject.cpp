#include "zamrit/xml/dom/DOMObject.h"

#include "zamrit/xml/dom/TreeDetail.h"

namespace zm {

using detail::TDOMTree;

TZmDOMSelectMatchOption DefaultSelectMatchOption = soQualifiedName;
bool DefaultPreserveCase = false;
TZmDOMSelectCheckOption DefaultSelectCheckOption = coRaise;

TZmDOMObjectImpl::TZmDOMObjectImpl(TZmDOMObject* Object) : FDOMObject(Object) { SetParent(Object->GetParent()); }

void* TZmDOMObjectImpl::QueryInterface(const TInterfaceId& Id) {
  if (void* const found = Id.Cast(this)) return found;
  auto* const object = dynamic_cast<IZmInterface*>(FDOMObject);
  return object ? Id.Cast(object) : nullptr;
}

void TZmDOMObjectImpl::SetParent(TZmDOMObject* Parent) {
  if (Parent) {
    Parent->_AddRef();
    ++Parent->GetDOMImpl()->FChildren;
  }
  TZmDOMObjectImpl* const old = std::exchange(FParent, Parent ? Parent->GetDOMImpl() : nullptr);
  if (!old) return;
  --old->FChildren;
  old->_Release();
}

// The companions above are let go of in a loop, as each may have been held by the one below alone.
int TZmDOMObjectImpl::_Release() {
  const int count = --FCount;
  for (TZmDOMObjectImpl* impl = this; impl && impl->FCount == 0;) {
    TZmDOMObjectImpl* const above = std::exchange(impl->FParent, nullptr);
    if (TZmDOMObject* const object = std::exchange(impl->FDOMObject, nullptr)) {
      object->SetDOMImpl(nullptr);
      if (object->CanAutoDestroy()) TZmOwner<TZmDOMObject>(object).reset();
    }
    delete impl;
    impl = above;
    if (impl) {
      --impl->FChildren;
      --impl->FCount;
    }
  }
  return count;
}

void TZmDOMObjectImpl::ObjectGone() {
  FDOMObject = nullptr;
  SetParent(nullptr);
  if (FCount == 0) delete this;
}

TZmDOMNode* TZmDOMObjectImpl::Node(IZmInterface* Interface) {
  if (!Interface) return nullptr;
  if (auto* const impl = dynamic_cast<IZmDOMObject*>(Interface)) {
    if (!impl->GetDOMObject()) return nullptr;
    if (auto* const node = dynamic_cast<TZmDOMNode*>(impl->GetDOMObject())) return node;
  }
  if (auto* const node = dynamic_cast<TZmDOMNode*>(Interface)) return node;
  throw EInvalidCast(u"Invalid class typecast");
}

TZmDOMDocument* TZmDOMObject::GetDOMDocument() const { return FParent ? FParent->GetDOMDocument() : nullptr; }

void TZmDOMObject::MakeImpl() {
  TZmDOMObjectImpl* const impl = CreateDOMImpl(this);
  try {
    SetDOMImpl(impl);
  } catch (...) {
    impl->ObjectGone();
    throw;
  }
}

void* TZmDOMObject::QueryInterface(const TInterfaceId& Id) {
  if (!GetDOMImpl()) MakeImpl();
  TZmDOMObjectImpl* const impl = GetDOMImpl();
  void* const found = impl->QueryInterface(Id);
  if (!found && impl->RefCount() == 0) {  // nobody has it: it must not hold the parent's
    SetDOMImpl(nullptr);
    impl->ObjectGone();
  }
  return found;
}

int TZmDOMObject::_AddRef() {
  // The companion of each object above holds the next, so those are made from the top down.
  std::vector<TZmDOMObject*> without;
  for (TZmDOMObject* object = this; object && !object->GetDOMImpl(); object = object->FParent)
    without.push_back(object);
  for (; !without.empty(); without.pop_back()) without.back()->MakeImpl();
  return GetDOMImpl()->_AddRef();
}

int TZmDOMObject::_Release() {
  if (TZmDOMObjectImpl* const impl = GetDOMImpl()) return impl->_Release();
  throw Exception(
      u"DOM Objects do not support interfaces. All interface requests should be handled by the DOMIMpl object.");
}

bool TZmDOMObject::CanAutoDestroy() const {
  if (FParent && !FParent->IsDestroying()) return false;
  return !HasFlag(detail::dfMade) && !IsDestroying();
}

bool TZmDOMObject::GetCaseSensitive() const { return GetCollation() != TZmXPathCollationASCIICI; }

TZmXPathCollationClass TZmDOMObject::GetCollation() const {
  const TZmDOMDocument* const document = GetDOMDocument();
  return document ? document->GetCollation() : DefaultXPathCollation;
}

TZmDOMSelectMatchOption TZmDOMObject::GetSelectMatchOption() const {
  const TZmDOMDocument* const document = GetDOMDocument();
  return document ? document->GetSelectMatchOption() : DefaultSelectMatchOption;
}

void TZmDOMObject::SetParentNode(TZmDOMObject* Parent) {
  FParent = Parent;
  if (TZmDOMObjectImpl* const impl = GetDOMImpl()) impl->SetParent(Parent);
}

void TZmDOMObject::Free() {
  const TZmDOMObjectImpl* const impl = GetDOMImpl();
  if (impl && impl->IsHeld())
    throw Exception(u"An instance of %s is destroyed while it's refcount is not 0!", {ClassName()});
  BeforeDestruction();
  if (HasFlag(detail::dfArena))  // of nodes alone
    TDOMTree::Destroy(static_cast<TZmDOMNode*>(this));
  else
    delete this;
}

void TZmDOMObject::EndOwnership() {
  SetFlag(detail::dfMade, false);
  if (!FParent && !IsHeld() && !IsDestroying()) Free();
}

void TZmDOMObject::AfterConstruction() {
  SetFlag(detail::dfMade);
  SetFlag(detail::dfDerived, TDOMTree::IsOwnClass(*this));
  TObject::AfterConstruction();
}

void TZmDOMObject::BeforeDestruction() {
  SetFlag(detail::dfDestroying);
  TObject::BeforeDestruction();
}

}  // namespace zm
