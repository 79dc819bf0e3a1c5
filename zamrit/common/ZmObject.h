#pragma once

#include <atomic>
#include <cstdint>

#include "zamrit/platform/Components.h"
#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/Interfaces.h"

namespace zm {

/// An exception with a message and an integer code: the root of the readers' exception families.
class EZmException : public Exception {
 public:
  EZmException(StringView Message, int Code) : Exception(Message), FCode(Code) {}
  /// Formats the message as Format does.
  EZmException(StringView Pattern, std::initializer_list<TFormatArg> Arguments, int Code)
      : Exception(Pattern, Arguments), FCode(Code) {}

  int GetCode() const noexcept { return FCode; }

 private:
  int FCode;
};

/// What every reference-counted object offers besides the references themselves.
class IZmObject : public virtual IZmInterface {
 public:
  /// Whether the object ends itself when its count falls to 0.
  virtual bool GetAutoDestroy() const = 0;
  virtual void SetAutoDestroy(bool Value) = 0;
  /// The object behind the interface.
  virtual TObject* Implementor() = 0;
};

namespace detail {

/// Reference counting over a base class. Whoever makes the object with Create has the first hold, and Free gives it up:
/// the object ends when nobody holds it. With AutoDestroy off a count of 0 does not end it, only Free does. An object
/// that Create did not make (on the stack, in a member) is not counted at all and ends with its scope. Counts are
/// atomic.
template <class Base>
class TRefCounted : public Base, public IZmObject {
 public:
  using Base::Base;

  bool GetAutoDestroy() const override { return FAutoDestroy; }
  void SetAutoDestroy(bool Value) override { FAutoDestroy = Value; }
  TObject* Implementor() override { return this; }

  void* QueryInterface(const TInterfaceId& Id) override { return Id.Cast(this); }

  int _AddRef() override {
    return FRefCount.load(std::memory_order_relaxed) < 0 ? -1 : FRefCount.fetch_add(1, std::memory_order_relaxed) + 1;
  }

  int _Release() override {
    if (FRefCount.load(std::memory_order_relaxed) < 0) return -1;
    const int count = FRefCount.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (count == 0 && (FAutoDestroy || FFreed)) End(false);
    return count;
  }

  void Free() override {
    const int count = FRefCount.load();
    if (count < 0) return Base::Free();
    if (count <= 1) return End(true);
    FFreed = true;
    _Release();
  }

  void AfterConstruction() override {
    Base::AfterConstruction();
    FRefCount.store(1, std::memory_order_relaxed);
  }

 private:
  // An object that may refuse to go lives on as it was when BeforeDestruction raises; one that nobody holds any more
  // goes in any case.
  void End(bool MayRefuse) {
    // Nobody else holds it; a reference taken and given back on the way out must not end it twice.
    const int count = FRefCount.load(std::memory_order_relaxed);
    FRefCount.store(-1, std::memory_order_relaxed);
    try {
      this->BeforeDestruction();
    } catch (...) {
      if (MayRefuse) {
        FRefCount = count;
        throw;
      }
    }
    delete this;
  }

  std::atomic<std::int32_t> FRefCount{-1};
  bool FAutoDestroy = true;
  bool FFreed = false;
};

}  // namespace detail

/// The root of the reference-counted classes.
class TZmObject : public detail::TRefCounted<TObject> {
  ZM_OBJECT(TZmObject, TObject)
};

/// A reference-counted object that can be assigned and streamed.
class TZmObjectEx : public TZmObject {
  ZM_OBJECT(TZmObjectEx, TZmObject)
 public:
  /// Takes over what Source has. Asks Source to AssignTo this; a nil Source is refused with EConvertError.
  virtual void Assign(TZmObjectEx* Source);
  /// Gives what this object has to Target. Raises EConvertError here: descendants override it.
  virtual void AssignTo(TZmObjectEx* Target);
  /// Names the properties that are not published, for streaming. None here.
  virtual void DefineProperties(TFiler* Filer);
  /// Told by an object that this one refers to that it is about to end. Does nothing here.
  virtual void OnObjectDestroyed(TObject* Object);
};

/// A component with the reference counting of TZmObject.
class TZmComponent : public detail::TRefCounted<TComponent> {
  ZM_OBJECT(TZmComponent, TComponent)
 public:
  using TRefCounted::TRefCounted;
};

}  // namespace zm
