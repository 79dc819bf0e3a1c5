#include "zamrit/platform/reflection/Value.h"

#include <new>

#include "zamrit/platform/DateTime.h"
#include "zamrit/platform/Numbers.h"
#include "zamrit/platform/reflection/Reflection.h"

namespace zm {

namespace {

const TRttiArrayTypeBase* ArrayType(const TRttiType* Type) {
  const bool array = Type && (Type->GetTypeKind() == tkArray || Type->GetTypeKind() == tkDynArray);
  return array ? static_cast<const TRttiArrayTypeBase*>(Type) : nullptr;
}

const TRttiArrayTypeBase& NeedArray(const TValue& Value) {
  if (const TRttiArrayTypeBase* type = ArrayType(Value.GetTypeInfo())) return *type;
  throw EInvalidCast(u"The value is no array!");
}

const TRttiArrayTypeBase& NeedElement(const TValue& Value, std::size_t Index) {
  const TRttiArrayTypeBase& type = NeedArray(Value);
  if (Index >= type.GetLength(Value.GetReferenceToRawData()))
    throw EListError(u"List index out of bounds (%d)", {Index});
  return type;
}

template <class T>
const T& Held(const TValue& Value) {
  return *static_cast<const T*>(Value.GetReferenceToRawData());
}

bool IsOrdinal(TTypeKind Kind) { return Kind == tkInteger || Kind == tkInt64 || Kind == tkEnumeration; }

Variant FloatVariant(const TRttiFloatType& Type, const TValue& Value) {
  switch (Type.GetFloatType()) {
    case ftSingle:
      return Held<float>(Value);
    case ftCurrency:
      return Held<Currency>(Value);
    case ftDate:
    case ftTime:
    case ftDateTime:
      return TDateTime(Held<double>(Value));
    default:
      return static_cast<double>(Type.Read(Value.GetReferenceToRawData()));
  }
}

Variant OrdinalVariant(const TRttiOrdinalType& Type, const TValue& Value) {
  const std::int64_t number = Type.Read(Value.GetReferenceToRawData());
  switch (Type.GetTypeSize()) {
    case 1:
      return Type.IsSigned() ? Variant(static_cast<std::int8_t>(number)) : Variant(static_cast<std::uint8_t>(number));
    case 2:
      return Type.IsSigned() ? Variant(static_cast<std::int16_t>(number)) : Variant(static_cast<std::uint16_t>(number));
    case 4:
      return Type.IsSigned() ? Variant(static_cast<std::int32_t>(number)) : Variant(static_cast<std::uint32_t>(number));
    default:
      return Type.IsSigned() ? Variant(number) : Variant(static_cast<std::uint64_t>(number));
  }
}

String FloatText(const TRttiFloatType& Type, const TValue& Value) {
  switch (Type.GetFloatType()) {
    case ftSingle:
    case ftDouble:
      return FloatToStr(static_cast<double>(Type.Read(Value.GetReferenceToRawData())));
    case ftExtended:
      return FloatToStr(Held<Extended>(Value));
    default:
      return VarToStr(FloatVariant(Type, Value));
  }
}

}  // namespace

TValue TValue::From(StringView Value) {
  const String text(Value);
  return Make(&text, TypeOf<String>());
}

TValue TValue::Make(const void* Data, const TRttiType* Type) {
  if (!Data || !Type) return TValue();
  const TTypeStorage& storage = Type->GetStorage();
  if (!storage.Copy) throw ENotSupportedException(u"Values of type \"%s\" cannot be copied!", {Type->GetName()});
  TValue value;
  const bool fits = storage.Size <= InlineSize && storage.Alignment <= 16;
  if (fits && storage.Trivial) {
    std::memcpy(value.FBytes, Data, storage.Size);
  } else if (fits && storage.Move) {
    storage.Copy(value.FBytes, Data);
    value.FPlace = plInline;
  } else {
    void* memory = ::operator new(storage.Size, std::align_val_t(storage.Alignment));
    try {
      storage.Copy(memory, Data);
    } catch (...) {
      ::operator delete(memory, std::align_val_t(storage.Alignment));
      throw;
    }
    value.FPointer = memory;
    value.FPlace = plHeap;
  }
  value.FType = Type;
  return value;
}

void TValue::CopyManaged(const TValue& Other) {
  FType = nullptr;
  FPlace = plTrivial;
  *this = Make(Other.Data(), Other.FType);
}

void TValue::MoveInline(TValue& Other) noexcept {
  FType = Other.FType;
  FPlace = plInline;
  FType->GetStorage().Move(FBytes, Other.FBytes);
  Other.Destroy();
  Other.FType = nullptr;
  Other.FPlace = plTrivial;
}

void TValue::Destroy() noexcept {
  const TTypeStorage& storage = FType->GetStorage();
  void* data = GetReferenceToRawData();
  if (storage.Destroy) storage.Destroy(data);
  if (FPlace == plHeap) ::operator delete(data, std::align_val_t(storage.Alignment));
}

void TValue::RaiseInvalidCast(const TRttiType* Type) const { detail::RaiseInvalidCast(FType, Type); }

TValue TValue::FromVariant(const Variant& Value) {
  switch (VarType(Value)) {
    case varEmpty:
    case varNull:
      return TValue();
    case varSmallint:
      return From(static_cast<std::int16_t>(Value.AsInteger()));
    case varInteger:
      return From(static_cast<std::int32_t>(Value.AsInteger()));
    case varSingle:
      return From(static_cast<float>(Value.AsDouble()));
    case varDouble:
      return From(Value.AsDouble());
    case varCurrency:
      return From(Value.AsCurrency());
    case varDate:
      return From(Value.AsDateTime());
    case varBoolean:
      return From(Value.AsBoolean());
    case varShortInt:
      return From(static_cast<std::int8_t>(Value.AsInteger()));
    case varByte:
      return From(static_cast<std::uint8_t>(Value.AsInteger()));
    case varWord:
      return From(static_cast<std::uint16_t>(Value.AsInteger()));
    case varLongWord:
      return From(static_cast<std::uint32_t>(Value.AsInteger()));
    case varInt64:
      return From(Value.AsInteger());
    case varUInt64:
      return From(Value.AsUInt64());
    case varOleStr:
    case varString:
    case varUString:
      return Make(&Value.TextRef(), TypeOf<String>());
    default:
      return From(Value);
  }
}

TValue TValue::FromOrdinal(const TRttiType* Type, std::int64_t Value) {
  if (!Type) throw EInvalidCast(u"A value needs a type!");
  TValue value;
  const TTypeKind kind = Type->GetTypeKind();
  if (kind == tkSet) {
    std::memcpy(value.FBytes, &Value, sizeof Value);
  } else if (kind == tkChar || kind == tkWChar) {
    if (Value < 0 || Value > (kind == tkChar ? 0xFF : 0xFFFF))
      throw ERangeError(u"The value does not fit the type \"%s\"!", {Type->GetName()});
    std::memcpy(value.FBytes, &Value, sizeof Value);
  } else if (IsOrdinal(kind)) {
    const auto& ordinal = static_cast<const TRttiOrdinalType&>(*Type);
    if (Type == TypeOf<bool>() && (Value < 0 || Value > 1))
      throw ERangeError(u"The value does not fit the type \"%s\"!", {Type->GetName()});
    ordinal.WriteChecked(value.FBytes, Value, ordinal.GetTypeSize() == 8 && !ordinal.IsSigned());
  } else {
    throw EInvalidCast(u"The type \"%s\" has no ordinal values!", {Type->GetName()});
  }
  value.FType = Type;
  return value;
}

TValue TValue::FromObject(TObject* Object) {
  const TRttiInstanceType* type = TypeOfObject(Object);
  return Trivial(static_cast<void*>(Object), type ? type : TypeOf<TObject*>());
}

void TValue::ExtractRawData(void* Target) const {
  if (!FType) return;
  const TTypeStorage& storage = FType->GetStorage();
  if (!storage.Assign) throw ENotSupportedException(u"Values of type \"%s\" cannot be copied!", {FType->GetName()});
  storage.Assign(Target, Data());
}

bool TValue::TryCast(const TRttiType* Type, TValue& Result) const {
  if (Type == FType) {
    Result = *this;
    return true;
  }
  const TTypeStorage& storage = Type->GetStorage();
  if (!storage.Create || !storage.Copy) return false;
  alignas(16) std::byte place[256];
  const bool fits = storage.Size <= sizeof place && storage.Alignment <= 16;
  void* memory = fits ? place : ::operator new(storage.Size, std::align_val_t(storage.Alignment));
  struct TGuard {
    const TTypeStorage& Storage;
    void* Memory;
    bool OnHeap;
    bool Live = false;
    ~TGuard() {
      if (Live && Storage.Destroy) Storage.Destroy(Memory);
      if (OnHeap) ::operator delete(Memory, std::align_val_t(Storage.Alignment));
    }
  } guard{storage, memory, !fits};
  storage.Create(memory);
  guard.Live = true;
  if (!Type->Convert(memory, *this)) return false;
  Result = Make(memory, Type);
  return true;
}

TObject* TValue::AsObject() const {
  if (GetTypeKind() == tkClass && static_cast<const TRttiInstanceType*>(FType)->GetMetaclassType())
    return static_cast<TObject*>(GetInstance());
  RaiseInvalidCast(TypeOf<TObject*>());
}

void* TValue::GetInstance() const { return GetTypeKind() == tkClass ? Held<void*>(*this) : GetReferenceToRawData(); }

TZmIntf<IZmInterface> TValue::AsInterface() const {
  if (GetTypeKind() != tkInterface) RaiseInvalidCast(TypeOf<TZmIntf<IZmInterface>>());
  return Held<TZmIntf<IZmInterface>>(*this);
}

const TClass* TValue::AsClass() const { return AsType<const TClass*>(); }

bool TValue::TryAsOrdinal(std::int64_t& Value) const {
  switch (GetTypeKind()) {
    case tkInteger:
    case tkInt64:
    case tkEnumeration:
      Value = static_cast<const TRttiOrdinalType*>(FType)->Read(Data());
      return true;
    case tkSet:
      Value = Held<std::int64_t>(*this);
      return true;
    case tkChar:
      Value = Held<unsigned char>(*this);
      return true;
    case tkWChar:
      Value = Held<char16_t>(*this);
      return true;
    default:
      return false;
  }
}

std::int64_t TValue::AsOrdinal() const {
  std::int64_t value = 0;
  if (!TryAsOrdinal(value)) throw EInvalidCast(u"The value is no ordinal!");
  return value;
}

std::int64_t TValue::AsInt64() const { return AsType<std::int64_t>(); }
double TValue::AsDouble() const { return AsType<double>(); }
String TValue::AsString() const { return AsType<String>(); }
bool TValue::AsBoolean() const { return AsType<bool>(); }

Variant TValue::AsVariant() const {
  switch (GetTypeKind()) {
    case tkUnknown:
      return Null();
    case tkVariant:
      return Held<Variant>(*this);
    case tkFloat:
      return FloatVariant(static_cast<const TRttiFloatType&>(*FType), *this);
    case tkEnumeration:
      if (FType == TypeOf<bool>()) return Held<bool>(*this);
      return OrdinalVariant(static_cast<const TRttiOrdinalType&>(*FType), *this);
    case tkInteger:
    case tkInt64:
      return OrdinalVariant(static_cast<const TRttiOrdinalType&>(*FType), *this);
    default:
      if (const auto* text = dynamic_cast<const TRttiTextType*>(FType)) return Variant(text->Read(Data()));
      if (FType == TypeOf<TValue>()) return Held<TValue>(*this).AsVariant();
      RaiseInvalidCast(TypeOf<Variant>());
  }
}

String TValue::ToString() const {
  switch (GetTypeKind()) {
    case tkUnknown:
      return u"(empty)";
    case tkFloat:
      return FloatText(static_cast<const TRttiFloatType&>(*FType), *this);
    case tkEnumeration:
      return static_cast<const TRttiEnumerationType*>(FType)->GetEnumName(AsOrdinal());
    case tkSet:
      return static_cast<const TRttiSetType*>(FType)->SetToString(Held<std::uint64_t>(*this));
    case tkInteger:
    case tkInt64:
      return VarToStr(OrdinalVariant(static_cast<const TRttiOrdinalType&>(*FType), *this));
    case tkVariant:
      return VarIsArray(Held<Variant>(*this)) ? String(u"(array)") : VarToStr(Held<Variant>(*this));
    case tkArray:
    case tkDynArray:
      return u"(array)";
    case tkClass:
      return Held<void*>(*this) ? u"(" + FType->GetName() + u")" : String(u"(nil)");
    default:
      if (const auto* text = dynamic_cast<const TRttiTextType*>(FType)) return text->Read(Data());
      return u"(" + FType->GetName() + u")";
  }
}

std::size_t TValue::GetArrayLength() const {
  const TRttiArrayTypeBase* type = ArrayType(FType);
  return type ? type->GetLength(Data()) : 0;
}

TValue TValue::GetArrayElement(std::size_t Index) const { return NeedElement(*this, Index).GetElement(Data(), Index); }

void TValue::SetArrayElement(std::size_t Index, const TValue& Value) {
  NeedElement(*this, Index).SetElement(GetReferenceToRawData(), Index, Value);
}

void TValue::SetArrayLength(std::size_t Length) {
  if (GetTypeKind() != tkDynArray) throw EInvalidCast(u"The value is no dynamic array!");
  static_cast<const TRttiDynamicArrayType*>(FType)->SetLength(GetReferenceToRawData(), Length);
}

}  // namespace zm
