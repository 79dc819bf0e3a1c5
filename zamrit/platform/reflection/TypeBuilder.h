#pragma once

#include <functional>
#include <memory>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include "zamrit/platform/reflection/AccessDetail.h"
#include "zamrit/platform/reflection/MembersDetail.h"

namespace zm {

/// The attribute that Hint makes of an option of type TOption: whoever defines options specializes it with a member
/// TAttribute, built from the option and a text.
template <class TOption>
struct THintAttribute;

/// Adds to what has just been described: a member, or with TTypeBuilder the type itself.
template <class TSelf>
class TAttributeBuilder {
 public:
  /// Attaches an attribute of class A, built from the arguments.
  template <class A, class... Args>
  TSelf& Attribute(Args&&... Arguments) {
    Self().AddAttribute(std::make_unique<const A>(std::forward<Args>(Arguments)...));
    return Self();
  }
  /// Attaches the attribute of a hint.
  template <class TOption>
  TSelf& Hint(TOption Option, StringView Value = {}) {
    return Attribute<typename THintAttribute<TOption>::TAttribute>(Option, Value);
  }

 private:
  TSelf& Self() { return static_cast<TSelf&>(*this); }
};

/// A member that has just been described.
class TMemberBuilder : public TAttributeBuilder<TMemberBuilder> {
 public:
  explicit TMemberBuilder(TRttiMember& Member) : FMember(Member) {}
  TMemberBuilder& Visibility(TMemberVisibility Value) {
    FMember.SetVisibility(Value);
    return *this;
  }
  void AddAttribute(std::unique_ptr<const TCustomAttribute> Attribute) { FMember.AddAttribute(std::move(Attribute)); }

 private:
  TRttiMember& FMember;
};

/// Takes the description of a class or record T. Members stand in the order of the calls, those of the ancestors first.
/// An ancestor that has a class descriptor need not be named.
template <class T>
class TTypeBuilder : public TAttributeBuilder<TTypeBuilder<T>> {
 public:
  explicit TTypeBuilder(detail::TStructureBuild Build) : FBuild(std::move(Build)) {}

  /// Names the type otherwise than C++ does. The qualified name is Unit + "." + Name, or Name alone.
  TTypeBuilder& Named(StringView Name, StringView Unit = {}) {
    if (!FBuild.IsAncestor()) {
      FBuild.Target->Name = Name;
      FBuild.Target->QualifiedName = Unit.empty() ? String(Name) : String(Unit).append(u".").append(Name);
    }
    return *this;
  }
  /// Takes over the members of B, an ancestor of T.
  template <class B>
  TTypeBuilder& Base() {
    static_assert(std::is_base_of_v<B, T> && !std::is_same_v<B, T>, "the class does not descend from this base");
    detail::DescribeBase<T, B>(FBuild);
    return *this;
  }

  /// A data member, seen as far as the name of the operation says.
  template <class M, class C>
  requires std::is_base_of_v<C, T> && std::is_object_v<M> && detail::IsReflectable<M> TMemberBuilder
  Published(StringView Name, M C::*Member) {
    return Field(Name, Member, mvPublished);
  }
  template <class M, class C>
  requires std::is_base_of_v<C, T> && std::is_object_v<M> && detail::IsReflectable<M> TMemberBuilder
  Public(StringView Name, M C::*Member) {
    return Field(Name, Member, mvPublic);
  }
  template <class M, class C>
  requires std::is_base_of_v<C, T> && std::is_object_v<M> && detail::IsReflectable<M> TMemberBuilder
  Protected(StringView Name, M C::*Member) {
    return Field(Name, Member, mvProtected);
  }
  template <class M, class C>
  requires std::is_base_of_v<C, T> && std::is_object_v<M> && detail::IsReflectable<M> TMemberBuilder
  Private(StringView Name, M C::*Member) {
    return Field(Name, Member, mvPrivate);
  }

