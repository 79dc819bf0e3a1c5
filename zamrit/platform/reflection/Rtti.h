#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/Objects.h"
#include "zamrit/platform/Strings.h"

namespace zm {

class TRttiField;
class TRttiIndexedProperty;
class TRttiMethod;
class TRttiProperty;
class TRttiStructuredType;
class TValue;

/// A value is not of the type that is asked for, and does not convert to it.
ZM_EXCEPTION(EInvalidCast, Exception);
/// A member cannot be read or written.
ZM_EXCEPTION(EPropertyError, Exception);

/// What a type is made of. The ordinals are fixed.
enum TTypeKind : std::uint8_t {
  tkUnknown = 0,
  tkInteger = 1,
  tkChar = 2,
  tkEnumeration = 3,
  tkFloat = 4,
  tkString = 5,
  tkSet = 6,
  tkClass = 7,
  tkMethod = 8,
  tkWChar = 9,
  tkLString = 10,
  tkWString = 11,
  tkVariant = 12,
  tkArray = 13,
  tkRecord = 14,
  tkInterface = 15,
  tkInt64 = 16,
  tkDynArray = 17,
  tkUString = 18,
  tkClassRef = 19,
  tkPointer = 20,
  tkMRecord = 22,  ///< a record with members that manage memory
};

/// How far a member can be seen. The order counts.
enum TMemberVisibility : std::uint8_t { mvPrivate, mvProtected, mvPublic, mvPublished };

/// The base of what an application attaches to its types and members.
class TCustomAttribute {
 public:
  virtual ~TCustomAttribute() = default;

 protected:
  TCustomAttribute() = default;
  TCustomAttribute(const TCustomAttribute&) = default;
  TCustomAttribute& operator=(const TCustomAttribute&) = default;
};

/// What has attributes: types and members. All of them live as long as the program.
class TRttiObject {
 public:
  using TAttributes = std::vector<std::unique_ptr<const TCustomAttribute>>;

  TRttiObject() = default;
  TRttiObject(const TRttiObject&) = delete;
  TRttiObject& operator=(const TRttiObject&) = delete;
  virtual ~TRttiObject() = default;

  /// In the order of the description.
  virtual const TAttributes& GetAttributes() const { return FAttributes; }
  /// The first attribute of class A, or nil.
  template <class A>
  const A* GetAttribute() const {
    for (const auto& attribute : GetAttributes())
      if (const A* found = dynamic_cast<const A*>(attribute.get())) return found;
    return nullptr;
  }
  void AddAttribute(std::unique_ptr<const TCustomAttribute> Attribute) { FAttributes.push_back(std::move(Attribute)); }

 private:
  TAttributes FAttributes;
};

/// How values of a type are kept. What a type does not offer is nil.
struct TTypeStorage {
  std::size_t Size = 0;
  std::size_t Alignment = 1;
  bool Trivial = true;                                       ///< copied byte by byte, nothing to destroy
  void (*Create)(void* Target) = nullptr;                    ///< builds the default value
  void (*Copy)(void* Target, const void* Source) = nullptr;  ///< builds a copy
  void (*Move)(void* Target, void* Source) = nullptr;        ///< builds from Source; does not raise; nil where it may
  void (*Assign)(void* Target, const void* Source) = nullptr;
  void (*Destroy)(void* Target) = nullptr;
};

/// The descriptor of a type: one for each C++ type that values can have, for the life of the program. Compare by
/// address.
class TRttiType : public TRttiObject {
 public:
  /// "string", "Integer", "TPoint".
  const String& GetName() const { return FName; }
  /// The name behind that of its unit or namespace: "System.string", "Geometry.TPoint".
  const String& GetQualifiedName() const { return FQualifiedName; }
  TTypeKind GetTypeKind() const { return FKind; }
  const TTypeStorage& GetStorage() const { return FStorage; }
  /// In bytes, as values of this type are kept: a class has the size of a reference.
  std::size_t GetTypeSize() const { return FStorage.Size; }

  /// The members of a class or record, those of its ancestors first; empty for other types.
  std::span<const TRttiField* const> GetFields() const;
  std::span<const TRttiProperty* const> GetProperties() const;
  /// The member of that name, case ignored, or nil. Constant time, no allocation for ASCII names.
  const TRttiField* GetField(StringView Name) const;
  const TRttiProperty* GetProperty(StringView Name) const;
  const TRttiIndexedProperty* GetIndexedProperty(StringView Name) const;
  const TRttiMethod* GetMethod(StringView Name) const;

