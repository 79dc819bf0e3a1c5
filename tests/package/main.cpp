#include <iostream>
#include <string>

#include "zamrit/zamrit.h"

int main() {
  std::string seen;
  zm::TZmSAXLambdaHandler handler;
  handler.OnStartElement = [&](zm::StringView, zm::StringView, zm::StringView QName, zm::IZmSAXAttributes& Attributes) {
    seen += zm::ToUTF8(QName) + std::to_string(Attributes.Count()) + ' ';
  };
  handler.OnCharacters = [&](zm::StringView Text) { seen += zm::ToUTF8(Text); };

  auto reader = zm::Create<zm::TZmSAXXMLReader>();
  reader->SetHandler(&handler);
  reader->Parse(u"<a><b c='1' d='2'>text</b></a>");
  std::cout << seen << '\n';
  if (seen != "a0 b2 text") return 1;

  try {
    reader->Parse(u"<a>text");
  } catch (const zm::EZmTextParserEOF& error) {
    std::cout << error.what() << '\n';
    return 0;
  }
  return 1;
}
