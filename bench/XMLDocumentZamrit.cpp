#include "XMLDocument.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/xml/uZmXMLDOM.h"

namespace zm::bench {
namespace {

class TZamritDocument : public TTree {
 public:
  void Load(const std::string& UTF8) override {
    FDocument = Create<TZmDOMDocument>();
    FDocument->LoadFromXML(std::string_view(UTF8));
  }
  TTreeCounts Walk() const override {
    TTreeCounts counts;
    for (const TZmDOMNode* node = FDocument->FirstChild(); node; node = Following(node)) {
      switch (node->GetNodeType()) {
        case ntElement: {
          ++counts.Nodes;
          const StringView name = node->GetQualifiedName();
          counts.Touch(name.data(), name.size());
          break;
        }
        case ntAttribute: {
          ++counts.Names;
          const StringView name = node->GetQualifiedName();
          counts.Touch(name.data(), name.size());
          [[fallthrough]];
        }
        default: {
          const String value = node->GetNodeValue();
          counts.Touch(value.data(), value.size());
        }
      }
    }
    return counts;
  }
  std::size_t Save(bool Formatted) const override {
    TMemoryStream stream;
    FDocument->SaveToStream(&stream, cZmPageUTF8, Formatted, false);
    return static_cast<std::size_t>(stream.GetSize());
  }
  void Free() override { FDocument.reset(); }

 private:
  static const TZmDOMNode* Following(const TZmDOMNode* Node) {
    if (const TZmDOMNode* const child = Node->FirstChild()) return child;
    for (; Node; Node = Node->ParentNode())
      if (const TZmDOMNode* const next = Node->NextSibling()) return next;
    return nullptr;
  }

  TZmOwner<TZmDOMDocument> FDocument;
};

}  // namespace

std::unique_ptr<TTree> MakeZamritDocument() { return std::make_unique<TZamritDocument>(); }

}  // namespace zm::bench
