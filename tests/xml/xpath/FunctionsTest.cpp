#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "tests/support/Zone.h"
#include "tests/xml/xpath/Found.h"
#include "tests/xml/xpath/ValueOf.h"
#include "zamrit/common/Logger.h"

using namespace zm;

namespace {

constexpr std::string_view cTree =
    "<r xmlns='u:1' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' n='5'>"
    "<a id='1' xsi:nil='TRUE'/><a id='2' nil='true'>x<b>one</b><b>two</b></a><a id='3'><![CDATA[y]]></a></r>";

// Each line is an expression, " => ", and its value for the root of the tree, or the message of what it raises.
void Check(const std::string& Lines, TZmXPathCollationClass Collation = TZmXPathCollationASCIICI,
           TZmDOMSelectMatchOption MatchOption = soQualifiedName) {
  const auto document = Loaded(cTree);
  std::istringstream lines(Lines);
  for (std::string line; std::getline(lines, line);) {
    if (line.empty()) continue;
    const std::size_t arrow = line.find(" => ");
    const std::string expression = line.substr(0, arrow);
    EXPECT_EQ(ValueOf(*document->GetRootNode(), expression, Collation, MatchOption), line.substr(arrow + 4)) << line;
  }
}

// A function of an application: evaluates the term that it stands in for the second candidate, then gives "first".
class TAgain final : public TZmXPathFunction {
  ZM_OBJECT(TAgain, TZmXPathFunction)
 public:
  using TZmXPathFunction::TZmXPathFunction;
  void Value(Variant& Result, const TZmDOMObjectList& List, int Position) override {
    if (Position == 0) Around->Value(Inner, List, 1);
    Result = Position == 0 ? u"first" : u"second";
  }
  static inline TZmXPathBaseTerm* Around = nullptr;
  static inline Variant Inner;

 protected:
  ~TAgain() override = default;
};

}  // namespace

TEST(Functions, OfNodes) {
  Check(R"x(
node-name() => "r"
node-name(a/b) => XPTY0004: The node parameter of function "fn:node-name(node)" must be a single node!
node-name(x) => XPDY0002: The node parameter of function "fn:node-name(node)" may not be nil!
node-name("r") => XPTY0004: The node parameter of function "fn:node-name(node)" must be a node!
nilled() => false
nilled(a[0]) => true
nilled(a[1]) => false
nilled(@n) => null
nilled(1) => XPTY0004: The node parameter of function "fn:nilled(node)" must be a node!
string() => ""
string(a[1]) => "x"
string(a) => XPTY0004: The node parameter of function "fn:string(arg)" must be a single node!
string(position()) => "1"
string( (1)) => XPTY0004: The arg parameter of function "fn:string(arg)" may not be a sequence!
string([1]) => FOTY0014: The arg parameter of function "fn:string(arg)" may not be a map or array!
data(x) => XPDY0002: The node parameter of function "fn:data(arg)" may not be nil!
base-uri() => "u:1"
base-uri(@x) => XPDY0002: The node parameter of function "fn:base-uri(arg)" may not be nil!
base-uri(1) => XPTY0004: The arg parameter of function "fn:base-uri(arg)" must be a node!
document-uri() => ""
document-uri(1) => XPTY0004: The arg parameter of function "fn:document-uri(arg)" must be a node!
error() => FOER0000: An exception was raised
error("c",@n,"o") => c: 5
error(a/b) => Could not convert variant of type (Array) into type (String)
)x");
  Check(R"x(
nilled(a[0]) => false
nilled(a[1]) => true
node-name(@xsi) => "xsi"
node-name(@xmlns) => ""
)x",
        TZmXPathCollationCodepoint, soLocalName);
}

