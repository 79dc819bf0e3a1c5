#include "zamrit/xml/values/DateTimes.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/Raised.h"
#include "tests/support/Zone.h"
#include "zamrit/platform/Exceptions.h"

namespace {

using namespace zm;

constexpr const char *cEurope = "CET-1CEST,M3.5.0,M10.5.0/3", *cAmerica = "EST5EDT,M3.2.0,M11.1.0",
                     *cIndia = "IST-5:30";

std::string InISO(TDateTime Value) { return ToUTF8(ZmDateTimeToXML(Value)); }

TEST(XMLDateTimes, AreWrittenInEachFormat) {
  const TDateTime winter = EncodeDateTime(2024, 3, 1, 0, 0, 0, 0), summer = EncodeDateTime(2024, 7, 9, 23, 5, 6, 78);
  const struct {
    const char* Zone;
    TDateTime Value;
    const char16_t *Date, *Time, *Offset, *DateUTC, *TimeUTC;
  } cases[] = {
      {"UTC", winter, u"2024-03-01", u"00:00:00.000", u"+00:00", u"2024-03-01", u"00:00:00.000"},
      {cEurope, winter, u"2024-03-01", u"00:00:00.000", u"+01:00", u"2024-02-29", u"23:00:00.000"},
      {cEurope, summer, u"2024-07-09", u"23:05:06.078", u"+02:00", u"2024-07-09", u"21:05:06.078"},
      {cAmerica, winter, u"2024-03-01", u"00:00:00.000", u"-05:00", u"2024-03-01", u"05:00:00.000"},
      {cAmerica, summer, u"2024-07-09", u"23:05:06.078", u"-04:00", u"2024-07-10", u"03:05:06.078"},
      {cIndia, winter, u"2024-03-01", u"00:00:00.000", u"+05:30", u"2024-02-29", u"18:30:00.000"},
  };
  for (const auto& c : cases) {
    const TZone zone(c.Zone);
    const String date = c.Date, time = c.Time, offset = c.Offset, dateUTC = c.DateUTC, timeUTC = c.TimeUTC;
    EXPECT_EQ(ZmDateToXML(c.Value, xdtfLocal), date);
    EXPECT_EQ(ZmDateToXML(c.Value, tzfOffset), date + offset);
    EXPECT_EQ(ZmDateToXML(c.Value, xdtfUTC), dateUTC + u"Z");
    EXPECT_EQ(ZmTimeToXML(c.Value, tzfNone), time);
    EXPECT_EQ(ZmTimeToXML(c.Value, xdtfTimezone), time + offset);
    EXPECT_EQ(ZmTimeToXML(c.Value, tzfUTC), timeUTC + u"Z");
    EXPECT_EQ(ZmDateTimeToXML(c.Value), date + u"T" + time);
    EXPECT_EQ(ZmDateTimeToXML(c.Value, xdtfTimezone), date + u"T" + time + offset);
    EXPECT_EQ(ZmDateTimeToXML(c.Value, xdtfUTC), dateUTC + u"T" + timeUTC + u"Z");
    for (const auto format : {tzfNone, tzfOffset, tzfUTC}) {
      const TZmTimeZoneFormat wanted = format == tzfUTC ? tzfOffset : format;
      EXPECT_EQ(InISO(ZmXMLToDateTime(ZmDateTimeToXML(c.Value, format), wanted)), InISO(c.Value));
    }
  }
  const TZone zone("EET-2");
  EXPECT_EQ(ZmTimeToXML(0.5, xdtfUTC), u"10:00:00.000Z");
  EXPECT_EQ(Raised<EConvertError>([] { ZmDateToXML(1e9); }), "The value is not a valid date and time");
}

TEST(XMLDateTimes, LocalTimesSurviveTheChangesOfTheClock) {
  for (const char* name : {cEurope, cAmerica, cIndia}) {
    const TZone zone(name);
    for (int hour = 0; hour < 366 * 24; hour += 7) {
      const TDateTime utc = IncMinute(EncodeDate(2024, 1, 1), hour * 60);
      const String text = ZmDateTimeToXML(utc) + u"Z";
      EXPECT_EQ(InISO(ZmXMLToDateTime(text, tzfUTC)) + "Z", ToUTF8(text));
      EXPECT_EQ(InISO(ZmXMLToDateTime(text, tzfNone)), InISO(ZmUTCToLocal(utc)));
    }
  }
}

TEST(XMLDateTimes, AreReadAsTheFormatAsks) {
  const TZone zone(cEurope);
  const struct {
    const char16_t* Text;
    TZmTimeZoneFormat Format;
    const char* Expected;
  } cases[] = {
      {u"", tzfUTC, "1899-12-30T00:00:00.000"},
      {u"0", tzfOffset, "1899-12-30T00:00:00.000"},
      {u"2024-03-01", tzfNone, "2024-03-01T00:00:00.000"},
      {u"2024-03-01T10:00:00", tzfNone, "2024-03-01T10:00:00.000"},
      {u"2024-03-01T10:00:00.5+03:00", tzfNone, "2024-03-01T08:00:00.500"},
      {u"2024-07-01T10:00:00+03:00", tzfOffset, "2024-07-01T09:00:00.000"},
      {u"2024-03-01T10:00:00+02:00", tzfUTC, "2024-03-01T08:00:00.000"},
      {u"2024-03-01T00:15:00-00:30", tzfUTC, "2024-03-01T00:45:00.000"},
      {u"2024-03-01T10:00:00Z", tzfNone, "2024-03-01T11:00:00.000"},
      {u"2024-07-01T10:00:00Z", tzfOffset, "2024-07-01T12:00:00.000"},
      {u"2024-07-01T10:00:00Z", tzfUTC, "2024-07-01T10:00:00.000"},
      {u"1899-12-29T00:15:00+00:30", tzfUTC, "1899-12-28T23:45:00.000"},
      {u"-1900-01-01", tzfNone, "1899-12-28T00:00:00.000"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(InISO(ZmXMLToDateTime(c.Text, c.Format)), c.Expected) << ToUTF8(c.Text);
    EXPECT_EQ(InISO(ZmXMLToDateTimeDef(c.Text, 5, c.Format)), c.Expected) << ToUTF8(c.Text);
    EXPECT_EQ(InISO(ZmXMLToDateTime(Variant(c.Text), 5, c.Format)), c.Expected) << ToUTF8(c.Text);
  }
  EXPECT_EQ(ZmXMLToDate(u""), 0);
  EXPECT_EQ(ZmXMLToDate(u"0"), 0);
  EXPECT_EQ(ZmXMLToDate(u"2024-03-01Z"), EncodeDate(2024, 3, 1));
  EXPECT_EQ(ZmXMLToDate(u"-2024-03-01T10:00:00+14:00"), -EncodeDate(2024, 3, 1));
  EXPECT_EQ(ZmXMLToTime(u"10:00:00+02:00", xdtfUTC), EncodeTime(8, 0, 0, 0));
  EXPECT_EQ(ZmXMLToTime(u"-10:00:00"), EncodeTime(10, 0, 0, 0));
  EXPECT_NEAR(ZmXMLToTime(u"23:00:00-02:00", tzfUTC), 1. / 24, 1e-9);
  EXPECT_EQ(ZmXMLToTime(u"2024-03-01"), 0);
}

TEST(XMLDateTimes, WhatIsNoDateIsRaisedOrGivesTheDefault) {
  const std::string noZone = "The XMLDateTime value did not contain timezone information!";
  EXPECT_EQ(Raised<Exception>([] { ZmXMLToTime(u"10:00:00", tzfUTC); }), noZone);
  EXPECT_EQ(Raised<Exception>([] { ZmXMLToDateTime(u"2024-03-01T10:00:00", xdtfTimezone); }), noZone);
  EXPECT_EQ(Raised<EConvertError>([] { ZmXMLToDate(u"x"); }), "'x' is not a valid date and time value");
  EXPECT_EQ(Raised<EConvertError>([] { ZmXMLToDate(u"2023-02-29"); }), "Invalid argument to date encode");
  EXPECT_EQ(Raised<EConvertError>([] { ZmXMLToTime(u"25:00:00"); }), "Invalid argument to time encode");
  EXPECT_EQ(ZmXMLToDateDef(u"x", 5), 5);
  EXPECT_EQ(ZmXMLToTimeDef(u"10:00:00", 5, xdtfUTC), 5);
  EXPECT_EQ(ZmXMLToDateTimeDef(u"2024-13-01", 5), 5);
  EXPECT_EQ(ZmXMLToDateTime(Null(), 5), 5);
  EXPECT_EQ(ZmXMLToDate(Variant(7), 5), 7);
  EXPECT_EQ(ZmXMLToTime(Variant(7.5), 5), 7.5);
  EXPECT_EQ(ZmXMLToDateTime(Variant(TDateTime(7.5)), 5, xdtfUTC), 7.5);
  EXPECT_EQ(Raised<EConvertError>([] { ZmXMLToDate(Variant(true), 5); }), "The given value is not a valid Date value!");
  EXPECT_EQ(Raised<EConvertError>([] { ZmXMLToTime(Variant(), 5); }), "The given value is not a valid Time value!");
  EXPECT_EQ(Raised<EConvertError>([] { ZmXMLToDateTime(VarArrayOf({1}), 5); }),
            "The given value is not a valid DateTime value!");
}

TEST(XMLDateTimes, TheZoneOfATextIsTold) {
  EXPECT_EQ(ZmXMLDateTimeFormat(ZmDecodeXMLDateTime(u"2024-03-01")), xdtfLocal);
  EXPECT_EQ(ZmXMLDateTimeFormat(ZmDecodeXMLDateTime(u"10:00:00Z")), xdtfUTC);
  EXPECT_EQ(ZmXMLDateTimeFormat(ZmDecodeXMLDateTime(u"2024-03-01-00:30")), xdtfTimezone);
}

}  // namespace
