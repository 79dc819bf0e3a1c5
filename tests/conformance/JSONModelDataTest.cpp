#include <gtest/gtest.h>

#include <iostream>

#ifdef ZM_RAPIDJSON

#include <rapidjson/document.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tests/conformance/DataFolder.h"
#include "zamrit/common/Encoding.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/xml/uZmJSON.h"

namespace {

namespace fs = std::filesystem;
using namespace zm;

using TPeer = rapidjson::Document;
using TPeerValue = rapidjson::Value;

/// The document with its numbers as written.
bool Read(TPeer& Peer, const std::string& Bytes) {
  constexpr unsigned flags = rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseIterativeFlag;
  return !Peer.Parse<flags>(Bytes.data(), Bytes.size()).HasParseError();
}

String TextOf(const TPeerValue& Value) {
  if (Value.IsNull()) return u"null";
  if (Value.IsBool()) return Value.GetBool() ? u"true" : u"false";
  return FromUTF8({Value.GetString(), Value.GetStringLength()});
}

/// Whether both hold the same values in the same order. NameOf makes the peer's name of ours.
template <class F>
bool Same(TZmJSONBase* Root, const TPeerValue& PeerRoot, F NameOf) {
  std::vector<std::pair<TZmJSONBase*, const TPeerValue*>> open{{Root, &PeerRoot}};
  while (!open.empty()) {
    const auto [value, peer] = open.back();
    open.pop_back();
    switch (value->GetJSONType()) {
      case jdtObject: {
        if (!peer->IsObject() || peer->MemberCount() != static_cast<rapidjson::SizeType>(value->Count())) return false;
        auto twin = peer->MemberBegin();
        for (TZmJSONMember* const member : *value->GetAsObject()) {
          if (NameOf(member->GetName()) != TextOf(twin->name)) return false;
          open.push_back({member->GetValueObj(), &(twin++)->value});
        }
        break;
      }
      case jdtArray: {
        if (!peer->IsArray() || peer->Size() != static_cast<rapidjson::SizeType>(value->Count())) return false;
        const TPeerValue* twin = peer->Begin();
        for (TZmJSONBase* const element : *value->GetAsArray()) open.push_back({element, twin++});
        break;
      }
      default:
        if (value->GetAsString() != TextOf(*peer)) return false;
    }
  }
  return true;
}

}  // namespace

TEST(JSONModelData, HoldsAndSavesWhatRapidJSONReads) {
  const fs::path folder = DataFolder();
  if (folder.empty()) return;
  int compared = 0;
  for (const auto& entry : fs::recursive_directory_iterator(folder / "json")) {
    const std::string name = entry.path().filename().string();
    if (entry.path().extension() != ".json" || name.starts_with("i_") || name.starts_with("n_")) continue;
    SCOPED_TRACE(entry.path());
    const std::string bytes = BytesOf(entry.path());
    TPeer peer;
    if (!Read(peer, bytes) || !(peer.IsObject() || peer.IsArray())) continue;
    TZmJSONDocument document;
    document.SetAllowSurroundingSpace(true);
    TZmStringStream stream(cZmBorrow, bytes, cZmPageUTF8);
    document.LoadFromStream(&stream);
    EXPECT_TRUE(Same(document.GetRootValue(), peer, [](const String& Raw) { return ZmJSONtoStr(Raw, jdtString); }));

    for (const bool format : {false, true}) {
      TMemoryStream saved;
      document.SaveToStream(&saved, format, cZmPageUTF8, false);
      const std::string text(static_cast<const char*>(saved.GetMemory()), static_cast<std::size_t>(saved.GetSize()));
      const auto isControl = [](unsigned char c) { return c < 0x20 && c != 0x0A && c != 0x0D; };
      if (std::any_of(text.begin(), text.end(), isControl)) continue;  // which are written as they stand
      TPeer again;
      ASSERT_TRUE(Read(again, text));
      EXPECT_TRUE(Same(document.GetRootValue(), again, [](const String& Raw) { return Raw; }));
    }
    ++compared;
  }
  EXPECT_GT(compared, 50);
}

#else

TEST(JSONModelData, HoldsAndSavesWhatRapidJSONReads) {
  std::cout << "left out: RapidJSON was not found when the tests were configured\n";
}

#endif
