#include <gtest/gtest.h>

#include <string>

#include "tests/support/Raised.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/uZmJSON.h"

using namespace zm;

namespace {

constexpr StringView cStore =
    u"{\"a\":{\"b\":1,\"B\":2,\"x.y\":3,\"c:d\":4},\"l\":[0,1,2,3,4],\"e\":{},\"deep\":{\"b\":{\"b\":5}},"
    u"\"books\":[{\"t\":\"one\",\"price\":8,\"ok\":true},{\"t\":\"Two\",\"price\":12.5,\"ok\":false},"
    u"{\"t\":\"three\",\"price\":\"cheap\"},{\"n\":null}],\"q\":\"'x'\"}";

// What a path finds, or the code and message of what it raises.
std::string Found(TZmJSONBase& Node, StringView Path, TZmJDOCSelectOptions Options = {}) {
  try {
    return ToUTF8(Node.CreateNodeList(Path, Options)->GetAsJSON());
  } catch (const EZmJSONException& e) {
    return std::to_string(e.GetCode()) + ": " + e.what();
  } catch (const Exception& e) {
    return e.what();
  }
}
std::string Found(StringView Path, TZmJDOCSelectOptions Options = {}) {
  return Found(*TZmJSONDocument::CreateFromJSON(cStore), Path, Options);
}

String Repeated(StringView Text, std::size_t Count) {
  String text;
  for (std::size_t i = 0; i < Count; ++i) text += Text;
  return text;
}

}  // namespace

