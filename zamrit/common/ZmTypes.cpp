#include "zamrit/common/ZmTypes.h"

#include <array>
#include <deque>
#include <iterator>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>
#include <utility>
#include <vector>

#include "zamrit/common/TextTypes.h"
#include "zamrit/platform/reflection/Reflection.h"

namespace zm {

namespace {

TZmTypeKind FloatKind(const TRttiFloatType& Type) {
  switch (Type.GetFloatType()) {
    case ftSingle:
      return rtkSingle;
    case ftDouble:
      return rtkDouble;
    case ftDate:
      return rtkDate;
    case ftTime:
      return rtkTime;
    case ftDateTime:
      return rtkDateTime;
    default:
      return rtkExtended;
  }
}

TZmTypeKind NumberKind(const TRttiOrdinalType& Type) {
  switch (Type.GetTypeSize()) {
    case 1:
      return Type.IsSigned() ? rtkShortInt : rtkByte;
    case 2:
      return Type.IsSigned() ? rtkSmallInt : rtkWord;
    case 4:
      return Type.IsSigned() ? rtkInteger : rtkLongWord;
    default:
      return Type.IsSigned() ? rtkInt64 : rtkUInt64;
  }
}

TZmTypeKind KindOf(const TRttiType& Type) {
  switch (Type.GetTypeKind()) {
    case tkInteger:
    case tkInt64:
      return NumberKind(static_cast<const TRttiOrdinalType&>(Type));
    case tkFloat:
      return FloatKind(static_cast<const TRttiFloatType&>(Type));
    case tkEnumeration:
      return &Type == TypeOf<bool>() ? rtkBoolean : rtkEnumeration;
    case tkChar:
      return rtkChar;
    case tkWChar:
      return rtkWideChar;
    case tkString:
      return rtkShortString;
    case tkLString:
      return rtkAnsiString;
    case tkWString:
      return rtkWideString;
    case tkUString:
      return rtkString;
    case tkSet:
      return rtkSet;
    case tkVariant:
      return rtkVariant;
    case tkArray:
      return rtkArray;
    case tkDynArray:
      return rtkDynArray;
    case tkRecord:
    case tkMRecord:
      return rtkRecord;
    case tkClass:
      return rtkClass;
    case tkInterface:
      return rtkInterface;
    case tkPointer:
      return rtkPointer;
    case tkMethod:
      return rtkMethod;
    case tkClassRef:
      return rtkClassRef;
    default:
      return rtkUnknown;
  }
}

/// The schema's own name for values of a kind; empty where the type goes by its name.
StringView BuiltInSchemaName(TZmTypeKind Kind) {
  static constexpr StringView names[] = {u"",       u"unsignedByte", u"unsignedShort", u"unsignedInt", u"unsignedLong",
                                         u"byte",   u"short",        u"int",           u"long",        u"float",
                                         u"double", u"decimal",      u"string",        u"string",      u"string",
                                         u"string", u"string",       u"string",        u"boolean",     u"",
                                         u"",       u"date",         u"time",          u"dateTime",    u"anyType"};
  return Kind < std::size(names) ? names[Kind] : StringView();
}

struct TSchemaType {
  TZmSchemaDataType Type;
  StringView Name;
  TZmTypeKind Kind;
};

constexpr TSchemaType cSchemaTypes[] = {
    {sdtAny, u"any", rtkUnknown},
    {sdtObject, u"object", rtkClass},
    {sdtArray, u"array", rtkDynArray},
    {sdtByte, u"byte", rtkShortInt},
    {sdtShort, u"short", rtkSmallInt},
    {sdtInt, u"int", rtkInteger},
    {sdtLong, u"long", rtkInt64},
    {sdtUnsignedByte, u"unsignedByte", rtkByte},
    {sdtUnsignedShort, u"unsignedShort", rtkWord},
    {sdtUnsignedInt, u"unsignedInt", rtkLongWord},
    {sdtUnsignedLong, u"unsignedLong", rtkUInt64},
    {sdtFloat, u"float", rtkSingle},
    {sdtDouble, u"double", rtkDouble},
    {sdtDecimal, u"decimal", rtkExtended},
    {sdtString, u"string", rtkString},
    {sdtBase64Binary, u"base64Binary", rtkString},
    {sdtHexBinary, u"hexBinary", rtkString},
    {sdtBoolean, u"boolean", rtkBoolean},
    {sdtDate, u"date", rtkDate},
    {sdtTime, u"time", rtkTime},
    {sdtDateTime, u"dateTime", rtkDateTime},
    {sdtDuration, u"duration", rtkString},
};

bool IsNameUnit(char16_t Unit) {
  return Unit >= 0x80 || (Unit >= u'0' && Unit <= u'9') || (Unit >= u'a' && Unit <= u'z') ||
         (Unit >= u'A' && Unit <= u'Z') || Unit == u'_' || Unit == u'-' || Unit == u'.';
}

String FitForXML(StringView Name) {
  String text(Name);
  for (char16_t& unit : text)
    if (!IsNameUnit(unit)) unit = u'_';
  return text;
}

String ArraySchemaName(const TRttiType& Type) {
  const TRttiType* element = static_cast<const TRttiArrayTypeBase&>(Type).GetElementType();
  String name = TZmTypes::GetTypeInfo(element)->SchemaName(u"");
  if (!name.empty() && name[0] >= u'a' && name[0] <= u'z') name[0] = static_cast<char16_t>(name[0] - 32);
  return u"ArrayOf" + name;
}

struct TAlias {
  const TRttiType* (*Type)();
  StringView Name;
};

constexpr TAlias cAliases[] = {
    {&TypeOf<std::int8_t>, u"Int8"},
    {&TypeOf<std::int16_t>, u"Int16"},
    {&TypeOf<std::int32_t>, u"Int32"},
    {&TypeOf<std::int32_t>, u"LongInt"},
    {&TypeOf<std::int64_t>, u"NativeInt"},
    {&TypeOf<std::int64_t>, u"LargeInt"},
    {&TypeOf<std::uint8_t>, u"UInt8"},
    {&TypeOf<std::uint16_t>, u"UInt16"},
    {&TypeOf<std::uint32_t>, u"UInt32"},
    {&TypeOf<std::uint32_t>, u"LongWord"},
    {&TypeOf<std::uint64_t>, u"NativeUInt"},
    {&TypeOf<double>, u"Real"},
    {&TypeOf<bool>, u"WordBool"},
    {&TypeOf<String>, u"UnicodeString"},
    {&TypeOf<String>, u"WideString"},
    {&TypeOf<std::string>, u"AnsiString"},
    {&TypeOf<std::string>, u"RawByteString"},
    {&TypeOf<char16_t>, u"WideChar"},
};

constexpr TAlias cSchemaAliases[] = {
    {&TypeOf<std::int64_t>, u"integer"},
    {&TypeOf<std::int64_t>, u"nonPositiveInteger"},
    {&TypeOf<std::int64_t>, u"negativeInteger"},
    {&TypeOf<std::uint64_t>, u"nonNegativeInteger"},
    {&TypeOf<std::uint64_t>, u"positiveInteger"},
    {&TypeOf<String>, u"normalizedString"},
    {&TypeOf<String>, u"token"},
    {&TypeOf<String>, u"anyURI"},
    {&TypeOf<Variant>, u"anySimpleType"},
};

}  // namespace

class TZmTypes::TDirectory {
 public:
  TDirectory() {
    for (const auto& [type, name, kind] : cSchemaTypes) {
      const String text(name);
      FVirtual[type] = &FInfos.emplace_back(TZmTypeInfo(nullptr, text, u"xsd." + text, kind));
    }
  }

