#include <gtest/gtest.h>

#include <limits>

#include "tests/support/Described.h"
#include "tests/support/Raised.h"
#include "zamrit/platform/reflection/Reflection.h"
#include "zamrit/xml/dom/Document.h"

namespace {

using namespace zm;

constexpr StringView cXSI = u" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"";
constexpr StringView cXSD = u" xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\"";

TEST(DOMValuesTest, SetsAndGetsPlainValues) {
  TZmDOMDocument document("a");
  TZmDOMElement& a = *document.GetRootNode();
  const TDateTime time = EncodeDate(2024, 3, 1) + 0.5;
  a.SetAsBoolean(true);
  EXPECT_EQ(u"true", a.GetText());
  EXPECT_TRUE(a.GetAsBoolean());
  a.SetAsDateTime(time);
  EXPECT_EQ(u"2024-03-01T12:00:00.000", a.GetText());
  EXPECT_EQ(time, a.GetAsDateTime());
  a.SetAsDouble(-0.25);
  EXPECT_EQ(-0.25, a.GetAsDouble());
  a.SetAsInt64(std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(std::numeric_limits<std::int64_t>::min(), a.GetAsInt64());
  a.SetAsInteger(-7);
  EXPECT_EQ(-7, a.GetAsInteger());
  a.SetAsAnsiString("\xC3\xA9<");
  EXPECT_EQ(u"\u00E9<", a.GetAsString());
  EXPECT_EQ("\xC3\xA9<", a.GetAsAnsiString());
  EXPECT_EQ("'\xC3\xA9<' is not a valid integer value", Raised<EConvertError>([&] { a.GetAsInteger(); }));
  a.SetAsString(u"");
  EXPECT_EQ(0, a.GetAsInteger());
  EXPECT_FALSE(a.GetAsBoolean());
}

TEST(DOMValuesTest, KeepsTheTypeOfVariants) {
  struct TCase {
    Variant Value;
    const char16_t* Type;
    const char16_t* Text;
  };
  const TCase cases[] = {
      {Variant(std::int8_t{-1}), u"xsd:byte", u"-1"},
      {Variant(std::uint32_t{7}), u"xsd:unsignedInt", u"7"},
      {Variant(42), u"xsd:int", u"42"},
      {Variant(std::int64_t{1} << 40), u"xsd:long", u"1099511627776"},
      {Variant(1.5), u"xsd:double", u"1.5"},
      {Variant(true), u"xsd:boolean", u"true"},
      {Variant(u"<&amp;>"), u"xsd:string", u"&lt;&amp;amp;&gt;"},
      {Variant(u""), u"xsd:string", u""},
      {Variant(EncodeDate(2024, 3, 1)), u"xsd:dateTime", u"2024-03-01T00:00:00.000"},
      {VarArrayOf({Variant(u"a&"), Variant(u"b")}), u"xsd:anyType", nullptr},
  };
  for (const TCase& c : cases) {
    TZmDOMDocument document("a");
    TZmDOMElement& a = *document.GetRootNode();
    a.SetAsVariant(c.Value);
    EXPECT_EQ(c.Type, a.GetAttribute("xsi:type"));
    EXPECT_TRUE(c.Value == a.GetAsVariant()) << ToUTF8(a.GetText());
    const auto clone = a.CloneNode(true);  // outside a document
    EXPECT_TRUE(c.Value == static_cast<TZmDOMElement&>(*clone).GetAsVariant()) << ToUTF8(a.GetText());
    a.SetAsValue(TValue::FromVariant(c.Value));
    EXPECT_EQ(c.Type, a.GetAttribute("xsi:type"));
    EXPECT_TRUE(c.Value == a.GetAsValue().AsVariant());
    if (c.Text) {
      EXPECT_EQ(c.Text, a.GetInnerXML());
    }
  }
}

TEST(DOMValuesTest, LeavesOneAttributeForTheType) {
  TZmDOMDocument document("a");
  TZmDOMElement& a = *document.GetRootNode();
  const String head = String(u"<a").append(cXSD).append(cXSI);
  a.SetAsVariant(1);
  EXPECT_EQ(head + u" xsi:type=\"xsd:int\">1</a>", document.GetXML());
  a.SetAsVariant(Null());
  EXPECT_EQ(head + u" xsi:nil=\"true\" />", document.GetXML());
  EXPECT_TRUE(VarIsNull(a.GetAsVariant()));
  EXPECT_TRUE(a.GetAsValue().IsEmpty());
  a.SetAsValue(TValue::From(described::TSuit::suClubs));
  EXPECT_EQ(head + u" xsi:type=\"TSuit\">suClubs</a>", document.GetXML());
  EXPECT_EQ(described::TSuit::suClubs, a.GetAsValue().AsType<described::TSuit>());
  EXPECT_EQ(6, a.GetAsVariant().AsInteger());
  EXPECT_THROW(a.SetAsValue(TValue::From(std::vector<int>{1})), Exception);
  EXPECT_EQ(u"suClubs", a.GetText());
}

TEST(DOMValuesTest, GoesByTheTypeThatIsNamed) {
  struct TCase {
    const char* Attributes;
    const char* Text;
    Variant Value;
    const char* Message;
  };
  const char* const invalid = "The type attribute does not contain valid typeinfo.";
  const TCase cases[] = {
      {"", "1", Variant(u"1"), nullptr},
      {"type='s:int'", "1", Variant(u"1"), nullptr},
      {"i:type='s:int'", "1", Variant(1), nullptr},
      {"i:type=' s:integer '", "12345678901", Variant(std::int64_t{12345678901}), nullptr},
      {"s:type='decimal' i:type='s:short'", "1", Variant(std::int16_t{1}), nullptr},
      {"s:type='decimal'", "1.5", Variant(1.5), nullptr},
      {"s:nil='true'", "1", Variant(u"1"), nullptr},
      {"i:nil='1' i:type='none'", "1", Null(), nullptr},
      {"i:nil='false' i:type='s:base64Binary'", "YQ==", Variant(u"YQ=="), nullptr},
      {"i:type='none'", "1", Null(), invalid},
      {"i:type=''", "1", Null(), invalid},
      {"i:type='object'", "1", Null(), invalid},
      {"i:type='s:int'", "x", Null(), "Failed to convert the value \"x\" to a variant value of type Integer!"},
  };
  for (const TCase& c : cases) {
    TZmDOMDocument document;
    document.LoadFromXML(std::string_view(std::string("<r xmlns:s='http://www.w3.org/2001/XMLSchema' xmlns:i='") +
                                          ToUTF8(cZmSchemaInstanceURI) + "'><a " + c.Attributes + ">" + c.Text +
                                          "</a></r>"));
    TZmDOMElement& a = *document.GetRootNode()->FirstElement();
    if (!c.Message) {
      EXPECT_TRUE(c.Value == a.GetAsVariant()) << c.Attributes;
    } else if (c.Message == invalid) {
      EXPECT_EQ(invalid, Raised<EZmDomException>([&] { a.GetAsVariant(); })) << c.Attributes;
    } else {
      EXPECT_EQ(c.Message, Raised<Exception>([&] { a.GetAsVariant(); }));
    }
  }
}

TEST(DOMValuesTest, DeclaresTheSchemaAtTheRoot) {
  TZmDOMDocument document("a");
  document.SetUseSchemaInstance(true);
  document.GetRootNode()->AddElement("b")->SetAsVariant(1);
  const String text = String(u"<a").append(cXSI).append(cXSD).append(u"><b xsi:type=\"xsd:int\">1</b></a>");
  EXPECT_EQ(text, document.GetXML());
  document.GetRootNode()->SetAttribute("xmlns:xsd", "other");
  document.SetUseSchemaInstance(true);
  EXPECT_EQ(text, document.GetXML());
}

}  // namespace
