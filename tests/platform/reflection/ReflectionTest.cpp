#include "zamrit/platform/reflection/Reflection.h"

#include <gtest/gtest.h>

#include <span>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/Described.h"
#include "tests/support/Elsewhere.h"
#include "tests/support/Raised.h"
#include "zamrit/platform/Lists.h"

namespace {

using namespace zm;
using namespace described;

const TRttiType* Everything() { return TypeOf<TEverything*>(); }

struct TKindCase {
  const char16_t* Member;
  const char16_t* Type;
  TTypeKind Kind;
  TZmTypeKind ZmKind;
  const char16_t* Text;  // of the value that the class begins with
};

constexpr TKindCase cKinds[] = {
    {u"Id", u"Integer", tkInteger, rtkInteger, u"0"},
    {u"FSecret", u"string", tkUString, rtkString, u"hidden"},
    {u"I8", u"ShortInt", tkInteger, rtkShortInt, u"-8"},
    {u"U8", u"Byte", tkInteger, rtkByte, u"8"},
    {u"I16", u"SmallInt", tkInteger, rtkSmallInt, u"-16"},
    {u"U16", u"Word", tkInteger, rtkWord, u"16"},
    {u"I32", u"Integer", tkInteger, rtkInteger, u"-32"},
    {u"U32", u"Cardinal", tkInteger, rtkLongWord, u"32"},
    {u"I64", u"Int64", tkInt64, rtkInt64, u"-64"},
    {u"U64", u"UInt64", tkInt64, rtkUInt64, u"18446744073709551615"},
    {u"Wide", u"Int64", tkInt64, rtkInt64, u"7"},
    {u"F32", u"Single", tkFloat, rtkSingle, u"1.5"},
    {u"F64", u"Double", tkFloat, rtkDouble, u"2.25"},
    {u"F80", u"Extended", tkFloat, rtkExtended, u"3.125"},
    {u"Money", u"Currency", tkFloat, rtkExtended, u"12.5"},
    {u"Flag", u"Boolean", tkEnumeration, rtkBoolean, u"True"},
    {u"Letter", u"AnsiChar", tkChar, rtkChar, u"x"},
    {u"Sign", u"Char", tkWChar, rtkWideChar, u"\u00e9"},
    {u"Text", u"string", tkUString, rtkString, u"text"},
    {u"Narrow", u"UTF8String", tkLString, rtkAnsiString, u"\u00e9"},
    {u"Markup", u"ZmXMLString", tkUString, rtkString, u"<a/>"},
    {u"Json", u"ZmJSONString", tkUString, rtkString, u"{}"},
    {u"Suit", u"TSuit", tkEnumeration, rtkEnumeration, u"suSpades"},
    {u"Days", u"TDays", tkSet, rtkSet, u"[dayMonday,dayWednesday]"},
    {u"Date", u"TDate", tkFloat, rtkDate, nullptr},
    {u"Time", u"TTime", tkFloat, rtkTime, nullptr},
    {u"Moment", u"TDateTime", tkFloat, rtkDateTime, nullptr},
    {u"Any", u"Variant", tkVariant, rtkVariant, u"4"},
    {u"Value", u"TValue", tkRecord, rtkRecord, u"(TValue)"},
    {u"Three", u"array[0..2] of Integer", tkArray, rtkArray, u"(array)"},
    {u"Words", u"TArray<string>", tkDynArray, rtkDynArray, u"(array)"},
    {u"Bits", u"TArray<Boolean>", tkDynArray, rtkDynArray, u"(array)"},
    {u"Table", u"TArray<TArray<Integer>>", tkDynArray, rtkDynArray, u"(array)"},
    {u"Places", u"TArray<TPlace>", tkDynArray, rtkDynArray, u"(array)"},
    {u"Place", u"TPlace", tkMRecord, rtkRecord, u"(TPlace)"},
    {u"Maybe", u"Double", tkFloat, rtkDouble, u"(empty)"},
    {u"Next", u"TEverything", tkClass, rtkClass, u"(nil)"},
    {u"OwnPlace", u"TPlace", tkClass, rtkClass, u"(nil)"},
    {u"Own", u"TPlain", tkClass, rtkClass, u"(nil)"},
    {u"Shared", u"TPart", tkClass, rtkClass, u"(nil)"},
    {u"Inner", u"TPlain", tkClass, rtkClass, u"(TPlain)"},
    {u"OnChange", nullptr, tkMethod, rtkMethod, nullptr},
    {u"Pointer", u"Pointer", tkPointer, rtkPointer, u"(Pointer)"},
    {u"Class", u"TClass", tkClassRef, rtkClassRef, u"(TClass)"},
    {u"Fixed", u"Integer", tkInteger, rtkInteger, u"9"},
};

TEST(ReflectionTest, DescribesMembersOfEveryKindThoseOfTheAncestorsFirst) {
  const auto object = Create<TEverything>();
  const auto fields = Everything()->GetFields();
  ASSERT_EQ(std::size(cKinds), fields.size());
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const TKindCase& expected = cKinds[i];
    const TRttiField& field = *fields[i];
    SCOPED_TRACE(ToUTF8(field.GetName()));
    EXPECT_EQ(String(expected.Member), field.GetName());
    const StringView type = field.GetFieldType()->GetName();
    EXPECT_EQ(expected.Type ? expected.Type : type, type);
    EXPECT_EQ(expected.Kind, field.GetFieldType()->GetTypeKind());
    EXPECT_EQ(expected.ZmKind, TZmTypes::GetTypeInfo(field.GetFieldType())->TypeKind);
    const String text = field.GetValue(object.get()).ToString();
    EXPECT_EQ(expected.Text ? expected.Text : text, text);
  }
  EXPECT_EQ(mvProtected, Everything()->GetField(u"onchange")->GetVisibility());
  EXPECT_EQ(nullptr, Everything()->GetField(u"None"));
}

