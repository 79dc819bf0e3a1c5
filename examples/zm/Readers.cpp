#include "Readers.h"

namespace zmtool {
namespace {

template <class Reader, class Handler>
void ReadInto(Reader& Source, TInput& Input, std::uint16_t CodePage, Handler& Target) {
  const std::uint16_t marked = zm::ZmGetCodePage(&Input);
  Source.SetHandler(&Target);
  Source.ParseStream(&Input, CodePage ? CodePage : marked);
}

// The input, or what it holds where it has no size: a document asks for that, or goes back.
zm::TStream* WholeOf(TInput& Input, zm::TMemoryStream& Copy) {
  if (Input.IsSeekable()) return &Input;
  Copy.CopyFrom(&Input);
  Copy.SetPosition(0);
  return &Copy;
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

void LoadXML(TInput& Input, std::uint16_t CodePage, zm::TZmDOMDocument& Document) {
  zm::TMemoryStream copy;
  zm::TStream* const source = WholeOf(Input, copy);
  if (CodePage == 0) return Document.LoadFromStream(source);
  zm::ZmGetCodePage(source);  // goes behind a byte order mark
  Document.LoadFromStream(source, CodePage);
}

void LoadJSON(TInput& Input, std::uint16_t CodePage, zm::TZmJSONDocument& Document) {
  zm::TMemoryStream copy;
  zm::TStream* const source = WholeOf(Input, copy);
  Document.SetAllowSurroundingSpace(true);
  const std::uint16_t marked = zm::ZmGetCodePage(source);
  Document.LoadFromStream(source, CodePage ? CodePage : marked, false);
}

}  // namespace zmtool
