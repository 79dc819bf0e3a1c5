#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/DOM.h"
#include "tests/support/Raised.h"

namespace {

using namespace zm;

/// The nodes below a node: type, name or value, children in brackets.
std::string Shape(TZmDOMNode& Node) {
  std::string text;
  for (TZmDOMNode* child : Node.Children()) {
    if (!text.empty()) text += " ";
    switch (child->GetNodeType()) {
      case ntElement:
        text += ToUTF8(child->GetQualifiedName()) + "[" + Shape(*child) + "]";
        break;
      case ntAttribute:
        text += "@" + ToUTF8(child->GetQualifiedName()) + "=" + ToUTF8(child->GetNodeValue());
        break;
      case ntProcessingInstruction:
        text += "?" + ToUTF8(child->GetQualifiedName()) + "=" + ToUTF8(child->GetNodeValue());
        break;
      default:
        text += ToUTF8(ZmDOMNodeTypes[child->GetNodeType()].substr(0, 2)) + "'" + ToUTF8(child->GetNodeValue()) + "'";
    }
  }
  return text;
}

TZmOwner<TZmStringStream> StreamOf(std::string_view Bytes) { return Create<TZmStringStream>(Bytes, std::uint16_t{0}); }

struct TCase {
  const char* Text;
  const char* Shape;  // or what is raised
};

TEST(DOMBuilder, WhatIsBuilt) {
  static const TCase cases[] = {
      {"<?xml version='1.0'?><!DOCTYPE a [<!ELEMENT a ANY>]><?p  d?><!--c--><a/>", "?xml=version='1.0' ?p=d Co'c' a[]"},
      {"<a x='1&lt;2' y=\"'\">t&amp;u<b/>v</a>", "a[@x=1<2 @y=' Te't&u' b[] Te'v']"},
      {"<a> <b> x </b>\n</a>", "a[b[Te' x ']]"},
      {"<a xml:space='preserve'> <b> </b><c xml:space='default'> <d/></c></a>",
       "a[@xml:space=preserve Te' ' b[Te' '] c[@xml:space=default d[]]]"},
      {"<a><![CDATA[<&]]><![CDATA[]]>&#x41;</a>", "a[CD'<&' CD'' Te'A']"},
      {"<a></a><!--behind--><?p?>", "a[] Co'behind' ?p="},
      {"<a/> \n ", "a[]"},
      {"  {\"n\":1}",
       "object[@xmlns:xsi=http://www.w3.org/2001/XMLSchema-instance @xmlns:xsd=http://www.w3.org/2001/XMLSchema "
       "n[@xsd:type=decimal Te'1']]"},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.Text);
    const auto document = Create<TZmDOMDocument>();
    document->LoadFromStream(StreamOf(c.Text).get());
    EXPECT_EQ(Shape(*document), c.Shape);
    EXPECT_EQ(document->GetLoadState(), lsLoaded);
    const auto again = Create<TZmDOMDocument>();
    again->AppendChild(Create<TZmDOMComment>());  // so that what is loaded stands for itself
    again->LoadFromStream(StreamOf(c.Text).get());
    EXPECT_EQ(Shape(*again), "Co'' " + std::string(c.Shape));
  }
}

TEST(DOMBuilder, WhatIsRefused) {
  static const TCase cases[] = {
      {"<a><b/>\n <c", "loaded a[b[]]"},  // the reader lets open ends pass
      {"<a/><b/>",
       "Line 1, column 5: The document is not wellformed!\r\n"
       "A XML document may not contain multiple root elements. / a[]"},
      {"<a/>x",
       "Line 1, column 5: The document is not wellformed!\r\n"
       "An invalid token was detected at the root level of the document. / a[]"},
      {"<a/><![CDATA[x]]>", "Line 1, column 15: There is no node that the event Characters could add to! / a[]"},
      {"", "Line 1, column 1: The document is not wellformed!\r\n\"\" expected, but \"\" found! / "},
      {"   ", "Line 1, column 2: The document is not wellformed!\r\n\"\" expected, but \"\" found! / "},
      {"\xEF\xBB\xBF", "Line 1, column 2: The document is not wellformed!\r\n\"\" expected, but \"\" found! / "},
      {"x", "Line 1, column 2: The document is not wellformed!\r\n\"\" expected, but \"\" found! / "},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.Text);
    const auto document = Create<TZmDOMDocument>();
    std::string said = "loaded ";
    try {
      document->LoadFromStream(StreamOf(c.Text).get());
      EXPECT_EQ(document->GetLoadState(), lsLoaded);
    } catch (const EZmDomSyntax& e) {
      said = e.what() + std::string(" / ");
      EXPECT_EQ(document->GetLoadState(), lsLoading);
    }
    EXPECT_EQ(said + Shape(*document), c.Shape);
    document->LoadFromXML(std::string_view("<ok/>"));
    EXPECT_EQ(Shape(*document), "ok[]");
  }
}

