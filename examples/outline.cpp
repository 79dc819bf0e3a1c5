#include <iostream>
#include <string>

#include "zamrit/zamrit.h"

class TOutline : public zm::TZmSAXDefaultHandler {
 public:
  void StartElement(zm::StringView, zm::StringView LocalName, zm::StringView, zm::IZmSAXAttributes&) override {
    std::cout << std::string(2 * FDepth++, ' ') << zm::ToUTF8(LocalName) << '\n';
  }
  void EndElement(zm::StringView, zm::StringView, zm::StringView) override { --FDepth; }
  void FatalError(zm::IZmSAXLocator* Locator, zm::StringView Message) override {
    std::cerr << Locator->GetLineNr() << ':' << Locator->GetColNr() << ": " << zm::ToUTF8(Message) << '\n';
  }

 private:
  std::size_t FDepth = 0;
};

int main(int Count, char** Args) try {
  if (Count != 2) throw zm::Exception(u"usage: outline FILE");
  TOutline outline;
  auto reader = zm::Create<zm::TZmSAXXMLReader>();
  reader->SetHandler(&outline);
  reader->ParseFile(Args[1]);
} catch (const zm::EZmXMLParseError&) {
  return 1;  // FatalError has told
} catch (const zm::Exception& e) {
  std::cerr << e.what() << '\n';
  return 1;
}
