// Turns JSON into XML as it is read: the reader tells JSON as the events of elements, and the handler, which knows
// nothing of JSON but the form of its texts, writes them down.

#include <iostream>

#include "zamrit/zamrit.h"

class TXMLPrinter : public zm::TZmSAXDefaultHandler {
 public:
  void StartElement(zm::StringView, zm::StringView, zm::StringView QName, zm::IZmSAXAttributes& Attributes) override {
    std::cout << '<' << zm::ToUTF8(QName);
    for (int i = 0; i < Attributes.Count(); ++i)
      std::cout << ' ' << zm::ToUTF8(Attributes.GetQName(i)) << "=\"" << zm::ToUTF8(Attributes.GetValue(i)) << '"';
    std::cout << '>';
  }
  void Characters(zm::StringView Text) override {
    const zm::String decoded = zm::ZmJSONtoStr(Text, zm::jdtString);  // events carry the text with its escapes
    std::cout << zm::ToUTF8(zm::ZmStrToXML(decoded, false, false));
  }
  void EndElement(zm::StringView, zm::StringView, zm::StringView QName) override {
    std::cout << "</" << zm::ToUTF8(QName) << '>';
  }
  void EndDocument() override { std::cout << '\n'; }
};

int main(int Count, char** Args) try {
  if (Count != 2) throw zm::Exception(u"usage: json_to_xml FILE");
  TXMLPrinter printer;
  auto reader = zm::Create<zm::TZmSAXJSONReader>();
  reader->SetHandler(&printer);
  auto file = zm::Create<zm::TFileStream>(zm::FromUTF8(Args[1]), zm::fmOpenRead);
  reader->ParseStream(file.get(), zm::ZmGetCodePage(file.get()));  // a byte order mark decides, else the text itself
} catch (const zm::Exception& e) {
  std::cerr << e.what() << '\n';
  return 1;
}
