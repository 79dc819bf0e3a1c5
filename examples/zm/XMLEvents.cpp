#include "Events.h"
#include "Readers.h"

namespace zmtool {
namespace {

class TPrinter : public zm::TZmSAXDefaultHandler {
 public:
  explicit TPrinter(TOutput& Out) : FLines(Out) {}

  void StartDocument() override { FLines.Print("StartDocument"); }
  void EndDocument() override { FLines.Print("EndDocument"); }
  void StartPrefixMapping(zm::StringView Prefix, zm::StringView URI) override {
    FLines.Print("StartPrefixMapping", Prefix, URI);
  }
  void EndPrefixMapping(zm::StringView Prefix) override { FLines.Print("EndPrefixMapping", Prefix); }
  void StartElement(zm::StringView URI, zm::StringView LocalName, zm::StringView QName,
                    zm::IZmSAXAttributes& Attributes) override {
    FLines.Begin("StartElement");
    FLines.PutTexts(URI, LocalName, QName);
    FLines.OpenArray();
    for (const auto* a = Attributes.FirstAttribute(); a; a = a->Next) {
      FLines.OpenArray();
      FLines.PutTexts(a->URI, a->LocalName, a->QName, a->Value);
      FLines.CloseArray();
    }
    FLines.CloseArray();
    FLines.End();
  }
  void EndElement(zm::StringView URI, zm::StringView LocalName, zm::StringView QName) override {
    FLines.Print("EndElement", URI, LocalName, QName);
  }
  void Characters(zm::StringView Text) override { FLines.Print("Characters", Text); }
  void IgnorableWhitespace(zm::StringView Text) override { FLines.Print("IgnorableWhitespace", Text); }
  void ProcessingInstruction(zm::StringView Target, zm::StringView Data) override {
    FLines.Print("ProcessingInstruction", Target, Data);
  }
  void Comment(zm::StringView Text) override { FLines.Print("Comment", Text); }
  void StartCDATA() override { FLines.Print("StartCDATA"); }
  void EndCDATA() override { FLines.Print("EndCDATA"); }
  void StartDTD() override { FLines.Print("StartDTD"); }
  void EndDTD() override { FLines.Print("EndDTD"); }
  void FatalError(zm::IZmSAXLocator* Locator, zm::StringView Message) override {
    FLines.PrintFailure(Locator, Message);
  }

 private:
  TJSONLines FLines;
};

}  // namespace

void PrintXMLEvents(TInput& Input, std::uint16_t CodePage, TOutput& Out) {
  TPrinter printer(Out);
  ReadXML(Input, CodePage, printer);
}

}  // namespace zmtool
