#include <gtest/gtest.h>

#include <string>

#include "tests/support/Raised.h"
#include "zamrit/xml/dom/Document.h"

using namespace zm;

namespace {

constexpr std::string_view cTree = "<r xmlns:p='u' k='1' p:k='2'><a id='1'/><A id='2'/><p:a id='3'/><b id='4'/></r>";

class Lookup : public testing::Test {
 protected:
  Lookup() : FDocument(Create<TZmDOMDocument>()) {
    FDocument->LoadFromXML(cTree);
    FRoot = FDocument->GetRootNode();
  }

  // The id of an element, the value of an attribute, or the message of what is raised.
  template <class F>
  static std::string Of(F Call) {
    try {
      const auto node = Call();
      if (!node) return "nil";
      if constexpr (std::is_same_v<decltype(node), TZmDOMAttribute* const>)
        return ToUTF8(node->GetNodeValue());
      else
        return ToUTF8(static_cast<TZmDOMElement*>(node)->GetAttribute("id"));
    } catch (const Exception& e) {
      return e.what();
    }
  }

  TZmOwner<TZmDOMDocument> FDocument;
  TZmDOMElement* FRoot;
};

}  // namespace

TEST_F(Lookup, FindsTheLast) {
  const struct {
    const char* Name;
    TZmDOMSelectOptions Options;
    const char* Element;
    const char* Attribute;
  } cases[] = {
      {"a", {}, "2", "nil"},
      {"a", {soCaseSensitive}, "1", "nil"},
      {"a", {soLocalName}, "3", "nil"},
      {"P:A", {}, "3", "nil"},
      {"p:a", {soLocalName}, "nil", "nil"},
      {"k", {}, "nil", "1"},
      {"k", {soLocalName}, "nil", "2"},
      {"p:K", {soQualifiedName}, "nil", "2"},
      {"x", {soRaise}, "There is no node for the given name \"x\".", "There is no node for the given name \"x\"."},
      {"a", {soCreate}, "It is not possible to specify soCreate!", "It is not possible to specify soCreate!"},
      {"a",
       {soCaseSensitive, soCaseInsensitive},
       "It is not possible to specify both soCaseSensitive and soCaseInsensitive!",
       "It is not possible to specify both soCaseSensitive and soCaseInsensitive!"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Of([&] { return FRoot->FindElement(c.Name, c.Options); }), c.Element) << c.Name;
    EXPECT_EQ(Of([&] { return FRoot->FindAttribute(c.Name, c.Options); }), c.Attribute) << c.Name;
    EXPECT_EQ(Of([&] { return FRoot->Elements().Find(c.Name, c.Options); }), c.Element) << c.Name;
  }
  EXPECT_EQ(Of([&] { return FRoot->FindElement("u", "A"); }), "3");
  EXPECT_EQ(Of([&] { return FRoot->FindElement("", "a"); }), "3");
  EXPECT_EQ(Of([&] { return FRoot->FindElement("v", "a"); }), "nil");
  EXPECT_EQ(Of([&] { return FRoot->FindAttribute("u", "k"); }), "2");
  EXPECT_EQ(Of([&] { return FRoot->SelectSingleElement("a"); }), "1");
  EXPECT_TRUE(FRoot->HasChildElement("B"));
  EXPECT_FALSE(FRoot->HasAttribute("b"));
}

TEST_F(Lookup, FindsAttributesBehindChildren) {
  FRoot->AddAttribute("late")->SetNodeValue("3");
  EXPECT_EQ(Of([&] { return FRoot->FindAttribute("late"); }), "3");
  EXPECT_EQ(FRoot->AttributeCount(), 4);
  EXPECT_EQ(FRoot->CreateNodeList("@late")->Count(), 1);
}

