#include "zamrit/xml/sax/XMLReader.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <functional>
#include <memory>
#include <stdexcept>

#include "tests/support/AllWays.h"
#include "tests/support/Raised.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/xml/sax/LambdaHandler.h"

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

// What Read makes of a reader for UTF-16, UTF-8 and UTF-8 byte by byte, which must be the same.
template <class F>
std::string EachWay(zm::StringView Text, F Read) {
  const auto bytes = zm::ToUTF8(Text);
  const std::uint16_t page = 65001;
  TShortStream stream(bytes, 1);
  const std::string results[] = {Read([&](auto& reader) { reader.Parse(Text); }),
                                 Read([&](auto& reader) { reader.Parse(std::string_view(bytes), page); }),
                                 Read([&](auto& reader) { reader.ParseStream(&stream, page); })};
  EXPECT_EQ(results[0], results[1]);
  EXPECT_EQ(results[0], results[2]);
  return results[0];
}

// The events of a parse that is not to fail, in one line.
std::string Events(zm::StringView Text, bool SingleRoot = true, bool Places = false) {
  return EachWay(Text, [&](auto parse) {
    TEventRecorder recorder;
    zm::TZmSAXXMLReader reader;
    if (Places) recorder.Locator = &reader;
    reader.SetHandler(&recorder);
    reader.SetCheckSingleRootElement(SingleRoot);
    EXPECT_NO_THROW(parse(reader));
    std::replace(recorder.Text.begin(), recorder.Text.end(), '\n', ';');
    return recorder.Text;
  });
}

