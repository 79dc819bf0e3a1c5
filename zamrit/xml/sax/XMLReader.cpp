#include "zamrit/xml/sax/XMLReader.h"

#include "zamrit/platform/ScopeDetail.h"
#include "zamrit/xml/sax/XMLErrors.h"
#include "zamrit/xml/sax/XMLScannerDetail.h"

namespace zm {
namespace detail {

namespace {

/// The sink that pushes events into the handlers.
template <TStorage S>
class THandlerSink {
 public:
  using Slice = TSlice<typename TWidener<S>::Unit>;

  THandlerSink(const TZmIntf<IZmSAXContentHandler>& Content, const TZmIntf<IZmSAXLexicalHandler>& Lexical,
               TZmSAXXMAttributes& NoAttributes, TXMLScratch& Scratch, const TTextWindow& Window)
      : FContent(Content), FLexical(Lexical), FNoAttributes(NoAttributes), FScratch(Scratch), FWiden(Window) {}

  void StartDocument() { Content().StartDocument(); }
  void EndDocument() { Content().EndDocument(); }

  void ProcessingInstruction(Slice Target, Slice Data) {
    const StringView target = FirstText(Target);
    Content().ProcessingInstruction(target, NextText(Data));
  }

  bool WantsComments() const { return static_cast<bool>(FLexical); }
  void Comment(Slice Text, bool FromLowHalf) {
    StringView text = FirstText(Text);
    if (FromLowHalf) text.remove_prefix(1);
    Lexical().Comment(text);
  }
  void StartDTD() { Lexical().StartDTD(); }
  void EndDTD() { Lexical().EndDTD(); }
  void StartCDATA() { Lexical().StartCDATA(); }
  void EndCDATA() { Lexical().EndCDATA(); }

  void Characters(Slice Text) { Content().Characters(FirstText(Text)); }
  void IgnorableWhitespace(Slice Text) { Content().IgnorableWhitespace(FirstText(Text)); }

  void BeginAttributes() {
    FScratch.Texts.Reset();
    FScratch.Attributes.Clear();
  }
  void Attribute(const TXMLName& Name, bool Lasting, StringView URI, Slice Value) {
    const StringView local = Lasting ? Name.LocalName : FScratch.Texts.Copy(Name.LocalName);
    const StringView qname = Lasting ? Name.QName : FScratch.Texts.Copy(Name.QName);
    FScratch.Attributes.AddBorrowed(local, qname, URI, FWiden.Keep(Value, FScratch.Texts), CDATA);
  }
  void StartElement(StringView URI, const TXMLName& Name, bool HasAttributes) {
    Content().StartElement(URI, Name.LocalName, Name.QName, HasAttributes ? FScratch.Attributes : FNoAttributes);
  }
  void EndElement(StringView URI, const TXMLName& Name) { Content().EndElement(URI, Name.LocalName, Name.QName); }

 private:
  // A handler may take another's place from inside an event.
  ZM_INLINE IZmSAXContentHandler& Content() const {
    if (!FContent) [[unlikely]]
      RaiseNoHandler(_cZmXMLNoContentHandler, xecNoContentHandler);
    return *FContent;
  }
  IZmSAXLexicalHandler& Lexical() const {
    if (!FLexical) RaiseNoHandler(_cZmXMLNoLexicalHandler, xecNoLexicalHandler);
    return *FLexical;
  }
  [[noreturn]] ZM_NOINLINE static void RaiseNoHandler(StringView Message, int Code) {
    throw EZmXMLParseError(Message, Code);
  }

  StringView FirstText(Slice Text) {
    FScratch.Texts.Reset();
    return NextText(Text);
  }
  StringView NextText(Slice Text) { return FWiden(Text, FScratch.Texts); }

  const TZmIntf<IZmSAXContentHandler>& FContent;
  const TZmIntf<IZmSAXLexicalHandler>& FLexical;
  TZmSAXXMAttributes& FNoAttributes;
  TXMLScratch& FScratch;
  const TWidener<S> FWiden;
};

}  // namespace
}  // namespace detail

using detail::TStorage;

TZmSAXXMLReader::TZmSAXXMLReader()
    : FNamespaceList(Create<TZmSAXNamespaceList>(this)), FScratch(std::make_unique<detail::TXMLScratch>()) {}

TZmSAXXMLReader::~TZmSAXXMLReader() = default;

TZmOwner<TZmTextParser> TZmSAXXMLReader::CreateParser(TStream* Stream, bool OwnsStream, bool DetectCodePage,
                                                      std::uint16_t CodePage) {
  return Create<TZmXMLParser>(Stream, OwnsStream, DetectCodePage, CodePage);
}

void TZmSAXXMLReader::InternalParse() {
  const detail::TFinally forget([this] { FParser = nullptr; });
  Guarded([this] {
    if (!FContentHandler) throw EZmXMLParseError(_cZmXMLNoContentHandler, xecNoContentHandler);
    if (!FErrorHandler) throw EZmXMLParseError(_cZmXMLNoErrorHandler, xecNoErrorHandler);
    FParser = dynamic_cast<TZmXMLParser*>(TZmSAXReader::FParser);
    Assert(FParser != nullptr, u"Assertion failure (xml/uZmSAX)");
    switch (FParser->Window().Storage()) {
      case TStorage::Wide:
        return ParseDocument<TStorage::Wide>(*FParser);
      case TStorage::UTF8:
        return ParseDocument<TStorage::UTF8>(*FParser);
      case TStorage::Bytes:
        return ParseDocument<TStorage::Bytes>(*FParser);
    }
  });
}

template <TStorage S>
void TZmSAXXMLReader::ParseDocument(TZmXMLParser& Parser) {
  FScratch->ElementNames.Clear();  // the same bytes may mean another name in another encoding
  FScratch->AttributeNames.Clear();
  detail::THandlerSink<S> sink(FContentHandler, FLexicalHandler, *FEmptyAttributes, *FScratch, Parser.Window());
  detail::TXMLScanner<S, detail::THandlerSink<S>> scanner(Parser, *FNamespaceList, FScratch->ElementNames,
                                                          FScratch->AttributeNames, sink, FCheckSingleRootElm);
  const detail::TFinally trim([this] { FScratch->Texts.Trim(); });
  scanner.ParseDocument();
}

}  // namespace zm