TEST_F(Lookup, MakesWhatIsMissing) {
  EXPECT_EQ(Of([&] { return FRoot->ElementByName("x", {}); }), "nil");
  EXPECT_EQ(Of([&] { return FRoot->ElementByName("x", {soRaise}); }), "There is no node for the given name \"x\".");
  EXPECT_EQ(FRoot->ElementByName("p:x", {soCreate})->GetNamespaceURI(), u"u");
  EXPECT_EQ(FRoot->LastElement()->GetQualifiedName(), u"p:x");
  TZmDOMAttribute* const made = FRoot->AttributeByName("x", {soCreate});
  EXPECT_EQ(made, FRoot->LastAttribute());
  EXPECT_EQ(FRoot->AttributeByName("x", {soCreate}), made);
  EXPECT_EQ(Of([&] { return FRoot->NodeByName(FRoot->Elements(), "y", {soCreate}); }),
            "A NodeClass is required when soCreate is specified!");
  EXPECT_EQ(FRoot->NodeByName(FRoot->CharNodes(), "y", {soCreate}, TZmDOMNodeClass::Of<TZmDOMComment>())->GetNodeType(),
            ntComment);
}

TEST_F(Lookup, MakesByNamespace) {
  const char* const missing = "There is no child with the localname \"%\" and namespace \"v\"!";
  const auto message = [&](const char* name) { return std::string(missing).replace(38, 1, name); };
  EXPECT_EQ(Of([&] { return FRoot->ElementByName("v", "x", coRaise); }), message("r"));
  EXPECT_EQ(Of([&] { return FRoot->ElementByName("v", "x", coReturnNil); }), "nil");
  EXPECT_EQ(FRoot->ElementByName("u", "x", coCreate)->GetQualifiedName(), u"p:r");
  EXPECT_EQ(Of([&] { return FRoot->ElementByName("v", "x", coCreate); }), "nil");
  EXPECT_EQ(FRoot->LastElement()->GetNamespaceURI(), u"v");
  EXPECT_EQ(FRoot->LastElement()->GetLocalName(), u"x");

  EXPECT_EQ(Of([&] { return FRoot->AttributeByName("v", "q:x", false); }), message("x"));
  TZmDOMAttribute* const made = FRoot->AttributeByName("v", "q:x", true);
  EXPECT_EQ(made->GetNamespaceURI(), u"v");
  EXPECT_EQ(FRoot->AttributeByName("v", "x", false), made);
  EXPECT_EQ(made->PreviousSibling()->GetQualifiedName(), u"xmlns:q");
  FRoot->AttributeByName("u", "p:y", true);
  EXPECT_EQ(FRoot->AttributeCount(), 6);
  EXPECT_EQ(FRoot->ElementByName("w", "z", true)->GetNamespaceURI(), u"w");
  EXPECT_EQ(FRoot->LastElement()->AttributeCount(), 1);
}

TEST_F(Lookup, IndexesByNameAndPath) {
  FRoot->LastElement()->AddElement("c")->SetAttribute("id", "5");
  TZmDOMElementList& list = FRoot->Elements();
  const struct {
    Variant Index;
    TZmDOMSelectCheckOption Option;
    const char* Found;
  } cases[] = {
      {1, coRaise, "2"},
      {4, coRaise, "List index out of bounds (4)"},
      {u"a", coRaise, "3"},
      {u"p:a", coRaise, "3"},
      {u"b/c", coRaise, "5"},
      {u"x", coReturnNil, "nil"},
      {u"b/x", coReturnNil, "nil"},
      {u"x", coRaise, "There is no node for the given name \"x\"."},
      {u"b/x", coRaise, "There is no node for the given path \"b/x\"!"},
      {1.5, coRaise, "Invalid idx value"},
      {Null(), coRaise, "Invalid idx value"},
  };
  for (const auto& c : cases) EXPECT_EQ(Of([&] { return list.GetItemEx(c.Index, c.Option); }), c.Found);
  EXPECT_EQ(list.GetItemEx(u"."), FRoot);
  EXPECT_EQ(list.GetItemEx(u"b/n", coCreate)->ParentElement(), FRoot->LastElement());
  FDocument->SetSelectCheckOption(coReturnNil);
  EXPECT_EQ(list.GetItemEx(u"x"), nullptr);
  EXPECT_EQ(Of([&] { return Create<TZmDOMElementList>()->GetItemEx(u"a/b", coRaise); }),
            "There is no childelement with the name a/b!");
}

TEST_F(Lookup, DeletesByName) {
  EXPECT_EQ(Of([&] { return FRoot->Elements().Delete("a", {}); }), "2");
  EXPECT_EQ(Of([&] { return FRoot->Elements().Delete("u", "a"); }), "3");
  EXPECT_EQ(FRoot->ElementCount(), 2);
}
