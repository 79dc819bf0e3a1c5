#include "zamrit/xml/values/Values.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/Described.h"
#include "tests/support/Raised.h"
#include "zamrit/xml/uZmXMLUtils.h"

namespace {

using namespace zm;
using namespace described;

Variant Nested(int Levels) {
  Variant value = u"<";
  for (int i = 0; i < Levels; ++i) value = VarArrayOf({value});
  return value;
}

TEST(XMLValuesTest, WritesVariants) {
  struct TCase {
    Variant Value;
    const char16_t* Text;
  };
  const TCase cases[] = {
      {std::int8_t{-1}, u"-1"},
      {std::uint32_t{4294967295u}, u"-1"},
      {std::uint64_t{18446744073709551615u}, u"-1"},
      {std::int64_t{1} << 40, u"1099511627776"},
      {0.1f, u"0.100000001490116"},
      {1e20, u"1E20"},
      {Currency(1.5), u"1.5"},
      {true, u"true"},
      {TDateTime(45352.5), u"2024-03-01T12:00:00.000"},
      {u"a<\"'\n", u"a&lt;&quot;&apos;&#10;"},
      {VarArrayOf({}), u"&lt;array length=&quot;0&quot;&gt;&lt;/array&gt;"},
      {VarArrayOf({u"<"}),
       u"&lt;array length=&quot;1&quot;&gt;&lt;element nr=&quot;0&quot;&gt;&amp;lt;&lt;/element&gt;"
       u"&lt;/array&gt;"},
  };
  for (const TCase& c : cases) EXPECT_EQ(ToUTF8(c.Text), ToUTF8(ZmVariantToXML(c.Value)));
  EXPECT_EQ(
      ZmStrToXML(StringView(u"<array length=\"2\"><element nr=\"0\">1</element><element nr=\"1\">2</element></array>"),
                 true, true),
      ZmVariantToXML(VarArrayOf({1, 2})));
  Variant bounds = VarArrayCreate(-1, 0, varInteger);
  EXPECT_EQ(
      ZmStrToXML(StringView(u"<array length=\"2\"><element nr=\"-1\">0</element><element nr=\"0\">0</element></array>"),
                 true, true),
      ZmVariantToXML(bounds));
  EXPECT_EQ("ZmVariantToXml; invalid variant type 1!", Raised<Exception>([] { ZmVariantToXML(Null()); }));
  EXPECT_EQ("Variant arrays that are nested deeper than 64 levels have no XML form!",
            Raised<Exception>([] { ZmVariantToXML(Nested(65)); }));
}

TEST(XMLValuesTest, ReadsVariantsByTypeCode) {
  struct TCase {
    const char16_t* Text;
    std::uint16_t Type;
    Variant Value;
  };
  const TCase cases[] = {
      {u"12", varSmallint, std::int16_t{12}},
      {u"12", varInteger, 12},
      {u"65537", varSmallint, std::int16_t{1}},
      {u"1.5", varSingle, 1.5f},
      {u"1,000.5", varDouble, 1000.5},
      {u"0.12346", varCurrency, Currency(0.1235)},
      {u"2024-03-01T12:00:00", varDate, TDateTime(45352.5)},
      {u"&lt;", varOleStr, u"<"},
      {u"TRUE", varBoolean, true},
      {u"&amp;", varVariant, u"&"},
      {u"$FF", varInt64, std::int64_t{255}},
      {u"", varInteger, 0},
      {u"&#65;", varString, u"A"},
      {u"&#65;", varUString, u"A"},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(ToUTF8(c.Text));
    const Variant value = ZmXMLToVariant(c.Text, c.Type);
    EXPECT_EQ(VarType(c.Value), VarType(value));
    EXPECT_EQ(VarToStr(c.Value), VarToStr(value));
  }
  for (std::uint16_t code : std::initializer_list<std::uint16_t>{0, 1, 9, 16, 17, 21, 9999, varArray | varByte})
    EXPECT_EQ("ZmXMLToVariant(x); Unsupported VarType", Raised<Exception>([&] { ZmXMLToVariant(u"x", code); }));
  EXPECT_EQ(Variant(12), ZmXMLToVariant(u"12", u"Integer"));
  EXPECT_EQ(Variant(12), ZmXMLToVariant(u"12", u"xsd:int"));
  EXPECT_EQ(Variant(u"12"), ZmXMLToVariant(u"12", u"System.string"));
  EXPECT_THROW(ZmXMLToVariant(u"12", u"no such type"), Exception);
  EXPECT_THROW(ZmXMLToVariant(u"x", varInteger), EConvertError);
}

TEST(XMLValuesTest, ReadsBackArrays) {
  Variant texts = VarArrayCreate(3, 5, varUString);
  VarArrayPut(texts, 3, u"a<b & \"c\"");
  VarArrayPut(texts, 5, u"&lt;");
  const Variant read = ZmXMLToVariant(ZmVariantToXML(texts), std::uint16_t{varArray | varUString});
  EXPECT_EQ(0, VarArrayLowBound(read));
  ASSERT_EQ(2, VarArrayHighBound(read));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(VarArrayGet(texts, 3 + i), VarArrayGet(read, i));
  EXPECT_EQ(VarArrayOf({}), ZmXMLToVariant(ZmVariantToXML(VarArrayOf({})), std::uint16_t{varArray | varVariant}));

  const Variant deep = VarArrayOf({u"x", VarArrayOf({u"<&>", Nested(60)}), VarArrayOf({})});
  EXPECT_EQ(deep, ZmXMLToVariant(ZmVariantToXML(deep), std::uint16_t{varArray | varVariant}));

  // Tags that are cut off or odd: read as far as they go.
  const auto ints = [](const char16_t* Text) { return ZmXMLToVariant(Text, std::uint16_t{varArray | varInteger}); };
  EXPECT_EQ(-1, VarArrayHighBound(ints(u"")));
  EXPECT_EQ(-1, VarArrayHighBound(ints(u"no array")));
  EXPECT_EQ(Variant(0), VarArrayGet(ints(u"<array><element"), 0));
  EXPECT_EQ(Variant(7), VarArrayGet(ints(u"<element>7"), 0));
  EXPECT_THROW(ints(u"<element>x</element>"), EConvertError);
}

TEST(XMLValuesTest, ReadsVariantsByKind) {
  EXPECT_EQ(Variant(std::uint8_t{44}), ZmXMLToVariant(u"300", rtkByte));
  EXPECT_EQ(Variant(std::int64_t{5}), ZmXMLToVariant(u"5", rtkInt64));
  EXPECT_EQ(Variant(1.5f), ZmXMLToVariant(u"1.5", rtkSingle));
  EXPECT_EQ(Variant(u"<"), ZmXMLToVariant(u"&lt;", rtkString));
  EXPECT_EQ(Variant(true), ZmXMLToVariant(u"1", rtkBoolean));
  EXPECT_EQ("Failed to convert the value \"x\" to a variant value of type Word!",
            Raised<Exception>([] { ZmXMLToVariant(u"x", rtkWord); }));
  EXPECT_EQ("Failed to convert the value \"x\" to a variant value of type Class!",
            Raised<Exception>([] { ZmXMLToVariant(u"x", rtkClass); }));
}

TEST(XMLValuesTest, ReadsTextsOfVariants) {
  EXPECT_EQ(u"d", ZmXMLToStr(Null(), u"d"));
  EXPECT_EQ(u"<", ZmXMLToStr(Variant(u"&lt;"), u"d"));
  EXPECT_EQ(u"1.5", ZmXMLToStr(Variant(1.5), u"d"));
  EXPECT_EQ(u"true", ZmXMLToStr(Variant(true), u"d"));
  EXPECT_EQ(u"2024-03-01T12:00:00.000", ZmXMLToStr(Variant(TDateTime(45352.5)), u"d"));
  EXPECT_EQ(u"<\r\n12\r\n", ZmXMLToStr(VarArrayOf({u"&lt;", 12, Null()}), u"d"));
  for (const Variant& value : {Variant(1), Variant()})
    EXPECT_EQ("The given value is not a valid String value!", Raised<EConvertError>([&] { ZmXMLToStr(value, u"d"); }));
}

// Every simple member of a described class goes through its text and comes back.
TEST(XMLValuesTest, ReadsBackValues) {
  const auto object = Create<TEverything>();
  object->Letter = '<';
  object->Text = u"\t<\u0416>";
  object->Maybe = 0.1;
  for (const TRttiField* field : TypeOf<TEverything*>()->GetFields()) {
    const TZmTypeInfo* info = TZmTypes::GetTypeInfo(field->GetFieldType());
    SCOPED_TRACE(ToUTF8(field->GetName()));
    const TValue value = field->GetValue(object.get());
    if (!info->GetIsSimpleType()) {
      EXPECT_THROW(ZmXMLToValue(u"x", info), Exception);
      continue;
    }
    const TValue back = ZmXMLToValue(ZmValToXML(value), info);
    EXPECT_EQ(info->RttiType, back.GetTypeInfo());
    EXPECT_EQ(value.ToString(), back.ToString());
  }
}

TEST(XMLValuesTest, WritesAndReadsValues) {
  EXPECT_EQ(u"&lt;", ZmValToXML(TValue::From(u"<")));
  EXPECT_EQ(u"<", ZmValToXML(TValue::From(ZmXMLString(u"<"))));
  EXPECT_EQ(u"4294967295", ZmValToXML(TValue::From(std::uint32_t{4294967295u})));
  EXPECT_EQ(u"-1", ZmValToXML(TValue::From(~std::uint64_t{0})));
  EXPECT_EQ(u"suClubs", ZmValToXML(TValue::From(TSuit::suClubs)));
  EXPECT_EQ(u"dayMonday,dayTuesday", ZmValToXML(TValue::From(TDays{dayTuesday, dayMonday})));
  EXPECT_EQ(u"", ZmValToXML(TValue()));
  EXPECT_EQ(u"", ZmValToXML(TValue::From(static_cast<TPlain*>(nullptr))));
  EXPECT_EQ("Failed to convert a TValue into XML!\r\nThe type TPlace is not supported.",
            Raised<Exception>([] { ZmValToXML(TValue::From(TPlace())); }));

  EXPECT_EQ(TSuit::suHearts, ZmXMLToValue(u"-2", u"TSuit").AsType<TSuit>());
  EXPECT_EQ(TDays{dayTuesday}, ZmXMLToValue(u"2", u"described.TDays").AsType<TDays>());
  EXPECT_EQ("Failed to convert the value \"suNone\" to a value of type TSuit!",
            Raised<Exception>([] { ZmXMLToValue(u"suNone", u"TSuit"); }));
  EXPECT_EQ("Failed to convert the value \"1x\" to a value of type Integer!",
            Raised<Exception>([] { ZmXMLToValue(u"1x", u"int"); }));
  EXPECT_EQ("Failed to convert \"x\" into a TValue!\r\nThe type TPlace is not supported.",
            Raised<Exception>([] { ZmXMLToValue(u"x", u"TPlace"); }));
  EXPECT_THROW(ZmXMLToValue(u"x", u"no such type"), EZmUnknownType);
}

}  // namespace
