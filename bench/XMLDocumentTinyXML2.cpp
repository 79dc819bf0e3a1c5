#include <tinyxml2.h>

#include <cstring>
#include <stdexcept>

#include "XMLDocument.h"

namespace zm::bench {
namespace {

class TTinyXML2Document : public TTree {
 public:
  void Load(const std::string& UTF8) override {
    FDocument = std::make_unique<tinyxml2::XMLDocument>();
    if (FDocument->Parse(UTF8.data(), UTF8.size()) != tinyxml2::XML_SUCCESS)
      throw std::runtime_error("tinyxml2 refuses the document");
  }
  TTreeCounts Walk() const override {
    TTreeCounts counts;
    const auto touch = [&counts](const char* Text) {
      if (Text) counts.Touch(Text, std::strlen(Text));
    };
    for (const tinyxml2::XMLNode* node = FDocument->FirstChild(); node; node = Following(node)) {
      touch(node->Value());
      if (const tinyxml2::XMLElement* const element = node->ToElement()) {
        ++counts.Nodes;
        for (const tinyxml2::XMLAttribute* attribute = element->FirstAttribute(); attribute;
             attribute = attribute->Next()) {
          ++counts.Names;
          touch(attribute->Name());
          touch(attribute->Value());
        }
      }
    }
    return counts;
  }
  std::size_t Save(bool Formatted) const override {
    tinyxml2::XMLPrinter printer(nullptr, !Formatted);
    FDocument->Print(&printer);
    return static_cast<std::size_t>(printer.CStrSize()) - 1;
  }
  void Free() override { FDocument.reset(); }

 private:
  static const tinyxml2::XMLNode* Following(const tinyxml2::XMLNode* Node) {
    if (const tinyxml2::XMLNode* const child = Node->FirstChild()) return child;
    for (; Node; Node = Node->Parent())
      if (const tinyxml2::XMLNode* const next = Node->NextSibling()) return next;
    return nullptr;
  }

  std::unique_ptr<tinyxml2::XMLDocument> FDocument;
};

}  // namespace

std::unique_ptr<TTree> MakeTinyXML2Document() { return std::make_unique<TTinyXML2Document>(); }

}  // namespace zm::bench