TEST(JSONPath, Selects) {
  const struct {
    StringView Path;
    const char* Found;
  } cases[] = {
      {u"$.a.b", "[1]"},
      {u"$['a']['b']", "[1]"},
      {u" $.a['b'] ", "[1]"},
      {u"$['a','e'].b", "[1]"},
      {u"@.a.*", "[1, 2, 3, 4]"},
      {u"$.a.", "[1, 2, 3, 4]"},
      {u"$.a[,]", "[1, 2, 3, 4]"},
      {u"$.a[]", "[]"},
      {u"$.a['x.y']", "[3]"},
      {u"$.a['c:d']", "[]"},  // a slice, by the rules
      {u"$.a.['b']", "[1]"},
      {u"$.l[0]", "[0]"},
      {u"$.l[-1,0,9]", "[4, 0]"},
      {u"$.l[99999999999]", "[]"},
      {u"$.a[0]", "[]"},
      {u"$.l[(@.length-1)]", "[4]"},
      {u"$.l[(1)]", "[1]"},
      {u"$.l[(@.length)]", "17: The specified script expression is too complex or not valid!"},
      {u"$.l[(x)]", "17: The specified script expression is too complex or not valid!"},
      {u"$.l[1:3]", "[1, 2]"},
      {u"$.l[:2]", "[0, 1]"},
      {u"$.l[3:]", "[3, 4]"},
      {u"$.l[::2]", "[0, 2, 4]"},
      {u"$.l[-2:]", "[3, 4]"},
      {u"$.l[3:1]", "[3]"},
      {u"$.l[0:-1]", "[0]"},
      {u"$.l[4:5:-1]", "[4, 3, 2, 1, 0]"},
      {u"$.l[1::2147483647]", "[1]"},
      {u"$.l[4:0:-2147483648]", "[4]"},
      {u"$.l[9:]", "[]"},
      {u"$.l[ 1 : 3 ]", "[0, 1, 2]"},
      {u"$.l[1-2]", "'1-2' is not a valid integer value"},
      {u"$.l[?(())]", "An expression without a value!"},
      {u"$..b", "[1, {\"b\": 5}, 5]"},
      {u"$.l..[0]", "[0]"},
      {u"$.a.b | $.l[0] | $.a.b", "[1, 0, 1]"},
      {u"$.a.b.c", "[]"},
      {u"$.a$.b", "[]"},
      {u"$['a']$.b",
       "15: The specified path is not a valid JSON path. A character ('$') was detected on an invalid position."},
      {u"$a",
       "14: The specified path is not a valid JSON path. Character '. or [' was expected, however 'a' was found."},
      {u"a.b", "13: The specified path is not a valid JSON path."},
      {u"", "13: The specified path is not a valid JSON path."},
      {u"$.l[?(@>2)]", "[3, 4]"},
      {u"$.l[?(@>2),3,?(@>3)]", "[3, 4, 3]"},
      {u"$.books[?(@.price<10)].t", "[\"one\"]"},
      {u"$..*[?(@.price<10)].t", "[\"one\"]"},
      {u"$..[?(@.price<10)]", "13: The specified path is not a valid JSON path."},
      {u"$.books[?(@.price>=12.50)].t", "[\"Two\"]"},
      {u"$.books[?(@.price=='cheap')].t", "[\"three\"]"},
      {u"$.books[?(@.t>'n')].t", "[\"one\", \"three\"]"},
      {u"$.books[?(@.ok==TRUE)].t", "[\"one\"]"},
      {u"$.books[?(@.ok)].t", "[\"one\", \"Two\"]"},
      {u"$.books[?(!@.ok)].t", "[\"three\"]"},
      {u"$.books[?(!(@.ok && @.price<10))].t", "[\"Two\", \"three\"]"},
      {u"$.books[?(@.price<10 || @.t=='three')].t", "[\"one\"]"},
      {u"$.books[?((@.ok==true||@.ok==false) && @.price<>8)].t", "[\"Two\"]"},
      {u"$.books[?(@.n==null)]", "[{\"n\": null}]"},
      {u"$.books[?(@.price==$.books[0].price)].t", "[\"one\"]"},
      {u"$.books[?(@.price>$..price)].t", "[\"Two\"]"},
      {u"$.l[0:9\n2]", "[0, 2, 4]"},
      {u"$.l.[1]x", "[1]"},
      {u"$.books[?(@.missing==1)]", "[]"},
      {u"$.books[?(@.t==\"Two\")].price", "[12.5]"},
      {u"$.*[?(@.t)].t", "[\"one\", \"Two\", \"three\"]"},
      {u"$.books[?(@.t=1)]",
       "14: The specified path is not a valid JSON path. Character '=' was expected, however '1' was found."},
      {u"$.books[?(@.t&@.n)]",
       "14: The specified path is not a valid JSON path. Character '&' was expected, however '@' was found."},
      {StringView(u"$\0a", 3),
       "14: The specified path is not a valid JSON path. Character '. or [' was expected, however '' was found."},
      {u"$.books[?x]",
       "14: The specified path is not a valid JSON path. Character '?(' was expected, however '?x' was found."},
      {u"$.books[?(@.t))]", "17: The specified script expression is too complex or not valid!"},
      {u"$.books[?(@.t && )]", "An expression without a value!"},
      {u"$.books[?(x)]", "13: The specified path is not a valid JSON path."},
      {u"$[?(@.b==1)]", "9: Instances of TZmJSONObject do not support the GetValue method!"},
  };
  for (const auto& c : cases) EXPECT_EQ(Found(c.Path), c.Found) << ToUTF8(c.Path);
  EXPECT_EQ(Found(u"$.A.b", {jsoCaseInsensitive}), "[1, 2]");
  EXPECT_EQ(Found(u"$.books[?(@.T=='TWO')].price", {jsoCaseInsensitive}), "[]");  // operands mind the case of names
  EXPECT_EQ(Found(u"$.books[?(@.t=='TWO')].price", {jsoCaseInsensitive}), "[12.5]");
  EXPECT_EQ(Found(u"$.none", jsoRaise), "11: The specified path returned no nodes!");
}

