#include "zamrit/xml/json/JSONParser.h"

#include "zamrit/platform/ScopeDetail.h"
#include "zamrit/xml/json/FormReader.h"
#include "zamrit/xml/json/JSONErrors.h"

namespace zm {

template <class F>
void TZmJSONParser::Run(bool FormURLEncoded, F Parse) {
  if (FReader) throw EZmJSONException(_cZmJSONAlreadyParsing, jecAlreadyParsing);
  const TZmIntf<IZmObject> self(this);
  const detail::TFinally end([this] { FReader.reset(); });
  if (FormURLEncoded)
    FReader = Create<TZmFormURLEncodedJSONReader>();
  else
    FReader = Create<TZmJSONReader>();
  FReader->SetErrorHandler(this);
  FReader->SetContentHandler(this);
  FReader->SetAllowSurroundingSpace(FAllowSurroundingSpace);
  Parse(*FReader);
}

void TZmJSONParser::ParseStream(TStream* Stream, std::uint16_t CodePage, bool FormURLEncoded, StringView PublicID) {
  Run(FormURLEncoded, [&](TZmJSONReader& Reader) { Reader.ParseStream(Stream, CodePage, PublicID); });
}

void TZmJSONParser::ParseFile(StringView FileName, std::uint16_t Mode, StringView PublicID) {
  Run(false, [&](TZmJSONReader& Reader) { Reader.ParseFile(FileName, Mode, PublicID); });
}

void TZmJSONParser::ParseBuffer(const void* Buffer, unsigned Size, std::uint16_t CodePage, bool FormURLEncoded,
                                StringView PublicID) {
  Run(FormURLEncoded, [&](TZmJSONReader& Reader) { Reader.ParseBuffer(Buffer, Size, CodePage, PublicID); });
}

void TZmJSONParser::Parse(StringView Text, StringView PublicID) {
  Run(false, [&](TZmJSONReader& Reader) { Reader.Parse(Text, PublicID); });
}

void TZmJSONParser::Parse(std::string_view Text, std::uint16_t CodePage, StringView PublicID) {
  Run(false, [&](TZmJSONReader& Reader) { Reader.Parse(Text, CodePage, PublicID); });
}

}  // namespace zm
