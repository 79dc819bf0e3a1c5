#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <memory>
#include <stdexcept>

#include "XMLEvents.h"

namespace zm::bench {
namespace {

TXMLEventCounts& Counts(void* UserData) { return *static_cast<TXMLEventCounts*>(UserData); }

void StartElement(void* UserData, const xmlChar* LocalName, const xmlChar* Prefix, const xmlChar* URI,
                  int DeclarationCount, const xmlChar** Declarations, int AttributeCount, int DefaultedCount,
                  const xmlChar** Attributes) {
  TXMLEventCounts& counts = Counts(UserData);
  ++counts.Elements;
  counts.TouchName(LocalName);
  counts.TouchName(Prefix);
  counts.TouchName(URI);
  counts.Declarations += static_cast<std::uint64_t>(DeclarationCount);
  for (int i = 0; i < 2 * DeclarationCount; ++i) counts.TouchName(Declarations[i]);
  counts.Attributes += static_cast<std::uint64_t>(AttributeCount);
  counts.Defaulted += static_cast<std::uint64_t>(DefaultedCount);
  for (int i = 0; i < AttributeCount; ++i, Attributes += 5) {
    counts.TouchName(Attributes[0]);
    counts.TouchName(Attributes[1]);
    counts.TouchName(Attributes[2]);
    counts.Touch(Attributes[3], static_cast<std::size_t>(Attributes[4] - Attributes[3]));
  }
}

void EndElement(void* UserData, const xmlChar* LocalName, const xmlChar* Prefix, const xmlChar* URI) {
  TXMLEventCounts& counts = Counts(UserData);
  counts.TouchName(LocalName);
  counts.TouchName(Prefix);
  counts.TouchName(URI);
}

void Characters(void* UserData, const xmlChar* Text, int Length) {
  Counts(UserData).Touch(Text, static_cast<std::size_t>(Length));
}

xmlSAXHandler MakeHandler() {
  xmlSAXHandler handler{};
  handler.initialized = XML_SAX2_MAGIC;
  handler.startElementNs = StartElement;
  handler.endElementNs = EndElement;
  handler.characters = Characters;
  handler.ignorableWhitespace = Characters;
  return handler;
}

struct TFreeContext {
  void operator()(xmlParserCtxtPtr Context) const {
    if (Context->myDoc) xmlFreeDoc(Context->myDoc);
    xmlFreeParserCtxt(Context);
  }
};

}  // namespace

TXMLEventCounts ReadWithLibxml2(const TXMLSource& Source) {
  static xmlSAXHandler handler = MakeHandler();
  const std::unique_ptr<xmlParserCtxt, TFreeContext> context(
      xmlCreateMemoryParserCtxt(Source.UTF8.data(), static_cast<int>(Source.UTF8.size())));
  if (!context) throw std::runtime_error("no parser");
  TXMLEventCounts counts;
  xmlCtxtUseOptions(context.get(), XML_PARSE_HUGE | XML_PARSE_NONET);
  xmlSAXHandler* own = context->sax;
  context->sax = &handler;
  context->userData = &counts;
  const int error = xmlParseDocument(context.get());
  context->sax = own;
  if (error != 0) throw std::runtime_error("error " + std::to_string(error));
  return counts;
}

std::string Libxml2Version() { return "libxml2 " LIBXML_DOTTED_VERSION; }

}  // namespace zm::bench
