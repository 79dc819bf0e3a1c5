#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>
#include <utility>

#include "zamrit/platform/Interfaces.h"
#include "zamrit/platform/Variant.h"
#include "zamrit/platform/reflection/Rtti.h"

namespace zm {

class TRttiInstanceType;

namespace detail {
template <class T>
struct TAccess;
/// Whether a TValue made of a T stays valid without it.
template <class T>
struct TIsKept;
template <class T>
inline constexpr bool IsKept = TIsKept<T>::value;
}  // namespace detail

/// A value of any type that has a descriptor; From and AsType need zamrit/platform/reflection/Reflection.h. Values of
/// up to 32 bytes are kept in place. A value made by MakeWithoutCopy or a member's GetView refers to foreign storage,
/// and so does its copy: valid as long as that.
class TValue {
 public:
  /// Empty: no type and no value.
  TValue() noexcept : FType(nullptr), FPlace(plTrivial) {}
  TValue(const TValue& Other) {
    if (Other.FPlace <= plReference)
      CopyBytes(Other);
    else
      CopyManaged(Other);
  }
  TValue(TValue&& Other) noexcept {
    if (Other.FPlace != plInline) {
      CopyBytes(Other);
      Other.FPlace = plTrivial;
      Other.FType = nullptr;
    } else {
      MoveInline(Other);
    }
  }
  TValue& operator=(const TValue& Other) {
    if (this != &Other) *this = TValue(Other);
    return *this;
  }
  TValue& operator=(TValue&& Other) noexcept {
    TValue moved(std::move(Other));  // which may be a part of what ends here
    this->~TValue();
    new (this) TValue(std::move(moved));
    return *this;
  }
  ~TValue() {
    if (FPlace > plReference) Destroy();
  }

  /// A value of the descriptor that TypeOf gives for T. A pointer to an object becomes a reference to it, of the
  /// declared class; an optional without a value, and so on, an empty value.
  template <class T>
  static TValue From(const T& Value) {
    static_assert(detail::IsKept<T>, "a value of this type cannot be copied: refer to it by MakeWithoutCopy");
    return detail::TAccess<T>::Get(Value);
  }
  static TValue From(StringView Value);
  static TValue From(const TValue& Value) { return Value; }
  static TValue From(const char16_t* Value) { return From(StringView(Value)); }
  static TValue Empty() { return TValue(); }
  /// A copy of what lies at Data, which is of that type; empty where either is nil. ENotSupportedException where the
  /// type cannot be copied.
  static TValue Make(const void* Data, const TRttiType* Type);
  /// Refers to Data.
  static TValue MakeWithoutCopy(void* Data, const TRttiType* Type) noexcept {
    TValue value;
    value.FType = Type;
    value.FPlace = plReference;
    value.FPointer = Data;
    return value;
  }
  /// A value that refers to what this one holds: valid as long as this one stays as it is.
  TValue GetView() const noexcept { return FType ? MakeWithoutCopy(GetReferenceToRawData(), FType) : TValue(); }
  /// What the Variant holds as a value of its own type; a Variant array stays a Variant; null and unassigned are empty.
  static TValue FromVariant(const Variant& Value);
  /// A number, character, boolean, enumeration or set of that type. EInvalidCast for another type, ERangeError where
  /// the number does not fit.
  static TValue FromOrdinal(const TRttiType* Type, std::int64_t Value);
  /// The object as a reference of its own class, as far as that is described; nil gives a nil reference to TObject.
  static TValue FromObject(TObject* Object);

  /// No value and no type. A nil reference is not empty.
  bool IsEmpty() const { return FType == nullptr; }
  const TRttiType* GetTypeInfo() const { return FType; }
  TTypeKind GetTypeKind() const { return FType ? FType->GetTypeKind() : tkUnknown; }

  /// The value in the storage of its type; writable, also where it is a copy. Valid as long as this value stays as it
  /// is. Nil for an empty value.
  void* GetReferenceToRawData() const {
    return FPlace == plTrivial || FPlace == plInline ? const_cast<std::byte*>(FBytes) : FPointer;
  }
  /// Copies the value over the live value of the same type at Target.
  void ExtractRawData(void* Target) const;

