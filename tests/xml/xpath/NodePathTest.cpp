#include <gtest/gtest.h>

#include <string>

#include "tests/support/Raised.h"
#include "tests/xml/xpath/Found.h"

using namespace zm;

namespace {

constexpr std::string_view cTree =
    "<?xml version='1.0'?><r xmlns:p='u'>t<a id='1'><b id='2'/><B id='3'>x<!--c--><![CDATA[y]]></B></a>"
    "<p:a id='4' p:k='v'><b id='5'><a id='6'><a id='7'/></a></b></p:a><a id='8' k='w'/></r>";

}  // namespace

TEST(NodePath, Selects) {
  const struct {
    const char* Path;
    const char* Found;
    TZmDOMSelectOptions Options;
  } cases[] = {
      {"/", "r", {}},
      {" a ", "a1 a8", {}},
      {"/r/a", "a1 a8", {}},
      {"/r/a/b", "b2 B3", {}},
      {"/r/a/b", "b2", {soCaseSensitive}},
      {"A/B", "b2 B3", {soCaseInsensitive}},
      {"a / b", "b2 B3", {}},
      {"a", "a1 p:a4 a8", {soLocalName}},
      {"p:a", "p:a4", {soLocalName}},
      {"p:a", "p:a4", {}},
      {"q:a", "", {soLocalName}},
      {"*", "a1 p:a4 a8", {}},
      {"p:*", "p:a4", {}},
      {"/*", "r", {}},
      {"*/*", "b2 B3 b5", {}},
      {"a/@id", "@id @id", {}},
      {"*/@k", "@k", {}},
      {"*/@k", "@p:k @k", {soLocalName}},
      {"*/@q:k", "@p:k @k", {soLocalName}},
      {"*/@p:k", "@p:k", {}},
      {"*/@p:*", "@p:k", {}},
      {"@*", "", {}},
      {"@*", "@xmlns:p", {soLocalName}},
      {"//@k", "@k", {}},
      {"//@*", "@id @id @id @id @p:k @id @id @id @id @k", {}},
      {"text()", "'t'", {}},
      {"tEXT()", "'t'", {}},
      {"Text()", "", {}},
      {"a/b/text()", "'x' 'y'", {}},
      {"a/b/node()", "'x' 'c' 'y'", {}},
      {"nODE()", "'t' a1 p:a4 a8", {}},
      {"Node()", "", {}},
      {"/xml", "?xml", {}},
      {".", "r", {}},
      {"./.", "", {}},
      {".//.", "r 't' a1 b2 B3 'x' 'c' 'y' p:a4 b5 a6 a7 a8", {}},
      {"./a/./b", "b2 B3", {}},
      {"..", "document", {}},
      {"../..", "", {}},
      {"a/b/..", "a1", {}},
      {"*/..", "r", {}},
      {"a/@id/..", "a1 a8", {}},
      {"//a", "a1 a8 a6 a7", {}},
      {"//b", "b2 B3 b5", {}},
      {"//*", "r a1 p:a4 a8 b2 B3 b5 a6 a7", {}},
      {"//", "?xml r 't' a1 p:a4 a8 b2 B3 'x' 'c' 'y' b5 a6 a7", {}},
      {"//text()", "'t' 'x' 'y'", {}},
      {"//a//a", "a7", {}},
      {"//*//a", "a1 a8 a6 a7", {}},
      {"//./@*", "@xmlns:p @id @id @id @id @p:k @id @id @id @id @k", {soLocalName}},
      {"a//", "b2 B3 'x' 'c' 'y'", {}},
      {"//a/..", "r b5 a6", {}},
      {"a/b|p:a|a/b", "b2 B3 p:a4", {}},
      {"/|/", "r r", {}},
      {"(a)", "a1 a8", {}},
      {"p:a/(b/a)", "a6", {}},
      {"//(a)", "a1 a8 a6 a7", {}},
      {"*/(..)", "r", {}},
      {"((a))", "a1 a8", {}},
      {"x", "", {}},
      {"@id/x", "", {}},
      {"text()/x", "", {}},
  };
  const auto document = Loaded(cTree);
  for (const auto& c : cases) EXPECT_EQ(Found(*document->GetRootNode(), c.Path, c.Options), c.Found) << c.Path;
}

