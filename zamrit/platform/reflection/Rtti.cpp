#include "zamrit/platform/reflection/Rtti.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "zamrit/platform/DateTime.h"
#include "zamrit/platform/Numbers.h"
#include "zamrit/platform/reflection/Reflection.h"

namespace zm {

namespace {

/// What a Variant or TValue holds; any other value as it is. It refers to the value.
TValue Unwrapped(const TValue& Value) {
  const TValue* held = &Value;
  while (held->GetTypeInfo() == detail::DirectType<TValue>())
    held = static_cast<const TValue*>(held->GetReferenceToRawData());
  if (held->GetTypeKind() != tkVariant) return held->GetView();
  return TValue::FromVariant(*static_cast<const Variant*>(held->GetReferenceToRawData()));
}

bool IsWholeNumber(TTypeKind Kind) { return Kind == tkInteger || Kind == tkInt64; }

const TRttiOrdinalType& OrdinalType(const TValue& Value) {
  return static_cast<const TRttiOrdinalType&>(*Value.GetTypeInfo());
}

[[noreturn]] void RaiseRange(const TRttiType& Type) {
  throw ERangeError(u"The value does not fit the type \"%s\"!", {Type.GetName()});
}

template <class T>
T Load(const void* Data) {
  T value;
  std::memcpy(&value, Data, sizeof value);
  return value;
}

template <class T>
void Store(void* Data, T Value) {
  std::memcpy(Data, &Value, sizeof Value);
}

}  // namespace

TRttiType::TRttiType(StringView Name, StringView QualifiedName, TTypeKind Kind, const TTypeStorage& Storage)
    : FName(Name), FQualifiedName(QualifiedName), FKind(Kind), FStorage(Storage) {}

std::span<const TRttiField* const> TRttiType::GetFields() const {
  const TRttiStructuredType* structured = AsStructured();
  return structured ? structured->GetStructure().Fields.All() : std::span<const TRttiField* const>();
}

std::span<const TRttiProperty* const> TRttiType::GetProperties() const {
  const TRttiStructuredType* structured = AsStructured();
  return structured ? structured->GetStructure().Properties.All() : std::span<const TRttiProperty* const>();
}

const TRttiField* TRttiType::GetField(StringView Name) const {
  const TRttiStructuredType* structured = AsStructured();
  return structured ? structured->GetStructure().Fields.Find(Name) : nullptr;
}

const TRttiProperty* TRttiType::GetProperty(StringView Name) const {
  const TRttiStructuredType* structured = AsStructured();
  return structured ? structured->GetStructure().Properties.Find(Name) : nullptr;
}

const TRttiIndexedProperty* TRttiType::GetIndexedProperty(StringView Name) const {
  const TRttiStructuredType* structured = AsStructured();
  return structured ? structured->GetStructure().IndexedProperties.Find(Name) : nullptr;
}

const TRttiMethod* TRttiType::GetMethod(StringView Name) const {
  const TRttiStructuredType* structured = AsStructured();
  return structured ? structured->GetStructure().Methods.Find(Name) : nullptr;
}

bool TRttiType::ConvertSame(void* Target, const TValue& Source) const {
  if (Source.GetTypeInfo() != this) {
    const TValue held = Unwrapped(Source);
    return held.GetTypeInfo() == this && ConvertSame(Target, held);
  }
  if (!FStorage.Assign) return false;
  FStorage.Assign(Target, Source.GetReferenceToRawData());
  return true;
}

bool TRttiPlainType::Convert(void* Target, const TValue& Source) const {
  return FConvert ? FConvert(Target, Source) : ConvertSame(Target, Source);
}

std::int64_t TRttiOrdinalType::Read(const void* Data) const {
  switch (GetTypeSize()) {
    case 1:
      return FSigned ? Load<std::int8_t>(Data) : Load<std::uint8_t>(Data);
    case 2:
      return FSigned ? Load<std::int16_t>(Data) : Load<std::uint16_t>(Data);
    case 4:
      return FSigned ? Load<std::int32_t>(Data) : static_cast<std::int64_t>(Load<std::uint32_t>(Data));
    default:
      return Load<std::int64_t>(Data);
  }
}

void TRttiOrdinalType::Write(void* Data, std::int64_t Value) const {
  switch (GetTypeSize()) {
    case 1:
      return Store(Data, static_cast<std::uint8_t>(Value));
    case 2:
      return Store(Data, static_cast<std::uint16_t>(Value));
    case 4:
      return Store(Data, static_cast<std::uint32_t>(Value));
    default:
      return Store(Data, Value);
  }
}

void TRttiOrdinalType::WriteChecked(void* Data, std::int64_t Value, bool Unsigned) const {
  const std::size_t bits = GetTypeSize() * 8;
  bool fits;
  if (bits == 64)
    fits = Value >= 0 || Unsigned != FSigned;  // a negative one is either below 0 or from 2^63 up
  else if (Unsigned && Value < 0)
    fits = false;
  else if (FSigned)
    fits = Value >= -(std::int64_t{1} << (bits - 1)) && Value < std::int64_t{1} << (bits - 1);
  else
    fits = Value >= 0 && Value < std::int64_t{1} << bits;
  if (!fits) RaiseRange(*this);
  Write(Data, Value);
}

bool TRttiOrdinalType::Convert(void* Target, const TValue& Source) const {
  const TValue held = Unwrapped(Source);
  if (held.GetTypeKind() == tkFloat) {
    const auto& type = static_cast<const TRttiFloatType&>(*held.GetTypeInfo());
    const long double number = type.Read(held.GetReferenceToRawData());
    if (!(number == std::trunc(number) && number >= -0x1p63L && number < 0x1p64L)) RaiseRange(*this);
    const bool large = number >= 0x1p63L;
    WriteChecked(
        Target,
        large ? static_cast<std::int64_t>(static_cast<std::uint64_t>(number)) : static_cast<std::int64_t>(number),
        large);
    return true;
  }
  if (!IsWholeNumber(held.GetTypeKind())) return false;
  const TRttiOrdinalType& type = OrdinalType(held);
  WriteChecked(Target, type.Read(held.GetReferenceToRawData()), !type.IsSigned());
  return true;
}

String TRttiEnumerationType::GetEnumName(std::int64_t Value) const {
  for (const TEntry& entry : FEntries)
    if (entry.Value == Value) return entry.Name;
  return IntToStr(Value);
}

bool TRttiEnumerationType::GetEnumValue(StringView Name, std::int64_t& Value) const {
  for (const TEntry& entry : FEntries) {
    if (!SameText(entry.Name, Name)) continue;
    Value = entry.Value;
    return true;
  }
  return false;
}

bool TRttiEnumerationType::Convert(void* Target, const TValue& Source) const { return ConvertSame(Target, Source); }

long double TRttiFloatType::Read(const void* Data) const {
  switch (FFloat) {
    case ftSingle:
      return Load<float>(Data);
    case ftExtended:
      return Load<Extended>(Data);
    case ftCurrency:
      return static_cast<long double>(static_cast<const Currency*>(Data)->GetScaled()) / 10000;
    default:
      return Load<double>(Data);
  }
}

void TRttiFloatType::Write(void* Data, long double Value) const {
  const auto narrow = [&](auto Type) {
    using T = decltype(Type);
    if (std::isfinite(Value) && std::fabs(Value) > std::numeric_limits<T>::max()) RaiseRange(*this);
    Store(Data, static_cast<T>(Value));
  };
  switch (FFloat) {
    case ftSingle:
      return narrow(float());
    case ftExtended:
      return Store(Data, static_cast<Extended>(Value));
    case ftCurrency:
      *static_cast<Currency*>(Data) = Currency(Value);
      return;
    default:
      return narrow(double());
  }
}

bool TRttiFloatType::Convert(void* Target, const TValue& Source) const {
  const TValue held = Unwrapped(Source);
  const void* data = held.GetReferenceToRawData();
  if (held.GetTypeKind() == tkFloat) {
    Write(Target, static_cast<const TRttiFloatType&>(*held.GetTypeInfo()).Read(data));
    return true;
  }
  if (!IsWholeNumber(held.GetTypeKind())) return false;
  const TRttiOrdinalType& type = OrdinalType(held);
  const std::int64_t number = type.Read(data);
  Write(Target, type.IsSigned() ? static_cast<long double>(number)
                                : static_cast<long double>(static_cast<std::uint64_t>(number)));
  return true;
}

bool TRttiTextType::Convert(void* Target, const TValue& Source) const {
  const TValue held = Unwrapped(Source);
  const auto* type = dynamic_cast<const TRttiTextType*>(held.GetTypeInfo());
  return type && Write(Target, type->Read(held.GetReferenceToRawData()));
}

String TRttiSetType::SetToString(std::uint64_t Bits, bool Brackets) const {
  String text;
  for (int i = 0; i < 64; ++i) {
    if ((Bits >> i & 1) == 0) continue;
    if (!text.empty()) text += u',';
    text += FElementType->GetEnumName(i);
  }
  return Brackets ? u"[" + text + u"]" : text;
}

std::uint64_t TRttiSetType::StringToSet(StringView Text) const {
  Text = Trim(Text);
  if (Text.size() >= 2 && Text.front() == u'[' && Text.back() == u']') Text = Trim(Text.substr(1, Text.size() - 2));
  std::uint64_t bits = 0;
  while (!Text.empty()) {
    const std::size_t comma = std::min(Text.find(u','), Text.size());
    const StringView name = Trim(Text.substr(0, comma));
    std::int64_t value = -1;
    if ((!FElementType->GetEnumValue(name, value) && !TryStrToInt64(name, value)) || value < 0 || value > 63)
      throw EConvertError(u"'%s' is not a valid element of the set \"%s\"", {name, GetName()});
    bits |= std::uint64_t{1} << value;
    Text.remove_prefix(std::min(comma + 1, Text.size()));
  }
  return bits;
}

bool TRttiArrayTypeBase::Convert(void* Target, const TValue& Source) const {
  if (Source.GetTypeInfo() == this) return ConvertSame(Target, Source);  // refuses to copy what owns its elements
  const TValue held = Unwrapped(Source);
  if (held.GetTypeInfo() == this) return ConvertSame(Target, held);
  const auto* type = dynamic_cast<const TRttiArrayTypeBase*>(held.GetTypeInfo());
  if (!type || !type->GetStorage().Copy) return false;  // what it holds has owners
  const void* data = held.GetReferenceToRawData();
  std::vector<TValue> elements(type->GetLength(data));
  for (std::size_t i = 0; i < elements.size(); ++i)
    if (!type->GetElement(data, i).TryCast(GetElementType(), elements[i])) return false;
  if (!FitLength(Target, elements.size())) return false;
  for (std::size_t i = 0; i < elements.size(); ++i) SetElement(Target, i, elements[i]);
  return true;
}

TRttiInstanceType::TRttiInstanceType(const detail::TStructure& Structure, const TTypeStorage& Storage,
                                     const TClassOperations& Operations)
    : TRttiStructuredType(Structure, tkClass, Storage), FOperations(Operations), FMadeClass{GetName(), nullptr} {
  if (!FOperations.IsObject) return;
  FClass = FOperations.OwnClass;
  if (FClass) return;
  const TRttiInstanceType* base = GetBaseType();
  FMadeClass.Parent = base ? base->GetMetaclassType() : TObject::StaticClass();
  FClass = &FMadeClass;
}

const TRttiInstanceType* TRttiInstanceType::GetBaseType() const {
  const auto& bases = GetStructure().Bases;
  const TRttiInstanceType* result = nullptr;
  for (const auto& base : bases) {
    const TRttiInstanceType* type = base.Type();
    if (!result || type->FOperations.IsObject) result = type;
  }
  return result;
}

bool TRttiInstanceType::InheritsFrom(const TRttiInstanceType* Other) const {
  if (this == Other) return true;
  for (const auto& base : GetStructure().Bases)
    if (base.Type()->InheritsFrom(Other)) return true;
  return false;
}

void* TRttiInstanceType::CreateInstance(TComponent* Owner) const {
  if (!CanCreate()) throw ENotSupportedException(u"Failed to create an instance of %s!", {GetName()});
  return FOperations.Create(Owner);
}

TZmOwner<TObject> TRttiInstanceType::CreateObject() const {
  if (!FOperations.IsObject) throw ENotSupportedException(u"The type \"%s\" is no class!", {GetName()});
  return TZmOwner<TObject>(static_cast<TObject*>(CreateInstance()));
}

namespace {

/// The way from an instance of From to one of To, along the bases.
bool CastUp(const TRttiInstanceType* From, const TRttiInstanceType* To, void*& Instance) {
  if (From == To) return true;
  for (const auto& base : From->GetStructure().Bases) {
    void* instance = base.Cast(Instance);
    if (!CastUp(base.Type(), To, instance)) continue;
    Instance = instance;
    return true;
  }
  return false;
}

}  // namespace

bool TRttiInstanceType::Convert(void* Target, const TValue& Source) const {
  const TValue held = Unwrapped(Source);
  void*& target = *static_cast<void**>(Target);
  if (held.IsEmpty()) {
    target = nullptr;
    return true;
  }
  if (held.GetTypeKind() != tkClass) return false;
  const auto& type = static_cast<const TRttiInstanceType&>(*held.GetTypeInfo());
  void* instance = held.GetInstance();
  const bool fits = !instance || (FOperations.IsObject && type.FOperations.IsObject
                                      ? FOperations.IsInstance(static_cast<TObject*>(instance))
                                      : CastUp(&type, this, instance));
  if (fits) target = instance;
  return fits;
}

void TRttiDataMember::RaiseNotReadable() const {
  throw EPropertyError(u"The property \"%s\" cannot be read!", {GetName()});
}

void TRttiDataMember::RaiseNotWritable() const { detail::RaisePropertyNotWritable(GetName()); }

void TRttiDataMember::RaiseInvalidCast(const TValue& Value) const {
  throw EInvalidCast(
      u"A value of type \"%s\" cannot be stored in \"%s\" of type \"%s\"!",
      {Value.IsEmpty() ? u"" : StringView(Value.GetTypeInfo()->GetName()), GetName(), DataType()->GetName()});
}

namespace detail {

void RaiseInvalidCast(const TRttiType* From, const TRttiType* To) {
  throw EInvalidCast(u"A value of type \"%s\" does not convert to \"%s\"!",
                     {From ? StringView(From->GetName()) : u"", StringView(To->GetName())});
}

bool HoldsNothing(const TValue& Value) { return Unwrapped(Value).IsEmpty(); }

void RaiseTooLong() { throw EListError(u"The array would be too long!"); }

void RaisePropertyNotWritable(StringView Name) {
  throw EPropertyError(u"The property \"%s\" cannot be written!", {Name});
}

void CheckArgumentCount(StringView Method, std::size_t Given, std::size_t Taken) {
  if (Given != Taken) throw EInvalidCast(u"The method \"%s\" takes %d arguments, not %d!", {Method, Taken, Given});
}

TTypeNames::TTypeNames(std::string_view Raw) {
  std::size_t last = 0;
  for (std::size_t i = 0; i < Raw.size() && Raw[i] != '<' && Raw[i] != '('; ++i) {
    if (Raw.substr(i, 2) == "::") {
      QualifiedName += u'.';
      last = QualifiedName.size();
      ++i;
    } else {
      QualifiedName += static_cast<char16_t>(Raw[i]);
    }
  }
  const std::size_t rest = Raw.find_first_of("<(");
  if (rest != std::string_view::npos) QualifiedName += FromUTF8(Raw.substr(rest));
  Name = QualifiedName.substr(last);
}

namespace {

template <class F>
std::size_t HashUnits(StringView Text, F Fold) {
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (char16_t c : Text) hash = (hash ^ Fold(c)) * 0x100000001B3u;
  return static_cast<std::size_t>(hash);
}

}  // namespace

std::size_t TNameHash::operator()(StringView Name) const {
  for (char16_t c : Name)
    if (c >= 0x80) return HashUnits(FoldCase(Name), [](char16_t Unit) { return Unit; });
  return HashUnits(
      Name, [](char16_t Unit) { return Unit >= u'A' && Unit <= u'Z' ? static_cast<char16_t>(Unit + 32) : Unit; });
}

const TRttiType* TDescriptor<bool>::Make() {
  return new TRttiEnumerationType(u"Boolean", u"System.Boolean", StorageOf<bool>(), false,
                                  {{u"False", 0}, {u"True", 1}});
}

namespace {

String ReadChar(const char& Data) { return FromUTF8(std::string_view(&Data, 1)); }
bool WriteChar(char& Data, StringView Text) {
  if (Text.size() > 1 || (!Text.empty() && Text[0] >= 0x80)) return false;
  Data = Text.empty() ? '\0' : static_cast<char>(Text[0]);
  return true;
}
String ReadWideChar(const char16_t& Data) { return String(1, Data); }
bool WriteWideChar(char16_t& Data, StringView Text) {
  if (Text.size() > 1) return false;
  Data = Text.empty() ? u'\0' : Text[0];
  return true;
}
String ReadUTF8(const std::string& Data) { return FromUTF8(Data); }
bool WriteUTF8(std::string& Data, StringView Text) {
  Data = ToUTF8(Text);
  return true;
}
String ReadText(const String& Data) { return Data; }
bool WriteText(String& Data, StringView Text) {
  Data = Text;
  return true;
}

bool ConvertToVariant(void* Target, const TValue& Source) {
  const TValue held = Unwrapped(Source);
  const TTypeKind kind = held.GetTypeKind();
  if (!held.IsEmpty() && kind != tkVariant && kind != tkFloat && !IsWholeNumber(kind) && kind != tkEnumeration &&
      !dynamic_cast<const TRttiTextType*>(held.GetTypeInfo()))
    return false;
  *static_cast<Variant*>(Target) = Source.GetTypeKind() == tkVariant ? Source.AsVariant() : held.AsVariant();
  return true;
}

bool ConvertToValue(void* Target, const TValue& Source) {
  *static_cast<TValue*>(Target) = Source.GetTypeInfo() == DirectType<TValue>()
                                      ? *static_cast<const TValue*>(Source.GetReferenceToRawData())
                                      : Source;
  return true;
}

}  // namespace

const TRttiType* TDescriptor<char>::Make() { return MakeTextType<char, ReadChar, WriteChar>(u"AnsiChar", tkChar); }
const TRttiType* TDescriptor<char16_t>::Make() {
  return MakeTextType<char16_t, ReadWideChar, WriteWideChar>(u"Char", tkWChar);
}
const TRttiType* TDescriptor<std::string>::Make() {
  return MakeTextType<std::string, ReadUTF8, WriteUTF8>(u"UTF8String", tkLString);
}
const TRttiType* TDescriptor<String>::Make() { return MakeTextType<String, ReadText, WriteText>(u"string", tkUString); }
const TRttiType* TDescriptor<Variant>::Make() {
  return new TRttiPlainType(u"Variant", u"System.Variant", tkVariant, StorageOf<Variant>(), ConvertToVariant);
}
const TRttiType* TDescriptor<TValue>::Make() {
  return new TRttiPlainType(u"TValue", u"System.Rtti.TValue", tkRecord, StorageOf<TValue>(), ConvertToValue);
}
const TRttiType* TDescriptor<void*>::Make() {
  return new TRttiPlainType(u"Pointer", u"System.Pointer", tkPointer, StorageOf<void*>());
}
const TRttiType* TDescriptor<const TClass*>::Make() {
  return new TRttiPlainType(u"TClass", u"System.TClass", tkClassRef, StorageOf<const TClass*>());
}

}  // namespace detail

}  // namespace zm
