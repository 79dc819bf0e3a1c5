#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/support/DOM.h"

namespace {

using namespace zm;

/// The elements, each with its namespace, and their attributes that do not declare.
std::string Names(TZmDOMElement& Element) {
  std::string text = ToUTF8(Element.GetQualifiedName()) + "{" + ToUTF8(Element.GetNamespaceURI()) + "}";
  for (const TZmDOMAttribute* a : Element.AllAttributes())
    if (!a->IsNamespace()) text += "@" + ToUTF8(a->GetQualifiedName()) + "{" + ToUTF8(a->GetNamespaceURI()) + "}";
  if (!Element.HasChildElements()) return text;
  text += "(";
  for (TZmDOMElement* child : Element.ChildElements()) text += (text.back() == '(' ? "" : " ") + Names(*child);
  return text + ")";
}

TZmDOMElement* At(TZmDOMElement& Root, int First, int Second = -1) {
  TZmDOMElement* const element = Root.Elements()[First];
  return Second < 0 ? element : element->Elements()[Second];
}

struct TCase {
  const char* Text;
  void (*Edit)(TZmDOMElement& Root);
  const char* Names;
  const char* Saved = nullptr;
};

const TCase cCases[] = {
    // Loading.
    {"<a xmlns='u' x='1'><b/><c xmlns=''><d/></c></a>", nullptr, "a{u}@x{u}(b{u} c{}(d{}))"},
    {"<p:a xmlns:p='u' p:x='1' y='2'><p:b/><b/><p:c xmlns:p='v'><p:d/></p:c></p:a>", nullptr,
     "p:a{u}@p:x{u}@y{}(p:b{u} b{} p:c{v}(p:d{v}))"},
    {"<a xmlns='u&amp;v' xmlns:q='w'><q:b><c/></q:b></a>", nullptr, "a{u&v}(q:b{w}(c{u&v}))"},
    {"<P:a xmlns:p='u'/>", nullptr, "P:a{u}"},

    // Declarations come, go and change.
    {"<a><b/><p:c/></a>", [](TZmDOMElement& r) { r.SetAttribute("xmlns", "u"); }, "a{u}(b{u} p:c{})"},
    {"<a><b/><p:c p:y=''/></a>", [](TZmDOMElement& r) { r.SetAttribute("xmlns:p", "u"); }, "a{}(b{} p:c{u}@p:y{u})"},
    {"<a xmlns='u'><b><c/></b></a>", [](TZmDOMElement& r) { r.RemoveAttribute("xmlns"); }, "a{}(b{}(c{}))",
     "<a><b><c /></b></a>"},
    {"<a xmlns='u'><b xmlns='v'><c/></b></a>", [](TZmDOMElement& r) { At(r, 0)->RemoveAttribute("xmlns"); },
     "a{u}(b{u}(c{u}))"},
    {"<a xmlns='u'><b/></a>", [](TZmDOMElement& r) { r.SetAttribute("xmlns", "v"); }, "a{v}(b{v})"},
    {"<a xmlns:p='u'><p:b/><q:c/></a>", [](TZmDOMElement& r) { r.FirstAttribute()->SetQualifiedName("xmlns:q"); },
     "a{}(p:b{} q:c{u})"},
    {"<a x='u'><b/></a>", [](TZmDOMElement& r) { r.FirstAttribute()->SetQualifiedName("xmlns"); }, "a{u}(b{u})"},
    {"<a xmlns='u'><b/></a>", [](TZmDOMElement& r) { r.FirstAttribute()->SetLocalName("x"); }, "a{}@x{}(b{})"},
    {"<a xmlns:p='u'><b><p:c/></b></a>", [](TZmDOMElement& r) { At(r, 0)->AppendChild(r.FirstAttribute()); },
     "a{}(b{}(p:c{u}))", "<a><b xmlns:p=\"u\"><p:c /></b></a>"},
    {"<a><p:b xmlns:p='u'><p:c/></p:b></a>", [](TZmDOMElement& r) { r.AppendChild(At(r, 0)->FirstAttribute()); },
     "a{}(p:b{u}(p:c{u}))", "<a xmlns:p=\"u\"><p:b><p:c /></p:b></a>"},

    // Prefixes and names.
    {"<a xmlns:p='u'><b/></a>", [](TZmDOMElement& r) { At(r, 0)->SetPrefix("p"); }, "a{}(p:b{u})"},
    {"<a xmlns='v' xmlns:p='u'><p:b/></a>", [](TZmDOMElement& r) { At(r, 0)->SetPrefix(""); }, "a{v}(b{v})"},
    {"<a xmlns:p='u'><p:b/></a>", [](TZmDOMElement& r) { At(r, 0)->SetPrefix("q"); }, "a{}(q:b{})"},
    {"<a xmlns:p='u'><p:b/></a>",
     [](TZmDOMElement& r) {
       At(r, 0)->SetPrefix("q");
       r.SetAttribute("xmlns:q", "w");
     },
     "a{}(q:b{w})"},
    {"<a xmlns:p='u'><b/></a>", [](TZmDOMElement& r) { At(r, 0)->SetQualifiedName("p:c"); }, "a{}(p:c{u})"},
    {"<a xmlns:p='u' x=''/>", [](TZmDOMElement& r) { r.LastAttribute()->SetPrefix("p"); }, "a{}@p:x{u}"},

    // What is added.
    {"<a xmlns='u'/>", [](TZmDOMElement& r) { r.AddElement("b"); }, "a{u}(b{u})", "<a xmlns=\"u\"><b /></a>"},
    {"<a xmlns:p='u'/>", [](TZmDOMElement& r) { r.AddElement("p:b"); }, "a{}(p:b{u})"},
    {"<a/>", [](TZmDOMElement& r) { r.AddElement("u", "b")->AddElement("c"); }, "a{}(b{u}(c{u}))",
     "<a><b xmlns=\"u\"><c /></b></a>"},
    {"<a/>", [](TZmDOMElement& r) { r.AddElement("u", "p:b"); }, "a{}(p:b{u})", "<a><p:b xmlns:p=\"u\" /></a>"},
    {"<a xmlns='u'/>", [](TZmDOMElement& r) { r.AddElement("u", "b"); }, "a{u}(b{u})", "<a xmlns=\"u\"><b /></a>"},
    {"<a xmlns:p='u'/>", [](TZmDOMElement& r) { r.AddElement("u", "b"); }, "a{}(b{u})",
     "<a xmlns:p=\"u\"><b xmlns=\"u\" /></a>"},
    {"<a xmlns='u'/>", [](TZmDOMElement& r) { r.AddElement("u", "p:b"); }, "a{u}(p:b{u})",
     "<a xmlns=\"u\"><p:b xmlns:p=\"u\" /></a>"},
    {"<a xmlns='u'/>", [](TZmDOMElement& r) { r.AddElement("", "b"); }, "a{u}(b{})",
     "<a xmlns=\"u\"><b xmlns=\"\" /></a>"},
    {"<a xmlns:p='u'/>", [](TZmDOMElement& r) { r.AddAttribute("u", "x"); }, "a{}@p:x{u}"},
    {"<a/>", [](TZmDOMElement& r) { r.AddAttribute("u", "p:x"); }, "a{}@p:x{u}"},

    // SetNamespaceURI in the tree.
    {"<a xmlns='u' xmlns:p='v'><b/></a>", [](TZmDOMElement& r) { At(r, 0)->SetNamespaceURI("v"); }, "a{u}(b{v})",
     "<a xmlns=\"u\" xmlns:p=\"v\"><b xmlns=\"v\" /></a>"},
    {"<a xmlns='u'><b xmlns='v'><c/></b></a>", [](TZmDOMElement& r) { At(r, 0)->SetNamespaceURI("w"); },
     "a{u}(b{w}(c{w}))", "<a xmlns=\"u\"><b xmlns=\"w\"><c /></b></a>"},
    {"<a><b/></a>", [](TZmDOMElement& r) { At(r, 0)->SetNamespaceURI("w"); }, "a{}(b{})"},

    // Subtrees that move.
    {"<a xmlns='u'><b/><c xmlns='v'/></a>", [](TZmDOMElement& r) { At(r, 1)->AppendChild(At(r, 0)); },
     "a{u}(c{v}(b{u}))", "<a xmlns=\"u\"><c xmlns=\"v\"><b xmlns=\"u\" /></c></a>"},
    {"<a><b xmlns:p='u'><p:c><p:d/></p:c></b></a>", [](TZmDOMElement& r) { r.AppendChild(At(r, 0, 0)); },
     "a{}(b{} p:c{u}(p:d{u}))", "<a><b xmlns:p=\"u\" /><p:c xmlns:p=\"u\"><p:d /></p:c></a>"},
    {"<a xmlns:p='u'><p:b/><c xmlns:p='v'/></a>", [](TZmDOMElement& r) { At(r, 1)->AppendChild(At(r, 0)); },
     "a{}(c{}(p:b{u}))", "<a xmlns:p=\"u\"><c xmlns:p=\"v\"><p:b xmlns:p=\"u\" /></c></a>"},
    {"<a><x xmlns:p='u' xmlns:q='w'><b><p:c><q:d/></p:c><p:e/></b></x></a>",
     [](TZmDOMElement& r) { r.AppendChild(At(r, 0, 0)); }, "a{}(x{} b{}(p:c{u}(q:d{w}) p:e{u}))",
     "<a><x xmlns:p=\"u\" xmlns:q=\"w\" /><b><p:c xmlns:p=\"u\"><q:d xmlns:q=\"w\" /></p:c><p:e xmlns:p=\"u\" "
     "/></b></a>"},
    {"<a><x xmlns='d' xmlns:p='u'><p:b><c/></p:b></x></a>",
     [](TZmDOMElement& r) {
       const auto held = Supports<IZmDOMElement>(At(r, 0, 0)), below = held->FirstElement();
       At(r, 0)->RemoveChild(At(r, 0, 0));
       EXPECT_EQ(below->GetNamespaceURI(), u"d");
       r.AppendChild(TZmDOMObjectImpl::Node(held.Get()));
     },
     "a{}(x{d} p:b{u}(c{d}))", "<a><x xmlns=\"d\" xmlns:p=\"u\" /><p:b xmlns:p=\"u\"><c xmlns=\"d\" /></p:b></a>"},
    {"<a xmlns:p='v'><x xmlns:p='u'><b><p:c/></b></x></a>", [](TZmDOMElement& r) { r.AppendChild(At(r, 0, 0)); },
     "a{}(x{} b{}(p:c{v}))"},  // by its prefix, where that is declared
    {"<a><x xmlns:p='u'><b><p:c/></b></x></a>",
     [](TZmDOMElement& r) {
       TZmDOMElement* const b = At(r, 0, 0);
       TZmDOMDocument other("o");
       other.GetRootNode()->AppendChild(b);
       EXPECT_EQ(Names(*other.GetRootNode()), "o{}(b{}(p:c{u}))");
       r.AppendChild(b);
       At(r, 1, 0)->RemoveAttribute("xmlns:p");
     },
     "a{}(x{} b{}(p:c{}))", "<a><x xmlns:p=\"u\" /><b><p:c /></b></a>"},
    {"<a><b/><c xmlns='v'/></a>",
     [](TZmDOMElement& r) {
       const auto held = Supports<IZmDOMElement>(At(r, 0));
       r.RemoveChild(At(r, 0));
       At(r, 0)->AppendChild(TZmDOMObjectImpl::Node(held.Get()));
     },
     "a{}(c{v}(b{}))", "<a><c xmlns=\"v\"><b xmlns=\"\" /></c></a>"},

    // Copies.
    {"<a xmlns='u'><b><c/></b></a>", [](TZmDOMElement& r) { r.AppendChild(At(r, 0)->CloneNode(true)); },
     "a{u}(b{u}(c{u}) b{u}(c{u}))", "<a xmlns=\"u\"><b><c /></b><b><c /></b></a>"},
    {"<a><p:b xmlns:p='u' p:x='1'><p:c/><q xmlns='w'/></p:b></a>",
     [](TZmDOMElement& r) { r.AppendChild(At(r, 0)->CloneNode(true)); },
     "a{}(p:b{u}@p:x{u}(p:c{u} q{w}) p:b{u}@p:x{u}(p:c{u} q{w}))",
     "<a><p:b xmlns:p=\"u\" p:x=\"1\"><p:c /><q xmlns=\"w\" /></p:b>"
     "<p:b xmlns:p=\"u\" p:x=\"1\"><p:c /><q xmlns=\"w\" /></p:b></a>"},
    {"<a xmlns:p='u'><b><p:c/></b><d xmlns:p='v'/></a>",
     [](TZmDOMElement& r) { At(r, 1)->AppendChild(At(r, 0)->CloneNode(true)); }, "a{}(b{}(p:c{u}) d{}(b{}(p:c{u})))",
     "<a xmlns:p=\"u\"><b><p:c /></b><d xmlns:p=\"v\"><b><p:c xmlns:p=\"u\" /></b></d></a>"},
    {"<a x='1'><b/></a>", [](TZmDOMElement& r) { r.AppendChild(r.CloneNode(false)); }, "a{}@x{}(b{} a{}@x{})"},
};

TEST(DOMNamespaces, DocumentEditResult) {
  for (const TCase& c : cCases) {
    SCOPED_TRACE(std::string(c.Text) + " -> " + c.Names);
    const auto document = Create<TZmDOMDocument>();
    document->CreateRootNode("pre");  // what is loaded into an element is made in another way
    const auto text = Create<TZmStringStream>(std::string_view(c.Text), std::uint16_t{65001});
    document->GetRootNode()->LoadFromStream(text.get(), 65001);
    for (const bool whole : {true, false}) {
      const auto loaded = Loaded(c.Text);
      TZmDOMElement& root = whole ? *loaded->GetRootNode() : *document->GetRootNode()->FirstElement();
      if (c.Edit) c.Edit(root);
      EXPECT_EQ(Names(root), c.Names) << whole;
      if (c.Saved) {
        EXPECT_EQ(Saved(root), c.Saved) << whole;
      }
    }
  }
}

TEST(DOMNamespaces, LooseElementsHoldTheirs) {
  auto loose = Create<TZmDOMElement>("b");
  EXPECT_EQ(loose->GetNamespaceURI(), u"");
  loose->SetNamespaceURI("u");
  EXPECT_EQ(loose->GetNamespaceURI(), u"u");
  const auto document = Loaded("<a xmlns='u'/>");
  TZmDOMElement* const b = document->GetRootNode()->AppendChild(std::move(loose));
  EXPECT_EQ(Saved(*document), "<a xmlns=\"u\"><b /></a>");
  const auto held = Supports<IZmDOMElement>(b);
  document->GetRootNode()->RemoveChild(b);
  EXPECT_EQ(b->GetNamespaceURI(), u"u");
  EXPECT_EQ(b->GetNamespace(), nullptr);
  const auto copy = b->CloneNode(true);
  EXPECT_EQ(copy->GetNamespaceURI(), u"u");
  const auto other = Create<TZmDOMDocument>("x");
  other->GetRootNode()->AppendChild(b);
  EXPECT_EQ(Saved(*other), "<x><b xmlns=\"u\" /></x>");
}

TEST(DOMNamespaces, DeclarationsInForce) {
  const auto document = Loaded("<a xmlns='u' xmlns:p='v'><b xmlns:p='w' xmlns:q='x'><c/></b></a>");
  TZmDOMElement* const c = At(*document->GetRootNode(), 0, 0);
  std::string text;
  for (int i = 0; i < c->Namespaces().Count(); ++i) text += ToUTF8(c->Namespaces()[i]->GetNodeValue());
  EXPECT_EQ(text, "uwx");
  EXPECT_EQ(c->FindNamespace("v"), nullptr) << "covered";
  EXPECT_EQ(c->FindNamespace("w")->GetQualifiedName(), u"xmlns:p");
  EXPECT_EQ(c->Namespaces().FindNamespace("x")->OwnerElement(), c->ParentElement());
  document->GetRootNode()->SetAttribute("xmlns:z", "y");
  EXPECT_EQ(c->Namespaces().Count(), 4);
  c->ParentElement()->RemoveAttribute("xmlns:p");
  EXPECT_EQ(c->FindNamespace("v")->GetQualifiedName(), u"xmlns:p");
}

TEST(DOMNamespaces, LooseTreesForgetDeclarationsThatGo) {
  auto document = Loaded("<r><a xmlns='u'><b/></a></r>");
  const auto a = Supports<IZmDOMElement>(document->GetRootNode()->FirstElement());
  document->GetRootNode()->RemoveChild(document->GetRootNode()->FirstElement());
  EXPECT_EQ(a->FirstElement()->GetNamespaceURI(), u"u");
  a->RemoveAttribute(u"xmlns");
  EXPECT_FALSE(a->GetNamespace());
  EXPECT_EQ(a->FirstElement()->GetNamespaceURI(), u"");
}

TEST(DOMNamespaces, ClearForgetsTheDeclarationsOfItsOwn) {
  const auto document = Loaded("<a xmlns='u'><p:b xmlns:p='v'/></a>");
  TZmDOMElement* const root = document->GetRootNode();
  root->FirstElement()->Clear();
  EXPECT_FALSE(root->FirstElement()->GetNamespace());
  root->FirstElement()->AddAttribute("xmlns:q");
  const auto held = Supports<IZmDOMElement>(root->AddElement("q:c"));
  root->AddAttribute("xmlns:q")->SetNodeValue("w");
  EXPECT_EQ(held->GetNamespaceURI(), u"w");
  root->Clear();
  EXPECT_FALSE(root->GetNamespace());
  EXPECT_EQ(held->GetNamespaceURI(), u"w") << "the declaration stood behind it";
}

TEST(DOMNamespaces, LoadsDoNotRememberWhatHasChanged) {
  const auto document = Create<TZmDOMDocument>("r");
  TZmDOMElement* const root = document->GetRootNode();
  for (const char16_t* uri : {u"u", u"v", u"w"}) {
    root->RemoveAttribute("xmlns:p");
    root->SetAttribute("xmlns:p", uri);
    const auto text = Create<TZmStringStream>(std::string_view("<p:a/>"), std::uint16_t{65001});
    root->LoadFromStream(text.get(), 65001);
    EXPECT_EQ(root->LastElement()->GetNamespaceURI(), uri);
  }
}

TEST(DOMNamespaces, ManyDeclarationsStayLinear) {
  constexpr int many = 100'000;
  std::string text = "<r";
  for (int i = 0; i < many; ++i) text += " xmlns:P" + std::to_string(i) + "='u" + std::to_string(i) + "'";
  text += ">";
  for (int i = 0; i < many; ++i) text += "<p" + std::to_string(i) + ":e/>";
  const auto document = Loaded(text + "</r>");
  EXPECT_EQ(document->GetRootNode()->LastElement()->GetNamespaceURI(), u"u99999");
  EXPECT_EQ(document->GetRootNode()->LastElement()->Namespaces().Count(), many);

  const auto made = Loaded("<r><p7:e/></r>");
  TZmDOMElement& root = *made->GetRootNode();
  for (int i = 0; i < many; ++i) root.AddAttribute("xmlns:P" + std::to_string(i))->SetNodeValue(std::to_string(i));
  EXPECT_EQ(root.FirstElement()->GetNamespaceURI(), u"7");
  for (int i = 0; i < 5; ++i) root.AddElement(std::to_string(i), "p" + std::to_string(i) + ":e");
  EXPECT_EQ(root.LastElement()->GetNamespace()->GetQualifiedName(), u"xmlns:P4");
  root.FirstElement()->SetPrefix("P5");
  for (TZmDOMAttribute* a = root.LastAttribute(); a != root.FirstAttribute(); a = root.LastAttribute())
    root.RemoveChild(a);
  EXPECT_EQ(Names(root).substr(0, 20), "r{}(P5:e{} p0:e{0} p");

  // Two prefixes in turn, and a declaration at every level.
  text = "<r xmlns:p='u' xmlns:q='v'>";
  for (int i = 0; i < many; ++i) text += std::string(i % 2 ? "<p" : "<q") + ":e xmlns:n" + std::to_string(i) + "='u'>";
  for (int i = many; i-- > 0;) text += std::string(i % 2 ? "</p" : "</q") + ":e>";
  const auto deep = Loaded(text + "</r>");
  deep->GetRootNode()->SetAttribute("xmlns:p", "w");
  deep->GetRootNode()->RefreshNamespaces();
  EXPECT_EQ(deep->GetRootNode()->FirstElement()->FirstElement()->GetNamespaceURI(), u"w");
}

}  // namespace

