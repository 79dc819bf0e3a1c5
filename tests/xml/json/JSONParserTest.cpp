#include "zamrit/xml/json/JSONParser.h"

#include <gtest/gtest.h>

#include "tests/support/Raised.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/xml/json/JSONErrors.h"

namespace {

using namespace zm;

constexpr std::uint16_t cUTF8 = 65001;

/// A component whose events write their names and arguments into Text.
struct TListener {
  TZmOwner<TZmJSONParser> Parser = Create<TZmJSONParser>();
  std::string Text;

  TListener() {
    Parser->OnStart = Parser->OnFinished = [this](TObject*) { Text += "never "; };
    Parser->OnStartDocument = [this] { Text += "D "; };
    Parser->OnStartObject = [this] { Text += "{ "; };
    Parser->OnStartMember = [this](StringView name) { Text += ToUTF8(name) + ": "; };
    Parser->OnStartArray = [this] { Text += "[ "; };
    Parser->OnValue = [this](TZmJSONDataType type, StringView text) {
      Text += std::to_string(type) + ToUTF8(text) + ' ';
    };
    Parser->OnEndArray = [this] { Text += "] "; };
    Parser->OnEndMember = [this] { Text += "; "; };
    Parser->OnEndObject = [this] { Text += "} "; };
    Parser->OnEndDocument = [this] { Text += "D\n"; };
    Parser->OnFatalError = [this](IZmJSONLocator* where, StringView message) {
      Text += std::to_string(where->GetColNr()) + ToUTF8(where->GetPublicID().Text()) + ToUTF8(message) + '\n';
    };
  }
};

TEST(JSONParser, FiresTheEventsOfEveryEntry) {
  const std::string json = R"({"a\n":[1,"\u00e9",true,null]})", post = "a=1";
  const std::string name = testing::TempDir() + "zamrit-component.json";
  {
    TFileStream file(std::string_view(name), fmCreate);
    file.WriteBuffer(json.data(), json.size());
  }
  TZmMemoryStream stream(json.data(), json.size()), posted(post.data(), post.size());
  TListener listener;
  TZmJSONParser& parser = *listener.Parser;
  parser.Parse(FromUTF8(json));
  parser.Parse(std::string_view(json), cUTF8);
  parser.ParseBuffer(json.data(), static_cast<unsigned>(json.size()), cUTF8);
  parser.ParseStream(&stream, cUTF8);
  parser.ParseFile(name);
  const std::string once = "D { a\\n: [ 21 1\\u00e9 3true 0null ] ; } D\n";
  EXPECT_EQ(listener.Text, once + once + once + once + once);
  listener.Text.clear();
  parser.ParseBuffer(post.data(), static_cast<unsigned>(post.size()), cUTF8, true);
  parser.ParseStream(&posted, cUTF8, true);
  EXPECT_EQ(listener.Text, "D { a: 11 ; } D\nD { a: 11 ; } D\n");
}

TEST(JSONParser, StartsCleanAfterAFailure) {
  TListener listener;
  const std::string message =
      "The document is not wellformed!\r\n\"\", t, f, n, 0..9, ., + or -\" expected, but \",\" found!";
  EXPECT_EQ(Raised<EZmJSONParseError>([&] { listener.Parser->Parse(u"[,]", u" id "); }), message);
  EXPECT_EQ(listener.Text, "D [ 2 id " + message + "\n");
  listener.Text.clear();
  listener.Parser->Parse(u"{}");
  EXPECT_EQ(listener.Text, "D { } D\n");
}

TEST(JSONParser, DoesNothingWithoutEvents) {
  TZmJSONParser parser;
  parser.Parse(u"{\"a\":[1]}");
  EXPECT_THROW(parser.Parse(u"{}\n"), EZmJSONParseError);
  parser.SetAllowSurroundingSpace(true);
  parser.Parse(u"\n{}\n");
}

TEST(JSONParser, RunsOneParseAtATimeAndMayBeFreedInIt) {
  TListener listener;
  std::string refusal;
  listener.Parser->OnStartObject = [&] {
    refusal = Raised<EZmJSONException>([&] { listener.Parser->Parse(u"1"); });
    listener.Parser.reset();
  };
  listener.Parser->Parse(u"{\"a\":1}");
  EXPECT_EQ(refusal, "The reader is already parsing!");
  EXPECT_EQ(listener.Text, "D a: 21 ; } D\n");
}

/// Sees the events in place of the ones assigned.
struct TOverriding : TZmJSONParser {
  std::string Seen;
  void StartMember(StringView Name) override { Seen += ToUTF8(Name); }
  void Value(TZmJSONDataType DataType, StringView Text) override {
    Seen += ToUTF8(Text);
    TZmJSONParser::Value(DataType, Text);
  }
};

TEST(JSONParser, LetsDescendantsOverrideTheEvents) {
  TOverriding parser;
  int values = 0;
  parser.OnValue = [&](TZmJSONDataType, StringView) { ++values; };
  parser.OnStartMember = [](StringView) { ADD_FAILURE(); };
  parser.Parse(u"{\"a\":1}");
  EXPECT_EQ(parser.Seen, "a1");
  EXPECT_EQ(values, 1);
}

}  // namespace
