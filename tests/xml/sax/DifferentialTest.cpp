// The library's reader against the plain one, in every storage, whole and in pieces.

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

#include "tests/support/AllWays.h"

namespace {

using namespace std::string_view_literals;

#ifdef NDEBUG
constexpr unsigned cRandomSessions = 10000, cReplaceEvery = 1;
#else
constexpr unsigned cRandomSessions = 500, cReplaceEvery = 17;
#endif

constexpr std::uint16_t cPages[] = {65001, 1200, 1252};

// Returns the events. The first difference ends the test, so that it is told once and not a thousand times.
std::string Compare(const std::vector<std::string>& Documents, const TSetup& Setup) {
  const TAllWays events(Documents, Setup);
  if (events.Whole == events.Plain && events.InPieces == events.Plain) return events.Plain;
  std::string message = "page " + std::to_string(Setup.Page) + (Setup.SingleRoot ? ", single root" : "") +
                        (Setup.Lexical ? ", lexical" : "") + ", reads of " + std::to_string(Setup.ReadSize) + '\n';
  for (const auto& document : Documents) message += Quoted(zm::TZmEncoding::ConvertA(document, Setup.Page)) + '\n';
  throw std::runtime_error(message + "--- plain\n" + events.Plain + "--- whole\n" + events.Whole + "--- in pieces\n" +
                           events.InPieces);
}

std::vector<std::string> Encoded(const std::vector<zm::String>& Documents, std::uint16_t Page) {
  std::vector<std::string> result;
  for (const auto& document : Documents) {
    if (Page == 1200)
      result.emplace_back(reinterpret_cast<const char*>(document.data()), document.size() * 2);
    else
      result.push_back(zm::TZmEncoding::ConvertW(document, Page));
  }
  return result;
}

// In all pages; Seed decides the rest.
void CompareInPages(const std::vector<zm::String>& Documents, unsigned Seed) {
  for (const auto page : cPages)
    Compare(Encoded(Documents, page), {page, (Seed & 1) != 0, (Seed & 2) == 0 || (Seed & 12) != 0, Seed / 4 % 5 + 1});
}

const std::vector<zm::String> cOdd = {
    u"",
    u" ",
    u"<",
    u"junk<a/>",
    u"< \t<a/>",
    u"<a>",
    u"<a></b>",
    u"<a><b>",
    u"<a>text",
    u"<a> ",
    u"<a/>",
    u"<a/> \n",
    u"<a x=\"1\"y='2'/>",
    u"<a x=1/>",
    u"<a b</a>",
    u"<\xE9<",
    u"<:a/>",
    u"<1a/>",
    u"<a:/>",
    u"<a::b/>",
    u"<a:b:c<d/>",
    u"<?pi a?b?><a/>",
    u"<?pi?>",
    u"<?pi??><a/>",
    u"<?pi\tx y?><a/>",
    u"<? ?><a/>",
    u"<?",
    u"<a/><b/>",
    u"<a/></a>",
    u"<a/>x",
    u"<a/><![CDATA[x]]>",
    u"</a><b>x</b><c/>y",
    u"</a><b",
    u"</a></b><c></c></d><e/>t<f></g> \n h",
    u"<a XMLNS=\"u\"><b XmLnS:P='v' p:q=''/></a>",
    u"<a p:x='1' xmlns:p='u' p:y='2'><p:b/></a><!--c--> ",
    u"<a xmlns:p",
    u"<a xmlns:p='u",
    u"<a xmlns",
    u"<a xmlns=",
    u"<a\n xmlns:p='u'/>",
    u"<a xmlns :p='u'><p:b/></a>",
    u"<a xmlns::p='u'><p:b/></a>",
    u"<a :x='1'/>",
    u"<a ='1'/>",
    u"<a x='1' / y>z</a>",
    u"<a x='1\"'\"y='2'/>",
    u"<a\n>",
    u"<a \n>",
    u"</a\n>",
    u"<a></a\t>",
    u"<a></a >",
    u"<a><!--c-->x!y</a>",
    u"<a><!--c-->x?y</a>",
    u"<a><!--c-->x!--d--></a>",
    u"<a><!--c-->x![CDATA[d]]></a>",
    u"<a>x!y</a>",
    u"<a><?p?>!y</a>",
    u"<a><!--->-->",
    u"<a><!-x-->",
    u"<a><!-\xD83D\xDE00-->b</a>",
    u"<a><!-",
    u"<a><!--c",
    u"<a><!--c--",
    u"<a><![CDATA[]]></a>",
    u"<a><![CDATA[x]]y]>]]]></a>",
    u"<a><![CDATA[",
    u"<a><![CDAT",
    u"<a><![cdata[x]]></a>",
    u"<a><!12345\xD83D\xDE00>",
    u"<a><!123456\xD83D\xDE00>",
    u"<!DOCTYPE a [<!ENTITY b \"c>\">]><a/>",
    u"<!DOCTYPE a><a/>",
    u"<!DOCTYPE\na><a/>",
    u"<!DOCTYPE",
    u"<!DOCTYPE <",
    u"<!doctype a><a/>",
    u"<!-x><a/>",
    u"<!",
    u"<\xD83D\xDE00/>",
    u"<\xD83D/>",
    u"<a\xD83D\xDE00:\xD83D\xDE00/>",
    u"\xFEFF<a/>",
    u"<a>\r\n\r\r\n\n\xD83D\xDE00<b/>\r</a>",
    u"<a/>\x0120",
    u"<!--c-->\r\n<a/>\r",
    u"<a><b/>\r\n",
    zm::String(u"<a>\0</a>", 8),
    zm::String(u"<a\0>", 4),
    zm::String(u"<a x='\0'\0y='1'\0/>", 17),
    zm::String(u"<\0<a/>", 6),
    zm::String(u"<a\0x='1'/>\0<b/>", 15),
    zm::String(u"<a></a\0>", 8),
    zm::String(u"<?a\0b \0c?><a/>", 14),
    zm::String(u"<\0", 2),
    u"<a>]]></a>",
};

const std::vector<zm::String> cSamples = {
    u"\xFEFF<?xml version=\"1.0\"?>\r\n<!DOCTYPE a [<!ELEMENT a ANY>]>\n<!-- c --><a x=\"1\" xmlns:p='u'>"
    u"t&amp;\xE4\x20AC\xD83D\xDE00<p:b p:y='2' z=''/> \n<![CDATA[d]]]>e<?pi data?></a >",
    u"<p:a xmlns:p='u' xmlns='v' p:n=''><b\t/>\r<!--c--></p:a><?x?> <c>t</c>u",
};

TEST(XMLDifferential, OddTexts) {
  for (const auto& text : cOdd)
    for (unsigned seed = 0; seed < 20; seed++) CompareInPages({text, text, u"\n<r><s/>t"}, seed);
}

TEST(XMLDifferential, EveryPrefix) {
  for (const auto& sample : cSamples)
    for (std::size_t i = 0; i <= sample.size(); i++)
      for (unsigned seed = 0; seed < 4; seed++)
        CompareInPages({sample.substr(0, i), sample.substr(i)}, static_cast<unsigned>(i) * 4 + seed);
}

TEST(XMLDifferential, EveryByteReplaced) {
  unsigned seed = 0;
  for (const auto page : cPages)
    for (const auto& sample : Encoded(cSamples, page))
      for (std::size_t i = 0; i < sample.size(); i++)
        for (const char c : "\0 \n<>/!?:=\"'-]x\x80\xE2\xF0\xFF"sv) {
          if (++seed % cReplaceEvery != 0) continue;
          std::string changed = sample;
          changed[i] = c;
          Compare({changed}, {page, seed % 2 == 0, true, seed % 5 + 1});
        }
}

template <class T, std::size_t N>
const T& OneOf(const T (&Choices)[N], std::mt19937& Random) {
  return Choices[Random() % N];
}

zm::String RandomText(std::mt19937& Random) {
  static const zm::StringView pieces[] = {u"<",
                                          u"</",
                                          u"/>",
                                          u">",
                                          u"<a",
                                          u"<p:b",
                                          u"</a>",
                                          u"</p:b>",
                                          u"<!--",
                                          u"-->",
                                          u"<![CDATA[",
                                          u"]]>",
                                          u"<?",
                                          u"?>",
                                          u"<!DOCTYPE ",
                                          u"!",
                                          u"?",
                                          u"-",
                                          u"]",
                                          u"/",
                                          u":",
                                          u"=",
                                          u"\"",
                                          u"'",
                                          u" ",
                                          u" ",
                                          u"\t",
                                          u"\n",
                                          u"\r\n",
                                          u"\r",
                                          u"\0"sv,
                                          u" x='1'",
                                          u" p:x=\"2\"",
                                          u" xmlns='u'",
                                          u" xmlns:p=\"v\"",
                                          u" XMLNS:P=''",
                                          u"name",
                                          u"text & more",
                                          u"\xE9",
                                          u"\x20AC",
                                          u"\xD83D\xDE00",
                                          u"\xD83D",
                                          u"\xDE00",
                                          u"<a>",
                                          u"<b x='1'>",
                                          u"<c/>",
                                          u"\xFEFF"};
  zm::String result = Random() % 4 != 0 ? u"<a>" : u"";
  for (auto count = Random() % 16; count > 0; count--) result += OneOf(pieces, Random);
  return result;
}

TEST(XMLDifferential, RandomTexts) {
  std::mt19937 random(20240229);
  for (unsigned i = 0; i < cRandomSessions; i++)
    CompareInPages({RandomText(random), RandomText(random), RandomText(random)}, static_cast<unsigned>(random()));
}

// Longer than the window over a stream, so that it moves under every kind of construct.
TEST(XMLDifferential, LongTexts) {
  static const zm::StringView pieces[] = {u"<#>",
                                          u"<p:b x='#' p:y=\"#\">",
                                          u"</a#>",
                                          u"<c# xmlns:p='#'\n/>",
                                          u"<![CDATA[#]]>",
                                          u"<!--#-->",
                                          u"<?pi# #?>",
                                          u" \r\n",
                                          u"\r",
                                          u"#",
                                          u"<d n#='' />"};
  static const zm::StringView fills[] = {u"y", u"yyyyyyy", u"\xE9", u"\x20AC", u"\xD83D\xDE00", u"--]]"};
  std::mt19937 random(7);
  for (const std::size_t readSize : {3u, 4099u, 70000u}) {
    zm::String text = u"<r>";
    while (text.size() < 500000) {
      zm::String piece(OneOf(pieces, random));
      for (auto at = piece.find(u'#'); at != piece.npos; at = piece.find(u'#')) {
        zm::String fill = u"ff";
        for (auto count = random() % (random() % 64 == 0 ? 20000 : 20); count > 0; count--)
          fill += OneOf(fills, random);
        piece.replace(at, 1, fill);
      }
      text += piece;
    }
    for (const auto page : cPages)
      EXPECT_TRUE(Compare(Encoded({text}, page), {page, false, true, readSize}).ends_with("EndDocument\n"));
  }
}

}  // namespace