  const TZmTypeInfo* Virtual(TZmSchemaDataType Type) const { return FVirtual[Type]; }

  const TZmTypeInfo* Info(const TRttiType* Type) {
    if (const void* known = Type->Companion.load(std::memory_order_acquire))
      return static_cast<const TZmTypeInfo*>(known);
    const std::unique_lock lock(FMutex);
    return Make(Type);
  }

  const TZmTypeInfo* Find(StringView Name, TZmTypeNameType NameType) {
    TakeNew();
    const std::shared_lock lock(FMutex);
    auto found = FNames[NameType].find(Name);
    return found == FNames[NameType].end() ? nullptr : found->second;
  }

  void AddAlias(const TRttiType* Type, StringView Name) {
    const TZmTypeInfo* info = Info(Type);
    TakeNew();
    const std::unique_lock lock(FMutex);
    for (auto& names : FNames) names.emplace(Name, info);
  }

  void AddPair(const TZmTypeInfo* Type, TZmSerializeFormat Format, const void* Pair, bool BuiltIn) {
    const std::unique_lock lock(FMutex);
    auto& pairs = FPairs[Type][Format];
    pairs.insert(BuiltIn ? pairs.end() : pairs.begin(), Pair);
  }

  /// Whether the type has pairs of its own; Pair is the one that Choice counts to, or nil.
  bool FindPair(const TZmTypeInfo* Type, TZmSerializeFormat Format, std::size_t Choice, const void*& Pair) {
    const std::shared_lock lock(FMutex);
    auto found = FPairs.find(Type);
    if (found == FPairs.end() || found->second[Format].empty()) return false;
    const auto& pairs = found->second[Format];
    Pair = Choice < pairs.size() ? pairs[Choice] : nullptr;
    return true;
  }

