#include "zamrit/platform/DateTime.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>

#include "tests/support/Raised.h"
#include "tests/support/Zone.h"
#include "zamrit/platform/TimeZone.h"

namespace {

using namespace zm;

struct TFields {
  std::uint16_t Year, Month, Day, Hour, Minute, Second, Millisecond;
  friend bool operator==(const TFields&, const TFields&) = default;
};

TFields FieldsOf(TDateTime Value) {
  TFields f{};
  DecodeDateTime(Value, f.Year, f.Month, f.Day, f.Hour, f.Minute, f.Second, f.Millisecond);
  return f;
}

TEST(DateTimeTest, CountsDays) {
  EXPECT_EQ(0.0, EncodeDate(1899, 12, 30));
  EXPECT_EQ(25569.0, EncodeDate(1970, 1, 1));
  EXPECT_EQ(45351.0, EncodeDate(2024, 2, 29));
  EXPECT_EQ(2958465.0, EncodeDate(9999, 12, 31));
  EXPECT_EQ(-693593.0, EncodeDate(1, 1, 1));
  EXPECT_EQ(0.75, EncodeTime(18, 0, 0, 0));
  EXPECT_EQ(-1.25, EncodeDateTime(1899, 12, 29, 6, 0, 0, 0));
  EXPECT_EQ((TFields{1899, 12, 29, 6, 0, 0, 0}), FieldsOf(-1.25));
  EXPECT_EQ((TFields{1899, 12, 30, 6, 0, 0, 0}), FieldsOf(-0.25));  // the day is 0, whatever its sign
  EXPECT_EQ((TFields{2024, 3, 1, 0, 0, 0, 0}), FieldsOf(EncodeDate(2024, 2, 29) + 0.999999999));
}

TEST(DateTimeTest, RefusesFieldsOutsideTheCalendarAndTheClock) {
  const int dates[][3] = {{0, 1, 1},     {10000, 1, 1}, {2023, 2, 29}, {1900, 2, 29},
                          {2024, 13, 1}, {2024, 0, 1},  {2024, 4, 31}, {2024, 4, 0}};
  for (const auto& d : dates)
    EXPECT_EQ("Invalid argument to date encode", Raised<EConvertError>([&] { EncodeDate(d[0], d[1], d[2]); }));
  const int times[][4] = {{24, 0, 0, 0}, {0, 60, 0, 0}, {0, 0, 60, 0}, {0, 0, 0, 1000}, {-1, 0, 0, 0}};
  for (const auto& t : times)
    EXPECT_EQ("Invalid argument to time encode", Raised<EConvertError>([&] { EncodeTime(t[0], t[1], t[2], t[3]); }));
  TDateTime kept = 5;
  EXPECT_FALSE(TryEncodeDate(2023, 2, 29, kept));
  EXPECT_EQ(5.0, kept);
  for (double value : {-693594.0, 2958466.0, 2958465.9999999999, 1e300, -HUGE_VAL, std::nan("")})
    EXPECT_EQ("The value is not a valid date and time", Raised<EConvertError>([&] { FieldsOf(value); })) << value;
}

TEST(DateTimeTest, ReadsBackEveryMillisecond) {
  std::mt19937_64 random(3);
  const std::int64_t first = DateTimeToMilliseconds(EncodeDate(1, 1, 1));
  const std::int64_t last = DateTimeToMilliseconds(EncodeDateTime(9999, 12, 31, 23, 59, 59, 999));
  std::uniform_int_distribution<std::int64_t> any(first, last), near(-200000000, 200000000);
  for (int i = 0; i < 20000; ++i) {
    const std::int64_t moment = i % 2 != 0 ? any(random) : near(random);
    const TDateTime value = MillisecondsToDateTime(moment);
    ASSERT_EQ(moment, DateTimeToMilliseconds(value));
    const TFields f = FieldsOf(value);
    ASSERT_EQ(moment, DateTimeToMilliseconds(
                          EncodeDateTime(f.Year, f.Month, f.Day, f.Hour, f.Minute, f.Second, f.Millisecond)));
    ASSERT_EQ(DateTimeToMilliseconds(DateOf(value)) + DateTimeToMilliseconds(TimeOf(value)), moment);
    const std::int64_t minutes = near(random) / 60000;
    ASSERT_EQ(moment / 2 + minutes * 60000,
              DateTimeToMilliseconds(IncMinute(MillisecondsToDateTime(moment / 2), minutes)));
  }
  EXPECT_EQ((TFields{1899, 12, 29, 23, 59, 0, 0}), FieldsOf(IncMinute(0, -1)));
  EXPECT_EQ((TFields{1899, 12, 30, 0, 0, 0, 1}), FieldsOf(IncMilliSecond(IncMinute(0, -1), 60001)));
  EXPECT_THROW(IncMinute(EncodeDate(9999, 12, 31), 1440), EConvertError);
  EXPECT_THROW(IncMilliSecond(0, std::numeric_limits<std::int64_t>::min()), EConvertError);
}

TEST(DateTimeTest, KnowsTheOffsetOfLocalTime) {
  struct TCase {
    const char* Zone;
    TFields Local;
    int Offset;  // seconds
  };
  const TCase cases[] = {
      {"UTC", {2024, 7, 1, 12, 0, 0, 0}, 0},
      {"Europe/Amsterdam", {2024, 1, 1, 12, 0, 0, 0}, 3600},
      {"Europe/Amsterdam", {2024, 7, 1, 12, 0, 0, 0}, 7200},
      {"Europe/Amsterdam", {2024, 3, 31, 1, 59, 59, 999}, 3600},
      {"Europe/Amsterdam", {2024, 3, 31, 2, 30, 0, 0}, 3600},  // left out
      {"Europe/Amsterdam", {2024, 3, 31, 3, 0, 0, 0}, 7200},
      {"Europe/Amsterdam", {2024, 10, 27, 2, 30, 0, 0}, 3600},  // comes twice
      {"Europe/Amsterdam", {2024, 10, 27, 1, 59, 0, 0}, 7200},
      {"America/New_York", {2024, 7, 1, 12, 0, 0, 0}, -14400},
      {"America/New_York", {2024, 11, 3, 1, 30, 0, 0}, -18000},
      {"Asia/Kolkata", {2024, 7, 1, 12, 0, 0, 0}, 19800},
      {"Australia/Lord_Howe", {2024, 1, 1, 12, 0, 0, 0}, 39600},
      {"Australia/Lord_Howe", {2024, 7, 1, 12, 0, 0, 0}, 37800},
      {"America/New_York", {1883, 1, 1, 12, 0, 0, 0}, -17762},
      {"Europe/Amsterdam", {9999, 7, 1, 12, 0, 0, 0}, 7200},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(std::string(c.Zone) + " " + std::to_string(c.Local.Year) + "-" + std::to_string(c.Local.Month));
    const TZone zone(c.Zone);
    const TFields& f = c.Local;
    const TDateTime local = EncodeDateTime(f.Year, f.Month, f.Day, f.Hour, f.Minute, f.Second, f.Millisecond);
    EXPECT_EQ(c.Offset, LocalOffset(local));
  }
  // Whatever is in force in UTC is in force at the local time that it makes, unless that comes twice.
  const TZone zone("America/New_York");
  for (int day = 0; day < 730; ++day) {
    const TDateTime utc = EncodeDate(2023, 1, 1) + day + 0.1;
    const std::int32_t offset = LocalOffsetAtUTC(utc);
    EXPECT_EQ(offset, LocalOffset(IncMilliSecond(utc, offset * std::int64_t{1000}))) << day;
  }
  EXPECT_THROW(LocalOffset(1e10), EConvertError);
}

}  // namespace