TEST(XMLReader, TellsWhatItReads) {
  static const struct {
    zm::StringView Text;
    const char* Events;  // between StartDocument and EndDocument
    bool SingleRoot = true;
  } cases[] = {
      {u"<a></b>", R"(StartElement "" "a" "a";EndElement "" "b" "b";)"},
      {u"<a><b>", R"(StartElement "" "a" "a";StartElement "" "b" "b";)"},
      {u"<a x='1'", ""},
      {u"\uFEFFjunk\n<p:a/ >", R"(StartElement "" "a" "p:a";EndElement "" "a" "p:a";)"},
      {u"<a:b<c/>", R"(StartElement "" "b<c" "a:b<c";EndElement "" "b<c" "a:b<c";)"},
      {u"<a>\r\n&lt;\r<b/> \x01<b> x </b></a >\x01 ",
       R"(StartElement "" "a" "a";Characters "\000D\000A&lt;\000D";StartElement "" "b" "b";EndElement "" "b" "b";)"
       R"(IgnorableWhitespace " \0001";StartElement "" "b" "b";Characters " x ";EndElement "" "b" "b";)"
       R"(EndElement "" "a" "a";)"},
      {u"<a  x=\"1\"y='2'\n y = \"<'&gt;>\" / >",
       R"(StartElement "" "a" "a";  Attribute "" "x" "x" "1";  Attribute "" "y" "y" "2";)"
       R"(  Attribute "" "y" "y" "<'&gt;>";EndElement "" "a" "a";)"},
      // Namespaces: for attributes without a prefix too, and from the place of the declaration on
      {u"<a xmlns='u' x=''><p:b p:y='' xmlns:p='v' P:y='' y=''/><c xmlns=''/><c/></a>",
       R"(StartPrefixMapping "" "u";StartElement "u" "a" "a";  Attribute "" "xmlns" "xmlns" "u";)"
       R"(  Attribute "u" "x" "x" "";StartPrefixMapping "p" "v";StartElement "v" "b" "p:b";)"
       R"(  Attribute "" "y" "p:y" "";  Attribute "" "p" "xmlns:p" "v";  Attribute "v" "y" "P:y" "";)"
       R"(  Attribute "u" "y" "y" "";EndElement "v" "b" "p:b";EndPrefixMapping "p";StartPrefixMapping "" "";)"
       R"(StartElement "" "c" "c";  Attribute "" "xmlns" "xmlns" "";EndElement "" "c" "c";EndPrefixMapping "";)"
       R"(StartElement "u" "c" "c";EndElement "u" "c" "c";EndElement "u" "a" "a";EndPrefixMapping "";)"},
      {u"<a\n XMLNS ='u' XmLnS:P='v'><p:b/></a>",
       R"(StartPrefixMapping "" "u";StartPrefixMapping "P" "v";StartElement "u" "a" "a";)"
       R"(  Attribute "" "XMLNS" "XMLNS" "u";  Attribute "" "P" "XmLnS:P" "v";StartElement "v" "b" "p:b";)"
       R"(EndElement "v" "b" "p:b";EndElement "u" "a" "a";EndPrefixMapping "P";EndPrefixMapping "";)"},
      {u"<p:a\n xmlns:p='u'/>",  // the prefix is not trimmed
       R"(StartElement "" "a" "p:a";  Attribute "" "p" "xmlns:p" "u";EndElement "" "a" "p:a";)"},
      // Markup
      {u"<?xml version=\"1.0\"?><?pi  a?b?><?q?><?r\ts u? ><a/><?t ?>",
       R"(ProcessingInstruction "xml" "version=\00221.0\0022";ProcessingInstruction "pi" "a";)"
       R"(ProcessingInstruction "q" "";ProcessingInstruction "r\0009s" "u";StartElement "" "a" "a";)"
       R"(EndElement "" "a" "a";ProcessingInstruction "t" "";)"},
      {u"<!DOCTYPE a [<!ENTITY b \"c>\">]> <!----><!--a--b-<>--><!-\U0001F600--><a/><!-- cut --",
       R"(StartDTD;EndDTD;Comment "";Comment "a--b-<>";Comment "\DE00";StartElement "" "a" "a";EndElement "" "a" "a";)"
       R"(Comment " cut --";)"},
      {u"<a>x<![CDATA[<y>]]z]]]>&amp;</a><![CDATA[]]>\n<!--c--> <?p?> ",
       R"(StartElement "" "a" "a";Characters "x";StartCDATA;Characters "<y>]]z]";EndCDATA;Characters "&amp;";)"
       R"(EndElement "" "a" "a";StartCDATA;Characters "";EndCDATA;Comment "c";ProcessingInstruction "p" "";)"},
      // Where more than one root is taken; white space behind the first one is skipped
      {u"<a/>x<b/>y",
       R"(StartElement "" "a" "a";EndElement "" "a" "a";Characters "x";StartElement "" "b" "b";EndElement "" "b" "b";)"
       R"(Characters "y";IgnorableWhitespace "";)",
       false},
      {u"<a>text", R"(StartElement "" "a" "a";Characters "text";IgnorableWhitespace "";)", false},
      {u"<a> ", R"(StartElement "" "a" "a";IgnorableWhitespace " ";)", false},
      {u"<a/> <b> x<!--c--> y</b></c>",
       R"(StartElement "" "a" "a";EndElement "" "a" "a";StartElement "" "b" "b";Characters " x";Comment "c";)"
       R"(Characters "y";EndElement "" "b" "b";EndElement "" "c" "c";)",
       false},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Events(c.Text, c.SingleRoot), "StartDocument;" + std::string(c.Events) + "EndDocument;")
        << zm::ToUTF8(c.Text);
}

TEST(XMLReader, TellsWhereEachEventIs) {
  EXPECT_EQ(Events(u"<?xml v?>\r\n<!DOCTYPE a>\r<!--c-->\n<p:a xmlns:p='u'>t\U0001F600<b/>\n <![CDATA[d]]></p:a>", true,
                   true),
            R"(1:1 StartDocument;1:8 ProcessingInstruction "xml" "v";2:10 StartDTD;2:12 EndDTD;3:6 Comment "c";)"
            R"(4:16 StartPrefixMapping "p" "u";4:17 StartElement "u" "a" "p:a";  Attribute "" "p" "xmlns:p" "u";)"
            R"(4:21 Characters "t\D83D\DE00";4:23 StartElement "" "b" "b";4:23 EndElement "" "b" "b";)"
            R"(5:2 IgnorableWhitespace "\000A ";5:10 StartCDATA;5:12 Characters "d";5:12 EndCDATA;)"
            R"(5:20 EndElement "u" "a" "p:a";5:20 EndPrefixMapping "p";5:21 EndDocument;)");
}

/// Notes what FatalError is told.
struct TFailureNote : zm::TZmSAXDefaultHandler {
  std::string Told;
  void FatalError(zm::IZmSAXLocator* Where, zm::StringView Message) override {
    Told += PlaceText(Where->GetLineNr(), Where->GetColNr()) + zm::ToUTF8(Message);
  }
};

