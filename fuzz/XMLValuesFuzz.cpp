// The readers of numbers, booleans, dates, times and durations over any text: they answer or raise, and what they
// answered is written and read back as the same.

#include <cstdint>
#include <cstring>
#include <memory>

#include "fuzz/Check.h"
#include "zamrit/platform/Exceptions.h"
#include "zamrit/xml/uZmXMLUtils.h"

namespace {

// Reads the text, unless it is refused, and calls Judge with the outcome.
template <class F, class FJudge>
void Read(zm::StringView Text, F Reader, FJudge Judge) {
  try {
    const auto value = Reader(Text);
    Judge(value);
  } catch (const zm::Exception&) {  // NOLINT(bugprone-empty-catch): a refusal is an answer
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace zm;
  const std::size_t length = Size / sizeof(char16_t);
  const std::unique_ptr<char16_t[]> block(new char16_t[length]);
  if (length > 0) std::memcpy(block.get(), Data, length * sizeof(char16_t));
  const StringView text(block.get(), length);

  Read(
      text, [](StringView T) { return ZmXMLToInt64(T); },
      [text](std::int64_t V) {
        Require(ZmXMLToInt64(ZmInt64ToXML(V)) == V);
        Require(ZmXMLToUInt64(text) == static_cast<std::uint64_t>(V));
      });
  Read(
      text, [](StringView T) { return ZmXMLToInt(T); },
      [text](std::int32_t V) {
        Require(ZmXMLToByte(text) == static_cast<std::uint8_t>(V));
        Require(ZmXMLToIntDef(text, ~V) == V);
      });
  Read(
      text, [](StringView T) { return ZmXMLToDouble(T); },
      [text](double V) {
        const String written = ZmDoubleToXML(V);
        Require(ZmDoubleToXML(ZmXMLToDoubleDef(written, V)) == written);
        Require(ZmXMLToDoubleDef(text, 0) == V || V != V);
      });
  Read(
      text, [](StringView T) { return ZmXMLToExtended(T); }, [](Extended V) { ZmExtToXML(V); });
  ZmXMLToBool(text);
  Read(
      text, [](StringView T) { return ZmXMLToDateTime(T, tzfUTC); },
      [](TDateTime V) {
        const String written = ZmDateTimeToXML(V);
        Require(ZmDateTimeToXML(ZmXMLToDateTime(written)) == written);
      });
  Read(
      text, [](StringView T) { return ZmXMLToTime(T); }, [](TDateTime V) { Require(V > -1 && V < 1); });
  ZmXMLToDateDef(text, 0);
  Read(
      text, [](StringView T) { return ZmXMLToDuration(T); },
      [](const TZmDuration& V) {
        Require(ZmXMLToDuration(ZmDurationToXML(V)).Months == V.Months || V.Months > 65535);
      });
  return 0;
}
