#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include "zamrit/platform/DateTime.h"
#include "zamrit/platform/Numbers.h"
#include "zamrit/platform/Set.h"
#include "zamrit/platform/reflection/Members.h"
#include "zamrit/platform/reflection/TypeDirectory.h"
#include "zamrit/platform/reflection/Value.h"

namespace zm {

template <class T>
class TTypeBuilder;

/// Describes a class, record or enumeration: specialize it for the type. Deleted, so that a type without a description
/// is refused when the program is compiled.
template <class T>
void Describe(TTypeBuilder<T>& Builder) = delete;

namespace detail {

/// Carries a type to an overload.
template <class T>
struct TTag {};

/// How the descriptor of a type is made whose values are kept as they are: Make gives a new one.
template <class T>
struct TDescriptor {};

template <class T>
concept Direct = requires {
  { TDescriptor<T>::Make() } -> std::convertible_to<const TRttiType*>;
};

template <class T>
concept HasOwnDescription = requires(TTypeBuilder<T>& Builder) {
  Describe<T>(Builder);
};
template <class T>
concept HasMacroDescription = !HasOwnDescription<T> && requires(TTypeBuilder<T> & Builder) {
  ZmDescribe(Builder, TTag<T>());
};
template <class T>
concept HasOwnClass = std::is_base_of_v<TObject, T> && std::is_same_v<typename T::ZmObjectClass, T>;
template <class T>
concept Described = HasMacroDescription<T> || HasOwnDescription<T> || HasOwnClass<T>;

template <class T>
concept ObjectClass = std::is_class_v<T> && std::is_base_of_v<TObject, T>;
template <class T>
concept RecordClass =
    std::is_class_v<T> && !std::is_base_of_v<TObject, T> && (HasMacroDescription<T> || HasOwnDescription<T>);

/// Whether values of T have a descriptor.
template <class T>
struct TReflectable : std::bool_constant<Direct<T>> {};
template <ObjectClass T>
struct TReflectable<T> : std::bool_constant<Described<T>> {};
template <class T>
struct TReflectable<T*> : std::bool_constant<!std::is_const_v<T> && (!std::is_class_v<T> || Described<T>)> {};
template <>
struct TReflectable<const TClass*> : std::true_type {};
template <class T, class D>
struct TReflectable<std::unique_ptr<T, D>> : std::bool_constant<Described<T>> {};
template <class T>
struct TReflectable<std::shared_ptr<T>> : std::bool_constant<Described<T>> {};
template <class T>
struct TReflectable<std::optional<T>> : TReflectable<T> {};
template <class T, class A>
struct TReflectable<std::vector<T, A>> : TReflectable<T> {};
template <class T, std::size_t N>
struct TReflectable<std::array<T, N>> : TReflectable<T> {};
template <class I>
struct TReflectable<TZmIntf<I>> : std::true_type {};
template <class T>
inline constexpr bool IsReflectable = TReflectable<std::remove_cv_t<T>>::value;

/// Whether T can be copied: the standard containers say so even of what holds owning pointers.
template <class T>
inline constexpr bool IsCopyable = std::is_copy_constructible_v<T>&& std::is_copy_assignable_v<T>;
template <class T, class A>
inline constexpr bool IsCopyable<std::vector<T, A>> = IsCopyable<T>;
template <class T, std::size_t N>
inline constexpr bool IsCopyable<std::array<T, N>> = IsCopyable<T>;
template <class T>
inline constexpr bool IsCopyable<std::optional<T>> = IsCopyable<T>;

template <class T>
struct TIsKept : std::bool_constant<IsCopyable<T> || std::is_base_of_v<TObject, T>> {};
template <class T, class D>
struct TIsKept<std::unique_ptr<T, D>> : std::true_type {};  // the object is the caller's matter

/// Whether a getter or method may return a T by value: nothing would own what an owner brings.
template <class R>
inline constexpr bool IsOwner = false;
template <class T, class D>
inline constexpr bool IsOwner<std::unique_ptr<T, D>> = true;
template <class T>
inline constexpr bool IsOwner<std::shared_ptr<T>> = true;
template <class R>
inline constexpr bool IsReturnable = std::is_lvalue_reference_v<R> ||
                                     (!IsOwner<std::remove_cv_t<R>> && IsCopyable<std::remove_cvref_t<R>>);

template <class T>
TTypeStorage StorageOf() {
  TTypeStorage storage;
  storage.Size = sizeof(T);  // NOLINT(bugprone-sizeof-expression): of the pointer where T is one
  storage.Alignment = alignof(T);
  storage.Trivial = std::is_trivially_copyable_v<T>;
  if constexpr (std::is_default_constructible_v<T>) storage.Create = [](void* Target) { new (Target) T(); };
  if constexpr (IsCopyable<T>) {
    storage.Copy = [](void* Target, const void* Source) { new (Target) T(*static_cast<const T*>(Source)); };
    storage.Assign = [](void* Target, const void* Source) {
      *static_cast<T*>(Target) = *static_cast<const T*>(Source);
    };
  }
  if constexpr (std::is_nothrow_move_constructible_v<T>)
    storage.Move = [](void* Target, void* Source) { new (Target) T(std::move(*static_cast<T*>(Source))); };
  if constexpr (!std::is_trivially_destructible_v<T>)
    storage.Destroy = [](void* Target) { static_cast<T*>(Target)->~T(); };
  return storage;
}

/// The name of a type as the compiler writes it.
template <class T>
constexpr std::string_view RawTypeName() {
#if defined(__GNUC__)
  const std::string_view text = __PRETTY_FUNCTION__;
  const std::size_t begin = text.find("T = ") + 4;
  return text.substr(begin, text.find_first_of(";]", begin) - begin);
#else
  return typeid(T).name();
#endif
}

/// The name behind its namespaces with dots, as "Geometry.TPoint", and alone.
struct TTypeNames {
  explicit TTypeNames(std::string_view Raw);
  String Name;
  String QualifiedName;
};

/// The descriptor of T, for the life of the program.
template <class T>
const TRttiType* DirectType() {
  static const TRttiType* const type = Publish(TDescriptor<T>::Make());
  return type;
}

template <Direct T>
struct TAccess<T> {
  static const TRttiType* Type() { return DirectType<T>(); }
  static TValue Get(const T& Value) {
    if constexpr (std::is_trivially_copyable_v<T> && TValue::FitsInline<T>)
      return TValue::Trivial(Value, Type());
    else if constexpr (IsCopyable<T> && TValue::FitsInline<T>)
      return TValue::Inline(Value, Type());
    else if constexpr (IsCopyable<T>)
      return TValue::Make(&Value, Type());
    else
      return TValue::MakeWithoutCopy(const_cast<T*>(&Value), Type());
  }
  static TValue View(T& Value) {
    if constexpr (std::is_scalar_v<T>)
      return TValue::Trivial(Value, Type());
    else
      return TValue::MakeWithoutCopy(&Value, Type());
  }
  static bool Set(T& Target, const TValue& Value) {
    const TRttiType* const type = Type();
    if constexpr (IsCopyable<T>) {
      if (Value.GetTypeInfo() == type) {
        Target = *static_cast<const T*>(Value.GetReferenceToRawData());
        return true;
      }
    }
    return type->Convert(&Target, Value);
  }
};

template <class T>
inline constexpr bool IsNumberType =
    std::is_integral_v<T> && !std::is_same_v<T, bool> && !std::is_same_v<T, char> && !std::is_same_v<T, wchar_t> &&
    !std::is_same_v<T, char8_t> && !std::is_same_v<T, char16_t> && !std::is_same_v<T, char32_t>;

template <std::size_t Size, bool Signed>
struct TFixedInteger;
#define ZM_FIXED(Size, Signed, Integer, Text)    \
  template <>                                    \
  struct TFixedInteger<Size, Signed> {           \
    using TInteger = Integer;                    \
    static constexpr StringView Name = u"" Text; \
  };
ZM_FIXED(1, true, std::int8_t, "ShortInt")
ZM_FIXED(2, true, std::int16_t, "SmallInt")
ZM_FIXED(4, true, std::int32_t, "Integer")
ZM_FIXED(8, true, std::int64_t, "Int64")
ZM_FIXED(1, false, std::uint8_t, "Byte")
ZM_FIXED(2, false, std::uint16_t, "Word")
ZM_FIXED(4, false, std::uint32_t, "Cardinal")
ZM_FIXED(8, false, std::uint64_t, "UInt64")
#undef ZM_FIXED

/// The integer of the fixed widths that T is; long and long long may be one.
template <class T>
using TSameInteger = typename TFixedInteger<sizeof(T), std::is_signed_v<T>>::TInteger;

inline String InSystem(StringView Name) { return String(u"System.").append(Name); }

template <class T>
requires(IsNumberType<T>&& std::is_same_v<T, TSameInteger<T>>) struct TDescriptor<T> {
  static const TRttiType* Make() {
    constexpr StringView name = TFixedInteger<sizeof(T), std::is_signed_v<T>>::Name;
    return new TRttiOrdinalType(name, InSystem(name), sizeof(T) == 8 ? tkInt64 : tkInteger, StorageOf<T>(),
                                std::is_signed_v<T>);
  }
};

template <class T>
requires(IsNumberType<T> && !std::is_same_v<T, TSameInteger<T>>) struct TReflectable<T> : std::true_type {
};
template <class T>
requires(IsNumberType<T> && !std::is_same_v<T, TSameInteger<T>>) struct TAccess<T> {
  using TSame = TAccess<TSameInteger<T>>;
  static const TRttiType* Type() { return TSame::Type(); }
  static TValue Get(const T& Value) { return TSame::Get(static_cast<TSameInteger<T>>(Value)); }
  static TValue View(T& Value) { return Get(Value); }
  static bool Set(T& Target, const TValue& Value) {
    TSameInteger<T> same{};
    if (!TSame::Set(same, Value)) return false;
    Target = static_cast<T>(same);
    return true;
  }
};

template <>
struct TDescriptor<bool> {
  static const TRttiType* Make();
};

template <class T>
struct TFloatNames;
#define ZM_FLOAT(Type, Text, Float)                \
  template <>                                      \
  struct TFloatNames<Type> {                       \
    static constexpr StringView Name = u"" Text;   \
    static constexpr TFloatType FloatType = Float; \
  };
ZM_FLOAT(float, "Single", ftSingle)
ZM_FLOAT(double, "Double", ftDouble)
ZM_FLOAT(Extended, "Extended", ftExtended)
ZM_FLOAT(Currency, "Currency", ftCurrency)
ZM_FLOAT(TDate, "TDate", ftDate)
ZM_FLOAT(TTime, "TTime", ftTime)
ZM_FLOAT(TDateTime, "TDateTime", ftDateTime)
ZM_FLOAT(TZmUTCDate, "TZmUTCDate", ftDate)
ZM_FLOAT(TZmUTCTime, "TZmUTCTime", ftTime)
ZM_FLOAT(TZmUTCDateTime, "TZmUTCDateTime", ftDateTime)
#undef ZM_FLOAT

template <class T>
requires requires { TFloatNames<T>::Name; }
struct TDescriptor<T> {
  static const TRttiType* Make() {
    using TNames = TFloatNames<T>;
    return new TRttiFloatType(TNames::Name, InSystem(TNames::Name), StorageOf<T>(), TNames::FloatType);
  }
};

/// A text kept as T, which Read turns into a String and Write takes from one.
template <class T, String (*Read)(const T&), bool (*Write)(T&, StringView)>
const TRttiType* MakeTextType(StringView Name, TTypeKind Kind) {
  return new TRttiTextType(
      Name, InSystem(Name), Kind, StorageOf<T>(), [](const void* Data) { return Read(*static_cast<const T*>(Data)); },
      [](void* Data, StringView Text) { return Write(*static_cast<T*>(Data), Text); });
}

#define ZM_MADE_ELSEWHERE(Type)     \
  template <>                       \
  struct TDescriptor<Type> {        \
    static const TRttiType* Make(); \
  };
ZM_MADE_ELSEWHERE(char)
ZM_MADE_ELSEWHERE(char16_t)
ZM_MADE_ELSEWHERE(std::string)
ZM_MADE_ELSEWHERE(String)
ZM_MADE_ELSEWHERE(Variant)
ZM_MADE_ELSEWHERE(TValue)
ZM_MADE_ELSEWHERE(void*)
ZM_MADE_ELSEWHERE(const TClass*)
#undef ZM_MADE_ELSEWHERE

template <class E>
const TRttiEnumerationType* MakeEnumeration();

template <class E>
requires(std::is_enum_v<E> && (HasMacroDescription<E> || HasOwnDescription<E>)) struct TDescriptor<E> {
  static const TRttiType* Make() { return MakeEnumeration<E>(); }
};

template <class E>
requires std::is_enum_v<E>
struct TDescriptor<TSet<E>> {
  static const TRttiType* Make() {
    const auto* element = static_cast<const TRttiEnumerationType*>(TAccess<E>::Type());
    String name = u"TSet<" + element->GetName() + u">";
    if constexpr (requires { ZmSetName(TTag<TSet<E>>()); }) name = TTypeNames(ZmSetName(TTag<TSet<E>>())).Name;
    const String& qualified = element->GetQualifiedName();  // the set stands in the namespace of its enumeration
    const String unit = qualified.substr(0, qualified.size() - element->GetName().size());
    return new TRttiSetType(name, unit + name, StorageOf<TSet<E>>(), element);
  }
};
template <class E>
struct TReflectable<TSet<E>> : TReflectable<E> {};

/// A pointer that no description stands behind.
template <class T>
requires(!std::is_class_v<T> && !std::is_void_v<T>) struct TAccess<T*> {
  static const TRttiType* Type() { return DirectType<void*>(); }
  static TValue Get(T* const& Value) { return TAccess<void*>::Get(Value); }
  static TValue View(T*& Value) { return Get(Value); }
  static bool Set(T*& Target, const TValue& Value) {
    void* pointer = nullptr;
    if (!TAccess<void*>::Set(pointer, Value)) return false;
    Target = static_cast<T*>(pointer);
    return true;
  }
};

template <class C>
const TRttiInstanceType* InstanceType();

/// The object at the place that members are reached from.
template <class C>
C* FromInstance(void* Instance) {
  if constexpr (ObjectClass<C>)
    return static_cast<C*>(static_cast<TObject*>(Instance));
  else
    return static_cast<C*>(Instance);
}

template <class C>
requires(std::is_class_v<C> && !std::is_const_v<C>) struct TAccess<C*> {
  static const TRttiType* Type() { return InstanceType<C>(); }
  static TValue Get(C* const& Value) { return TValue::Trivial(InstanceAddress(Value), Type()); }
  static TValue View(C*& Value) { return Get(Value); }
  static bool Set(C*& Target, const TValue& Value) {
    const TRttiType* const type = Type();
    void* instance = nullptr;
    if (Value.GetTypeInfo() == type)
      instance = *static_cast<void* const*>(Value.GetReferenceToRawData());
    else if (!type->Convert(&instance, Value))
      return false;
    Target = FromInstance<C>(instance);
    return true;
  }
};

/// An owning pointer: an object that is stored in it is taken over.
template <class P>
struct TOwningAccess {
  using TElement = typename P::element_type;
  static const TRttiType* Type() { return InstanceType<TElement>(); }
  static TValue Get(const P& Value) { return TAccess<TElement*>::Get(Value.get()); }
  static TValue View(P& Value) { return Get(Value); }
  static bool Set(P& Target, const TValue& Value) {
    TElement* object = nullptr;
    if (!TAccess<TElement*>::Set(object, Value)) return false;
    if (object == Target.get()) return true;
    if constexpr (ObjectClass<TElement> && std::is_same_v<P, std::shared_ptr<TElement>>)
      Target.reset(object, TFreeObject());  // an object ends by Free
    else
      Target.reset(object);
    return true;
  }
};
template <class C, class D>
struct TAccess<std::unique_ptr<C, D>> : TOwningAccess<std::unique_ptr<C, D>> {};
template <class C>
struct TAccess<std::shared_ptr<C>> : TOwningAccess<std::shared_ptr<C>> {};

/// An object that is part of another one: it cannot be replaced.
template <ObjectClass C>
struct TAccess<C> {
  static const TRttiType* Type() { return InstanceType<C>(); }
  static TValue Get(const C& Value) { return TAccess<C*>::Get(const_cast<C*>(&Value)); }
  static TValue View(C& Value) { return Get(Value); }
  static bool Set(C& Target, const TValue& Value) {
    C* object = nullptr;
    return TAccess<C*>::Set(object, Value) && object == &Target;
  }
};

template <class T>
struct TAccess<std::optional<T>> {
  static const TRttiType* Type() { return TAccess<T>::Type(); }
  static TValue Get(const std::optional<T>& Value) { return Value ? TAccess<T>::Get(*Value) : TValue(); }
  static TValue View(std::optional<T>& Value) { return Value ? TAccess<T>::View(*Value) : TValue(); }
  static bool Set(std::optional<T>& Target, const TValue& Value) {
    if (HoldsNothing(Value)) {
      Target.reset();
      return true;
    }
    T value{};
    if (!TAccess<T>::Set(value, Value)) return false;
    Target = std::move(value);
    return true;
  }
};

template <class I>
struct TAccess<TZmIntf<I>> {
  using THandle = TZmIntf<IZmInterface>;
  static const TRttiType* Type() {
    static const TRttiType* const type = Publish(Make());
    return type;
  }
  static TValue Get(const TZmIntf<I>& Value) {
    const THandle handle(Value.Get());
    return TValue::Make(&handle, Type());
  }
  static TValue View(TZmIntf<I>& Value) { return Get(Value); }
  static bool Set(TZmIntf<I>& Target, const TValue& Value) {
    THandle handle;
    if (!Convert(&handle, Value)) return false;
    Target = Supports<I>(handle.Get());
    return true;
  }

