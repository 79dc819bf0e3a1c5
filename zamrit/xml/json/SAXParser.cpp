#include "zamrit/xml/json/SAXParser.h"

#include <algorithm>
#include <array>

#include "zamrit/common/Encoding.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/platform/ScopeDetail.h"
#include "zamrit/xml/json/SAXJSONReader.h"
#include "zamrit/xml/sax/XMLErrors.h"
#include "zamrit/xml/sax/XMLReader.h"

namespace zm {
namespace {

constexpr std::uint16_t cPageUTF16BE = 1201;

// Moves the stream to the first character above the blank, or where there is none to the last one, and tells whether it
// is "<".
bool BeginsWithMarkup(TStream& Stream, std::uint16_t CodePage) {
  const bool bigEndian = CodePage == cPageUTF16BE;
  const std::size_t size = bigEndian || CodePage == cZmPageUTF16 ? 2 : 1;
  std::array<unsigned char, 4096> block;
  for (bool passed = false;; passed = true) {
    std::size_t count = 0;
    while (const std::size_t more = Stream.Read(block.data() + count, block.size() - count)) count += more;
    const auto back = [&](std::size_t Bytes) { Stream.Seek(-static_cast<std::int64_t>(Bytes), soCurrent); };
    for (std::size_t at = 0; at + size <= count; at += size) {
      const unsigned first = block[at], second = size == 2 ? block[at + 1] : 0u;
      const unsigned value = bigEndian ? first << 8 | second : second << 8 | first;
      if (value <= u' ') continue;
      back(count - at);
      return value == u'<';
    }
    if (count == block.size()) continue;
    back(passed ? size : std::min(size, count));
    return false;
  }
}

}  // namespace

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
    if (BeginsWithMarkup(*Stream, CodePage))
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