// What is read from one object and written to another comes out the same; what is shared, owned or fixed is refused or
// taken over, each in its way.
TEST(ReflectionTest, CopiesMembersFromObjectToObject) {
  const auto from = Create<TEverything>();
  const auto to = Create<TEverything>();
  from->I8 = -128, from->U64 = 1, from->F80 = 1e30L, from->Flag = false, from->Letter = 'q', from->Narrow = "n";
  from->Text = u"a text that is too long to be kept in place";
  from->Suit = TSuit::suHearts, from->Days = {dayTuesday}, from->Date = 1, from->Any = u"v", from->Maybe = 7.5;
  from->Three = {4, 5, 6}, from->Words = {u"w"}, from->Bits = {false, false, true}, from->Table = {{}, {9}};
  from->Place = {"Side", std::nullopt}, from->Next = to.get(), from->Class = TPlain::StaticClass();
  from->Places.push_back(std::make_unique<TPlace>());
  for (const TRttiField* field : Everything()->GetFields()) {
    const TValue value = field->GetValue(from.get());
    if (field->GetName() == u"Fixed")
      EXPECT_EQ("The property \"Fixed\" cannot be written!",
                Raised<EPropertyError>([&] { field->SetValue(to.get(), value); }));
    else if (field->GetName() == u"Inner" || field->GetName() == u"Places")
      EXPECT_THROW(field->SetValue(to.get(), value), EInvalidCast) << ToUTF8(field->GetName());
    else
      field->SetValue(to.get(), value);
  }
  EXPECT_EQ(from->I8, to->I8);
  EXPECT_EQ(from->U64, to->U64);
  EXPECT_EQ(from->F80, to->F80);
  EXPECT_FALSE(to->Flag);
  EXPECT_EQ('q', to->Letter);
  EXPECT_EQ("n", to->Narrow);
  EXPECT_EQ(from->Text, to->Text);
  EXPECT_EQ(TSuit::suHearts, to->Suit);
  EXPECT_EQ(from->Days, to->Days);
  EXPECT_EQ(1.0, to->Date);
  EXPECT_EQ(from->Any, to->Any);
  EXPECT_EQ(from->Three, to->Three);
  EXPECT_EQ(from->Words, to->Words);
  EXPECT_EQ(from->Bits, to->Bits);
  EXPECT_EQ(from->Table, to->Table);
  EXPECT_EQ("Side", to->Place.Street);
  EXPECT_EQ(std::nullopt, to->Place.Number);
  EXPECT_EQ(7.5, to->Maybe);
  EXPECT_EQ(to.get(), to->Next);
  EXPECT_EQ(TPlain::StaticClass(), to->Class);
}

