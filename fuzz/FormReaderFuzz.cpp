// Form posts of any text: whole and in pieces the events are the same, and values are decoded as they were escaped.

#include <cstdint>

#include "tests/support/AllWays.h"
#include "tests/support/JSONRecorder.h"
#include "zamrit/xml/json/FormReader.h"
#include "zamrit/xml/json/Values.h"

namespace {

/// Writes the events down, and takes back the escaping of each value.
struct TPostRecorder : TJSONRecorder {
  void Value(zm::TZmJSONDataType DataType, zm::StringView Text) override {
    if (Text.substr(0, 1) != u"[" && Text.substr(0, 1) != u"{") zm::ZmJSONtoStr(Text, DataType);
    TJSONRecorder::Value(DataType, Text);
  }
};

template <class TSource>
std::string EventsOf(const TSource& Source, std::uint16_t Page) {
  zm::TZmFormURLEncodedJSONReader reader;
  TPostRecorder recorder;
  reader.SetContentHandler(&recorder);
  recorder.Read(reader, Source, Page);
  reader.SetContentHandler(nullptr);
  return recorder.Text;
}

}  // namespace

// The first byte chooses the page and the size of a read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  if (Size < 1) return 0;
  const std::uint16_t page = (Data[0] & 16) != 0 ? 1200 : 65001;
  const std::string post(reinterpret_cast<const char*>(Data) + 1, Size - 1);
  TShortStream stream(post, Data[0] % 16 + std::size_t{1});
  if (EventsOf(std::string_view(post), page) != EventsOf(&stream, page)) __builtin_trap();
  return 0;
}
