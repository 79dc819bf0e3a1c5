#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <new>
#include <string>
#include <vector>

#include "tests/support/DOM.h"
#include "tests/support/FailingAllocations.h"
#include "tests/support/Raised.h"

namespace {

using namespace zm;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int cMany = 100'000;
constexpr std::size_t cStack = std::size_t{1} << 20;
#else
constexpr int cMany = 1'000'000;
constexpr std::size_t cStack = std::size_t{256} << 10;
#endif

std::string Names(TZmDOMNodeListBase& List) {
  std::string text;
  for (TZmDOMNode* node : List)
    text += ToUTF8(node->GetQualifiedName().empty() ? node->GetNodeValue() : String(node->GetQualifiedName()));
  return text;
}

/// All lists of an element: children, elements, attributes, texts. The lists without list objects must say the same.
std::string Lists(TZmDOMElement& Element) {
  std::string walked;
  for (TZmDOMElement* e : Element.ChildElements()) walked += ToUTF8(e->GetQualifiedName());
  EXPECT_EQ(walked, Names(Element.Elements()));
  EXPECT_EQ(Element.ElementCount(), Element.Elements().Count());
  EXPECT_EQ(Element.FirstElement(), walked.empty() ? nullptr : Element.Elements().First());
  EXPECT_EQ(Element.LastElement(), walked.empty() ? nullptr : Element.Elements().Last());
  return Names(Element.ChildNodes()) + " " + Names(Element.Elements()) + " " + Names(Element.Attributes()) + " " +
         Names(Element.CharNodes());
}

TEST(DOMNodes, WhereNodesArePut) {
  struct TCase {
    void (*Edit)(TZmDOMElement& Root);
    const char* Lists;
    const char* Saved = nullptr;
  };
  // <r p='' q=''>1<a/>2<b/>3</r>
  static const TCase cases[] = {
      {[](TZmDOMElement& r) { r.AddElement("x"); }, "pq1a2b3x abx pq 123"},
      {[](TZmDOMElement& r) { r.InsertElement("x", rdpFirst); }, "xpq1a2b3 xab pq 123"},
      {[](TZmDOMElement& r) { r.InsertElement("x", rdpBefore); }, "xpq1a2b3 xab pq 123"},
      {[](TZmDOMElement& r) { r.InsertElement("x", rdpAfter); }, "pq1a2b3x abx pq 123"},
      {[](TZmDOMElement& r) { r.InsertElement("x", rdpBefore, r.LastElement()); }, "pq1a2xb3 axb pq 123"},
      {[](TZmDOMElement& r) { r.InsertElement("x", rdpAfter, r.FirstElement()); }, "pq1ax2b3 axb pq 123"},
      // Next to a node of another kind: to an end of the list of its own kind, wherever that is.
      {[](TZmDOMElement& r) { r.InsertElement("x", rdpBefore, r.CharNodes()[1]); }, "pq1ax2b3 xab pq 123"},
      {[](TZmDOMElement& r) { r.InsertElement("x", rdpAfter, r.CharNodes()[0]); }, "pq1xa2b3 abx pq 123"},
      {[](TZmDOMElement& r) { r.InsertText("x", rdpBefore, r.LastElement()); }, "pq1a2xb3 ab pq x123"},
      {[](TZmDOMElement& r) { r.InsertComment("x", rdpAfter, r.FirstAttribute()); }, "pxq1a2b3 ab pq 123x"},
      {[](TZmDOMElement& r) { r.InsertCDATA("x", rdpBefore, r.FirstElement()); }, "pq1xa2b3 ab pq x123"},
      {[](TZmDOMElement& r) { r.AddAttribute("x"); }, "pq1a2b3x ab pqx 123"},
      {[](TZmDOMElement& r) {
         r.InsertElement("x", rdpAfter, r.CharNodes()[0]);
         r.InsertElement("y", rdpBefore, r.FirstElement());
         r.AddElement("z");
         r.RemoveElement("a");
       },
       "pq1xy2b3z ybxz pq 123", "<r p=\"\" q=\"\">1<x /><y />2<b />3<z /></r>"},
      // A child of the tree that is put elsewhere.
      {[](TZmDOMElement& r) { r.AddChild(r.FirstElement(), r.LastElement(), rdpAfter); }, "pq12ba3 ba pq 123"},
      {[](TZmDOMElement& r) { r.AddChild(r.FirstElement(), r.FirstElement(), rdpBefore); }, "apq12b3 ab pq 123"},
      {[](TZmDOMElement& r) { r.FirstElement()->AppendChild(r.LastElement()); }, "pq1a23 a pq 123"},
      // What is no child counts as none.
      {[](TZmDOMElement& r) { r.InsertElement("x", rdpBefore, &r); }, "xpq1a2b3 xab pq 123"},
      // Lists that are edited change alone.
      {[](TZmDOMElement& r) { r.Elements().Delete(r.FirstElement()); }, "pq1a2b3 b pq 123"},
      {[](TZmDOMElement& r) { r.Elements().Add(r.LastElement(), rdpBefore, &r); }, "pq1a2b3 ba pq 123"},
      {[](TZmDOMElement& r) { r.Elements().Add(r.FirstElement(), rdpLast); }, "pq1a2b3 ba pq 123",
       "<r p=\"\" q=\"\">1<a />2<b />3</r>"},
      {[](TZmDOMElement& r) { r.ChildNodes().Add(r.LastElement(), rdpBefore, r.FirstElement()); }, "pq1ba23 ab pq 123",
       "<r p=\"\" q=\"\">1<b /><a />23</r>"},
      {[](TZmDOMElement& r) {
         r.Elements().Clear();
         r.AddElement("x");
         r.RemoveChild(r.ChildNodes()[3]);
       },
       "pq12b3x x pq 123"},
      {[](TZmDOMElement& r) { r.Clear(); }, "   ", "<r />"},
      {[](TZmDOMElement& r) { r.SetNodeValue("x"); }, "pqabx ab pq x"},
      {[](TZmDOMElement& r) { r.SetNodeValueEx("x", true); }, "pqabx ab pq x",
       "<r p=\"\" q=\"\"><a /><b /><![CDATA[x]]></r>"},
  };
  for (const bool known : {false, true})  // whether the lists have been asked for before
    for (const TCase& c : cases) {
      SCOPED_TRACE(c.Lists);
      const auto document = Loaded("<r p='' q=''>1<a/>2<b/>3</r>");
      TZmDOMElement& root = *document->GetRootNode();
      if (known) {
        EXPECT_EQ(Lists(root), "pq1a2b3 ab pq 123");
      }
      c.Edit(root);
      EXPECT_EQ(Lists(root), c.Lists);
      if (c.Saved) {
        EXPECT_EQ(Saved(*document), c.Saved);
      }
    }
}

TEST(DOMNodes, Lists) {
  const auto document = Loaded("<r xmlns:p='u'><a/><p:a/><b/><a/></r>");
  TZmDOMElement& root = *document->GetRootNode();
  TZmDOMElementList& list = root.Elements();
  EXPECT_EQ(list.Find("", "A"), list[3]) << "the last one wins, in any case";
  EXPECT_EQ(list.Find("U", "a"), list[1]);
  EXPECT_EQ(list.Find("v", "a"), nullptr);
  EXPECT_EQ(list.Next(list[0]), list[1]);
  EXPECT_EQ(list.Next(list[3]), nullptr);
  EXPECT_EQ(list.Next(&root), list[0]) << "of what is not in it";
  EXPECT_EQ(list.Previous(list[0]), nullptr);
  EXPECT_EQ(list.Previous(list[2]), list[1]);
  EXPECT_TRUE(list.ContainsNode(list[2]));
  EXPECT_FALSE(list.ContainsNode(root.FirstAttribute()));
  EXPECT_EQ(Raised<EListError>([&] { list.GetItem(4); }), "List index out of bounds (4)");
  EXPECT_EQ(Raised<EListError>([&] { list.GetItem(-1); }), "List index out of bounds (-1)");

  TZmDOMNodeList own;
  EXPECT_EQ(Raised<EZmDomNotFound>([&] { own.First(); }),
            "Failed to get the first node!\r\nThe list contains no nodes.");
  EXPECT_EQ(Raised<EZmDomNotFound>([&] { own.Last(); }),
            "Failed to get the first node!\r\nThe list contains no nodes.");
  EXPECT_EQ(Raised<EAssertionFailed>([&] { own.Add(&root, rdpBefore, nullptr); }), "Assertion failure (xml/uZmXMLDOM)");
  own.Add(list[0], nullptr, rdpBefore);
  own.Add(list[1], nullptr, rdpBefore);
  own.Add(list[2], nullptr, rdpAfter);
  own.Add(list[3], list[0], rdpAfter);
  own.Add(&root, rdpBefore, root.FirstAttribute());
  EXPECT_EQ(Names(own), "rp:aaab");
  EXPECT_EQ(own.Delete("", "a"), list[3]);
  EXPECT_EQ(own.Delete(root.FirstAttribute()), nullptr);
  EXPECT_EQ(own.Count(), 4);
  EXPECT_EQ(root.ElementCount(), 4);

  TZmDOMNodeListBaseEnumerator each = list.GetEnumerator();
  std::string names;
  while (each.MoveNext()) names += ToUTF8(each.GetCurrent()->GetQualifiedName());
  EXPECT_EQ(names, "ap:aba");
}

TEST(DOMNodes, CurrentItemMayBeRemoved) {
  auto document = Loaded("<r><a/><b/><c/><d/></r>");
  for (TZmDOMElement* e : document->GetRootNode()->ChildElements()) document->GetRootNode()->RemoveChild(e);
  EXPECT_EQ(Saved(*document), "<r />");
  document = Loaded("<r><a/><b/><c/><d/></r>");
  for (TZmDOMNode* e : document->GetRootNode()->Elements()) document->GetRootNode()->RemoveChild(e);
  EXPECT_EQ(Saved(*document), "<r><b /><d /></r>") << "indexes pass over the one behind";
  for (const TZmIntf<IZmDOMNode>& e : Supports<IZmDOMElement>(document->GetRootNode())->Elements())
    e->ParentNode()->RemoveChild(e);
  EXPECT_EQ(Saved(*document), "<r><d /></r>");
}

TEST(DOMNodes, WhatCannotBe) {
  const auto document = Loaded("<r><a><b/></a>t</r>");
  TZmDOMElement& root = *document->GetRootNode();
  TZmDOMElement* const a = root.FirstElement();
  EXPECT_EQ(Raised<EAssertionFailed>([&] { root.RemoveChild(a->FirstElement()); }),
            "The specified ChildNode is not a child of this element!");
  root.RemoveChild(nullptr);
  EXPECT_EQ(Raised<EZmDomHierarchyRequest>([&] { a->FirstElement()->AppendChild(&root); }),
            "A node cannot be moved below itself!");
  EXPECT_EQ(Raised<EZmDomHierarchyRequest>([&] { root.AppendChild(document.get()); }),
            "A node of the type Element cannot have a child of the type Document!");
  EXPECT_EQ(Raised<EZmDomHierarchyRequest>([&] { root.LastChild()->AppendChild(a); }),
            "A node of the type Text cannot have a child of the type Element!");
  EXPECT_EQ(Raised<EZmDomNotSupported>([&] { document->SetNodeValue(""); }),
            "The SetNodeValue is not supported by the TZmDomNode");
  EXPECT_EQ(Raised<EZmDomNotSupported>([&] { root.LastChild()->SetInnerXML(""); }),
            "The SetInnerXML is not supported by the TZmDomNode");
  EXPECT_EQ(Raised<EZmDomNotSupported>([&] { document->CloneNode(true); }),
            "It is not possible to clone a TZmDOMDocument using the CloneNode method!");
  EXPECT_EQ(Raised<EZmDomException>([&] { document->CreateRootNode("x"); }),
            "This DOM document already contains a rootnode!");
  EXPECT_EQ(Raised<EZmDomNotFound>([&] { root.GetCDATA(1); }), "There is no CDATA element with index 1!");
  EXPECT_EQ(Saved(*document), "<r><a><b /></a>t</r>");
  a->Elements().Clear();
  EXPECT_EQ(Raised<EZmDomHierarchyRequest>([&] { a->ChildNodes()[0]->AppendChild(a); }),
            "A node cannot be moved below itself!")
      << "also where no list shows what is below";
}

TEST(DOMNodes, Values) {
  const auto document = Loaded("<r a='x&quot;'>1<!--2--><b>4<c>5</c></b><![CDATA[<3>]]></r>");
  TZmDOMElement& root = *document->GetRootNode();
  EXPECT_EQ(root.GetText(), u"12<3>45") << "its own texts first, comments among them";
  EXPECT_EQ(root.GetNodeValue(), u"12<3>");
  EXPECT_EQ(document->GetText(), root.GetText());
  EXPECT_EQ(root.GetCDATA(0), u"<3>");
  for (const char16_t* value : {u"<&>\"'", u"a\r\nb\t\u00e9\U0001F600", u"\xD800 lone \xDC00", u""}) {
    root.FirstAttribute()->SetNodeValue(value);
    EXPECT_EQ(root.FirstAttribute()->GetNodeValue(), value);
    for (TZmDOMNode* node : root.CharNodes()) {
      node->SetNodeValue(value);
      EXPECT_EQ(node->GetNodeValue(), value);
      EXPECT_EQ(node->CloneNode(true)->GetNodeValue(), value);
    }
  }
  root.CharNodes()[0]->SetNodeValue("<");
  EXPECT_EQ(root.GetInnerXML(), u"&lt;<!----><b>4<c>5</c></b><![CDATA[]]>");
  root.SetInnerXML("a&amp;b");
  root.AddText("");
  root.AddText("c");
  root.NormalizeTextNodes();
  EXPECT_EQ(root.CharNodes().Count(), 1);
  EXPECT_EQ(root.GetText(), u"a&bc");
}

// In a thread of its own, whose stack no depth of a tree could fit in.
void OnSmallStack(std::function<void()> Body) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, cStack);
  pthread_t thread;
  const auto run = [](void* body) -> void* {
    (*static_cast<std::function<void()>*>(body))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &Body), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

