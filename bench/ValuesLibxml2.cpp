#include <libxml/entities.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <memory>
#include <stdexcept>

#include "Values.h"

namespace zm::bench {
namespace {

const xmlChar* Chars(const std::string& Text) { return reinterpret_cast<const xmlChar*>(Text.c_str()); }

template <class F>
TValuesWork Repeated(F Convert) {
  return [Convert](std::size_t Count) {
    for (std::size_t i = 0; i < Count; ++i) {
      xmlChar* result = Convert();
      if (!result) throw std::runtime_error("not converted");
      Use(result);
      xmlFree(result);
    }
  };
}

}  // namespace

TValuesWork EscapeWithLibxml2(const std::string& Text) {
  return Repeated([&Text] { return xmlEncodeSpecialChars(nullptr, Chars(Text)); });
}

TValuesWork EscapeEntitiesWithLibxml2(const std::string& Text) {
  return Repeated([&Text] { return xmlEncodeEntitiesReentrant(nullptr, Chars(Text)); });
}

TValuesWork DecodeWithLibxml2(const std::string& Text) {
  const std::shared_ptr<xmlParserCtxt> context(xmlNewParserCtxt(), xmlFreeParserCtxt);
  if (!context || xmlCtxtUseOptions(context.get(), XML_PARSE_HUGE) != 0) throw std::runtime_error("no parser");
  return Repeated([&Text, context] {
    return xmlStringLenDecodeEntities(context.get(), Chars(Text), static_cast<int>(Text.size()), XML_SUBSTITUTE_REF, 0,
                                      0, 0);
  });
}

}  // namespace zm::bench
