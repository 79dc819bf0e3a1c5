#include <vector>

#include "Harness.h"
#include "JSONModel.h"
#include "zamrit/common/Encoding.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/xml/uZmJSON.h"

namespace zm::bench {
namespace {

class TZamritModel : public TTree {
 public:
  void Load(const std::string& UTF8) override {
    FDocument = Create<TZmJSONDocument>();
    FDocument->SetAllowSurroundingSpace(true);
    TZmStringStream stream(cZmBorrow, UTF8, cZmPageUTF8);
    FDocument->LoadFromStream(&stream, cZmPageUTF8, false);
  }
  TTreeCounts Walk() const override {
    TTreeCounts counts;
    std::vector<TZmJSONBase*> open{FDocument->GetRootValue()};
    while (!open.empty()) {
      TZmJSONBase* const value = open.back();
      open.pop_back();
      ++counts.Nodes;
      switch (value->GetJSONType()) {
        case jdtObject:
          for (TZmJSONMember* const member : *value->GetAsObject()) {
            ++counts.Names;
            const String name = member->GetName();
            counts.Touch(name.data(), name.size());
            open.push_back(member->GetValueObj());
          }
          break;
        case jdtArray:
          for (TZmJSONBase* const element : *value->GetAsArray()) open.push_back(element);
          break;
        default: {
          const String text = value->GetAsString();
          counts.Touch(text.data(), text.size());
        }
      }
    }
    return counts;
  }
  std::size_t Save(bool Formatted) const override {
    TMemoryStream stream;
    FDocument->SaveToStream(&stream, Formatted, cZmPageUTF8, false);
    return static_cast<std::size_t>(stream.GetSize());
  }
  void Free() override { FDocument.reset(); }

 private:
  TZmOwner<TZmJSONDocument> FDocument;
};

}  // namespace

std::unique_ptr<TTree> MakeZamritModel() { return std::make_unique<TZamritModel>(); }

double SelectWithZamrit(std::size_t Count, double Seconds, std::size_t& Hits) {
  std::string text = "[";
  for (std::size_t i = 0; i < Count; ++i)
    text += (i ? ",{\"id\":" : "{\"id\":") + std::to_string(i) + ",\"price\":" + std::to_string(i * 7919 % 100) + "}";
  TZmJSONDocument document;
  TZmStringStream stream(text + "]", cZmPageUTF8);
  document.LoadFromStream(&stream, cZmPageUTF8, false);
  const auto select = [&] {
    Hits = static_cast<std::size_t>(document.CreateNodeList("$[?(@.price<10 && @.id>5)]")->Count());
  };
  return Race({{"select", select}}, Seconds)[0].Median;
}

}  // namespace zm::bench