TEST(NodePath, Refuses) {
  const std::string error = "The XPath expression contains an error at \"";
  const std::string behindStar = "\"!\r\na \"/\" or \"[\" was expected after the \"*\".";
  const std::string behindDots = "\"!\r\na \"/\" or \"[\" was expected after the \"..\".";
  const struct {
    const char* Path;
    std::string Message;
  } cases[] = {
      {"", "The XPath expression is not valid!"},
      {"a|", "The XPath expression is not valid!"},
      {"a/", "The XPath expression does not return a DOM Node!"},
      {"x/", "The XPath expression does not return a DOM Node!"},
      {"///a", "The specified nodePath started with an unexpected token (/)!"},
      {"a///b", "The specified nodePath started with an unexpected token (/)!"},
      {"x///b", ""},  // nothing comes to the wrong step
      {"*x", error + "*x" + behindStar},
      {"a/p:**", error + "p:**" + behindStar},
      {".x", error + ".x" + behindDots},
      {"a/...", error + "..." + behindDots},
      {"//..", error + "..\"!\r\nThe \"//\" cannot be used in combination with \"..\"."},
      {"(a)/b", "The XPath expression is not valid!"},
      {"(a|b)", "The XPath expression is not valid!"},
      {"()", "The XPath expression is not valid!"},
      {"(a", "The XPath expression is not valid!"},
      {"[0]", "The XPath expression is not valid!"},
      {"x[1]", ""},  // there is nothing to be filtered
      {"a[", "The specified XPath statement is not valid!"},
      {"a[]", "The specified XPath statement is not valid!"},
      {"a[b/c]/d[", ""},
  };
  const auto document = Loaded(cTree);
  for (const auto& c : cases) EXPECT_EQ(Found(*document->GetRootNode(), c.Path), c.Message) << c.Path;
}

TEST(NodePath, SaysWhatIsMissing) {
  auto document = Loaded("<r><a/></r>");
  TZmDOMElement& root = *document->GetRootNode();
  EXPECT_EQ(Raised<EZmDomNotFound>([&] { root.CreateNodeList("x", {soRaise}); }),
            "There are no nodes for the given path \"x!.");
  EXPECT_EQ(Raised<EZmDomNotFound>([&] { root.CreateElementList("x", {soRaise}); }),
            "There are no nodes for the given path \"x\"!");
  EXPECT_EQ(Raised<EZmDomNotFound>([&] { document->SelectSingleElement("x", {soRaise}); }),
            "There is no node for the given path \"x\"!");
  EXPECT_EQ(Raised<EZmDomNotFound>([&] { document->SelectSingleElement(""); }), "The specified nodePath is empty!");
  EXPECT_EQ(Raised<Exception>([&] {
              root.SelectSingleNode("a", {soCaseSensitive, soCaseInsensitive});
            }),
            "It is not possible to specify both soCaseSensitive and soCaseInsensitive!");
  EXPECT_EQ(Raised<Exception>([&] {
              root.SelectSingleNode("a", {soRaise, soCreate});
            }),
            "It is not possible to specify both soRaise and soCreate!");
  EXPECT_EQ(Raised<EInvalidCast>([&] { root.SelectSingleElement(".."); }), "Invalid class typecast");
  document->Clear();
  EXPECT_EQ(document->CreateElementList("x")->Count(), 0);
  EXPECT_EQ(document->SelectSingleElement("x"), nullptr);
  EXPECT_EQ(Raised<EZmDomNotFound>([&] { document->CreateElementList("x", {soRaise}); }),
            "There is no node for the given path \"x\".");
  EXPECT_EQ(Raised<EZmDomNotFound>([&] { document->SelectSingleElement("x", {soCreate}); }),
            "It is not possible to use XPath statements on documents without rootnode!");
  EXPECT_EQ(Create<TZmDOMElement>("loose")->SelectSingleNode("/a"), nullptr);
}

TEST(NodePath, TakesTheFirst) {
  auto document = Loaded("<r><n><a id='1'/></n><a id='2'/><b id='3'/></r>");
  TZmDOMElement* const root = document->GetRootNode();
  EXPECT_EQ(root->SelectSingleNode("/"), root);
  EXPECT_EQ(Short(root->SelectSingleNode("//a")), "a2");
  EXPECT_EQ(Short(root->SelectSingleNode("b|[")), "b3");
  EXPECT_EQ(Found(*root, "b|[", {}), "The XPath expression is not valid!");
  // The whole step is evaluated where something in it can raise.
  EXPECT_EQ(Raised<EZmDomSyntax>([&] { root->SelectSingleNode("*/a/.x"); }).substr(0, 40),
            "The XPath expression contains an error a");
}

