#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "zamrit/platform/ASCIIDetail.h"
#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/Numbers.h"
#include "zamrit/xml/values/DateTimes.h"

namespace zm {
namespace {

void AppendField(String& Text, std::int64_t Value, char16_t Designator) {
  if (Value != 0) (Text += IntToStr(Value)) += Designator;
}

// The fields of a duration as a text gives them.
struct TFields {
  std::uint16_t Years = 0, Months = 0, Days = 0, Hours = 0, Minutes = 0, Seconds = 0, Milliseconds = 0;
};

bool IsOfNumber(char16_t C) { return detail::IsDigit(C) || C == u'.'; }

std::uint16_t Field(StringView Number) { return static_cast<std::uint16_t>(StrToInt(Number)); }

// A number in front of "S". What stands behind its point counts in tenths; nothing in front of the point is 0.
void ReadSeconds(StringView Number, TFields& Fields) {
  const std::size_t point = Number.find(u'.');
  if (point != 0) Fields.Seconds = Field(Number.substr(0, point));
  if (point != StringView::npos)
    Fields.Milliseconds = static_cast<std::uint16_t>(std::int64_t{StrToInt(Number.substr(point + 1))} * 100);
}

bool ReadField(StringView Number, char16_t Designator, bool InTime, TFields& Fields) {
  switch (Designator) {
    case u'Y':
      Fields.Years = Field(Number);
      return true;
    case u'M':
      (InTime ? Fields.Minutes : Fields.Months) = Field(Number);
      return true;
    case u'D':
      Fields.Days = Field(Number);
      return true;
    case u'H':
      Fields.Hours = Field(Number);
      return true;
    case u'S':
      ReadSeconds(Number, Fields);
      return true;
    default:
      return false;
  }
}

}  // namespace

String ZmDurationToXML(const TZmDuration& Duration) {
  const std::int64_t whole = Trunc(Duration.Seconds);
  const std::int64_t years = Duration.Months / 12, months = Duration.Months % 12;
  const std::int64_t days = whole / 86400, hours = whole / 3600 % 24, minutes = whole / 60 % 60, seconds = whole % 60;
  const std::int64_t milliseconds = Trunc((Duration.Seconds - std::trunc(Duration.Seconds)) * 1000);

  String text = Duration.Negative ? u"-P" : u"P";
  const std::size_t start = text.size();
  AppendField(text, years, u'Y');
  AppendField(text, months, u'M');
  AppendField(text, days, u'D');
  if (hours != 0 || minutes != 0 || seconds != 0 || milliseconds != 0) text += u'T';
  AppendField(text, hours, u'H');
  AppendField(text, minutes, u'M');
  if (milliseconds == 0) {
    AppendField(text, seconds, u'S');
  } else {
    (text += IntToStr(seconds)) += u'.';
    text += IntToStr(milliseconds);
    text.erase(text.find_last_not_of(u'0') + 1);
    text += u'S';
  }
  if (text.size() == start) text += u"0Y";
  return text;
}

TZmDuration ZmXMLToDuration(StringView Text) {
  if (Text.empty()) throw Exception(u"ZmXMLToDuration; An empty string cannot be converted to a xs:duration!");
  StringView rest = Text;
  const bool negative = rest.front() == u'-';
  if (negative) rest.remove_prefix(1);
  if (rest.empty() || rest.front() != u'P') throw Exception(u"ZmXMLToDuration; A duration must start with a \"P\"!");
  rest.remove_prefix(1);

  TFields fields;
  for (bool inTime = false; !rest.empty();) {
    if (rest.front() == u'T') {
      inTime = true;
      rest.remove_prefix(1);
      continue;
    }
    const auto length = static_cast<std::size_t>(std::find_if_not(rest.begin(), rest.end(), IsOfNumber) - rest.begin());
    const char16_t designator = length < rest.size() ? rest[length] : u'\0';
    if (!ReadField(rest.substr(0, length), designator, inTime, fields))
      throw Exception(u"ZmXMLToDuration; The provided argument (%s) is not a valid duration!", {Text});
    rest.remove_prefix(length + 1);
  }
  return ZmEncodeDuration(fields.Years, fields.Months, fields.Days, fields.Hours, fields.Minutes, fields.Seconds,
                          fields.Milliseconds, negative);
}

}  // namespace zm
