#include "zamrit/xml/json/FormReader.h"

#include <gtest/gtest.h>

#include "tests/support/AllWays.h"
#include "tests/support/JSONShortForm.h"
#include "tests/support/Raised.h"

namespace {

using namespace zm;

constexpr std::uint16_t cUTF8 = 65001;

struct TCase {
  std::string Post, Events;
};

#define NO_BRACKET "The parser expected to read a \"[\" character, but "

const TCase cPosts[] = {
    {"a=1&b=2", "D { a: S(1) ; b: S(2) ; } D"},
    {"", "D { : S() ; } D"},
    {"a", "D { a: S() ; } D"},
    {"a=1&b", "D { a: S(1) ; b: S() ; } D"},
    {"a=1&", "D { a: S(1) ; } D"},
    {"=1&a=", "D { : S(1) ; a: S() ; } D"},
    // Only brackets and "=" end a key, and nothing but "%" is decoded in it.
    {"a&b=1", "D { a&b: S(1) ; } D"},
    {"a+b\n=1", "D { a+b\n: S(1) ; } D"},
    {"%41%C3%A9%3D=1", "D { A\xC3\xA9=: S(1) ; } D"},
    {"a%5bb=1", "D { a[b: S(1) ; } D"},
    // Values.
    {"a=x+y%41%c3%a9", "D { a: S(x yA\xC3\xA9) ; } D"},
    {"a=%F0%9F%98%80", "D { a: S(\\uD83D\\uDE00) ; } D"},
    {"a=%80%FF1", "D { a: Invalid UTF8 Encoding detected"},
    {"a=%80=%C3%41", "D { a: S(\\uFFFD=\\uFFFDA) ; } D"},
    {"a=x%0Ay\r\nz%00&b=%1F%20", "D { a: S(xyz) ; b: S( ) ; } D"},
    {"a=\"b/c\\", "D { a: S(\\\"b\\/c\\\\) ; } D"},
    {"a=[1,2]&b={\"x\":\"/\"}&c=+[\"]", "D { a: S([1,2]) ; b: S({\"x\":\"/\"}) ; c: S( [\\\"]) ; } D"},
    // A key that begins with "_" ends the post, but not as the first one.
    {"a=1&_=123&b=2", "D { a: S(1) ; } D"},
    {"_=1&a=2", "D { _: S(1) ; a: S(2) ; } D"},
    {"_", "D { } D"},
    {"a[_]=1&a_=2", "D { a: { _: S(1) ; } a_: S(2) ; } D"},
    // Objects: those that another key or the end closes have no end of the member.
    {"a[b]=1&a[c]=2", "D { a: { b: S(1) ; c: S(2) ; } } D"},
    {"a%5Bb%5D=1", "D { a: { b: S(1) ; } } D"},
    {"a[b]=1&c=2", "D { a: { b: S(1) ; } c: S(2) ; } D"},
    {"a[b][c]=1&a[d]=2&a[d]=3", "D { a: { b: { c: S(1) ; } ; d: S(2) ; d: S(3) ; } } D"},
    {"a[b][c]=1&a[b][d]=2&b[x]=3", "D { a: { b: { c: S(1) ; d: S(2) ; } } b: { x: S(3) ; } } D"},
    // Arrays: the first element opens one, and every later one ends an object.
    {"a[0]=x&a[1]=y", "D { a: [ S(x) } S(y) } ] } } D"},
    {"a[0][b]=1&a[1][b]=2", "D { a: [ { b: S(1) ; } { b: S(2) ; } ] } } D"},
    {"a[0][b]=1&a[0][c]=2", "D { a: [ { b: S(1) ; c: S(2) ; } ] } } D"},
    {"a[]=1&a[]=2", "D { a: [ S(1) S(2) } ] } } D"},
    {"a[]=1&a[0]=2", "D { a: [ S(1) } [ S(2) } ] } } D"},
    {"a[1]=x", "D { a: S(x) } ] } } D"},
    {"a[0]=x&a[2]=y", "D { a: [ S(x) ] S(y) } ] } } D"},
    {"a[0]=x&a[b]=y", "D { a: [ S(x) ] b: S(y) ; } } D"},
    {"a[0]=x&b=y", "D { a: [ S(x) ] } b: S(y) ; } D"},
    {"a[0]=x&_", "D { a: [ S(x) } ] } } D"},
    {"a[0][0]=1&a[0][1]=2&a[1][0]=3", "D { a: [ [ S(1) S(2) ] } [ S(3) ] ] } } D"},
    {"a[2147483647]=1&a[2147483648]=2", "D { a: S(1) ] S(2) } ] } } D"},
    // The character in place of the closing bracket is not looked at.
    {"a[b=1", "D { a: { b: " NO_BRACKET "\"1\", was read instead!"},
    {"a[b[=1", "D { a: { b: S(1) ; } } D"},
    {"a[", "D { a: [ S() } ] } } D"},
    // What is refused.
    {"a]=1", "D { a: " NO_BRACKET "\"]=1\", was read instead!"},
    {"a[b]cd=1", "D { a: { b: " NO_BRACKET "\"cd=\", was read instead!"},
    {"a=%C3x", "D { a: Invalid UTF8 Encoding detected"},
    {"a=%GG", "D { a: '$GG' is not a valid integer value"},
    {"%4=1", "D { '$4=' is not a valid integer value"},
};

TEST(FormReader, TellsAPostAsJSONHoweverItIsRead) {
  for (const auto& [post, events] : cPosts) {
    TZmFormURLEncodedJSONReader reader;
    TShortForm form;
    EXPECT_EQ(form.Read(reader, std::string_view(post), cUTF8), events) << post;
    const std::string whole = form.Text;
    EXPECT_EQ(form.Read(reader, FromUTF8(post)), whole) << post;
    TShortStream pieces(post, 1);
    EXPECT_EQ(form.Read(reader, &pieces, cUTF8), whole) << post;
  }
}

TEST(FormReader, RefusesAnEscapeThatIsCutOff) {
  TZmFormURLEncodedJSONReader reader;
  TZmJSONDefaultHandler handler;
  reader.SetHandler(&handler);
  const struct {
    const char16_t* Post;
    const char* Digits;
  } cases[] = {{u"%", "$"}, {u"%4", "$4"}, {u"a=%", "$"}, {u"a=%C3%", "$"}, {u"a[%", "$"}, {u"%4x", "$4x"}};
  for (const auto& c : cases)
    EXPECT_EQ(Raised<EConvertError>([&] { reader.Parse(c.Post); }),
              "'" + std::string(c.Digits) + "' is not a valid integer value")
        << ToUTF8(c.Post);
}

TEST(FormReader, NeedsNoErrorHandlerAndTellsItNothing) {
  struct TErrors : TZmJSONDefaultHandler {
    int Count = 0;
    void FatalError(IZmJSONLocator*, StringView) override { ++Count; }
  } errors;
  TShortForm content;
  TZmFormURLEncodedJSONReader reader;
  EXPECT_EQ(Raised<EZmJSONException>([&] { reader.Parse(u"a=1"); }), "No contenthandler has been assigned!");
  reader.SetContentHandler(&content);
  reader.Parse(u"a=1");
  EXPECT_EQ(content.Text, "D { a: S(1) ; } D");
  reader.SetErrorHandler(&errors);
  EXPECT_THROW(reader.Parse(u"a]"), Exception);
  EXPECT_EQ(errors.Count, 0);
}

TEST(FormReader, TakesManyPairsDeepBracketsAndLongValuesInLinearTime) {
  struct TCounter : TZmJSONDefaultHandler {
    std::size_t Members = 0, Units = 0;
    void StartMember(StringView) override { ++Members; }
    void Value(TZmJSONDataType, StringView Text) override { Units += Text.size(); }
  };
  std::string pairs, elements, deep = "a", value = "a=";
  for (int i = 0; i < 1000000; ++i) {
    pairs += "k" + std::to_string(i) + "=v&";
    elements += "a[" + std::to_string(i) + "]=v&";
    value += "%41+";
  }
  for (int i = 0; i < 100000; ++i) deep += "[b]";
  const struct {
    const std::string& Post;
    std::size_t Members, Units;
  } cases[] = {{pairs, 1000000, 1000000}, {elements, 1, 1000000}, {deep, 100001, 0}, {value, 1, 2000000}};
  for (const auto& [post, members, units] : cases) {
    TCounter counter;
    TZmFormURLEncodedJSONReader reader;
    reader.SetHandler(&counter);
    reader.Parse(std::string_view(post), cUTF8);
    EXPECT_EQ(counter.Members, members);
    EXPECT_EQ(counter.Units, units);
  }
}

}  // namespace
