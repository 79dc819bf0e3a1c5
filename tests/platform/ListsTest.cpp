#include <gtest/gtest.h>

#include <string>

#include "tests/support/Raised.h"
#include "zamrit/platform/Lists.h"

namespace {

// Writes its name into a log when it ends.
struct TMortal : zm::TObject {
  TMortal(char AName, std::string& ALog) : Name(AName), Log(ALog) {}
  ~TMortal() override { Log += Name; }
  char Name;
  std::string& Log;
};

std::string Names(const zm::TObjectList& List) {
  std::string names;
  for (const auto* object : List) names += static_cast<const TMortal*>(object)->Name;
  return names;
}

zm::String Lines(const zm::TStrings& List) {
  zm::String text;
  for (int i = 0; i < List.GetCount(); ++i) text += List.Get(i) + u"|";
  return text;
}

TEST(ObjectList, FreesWhatLeavesIt) {
  std::string log;
  {
    zm::TObjectList list;
    for (const char name : {'a', 'b', 'c', 'd', 'e', 'f'}) list.Add(new TMortal(name, log));
    list.Delete(0);
    EXPECT_EQ(list.Remove(list[1]), 1);
    list.Put(0, list[0]);
    list.Put(0, new TMortal('B', log));
    const zm::TZmOwner<zm::TObject> extracted(list.Extract(list[1]));
    EXPECT_EQ(list.Extract(extracted.get()), nullptr);
    EXPECT_EQ(list.Remove(extracted.get()), -1);
    EXPECT_EQ(Names(list), "Bef");
    EXPECT_EQ(log, "acb");
    list.Add(nullptr);
  }
  EXPECT_EQ(log, "acbdfeB");
}

TEST(StringList, TextIsSplitAtEveryKindOfLineEnd) {
  const struct {
    zm::StringView Text, Lines, Joined;
  } cases[] = {{u"", u"", u""},
               {u"\u00E4\r\nb\nc\rd", u"\u00E4|b|c|d|", u"\u00E4\r\nb\r\nc\r\nd\r\n"},
               {u"a\r\n", u"a|", u"a\r\n"},
               {u"\n\r\r\n", u"|||", u"\r\n\r\n\r\n"}};
  for (const auto& c : cases) {
    zm::TStringList list, copy;
    list.Add(u"gone");
    list.SetText(c.Text);
    EXPECT_EQ(Lines(list), c.Lines);
    EXPECT_EQ(list.GetText(), c.Joined);
    zm::TMemoryStream stream;
    stream.WriteBuffer("xx\xEF\xBB\xBF", 5);
    list.SaveToStream(&stream);
    stream.SetPosition(2);
    copy.LoadFromStream(&stream);
    EXPECT_EQ(Lines(copy), c.Lines);
  }
}

TEST(StringList, SortedOrderAndDuplicates) {
  const struct {
    bool CaseSensitive;
    zm::TDuplicates Duplicates;
    zm::StringView Lines;
  } cases[] = {{false, zm::dupIgnore, u"|a_|B|ba|\u00C4|\u03C3|\U00010428|"},
               {false, zm::dupAccept, u"|a_|B|b|ba|\u00C4|\u00E4|\u03C3|\u03A3|\U00010428|\U00010400|"},
               {true, zm::dupIgnore, u"|B|a_|b|ba|\u00C4|\u00E4|\u03A3|\u03C3|\U00010400|\U00010428|"}};
  for (const auto& c : cases) {
    zm::TStringList one, filled, source;
    for (auto* list : {&one, &filled}) {
      list->SetCaseSensitive(c.CaseSensitive);
      list->SetDuplicates(c.Duplicates);
      list->SetSorted(true);
    }
    source.SetText(u"ba\n\U00010428\nB\n\u00C4\nb\n\u03C3\n\u00E4\n\n\u03A3\na_\n\U00010400");
    for (int i = 0; i < source.GetCount(); ++i) one.Add(source[i]);
    filled.Assign(&source);
    EXPECT_EQ(Lines(filled), c.Lines);
    EXPECT_EQ(Lines(one).size(), c.Lines.size());
    for (int i = 0; i < source.GetCount(); ++i) EXPECT_EQ(one.IndexOf(source[i]), filled.IndexOf(source[i]));
    EXPECT_EQ(one.IndexOf(u"c"), -1);
  }
}

}  // namespace