TEST(DOMBuilder, ManyLoadsStayLinear) {
  const auto document = Create<TZmDOMDocument>();
  for (int i = 0; i < 30'000; ++i) document->LoadFromStream(StreamOf("<!--c--><?p?><a/>").get());
  EXPECT_EQ(document->GetEncoding(), u"UTF-8");
  document->LoadFromStream(StreamOf("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a/>").get());
  document->ReCalcEncoding();
  EXPECT_EQ(document->GetEncoding(), u"iso-8859-1");
  document->AddChild(document->FindProcessingInstruction("XML"), document->FirstChild(), rdpAfter);
  document->SetEncoding("UTF-16");
  EXPECT_EQ(document->GetProcessingInstruction("xml"), u"version=\"1.0\" encoding=\"UTF-16\"");
  document->FindProcessingInstruction("xml")->SetQualifiedName("q");
  EXPECT_EQ(document->FindProcessingInstruction("xml"), nullptr);
  document->FindProcessingInstruction("p")->SetQualifiedName("xml");
  EXPECT_EQ(document->GetProcessingInstruction("xml"), u"");
  document->RemoveChild(document->FindProcessingInstruction("xml"));
  EXPECT_EQ(document->FindProcessingInstruction("xml"), nullptr);
}

TEST(DOMBuilder, FatalErrorEvent) {
  const auto document = Create<TZmDOMDocument>();
  std::string told;
  bool handle = false;
  document->SetOnParseFatalError([&](IZmSAXLocator* locator, StringView message, bool& handled) {
    EXPECT_FALSE(handled);
    handled = handle;
    told += std::to_string(locator->GetLineNr()) + ":" + std::to_string(locator->GetColNr()) + " " + ToUTF8(message);
  });
  const auto load = [&] { document->LoadFromXML(std::string_view("<a/>\n<![CDATA[x]]>")); };
  const std::string message = "There is no node that the event Characters could add to!";
  EXPECT_EQ(Raised<EZmDomSyntax>(load), "Line 2, column 11: " + message);
  EXPECT_EQ(told, "2:11 " + message);
  handle = true;
  EXPECT_EQ(Raised<EZmDomHierarchyRequest>(load), message) << "handled: the exception itself goes on";
  document->SetOnParseFatalError([&](IZmSAXLocator*, StringView, bool&) { document->Clear(); });
  EXPECT_EQ(Raised<EZmDomSyntax>(load), "Line 2, column 11: " + message);
  EXPECT_EQ(Shape(*document), "");
  document->SetOnParseFatalError(nullptr);
  EXPECT_EQ(Raised<EZmDomSyntax>(load), "Line 2, column 11: " + message);
}

TEST(DOMBuilder, ElementsLoadFragments) {
  static const TCase cases[] = {
      {"<b/><c/>", "old[] b[] c[]"},
      {"<b/> x <!--y--><?z?>", "old[] b[] Te'x ' Co'y' ?z="},
      {"<b/><![CDATA[x]]>", "old[] b[] CD'x'"},
      {"<b>1</b>2<c/>3", "old[] b[Te'1'] Te'2' c[] Te'3'"},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.Text);
    const auto document = Loaded("<r><old/></r>");
    std::string said;
    try {
      document->GetRootNode()->LoadFromStream(StreamOf(c.Text).get(), 65001);
    } catch (const Exception& e) {
      said = std::string(" ") + e.what();
    }
    EXPECT_EQ(Shape(*document->GetRootNode()) + said, c.Shape);
  }
  // An element without a document takes what is loaded too.
  const auto loose = Create<TZmDOMElement>("r");
  loose->LoadFromStream(StreamOf("<b xmlns='u' x='&amp;'>t</b>").get(), 65001);
  EXPECT_EQ(Shape(*loose), "b[@xmlns=u @x=& Te't']");
  EXPECT_EQ(loose->FirstElement()->GetNamespaceURI(), u"u");
}

TEST(DOMBuilder, StreamsAppendTextsReplace) {
  const auto document = Loaded("<a/>");
  TZmDOMElement* const root = document->GetRootNode();
  document->LoadFromStream(StreamOf("<b/>").get());
  EXPECT_EQ(Shape(*document), "a[] b[]");
  EXPECT_EQ(document->GetRootNode(), root);
  document->LoadXML(u"<c/>");
  EXPECT_EQ(Shape(*document), "c[]");
  EXPECT_EQ(document->GetRootNode()->GetQualifiedName(), u"c");
  document->LoadFromXML(std::string_view());
  EXPECT_EQ(Shape(*document), "");
  EXPECT_EQ(document->GetRootNode(), nullptr);
  document->SetLoadState(lsComplete);
  document->LoadFromStream(StreamOf("<b/>").get(), 65001);
  EXPECT_EQ(document->GetLoadState(), lsComplete) << "left alone";
  document->LoadFromXML(std::string_view("<d xmlns:i='HTTP://www.w3.org/2001/xmlschema-instance'/>"));
  EXPECT_TRUE(document->GetUseSchemaInstance());
}

