#include "zamrit/platform/TimeZone.h"

#include <ctime>

namespace zm {

namespace {

constexpr std::int64_t cUnixDay = 25569;  // 1 January 1970
constexpr std::int64_t cDaySeconds = 86400;

/// Seconds since 1970 as if the value were UTC, rounded down.
std::int64_t UnixSeconds(TDateTime Value) {
  const std::int64_t milliseconds = DateTimeToMilliseconds(Value);
  return (milliseconds - (milliseconds % 1000 + 1000) % 1000) / 1000 - cUnixDay * cDaySeconds;
}

struct TOffset {
  std::int32_t Seconds;
  bool Daylight;
};

TOffset OffsetAt(std::int64_t UnixUTC) {
  const auto time = static_cast<std::time_t>(UnixUTC);
  std::tm fields{};
  if (!localtime_r(&time, &fields)) return {0, false};
  return {static_cast<std::int32_t>(fields.tm_gmtoff), fields.tm_isdst > 0};
}

}  // namespace

std::int32_t LocalOffsetAtUTC(TDateTime UTC) { return OffsetAt(UnixSeconds(UTC)).Seconds; }

std::int32_t LocalOffset(TDateTime Local) {
  const std::int64_t local = UnixSeconds(Local);
  // Offsets in force a day before and behind: the right one is among them, unless rules change twice in two days.
  const TOffset before = OffsetAt(local - cDaySeconds);
  const TOffset behind = OffsetAt(local + cDaySeconds);
  if (before.Seconds == behind.Seconds) return before.Seconds;
  const bool fitsBefore = OffsetAt(local - before.Seconds).Seconds == before.Seconds;
  const bool fitsBehind = OffsetAt(local - behind.Seconds).Seconds == behind.Seconds;
  if (fitsBefore && fitsBehind) return before.Daylight ? behind.Seconds : before.Seconds;
  return fitsBehind ? behind.Seconds : before.Seconds;
}

}  // namespace zm
