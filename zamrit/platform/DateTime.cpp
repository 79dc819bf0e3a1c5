#include "zamrit/platform/DateTime.h"

#include <cmath>

namespace zm {

namespace {

constexpr std::int64_t cDay = 86400000;      // milliseconds
constexpr std::int64_t cFirstDay = -693593;  // 1 January 1
constexpr std::int64_t cLastDay = 2958465;   // 31 December 9999

constexpr bool IsLeap(int Year) { return Year % 4 == 0 && (Year % 100 != 0 || Year % 400 == 0); }

constexpr int DaysOfMonth(int Year, int Month) {
  constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return Month == 2 && IsLeap(Year) ? 29 : days[Month - 1];
}

/// Years are counted from March, so that the leap day is the last of its year: day 0 is 1 March of the year 0.
constexpr std::int64_t cMarchToEpoch = 693899;

constexpr std::int64_t DayOf(int Year, int Month, int Day) {
  const int year = Month > 2 ? Year : Year - 1;
  const int month = Month > 2 ? Month - 3 : Month + 9;
  return std::int64_t{365} * year + year / 4 - year / 100 + year / 400 + (153 * month + 2) / 5 + Day - 1 -
         cMarchToEpoch;
}
static_assert(DayOf(1899, 12, 30) == 0 && DayOf(1, 1, 1) == cFirstDay && DayOf(9999, 12, 31) == cLastDay);

struct TCalendarDay {
  int Year, Month, Day;
};

constexpr TCalendarDay CalendarDay(std::int64_t Day) {
  const std::int64_t days = Day + cMarchToEpoch;
  const std::int64_t era = days / 146097;
  const int ofEra = static_cast<int>(days % 146097);
  const int yearOfEra = (ofEra - ofEra / 1460 + ofEra / 36524 - ofEra / 146096) / 365;
  const int ofYear = ofEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const int month = (5 * ofYear + 2) / 153;
  const int year = static_cast<int>(era) * 400 + yearOfEra + (month >= 10 ? 1 : 0);
  return {year, month < 10 ? month + 3 : month - 9, ofYear - (153 * month + 2) / 5 + 1};
}

[[noreturn]] void RaiseInvalid() { throw EConvertError(u"The value is not a valid date and time"); }

struct TDayAndTime {
  std::int64_t Day;
  std::int64_t Time;  // milliseconds of the day
};

TDayAndTime Split(TDateTime Value) {
  const std::int64_t all = DateTimeToMilliseconds(Value);
  const std::int64_t time = (all % cDay + cDay) % cDay;
  return {(all - time) / cDay, time};
}

TDateTime Join(std::int64_t Day, std::int64_t Time) {
  const double time = static_cast<double>(Time) / cDay;
  return static_cast<double>(Day) + (Day < 0 ? -time : time);
}

void SplitTime(std::int64_t Time, std::uint16_t& Hour, std::uint16_t& Minute, std::uint16_t& Second,
               std::uint16_t& Millisecond) {
  Hour = static_cast<std::uint16_t>(Time / 3600000);
  Minute = static_cast<std::uint16_t>(Time / 60000 % 60);
  Second = static_cast<std::uint16_t>(Time / 1000 % 60);
  Millisecond = static_cast<std::uint16_t>(Time % 1000);
}

void SplitDay(std::int64_t Value, std::uint16_t& Year, std::uint16_t& Month, std::uint16_t& Day) {
  const TCalendarDay day = CalendarDay(Value);
  Year = static_cast<std::uint16_t>(day.Year);
  Month = static_cast<std::uint16_t>(day.Month);
  Day = static_cast<std::uint16_t>(day.Day);
}

TDateTime Later(TDateTime Value, std::int64_t Number, std::int64_t Unit) {
  constexpr std::int64_t limit = (cLastDay - cFirstDay + 1) * cDay;
  if (Number > limit / Unit || Number < -limit / Unit) RaiseInvalid();
  return MillisecondsToDateTime(DateTimeToMilliseconds(Value) + Number * Unit);
}

}  // namespace

bool TryEncodeDate(int Year, int Month, int Day, TDateTime& Value) {
  if (Year < 1 || Year > 9999 || Month < 1 || Month > 12 || Day < 1 || Day > DaysOfMonth(Year, Month)) return false;
  Value = static_cast<double>(DayOf(Year, Month, Day));
  return true;
}

bool TryEncodeTime(int Hour, int Minute, int Second, int Millisecond, TDateTime& Value) {
  if (Hour < 0 || Hour > 23 || Minute < 0 || Minute > 59 || Second < 0 || Second > 59 || Millisecond < 0 ||
      Millisecond > 999)
    return false;
  Value = Join(0, ((Hour * std::int64_t{60} + Minute) * 60 + Second) * 1000 + Millisecond);
  return true;
}

TDateTime EncodeDate(int Year, int Month, int Day) {
  TDateTime value;
  if (!TryEncodeDate(Year, Month, Day, value)) throw EConvertError(u"Invalid argument to date encode");
  return value;
}

TDateTime EncodeTime(int Hour, int Minute, int Second, int Millisecond) {
  TDateTime value;
  if (!TryEncodeTime(Hour, Minute, Second, Millisecond, value)) throw EConvertError(u"Invalid argument to time encode");
  return value;
}

TDateTime EncodeDateTime(int Year, int Month, int Day, int Hour, int Minute, int Second, int Millisecond) {
  const TDateTime date = EncodeDate(Year, Month, Day);
  const TDateTime time = EncodeTime(Hour, Minute, Second, Millisecond);
  return date < 0 ? date - time : date + time;
}

std::int64_t DateTimeToMilliseconds(TDateTime Value) {
  const double day = std::trunc(Value);
  if (!(day >= cFirstDay && day <= cLastDay)) RaiseInvalid();
  const double time = std::fabs(Value - day) * cDay;
  const std::int64_t result = static_cast<std::int64_t>(day) * cDay + std::llround(time);
  if (result >= (cLastDay + 1) * cDay) RaiseInvalid();
  return result;
}

TDateTime MillisecondsToDateTime(std::int64_t Milliseconds) {
  if (Milliseconds < cFirstDay * cDay || Milliseconds >= (cLastDay + 1) * cDay) RaiseInvalid();
  const std::int64_t time = (Milliseconds % cDay + cDay) % cDay;
  return Join((Milliseconds - time) / cDay, time);
}

void DecodeDate(TDateTime Value, std::uint16_t& Year, std::uint16_t& Month, std::uint16_t& Day) {
  SplitDay(Split(Value).Day, Year, Month, Day);
}

void DecodeTime(TDateTime Value, std::uint16_t& Hour, std::uint16_t& Minute, std::uint16_t& Second,
                std::uint16_t& Millisecond) {
  SplitTime(Split(Value).Time, Hour, Minute, Second, Millisecond);
}

void DecodeDateTime(TDateTime Value, std::uint16_t& Year, std::uint16_t& Month, std::uint16_t& Day, std::uint16_t& Hour,
                    std::uint16_t& Minute, std::uint16_t& Second, std::uint16_t& Millisecond) {
  const TDayAndTime parts = Split(Value);
  SplitDay(parts.Day, Year, Month, Day);
  SplitTime(parts.Time, Hour, Minute, Second, Millisecond);
}

TDateTime IncMinute(TDateTime Value, std::int64_t Minutes) { return Later(Value, Minutes, 60000); }
TDateTime IncMilliSecond(TDateTime Value, std::int64_t Milliseconds) { return Later(Value, Milliseconds, 1); }

TDateTime DateOf(TDateTime Value) { return std::trunc(Value); }
TDateTime TimeOf(TDateTime Value) { return std::fabs(Value - std::trunc(Value)); }

}  // namespace zm
