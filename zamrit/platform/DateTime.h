#pragma once

#include <cstdint>

#include "zamrit/platform/Exceptions.h"

namespace zm {

/// A moment as a number of days since 30 December 1899; the fraction is the time of the day. A negative one counts its
/// time forward from its day: -1.25 is 29 December 1899, 06:00.
class TDateTime {
 public:
  constexpr TDateTime(double Days = 0) : FDays(Days) {}  // NOLINT(google-explicit-constructor)
  constexpr operator double() const { return FDays; }    // NOLINT(google-explicit-constructor)

 private:
  double FDays;
};

/// A date, a time of the day, and the same three that are kept in UTC. They differ in their type alone.
class TDate : public TDateTime {
 public:
  using TDateTime::TDateTime;
  constexpr TDate(TDateTime Value) : TDateTime(Value) {}  // NOLINT(google-explicit-constructor)
};
class TTime : public TDateTime {
 public:
  using TDateTime::TDateTime;
  constexpr TTime(TDateTime Value) : TDateTime(Value) {}  // NOLINT(google-explicit-constructor)
};
class TZmUTCDate : public TDate {
 public:
  using TDate::TDate;
  constexpr TZmUTCDate(TDateTime Value) : TDate(Value) {}  // NOLINT(google-explicit-constructor)
};
class TZmUTCTime : public TTime {
 public:
  using TTime::TTime;
  constexpr TZmUTCTime(TDateTime Value) : TTime(Value) {}  // NOLINT(google-explicit-constructor)
};
class TZmUTCDateTime : public TDateTime {
 public:
  using TDateTime::TDateTime;
  constexpr TZmUTCDateTime(TDateTime Value) : TDateTime(Value) {}  // NOLINT(google-explicit-constructor)
};

/// \name From fields
/// Years 1 to 9999 of the Gregorian calendar, hours 0 to 23, minutes and seconds 0 to 59, milliseconds 0 to 999. Other
/// fields raise EConvertError "Invalid argument to date encode" or "Invalid argument to time encode", or give false.
///@{
TDateTime EncodeDate(int Year, int Month, int Day);
TDateTime EncodeTime(int Hour, int Minute, int Second, int Millisecond);
TDateTime EncodeDateTime(int Year, int Month, int Day, int Hour, int Minute, int Second, int Millisecond);
bool TryEncodeDate(int Year, int Month, int Day, TDateTime& Value);
bool TryEncodeTime(int Hour, int Minute, int Second, int Millisecond, TDateTime& Value);
///@}

/// \name Into fields
/// Rounded to the millisecond, which may carry into the next day. Outside the years 1 to 9999 they raise EConvertError
/// "The value is not a valid date and time".
///@{
void DecodeDate(TDateTime Value, std::uint16_t& Year, std::uint16_t& Month, std::uint16_t& Day);
void DecodeTime(TDateTime Value, std::uint16_t& Hour, std::uint16_t& Minute, std::uint16_t& Second,
                std::uint16_t& Millisecond);
void DecodeDateTime(TDateTime Value, std::uint16_t& Year, std::uint16_t& Month, std::uint16_t& Day, std::uint16_t& Hour,
                    std::uint16_t& Minute, std::uint16_t& Second, std::uint16_t& Millisecond);
///@}

/// The milliseconds from 30 December 1899, 00:00, to a moment, and back. EConvertError outside the years 1 to 9999.
std::int64_t DateTimeToMilliseconds(TDateTime Value);
TDateTime MillisecondsToDateTime(std::int64_t Milliseconds);

/// A later moment, or an earlier one for a negative number. EConvertError where a moment lies outside the years 1 to
/// 9999.
TDateTime IncMinute(TDateTime Value, std::int64_t Minutes = 1);
TDateTime IncMilliSecond(TDateTime Value, std::int64_t Milliseconds = 1);

/// The day at 00:00, and the time of the day alone.
TDateTime DateOf(TDateTime Value);
TDateTime TimeOf(TDateTime Value);

}  // namespace zm