  /// A property, published: a getter and a setter as methods or callables on T, either of which may be nullptr. What a
  /// getter returns by reference can be viewed in place.
  template <class G, class S = std::nullptr_t>
  requires detail::PropertyAccess<T, G, S> TMemberBuilder Property(StringView Name, G Getter, S Setter = nullptr) {
    return TMemberBuilder(FBuild.Target->Properties.Add(
        std::make_unique<detail::TPropertyOf<T, G, S>>(Name, FBuild.Casts, Getter, Setter)));
  }
  /// A property with an index: the getter takes the index, the setter the index and the value; it may be nullptr.
  template <class R, class C, class I, class S = std::nullptr_t>
  TMemberBuilder IndexedProperty(StringView Name, R (C::*Getter)(I) const, S Setter = nullptr) {
    return TMemberBuilder(
        FBuild.Target->IndexedProperties.Add(std::make_unique<detail::TIndexedPropertyOf<T, decltype(Getter), R, I, S>>(
            Name, FBuild.Casts, Getter, Setter)));
  }
  template <class R, class C, class I, class S = std::nullptr_t>
  TMemberBuilder IndexedProperty(StringView Name, R (C::*Getter)(I), S Setter = nullptr) {
    return TMemberBuilder(
        FBuild.Target->IndexedProperties.Add(std::make_unique<detail::TIndexedPropertyOf<T, decltype(Getter), R, I, S>>(
            Name, FBuild.Casts, Getter, Setter)));
  }
  /// A method with the names of its parameters, as far as they are given.
  template <class R, class C, class... Args>
  TMemberBuilder Method(StringView Name, R (C::*Address)(Args...), std::initializer_list<StringView> Names = {}) {
    return AddMethod<decltype(Address), R, Args...>(Name, Address, Names);
  }
  template <class R, class C, class... Args>
  TMemberBuilder Method(StringView Name, R (C::*Address)(Args...) const, std::initializer_list<StringView> Names = {}) {
    return AddMethod<decltype(Address), R, Args...>(Name, Address, Names);
  }

  void AddAttribute(std::unique_ptr<const TCustomAttribute> Attribute) {
    if (!FBuild.IsAncestor()) FBuild.Target->Attributes.push_back(std::move(Attribute));
  }

 private:
  template <class M, class C>
  TMemberBuilder Field(StringView Name, M C::*Member, TMemberVisibility Visibility) {
    TRttiField& field =
        FBuild.Target->Fields.Add(std::make_unique<detail::TFieldOf<T, M, C>>(Name, FBuild.Casts, Member));
    field.SetVisibility(Visibility);
    return TMemberBuilder(field);
  }
  template <class F, class R, class... Args>
  TMemberBuilder AddMethod(StringView Name, F Address, std::initializer_list<StringView> Names) {
    return TMemberBuilder(FBuild.Target->Methods.Add(
        std::make_unique<detail::TMethodOf<T, F, R, Args...>>(Name, FBuild.Casts, Address, Names)));
  }

  detail::TStructureBuild FBuild;
};

/// Takes the description of an enumeration.
template <class E>
requires std::is_enum_v<E>
class TTypeBuilder<E> : public TAttributeBuilder<TTypeBuilder<E>> {
 public:
  explicit TTypeBuilder(detail::TEnumerationBuild& Target) : FTarget(Target) {}

  TTypeBuilder& Named(StringView Name, StringView Unit = {}) {
    FTarget.Name = Name;
    FTarget.QualifiedName = Unit.empty() ? String(Name) : String(Unit).append(u".").append(Name);
    return *this;
  }
  TTypeBuilder& Value(StringView Name, E Value) {
    FTarget.Entries.push_back({String(Name), static_cast<std::int64_t>(Value)});
    return *this;
  }
  void AddAttribute(std::unique_ptr<const TCustomAttribute> Attribute) {
    FTarget.Attributes.push_back(std::move(Attribute));
  }