  /// Converts Source to this type and stores it in Target, a live value of this type. Numbers convert to numbers that
  /// can hold them (else ERangeError), whole numbers to floating ones, texts to texts, objects to classes that they are
  /// of, and what a Variant or TValue holds like the held. Returns false, and leaves Target, where there is no
  /// conversion.
  virtual bool Convert(void* Target, const TValue& Source) const { return ConvertSame(Target, Source); }

  /// Room for what a unit above keeps with each type: set once, then read without a lock.
  mutable std::atomic<const void*> Companion = nullptr;

 protected:
  TRttiType(StringView Name, StringView QualifiedName, TTypeKind Kind, const TTypeStorage& Storage);
  /// Takes values of this very type alone, held or as they are.
  bool ConvertSame(void* Target, const TValue& Source) const;

 private:
  virtual const TRttiStructuredType* AsStructured() const { return nullptr; }

  String FName;
  String FQualifiedName;
  TTypeKind FKind;
  TTypeStorage FStorage;
};

/// The descriptor of T, made at first use: a number, text, date, Variant, enumeration, set, described class or record,
/// pointer to one, or a container of these. Does not compile for what is none of them. Costs a load. Defined in
/// zamrit/platform/reflection/Reflection.h.
template <class T>
const TRttiType* TypeOf();

/// A type without anything of its own: Variant, TValue, pointers and the like.
class TRttiPlainType final : public TRttiType {
 public:
  TRttiPlainType(StringView Name, StringView QualifiedName, TTypeKind Kind, const TTypeStorage& Storage,
                 bool (*ConvertTo)(void*, const TValue&) = nullptr)
      : TRttiType(Name, QualifiedName, Kind, Storage), FConvert(ConvertTo) {}
  bool Convert(void* Target, const TValue& Source) const override;

 private:
  bool (*FConvert)(void*, const TValue&);
};

/// Whole numbers, characters, booleans and enumerations.
class TRttiOrdinalType : public TRttiType {
 public:
  TRttiOrdinalType(StringView Name, StringView QualifiedName, TTypeKind Kind, const TTypeStorage& Storage, bool Signed)
      : TRttiType(Name, QualifiedName, Kind, Storage), FSigned(Signed) {}

  bool IsSigned() const { return FSigned; }
  /// The value at Data; unsigned 64-bit numbers from 2^63 up come out negative.
  std::int64_t Read(const void* Data) const;
  /// Stores the low bytes of Value.
  void Write(void* Data, std::int64_t Value) const;
  /// Stores Value, where Unsigned says that it is to be taken as unsigned. ERangeError where it does not fit.
  void WriteChecked(void* Data, std::int64_t Value, bool Unsigned) const;
  bool Convert(void* Target, const TValue& Source) const override;

 private:
  bool FSigned;
};

/// An enumeration, with gaps and negative values as it has them, or the two booleans.
class TRttiEnumerationType final : public TRttiOrdinalType {
 public:
  struct TEntry {
    String Name;
    std::int64_t Value;
  };
  TRttiEnumerationType(StringView Name, StringView QualifiedName, const TTypeStorage& Storage, bool Signed,
                       std::vector<TEntry> Entries)
      : TRttiOrdinalType(Name, QualifiedName, tkEnumeration, Storage, Signed), FEntries(std::move(Entries)) {}

  /// In the order of the description.
  const std::vector<TEntry>& GetEntries() const { return FEntries; }
  /// The name of a value; the number in decimal where it has none.
  String GetEnumName(std::int64_t Value) const;
  /// The value of a name, case ignored. Returns false where there is none of that name.
  bool GetEnumValue(StringView Name, std::int64_t& Value) const;
  bool Convert(void* Target, const TValue& Source) const override;

 private:
  std::vector<TEntry> FEntries;
};

/// What a floating type means.
enum TFloatType : std::uint8_t { ftSingle, ftDouble, ftExtended, ftCurrency, ftDate, ftTime, ftDateTime };

/// Floating numbers, currency and the date and time types.
class TRttiFloatType final : public TRttiType {
 public:
  TRttiFloatType(StringView Name, StringView QualifiedName, const TTypeStorage& Storage, TFloatType Float)
      : TRttiType(Name, QualifiedName, tkFloat, Storage), FFloat(Float) {}

  TFloatType GetFloatType() const { return FFloat; }
  long double Read(const void* Data) const;
  void Write(void* Data, long double Value) const;
  bool Convert(void* Target, const TValue& Source) const override;