 private:
  /// Under the lock.
  const TZmTypeInfo* Make(const TRttiType* Type) {
    if (const void* known = Type->Companion.load(std::memory_order_relaxed))
      return static_cast<const TZmTypeInfo*>(known);
    const TZmTypeInfo& made =
        FInfos.emplace_back(TZmTypeInfo(Type, Type->GetName(), Type->GetQualifiedName(), KindOf(*Type)));
    Type->Companion.store(&made, std::memory_order_release);
    return &made;
  }

  /// Enters the names of types that have been made since.
  void TakeNew() {
    const std::lock_guard taking(FTaking);
    if (FTaken == 0) TakeBuiltIn();
    while (const TRttiType* type = detail::TypeAt(FTaken)) {
      ++FTaken;
      const TZmTypeInfo* info = Info(type);
      Enter(tntName, info->Name, info);
      Enter(tntQualifiedName, info->QualifiedName, info);
      Enter(tntSchemaName, info->SchemaName(u""), info);
      for (const TRttiField* field : type->GetFields()) field->GetFieldType();  // makes it, and so it comes up here too
      for (const TRttiProperty* property : type->GetProperties()) property->GetPropertyType();
    }
  }

  /// The fixed part of the directory, before anything that an application adds.
  void TakeBuiltIn() {
    const TRttiType* const plain[] = {
        TypeOf<std::uint8_t>(), TypeOf<std::uint16_t>(), TypeOf<std::uint32_t>(),  TypeOf<std::uint64_t>(),
        TypeOf<std::int8_t>(),  TypeOf<std::int16_t>(),  TypeOf<std::int32_t>(),   TypeOf<std::int64_t>(),
        TypeOf<float>(),        TypeOf<double>(),        TypeOf<Extended>(),       TypeOf<Currency>(),
        TypeOf<String>(),       TypeOf<std::string>(),   TypeOf<char>(),           TypeOf<char16_t>(),
        TypeOf<bool>(),         TypeOf<TDate>(),         TypeOf<TTime>(),          TypeOf<TDateTime>(),
        TypeOf<TZmUTCDate>(),   TypeOf<TZmUTCTime>(),    TypeOf<TZmUTCDateTime>(), TypeOf<ZmXMLString>(),
        TypeOf<ZmJSONString>(), TypeOf<Variant>(),       TypeOf<TValue>(),         TypeOf<TObject*>()};
    for (const TRttiType* type : plain) {
      const TZmTypeInfo* info = Info(type);
      Enter(tntName, info->Name, info);
      Enter(tntQualifiedName, info->QualifiedName, info);
      Enter(tntSchemaName, info->SchemaName(u""), info);
    }
    for (const auto& [type, name] : cAliases) {
      Enter(tntName, name, Info(type()));
      Enter(tntQualifiedName, detail::InSystem(name), Info(type()));
    }
    for (const auto& [type, name] : cSchemaAliases) Enter(tntSchemaName, name, Info(type()));
  }

