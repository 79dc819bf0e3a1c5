// The JSON reader over any bytes: whole and in pieces the events are the same, and those of the plain reader. The
// JSON-to-SAX reader answers or raises, and tells as many starts as ends when it answers.

#include <cstdint>

#include "tests/support/AllJSONWays.h"
#include "zamrit/xml/json/SAXJSONReader.h"

namespace {

struct TBalance : zm::TZmSAXDefaultHandler {
  std::int64_t Open = 0;
  void StartElement(zm::StringView, zm::StringView, zm::StringView, zm::IZmSAXAttributes&) override { ++Open; }
  void EndElement(zm::StringView, zm::StringView, zm::StringView) override { --Open; }
};

void ReadAsElements(const std::string& Document, std::uint16_t Page, std::size_t ReadSize) {
  TShortStream stream(Document, ReadSize);
  TBalance balance;
  zm::TZmSAXJSONReader reader;
  reader.SetHandler(&balance);
  try {
    reader.ParseStream(&stream, Page);
    if (balance.Open != 0) __builtin_trap();
  } catch (const zm::Exception&) {  // NOLINT(bugprone-empty-catch): a refusal is an answer
  }
  reader.SetHandler(nullptr);
}

}  // namespace

// The first byte chooses the page, a bit above it the setting, the second the size of a read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  static constexpr std::uint16_t pages[] = {65001, 1200, 1201, 932, 0, 1252};
  if (Size < 2) return 0;
  const std::uint16_t page = pages[(Data[0] & 15) % std::size(pages)];
  const std::size_t readSize = Data[1] % 16 + std::size_t{1};
  const std::string document(reinterpret_cast<const char*>(Data) + 2, Size - 2);
  const TAllJSONWays ways(document, page, (Data[0] & 16) != 0, readSize);
  const bool isTold = page != 0 && page != 1252;  // with these the text tells the encoding
  if (isTold ? !ways.Agree() : ways.InPieces != ways.Whole) __builtin_trap();
  ReadAsElements(document, page, readSize);
  return 0;
}