// Deep chains of declarations are searched by prefix while they load.
TEST(DOMNamespaces, ManyLevelsDeclare) {
  constexpr int deep = 20000;
  const auto name = [](int i) { return "p" + std::to_string(i); };
  std::string text;
  for (int i = 0; i < deep; ++i) {
    const std::string prefix = i % 3 == 0 ? "q" + std::to_string(i) : i % 3 == 1 ? name(i / 2) : "P0";
    text +=
        '<' + prefix + ":a xmlns:" + name(i) + "='u" + std::to_string(i) + "' xmlns:p0='v" + std::to_string(i) + "'>";
  }
  text += "<p0:b/><p7:b/><q:b/>";
  for (int i = deep; i-- > 0;) {
    const std::string prefix = i % 3 == 0 ? "q" + std::to_string(i) : i % 3 == 1 ? name(i / 2) : "P0";
    text += "</" + prefix + ":a>";
  }
  const auto document = Create<TZmDOMDocument>();
  document->LoadFromXML(std::string_view(text));
  TZmDOMElement* element = document->GetRootNode();
  for (int i = 0; i < deep; i += i < 100 ? 1 : 997) {
    const std::string uri = i % 3 == 0   ? ""
                            : i % 3 == 2 ? "v" + std::to_string(i)
                            : i / 2 == 0 ? "v" + std::to_string(i)
                                         : "u" + std::to_string(i / 2);
    EXPECT_EQ(ToUTF8(element->GetNamespaceURI()), uri) << i;
    for (int step = i < 100 ? 1 : 997; step > 0 && i + step < deep; --step) element = element->FirstElement();
  }
}
