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

// On one line: indents would make it grow with the square of the depth.
void ConvertToJSON(TInput& Input, const TRequest& Request, TOutput& Out) {
  zm::TZmDOMDocument document;
  LoadXML(Input, Request.CodePage, document);
  zm::TZmDOMElement* const root = document.GetRootNode();
  if (!root) throw zm::Exception(u"The text has no element!");
  root->SaveToJSONStream(&Out, zm::cZmPageUTF8, false);
  Out.Put("\n");
}

void ConvertToXML(TInput& Input, const TRequest& Request, TOutput& Out) {
  TXMLWriter writer(Out);
  ReadJSONAsXML(Input, Request.CodePage, writer);
}

}  // namespace

int PrintConverted(const TRequest& Request, TOutput& Out) {
  const TTextKind target = Request.To == "xml" ? tkXML : tkJSON;
  TInput input(Request.File);
  if (input.FindKind() == target)
    throw EUsage(target == tkXML ? u"the text is XML already" : u"the text is JSON already");
  (target == tkXML ? ConvertToXML : ConvertToJSON)(input, Request, Out);
  return ecDone;
}

}  // namespace zmtool
