#include <gtest/gtest.h>

#include <iostream>

#ifdef ZM_RAPIDJSON

#include <rapidjson/reader.h>

#include <filesystem>
#include <string>

#include "tests/conformance/DataFolder.h"
#include "tests/support/EventRecorder.h"
#include "zamrit/xml/json/JSONReader.h"
#include "zamrit/xml/json/Values.h"

namespace {

namespace fs = std::filesystem;
using namespace zm;

/// What RapidJSON tells, strings decoded and numbers as written. Its iterative parsing takes any depth.
struct TPeer : rapidjson::BaseReaderHandler<rapidjson::UTF8<>, TPeer> {
  std::string Text;

  bool Add(const char* Name, std::initializer_list<StringView> Texts = {}) {
    Text += EventText(Name, Texts) + '\n';
    return true;
  }
  bool AddBytes(const char* Name, const char* Bytes, std::size_t Size) {
    return Add(Name, {FromUTF8(std::string_view(Bytes, Size))});
  }

  bool Null() { return Add("Null"); }
  bool Bool(bool Value) { return Add(Value ? "True" : "False"); }
  bool RawNumber(const char* Number, rapidjson::SizeType Size, bool) { return AddBytes("Number", Number, Size); }
  bool String(const char* Raw, rapidjson::SizeType Size, bool) { return AddBytes("String", Raw, Size); }
  bool StartObject() { return Add("StartObject"); }
  bool Key(const char* Name, rapidjson::SizeType Size, bool) { return AddBytes("Member", Name, Size); }
  bool EndObject(rapidjson::SizeType) { return Add("EndObject"); }
  bool StartArray() { return Add("StartArray"); }
  bool EndArray(rapidjson::SizeType) { return Add("EndArray"); }

  bool Accepts(const std::string& Document) {
    constexpr unsigned flags = rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseIterativeFlag;
    rapidjson::Reader reader;
    rapidjson::MemoryStream stream(Document.data(), Document.size());
    return !reader.Parse<flags>(stream, *this).IsError();
  }
};

/// The same of what this library tells.
struct TOurs : TZmJSONDefaultHandler {
  TPeer Told;

  void StartObject() override { Told.StartObject(); }
  void StartMember(StringView Name) override { Told.Add("Member", {ZmJSONtoStr(Name, jdtString)}); }
  void StartArray() override { Told.StartArray(); }
  void Value(TZmJSONDataType DataType, StringView Raw) override {
    switch (DataType) {
      case jdtNull:
        Told.Null();
        break;
      case jdtBoolean:
        Told.Bool(Raw == u"true");
        break;
      case jdtNumber:
        Told.Add("Number", {Raw});
        break;
      default:
        Told.Add("String", {ZmJSONtoStr(Raw, jdtString)});
    }
  }
  void EndArray() override { Told.EndArray(0); }
  void EndObject() override { Told.EndObject(0); }
};

TEST(JSONPeers, TellTheSameValuesInTheSameOrder) {
  const auto folder = DataFolder();
  if (folder.empty()) return;

  int equal = 0, refused = 0;
  for (const auto& entry : fs::recursive_directory_iterator(folder / "json")) {
    const std::string name = entry.path().filename().string();
    if (entry.path().extension() != ".json" || name.starts_with("i_")) continue;  // i_: as each library likes
    const std::string document = BytesOf(entry.path());
    TPeer peer;
    if (!peer.Accepts(document)) {
      EXPECT_FALSE(name.starts_with("y_")) << entry.path();
      ++refused;
      continue;
    }
    TOurs ours;
    TZmJSONReader reader;
    reader.SetHandler(&ours);
    reader.SetAllowSurroundingSpace(true);
    reader.Parse(std::string_view(document), 65001);
    reader.SetHandler(nullptr);
    EXPECT_TRUE(ours.Told.Text == peer.Text) << entry.path();
    ++equal;
  }
  std::cout << "equal: " << equal << "; not JSON to RapidJSON: " << refused << '\n';
  EXPECT_GE(equal, 50);
}

}  // namespace

#else

TEST(JSONPeers, AreLeftOut) { std::cout << "left out: this build is without RapidJSON\n"; }

#endif
