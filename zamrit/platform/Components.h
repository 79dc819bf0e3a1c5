#pragma once

#include <cstdint>
#include <functional>

#include "zamrit/platform/Objects.h"
#include "zamrit/platform/Strings.h"

namespace zm {

class TReader;
class TWriter;

/// Takes the properties of an object that are not published, to store them or to restore them.
class TFiler : public TObject {
  ZM_OBJECT(TFiler, TObject)
 public:
  /// Names a property with what restores it, what stores it, and whether there is something to store.
  virtual void DefineProperty(StringView Name, std::function<void(TReader*)> ReadData,
                              std::function<void(TWriter*)> WriteData, bool HasData) = 0;
};

/// An object whose state can be assigned and stored.
class TPersistent : public TObject {
  ZM_OBJECT(TPersistent, TObject)
 public:
  /// Takes over what Source has: asks Source to AssignTo this. A nil Source is refused with EConvertError.
  virtual void Assign(TPersistent* Source);
  /// Names the properties that are not published. None here.
  virtual void DefineProperties(TFiler* Filer);

 protected:
  /// Gives what this object has to Target. Raises EConvertError here: descendants override it.
  virtual void AssignTo(TPersistent* Target);
};

/// A function that is told of something by the object that it happens to.
using TNotifyEvent = std::function<void(TObject* Sender)>;

/// What TComponent::Notification is told.
enum TOperation { opInsert, opRemove };

/// An object that owns others: they are freed with it, the last one first.
class TComponent : public TPersistent {
  ZM_OBJECT(TComponent, TPersistent)
 public:
  /// Owner may be nil.
  explicit TComponent(TComponent* Owner = nullptr);
  ~TComponent() override;

  TComponent* GetOwner() const { return FOwner; }
  const String& GetName() const { return FName; }
  void SetName(StringView Value) { FName = Value; }

  int GetComponentCount() const { return FCount; }
  /// The first owned component of that name, case ignored, or nil. Linear.
  TComponent* FindComponent(StringView Name) const;
  /// Takes a component from its present owner to this one. Constant time.
  void InsertComponent(TComponent* Component);
  /// Gives up a component, which then has no owner. One that is owned elsewhere stays there. Constant time.
  void RemoveComponent(TComponent* Component);

  /// Free for the application.
  std::intptr_t Tag = 0;

 protected:
  /// Told after a component has come to be owned here, and after it has left. Does nothing here.
  virtual void Notification(TComponent* Component, TOperation Operation);

 private:
  void Unlink(TComponent* Component);

  TComponent* FOwner = nullptr;
  TComponent* FFirst = nullptr;  // the owned ones are a chain in the order of insertion
  TComponent* FLast = nullptr;
  TComponent* FPrevious = nullptr;
  TComponent* FNext = nullptr;
  int FCount = 0;
  String FName;
};

}  // namespace zm
