#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <typeindex>
#include <unordered_set>
#include <utility>
#include <vector>

#include "zamrit/platform/reflection/AccessDetail.h"

namespace zm::detail {

using TVisited = std::unordered_set<std::type_index>;

/// What a description goes into: the members of Target, reached from a Target through Casts.
struct TStructureBuild {
  TStructureBuild(TStructure& Into, TVisited& Seen) : Target(&Into), Visited(&Seen) {}

  bool IsAncestor() const { return FAncestor; }
  /// Goes on to an ancestor. Returns false where it has been described already.
  bool Enter(const std::type_info& Type) {
    FAncestor = true;
    return Visited->insert(Type).second;
  }

  TStructure* Target;
  TVisited* Visited;
  std::vector<TRttiMember::TCast> Casts;

 private:
  bool FAncestor = false;
};

struct TEnumerationBuild {
  String Name;
  String QualifiedName;
  std::vector<TRttiEnumerationType::TEntry> Entries;
  TRttiObject::TAttributes Attributes;
};

template <class T, class B>
void DescribeBase(const TStructureBuild& Build);

template <class T, class M, class C>
class TFieldOf final : public TRttiField {
 public:
  TFieldOf(StringView Name, std::vector<TCast> Casts, M C::*Member)
      : TRttiField(Name, std::move(Casts)), FMember(Member) {}
  bool IsWritable() const override { return !std::is_const_v<M>; }

 private:
  using TKept = std::remove_cv_t<M>;
  const TRttiType* DataType() const override { return TAccess<TKept>::Type(); }
  TValue Read(void* Holder) const override { return TAccess<TKept>::Get(FromInstance<T>(Holder)->*FMember); }
  TValue View(void* Holder) const override {
    if constexpr (std::is_const_v<M>)
      return Read(Holder);
    else
      return TAccess<TKept>::View(FromInstance<T>(Holder)->*FMember);
  }
  void Write(void* Holder, const TValue& Value) const override {
    if constexpr (std::is_const_v<M>)
      RaiseNotWritable();
    else if (!TAccess<TKept>::Set(FromInstance<T>(Holder)->*FMember, Value))
      RaiseInvalidCast(Value);
  }

  M C::*FMember;
};

/// What a getter's result is kept as: views become texts.
template <class R>
struct TKeptOf {
  using TKept = std::remove_cvref_t<R>;
};
template <class R>
requires std::is_same_v<std::remove_cvref_t<R>, StringView> || std::is_same_v < std::remove_cvref_t<R>,
const char16_t* > struct TKeptOf<R> { using TKept = String; };
template <class R>
requires std::is_same_v<std::remove_cvref_t<R>, std::string_view> || std::is_same_v < std::remove_cvref_t<R>,
const char* > struct TKeptOf<R> { using TKept = std::string; };
template <class R>
using TKept = typename TKeptOf<R>::TKept;

/// The value of a setter without a getter is what its last parameter takes.
template <class S>
struct TSetterValue;
template <class C, class R, class V>
struct TSetterValue<R (C::*)(V)> {
  using TType = TKept<V>;
};
template <class C, class R, class V>
struct TSetterValue<R (C::*)(V) noexcept> {
  using TType = TKept<V>;
};

template <class T, class G, class S>
struct TPropertyValue {
  using TType = TKept<std::invoke_result_t<G, T&>>;
};
template <class T, class S>
struct TPropertyValue<T, std::nullptr_t, S> {
  using TType = typename TSetterValue<S>::TType;
};

template <class T, class G>
inline constexpr bool IsGetter = IsReturnable<std::invoke_result_t<G, T&>>;
template <class T>
inline constexpr bool IsGetter<T, std::nullptr_t> = true;

template <class T, class G, class S>
concept PropertyAccess = IsGetter<T, G> && IsReflectable<typename TPropertyValue<T, G, S>::TType> &&
    (std::is_null_pointer_v<S> || std::is_invocable_v<S, T&, typename TPropertyValue<T, G, S>::TType>);

template <class T, class G, class S>
class TPropertyOf final : public TRttiProperty {
 public:
  TPropertyOf(StringView Name, std::vector<TCast> Casts, G Getter, S Setter)
      : TRttiProperty(Name, std::move(Casts)), FGetter(Getter), FSetter(Setter) {}
  bool IsReadable() const override { return !std::is_null_pointer_v<G>; }
  bool IsWritable() const override { return !std::is_null_pointer_v<S>; }