TEST(DOMNodes, DepthIsNotStack) {
  std::string text = "<r xmlns:p='u'>";
  for (int i = 0; i < cMany; ++i) text += "<p:a>";
  text += "x";
  for (int i = 0; i < cMany; ++i) text += "</p:a>";
  text += "</r>";
  OnSmallStack([&] {
    auto document = Loaded(text);
    TZmDOMElement* innermost = document->GetRootNode();
    while (innermost->FirstElement()) innermost = innermost->FirstElement();
    { const auto handle = Supports<IZmDOMNode>(innermost); }
    EXPECT_EQ(document->GetRootNode()->GetText(), u"x");
    EXPECT_EQ(document->GetXML().size(), text.size());
    {
      const auto copy = document->GetRootNode()->CloneNode(true);
      EXPECT_EQ(copy->GetText(), u"x");
    }
    document->GetRootNode()->SetAttribute("xmlns:p", "v");
    document->GetRootNode()->SetPreseveSpace(true);
    document->GetRootNode()->NormalizeTextNodes();
    {
      const auto other = Create<TZmDOMDocument>("o");
      other->GetRootNode()->AppendChild(document->GetRootNode()->FirstElement());
      EXPECT_EQ(innermost->GetDOMDocument(), other.get());
      document->GetRootNode()->AppendChild(other->GetRootNode()->FirstElement());
    }
    auto handle = Supports<IZmDOMElement>(innermost);
    document.release()->Free();
    EXPECT_EQ(handle->GetText(), u"x");
    EXPECT_FALSE(handle->GetDOMDocument());
    handle = nullptr;

    auto removed = Loaded(text);
    removed->GetRootNode()->RemoveChild(removed->GetRootNode()->FirstElement());
    EXPECT_FALSE(removed->GetRootNode()->HasChildElements());
  });
}

