#include "JSONModel.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "Commands.h"
#include "Harness.h"
#include "Isolated.h"
#include "JSONRecords.h"
#include "Report.h"

namespace zm::bench {
namespace {

struct TLibrary {
  const char* Name;
  std::unique_ptr<TJSONModel> (*Make)();
};

constexpr TLibrary cLibraries[] = {
    {"Zamrit", MakeZamritModel},
    {"RapidJSON, UTF-16", MakeRapidJSONWideModel},
    {"RapidJSON, UTF-16, vectors", MakeRapidJSONWideVectorModel},
    {"RapidJSON, UTF-8", MakeRapidJSONModel},
    {"RapidJSON, UTF-8, vectors", MakeRapidJSONVectorModel},
    {"Boost.JSON", MakeBoostModel},
    {"nlohmann", MakeNlohmannModel},
    {"simdjson", MakeSimdjsonModel},
};
constexpr std::size_t cCount = std::size(cLibraries), cWide = 1, cWideVectors = 2;

enum TTask { tsLoad, tsColdLoad, tsSave, tsWalk, tsFree, tsMemory, tsCount };
constexpr const char* cTasks[tsCount] = {
    "load and free, warm, MB/s",    "load, cold, MB/s", "save, MB/s of output", "walk, MB/s", "free, MB/s",
    "resident growth, bytes a byte"};

constexpr const char* cNotes =
    "## How it was measured\n"
    "\n"
    "- UTF-8 in memory becomes a document of its own, and a document UTF-8 in memory. MB/s are 10^6 bytes of the "
    "source, "
    "of a save those that it writes, in a second of processor time; the median of all samples.\n"
    "- Warm: again and again in one process whose heap keeps its pages, freeing included. Cold: once in a process of "
    "its "
    "own, the best of five; so is the growth of resident memory. A walk visits every value and reads both ends of "
    "every "
    "name and string.\n"
    "- Zamrit keeps values as UTF-8 text, makes UTF-16 of what is asked for, and writes everything from U+0100 on as "
    "escapes, as its format wants; it parses no numbers. Its walk makes an object of every node that it visits. "
    "nlohmann sorts the members by name; simdjson holds what cannot be edited.\n";

struct TDocument {
  std::string Name;
  std::string Text;
  double Results[cCount][tsCount] = {};
};

std::vector<TDocument> LoadDocuments(const TOptions& Options) {
  std::vector<TDocument> documents;
  const std::filesystem::path folder = Options.Data / "json";
  if (std::filesystem::is_directory(folder)) {
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      if (entry.path().extension() == ".json" && entry.file_size() > 20000)
        documents.push_back({entry.path().filename().string(), ReadFile(entry.path())});
  } else {
    std::fprintf(stderr, "no documents in %s: only the generated one is measured\n", folder.c_str());
  }
  std::sort(documents.begin(), documents.end(), [](const auto& L, const auto& R) { return L.Name < R.Name; });
  documents.push_back({"generated", GeneratedJSON(Options.Quick ? 5000000 : 100000000)});
  return documents;
}

void MeasureCold(TDocument& Document) {
  for (std::size_t i = 0; i < cCount; ++i) {
    double best = 0, memory = 0;
    for (int round = 0; round < 5; ++round) {
      const TIsolated run = RunIsolated(
          [&] {
            const auto model = cLibraries[i].Make();
            return Stopwatch([&] { model->Load(Document.Text); });
          },
          120);
      if (!run.Failure.empty()) throw std::runtime_error(std::string(cLibraries[i].Name) + ": " + run.Failure);
      const double speed = static_cast<double>(Document.Text.size()) / run.Seconds / 1e6;
      best = std::max(best, speed);
      memory = static_cast<double>(run.PeakGrowth) / static_cast<double>(Document.Text.size());
    }
    Document.Results[i][tsColdLoad] = best;
    Document.Results[i][tsMemory] = memory;
  }
}

void MeasureWarm(TDocument& Document, double Seconds) {
  const double size = static_cast<double>(Document.Text.size()) / 1e6;
  std::vector<std::unique_ptr<TJSONModel>> models;
  for (const TLibrary& library : cLibraries) models.push_back(library.Make());
  const auto race = [&](TTask Task, const auto& Run, const auto& BytesOf) {
    std::vector<TContestant> contestants;
    for (std::size_t i = 0; i < cCount; ++i) contestants.push_back({cLibraries[i].Name, [&, i] { Run(*models[i]); }});
    const std::vector<TTiming> timings = Race(contestants, Seconds);
    for (std::size_t i = 0; i < cCount; ++i) Document.Results[i][Task] = BytesOf(*models[i]) / timings[i].Median;
  };
  const auto source = [size](TJSONModel&) { return size; };
  race(
      tsLoad, [&](TJSONModel& m) { m.Load(Document.Text), m.Free(); }, source);
  for (std::size_t i = 0; i < cCount; ++i) {
    double best = 1e9;
    for (int round = 0; round < 3; ++round) {
      models[i]->Load(Document.Text);
      best = std::min(best, Stopwatch([&] { models[i]->Free(); }));
    }
    Document.Results[i][tsFree] = size / best;
    models[i]->Load(Document.Text);
  }
  race(
      tsSave, [](TJSONModel& m) { m.Save(); }, [](TJSONModel& m) { return static_cast<double>(m.Save()) / 1e6; });
  race(
      tsWalk, [](TJSONModel& m) { m.Walk(); }, source);

  const TJSONCounts ours = models[0]->Walk();
  for (const std::size_t i : {cWide, cWideVectors}) {
    const TJSONCounts theirs = models[i]->Walk();
    if (theirs.Values != ours.Values || theirs.Members != ours.Members)
      throw std::runtime_error(Document.Name + ": the libraries count differently");
  }
}

std::string Table(const std::vector<TDocument>& Documents, TTask Task) {
  std::vector<std::string> heads{cTasks[Task]};
  for (const TDocument& document : Documents) heads.push_back(document.Name);
  heads.push_back("Zamrit to it, geometric mean");
  TTable table(heads);
  for (std::size_t i = 0; i < cCount; ++i) {
    std::vector<std::string> cells{cLibraries[i].Name};
    std::vector<double> ratios;
    for (const TDocument& document : Documents) {
      cells.push_back(Fixed(document.Results[i][Task], Task == tsMemory ? 2 : 0));
      ratios.push_back(std::max(document.Results[0][Task], 1e-9) / std::max(document.Results[i][Task], 1e-9));
    }
    cells.push_back(Fixed(GeometricMean(ratios), 2));
    table.Add(cells);
  }
  return table.Markdown();
}

}  // namespace

int RunJSONModel(const TOptions& Options) {
  const double seconds = Options.Quick ? std::min(Options.Seconds, 0.1) : Options.Seconds;
  std::vector<TDocument> documents = LoadDocuments(Options);
  const bool pinned = PinToOneCore();
  for (TDocument& document : documents) MeasureCold(document);
  KeepHeapWarm();
  for (TDocument& document : documents) {
    std::fprintf(stderr, "%s ...\n", document.Name.c_str());
    MeasureWarm(document, seconds);
  }
  std::string text = "# The JSON model\n\n" + DescribeMachine() + ".\n\n";
  if (Options.Quick) text += "A quick run: the figures prove nothing.\n\n";
  if (!pinned) text += "The process could not be kept on one core.\n\n";
  for (int task = 0; task < tsCount; ++task) text += Table(documents, static_cast<TTask>(task));
  std::size_t hits = 0;
  const double select = SelectWithZamrit(100000, seconds, hits);
  text += "A filter with two comparisons over 100,000 objects, " + std::to_string(hits) +
          " hits: " + Fixed(select * 1e3, 1) + " ms.\n\n";
  Publish(text + cNotes, Options.Markdown);
  return 0;
}

}  // namespace zm::bench
