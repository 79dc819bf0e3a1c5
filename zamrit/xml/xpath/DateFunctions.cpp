#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "zamrit/common/DateTimeUtils.h"
#include "zamrit/common/SysUtils.h"
#include "zamrit/platform/DateTime.h"
#include "zamrit/xml/values/DateTimes.h"
#include "zamrit/xml/xpath/FunctionLibrary.h"

namespace zm {

namespace {

constexpr int cSecondsADay = 86400, cMinutesADay = 1440, cGreatestOffset = 14 * 60;

std::int64_t WholeSeconds(const TZmDuration& Duration) { return static_cast<std::int64_t>(Duration.Seconds); }

double Seconds(const TZmDateTimeParts& Parts) { return Parts.Second + Parts.Millisecond / 1000.0; }

String TwoDigits(int Number) { return ZmPadLeft(IntToStr(Number), 2, u'0'); }

/// "+02:00".
String OffsetText(int Minutes) {
  const int minutes = std::abs(Minutes);
  return (Minutes < 0 ? u"-" : u"+") + TwoDigits(minutes / 60) + u":" + TwoDigits(minutes % 60);
}

// Minutes east of UTC that this machine's time has at the moment of a text, which is local time where it has no zone.
int LocalOffset(StringView Text) {
  int sign, hours, minutes;
  ZmCalcTimeZoneOffset(ZmXMLToDateTime(Text), sign, hours, minutes);
  return sign * (hours * 60 + minutes);
}

// The zone of a text as a duration; of "Z" that of this machine.
Variant ZoneOf(StringView Text) {
  const TZmDateTimeParts parts = ZmDecodeISODateTime(Text);
  if (parts.TimeZoneFormat == tzfNone) return Null();
  const int offset = parts.TimeZoneFormat == tzfUTC ? LocalOffset(Text) : parts.OffsetMinutes;
  return ZmDurationToXML({offset < 0, 0, std::abs(offset) * 60.0});
}

// Minutes east of UTC that a duration stands for.
int OffsetOf(const TZmDuration& Duration) {
  const double minutes = Duration.Seconds / 60;
  if (Duration.Months != 0 || minutes > cGreatestOffset || minutes != std::floor(minutes))
    throw EZmXPathException(u"FODT0003",
                            u"An invalid parameter was passed to fn:adjust-dateTime-to-timezone(dt,timezone)");
  return static_cast<int>(Duration.Negative ? -minutes : minutes);
}

// The date and time of a text, whose clock is put forward, with an offset.
String Adjusted(StringView Text, int Offset) {
  using namespace std::chrono;
  const TZmDateTimeParts parts = ZmDecodeISODateTime(Text);
  const year_month_day date(year(parts.Negative ? -parts.Year : parts.Year), month(parts.Month), day(parts.Day));
  if (TDateTime time; parts.Year >= int{year::max()} || !date.ok() ||
                      !TryEncodeTime(parts.Hour, parts.Minute, parts.Second, parts.Millisecond, time))
    throw EConvertError(u"'%s' is not a valid date and time value", {Text});

  const int shift = parts.TimeZoneFormat == tzfNone ? 0 : Offset - parts.OffsetMinutes;
  const int clock = parts.Hour * 60 + parts.Minute + shift, carry = (clock + cMinutesADay * 2) / cMinutesADay - 2;
  const int minutes = clock - carry * cMinutesADay;
  const year_month_day shifted(sys_days(date) + days(carry));
  const int shiftedYear = int{shifted.year()};

  return Format(u"%s%s-%s-%sT%s:%s:%s.%s%s",
                {shiftedYear < 0 ? u"-" : u"", ZmPadLeft(IntToStr(std::abs(shiftedYear)), 4, u'0'),
                 TwoDigits(static_cast<int>(unsigned{shifted.month()})),
                 TwoDigits(static_cast<int>(unsigned{shifted.day()})), TwoDigits(minutes / 60), TwoDigits(minutes % 60),
                 TwoDigits(parts.Second), ZmPadLeft(IntToStr(parts.Millisecond), 3, u'0'), OffsetText(Offset)});
}

}  // namespace

#define ZM_CHECK_ONE_PARAMETER(Name, Argument) \
  CheckCount(1, 1, u"The \"fn:" Name u"(" Argument u")\" function must have 1 parameter!")

// Number is that of the duration D, without its sign.
#define ZM_DURATION_FUNCTION(Suffix, Name, Number)                                                   \
  void TZmXPathFn##Suffix::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {      \
    ZM_CHECK_ONE_PARAMETER(Name, u"arg");                                                            \
    Result = Null();                                                                                 \
    const auto* list = dynamic_cast<const TZmXPathListTerm*>(&Param(0));                             \
    if (list && list->Count() == 0) return;                                                          \
    const Variant argument = ParamValue(0, List, Position);                                          \
    if (VarIsArray(argument))                                                                        \
      throw EZmXPathException(u"FORG0006", u"An invalid parameter was passed to fn:" Name u"(arg)"); \
    const TZmDuration D = ZmXMLToDuration(ZmVarToStr(argument));                                     \
    Result = Number;                                                                                 \
    if (D.Negative) Result = VarNeg(Result);                                                         \
  }