// Each loop takes minutes where a step costs as much as there are nodes.
TEST(DOMNodes, ManySiblingsStayLinear) {
  const auto document = Create<TZmDOMDocument>("r");
  TZmDOMElement& root = *document->GetRootNode();
  TZmDOMElementList& elements = root.Elements();
  TZmDOMNodeList& texts = root.CharNodes();
  for (int i = 0; i < cMany; ++i) root.InsertElement("e", i % 2 ? rdpFirst : rdpLast);
  EXPECT_EQ(elements.Count(), cMany);
  for (int i = elements.Count(); i-- > 0;)
    if (i % 2) root.RemoveChild(elements[i]);
  for (int i = 0; i < elements.Count();) i % 3 ? void(++i) : root.RemoveChild(elements[i++]);
  while (elements.Count() > cMany / 4) root.RemoveChild(elements[0]);
  while (elements.Count() > cMany / 8) root.RemoveChild(elements.Last());
  while (elements.Count() > 0) root.RemoveChild(elements[elements.Count() - 1]);
  EXPECT_FALSE(root.HasChildNodes());

  for (int i = 0; i < cMany; ++i) root.AddElement("e");
  for (TZmDOMElement* e = root.LastElement(); e; e = e->PreviousElement()) root.InsertText("t", rdpBefore, e);
  EXPECT_EQ(texts.Count(), cMany);
  EXPECT_EQ(texts[0], root.FirstChild());
  for (TZmDOMNode* node : root.Children())
    if (node->GetNodeType() == ntText) root.RemoveChild(node);
  EXPECT_EQ(texts.Count(), 0);
  const std::vector<TZmDOMElement*> order = [&] {
    std::vector<TZmDOMElement*> all;
    for (TZmDOMElement* e : root.ChildElements()) all.push_back(e);
    return all;
  }();
  elements.Clear();
  for (auto it = order.rbegin(); it != order.rend(); ++it) elements.Add(*it, rdpLast);
  for (TZmDOMElement* e : order) elements.Add(e, rdpFirst);
  EXPECT_EQ(root.FirstElement(), order.back());
  while (elements.Count() > 0) root.RemoveChild(elements[0]);
  for (int i = 0; i < cMany; ++i) root.RemoveChild(root.AddElement("e"));
}

