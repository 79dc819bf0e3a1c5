#include "zamrit/xml/values/Escaping.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "tests/support/PlainEscaping.h"
#include "tests/support/Raised.h"
#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/Strings.h"

namespace {

using namespace std::string_literals;
using zm::ZmStrToXML;
using zm::ZmXMLToStr;

TEST(XMLEscaping, ReplacesMarkupAndControlCodes) {
  const struct {
    zm::String Text;
    bool Apos, Quot;
    zm::String Expected;
  } cases[] = {
      {u"", true, true, u""},
      {u"a<b>&c", false, false, u"a&lt;b&gt;&amp;c"},
      {u"'\"", true, true, u"&apos;&quot;"},
      {u"'\"", false, true, u"'&quot;"},
      {u"'\"", true, false, u"&apos;\""},
      {u"'\"<", false, false, u"'\"&lt;"},
      {u"\1\t\n\r\x1F !\x7F", true, true, u"&#1;&#9;&#10;&#13;&#31; !\x7F"},
      {u"\u00E9\U0001F600\xDC00\u013C\u0126\uFF26", true, true, u"\u00E9\U0001F600\xDC00\u013C\u0126\uFF26"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ZmStrToXML(c.Text, c.Apos, c.Quot), c.Expected);
    EXPECT_EQ(ZmXMLToStr(c.Expected), c.Text);
  }
  EXPECT_EQ(ZmStrToXML("\xC3\xA9 'a' <\n>", false, true), "\xC3\xA9 'a' &lt;&#10;&gt;");
}

TEST(XMLEscaping, CodeZeroIsDroppedInTheStringFormAlone) {
  EXPECT_EQ(ZmStrToXML(u"\0a\0<\0"s, true, true), u"a&lt;");
  EXPECT_EQ(ZmStrToXML("\0a\0<\0"s, true, true), "\0a\0&lt;\0"s);
  zm::TZmStringStream stream(u"-");
  stream.SetPosition(2);
  const zm::String text = u"\0a\0<b"s;
  ZmStrToXML(text.data(), 4, &stream, true, true);
  ZmStrToXML(text.data(), 0, &stream, true, true);
  EXPECT_EQ(stream.GetWString(), u"-\0a\0&lt;"s);
}

TEST(XMLEscaping, ReferencesAreResolved) {
  const struct {
    zm::String Text, Expected;
  } cases[] = {
      {u"&lt;&gt;&amp;&apos;&quot;", u"<>&'\""},
      {u"&amp;amp; x &lt", u"&amp; x &lt"},
      {u"a & b; c", u"a & b; c"},
      {u"&x&amp; &amp;", u"&x&amp; &"},
      {u"&abc", u"&abc"},
      {u"&", u"&"},
      {u"&;&", u"&;&"},
      {u"&Alpha;&alpha;&ALPHA;", u"\u0391\u03B1&ALPHA;"},
      {u"&thetasym;&theta;", u"&thetasym;\u03B8"},
      {u"&nbspnbspnb;", u"&nbspnbspnb;"},
      // the ends of rows of neighbours
      {u"&nbsp;&yuml;&Rho;&Sigma;&rho;&sigmaf;&omega;", u"\u00A0\u00FF\u03A1\u03A3\u03C1\u03C2\u03C9"},
      {u"&hArr;&there4;&alefsym;&frac34;&rang;&diams;", u"\u21D4\u2234\u2135\u00BE\u232A\u2666"},
      // the key alone decides: low bytes, and sums of mirrored places
      {u"&\u016Ct;&\u6C6C\u0074;", u"<<"},
      {u"&\0t\0\0\0\0\0l;"s, u"<"},
      {u"&\0\0\0\0\0\0tl;"s, u"<"},
      {u"&l\u0074\0\0\0\0\0\0\0;"s, u"&lt\0\0\0\0\0\0\0;"s},
      {u"&#65;&#x41;&#X41;&# 65;", u"AAA&# 65;"},
      {u"&#65536;&#65601;&#0;", u"\0A\0"s},
      {u"&#x1F600;&#xFFFFFFFF;&#x00000000041;",
       u"\xF600\xFFFF"
       u"A"},
      {u"&#$41;&#0x42;&#-1;&#+67;&#2147483647;&#000000000068;",
       u"AB\xFFFF"
       u"C\xFFFF"
       u"D"},
  };
  for (const auto& c : cases) EXPECT_EQ(ZmXMLToStr(c.Text), c.Expected) << zm::ToUTF8(c.Text);
}

TEST(XMLEscaping, EightBitTextKnowsNamesByTheirFirstLetter) {
  const struct {
    std::string Text, Expected;
  } cases[] = {
      {"&amp;&AMP;&Ampersandandmore;&apos;&a;&A;", "&&&'''"},
      {"&gibberish;&GT;&l;&Quote;", ">><\""},
      {"&;&eacute;&x&amp;", "&;&eacute;&x&amp;"},
      {"&#65;&#xE9;&#8364;&#0;", "A\xC3\xA9\xE2\x82\xAC\0"s},
      {"&#xD83D;&#xDE00;&#xD83D;-&#xDE00;&#65536;", "\xF0\x9F\x98\x80\xEF\xBF\xBD-\xEF\xBF\xBD\0"s},
  };
  for (const auto& c : cases) EXPECT_EQ(ZmXMLToStr(c.Text), c.Expected) << c.Text;
}

TEST(XMLEscaping, ReferencesThatAreNoNumberAreRaised) {
  const struct {
    std::string Text, Message;
  } cases[] = {
      {"a&#;", "'' is not a valid integer value"},
      {"&#x;", "'$' is not a valid integer value"},
      {"&#12a;", "'12a' is not a valid integer value"},
      {"&#xG;", "'$G' is not a valid integer value"},
      {"&#2147483648;", "'2147483648' is not a valid integer value"},
      {"&#x100000000;", "'$100000000' is not a valid integer value"},
      {"&#&amp;", "'&amp' is not a valid integer value"},
      {"&#\xC3\xA9;", "'\xC3\xA9' is not a valid integer value"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Raised<zm::EConvertError>([&] { ZmXMLToStr(c.Text); }), c.Message);
    EXPECT_EQ(Raised<zm::EConvertError>([&] { ZmXMLToStr(zm::FromUTF8(c.Text)); }), c.Message);
  }
}

template <class U>
bool AgreesOnARandomText(std::mt19937& Random) {
  const std::string nul(1, '\0');
  const std::string_view pieces[] = {"&",  ";", "#",     "x",        "4",        "1F",           " ",    "<",
                                     "\"", "'", "a",     "q",        "&lt;",     "&#",           "amp;", "Eta",
                                     "\n", nul, "&#65;", "&#xD83D;", "&#xDE00;", "ordinary text"};
  std::basic_string<U> text;
  for (auto count = Random() % 40; count > 0; --count) {
    for (const char c : pieces[Random() % std::size(pieces)]) text += static_cast<U>(c);
    if (Random() % 16 == 0) text += static_cast<U>(Random());
  }
  return EscapingAgrees<U>(text, Random() % 2 != 0, Random() % 2 != 0);
}

TEST(XMLEscaping, AgreesWithAPlainImplementationOnRandomTexts) {
  std::mt19937 random(20240301);
  for (int i = 0; i < 20000; ++i) {
    ASSERT_TRUE(AgreesOnARandomText<char16_t>(random)) << i;
    ASSERT_TRUE(AgreesOnARandomText<char>(random)) << i;
  }
}

TEST(XMLEscaping, HugeTextsTakeLinearTime) {
  const zm::String ampersands(4000000, u'&'), digits = u"&#" + zm::String(4000000, u'0') + u"65;";
  EXPECT_EQ(ZmXMLToStr(ampersands), ampersands);
  EXPECT_EQ(ZmXMLToStr(ampersands + u";"), ampersands + u";");
  EXPECT_EQ(ZmXMLToStr(digits), u"A");
  EXPECT_EQ(ZmXMLToStr(ZmStrToXML(ampersands, true, true)), ampersands);
}

}  // namespace
