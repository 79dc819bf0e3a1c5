#include <cstdio>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "Commands.h"
#include "Options.h"

namespace zm::bench {
namespace {

struct TCommand {
  std::string_view Name;
  std::string_view Synopsis;
  std::string_view Summary;
  int (*Run)(const TOptions& Options);
};

constexpr TCommand cCommands[] = {
    {"xml-events", "[--data DIR] [--seconds S] [--markdown FILE] [--quick]",
     "XML as events, beside libxml2, expat and Xerces-C", RunXMLEvents},
    {"xml-events-limits", "[--gigabytes G] [--markdown FILE] [--quick]",
     "memory of the XML reader over endless input, time over huge tokens, lists and depths", RunXMLEventsLimits},
    {"xml-document", "[--data DIR] [--seconds S] [--markdown FILE] [--quick]",
     "XML as a document, beside pugixml, libxml2, Xerces-C and tinyxml2", RunXMLDocument},
    {"node-paths", "[--seconds S] [--markdown FILE] [--quick]",
     "paths in XML documents, beside pugixml, and how edits grow", RunNodePaths},
    {"predicates", "[--seconds S] [--markdown FILE] [--quick]",
     "predicates in XML documents, beside pugixml and libxml2", RunPredicates},
    {"json-events", "[--data DIR] [--seconds S] [--markdown FILE] [--quick]",
     "JSON as events, beside RapidJSON and nlohmann", RunJSONEvents},
    {"json", "[--data DIR] [--seconds S] [--markdown FILE] [--quick]",
     "JSON as a document, beside RapidJSON, Boost.JSON, nlohmann and simdjson", RunJSONModel},
    {"reflection", "[--seconds S] [--markdown FILE] [--quick]", "members by reflection, beside direct access",
     RunReflection},
    {"values", "[--seconds S] [--markdown FILE] [--quick]",
     "text as XML and back: escaping and entities beside libxml2, numbers and dates beside the C++ library", RunValues},
};

int Help() {
  std::puts("zamrit-bench COMMAND [OPTION...]\n");
  for (const TCommand& command : cCommands)
    std::printf("%s %s\n    %s\n", command.Name.data(), command.Synopsis.data(), command.Summary.data());
  std::puts("help\n    this text\n");
  std::puts(
      "--data DIR       folder of documents in UTF-8, read from DIR/xml/docs and DIR/json; default ../shared/data\n"
      "--seconds S      time for each reader and document, default 1\n"
      "--gigabytes G    the longest endless input, default 10\n"
      "--markdown FILE  writes the tables to FILE too\n"
      "--quick          small inputs and little time: shows that all works, proves nothing");
  return 0;
}

int Run(const std::vector<std::string_view>& Arguments) {
  if (Arguments.empty()) throw EUsage("no command; try: zamrit-bench help");
  const std::vector<std::string_view> rest(Arguments.begin() + 1, Arguments.end());
  if (Arguments[0] == "help" && rest.empty()) return Help();
  for (const TCommand& command : cCommands)
    if (command.Name == Arguments[0]) return command.Run(ParseOptions(rest, command.Synopsis));
  throw EUsage("there is no command '" + std::string(Arguments[0]) + "'; try: zamrit-bench help");
}

}  // namespace
}  // namespace zm::bench

int main(int Count, char** Values) {
  try {
    return zm::bench::Run({Values + 1, Values + Count});
  } catch (const zm::bench::EUsage& e) {
    std::fprintf(stderr, "zamrit-bench: %s\n", e.what());
    return 2;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "zamrit-bench: %s\n", e.what());
    return 1;
  }
}