TEST(NodePath, Creates) {
  const std::string tooComplex = "The given path \"%\" was too complex to use the soCreate option!";
  const struct {
    const char* Path;
    const char* Found;
    const char* Tree;
    TZmDOMSelectOptions More;
  } cases[] = {
      {"a/b/c", "c", "<r><a id=\"1\"><b><c /></b></a></r>", {}},
      {"x/p:y", "p:y", "<r><a id=\"1\" /><x><p:y /></x></r>", {}},
      {"x", "x", "<r><a id=\"1\" /><x /></r>", {soLocalName}},
      {"/r/a", "a1", "<r><a id=\"1\" /></r>", {}},
      {"/x", nullptr, "<r><a id=\"1\" /></r>", {}},
      {"x/y[2]", nullptr, "<r><a id=\"1\" /><x /></r>", {}},
      {"x[0]", "x", "<r><a id=\"1\" /><x /></r>", {}},
      {"(x/y)", "y", "<r><a id=\"1\" /><x><y /></x></r>", {}},
      {"a/x|y", "x y", "<r><a id=\"1\"><x /></a><y /></r>", {}},
      {"//./x", "x x", "<r><a id=\"1\"><x /></a><x /></r>", {}},  // not below what has been created
      {"//(./x)", "x x", "<r><a id=\"1\"><x /></a><x /></r>", {}},
      {"//x",
       "The soCreate option cannot be used in combination with the \"//\" search option!",
       "<r><a id=\"1\" /></r>",
       {}},
  };
  for (const auto& c : cases) {
    auto document = Loaded("<r><a id='1'/></r>");
    TZmDOMSelectOptions options = c.More;
    std::string expected = c.Found ? c.Found : tooComplex;
    if (!c.Found) expected.replace(expected.find('%'), 1, c.Path);
    EXPECT_EQ(Found(*document->GetRootNode(), c.Path, options.Include(soCreate)), expected) << c.Path;
    EXPECT_EQ(ToUTF8(document->GetXML()), c.Tree) << c.Path;
  }
}

TEST(NodePath, GoesByTheDocument) {
  auto document = Loaded("<r><X/><p:x/><\xC3\x84/></r>");
  TZmDOMElement& root = *document->GetRootNode();
  EXPECT_EQ(Found(root, "x"), "X");
  EXPECT_EQ(Found(root, "\xC3\xA4"), "\xC3\x84");
  document->SetSelectMatchOption(soLocalName);
  EXPECT_EQ(Found(root, "x"), "X p:x");
  document->SetCollation(TZmXPathCollationCodepoint);
  EXPECT_EQ(Found(root, "x"), "p:x");
  EXPECT_EQ(Found(root, "\xC3\xA4"), "");
}

TEST(NodePath, FollowsTheLists) {
  auto document = Loaded("<r><a id='1'><x id='2'/></a>t<a id='3'><x id='4'/></a></r>");
  TZmDOMElement& root = *document->GetRootNode();
  TZmDOMElement* const first = root.FirstElement();
  root.ChildNodes().Add(root.ChildNodes().Delete(first), rdpLast);
  EXPECT_EQ(Found(root, "a"), "a3 a1");
  EXPECT_EQ(Found(root, "*"), "a1 a3");
  EXPECT_EQ(Found(root, "//x"), "x4 x2");
  root.ChildNodes().Add(first, rdpLast);
  EXPECT_EQ(Found(root, "a"), "a3 a1");
  first->ChildNodes().Clear();
  EXPECT_EQ(Found(root, "//x"), "x4");
  first->ChildNodes().Add(&root, rdpLast);  // a circle
  EXPECT_EQ(Found(root, "//x"), "x4");
  EXPECT_EQ(Found(root, "//a//x"), "x4");

  const auto lent = Loaded("<r><a/></r>");  // a child in the list alone
  lent->GetRootNode()->FirstElement()->ChildNodes().Add(root.LastElement()->FirstElement(), rdpLast);
  EXPECT_EQ(Found(*lent, "//x"), "x4");
}

