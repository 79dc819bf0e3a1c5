#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tests/conformance/DataFolder.h"
#include "tests/support/DOM.h"
#include "zamrit/xml/dom/TreeDetail.h"

#ifdef ZM_PUGIXML
#include <pugixml.hpp>
#endif

namespace {

namespace fs = std::filesystem;
using namespace zm;
using detail::TDOMTree;

/// The documents that are well-formed: the larger ones, and those that the suite calls valid or invalid.
std::vector<fs::path> WellFormed(const fs::path& Folder) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(Folder / "xml/docs")) files.push_back(entry.path());
  std::ifstream index(Folder / "xml/xmlconf-index.tsv");
  for (std::string line; std::getline(index, line);) {
    std::string path, type;
    std::istringstream cells(line);
    std::getline(std::getline(cells, path, '\t'), type, '\t');
    if (type == "valid" || type == "invalid") files.push_back(Folder / "xml/xmlconf" / path);
  }
  std::sort(files.begin(), files.end());
  return files;
}

/// Why documents were left out, with how many there were.
class TLeftOut {
 public:
  void Add(const char* Why) { ++FCounts[Why]; }
  ~TLeftOut() {
    for (const auto& [why, count] : FCounts) std::cout << "left out: " << count << ' ' << why << '\n';
  }

 private:
  std::map<std::string, int> FCounts;
};

/// A document of a file, nil where the reader refuses it.
TZmOwner<TZmDOMDocument> Read(const std::string& Bytes) {
  auto document = Create<TZmDOMDocument>();
  TZmStringStream stream(cZmBorrow, Bytes, 0);
  try {
    document->LoadFromStream(&stream);
  } catch (const Exception&) {
    return nullptr;
  }
  return document;
}

TZmDOMNode* Following(TZmDOMNode* Node) { return TDOMTree::Following(Node, Node->GetDOMDocument()); }

bool HasQuoteInAttribute(TZmDOMDocument& Document) {
  for (TZmDOMNode* node = &Document; node; node = Following(node))
    if (node->GetNodeType() == ntAttribute && TDOMTree::RawText(node).find('"') != std::string_view::npos) return true;
  return false;
}

/// Whether saving drops the node: an instruction in an element with neither elements nor texts.
bool IsDropped(TZmDOMNode* Node) {
  if (Node->GetNodeType() != ntProcessingInstruction || Node->ParentNode()->GetNodeType() != ntElement) return false;
  auto* const parent = static_cast<TZmDOMElement*>(Node->ParentNode());
  return parent->ElementCount() == 0 && parent->CharNodes().Count() == 0;
}

/// The next node that is saved.
TZmDOMNode* NextSaved(TZmDOMNode* Node) {
  do Node = Following(Node);
  while (Node && IsDropped(Node));
  return Node;
}

/// Whether two documents hold the same nodes but for those that are not saved.
testing::AssertionResult SameTree(TZmDOMDocument& Document, TZmDOMDocument& Again) {
  TZmDOMNode *node = &Document, *twin = &Again;
  while ((node = NextSaved(node))) {
    twin = Following(twin);
    if (!twin) return testing::AssertionFailure() << "nothing for " << ToUTF8(node->GetQualifiedName());
    if (node->GetNodeType() != twin->GetNodeType() || node->GetQualifiedName() != twin->GetQualifiedName() ||
        TDOMTree::RawText(node) != TDOMTree::RawText(twin) || node->GetNamespaceURI() != twin->GetNamespaceURI())
      return testing::AssertionFailure() << Saved(*node) << " became " << Saved(*twin);
  }
  if (Following(twin)) return testing::AssertionFailure() << "too much: " << Saved(*Following(twin));
  return testing::AssertionSuccess();
}

TEST(XMLDocumentData, ComesBackFromWhatItSaves) {
  const fs::path folder = DataFolder();
  if (folder.empty()) return;
  TLeftOut leftOut;
  int compared = 0;
  for (const fs::path& file : WellFormed(folder)) {
    SCOPED_TRACE(file);
    const auto document = Read(BytesOf(file));
    if (!document) {
      leftOut.Add("document(s) that the reader refuses");
      continue;
    }
    if (HasQuoteInAttribute(*document)) {
      leftOut.Add("document(s) with a double quote in a value between single ones");
      continue;
    }
    for (const bool formatted : {false, true}) {
      const std::string saved = [&] {
        TZmStringStream stream(cZmPageUTF8);
        document->SaveToStream(&stream, cZmPageUTF8, formatted, false);
        return stream.GetDataString();
      }();
      TZmDOMDocument again;
      TZmStringStream stream(cZmBorrow, saved, cZmPageUTF8);
      ASSERT_NO_THROW(again.LoadFromStream(&stream, cZmPageUTF8));
      if (formatted) continue;  // in mixed content line ends become text
      EXPECT_TRUE(SameTree(*document, again));
      EXPECT_EQ(Saved(again), saved);
    }
    ++compared;
  }
  EXPECT_GT(compared, 300);
}

