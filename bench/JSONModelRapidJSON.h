// The RapidJSON model, for two builds of that library: with its vector instructions and without.
#include <rapidjson/document.h>
#include <rapidjson/encodings.h>
#include <rapidjson/error/en.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <stdexcept>
#include <vector>

#include "JSONModel.h"

namespace zm::bench {
namespace {

namespace rj = RAPIDJSON_NAMESPACE;

template <class Encoding>
class TRapidModel : public TTree {
  using TDocument = rj::GenericDocument<Encoding>;
  using TValue = rj::GenericValue<Encoding>;

 public:
  void Load(const std::string& UTF8) override {
    FDocument = std::make_unique<TDocument>();
    rj::StringStream stream(UTF8.c_str());
    FDocument->template ParseStream<rj::kParseIterativeFlag, rj::UTF8<>>(stream);
    if (FDocument->HasParseError()) throw std::runtime_error(rj::GetParseError_En(FDocument->GetParseError()));
  }
  TTreeCounts Walk() const override {
    TTreeCounts counts;
    std::vector<const TValue*> open{FDocument.get()};
    while (!open.empty()) {
      const TValue& value = *open.back();
      open.pop_back();
      ++counts.Nodes;
      if (value.IsObject()) {
        for (const auto& member : value.GetObject()) {
          ++counts.Names;
          counts.Touch(member.name.GetString(), member.name.GetStringLength());
          open.push_back(&member.value);
        }
      } else if (value.IsArray()) {
        for (const auto& element : value.GetArray()) open.push_back(&element);
      } else if (value.IsString()) {
        counts.Touch(value.GetString(), value.GetStringLength());
      } else if (value.IsNumber()) {
        counts.Touched += static_cast<std::uint64_t>(value.GetDouble() > 0);
      }
    }
    return counts;
  }
  std::size_t Save(bool Formatted) const override {
    return Formatted ? SaveBy<rj::PrettyWriter<rj::StringBuffer, Encoding, rj::UTF8<>>>()
                     : SaveBy<rj::Writer<rj::StringBuffer, Encoding, rj::UTF8<>>>();
  }
  void Free() override { FDocument.reset(); }

 private:
  template <class Writer>
  std::size_t SaveBy() const {
    rj::StringBuffer buffer;
    Writer writer(buffer);
    FDocument->Accept(writer);
    return buffer.GetSize();
  }

  std::unique_ptr<TDocument> FDocument;
};

}  // namespace
}  // namespace zm::bench
