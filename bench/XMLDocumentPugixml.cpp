#include <pugixml.hpp>
#include <stdexcept>

#include "XMLDocument.h"

namespace zm::bench {
namespace {

struct TToText : pugi::xml_writer {
  std::string Text;
  void write(const void* Data, std::size_t Size) override { Text.append(static_cast<const char*>(Data), Size); }
};

class TPugixmlDocument : public TTree {
 public:
  void Load(const std::string& UTF8) override {
    FDocument = std::make_unique<pugi::xml_document>();
    if (!FDocument->load_buffer(UTF8.data(), UTF8.size(), pugi::parse_default | cKept, pugi::encoding_utf8))
      throw std::runtime_error("pugixml refuses the document");
  }
  TTreeCounts Walk() const override {
    TTreeCounts counts;
    const auto touch = [&counts](const pugi::char_t* Text) {
      counts.Touch(Text, std::char_traits<char>::length(Text));
    };
    for (pugi::xml_node node = FDocument->first_child(); node; node = Following(node)) {
      if (node.type() == pugi::node_element) {
        ++counts.Nodes;
        touch(node.name());
        for (const pugi::xml_attribute& attribute : node.attributes()) {
          ++counts.Names;
          touch(attribute.name());
          touch(attribute.value());
        }
      } else {
        touch(node.value());
      }
    }
    return counts;
  }
  std::size_t Save(bool Formatted) const override {
    TToText text;
    FDocument->save(text, "\t", Formatted ? pugi::format_indent : pugi::format_raw, pugi::encoding_utf8);
    return text.Text.size();
  }
  void Free() override { FDocument.reset(); }

 private:
  // What the tree of this library keeps, too.
  static constexpr unsigned cKept = pugi::parse_comments | pugi::parse_pi | pugi::parse_declaration;

  static pugi::xml_node Following(pugi::xml_node Node) {
    if (const pugi::xml_node child = Node.first_child()) return child;
    for (; Node; Node = Node.parent())
      if (const pugi::xml_node next = Node.next_sibling()) return next;
    return {};
  }

  std::unique_ptr<pugi::xml_document> FDocument;
};

}  // namespace

std::unique_ptr<TTree> MakePugixmlDocument() { return std::make_unique<TPugixmlDocument>(); }

}  // namespace zm::bench
