#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/Raised.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/xml/dom/Document.h"

namespace {

using namespace zm;
using namespace std::string_literals;
using namespace std::string_view_literals;

TZmOwner<TZmDOMDocument> Loaded(std::string_view Text) {
  TZmOwner<TZmDOMDocument> document = Create<TZmDOMDocument>();
  document->LoadFromXML(Text);
  return document;
}

/// What a node writes behind what a stream holds already.
std::string Saved(TZmDOMNode& Node, bool Formatted = false, std::uint16_t Page = cZmPageUTF8, std::string Before = {}) {
  const std::size_t behind = Before.size();
  TZmStringStream stream(std::move(Before), Page);
  stream.SetPosition(static_cast<std::int64_t>(behind));
  Node.SaveToStream(&stream, Page, Formatted);
  return stream.GetDataString().substr(behind);
}

std::string JSON(TZmDOMNode& Node, bool Formatted = false) {
  TZmStringStream stream(cZmPageUTF8);
  Node.SaveToJSONStream(&stream, cZmPageUTF8, Formatted);
  return stream.GetDataString();
}

TEST(DOMWriterTest, WritesEachKindOfNode) {
  struct TCase {
    const char* Source;
    const char* Plain;
    const char* Formatted;
  };
  const TCase cases[] = {
      {"<?xml version=\"1.0\"?><root a=\"1\"><child>text</child><empty/></root>",
       "<?xml version=\"1.0\"?><root a=\"1\"><child>text</child><empty /></root>",
       "<?xml version=\"1.0\"?>\r\n<root a=\"1\">\r\n  <child>text</child>\r\n  <empty />\r\n</root>"},
      {"<a><b/></a>", "<a><b /></a>", "<a>\r\n  <b />\r\n</a>"},
      {"<a x='1' y='&lt;\"'></a>", "<a x=\"1\" y=\"&lt;\"\" />", "<a x=\"1\" y=\"&lt;\"\" />"},
      {"<a>&amp;<b>c</b>d<![CDATA[<]]></a>", "<a>&amp;<b>c</b>d<![CDATA[<]]></a>",
       "<a>&amp;\r\n  <b>c</b>d<![CDATA[<]]>\r\n</a>"},
      {"<!--k--><a><!--l--></a>", "<!--k--><a><!--l--></a>", "\r\n<!--k-->\r\n<a>\r\n  <!--l--></a>"},
      {"<?p?><?q r?><a><?s?></a>", "<?p?><?q r?><a />", "<?p?>\r\n<?q r?>\r\n<a />"},
      {"<root><?s t?>u<b/></root>", "<root><?s t?>u<b /></root>", "<root>\r\n  <?s t?>u\r\n  <b />\r\n</root>"},
      {"<a><b xml:space='preserve'> <c/><!--d--><?e?></b></a>",
       "<a><b xml:space=\"preserve\"> <c /><!--d--><?e?></b></a>",
       "<a><b xml:space=\"preserve\"> <c /><!--d-->\r\n<?e?></b>\r\n</a>"},
      {"<p:a xmlns:p='u' p:b='\xC3\xA9\xF0\x9F\x98\x80'/>", "<p:a xmlns:p=\"u\" p:b=\"\xC3\xA9\xF0\x9F\x98\x80\" />",
       "<p:a xmlns:p=\"u\" p:b=\"\xC3\xA9\xF0\x9F\x98\x80\" />"},
  };
  for (const TCase& c : cases) {
    const auto document = Loaded(c.Source);
    EXPECT_EQ(c.Plain, Saved(*document));
    EXPECT_EQ(c.Formatted, Saved(*document, true));
    EXPECT_EQ(c.Plain, ToUTF8(document->GetXML()));
    EXPECT_EQ(c.Formatted, ToUTF8(document->GetFormattedXML()));
  }
}

TEST(DOMWriterTest, AsksWhereTheStreamStands) {
  struct TCase {
    const char* Source;
    std::string Before;
    const char* Text;
  };
  const TCase cases[] = {
      {"<a/>", "", "<a />"},      {"<a/>", "\xFF\xFE", "<a />"},         {"<a/>", "ab", "\r\n<a />"},
      {"<a/>", "x", "\r\n<a />"}, {"<a/>", "\xEF\xBB\xBF", "\r\n<a />"}, {"<?p?>", "", "<?p?>"},
      {"<?p?>", "1234", "<?p?>"}, {"<?p?>", "12345", "\r\n<?p?>"},       {"<!--c-->", "", "\r\n<!--c-->"},
  };
  for (const TCase& c : cases) {
    const auto document = Loaded("<z>"s + c.Source + "</z>");
    const auto node = document->GetRootNode()->FirstChild()->CloneNode(true);
    EXPECT_EQ(c.Text, Saved(*node, true, cZmPageUTF8, c.Before)) << c.Before;
  }
}

TEST(DOMWriterTest, WritesMarksForTwoPages) {
  const auto document = Loaded("<a>\xC3\xA9</a>");
  struct TCase {
    std::uint16_t Page;
    std::string Bytes;
  };
  const TCase cases[] = {{1200, "\xFF\xFE<\0a\0>\0\xE9\0<\0/\0a\0>\0"s},
                         {65001, "\xEF\xBB\xBF\r\n<a>\xC3\xA9</a>"},
                         {1252, "<a>\xE9</a>"},
                         {20127, "<a>?</a>"}};
  for (const TCase& c : cases) {
    TMemoryStream stream;
    document->SetCodePage(c.Page);
    document->SaveToStream(&stream, true, true);
    EXPECT_EQ(c.Bytes,
              std::string(static_cast<const char*>(stream.GetMemory()), static_cast<std::size_t>(stream.GetSize())));
  }
}

TEST(DOMWriterTest, WritesLoneSurrogates) {
  const auto document = Loaded("<a/>");
  const String lone = u"x\xD800y";
  document->GetRootNode()->AddText(lone);
  EXPECT_EQ(u"<a>x\xD800y</a>"sv, document->GetXML());
  EXPECT_EQ("<a>x\xEF\xBF\xBDy</a>", Saved(*document));
  document->GetRootNode()->SetQualifiedName(lone);
  document->GetRootNode()->SetAttribute(lone, lone);
  EXPECT_EQ(u"<x\xD800y x\xD800y=\"x\xD800y\">x\xD800y</x\xD800y>"sv, document->GetXML());
  EXPECT_EQ(u"<x\uFFFDy x\uFFFDy=\"x\uFFFDy\">x\uFFFDy</x\uFFFDy>"sv, FromUTF8(Saved(*document)));
}

// Texts of all sizes around the block, in characters of two bytes, so that blocks end within one.
TEST(DOMWriterTest, KeepsCharactersTogetherAcrossBlocks) {
  for (const std::size_t size : {1u, 255u, 256u, 257u, 1023u, 32750u, 32768u, 70001u}) {
    String text;
    for (std::size_t i = 0; i < size; ++i) text += static_cast<char16_t>(0x430 + i % 32);
    const auto document = Loaded("<a b='1'/>");
    for (int i = 0; i < 3; ++i) document->GetRootNode()->AddElement("c")->AddText(text);
    document->GetRootNode()->SetAttribute("b", text);
    const String all = u"<a b=\"" + text + u"\"><c>" + text + u"</c><c>" + text + u"</c><c>" + text + u"</c></a>";
    EXPECT_TRUE(all == document->GetXML()) << size;
    EXPECT_TRUE(ToUTF8(all) == Saved(*document)) << size;
    EXPECT_TRUE(TZmEncoding::ConvertW(all, 1251) == Saved(*document, false, 1251)) << size;
  }
  const std::string name(100000, 'n');
  EXPECT_TRUE("<" + name + " " + name + "=\"\">x</" + name + ">" ==
              Saved(*Loaded("<" + name + " " + name + "=''>x</" + name + ">")));
}

TEST(DOMWriterTest, GoesByTheListsOfAnElement) {
  const auto document = Loaded("<a p='1'><b/>t<c/></a>");
  TZmDOMElement* const root = document->GetRootNode();
  root->AddAttribute("late");
  TZmOwner<TZmDOMElement> first = Create<TZmDOMElement>("z");
  root->AddChild(first.get(), root->LastChild(), rdpAfter);
  first.reset();
  EXPECT_EQ("<a p=\"1\" late=\"\"><b />t<c /><z /></a>", Saved(*document));
  TZmDOMNode* const b = root->FirstElement();
  root->ChildNodes().Delete(b);
  EXPECT_EQ("<a p=\"1\" late=\"\">t<c /><z /></a>", Saved(*document));
  root->ChildNodes().Add(b, rdpLast);
  root->Attributes().Add(root->Attributes().Delete(root->LastAttribute()), rdpFirst);
  EXPECT_EQ("<a late=\"\" p=\"1\">t<c /><z /><b /></a>", Saved(*document));
  root->ChildNodes().Clear();
  EXPECT_EQ("<a late=\"\" p=\"1\"></a>", Saved(*document));
  root->ChildNodes().Add(root, rdpFirst);
  EXPECT_EQ("Stack overflow", Raised<EStackOverflow>([&] { Saved(*document); }));
}

class TLoud : public TZmDOMElement {
  ZM_OBJECT(TLoud, TZmDOMElement)
 public:
  using TZmDOMElement::TZmDOMElement;
  void _SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) override {
    Stream->WriteBuffer("[", 1);
    TZmDOMElement::_SaveToStream(Stream, CodePage, Formatted, Level);
    Stream->WriteBuffer("]", 1);
  }
  void _SaveToJSONStream(TStream* Stream, std::uint16_t, bool, int&) override { Stream->WriteBuffer("\"loud\": 1", 9); }
};

