#include <libxml/parser.h>
#include <libxml/tree.h>

#include <stdexcept>

#include "XMLDocument.h"

namespace zm::bench {
namespace {

class TLibxml2Document : public TTree {
 public:
  ~TLibxml2Document() override { Free(); }
  void Load(const std::string& UTF8) override {
    Free();
    FDocument = xmlReadMemory(
        UTF8.data(), static_cast<int>(UTF8.size()), "", "UTF-8",
        XML_PARSE_HUGE | XML_PARSE_RECOVER | XML_PARSE_NOBLANKS | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
    if (!FDocument) throw std::runtime_error("libxml2 refuses the document");
  }
  TTreeCounts Walk() const override {
    TTreeCounts counts;
    const auto touch = [&counts](const xmlChar* Text) {
      if (Text) counts.Touch(Text, static_cast<std::size_t>(xmlStrlen(Text)));
    };
    for (const xmlNode* node = FDocument->children; node; node = Following(node)) {
      if (node->type == XML_ELEMENT_NODE) {
        ++counts.Nodes;
        touch(node->name);
        for (const xmlAttr* attribute = node->properties; attribute; attribute = attribute->next) {
          ++counts.Names;
          touch(attribute->name);
          for (const xmlNode* part = attribute->children; part; part = part->next) touch(part->content);
        }
      } else if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE) {
        touch(node->content);
      }
    }
    return counts;
  }
  std::size_t Save(bool Formatted) const override {
    xmlChar* text = nullptr;
    int size = 0;
    xmlDocDumpFormatMemoryEnc(FDocument, &text, &size, "UTF-8", Formatted);
    xmlFree(text);
    return static_cast<std::size_t>(size);
  }
  void Free() override {
    if (FDocument) xmlFreeDoc(FDocument);
    FDocument = nullptr;
  }

 private:
  static const xmlNode* Following(const xmlNode* Node) {
    if (Node->type == XML_ELEMENT_NODE && Node->children) return Node->children;
    for (; Node && Node->type != XML_DOCUMENT_NODE; Node = Node->parent)
      if (Node->next) return Node->next;
    return nullptr;
  }

  xmlDoc* FDocument = nullptr;
};

}  // namespace

std::unique_ptr<TTree> MakeLibxml2Document() { return std::make_unique<TLibxml2Document>(); }

}  // namespace zm::bench
