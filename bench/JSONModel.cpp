#include "JSONModel.h"

#include <algorithm>
#include <string>
#include <vector>

#include "Commands.h"
#include "JSONRecords.h"
#include "Report.h"

namespace zm::bench {
namespace {

constexpr TTreeLibrary cLibraries[] = {
    {"Zamrit", MakeZamritModel},
    {"RapidJSON, UTF-16", MakeRapidJSONWideModel},
    {"RapidJSON, UTF-16, vectors", MakeRapidJSONWideVectorModel},
    {"RapidJSON, UTF-8", MakeRapidJSONModel},
    {"RapidJSON, UTF-8, vectors", MakeRapidJSONVectorModel},
    {"Boost.JSON", MakeBoostModel},
    {"nlohmann", MakeNlohmannModel},
    {"simdjson", MakeSimdjsonModel},
};
constexpr std::size_t cWide = 1, cWideVectors = 2;

constexpr TTreeGoal cGoals[] = {
    {ttWarmLoad, cWide, cWideVectors, 1.0},
    {ttColdLoad, cWide, cWideVectors, 1.0},
    {ttSave, cWide, cWideVectors, 1.5},
};

constexpr const char* cNotes =
    "- Zamrit keeps values as UTF-8 text, makes UTF-16 of what is asked for, and writes everything from U+0100 on as "
    "escapes, as its format wants; it parses no numbers. Its walk makes an object of every node that it visits. "
    "nlohmann sorts the members by name; simdjson holds what cannot be edited, and writes on one line only, as "
    "Boost.JSON does.\n";

}  // namespace

int RunJSONModel(const TOptions& Options) {
  const double seconds = Options.Quick ? std::min(Options.Seconds, 0.1) : Options.Seconds;
  std::vector<TTreeSource> sources = LoadSources(Options.Data / "json", {".json"}, 20000);
  sources.push_back({"generated", GeneratedJSON(Options.Quick ? 5000000 : 100000000)});

  std::string text = "# The JSON model\n\n" + DescribeMachine() + ".\n\n";
  if (Options.Quick) text += "A quick run: the figures prove nothing.\n\n";
  text += CompareTrees(cLibraries, sources, cGoals, cWide, seconds);
  std::size_t hits = 0;
  const double select = SelectWithZamrit(100000, seconds, hits);
  text += "A filter with two comparisons over 100,000 objects, " + std::to_string(hits) +
          " hits: " + Fixed(select * 1e3, 1) + " ms.\n\n";
  Publish(text + cTreeNotes + cNotes, Options.Markdown);
  return 0;
}

}  // namespace zm::bench