TEST(ReflectionTest, ConvertsWhatIsWritten) {
  const auto object = Create<TEverything>();
  struct TCase {
    const char16_t* Member;
    TValue Value;
    const char16_t* Text;  // afterwards; nil: the value is refused
  };
  const TCase cases[] = {
      {u"I8", TValue::From(127), u"127"},
      {u"U64", TValue::From(std::int8_t{5}), u"5"},
      {u"I64", TValue::From(std::uint32_t{4294967295u}), u"4294967295"},
      {u"F64", TValue::From(std::uint64_t{1} << 63), u"9.22337203685478E18"},
      {u"F32", TValue::From(0.5), u"0.5"},
      {u"F64", TValue::From(Variant(3)), u"3"},
      {u"I32", TValue::From(1.0), u"1"},
      {u"I32", TValue::From(u"1"), nullptr},
      {u"I32", TValue::From(true), nullptr},
      {u"I32", TValue(), nullptr},
      {u"Flag", TValue::From(1), nullptr},
      {u"Suit", TValue::From(5), nullptr},
      {u"Narrow", TValue::From(u"\u00fc"), u"\u00fc"},
      {u"Text", TValue::From(std::string("s")), u"s"},
      {u"Text", TValue::From(u'c'), u"c"},
      {u"Sign", TValue::From(u"z"), u"z"},
      {u"Sign", TValue::From(u"zz"), nullptr},
      {u"Letter", TValue::From(u"\u00e9"), nullptr},
      {u"Any", TValue::From(std::uint8_t{200}), u"200"},
      {u"Any", TValue(), u""},
      {u"Any", TValue::From(TPlace()), nullptr},
      {u"Value", TValue::From(4), u"(TValue)"},
      {u"Maybe", TValue::From(2), u"2"},
      {u"Maybe", TValue(), u"(empty)"},
      {u"Next", TValue(), u"(nil)"},
      {u"Next", TValue::From(static_cast<TPlain*>(nullptr)), u"(nil)"},
      {u"Next", TValue::From(&object->Inner), nullptr},
      {u"Words", TValue::From(std::vector<std::string>{"x", "y"}), u"(array)"},
      {u"Words", TValue::From(std::vector<int>{1}), nullptr},
      {u"Three", TValue::From(std::vector<int>{1, 2}), nullptr},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(ToUTF8(c.Member) + " <- " + ToUTF8(c.Value.ToString()));
    const TRttiField* field = Everything()->GetField(c.Member);
    const String before = field->GetValue(object.get()).ToString();
    if (c.Text) {
      field->SetValue(object.get(), c.Value);
    } else {
      EXPECT_THROW(field->SetValue(object.get(), c.Value), EInvalidCast);
    }
    EXPECT_EQ(c.Text ? String(c.Text) : before, field->GetValue(object.get()).ToString());
  }
  EXPECT_EQ((std::vector<String>{u"x", u"y"}), object->Words);
  Everything()->GetField(u"Value")->SetValue(object.get(), TValue::From(5));
  Everything()->GetField(u"Any")->SetValue(object.get(), Everything()->GetField(u"Value")->GetValue(object.get()));
  EXPECT_EQ(Variant(5), object->Any);
  object->Maybe = 1;
  Everything()->GetField(u"Maybe")->SetValue(object.get(), TValue::From(Null()));
  EXPECT_EQ(std::nullopt, object->Maybe);
  EXPECT_EQ("The value does not fit the type \"ShortInt\"!",
            Raised<ERangeError>([&] { Everything()->GetField(u"I8")->SetValue(object.get(), TValue::From(128)); }));
  EXPECT_THROW(Everything()->GetField(u"U32")->SetValue(object.get(), TValue::From(-1)), ERangeError);
  EXPECT_THROW(Everything()->GetField(u"I64")->SetValue(object.get(), TValue::From(~std::uint64_t{0})), ERangeError);
  EXPECT_THROW(Everything()->GetField(u"F32")->SetValue(object.get(), TValue::From(1e300)), ERangeError);
  EXPECT_THROW(Everything()->GetField(u"I32")->SetValue(object.get(), TValue::From(2.5)), ERangeError);
  EXPECT_THROW(Everything()->GetField(u"I32")->SetValue(object.get(), TValue::From(3e9)), ERangeError);
  EXPECT_EQ("A value of type \"string\" cannot be stored in \"I32\" of type \"Integer\"!",
            Raised<EInvalidCast>([&] { Everything()->GetField(u"I32")->SetValue(object.get(), TValue::From(u"1")); }));
}

