#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/Described.h"
#include "tests/support/Raised.h"
#include "zamrit/platform/Lists.h"

namespace {

using namespace zm;
using namespace described;

TEST(TypesTest, FindsTypesByTheirNames) {
  struct TCase {
    TZmTypeNameType NameType;
    const char16_t* Name;
    const TRttiType* Type;
  };
  const TCase cases[] = {
      {tntName, u"string", TypeOf<String>()},
      {tntName, u"INTEGER", TypeOf<int>()},
      {tntName, u"LongInt", TypeOf<int>()},
      {tntName, u"TDateTime", TypeOf<TDateTime>()},
      {tntName, u"ZmJSONString", TypeOf<ZmJSONString>()},
      {tntName, u"TSuit", TypeOf<TSuit>()},
      {tntName, u"TPlace", TypeOf<TPlace*>()},
      {tntName, u"TObject", TypeOf<TObject*>()},
      {tntQualifiedName, u"System.string", TypeOf<String>()},
      {tntQualifiedName, u"System.Rtti.TValue", TypeOf<TValue>()},
      {tntQualifiedName, u"described.TEverything", TypeOf<TEverything*>()},
      {tntSchemaName, u"xsd:int", TypeOf<int>()},
      {tntSchemaName, u"dateTime", TypeOf<TDateTime>()},
      {tntSchemaName, u"x:TEverything", TypeOf<TEverything*>()},
      {tntName, u"int", nullptr},
      {tntName, u"System.string", nullptr},
      {tntSchemaName, u"Cardinal", nullptr},
      {tntName, u"", nullptr},
  };
  for (const TCase& c : cases)
    EXPECT_EQ(TZmTypes::GetTypeInfo(c.Type), TZmTypes::GetTypeInfo(c.Name, c.NameType, false)) << ToUTF8(c.Name);
  EXPECT_EQ(nullptr, TZmTypes::GetTypeInfo(u"string", tntName, false, mtkInteger));
  EXPECT_EQ("The type \"no:Such\" is unknown!",
            Raised<EZmUnknownType>([] { TZmTypes::GetTypeInfo(u"no:Such", tntSchemaName, true); }));
  EXPECT_EQ(nullptr, TZmTypes::GetTypeInfo(static_cast<const TRttiType*>(nullptr)));
  EXPECT_EQ(TZmTypes::Of<TObject*>(), TZmTypes::GetTypeInfo(TFiler::StaticClass()));  // which nobody has described
  const TZmTypeInfo* plain = TZmTypes::Of<TPlain*>();
  EXPECT_EQ(plain, TZmTypes::GetTypeInfo(TPlain::StaticClass()));
}

TEST(TypesTest, SchemaNamesLeadBack) {
  for (const TRttiField* field : TypeOf<TEverything*>()->GetFields()) {
    const TZmTypeInfo* info = TZmTypes::GetTypeInfo(field->GetFieldType());
    const TZmTypeInfo* back = TZmTypes::GetTypeInfo(info->SchemaName(u"xsd"), tntSchemaName, true);
    EXPECT_EQ(info->SchemaName(u""), back->SchemaName(u"")) << ToUTF8(info->Name);
  }
  EXPECT_EQ(u"xsd:string", TZmTypes::Of<String>()->SchemaName(u"xsd"));
  EXPECT_EQ(u"ArrayOfString", TZmTypes::Of<std::vector<String>>()->SchemaName(u"xsd"));
  EXPECT_EQ(u"ArrayOfArrayOfInt", TZmTypes::Of<std::vector<std::vector<int>>>()->SchemaName(u""));
  EXPECT_EQ(u"TEverything", TZmTypes::Of<TEverything*>()->SchemaName(u"xsd"));
  EXPECT_EQ(nullptr, TZmTypeInfo::VirtualType(sdtDuration)->RttiType);
  EXPECT_EQ(u"duration", TZmTypeInfo::VirtualType(sdtDuration)->Name);
}

TEST(TypesTest, TakesAliases) {
  TZmTypes::RegisterTypeAlias(TypeOf<TStringList*>(), {u"Lines of text", u"string"});
  EXPECT_EQ(TZmTypes::Of<TStringList*>(), TZmTypes::GetTypeInfo(u"lines OF text", tntName, false));
  EXPECT_EQ(TZmTypes::Of<String>(), TZmTypes::GetTypeInfo(u"string", tntName, false));
}

TEST(TypesTest, KeepsSerializersOfTypes) {
  const int pairs[5] = {};
  const auto format = dsfText;  // none of the library's own
  const TZmTypeInfo* list = TZmTypes::Of<TStringList*>();
  EXPECT_EQ(nullptr, TZmTypes::FindSerializers(list, format));
  TZmTypes::RegisterTypeSerializers(nullptr, format, &pairs[0]);
  EXPECT_EQ(&pairs[0], TZmTypes::FindSerializers(list, format));
  EXPECT_EQ(&pairs[0], TZmTypes::FindSerializers(nullptr, format));
  TZmTypes::RegisterTypeSerializers(TypeOf<TStrings*>(), format, &pairs[1], true);
  TZmTypes::RegisterTypeSerializers(TypeOf<TStrings*>(), format, &pairs[2], true);
  EXPECT_EQ(&pairs[1], TZmTypes::FindSerializers(list, format));
  TZmTypes::RegisterTypeSerializers(TypeOf<TStrings*>(), format, &pairs[3]);
  for (int i : {0, 1, 2}) {
    const int order[] = {3, 1, 2};
    EXPECT_EQ(&pairs[order[i]], TZmTypes::FindSerializers(list, format, static_cast<std::size_t>(i)));
  }
  EXPECT_EQ(nullptr, TZmTypes::FindSerializers(list, format, 3));
  EXPECT_EQ(&pairs[0], TZmTypes::FindSerializers(TZmTypes::Of<int>(), format));
  EXPECT_EQ(nullptr, TZmTypes::FindSerializers(list, dsfCSV));
}

TEST(TypesTest, RelatesVariantsToTypes) {
  struct TCase {
    Variant Value;
    const TRttiType* Type;
    TZmMainTypeKind Kind;
  };
  const TCase cases[] = {
      {Variant(), nullptr, mtkNone},
      {Null(), nullptr, mtkNone},
      {std::int8_t{1}, TypeOf<std::int8_t>(), mtkInteger},
      {std::uint64_t{1}, TypeOf<std::uint64_t>(), mtkInteger},
      {1.5f, TypeOf<float>(), mtkFloat},
      {Currency(1), TypeOf<Currency>(), mtkFloat},
      {TDateTime(1), TypeOf<TDateTime>(), mtkDateTime},
      {true, TypeOf<bool>(), mtkBoolean},
      {u"x", TypeOf<String>(), mtkString},
      {VarArrayOf({1, 2}), TypeOf<Variant>(), mtkArray},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(VarType(c.Value));
    EXPECT_EQ(TZmTypes::GetTypeInfo(c.Type), TZmTypes::VarTypeInfo(c.Value));
    EXPECT_EQ(c.Kind, TZmTypes::VarMainTypeKind(c.Value));
  }
  EXPECT_EQ(varByte, TZmTypes::GetVarType(u"Byte", tntName, 0));
  EXPECT_EQ(varArray | varInteger, TZmTypes::GetVarType(u"ArrayOfInt", tntSchemaName, 0));
  EXPECT_EQ(77, TZmTypes::GetVarType(u"TPlace", tntName, 77));
  EXPECT_EQ(77, TZmTypes::GetVarType(u"nothing", tntName, 77));
}

TEST(TypesTest, LooksAtValuesAsWalksDo) {
  struct TCase {
    TValue Value;
    std::int8_t Small;  // 77: the default
    double Real;
    bool Truth;
    const char16_t* Text;
  };
  const TCase cases[] = {
      {TValue(), 77, 77, true, u"?"},
      {TValue::From(-5), -5, -5, true, u"-5"},
      {TValue::From(0), 0, 0, false, u"0"},
      {TValue::From(~std::uint64_t{0}), 77, 18446744073709551615.0, true, u"18446744073709551615"},
      {TValue::From(2.5), 2, 2.5, true, u"2.5"},
      {TValue::From(1e9), 77, 1e9, true, u"1000000000"},
      {TValue::From(u"12"), 12, 12, true, u"12"},
      {TValue::From(u"1.5"), 2, 1.5, true, u"1.5"},
      {TValue::From(u"false"), 77, 77, false, u"false"},
      {TValue::From(u"x"), 77, 77, true, u"x"},
      {TValue::From(TSuit::suHearts), -2, -2, true, u"suHearts"},
      {TValue::From(Variant(u"7")), 7, 7, true, u"7"},
      {TValue::From(Null()), 77, 77, true, u"?"},
      {TValue::From(TPlace()), 77, 77, true, u"?"},
      {TValue::From(static_cast<TPlain*>(nullptr)), 77, 77, true, u"?"},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(ToUTF8(c.Value.ToString()));
    const TValueClassHelper value(c.Value);
    EXPECT_EQ(c.Small, value.ToShortInt(true, 77));
    EXPECT_EQ(c.Real, value.ToDouble(true, 77));
    EXPECT_EQ(c.Truth, value.ToBoolean(true, true));
    EXPECT_EQ(c.Text, value.ToWideString(false, u"?"));
  }
  const TValue text = TValue::From(u"12");
  EXPECT_EQ(3, TValueClassHelper(text).ToInteger(false, 3));
  EXPECT_EQ(u"12", TValueClassHelper(text).ToWideString(true, u"?"));
  const TValue nil = TValue::From(static_cast<TPlain*>(nullptr));
  EXPECT_TRUE(TValueClassHelper(nil).IsNull());
  EXPECT_EQ(rtkClass, TValueClassHelper(nil).TypeKind());
  const TValue variant = TValue::From(Variant(4));
  EXPECT_EQ(mtkInteger, TValueClassHelper(variant).MainTypeKind());

  TValue result;
  EXPECT_TRUE(TValueClassHelper(text).ToType(TypeOf<std::uint8_t>(), result));
  EXPECT_EQ(12, result.AsInt64());
  const TValue name = TValue::From(u"suclubs");
  EXPECT_TRUE(TValueClassHelper(name).ToType(TypeOf<TSuit>(), result));
  EXPECT_EQ(TSuit::suClubs, result.AsType<TSuit>());
  const TValue large = TValue::From(300);
  EXPECT_FALSE(TValueClassHelper(large).ToType(TypeOf<std::uint8_t>(), result));
  EXPECT_FALSE(TValueClassHelper(text).ToType(TypeOf<TPlace>(), result));
  const TValue huge = TValue::From(u"1e300");
  EXPECT_FALSE(TValueClassHelper(huge).ToType(TypeOf<float>(), result));
  EXPECT_EQ(TSuit::suClubs, result.AsType<TSuit>());
}

}  // namespace
