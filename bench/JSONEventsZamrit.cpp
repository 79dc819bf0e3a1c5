#include "JSONEvents.h"
#include "zamrit/zamrit.h"

namespace zm::bench {
namespace {

class TCountingHandler : public TZmJSONDefaultHandler {
 public:
  TJSONEventCounts Counts;

  void StartObject() override { ++Counts.Objects; }
  void StartArray() override { ++Counts.Arrays; }
  void StartMember(StringView Name) override {
    ++Counts.Members;
    Counts.Touch(Name.data(), Name.size());
  }
  void Value(TZmJSONDataType DataType, StringView Text) override {
    ++(DataType == jdtString ? Counts.Strings : DataType == jdtNumber ? Counts.Numbers : Counts.Words);
    Counts.Touch(Text.data(), Text.size());
  }
};

template <class TReader = TZmJSONReader, class F>
TJSONEventCounts Read(F Parse) {
  TCountingHandler handler;
  const auto reader = Create<TReader>();
  reader->SetHandler(&handler);
  reader->SetAllowSurroundingSpace(true);
  Parse(*reader);
  return handler.Counts;
}

}  // namespace

TJSONEventCounts ReadWithZamrit(const TJSONSource& Source) {
  return Read([&](TZmJSONReader& Reader) { Reader.Parse(std::string_view(Source.UTF8), 65001); });
}

TJSONEventCounts ReadWithZamritFromFile(const TJSONSource& Source) {
  return Read([&](TZmJSONReader& Reader) {
    const auto stream = Create<TFileStream>(Source.File.native(), fmOpenRead);
    Reader.ParseStream(stream.get(), 65001);
  });
}

TJSONEventCounts ReadWithZamritFromUTF16(const TJSONSource& Source) {
  return Read([&](TZmJSONReader& Reader) { Reader.Parse(StringView(Source.UTF16)); });
}

TJSONEventCounts ReadFormWithZamrit(const std::string& Post) {
  return Read<TZmFormURLEncodedJSONReader>([&](TZmJSONReader& Reader) { Reader.Parse(std::string_view(Post), 65001); });
}

}  // namespace zm::bench