TEST(NodePath, Gathers) {
  auto document = Loaded(cTree);
  TZmDOMElement& root = *document->GetRootNode();
  const auto collation = document->GetCollation();
  const auto gathered = [](auto gather) {
    TZmDOMObjectList list;
    gather(list);
    std::string all;
    for (TZmDOMObject* const object : list) all += Short(static_cast<TZmDOMNode*>(object)) + ' ';
    return all;
  };
  EXPECT_EQ(gathered([&](auto& l) { root._SelectAllChildNodes(l, false, collation); }), "@xmlns:p 't' a1 p:a4 a8 ");
  EXPECT_EQ(gathered([&](auto& l) { root._SelectAllChildTextNodes(l, true, collation); }), "'t' 'x' 'y' ");
  EXPECT_EQ(gathered([&](auto& l) { document->_SelectAllChildAttributes(l, true, u"", u"*", u"*", collation, true); }),
            "@xmlns:p @id @id @id @id @p:k @id @id @id @id @k ");
  EXPECT_EQ(gathered([&](auto& l) { root._SelectAllChildNodesExceptAttr(l, true, u"", u"a", u"*", collation); }),
            "a1 p:a4 a6 a7 a8 ");
  EXPECT_EQ(gathered([&](auto& l) { document->_SelectAllChildElements(l, true, u"", u"*", u"", collation); }),
            "r a1 b2 B3 b5 a6 a7 a8 ");
  TZmDOMNodeList list;
  root._GetChildElements(list, "*", "a", true, {});
  root._GetChildElements(list, "u", "a", true);
  EXPECT_EQ(Short(list), "a1 p:a4 a6 a7 a8 p:a4");
  EXPECT_EQ(Raised<Exception>([&] { root._GetChildElements(list, "*", "a", true, {soRaise}); }),
            "It is not possible to specify either soRaise or soCreate!");
}

TEST(NodePath, StaysLinear) {
  constexpr int depth = 1'000'000, width = 100'000;
  std::string xml;
  for (int i = 0; i < depth; ++i) xml += "<a>";
  for (int i = 0; i < depth; ++i) xml += "</a>";
  auto document = Loaded(xml);
  const struct {
    const char* Path;
    int Count;
  } deep[] = {{"//a", depth},   {"//a//a//a", depth - 2},   {"//a/a/..", depth - 1},
              {"//(a)", depth}, {"//(a//a)//a", depth - 1}, {"//node()//", depth - 1}};
  for (const auto& c : deep) EXPECT_EQ(document->CreateNodeList(c.Path)->Count(), c.Count) << c.Path;
  EXPECT_EQ(document->SelectSingleNode("//a//a//a")->GetParent()->GetParent(), document->GetRootNode());
  xml = "<r>";
  for (int i = 0; i < width; ++i) xml += "<x/>";
  document->LoadFromXML(std::string_view(xml += "</r>"));
  TZmDOMElement& root = *document->GetRootNode();
  EXPECT_EQ(root.CreateNodeList("x/..")->Count(), 1);
  EXPECT_EQ(root.CreateNodeList("x/../x/../x")->Count(), width);
  EXPECT_EQ(root.CreateNodeList("x|x|x")->Count(), width);
}

TEST(NodePath, SurvivesLongPaths) {
  auto document = Loaded("<a><b/></a>");
  const auto repeated = [](const char* text) {
    std::string all;
    for (int i = 0; i < 100'000; ++i) all += text;
    return all;
  };
  TZmDOMElement& root = *document->GetRootNode();
  EXPECT_EQ(Found(root, (repeated("b/../") + "b").c_str()), "b");
  EXPECT_EQ(Found(root, (repeated("b|") + "b").c_str()), "b");
  EXPECT_EQ(Found(root, (repeated(".//") + ".").c_str()), "a b");
  EXPECT_EQ(Found(root, repeated("/").c_str()), "The specified nodePath started with an unexpected token (/)!");
  EXPECT_EQ(Found(root, repeated("[").c_str()), "The XPath expression is not valid!");
  EXPECT_EQ(Found(root, (repeated("(") + "b" + repeated(")")).c_str()), "The XPath expression is nested too deeply!");
}
