#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>

#include "tests/support/Zone.h"
#include "tests/xml/xpath/Found.h"
#include "tests/xml/xpath/ValueOf.h"

using namespace zm;

namespace {

// What stands between two backticks in the cell of a row; a cell begins behind " | ".
std::string CodeIn(std::string Row, int Cell) {
  for (; Cell > 0; --Cell) Row.erase(0, Row.find(" | ") + 2);
  const std::size_t start = Row.find('`') + 1;
  return Row.substr(start, Row.find('`', start) - start);
}

}  // namespace

// docs/xpath-functions.md: each row of a table is a function, its result, an example and the value of that.
TEST(FunctionsPage, GivesWhatItSays) {
  const TZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
  std::ifstream page(ZM_DOCS "/xpath-functions.md");
  std::string line, xml;
  while (std::getline(page, line) && line != "```xml") continue;
  while (std::getline(page, line) && line != "```") xml += line + '\n';
  const auto document = Loaded(xml);
  document->SetDocumentURI("file:/library.xml");

  std::set<std::string> missing = {"first", "last", "position", "node", "string"};
#define ZM_NAME(Name, Suffix) missing.insert(ToUTF8(Name));
  ZM_XPATH_FUNCTIONS(ZM_NAME)
#undef ZM_NAME
  const std::set<std::string> all = missing;
  while (std::getline(page, line)) {
    if (!line.starts_with("| `")) continue;
    const std::string function = CodeIn(line, 0), name = function.substr(0, function.find('('));
    EXPECT_TRUE(all.contains(name)) << line;
    missing.erase(name);
    EXPECT_EQ(CodeIn(line, 2).substr(0, name.size() + 1), name + "(");
    EXPECT_EQ(ValueOf(*document->GetRootNode(), CodeIn(line, 2)), CodeIn(line, 3)) << line;
  }
  EXPECT_EQ(missing, std::set<std::string>());
}