 private:
  static const TRttiType* Make() {
    const TTypeNames names(RawTypeName<I>());
    return new TRttiInterfaceType(names.Name, names.QualifiedName, StorageOf<THandle>(), &Convert);
  }
  static bool Convert(void* Target, const TValue& Value) {
    if (Value.GetTypeKind() != tkInterface) return false;
    const THandle& source = *static_cast<const THandle*>(Value.GetReferenceToRawData());
    if (source && !Supports<I>(source.Get())) return false;
    *static_cast<THandle*>(Target) = source;
    return true;
  }
};

/// What the two kinds of arrays have in common.
template <class A, class Base>
class TArrayOf : public Base {
 public:
  using TElement = typename A::value_type;

  explicit TArrayOf(TTypeKind Kind, StringView Name, StringView QualifiedName)
      : Base(Name, QualifiedName, Kind, StorageOf<A>()) {}

  const TRttiType* GetElementType() const override { return TAccess<TElement>::Type(); }
  std::size_t GetLength(const void* Data) const override { return static_cast<const A*>(Data)->size(); }
  TValue GetElement(const void* Data, std::size_t Index) const override {
    return TAccess<TElement>::Get((*static_cast<const A*>(Data))[Index]);
  }
  TValue GetElementView(void* Data, std::size_t Index) const override {
    if constexpr (std::is_same_v<A, std::vector<bool>>)
      return GetElement(Data, Index);
    else
      return TAccess<TElement>::View((*static_cast<A*>(Data))[Index]);
  }
  void SetElement(void* Data, std::size_t Index, const TValue& Value) const override {
    auto&& place = (*static_cast<A*>(Data))[Index];
    bool done = false;
    if constexpr (std::is_same_v<A, std::vector<bool>>) {
      bool element = false;
      done = TAccess<bool>::Set(element, Value);
      if (done) place = element;
    } else {
      done = TAccess<TElement>::Set(place, Value);
    }
    if (!done) RaiseInvalidCast(Value.GetTypeInfo(), GetElementType());
  }
};

template <class T, std::size_t N>
struct TDescriptor<std::array<T, N>> {
  static const TRttiType* Make() {
    const TRttiType* element = TAccess<T>::Type();
    const String head = u"array[0.." + IntToStr(static_cast<std::int64_t>(N) - 1) + u"] of ";
    return new TArrayOf<std::array<T, N>, TRttiArrayType>(tkArray, head + element->GetName(),
                                                          head + element->GetQualifiedName());
  }
};

template <class V>
class TVectorType final : public TArrayOf<V, TRttiDynamicArrayType> {
 public:
  using TArrayOf<V, TRttiDynamicArrayType>::TArrayOf;
  void SetLength(void* Data, std::size_t Length) const override {
    V& vector = *static_cast<V*>(Data);
    if (Length > vector.max_size()) RaiseTooLong();
    vector.resize(Length);
  }
};

template <class T, class A>
struct TDescriptor<std::vector<T, A>> {
  static const TRttiType* Make() {
    const TRttiType* element = TAccess<T>::Type();
    return new TVectorType<std::vector<T, A>>(tkDynArray, u"TArray<" + element->GetName() + u">",
                                              u"System.TArray<" + element->GetQualifiedName() + u">");
  }
};

template <class... Args>
std::vector<TRttiParameter> ParametersOf() {
  return {TRttiParameter{String(), &TypeOf<std::remove_cvref_t<Args>>}...};
}

template <class R, class... Args>
struct TDescriptor<std::function<R(Args...)>> {
  static const TRttiType* Make() {
    const TTypeNames names(RawTypeName<R(Args...)>());
    return new TRttiInvokableType(names.Name, names.QualifiedName, StorageOf<std::function<R(Args...)>>(),
                                  ParametersOf<Args...>());
  }
};

}  // namespace detail

template <class T>
const TRttiType* TypeOf() {
  static_assert(detail::IsReflectable<T>, "the type is not described: see ZM_CLASS, ZM_ENUM and Describe");
  return detail::TAccess<std::remove_cv_t<T>>::Type();
}

}  // namespace zm