struct THundred {
  int M00 = 0, M01 = 1, M02 = 2, M03 = 3, M04 = 4, M05 = 5, M06 = 6, M07 = 7, M08 = 8, M09 = 9, M10 = 10, M11 = 11,
      M12 = 12, M13 = 13, M14 = 14, M15 = 15, M16 = 16, M17 = 17, M18 = 18, M19 = 19, M20 = 20, M21 = 21, M22 = 22,
      M23 = 23, M24 = 24, M25 = 25, M26 = 26, M27 = 27, M28 = 28, M29 = 29, M30 = 30, M31 = 31, M32 = 32, M33 = 33,
      M34 = 34, M35 = 35, M36 = 36, M37 = 37, M38 = 38, M39 = 39, M40 = 40, M41 = 41, M42 = 42, M43 = 43, M44 = 44,
      M45 = 45, M46 = 46, M47 = 47, M48 = 48, M49 = 49, M50 = 50, M51 = 51, M52 = 52, M53 = 53, M54 = 54, M55 = 55,
      M56 = 56, M57 = 57, M58 = 58, M59 = 59, M60 = 60, M61 = 61, M62 = 62, M63 = 63, M64 = 64, M65 = 65, M66 = 66,
      M67 = 67, M68 = 68, M69 = 69, M70 = 70, M71 = 71, M72 = 72, M73 = 73, M74 = 74, M75 = 75, M76 = 76, M77 = 77,
      M78 = 78, M79 = 79, M80 = 80, M81 = 81, M82 = 82, M83 = 83, M84 = 84, M85 = 85, M86 = 86, M87 = 87, M88 = 88,
      M89 = 89, M90 = 90, M91 = 91, M92 = 92, M93 = 93, M94 = 94, M95 = 95, M96 = 96, M97 = 97, M98 = 98, M99 = 99;
};
ZM_CLASS(THundred, (),
         (M00, M01, M02, M03, M04, M05, M06, M07, M08, M09, M10, M11, M12, M13, M14, M15, M16, M17, M18, M19, M20, M21,
          M22, M23, M24, M25, M26, M27, M28, M29, M30, M31, M32, M33, M34, M35, M36, M37, M38, M39, M40, M41, M42, M43,
          M44, M45, M46, M47, M48, M49, M50, M51, M52, M53, M54, M55, M56, M57, M58, M59, M60, M61, M62, M63, M64, M65,
          M66, M67, M68, M69, M70, M71, M72, M73, M74, M75, M76, M77, M78, M79, M80, M81, M82, M83, M84, M85, M86, M87,
          M88, M89, M90, M91, M92, M93, M94, M95, M96, M97, M98, M99))

TEST(ReflectionTest, TakesAHundredMembers) {
  THundred hundred;
  ASSERT_EQ(100u, TypeOf<THundred>()->GetFields().size());
  EXPECT_EQ(99, TypeOf<THundred>()->GetField(u"m99")->GetValue(&hundred).AsInt64());
}

TEST(ReflectionTest, ViewsReferToTheMember) {
  const auto object = Create<TEverything>();
  TValue words = Everything()->GetField(u"Words")->GetView(object.get());
  words.SetArrayLength(3);
  words.SetArrayElement(2, TValue::From(u"c"));
  EXPECT_EQ((std::vector<String>{u"a", u"b", u"c"}), object->Words);
  TValue bits = Everything()->GetField(u"Bits")->GetView(object.get());
  bits.SetArrayElement(1, TValue::From(true));
  EXPECT_EQ((std::vector<bool>{true, true}), object->Bits);
  EXPECT_THROW(bits.SetArrayElement(0, TValue::From(1)), EInvalidCast);
  EXPECT_EQ("List index out of bounds (2)", Raised<EListError>([&] { bits.GetArrayElement(2); }));

  const TValue place = Everything()->GetField(u"Place")->GetView(object.get());
  TypeOf<TPlace>()->GetField(u"Street")->SetValue(place.GetInstance(), TValue::From(u"Other"));
  EXPECT_EQ("Other", object->Place.Street);
  const TValue title = Everything()->GetProperty(u"Title")->GetView(object.get());
  EXPECT_EQ(&object->Text, title.GetReferenceToRawData());

  TValue places = Everything()->GetField(u"Places")->GetValue(object.get());
  places.SetArrayLength(1);
  places.SetArrayElement(0, TValue::From(new TPlace{"Owned", 1}));
  EXPECT_EQ("Owned", object->Places.at(0)->Street);
}

