#include <libxml/parser.h>
#include <libxml/xpath.h>

#include <cstdio>
#include <memory>
#include <pugixml.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "Commands.h"
#include "Harness.h"
#include "Report.h"
#include "zamrit/xml/uZmXPath.h"

namespace zm::bench {
namespace {

constexpr double cPugixmlGoal = 1, cPugixmlLimit = 1.5;  // times pugixml's time
constexpr double cLibxml2Goal = 1.0 / 3;                 // times libxml2's time
constexpr double cCallLimit = 1e-6;                      // seconds for a call on the tiny document

template <class F>
std::string Root(std::size_t Count, F Item) {
  std::string text = "<root>";
  for (std::size_t i = 0; i < Count; ++i) text += Item(i);
  return text + "</root>";
}

std::string Items(std::size_t Count) {
  return Root(Count, [](std::size_t i) {
    return "<item id=\"" + std::to_string(i) + "\" k=\"" + (i % 2 ? "odd" : "even") + "\"><v>" + std::to_string(3 * i) +
           "</v></item>";
  });
}

std::string Marked(std::size_t Count) {
  return Root(Count, [](std::size_t i) { return i % 2 ? "<a/>" : "<a x=\"1\"/>"; });
}

/// The same for the three libraries. Candidates is what the predicate is asked of.
struct TQuery {
  const char* Path;
  std::size_t Candidates;
  std::string (*Make)(std::size_t Count);
};

constexpr TQuery cQueries[] = {
    {"//item[@id=\"12345\"]", 100000, Items},
    {"//item[v > 299000]", 100000, Items},
    {"//item[starts-with(v,\"29\")]", 100000, Items},
    {"//a[not(@x)]", 100000, Marked},
    {"//item[@k=\"odd\"][v > 150000]", 100000, Items},
    {"/root/a[@x=\"1\"]", 1, [](std::size_t) { return std::string("<root><a x=\"1\"/></root>"); }},
};

/// libxml2 with a document and a compiled path.
class TLibxml2 {
 public:
  TLibxml2(const std::string& XML, const char* Path)
      : FDocument(xmlReadMemory(XML.data(), static_cast<int>(XML.size()), "", "UTF-8", XML_PARSE_HUGE), xmlFreeDoc),
        FContext(xmlXPathNewContext(FDocument.get()), xmlXPathFreeContext),
        FPath(xmlXPathCompile(reinterpret_cast<const xmlChar*>(Path)), xmlXPathFreeCompExpr) {
    if (!FDocument || !FContext || !FPath) throw std::runtime_error("libxml2 refuses the document or the path");
  }
  std::size_t Count() const {
    const std::unique_ptr<xmlXPathObject, void (*)(xmlXPathObject*)> found(
        xmlXPathCompiledEval(FPath.get(), FContext.get()), xmlXPathFreeObject);
    if (!found || !found->nodesetval) return 0;
    return static_cast<std::size_t>(found->nodesetval->nodeNr);
  }

 private:
  std::unique_ptr<xmlDoc, void (*)(xmlDoc*)> FDocument;
  std::unique_ptr<xmlXPathContext, void (*)(xmlXPathContext*)> FContext;
  std::unique_ptr<xmlXPathCompExpr, void (*)(xmlXPathCompExpr*)> FPath;
};

std::string Verdict(double Ours, double Pugixml, double Libxml2, bool IsCall) {
  if (Ours > cPugixmlLimit * Pugixml && !(IsCall && Ours < cCallLimit)) return "missed by far";
  return Ours <= cPugixmlGoal * Pugixml && Ours <= cLibxml2Goal * Libxml2 ? "reached" : "missed";
}

void AddQuery(TTable& Table, const TQuery& Query, const TOptions& Options) {
  const bool isCall = Query.Candidates == 1;
  const std::size_t candidates = isCall || !Options.Quick ? Query.Candidates : Query.Candidates / 5;
  const std::string text = Query.Make(candidates);
  const auto document = Create<TZmDOMDocument>();
  document->LoadFromXML(std::string_view(text));
  pugi::xml_document peer;
  if (!peer.load_buffer(text.data(), text.size())) throw std::runtime_error("pugixml refuses the document");
  const pugi::xpath_query compiled(Query.Path);
  const TLibxml2 other(text, Query.Path);

  std::size_t ours = 0, theirs = 0, others = 0;
  const std::vector<TTiming> timings =
      Race({{"Zamrit", [&] { ours = static_cast<std::size_t>(document->CreateNodeList(Query.Path)->Count()); }},
            {"pugixml", [&] { theirs = compiled.evaluate_node_set(peer).size(); }},
            {"pugixml, text", [&] { theirs = peer.select_nodes(Query.Path).size(); }},
            {"libxml2", [&] { others = other.Count(); }}},
           Options.Quick ? 0.1 : Options.Seconds);
  if (ours != theirs || ours != others) throw std::runtime_error(std::string(Query.Path) + ": found differently");
  const auto each = [&](const TTiming& timing) {
    return Fixed(timing.Median * 1e9 / static_cast<double>(candidates), isCall ? 0 : 1);
  };
  Table.Add({std::string("`").append(Query.Path).append("`"), std::to_string(candidates), std::to_string(ours),
             each(timings[0]), each(timings[1]), each(timings[2]), each(timings[3]),
             Fixed(timings[0].Median / timings[1].Median, 2), Fixed(timings[0].Median / timings[3].Median, 2),
             Verdict(timings[0].Median, timings[1].Median, timings[3].Median, isCall)});
}

}  // namespace

int RunPredicates(const TOptions& Options) {
  PinToOneCore();
  KeepHeapWarm();
  TTable table({"path", "candidates", "found", "Zamrit", "pugixml", "pugixml, from text", "libxml2", "to pugixml",
                "to libxml2", "verdict"});
  for (const TQuery& query : cQueries) AddQuery(table, query, Options);
  std::string text = "# Predicates\n\n" + DescribeMachine() + ".\n\n";
  if (Options.Quick) text += "A quick run: the figures prove nothing.\n\n";
  Publish(text + table.Markdown() +
              "Nanoseconds of processor time for each candidate, medians, taking turns; the last row is one call on a "
              "document of two elements. pugixml and libxml2 have compiled the path before, and pugixml once more each "
              "time; Zamrit takes it apart every time. Each side makes a list of its own. Texts and names compare in "
              "Zamrit without regard to case, by default, in the others byte for byte. The ratios are of times; the "
              "goal is no more than " +
              Fixed(cPugixmlGoal, 1) + " and " + Fixed(cLibxml2Goal, 2) + ".\n",
          Options.Markdown);
  return 0;
}

}  // namespace zm::bench
