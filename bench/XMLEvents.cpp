#include "XMLEvents.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Commands.h"
#include "Generator.h"
#include "Harness.h"
#include "Report.h"
#include "zamrit/platform/Strings.h"

namespace zm::bench {
namespace {

struct TReader {
  const char* Name;
  TXMLEventCounts (*Read)(const TXMLSource& Source);
};

enum TReaderIndex { rdZamrit, rdZamritFile, rdZamritUTF16, rdLibxml2, rdExpat, rdExpatNamespaces, rdXerces, rdCount };

constexpr TReader cReaders[rdCount] = {
    {"Zamrit", ReadWithZamrit},
    {"Zamrit, from a file stream", ReadWithZamritFromFile},
    {"Zamrit, from UTF-16 in memory", ReadWithZamritFromUTF16},
    {"libxml2 SAX2", ReadWithLibxml2},
    {"expat", ReadWithExpat},
    {"expat with namespaces", ReadWithExpatNamespaces},
    {"Xerces-C SAX2", ReadWithXerces},
};

// A ratio of speeds: of a row of ours to the faster of two others (which may be the same one).
struct TComparison {
  const char* Name;
  TReaderIndex Subject;
  TReaderIndex One;
  TReaderIndex Other;
  double Goal;       // of the geometric mean; 0: none
  double MeanFloor;  // of the geometric mean
  double FileFloor;  // of every document
};

constexpr TComparison cComparisons[] = {
    {"Zamrit : libxml2", rdZamrit, rdLibxml2, rdLibxml2, 2.5, 2.0, 1.5},
    {"Zamrit : the faster expat", rdZamrit, rdExpat, rdExpatNamespaces, 5, 4, 0},
    {"Zamrit : Xerces-C", rdZamrit, rdXerces, rdXerces, 8, 6, 0},
    {"Zamrit from a file stream : from memory", rdZamritFile, rdZamrit, rdZamrit, 0, 0, 0},
    {"Zamrit from UTF-16 : from UTF-8", rdZamritUTF16, rdZamrit, rdZamrit, 0, 0, 0},
};

constexpr const char* cNotes =
    "## How it was measured\n"
    "\n"
    "- Every reader runs over the whole document in memory and is made and freed each time. Its handler is told the "
    "names of elements, the names and values of attributes and the text, white space included; it adds up lengths and "
    "reads the first and the last unit of every text and value, so nothing can be left unmade.\n"
    "- MB/s are 10^6 bytes of the document *in UTF-8* in a second, also where it is read as UTF-16. The median of all "
    "samples counts, the best stands in brackets. A sample takes at least 20 ms; samples of all readers alternate. "
    "Seconds are processor time, so that other work on the machine takes as little as may be from the figures.\n"
    "- The process is kept on one core and its heap keeps its pages, as in a service that has run for a while.\n"
    "\n"
    "## What makes it fair, and what does not\n"
    "\n"
    "- Zamrit makes UTF-16 of everything it tells, as Xerces-C does; libxml2 and expat hand out UTF-8.\n"
    "- Zamrit decodes no references and normalizes no line ends, does not compare end tags with start tags, finds no "
    "duplicate attributes and no undeclared prefixes, checks no characters behind the first of a name, and skips the "
    "DTD. The others do all that, and have to: they are conforming "
    "parsers, Zamrit is lenient.\n"
    "- Zamrit also tells comments, processing instructions and the bounds of CDATA sections to an empty handler; of "
    "the "
    "others nothing but elements and text is asked.\n"
    "- Lengths of names are only asked for where they are given: by Zamrit. The lengths of attribute values have to be "
    "searched for with expat and Xerces-C.\n"
    "- Namespaces are on in Zamrit, libxml2, Xerces-C and the second expat row. None of them validates or loads a DTD "
    "from outside; libxml2 runs without its size limits (`XML_PARSE_HUGE`).\n";

struct TDocument {
  TXMLSource Source;
  bool Repaired = false;
  TXMLEventCounts Counts[rdCount];
  std::string Refusals[rdCount];  // empty: the document was read
  TTiming Timings[rdCount];