TEST(ReflectionTest, OwningPointersTakeObjectsOver) {
  const auto object = Create<TEverything>();
  const TRttiField* own = Everything()->GetField(u"Own");
  const auto* plain = static_cast<const TRttiInstanceType*>(own->GetFieldType());
  own->SetValue(object.get(), TValue::FromObject(plain->CreateObject().release()));
  TPlain* const made = object->Own.get();
  own->SetValue(object.get(), own->GetValue(object.get()));  // itself again: it is not freed
  EXPECT_EQ(made, object->Own.get());
  EXPECT_EQ(u"TPlain", made->ClassName());
  own->SetValue(object.get(), TValue());
  EXPECT_EQ(nullptr, object->Own.get());

  // A struct behind a pointer to its ancestor, whose place in it need not be its own.
  const TRttiField* shared = Everything()->GetField(u"Shared");
  auto* part = new TPart;
  shared->SetValue(object.get(), TValue::From(part));
  EXPECT_EQ(part, object->Shared.get());
  TPlace* place = nullptr;
  ASSERT_TRUE(shared->GetValue(object.get()).TryAsType(place));
  EXPECT_EQ(static_cast<TPlace*>(part), place);
  TPart* back = nullptr;
  EXPECT_FALSE(TValue::From(place).TryAsType(back));
}

TEST(ReflectionTest, ReachesPropertiesAndMethods) {
  const auto object = Create<TEverything>();
  const TRttiType* type = Everything();
  type->GetProperty(u"TOTAL")->SetValue(object.get(), TValue::From(std::int16_t{5}));
  EXPECT_EQ(5, type->GetProperty(u"Total")->GetValue(object.get()).AsInt64());
  EXPECT_EQ(mvPublic, type->GetProperty(u"Total")->GetVisibility());
  EXPECT_EQ(u"text", type->GetProperty(u"View")->GetValue(object.get()).AsString());
  type->GetProperty(u"WriteOnly")->SetValue(object.get(), TValue::From(u"set"));
  EXPECT_EQ(u"set", object->Text);
  EXPECT_EQ("The property \"WriteOnly\" cannot be read!",
            Raised<EPropertyError>([&] { type->GetProperty(u"WriteOnly")->GetValue(object.get()); }));
  EXPECT_EQ("The property \"Title\" cannot be written!",
            Raised<EPropertyError>([&] { type->GetProperty(u"Title")->SetValue(object.get(), TValue::From(u"t")); }));

  const TRttiIndexedProperty* items = type->GetIndexedProperty(u"Items");
  items->SetValue(object.get(), TValue::From(1), TValue::From(u"second"));
  EXPECT_EQ(u"second", items->GetValue(object.get(), TValue::From(1)).AsString());
  EXPECT_THROW(items->GetValue(object.get(), TValue::From(u"1")), EInvalidCast);

  const TRttiMethod* add = type->GetMethod(u"add");
  EXPECT_EQ(12, add->Invoke(object.get(), {TValue::From(3), TValue::From(4)}).AsInt64());
  EXPECT_EQ(u"Right", add->GetParameters()[1].Name);
  EXPECT_EQ(TypeOf<std::int64_t>(), add->GetParameters()[1].ParamType());
  EXPECT_EQ("The method \"Add\" takes 2 arguments, not 1!",
            Raised<EInvalidCast>([&] { add->Invoke(object.get(), {TValue::From(3)}); }));
  EXPECT_TRUE(type->GetMethod(u"Clear")->Invoke(object.get()).IsEmpty());
  EXPECT_TRUE(object->Words.empty());
  const auto* event = static_cast<const TRttiInvokableType*>(type->GetField(u"OnChange")->GetFieldType());
  EXPECT_EQ(TypeOf<String>(), event->GetParameters().at(1).ParamType());
}

TEST(ReflectionTest, FindsClassesOfObjects) {
  const auto object = Create<TEverything>();
  TObject* const base = object.get();
  EXPECT_EQ(Everything(), TypeOfObject(base));
  EXPECT_EQ(u"TEverything", base->ClassName());
  EXPECT_TRUE(base->ClassType()->InheritsFrom(TPersistent::StaticClass()));
  EXPECT_EQ(u"TAncestor", base->ClassType()->Parent->Name);
  EXPECT_EQ(TypeOf<TAncestor*>(), TValue::FromObject(base).GetTypeInfo() == Everything()
                                      ? static_cast<const TRttiInstanceType*>(Everything())->GetBaseType()
                                      : nullptr);
  EXPECT_EQ(ClassInfo(base->ClassType()), Everything());
  EXPECT_EQ(nullptr, TypeOfObject(nullptr));
  EXPECT_EQ(nullptr, GetClass(u"TEverything"));
  RegisterClass(base->ClassType());
  EXPECT_EQ(base->ClassType(), GetClass(u"teverything"));

  class TStranger : public TAncestor {};
  const auto stranger = Create<TStranger>();  // not described: known as what it descends from
  EXPECT_EQ(u"TAncestor", stranger->ClassName());
  EXPECT_EQ(TypeOf<TAncestor*>(), TypeOfObject(stranger.get()));
  EXPECT_FALSE(static_cast<const TRttiInstanceType*>(TypeOf<TStrings*>())->CanCreate());
  EXPECT_EQ("Failed to create an instance of TStrings!", Raised<ENotSupportedException>([] {
              static_cast<const TRttiInstanceType*>(TypeOf<TStrings*>())->CreateInstance();
            }));
}

