#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/DOM.h"
#include "tests/support/Raised.h"

namespace {

using namespace zm;

// Counts those that live.
int Living = 0;
class TCounted : public TZmDOMElement {
  ZM_OBJECT(TCounted, TZmDOMElement)
 public:
  TCounted() { ++Living; }
  explicit TCounted(const TZmAnyText& Name) : TZmDOMElement(Name) { ++Living; }

 protected:
  ~TCounted() override { --Living; }
};

class DOMLifetime : public testing::Test {
 protected:
  void SetUp() override { Living = 0; }
  void TearDown() override { EXPECT_EQ(Living, 0); }
};

TCounted* AddCounted(TZmDOMNode& Parent, const char* Name = "c") { return Parent.AppendChild(Create<TCounted>(Name)); }

TEST_F(DOMLifetime, HandleOnChildLeavesItInItsTree) {
  const auto document = Loaded("<a><b/></a>");
  TZmDOMElement* const b = document->GetRootNode()->FirstElement();
  EXPECT_EQ(b->GetDOMImpl(), nullptr);
  {
    const auto handle = Supports<IZmDOMElement>(b);
    EXPECT_EQ(handle->GetQualifiedName(), u"b");
    EXPECT_EQ(b->GetDOMImpl()->RefCount(), 1);
    EXPECT_TRUE(document->GetDOMImpl()) << "the companions above are there too";
    EXPECT_EQ(Supports<IZmDOMNode>(b)->GetDOMObject(), b);
    EXPECT_EQ(TZmDOMObjectImpl::Node(handle.Get()), b);
  }
  EXPECT_EQ(b->GetDOMImpl(), nullptr);
  EXPECT_EQ(document->GetDOMImpl(), nullptr);
  EXPECT_EQ(Saved(*document), "<a><b /></a>");
  EXPECT_EQ(TZmDOMObjectImpl::Node(nullptr), nullptr);
}

TEST_F(DOMLifetime, LooseNodeGoesWithItsLastHandle) {
  auto handle = Supports<IZmDOMElement>(Create<TCounted>().get());
  EXPECT_EQ(Living, 1);
  handle->AddText(u"x");
  auto other = Supports<IZmDOMNode>(handle.Get());
  handle = nullptr;
  EXPECT_EQ(Living, 1);
  EXPECT_EQ(other->GetText(), u"x");
  other = nullptr;
  EXPECT_EQ(Living, 0);
}

TEST_F(DOMLifetime, OwnerAndHandleAreHolds) {
  auto owner = Create<TCounted>("a");
  { const auto handle = Supports<IZmDOMElement>(owner.get()); }
  EXPECT_EQ(owner->GetQualifiedName(), u"a");
  {
    const auto document = Create<TZmDOMDocument>();
    document->AppendChild(owner.get());
  }
  EXPECT_EQ(owner->GetParent(), nullptr) << "an owner holds a node beyond the life of its tree";
  EXPECT_EQ(owner->GetDOMDocument(), nullptr);
  owner.reset();
  EXPECT_EQ(Living, 0);
}

TEST_F(DOMLifetime, HeldChildKeepsTheTreeOfADocument) {
  TZmIntf<IZmDOMNode> text;
  {
    const auto document = Supports<IZmDOMDocument>(Loaded("<a><b>t</b><c/></a>").get());
    text = document->GetRootNode()->FirstElement()->FirstChild();
  }
  const auto b = text->ParentNode();
  EXPECT_EQ(b->NextSibling()->GetQualifiedName(), u"c");
  EXPECT_EQ(b->GetDOMDocument()->GetRootNode()->ElementCount(), 2);
  EXPECT_EQ(Saved(*b->GetDOMDocument()->GetDOMObject()->GetDOMDocument()), "<a><b>t</b><c /></a>");
  b->GetDOMDocument()->GetRootNode()->RemoveElement(u"c");
  EXPECT_FALSE(b->NextSibling());
}

TEST_F(DOMLifetime, FreeCutsHeldNodesLoose) {
  auto document = Loaded("<r xmlns='u'><a x='1'>t</a></r>");
  const auto root = Supports<IZmDOMElement>(document->GetRootNode());
  AddCounted(*document->GetRootNode());
  document.release()->Free();
  EXPECT_FALSE(root->ParentNode());
  EXPECT_FALSE(root->GetDOMDocument());
  EXPECT_EQ(Living, 1);
  EXPECT_EQ(root->GetNamespaceURI(), u"u");
  EXPECT_EQ(root->FirstElement()->GetAttribute(u"x"), u"1");
  EXPECT_EQ(root->GetInnerXML(), u"<a x=\"1\">t</a><c />");
}

TEST_F(DOMLifetime, HeldNodeDeepDownKeepsItsBranch) {
  auto document = Loaded("<r><a><b><c>t</c></b><d/></a><e/></r>");
  const auto c = Supports<IZmDOMElement>(document->SelectSingleElement("a/b/c"));
  document.release()->Free();
  EXPECT_EQ(c->ParentElement()->ParentElement()->ParentElement()->GetQualifiedName(), u"r");
  EXPECT_FALSE(c->ParentElement()->ParentElement()->ParentElement()->ParentNode());
  EXPECT_FALSE(c->GetDOMDocument());
  EXPECT_EQ(c->ParentElement()->NextElement()->GetQualifiedName(), u"d");

  const auto fresh = Create<TZmDOMDocument>("x");
  const auto b = c->ParentElement();
  fresh->GetRootNode()->AppendChild(TZmDOMObjectImpl::Node(b.Get()));
  EXPECT_EQ(c->GetDOMDocument()->GetRootNode()->GetQualifiedName(), u"x");
  EXPECT_EQ(Saved(*fresh), "<x><b><c>t</c></b></x>");
}

TEST_F(DOMLifetime, FreeOfAHeldNodeIsRefused) {
  const auto document = Loaded("<a><b><c/></b></a>");
  TZmDOMElement* const b = document->GetRootNode()->FirstElement();
  const auto handle = Supports<IZmDOMElement>(b);
  EXPECT_EQ(Raised<Exception>([&] { b->Free(); }),
            "An instance of TZmDOMElement is destroyed while it's refcount is not 0!");
  TCounted* const counted = AddCounted(*b);
  const auto second = Supports<IZmDOMNode>(counted);
  EXPECT_EQ(Raised<Exception>([&] { counted->Free(); }),
            "An instance of TCounted is destroyed while it's refcount is not 0!");
  EXPECT_EQ(Raised<Exception>([&] { AddCounted(*b)->_Release(); }),
            "DOM Objects do not support interfaces. All interface requests should be handled by the DOMIMpl object.");
  EXPECT_EQ(Saved(*document), "<a><b><c /><c /><c /></b></a>") << "nothing has been torn down";
}

TEST_F(DOMLifetime, FreeTakesANodeOutOfItsParent) {
  const auto document = Loaded("<a><b/><c x='1'/></a>");
  document->GetRootNode()->FirstElement()->Free();
  document->GetRootNode()->FirstElement()->FirstAttribute()->Free();
  AddCounted(*document->GetRootNode())->Free();
  EXPECT_EQ(Saved(*document), "<a><c /></a>");
  document->GetRootNode()->Free();
  EXPECT_EQ(document->GetRootNode(), nullptr);
}

TEST_F(DOMLifetime, RemovedNodesGoUnlessHeld) {
  const auto document = Loaded("<a><b><i/></b></a>");
  TZmDOMElement* const root = document->GetRootNode();
  TCounted* const counted = AddCounted(*root);
  auto handle = Supports<IZmDOMElement>(counted);
  root->RemoveChild(root->FirstElement());
  root->RemoveChild(counted);
  EXPECT_EQ(Living, 1);
  EXPECT_FALSE(handle->ParentNode());
  EXPECT_FALSE(handle->GetDOMDocument());
  root->AppendChild(counted);
  EXPECT_EQ(Saved(*document), "<a><c /></a>");
  handle = nullptr;
  EXPECT_EQ(Living, 1);
}

TEST_F(DOMLifetime, HoldsOnBothSidesOfARemovalGoInAnyOrder) {
  const auto document = Loaded("<a><b><c/></b></a>");
  TZmDOMElement* const root = document->GetRootNode();
  auto b = Supports<IZmDOMElement>(root->FirstElement());
  auto c = b->FirstElement();
  b->RemoveChild(c);
  root->RemoveChild(root->FirstElement());
  b = nullptr;
  EXPECT_EQ(c->GetQualifiedName(), u"c");
  EXPECT_EQ(Saved(*document), "<a />");

  // A loose parent that only the handle of its child holds goes with the removal of that child.
  auto parent = Supports<IZmDOMElement>(Create<TCounted>().get());
  auto* const object = static_cast<TZmDOMElement*>(TZmDOMObjectImpl::Node(parent.Get()));
  auto child = parent->AddElement(u"x");
  auto second = parent->AddElement(u"y");
  parent = nullptr;
  second = nullptr;
  EXPECT_EQ(Living, 1);
  object->Clear();
  EXPECT_EQ(Living, 0);
  EXPECT_EQ(child->GetQualifiedName(), u"x");
}

TEST_F(DOMLifetime, ClearAndReloadLeaveHeldNodesLoose) {
  const auto document = Loaded("<a><b>1</b></a>");
  const auto b = Supports<IZmDOMElement>(document->GetRootNode()->FirstElement());
  const auto text = b->FirstChild();
  document->LoadFromXML(std::string_view("<n><m/></n>"));
  EXPECT_EQ(Saved(*document), "<n><m /></n>");
  EXPECT_EQ(text->GetText(), u"1");
  EXPECT_EQ(b->ParentElement()->GetQualifiedName(), u"a");
  EXPECT_FALSE(b->GetDOMDocument());
  const auto m = Supports<IZmDOMElement>(document->GetRootNode()->FirstElement());
  document->Clear();
  EXPECT_EQ(m->ParentElement()->GetQualifiedName(), u"n");
  document->LoadFromXML(std::string_view("<z/>"));
  document->GetRootNode()->AppendChild(TZmDOMObjectImpl::Node(b.Get()));
  EXPECT_EQ(Saved(*document), "<z><b>1</b></z>");
}

TEST_F(DOMLifetime, MovedNodesOutliveTheDocumentThatLoadedThem) {
  const auto to = Create<TZmDOMDocument>("to");
  TZmDOMElement* moved = nullptr;
  {
    const auto from = Loaded("<from><m a='&lt;'>text<i><!--c--><?p d?></i></m></from>");
    moved = from->GetRootNode()->FirstElement();
    const auto held = Supports<IZmDOMElement>(moved->FirstElement());
    to->GetRootNode()->AppendChild(moved);
    EXPECT_EQ(Saved(*from), "<from />");
    for (const TZmDOMNode* node : moved->Children()) EXPECT_EQ(node->GetDOMDocument(), to.get());
    EXPECT_EQ(moved->FirstElement()->FirstChild()->GetDOMDocument(), to.get());
    EXPECT_EQ(TZmDOMObjectImpl::Node(held->GetDOMDocument().Get()), to.get());
  }
  moved->SetQualifiedName(u"n");
  moved->AddElement(u"x");
  EXPECT_EQ(Saved(*to), "<to><n a=\"&lt;\">text<i><!--c--><?p d?></i><x /></n></to>");
  to->Clear();
  EXPECT_EQ(to->GetRootNode(), nullptr);
}

TEST_F(DOMLifetime, ListsGoByHandlesToo) {
  TZmIntf<IZmDOMElementList> children, found;
  TZmIntf<IZmDOMNodeList> all;
  {
    const auto document = Supports<IZmDOMDocument>(Loaded("<a><b/>t<b/></a>").get());
    children = document->GetRootNode()->Elements();
    all = document->GetRootNode()->ChildNodes();
    found = document->GetRootNode()->CreateElementList(u"b");
  }
  EXPECT_EQ(children->Count(), 2);
  EXPECT_EQ(children->GetElement(1)->GetQualifiedName(), u"b");
  EXPECT_EQ(found->Count(), 2);
  EXPECT_EQ(Supports<IZmDOMNodeList>(found.Get())->First(), children->First());
  String names;
  for (const TZmIntf<IZmDOMNode>& node : all) names += node->GetQualifiedName() + u",";
  EXPECT_EQ(names, u"b,,b,");
  all = nullptr;
  const auto last = children->Last();
  children = nullptr;
  EXPECT_EQ(last->ParentNode()->GetQualifiedName(), u"a");
}

TEST_F(DOMLifetime, DocumentOnTheStackStaysItsScopes) {
  TZmIntf<IZmDOMElement> root;
  TZmIntf<IZmDOMDocument> handle;
  {
    TZmDOMDocument document("a");
    { const auto gone = Supports<IZmDOMDocument>(&document); }
    TZmDOMNodeList list;
    { const auto gone = Supports<IZmDOMNodeList>(&list); }
    root = Supports<IZmDOMElement>(document.GetRootNode());
    handle = root->GetDOMDocument();
    EXPECT_EQ(handle->GetXML(), u"<a />");
  }
  EXPECT_FALSE(root->GetDOMDocument());
  EXPECT_EQ(handle->GetDOMObject(), nullptr);
  EXPECT_EQ(Raised<EZmDomInvalidState>([&] { handle->GetXML(); }), "The object behind the handle has been freed!");
}

class IExtra : public virtual IZmInterface {
 public:
  virtual int Extra() = 0;
};
class TExtended : public TCounted, public IExtra {
  ZM_OBJECT(TExtended, TCounted)
 public:
  int Extra() override { return 7; }
  void* QueryInterface(const TInterfaceId& Id) override { return TZmDOMObject::QueryInterface(Id); }
  int _AddRef() override { return TZmDOMObject::_AddRef(); }
  int _Release() override { return TCounted::_Release(); }
};

TEST_F(DOMLifetime, CompanionIsAskedFirstThenTheObject) {
  const auto document = Create<TZmDOMDocument>("a");
  auto* const extended = document->GetRootNode()->AppendChild(Create<TExtended>());
  EXPECT_EQ(Supports<IExtra>(extended)->Extra(), 7);
  const auto node = Supports<IZmDOMNode>(static_cast<TZmDOMNode*>(extended));
  EXPECT_EQ(Supports<IExtra>(node.Get())->Extra(), 7);
  EXPECT_EQ(TZmDOMObjectImpl::Node(Supports<IExtra>(extended).Get()), extended);
  EXPECT_FALSE(Supports<IZmDOMText>(extended));

  // A question in vain holds nothing.
  TCounted* const plain = AddCounted(*document->GetRootNode());
  EXPECT_FALSE(Supports<IExtra>(static_cast<TZmDOMNode*>(plain)));
  EXPECT_EQ(plain->GetDOMImpl(), nullptr);
  document->GetRootNode()->Clear();
  EXPECT_EQ(Living, 1) << "only what is held";
}

TEST_F(DOMLifetime, EveryKindHasItsCompanion) {
  const auto document = ZmCreateDOMIntf(u"r", u"urn:r");
  const auto root = document->GetRootNode();
  root->AppendChild(document->CreateText(u"<t>"));
  root->AppendChild(document->CreateCDATA(u"<d>"));
  root->AppendChild(document->CreateComment(u"c"));
  root->AppendChild(document->CreateProcessingInstruction(u"p", u"q"));
  root->AppendChild(document->CreateAttribute(u"a"));
  const auto element = document->CreateElement(u"e");
  root->AddChild(element, root->FirstChild(), rdpAfter);
  root->SetAttribute(u"a", u"\"");
  EXPECT_EQ(document->GetXML(), u"<r xmlns=\"urn:r\" a=\"&quot;\"><e />&lt;t&gt;<![CDATA[<d>]]><!--c--><?p q?></r>");
  std::string kinds;
  for (const TZmIntf<IZmDOMNode>& node : root->ChildNodes())
    kinds += std::string(Supports<IZmDOMText>(node.Get()) ? "T" : "") + (Supports<IZmDOMCDATA>(node.Get()) ? "D" : "") +
             (Supports<IZmDOMCharacterData>(node.Get()) ? "C" : "") + (Supports<IZmDOMComment>(node.Get()) ? "K" : "") +
             (Supports<IZmDOMAttribute>(node.Get()) ? "A" : "") + (Supports<IZmDOMElement>(node.Get()) ? "E" : "") +
             (Supports<IZmDOMProcessingInstruction>(node.Get()) ? "P" : "") + ",";
  EXPECT_EQ(kinds, "A,E,TC,TDC,CK,P,A,");
  EXPECT_EQ(root->Attributes()->GetAttribute(1)->OwnerElement(), root);
  EXPECT_EQ(root->CloneNode(true)->GetInnerXML(), root->GetInnerXML());
  EXPECT_EQ(Raised<EZmDomNotSupported>([&] { document->LoadFromStream(nullptr); }),
            "The LoadFromStream is not supported by the DOM Document. Use the LoadFromStreamEx instead.");
  EXPECT_EQ(Raised<EZmDomNotSupported>([&] { document->SaveToStream(nullptr); }),
            "The SaveToStream is not supported by the DOM Document. Use the SaveToStreamEx instead.");
}

TEST_F(DOMLifetime, QuickTrees) {
  const auto document = ZmCreateDOM(u"a");
  ZmAddAttribute(ZmAddElement(document->GetRootNode(), "b", "1 < 2"), "x", "1");
  ZmAddAttribute(document->GetRootNode()->FirstElement(), "x", "2");
  EXPECT_EQ(Saved(*document), "<a><b x=\"2\">1 &lt; 2</b></a>");
  EXPECT_EQ(ZmFormatXML("<a><b/></a>"), u"<a>\r\n  <b />\r\n</a>");
  EXPECT_EQ(ZmCreateDOM()->GetRootNode(), nullptr);
}

// Tells what it is told.
std::string Told;
class TWatcher : public TCounted {
  ZM_OBJECT(TWatcher, TCounted)
 public:
  using TCounted::TCounted;
  void BeforeDestruction() override {
    Told += "(" + ToUTF8(GetQualifiedName()) + std::to_string(ElementCount());
    TCounted::BeforeDestruction();
    Told += ")" + std::to_string(ElementCount());
  }
  void RemoveChild(TZmDOMNode* Node) override {
    Told += "-" + ToUTF8(Node->GetQualifiedName());
    TCounted::RemoveChild(Node);
  }
  void SetDOMDocument(TZmDOMDocument* Document) override {
    Told += ToUTF8(GetQualifiedName()) + (Document ? "+" : "0");
    TCounted::SetDOMDocument(Document);
    EXPECT_EQ(GetDOMDocument(), Document);
  }
};

TEST_F(DOMLifetime, ClassesOfAnApplicationAreTold) {
  const auto document = Loaded("<r><a/></r>");
  TZmDOMElement* const a = document->GetRootNode()->FirstElement();
  auto* const w = a->AddElement("p")->AppendChild(Create<TWatcher>("w"));
  w->AddElement("x")->AppendChild(Create<TWatcher>("v"))->SetAttribute("y", "");
  const auto held = Supports<IZmDOMElement>(w->AddElement("h"));
  TZmDOMDocument other("o");
  Told.clear();
  other.GetRootNode()->AppendChild(a);
  EXPECT_EQ(Told, "w+v+");
  const auto loose = Supports<IZmDOMElement>(a);
  other.GetRootNode()->RemoveChild(a);
  EXPECT_EQ(Told, "w+v+w0v0");
  Told.clear();
  w->Free();
  EXPECT_EQ(Told, "(w2-h(v0-y)0-x)0") << "children go when their parent has been told, and it hears of each";
  EXPECT_FALSE(held->ParentNode());
  Told.clear();
  TZmDOMElement* deep = document->GetRootNode();
  for (int i = 0; i < 100'000; ++i) deep = deep->AppendChild(Create<TCounted>("d"));
}

TEST_F(DOMLifetime, AHeldNodeMovesWhenItWasAllThatHeldItsTree) {
  TZmIntf<IZmDOMNode> held;
  const auto to = Loaded("<s/>");
  {
    const auto document = Supports<IZmDOMDocument>(Loaded("<r xmlns:p='u'><p:a><p:b/></p:a></r>").get());
    held = document->GetRootNode()->FirstElement();
  }
  TZmDOMNode* const moved = TZmDOMObjectImpl::Node(held.Get());
  to->GetRootNode()->AppendChild(moved);
  held = nullptr;
  EXPECT_EQ(Saved(*to), "<s><p:a xmlns:p=\"u\"><p:b /></p:a></s>");
}

TEST_F(DOMLifetime, ANodeCutFromALooseBranchForgetsDeclarationsAbove) {
  TZmIntf<IZmDOMNode> below;
  {
    const auto branch = Create<TZmDOMElement>("a");
    branch->SetAttribute("xmlns:p", "u");
    TZmDOMElement* const child = branch->AddElement("p:b");
    below = Supports<IZmDOMNode>(child);
    branch->RemoveChild(child);
  }
  EXPECT_EQ(TZmDOMObjectImpl::Node(below.Get())->GetNamespaceURI(), u"");
}

}  // namespace
