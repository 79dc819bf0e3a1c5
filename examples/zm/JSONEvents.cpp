#include "Events.h"
#include "Readers.h"

namespace zmtool {
namespace {

zm::StringView NameOf(zm::TZmJSONDataType Type) {
  switch (Type) {
    case zm::jdtString:
      return u"string";
    case zm::jdtNumber:
      return u"number";
    case zm::jdtBoolean:
      return u"boolean";
    default:
      return u"null";
  }
}

class TPrinter : public zm::TZmJSONDefaultHandler {
 public:
  explicit TPrinter(TOutput& Out) : FLines(Out) {}

  void StartDocument() override { FLines.Print("StartDocument"); }
  void StartObject() override { FLines.Print("StartObject"); }
  void StartMember(zm::StringView Name) override { FLines.Print("StartMember", Name); }
  void StartArray() override { FLines.Print("StartArray"); }
  void Value(zm::TZmJSONDataType Type, zm::StringView Text) override { FLines.Print("Value", NameOf(Type), Text); }
  void EndArray() override { FLines.Print("EndArray"); }
  void EndMember() override { FLines.Print("EndMember"); }
  void EndObject() override { FLines.Print("EndObject"); }
  void EndDocument() override { FLines.Print("EndDocument"); }
  void FatalError(zm::IZmJSONLocator* Locator, zm::StringView Message) override {
    FLines.PrintFailure(Locator, Message);
  }

 private:
  TJSONLines FLines;
};

}  // namespace

void PrintJSONEvents(TInput& Input, TTextKind Kind, std::uint16_t CodePage, TOutput& Out) {
  TPrinter printer(Out);
  ReadJSON(Input, Kind, CodePage, printer);
}

}  // namespace zmtool
