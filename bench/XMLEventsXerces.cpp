#include <memory>
#include <stdexcept>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>
#include <xercesc/util/XercesVersion.hpp>

#include "XMLEvents.h"

namespace zm::bench {
namespace {

namespace xc = xercesc;

class TCountingHandler : public xc::DefaultHandler {
 public:
  TXMLEventCounts Counts;

  void startElement(const XMLCh* const URI, const XMLCh* const LocalName, const XMLCh* const QName,
                    const xc::Attributes& Attributes) override {
    ++Counts.Elements;
    TouchNames(URI, LocalName, QName);
    const XMLSize_t count = Attributes.getLength();
    Counts.Attributes += count;
    for (XMLSize_t i = 0; i < count; ++i) {
      TouchNames(Attributes.getURI(i), Attributes.getLocalName(i), Attributes.getQName(i));
      const XMLCh* value = Attributes.getValue(i);
      Counts.Touch(value, xc::XMLString::stringLen(value));
    }
  }
  void endElement(const XMLCh* const URI, const XMLCh* const LocalName, const XMLCh* const QName) override {
    TouchNames(URI, LocalName, QName);
  }
  void characters(const XMLCh* const Text, const XMLSize_t Length) override { Counts.Touch(Text, Length); }
  void ignorableWhitespace(const XMLCh* const Text, const XMLSize_t Length) override { Counts.Touch(Text, Length); }
  void fatalError(const xc::SAXParseException& Error) override {
    throw std::runtime_error("error in line " + std::to_string(Error.getLineNumber()));
  }

 private:
  void TouchNames(const XMLCh* URI, const XMLCh* LocalName, const XMLCh* QName) {
    Counts.TouchName(URI);
    Counts.TouchName(LocalName);
    Counts.TouchName(QName);
  }
};

struct TPlatform {
  TPlatform() { xc::XMLPlatformUtils::Initialize(); }
  ~TPlatform() { xc::XMLPlatformUtils::Terminate(); }
};

}  // namespace

TXMLEventCounts ReadWithXerces(const TXMLSource& Source) {
  static const TPlatform platform;
  const std::unique_ptr<xc::SAX2XMLReader> reader(xc::XMLReaderFactory::createXMLReader());
  reader->setFeature(xc::XMLUni::fgSAX2CoreValidation, false);
  reader->setFeature(xc::XMLUni::fgXercesSchema, false);
  reader->setFeature(xc::XMLUni::fgXercesLoadExternalDTD, false);
  TCountingHandler handler;
  reader->setContentHandler(&handler);
  reader->setErrorHandler(&handler);
  const xc::MemBufInputSource input(reinterpret_cast<const XMLByte*>(Source.UTF8.data()), Source.UTF8.size(), "memory");
  reader->parse(input);
  return handler.Counts;
}

std::string XercesVersion() { return "Xerces-C " XERCES_FULLVERSIONDOT; }

}  // namespace zm::bench
