#include "zamrit/xml/values/DateTimes.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "zamrit/common/ZmTypes.h"
#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/Numbers.h"
#include "zamrit/xml/values/DateReadingDetail.h"

namespace zm {

using detail::DateFromVariant;
using detail::DateOr;

namespace {

TZmTimeZoneFormat ZoneFormat(TZmXMLDateTimeFormat Format) {
  return Format == xdtfUTC ? tzfUTC : Format == xdtfTimezone ? tzfOffset : tzfNone;
}

struct TFields {
  std::uint16_t Year, Month, Day, Hour, Minute, Second, Millisecond;

  explicit TFields(TDateTime Value) { DecodeDateTime(Value, Year, Month, Day, Hour, Minute, Second, Millisecond); }
};

// Builds the longest of the text forms, "2024-03-01T10:00:00.000+02:00", in place.
class TWriter {
 public:
  void Char(char16_t C) { FUnits[FLength++] = C; }
  // A number of at most Width digits.
  void Number(int Value, std::size_t Width) {
    for (std::size_t i = Width; i-- > 0; Value /= 10) FUnits[FLength + i] = static_cast<char16_t>(u'0' + Value % 10);
    FLength += Width;
  }
  void Date(const TFields& Fields) {
    Number(Fields.Year, 4);
    Char(u'-');
    Number(Fields.Month, 2);
    Char(u'-');
    Number(Fields.Day, 2);
  }
  void Time(const TFields& Fields) {
    Number(Fields.Hour, 2);
    Char(u':');
    Number(Fields.Minute, 2);
    Char(u':');
    Number(Fields.Second, 2);
    Char(u'.');
    Number(Fields.Millisecond, 3);
  }
  void Zone(TDateTime Value, TZmTimeZoneFormat Format) {
    if (Format == tzfUTC) Char(u'Z');
    if (Format != tzfOffset) return;
    int sign, hours, minutes;
    ZmCalcTimeZoneOffset(Value, sign, hours, minutes);
    Char(sign < 0 ? u'-' : u'+');
    Number(hours, 2);
    Char(u':');
    Number(minutes, 2);
  }
  String Text() const { return String(FUnits, FLength); }

 private:
  char16_t FUnits[32];
  std::size_t FLength = 0;
};

enum TParts { ptDate = 1, ptTime = 2 };

String Write(TDateTime Value, TZmTimeZoneFormat Format, int Parts) {
  if (Format == tzfUTC) Value = ZmLocalToUTC(Value);
  const TFields fields(Value);
  TWriter writer;
  if (Parts & ptDate) writer.Date(fields);
  if (Parts == (ptDate | ptTime)) writer.Char(u'T');
  if (Parts & ptTime) writer.Time(fields);
  writer.Zone(Value, Format);
  return writer.Text();
}

bool IsZero(StringView Text) { return Text.empty() || Text == u"0"; }

TDateTime DateOfParts(const TZmDateTimeParts& Parts) { return EncodeDate(Parts.Year, Parts.Month, Parts.Day); }

TDateTime TimeOfParts(const TZmDateTimeParts& Parts) {
  return EncodeTime(Parts.Hour, Parts.Minute, Parts.Second, Parts.Millisecond);
}

TDateTime DateTimeOfParts(const TZmDateTimeParts& Parts) {
  if (!Parts.HasDate) return Parts.HasTime ? TimeOfParts(Parts) : TDateTime(0);
  if (!Parts.HasTime) return DateOfParts(Parts);
  return EncodeDateTime(Parts.Year, Parts.Month, Parts.Day, Parts.Hour, Parts.Minute, Parts.Second, Parts.Millisecond);
}

// Value, which stood in a text with these parts, in the zone that is wanted.
TDateTime ApplyZone(TDateTime Value, const TZmDateTimeParts& Parts, TZmTimeZoneFormat Wanted) {
  if (Parts.TimeZoneFormat == tzfNone) {
    if (Wanted != tzfNone) throw Exception(u"The XMLDateTime value did not contain timezone information!");
    return Value;
  }
  if (Parts.TimeZoneFormat == tzfOffset) Value = IncMinute(Value, -Parts.OffsetMinutes);
  return Wanted == tzfUTC ? Value : ZmUTCToLocal(Value);
}

}  // namespace

#define ZM_WRITERS(Name, Parts)                                                                             \
  String Zm##Name##ToXML(TDateTime Value, TZmTimeZoneFormat Format) { return Write(Value, Format, Parts); } \
  String Zm##Name##ToXML(TDateTime Value, TZmXMLDateTimeFormat Format) {                                    \
    return Write(Value, ZoneFormat(Format), Parts);                                                         \
  }