ZM_DURATION_FUNCTION(YearsFromDuration, u"years-from-duration", D.Months / 12)
ZM_DURATION_FUNCTION(MonthsFromDuration, u"months-from-duration", D.Months)
ZM_DURATION_FUNCTION(DaysFromDuration, u"days-from-duration", WholeSeconds(D) / cSecondsADay)
ZM_DURATION_FUNCTION(HoursFromDuration, u"hours-from-duration", WholeSeconds(D) % cSecondsADay / 3600)
ZM_DURATION_FUNCTION(MinutesFromDuration, u"minutes-from-duration", WholeSeconds(D) % 3600 / 60)
ZM_DURATION_FUNCTION(SecondsFromDuration, u"seconds-from-duration", D.Seconds)

#undef ZM_DURATION_FUNCTION

// Field is one of the parts P, as the text has it.
#define ZM_FIELD_FUNCTION(Suffix, Name, Argument, Field)                                        \
  void TZmXPathFn##Suffix::Value(Variant& Result, const TZmDOMObjectList& List, int Position) { \
    ZM_CHECK_ONE_PARAMETER(Name, Argument);                                                     \
    const TZmDateTimeParts P = ZmDecodeISODateTime(ParamText(0, List, Position));               \
    Result = Field;                                                                             \
  }

ZM_FIELD_FUNCTION(YearFromDateTime, u"year-from-dateTime", u"dateTime", P.Negative ? -P.Year : P.Year)
ZM_FIELD_FUNCTION(MonthFromDateTime, u"month-from-dateTime", u"dateTime", P.Month)
ZM_FIELD_FUNCTION(DayFromDateTime, u"day-from-dateTime", u"dateTime", P.Day)
ZM_FIELD_FUNCTION(HoursFromDateTime, u"hours-from-dateTime", u"dateTime", P.Hour)
ZM_FIELD_FUNCTION(MinutesFromDateTime, u"minutes-from-dateTime", u"dateTime", P.Minute)
ZM_FIELD_FUNCTION(SecondsFromDateTime, u"seconds-from-dateTime", u"dateTime", Seconds(P))
ZM_FIELD_FUNCTION(YearFromDate, u"year-from-date", u"date", P.Negative ? -P.Year : P.Year)
ZM_FIELD_FUNCTION(MonthFromDate, u"month-from-date", u"date", P.Month)
ZM_FIELD_FUNCTION(DayFromDate, u"day-from-date", u"date", P.Day)
ZM_FIELD_FUNCTION(HoursFromTime, u"hours-from-time", u"time", P.Hour)
ZM_FIELD_FUNCTION(MinutesFromTime, u"minutes-from-time", u"time", P.Minute)
ZM_FIELD_FUNCTION(SecondsFromTime, u"seconds-from-time", u"time", Seconds(P))

#undef ZM_FIELD_FUNCTION

#define ZM_ZONE_FUNCTION(Suffix, Name, Argument)                                                \
  void TZmXPathFn##Suffix::Value(Variant& Result, const TZmDOMObjectList& List, int Position) { \
    ZM_CHECK_ONE_PARAMETER(Name, Argument);                                                     \
    Result = ZoneOf(ParamText(0, List, Position));                                              \
  }

ZM_ZONE_FUNCTION(TimeZoneFromDateTime, u"timezone-from-dateTime", u"dateTime")
ZM_ZONE_FUNCTION(TimeZoneFromDate, u"timezone-from-date", u"date")
ZM_ZONE_FUNCTION(TimeZoneFromTime, u"timezone-from-time", u"time")

#undef ZM_ZONE_FUNCTION
#undef ZM_CHECK_ONE_PARAMETER

void TZmXPathFnDateTime::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(2, 2, u"The \"fn:dateTime(date, time)\" function must have 2 parameters!");
  const TZmDateTimeParts date = ZmDecodeISODateTime(ParamText(0, List, Position));
  const TZmDateTimeParts time = ZmDecodeISODateTime(ParamText(1, List, Position));
  const bool dateHasZone = date.TimeZoneFormat != tzfNone;
  if (dateHasZone && time.TimeZoneFormat != tzfNone && date.OffsetMinutes != time.OffsetMinutes)
    throw EZmXPathException(u"FORG0008", u"An invalid parameter was passed to fn:dateTime(arg)");
  const TDateTime value =
      EncodeDateTime(date.Year, date.Month, date.Day, time.Hour, time.Minute, time.Second, time.Millisecond);
  String text = ZmDateTimeToXML(date.Negative ? TDateTime(-value) : value);
  const TZmDateTimeParts& zone = dateHasZone ? date : time;
  if (zone.TimeZoneFormat == tzfUTC) text += u'Z';
  if (zone.TimeZoneFormat == tzfOffset) text += OffsetText(zone.OffsetMinutes);
  Result = std::move(text);
}

void TZmXPathFnAdjustDateTimeToTimeZone::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(0, 2,
             u"The \"fn:adjust-dateTime-to-timezone(dt,timezone)\" function may not have more than 2 parameters!");
  const auto text = ParamOrContextText(List, Position);
  Result =
      Adjusted(text, ParamCount() < 2 ? LocalOffset(text) : OffsetOf(ZmXMLToDuration(ParamText(1, List, Position))));
}

// A duration or a zone for a date or time alone is not taken up: these two have no value.
void TZmXPathFnAdjustDateToTimeZone::Value(Variant& Result, const TZmDOMObjectList&, int) { Result = Variant(); }

void TZmXPathFnAdjustTimeToTimeZone::Value(Variant& Result, const TZmDOMObjectList&, int) { Result = Variant(); }

}  // namespace zm
