#include "Readers.h"
#include "Stats.h"

namespace zmtool {
namespace {

struct TCounter : zm::TZmSAXDefaultHandler {
  long long Elements = 0, Attributes = 0, Texts = 0, TextUnits = 0, Blanks = 0, Comments = 0, Instructions = 0,
            Sections = 0, DocumentTypes = 0, Namespaces = 0, Depth = 0, Deepest = 0;

  void StartElement(zm::StringView, zm::StringView, zm::StringView, zm::IZmSAXAttributes& List) override {
    ++Elements;
    Attributes += List.Count();
    if (++Depth > Deepest) Deepest = Depth;
  }
  void EndElement(zm::StringView, zm::StringView, zm::StringView) override { --Depth; }
  void Characters(zm::StringView Text) override {
    ++Texts;
    TextUnits += static_cast<long long>(Text.size());
  }
  void IgnorableWhitespace(zm::StringView) override { ++Blanks; }
  void Comment(zm::StringView) override { ++Comments; }
  void ProcessingInstruction(zm::StringView, zm::StringView) override { ++Instructions; }
  void StartCDATA() override { ++Sections; }
  void StartDTD() override { ++DocumentTypes; }
  void StartPrefixMapping(zm::StringView, zm::StringView) override { ++Namespaces; }
};

}  // namespace

TCounts CountXML(TInput& Input, std::uint16_t CodePage) {
  TCounter counter;
  ReadXML(Input, CodePage, counter);
  return {{"elements", counter.Elements},
          {"greatest depth", counter.Deepest},
          {"attributes", counter.Attributes},
          {"texts", counter.Texts},
          {"units of text", counter.TextUnits},
          {"blank texts", counter.Blanks},
          {"CDATA sections", counter.Sections},
          {"comments", counter.Comments},
          {"instructions", counter.Instructions},
          {"document types", counter.DocumentTypes},
          {"namespace declarations", counter.Namespaces}};
}

}  // namespace zmtool