std::string UTF16(StringView Text, bool Swapped) {
  std::string bytes;
  for (const char16_t c : Text) {
    const char low = static_cast<char>(c & 0xFF), high = static_cast<char>(c >> 8);
    bytes += {Swapped ? high : low, Swapped ? low : high};
  }
  return bytes;
}

TEST(DOMBuilder, Encodings) {
  struct TEncoded {
    std::string Bytes;
    const char* Text;  // of the root element, or what is raised
    const char* Encoding = "UTF-8";
    bool StreamAlone = false;
  };
  const TEncoded cases[] = {
      {"<a>\xC3\xA9</a>", "\xC3\xA9"},
      {"\xEF\xBB\xBF<a>\xC3\xA9</a>", "\xC3\xA9", "UTF-8", true},
      {"  \n<a>\xC3\xA9</a>", "\xC3\xA9"},
      {"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a>\xE9</a>", "\xC3\xA9", "iso-8859-1"},
      {"<?xml version=\"1.0\" ENCODING=\" Windows-1252 \"?><a>\x80</a>", "\xE2\x82\xAC", "windows-1252", true},
      {"<?xml version=\"1.0\" encoding=\"\"?><a>\xC3\xA9</a>", "\xC3\xA9"},
      {"<?xml encoding=\"nowhere\"?><a/>", "raised Unknown encoding \"nowhere\""},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><a>\xC3\xA9</a>", "\xC3\xA9", "UTF-8", true},
      {UTF16(u"\uFEFF<a>\u00E9\U0001F600</a>", false), "\xC3\xA9\xF0\x9F\x98\x80", "UTF-16", true},
      {UTF16(u"\uFEFF  <a>\u00E9</a>", true), "\xC3\xA9", "UTF-16BE", true},
      {UTF16(u"\uFEFF<a>\xD800x</a>", false), "\xEF\xBF\xBDx", "UTF-16", true},
      {"<a>\xC3(\xE2\x82</a>", "\xEF\xBF\xBD(\xEF\xBF\xBD"},
  };
  for (const TEncoded& c : cases) {
    SCOPED_TRACE(c.Bytes);
    for (const bool stream : {true, false}) {
      if (!stream && c.StreamAlone) continue;
      const auto document = Create<TZmDOMDocument>();
      std::string text = "raised";
      try {
        if (stream)
          document->LoadFromStream(StreamOf(c.Bytes).get());
        else
          document->LoadFromXML(std::string_view(c.Bytes));
        text = ToUTF8(document->GetText());
      } catch (const Exception& e) {
        text += std::string(" ") + e.what();
      }
      EXPECT_EQ(text, c.Text) << stream;
      EXPECT_EQ(ToUTF8(document->GetEncoding()), c.Encoding) << stream;
    }
  }
  const auto wide = Create<TZmDOMDocument>();
  wide->LoadFromXML(StringView(u"<?xml encoding=\"ISO-8859-1\"?><a>\u20AC\xDC00</a>"));
  EXPECT_EQ(wide->GetText(), u"\u20AC\xDC00") << "lone surrogates stay in memory";
}

// Classes of an application are asked where they stand in the way.
class TWatched : public TZmDOMDocument {
  ZM_OBJECT(TWatched, TZmDOMDocument)
 public:
  int Appended = 0, WasLoaded = 0;
  using TZmDOMDocument::AppendChild;
  void AppendChild(TZmDOMNode* Node) override {
    ++Appended;
    TZmDOMDocument::AppendChild(Node);
  }

 protected:
  void DoXMLLoaded() override { ++WasLoaded; }
};

TEST(DOMBuilder, DescendantsAreCalled) {
  const auto document = Create<TWatched>();
  document->LoadFromXML(std::string_view("<!--c--><a><b/></a>"));
  document->LoadFromStream(StreamOf("<d/>").get());
  EXPECT_EQ(document->Appended, 3);
  EXPECT_EQ(document->WasLoaded, 2);
  EXPECT_EQ(Shape(*document), "Co'c' a[b[]] d[]");
  EXPECT_EQ(document->GetRootNode()->GetQualifiedName(), u"a");
}

class TTouching : public TZmDOMDocument {
  ZM_OBJECT(TTouching, TZmDOMDocument)
 public:
  void AppendChild(TZmDOMNode* Node) override {
    TZmDOMDocument::AppendChild(Node);
    if (Node->GetNodeType() == ntComment) Node->SetNodeValue("early");
    if (Node->GetNodeType() == ntProcessingInstruction) Node->SetOnParseError([](IZmSAXLocator*, StringView, bool&) {});
  }
};

TEST(DOMBuilder, TextsComeToNodesThatDescendantsHaveTouched) {
  const auto document = Create<TTouching>();
  document->LoadFromXML(std::string_view("<!--c--><?p d?><a/>"));
  EXPECT_EQ(Saved(*document), "<!--c--><?p d?><a />");
}

}  // namespace
