#include <memory>
#include <stdexcept>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "XMLDocument.h"

namespace zm::bench {
namespace {

namespace xc = xercesc;

struct TPlatform {
  TPlatform() { xc::XMLPlatformUtils::Initialize(); }
  ~TPlatform() { xc::XMLPlatformUtils::Terminate(); }
};

class TXercesDocument : public TTree {
 public:
  TXercesDocument() { static TPlatform platform; }
  void Load(const std::string& UTF8) override {
    FParser = std::make_unique<xc::XercesDOMParser>();
    FParser->setDoNamespaces(true);
    FParser->setLoadExternalDTD(false);
    FParser->setValidationScheme(xc::XercesDOMParser::Val_Never);
    FParser->setIncludeIgnorableWhitespace(false);
    FParser->setExitOnFirstFatalError(false);
    const xc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(UTF8.data()), UTF8.size(), "document");
    FParser->parse(source);
    if (!FParser->getDocument()) throw std::runtime_error("Xerces-C refuses the document");
  }
  TTreeCounts Walk() const override {
    TTreeCounts counts;
    const auto touch = [&counts](const XMLCh* Text) { counts.Touch(Text, xc::XMLString::stringLen(Text)); };
    for (const xc::DOMNode* node = FParser->getDocument()->getFirstChild(); node; node = Following(node)) {
      touch(node->getNodeName());
      if (node->getNodeType() == xc::DOMNode::ELEMENT_NODE) {
        ++counts.Nodes;
        const xc::DOMNamedNodeMap* const attributes = node->getAttributes();
        for (XMLSize_t i = 0; i < attributes->getLength(); ++i) {
          ++counts.Names;
          touch(attributes->item(i)->getNodeName());
          touch(attributes->item(i)->getNodeValue());
        }
      } else {
        touch(node->getNodeValue());
      }
    }
    return counts;
  }
  std::size_t Save(bool Formatted) const override {
    static const XMLCh cLS[] = {'L', 'S', 0};
    auto* const implementation = xc::DOMImplementationRegistry::getDOMImplementation(cLS);
    const auto release = [](auto* Object) { Object->release(); };
    const std::unique_ptr<xc::DOMLSSerializer, decltype(release)> serializer(implementation->createLSSerializer(),
                                                                             release);
    const std::unique_ptr<xc::DOMLSOutput, decltype(release)> output(implementation->createLSOutput(), release);
    serializer->getDomConfig()->setParameter(xc::XMLUni::fgDOMWRTFormatPrettyPrint, Formatted);
    xc::MemBufFormatTarget target;
    output->setByteStream(&target);
    output->setEncoding(xc::XMLUni::fgUTF8EncodingString);
    serializer->write(FParser->getDocument(), output.get());
    return static_cast<std::size_t>(target.getLen());
  }
  void Free() override { FParser.reset(); }

 private:
  static const xc::DOMNode* Following(const xc::DOMNode* Node) {
    if (const xc::DOMNode* const child = Node->getFirstChild()) return child;
    for (; Node; Node = Node->getParentNode())
      if (const xc::DOMNode* const next = Node->getNextSibling()) return next;
    return nullptr;
  }

  std::unique_ptr<xc::XercesDOMParser> FParser;
};

}  // namespace

std::unique_ptr<TTree> MakeXercesDocument() { return std::make_unique<TXercesDocument>(); }

}  // namespace zm::bench
