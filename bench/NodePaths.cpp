#include <cstdio>
#include <functional>
#include <pugixml.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "Commands.h"
#include "Harness.h"
#include "Isolated.h"
#include "Report.h"
#include "zamrit/xml/uZmXMLDOM.h"

namespace zm::bench {
namespace {

constexpr double cSelectionGoal = 1.5;  // times pugixml's time
constexpr double cGrowthGoal = 1.5;     // times the time for each at a quarter of the size
constexpr unsigned cLimit = 600;

/// Text, so often, between two others.
std::string Repeated(std::string_view Head, std::string_view Text, std::size_t Count, std::string_view Tail) {
  std::string all(Head);
  for (std::size_t i = 0; i < Count; ++i) all += Text;
  return all.append(Tail);
}

TZmOwner<TZmDOMDocument> Loaded(const std::string& XML) {
  auto document = Create<TZmDOMDocument>();
  document->LoadFromXML(std::string_view(XML));
  return document;
}

/// A path over a document of so many elements.
struct TSelection {
  const char* Path;
  std::size_t Elements;
  std::string (*Make)(std::size_t Elements);
};

constexpr TSelection cSelections[] = {
    {"/root/a/b", 100000,
     [](std::size_t n) { return Repeated("<root>", Repeated("<a>", "<b/>", 99, "</a>"), n / 100, "</root>"); }},
    {"//name", 1000000,
     [](std::size_t n) { return Repeated("<root>", "<item><number/><name/><price/></item>", n / 4, "</root>"); }},
};

void AddSelection(TTable& Table, const TSelection& Selection, const TOptions& Options) {
  const std::size_t elements = Selection.Elements / (Options.Quick ? 10 : 1);
  const std::string text = Selection.Make(elements);
  const auto document = Loaded(text);
  pugi::xml_document peer;
  if (!peer.load_buffer(text.data(), text.size())) throw std::runtime_error("pugixml refuses the document");
  const pugi::xpath_query query(Selection.Path);

  std::size_t ours = 0, theirs = 0;
  const std::vector<TTiming> timings =
      Race({{"Zamrit", [&] { ours = static_cast<std::size_t>(document->CreateNodeList(Selection.Path)->Count()); }},
            {"pugixml", [&] { theirs = query.evaluate_node_set(peer).size(); }}},
           Options.Quick ? 0.1 : Options.Seconds);
  if (ours != theirs) throw std::runtime_error(std::string(Selection.Path) + ": the libraries find differently");
  const double ratio = timings[0].Median / timings[1].Median;
  Table.Add({Selection.Path, std::to_string(elements), std::to_string(ours), Fixed(timings[0].Median * 1e3, 2),
             Fixed(timings[1].Median * 1e3, 2), Fixed(ratio, 2), Fixed(cSelectionGoal, 2),
             ratio <= cSelectionGoal ? "reached" : "missed"});
}

/// Work of a size, of which Measure answers the seconds.
struct TGrowing {
  const char* Name;
  std::size_t Size;
  double (*Measure)(std::size_t Size);
};

double Select(const std::string& XML, const char* Path, int Expected) {
  const auto document = Loaded(XML);
  int found = 0;
  const auto select = [&] { found = document->CreateNodeList(Path)->Count(); };
  select();
  std::vector<double> samples;
  for (int i = 0; i < 5; ++i) samples.push_back(Stopwatch(select));
  if (found != Expected) throw std::runtime_error("finds " + std::to_string(found));
  return Median(samples);
}

double Insert(std::size_t Size, TZmDOMPosition Position) {
  const auto document = Create<TZmDOMDocument>("root");
  TZmDOMElement* const root = document->GetRootNode();
  root->Elements().Count();
  const double seconds = Stopwatch([&] {
    for (std::size_t i = 0; i < Size; ++i) root->InsertElement("a", Position);
  });
  if (root->Elements().Count() != static_cast<int>(Size)) throw std::runtime_error("the list counts differently");
  return seconds;
}

constexpr TGrowing cGrowing[] = {
    {"`/root/x/..`: parents that are one node", 1000000,
     [](std::size_t n) { return Select(Repeated("<root>", "<x/>", n, "</root>"), "/root/x/..", 1); }},
    {"`//x/..`: two to a parent", 1000000,
     [](std::size_t n) {
       return Select(Repeated("<root>", "<y><x/><x/></y>", n / 2, "</root>"), "//x/..", static_cast<int>(n / 2));
     }},
    {"`//a//a//a` in a chain", 1000000,
     [](std::size_t n) {
       return Select(Repeated("", "<a>", n, "") + Repeated("", "</a>", n, ""), "//a//a//a", static_cast<int>(n) - 2);
     }},
    {"siblings inserted at the front", 1000000, [](std::size_t n) { return Insert(n, rdpFirst); }},
    {"siblings inserted at the end", 1000000, [](std::size_t n) { return Insert(n, rdpLast); }},
    {"children removed from the end", 1000000,
     [](std::size_t n) {
       const auto document = Loaded(Repeated("<root>", "<a/>", n, "</root>"));
       TZmDOMElement* const root = document->GetRootNode();
       TZmDOMElementList& elements = root->Elements();
       const double seconds = Stopwatch([&] {
         for (int i = elements.Count(); i-- > 0;) root->RemoveElement(elements[i]);
       });
       if (root->HasChildNodes()) throw std::runtime_error("children are left");
       return seconds;
     }},
};

bool AddGrowing(TTable& Table, const TGrowing& Growing, bool Quick) {
  double before = 0;
  for (const std::size_t size : {Growing.Size / 4, Growing.Size}) {
    const std::size_t n = Quick ? size / 10 : size;
    const TIsolated run = RunIsolated([&] { return Growing.Measure(n); }, cLimit);
    if (!run.Failure.empty()) {
      Table.Add({Growing.Name, std::to_string(n), run.Failure, "", "", ""});
      return false;
    }
    const double each = run.Seconds * 1e9 / static_cast<double>(n);
    const bool first = before == 0;
    Table.Add({Growing.Name, std::to_string(n), Fixed(run.Seconds * 1e3, 1), Fixed(each, 1),
               first ? "" : Fixed(each / before, 2),
               first                          ? ""
               : each <= cGrowthGoal * before ? "linear"
                                              : "grows"});
    before = each;
  }
  return true;
}

/// Adds an element with an attribute and a text, and removes it, again and again.
double AddAndRemove(std::size_t Count) {
  const auto document = Loaded("<root><a/><b/></root>");
  TZmDOMElement* const root = document->GetRootNode();
  return Stopwatch([&] {
    for (std::size_t i = 0; i < Count; ++i) {
      TZmDOMElement* const element = root->AddElement("element");
      element->SetAttribute("attribute", "a value that does not fit into a name");
      element->AddText("text");
      root->RemoveElement(element);
    }
  });
}

bool AddMemory(TTable& Table, std::size_t Count) {
  const TIsolated run = RunIsolated([&] { return AddAndRemove(Count); }, cLimit);
  if (!run.Failure.empty()) {
    Table.Add({std::to_string(Count), run.Failure, ""});
    return false;
  }
  Table.Add({std::to_string(Count), Fixed(run.Seconds * 1e9 / static_cast<double>(Count), 0),
             Fixed(static_cast<double>(run.PeakGrowth) / 1e6, 1)});
  return true;
}

}  // namespace

int RunNodePaths(const TOptions& Options) {
  PinToOneCore();
  bool good = true;
  TTable memory({"elements added and removed", "ns each", "peak growth, MB"});
  for (const std::size_t count : {10000u, 100000u, 1000000u, 10000000u})
    if (!Options.Quick || count <= 100000) good &= AddMemory(memory, count);
  TTable growing({"what", "N", "ms", "ns each", "growth", "verdict"});
  for (const TGrowing& item : cGrowing) {
    std::fprintf(stderr, "%s ...\n", item.Name);
    good &= AddGrowing(growing, item, Options.Quick);
  }
  KeepHeapWarm();
  TTable selections({"path", "elements", "found", "Zamrit, ms", "pugixml, ms", "ratio of times", "goal", "verdict"});
  for (const TSelection& selection : cSelections) AddSelection(selections, selection, Options);

  std::string text = "# Node paths and edits\n\n" + DescribeMachine() + ".\n\n";
  if (Options.Quick) text += "A quick run: the figures prove nothing.\n\n";
  Publish(text + "## Paths\n\n" + selections.Markdown() +
              "Medians of processor time on a warm heap, taking turns. Each side makes a list of its own of distinct "
              "nodes and frees it. pugixml has compiled its query before; Zamrit takes the path apart every time. "
              "Names compare in Zamrit without regard to case, by default, in pugixml byte for byte. The goal is a "
              "ratio that is not exceeded.\n\n"
              "## Growth\n\n" +
              growing.Markdown() +
              "Processor time in a process of its own for each row, of paths the median of five. *growth* is the time "
              "for one against the row above with a quarter as many: 1.00 is exactly linear, what no longer fits into "
              "the caches adds to it, and up to " +
              Fixed(cGrowthGoal, 1) +
              " counts as linear. The list of elements is there while children come and go.\n\n"
              "## Memory of edits\n\n" +
              memory.Markdown() +
              "An element with an attribute and a text comes to a document that was loaded, and goes, so many times. "
              "The growth is that of the resident memory of a process of its own, over what it had at its start.\n",
          Options.Markdown);
  return good ? 0 : 1;
}

}  // namespace zm::bench
