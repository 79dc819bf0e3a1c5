#include "zamrit/xml/json/JSONReader.h"

#include "zamrit/common/CurrentMessageDetail.h"
#include "zamrit/common/Encoding.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/platform/ScopeDetail.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/JSONScannerDetail.h"

namespace zm {
namespace detail {

/// The buffers of a reader that serve parse after parse.
struct TJSONScratch {
  TTextScratch Texts;
};

namespace {

/// The sink that pushes events into the handler.
template <TStorage S>
class THandlerSink {
 public:
  using Slice = TSlice<typename TWidener<S>::Unit>;
  static constexpr bool cToldBehind = false;

  THandlerSink(const TZmIntf<IZmJSONContentHandler>& Content, TTextScratch& Texts, const TTextWindow& Window)
      : FContent(Content), FTexts(Texts), FWiden(Window) {}

  void StartDocument() { Content().StartDocument(); }
  void StartObject() { Content().StartObject(); }
  ZM_INLINE void StartMember(Slice Name) { Content().StartMember(Text(Name)); }
  void StartArray() { Content().StartArray(); }
  ZM_INLINE void Value(TZmJSONDataType Type, Slice Raw, bool) { Content().Value(Type, Text(Raw)); }
  void EndArray() { Content().EndArray(); }
  void EndMember() { Content().EndMember(); }
  void EndObject() { Content().EndObject(); }
  void EndDocument() { Content().EndDocument(); }

 private:
  // A handler may take another's place from inside an event.
  ZM_INLINE IZmJSONContentHandler& Content() const {
    if (!FContent) [[unlikely]]
      RaiseNoHandler();
    return *FContent;
  }
  [[noreturn]] ZM_NOINLINE static void RaiseNoHandler() {
    throw EZmJSONException(_cZmJSONNoContentHandler, jecNoContentHandler);
  }

  ZM_INLINE StringView Text(Slice Raw) {
    FTexts.Reset();
    return FWiden(Raw, FTexts);
  }

  const TZmIntf<IZmJSONContentHandler>& FContent;
  TTextScratch& FTexts;
  const TWidener<S> FWiden;
};

}  // namespace
}  // namespace detail

TZmJSONReader::TZmJSONReader()
    : FPublicID(IntToStr(static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(this)))),
      FScratch(std::make_unique<detail::TJSONScratch>()) {
  SetAutoDestroy(false);
}

TZmJSONReader::~TZmJSONReader() = default;

int TZmJSONReader::GetLineNr() {
  if (FUnexpectedEOF) return FLineNr;
  return FParser ? FParser->GetLineNr() : -1;
}

int TZmJSONReader::GetColNr() {
  if (FUnexpectedEOF) return FColNr;
  return FParser ? FParser->GetColNr() : -1;
}

void TZmJSONReader::SetHandler(TZmJSONDefaultHandler* Handler) {
  SetContentHandler(Handler);
  SetErrorHandler(Handler);
}

void TZmJSONReader::CheckHandlers() const {
  if (!FContentHandler) throw EZmJSONException(_cZmJSONNoContentHandler, jecNoContentHandler);
  if (!FErrorHandler) throw EZmJSONException(_cZmJSONNoErrorHandler, jecNoErrorHandler);
}

void TZmJSONReader::InternalParse() {
  CheckHandlers();
  Assert(FParser != nullptr, u"Assertion failure (xml/uZmJSON)");
  Guarded([this] {
    const detail::TFinally trim([this] { FScratch->Texts.Trim(); });
    detail::WithStorage(FParser->Window(), [this](auto Storage) {
      using TSink = detail::THandlerSink<Storage()>;
      TSink sink(FContentHandler, FScratch->Texts, FParser->Window());
      detail::TJSONScanner<Storage(), TSink>(*FParser, sink, FAllowSurroundingSpace).ParseDocument();
    });
  });
}

void TZmJSONReader::CheckIdle() const {
  if (FRunning) throw EZmJSONException(_cZmJSONAlreadyParsing, jecAlreadyParsing);
}

void TZmJSONReader::Run(TStream* Stream, std::uint16_t CodePage, StringView PublicID) {
  CheckIdle();
  const TZmIntf<IZmObject> self(this);
  FPublicID = ZmJSONString(PublicID);
  FRunning = true;
  TZmOwner<TZmJSONTextParser> parser;
  const detail::TFinally end([this, &parser] {
    FParser = nullptr;
    parser.reset();
    FRunning = false;
    FReplaced.clear();
  });
  parser = Create<TZmJSONTextParser>(Stream, false, CodePage);
  FParser = parser.get();
  InternalParse();
}

void TZmJSONReader::TellFatalError() {
  const String message = detail::CurrentMessage(FUnexpectedEOF);
  if (FErrorHandler) FErrorHandler->FatalError(this, message);
}

void TZmJSONReader::ParseStream(TStream* Stream, std::uint16_t CodePage, StringView PublicID) {
  Run(Stream, CodePage, PublicID);
}

void TZmJSONReader::ParseFile(StringView FileName, std::uint16_t Mode, StringView PublicID) {
  CheckIdle();
  FPublicID = ZmJSONString(PublicID);
  const auto stream = Create<TFileStream>(FileName, Mode);
  const std::uint16_t marked = ZmGetCodePage(stream.get());
  Run(stream.get(), marked, PublicID);
}

void TZmJSONReader::ParseBuffer(const void* Buffer, unsigned Size, std::uint16_t CodePage, StringView PublicID) {
  const auto stream = Create<TZmMemoryStream>(Buffer, Size);
  Run(stream.get(), CodePage, PublicID);
}

void TZmJSONReader::Parse(StringView Text, StringView PublicID) {
  const auto stream = Create<TZmStringStream>(cZmBorrow, Text);
  Run(stream.get(), cZmPageUTF16, PublicID);
}

void TZmJSONReader::Parse(std::string_view Text, std::uint16_t CodePage, StringView PublicID) {
  const auto stream = Create<TZmStringStream>(cZmBorrow, Text, CodePage);
  Run(stream.get(), CodePage, PublicID);
}

}  // namespace zm