TEST(DOMWriterTest, AsksClassesOfAnApplication) {
  const auto document = Loaded("<a><b/></a>");
  TLoud* const loud = document->GetRootNode()->AppendChild(Create<TLoud>("l"));
  loud->AppendChild(Create<TLoud>("m"))->AddText("t");
  document->GetRootNode()->AddElement("c");
  EXPECT_EQ("<a><b />[<l>[<m>t</m>]</l>]<c /></a>", Saved(*document));
  EXPECT_EQ("<a>\r\n  <b />[\r\n  <l>[\r\n    <m>t</m>]\r\n  </l>]\r\n  <c />\r\n</a>", Saved(*document, true));
  EXPECT_EQ("\"a\": {\"b\": \"\",\"loud\": 1,\"c\": \"\"}", JSON(*document));
}

class TFullStream : public TMemoryStream {
 public:
  explicit TFullStream(std::size_t Room) : FRoom(Room) {}
  std::size_t Write(const void* Buffer, std::size_t Count) override {
    const std::size_t count = std::min<std::size_t>({Count, 7, FRoom});  // short writes, and then none
    FRoom -= count;
    return TMemoryStream::Write(Buffer, count);
  }

 private:
  std::size_t FRoom;
};

TEST(DOMWriterTest, RaisesWhatTheStreamRaises) {
  const auto document = Loaded("<a><b>text</b><c x='1'/></a>");
  const std::string all = Saved(*document, true);
  for (std::size_t room = 0; room <= all.size(); ++room) {
    TFullStream stream(room);
    const auto save = [&] { document->SaveToStream(&stream, cZmPageUTF8, true); };
    if (room < all.size())
      EXPECT_EQ("Stream write error", Raised<EWriteError>(save));
    else
      EXPECT_EQ("nothing was raised", Raised<EWriteError>(save));
    EXPECT_EQ(all.substr(0, room), std::string(static_cast<const char*>(stream.GetMemory()), room));
  }
  EXPECT_EQ(all, Saved(*document, true));
  EXPECT_THROW(Saved(*document, false, 9999), EConvertError);
}