TEST(JSONPath, StartsWhereItIsAsked) {
  const auto document = TZmJSONDocument::CreateFromJSON(cStore);
  TZmJSONMember* const member = document->FindMember("a");
  EXPECT_EQ(member->SelectSingleNode("@.b")->GetAsInteger(), 1);
  EXPECT_EQ(member->SelectSingleNode("$.l[1]")->GetAsInteger(), 1);
  EXPECT_EQ(document->SelectSingleNode("$"), document->GetRootValue());
  EXPECT_EQ(document->SelectSingleNode("@"), document->GetRootValue());
  EXPECT_EQ(document->SelectSingleNode(u"$.none"), nullptr);
  EXPECT_EQ(Raised<EZmJSONException>([&] { document->SelectSingleNode("$.none", true); }),
            "The specified path returned no nodes!");
  EXPECT_EQ(Found(*document->CreateNodeList("$.books[*]"), u"@[?(@.ok)].price"), "[8, 12.5]");
  auto whole = document->CreateNodeList("$.l[*]");
  const auto around = whole->CreateNodeList("@");
  const auto inside = whole->CreateNodeList("@[0] | @");
  whole.reset();
  EXPECT_EQ(Found(*around, u"@[0][1]"), "[1]");
  EXPECT_EQ(inside->Item(1), around->Item(0));
  const auto other = TZmJSONDocument::CreateFromJSON(u"{\"e\":{},\"l\":{}}");
  const auto both = Create<TZmJSONArray>();
  for (TZmJSONDocument* const owner : {document.get(), other.get()})
    both->InsertObject(owner->FindMember("e")->GetValueObj());
  EXPECT_EQ(Found(*both, u"@[?($.l[0]==0)]"), "[{}]");
  EXPECT_EQ(Found(*both, u"@[?(!$.l[0])]"), "[{}]");
  EXPECT_EQ(Found(*Create<TZmJSONArray>(), u"$"), "The node is not of the class that is asked for!");
  const auto list = document->SelectIntf("$.l[*]");
  const TZmIntf<IZmJSONBase> last = list->GetItem(4);
  EXPECT_EQ(last->GetAsInteger(), 4);
}

TEST(JSONPath, Creates) {
  const struct {
    StringView Source;
    StringView Path;
    const char* After;
  } cases[] = {
      {u"{}", u"$.a.b", "{\"a\": {\"b\": null}}"},
      {u"{\"a\":{}}", u"$.a['x','y']", "{\"a\": {\"x\": null, \"y\": null}}"},
      {u"{\"a\":1}", u"$.a.b", "{\"a\": 1}"},
      {u"{\"a\":null}", u"$.a.b", "{\"a\": null}"},
      {u"{\"l\":[{},{}]}", u"$.l[*].n", "{\"l\": [{\"n\": null}, {\"n\": null}]}"},
      {u"{}", u"$.*", "{}"},
      {u"{}", u"$.x[?(@.a=1)]", "{\"x\": null}"},
      {u"[]", u"$.a", "[]"},
  };
  for (const auto& c : cases) {
    const auto document = TZmJSONDocument::CreateFromJSON(c.Source);
    document->CreateNodeList(c.Path, {jsoCreate});
    EXPECT_EQ(ToUTF8(document->GetAsJSON()), c.After) << ToUTF8(c.Path);
  }
}

