#include "Readers.h"

namespace zmtool {
namespace {

// Writes events whose texts are raw JSON as XML.
class TXMLWriter : public zm::TZmSAXDefaultHandler {
 public:
  explicit TXMLWriter(TOutput& Out) : FOut(Out) {}

  void StartDocument() override { FOut.Put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"); }
  void StartElement(zm::StringView, zm::StringView, zm::StringView QName, zm::IZmSAXAttributes& Attributes) override {
    FOut.Put("<");
    FOut.Put(QName);
    for (const auto* a = Attributes.FirstAttribute(); a; a = a->Next) {
      FOut.Put(" ");
      FOut.Put(a->QName);
      FOut.Put("=\"");
      FOut.Put(zm::StringView(zm::ZmStrToXML(a->Value, false, true)));
      FOut.Put("\"");
    }
    FOut.Put(">");
  }
  void Characters(zm::StringView Text) override {
    FOut.Put(zm::StringView(zm::ZmStrToXML(zm::ZmJSONtoStr(Text, zm::jdtString), false, false)));
  }
  void EndElement(zm::StringView, zm::StringView, zm::StringView QName) override {
    FOut.Put("</");
    FOut.Put(QName);
    FOut.Put(">");
  }
  void EndDocument() override { FOut.Put("\n"); }

 private:
  TOutput& FOut;
};

}  // namespace

int PrintConverted(const TRequest& Request, TOutput& Out) {
  if (Request.To != "xml") throw EUsage(u"nothing can be converted to JSON yet, only JSON to XML");
  TInput input(Request.File);
  if (input.FindKind() == tkXML) throw EUsage(u"XML cannot be converted yet, only JSON to XML");
  TXMLWriter writer(Out);
  ReadJSONAsXML(input, Request.CodePage, writer);
  return ecDone;
}

}  // namespace zmtool