  /// Converts as TRttiType::Convert does, and raises EInvalidCast where that refuses.
  template <class T>
  T AsType() const {
    T result{};
    if (!detail::TAccess<T>::Set(result, *this)) RaiseInvalidCast(TypeOf<T>());
    return result;
  }
  /// The same, saying whether it was done.
  template <class T>
  bool TryAsType(T& Result) const {
    return detail::TAccess<T>::Set(Result, *this);
  }
  /// Converts to a type that is known at run time. Returns false, and leaves Result, where there is no conversion.
  bool TryCast(const TRttiType* Type, TValue& Result) const;

  /// The object, nil for a nil reference. EInvalidCast for what is no reference to a TObject.
  TObject* AsObject() const;
  /// The address that the members of an object, record or array are reached from: the instance of a reference, nil
  /// included, and the value itself of other types.
  void* GetInstance() const;
  /// EInvalidCast for what is no interface.
  TZmIntf<IZmInterface> AsInterface() const;
  const TClass* AsClass() const;
  /// A number, character, boolean, enumeration or set as a number; unsigned 64-bit numbers from 2^63 up come out
  /// negative. EInvalidCast for another type.
  std::int64_t AsOrdinal() const;
  bool TryAsOrdinal(std::int64_t& Value) const;
  /// AsType of these types.
  std::int64_t AsInt64() const;
  double AsDouble() const;
  String AsString() const;
  bool AsBoolean() const;
  /// A number, text, boolean or date as a Variant of its width; a Variant as it stands; an enumeration as its number;
  /// an empty value as null. EInvalidCast for another type.
  Variant AsVariant() const;
  /// The value as a text for people: numbers and texts as they are, "True" and "False", names of enumerations, sets as
  /// "[a,b]", "(class)" and the like for what has no text. Does not raise.
  String ToString() const;

  /// 0 for what is no array.
  std::size_t GetArrayLength() const;
  /// EListError for an index outside the array; EInvalidCast for what is no array.
  TValue GetArrayElement(std::size_t Index) const;
  void SetArrayElement(std::size_t Index, const TValue& Value);
  /// EInvalidCast for what is no dynamic array.
  void SetArrayLength(std::size_t Length);

 private:
  enum TPlace : std::uint8_t { plTrivial, plReference, plInline, plHeap };  // from plInline on there is work at the end
  static constexpr std::size_t InlineSize = 32;
  template <class T>
  friend struct detail::TAccess;

  template <class T>
  static TValue Trivial(const T& Value, const TRttiType* Type) noexcept {
    static_assert(sizeof(T) <= InlineSize && std::is_trivially_copyable_v<T>);
    TValue value;
    value.FType = Type;
    std::memcpy(value.FBytes, &Value, sizeof(T));
    return value;
  }
  template <class T>
  static constexpr bool FitsInline =  // NOLINTNEXTLINE(misc-redundant-expression): not for every T
      sizeof(T) <= InlineSize && alignof(T) <= 16 && std::is_nothrow_move_constructible_v<T>;
  template <class T>
  static TValue Inline(const T& Value, const TRttiType* Type) {
    TValue value;
    new (value.FBytes) T(Value);
    value.FType = Type;
    value.FPlace = plInline;
    return value;
  }
  void CopyBytes(const TValue& Other) noexcept {
    FType = Other.FType;
    FPlace = Other.FPlace;
    std::memcpy(FBytes, Other.FBytes, InlineSize);
  }
  void CopyManaged(const TValue& Other);
  void MoveInline(TValue& Other) noexcept;
  void Destroy() noexcept;
  const void* Data() const { return GetReferenceToRawData(); }
  [[noreturn]] void RaiseInvalidCast(const TRttiType* Type) const;

  union {
    alignas(16) std::byte FBytes[InlineSize];
    void* FPointer;
  };
  const TRttiType* FType;
  TPlace FPlace;
};

}  // namespace zm
