#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/Raised.h"
#include "zamrit/common/Encoding.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/platform/reflection/Reflection.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/JSONReader.h"
#include "zamrit/xml/uZmJSON.h"

using namespace zm;

namespace {

TZmOwner<TZmJSONDocument> Load(StringView Text) { return TZmJSONDocument::CreateFromJSON(Text); }
std::string Text(TZmJSONBase& Node) { return ToUTF8(Node.GetAsJSON()); }
TZmJSONObject& RootOf(TZmJSONDocument& Document) { return *Document.GetRootValue()->GetAsObject(); }

std::string SavedAs(TZmJSONDocument& Document, std::uint16_t Page, bool Mark = false, bool Format = false) {
  TMemoryStream stream;
  Document.SaveToStream(&stream, Format, Page, Mark);
  return {static_cast<const char*>(stream.GetMemory()), static_cast<std::size_t>(stream.GetSize())};
}

struct TRefusal {
  const char* Message;
  int Code;
};
void ExpectRefused(const std::function<void()>& Call, const TRefusal& Expected) {
  try {
    Call();
    ADD_FAILURE() << "not refused: " << Expected.Message;
  } catch (const EZmJSONException& e) {
    EXPECT_STREQ(e.what(), Expected.Message);
    EXPECT_EQ(e.GetCode(), Expected.Code) << e.what();
  }
}

}  // namespace

TEST(JSONModel, SavesWhatItLoadsInBothForms) {
  const struct {
    StringView Source;
    const char* Saved;
    const char* Formatted;
  } cases[] = {
      {u"{\"a\":1,\"b\":[2,3]}", "{\"a\": 1, \"b\": [2, 3]}", "{ \r\n  \"a\": 1, \"b\": [\r\n    2, 3\r\n  ]\r\n}"},
      {u"[]", "[]", "[\r\n\r\n]"},
      {u"{}", "{}", "{ \r\n\r\n}"},
      {u"[{},[ ]]", "[{}, []]", "[\r\n  { \r\n\r\n  }, [\r\n\r\n  ]\r\n]"},
      {u"[+1,00012,1.2.3,true,false,null]", "[+1, 00012, 1.2.3, true, false, null]",
       "[\r\n  +1, 00012, 1.2.3, true, false, null\r\n]"},
      {u"[\"a\\/b\\u0041\\n\\u0001\\u00e9\\u0100\\ud83d\\ude00\\ud800\"]",
       "[\"a\\/bA\\n\u00e9\\u0100\\uD83D\\uDE00\\uD800\"]", nullptr},
      {u"{\"n\\\"\\u0041\":1}", "{\"n\\\\\\\"\\\\u0041\": 1}", nullptr},  // names stay raw
      {u"{\"a\":1,\"a\":2,\"\":3}", "{\"a\": 1, \"a\": 2, \"\": 3}", nullptr},
      {u"{}[1][2]", "[2]", nullptr},
      {u"[\"\u00e9\u4e2d\U0001F600 0123456789 0123456789 \u00ff\u0100/\"]",
       "[\"\u00e9\\u4E2D\\uD83D\\uDE00 0123456789 0123456789 \u00ff\\u0100\\/\"]", nullptr},
  };
  for (const auto& c : cases) {
    const auto document = Load(c.Source);
    EXPECT_EQ(Text(*document), c.Saved);
    EXPECT_EQ(SavedAs(*document, cZmPageUTF8), c.Saved);
    if (c.Formatted) {
      EXPECT_EQ(ToUTF8(document->GetFormattedJSON()), c.Formatted);
      EXPECT_EQ(SavedAs(*document, cZmPageUTF8, true, true), "\xEF\xBB\xBF" + std::string(c.Formatted));
    }
    TZmJSONDocument again;  // the same through UTF-8
    TZmStringStream stream(ToUTF8(c.Source), cZmPageUTF8);
    again.LoadFromStream(&stream, cZmPageUTF8, false);
    EXPECT_EQ(Text(again), c.Saved);
  }
  EXPECT_EQ(SavedAs(*Load(u"[1]"), cZmPageUTF16, true), std::string("\xFF\xFE[\0001\0]\0", 8));
  EXPECT_EQ(SavedAs(*Load(u"[\"\u00e9\"]"), 1252, true), "[\"\xE9\"]");
  EXPECT_EQ(ZmFormatJSON(u"[1,2]"), u"[1, 2]");
  EXPECT_EQ(ZmFormatJSON(std::string_view("[1]")), u"[\r\n  1\r\n]");
}

