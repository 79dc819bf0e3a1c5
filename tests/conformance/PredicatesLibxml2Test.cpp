// Predicates beside libxml2, over documents and expressions made at random, in what both take to mean the same.

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "zamrit/xml/uZmXPath.h"

#ifdef ZM_LIBXML2
#include <libxml/parser.h>
#include <libxml/xpath.h>
#endif

using namespace zm;

#ifdef ZM_LIBXML2

namespace {

/// Makes documents, and expressions in the two dialects.
class TMaker {
 public:
  explicit TMaker(unsigned Seed) : FRandom(Seed) {}

  std::string Document() {
    std::string text = "<r id=\"0\" n=\"1\">";
    int id = 1;
    for (std::size_t i = 0; i < 6; ++i) Element(text, id, 0);
    return text + "</r>";
  }

  /// An expression of this library and the same of libxml2, in which "and" binds closer and numbers count from 1.
  struct TExpression {
    std::string Ours, Theirs;
  };
  TExpression Expression() {
    TExpression all = Operand();
    for (std::size_t i = Below(4); i > 0; --i) {
      const std::string operation = Below(2) ? " and " : " or ";
      const TExpression next = Operand();
      all = {all.Ours + operation + next.Ours, "(" + all.Theirs + ")" + operation + next.Theirs};
    }
    return all;
  }
  std::string Path() { return std::vector<std::string>{"//a", "//b", "/r/a/b", "//c/*", "/r/*"}[Below(5)]; }

 private:
  std::size_t Below(std::size_t Count) { return FRandom() % Count; }
  std::string Word() {
    return std::vector<std::string>{"foo", "bar", "foobar", "", "o", "f&amp;b", "caf\xC3\xA9"}[Below(7)];
  }
  std::string Name() { return std::string(1, static_cast<char>('a' + Below(3))); }

  // Every element has an id, a number and a word.
  std::string Tag(const std::string& Name, int Id) {
    return "<" + Name + " id=\"" + std::to_string(Id) + "\" n=\"" + std::to_string(Below(5)) + "\" w=\"" + Word() +
           "\"";
  }
  void Element(std::string& Text, int& Id, int Depth) {
    const std::string name = Name();
    Text += Tag(name, Id++) + (Below(2) ? " x=\"" + Word() + "\">" : ">");
    if (Below(2)) Text += Tag("v", Id++) + ">" + Word() + "</v>";
    for (std::size_t i = Depth < 3 ? Below(4) : 0; i > 0; --i) Element(Text, Id, Depth + 1);
    Text += "</" + name + ">";
  }

  // Always with a value: what has none is where the libraries part.
  TExpression Operand() {
    const std::string quoted = "\"" + std::vector<std::string>{"foo", "o", "", "f&b", "caf\xC3\xA9"}[Below(5)] + "\"";
    const std::string number = std::to_string(Below(5));
    const std::string compare = std::vector<std::string>{"=", "!=", "<", "<=", ">", ">="}[Below(6)];
    const std::string attribute = Below(2) ? "@x" : "@w";
    switch (Below(12)) {
      case 0:
        return Same("@x");
      case 1:
        return Same(Name() + "/@x");
      case 2:
        return Same("not(" + Name() + ")");
      case 3:
        return Same("@w" + std::string(Below(2) ? "=" : "!=") + quoted);
      case 4:
        return Same("@n" + compare + number);
      case 5:
        return Same("contains(" + attribute + ",\"" + (Below(2) ? "o" : "fo") +
                    "\")");  // an empty text is not contained
      case 6:
        return Same("string-length(@w)" + compare + number);
      case 7:
        return Same("concat(@w,@n)" + std::string(Below(2) ? "=" : "!=") + "\"foo" + number + "\"");
      case 8:
        return Same("position()" + compare + number);
      case 9:
        return {number, "position()=" + std::to_string(std::stoi(number) + 1)};
      case 10:
        return {"last()", "position()=last()"};
      default:
        return Same("not(@w=" + quoted + ")");
    }
  }
  static TExpression Same(const std::string& Text) { return {Text, Text}; }

  std::mt19937 FRandom;
};

using TIds = std::vector<std::string>;

TIds Theirs(xmlXPathContext* Context, const std::string& Path) {
  const std::unique_ptr<xmlXPathObject, void (*)(xmlXPathObject*)> found(
      xmlXPathEval(reinterpret_cast<const xmlChar*>(Path.c_str()), Context), xmlXPathFreeObject);
  if (!found) throw std::runtime_error("libxml2 refuses " + Path);
  TIds ids;
  for (int i = 0; found->nodesetval && i < found->nodesetval->nodeNr; ++i) {
    xmlChar* const id = xmlGetProp(found->nodesetval->nodeTab[i], reinterpret_cast<const xmlChar*>("id"));
    ids.emplace_back(reinterpret_cast<char*>(id));
    xmlFree(id);
  }
  std::sort(ids.begin(), ids.end());
  return ids;
}

TIds Ours(TZmDOMDocument& Document, const std::string& Path) {
  TIds ids;
  const auto found = Document.CreateNodeList(Path, {soCaseSensitive});
  for (TZmDOMNode* const node : *found) ids.push_back(ToUTF8(static_cast<TZmDOMElement*>(node)->GetAttribute("id")));
  std::sort(ids.begin(), ids.end());
  return ids;
}

}  // namespace

TEST(Predicates, AgreeWithLibxml2) {
  std::size_t hits = 0;
  for (unsigned seed = 0; seed < 60; ++seed) {
    TMaker maker(seed);
    const std::string text = maker.Document();
    const auto document = Create<TZmDOMDocument>();
    document->LoadFromXML(std::string_view(text));
    const std::unique_ptr<xmlDoc, void (*)(xmlDoc*)> tree(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), "", "UTF-8", 0), xmlFreeDoc);
    const std::unique_ptr<xmlXPathContext, void (*)(xmlXPathContext*)> context(xmlXPathNewContext(tree.get()),
                                                                               xmlXPathFreeContext);
    for (int i = 0; i < 100; ++i) {
      const std::string path = maker.Path();
      const auto [ours, theirs] = maker.Expression();
      const TIds found = Ours(*document, path + "[" + ours + "]");
      hits += found.size();
      ASSERT_EQ(found, Theirs(context.get(), path + "[" + theirs + "]")) << path << "[" << ours << "]\n" << text;
    }
  }
  EXPECT_GT(hits, 6000u);  // the expressions do find something
}

#else

TEST(Predicates, AgreeWithLibxml2) { std::cout << "left out: libxml2 is not installed\n"; }

#endif