TEST(DOMWriterTest, NeedsNoStackForDepth) {
  constexpr std::size_t depth = 1000000;
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) text += "<a>";
  text += "x";
  for (std::size_t i = 0; i < depth; ++i) text += "</a>";
  const auto document = Loaded(text);
  EXPECT_TRUE(text == Saved(*document));
  const std::string json = JSON(*document);
  EXPECT_EQ(7 * depth + 1, json.size());
  EXPECT_TRUE(json.starts_with("\"a\": {\"a\": {") && json.ends_with("}}"));
}

TEST(DOMWriterTest, WritesJSON) {
  struct TCase {
    const char* Source;
    const char* Plain;
    const char* Formatted;
  };
  const TCase cases[] = {
      {"<a/>", "{\"a\": \"\"}", "{\r\n\"a\": \"\"\r\n}"},
      {"<p:a.b xmlns:p='u' xmlns='v' c.d='1'>x/&amp;\"</p:a.b>", "{\"a_b\": \"x\\/&\\\"\", \"a_b_c_d\": \"1\"}",
       "{\r\n\"a_b\": \"x\\/&\\\"\", \r\n\"a_b_c_d\": \"1\"\r\n}"},
      {"<a x='1'>lost<b>1</b><c><d y='2'>\xC4\x80</d></c><!--k--><?p?></a>",
       "{\"a\": {\"a_x\": \"1\",\"b\": \"1\",\"c\": {\"d\": \"\\u0100\", \"d_y\": \"2\"}}}",
       "{\r\n\"a\": {\r\n\"a_x\": \"1\",\r\n\"b\": \"1\",\r\n\"c\": {\r\n  \"d\": \"\\u0100\", \r\n    \"d_y\": "
       "\"2\"\r\n  }\r\n}"
       "\r\n}"},
      {"<a><b>1</b><c/><b x='2'><d/><d/></b><b x='3'>4</b></a>",
       "{\"a\": {\"b\": [\"1\",{\"b_x\": \"2\",\"d\": [\"\",\"\"]},\"4\"],\"c\": \"\"}}",
       "{\r\n\"a\": {\r\n\"b\": [\"1\",\r\n{\r\n  \"b_x\": \"2\",\r\n  \"d\": [\"\",\r\n\"\"\r\n  "
       "]\r\n  },\r\n\"4\"\r\n],\r\n\"c\": "
       "\"\"\r\n}\r\n}"},
      {"<a x='1'><A_x/><_a_x/></a>", "{\"a\": {\"__a_x\": \"1\",\"A_x\": \"\",\"_a_x\": \"\"}}", nullptr},
      {"{\"n\":1.50,\"z\":null,\"t\":true,\"s\":\"x\",\"l\":[1,[2]]}",
       "{\"object\": {\"n\": 1.5,\"z\": null,\"t\": true,\"s\": \"x\",\"lArray\": {\"l\": 1,\"lArray\": {\"l\": 2}}}}",
       nullptr},
      {"<a xmlns:i='http://www.w3.org/2001/XMLSchema-instance' xmlns:s='http://www.w3.org/2001/XMLSchema'>"
       "<b i:type='s:double'>INF</b><c i:type='s:dateTime'>2024-03-01T10:00:00.000</c><d i:type='s:long'>7</d></a>",
       "{\"a\": {\"b\": null,\"c\": 2024-03-01T10:00:00.000,\"d\": 7}}", nullptr},
  };
  for (const TCase& c : cases) {
    const auto document = Loaded(c.Source);
    EXPECT_EQ(c.Plain, JSON(*document->GetRootNode()));
    if (c.Formatted) {
      EXPECT_EQ(c.Formatted, JSON(*document->GetRootNode(), true));
    }
  }
  const auto document = Loaded("<!--k--><a b='1'/>");
  TZmStringStream stream(cZmPageUTF8);
  document->SetCodePage(1252);
  document->SaveToJSONStream(&stream, false, true);
  EXPECT_EQ("\xEF\xBB\xBF\"a\": \"\", \"a_b\": \"1\"", stream.GetDataString());
  EXPECT_EQ("\"a_b\": \"1\"", JSON(*document->GetRootNode()->FirstAttribute()));
  EXPECT_EQ("", JSON(*document->FirstChild()));
}