TEST(JSONModel, RepairsIllFormedText) {
  TZmJSONDocument document;
  TZmStringStream stream(std::string("{\"\xC3\":[\"abcdefghijklmnopqrst\xE2\x82\",\"\xFF\\n\"]}"), cZmPageUTF8);
  document.LoadFromStream(&stream, cZmPageUTF8, false);
  EXPECT_EQ(document.Item(0)->GetName(), u"\uFFFD");
  EXPECT_EQ(document.Item(0)->GetAsArray()->Item(0)->GetAsString(), u"abcdefghijklmnopqrst\uFFFD");
  EXPECT_EQ(document.Item(0)->GetAsArray()->Item(1)->GetAsString(), u"\uFFFD\n");
}

TEST(JSONModel, IsEdited) {
  const struct {
    StringView Source;
    void (*Edit)(TZmJSONDocument& Document);
    const char* Saved;
  } cases[] = {
      {u"{\"a\":1}", [](auto& d) { RootOf(d).AddMember("b", Variant(2)); }, "{\"a\": 1, \"b\": 2}"},
      {u"{}", [](auto& d) { RootOf(d).AddMember(u"d", Variant(1.5)); }, "{\"d\": 1.5}"},
      {u"{}", [](auto& d) { RootOf(d).AddMember(u"i", Variant(std::int64_t{1} << 40)); }, "{\"i\": 1099511627776}"},
      {u"{}", [](auto& d) { RootOf(d).AddMember(u"t", Variant(true)); }, "{\"t\": true}"},
      {u"{}", [](auto& d) { RootOf(d).AddMember(u"n", Null()); }, "{\"n\": null}"},
      {u"{}",
       [](auto& d) {
         RootOf(d).AddMember("a", VarArrayOf({1, u"x", true}));
       },
       "{\"a\": [1, \"x\", true]}"},
      {u"{}", [](auto& d) { RootOf(d).AddMember("n", jdtNumber, "1e5"); }, "{\"n\": 1e5}"},
      {u"{}", [](auto& d) { RootOf(d).AddMember("n", jdtString); }, "{\"n\": null}"},
      {u"{}", [](auto& d) { RootOf(d).AddMember("day", Variant(TDateTime(1.5))); },
       "{\"day\": \"1899-12-31T12:00:00.000\"}"},
      {u"{}", [](auto& d) { RootOf(d).GetMemberEx1("m")->SetAsString("x/y"); }, "{\"m\": \"x\\/y\"}"},
      {u"{\"m\":\"old\"}", [](auto& d) { RootOf(d).GetMemberEx1("m")->SetAsInteger(-7); }, "{\"m\": -7}"},
      {u"{\"m\":1}", [](auto& d) { RootOf(d).FindMember("m")->CreateValue(jdtArray)->AddValue(Variant(1)); },
       "{\"m\": [1]}"},
      {u"{\"a\":1,\"b\":2,\"c\":3}", [](auto& d) { RootOf(d).DeleteMember(1); }, "{\"a\": 1, \"c\": 3}"},
      {u"{\"a\":1,\"b\":2}", [](auto& d) { RootOf(d).RemoveMember(d.FindMember("a")); }, "{\"b\": 2}"},
      {u"{\"a\":1}", [](auto& d) { d.FindMember("a")->SetName("\u00e9\""); }, "{\"\u00e9\\\"\": 1}"},
      {u"[1,2,3]", [](auto& d) { d.GetRootValue()->GetAsArray()->Exchange(0, 2); }, "[3, 2, 1]"},
      {u"[1,2,3,4]",
       [](auto& d) {
         TZmJSONArray& array = *d.GetRootValue()->GetAsArray();
         array.Exchange(1, 2);
         array.DeleteValue(0);
         array.DeleteValue(2);
         array.AddValue(jdtNumber, u"5");
       },
       "[3, 2, 5]"},
      {u"[]",
       [](auto& d) {
         for (const TZmJSONDataType type : {jdtNull, jdtString, jdtNumber, jdtBoolean, jdtObject, jdtArray})
           d.GetRootValue()->AddValue(type);
       },
       "[null, \"\", null, false, {}, []]"},
      {u"[[1]]", [](auto& d) { d.GetRootValue()->SetAsJSON(u"{\"x\":2}"); }, "[[1], {\"x\": 2}]"},
      {u"{\"a\":1,\"b\":2}", [](auto& d) { RootOf(d).SetAsJSON(u"{\"x\":1}"); }, "{\"a\": 1, \"b\": {\"x\": 1}}"},
      {u"{\"a\":[1]}",
       [](auto& d) {
         RootOf(d).RemoveMember(nullptr);
         RootOf(d).RemoveMemberIntf({});
         d.FindMember("a")->GetAsArray()->RemoveValue(nullptr);
         d.FindMember("a")->GetAsArray()->RemoveValueIntf({});
       },
       "{\"a\": [1]}"},
      {u"{\"a\":{}}", [](auto& d) { d.FindMember("a")->GetValueObj()->FreeObject(); }, "{\"a\": null}"},
      {u"[1]", [](auto& d) { d.CreateRootValue(jdtObject); }, "{}"},
      {u"[1]", [](auto& d) { d.SetAsJSON(u""); }, ""},
  };
  for (const auto& c : cases) {
    const auto document = Load(c.Source);
    c.Edit(*document);
    EXPECT_EQ(Text(*document), c.Saved);
  }
}

