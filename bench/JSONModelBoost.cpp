#include <boost/json/src.hpp>
#include <vector>

#include "JSONModel.h"

namespace zm::bench {
namespace {

class TBoostModel : public TTree {
 public:
  void Load(const std::string& UTF8) override {
    FRoot = std::make_unique<boost::json::value>(boost::json::parse(UTF8));
  }
  TTreeCounts Walk() const override {
    TTreeCounts counts;
    std::vector<const boost::json::value*> open{FRoot.get()};
    while (!open.empty()) {
      const boost::json::value& value = *open.back();
      open.pop_back();
      ++counts.Nodes;
      if (const auto* const object = value.if_object()) {
        for (const auto& member : *object) {
          ++counts.Names;
          counts.Touch(member.key().data(), member.key().size());
          open.push_back(&member.value());
        }
      } else if (const auto* const array = value.if_array()) {
        for (const auto& element : *array) open.push_back(&element);
      } else if (const auto* const text = value.if_string()) {
        counts.Touch(text->data(), text->size());
      } else if (value.is_number()) {
        counts.Touched += static_cast<std::uint64_t>(value.to_number<double>() > 0);
      }
    }
    return counts;
  }
  std::size_t Save(bool) const override { return boost::json::serialize(*FRoot).size(); }
  void Free() override { FRoot.reset(); }

 private:
  std::unique_ptr<boost::json::value> FRoot;
};

}  // namespace

std::unique_ptr<TTree> MakeBoostModel() { return std::make_unique<TBoostModel>(); }

}  // namespace zm::bench
