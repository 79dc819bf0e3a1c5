#include "XMLDocument.h"

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "Commands.h"
#include "Generator.h"
#include "Harness.h"
#include "Report.h"

namespace zm::bench {
namespace {

constexpr TTreeLibrary cLibraries[] = {
    {"Zamrit", MakeZamritDocument},   {"pugixml", MakePugixmlDocument},   {"libxml2", MakeLibxml2Document},
    {"Xerces-C", MakeXercesDocument}, {"tinyxml2", MakeTinyXML2Document},
};
constexpr std::size_t cPugixml = 1, cLibxml2 = 2;

constexpr TTreeGoal cGoals[] = {
    {ttColdLoad, cPugixml, cPugixml, 1.5}, {ttWarmLoad, cPugixml, cPugixml, 0.75},
    {ttSave, cPugixml, cPugixml, 1.0},     {ttSaveFormatted, cPugixml, cPugixml, 1.0},
    {ttColdLoad, cLibxml2, cLibxml2, 5},
};

constexpr const char* cNotes =
    "- Zamrit keeps elements with links to the declarations of their namespaces, attributes, texts, comments, CDATA "
    "sections and instructions, with their values as they stand in the source; pugixml is told to keep as much, and "
    "knows no namespaces. None keeps texts of white space alone, but Xerces-C, which needs a DTD for that. The walk of "
    "Zamrit and Xerces-C hands out values in UTF-16. A document that is not well-formed is read all the same: libxml2 "
    "and "
    "Xerces-C are told to go on.\n";

std::string HugePages() {
  std::ifstream setting("/sys/kernel/mm/transparent_hugepage/enabled");
  std::string words;
  return std::getline(setting, words) ? "Transparent huge pages: " + words + ".\n\n" : "";
}

}  // namespace

int RunXMLDocument(const TOptions& Options) {
  const double seconds = Options.Quick ? std::min(Options.Seconds, 0.1) : Options.Seconds;
  std::vector<TTreeSource> sources = LoadSources(Options.Data / "xml/docs", {".xml", ".gir"}, 300000);
  sources.push_back({"generated", ReadFile(GeneratedDocument(Options.Quick ? 5000000 : 100000000))});

  std::string text = "# The XML document\n\n" + DescribeMachine() + ". " + HugePages();
  if (Options.Quick) text += "A quick run: the figures prove nothing.\n\n";
  text += CompareTrees(cLibraries, sources, cGoals, cPugixml, seconds);
  Publish(text + cTreeNotes + cNotes, Options.Markdown);
  return 0;
}

}  // namespace zm::bench