 private:
  detail::TEnumerationBuild& FTarget;
};

namespace detail {

template <class T>
void RunDescription(TTypeBuilder<T>& Builder) {
  if constexpr (HasMacroDescription<T>)
    ZmDescribe(Builder, TTag<T>());
  else if constexpr (HasOwnDescription<T>)
    Describe<T>(Builder);
}

/// The class descriptor's ancestor: what a description need not name.
template <class T>
struct TImpliedBase {
  using TBase = typename T::ZmObjectClass;
};
template <HasOwnClass T>
struct TImpliedBase<T> {
  using TBase = typename T::ZmParentClass;
};

template <class T>
void DescribeStructure(const TStructureBuild& Build) {
  TTypeBuilder<T> builder(Build);
  if constexpr (ObjectClass<T> && !HasMacroDescription<T>) {
    using TBase = typename TImpliedBase<T>::TBase;
    if constexpr (!std::is_void_v<TBase>) DescribeBase<T, TBase>(Build);
  }
  RunDescription(builder);
}

template <class T, class B>
void DescribeBase(const TStructureBuild& Build) {
  TStructureBuild base = Build;
  const TRttiMember::TCast cast = [](void* Instance) {
    return InstanceAddress(static_cast<B*>(FromInstance<T>(Instance)));
  };
  if (!Build.IsAncestor()) Build.Target->Bases.push_back({&InstanceType<B>, cast});
  if (!base.Enter(typeid(B))) return;
  if constexpr (!ObjectClass<T> || !ObjectClass<B>) base.Casts.push_back(cast);
  if constexpr (Described<B>) DescribeStructure<B>(base);
}

template <class T>
const TStructure& StructureOf() {
  static const TStructure& structure = *[] {
    auto* made = new TStructure;
    const TTypeNames names(RawTypeName<T>());
    made->Name = names.Name;
    made->QualifiedName = names.QualifiedName;
    TVisited visited;
    DescribeStructure<T>(TStructureBuild(*made, visited));
    return made;
  }();
  return structure;
}

template <RecordClass T>
struct TDescriptor<T> {
  static const TRttiType* Make() {
    return new TRttiRecordType(StructureOf<T>(), std::is_trivially_copyable_v<T> ? tkRecord : tkMRecord,
                               StorageOf<T>());
  }
};

template <class C>
constexpr auto Creator() -> void* (*)(TComponent*) {
  if constexpr (std::is_base_of_v<TComponent, C> && requires(TComponent * Owner) { ::new C(Owner); })
    return [](TComponent* Owner) { return InstanceAddress(Create<C>(Owner).release()); };
  else if constexpr (ObjectClass<C> && requires { ::new C(); })
    return [](TComponent*) { return InstanceAddress(Create<C>().release()); };
  else if constexpr (!ObjectClass<C> && std::is_default_constructible_v<C>)
    return [](TComponent*) -> void* { return new C(); };
  else
    return nullptr;
}

template <class C>
const TRttiInstanceType* InstanceType() {
  static const TRttiInstanceType* const type = [] {
    TRttiInstanceType::TClassOperations operations{&typeid(C), nullptr, ObjectClass<C>, Creator<C>(), nullptr, nullptr};
    if constexpr (HasOwnClass<C>) operations.OwnClass = C::StaticClass();
    if constexpr (ObjectClass<C>) {
      operations.Free = [](void* Instance) { static_cast<TObject*>(Instance)->Free(); };
      operations.IsInstance = [](TObject* Object) { return dynamic_cast<C*>(Object) != nullptr; };
    } else if constexpr (std::is_destructible_v<C>) {
      operations.Free = [](void* Instance) { delete static_cast<C*>(Instance); };
    }
    auto* made = new TRttiInstanceType(StructureOf<C>(), StorageOf<void*>(), operations);
    Publish(made);
    return made;
  }();
  return type;
}

template <class E>
const TRttiEnumerationType* MakeEnumeration() {
  TEnumerationBuild build;
  const TTypeNames names(RawTypeName<E>());
  build.Name = names.Name;
  build.QualifiedName = names.QualifiedName;
  TTypeBuilder<E> builder(build);
  RunDescription(builder);
  auto* made = new TRttiEnumerationType(build.Name, build.QualifiedName, StorageOf<E>(),
                                        std::is_signed_v<std::underlying_type_t<E>>, std::move(build.Entries));
  for (auto& attribute : build.Attributes) made->AddAttribute(std::move(attribute));
  return made;
}

/// Entered once, however many sources describe the type again.
template <class T>
inline const bool Registered = RegisterType(&TypeOf<T>);
template <class T>
const bool* Register() {
  return &Registered<T>;
}
/// A class, and a struct as a record and behind a pointer.
template <class T>
inline const bool RegisteredClass = RegisterType([]() -> const TRttiType* { return InstanceType<T>(); });
template <class T>
const bool* RegisterStructure() {
  if constexpr (!ObjectClass<T>) Register<T>();
  return &RegisteredClass<T>;
}

}  // namespace detail

#define ZM_DETAIL_PARENS ()
#define ZM_DETAIL_EXPAND(...) ZM_DETAIL_EXPAND4(ZM_DETAIL_EXPAND4(__VA_ARGS__))
#define ZM_DETAIL_EXPAND4(...) ZM_DETAIL_EXPAND3(ZM_DETAIL_EXPAND3(ZM_DETAIL_EXPAND3(ZM_DETAIL_EXPAND3(__VA_ARGS__))))
#define ZM_DETAIL_EXPAND3(...) ZM_DETAIL_EXPAND2(ZM_DETAIL_EXPAND2(ZM_DETAIL_EXPAND2(ZM_DETAIL_EXPAND2(__VA_ARGS__))))
#define ZM_DETAIL_EXPAND2(...) ZM_DETAIL_EXPAND1(ZM_DETAIL_EXPAND1(ZM_DETAIL_EXPAND1(ZM_DETAIL_EXPAND1(__VA_ARGS__))))
#define ZM_DETAIL_EXPAND1(...) __VA_ARGS__
#define ZM_DETAIL_EACH(Macro, Class, ...) __VA_OPT__(ZM_DETAIL_EXPAND(ZM_DETAIL_EACH_STEP(Macro, Class, __VA_ARGS__)))
#define ZM_DETAIL_EACH_STEP(Macro, Class, First, ...) \
  Macro(Class, First) __VA_OPT__(ZM_DETAIL_EACH_AGAIN ZM_DETAIL_PARENS(Macro, Class, __VA_ARGS__))
#define ZM_DETAIL_EACH_AGAIN() ZM_DETAIL_EACH_STEP
#define ZM_DETAIL_STRIP(...) __VA_ARGS__
#define ZM_DETAIL_JOIN(Left, Right) ZM_DETAIL_JOIN_AGAIN(Left, Right)
#define ZM_DETAIL_JOIN_AGAIN(Left, Right) Left##Right
#define ZM_DETAIL_REGISTER(Class, How) \
  [[maybe_unused]] static const bool* const ZM_DETAIL_JOIN(zmRegistered, __COUNTER__) = ::zm::detail::How<Class>();

#define ZM_DETAIL_BASE(Class, TheBase)                                                          \
  static_assert(std::is_base_of_v<TheBase, ZmSelf>, #Class " does not descend from " #TheBase); \
  Builder.template Base<TheBase>();
#define ZM_DETAIL_MEMBER(Class, Member)                                \
  static_assert(::zm::detail::IsReflectable<decltype(ZmSelf::Member)>, \
                #Class "." #Member ": its type is not described");     \
  Builder.Published(u"" #Member, &ZmSelf::Member);
#define ZM_DETAIL_ENUMERATOR(Class, Enumerator) Builder.Value(u"" #Enumerator, ZmSelf::Enumerator);

/// Describes a class or struct: its ancestors in parentheses, as far as they have a description or a class descriptor,
/// then up to 100 data members in parentheses, all published under their own names. Stands behind the class, in its
/// namespace. The type can then be found by its name.
#define ZM_CLASS(Class, Bases, Members)                                             \
  template <class ZmSelf>                                                           \
  void ZmDescribe(::zm::TTypeBuilder<ZmSelf>& Builder, ::zm::detail::TTag<Class>) { \
    ZM_DETAIL_EACH(ZM_DETAIL_BASE, Class, ZM_DETAIL_STRIP Bases)                    \
    ZM_DETAIL_EACH(ZM_DETAIL_MEMBER, Class, ZM_DETAIL_STRIP Members)                \
    static_cast<void>(Builder);                                                     \
  }                                                                                 \
  ZM_DETAIL_REGISTER(Class, RegisterStructure)

/// Describes an enumeration by its enumerators. Stands behind it, in its namespace.
#define ZM_ENUM(Enumeration, ...)                                                              \
  template <class ZmSelf>                                                                      \
  void ZmDescribe(::zm::TTypeBuilder<ZmSelf>& Builder, ::zm::detail::TTag<Enumeration>) {      \
    ZM_DETAIL_EACH(ZM_DETAIL_ENUMERATOR, Enumeration, __VA_ARGS__) static_cast<void>(Builder); \
  }                                                                                            \
  ZM_DETAIL_REGISTER(Enumeration, Register)

/// Names a set: Set is an alias of zm::TSet<Enumeration>. Stands behind it, in the namespace of the enumeration.
#define ZM_SET(Set, Enumeration)                                                                          \
  static_assert(std::is_same_v<Set, ::zm::TSet<Enumeration>>, #Set " is not zm::TSet<" #Enumeration ">"); \
  inline const char* ZmSetName(::zm::detail::TTag<Set>) { return #Set; }                                  \
  ZM_DETAIL_REGISTER(Set, Register)

/// Lets a type be found by its name that has a specialization of Describe. Stands behind that, once.
#define ZM_REGISTER(Type) ZM_DETAIL_REGISTER(Type, RegisterStructure)

/// Opens the private members of a class to its description. Stands in the class body.
#define ZM_DESCRIBED(Class)                                \
  template <class ZmType>                                  \
  friend void ::zm::Describe(::zm::TTypeBuilder<ZmType>&); \
  template <class ZmSelf>                                  \
  friend void ZmDescribe(::zm::TTypeBuilder<ZmSelf>& Builder, ::zm::detail::TTag<Class>);

}  // namespace zm
