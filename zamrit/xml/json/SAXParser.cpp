#include "zamrit/xml/json/SAXParser.h"

#include "zamrit/common/Encoding.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/platform/ScopeDetail.h"
#include "zamrit/xml/json/SAXJSONReader.h"
#include "zamrit/xml/sax/SkipBlanksDetail.h"
#include "zamrit/xml/sax/XMLErrors.h"
#include "zamrit/xml/sax/XMLReader.h"

namespace zm {

void TZmSAXParser::ParseStream(TStream* Stream, std::uint16_t CodePage, StringView PublicID) {
  if (FRunning) throw EZmXMLException(_cZmXMLAlreadyParsing, xecAlreadyParsing);
  const TZmIntf<IZmObject> self(this);
  {
    FRunning = true;
    const detail::TFinally end([this] {
      FReader.reset();
      FRunning = false;
    });
    Call(OnStart);
    if (detail::SkipBlanks(*Stream, CodePage) == u'<')
      FReader = Create<TZmSAXXMLReader>();
    else
      FReader = Create<TZmSAXJSONReader>();
    FReader->SetErrorHandler(this);
    FReader->SetLexicalHandler(this);
    FReader->SetContentHandler(this);
    FReader->ParseStream(Stream, CodePage, PublicID);
  }
  Call(OnFinished);
}

void TZmSAXParser::ParseFile(StringView FileName, std::uint16_t Mode, StringView PublicID) {
  const auto stream = Create<TFileStream>(FileName, Mode);
  const std::uint16_t marked = ZmGetCodePage(stream.get());
  ParseStream(stream.get(), marked, PublicID);
}

void TZmSAXParser::ParseBuffer(const void* Buffer, unsigned Size, std::uint16_t CodePage, StringView PublicID) {
  const auto stream = Create<TZmMemoryStream>(Buffer, Size);
  ParseStream(stream.get(), CodePage, PublicID);
}

void TZmSAXParser::Parse(StringView Text, StringView PublicID) {
  const auto stream = Create<TZmStringStream>(cZmBorrow, Text);
  ParseStream(stream.get(), cZmPageUTF16, PublicID);
}

void TZmSAXParser::Parse(std::string_view Text, std::uint16_t CodePage, StringView PublicID) {
  const auto stream = Create<TZmStringStream>(cZmBorrow, Text, CodePage);
  ParseStream(stream.get(), CodePage, PublicID);
}

}  // namespace zm
