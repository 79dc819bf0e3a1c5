#include "zamrit/xml/json/Values.h"

#include <cmath>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "zamrit/common/SysUtils.h"
#include "zamrit/common/TextTypes.h"
#include "zamrit/platform/Numbers.h"
#include "zamrit/platform/reflection/Reflection.h"
#include "zamrit/xml/json/EscapesDetail.h"
#include "zamrit/xml/json/JSONDocument.h"
#include "zamrit/xml/values/DateReadingDetail.h"
#include "zamrit/xml/values/DateTimes.h"
#include "zamrit/xml/values/Numbers.h"
#include "zamrit/xml/values/Values.h"

namespace zm {

using detail::DateFromVariant;
using detail::DateOr;

namespace {

void AppendEscape(String& Out, char16_t Unit) {
  static constexpr char16_t digits[] = u"0123456789ABCDEF";
  if (Unit >= 0x100) {
    const char16_t text[] = {
        u'\\', u'u', digits[Unit >> 12], digits[Unit >> 8 & 15], digits[Unit >> 4 & 15], digits[Unit & 15]};
    Out.append(text, std::size(text));
  } else if (const char letter = detail::JSONEscape(Unit); letter != detail::cJSONDropped) {
    Out += u'\\';
    Out += static_cast<char16_t>(letter);
  }
}

void AppendJSON(String& Out, StringView Text) {
  const char16_t* run = Text.data();
  const char16_t* const end = run + Text.size();
  for (const char16_t* at = run; at != end; ++at) {
    if (*at < 0x100 && detail::JSONEscape(*at) == 0) continue;
    Out.append(run, at);
    AppendEscape(Out, *at);
    run = at + 1;
  }
  Out.append(run, end);
}

/// UTF-16 that single bytes may be put into.
class TUnits {
 public:
  void Append(StringView Text) {
    FBytes.append(reinterpret_cast<const char*>(Text.data()), Text.size() * sizeof(char16_t));
  }
  void Append(char16_t Unit) { Append(StringView(&Unit, 1)); }
  void AppendByte(std::uint8_t Byte) { FBytes += static_cast<char>(Byte); }
  /// Whole units only.
  String Text() const {
    String text(FBytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), FBytes.data(), text.size() * sizeof(char16_t));
    return text;
  }