ZM_WRITERS(Date, ptDate)
ZM_WRITERS(Time, ptTime)
ZM_WRITERS(DateTime, ptDate | ptTime)

#undef ZM_WRITERS

TDateTime ZmXMLToDate(StringView Text) {
  if (IsZero(Text)) return 0;
  const TZmDateTimeParts parts = ZmDecodeISODateTime(Text);
  const TDateTime date = DateOfParts(parts);
  return parts.Negative ? TDateTime(-date) : date;
}

TDateTime ZmXMLToDate(const Variant& Value, TDateTime Default) {
  return DateFromVariant(Value, Default, u"Date", [](StringView Text) { return ZmXMLToDate(Text); });
}

TDateTime ZmXMLToDateDef(StringView Text, TDateTime Default) {
  return DateOr(Default, [Text] { return ZmXMLToDate(Text); });
}

TDateTime ZmXMLToTime(StringView Text, TZmTimeZoneFormat Format) {
  if (IsZero(Text)) return 0;
  const TZmDateTimeParts parts = ZmDecodeISODateTime(Text);
  const double value = ApplyZone(TimeOfParts(parts), parts, Format);
  return value - std::trunc(value);
}

TDateTime ZmXMLToDateTime(StringView Text, TZmTimeZoneFormat Format) {
  if (IsZero(Text)) return 0;
  const TZmDateTimeParts parts = ZmDecodeISODateTime(Text);
  const TDateTime value = DateTimeOfParts(parts);
  return ApplyZone(parts.Negative ? TDateTime(-value) : value, parts, Format);
}

#define ZM_READERS(Name)                                                                          \
  TDateTime ZmXMLTo##Name(StringView Text, TZmXMLDateTimeFormat Format) {                         \
    return ZmXMLTo##Name(Text, ZoneFormat(Format));                                               \
  }                                                                                               \
  TDateTime ZmXMLTo##Name(const Variant& Value, TDateTime Default, TZmTimeZoneFormat Format) {    \
    return DateFromVariant(Value, Default, u## #Name,                                             \
                           [Format](StringView Text) { return ZmXMLTo##Name(Text, Format); });    \
  }                                                                                               \
  TDateTime ZmXMLTo##Name(const Variant& Value, TDateTime Default, TZmXMLDateTimeFormat Format) { \
    return ZmXMLTo##Name(Value, Default, ZoneFormat(Format));                                     \
  }                                                                                               \
  TDateTime ZmXMLTo##Name##Def(StringView Text, TDateTime Default, TZmTimeZoneFormat Format) {    \
    return DateOr(Default, [=] { return ZmXMLTo##Name(Text, Format); });                          \
  }                                                                                               \
  TDateTime ZmXMLTo##Name##Def(StringView Text, TDateTime Default, TZmXMLDateTimeFormat Format) { \
    return ZmXMLTo##Name##Def(Text, Default, ZoneFormat(Format));                                 \
  }

ZM_READERS(Time)
ZM_READERS(DateTime)

#undef ZM_READERS

TZmDateTimeParts ZmDecodeXMLDateTime(StringView Text) { return ZmDecodeISODateTime(Text); }

TZmXMLDateTimeFormat ZmXMLDateTimeFormat(const TZmDateTimeParts& Parts) {
  return Parts.TimeZoneFormat == tzfUTC ? xdtfUTC : Parts.TimeZoneFormat == tzfOffset ? xdtfTimezone : xdtfLocal;
}

}  // namespace zm
