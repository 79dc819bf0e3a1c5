#pragma once

#include "zamrit/common/DateTimeUtils.h"
#include "zamrit/platform/DateTime.h"
#include "zamrit/platform/Strings.h"
#include "zamrit/platform/Variant.h"

namespace zm {

/// How a date or time stands in XML: in local time without a zone, in UTC, or in local time with its offset.
enum TZmXMLDateTimeFormat { xdtfLocal, xdtfUTC, xdtfTimezone };

/// \name Dates and times as XML text
/// "2024-03-01", "10:00:00.000" and "2024-03-01T10:00:00.000", followed by "+02:00" for tzfOffset and by "Z" for
/// tzfUTC, which is written in UTC. Value is local time. Raises EConvertError for a value that is no date and time.
///@{
String ZmDateToXML(TDateTime Value, TZmTimeZoneFormat Format = tzfNone);
String ZmDateToXML(TDateTime Value, TZmXMLDateTimeFormat Format);
String ZmTimeToXML(TDateTime Value, TZmTimeZoneFormat Format = tzfNone);
String ZmTimeToXML(TDateTime Value, TZmXMLDateTimeFormat Format);
String ZmDateTimeToXML(TDateTime Value, TZmTimeZoneFormat Format = tzfNone);
String ZmDateTimeToXML(TDateTime Value, TZmXMLDateTimeFormat Format);
///@}

/// \name Dates and times from XML text
/// Texts are those that ZmDecodeISODateTime takes. An empty text and "0" are 0. Format says what is wanted: tzfNone and
/// tzfOffset local time, tzfUTC time in UTC. Without a zone in the text, tzfNone takes it as it is, the other two raise
/// Exception "The XMLDateTime value did not contain timezone information!". A date ignores the zone; of a time, days
/// are dropped. A "-" in front makes the number of days of a date or of a date and time negative. Raises EConvertError
/// for any other text, and for fields outside the calendar or the clock.
///@{
TDateTime ZmXMLToDate(StringView Text);
TDateTime ZmXMLToTime(StringView Text, TZmTimeZoneFormat Format = tzfNone);
TDateTime ZmXMLToTime(StringView Text, TZmXMLDateTimeFormat Format);
TDateTime ZmXMLToDateTime(StringView Text, TZmTimeZoneFormat Format = tzfNone);
TDateTime ZmXMLToDateTime(StringView Text, TZmXMLDateTimeFormat Format);
///@}

/// \name Dates and times from XML text, with a default
/// As above, but where those raise, they give the default.
///@{
TDateTime ZmXMLToDateDef(StringView Text, TDateTime Default);
TDateTime ZmXMLToTimeDef(StringView Text, TDateTime Default, TZmTimeZoneFormat Format = tzfNone);
TDateTime ZmXMLToTimeDef(StringView Text, TDateTime Default, TZmXMLDateTimeFormat Format);
TDateTime ZmXMLToDateTimeDef(StringView Text, TDateTime Default, TZmTimeZoneFormat Format = tzfNone);
TDateTime ZmXMLToDateTimeDef(StringView Text, TDateTime Default, TZmXMLDateTimeFormat Format);
///@}

/// \name Dates and times from a Variant
/// Null gives the default. Numbers, dates and times are a number of days; text is read as above. Raises EConvertError
/// "The given value is not a valid Date value!" (Time, DateTime) for any other value.
///@{
TDateTime ZmXMLToDate(const Variant& Value, TDateTime Default);
TDateTime ZmXMLToTime(const Variant& Value, TDateTime Default, TZmTimeZoneFormat Format = tzfNone);
TDateTime ZmXMLToTime(const Variant& Value, TDateTime Default, TZmXMLDateTimeFormat Format);
TDateTime ZmXMLToDateTime(const Variant& Value, TDateTime Default, TZmTimeZoneFormat Format = tzfNone);
TDateTime ZmXMLToDateTime(const Variant& Value, TDateTime Default, TZmXMLDateTimeFormat Format);
///@}

/// The fields of a date and time in XML text. Raises EConvertError for any other text.
TZmDateTimeParts ZmDecodeXMLDateTime(StringView Text);
/// What the text said of its zone.
TZmXMLDateTimeFormat ZmXMLDateTimeFormat(const TZmDateTimeParts& Parts);

/// A duration such as "P1Y2M1DT1H1M1.5S"; "P0Y" is none. What is left of a second is cut to milliseconds and written
/// without zeros at either end: 5 milliseconds are ".5". Raises ERangeError where the seconds do not fit 64 bits.
String ZmDurationToXML(const TZmDuration& Duration);
/// The duration of a text. Each number is cut to 16 bits. What stands behind the point of the seconds counts in tenths,
/// however many digits it has: "1.5" is a second and 500 milliseconds, "1.25" a second and 2500. Raises Exception for a
/// text that is empty, does not begin with "P" or "-P", or has another designator than Y, M, D, H and S, EConvertError
/// for a number that StrToInt does not take. Linear.
TZmDuration ZmXMLToDuration(StringView Text);

}  // namespace zm