// The code of what Parse raises, an E in place of the end of input's, and what FatalError is told.
template <class F>
std::string FailureOf(zm::TZmSAXXMLReader& Reader, F Parse) {
  TFailureNote note;
  Reader.SetContentHandler(&note);
  Reader.SetErrorHandler(&note);
  std::string code = "none";
  try {
    Parse(Reader);
  } catch (const zm::EZmXMLParseError& e) {
    EXPECT_TRUE(note.Told.ends_with(e.what())) << e.what();
    code = std::to_string(e.GetCode());
  } catch (const zm::EZmTextParserEOF& e) {
    EXPECT_TRUE(note.Told.ends_with(e.what())) << e.what();
    code = "E";
  }
  Reader.SetHandler(nullptr);
  return code + " " + note.Told;
}

TEST(XMLReader, TellsWhatIsWrongAndWhere) {
  const auto bad = "The document is not wellformed!\r\n"s;
  const auto expected = [&bad](const char* what, const char* found) {
    return bad + "\"" + what + "\" expected, but \"" + found + "\" found!";
  };
  const auto nameStart = [](const char* found) {
    return "The current character \""s + found + "\" is not a valid NameStartChar!";
  };
  const auto colon = "The current character \":\" is only a valid NameStartChar when NameSpaces are not supported!"s;
  const auto notClosed = bad + "An element was not closed correctly (Row: ";
  const auto noValue = bad + "Missing attribute value.";
  const auto twoRoots = bad + "A XML document may not contain multiple root elements.";
  const auto rootText = bad + "An invalid token was detected at the root level of the document.";
  const auto cutOff = "Unexpected end of input!"s;
  const std::pair<zm::StringView, std::string> cases[] = {
      {u"", "2 1:1 " + expected("<", "")},
      {u"\n <!--c-->", "2 2:10 " + expected("<", "")},
      {u"< a/>", "2 1:6 " + expected("<", "")},
      {u"<a></a\nx>", "2 1:7 " + expected(">", "\n")},
      {u"<a></a \U0001F600>", "2 1:8 " + expected(">", "\xF0\x9F\x98\x80")},
      {u"<a></a \0>"sv, "2 1:8 " + expected(">", "")},
      {u"<a></a", "2 1:7 " + expected(">", "")},
      {u"<a><!--c-->x?y</a>", "2 1:12 " + expected("<", "x")},
      {u"<:a/>", "3 1:2 " + colon},
      {u"<a::b/>", "3 1:4 " + colon},
      {u"<1a/>", "3 1:2 " + nameStart("1")},
      {u"<a:/>", "3 1:4 " + nameStart("/")},
      {u"<a>\n< b/></a>", "3 2:2 " + nameStart(" ")},
      {u"<\U0001F600/>", "3 1:2 " + nameStart("\xF0\x9F\x98\x80")},
      {u"</>", "3 1:3 " + nameStart(">")},
      {u"<", "3 1:2 " + nameStart("")},
      {u"<!doctype a><a/>", "5 1:10 \"DOCTYPE\" expected, but \"doctype\" found"},
      {u"<!DOCTYPE\na><a/>", "5 2:7 \"DOCTYPE\" expected, but \"DOCTYPE\na><a/>\" found"},
      {u"<a><!CDATA[x]]></a>", "6 1:12 ![CDATA[ expected, but \"!CDATA[x\" found"},
      {u"<a/><!x", "6 1:8 ![CDATA[ expected, but \"!x\" found"},
      {u"<a><!123456\U0001F600>", "6 1:12 ![CDATA[ expected, but \"!123456\xEF\xBF\xBD\" found"},
      {u"<a><!--c-->x!y</a>", "6 1:19 ![CDATA[ expected, but \"!y</a>\" found"},
      {u"<a x=1/>", "7 1:8 " + noValue},
      {u"<a b</a>", "7 1:5 " + noValue},
      {u"<a\n>", "7 2:1 " + noValue},
      {u"<a x='1' p:y>", "7 1:13 " + noValue},
      {u"<a p:x=<", "7 1:8 " + noValue},
      {u"\n<ab</a>", "8 2:4 " + notClosed + "2, Col: 1)."},
      {u"<a></b<", "8 1:7 " + notClosed + "1, Col: 4)."},
      {u"<a/><b/>", "9 1:5 " + twoRoots},
      {u"<a/>\n</a>", "9 2:1 " + twoRoots},
      {u"<a/>\n x", "12 2:2 " + rootText},
      {u"</a><b>x</b>", "12 1:8 " + rootText},  // the depth is 0 behind <b>
      {u"<a><![CDATA[x]]></a>", "13 1:12 No lexicalhandler has been assigned!"},
      {u"<!DOCTYPE a><a/>", "13 1:10 No lexicalhandler has been assigned!"},
      {u"<a><!--no lexical handler--></a>", "none "},
      {u"<a>text", "E 1:4 " + cutOff},
      {u"<a>\n<b/> ", "E 2:5 " + cutOff},
      {u"<a><b></b>\n\n", "E 1:11 " + cutOff},
  };
  for (const auto& [text, failure] : cases)
    EXPECT_EQ(EachWay(text,
                      [](auto parse) {
                        zm::TZmSAXXMLReader reader;
                        auto result = FailureOf(reader, parse);
                        // Afterwards only the end of input has left a place.
                        const auto place = PlaceText(reader.GetLineNr(), reader.GetColNr());
                        EXPECT_EQ(place, result[0] == 'E' ? result.substr(2, place.size()) : "-1:-1 ");
                        FailureOf(reader, [](auto& r) { r.Parse(u"<a>\n<b/></a>"); });
                        EXPECT_EQ(reader.GetColNr(), result[0] == 'E' ? 5 : -1) << "until another failure";
                        return result;
                      }),
              failure)
        << zm::ToUTF8(text);
  EXPECT_EQ(zm::_cZmXMLEncodingNotSupported, u"The specified encoding is not supported!");
}

