#include <simdjson.h>

#include <optional>
#include <vector>

#include "JSONModel.h"

namespace zm::bench {
namespace {

class TSimdjsonModel : public TTree {
 public:
  void Load(const std::string& UTF8) override {
    FParser.emplace();
    FRoot = FParser->parse(UTF8);
  }
  TTreeCounts Walk() const override {
    TTreeCounts counts;
    std::vector<simdjson::dom::element> open{FRoot};
    while (!open.empty()) {
      const simdjson::dom::element value = open.back();
      open.pop_back();
      ++counts.Nodes;
      switch (value.type()) {
        case simdjson::dom::element_type::OBJECT:
          for (const auto& member : simdjson::dom::object(value)) {
            ++counts.Names;
            counts.Touch(member.key.data(), member.key.size());
            open.push_back(member.value);
          }
          break;
        case simdjson::dom::element_type::ARRAY:
          for (const simdjson::dom::element element : simdjson::dom::array(value)) open.push_back(element);
          break;
        case simdjson::dom::element_type::STRING: {
          const std::string_view text = value;
          counts.Touch(text.data(), text.size());
          break;
        }
        default:
          if (value.is_number()) counts.Touched += static_cast<std::uint64_t>(double(value) > 0);
      }
    }
    return counts;
  }
  std::size_t Save(bool) const override { return simdjson::minify(FRoot).size(); }
  void Free() override { FParser.reset(); }

 private:
  std::optional<simdjson::dom::parser> FParser;
  simdjson::dom::element FRoot;
};

}  // namespace

std::unique_ptr<TTree> MakeSimdjsonModel() { return std::make_unique<TSimdjsonModel>(); }

}  // namespace zm::bench
