#pragma once

#include <memory>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "zamrit/platform/Strings.h"

namespace zm {

/// The immutable descriptor of a class: what a class reference points at. Descriptors live as long as the program.
struct TClass {
  StringView Name;
  const TClass* Parent;

  /// Whether this class is Other or descends from it. Costs a step a generation.
  bool InheritsFrom(const TClass* Other) const {
    const TClass* c = this;
    while (c && c != Other) c = c->Parent;
    return c != nullptr;
  }
};

class TObject;

namespace detail {
/// The class of an object whose own class gives itself no descriptor: the one made from its description, or Nearest,
/// that of its nearest ancestor.
const TClass* ClassOfDescribed(const TObject& Object, const TClass* Nearest);
}  // namespace detail

/// Gives a class its descriptor. Name is the class, Parent the class it derives from; stands in the class body.
#define ZM_OBJECT(Class, ParentClass)                                                                             \
 public:                                                                                                          \
  using ZmObjectClass = Class;                                                                                    \
  using ZmParentClass = ParentClass;                                                                              \
  static const ::zm::TClass* StaticClass() {                                                                      \
    static constexpr ::zm::StringView name = u"" #Class;                                                          \
    static const ::zm::TClass descriptor{name, ParentClass::StaticClass()};                                       \
    return &descriptor;                                                                                           \
  }                                                                                                               \
  const ::zm::TClass* ClassType() const override {                                                                \
    return typeid(*this) == typeid(Class) ? StaticClass() : ::zm::detail::ClassOfDescribed(*this, StaticClass()); \
  }                                                                                                               \
                                                                                                                  \
 private:

/// The root of the classes that have an identity. Objects are made by Create and held in a TZmOwner; a class that says
/// so may also stand on the stack or in a member.
class TObject {
 public:
  TObject() = default;
  TObject(const TObject&) = delete;
  TObject& operator=(const TObject&) = delete;

  /// Ends the object: BeforeDestruction, then the destructor. Descendants say where it means something else.
  virtual void Free();
  /// The TZmOwner that held the object has ended: Free, where a descendant does not say otherwise.
  virtual void EndOwnership() { Free(); }
  /// Runs once after the outermost constructor when the object is made by Create.
  virtual void AfterConstruction() {}
  /// Runs once before the destructor when the object is ended by Free. May raise; the object then lives on.
  virtual void BeforeDestruction() {}

  using ZmObjectClass = TObject;
  using ZmParentClass = void;
  static const TClass* StaticClass();
  /// The descriptor of the object's own class, where ZM_OBJECT or a description gives it one; else that of its nearest
  /// ancestor that has one.
  virtual const TClass* ClassType() const;
  /// The name of the object's own class.
  StringView ClassName() const { return ClassType()->Name; }

 protected:
  virtual ~TObject() = default;
};

namespace detail {
struct TFreeObject {
  void operator()(TObject* Object) const noexcept;
};
}  // namespace detail

/// Holds an object and frees it at the end. An object that is also held by interface handles then lives on until the
/// last of them goes.
template <class T>
using TZmOwner = std::unique_ptr<T, detail::TFreeObject>;

/// Builds an object, runs AfterConstruction and returns its owner.
template <class T, class... Args>
TZmOwner<T> Create(Args&&... Arguments) {
  static_assert(std::is_base_of_v<TObject, T>, "Create makes descendants of TObject");
  TZmOwner<T> object(new T(std::forward<Args>(Arguments)...));
  object->AfterConstruction();
  return object;
}

/// A class reference that can build: the descriptor of a class with the factory of a family whose constructors take
/// Args. `TClassOf<TZmSAXReader>` names any class of readers without constructor arguments.
template <class Base, class... Args>
struct TClassOf {
  const TClass* Class;
  TZmOwner<Base> (*Create)(Args...);

  /// The class reference of T, a descendant of Base.
  template <class T>
  static TClassOf Of() {
    return {T::StaticClass(),
            [](Args... Arguments) -> TZmOwner<Base> { return zm::Create<T>(std::forward<Args>(Arguments)...); }};
  }
};

}  // namespace zm
