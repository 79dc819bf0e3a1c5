#include "zamrit/common/DateTimeUtils.h"

#include <chrono>
#include <cstddef>

#include "zamrit/platform/ASCIIDetail.h"
#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/TimeZone.h"

namespace zm {

using detail::IsDigit;

namespace {

constexpr int cGreatestOffset = 14 * 60;
constexpr std::int64_t cMillisecondsADay = 86'400'000;

// A cursor over the text of a date and time. What is refused leaves false.
class TDecoder {
 public:
  explicit TDecoder(StringView Text) : FNext(Text.data()), FEnd(Text.data() + Text.size()) {}

  bool Decode(TZmDateTimeParts& Parts) {
    Parts.Negative = Skip(u'-');
    const std::size_t digits = CountDigits();
    if (digits == 2) return Time(Parts, true) && Zone(Parts) && FNext == FEnd;
    if (!Date(digits, Parts)) return false;
    if (FNext != FEnd && (*FNext == u'T' || *FNext == u't' || *FNext == u' ')) {
      ++FNext;
      if (!Time(Parts, false)) return false;
    }
    return Zone(Parts) && FNext == FEnd;
  }

 private:
  bool Skip(char16_t C) {
    if (FNext == FEnd || *FNext != C) return false;
    ++FNext;
    return true;
  }

  bool AtDigit() const { return FNext != FEnd && IsDigit(*FNext); }

  std::size_t CountDigits() const {
    const char16_t* p = FNext;
    while (p != FEnd && IsDigit(*p)) ++p;
    return static_cast<std::size_t>(p - FNext);
  }

  bool Two(std::uint16_t& Value) {
    if (FEnd - FNext < 2 || !IsDigit(FNext[0]) || !IsDigit(FNext[1])) return false;
    Value = static_cast<std::uint16_t>((FNext[0] - u'0') * 10 + (FNext[1] - u'0'));
    FNext += 2;
    return true;
  }

  bool Year(std::size_t Digits, std::uint16_t& Value) {
    std::uint32_t year = 0;
    for (; Digits > 0; --Digits) {
      year = year * 10 + static_cast<std::uint32_t>(*FNext++ - u'0');
      if (year > UINT16_MAX) return false;
    }
    Value = static_cast<std::uint16_t>(year);
    return true;
  }

  bool Date(std::size_t Digits, TZmDateTimeParts& Parts) {
    Parts.HasDate = true;
    if (Digits == 8)  // no year reaches that far
      return Year(4, Parts.Year) && Two(Parts.Month) && Two(Parts.Day);
    return Digits >= 4 && Year(Digits, Parts.Year) && Skip(u'-') && Two(Parts.Month) && Skip(u'-') && Two(Parts.Day);
  }

  bool Time(TZmDateTimeParts& Parts, bool NeedsColon) {
    Parts.HasTime = true;
    if (!Two(Parts.Hour)) return false;
    const bool hasColon = Skip(u':');
    if ((NeedsColon && !hasColon) || !Two(Parts.Minute)) return false;
    if (hasColon ? !Skip(u':') : !AtDigit()) return true;
    if (!Two(Parts.Second)) return false;
    return !(Skip(u'.') || Skip(u',')) || Fraction(Parts.Millisecond);
  }

  bool Fraction(std::uint16_t& Milliseconds) {
    if (!AtDigit()) return false;
    int value = 0, digits = 0;
    for (; AtDigit(); ++FNext)
      if (digits < 3) {
        value = value * 10 + (*FNext - u'0');
        ++digits;
      }
    for (; digits < 3; ++digits) value *= 10;
    Milliseconds = static_cast<std::uint16_t>(value);
    return true;
  }

  bool Zone(TZmDateTimeParts& Parts) {
    if (Skip(u'Z') || Skip(u'z')) {
      Parts.TimeZoneFormat = tzfUTC;
      return true;
    }
    const bool west = Skip(u'-');
    if (!west && !Skip(u'+')) return true;
    std::uint16_t hours = 0, minutes = 0;
    if (!Two(hours)) return false;
    if ((Skip(u':') || AtDigit()) && !Two(minutes)) return false;
    const int offset = hours * 60 + minutes;
    if (minutes > 59 || offset > cGreatestOffset) return false;
    Parts.TimeZoneFormat = tzfOffset;
    Parts.OffsetMinutes = static_cast<std::int16_t>(west ? -offset : offset);
    return true;
  }

  const char16_t* FNext;
  const char16_t* FEnd;
};

// A time alone has the day 0, or one beside it once an offset has been applied; zones kept local mean time then.
template <class F>
TDateTime WithDate(TDateTime Value, F Today) {
  const std::int64_t value = DateTimeToMilliseconds(Value);
  return value >= -cMillisecondsADay && value < 2 * cMillisecondsADay ? MillisecondsToDateTime(Today() + value) : Value;
}

// Milliseconds since day 0.
std::int64_t NowUTC() {
  using namespace std::chrono;
  constexpr std::int64_t epoch = 25569 * cMillisecondsADay;
  return epoch + duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

std::int64_t DayOf(std::int64_t Milliseconds) { return Milliseconds - Milliseconds % cMillisecondsADay; }

}  // namespace

TZmDateTimeParts ZmDecodeISODateTime(StringView Text) {
  TZmDateTimeParts parts;
  if (!TDecoder(Trim(Text)).Decode(parts)) throw EConvertError(u"'%s' is not a valid date and time value", {Text});
  return parts;
}

std::int32_t TZmTimeZones::OffsetAtUTC(TDateTime UTC) {
  return LocalOffsetAtUTC(WithDate(UTC, [] { return DayOf(NowUTC()); }));
}

std::int32_t TZmTimeZones::OffsetAtLocal(TDateTime Local) {
  return LocalOffset(WithDate(Local, [] {
    const std::int64_t now = NowUTC();
    return DayOf(now + std::int64_t{LocalOffsetAtUTC(MillisecondsToDateTime(now))} * 1000);
  }));
}

void ZmCalcTimeZoneOffset(TDateTime Value, int& Sign, int& Hours, int& Minutes) {
  const std::int32_t minutes = TZmTimeZones::OffsetAtLocal(Value) / 60;
  Sign = (minutes > 0) - (minutes < 0);
  Hours = Sign * minutes / 60;
  Minutes = Sign * minutes % 60;
}

TDateTime ZmLocalToUTC(TDateTime Value) {
  return IncMilliSecond(Value, std::int64_t{TZmTimeZones::OffsetAtLocal(Value)} * -1000);
}

TDateTime ZmUTCToLocal(TDateTime Value) {
  return IncMilliSecond(Value, std::int64_t{TZmTimeZones::OffsetAtUTC(Value)} * 1000);
}

TZmDuration ZmEncodeDuration(std::uint16_t Years, std::uint16_t Months, std::uint16_t Days, std::uint16_t Hours,
                             std::uint16_t Minutes, std::uint16_t Seconds, std::uint16_t Milliseconds, bool Negative) {
  return {Negative, Years * 12 + Months,
          Days * 86400.0 + Hours * 3600.0 + Minutes * 60.0 + Seconds + Milliseconds / 1000.0};
}

}  // namespace zm