TEST(Functions, OfStrings) {
  Check(R"x(
codepoints-to-string() => null
codepoints-to-string([65]) => "A"
codepoints-to-string(()) => ""
codepoints-to-string((65,"B")) => null
codepoints-to-string(65) => The "fn:codepoints-to-string((int,int,...))" requires a list of integers!
string-to-codepoints("") => "()"
string-to-codepoints(1) => null
compare("a","A") => 0
compare("a","A","http://www.w3.org/2005/xpath-functions/collation/codepoint") => -1
compare(10,9) => -1
compare(@x,1) => null
compare("a","b","unknown") => The collation "unknown" is not supported!
codepoint-equal("a","A") => false
codepoint-equal(5,@n) => null
codepoint-equal("a",@x) => false
concat() => ""
concat("x",@n,1.5,true()) => "x51.5True"
string-to-codepoints(string-join(codepoints-to-string((55357,56832,122)),"-")) => "(55357, 56832, 45, 122)"
string-join((@n,@x,a/b),"-") => "5--one-two"
string-join([1,2],"-") => "1-,- -2"
substring() => ""
substring("abc") => ""
substring("abc",0) => "abc"
substring("abc",0,2) => "ab"
substring("abc",4) => ""
substring("abc",2,9223372036854775807) => "bc"
substring("abc",1,compare(1,2)) => ""
substring("abc",1,"1") => null
substring(123,1) => null
substring(1,error("c","read first"),1,1) => c: read first
string-length() => 0
string-length(codepoints-to-string((55357,56832))) => 2
string-length(12) => 2
string-to-codepoints(normalize-space(codepoints-to-string((32,97,9,98)))) => "(97, 9, 98)"
string-to-codepoints(normalize-unicode(codepoints-to-string((101,769)))) => "(233)"
string-to-codepoints(normalize-unicode(codepoints-to-string((101,769)),"")) => "(101, 769)"
normalize-unicode("e","nfc") => An unsupported normalizationForm was specified for "fn:normalize-unicode(string, normalizationForm)"!
simplify(codepoints-to-string((32,97,9,13,10,98))) => "a b"
simplify(1) => null
upper-case("`az{") => "`AZ{"
lower-case("@AZ[") => "@az["
lower-case(1) => null
starts-with("xab","ab") => false
starts-with("a","ab") => false
ends-with("abc","") => true
substring-before("abBc","B") => "a"
substring-before("abc","x") => ""
substring-after("abcd","bc") => "cd"
substring-after("abc","c") => ""
substring-after("abc","x") => "abc"
)x");
  Check(R"x(
contains("ABC","b") => false
starts-with("ABC","a") => false
compare("a","A") => -1
)x",
        TZmXPathCollationCodepoint);
}

TEST(Functions, OfPatterns) {
  Check(R"x(
matches(codepoints-to-string((97,10,98)),"a.b") => false
matches(codepoints-to-string((97,10,98)),"A.B","SIz") => true
matches(codepoints-to-string((97,10,98)),"^ b $","mx") => true
matches("a","(") => Error in regular expression at offset 1: missing closing parenthesis
replace("ab","(a)(b)","$2$1") => "ba"
replace("ab","(a)(b)","q$2$1") => "q"
tokenize(" a  b ") => "("a", "b")"
tokenize("") => "()"
tokenize("1x2X3","x","i") => "("1", "2", "3")"
matches("aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa!","^(a|aa)+$") => The regular expression needs too many steps for this text!
)x");
  Check(R"x(
matches("a","A","I") => false
matches("a","A","i") => true
)x",
        TZmXPathCollationCodepoint);
}

TEST(Functions, OfNumbersAndBooleans) {
  Check(R"x(
abs(1) => 1
abs(number("-1.5")) => 1.5
abs(compare(1,2)) => 1
abs(true()) => 1
ceiling(5000000000) => The value does not fit an integer
floor(number("-1.2")) => -2
round(0.5) => 0
round(1.5) => 2
round(5000000000.5) => 5000000000
number("12") => 12
number(x) => XPDY0002: The node parameter of function "fn:number(arg)" may not be nil!
number(codepoints-to-string()) => null
number(true()) => 1
number() => Could not convert variant of type (String) into type (Double)
number("x") => Could not convert variant of type (String) into type (Double)
boolean(0) => false
boolean(0.5) => true
boolean("") => false
boolean(()) => false
boolean([@x]) => true
boolean(@n) => FORG0006: An invalid parameter was passed to fn:boolean(arg)
boolean(true()) => FORG0006: An invalid parameter was passed to fn:boolean(arg)
)x");
}

TEST(Functions, OfDurations) {
  Check(R"x(
years-from-duration("-P2Y") => -2
years-from-duration("P1Y25M") => 3
days-from-duration("-P1DT2H") => -1
minutes-from-duration("PT1H61M") => 1
seconds-from-duration(()) => null
seconds-from-duration(("PT1S")) => 1
seconds-from-duration(a/b) => FORG0006: An invalid parameter was passed to fn:seconds-from-duration(arg)
seconds-from-duration(5) => ZmXMLToDuration; A duration must start with a "P"!
seconds-from-duration(@x) => ZmXMLToDuration; An empty string cannot be converted to a xs:duration!
)x");
}

