#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

#include "zamrit/platform/Objects.h"

namespace zm {

class IZmInterface;

/// Names an interface type at run time: how an object is asked for it.
struct TInterfaceId {
  /// The interface on the object, or nil where its class does not implement it. Takes no reference.
  void* (*Cast)(IZmInterface* Object);
};

/// The root of all interfaces: query, add a reference, release one. Interfaces derive from it virtually, so that one
/// base class serves all interfaces of an object.
class IZmInterface {
 public:
  IZmInterface() = default;
  IZmInterface(const IZmInterface&) = delete;
  IZmInterface& operator=(const IZmInterface&) = delete;

  /// The interface that Id names, or nil. Takes no reference; Supports does.
  virtual void* QueryInterface(const TInterfaceId& Id) = 0;
  /// Adds a reference and returns the new count, or -1 where the object is not counted: one that stands on the stack or
  /// in a member ends with its scope, whoever points at it.
  virtual int _AddRef() = 0;
  /// Takes a reference back and returns the new count; -1 as in _AddRef.
  virtual int _Release() = 0;

 protected:
  virtual ~IZmInterface() = default;
};

/// The run-time name of the interface I.
template <class I>
const TInterfaceId& InterfaceId() {
  static const TInterfaceId id{[](IZmInterface* Object) -> void* { return dynamic_cast<I*>(Object); }};
  return id;
}

/// A handle: holds an object by one of its interfaces and keeps it alive. A handle on an object that is not counted
/// only points at it, and does not touch it when the handle ends.
template <class I>
class TZmIntf {
 public:
  TZmIntf() = default;
  TZmIntf(std::nullptr_t) {}                                                           // NOLINT
  TZmIntf(I* Object) : FObject(Object), FCounted(Object && Object->_AddRef() >= 0) {}  // NOLINT
  TZmIntf(const TZmIntf& Other) : TZmIntf(Other.FObject) {}
  /// A handle by a further interface of the object.
  template <class T, class = std::enable_if_t<std::is_convertible_v<T*, I*>>>
  TZmIntf(const TZmIntf<T>& Other) : TZmIntf(static_cast<I*>(Other.Get())) {}  // NOLINT
  TZmIntf(TZmIntf&& Other) noexcept
      : FObject(std::exchange(Other.FObject, nullptr)), FCounted(std::exchange(Other.FCounted, false)) {}
  template <class T>
  TZmIntf(const TZmOwner<T>& Owner) : TZmIntf(static_cast<I*>(Owner.get())) {}  // NOLINT
  ~TZmIntf() {
    if (FCounted) FObject->_Release();
  }
  TZmIntf& operator=(TZmIntf Other) noexcept {
    std::swap(FObject, Other.FObject);
    std::swap(FCounted, Other.FCounted);
    return *this;
  }

  I* Get() const { return FObject; }
  I* operator->() const { return FObject; }
  I& operator*() const { return *FObject; }
  explicit operator bool() const { return FObject != nullptr; }
  friend bool operator==(const TZmIntf& Left, const TZmIntf& Right) { return Left.FObject == Right.FObject; }

 private:
  I* FObject = nullptr;
  bool FCounted = false;
};

/// The interface I of an object as a handle, or an empty handle where the object is nil or does not offer it.
template <class I, class T>
TZmIntf<I> Supports(T* Object) {
  return Object ? TZmIntf<I>(static_cast<I*>(Object->QueryInterface(InterfaceId<I>()))) : TZmIntf<I>();
}

}  // namespace zm