 private:
  std::string FBytes;
};

/// The number that Count hexadecimal digits at At make; At goes behind them. False where the text ends before.
bool ReadHex(StringView Text, std::size_t& At, std::size_t Count, std::int32_t& Value) {
  if (Text.size() - At < Count) return false;
  Value = StrToInt(String(u"$").append(Text.substr(At, Count)));
  At += Count;
  return true;
}

char16_t Unescape(char16_t Letter) {
  switch (Letter) {
    case u'b':
      return u'\b';
    case u'f':
      return u'\f';
    case u'n':
      return u'\n';
    case u'r':
      return u'\r';
    case u't':
      return u'\t';
    default:
      return Letter;
  }
}

/// Milliseconds since 1970 between the six characters in front and the two at the end.
TDateTime FromMilliseconds(StringView Text) {
  const StringView digits = Text.size() < 8 ? StringView() : Text.substr(6, Text.size() - 8);
  return IncMilliSecond(EncodeDate(1970, 1, 1), StrToInt64(digits));
}

TDateTime ReadJSON(StringView Text, TDateTime (*Part)(TDateTime), TDateTime (*FromXML)(StringView)) {
  if (Text.empty()) return 0.0;
  return Text[0] == u'/' ? Part(FromMilliseconds(Text)) : FromXML(Text);
}

TDateTime Whole(TDateTime Value) { return Value; }
TDateTime TimeFromXML(StringView Text) { return ZmXMLToTime(Text, tzfNone); }
TDateTime DateTimeFromXML(StringView Text) { return ZmXMLToDateTime(Text, tzfNone); }

String FloatToJSON(Extended Value) {
  if (!std::isfinite(Value)) return u"null";
  if (Value == 0 && std::signbit(Value)) return u"-0";
  return ZmDoubleToXML(static_cast<double>(Value));
}

String DateToJSON(const Variant& Value) {
  try {
    return u"\"" + ZmDateTimeToXML(Value.AsDateTime()) + u"\"";
  } catch (const EConvertError&) {
    return u"null";
  }
}

/// Of everything but arrays.
void AppendSimple(String& Out, const Variant& Value) {
  switch (TZmTypes::VarMainTypeKind(Value)) {
    case mtkDateTime:
      Out += DateToJSON(Value);
      return;
    case mtkBoolean:
      Out += ZmBoolToXML(Value.AsBoolean());
      return;
    case mtkInteger:
      Out +=
          ZmInt64ToXML(VarType(Value) == varUInt64 ? static_cast<std::int64_t>(Value.AsUInt64()) : Value.AsInteger());
      return;
    case mtkFloat:
      Out += FloatToJSON(ZmVarToExtended(Value, 0));
      return;
    case mtkString:
      Out += u'"';
      AppendJSON(Out, Value.TextRef());
      Out += u'"';
      return;
    default:
      Out += u"null";
  }
}

struct TSchemaName {
  TZmTypeKind Kind;
  StringView Name;
  StringView Format;
  TZmSchemaDataType Type;
};

constexpr TSchemaName cSchemaNames[] = {
    {rtkShortInt, u"integer", u"int32", sdtByte},
    {rtkSmallInt, u"integer", u"int32", sdtShort},
    {rtkInteger, u"integer", u"int32", sdtInt},
    {rtkInt64, u"integer", u"int64", sdtLong},
    {rtkByte, u"integer", u"int32", sdtUnsignedByte},
    {rtkWord, u"integer", u"int32", sdtUnsignedShort},
    {rtkLongWord, u"integer", u"int32", sdtUnsignedInt},
    {rtkUInt64, u"integer", u"int64", sdtUnsignedLong},
    {rtkSingle, u"float", u"float", sdtFloat},
    {rtkDouble, u"double", u"double", sdtDouble},
    {rtkExtended, u"double", u"double", sdtDouble},
    {rtkBoolean, u"boolean", u"", sdtBoolean},
    {rtkDate, u"date", u"date", sdtDate},
    {rtkTime, u"dateTime", u"date-time", sdtTime},
    {rtkDateTime, u"dateTime", u"date-time", sdtDateTime},
    {rtkEnumeration, u"string", u"", sdtString},
    {rtkSet, u"string", u"", sdtString},
    {rtkArray, u"array", u"", sdtArray},
    {rtkDynArray, u"array", u"", sdtArray},
    {rtkRecord, u"object", u"", sdtObject},
    {rtkClass, u"object", u"", sdtObject},
};

TSchemaName SchemaNameOf(const TZmTypeInfo& Info) {
  if (Info.TypeKind >= rtkText && Info.TypeKind <= rtkString) {
    const StringView format = SameText(Info.Name, u"ZmXMLString")    ? u"xml"
                              : SameText(Info.Name, u"ZmJSONString") ? u"json"
                                                                     : u"";
    return {Info.TypeKind, u"string", format, sdtString};
  }
  for (const TSchemaName& name : cSchemaNames)
    if (name.Kind == Info.TypeKind) return name;
  return {Info.TypeKind, u"any", u"", sdtAny};
}

/// Reads what JSON writes otherwise than XML by its own form. False where the text has not got it.
bool ReadForm(StringView Text, const TZmTypeInfo& Info, TValue& Result) {
  switch (Info.TypeKind) {
    case rtkDate:
      return TValue::From(TDate(ZmJSONToDate(Text))).TryCast(Info.RttiType, Result);
    case rtkTime:
      return TValue::From(TTime(ZmJSONToTime(Text))).TryCast(Info.RttiType, Result);
    case rtkDateTime:
      return TValue::From(ZmJSONToDateTime(Text)).TryCast(Info.RttiType, Result);
    case rtkEnumeration:
    case rtkSet:
      return detail::TextToOrdinal(Text, *Info.RttiType, Result);
    default:
      break;
  }
  if (Info.RttiType == TypeOf<ZmJSONString>())
    Result = TValue::From(ZmJSONString(Text));
  else if (Info.TypeKind >= rtkText && Info.TypeKind <= rtkString)
    return TValue::From(ZmJSONtoStr(Text, jdtNull)).TryCast(Info.RttiType, Result);
  else
    Result = ZmXMLToValue(Text, &Info);
  return true;
}

}  // namespace

String ZmStrToJSON(StringView Text) {
  String out;
  out.reserve(Text.size());
  AppendJSON(out, Text);
  return out;
}

String ZmJSONtoStr(StringView Text, TZmJSONDataType DataType) {
  const bool number = DataType == jdtNumber;
  TUnits out;
  std::size_t at = 0;
  for (std::int32_t value = 0; at < Text.size();) {
    const std::size_t found = std::min(number ? Text.find_first_of(u"\\%", at) : Text.find(u'\\', at), Text.size());
    out.Append(Text.substr(at, found - at));
    at = found;
    if (at == Text.size()) break;
    char16_t kind = Text[at++];
    if (kind == u'\\') {
      if (at == Text.size()) break;
      kind = Text[at++];
    }
    if (kind == u'%') {
      if (!ReadHex(Text, at, 2, value)) break;
      out.AppendByte(static_cast<std::uint8_t>(value));
    } else if (kind == u'u') {
      if (!ReadHex(Text, at, 4, value)) break;
      out.Append(static_cast<char16_t>(value));
    } else {
      out.Append(Unescape(kind));
    }
  }
  return out.Text();
}

