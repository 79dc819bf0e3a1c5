#include <iostream>

#include "zamrit/zamrit.h"

namespace {

// Adds up every member "total", at whatever depth.
class TTotals : public zm::TZmJSONDefaultHandler {
 public:
  double Sum() const { return FSum; }

  void StartMember(zm::StringView Name) override { FWanted = Name == u"total"; }
  void Value(zm::TZmJSONDataType DataType, zm::StringView Text) override {
    if (FWanted && DataType == zm::jdtNumber) FSum += zm::ZmXMLToDouble(Text);
  }
  void FatalError(zm::IZmJSONLocator* Locator, zm::StringView Message) override {
    std::cerr << Locator->GetLineNr() << ':' << Locator->GetColNr() << ": " << zm::ToUTF8(Message) << '\n';
  }

 private:
  bool FWanted = false;
  double FSum = 0;
};

}  // namespace

int main(int Count, char** Args) try {
  if (Count != 2) throw zm::Exception(u"usage: json_events FILE");
  TTotals totals;
  auto reader = zm::Create<zm::TZmJSONReader>();
  reader->SetAllowSurroundingSpace(true);
  reader->SetHandler(&totals);
  reader->ParseFile(Args[1]);
  std::cout << totals.Sum() << '\n';

  // A form post as JSON
  zm::TZmJSONLambdaHandler handler;
  handler.OnStartMember = [](zm::StringView Name) { std::cout << zm::ToUTF8(Name) << ": "; };
  handler.OnValue = [](zm::TZmJSONDataType DataType, zm::StringView Text) {
    std::cout << zm::ToUTF8(zm::ZmJSONtoStr(Text, DataType)) << '\n';
  };
  auto form = zm::Create<zm::TZmFormURLEncodedJSONReader>();
  form->SetHandler(&handler);
  form->Parse("name=J%C3%B3n+Smith&mail=jon%40example.org", 65001);

  // The components, with functions to assign
  zm::TZmSAXParser parser;  // XML or JSON, as the text begins
  parser.OnStartElement = [](zm::TObject*, zm::StringView, zm::StringView, zm::StringView QName,
                             zm::IZmSAXAttributes&) { std::cout << zm::ToUTF8(QName) << ' '; };
  parser.Parse("<order><total/></order>");
  parser.Parse("{\"order\": [1, 2]}");
  std::cout << '\n';
} catch (const zm::EZmJSONParseError&) {
  return 1;  // FatalError has told
} catch (const zm::Exception& e) {
  std::cerr << e.what() << '\n';
  return 1;
}