TEST(XMLReader, KnowsWhatMayStartAName) {
  static const char16_t ranges[][2] = {{u'A', u'Z'},     {u'_', u'_'},     {u'a', u'z'},     {0xC0, 0xD6},
                                       {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},   {0x37F, 0x1FFF},
                                       {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF}, {0x3001, 0xD7FF},
                                       {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}};
  const auto fails = [](int start) {
    zm::TZmSAXXMLReader reader;
    const auto text = zm::Format(u"<p:%s/>", {zm::String(1, static_cast<char16_t>(start))});
    return FailureOf(reader, [&text](auto& r) { r.Parse(text); })[0] == '3';
  };
  for (const auto& [first, last] : ranges) {
    EXPECT_FALSE(fails(first) || fails(last)) << int{first};
    EXPECT_TRUE(fails(first - 1) && fails(last + 1)) << int{first};
  }
}

TEST(XMLReader, NeedsItsHandlers) {
  TFailureNote note;
  TEventRecorder caught;
  zm::TZmSAXXMLReader reader;
  caught.Read(reader, u"<a/>");
  reader.SetErrorHandler(&note);
  caught.Read(reader, u"<a/>");
  EXPECT_EQ(note.Told, "1:1 No contenthandler has been assigned!");
  reader.SetErrorHandler(nullptr);
  reader.SetContentHandler(&note);
  caught.Read(reader, u"<a/>");
  EXPECT_EQ(caught.Text,
            "EZmXMLParseError \"No contenthandler has been assigned!\" 10\n"
            "EZmXMLParseError \"No contenthandler has been assigned!\" 10\n"
            "EZmXMLParseError \"No errorhandler has been assigned!\" 11\n");
}

// The text of a document, with its public identifier behind a bar.
template <class F>
zm::String TextOf(F Parse) {
  zm::TZmSAXXMLReader reader;
  zm::TZmSAXLambdaHandler handler;
  zm::String text;
  handler.OnCharacters = [&](zm::StringView t) { text += zm::String(t) + u"|" + zm::String(reader.GetPublicID()); };
  reader.SetHandler(&handler);
  Parse(reader);
  return text;
}