/// The elements and texts of a node by the steps of the node, forward and back, and by its children alone.
void ExpectSteps(TZmDOMElement& Parent) {
  std::vector<TZmDOMElement*> elements, walked, back;
  for (TZmDOMNode* node : Parent.Children())
    if (node->GetNodeType() == ntElement) elements.push_back(static_cast<TZmDOMElement*>(node));
  for (TZmDOMElement* e = Parent.FirstElement(); e; e = e->NextElement()) walked.push_back(e);
  for (TZmDOMElement* e = Parent.LastElement(); e; e = e->PreviousElement()) back.insert(back.begin(), e);
  ASSERT_EQ(walked, elements);
  ASSERT_EQ(back, elements);
}

TEST(DOMNodes, LongWaysAreNotGoneTwice) {
  const auto document = Create<TZmDOMDocument>("r");
  TZmDOMElement& root = *document->GetRootNode();
  unsigned seed = 1;
  const auto random = [&](unsigned below) { return (seed = seed * 1103515245 + 12345) / 65536 % below; };
  for (int i = 0; i < 300; ++i) root.AddComment("c");
  for (int i = 0; i < 2000; ++i) {
    std::vector<TZmDOMElement*> elements;
    for (TZmDOMElement* e : root.ChildElements()) elements.push_back(e);
    TZmDOMElement* const any = elements.empty() ? nullptr : elements[random(static_cast<unsigned>(elements.size()))];
    const auto position = static_cast<TZmDOMPosition>(random(4));
    if (any && random(elements.size() > 6 ? 2 : 5) == 0)
      root.RemoveChild(any);
    else if (any && random(4) == 0)
      root.AddChild(any, elements[random(static_cast<unsigned>(elements.size()))], position);
    else
      root.InsertElement("e", position, any);
    if (random(2) == 0) root.InsertText("t", position, root.LastElement());
    ASSERT_NO_FATAL_FAILURE(ExpectSteps(root)) << i;
  }

  root.Clear();
  TZmDOMElement* const first = root.AddElement("e");
  for (int i = 0; i < cMany; ++i) root.AddText("t");
  TZmDOMElement* const last = root.AddElement("e");
  for (int i = 0; i < cMany; ++i) root.AddComment("c");
  root.RemoveChild(root.AddAttribute("a"));
  for (int i = 0; i < cMany; ++i) {
    ASSERT_EQ(first->NextElement(), last);
    ASSERT_EQ(last->PreviousElement(), first);
    ASSERT_EQ(root.LastElement(), last);
    ASSERT_FALSE(root.HasAttributes());
  }
  root.RemoveChild(first);
  for (int i = 0; i < cMany; ++i) ASSERT_EQ(root.FirstElement(), last);
}

