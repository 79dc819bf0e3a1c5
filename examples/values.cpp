#include <iostream>

#include "zamrit/zamrit.h"

int main() {
  // Escaped text, and back
  const zm::String escaped = zm::ZmStrToXML(u"a < b & \"c\"\n", true, true);
  std::cout << zm::ToUTF8(escaped) << '\n';
  std::cout << zm::ToUTF8(zm::ZmXMLToStr(u"caf&eacute; &#8364; 5 &unknown; &")) << '\n';

  // Numbers and booleans
  std::cout << zm::ToUTF8(zm::ZmDoubleToXML(1234.5)) << ' ' << zm::ToUTF8(zm::ZmBoolToXML(true)) << '\n';
  std::cout << zm::ZmXMLToInt(u"$10") << ' ' << zm::ZmXMLToDouble(u"1,000.5") << ' '
            << static_cast<int>(zm::ZmXMLToByte(u"300")) << ' ' << zm::ZmXMLToIntDef(u"none", -1) << '\n';
  try {
    zm::ZmXMLToInt(u"12 apples");
  } catch (const zm::EConvertError& e) {
    std::cout << e.what() << '\n';
  }

  // Dates and times: local ones as they are, others through UTC
  const zm::TDateTime when = zm::ZmXMLToDateTime(u"2024-03-01T10:00:00+02:00", zm::xdtfUTC);
  std::cout << zm::ToUTF8(zm::ZmDateTimeToXML(when)) << '\n';
  std::cout << zm::ToUTF8(zm::ZmDateToXML(zm::EncodeDate(2024, 3, 1), zm::xdtfLocal)) << '\n';

  // Durations
  const zm::TZmDuration duration = zm::ZmXMLToDuration(u"P1Y2M1DT1H1M1.5S");
  std::cout << duration.Months << " months and " << zm::ToUTF8(zm::ZmDoubleToXML(duration.Seconds)) << " seconds are "
            << zm::ToUTF8(zm::ZmDurationToXML(duration)) << '\n';
}
