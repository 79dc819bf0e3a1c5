#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/Raised.h"
#include "tests/xml/xpath/Found.h"
#include "zamrit/xml/uZmXPath.h"

using namespace zm;

namespace {

// Four elements, told apart by their ids.
constexpr std::string_view cList =
    "<r xmlns:p='u'><a id='1' x='1' y='5'><b>10</b><b>9</b></a><a id='2' x='2'><b>abc</b><c n='7'/></a>"
    "<a id='3' y='-1' z='1.0'>text<d/></a><a id='4' x='X' p:x='q'><notes/><es/><b/></a></r>";

struct TCase {
  const char* Predicate;
  const char* Found;  // ids, or the message
};

void Check(const std::vector<TCase>& Cases, TZmDOMSelectOptions Options = {}) {
  const auto document = Loaded(cList);
  for (const TCase& c : Cases) {
    std::string found;
    try {
      const auto list = document->CreateNodeList("/r/a" + std::string(c.Predicate), Options);
      for (TZmDOMNode* const node : *list) found += ToUTF8(static_cast<TZmDOMElement*>(node)->GetAttribute("id"));
    } catch (const Exception& e) {
      found = e.what();
    }
    EXPECT_EQ(found, c.Found) << c.Predicate;
  }
}

}  // namespace

TEST(Predicates, CountFromZero) {
  Check({{"[0]", "1"},
         {"[ 2 ]", "3"},
         {"[4]", ""},
         {"[position()=1]", "1"},
         {"[position() > 2]", "34"},
         {"[first()]", "1"},
         {"[last()]", "4"},
         {"[last(some(thing), else)]", "4"},
         {"[@x][1]", "2"},
         {"[@x][position()=1 or last()]", "14"},
         {"[1 or 3]", "24"},
         {"[not 1]", "134"},
         {"[99999999999]", "'99999999999' is not a valid integer value"},
         {"[node()]", "1234"},
         {"[node(]", "1234"}});
}

TEST(Predicates, CountInEachContext) {
  const auto document = Loaded("<r><a id='1'><a id='2'><b/></a><a id='3'/></a><b/><a id='4'><a id='5'/></a></r>");
  EXPECT_EQ(Found(*document, "//a[0]"), "a1 a2 a5");
  EXPECT_EQ(Found(*document, "//a[last()]"), "a4 a3 a5");
  EXPECT_EQ(Found(*document, "/r//*[0][b]"), "a2");
  EXPECT_EQ(Found(*document, "//a//a[1]"), "a3");
}

TEST(Predicates, TestForNodes) {
  Check({{"[@x]", "124"},
         {"[b]", "124"},
         {"[c/@n]", "2"},
         {"[b[1]]", "1"},
         {"[b[@k]]", ""},
         {"[not(@x)]", "3"},
         {"[not @x]", "3"},
         {"[NOT(@x)]", "The filter contains an unsupported function (NOT)!"},
         {"[nOt(@x)]", "3"},
         {"[not foo]", ""},
         {"[not b]", "124"},  // nothing that can be negated: dropped
         {"[notes]", "4"},    // read as "not es"
         {"[not(not(@x))]", "124"},
         {"[(@x)]", "124"},
         {"[((@x))]", "124"},
         {"[@x))]", "124"},
         {"[)@x]", "124"},
         {"[(@x]", "124"},
         {"[()]", ""},
         {"['1']", ""},
         {"[..]", "1234"},
         {"[../a]", "1234"},
         {"[//c]", "1234"}});
}

