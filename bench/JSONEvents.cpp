#include "JSONEvents.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Commands.h"
#include "Harness.h"
#include "JSONRecords.h"
#include "Report.h"
#include "zamrit/platform/Strings.h"

namespace zm::bench {
namespace {

struct TReader {
  const char* Name;
  TJSONEventCounts (*Read)(const TJSONSource& Source);
};

enum TReaderIndex {
  rdZamrit,
  rdZamritFile,
  rdZamritUTF16,
  rdRapid,
  rdRapidVectors,
  rdRapidUTF16,
  rdRapidVectorsUTF16,
  rdNlohmann,
  rdCount
};

constexpr TReader cReaders[rdCount] = {
    {"Zamrit", ReadWithZamrit},
    {"Zamrit, from a file stream", ReadWithZamritFromFile},
    {"Zamrit, from UTF-16 in memory", ReadWithZamritFromUTF16},
    {"RapidJSON, UTF-8", ReadWithRapidJSON},
    {"RapidJSON, UTF-8, vectors", ReadWithRapidJSONVectors},
    {"RapidJSON, to UTF-16", ReadWithRapidJSONToUTF16},
    {"RapidJSON, to UTF-16, vectors", ReadWithRapidJSONVectorsToUTF16},
    {"nlohmann", ReadWithNlohmann},
};

// A ratio of speeds: of a row of ours to the faster of two others (which may be the same one).
struct TComparison {
  const char* Name;
  TReaderIndex Subject;
  TReaderIndex One;
  TReaderIndex Other;
  double Goal;  // of the geometric mean; 0: none
};

constexpr TComparison cComparisons[] = {
    {"Zamrit : the faster RapidJSON to UTF-16", rdZamrit, rdRapidUTF16, rdRapidVectorsUTF16, 1.3},
    {"Zamrit : the faster RapidJSON in UTF-8", rdZamrit, rdRapid, rdRapidVectors, 1.0},
    {"Zamrit : nlohmann", rdZamrit, rdNlohmann, rdNlohmann, 0},
    {"Zamrit from a file stream : from memory", rdZamritFile, rdZamrit, rdZamrit, 0},
    {"Zamrit from UTF-16 : from UTF-8", rdZamritUTF16, rdZamrit, rdZamrit, 0},
};

constexpr const char* cNotes =
    "## How it was measured\n"
    "\n"
    "- Every reader runs over the whole document in memory and is made and freed each time. Its handler counts, adds "
    "up "
    "the lengths of names and texts and reads the first and the last unit of each, and the value of numbers and words, "
    "so nothing can be left unmade.\n"
    "- MB/s are 10^6 bytes of the document *in UTF-8* in a second of processor time, also where it is read as UTF-16. "
    "The median of all samples counts, the best stands in brackets. Samples of all readers alternate.\n"
    "- The process is kept on one core and its heap keeps its pages, as in a service that has run for a while.\n"
    "\n"
    "## What makes it fair, and what does not\n"
    "\n"
    "- Zamrit tells names, strings and numbers as they stand, made into UTF-16: it decodes no escapes, parses no "
    "numbers "
    "and checks little of the grammar. RapidJSON and nlohmann do all that, and RapidJSON hands out UTF-8 where it is "
    "not asked for UTF-16.\n"
    "- RapidJSON is compiled twice, with its vector instructions (SSE2 or NEON) and without. It does not check the "
    "UTF-8; nlohmann does.\n";

struct TDocument {
  TJSONSource Source;
  TTiming Timings[rdCount];