TEST(ReflectionTest, NamesEnumerationsAndSets) {
  const auto& suit = *static_cast<const TRttiEnumerationType*>(TypeOf<TSuit>());
  EXPECT_EQ(u"suHearts", suit.GetEnumName(-2));
  EXPECT_EQ(u"0", suit.GetEnumName(0));
  std::int64_t value = 0;
  EXPECT_TRUE(suit.GetEnumValue(u"SUCLUBS", value));
  EXPECT_EQ(6, value);
  EXPECT_FALSE(suit.GetEnumValue(u"clubs", value));
  EXPECT_EQ(shoEnumPrefix, suit.GetAttribute<SerializerHint>()->GetOption());
  EXPECT_EQ(TSuit::suClubs, TValue::FromOrdinal(&suit, 6).AsType<TSuit>());

  const auto& days = *static_cast<const TRttiSetType*>(TypeOf<TDays>());
  for (const char16_t* text : {u"[dayMonday, dayWednesday]", u" DAYWEDNESDAY ,daymonday", u"dayMonday,dayWednesday,"})
    EXPECT_EQ(5u, days.StringToSet(text));
  EXPECT_EQ(0u, days.StringToSet(u" [ ] "));
  EXPECT_EQ(u"dayTuesday", days.SetToString(2, false));
  EXPECT_EQ("'dayNone' is not a valid element of the set \"TDays\"",
            Raised<EConvertError>([&] { days.StringToSet(u"dayMonday,dayNone"); }));
}

TEST(ReflectionTest, ValuesOwnWhatTheyHold) {
  const String text = u"a text that is too long to be kept in place";
  TValue value = TValue::From(text);
  TValue copy = value;
  copy = static_cast<const TValue&>(copy);
  const TValue moved = std::move(value);
  EXPECT_TRUE(value.IsEmpty());  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(text, moved.AsString());
  EXPECT_EQ(text, copy.AsString());
  std::array<String, 5> many;
  many.fill(text);
  copy = TValue::From(many);  // too large for its place
  const TValue other = copy;
  many = {};
  copy.ExtractRawData(&many);
  EXPECT_EQ(text, many[4]);
  EXPECT_EQ(text, other.GetArrayElement(0).AsString());
  EXPECT_EQ("The value is no ordinal!", Raised<EInvalidCast>([&] { other.AsOrdinal(); }));
  EXPECT_THROW(other.AsObject(), EInvalidCast);
  EXPECT_THROW(TValue::FromOrdinal(TypeOf<char>(), 256), ERangeError);
  EXPECT_THROW(TValue::FromOrdinal(TypeOf<double>(), 1), EInvalidCast);
}

// The description stands in a static library, and nothing of the type has been used before.
TEST(ReflectionTest, KnowsTypesOfALibraryByName) {
  const TZmTypeInfo* info = TZmTypes::GetTypeInfo(u"elsewhere.TThing", tntQualifiedName, false);
  ASSERT_NE(nullptr, info);
  EXPECT_EQ(elsewhere::ThingType(), info->RttiType);
}

TEST(ReflectionTest, IsFoundByNameFromSeveralThreads) {
  std::vector<std::thread> threads;
  std::vector<const TZmTypeInfo*> found(8);
  for (std::size_t i = 0; i < found.size(); ++i)
    threads.emplace_back([&, i] { found[i] = TZmTypes::GetTypeInfo(u"described.TDays", tntQualifiedName, false); });
  for (std::thread& thread : threads) thread.join();
  for (const TZmTypeInfo* info : found) EXPECT_EQ(TZmTypes::Of<TDays>(), info);
}

}  // namespace