TEST(Predicates, Join) {
  Check({{"[@x and @y]", "1"},
         {"[@x or @y]", "1234"},
         {"[@x and not(@y)]", "24"},
         {"[not @x and @y]", "234"},      // all that follows is negated
         {"[@x and (@y or @z)]", "124"},  // what hangs on the child is not asked
         {"[(@x) and (@y)]", "1"},
         {"[(@x) and (@y or c)]", "12"},
         {"[@z or @x and @y]", "13"},  // from left to right
         {"[@x and@y]", "1"},
         {"[@x and1]", "2"},
         {"[@x AND @y]", "\"[@x AND @y]\" is an invalid filter expression!"},
         {"[@x aNd @y]", "1"},
         {"[b andc]", "\"[b andc]\" is an invalid filter expression!"},
         {"[@x and ]", ""},
         {"[@x=\"1\" or @q=\"2\"]", "1"},
         {"[@q=\"2\" or @x=\"1\"]", ""},
         {"[@x=\"2\" or @y=\"5\"]", "12"},
         // The third term is asked for although the value so far is true, and has none.
         {"[@x=\"1\" and @y=\"9\" and @q=\"3\" or @id=1]", ""},
         {"[@x=\"7\" or @y=\"9\" and @q=\"3\" or @id=1]", ""},
         {"[@x=\"7\" or @y=\"9\" and @id=3 or @id=1]", "1"},
         {"[@id=2 and @x=\"2\" or @q=\"1\"]", "2"},
         {"[not(@x=\"1\")]", "24"},  // false too where there is no x
         {"[not(@q=\"1\")]", ""},
         {"[not @x=\"1\"]", "3"},  // whether there is an x
         {"[(@q=\"1\") or @x]", "124"},
         {"[not 2 and @x=\"1\"]", "124"}});
}

TEST(Predicates, Compare) {
  Check({{"[@x=\"1\"]", "1"},
         {"[@id = 1]", "1"},
         {"[@x='1']", ""},
         {"[1 = @x]", "\"[1 = @x]\" is an invalid filter expression!"},
         {"[\"1\" = @x]", "1"},
         {"[@x!=1]", "Could not convert variant of type (String) into type (Double)"},
         {"[@x<>\"1\"]", "24"},
         {"[@z=1]", "3"},
         {"[@z=\"1\"]", ""},
         {"[@y<\"9\"]", "13"},
         {"[@y=5]", "1"},
         {"[b<10]", "Could not convert variant of type (String) into type (Double)"},
         {"[@id=1 and b<10]", "1"},
         {"[b=b]", "124"},
         {"[b!=b]", "1"},
         {"[b<b]", "1"},
         {"[b<=\"9\"]", "14"},
         {"[b>=\"9\"]", "12"},
         {"[b=@y]", ""},
         {"[@x=\"x\"]", "4"},
         {"[d=\"\"]", "3"},
         {"[.=\"text\"]", "3"},
         {"[@id>1.5]", "234"},
         {"[@id>=.5]", "1234"},
         {"[\"x\"=\"X\"]", "1234"},
         {"[first()=true()]", "1"},
         {"[(1,2)=\"1, 2\"]", "\"[(1,2)=\"1, 2\"]\" is an invalid filter expression!"},
         {"[\"1, 2\"=(1,2)]", "1234"},
         {"[\"1, x\"=[1,\"x\"]]", "1234"},
         {"[\", x\"=(\"\",\"x\")]", "1234"},
         {"[\"\"=()]", "1234"},
         {"[\"\"=(1,@q)]", "1234"},
         {"[@id=foo 3]", "3"}});
  Check({{"[@x=\"x\"]", ""}, {"[\"x\"=\"X\"]", ""}, {"[@X]", ""}}, {soCaseSensitive});
  Check({{"[@q:x=\"q\"]", "4"}, {"[@p=\"u\"]", ""}}, {soLocalName});
}