  std::string Name() const { return Source.File.filename().string(); }
  double Size() const { return static_cast<double>(Source.UTF8.size()); }
  double Speed(int Reader) const { return Size() / Timings[Reader].Median / 1e6; }
  double BestSpeed(int Reader) const { return Size() / Timings[Reader].Best / 1e6; }
};

TJSONSource SourceOf(const std::filesystem::path& File, std::string Text) {
  std::u16string wide = FromUTF8(Text);
  return {File, std::move(Text), std::move(wide)};
}

// Documents that are too small to measure stay out.
std::vector<std::filesystem::path> FindDocuments(const std::filesystem::path& Folder) {
  constexpr std::uintmax_t smallest = 20000;
  std::vector<std::filesystem::path> files;
  if (!std::filesystem::is_directory(Folder)) {
    std::fprintf(stderr, "no documents in %s: only the generated one is measured\n", Folder.c_str());
    return files;
  }
  for (const auto& entry : std::filesystem::directory_iterator(Folder))
    if (entry.path().extension() == ".json" && entry.file_size() >= smallest) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

std::filesystem::path GeneratedFile(std::size_t Size) {
  auto file = CacheFolder() / ("records-" + std::to_string(Size / 1000000) + "MB.json");
  if (!std::filesystem::exists(file)) WriteFile(file, GeneratedJSON(Size));
  return file;
}

// All readers must be told the same values, ours the same texts.
TDocument Measure(const std::filesystem::path& File, double Seconds) {
  TDocument document{SourceOf(File, ReadFile(File)), {}};
  const TJSONEventCounts counts = ReadWithZamrit(document.Source);
  std::vector<TContestant> contestants;
  for (int i = 0; i < rdCount; ++i)
    contestants.push_back({cReaders[i].Name, [&document, &counts, i] {
                             const TJSONEventCounts read = cReaders[i].Read(document.Source);
                             if (!read.SameShape(counts) || (i <= rdZamritUTF16 && read != counts))
                               throw std::runtime_error(document.Name() + ": other events from " + cReaders[i].Name);
                           }});
  const std::vector<TTiming> timings = Race(contestants, Seconds);
  std::copy(timings.begin(), timings.end(), document.Timings);
  return document;
}

std::vector<std::string> HeadsWithFiles(const std::string& First, const std::vector<TDocument>& Documents) {
  std::vector<std::string> heads{First};
  for (const TDocument& document : Documents) heads.push_back(document.Name());
  return heads;
}

std::string SpeedTable(const std::vector<TDocument>& Documents) {
  TTable table(HeadsWithFiles("MB/s", Documents));
  for (int i = 0; i < rdCount; ++i) {
    std::vector<std::string> cells{cReaders[i].Name};
    for (const TDocument& document : Documents)
      cells.push_back(Fixed(document.Speed(i), 0) + " (" + Fixed(document.BestSpeed(i), 0) + ")");
    table.Add(cells);
  }
  return table.Markdown();
}

std::string RatioTable(const std::vector<TDocument>& Documents) {
  std::vector<std::string> heads = HeadsWithFiles("ratio of speeds", Documents);
  heads.insert(heads.end(), {"geometric mean", "goal", "verdict"});
  TTable table(heads);
  for (const TComparison& comparison : cComparisons) {
    std::vector<std::string> cells{comparison.Name};
    std::vector<double> ratios;
    for (const TDocument& document : Documents) {
      ratios.push_back(document.Speed(comparison.Subject) /
                       std::max(document.Speed(comparison.One), document.Speed(comparison.Other)));
      cells.push_back(Fixed(ratios.back(), 2));
    }
    const double mean = GeometricMean(ratios);
    const bool judged = comparison.Goal > 0;
    cells.push_back(Fixed(mean, 2));
    cells.push_back(judged ? Fixed(comparison.Goal, 1) : "");
    cells.push_back(!judged ? "" : mean < comparison.Goal ? "under the goal" : "reached");
    table.Add(cells);
  }
  return table.Markdown();
}

std::string FormPost(std::size_t Size) {
  std::string post;
  for (int i = 0; post.size() < Size; ++i) {
    const std::string item = "items[" + std::to_string(i) + "]";
    post += item + "[name]=Some+name%20with+gr%C3%BCn&" + item + "[price]=12.50&";
  }
  return post;
}

std::string FormTable(double Seconds) {
  TTable table({"form post", "MB/s"});
  for (const std::size_t size : {std::size_t{1000}, std::size_t{10000000}}) {
    const std::string post = FormPost(size);
    const TTiming timing = Race({{"Zamrit", [&post] { ReadFormWithZamrit(post); }}}, Seconds)[0];
    table.Add(
        {std::to_string(post.size()) + " bytes", Fixed(static_cast<double>(post.size()) / timing.Median / 1e6, 0)});
  }
  return table.Markdown();
}

}  // namespace

int RunJSONEvents(const TOptions& Options) {
  const double seconds = Options.Quick ? std::min(Options.Seconds, 0.1) : Options.Seconds;
  std::vector<std::filesystem::path> files = FindDocuments(Options.Data / "json");
  files.push_back(GeneratedFile(Options.Quick ? 5000000 : 100000000));
  const bool pinned = PinToOneCore();
  KeepHeapWarm();

  std::vector<TDocument> documents;
  for (const std::filesystem::path& file : files) {
    std::fprintf(stderr, "%s ...\n", file.filename().c_str());
    documents.push_back(Measure(file, seconds));
  }
  std::string text =
      "# JSON events\n\n" + DescribeMachine() + "; " + RapidJSONVersion() + ", " + NlohmannVersion() + ".\n\n";
  if (Options.Quick) text += "A quick run: the figures prove nothing.\n\n";
  if (!pinned) text += "The process could not be kept on one core.\n\n";
  Publish(text + SpeedTable(documents) + RatioTable(documents) + FormTable(seconds) + cNotes, Options.Markdown);
  return 0;
}

}  // namespace zm::bench
