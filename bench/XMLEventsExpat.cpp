#include <expat.h>

#include <cstring>
#include <memory>
#include <stdexcept>

#include "XMLEvents.h"

namespace zm::bench {
namespace {

TXMLEventCounts& Counts(void* UserData) { return *static_cast<TXMLEventCounts*>(UserData); }

void XMLCALL StartElement(void* UserData, const XML_Char* Name, const XML_Char** Attributes) {
  TXMLEventCounts& counts = Counts(UserData);
  ++counts.Elements;
  counts.TouchName(Name);
  for (; *Attributes; Attributes += 2) {
    ++counts.Attributes;
    counts.TouchName(Attributes[0]);
    counts.Touch(Attributes[1], std::strlen(Attributes[1]));
  }
}

void XMLCALL EndElement(void* UserData, const XML_Char* Name) { Counts(UserData).TouchName(Name); }

void XMLCALL Characters(void* UserData, const XML_Char* Text, int Length) {
  Counts(UserData).Touch(Text, static_cast<std::size_t>(Length));
}

TXMLEventCounts Read(const TXMLSource& Source, XML_Parser Made) {
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(Made, &XML_ParserFree);
  TXMLEventCounts counts;
  XML_SetUserData(parser.get(), &counts);
  XML_SetElementHandler(parser.get(), StartElement, EndElement);
  XML_SetCharacterDataHandler(parser.get(), Characters);
  if (XML_Parse(parser.get(), Source.UTF8.data(), static_cast<int>(Source.UTF8.size()), XML_TRUE) != XML_STATUS_OK)
    throw std::runtime_error(XML_ErrorString(XML_GetErrorCode(parser.get())));
  return counts;
}

}  // namespace

TXMLEventCounts ReadWithExpat(const TXMLSource& Source) { return Read(Source, XML_ParserCreate(nullptr)); }

TXMLEventCounts ReadWithExpatNamespaces(const TXMLSource& Source) {
  return Read(Source, XML_ParserCreateNS(nullptr, '|'));
}

std::string ExpatVersion() {
  const XML_Expat_Version version = XML_ExpatVersionInfo();
  return "expat " + std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
         std::to_string(version.micro);
}

}  // namespace zm::bench