TEST(Functions, OfDatesAndTimes) {
  const TZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
  Check(R"x(
seconds-from-dateTime(@x) => '' is not a valid date and time value
timezone-from-time("10:00:00") => null
timezone-from-time("10:00:00+01:00") => "PT1H"
timezone-from-dateTime("2024-03-31T00:59:00Z") => "PT1H"
timezone-from-dateTime("2024-03-31T01:00:00Z") => "PT2H"
dateTime("2024-03-01Z","10:00:00+00:00") => "2024-03-01T10:00:00.000Z"
dateTime("2024-03-01","10:00:00.5-05:30") => "2024-03-01T10:00:00.500-05:30"
dateTime("2024-03-01Z","10:00:00+01:00") => FORG0008: An invalid parameter was passed to fn:dateTime(arg)
dateTime("10:00:00","10:00:00") => Invalid argument to date encode
adjust-dateTime-to-timezone("2024-03-01T10:00:00","PT2H") => "2024-03-01T10:00:00.000+02:00"
adjust-dateTime-to-timezone("2024-03-01T10:00:00.5Z","-PT5H30M") => "2024-03-01T04:30:00.500-05:30"
adjust-dateTime-to-timezone("2024-02-28T23:30:00-05:00","PT0S") => "2024-02-29T04:30:00.000+00:00"
adjust-dateTime-to-timezone("2023-12-31T14:00:00-14:00","PT14H") => "2024-01-01T18:00:00.000+14:00"
adjust-dateTime-to-timezone("2024-01-01T00:00:00+14:00","-PT14H") => "2023-12-30T20:00:00.000-14:00"
adjust-dateTime-to-timezone("-0044-12-31T23:30:00Z","PT1H") => "-0043-01-01T00:30:00.000+01:00"
adjust-dateTime-to-timezone("2024-07-01T10:00:00Z") => "2024-07-01T12:00:00.000+02:00"
adjust-dateTime-to-timezone("2024-01-01") => "2024-01-01T00:00:00.000+01:00"
adjust-dateTime-to-timezone("2024-03-01","PT841M") => FODT0003: An invalid parameter was passed to fn:adjust-dateTime-to-timezone(dt,timezone)
adjust-dateTime-to-timezone("2024-03-01","PT1M1S") => FODT0003: An invalid parameter was passed to fn:adjust-dateTime-to-timezone(dt,timezone)
adjust-dateTime-to-timezone("2024-03-01","P1M") => FODT0003: An invalid parameter was passed to fn:adjust-dateTime-to-timezone(dt,timezone)
adjust-dateTime-to-timezone("2023-02-29","PT1H") => '2023-02-29' is not a valid date and time value
adjust-dateTime-to-timezone("2024-03-01T24:00:00","PT1H") => '2024-03-01T24:00:00' is not a valid date and time value
adjust-dateTime-to-timezone("32767-12-31Z","PT1H") => '32767-12-31Z' is not a valid date and time value
)x");
}

TEST(Functions, TraceThroughTheLogger) {
  class TLogger final : public TZmObject, public IZmLogger {
   public:
    void Trace(StringView Message, StringView Label) override { Text += ToUTF8(Label) + "<" + ToUTF8(Message) + ">"; }
    std::string Text;
  };
  TLogger logger;
  ZmSetLogger(TZmIntf<IZmLogger>(&logger));
  Check("trace(@n,\"n\") => unset\ntrace(@x,1) => unset\ntrace(error(\"v\"),error(\"l\")) => l: ");
  ZmSetLogger(nullptr);
  Check("trace(@n,\"unheard\") => unset");
  EXPECT_EQ(logger.Text, "XPath<n; value=5>XPath<1>");
}

