#include <iostream>

#include "zamrit/zamrit.h"

int main(int Count, char** Args) try {
  if (Count != 2) throw zm::Exception(u"usage: count_elements FILE");
  zm::TZmSAXLambdaHandler handler;
  handler.OnStartElement = [](zm::StringView, zm::StringView, zm::StringView QName, zm::IZmSAXAttributes& Attributes) {
    std::cout << zm::ToUTF8(QName) << " with " << Attributes.Count() << " attributes\n";
  };
  auto reader = zm::Create<zm::TZmSAXXMLReader>();
  reader->SetHandler(&handler);  // content, lexical and error handler in one
  reader->ParseFile(Args[1]);
} catch (const zm::Exception& e) {
  std::cerr << e.what() << '\n';
  return 1;
}