TEST(JSONModel, ReadsValuesAsTypes) {
  const auto document = Load(u"{\"n\":12,\"t\":\"12.5\",\"b\":true,\"z\":null,\"o\":{},\"x\":\"no\"}");
  const auto at = [&](const char* Name) { return document->FindMember(Name); };
  EXPECT_EQ(at("n")->GetAsInteger(), 12);
  EXPECT_EQ(at("n")->GetAsVariant(), Variant(u"12"));
  EXPECT_EQ(at("n")->GetValueObj()->GetJSONType(), jdtNumber);
  EXPECT_EQ(at("t")->GetAsDouble(), 12.5);
  EXPECT_TRUE(at("b")->GetAsBoolean());
  EXPECT_EQ(at("z")->GetAsString(), u"null");
  at("z")->SetAsVariant(Null());
  EXPECT_EQ(at("z")->GetAsString(), u"");
  EXPECT_EQ(at("x")->GetAsLargeInt(), 0);
  EXPECT_EQ(at("n")->GetJSONType(), jdtNull);
  EXPECT_EQ(document->GetRootValue()->GetName(), u"<object>");
  EXPECT_EQ(document->FindMember("N"), nullptr);
  EXPECT_NE(document->FindMember(u"N", true), nullptr);
  RootOf(*document).GetMemberEx1(u"a")->GetAsObject()->GetMemberEx1(u"b")->GetAsObject()->GetMemberEx1(u"c");
  EXPECT_EQ(document->FindMember("a")->GetAsObject()->GetPath(), u"#/a");
  EXPECT_EQ(document->FindMember("a")->GetAsObject()->FindMember("b")->GetAsObject()->GetPath(), u"#/a/b");
  EXPECT_EQ(RootOf(*document).GetPath(), u"#/");
  int members = 0;
  for (TZmJSONMember* const member : RootOf(*document)) members += member->GetName().size() == 1;
  EXPECT_EQ(members, 7);
}

