#include "zamrit/xml/json/SAXParser.h"

#include <gtest/gtest.h>

#include "tests/support/Raised.h"
#include "zamrit/common/Encoding.h"
#include "zamrit/platform/Streams.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/sax/XMLErrors.h"

namespace {

using namespace zm;

constexpr std::uint16_t cUTF8 = 65001, cUTF16 = 1200, cUTF16BE = 1201;

/// A component whose events write their names and arguments into Text.
struct TListener {
  TZmOwner<TZmSAXParser> Parser = Create<TZmSAXParser>();
  std::string Text;

  TListener() {
    const auto note = [this](const char* name) {
      return [this, name](TObject* sender, auto... texts) {
        EXPECT_EQ(sender, Parser.get());
        Text += name;
        ((Text += ' ' + ToUTF8(texts)), ...);
        Text += '\n';
      };
    };
    TZmSAXParser& parser = *Parser;
    parser.OnStart = note("Start");
    parser.OnFinished = note("Finished");
    parser.OnStartDocument = note("StartDocument");
    parser.OnEndDocument = note("EndDocument");
    parser.OnEndProlog = note("never");
    parser.OnProcessingInstruction = note("ProcessingInstruction");
    parser.OnStartPrefixMapping = note("StartPrefixMapping");
    parser.OnEndPrefixMapping = note("EndPrefixMapping");
    parser.OnStartElement = [note](TObject* sender, StringView uri, StringView local, StringView name, auto& list) {
      note("StartElement")(sender, uri, local, name);
      for (auto a = list.FirstAttribute(); a; a = a->Next) note(" Attribute")(sender, a->QName, a->Value);
    };
    parser.OnCharacters = note("Characters");
    parser.OnIgnorableWhitespace = note("IgnorableWhitespace");
    parser.OnEndElement = note("EndElement");
    parser.OnComment = note("Comment");
    parser.OnStartDTD = note("StartDTD");
    parser.OnEndDTD = note("EndDTD");
    parser.OnStartCDATA = note("StartCDATA");
    parser.OnEndCDATA = note("EndCDATA");
    parser.OnFatalError = [note](TObject* sender, IZmSAXLocator* where, StringView message) {
      note("FatalError")(sender, IntToStr(where->GetColNr()), message);
    };
  }
};

TEST(SAXParser, FiresTheEventsOfBothFormats) {
  TListener listener;
  listener.Parser->Parse(u"<?p d?><!DOCTYPE a><a xmlns:p='u' b='c'>x<!--y--><![CDATA[z]]><p:e/></a>");
  EXPECT_EQ(
      listener.Text,
      "Start\nStartDocument\nProcessingInstruction p d\nStartDTD\nEndDTD\nStartPrefixMapping p u\n"
      "StartElement  a a\n Attribute xmlns:p u\n Attribute b c\nCharacters x\nComment y\nStartCDATA\nCharacters z\n"
      "EndCDATA\nStartElement u e p:e\nEndElement u e p:e\nEndElement  a a\nEndPrefixMapping p\nEndDocument\n"
      "Finished\n");
  listener.Text.clear();
  listener.Parser->Parse(u" {\"a\":\"\\n\"}\n");
  EXPECT_EQ(listener.Text,
            "Start\nStartDocument\nStartElement  object object\n"
            " Attribute xmlns:xsi http://www.w3.org/2001/XMLSchema-instance\n"
            " Attribute xmlns:xsd http://www.w3.org/2001/XMLSchema\nStartElement  a a\n Attribute xsd:type string\n"
            "Characters \\n\nEndElement  a a\nEndElement  object object\nEndDocument\nFinished\n");
}

TEST(SAXParser, KnowsTheFormatByTheFirstCharacterInEveryEntry) {
  const struct {
    std::u16string Text;
    std::string Root;
  } cases[] = {
      {u"<r/>", "r"},        {u" \r\n\t<r/>", "r"}, {u"[]", "array"},
      {u"\n\n{}", "object"}, {u"x<[]", "array"},    {u"\u013C{}", "object"},
  };
  const std::string name = testing::TempDir() + "zamrit-either.txt";
  for (const auto& [text, expected] : cases) {
    TZmSAXParser parser;
    std::string roots;
    parser.OnStartElement = [&](TObject*, StringView, StringView, StringView root, IZmSAXAttributes&) {
      roots += ToUTF8(root) + ' ';
    };
    parser.Parse(text);
    std::string once = expected + ' ', all = once;
    for (const std::uint16_t page : {cUTF8, cUTF16, cUTF16BE}) {
      const std::string bytes = TZmEncoding::ConvertW(text, page);
      parser.Parse(std::string_view(bytes), page);
      parser.ParseBuffer(bytes.data(), static_cast<unsigned>(bytes.size()), page);
      all += once + once;
      const std::string mark = TZmEncoding::ConvertW(u"\uFEFF", page);
      {
        TFileStream file(std::string_view(name), fmCreate);
        file.WriteBuffer(mark.data(), mark.size());
        file.WriteBuffer(bytes.data(), bytes.size());
      }
      parser.ParseFile(name);
      all += once;
    }
    EXPECT_EQ(roots, all) << ToUTF8(text);
  }
}

TEST(SAXParser, StartsCleanAfterAFailure) {
  TListener listener;
  const std::string nothing = "The document is not wellformed!\r\n\"\" expected, but \"\" found!";
  for (const auto& [blank, column] : {std::pair(u"", 1), std::pair(u"  ", 2)}) {
    const StringView text = blank;
    listener.Text.clear();
    EXPECT_EQ(Raised<EZmJSONParseError>([&] { listener.Parser->Parse(text); }), nothing);
    EXPECT_EQ(listener.Text, "Start\nFatalError " + std::to_string(column) + ' ' + nothing + '\n');
  }
  EXPECT_THROW(listener.Parser->Parse(u"<1/>"), EZmXMLParseError);
  listener.Text.clear();
  listener.Parser->Parse(u"<a/>");
  EXPECT_EQ(listener.Text, "Start\nStartDocument\nStartElement  a a\nEndElement  a a\nEndDocument\nFinished\n");
}

TEST(SAXParser, DoesNothingWithoutEvents) {
  TZmSAXParser parser;
  parser.Parse(u"<a>text<!--c--></a>");
  parser.Parse(u"{\"a\":1}");
  EXPECT_THROW(parser.Parse(u"{\"a\":x}"), EZmJSONParseError);
}

TEST(SAXParser, RunsOneParseAtATimeAndMayBeFreedInIt) {
  TListener listener;
  std::string refusal;
  listener.Parser->OnStart = [&](TObject*) {
    refusal = Raised<EZmXMLException>([&] { listener.Parser->Parse(u"[]"); });
  };
  listener.Parser->OnStartDocument = [&](TObject*) { listener.Parser.reset(); };
  TZmSAXParser& parser = *listener.Parser;
  parser.OnStartElement = nullptr;
  parser.OnEndElement = [&](TObject*, StringView, StringView, StringView name) { listener.Text += ToUTF8(name); };
  parser.OnEndDocument = parser.OnFinished = nullptr;
  parser.Parse(u"<a/>");
  EXPECT_EQ(refusal, "The reader is already parsing!");
  EXPECT_EQ(listener.Text, "a");
}

}  // namespace