TEST(DOMNodes, EveryAllocationMayFail) {
  static constexpr void (*edits[])(TZmDOMDocument&) = {
      [](TZmDOMDocument& d) { d.LoadFromXML(std::string_view("<a xmlns='u' x='&lt;'>t<!--c--><b>\xC3\xA9</b></a>")); },
      [](TZmDOMDocument& d) { d.LoadFromXML(StringView(u"<a>\xD800<![CDATA[x]]><?p q?></a>")); },
      [](TZmDOMDocument& d) { d.LoadFromXML(std::string_view("{\"a\":[1,\"\\n\"]}")); },
      [](TZmDOMDocument& d) {
        const auto stream = Create<TZmStringStream>(std::string_view("<k xmlns:q='v'><q:l/>m</k>"), std::uint16_t{0});
        d.GetRootNode()->FirstElement()->LoadFromStream(stream.get(), 65001);
      },
      [](TZmDOMDocument& d) { d.GetRootNode()->AddElement("w", "z:new")->AddText("some text that is long"); },
      [](TZmDOMDocument& d) { d.GetRootNode()->SetAttribute("xmlns:q", "another namespace"); },
      [](TZmDOMDocument& d) { d.GetRootNode()->InsertText("x", rdpBefore, d.GetRootNode()->LastElement()); },
      [](TZmDOMDocument& d) { d.GetRootNode()->AppendChild(d.GetRootNode()->FirstElement()->CloneNode(true)); },
      [](TZmDOMDocument& d) { d.GetRootNode()->FirstElement()->AppendChild(d.GetRootNode()->LastElement()); },
      [](TZmDOMDocument& d) {
        TZmDOMDocument other("o");
        const auto held = Supports<IZmDOMNode>(d.GetRootNode()->FirstElement()->FirstElement());
        other.GetRootNode()->AppendChild(d.GetRootNode()->FirstElement());
      },
      [](TZmDOMDocument& d) {
        const auto held = Supports<IZmDOMElement>(d.GetRootNode()->FirstElement()->FirstElement());
        held->ChildNodes()->Count();
        d.GetRootNode()->RemoveChild(d.GetRootNode()->FirstElement());
        held->SetAttribute(u"attribute", u"value");
      },
      [](TZmDOMDocument& d) {
        const auto held = Supports<IZmDOMNode>(d.GetRootNode()->FirstElement());
        d.Clear();
      },
      [](TZmDOMDocument& d) { d.GetRootNode()->FirstElement()->SetQualifiedName("quite:a-long-name"); },
      [](TZmDOMDocument& d) { d.GetFormattedXML(); },
      [](TZmDOMDocument& d) { d.GetRootNode()->ChildNodes().Add(d.GetRootNode()->FirstElement(), rdpLast); },
      [](TZmDOMDocument& d) { d.GetRootNode()->Namespaces().Count(); },
      [](TZmDOMDocument& d) { d.GetRootNode()->RemoveAttribute("xmlns:p"); },
      [](TZmDOMDocument& d) { d.GetRootNode()->FirstAttribute()->SetQualifiedName("xmlns:quite-a-long-name"); },
      [](TZmDOMDocument& d) { d.GetRootNode()->FirstElement()->AppendChild(d.GetRootNode()->FirstAttribute()); },
      [](TZmDOMDocument& d) { d.GetRootNode()->LastChild()->ParentNode()->SetNodeValue("a value that is long"); },
      [](TZmDOMDocument& d) {
        TZmDOMElement& root = *d.GetRootNode();
        root.ChildNodes().Count();
        root.Elements().Delete(root.LastElement());
        root.InsertElement("n", rdpBefore, root.FirstElement());
        root.AddElement("n");
        root.RemoveChild(root.FirstElement());
      },
      [](TZmDOMDocument& d) {  // with declarations that are left behind
        TZmDOMDocument other("o");
        other.GetRootNode()->AppendChild(d.GetRootNode()->AddElement("x")->AddElement("y"));
        d.GetRootNode()->LastElement()->AppendChild(d.GetRootNode()->FirstElement());
        other.GetRootNode()->AppendChild(d.GetRootNode()->LastElement());
      },
      [](TZmDOMDocument& d) { d.CreateNodeList("//* | //@x")->GetItem(0); },
      [](TZmDOMDocument& d) { d.SelectSingleElement("p:a/n/m", {soCreate})->SetAsInteger(7); },
      [](TZmDOMDocument& d) { d.SetEncoding("windows-1252"); },
  };
  for (const auto& edit : edits) {
    SCOPED_TRACE(&edit - edits);
    long failures = 0;
    for (long n = 1; failures == n - 1; ++n) {
      ASSERT_LT(n, 5000);
      auto document = Loaded("<r xmlns='d' xmlns:p='v'><p:a><b x='1'>t</b></p:a><e xmlns='f'/>t<g/></r>");
      AllocationsUntilFailure = n;
      try {
        edit(*document);
      } catch (const std::exception&) {
        ++failures;
      }
      const bool failed = AllocationsUntilFailure <= 0;
      AllocationsUntilFailure = -1;
      if (failed && failures < n) ++failures;  // done without what could not be had
      document->GetXML();
      for (TZmDOMElement* e = document->GetRootNode(); e;
           e = e->FirstElement() ? e->FirstElement() : e->NextElement()) {
        e->GetNamespaceURI();
        EXPECT_GE(e->ChildNodes().Count(), e->Elements().Count());
        Names(e->ChildNodes());
      }
      if (document->GetRootNode()) document->GetRootNode()->AddElement("fresh")->GetNamespaceURI();
      document->RefreshNamespaces();
      document->LoadFromXML(std::string_view("<ok/>"));
      EXPECT_EQ(Saved(*document), "<ok />");
    }
    EXPECT_GT(failures, 0);
  }
}