 private:
  TFloatType FFloat;
};

/// Texts and characters in any storage.
class TRttiTextType final : public TRttiType {
 public:
  using TRead = String (*)(const void*);
  using TWrite = bool (*)(void*, StringView);
  TRttiTextType(StringView Name, StringView QualifiedName, TTypeKind Kind, const TTypeStorage& Storage, TRead ReadText,
                TWrite WriteText)
      : TRttiType(Name, QualifiedName, Kind, Storage), FRead(ReadText), FWrite(WriteText) {}

  String Read(const void* Data) const { return FRead(Data); }
  /// Returns false where the text does not fit: a character takes a single one.
  bool Write(void* Data, StringView Text) const { return FWrite(Data, Text); }
  bool Convert(void* Target, const TValue& Source) const override;

 private:
  TRead FRead;
  TWrite FWrite;
};

/// A set of an enumeration whose values lie in 0 to 63.
class TRttiSetType final : public TRttiType {
 public:
  TRttiSetType(StringView Name, StringView QualifiedName, const TTypeStorage& Storage,
               const TRttiEnumerationType* ElementType)
      : TRttiType(Name, QualifiedName, tkSet, Storage), FElementType(ElementType) {}

  const TRttiEnumerationType* GetElementType() const { return FElementType; }
  /// The names of the elements in ascending order, as "[clRed,clBlue]" or without the brackets. Bit n stands for the
  /// value n.
  String SetToString(std::uint64_t Bits, bool Brackets = true) const;
  /// Reads names or numbers between commas, case and blanks around them ignored, with or without brackets.
  /// EConvertError for a name that is none of the enumeration, or whose value is outside 0 to 63.
  std::uint64_t StringToSet(StringView Text) const;

 private:
  const TRttiEnumerationType* FElementType;
};

/// Arrays of any storage.
class TRttiArrayTypeBase : public TRttiType {
 public:
  virtual const TRttiType* GetElementType() const = 0;
  virtual std::size_t GetLength(const void* Data) const = 0;
  /// A copy of the element; it refers to the element where it cannot be copied.
  virtual TValue GetElement(const void* Data, std::size_t Index) const = 0;
  /// A value that refers to the element: valid while the array keeps it. Not offered by every storage: then a copy.
  virtual TValue GetElementView(void* Data, std::size_t Index) const = 0;
  /// EInvalidCast where the value does not convert.
  virtual void SetElement(void* Data, std::size_t Index, const TValue& Value) const = 0;
  bool Convert(void* Target, const TValue& Source) const override;

 protected:
  using TRttiType::TRttiType;

 private:
  virtual bool FitLength(void* Data, std::size_t Length) const = 0;
};

/// An array whose length is part of its type.
class TRttiArrayType : public TRttiArrayTypeBase {
 protected:
  using TRttiArrayTypeBase::TRttiArrayTypeBase;

 private:
  bool FitLength(void* Data, std::size_t Length) const final { return GetLength(Data) == Length; }
};

/// An array whose length changes.
class TRttiDynamicArrayType : public TRttiArrayTypeBase {
 public:
  /// Shortens, or adds default values.
  virtual void SetLength(void* Data, std::size_t Length) const = 0;

 protected:
  using TRttiArrayTypeBase::TRttiArrayTypeBase;

 private:
  bool FitLength(void* Data, std::size_t Length) const final {
    SetLength(Data, Length);
    return true;
  }
};

/// A handle on an interface.
class TRttiInterfaceType final : public TRttiType {
 public:
  using TConvert = bool (*)(void*, const TValue&);
  TRttiInterfaceType(StringView Name, StringView QualifiedName, const TTypeStorage& Storage, TConvert ConvertTo)
      : TRttiType(Name, QualifiedName, tkInterface, Storage), FConvert(ConvertTo) {}
  bool Convert(void* Target, const TValue& Source) const override { return FConvert(Target, Source); }

 private:
  TConvert FConvert;
};

/// A parameter of a method or event. The name is empty where the description gives none.
struct TRttiParameter {
  String Name;
  const TRttiType* (*Type)();

  const TRttiType* ParamType() const { return Type(); }
};

/// The type of an event: what it is called with.
class TRttiInvokableType final : public TRttiType {
 public:
  TRttiInvokableType(StringView Name, StringView QualifiedName, const TTypeStorage& Storage,
                     std::vector<TRttiParameter> Parameters)
      : TRttiType(Name, QualifiedName, tkMethod, Storage), FParameters(std::move(Parameters)) {}
  const std::vector<TRttiParameter>& GetParameters() const { return FParameters; }

 private:
  std::vector<TRttiParameter> FParameters;
};

}  // namespace zm
