#include "Readers.h"
#include "Stats.h"

namespace zmtool {
namespace {

struct TCounter : zm::TZmJSONDefaultHandler {
  long long Objects = 0, Arrays = 0, Members = 0, Nulls = 0, Strings = 0, Numbers = 0, Booleans = 0, TextUnits = 0,
            Depth = 0, Deepest = 0;

  void StartObject() override {
    ++Objects;
    Open();
  }
  void StartArray() override {
    ++Arrays;
    Open();
  }
  void StartMember(zm::StringView) override { ++Members; }
  void Value(zm::TZmJSONDataType Type, zm::StringView Text) override {
    ++(Type == zm::jdtString ? Strings : Type == zm::jdtNumber ? Numbers : Type == zm::jdtBoolean ? Booleans : Nulls);
    if (Type == zm::jdtString) TextUnits += static_cast<long long>(Text.size());
  }
  void EndArray() override { --Depth; }
  void EndObject() override { --Depth; }

  void Open() {
    if (++Depth > Deepest) Deepest = Depth;
  }
};

}  // namespace

TCounts CountJSON(TInput& Input, TTextKind Kind, std::uint16_t CodePage) {
  TCounter counter;
  ReadJSON(Input, Kind, CodePage, counter);
  return {{"objects", counter.Objects}, {"arrays", counter.Arrays},     {"greatest depth", counter.Deepest},
          {"members", counter.Members}, {"strings", counter.Strings},   {"units of text", counter.TextUnits},
          {"numbers", counter.Numbers}, {"booleans", counter.Booleans}, {"nulls", counter.Nulls}};
}

}  // namespace zmtool