TEST(XMLReader, ReadsFromAllSources) {
  const auto bytes = "<?xml version='1.0' encoding='KOI8-R'?><\xC1>\xC1</\xC1>"s;
  const auto size = static_cast<unsigned>(bytes.size());
  zm::TZmMemoryStream stream(bytes.data(), size);
  // A page that is given is not overruled.
  for (const auto& [page, text] : {std::pair<std::uint16_t, zm::StringView>(1251, u"\u0411|i"), {0, u"\u0430|i"}}) {
    stream.SetPosition(0);
    EXPECT_EQ(TextOf([&, page = page](auto& r) { r.ParseStream(&stream, page, u"i"); }), text);
    EXPECT_EQ(stream.GetPosition(), size);
    EXPECT_EQ(TextOf([&, page = page](auto& r) { r.ParseBuffer(bytes.data(), size, page, u"i"); }), text);
    EXPECT_EQ(TextOf([&, page = page](auto& r) { r.Parse(std::string_view(bytes), page, u"i"); }), text);
  }
  stream.SetPosition(1);  // behind the beginning of the declaration
  EXPECT_EQ(TextOf([&](auto& r) { r.ParseStream(&stream); }), u"\uFFFD|");
  EXPECT_EQ(TextOf([&](auto& r) { r.Parse(u"<?xml encoding='koi8-r'?><a>\u00C1</a>", u"i"); }), u"\u00C1|i");

  const auto file = testing::TempDir() + "zamrit-reader-" + std::to_string(getpid());
  const auto marked = u"<?xml version='1.0' encoding='koi8-r'?><a>\u0430</a>"sv;
  for (const auto& content :
       {bytes, "\xEF\xBB\xBF" + zm::ToUTF8(marked), "\xFF\xFE" + zm::TZmEncoding::ConvertW(marked, 1200),
        "\xFE\xFF" + zm::TZmEncoding::ConvertW(marked, 1201)}) {
    std::ofstream(file, std::ios::binary) << content;
    EXPECT_EQ(TextOf([&](auto& r) { r.ParseFile(file, zm::fmOpenRead, u"i"); }), u"\u0430|i");
  }
  std::ofstream(file, std::ios::binary) << "\xEF\xBB\xBF<1/>";
  zm::TZmSAXXMLReader reader;
  EXPECT_EQ(FailureOf(reader, [&](auto& r) { r.ParseFile(file); }).substr(0, 6), "3 1:2 ");
  EXPECT_EQ(FailureOf(reader, [](auto& r) { r.Parse("\xEF\xBB\xBF<1/>"); }).substr(0, 6), "3 1:3 ") << "mark is text";
  EXPECT_EQ(std::remove(file.c_str()), 0);
  EXPECT_THROW(reader.ParseFile(file), zm::EFOpenError);
}

TEST(XMLReader, FindsTheEncodingInTheText) {
  const std::pair<std::string, zm::StringView> cases[] = {
      {"<a>\xD0\xB0</a>", u"\u0430|"},
      {"<?xml version='1.0'?><a>\xD0\xB0</a>", u"\u0430|"},
      {"<?xml encoding='utf-8'?><a>\xD0\xB0\xC1</a>", u"\u0430\uFFFD|"},
      {"<?xml encoding=''?><a>\xD0\xB0</a>", u"\u0430|"},
      {"junk<?xml ENCODING = \"windows-1251\" ?><a>\xE0</a>", u"\u0430|"},
      {"<?xml encoding=xiso-8859-1x?><a>\xE9\x80</a>", u"\u00E9\u0080|"},
      {"<?XML encoding='koi8-r'?><a>\xD0\xB0</a>", u"\u0430|"},
      {"<?xml\tencoding='koi8-r'?><a>\xD0\xB0</a>", u"\u0430|"},
      {"<!-- c --><?xml encoding='koi8-r'?><a>\xD0\xB0</a>", u"\u0430|"},
      {"<?xml encoding='shift_jis'?><a>\x83\x7C</a>", u"\u30DD|"},
  };
  for (const auto& [bytes, text] : cases) {
    EXPECT_EQ(TextOf([&bytes = bytes](auto& r) { r.Parse(std::string_view(bytes)); }), text) << bytes;
    TShortStream stream(bytes, 1);
    EXPECT_EQ(TextOf([&stream](auto& r) { r.ParseStream(&stream); }), text) << bytes;
  }
  zm::TZmSAXXMLReader reader;
  const auto wide = "<?xml version='1.0' encoding='utf-16'?><a/>"s;  // 43 bytes, and no "<" among their 21.5 units
  EXPECT_EQ(FailureOf(reader, [&wide](auto& r) { r.Parse(std::string_view(wide)); }),
            "2 1:23 The document is not wellformed!\r\n\"<\" expected, but \"\" found!");
  const auto marked = "\xFF\xFE<\0a\0/\0>\0"s;
  EXPECT_EQ(FailureOf(reader, [&marked](auto& r) { r.Parse(std::string_view(marked)); }),
            "3 1:4 The current character \"\" is not a valid NameStartChar!");
}