TEST(DOMWriterTest, KeepsTheDeclarationInStep) {
  struct TCase {
    const char* Source;
    const char* Encoding;
    const char* Saved;
    std::uint16_t Page;
  };
  const TCase cases[] = {
      {"<a/>", "iso-8859-1", "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?><a />", 28591},
      {"<?xml version=\"1.0\"?><a/>", "UTF-16", "<?xml version=\"1.0\" encoding=\"UTF-16\"?><a />", 1200},
      {"<?xml version=\"1.0\" ENCODING=\"x\" standalone=\"no\"?><a/>", "",
       "<?xml version=\"1.0\" ENCODING=\"UTF-8\" standalone=\"no\"?><a />", 65001},
      {"<?xml version='1.0' encoding='utf-8' standalone=\"no\"?><a/>", "koi8-r",
       "<?xml version='1.0' encoding='utf-8' standalone=\"koi8-r\"?><a />", 20866},
  };
  for (const TCase& c : cases) {
    const auto document = Create<TZmDOMDocument>();
    document->LoadFromXML(FromUTF8(c.Source));
    document->SetEncoding(c.Encoding);
    EXPECT_EQ(c.Saved, ToUTF8(document->GetXML()));
    EXPECT_EQ(c.Page, document->GetCodePage());
    EXPECT_EQ(FromUTF8(*c.Encoding ? c.Encoding : "UTF-8"), document->GetEncoding());
  }
  const auto document = Loaded("<?xml version=\"1.0\" encoding=\" ISO-8859-1 \"?><a/>");
  EXPECT_EQ(u"iso-8859-1", document->GetEncoding());
  EXPECT_EQ("The specified encoding (none) is not supported!",
            Raised<EZmDomNotSupported>([&] { document->SetEncoding("none"); }));
  document->SetCodePage(65001);
  EXPECT_EQ(u"UTF-8", document->GetEncoding());
  EXPECT_EQ(u"version=\"1.0\" encoding=\" ISO-8859-1 \"", document->GetProcessingInstruction("XML"));
  document->SetProcessingInstruction("s", "t");
  document->SetProcessingInstruction("xml", "u");
  EXPECT_EQ("<?xml u?><?s t?><a />", Saved(*document));
  EXPECT_EQ("There is no processinginstruction \"q\"!",
            Raised<EZmDomNotFound>([&] { document->GetProcessingInstruction("q"); }));
}