  /// The first of a name keeps it; but what stands behind a pointer comes before the same struct as a record.
  void Enter(TZmTypeNameType NameType, StringView Name, const TZmTypeInfo* Info) {
    const std::unique_lock lock(FMutex);
    const auto [entry, isNew] = FNames[NameType].emplace(Name, Info);
    if (!isNew && entry->second->TypeKind == rtkRecord && Info->TypeKind == rtkClass) entry->second = Info;
  }

  std::shared_mutex FMutex;
  std::deque<TZmTypeInfo> FInfos;
  std::array<const TZmTypeInfo*, std::size(cSchemaTypes)> FVirtual;
  std::array<detail::TByName<const TZmTypeInfo*>, 3> FNames;
  std::unordered_map<const TZmTypeInfo*, std::array<std::vector<const void*>, dsfCSV + 1>> FPairs;

  std::recursive_mutex FTaking;  // a description may look types up
  std::size_t FTaken = 0;
};

TZmTypes::TDirectory& TZmTypes::Directory() {
  static auto* const directory = new TDirectory;
  return *directory;
}

TZmMainTypeKind TZmTypeInfo::GetMainTypeKind() const { return TZmTypes::ToMainTypeKind(TypeKind); }

bool TZmTypeInfo::GetIsSimpleType() const { return TypeKind >= rtkByte && TypeKind <= rtkVariant; }

String TZmTypeInfo::SchemaName(StringView Prefix) const {
  if (const StringView name = RttiType ? BuiltInSchemaName(TypeKind) : StringView(Name); !name.empty())
    return Prefix.empty() ? String(name) : String(Prefix).append(u":").append(name);
  const TTypeKind kind = GetKind();
  return kind == tkArray || kind == tkDynArray ? ArraySchemaName(*RttiType) : FitForXML(Name);
}

const TZmTypeInfo* TZmTypeInfo::VirtualType(TZmSchemaDataType Type) {
  return Type >= sdtAny && Type <= sdtDuration ? TZmTypes::Directory().Virtual(Type) : nullptr;
}

const TZmTypeInfo* TZmTypes::GetTypeInfo(const TRttiType* Type) { return Type ? Directory().Info(Type) : nullptr; }

const TZmTypeInfo* TZmTypes::GetTypeInfo(const TClass* Class) {
  for (; Class; Class = Class->Parent)
    if (const TRttiInstanceType* type = ClassInfo(Class)) return GetTypeInfo(type);
  return nullptr;
}

const TZmTypeInfo* TZmTypes::GetTypeInfo(StringView Name, TZmTypeNameType NameType, bool Raise, TZmMainTypeKind Kind) {
  StringView name = Name;
  if (NameType == tntSchemaName) name.remove_prefix(name.find(u':') + 1);  // all of it where there is no colon
  const TZmTypeInfo* info = Directory().Find(name, NameType);
  if (info && Kind != mtkNone && info->GetMainTypeKind() != Kind) info = nullptr;
  if (!info && Raise) throw EZmUnknownType(u"The type \"%s\" is unknown!", {Name});
  return info;
}

void TZmTypes::RegisterTypeAlias(const TRttiType* Type, StringView Name) {
  if (Type) Directory().AddAlias(Type, Name);
}

void TZmTypes::RegisterTypeAlias(const TRttiType* Type, std::initializer_list<StringView> Names) {
  for (StringView name : Names) RegisterTypeAlias(Type, name);
}

void TZmTypes::RegisterTypeSerializers(const TRttiType* Type, TZmSerializeFormat Format, const void* Pair,
                                       bool BuiltIn) {
  Directory().AddPair(GetTypeInfo(Type), Format, Pair, BuiltIn);
}

const void* TZmTypes::FindSerializers(const TZmTypeInfo* Type, TZmSerializeFormat Format, std::size_t Choice) {
  TDirectory& directory = Directory();
  const void* pair = nullptr;
  while (Type) {
    if (directory.FindPair(Type, Format, Choice, pair)) return pair;
    if (Type->GetKind() != tkClass) break;
    Type = GetTypeInfo(static_cast<const TRttiInstanceType*>(Type->RttiType)->GetBaseType());
  }
  directory.FindPair(nullptr, Format, Choice, pair);
  return pair;
}

std::uint16_t TZmTypes::GetVarType(StringView Name, TZmTypeNameType NameType, std::uint16_t Default) {
  const TZmTypeInfo* info = GetTypeInfo(Name, NameType, false);
  std::uint16_t array = 0;
  if (info && (info->GetKind() == tkArray || info->GetKind() == tkDynArray)) {
    info = GetTypeInfo(static_cast<const TRttiArrayTypeBase*>(info->RttiType)->GetElementType());
    array = varArray;
  }
  if (!info) return Default;
  static constexpr std::uint16_t codes[] = {
      0,          varByte,    varWord,    varLongWord, varUInt64,  varShortInt, varSmallint, varInteger, varInt64,
      varSingle,  varDouble,  varDouble,  varUString,  varUString, varUString,  varUString,  varUString, varUString,
      varBoolean, varInteger, varInteger, varDate,     varDate,    varDate,     varVariant};
  if (info->RttiType == TypeOf<Currency>()) return varCurrency | array;
  const std::uint16_t code = info->TypeKind < std::size(codes) ? codes[info->TypeKind] : std::uint16_t{0};
  return code ? static_cast<std::uint16_t>(code | array) : Default;
}

const TZmTypeInfo* TZmTypes::VarTypeInfo(const Variant& Value) {
  return GetTypeInfo(TValue::FromVariant(Value).GetTypeInfo());
}

TZmMainTypeKind TZmTypes::VarMainTypeKind(const Variant& Value) {
  switch (VarType(Value)) {
    case varEmpty:
    case varNull:
      return mtkNone;
    case varSingle:
    case varDouble:
    case varCurrency:
      return mtkFloat;
    case varDate:
      return mtkDateTime;
    case varBoolean:
      return mtkBoolean;
    case varOleStr:
    case varString:
    case varUString:
      return mtkString;
    default:
      return VarIsArray(Value) ? mtkArray : mtkInteger;
  }
}

TZmMainTypeKind TZmTypes::ToMainTypeKind(TZmTypeKind Kind) {
  if (Kind >= rtkByte && Kind <= rtkInt64) return mtkInteger;
  if (Kind >= rtkSingle && Kind <= rtkExtended) return mtkFloat;
  if (Kind >= rtkText && Kind <= rtkString) return mtkString;
  if (Kind == rtkBoolean) return mtkBoolean;
  if (Kind == rtkEnumeration || Kind == rtkSet) return mtkString;
  if (Kind >= rtkDate && Kind <= rtkDateTime) return mtkDateTime;
  return Kind == rtkArray || Kind == rtkDynArray ? mtkArray : mtkNone;
}

}  // namespace zm