#ifdef ZM_PUGIXML

bool IsBlank(std::string_view Text) { return Text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

/// A node of either side in short. Zamrit takes one blank from in front of an instruction's data, pugixml all of them;
/// of a name that starts with a colon Zamrit keeps what stands behind it.
std::string Short(const char* Kind, std::string_view Name, std::string_view Value) {
  if (std::string_view(Kind) == "instruction")
    Value.remove_prefix(std::min(Value.find_first_not_of(" \t\r\n"), Value.size()));
  if (Name.starts_with(':')) Name.remove_prefix(1);
  return std::string(Kind).append(" ").append(Name).append("=").append(Value);
}

/// All nodes, attributes behind their element.
std::vector<std::string> Outline(TZmDOMDocument& Document) {
  constexpr const char* kinds[] = {"", "element", "attribute", "text", "cdata", "", "", "instruction", "comment"};
  std::vector<std::string> all;
  for (TZmDOMNode* node = Following(&Document); node; node = Following(node)) {
    const TZmDOMNodeType type = node->GetNodeType();
    const std::string_view text = type == ntElement ? std::string_view() : TDOMTree::RawText(node);
    if (type == ntText && IsBlank(text)) continue;  // kept under xml:space
    const std::string_view name = kinds[type];
    const bool declaration = type == ntProcessingInstruction && node->GetQualifiedName() == u"xml";
    if (!declaration) all.push_back(Short(name.data(), ToUTF8(node->GetQualifiedName()), text));
  }
  return all;
}

std::vector<std::string> Outline(const pugi::xml_document& Document) {
  constexpr const char* kinds[] = {"", "", "element", "text", "cdata", "comment", "instruction", "", ""};
  std::vector<std::string> all;
  for (pugi::xml_node node = Document.first_child(); node;) {
    all.push_back(Short(kinds[node.type()], node.name(), node.value()));
    for (const pugi::xml_attribute& a : node.attributes()) all.push_back(Short("attribute", a.name(), a.value()));
    if (node.first_child()) {
      node = node.first_child();
      continue;
    }
    while (node && !node.next_sibling()) node = node.parent();
    node = node.next_sibling();
  }
  return all;
}

TEST(XMLDocumentData, HoldsWhatPugixmlHolds) {
  const fs::path folder = DataFolder();
  if (folder.empty()) return;
  // Values as they stand in the source.
  constexpr unsigned kept = pugi::parse_cdata | pugi::parse_comments | pugi::parse_pi;
  TLeftOut leftOut;
  int compared = 0;
  for (const fs::path& file : WellFormed(folder)) {
    SCOPED_TRACE(file);
    const std::string bytes = BytesOf(file);
    const auto document = Read(bytes);
    if (!document) {
      leftOut.Add("document(s) that Zamrit refuses");
      continue;
    }
    constexpr std::uint16_t pages[] = {cZmPageUTF8, cZmPageUTF16, 1201, 20127, 28591};
    if (std::find(std::begin(pages), std::end(pages), document->GetCodePage()) == std::end(pages)) {
      leftOut.Add("document(s) in encodings that pugixml does not know");
      continue;
    }
    pugi::xml_document peer;
    if (!peer.load_buffer(bytes.data(), bytes.size(), kept)) {
      leftOut.Add("document(s) that pugixml refuses");
      continue;
    }
    const std::vector<std::string> ours = Outline(*document), theirs = Outline(peer);
    const auto differ = std::mismatch(ours.begin(), ours.end(), theirs.begin(), theirs.end());
    EXPECT_TRUE(ours == theirs) << (differ.first == ours.end() ? "nothing" : *differ.first) << " and "
                                << (differ.second == theirs.end() ? "nothing" : *differ.second);
    ++compared;
  }
  EXPECT_GT(compared, 300);
}

#else

TEST(XMLDocumentData, HoldsWhatPugixmlHolds) {
  std::cout << "left out: pugixml was not found when the tests were configured\n";
}

#endif

}  // namespace