String ZmFormatJSON(StringView Text) {
  TZmJSONDocument document;
  document.SetAsJSON(Text);
  return document.GetAsJSON();
}
String ZmFormatJSON(std::string_view UTF8) {
  TZmJSONDocument document;
  document.SetAsJSON(FromUTF8(UTF8));
  return document.GetFormattedJSON();
}

TZmJSONDataType ZmVarTypeToJSONType(const Variant& Value) {
  switch (TZmTypes::VarMainTypeKind(Value)) {
    case mtkInteger:
    case mtkFloat:
      return jdtNumber;
    case mtkString:
    case mtkDateTime:
      return jdtString;
    case mtkBoolean:
      return jdtBoolean;
    case mtkArray:
      return jdtArray;
    default:
      return jdtNull;
  }
}

String ZmVarToJSON(const Variant& Value) {
  struct TOpen {
    Variant Array;
    std::int64_t Next;
    std::int64_t High;
  };
  String out;
  std::vector<TOpen> open;  // arrays within arrays: no recursion, however deep
  Variant value = Value;
  for (;;) {
    if (VarIsArray(value)) {
      out += u'[';
      const std::int64_t low = VarArrayLowBound(value), high = VarArrayHighBound(value);
      open.push_back({std::move(value), low, high});
    } else {
      AppendSimple(out, value);
    }
    while (!open.empty() && open.back().Next > open.back().High) {
      out += u']';
      open.pop_back();
    }
    if (open.empty()) return out;
    TOpen& array = open.back();
    if (array.Next > VarArrayLowBound(array.Array)) out += u',';
    value = VarArrayGet(array.Array, array.Next++);
  }
}

TDateTime ZmJSONToDate(StringView Text) { return ReadJSON(Text, DateOf, ZmXMLToDate); }
TDateTime ZmJSONToTime(StringView Text) { return ReadJSON(Text, TimeOf, TimeFromXML); }
TDateTime ZmJSONToDateTime(StringView Text) { return ReadJSON(Text, Whole, DateTimeFromXML); }

TDateTime ZmJSONToDateDef(StringView Text, TDateTime Default) {
  return DateOr(Default, [Text] { return ZmJSONToDate(Text); });
}
TDateTime ZmJSONToTimeDef(StringView Text, TDateTime Default) {
  return DateOr(Default, [Text] { return ZmJSONToTime(Text); });
}
TDateTime ZmJSONToDateTimeDef(StringView Text, TDateTime Default) {
  return DateOr(Default, [Text] { return ZmJSONToDateTime(Text); });
}

TDateTime ZmJSONToDate(const Variant& Value, TDateTime Default) {
  return DateFromVariant(Value, Default, u"Date", [](StringView Text) { return ZmJSONToDate(Text); });
}
TDateTime ZmJSONToTime(const Variant& Value, TDateTime Default) {
  return DateFromVariant(Value, Default, u"Time", [](StringView Text) { return ZmJSONToTime(Text); });
}
TDateTime ZmJSONToDateTime(const Variant& Value, TDateTime Default) {
  return DateFromVariant(Value, Default, u"DateTime", [](StringView Text) { return ZmJSONToDateTime(Text); });
}

String ZmJSONType(const TZmTypeInfo* TypeInfo, String& Format, TZmSchemaDataType* SchemaType) {
  const TSchemaName name = TypeInfo ? SchemaNameOf(*TypeInfo) : TSchemaName{rtkUnknown, u"any", u"", sdtAny};
  Format = name.Format;
  if (SchemaType) *SchemaType = name.Type;
  return String(name.Name);
}

String ZmJSONType(const TRttiType* Type, String& Format, TZmSchemaDataType* SchemaType) {
  return ZmJSONType(TZmTypes::GetTypeInfo(Type), Format, SchemaType);
}

TValue ZmJSONToVal(StringView Text, const TZmTypeInfo* TypeInfo, bool Raise) {
  if (!TypeInfo) {
    if (Raise) throw EZmUnknownType(u"The type is unknown!");
    return TValue();
  }
  if (!TypeInfo->RttiType) return ZmXMLToValue(Text, TypeInfo);
  TValue value;
  if (!ReadForm(Text, *TypeInfo, value)) detail::RaiseNotConverted(Text, TypeInfo->Name);
  return value;
}

TValue ZmJSONToVal(StringView Text, StringView TypeName, bool Raise) {
  try {
    return ZmJSONToVal(Text, detail::TypeOfAnyName(TypeName), Raise);
  } catch (const EZmUnknownType&) {
    if (Raise) throw;
    return TValue();
  }
}

String ZmValToJSON(const TValue& Value) {
  const TZmTypeInfo* info = TZmTypes::GetTypeInfo(Value.GetTypeInfo());
  if (info && info->TypeKind >= rtkArray && info->TypeKind <= rtkInterface)
    throw ENotSupportedException(u"Values of type \"%s\" cannot be written as JSON yet!", {info->Name});
  return ZmValToXML(Value);
}

}  // namespace zm
