#pragma once

#include <cstdint>

#include "zamrit/platform/DateTime.h"
#include "zamrit/platform/Strings.h"

namespace zm {

/// What a text says of its time zone: nothing, an offset, or "Z".
enum TZmTimeZoneFormat { tzfNone, tzfOffset, tzfUTC };

/// The fields of a date and time as a text gives them; fields of a part that is not there are 0.
struct TZmDateTimeParts {
  bool HasDate = false;
  std::uint16_t Year = 0, Month = 0, Day = 0;
  bool HasTime = false;
  std::uint16_t Hour = 0, Minute = 0, Second = 0, Millisecond = 0;
  bool Negative = false;  ///< the text begins with "-"
  TZmTimeZoneFormat TimeZoneFormat = tzfNone;
  std::int16_t OffsetMinutes = 0;  ///< east of UTC, for tzfOffset

  friend bool operator==(const TZmDateTimeParts& Left, const TZmDateTimeParts& Right) = default;
};

/// Reads a date, a time, or a date, "T" or a blank, and a time. Blanks around it do not count.
/// - "-" may stand in front of everything.
/// - A date is YYYY-MM-DD, with more digits for a year up to 65535, or YYYYMMDD.
/// - A time is hh:mm or hh:mm:ss; behind a date also hhmm or hhmmss. Seconds may have a fraction behind "." or ",",
///   which is cut to milliseconds.
/// - A zone is "Z", or a sign and hh:mm, hhmm or hh, up to 14:00.
///
/// Fields are not checked against the calendar or the clock: EncodeDateTime does that. Raises EConvertError
/// "'%s' is not a valid date and time value" for any other text. Allocates nothing else.
TZmDateTimeParts ZmDecodeISODateTime(StringView Text);

/// The rules of the time zone of this machine. A value without a date counts as a time of today: its day is 0, or one
/// beside it, where a time of day lies once an offset has been applied.
/// Raises EConvertError for a value that is no date and time.
class TZmTimeZones {
 public:
  /// Seconds east of UTC at a moment given in local time, or in UTC.
  static std::int32_t OffsetAtLocal(TDateTime Local);
  static std::int32_t OffsetAtUTC(TDateTime UTC);
};

/// The offset of local time at a moment given in it, cut to whole minutes. Sign is -1 west of UTC, 0 on it, 1 east.
void ZmCalcTimeZoneOffset(TDateTime Value, int& Sign, int& Hours, int& Minutes);
/// The same moment in UTC, and in local time. A time without a date stays one, but may pass into the day before or
/// behind.
TDateTime ZmLocalToUTC(TDateTime Value);
TDateTime ZmUTCToLocal(TDateTime Value);

/// A duration: calendar months, and seconds, which have no fixed relation to them.
struct TZmDuration {
  bool Negative = false;
  std::int32_t Months = 0;
  double Seconds = 0;

  friend bool operator==(const TZmDuration& Left, const TZmDuration& Right) = default;
};

/// The duration of these fields together.
TZmDuration ZmEncodeDuration(std::uint16_t Years, std::uint16_t Months, std::uint16_t Days, std::uint16_t Hours,
                             std::uint16_t Minutes, std::uint16_t Seconds, std::uint16_t Milliseconds, bool Negative);

}  // namespace zm
