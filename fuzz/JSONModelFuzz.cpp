// The JSON model over any bytes: what is loaded is what the events build, saving and loading again changes nothing but
// what the rules change, and edits with handles in hand leave a tree that can be saved.

#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/Check.h"
#include "zamrit/common/Encoding.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/xml/uZmJSON.h"

using namespace zm;

namespace {

std::string Saved(TZmJSONDocument& Document, bool Format = false) {
  TMemoryStream stream;
  Document.SaveToStream(&stream, Format, cZmPageUTF8, false);
  return {static_cast<const char*>(stream.GetMemory()), static_cast<std::size_t>(stream.GetSize())};
}

String WithoutDropped(StringView Text) {
  String kept;
  for (const char16_t unit : Text)
    if (unit == 0 || unit > 7) kept += unit;
  return kept;
}

// Whether Again is what Node, saved and loaded, must be.
void RequireReloaded(TZmJSONBase* Node, TZmJSONBase* Again) {
  std::vector<std::pair<TZmJSONBase*, TZmJSONBase*>> open{{Node, Again}};
  while (!open.empty()) {
    const auto [node, again] = open.back();
    open.pop_back();
    if (!node) continue;  // a member that the source ended in
    Require(node->GetJSONType() == again->GetJSONType());
    if (node->GetJSONType() < jdtObject) {
      Require(node->GetJSONType() != jdtString || WithoutDropped(node->GetAsString()) == again->GetAsString());
      continue;
    }
    Require(node->Count() == again->Count());
    for (int i = 0; i < node->Count(); ++i) {
      TZmJSONBase *child = node->Item(i), *twin = again->Item(i);
      if (node->GetJSONType() == jdtObject) {
        Require(twin->GetName() == ZmStrToJSON(child->GetName()));
        child = child->GetValueObj();
        twin = twin->GetValueObj();
      }
      open.push_back({child, twin});
    }
  }
}

// Each byte of the script is an edit at the node that the one before has come to.
void Edit(TZmJSONDocument& Document, const std::uint8_t* Script, std::size_t Size) {
  std::vector<TZmIntf<IZmJSONBase>> held;
  std::vector<TZmOwner<TZmJSONArray>> lists;
  TZmIntf<IZmJSONBase> at = Document.GetRootValueIntf();
  for (std::size_t i = 0; i < Size; ++i) {
    const int index = Script[i] >> 4;
    Try([&] {
      if (!at) at = Document.CreateRootValueIntf(index & 1 ? jdtObject : jdtArray);
      auto* const node = static_cast<TZmJSONBase*>(at->Implementor());
      TZmJSONObject* const object = dynamic_cast<TZmJSONObject*>(node);
      TZmJSONBase* const child = object && index < object->Count() ? object->Item(index)->GetValueObj() : nullptr;
      const bool leaves = !object && !node->GetOwner();  // its own elements, to whoever has added them
      const int edit = Script[i] & 15;
      if (leaves && (edit == 5 || edit == 6 || edit == 15)) return;
      switch (edit) {
        case 0:
          at = child ? TZmIntf<IZmJSONBase>(child) : node->GetItem(index);
          break;
        case 1:
          if (node->GetOwner()) at = TZmIntf<IZmJSONBase>(node->GetOwner());
          break;
        case 2:
          held.push_back(at);
          break;
        case 3:
          if (!held.empty()) held.erase(held.begin() + index % static_cast<int>(held.size()));
          break;
        case 4:
          object ? object->DeleteMember(index) : node->DeleteValue(index);
          break;
        case 5:
          object ? static_cast<void>(object->AddMember("m", index)) : static_cast<void>(node->AddValue(Variant(index)));
          break;
        case 6:
          if (object && index < object->Count())
            static_cast<TZmJSONMember*>(object->Item(index))->CreateValue(index & 1 ? jdtObject : jdtNull);
          else
            node->AddValue(index & 1 ? jdtObject : jdtArray);
          break;
        case 7:
          node->GetAsArray()->Exchange(0, index);
          break;
        case 8:
          at = Document.GetRootValueIntf();
          break;
        case 9:
          lists.push_back(Document.CreateNodeList(index & 1 ? "$..*" : "$.*"));
          break;
        case 10:
          if (!lists.empty()) at = TZmIntf<IZmJSONBase>(lists.back().get());
          break;
        case 11:
          if (!lists.empty()) lists.pop_back();
          break;
        case 12:
          if (node->GetOwner() && !lists.empty()) lists.back()->InsertObject(node);  // no list that might hold itself
          break;
        case 13:
          node->SetAsString("text");
          break;
        case 14:
          node->SelectSingleNode("$.x.y", {jsoCreate});
          break;
        default:
          node->SetAsJSON(index & 1 ? u"" : u"[{\"k\":[1,2]}]");
      }
    });
    if (i % 8 == 0) Try([&] { Saved(Document); });
  }
  at = nullptr;
  Try([&] { Saved(Document, true); });
  for (const auto& node : held) Try([&] { node->GetAsJSON(); });
}

}  // namespace

// The first byte chooses the page, the bits above it the settings, the second the length of the script in front of the
// text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  static constexpr std::uint16_t pages[] = {65001, 1200, 1252, 932};
  if (Size < 2) return 0;
  const std::uint16_t page = pages[Data[0] & 3];
  const bool form = (Data[0] & 4) != 0, space = (Data[0] & 8) != 0;
  const std::size_t script = std::min<std::size_t>(Data[1], Size - 2);
  const std::string text(reinterpret_cast<const char*>(Data) + 2 + script, Size - 2 - script);
  if (text.empty()) return 0;

  TZmJSONDocument document, built, again;
  document.SetAllowSurroundingSpace(space);
  TZmStringStream stream(text, page), second(text, page);
  const bool loaded = Try([&] { document.LoadFromStream(&stream, page, form); });
  const auto reader = form ? TZmOwner<TZmJSONReader>(Create<TZmFormURLEncodedJSONReader>()) : Create<TZmJSONReader>();
  reader->SetAllowSurroundingSpace(space);
  TZmJSONHandler handler(reader.get(), &built);
  reader->SetHandler(&handler);
  Require(Try([&] { reader->ParseStream(&second, page); }) == loaded);

  const std::string saved = Saved(document);
  Require(saved == Saved(built));
  Require(saved == ToUTF8(document.GetAsJSON()));
  Require(Saved(document, true) == ToUTF8(document.GetFormattedJSON()));
  if (!saved.empty()) {
    again.SetAsJSON(document.GetAsJSON());
    RequireReloaded(document.GetRootValue(), again.GetRootValue());
  }
  Edit(document, Data + 2, script);
  return 0;
}