TEST(JSONModel, RefusesWhatANodeDoesNotOffer) {
  const auto document = Load(u"{\"o\":{},\"s\":1,\"l\":[]}");
  TZmJSONBase& base = *document;
  TZmJSONObject& root = RootOf(*document);
  TZmJSONMember& object = *root.FindMember("o");
  TZmJSONBase& simple = *root.FindMember("s")->GetValueObj();
  TZmJSONBase& list = *root.FindMember("l")->GetValueObj();
  const TRefusal no{nullptr, 9};
  const auto refuses = [&](const char* Message, const std::function<void()>& Call) {
    ExpectRefused(Call, {Message, no.Code});
  };
  refuses("Instances of TZmJSONSimpleType do not support the Count method!", [&] { simple.Count(); });
  refuses("Instances of TZmJSONDocument do not support the FindMember method!", [&] { base.FindMember("o"); });
  refuses("Instances of TZmJSONDocument do not support the Item method!", [&] { base.Item(0); });
  refuses("Instances of TZmJSONArray do not support the Member method!", [&] { list.GetMember("x", {jsoRaise}); });
  refuses("Instances of TZmJSONObject do not support the GetAsString method!", [&] { root.GetAsString(); });
  refuses("Instances of TZmJSONMember do not support the GetAsString method!", [&] { object.GetAsString(); });
  refuses("Instances of TZmJSONMember do not support the SetAsDouble method!", [&] { object.SetAsDouble(1); });
  refuses("Instances of TZmJSONMember do not support the GetAsArray method!", [&] { object.GetAsArray(); });
  refuses("Instances of TZmJSONMember do not support the AddValue method!", [&] { object.AddValue(jdtNull); });
  refuses("Instances of TZmJSONObject do not support the GetValue method!", [&] { root.GetValueObj(); });
  refuses("Instances of TZmJSONMember do not support the SetValue method!", [&] { object.SetValue(&simple); });
  refuses("Instances of TZmJSONSimpleType do not support the GetAsValue method!", [&] { simple.GetAsValue(); });
  refuses("Instances of TZmJSONObject do not support the SetAsValue method!", [&] { root.SetAsValue({}); });
  refuses("Instances of TZmJSONObject do not support the DeleteValue method!", [&] { root.DeleteValue(0); });
  refuses("Instances of TZmJSONArray do not support the AddMember method!", [&] { list.AddMember("x"); });
  for (const std::function<void()>& endless : std::vector<std::function<void()>>{
           [&] { object.DeleteValue(0); }, [&] { object.RemoveValue(&simple); }, [&] { simple.SetAsValue({}); }})
    EXPECT_EQ(Raised<EStackOverflow>(endless), "Stack overflow");
  ExpectRefused([&] { root.GetMember("x", jsoRaise); }, {"There is no member with the name \"x\"!", 5});
  EXPECT_EQ(root.GetMember("x", {}), nullptr);
  EXPECT_NE(root.GetMember("x", {jsoRaise, jsoCreate}), nullptr);
  ExpectRefused([&] { TZmJSONDocument().FindMember("x"); }, {"There is no root value!", 10});
  ExpectRefused(
      [&] {
        list.AddValue(static_cast<TZmJSONDataType>(7));
        list.GetAsJSON();
      },
      {"Unexptected JSON type!", 6});
  EXPECT_THROW(list.AddValue(VarArrayOf({1})), EInvalidCast);
  EXPECT_EQ(list.Count(), 2);
  EXPECT_THROW(list.Item(2), EListError);
  EXPECT_THROW(Create<TZmJSONSimpleType>(&root), EAssertionFailed);
  EXPECT_THROW(Create<TZmJSONArray>()->GetDocument(), EInvalidCast);
  EXPECT_EQ(Raised<EReadError>([] { TZmJSONDocument().LoadFromFile(u"/no/such"); }), "There is no file \"/no/such\"");
}

