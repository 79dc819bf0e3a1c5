#include <gtest/gtest.h>

#include <atomic>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/AllWays.h"
#include "tests/support/FailingAllocations.h"
#include "zamrit/xml/uZmJSON.h"
#include "zamrit/xml/uZmSAX.h"

namespace {

using namespace zm;

// Adds up what it is told, without memory of its own.
struct TSum : TZmJSONDefaultHandler {
  std::size_t Units = 0;
  void StartMember(StringView Name) override { Units += Name.size(); }
  void Value(TZmJSONDataType, StringView Text) override { Units += Text.size(); }
};
struct TElementSum : TZmSAXDefaultHandler {
  std::size_t Units = 0;
  void StartElement(StringView, StringView, StringView QName, IZmSAXAttributes&) override { Units += QName.size(); }
  void Characters(StringView Text) override { Units += Text.size(); }
};

// More names than are kept, more text than the first window, more levels than one word of the stack of levels holds.
std::string Document() {
  std::string text;
  for (int i = 0; i < 600; ++i) text += "{\"n" + std::to_string(i) + "\":[\"" + std::string(400, 'v') + "\\n\",";
  return text;
}

/// Reads with each allocation failing in turn; a reader that failed reads the same document to its end.
template <class TReader, class TSummer>
void FailEveryAllocation(const std::string& Text) {
  std::size_t whole = 0;
  long failures = 0;
  for (long n = 0; n == 0 || failures == n - 1; ++n) {
    TSummer sum;
    const auto reader = Create<TReader>();
    reader->SetHandler(&sum);
    TShortStream pieces(Text, 999);
    AllocationsUntilFailure = n == 0 ? -1 : n;
    try {
      reader->ParseStream(&pieces, 65001);
    } catch (const std::bad_alloc&) {
      ++failures;
    }
    AllocationsUntilFailure = -1;
    if (n == 0) whole = sum.Units;
    sum.Units = 0;
    TShortStream again(Text, 999);
    reader->ParseStream(&again, 65001);
    ASSERT_EQ(sum.Units, whole) << "after allocation " << n << " failed";
    reader->SetHandler(nullptr);
  }
  EXPECT_GT(failures, 5);
}

TEST(JSONReaderRobustness, EveryAllocationMayFail) {
  const std::string text = Document() + "1";
  FailEveryAllocation<TZmJSONReader, TSum>(text);
  FailEveryAllocation<TZmSAXJSONReader, TElementSum>(text);
  FailEveryAllocation<TZmFormURLEncodedJSONReader, TSum>(
      "abcdefghijklmnopqrstuvwxyz[0][key]=" + std::string(70000, 'v') + "&abcdefghijklmnopqrstuvwxyz[1][key]=%41&b=2");
}

TEST(JSONReaderRobustness, ReadersRunSideBySide) {
  static constexpr std::uint16_t pages[] = {0, 65001, 932, 1252};
  const std::string text = Document() + "1";
  std::vector<std::thread> threads;
  std::atomic<std::size_t> units = 0;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&text, &units] {
      for (const std::uint16_t page : pages) {
        TSum sum;
        TZmJSONReader reader;
        reader.SetHandler(&sum);
        reader.Parse(std::string_view(text), page);
        units += sum.Units;
        reader.SetHandler(nullptr);
      }
    });
  for (std::thread& thread : threads) thread.join();
  TSum sum;
  TZmJSONReader reader;
  reader.SetHandler(&sum);
  reader.Parse(std::string_view(text), 65001);
  EXPECT_EQ(units, 16 * sum.Units);
  reader.SetHandler(nullptr);
}

}  // namespace