TEST(XMLReader, RefusesAnUnknownEncodingAndTellsNoHandler) {
  zm::TZmSAXXMLReader reader;
  TEventRecorder recorder;
  reader.SetHandler(&recorder);
  const auto message = Raised<zm::EConvertError>([&] { reader.Parse("<?xml encoding='klingon-7'?><a/>"); });
  EXPECT_NE(message.find("klingon-7"), message.npos) << message;
  EXPECT_EQ(recorder.Text, "");
  EXPECT_EQ(reader.GetLineNr(), -1);
  EXPECT_NO_THROW(reader.Parse("<a/>"));
}

constexpr auto cAllKinds = u"<?p?><!DOCTYPE a><!--c--><a x='1'>t<![CDATA[d]]> <b/></a>"sv;

TEST(XMLReader, GoesOnAfterWhatAHandlerThrows) {
  zm::TZmSAXLambdaHandler handler;
  int calls = 0;
  const auto any = [&calls](auto&&...) {
    if (calls-- == 0) throw std::runtime_error("enough");
  };
  handler.OnStartDocument = handler.OnEndDocument = handler.OnStartDTD = handler.OnEndDTD = any;
  handler.OnStartCDATA = handler.OnEndCDATA = any;
  handler.OnCharacters = handler.OnIgnorableWhitespace = handler.OnComment = any;
  handler.OnProcessingInstruction = any;
  handler.OnStartElement = any;
  handler.OnEndElement = any;
  zm::String told;
  handler.OnFatalError = [&told](auto, zm::StringView message) { told = message; };
  zm::TZmSAXXMLReader reader;
  const auto whole = EventsOf(reader, cAllKinds);
  for (int n = 0; n < 15; n++) {
    calls = n;
    told.clear();
    reader.SetHandler(&handler);
    EXPECT_THROW(reader.Parse(cAllKinds), std::runtime_error) << n;
    EXPECT_EQ(told, u"enough");
    EXPECT_EQ(EventsOf(reader, cAllKinds), whole) << n;
  }
  calls = 0;
  reader.SetHandler(&handler);
  handler.OnFatalError = [](auto&&...) { throw 1; };
  EXPECT_THROW(reader.Parse(cAllKinds), int);
  EXPECT_EQ(EventsOf(reader, cAllKinds), whole);
}

TEST(XMLReader, RunsOneParseAtATime) {
  zm::TZmSAXXMLReader reader;
  zm::TZmSAXLambdaHandler handler;
  zm::TZmMemoryStream stream("<b/>", 4);
  const std::function<void()> entries[] = {[&] { reader.Parse(u"<b/>", u"inner"); }, [&] { reader.Parse("<b/>"); },
                                           [&] { reader.ParseBuffer("<b/>", 4); }, [&] { reader.ParseStream(&stream); },
                                           [&] { reader.ParseFile("no such file"); }};
  int calls = 0;
  const auto parseAgain = [&](auto&&...) {
    calls++;
    for (const auto& parse : entries) EXPECT_EQ(Raised<zm::EZmXMLException>(parse), "The reader is already parsing!");
  };
  handler.OnStartElement = parseAgain;
  handler.OnFatalError = parseAgain;
  reader.SetHandler(&handler);
  EXPECT_THROW(reader.Parse(u"<a/><b/>", u"outer"), zm::EZmXMLParseError);
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(reader.GetPublicID(), u"outer");
  EXPECT_EQ(stream.GetPosition(), 0);

  handler.OnStartElement = [&](auto&&...) { reader.Parse("<b/>"); };
  try {
    reader.Parse("<a/>");
    ADD_FAILURE() << "what a handler lets through ends the parse";
  } catch (const zm::EZmXMLException& e) {
    EXPECT_EQ(e.GetCode(), 14);
  }
}

