#include "zamrit/xml/sax/Attributes.h"

#include <gtest/gtest.h>

#include "zamrit/xml/sax/XMLErrors.h"

namespace {

static_assert(zm::CDATA == 0 && zm::ID == 1 && zm::NMTOKENS == 5 && zm::NOTATION == 8);

// The code and message of what F raises.
template <class F>
std::string ErrorOf(F Call) {
  try {
    Call();
  } catch (const zm::EZmXMLParseError& e) {
    return std::to_string(e.GetCode()) + " " + e.what();
  }
  return "none";
}

struct Attributes : testing::Test {
  void SetUp() override {
    list->Add(u"a", u"p:a", u"URN:X", u"1", zm::CDATA);
    list->Add(u"b", u"b", u"", u"2", zm::ID);
    list->Add(u"A", u"A", u"", u"3", zm::NMTOKEN);
    list->Add(u"B", u"q:B", u"*", u"4", zm::NOTATION);
  }
  zm::TZmOwner<zm::TZmSAXXMAttributes> list = zm::Create<zm::TZmSAXXMAttributes>();
};

TEST_F(Attributes, StandInAChain) {
  zm::PZmSAXXMAttribute previous = nullptr;
  int index = 0;
  for (auto a = list->FirstAttribute(); a; previous = a, a = a->Next, index++) {
    EXPECT_EQ(a->Prev, previous);
    EXPECT_EQ(a->Idx, index);
    EXPECT_EQ(list->GetAttribute(index), a);
  }
  EXPECT_EQ(index, list->Count());
  EXPECT_EQ(list->GetLocalName(0), u"a");
  EXPECT_EQ(list->GetQName(0), u"p:a");
  EXPECT_EQ(list->GetURI(0), u"URN:X");
  EXPECT_EQ(list->GetValue(3), u"4");
  EXPECT_EQ(list->GetType(3), zm::NOTATION);
  EXPECT_FALSE(list->GetAutoDestroy());
}

TEST_F(Attributes, AreFoundWhateverTheirCase) {
  EXPECT_EQ(list->GetIndex(u"P:A"), 0);
  EXPECT_EQ(list->GetIndex(u"a"), 2);
  EXPECT_EQ(list->GetIndex(u"c"), -1);
  EXPECT_EQ(list->GetValue(u"a"), u"3");
  EXPECT_EQ(list->GetType(u"B"), zm::ID);

  EXPECT_EQ(list->GetIndex(u"urn:x", u"A"), 0);
  EXPECT_EQ(list->GetIndex(u"", u"a"), 2);
  EXPECT_EQ(list->GetIndex(u"urn:x", u"b"), -1);
  EXPECT_EQ(list->GetValue(u"urn:X", u"a"), u"1");
  EXPECT_EQ(list->GetType(u"urn:X", u"a"), zm::CDATA);
}

TEST_F(Attributes, StarStandsForAnyURIOfAValueAlone) {
  EXPECT_EQ(list->GetValue(u"*", u"A"), u"1");
  EXPECT_EQ(list->GetValue(u"", u"A"), u"3");
  EXPECT_EQ(list->GetType(u"*", u"b"), zm::NOTATION);
  EXPECT_EQ(list->GetIndex(u"*", u"b"), 3);
  EXPECT_EQ(list->GetIndex(u"*", u"a"), -1);
}

TEST_F(Attributes, TellWhatIsNotThere) {
  for (const int i : {-1, 4}) {
    const auto error = "4 List index (" + std::to_string(i) + ") out of bounds!";
    EXPECT_EQ(ErrorOf([&] { list->GetAttribute(i); }), error);
    EXPECT_EQ(ErrorOf([&] { list->GetLocalName(i); }), error);
    EXPECT_EQ(ErrorOf([&] { list->GetQName(i); }), error);
    EXPECT_EQ(ErrorOf([&] { list->GetURI(i); }), error);
    EXPECT_EQ(ErrorOf([&] { list->GetType(i); }), error);
    EXPECT_EQ(ErrorOf([&] { list->GetValue(i); }), error);
  }
  EXPECT_EQ(ErrorOf([&] { list->GetType(u"x%d"); }), "4 List index (x%d) out of bounds!");
  EXPECT_EQ(ErrorOf([&] { list->GetValue(u"x:y"); }), "4 List index (x:y) out of bounds!");
  EXPECT_EQ(ErrorOf([&] { list->GetType(u"u", u"n"); }), "4 List index (u-n) out of bounds!");
  EXPECT_EQ(ErrorOf([&] { list->GetValue(u"", u"B"); }), "none");
  EXPECT_EQ(ErrorOf([&] { list->GetValue(u"u", u"a"); }), "4 List index (u-a) out of bounds!");
}

TEST_F(Attributes, AreClearedAndFilledAgain) {
  for (const int count : {1, 5000, 2, 0}) {
    list->Clear();
    EXPECT_EQ(list->FirstAttribute(), nullptr);
    for (int i = 0; i < count; i++) {
      zm::String name = zm::Format(u"n%d", {i});
      list->Add(name, name, u"", name, zm::CDATA);
      name.assign(name.size(), u'?');  // the list has its own copy
    }
    EXPECT_EQ(list->Count(), count);
    for (int i = 0; i < count; i++) ASSERT_EQ(list->GetValue(i), zm::Format(u"n%d", {i}));
    EXPECT_EQ(list->GetIndex(zm::Format(u"N%d", {count - 1})), count - 1);
    EXPECT_THROW(list->GetAttribute(count), zm::EZmXMLParseError);
  }
}

}  // namespace
