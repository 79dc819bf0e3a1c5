#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "tests/conformance/DataFolder.h"
#include "tests/conformance/Outcomes.h"
#include "tests/support/AllWays.h"
#include "tests/support/JSONRecorder.h"

namespace {

namespace fs = std::filesystem;

// Every JSON document has a line in json-outcomes.tsv: its path, then twice, as the reader is made and with white space
// around top-level values allowed, whether it was accepted or else the exception's class, code and position, and a hash
// of its events with their places.

/// Remembers the place of the failure beside the events.
struct TOutcomeRecorder : TJSONRecorder {
  using TJSONRecorder::TJSONRecorder;

  std::string Place = "-";

  void FatalError(zm::IZmJSONLocator* Where, zm::StringView Message) override {
    Place = PlaceText(Where->GetLineNr(), Where->GetColNr());
    Place.pop_back();
    TJSONRecorder::FatalError(Where, Message);
  }
};

struct TReading {
  std::string Events, Outcome;
};

/// What Parse makes a reader tell.
template <class F>
TReading ReadBy(bool AllowSurroundingSpace, F Parse) {
  zm::TZmJSONReader reader;
  TOutcomeRecorder recorder(&reader);
  reader.SetHandler(&recorder);
  reader.SetAllowSurroundingSpace(AllowSurroundingSpace);
  std::string outcome = "accepted";
  try {
    Parse(reader);
  } catch (const zm::EZmJSONParseError& e) {
    outcome = "EZmJSONParseError " + std::to_string(e.GetCode()) + ' ' + recorder.Place;
    recorder.Text += e.what();
  } catch (const zm::Exception& e) {
    outcome = std::string("Exception ") + e.what();
  }
  reader.SetHandler(nullptr);
  return {recorder.Text, std::move(outcome)};
}

TEST(JSONSuite, EveryFileHasItsRecordedOutcomeHoweverItIsRead) {
  const auto folder = DataFolder();
  if (folder.empty()) return;

  TOutcomes outcomes;
  std::set<std::string> refused;
  for (const auto& entry : fs::recursive_directory_iterator(folder / "json")) {
    if (entry.path().extension() != ".json") continue;
    const auto name = entry.path().filename().string();
    const auto bytes = BytesOf(entry.path());
    std::string line;
    for (const bool allow : {false, true}) {
      const auto whole = ReadBy(allow, [&](auto& reader) { reader.ParseFile(entry.path().u16string()); });
      line += (allow ? "\t" : "") + whole.Outcome + '\t' + ShortHash(whole.Events);
      if (allow && name[0] == 'y' && whole.Outcome != "accepted") refused.insert(name);
      for (std::size_t size = 1; size <= 3; size++) {
        const auto pieces = ReadBy(allow, [&](auto& reader) {
          TShortStream stream(bytes, size);
          const auto page = zm::ZmGetCodePage(&stream);
          reader.ParseStream(&stream, page);
        });
        EXPECT_TRUE(pieces.Events == whole.Events) << name << " in reads of " << size << ": " << pieces.Outcome;
      }
    }
    outcomes[entry.path().lexically_relative(folder).generic_string()] = line;
  }
  EXPECT_EQ(refused, std::set<std::string>{});
  CompareWithRecord(outcomes, "json-outcomes.tsv");
}

}  // namespace
