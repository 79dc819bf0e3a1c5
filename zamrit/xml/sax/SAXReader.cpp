#include "zamrit/xml/sax/SAXReader.h"

#include "zamrit/common/CurrentMessageDetail.h"
#include "zamrit/common/Encoding.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/platform/ScopeDetail.h"
#include "zamrit/xml/sax/XMLErrors.h"

namespace zm {

TZmSAXReader::TZmSAXReader() : FEmptyAttributes(Create<TZmSAXXMAttributes>()) { SetAutoDestroy(false); }

std::int64_t TZmSAXReader::GetPosition() { return FParser ? FParser->GetPosition() : -1; }

int TZmSAXReader::GetLineNr() {
  if (!FUnexpectedEOF) return FParser ? FParser->GetLineNr() : -1;
  KeepConstructPlace();
  return FLineNr;
}

int TZmSAXReader::GetColNr() {
  if (!FUnexpectedEOF) return FParser ? FParser->GetColNr() : -1;
  KeepConstructPlace();
  return FColNr;
}

void TZmSAXReader::SetHandler(TZmSAXDefaultHandler* Handler) {
  SetContentHandler(Handler);
  SetLexicalHandler(Handler);
  SetErrorHandler(Handler);
}

// The readers leave a mere place in the text at each construct; it becomes line and column when somebody may ask.
void TZmSAXReader::KeepConstructPlace() {
  if (!FParser) return;
  const detail::TPlace place = FParser->Window().TokenPlace();
  if (place.Offset < 0) return;
  FLineNr = place.LineNr();
  FColNr = place.ColNr();
}

void TZmSAXReader::CheckIdle() const {
  if (FRunning) RaiseAlreadyParsing();
}

void TZmSAXReader::RaiseAlreadyParsing() const { throw EZmXMLException(_cZmXMLAlreadyParsing, xecAlreadyParsing); }

void TZmSAXReader::Run(TStream* Stream, bool DetectCodePage, std::uint16_t CodePage, StringView PublicID) {
  CheckIdle();
  const TZmIntf<IZmObject> self(this);
  FPublicID = PublicID;
  FRunning = true;
  TZmOwner<TZmTextParser> parser;
  const detail::TFinally end([this, &parser] {
    if (FUnexpectedEOF) KeepConstructPlace();
    FParser = nullptr;
    parser.reset();
    FRunning = false;
    FReplaced.clear();
  });
  parser = CreateParser(Stream, false, DetectCodePage, CodePage);
  FParser = parser.get();
  InternalParse();
}

void TZmSAXReader::TellFatalError() {
  const String message = detail::CurrentMessage(FUnexpectedEOF);
  if (FErrorHandler) FErrorHandler->FatalError(this, message);
}

void TZmSAXReader::ParseStream(TStream* Stream, std::uint16_t CodePage, StringView PublicID) {
  Run(Stream, false, CodePage, PublicID);
}

void TZmSAXReader::ParseFile(StringView FileName, std::uint16_t Mode, StringView PublicID) {
  CheckIdle();
  FPublicID = PublicID;
  const auto stream = Create<TFileStream>(FileName, Mode);
  Run(stream.get(), true, 0, PublicID);
}

void TZmSAXReader::ParseBuffer(const void* Buffer, unsigned Size, std::uint16_t CodePage, StringView PublicID) {
  const auto stream = Create<TZmMemoryStream>(Buffer, Size);
  Run(stream.get(), false, CodePage, PublicID);
}

void TZmSAXReader::Parse(StringView Text, StringView PublicID) {
  const auto stream = Create<TZmStringStream>(cZmBorrow, Text);
  Run(stream.get(), false, cZmPageUTF16, PublicID);
}

void TZmSAXReader::Parse(std::string_view Text, std::uint16_t CodePage, StringView PublicID) {
  const auto stream = Create<TZmStringStream>(cZmBorrow, Text, CodePage);
  Run(stream.get(), false, CodePage, PublicID);
}

}  // namespace zm