  bool Read(int Reader) const { return Refusals[Reader].empty(); }
  double Speed(int Reader) const { return static_cast<double>(Source.UTF8.size()) / Timings[Reader].Median / 1e6; }
  double BestSpeed(int Reader) const { return static_cast<double>(Source.UTF8.size()) / Timings[Reader].Best / 1e6; }
};

std::string EscapeBareAmpersands(const std::string& Text) {
  std::string escaped;
  for (std::size_t at = 0; at < Text.size(); ++at) {
    escaped += Text[at];
    if (Text[at] != '&') continue;
    const std::size_t end = Text.find_first_of("; \t\r\n<&\"'", at + 1);
    if (end == std::string::npos || Text[end] != ';') escaped += "amp;";
  }
  return escaped;
}

bool IsRefused(const TXMLSource& Source) {
  try {
    ReadWithLibxml2(Source);
    return false;
  } catch (const std::exception&) {
    return true;
  }
}

// A document with bare ampersands, which only Zamrit takes, is compared by a copy in which they are escaped.
TDocument LoadDocument(const std::filesystem::path& File) {
  TDocument document;
  TXMLSource& source = document.Source;
  source = {File, ReadFile(File), {}};
  if (IsRefused(source)) {
    std::string escaped = EscapeBareAmpersands(source.UTF8);
    document.Repaired = escaped != source.UTF8;
    source = {CacheFolder() / File.filename(), std::move(escaped), {}};
    WriteFile(source.File, source.UTF8);
  }
  source.UTF16 = FromUTF8(source.UTF8);
  return document;
}

// Documents that are too small to measure stay out.
std::vector<std::filesystem::path> FindDocuments(const std::filesystem::path& Folder) {
  constexpr std::uintmax_t smallest = 300000;
  std::vector<std::filesystem::path> files;
  if (!std::filesystem::is_directory(Folder)) {
    std::fprintf(stderr, "no documents in %s: only the generated one is measured\n", Folder.c_str());
    return files;
  }
  for (const auto& entry : std::filesystem::directory_iterator(Folder))
    if (entry.is_regular_file() && entry.file_size() >= smallest) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

void Measure(TDocument& Document, double Seconds) {
  std::vector<TContestant> contestants;
  std::vector<int> readers;
  for (int i = 0; i < rdCount; ++i) {
    try {
      Document.Counts[i] = cReaders[i].Read(Document.Source);
    } catch (const std::exception& e) {
      Document.Refusals[i] = e.what();
      continue;
    }
    readers.push_back(i);
    contestants.push_back({cReaders[i].Name, [&Document, i] {
                             if (cReaders[i].Read(Document.Source) != Document.Counts[i])
                               throw std::runtime_error(std::string(cReaders[i].Name) + " reads differently each time");
                           }});
  }
  const std::vector<TTiming> timings = Race(contestants, Seconds);
  for (std::size_t i = 0; i < readers.size(); ++i) Document.Timings[readers[i]] = timings[i];
}

// What the readers disagree on beyond what their kinds explain; lines of a Markdown list.
std::string FindFaults(const TDocument& Document) {
  const std::string at = "- " + Document.Source.File.filename().string() + ", ";
  const TXMLEventCounts& judge = Document.Counts[rdLibxml2];
  const std::uint64_t fewest = judge.Attributes - judge.Defaulted;
  const std::uint64_t most = judge.Attributes + judge.Declarations;
  std::string faults;
  for (int i = 0; i < rdCount; ++i) {
    const TXMLEventCounts& counts = Document.Counts[i];
    if (!Document.Read(i)) {
      faults += at + cReaders[i].Name + ": refused: " + Document.Refusals[i] + "\n";
    } else if (!Document.Read(rdLibxml2)) {
      continue;
    } else if (counts.Elements != judge.Elements) {
      faults += at + cReaders[i].Name + ": " + std::to_string(counts.Elements) + " elements, libxml2 " +
                std::to_string(judge.Elements) + "\n";
    } else if (counts.Attributes < fewest || counts.Attributes > most) {
      faults += at + cReaders[i].Name + ": " + std::to_string(counts.Attributes) + " attributes, expected are " +
                std::to_string(fewest) + " to " + std::to_string(most) + "\n";
    }
  }
  for (const int i : {rdZamritFile, rdZamritUTF16})
    if (Document.Read(i) && Document.Counts[i] != Document.Counts[rdZamrit])
      faults += at + cReaders[i].Name + ": other events than from UTF-8 in memory\n";
  return faults;
}

// Differences in the number of attributes that namespace declarations and DTD defaults explain, as a line of a list.
std::string ExplainAttributes(const TDocument& Document) {
  const TXMLEventCounts& judge = Document.Counts[rdLibxml2];
  std::string line = "- " + Document.Source.File.filename().string() + ":";
  bool differ = false;
  for (const int i : {rdZamrit, rdLibxml2, rdExpat, rdExpatNamespaces, rdXerces}) {
    if (!Document.Read(i)) continue;
    line += std::string(" ") + cReaders[i].Name + " " + std::to_string(Document.Counts[i].Attributes) + ",";
    differ |= Document.Counts[i].Attributes != judge.Attributes;
  }
  if (!differ) return {};
  return line + " of which " + std::to_string(judge.Declarations) + " may be namespace declarations and " +
         std::to_string(judge.Defaulted) + " defaults of the DTD\n";
}

std::vector<std::string> HeadsWithFiles(const std::string& First, const std::vector<TDocument>& Documents) {
  std::vector<std::string> heads{First};
  for (const TDocument& document : Documents) heads.push_back(document.Source.File.filename().string());
  return heads;
}

std::string SpeedTable(const std::vector<TDocument>& Documents) {
  TTable table(HeadsWithFiles("MB/s", Documents));
  for (int i = 0; i < rdCount; ++i) {
    std::vector<std::string> cells{cReaders[i].Name};
    for (const TDocument& document : Documents)
      cells.push_back(document.Read(i) ? Fixed(document.Speed(i), 0) + " (" + Fixed(document.BestSpeed(i), 0) + ")"
                                       : "refused");
    table.Add(cells);
  }
  return table.Markdown();
}

std::string Verdict(const TComparison& Comparison, double Mean, double Least) {
  if (Comparison.Goal == 0) return "";
  if (Mean < Comparison.MeanFloor || Least < Comparison.FileFloor) return "below the floor";
  return Mean < Comparison.Goal ? "between floor and goal" : "reached";
}

std::string RatioTable(const std::vector<TDocument>& Documents) {
  std::vector<std::string> heads = HeadsWithFiles("ratio of speeds", Documents);
  heads.insert(heads.end(), {"geometric mean", "goal", "floor", "verdict"});
  TTable table(heads);
  for (const TComparison& comparison : cComparisons) {
    std::vector<std::string> cells{comparison.Name};
    std::vector<double> ratios;
    for (const TDocument& document : Documents) {
      if (!document.Read(comparison.Subject) || !document.Read(comparison.One) || !document.Read(comparison.Other)) {
        cells.push_back("-");
        continue;
      }
      ratios.push_back(document.Speed(comparison.Subject) /
                       std::max(document.Speed(comparison.One), document.Speed(comparison.Other)));
      cells.push_back(Fixed(ratios.back(), 2));
    }
    if (ratios.empty()) {
      cells.insert(cells.end(), {"-", "", "", ""});
    } else {
      const double mean = GeometricMean(ratios);
      const bool judged = comparison.Goal > 0;
      cells.push_back(Fixed(mean, 2));
      cells.push_back(judged ? Fixed(comparison.Goal, 1) : "");
      cells.push_back(judged ? Fixed(comparison.MeanFloor, 1) : "");
      cells.push_back(Verdict(comparison, mean, *std::min_element(ratios.begin(), ratios.end())));
    }
    table.Add(cells);
  }
  return table.Markdown();
}

std::string DocumentTable(const std::vector<TDocument>& Documents) {
  TTable table({"document", "bytes", "elements", "attributes", "bytes an element"});
  for (const TDocument& document : Documents) {
    const TXMLEventCounts& counts = document.Counts[document.Read(rdZamrit) ? rdZamrit : rdLibxml2];
    const auto size = document.Source.UTF8.size();
    table.Add({document.Source.File.filename().string(), std::to_string(size), std::to_string(counts.Elements),
               std::to_string(counts.Attributes),
               Fixed(static_cast<double>(size) / static_cast<double>(counts.Elements), 1)});
  }
  return table.Markdown();
}

}  // namespace

int RunXMLEvents(const TOptions& Options) {
  const double seconds = Options.Quick ? std::min(Options.Seconds, 0.1) : Options.Seconds;
  std::vector<std::filesystem::path> files = FindDocuments(Options.Data / "xml" / "docs");
  files.push_back(GeneratedDocument(Options.Quick ? 10000000 : 100000000));
  const bool pinned = PinToOneCore();
  KeepHeapWarm();

  std::vector<TDocument> documents;
  std::string faults, explanations, repairs;
  for (const std::filesystem::path& file : files) {
    std::fprintf(stderr, "%s ...\n", file.filename().c_str());
    TDocument& document = documents.emplace_back(LoadDocument(file));
    if (document.Repaired) repairs += " " + file.filename().string();
    Measure(document, seconds);
    faults += FindFaults(document);
    explanations += ExplainAttributes(document);
  }

  std::string text = "# XML events\n\n" + DescribeMachine() + "; " + Libxml2Version() + ", " + ExpatVersion() + ", " +
                     XercesVersion() + ".\n\n";
  if (Options.Quick) text += "A quick run: the figures prove nothing.\n\n";
  if (!pinned) text += "The process could not be kept on one core.\n\n";
  text += SpeedTable(documents) + RatioTable(documents) + DocumentTable(documents);
  if (!repairs.empty())
    text += "Not well-formed, and therefore read with its bare ampersands escaped, by all alike:" + repairs + "\n\n";
  if (!explanations.empty()) text += "Attributes as the readers count them:\n\n" + explanations + "\n";
  if (!faults.empty()) text += "**The readers disagree:**\n\n" + faults + "\n";
  Publish(text + cNotes, Options.Markdown);
  return faults.empty() ? 0 : 1;
}

}  // namespace zm::bench