TEST(Predicates, Refuse) {
  const std::string invalid = " is an invalid filter expression!",
                    syntax = "The specified XPath statement is not valid!";
  const std::string child = "An invalid expression was detected!\r\n";
  const auto document = Loaded(cList);
  const struct {
    const char* Predicate;
    std::string Message;
  } cases[] = {
      {"[]", syntax},
      {"[ ]", syntax},
      {"[@x=]", syntax},
      {"[=1]", syntax},
      {"[2 = position()]", "\"[2 = position()]\"" + invalid},
      {"[@x @y]", "\"[@x @y]\"" + invalid},
      {"[@x=1 ,]", "\"[@x=1 ,]\"" + invalid},
      {"[@x == 1]", "The filter \"[@x == 1]\" contains an invalid compare operator (==)!"},
      {"[@x =< 1]", "The filter \"[@x =< 1]\" contains an invalid compare operator (=<)!"},
      {"[@x=1.2.3]", "Either a number or a string was expected!"},
      {"[foo(1)]", "The filter contains an unsupported function (foo)!"},
      {"[fn:concat(\"x\",\"y\")=\"xy\"]", "The filter contains an unsupported function (fn:concat)!"},
      {"[concat(\"x\" )=\"x\"]", syntax},
      {"[not()]", ""},
      {"[not(@x) not(@y)]", "\"[not(@x) not(@y)]\"" + invalid},
      {"[\"x\"]", "Could not convert variant of type (String) into type (Boolean)"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Found(*document->GetRootNode(), ("a" + std::string(c.Predicate)).c_str()), c.Message);
  EXPECT_EQ(Found(*document->GetRootNode(), "q[=]"), "");  // read when there is a candidate
  EXPECT_EQ(Found(*document->GetRootNode(), "a[@q][=]"), "");

  // By hand, what the reader never builds.
  auto equation = Create<TZmXPathEquation>(soLocalName, TZmXPathCollationASCIICI);
  equation->SetValue(Create<TZmXPathNot>(equation.get()));
  const TZmDOMObjectList list{document->GetRootNode()};
  EXPECT_EQ(Raised<Exception>([&] { equation->Evaluate(list, 0); }),
            child + "A \"not\" operator must have a child value.");
  equation->SetValue(Create<TZmXPathChildTerm>(equation.get()));
  EXPECT_EQ(Raised<Exception>([&] { equation->Evaluate(list, 0); }), child + "Check the parenthesis.");
  equation->SetValue(Create<TZmXPathConstantTerm>(equation.get(), Variant(true)));
  equation->AddSibling(opNA);
  EXPECT_EQ(Raised<Exception>([&] { equation->Evaluate(list, 0); }), "An invalid operation has been detected!");
}

namespace {

std::string Repeated(std::size_t Count, const std::string& Text) {
  std::string all;
  for (std::size_t i = 0; i < Count; ++i) all += Text;
  return all;
}

}  // namespace

TEST(Predicates, BearAnySize) {
  constexpr std::size_t many = 100000;
  const std::string tooDeep = "The XPath expression is nested too deeply!";
  const auto document = Loaded("<r><a x='1'/><a/></r>");
  TZmDOMElement& root = *document->GetRootNode();
  const auto selects = [&](const std::string& predicate) { return Found(root, ("a[" + predicate + "]").c_str()); };
  EXPECT_EQ(selects("@x" + Repeated(many, " and @x")), "a");
  EXPECT_EQ(selects("@x" + Repeated(many, " and @x or @x")), "a");
  EXPECT_EQ(selects("@y" + Repeated(many, " or @y and @x")), "");
  EXPECT_EQ(selects("\"1, 1\"=(1" + Repeated(many, ",1") + ")"), "");
  EXPECT_EQ(selects(Repeated(190, "(") + "@x" + Repeated(190, ")")), "a");
  for (const char* opening : {"(", "not(", "not @x and ", "concat(", "@x and ("})
    EXPECT_EQ(selects(Repeated(many, opening) + "@x"), tooDeep) << opening;
  for (const char* opening : {"(", "["}) EXPECT_EQ(selects("@x=" + Repeated(many, opening)), tooDeep) << opening;
  EXPECT_EQ(selects(Repeated(many, ".[") + "@x" + Repeated(many, "]")), tooDeep);
  EXPECT_EQ(selects(Repeated(190, ".[") + "@x" + Repeated(190, "]")), "a");
  EXPECT_EQ(selects(Repeated(120, "concat(") + Repeated(120, ".[")), tooDeep);
  EXPECT_EQ(selects(Repeated(110, "concat(.[") + "@x" + Repeated(110, "])")), tooDeep);

  // What several nodes have is compared without each with each.
  const std::size_t nodes = many / 5;
  const auto wide = Loaded("<r><l>" + Repeated(nodes, "<a>1</a>") + "</l><l>" + Repeated(nodes, "<a>2</a>") +
                           "</l><l>" + Repeated(nodes, "<a>\xC3\xA4</a>") + "</l></r>");
  for (const char* path : {"l[a=../l/b]", "l[a!=a]", "l[a<a]", "l[a>a]"})
    EXPECT_EQ(Found(*wide->GetRootNode(), path), "") << path;
  for (const char* path : {"l[a=a]", "l[a<=a]", "l[a>=a]", "l[a!=../l/a]"})
    EXPECT_EQ(Found(*wide->GetRootNode(), path), "l l l") << path;
  EXPECT_EQ(Found(*wide->GetRootNode(), "l[a<../l/a]"), "l l");
  EXPECT_EQ(wide->CreateNodeList("//*[a]//*[.=\"2\"]")->Count(), static_cast<int>(nodes));
}

TEST(Predicates, WithinOthersAreAskedOnceOfANode) {
  const auto document = Loaded(Repeated(60, "<a>") + "<b/>" + Repeated(60, "</a>"));
  const auto count = [&](const char* opening, const char* innermost, const char* closing) {
    const std::string path = "//a" + Repeated(30, opening) + innermost + Repeated(30, closing);
    return document->CreateNodeList(path)->Count();
  };
  EXPECT_EQ(count("[.//a", "[c]", "]"), 0);
  EXPECT_EQ(count("[.//a", "[b]", "]"), 30);
  EXPECT_EQ(count("[(.//a", "[c]", ")]"), 0);
  EXPECT_EQ(count("[../..//a", "[c]", "]"), 0);
  EXPECT_EQ(count("[//a", "[c]", "]"), 0);
  EXPECT_EQ(count("[not(.//a", "[c]", ")]"), 1);
  EXPECT_EQ(count("[string-length(.//a", "[c]", ")>0]"), 0);
  // A place is another one in each context.
  EXPECT_EQ(document->CreateNodeList("//a[.//a[0]]")->Count(), 59);
  EXPECT_EQ(document->CreateNodeList("//a[..//a[.//*[last()]]]")->Count(), 60);
  EXPECT_EQ(document->CreateNodeList("//a[.//*[1]]")->Count(), 0);
}

namespace {

// The number of calls so far: one for each candidate. Made once for each selection.
class TCounter : public TZmXPathFunction {
  ZM_OBJECT(TCounter, TZmXPathFunction)
 public:
  using TZmXPathFunction::TZmXPathFunction;
  void Value(Variant& Result, const TZmDOMObjectList& List, int Position) override {
    if (ParamCount() == 1) {  // its own predicate once more, in which it does not ask again
      Variant inner;
      Param(0).Value(inner, List, Position);
    }
    Result = ++FCalls;
  }

 protected:
  ~TCounter() override = default;

 private:
  int FCalls = 0;
};

// Equal are texts of one length.
class TByLength final : public TZmXPathCollation {
 public:
  constexpr TByLength() = default;
  int Compare(StringView A, StringView B) const override {
    return A.size() == B.size() ? 0 : A.size() < B.size() ? -1 : 1;
  }
  int Pos(StringView, StringView) const override { return 1; }
};
constexpr TByLength ByLength;

}  // namespace

TEST(Predicates, CallFunctionsOfTheApplication) {
  RegisterXPathFunction<TCounter>(u"test-calls");
  RegisterXPathFunction<TCounter>(u"text");  // the first one holds
  Check({{"[test-calls()=3]", "3"},
         {"[test-calls()>0][test-calls()=2]", "2"},
         {"[test-calls(b[test-calls()>0])=1]", "1"},
         {"[text()]", "3"},
         {"[Test-Calls()=1]", "The filter contains an unsupported function (Test-Calls)!"}});
}

TEST(Predicates, CompareByTheCollationOfTheDocument) {
  RegisterXPathCollation(u"test:length", &ByLength);
  EXPECT_EQ(FindXPathCollation(u"test:length"), &ByLength);
  EXPECT_EQ(Raised<EZmDomSyntax>([] { FindXPathCollation(u"test:Length"); }),
            "The collation \"test:Length\" is not supported!");
  const auto document = Loaded("<r><a id='abc'/><b id='abcd'/></r>");
  TZmDOMNodeList list;
  // Names in a predicate compare by code points then, those of the path and values by the collation.
  document->GetRootNode()->_SelectNodes(list, "q[@id=\"xyz\"]", false, false, false, &ByLength);
  EXPECT_EQ(Short(list), "aabc");
  EXPECT_EQ(FindXPathCollation(u"http://www.w3.org/2005/xpath-functions/collation/codepoint"),
            TZmXPathCollationCodepoint);
}