TEST(JSONModel, KeepsWhatCameBeforeAnError) {
  const struct {
    StringView Source;
    const char* Kept;
  } cases[] = {{u"{\"a\":[1,x", "{\"a\": [1]}"}, {u"[\"ok\",\"\\u00zz\"]", "[\"ok\", \"\"]"}, {u"[1]\n", "[1]"}};
  for (const auto& c : cases) {
    TZmJSONDocument document;
    EXPECT_THROW(document.SetAsJSON(c.Source), Exception);
    EXPECT_EQ(Text(document), c.Kept);
  }
  TZmJSONDocument document;
  document.SetAllowSurroundingSpace(true);
  document.SetAsJSON(u"\n[1]\r\n");
  EXPECT_EQ(Text(document), "[1]");
  ExpectRefused([&] { document.SetAsJSON(u"12"); }, {"oeps?", 0});
}

TEST(JSONModel, HandlesOutliveDeletion) {
  TZmIntf<IZmJSONMember> member;
  TZmIntf<IZmJSONBase> value, replaced, freed;
  TZmIntf<IZmJSONDocument> held;
  {
    const auto document = Load(u"{\"a\":{\"b\":[1,2]},\"c\":{\"d\":3},\"e\":[{\"f\":4}]}");
    TZmJSONObject& root = RootOf(*document);
    member = TZmIntf<IZmJSONMember>(root.FindMember("a"));
    value = root.FindMember("e")->GetValueObj()->GetItem(0);
    replaced = root.FindMember("c")->GetValue();
    root.DeleteMember(0);
    EXPECT_EQ(static_cast<TZmJSONMember*>(member->Implementor())->GetOwner(), nullptr);
    root.FindMember("c")->CreateValue(jdtNull);
    EXPECT_EQ(replaced->GetAsJSON(), u"{\"d\": 3}");
    EXPECT_EQ(Text(*document), "{\"c\": null, \"e\": [{\"f\": 4}]}");
    held = TZmIntf<IZmJSONDocument>(document);
    freed = root.FindMember("e")->GetValue();
    freed->GetItem(0)->SetAsJSON(u"");  // an object is cleared
  }
  EXPECT_EQ(member->GetAsObjectIntf()->GetMemberEx(u"b")->GetAsArrayIntf()->Count(), 2);
  EXPECT_EQ(static_cast<TZmJSONBase*>(replaced->Implementor())->GetOwner(), nullptr);
  EXPECT_EQ(held->GetAsJSON(), u"{\"c\": null, \"e\": [{}]}");
  held = nullptr;
  EXPECT_EQ(freed->Count(), 1);
  freed = nullptr;
  EXPECT_EQ(value->GetAsJSON(), u"{}");
  value->GetMemberEx("new")->SetAsInteger(1);
  EXPECT_EQ(value->GetAsJSON(), u"{\"new\": 1}");
}

namespace {

int Alive = 0;
struct TLiving {
  TLiving() { ++Alive; }
  ~TLiving() { --Alive; }
};

class TMarked : public TZmJSONSimpleType {
  ZM_OBJECT(TMarked, TZmJSONSimpleType)
 public:
  explicit TMarked(TZmJSONBase* Owner) : TZmJSONSimpleType(Owner) {}
  void SaveToStream(TStream* Stream, bool, int, bool) override { Stream->WriteBuffer(u"<>", 4); }
  TLiving Living;
};

class TCounting : public TZmJSONArray {
  ZM_OBJECT(TCounting, TZmJSONArray)
 public:
  using TZmJSONArray::AddValue;
  using TZmJSONArray::TZmJSONArray;
  TZmJSONBase* AddValue(TZmJSONDataType DataType) override {
    ++Added;
    return TZmJSONArray::AddValue(DataType);
  }
  void RemoveObject(TZmJSONBase* Object) override {
    ++Removed;
    TZmJSONArray::RemoveObject(Object);
  }
  int Added = 0, Removed = 0;
  TLiving Living;
};

}  // namespace

