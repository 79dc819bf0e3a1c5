#include <nlohmann/json.hpp>
#include <vector>

#include "JSONModel.h"

namespace zm::bench {
namespace {

class TNlohmannModel : public TTree {
 public:
  void Load(const std::string& UTF8) override { FRoot = nlohmann::json::parse(UTF8); }
  TTreeCounts Walk() const override {
    TTreeCounts counts;
    std::vector<const nlohmann::json*> open{&FRoot};
    while (!open.empty()) {
      const nlohmann::json& value = *open.back();
      open.pop_back();
      ++counts.Nodes;
      if (value.is_object()) {
        for (const auto& member : value.items()) {
          ++counts.Names;
          counts.Touch(member.key().data(), member.key().size());
          open.push_back(&member.value());
        }
      } else if (value.is_array()) {
        for (const auto& element : value) open.push_back(&element);
      } else if (value.is_string()) {
        const auto& text = value.get_ref<const std::string&>();
        counts.Touch(text.data(), text.size());
      } else if (value.is_number()) {
        counts.Touched += static_cast<std::uint64_t>(value.get<double>() > 0);
      }
    }
    return counts;
  }
  std::size_t Save(bool Formatted) const override { return FRoot.dump(Formatted ? 2 : -1).size(); }
  void Free() override { FRoot = nullptr; }

 private:
  nlohmann::json FRoot;
};

}  // namespace

std::unique_ptr<TTree> MakeNlohmannModel() { return std::make_unique<TNlohmannModel>(); }

}  // namespace zm::bench
