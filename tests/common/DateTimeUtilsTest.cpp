#include "zamrit/common/DateTimeUtils.h"

#include <gtest/gtest.h>

#include "tests/support/Raised.h"
#include "tests/support/Zone.h"
#include "zamrit/common/SysUtils.h"
#include "zamrit/platform/Exceptions.h"

namespace {

using zm::String;
using zm::StringView;

TEST(ISODateTime, IsDecoded) {
  const std::pair<StringView, zm::TZmDateTimeParts> cases[] = {
      {u"2024-03-01", {true, 2024, 3, 1}},
      {u" \r\n2024-03-01Z\t", {true, 2024, 3, 1, false, 0, 0, 0, 0, false, zm::tzfUTC, 0}},
      {u"2024-03-01-05:30", {true, 2024, 3, 1, false, 0, 0, 0, 0, false, zm::tzfOffset, -330}},
      {u"-65535-99-00", {true, 65535, 99, 0, false, 0, 0, 0, 0, true, zm::tzfNone, 0}},
      {u"10:20", {false, 0, 0, 0, true, 10, 20, 0, 0}},
      {u"-10:20:30+00:00", {false, 0, 0, 0, true, 10, 20, 30, 0, true, zm::tzfOffset, 0}},
      {u"10:20:30.5", {false, 0, 0, 0, true, 10, 20, 30, 500}},
      {u"10:20:30,0129999999999999999999z", {false, 0, 0, 0, true, 10, 20, 30, 12, false, zm::tzfUTC, 0}},
      {u"2024-03-01T10:20:30.123+02:00", {true, 2024, 3, 1, true, 10, 20, 30, 123, false, zm::tzfOffset, 120}},
      {u"2024-03-01 99:60", {true, 2024, 3, 1, true, 99, 60, 0, 0}},
      {u"2024-03-01t10:20-1400", {true, 2024, 3, 1, true, 10, 20, 0, 0, false, zm::tzfOffset, -840}},
      {u"20240301T102030.25+05", {true, 2024, 3, 1, true, 10, 20, 30, 250, false, zm::tzfOffset, 300}},
      {u"20240301-05", {true, 2024, 3, 1, false, 0, 0, 0, 0, false, zm::tzfOffset, -300}},
      {u"2024-03-01T1020", {true, 2024, 3, 1, true, 10, 20, 0, 0}}};
  for (const auto& [text, parts] : cases) EXPECT_TRUE(zm::ZmDecodeISODateTime(text) == parts) << zm::ToUTF8(text);
}

TEST(ISODateTime, RefusesOtherTexts) {
  std::vector<String> bad = zm::ZmTokenize(
      u"0;--2024-03-01;65536-01-01;999-01-01;2024-3-01;2024/03/01;2024-03-011;2024-03-01  10:20;1020;10 :20;10:20:3;"
      u"10:20:30.Z;10:20+14:01;10:20+02:60;10:20+2;10:20ZZ;10:20 Z;\u0661\u0660:20;2024-03-01T10Z;Z;+02:00;"
      u"2024-03-01T10:20T",
      u";");
  bad.emplace_back(100'000, u'9');
  const String whole = u"2024-03-01T10:20:30.1+02:00";
  for (std::size_t size = 0; size < whole.size(); ++size)
    if (size != 10 && size != 16 && size != 19 && size != 21 && size != 24) bad.push_back(whole.substr(0, size));
  for (const String& text : bad)
    EXPECT_EQ(Raised<zm::EConvertError>([&] { zm::ZmDecodeISODateTime(text); }),
              zm::ToUTF8(zm::Format(u"'%s' is not a valid date and time value", {text})));
}

std::int64_t Milliseconds(zm::TDateTime Value) { return zm::DateTimeToMilliseconds(Value); }

TEST(TimeZones, GiveOffsetsOfLocalTime) {
  const struct {
    const char* Zone;
    zm::TDateTime Local;
    int Sign, Hours, Minutes;
  } cases[] = {{"UTC0", zm::EncodeDate(2024, 3, 1), 0, 0, 0},
               {"IST-5:30", zm::EncodeDate(2024, 3, 1), 1, 5, 30},
               {"NST3:30", zm::EncodeDate(2024, 3, 1), -1, 3, 30},
               {"ODD0:00:40", zm::EncodeDate(2024, 3, 1), 0, 0, 0},
               {"ODD-1:02:59", zm::EncodeDate(2024, 3, 1), 1, 1, 2},
               {"CET-1CEST,M3.5.0,M10.5.0/3", zm::EncodeDate(2024, 7, 1), 1, 2, 0}};
  for (const auto& c : cases) {
    const TZone zone(c.Zone);
    int sign = 9, hours = 9, minutes = 9;
    zm::ZmCalcTimeZoneOffset(c.Local, sign, hours, minutes);
    EXPECT_EQ(std::tuple(sign, hours, minutes), std::tuple(c.Sign, c.Hours, c.Minutes)) << c.Zone;
  }
}

TEST(TimeZones, ConvertBothWays) {
  const TZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
  const zm::TDateTime march = zm::EncodeDate(2024, 3, 31), july = zm::EncodeDate(2024, 7, 1);
  const std::tuple<zm::TDateTime, int, int> cases[] = {{july, 30, -90}, {march, 119, 59}, {march, 180, 60}};
  for (const auto& [day, localMinutes, utcMinutes] : cases) {
    const auto local = Milliseconds(day) + localMinutes * 60'000 + 1, utc = Milliseconds(day) + utcMinutes * 60'000 + 1;
    EXPECT_EQ(Milliseconds(zm::ZmLocalToUTC(zm::MillisecondsToDateTime(local))), utc);
    EXPECT_EQ(Milliseconds(zm::ZmUTCToLocal(zm::MillisecondsToDateTime(utc))), local);
  }
}

// The zone has summer time all the year, but not in the year of day 0.
TEST(TimeZones, TimesWithoutDateAreOfToday) {
  const TZone zone("STD-2DST-7,0/0,J365/23");
  for (const int hour : {-1, 0, 5, 17, 23, 25}) {
    const auto utc = zm::MillisecondsToDateTime(hour * 3'600'000), local = zm::ZmUTCToLocal(utc);
    EXPECT_EQ(Milliseconds(local), (hour + 7) * 3'600'000);
    EXPECT_EQ(Milliseconds(zm::ZmLocalToUTC(local)), Milliseconds(utc));
  }
}

TEST(Duration, IsEncoded) {
  EXPECT_TRUE(zm::ZmEncodeDuration(1, 2, 1, 1, 1, 1, 500, true) == (zm::TZmDuration{true, 14, 90061.5}));
  EXPECT_TRUE(zm::ZmEncodeDuration(65535, 65535, 65535, 0, 0, 0, 0, false) ==
              (zm::TZmDuration{false, 851'955, 5'662'224'000.0}));
}

}  // namespace