 private:
  using TData = typename TPropertyValue<T, G, S>::TType;
  const TRttiType* DataType() const override { return TAccess<TData>::Type(); }
  TValue Read(void* Holder) const override {
    if constexpr (std::is_null_pointer_v<G>)
      RaiseNotReadable();
    else if constexpr (std::is_convertible_v<std::invoke_result_t<G, T&>, const TData&>)
      return TAccess<TData>::Get(std::invoke(FGetter, *FromInstance<T>(Holder)));
    else
      return TAccess<TData>::Get(TData(std::invoke(FGetter, *FromInstance<T>(Holder))));
  }
  TValue View(void* Holder) const override {
    if constexpr (IsReference())
      return TAccess<TData>::View(const_cast<TData&>(std::invoke(FGetter, *FromInstance<T>(Holder))));
    else
      return Read(Holder);
  }
  void Write(void* Holder, const TValue& Value) const override {
    if constexpr (std::is_null_pointer_v<S>) {
      RaiseNotWritable();
    } else {
      TData data{};
      if (!TAccess<TData>::Set(data, Value)) RaiseInvalidCast(Value);
      std::invoke(FSetter, *FromInstance<T>(Holder), std::move(data));
    }
  }
  static constexpr bool IsReference() {
    if constexpr (std::is_null_pointer_v<G>)
      return false;
    else
      return std::is_lvalue_reference_v<std::invoke_result_t<G, T&>>;
  }

  G FGetter;
  S FSetter;
};

template <class T, class G, class R, class I, class S>
class TIndexedPropertyOf final : public TRttiIndexedProperty {
 public:
  TIndexedPropertyOf(StringView Name, std::vector<TCast> Casts, G Getter, S Setter)
      : TRttiIndexedProperty(Name, std::move(Casts)), FGetter(Getter), FSetter(Setter) {}
  const TRttiType* GetPropertyType() const override { return TAccess<TKept<R>>::Type(); }
  bool IsWritable() const override { return !std::is_null_pointer_v<S>; }

 private:
  TValue Read(void* Holder, const TValue& Index) const override {
    return TAccess<TKept<R>>::Get(TKept<R>(std::invoke(FGetter, *FromInstance<T>(Holder), Index.AsType<TKept<I>>())));
  }
  void Write(void* Holder, const TValue& Index, const TValue& Value) const override {
    if constexpr (std::is_null_pointer_v<S>)
      RaisePropertyNotWritable(GetName());
    else
      std::invoke(FSetter, *FromInstance<T>(Holder), Index.AsType<TKept<I>>(), Value.AsType<TKept<R>>());
  }

  G FGetter;
  S FSetter;
};

template <class T, class F, class R, class... Args>
class TMethodOf final : public TRttiMethod {
  static_assert(std::is_void_v<R> || IsReturnable<R>, "a method cannot return an owner by value");

 public:
  TMethodOf(StringView Name, std::vector<TCast> Casts, F Address, std::initializer_list<StringView> Names)
      : TRttiMethod(Name, std::move(Casts)), FAddress(Address), FParameters(ParametersOf<TKept<Args>...>()) {
    for (std::size_t i = 0; i < FParameters.size() && i < Names.size(); ++i) FParameters[i].Name = Names.begin()[i];
  }
  const std::vector<TRttiParameter>& GetParameters() const override { return FParameters; }
  const TRttiType* GetReturnType() const override {
    if constexpr (std::is_void_v<R>)
      return nullptr;
    else
      return TAccess<TKept<R>>::Type();
  }

 private:
  TValue Call(void* Holder, std::span<const TValue> Arguments) const override {
    CheckArgumentCount(GetName(), Arguments.size(), sizeof...(Args));
    return Apply(*FromInstance<T>(Holder), Arguments, std::index_sequence_for<Args...>());
  }
  template <std::size_t... Index>
  TValue Apply(T& Holder, [[maybe_unused]] std::span<const TValue> Arguments, std::index_sequence<Index...>) const {
    std::tuple<TKept<Args>...> values{Arguments[Index].template AsType<TKept<Args>>()...};
    if constexpr (std::is_void_v<R>) {
      std::invoke(FAddress, Holder, static_cast<Args&&>(std::get<Index>(values))...);
      return TValue();
    } else {
      return TAccess<TKept<R>>::Get(
          TKept<R>(std::invoke(FAddress, Holder, static_cast<Args&&>(std::get<Index>(values))...)));
    }
  }

  F FAddress;
  std::vector<TRttiParameter> FParameters;
};

}  // namespace zm::detail
