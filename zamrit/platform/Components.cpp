#include "zamrit/platform/Components.h"

#include "zamrit/platform/Exceptions.h"

namespace zm {

void TPersistent::Assign(TPersistent* Source) {
  if (!Source) throw EConvertError(u"Cannot assign a nil to a %s", {ClassName()});
  Source->AssignTo(this);
}

void TPersistent::AssignTo(TPersistent* Target) {
  throw EConvertError(u"Cannot assign a %s to a %s", {ClassName(), Target->ClassName()});
}

void TPersistent::DefineProperties(TFiler*) {}

TComponent::TComponent(TComponent* Owner) {
  if (Owner) Owner->InsertComponent(this);
}

TComponent::~TComponent() {
  while (TComponent* const last = FLast) {
    Unlink(last);
    const TZmOwner<TComponent> freed(last);
  }
  if (!FOwner) return;
  try {
    FOwner->RemoveComponent(this);
  } catch (...) {  // NOLINT(bugprone-empty-catch): who is told cannot keep the component
  }
}

TComponent* TComponent::FindComponent(StringView Name) const {
  TComponent* component = FFirst;
  while (component && !SameText(component->FName, Name)) component = component->FNext;
  return component;
}

void TComponent::InsertComponent(TComponent* Component) {
  if (Component->FOwner) Component->FOwner->RemoveComponent(Component);
  Component->FOwner = this;
  Component->FPrevious = FLast;
  (FLast ? FLast->FNext : FFirst) = Component;
  FLast = Component;
  ++FCount;
  try {
    Notification(Component, opInsert);
  } catch (...) {
    Unlink(Component);
    throw;
  }
}

void TComponent::RemoveComponent(TComponent* Component) {
  if (Component->FOwner != this) return;
  Unlink(Component);
  Notification(Component, opRemove);
}

void TComponent::Unlink(TComponent* Component) {
  (Component->FPrevious ? Component->FPrevious->FNext : FFirst) = Component->FNext;
  (Component->FNext ? Component->FNext->FPrevious : FLast) = Component->FPrevious;
  Component->FOwner = Component->FPrevious = Component->FNext = nullptr;
  --FCount;
}

void TComponent::Notification(TComponent*, TOperation) {}

}  // namespace zm