TEST(JSONPath, TextsThatNestOrRepeatHaveNoLimit) {
  const std::size_t many = 100000;
  const auto document = TZmJSONDocument::CreateFromJSON(u"[[[1]],{\"a\":1}]");
  const struct {
    String Path;
    const char* Found;
  } cases[] = {
      {u"$" + Repeated(u"[", many), "[]"},
      {u"$" + Repeated(u"[0]", many), "[]"},
      {u"$" + Repeated(u"..*", many), "[]"},
      {u"$[?(" + Repeated(u"(", many) + u"@.a" + Repeated(u")", many) + u")]", "[{\"a\": 1}]"},
      {u"$[?(" + Repeated(u"!", many) + u"@.a)]", "[{\"a\": 1}]"},
      {u"$[?(@.a" + Repeated(u"&&@.a", many) + u")]", "[{\"a\": 1}]"},
      {u"$[?(@.a" + Repeated(u"||@.b&&@.a", many) + u")]", "[{\"a\": 1}]"},
      {u"$[?(" + Repeated(u")", many) + u")]", "17: The specified script"},
      {u"$[?(" + Repeated(u"@[?(", 2000), "[]"},
  };
  const auto deep = TZmJSONDocument::CreateFromJSON(Repeated(u"[", many) + Repeated(u"]", many));
  EXPECT_EQ(deep->CreateNodeList(u"$..*[?($[0])]")->Count(), static_cast<int>(many) - 2);
  for (const auto& c : cases)
    EXPECT_EQ(Found(*document, c.Path).substr(0, std::string(c.Found).size()), c.Found) << ToUTF8(c.Path.substr(0, 20));
}

TEST(JSONPath, WaysToANodeAreCountedButNotGone) {
  EXPECT_EQ(Found(*TZmJSONDocument::CreateFromJSON(u"{\"a\":[{\"a\":{\"a\":1}}]}"), u"$..a..a"), "[{\"a\": 1}, 1, 1]");
  const auto document = TZmJSONDocument::CreateFromJSON(Repeated(u"{\"a\":", 60) + u"1" + Repeated(u"}", 60));
  EXPECT_EQ(document->CreateNodeList(u"$" + Repeated(u"..a", 4))->Count(), 487635);
  const char* const tooComplex = "17: The specified script expression is too complex or not valid!";
  const struct {
    String Path;
    TZmJDOCSelectOptions Options;
    const char* Found;
  } cases[] = {
      {u"$" + Repeated(u"..a", 60), {}, "[1]"},
      {u"$" + Repeated(u"..a", 30) + u"..b", {}, "[]"},
      {u"$" + Repeated(u"..a", 30), {}, tooComplex},
      {u"$" + Repeated(u"['a','a']", 25), {}, tooComplex},
      {u"$" + Repeated(u"..*[?(@", 20) + u"..b" + String(20, u'b'), {}, "[]"},
      {u"$" + Repeated(u"..*[?(@", 21) + u"..b" + String(21, u'b'), {}, tooComplex},
      {u"$..*[?(@..*..b" + Repeated(u" || @..*..b", 300) + u")]", {}, "[]"},
      {u"$" + Repeated(u"['x','y']", 25), {jsoCreate}, tooComplex},
  };
  for (const auto& c : cases) EXPECT_EQ(Found(*document, c.Path, c.Options), c.Found) << ToUTF8(c.Path);
  TZmJSONArray itself;
  itself.InsertObject(&itself);
  EXPECT_EQ(itself.CreateNodeList(u"@..b")->Count(), 0);
}

TEST(JSONPath, ChainsGoByTheirSuffixes) {
  // Without precedence: the outcome so far is joined with the chain that begins behind the operator, term by term.
  const auto document = TZmJSONDocument::CreateFromJSON(u"[{\"t\":1}]");
  for (unsigned bits = 0; bits < 128; ++bits) {
    const auto value = [bits](unsigned Term) { return (bits >> Term & 1) != 0; };
    const auto isAnd = [bits](unsigned Term) { return (bits >> (4 + Term) & 1) != 0; };
    bool chain[4];
    String filter;
    for (unsigned i = 4; i-- > 0;) {
      chain[i] = value(i);
      for (unsigned next = i + 1; next < 4; ++next)
        chain[i] = isAnd(next - 1) ? chain[i] && chain[next] : chain[i] || chain[next];
    }
    for (unsigned i = 0; i < 4; ++i) {
      filter += value(i) ? u"@.t" : u"@.f";
      if (i < 3) filter += isAnd(i) ? u" && " : u" || ";
    }
    EXPECT_EQ(document->CreateNodeList(u"$[?(" + filter + u")]")->Count(), chain[0] ? 1 : 0) << ToUTF8(filter);
  }
}