TEST(JSONModel, OwnersHoldAndOverridesAreCalled) {
  {
    TZmJSONDocument document;
    TZmJSONBase* const list = document.CreateRootValue(jdtArray);
    const auto mine = Create<TMarked>(list);
    Create<TMarked>(list);  // its maker lets go, the tree keeps it
    Create<TMarked>(list);
    TZmJSONBase* const third = list->Item(2);
    EXPECT_EQ(Alive, 3);
    EXPECT_EQ(Text(document), "[<>, <>, <>]");
    EXPECT_EQ(SavedAs(document, cZmPageUTF8), "[<>, <>, <>]");
    third->Free();
    EXPECT_EQ(Alive, 2);
    list->GetAsArray()->DeleteValue(0);
    EXPECT_EQ(Alive, 2);
    EXPECT_EQ(mine->GetOwner(), nullptr);
    EXPECT_EQ(list->Count(), 1);
  }
  EXPECT_EQ(Alive, 0);
  TZmJSONDocument document;
  const auto counting = Create<TCounting>(&document);
  counting->SetAsJSON(u"[1,[2]]");
  EXPECT_EQ(counting->Added, 1);
  counting->DestroyObjects();
  EXPECT_EQ(counting->Removed, 1);
}

TEST(JSONModel, ListsShowWhatLivesBelowHandles) {
  const auto document = Load(u"{\"orders\":[{\"id\":1},{\"id\":2}],\"x\":[3]}");
  const TZmIntf<IZmJSONBase> kept = document->FindMember(u"orders")->GetValue();
  const auto before = document->CreateNodeList("$.orders[*].id | $.x[*]");
  document->SetAsJSON(u"[]");
  const auto after = kept->SelectIntf(u"@[*].id");
  EXPECT_EQ(after->GetAsJSON(), u"[1, 2]");
  EXPECT_EQ(Text(*before), "[1, 2, null]");
  EXPECT_EQ(before->Item(2), nullptr);
  kept->SetAsJSON(u"");
  EXPECT_EQ(after->GetAsJSON(), u"[null, null]");
  EXPECT_EQ(before->Item(0), nullptr);
}

TEST(JSONModel, FreeStandingArraysOnlyShow) {
  const auto document = Load(u"[1,[2],3]");
  TZmJSONBase* own;
  {
    const auto list = document->CreateNodeList("$[*]");
    own = list->AddValue(Variant(u"own"));
    EXPECT_EQ(Text(*list), "[1, [2], 3, \"own\"]");
    list->InsertObject(document->GetRootValue());
    EXPECT_EQ(list->Count(), 5);
    list->RemoveObject(document->GetRootValue());
    list->DeleteValue(1);  // frees in the tree
    EXPECT_EQ(Text(*document), "[1, 3]");
    EXPECT_EQ(list->Item(1), nullptr);
  }
  EXPECT_EQ(Text(*document), "[1, 3]");
  EXPECT_EQ(own->GetOwner(), nullptr);
  EXPECT_EQ(own->GetAsString(), u"own");
  own->FreeObject();
}

TEST(JSONModel, BuildsFromEventsWithoutBalance) {
  TZmJSONDocument document;
  TZmJSONHandler handler(nullptr, &document);
  EXPECT_EQ(Raised<Exception>([&] { handler.StartMember(u"x"); }), "Invalid objecttype");
  handler.StartObject();
  EXPECT_EQ(Raised<EZmJSONException>([&] { handler.StartArray(); }), "oeps?");  // no member yet
  handler.StartMember(u"a");
  handler.StartArray();
  handler.Value(jdtString, u"\\u0041");
  handler.EndArray();
  handler.StartMember(u"b");
  handler.Value(jdtNumber, u"1");
  handler.EndObject();
  EXPECT_EQ(Text(document), "{\"a\": [\"A\"], \"b\": 1}");
  handler.EndArray();
  EXPECT_EQ(Raised<EZmJSONException>([&] { handler.StartObject(); }), "oeps?");
}

