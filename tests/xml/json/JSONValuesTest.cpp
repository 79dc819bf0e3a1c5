#include "zamrit/xml/json/Values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "tests/support/Described.h"
#include "tests/support/Raised.h"

namespace {

using namespace zm;
using namespace described;
using namespace std::string_view_literals;

TEST(JSONValuesTest, EscapesTexts) {
  String low;
  for (char16_t unit = 0; unit < 0x20; ++unit) low += unit;
  EXPECT_EQ(u"\0\\b\\t\\n\v\\f\\r\x0E\x0F\x10\x11\x12\x13\x14\x15\x16\x17\x18\x19\x1A\x1B\x1C\x1D\x1E\x1F"sv,
            ZmStrToJSON(low));
  EXPECT_EQ(u"a\\/b\\\\\\\"'", ZmStrToJSON(u"a/b\\\"'"));
  EXPECT_EQ(u"\u007F\u00E9\u00FF\\u0100\\uD83D\\uDE00", ZmStrToJSON(u"\u007F\u00E9\u00FF\u0100\U0001F600"));
  EXPECT_EQ(u"", ZmStrToJSON(u""));
}

TEST(JSONValuesTest, UnescapesTexts) {
  struct TCase {
    const char16_t* Text;
    const char16_t* Plain;
  };
  const TCase cases[] = {
      {u"\\b\\f\\n\\r\\t\\\"\\/\\\\\\x", u"\b\f\n\r\t\"/\\x"},
      {u"a\\u00e9\\uD83D\\uDE00z", u"a\u00e9\U0001F600z"},
      {u"a\\", u"a"},
      {u"a\\u12", u"a"},
      {u"a\\%4", u"a"},
      {u"%41", u"%41"},
      {u"\\%41\\%00", u"A"},
      {u"\\%41\\%04", u"\u0441"},
      {u"\\%41", u""},         // half a unit
      {u"\\%41b", u"\u6241"},  // out of step with what follows
  };
  for (const TCase& c : cases) EXPECT_EQ(c.Plain, ZmJSONtoStr(c.Text, jdtString)) << ToUTF8(c.Text);
  EXPECT_EQ(u"A1", ZmJSONtoStr(u"%41%001", jdtNumber));
  EXPECT_EQ(u"", ZmJSONtoStr(u"%4", jdtNumber));
  EXPECT_EQ("'$00g1' is not a valid integer value", Raised<EConvertError>([] { ZmJSONtoStr(u"\\u00g1", jdtString); }));
}

TEST(JSONValuesTest, WritesVariants) {
  struct TCase {
    Variant Value;
    const char16_t* Text;
    TZmJSONDataType Type;
  };
  const double infinity = std::numeric_limits<double>::infinity();
  const TCase cases[] = {
      {Variant(), u"null", jdtNull},
      {Null(), u"null", jdtNull},
      {true, u"true", jdtBoolean},
      {-5, u"-5", jdtNumber},
      {std::uint32_t{4294967295u}, u"4294967295", jdtNumber},
      {1.5, u"1.5", jdtNumber},
      {-0.0, u"-0", jdtNumber},
      {infinity, u"null", jdtNumber},
      {std::nan(""), u"null", jdtNumber},
      {TDateTime(45352.5), u"\"2024-03-01T12:00:00.000\"", jdtString},
      {TDateTime(1e300), u"null", jdtString},
      {u"a\"b", u"\"a\\\"b\"", jdtString},
      {VarArrayOf({}), u"[]", jdtArray},
      {VarArrayOf({1, VarArrayOf({}), VarArrayOf({u"x", VarArrayOf({Null()})}), 2}), u"[1,[],[\"x\",[null]],2]",
       jdtArray},
  };
  for (const TCase& c : cases) {
    EXPECT_EQ(c.Text, ZmVarToJSON(c.Value));
    EXPECT_EQ(c.Type, ZmVarTypeToJSONType(c.Value)) << ToUTF8(c.Text);
  }
  Variant deep = 1;
  for (int i = 0; i < 200000; ++i) deep = VarArrayOf({deep});
  EXPECT_EQ(400001u, ZmVarToJSON(deep).size());
}

TEST(JSONValuesTest, ReadsDates) {
  const TDateTime day = EncodeDate(1970, 1, 1);
  EXPECT_EQ(day, ZmJSONToDate(u"/Date(1000)/"));
  EXPECT_EQ(day - 1.0, ZmJSONToDate(u"/Date(-86400000)/"));
  EXPECT_EQ(1000, DateTimeToMilliseconds(ZmJSONToTime(u"/Date(86401000)/")));
  EXPECT_EQ(EncodeDateTime(1970, 1, 1, 0, 0, 1, 5), ZmJSONToDateTime(u"/Date(1005)/"));
  EXPECT_EQ(EncodeDateTime(2024, 3, 1, 10, 0, 0, 0), ZmJSONToDateTime(u"2024-03-01T10:00:00"));
  EXPECT_EQ(0.0, ZmJSONToTime(u""));
  for (const char16_t* text : {u"/", u"/Date()/", u"/Date(x)/", u"/Date(9223372036854775807)/", u"x"}) {
    EXPECT_THROW(ZmJSONToDateTime(text), EConvertError) << ToUTF8(text);
    EXPECT_EQ(7.0, ZmJSONToDateTimeDef(text, 7)) << ToUTF8(text);
  }
  EXPECT_EQ(7.0, ZmJSONToDate(Null(), 7));
  EXPECT_EQ(2.5, ZmJSONToDate(Variant(2.5), 7));
  EXPECT_EQ(day, ZmJSONToDate(Variant(u"1970-01-01"), 7));
  EXPECT_EQ("The given value is not a valid Time value!",
            Raised<EConvertError>([] { ZmJSONToTime(Variant(true), 7); }));
}

TEST(JSONValuesTest, NamesTypesOfSchemas) {
  struct TCase {
    const TRttiType* Type;
    const char16_t* Name;
    const char16_t* Format;
    TZmSchemaDataType Schema;
  };
  const TCase cases[] = {
      {TypeOf<std::int8_t>(), u"integer", u"int32", sdtByte},
      {TypeOf<std::uint64_t>(), u"integer", u"int64", sdtUnsignedLong},
      {TypeOf<float>(), u"float", u"float", sdtFloat},
      {TypeOf<Extended>(), u"double", u"double", sdtDouble},
      {TypeOf<std::string>(), u"string", u"", sdtString},
      {TypeOf<ZmXMLString>(), u"string", u"xml", sdtString},
      {TypeOf<ZmJSONString>(), u"string", u"json", sdtString},
      {TypeOf<bool>(), u"boolean", u"", sdtBoolean},
      {TypeOf<TDate>(), u"date", u"date", sdtDate},
      {TypeOf<TTime>(), u"dateTime", u"date-time", sdtTime},
      {TypeOf<TDateTime>(), u"dateTime", u"date-time", sdtDateTime},
      {TypeOf<TZmIntf<IZmInterface>>(), u"any", u"", sdtAny},
      {TypeOf<TPlace>(), u"object", u"", sdtObject},
      {TypeOf<std::vector<int>>(), u"array", u"", sdtArray},
  };
  for (const TCase& c : cases) {
    String format = u"?";
    TZmSchemaDataType schema = sdtDuration;
    EXPECT_EQ(c.Name, ZmJSONType(c.Type, format, &schema)) << ToUTF8(c.Type->GetName());
    EXPECT_EQ(c.Format, format);
    EXPECT_EQ(c.Schema, schema);
  }
}

TEST(JSONValuesTest, ReadsAndWritesValues) {
  EXPECT_EQ(44, ZmJSONToVal(u"300", u"Byte", true).AsInt64());
  EXPECT_EQ(u"/\u0100&lt;", ZmJSONToVal(u"\\/\\u0100&lt;", u"string", true).AsString());
  EXPECT_EQ(u"\\/", ZmJSONToVal(u"\\/", u"ZmJSONString", true).AsString());
  EXPECT_EQ(TSuit::suClubs, ZmJSONToVal(u"suClubs", TZmTypes::Of<TSuit>(), true).AsType<TSuit>());
  EXPECT_EQ(EncodeDate(1970, 1, 2), ZmJSONToVal(u"/Date(86400000)/", u"TDate", true).AsType<TDate>());
  EXPECT_TRUE(ZmJSONToVal(u"1", u"Boolean", true).AsBoolean());
  EXPECT_EQ(Variant(u"1"), ZmJSONToVal(u"1", u"Variant", true).AsVariant());
  for (const char16_t* type : {u"Integer", u"TSuit", u"TPlace"})
    EXPECT_EQ(0u, Raised<Exception>([&] { ZmJSONToVal(u"x", type, true); }).find("Failed to convert")) << ToUTF8(type);
  for (const auto& form : {std::pair{u"&lt;", u"Char"}, {u"&#115;uClubs", u"TSuit"}})
    EXPECT_EQ(0u, Raised<Exception>([&] { ZmJSONToVal(form.first, form.second, true); }).find("Failed to convert"));
  for (const char16_t* type : {u"TDate", u"TDateTime", u"string"})
    EXPECT_THROW(ZmJSONToVal(u"\\u00g1", type, true), EConvertError) << ToUTF8(type);
  EXPECT_TRUE(ZmJSONToVal(u"x", u"no such type", false).IsEmpty());
  EXPECT_THROW(ZmJSONToVal(u"x", u"no such type", true), EZmUnknownType);

  EXPECT_EQ(u"1.5", ZmValToJSON(TValue::From(1.5)));
  EXPECT_EQ(u"a&lt;", ZmValToJSON(TValue::From(u"a<")));
  EXPECT_THROW(ZmValToJSON(TValue::From(TPlace())), ENotSupportedException);
}

}  // namespace
