#include "zamrit/xml/values/Values.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "zamrit/common/TextTypes.h"
#include "zamrit/platform/Numbers.h"
#include "zamrit/platform/reflection/Reflection.h"
#include "zamrit/xml/values/DateTimes.h"
#include "zamrit/xml/values/Escaping.h"
#include "zamrit/xml/values/Numbers.h"

namespace zm {

namespace {

constexpr int cMaxArrayDepth = 64;
constexpr StringView cElement = u"<element";

[[noreturn]] void RaiseTooDeep() {
  throw Exception(u"Variant arrays that are nested deeper than %d levels have no XML form!", {cMaxArrayDepth});
}

String VariantToXML(const Variant& Value, int Depth);

String ArrayToXML(const Variant& Value, int Depth) {
  if (Depth >= cMaxArrayDepth) RaiseTooDeep();
  const std::int64_t low = VarArrayLowBound(Value), high = VarArrayHighBound(Value);
  String text = Format(u"<array length=\"%d\">", {high - low + 1});
  for (std::int64_t i = low; i <= high; ++i) {
    text += Format(u"<element nr=\"%d\">", {i});
    text += VariantToXML(VarArrayGet(Value, i), Depth + 1);
    text += u"</element>";
  }
  text += u"</array>";
  return ZmStrToXML(text, true, true);
}

String VariantToXML(const Variant& Value, int Depth) {
  const std::uint16_t type = VarType(Value);
  switch (type) {
    case varSmallint:
    case varInteger:
    case varShortInt:
    case varByte:
    case varWord:
    case varLongWord:
      return ZmIntToXML(static_cast<std::int32_t>(Value.AsInteger()));
    case varInt64:
      return ZmInt64ToXML(Value.AsInteger());
    case varUInt64:
      return ZmUInt64ToXML(Value.AsUInt64());
    case varSingle:
    case varDouble:
    case varCurrency:
      return ZmDoubleToXML(Value.AsDouble());
    case varDate:
      return ZmDateTimeToXML(Value.AsDateTime());
    case varBoolean:
      return ZmBoolToXML(Value.AsBoolean());
    case varOleStr:
    case varString:
    case varUString:
      return ZmStrToXML(Value.TextRef(), true, true);
    default:
      break;
  }
  if (VarIsArray(Value)) return ArrayToXML(Value, Depth);
  throw Exception(u"ZmVariantToXml; invalid variant type %d!", {type});
}

Variant ReadVariant(StringView Text, std::uint16_t VarType, int Depth);

/// The elements between the tags of an array, which may still be escaped as a whole.
Variant ReadArray(StringView Text, std::uint16_t ElementType, int Depth) {
  if (Depth >= cMaxArrayDepth) RaiseTooDeep();
  String decoded;
  if (Text.find(u'<') == StringView::npos) Text = decoded = ZmXMLToStr(Text);
  std::vector<Variant> elements;
  for (std::size_t at = 0; (at = Text.find(cElement, at)) != StringView::npos;) {
    const std::size_t begin = std::min(Text.find(u'>', at + cElement.size()), Text.size() - 1) + 1;
    const std::size_t end = std::min(Text.find(u'<', begin), Text.size());
    elements.push_back(ReadVariant(Text.substr(begin, end - begin), ElementType, Depth + 1));
    at = end;
  }
  Variant array = VarArrayCreate(0, static_cast<std::int64_t>(elements.size()) - 1, ElementType);
  for (std::size_t i = 0; i < elements.size(); ++i)
    VarArrayPut(array, static_cast<std::int64_t>(i), std::move(elements[i]));
  return array;
}

/// Whether a text can be read as this type code.
bool IsReadable(int VarType) {
  static constexpr std::uint16_t codes[] = {varSmallint, varInteger, varSingle,  varDouble, varCurrency, varDate,
                                            varOleStr,   varBoolean, varVariant, varInt64,  varString,   varUString};
  return std::find(std::begin(codes), std::end(codes), VarType) != std::end(codes);
}

/// A text of this form cannot be told from an array: it is read as one.
bool LooksLikeArray(StringView Text) {
  return (Text.starts_with(u"&lt;array ") && Text.ends_with(u"&lt;/array&gt;")) ||
         (Text.starts_with(u"<array ") && Text.ends_with(u"</array>"));
}

Variant ReadVariant(StringView Text, std::uint16_t VarType, int Depth) {
  if ((VarType & varArray) != 0 && IsReadable(VarType & ~varArray))
    return ReadArray(Text, VarType & varTypeMask, Depth);
  switch (VarType) {
    case varSmallint:
      return ZmXMLToSmallint(Text);
    case varInteger:
      return ZmXMLToInt(Text);
    case varSingle:
      return ZmXMLToSingle(Text);
    case varDouble:
      return ZmXMLToDouble(Text);
    case varCurrency:
      return Currency(ZmXMLToExtended(Text));
    case varDate:
      return ZmXMLToDateTime(Text);
    case varBoolean:
      return ZmXMLToBool(Text);
    case varInt64:
      return ZmXMLToInt64(Text);
    case varOleStr:
    case varString:
    case varUString:
      return ZmXMLToStr(Text);
    case varVariant:
      return LooksLikeArray(Text) ? ReadArray(Text, varVariant, Depth) : Variant(ZmXMLToStr(Text));
    default:
      throw Exception(u"ZmXMLToVariant(%s); Unsupported VarType", {Text});
  }
}

TValue FloatFromXML(StringView Text, const TRttiFloatType& Type) {
  switch (Type.GetFloatType()) {
    case ftSingle:
      return TValue::From(ZmXMLToSingle(Text));
    case ftDouble:
      return TValue::From(ZmXMLToDouble(Text));
    case ftExtended:
      return TValue::From(ZmXMLToExtended(Text));
    case ftCurrency:
      return TValue::From(Currency(ZmXMLToExtended(Text)));
    case ftDate:
      return TValue::From(TDate(ZmXMLToDate(Text)));
    case ftTime:
      return TValue::From(TTime(ZmXMLToTime(Text)));
    case ftDateTime:
      return TValue::From(ZmXMLToDateTime(Text));
  }
  return TValue();
}

/// Empty where the kind of type has no text form.
TValue ValueFromXML(StringView Text, const TZmTypeInfo& Info) {
  const TRttiType& type = *Info.RttiType;
  switch (Info.TypeKind) {
    case rtkByte:
      return TValue::From(ZmXMLToByte(Text));
    case rtkWord:
      return TValue::From(ZmXMLToWord(Text));
    case rtkLongWord:
      return TValue::From(ZmXMLToLongword(Text));
    case rtkUInt64:
      return TValue::From(ZmXMLToUInt64(Text));
    case rtkShortInt:
      return TValue::From(ZmXMLToShortint(Text));
    case rtkSmallInt:
      return TValue::From(ZmXMLToSmallint(Text));
    case rtkInteger:
      return TValue::From(ZmXMLToInt(Text));
    case rtkInt64:
      return TValue::From(ZmXMLToInt64(Text));
    case rtkBoolean:
      return TValue::From(ZmXMLToBool(Text));
    case rtkVariant:
      return TValue::From(ZmXMLToVariant(Text, varVariant));
    case rtkSingle:
    case rtkDouble:
    case rtkExtended:
    case rtkDate:
    case rtkTime:
    case rtkDateTime:
      return FloatFromXML(Text, static_cast<const TRttiFloatType&>(type));
    default:
      break;
  }
  TValue value;
  if (Info.GetMainTypeKind() != mtkString) return value;
  if (&type == TypeOf<ZmXMLString>()) return TValue::From(ZmXMLString(Text));
  const String text = ZmXMLToStr(Text);
  const bool done = Info.TypeKind == rtkEnumeration || Info.TypeKind == rtkSet
                        ? detail::TextToOrdinal(text, type, value)
                        : TValue::From(text).TryCast(&type, value);
  if (!done) throw EConvertError(u"'%s' is not a valid value", {text});
  return value;
}

String FloatToXML(const TRttiFloatType& Type, const TValue& Value) {
  const void* data = Value.GetReferenceToRawData();
  switch (Type.GetFloatType()) {
    case ftSingle:
    case ftDouble:
      return ZmDoubleToXML(static_cast<double>(Type.Read(data)));
    case ftDate:
      return ZmDateToXML(static_cast<double>(Type.Read(data)));
    case ftTime:
      return ZmTimeToXML(static_cast<double>(Type.Read(data)));
    case ftDateTime:
      return ZmDateTimeToXML(static_cast<double>(Type.Read(data)));
    case ftCurrency:
      return VarToStr(Value.AsVariant());  // all four decimals
    default:
      return ZmExtToXML(Type.Read(data));
  }
}

bool IsNil(const TValue& Value) { return *static_cast<void* const*>(Value.GetReferenceToRawData()) == nullptr; }

}  // namespace

String ZmVariantToXML(const Variant& Value) { return VariantToXML(Value, 0); }

String ZmXMLToStr(const Variant& Value, StringView Default) {
  if (Value.IsNull()) return String(Default);
  switch (TZmTypes::VarMainTypeKind(Value)) {
    case mtkString:
      return ZmXMLToStr(Value.TextRef());
    case mtkFloat:
      return ZmDoubleToXML(Value.AsDouble());
    case mtkBoolean:
      return ZmBoolToXML(Value.AsBoolean());
    case mtkDateTime:
      return ZmDateTimeToXML(VarToReal(Value));
    case mtkArray: {
      String text;
      const std::int64_t low = VarArrayLowBound(Value), high = VarArrayHighBound(Value);
      for (std::int64_t i = low; i <= high; ++i) {
        if (i > low) text += u"\r\n";
        const Variant element = VarArrayGet(Value, i);
        if (VarIsArray(element)) throw EConvertError(u"The given value is not a valid String value!");
        text += ZmXMLToStr(VarToStr(element));
      }
      return text;
    }
    default:
      throw EConvertError(u"The given value is not a valid String value!");
  }
}

Variant ZmXMLToVariant(StringView Text, TZmTypeKind Kind) {
  static constexpr StringView names[] = {u"Unknown",    u"Byte",       u"Word",    u"LongWord", u"UInt64",
                                         u"ShortInt",   u"SmallInt",   u"Integer", u"Int64",    u"Single",
                                         u"Double",     u"Extended",   u"Char",    u"WideChar", u"ShortString",
                                         u"AnsiString", u"WideString", u"String",  u"Boolean",  u"Enumeration",
                                         u"Set",        u"Date",       u"Time",    u"DateTime", u"Variant",
                                         u"Array",      u"DynArray",   u"Record",  u"Class",    u"Interface",
                                         u"",           u"Pointer",    u"Method",  u"",         u"ClassRef"};
  try {
    switch (Kind) {
      case rtkByte:
        return ZmXMLToByte(Text);
      case rtkWord:
        return ZmXMLToWord(Text);
      case rtkLongWord:
        return ZmXMLToLongword(Text);
      case rtkUInt64:
        return ZmXMLToUInt64(Text);
      case rtkShortInt:
        return ZmXMLToShortint(Text);
      case rtkSmallInt:
        return ZmXMLToSmallint(Text);
      case rtkInteger:
        return ZmXMLToInt(Text);
      case rtkInt64:
        return ZmXMLToInt64(Text);
      case rtkSingle:
        return ZmXMLToSingle(Text);
      case rtkDouble:
        return ZmXMLToDouble(Text);
      case rtkExtended:
        return ZmXMLToExtended(Text);
      case rtkBoolean:
        return ZmXMLToBool(Text);
      case rtkDate:
        return ZmXMLToDate(Text);
      case rtkTime:
        return ZmXMLToTime(Text);
      case rtkDateTime:
        return ZmXMLToDateTime(Text);
      case rtkVariant:
        return ZmXMLToVariant(Text, varVariant);
      default:
        if (Kind >= rtkText && Kind <= rtkString) return ZmXMLToStr(Text);
    }
  } catch (const EConvertError&) {  // told below
  }
  throw Exception(u"Failed to convert the value \"%s\" to a variant value of type %s!",
                  {Text, Kind < std::size(names) ? names[Kind] : names[0]});
}

Variant ZmXMLToVariant(StringView Text, StringView TypeName) {
  std::uint16_t code = varEmpty;
  for (TZmTypeNameType by : {tntName, tntQualifiedName, tntSchemaName})
    if (code == varEmpty) code = TZmTypes::GetVarType(TypeName, by, varEmpty);
  return ZmXMLToVariant(Text, code);
}

Variant ZmXMLToVariant(StringView Text, std::uint16_t VarType) { return ReadVariant(Text, VarType, 0); }

TValue ZmXMLToValue(StringView Text, const TZmTypeInfo* TypeInfo) {
  const StringView name = TypeInfo ? StringView(TypeInfo->Name) : StringView();
  if (TypeInfo && TypeInfo->RttiType && TypeInfo->GetIsSimpleType()) {
    TValue value;
    try {
      if (ValueFromXML(Text, *TypeInfo).TryCast(TypeInfo->RttiType, value)) return value;
    } catch (const EConvertError&) {  // told below
    } catch (const ERangeError&) {
    }
    detail::RaiseNotConverted(Text, name);
  }
  throw Exception(u"Failed to convert \"%s\" into a TValue!\r\nThe type %s is not supported.", {Text, name});
}

TValue ZmXMLToValue(StringView Text, StringView TypeName) {
  return ZmXMLToValue(Text, detail::TypeOfAnyName(TypeName));
}

String ZmValToXML(const TValue& Value) {
  const TZmTypeInfo* info = TZmTypes::GetTypeInfo(Value.GetTypeInfo());
  if (!info) return String();
  switch (info->TypeKind) {
    case rtkByte:
    case rtkWord:
    case rtkShortInt:
    case rtkSmallInt:
    case rtkInteger:
      return ZmIntToXML(static_cast<std::int32_t>(Value.AsOrdinal()));
    case rtkLongWord:
      return ZmLongWordToXML(static_cast<std::uint32_t>(Value.AsOrdinal()));
    case rtkInt64:
    case rtkUInt64:
      return ZmInt64ToXML(Value.AsOrdinal());
    case rtkBoolean:
      return ZmBoolToXML(Value.AsBoolean());
    case rtkSingle:
    case rtkDouble:
    case rtkExtended:
    case rtkDate:
    case rtkTime:
    case rtkDateTime:
      return FloatToXML(static_cast<const TRttiFloatType&>(*info->RttiType), Value);
    case rtkEnumeration:
      return Value.ToString();
    case rtkSet:
      return static_cast<const TRttiSetType*>(info->RttiType)
          ->SetToString(static_cast<std::uint64_t>(Value.AsOrdinal()), false);
    case rtkVariant:
      return ZmVariantToXML(Value.AsVariant());
    case rtkInterface:
      if (!Value.AsInterface()) return String();
      break;
    case rtkClass:
    case rtkPointer:
    case rtkClassRef:
      if (IsNil(Value)) return String();
      break;
    default:
      if (info->RttiType == TypeOf<ZmXMLString>()) return Value.ToString();
      if (info->GetMainTypeKind() == mtkString) return ZmStrToXML(Value.ToString(), true, true);
      if (info->RttiType == TypeOf<TValue>())
        return ZmValToXML(*static_cast<const TValue*>(Value.GetReferenceToRawData()));
  }
  throw Exception(u"Failed to convert a TValue into XML!\r\nThe type %s is not supported.", {info->Name});
}

namespace detail {

void RaiseNotConverted(StringView Text, StringView TypeName) {
  throw Exception(u"Failed to convert the value \"%s\" to a value of type %s!", {Text, TypeName});
}

const TZmTypeInfo* TypeOfAnyName(StringView Name) {
  for (TZmTypeNameType by : {tntName, tntQualifiedName})
    if (const TZmTypeInfo* info = TZmTypes::GetTypeInfo(Name, by, false)) return info;
  return TZmTypes::GetTypeInfo(Name, tntSchemaName, true);
}

bool TextToOrdinal(StringView Text, const TRttiType& Type, TValue& Result) {
  std::int64_t number = 0;
  try {
    if (!TryStrToInt64(Text, number)) {
      if (Type.GetTypeKind() == tkSet)
        number = static_cast<std::int64_t>(static_cast<const TRttiSetType&>(Type).StringToSet(Text));
      else if (!static_cast<const TRttiEnumerationType&>(Type).GetEnumValue(Text, number))
        return false;
    }
    Result = TValue::FromOrdinal(&Type, number);
  } catch (const EConvertError&) {
    return false;
  } catch (const ERangeError&) {
    return false;
  }
  return true;
}

}  // namespace detail

}  // namespace zm
