#include <iostream>

#include "zamrit/zamrit.h"

// A function of the application: whether a text reads the same from both ends.
class TPalindrome : public zm::TZmXPathFunction {
  ZM_OBJECT(TPalindrome, zm::TZmXPathFunction)
 public:
  using zm::TZmXPathFunction::TZmXPathFunction;
  void Value(zm::Variant& Result, const zm::TZmDOMObjectList& List, int Position) override {
    CheckCount(1, 1, u"The \"palindrome(string)\" function must have 1 parameter!");
    const zm::String text = zm::VarToStr(ParamValue(0, List, Position));
    Result = zm::String(text.rbegin(), text.rend()) == text;
  }
};

int main(int Count, char** Args) try {
  if (Count != 2) throw zm::Exception(u"usage: predicates FILE");
  zm::RegisterXPathFunction<TPalindrome>(u"palindrome");
  zm::TZmDOMDocument document;
  document.LoadFromFile(Args[1]);

  for (const char* path : {"//book[@id=\"9\"]/title", "//book[pages > 150][0]/title",
                           "//book[not(@lent) and starts-with(title, \"nj\")]/title", "//book[last()]/@id",
                           "//book[palindrome(@id)]/@id"}) {
    const auto nodes = document.CreateNodeList(path);
    std::cout << path << ':';
    for (zm::TZmDOMNode* node : *nodes) std::cout << ' ' << zm::ToUTF8(node->GetNodeValue());
    std::cout << '\n';
  }
} catch (const zm::Exception& e) {
  std::cerr << e.what() << '\n';
  return 1;
}
