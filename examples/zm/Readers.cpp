#include "Readers.h"

namespace zmtool {
namespace {

template <class Reader, class Handler>
void ReadInto(Reader& Source, TInput& Input, std::uint16_t CodePage, Handler& Target) {
  const std::uint16_t marked = zm::ZmGetCodePage(&Input);
  Source.SetHandler(&Target);
  Source.ParseStream(&Input, CodePage ? CodePage : marked);
}

}  // namespace

void ReadXML(TInput& Input, std::uint16_t CodePage, zm::TZmSAXDefaultHandler& Handler) {
  ReadInto(*zm::Create<zm::TZmSAXXMLReader>(), Input, CodePage, Handler);
}

void ReadJSONAsXML(TInput& Input, std::uint16_t CodePage, zm::TZmSAXDefaultHandler& Handler) {
  ReadInto(*zm::Create<zm::TZmSAXJSONReader>(), Input, CodePage, Handler);
}

void ReadJSON(TInput& Input, TTextKind Kind, std::uint16_t CodePage, zm::TZmJSONDefaultHandler& Handler) {
  const zm::TZmOwner<zm::TZmJSONReader> reader =
      Kind == tkForm ? zm::TZmOwner<zm::TZmJSONReader>(zm::Create<zm::TZmFormURLEncodedJSONReader>())
                     : zm::Create<zm::TZmJSONReader>();
  reader->SetAllowSurroundingSpace(true);
  ReadInto(*reader, Input, CodePage, Handler);
}

void LoadJSON(TInput& Input, std::uint16_t CodePage, zm::TZmJSONDocument& Document) {
  zm::TMemoryStream whole;
  zm::TStream* source = &Input;
  if (!Input.IsSeekable()) {  // a document asks for the size
    whole.CopyFrom(&Input);
    whole.SetPosition(0);
    source = &whole;
  }
  Document.SetAllowSurroundingSpace(true);
  const std::uint16_t marked = zm::ZmGetCodePage(source);
  Document.LoadFromStream(source, CodePage ? CodePage : marked, false);
}

}  // namespace zmtool
