#include <gtest/gtest.h>

#include <string>

#include "tests/support/Raised.h"
#include "zamrit/platform/Exceptions.h"
#include "zamrit/xml/values/DateTimes.h"

namespace {

using namespace zm;

TEST(XMLDurations, AreWrittenWithoutWhatIsZero) {
  const std::pair<TZmDuration, const char16_t*> cases[] = {
      {{false, 0, 0}, u"P0Y"},        {{true, 0, 0}, u"-P0Y"},        {{false, 14, 90061.5}, u"P1Y2M1DT1H1M1.5S"},
      {{true, 12, 0}, u"-P1Y"},       {{false, 0, 86400}, u"P1D"},    {{false, 1, 60}, u"P1MT1M"},
      {{false, 0, 3600}, u"PT1H"},    {{false, 0, 100}, u"PT1M40S"},  {{false, 0, 0.005}, u"PT0.5S"},
      {{false, 0, 0.25}, u"PT0.25S"}, {{false, 0, 60.0009}, u"PT1M"}, {{false, 0, 1e12}, u"P11574074DT1H46M40S"},
  };
  for (const auto& [duration, expected] : cases) EXPECT_EQ(ZmDurationToXML(duration), expected);
}

TEST(XMLDurations, AreReadWithTenthsBehindThePoint) {
  const struct {
    const char16_t* Text;
    bool Negative;
    int Months;
    double Seconds;
  } cases[] = {
      {u"P", false, 0, 0},         {u"P1M", false, 1, 0},
      {u"PT1M", false, 0, 60},     {u"-P1Y2M3DT4H5M6S", true, 14, 3 * 86400 + 4 * 3600 + 5 * 60 + 6},
      {u"PT1.5S", false, 0, 1.5},  {u"PT.5S", false, 0, 0.5},
      {u"PT1.25S", false, 0, 3.5}, {u"PT0.656S", false, 0, 0.064},  // 65600 in 16 bits
      {u"PT65537S", false, 0, 1},  {u"P1Y2Y", false, 24, 0},
      {u"PTT1MT", false, 0, 60},
  };
  for (const auto& c : cases) {
    const TZmDuration duration = ZmXMLToDuration(c.Text);
    EXPECT_EQ(duration.Negative, c.Negative) << ToUTF8(c.Text);
    EXPECT_EQ(duration.Months, c.Months) << ToUTF8(c.Text);
    EXPECT_EQ(duration.Seconds, c.Seconds) << ToUTF8(c.Text);
  }
  for (const auto* text : {u"P3Y11M30DT23H59M58S", u"-P1D", u"PT0.5S", u"P0Y"})
    EXPECT_EQ(ZmDurationToXML(ZmXMLToDuration(text)), text);
}

TEST(XMLDurations, OtherTextsAreRaised) {
  const std::string start = "ZmXMLToDuration; A duration must start with a \"P\"!";
  EXPECT_EQ(Raised<Exception>([] { ZmXMLToDuration(u""); }),
            "ZmXMLToDuration; An empty string cannot be converted to a xs:duration!");
  for (const auto* text : {u"1Y", u"-", u"--P1Y", u" P1Y"})
    EXPECT_EQ(Raised<Exception>([&] { ZmXMLToDuration(text); }), start);
  for (const auto* text : {u"P1", u"P1W", u"P1y", u"P-1Y", u"P1Y ", u"P.."})
    EXPECT_EQ(Raised<Exception>([&] { ZmXMLToDuration(text); }),
              "ZmXMLToDuration; The provided argument (" + ToUTF8(text) + ") is not a valid duration!");
  const std::pair<const char16_t*, std::string> numbers[] = {{u"PY", ""},          {u"P1.5Y", "1.5"},
                                                             {u"PTS", ""},         {u"PT1.S", ""},
                                                             {u"PT1.2.3S", "2.3"}, {u"P2147483648D", "2147483648"}};
  for (const auto& [text, number] : numbers)
    EXPECT_EQ(Raised<EConvertError>([&, t = text] { ZmXMLToDuration(t); }),
              "'" + number + "' is not a valid integer value");
}

TEST(XMLDurations, HugeTextsTakeLinearTime) {
  String text = u"P";
  for (int i = 0; i < 2000000; ++i) text += i % 2 ? u"T" : u"12M";
  EXPECT_EQ(ZmXMLToDuration(text).Months, 12);
  const String digits(10000000, u'1');
  EXPECT_THROW(ZmXMLToDuration(u"P" + digits), Exception);
  EXPECT_THROW(ZmXMLToDuration(u"P" + digits + u"Y"), EConvertError);
}

}  // namespace