TEST(Functions, CountTheirArguments) {
  const struct {
    std::string Arguments, Signature, Message;
    std::vector<const char*> Names;
  } families[] = {
      {"1,2", "(node)\" function", " may only have 1 parameter!", {"node-name", "nilled"}},
      {"1,2",
       "(arg)\" function",
       " may contain 0 or 1 parameter, but not more!",
       {"string", "data", "base-uri", "document-uri", "number"}},
      {"", "(num)\" function", " must contain 1 parameter!", {"abs", "ceiling", "floor", "round", "half-to-even"}},
      {"", "(string)\" function", " must have a single parameter!", {"simplify", "upper-case", "lower-case"}},
      {"1",
       "(string1,string2)\" function",
       " must have 2 parameters!",
       {"contains", "starts-with", "ends-with", "substring-before"}},
      {"", "(arg)\" function", " must have 1 parameter!", {"boolean", "years-from-duration", "seconds-from-duration"}},
      {"", "(dateTime)\" function", " must have 1 parameter!", {"year-from-dateTime", "timezone-from-dateTime"}},
      {"1,2", "(date)\" function", " must have 1 parameter!", {"day-from-date", "timezone-from-date"}},
      {"1,2", "(time)\" function", " must have 1 parameter!", {"hours-from-time", "timezone-from-time"}},
  };
  for (const auto& [arguments, signature, message, names] : families)
    for (const std::string name : names) Check(name + "(" + arguments + ") => The \"fn:" + name + signature + message);
  Check(R"x(
error(1,2,3,4) => The "fn:error()" function has a maximum of 3 parameters!
trace(1) => The "fn:trace(value, label)" function must contain 2 parameters!
codepoints-to-string((1),2) => The "fn:codepoints-to-string((int,int,...))" function may contain 0 or 1 parameter, but not more!
string-to-codepoints() => The "fn:string-to-codepoints(string)" function must contain 1 parameter!
compare(1) => The "fn:compare(comp1, comp2, collation*)" function must contain at least parameters!
compare(1,2,3,4) => The "fn:compare(comp1, comp2, collation*)" function has a maximum of 3 paramaters!
codepoint-equal(1) => The "fn:codepoint-equal(comp1, comp2)" function must contain 2 parameters!
string-join() => The "fn:string-join((string,string,...),sep*)" function must contain at least 1 parameter!
string-join(1,2,3) => The "fn:string-join((string,string,...),sep*)" function may not contain more than 2 parameters!
substring(1,2,3,4) => The "fn:substring(string,start,len)" function must contain 3 or less parameters!
string-length(1,2) => Too many parameters specified for "fn:string-length(string)"!
normalize-space(1,2) => Too many parameters specified for "fn:normalize-space(string)"!
normalize-unicode(1,2,3) => Too many parameters specified for "fn:normalize-unicode(string, normalizationForm)"!
translate(1,2) => The "fn:translate(string1,string2,string3)" function must have 3 parameters!
substring-after(1) => The "fn:substring-before(string1,string2)" function must have 2 parameters!
matches(1,2,3,4) => Invalid parameter for "fn:matches(string,pattern,flags*)"!
replace(1,2) => Invalid parameter for "fn:replace(input,pattern,replacement,flags*)"!
replace(1,2,3,4,5) => Invalid parameter for "fn:replace(input,pattern,replacement,flags*)"!
tokenize() => Invalid parameter for "fn:tokenize()"!
dateTime(1) => The "fn:dateTime(date, time)" function must have 2 parameters!
adjust-dateTime-to-timezone(1,2,3) => The "fn:adjust-dateTime-to-timezone(dt,timezone)" function may not have more than 2 parameters!
)x");
}

TEST(Functions, ServePredicates) {
  const auto document = Loaded(
      "<r><a v='first long text' w='first'/><a v='second long text' w='Second long text!'/><a w='x'/>"
      "<b n='10'/><b n='9'/><c>x</c><c><![CDATA[y]]></c></r>");
  const struct {
    const char *Path, *Found;
  } cases[] = {
      {"a[starts-with(@w,@v)]/@w", "@w"},
      {"a[contains(@v,\"LONG\") and ends-with(@v,\"text\")]", "a a"},
      {"a[contains(@missing,\"x\")]", ""},
      {"a[not(contains(@missing,\"x\"))]", "a a a"},
      {"b[number(@n) > number(\"9.5\")]/@n", "@n"},
      {"b[abs(@n)=10]", ""},
      {"c[text()]/text()", "'x'"},
      {"b[string-length(@n) = 2]/@n", "@n"},
  };
  for (const auto& c : cases) EXPECT_EQ(Found(*document->GetRootNode(), c.Path), c.Found) << c.Path;
}

TEST(Functions, ComeBackIntoThemselves) {
  RegisterXPathFunction<TAgain>(u"again");
  const auto document = Loaded("<r><a v='first of two texts'/><a v='second of two texts'/></r>");
  TZmDOMElement& root = *document->GetRootNode();
  const auto equation = Create<TZmXPathEquation>(soQualifiedName, TZmXPathCollationCodepoint);
  const auto parser = Create<TZmTextParser>(u"starts-with(@v,again())");
  const auto term = equation->ReadTerm(*parser);
  TAgain::Around = term.get();
  Variant outer;
  term->Value(outer, {root.FirstElement(), root.LastElement()}, 0);
  EXPECT_EQ(outer, Variant(true));
  EXPECT_EQ(TAgain::Inner, Variant(true));
}
