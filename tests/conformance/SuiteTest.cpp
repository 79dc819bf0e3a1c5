#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/conformance/DataFolder.h"
#include "tests/conformance/Outcomes.h"
#include "tests/support/AllWays.h"

namespace {

namespace fs = std::filesystem;

// Every file of the conformance suite and every larger document has a line in suite-outcomes.tsv: its path, whether it
// was accepted or else the exception's class, code and position, and a hash of its events with their places.

/// Remembers the place of the failure beside the events.
struct TOutcomeRecorder : TEventRecorder {
  using TEventRecorder::TEventRecorder;

  std::string Place = "-";

  void FatalError(zm::IZmSAXLocator* Where, zm::StringView Message) override {
    Place = PlaceText(Where->GetLineNr(), Where->GetColNr());
    Place.pop_back();
    TEventRecorder::FatalError(Where, Message);
  }
};

struct TReading {
  std::string Events, Outcome;
};

/// What Parse makes a reader tell.
template <class F>
TReading ReadBy(F Parse) {
  zm::TZmSAXXMLReader reader;
  TOutcomeRecorder recorder(&reader);
  reader.SetHandler(&recorder);
  std::string outcome = "accepted";
  const auto failed = [&](const char* Class, int Code, const zm::Exception& E) {
    outcome = std::string(Class) + ' ' + std::to_string(Code) + ' ' + recorder.Place;
    recorder.Text += E.what();
  };
  try {
    Parse(reader);
  } catch (const zm::EZmTextParserEOF& e) {
    failed("EZmTextParserEOF", e.GetCode(), e);
  } catch (const zm::EZmXMLParseError& e) {
    failed("EZmXMLParseError", e.GetCode(), e);
  } catch (const zm::EConvertError& e) {
    failed("EConvertError", 0, e);
  }
  outcome += '\t' + ShortHash(recorder.Text);
  return {std::move(recorder.Text), std::move(outcome)};
}

TEST(Suite, EveryFileHasItsRecordedOutcomeHoweverItIsRead) {
  const auto folder = DataFolder();
  if (folder.empty()) return;

  TOutcomes outcomes;
  for (const char* part : {"xml/docs", "xml/xmlconf"}) {
    for (const auto& entry : fs::recursive_directory_iterator(folder / part)) {
      if (!entry.is_regular_file()) continue;
      const auto path = entry.path().lexically_relative(folder).generic_string();
      const auto whole = ReadBy([&](auto& reader) { reader.ParseFile(entry.path().u16string()); });
      outcomes[path] = whole.Outcome;

      const auto bytes = BytesOf(entry.path());
      for (std::size_t size = 1; size <= 5; size++) {
        const auto pieces = ReadBy([&](auto& reader) {
          TShortStream stream(bytes, size);
          const auto page = zm::ZmGetCodePage(&stream);
          reader.ParseStream(&stream, page);
        });
        EXPECT_TRUE(pieces.Events == whole.Events) << path << " in reads of " << size << ": " << pieces.Outcome;
      }
    }
  }

  CompareWithRecord(outcomes, "suite-outcomes.tsv");
}

}  // namespace