TEST(DOMNodes, ListsThatDepartKeepWhatTheyShowed) {
  const auto document = Loaded("<r x='1'><e/>t<f/>u<g/><h/></r>");
  TZmDOMElement& root = *document->GetRootNode();
  EXPECT_EQ(root.ChildNodes().Count(), 7);
  root.RemoveChild(root.FirstElement());
  root.ChildNodes().Delete(root.LastElement());
  EXPECT_EQ(Saved(root), "<r x=\"1\">t<f />u<g /></r>");

  TZmDOMAttribute* const attribute = root.FirstAttribute();
  for (TZmDOMNodeListBase* list :
       {static_cast<TZmDOMNodeListBase*>(&root.Elements()), static_cast<TZmDOMNodeListBase*>(&root.Attributes())})
    list->Add(list->Delete(list->Last()), rdpLast);
  EXPECT_FALSE(root.Elements().ContainsNode(attribute));
  TZmDOMNodeListBase& elements = root.Elements();
  elements.Add(attribute, rdpLast);
  EXPECT_EQ(Names(elements), "fghx");
  EXPECT_EQ(Raised<EAssertionFailed>([&] { elements.Add(nullptr, rdpLast); }), "Assertion failure (xml/uZmXMLDOM)");
}

#ifndef NDEBUG
TEST(DOMNodes, AListOfResultsTellsOfFreedNodes) {
  const auto document = Loaded("<r><a/><a/></r>");
  const auto list = document->GetRootNode()->CreateNodeList("a");
  document->GetRootNode()->RemoveChild(list->GetItem(0));
  EXPECT_EQ(Raised<EAssertionFailed>([&] { list->GetItem(0); }), "The list holds a node that has been freed!");
  EXPECT_EQ(list->GetItem(1)->GetQualifiedName(), u"a");
}
#endif

}  // namespace