TEST(JSONModel, DepthAndNumberAreData) {
  const std::size_t depth = 1000000;
  for (const std::u16string open : {u"[", u"{\"a\":"}) {
    const std::u16string close = open == u"[" ? u"]" : u"}";
    std::u16string text;
    for (std::size_t i = 0; i < depth; ++i) text += open;
    text += u"1";
    for (std::size_t i = 0; i < depth; ++i) text += close;
    const auto document = Load(text);
    EXPECT_EQ(document->GetAsJSON().size(), text.size() + (open == u"[" ? 0 : depth));
    const auto found = document->CreateNodeList("$..*");
    EXPECT_EQ(found->Count(), static_cast<int>(depth));
    // Objects of all of them, and a handle on the deepest, which then frees them.
    TZmIntf<IZmJSONBase> deepest = found->GetItem(static_cast<int>(depth) - 1);
    for (int i = 0; i < found->Count(); i += 3) found->Item(i);
    document->DestroyObjects();
    EXPECT_EQ(deepest->GetAsInteger(), 1);
  }
  std::u16string many = u"{";
  for (int i = 0; i < 1000000; ++i) many += u"\"a\":1,";
  const auto document = Load(many + u"\"b\":2}");
  EXPECT_EQ(document->CreateNodeList("$.a")->Count(), 1000000);
  TZmJSONObject& root = RootOf(*document);
  EXPECT_EQ(root.FindMember("b")->GetAsInteger(), 2);
  while (root.Count() > 0) root.DeleteMember(root.Count() - 1);
  for (int i = 0; i < 100000; ++i) {  // in the room of those before
    root.AddMember("a", i);
    root.DeleteMember(0);
  }
}

TEST(JSONModel, DepthOfWhatApplicationsBuildIsData) {
  const int depth = 100000;
  {
    TZmJSONDocument document;
    TZmJSONBase* deepest = &document;
    for (int i = 0; i < depth; ++i) {
      Create<TCounting>(deepest);
      deepest = i == 0 ? document.GetRootValue() : deepest->Item(0);
    }
    EXPECT_EQ(Raised<EStackOverflow>([&] { document.GetAsJSON(); }), "Stack overflow");
    EXPECT_EQ(Text(*deepest), "[]");
    auto holder = Create<TCounting>(nullptr);
    for (int i = 0; i < depth; ++i) {
      auto next = Create<TCounting>(nullptr);
      next->InsertObject(holder.get());
      holder = std::move(next);
    }
    EXPECT_EQ(Alive, 2 * depth + 1);
    EXPECT_EQ(Raised<EStackOverflow>([&] { holder->GetAsJSON(); }), "Stack overflow");
  }
  EXPECT_EQ(Alive, 0);
}

TEST(JSONModel, GrowsAndShrinksInLinearTime) {
  const int number = 200000;
  const auto document = Load(u"[[]]");
  TZmJSONArray& lines = *document->GetRootValue()->GetAsArray();
  for (int i = 0; i < number; ++i) lines.SetAsJSON(i % 2 ? u"[1]" : u"{}");
  EXPECT_EQ(lines.Item(number)->GetAsJSON(), u"[1]");
  const auto shown = document->CreateNodeList("$[*]");
  for (int i = 0; i < number; ++i) shown->AddValue(jdtNumber, "7")->Free();
  for (int i = 0; i < number; ++i) shown->AddValue(jdtNumber, "7");
  EXPECT_EQ(shown->Count(), 2 * number + 1);
  EXPECT_EQ(shown->Item(2 * number)->GetAsInteger(), 7);
  for (int i = 0; lines.Count() > 2; ++i) {  // a queue
    lines.DeleteValue(0);
    if (i % 4 == 0) lines.AddValue(jdtNull);
  }
  lines.Exchange(0, 1);
  lines.AddValue(jdtBoolean);
  EXPECT_EQ(Text(*document), "[null, null, false]");
  for (int i = 0; i < number; ++i) shown->DeleteValue(shown->Count() - 1);
  EXPECT_EQ(shown->Count(), number + 1);
}

TEST(JSONModel, FilesAreUTF8WithAMark) {
  const std::filesystem::path file = std::filesystem::temp_directory_path() / "zamrit-json-model-test.json";
  Load(u"[\"\u00e9\"]")->SaveToFile(file.u16string());
  TZmJSONDocument document;
  document.LoadFromFile(file.u16string());
  EXPECT_EQ(Text(document), "[\"\u00e9\"]");
  EXPECT_EQ(std::filesystem::file_size(file), 9u);
  std::filesystem::remove(file);
}