TEST(DOMWriterTest, SetsAndGivesInnerXML) {
  struct TCase {
    const char* XML;
    const char* Inner;
    const char* Formatted;
  };
  const TCase cases[] = {
      {"", "", ""},
      {" t ", " t ", " t "},
      {"a<b/>c&amp;", "a<b />c&amp;", "a\r\n<b />c&amp;"},
      {"<b><c/></b> <p:d/><!--k-->", "<b><c /></b><p:d /><!--k-->", "<b>\r\n  <c />\r\n</b>\r\n<p:d />\r\n<!--k-->"},
  };
  const auto document = Loaded("<r><a x='1' xmlns:p='u'>old<z/></a></r>");
  TZmDOMElement* const a = document->GetRootNode()->FirstElement();
  for (const TCase& c : cases) {
    a->SetInnerXML(c.XML);
    EXPECT_EQ(c.Inner, ToUTF8(a->GetInnerXML()));
    EXPECT_EQ(c.Formatted, ToUTF8(a->GetFormattedInnerXML()));
  }
  EXPECT_EQ(u"u", a->LastElement()->GetNamespaceURI());
  for (const char* bad : {"</x><x>", "</x>", "t<b"})
    EXPECT_TRUE(Raised<EZmDomSyntax>([&] { a->SetInnerXML(bad); }).starts_with("Line 1, column ")) << bad;
  a->SetNodeValueEx("<");
  a->AddText("b");
  a->AddText("c");
  a->NormalizeTextNodes();
  EXPECT_EQ(1, a->CharNodes().Count());
  EXPECT_EQ("<r><a x=\"1\" xmlns:p=\"u\">&lt;bc</a></r>", Saved(*document));
}

}  // namespace
