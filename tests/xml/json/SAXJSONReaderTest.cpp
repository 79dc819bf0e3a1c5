#include "zamrit/xml/json/SAXJSONReader.h"

#include <gtest/gtest.h>

#include "tests/support/AllWays.h"
#include "tests/support/Raised.h"
#include "zamrit/xml/json/JSONErrors.h"

namespace {

using namespace zm;

constexpr std::uint16_t cUTF8 = 65001, cUTF16 = 1200;

/// The elements of a text: tags with their attributes, the local name behind "|" where it is another; an attribute of
/// the schema namespaces is "n" for nil and the first letter of its value for a type. What fails comes last, behind its
/// place.
struct TElements : TZmSAXDefaultHandler {
  std::string Text;

  void StartDocument() override { Text += "D "; }
  void EndDocument() override { Text += " D"; }
  void StartElement(StringView URI, StringView LocalName, StringView QName, IZmSAXAttributes& Attributes) override {
    Text += ToUTF8(URI) + '<' + ToUTF8(QName);
    if (LocalName != QName) Text += '|' + ToUTF8(LocalName);
    for (auto a = Attributes.FirstAttribute(); a; a = a->Next)
      if (a->QName.substr(0, 5) != u"xmlns")
        Text += a->LocalName == u"nil" ? " n" : ' ' + ToUTF8(a->Value.substr(0, 1));
    Text += '>';
  }
  void Characters(StringView Raw) override { Text += ToUTF8(Raw); }
  void EndElement(StringView URI, StringView LocalName, StringView QName) override {
    Text += "</" + ToUTF8(URI) + ToUTF8(QName) + (LocalName == QName ? ">" : "|" + ToUTF8(LocalName) + '>');
  }
  void FatalError(IZmSAXLocator* Where, StringView) override {
    Text += ' ' + PlaceText(Where->GetLineNr(), Where->GetColNr());
  }
};

template <class TSource>
std::string ElementsOf(const TSource& Source, std::uint16_t Page = cUTF8) {
  TZmSAXJSONReader reader;
  TElements elements;
  reader.SetHandler(&elements);
  try {
    if constexpr (std::is_pointer_v<TSource>)
      reader.ParseStream(Source, Page);
    else
      reader.Parse(Source, Page);
  } catch (const EZmJSONParseError& e) {
    const std::string what = e.what();
    elements.Text += std::to_string(e.GetCode()) + what.substr(what.find('\n') + 1);
  }
  reader.SetHandler(nullptr);
  return elements.Text;
}

const struct {
  std::string Document, Elements;
} cDocuments[] = {
    {R"({"a":1,"b":null,"c":[true,{"d":"x"}]})",
     "D <object><a d>1</a><b n>null</b><cArray|cArr><c b>true</c><c><d s>x</d></c></cArray></object> D"},
    {"[1,2]", "D <array><array d>1</array><array d>2</array></array> D"},
    {"{}", "D <object></object> D"},
    {"[[],{},[[3]]]",
     "D <array><arrayArray></arrayArray><array></array><arrayArray><arrayArray><array d>3</array></arrayArray>"
     "</arrayArray></array> D"},
    {R"({"x":[[1],2],"y":{"z":[]}})",
     "D <object><xArray|xArr><xArray><x d>1</x></xArray><x d>2</x></xArray><y><zArray|zArr></zArray></y></object> D"},
    {R"({"a":{"b":[{"c":1}]},"d":2})", "D <object><a><bArray|bArr><b><c d>1</c></b></bArray></a><d d>2</d></object> D"},
    // Names that XML does not have.
    {R"({"":1,"a b":2,"1":3,"a:b c":4,"\n":5,"-.":6,"_":7})",
     "D <object><_ d>1</_><a_b d>2</a_b><_1 d>3</_1><a_b_c d>4</a_b_c><_n d>5</_n><_-. d>6</_-.><_ d>7</_></object> D"},
    {"{\"\xC3\xA9\":1,\"\xC3\x97\":2,\"\xF0\x9F\x98\x80\":[3],\"\xC2\xB7\":4}",
     "D <object><\xC3\xA9 d>1</\xC3\xA9><_ d>2</_><__Array|__Arr><__ d>3</__></__Array><_\xC2\xB7 d>4</_\xC2\xB7>"
     "</object> D"},
    // What stands around values, and texts as they stand.
    {"xyz,\"\n{\"a\":\"x\\ny\"} \t\r\n", "D <object><a s>x\\ny</a></object> D"},
    {"\xEF\xBB\xBF[1,]", "D <array><array d>1</array></array> D"},
    {R"({"a":1}{"b":2} [3])", "D <object><a d>1</a><b d>2</b><object d>3</object></object> D"},
    {R"([1 2,3]{"a":1 "b":2}[4)",
     "D <array><array d>1</array><array d>3</array><a d>1</a><array d>4</array></array> D"},
    // What is refused, and where.
    {"", " 1:1 2\"\" expected, but \"\" found!"},
    {"1 \"x\"", " 1:6 2\"\" expected, but \"\" found!"},
    {"{} x", "D <object> 1:4 2\"\" expected, but \"x\" found!"},
    {"[1,,]", "D <array><array d>1</array> 1:4 2\"\", t, f, n, 0..9, ., + or -\" expected, but \",\" found!"},
    {R"({"a":[tru]})", "D <object><aArray|aArr> 1:11 2\"e\" expected, but \"}\" found!"},
    {R"({"a":1,})", "D <object><a d>1</a> 1:9 2\"\"\" expected, but \"\" found!"},
};

TEST(SAXJSONReader, TellsValuesAsElementsHoweverTheyAreRead) {
  for (const auto& [document, elements] : cDocuments) {
    EXPECT_EQ(ElementsOf(std::string_view(document)), elements) << document;
    const std::string wide = TZmEncoding::ConvertW(FromUTF8(document), cUTF16);
    EXPECT_EQ(ElementsOf(std::string_view(wide), cUTF16), elements) << document;
    for (std::size_t size = 1; size <= 3; ++size) {
      TShortStream pieces(document, size), widePieces(wide, size);
      EXPECT_EQ(ElementsOf(&pieces), elements) << document << " by " << size;
      EXPECT_EQ(ElementsOf(&widePieces, cUTF16), elements) << document << " by " << size;
    }
  }
}

TEST(SAXJSONReader, TellsTypesInAttributesAndItsPlace) {
  TZmSAXJSONReader reader;
  TEventRecorder events(&reader);
  reader.SetHandler(&events);
  reader.Parse(u"{\"a\":null,\"b\":[\n12 ,null]}");
  const std::string xsi = "http://www.w3.org/2001/XMLSchema-instance", xsd = "http://www.w3.org/2001/XMLSchema";
  const std::string nil = "  Attribute \"xmlns:xsi=\\0022" + xsi + "\\0022\" \"nil\" \"xsi:nil\" \"true\"\n";
  EXPECT_EQ(events.Text,
            "1:1 StartDocument\n"
            "1:1 StartElement \"\" \"object\" \"object\"\n"
            "  Attribute \"\" \"xsi\" \"xmlns:xsi\" \"" +
                xsi +
                "\"\n"
                "  Attribute \"\" \"xsd\" \"xmlns:xsd\" \"" +
                xsd +
                "\"\n"
                "1:10 StartElement \"\" \"a\" \"a\"\n" +
                nil +
                "1:10 Characters \"null\"\n"
                "1:10 EndElement \"\" \"a\" \"a\"\n"
                "1:15 StartElement \"\" \"bArr\" \"bArray\"\n"
                "2:4 StartElement \"\" \"b\" \"b\"\n"
                "  Attribute \"" +
                xsd +
                "\" \"type\" \"xsd:type\" \"decimal\"\n"
                "2:4 Characters \"12\"\n"
                "2:4 EndElement \"\" \"b\" \"b\"\n"
                "2:9 StartElement \"\" \"b\" \"b\"\n"
                "  Attribute \"" +
                xsi +
                "\" \"nil\" \"xsi:nil\" \"true\"\n"
                "2:9 Characters \"null\"\n"
                "2:9 EndElement \"\" \"b\" \"b\"\n"
                "2:10 EndElement \"\" \"bArray\" \"bArray\"\n"
                "2:11 EndElement \"\" \"object\" \"object\"\n"
                "2:11 EndDocument\n");
  events.Text.clear();
  reader.Parse(u"{\"s\":\"\",\"t\":true}");
  EXPECT_NE(events.Text.find("\"xmlns:xsd=\\0022" + xsd + "\\0022\" \"type\" \"xsd:type\" \"string\""),
            std::string::npos);
  EXPECT_NE(events.Text.find("\"xsd:type\" \"boolean\""), std::string::npos);
  reader.SetHandler(nullptr);
}

TEST(SAXJSONReader, NeedsBothHandlersAndIsUsableAfterAFailure) {
  TZmSAXJSONReader reader;
  TElements elements;
  EXPECT_EQ(Raised<EZmJSONException>([&] { reader.Parse(u"[]"); }), "No contenthandler has been assigned!");
  reader.SetContentHandler(&elements);
  EXPECT_EQ(Raised<EZmJSONException>([&] { reader.Parse(u"[]"); }), "No errorhandler has been assigned!");
  reader.SetErrorHandler(&elements);
  EXPECT_EQ(Raised<Exception>([&] { reader.Parse("["); }), ToUTF8(_SEncodingNotSupported));
  EXPECT_THROW(reader.Parse(u"{\"a\":[\"b\",,"), EZmJSONParseError);
  elements.Text.clear();
  reader.Parse(u"[true]");
  EXPECT_EQ(elements.Text, "D <array><array b>true</array></array> D");
  reader.SetContentHandler(nullptr);
  reader.SetErrorHandler(nullptr);
}

TEST(SAXJSONReader, NestsAMillionDeepAndKnowsManyNames) {
  constexpr int count = 1000000;
  struct TCounter : TZmSAXDefaultHandler {
    int Starts = 0, Ends = 0;
    void StartElement(StringView, StringView, StringView, IZmSAXAttributes&) override { ++Starts; }
    void EndElement(StringView, StringView, StringView) override { ++Ends; }
  };
  std::string objects, members = "{";
  for (int i = 0; i < count; ++i) {
    objects += "{\"n\":";
    members += "\"member" + std::to_string(i) + "\":{},";
  }
  for (const auto& [text, elements] :
       {std::pair(std::string(count, '['), count), {objects + "1", count + 1}, {members + "\"\":1}", count + 2}}) {
    TZmSAXJSONReader reader;
    TCounter counter;
    reader.SetHandler(&counter);
    if (text.back() == '[')
      EXPECT_THROW(reader.Parse(std::string_view(text), cUTF8), EZmJSONParseError);
    else
      reader.Parse(std::string_view(text), cUTF8);
    EXPECT_EQ(counter.Starts, elements);
    EXPECT_EQ(counter.Ends, text.back() == '[' ? 0 : elements);
  }
}

TEST(SAXJSONReader, RefusesASecondParseAsJSONReadersDo) {
  TZmSAXJSONReader reader;
  struct THandler : TZmSAXDefaultHandler {
    TZmSAXJSONReader& Reader;
    std::string Refusal;
    explicit THandler(TZmSAXJSONReader& Of) : Reader(Of) {}
    void StartDocument() override {
      Refusal = Raised<EZmJSONException>([&] { Reader.Parse(u"[]"); });
    }
  } handler(reader);
  reader.SetHandler(&handler);
  reader.Parse(u"[]");
  EXPECT_EQ(handler.Refusal, "The reader is already parsing!");
  reader.SetHandler(nullptr);
}

}  // namespace
