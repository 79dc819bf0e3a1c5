#include "Commands.h"
#include "JSONLines.h"
#include "XMLRun.h"

namespace zmtool {
namespace {

class TPrinter : public zm::TZmSAXDefaultHandler {
 public:
  explicit TPrinter(TJSONLines& Out) : FOut(Out) {}

  void StartDocument() override { Print("StartDocument"); }
  void EndDocument() override { Print("EndDocument"); }
  void StartPrefixMapping(zm::StringView Prefix, zm::StringView URI) override {
    Print("StartPrefixMapping", Prefix, URI);
  }
  void EndPrefixMapping(zm::StringView Prefix) override { Print("EndPrefixMapping", Prefix); }
  void StartElement(zm::StringView URI, zm::StringView LocalName, zm::StringView QName,
                    zm::IZmSAXAttributes& Attributes) override {
    FOut.Begin("StartElement");
    PutTexts(URI, LocalName, QName);
    FOut.OpenArray();
    for (const auto* a = Attributes.FirstAttribute(); a; a = a->Next) {
      FOut.OpenArray();
      PutTexts(a->URI, a->LocalName, a->QName, a->Value);
      FOut.CloseArray();
    }
    FOut.CloseArray();
    FOut.End();
  }
  void EndElement(zm::StringView URI, zm::StringView LocalName, zm::StringView QName) override {
    Print("EndElement", URI, LocalName, QName);
  }
  void Characters(zm::StringView Text) override { Print("Characters", Text); }
  void IgnorableWhitespace(zm::StringView Text) override { Print("IgnorableWhitespace", Text); }
  void ProcessingInstruction(zm::StringView Target, zm::StringView Data) override {
    Print("ProcessingInstruction", Target, Data);
  }
  void Comment(zm::StringView Text) override { Print("Comment", Text); }
  void StartCDATA() override { Print("StartCDATA"); }
  void EndCDATA() override { Print("EndCDATA"); }
  void StartDTD() override { Print("StartDTD"); }
  void EndDTD() override { Print("EndDTD"); }
  void FatalError(zm::IZmSAXLocator* Locator, zm::StringView Message) override {
    FOut.Begin("FatalError");
    FOut.Number(Locator->GetLineNr());
    FOut.Number(Locator->GetColNr());
    FOut.Text(Message);
    FOut.End();
  }

 private:
  template <class... Texts>
  void PutTexts(Texts... Values) {
    (FOut.Text(Values), ...);
  }
  template <class... Texts>
  void Print(std::string_view Event, Texts... Values) {
    FOut.Begin(Event);
    PutTexts(Values...);
    FOut.End();
  }

  TJSONLines& FOut;
};

}  // namespace

int PrintXMLEvents(const TSource& Source) {
  TJSONLines out(stdout);
  TPrinter printer(out);
  TInput input(Source.File);
  ReadXML(input, Source.CodePage, printer);
  if (!out.Flush()) throw zm::EWriteError(u"Stream write error");
  return ecDone;
}

}  // namespace zmtool