TEST(XMLReader, EndsAfterTheParseWhenItIsFreedInsideAnEvent) {
  for (const zm::StringView text : {u"<a><b/></a>"sv, u"<a>cut off"sv}) {
    auto token = std::make_shared<int>();
    const std::weak_ptr<int> watch = token;
    bool ended = false;
    auto reader = zm::Create<zm::TZmSAXXMLReader>();
    auto handler = zm::Create<zm::TZmSAXLambdaHandler>();
    handler->OnStartElement = [&, token = std::move(token)](auto&&...) { reader.reset(); };
    handler->OnEndDocument = [&] { ended = true; };
    handler->OnFatalError = [&](auto where, auto) { ended = where->GetColNr() == 4; };
    reader->SetHandler(handler.get());
    handler.reset();
    try {
      reader->Parse(text);
    } catch (const zm::EZmTextParserEOF&) {
    }
    EXPECT_TRUE(ended);
    EXPECT_TRUE(watch.expired()) << "the reader has gone, and has let its handler go";
  }
}

TEST(XMLReader, KeepsAReplacedHandlerWhileItMayBeRunning) {
  auto token = std::make_shared<int>();
  const std::weak_ptr<int> watch = token;
  TEventRecorder successor;
  zm::TZmSAXXMLReader reader;
  auto handler = zm::Create<zm::TZmSAXLambdaHandler>();
  handler->OnStartElement = [&, token = std::move(token)](auto&&...) {
    reader.SetHandler(&successor);
    EXPECT_FALSE(watch.expired());
  };
  reader.SetHandler(handler.get());
  handler.reset();
  reader.Parse(u"<a><!--c--></a>");
  EXPECT_TRUE(watch.expired());
  EXPECT_EQ(successor.Text, "Comment \"c\"\nEndElement \"\" \"a\" \"a\"\nEndDocument\n");
}

TEST(XMLReader, PassesOneEmptyListForElementsWithoutAttributes) {
  std::vector<zm::IZmSAXAttributes*> lists;
  zm::TZmSAXLambdaHandler handler;
  handler.OnStartElement = [&lists](auto, auto, auto, auto& list) { lists.push_back(list.Count() ? nullptr : &list); };
  zm::TZmSAXXMLReader reader;
  reader.SetHandler(&handler);
  reader.Parse(u"<a><b x=''/><c/></a>");
  EXPECT_EQ(lists, (std::vector{lists[0], static_cast<zm::IZmSAXAttributes*>(nullptr), lists[0]}));
}

TEST(XMLReader, TakesNoStackForWhatIsMany) {
  const auto times = [](int count, const char* before, const char* behind = nullptr) {
    std::string result;
    for (int i = 0; i < count; i++) result += behind ? before + std::to_string(i) + behind : before;
    return result;
  };
  constexpr int million = 1000000, some = 100000;
  const struct {
    std::string Text;
    int Starts, Ends, Mappings, Attributes;
  } cases[] = {{times(million, "<a>") + times(million, "</a>"), million, million, 0, 0},
               {times(million, "<a>"), million, 0, 0, 0},
               {times(million, "<a/>"), million, million, 0, 0},
               {"<a" + times(some, " a", "=''") + "/>", 1, 1, 0, some},
               {"<a" + times(some, " xmlns:p", "=''") + "/>", 1, 1, some, some}};
  for (const auto& c : cases) {
    int starts = 0, ends = 0, mappings = 0, attributes = 0;
    zm::TZmSAXLambdaHandler handler;
    handler.OnStartElement = [&](auto, auto, auto, auto& list) { starts++, attributes += list.Count(); };
    handler.OnEndElement = [&](auto&&...) { ends++; };
    handler.OnEndPrefixMapping = [&](auto) { mappings++; };
    zm::TZmSAXXMLReader reader;
    reader.SetHandler(&handler);
    reader.SetCheckSingleRootElement(false);
    reader.Parse(std::string_view(c.Text));
    EXPECT_EQ(starts, c.Starts);
    EXPECT_EQ(ends, c.Ends);
    EXPECT_EQ(mappings, c.Mappings);
    EXPECT_EQ(attributes, c.Attributes);
  }
}

}  // namespace
