#include <gtest/gtest.h>

#include "zamrit/xml/sax/LambdaHandler.h"
#include "zamrit/xml/sax/XMLReader.h"

namespace {

struct NamespaceList : testing::Test {
  void SetUp() override {
    handler.OnStartPrefixMapping = [this](zm::StringView prefix, zm::StringView uri) {
      events += zm::Format(u"+%s=%s ", {prefix, uri});
      EXPECT_EQ(list->GetURI(prefix), uri) << "in force when it is told";
    };
    handler.OnEndPrefixMapping = [this](zm::StringView prefix) {
      events += zm::Format(u"-%s ", {prefix});
      EXPECT_NE(list->GetNamespace(prefix), nullptr) << "told before it goes";
    };
    reader.SetContentHandler(&handler);
  }
  // The events since the last call.
  zm::String Told() { return std::exchange(events, {}); }

  zm::TZmSAXLambdaHandler handler;
  zm::TZmSAXXMLReader reader;
  zm::TZmOwner<zm::TZmSAXNamespaceList> list = zm::Create<zm::TZmSAXNamespaceList>(&reader);
  zm::String events;
};

TEST_F(NamespaceList, InnermostDeclarationIsInForce) {
  list->AddURI(1, u"p", u"one");
  list->AddURI(2, u"P", u"two");
  list->AddURI(2, u"p", u"three");
  EXPECT_EQ(Told(), u"+p=one +P=two +p=three ");
  EXPECT_EQ(list->GetURI(u"p"), u"three");
  ASSERT_NE(list->GetNamespace(u"P"), nullptr);
  EXPECT_EQ(list->GetNamespace(u"P")->Level, 2);
  EXPECT_EQ(list->GetNamespace(u"P")->Prefix, u"p");
  EXPECT_EQ(list->GetNamespace(u"P")->URI, u"three");
  list->RemoveLevel(3);
  EXPECT_EQ(Told(), u"");
  list->RemoveLevel(2);
  EXPECT_EQ(Told(), u"-p -P ");
  EXPECT_EQ(list->GetURI(u"P"), u"one");
  list->RemoveLevel(2);
  EXPECT_EQ(Told(), u"");
}

TEST_F(NamespaceList, EmptyPrefixIsAPrefixLikeAnyOther) {
  EXPECT_EQ(list->GetNamespace(u""), nullptr);
  EXPECT_EQ(list->GetURI(u""), u"");
  EXPECT_EQ(list->GetURI(u"xml"), u"") << "has no binding of its own";
  list->AddURI(1, u"", u"default");
  list->AddURI(2, u"", u"");
  EXPECT_NE(list->GetNamespace(u""), nullptr);
  EXPECT_EQ(list->GetURI(u""), u"");
  list->RemoveLevel(2);
  EXPECT_EQ(list->GetURI(u""), u"default");
  EXPECT_EQ(list->GetURI(u"xml"), u"");
}

// As after a parse that failed in depth 5, in front of one that starts at depth 1 again.
TEST_F(NamespaceList, LevelsEndLastEntryFirstInWhateverOrderTheyStand) {
  list->AddURI(5, u"a", u"5");
  list->AddURI(1, u"a", u"1");
  list->AddURI(3, u"b", u"3");
  list->AddURI(2, u"a", u"2");
  list->AddURI(5, u"c", u"55");
  EXPECT_EQ(list->GetURI(u"a"), u"2");
  Told();
  list->RemoveLevel(3);
  EXPECT_EQ(Told(), u"-c -b -a ");
  EXPECT_EQ(list->GetURI(u"a"), u"2") << "an outer entry has gone, not this one";
  EXPECT_EQ(list->GetURI(u"b"), u"");
  list->RemoveLevel(1);
  EXPECT_EQ(Told(), u"-a -a ");
  EXPECT_EQ(list->GetURI(u"a"), u"");
}

TEST_F(NamespaceList, ClearTellsNobody) {
  list->AddURI(1, u"p", u"u");
  list->Clear();
  EXPECT_EQ(list->GetNamespace(u"p"), nullptr);
  list->RemoveLevel(0);
  list->AddURI(1, u"q", u"u");
  list.reset();
  EXPECT_EQ(Told(), u"+p=u +q=u ");
}

}  // namespace
