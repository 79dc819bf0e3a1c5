#include "zamrit/xml/dom/TreeReaderDetail.h"

#include "zamrit/platform/ScopeDetail.h"
#include "zamrit/platform/UTF8CopyDetail.h"
#include "zamrit/xml/sax/XMLScannerDetail.h"

namespace zm::detail {

namespace {

/// The sink that puts what the scanner cuts into the tree as it stands.
template <TStorage S>
class TTreeSink {
 public:
  using Slice = TSlice<typename TWidener<S>::Unit>;

  TTreeSink(TTreeBuilder& Builder, const TTextWindow& Window, TTextScratch& Scratch)
      : FBuilder(Builder), FWindow(Window), FWiden(Window), FScratch(Scratch) {}

  void StartDocument() {}
  void EndDocument() {}
  void StartDTD() {}
  void EndDTD() {}
  void StartCDATA() { FInCDATA = true; }
  void EndCDATA() { FInCDATA = false; }

  void ProcessingInstruction(Slice Target, Slice Data) {
    FScratch.Reset();
    PutText(FBuilder.AddInstruction(FWiden(Target, FScratch)), Data);
  }
  bool WantsComments() const { return true; }
  void Comment(Slice Text, bool FromLowHalf) {
    TZmDOMNode* const comment = FBuilder.AddText(ntComment);
    if (!FromLowHalf) return PutText(comment, Text);
    FScratch.Reset();
    FBuilder.SetText(comment, FWiden(Text, FScratch).substr(1));
  }
  ZM_INLINE void Characters(Slice Text) { PutText(FBuilder.AddText(FInCDATA ? ntCDATA : ntText), Text); }
  ZM_INLINE void IgnorableWhitespace(Slice Text) {
    if (FBuilder.Current() && FBuilder.WantsBlanks()) Characters(Text);
  }

  ZM_INLINE void BeginAttributes() { FBuilder.NewElement(); }
  ZM_INLINE void Attribute(TXMLName& Name, bool, StringView, Slice Value) {
    PutText(FBuilder.AddAttribute(NameOf(Name), Name.QName), Value);
  }
  ZM_INLINE void StartElement(StringView URI, TXMLName& Name, bool) {
    FBuilder.StartElement(NameOf(Name), Name.QName, URI);
  }
  ZM_INLINE void EndElement(StringView, const TXMLName&) { FBuilder.EndElement(); }

 private:
  ZM_INLINE TDOMName* NameOf(TXMLName& Name) {
    if (!Name.Record) [[unlikely]]
      Name.Record = FBuilder.NameOf(Name.QName);
    return static_cast<TDOMName*>(Name.Record);
  }

  ZM_INLINE void PutText(TZmDOMNode* Node, Slice Text) {
    if constexpr (S == TStorage::UTF8) {
      TArena* const texts = FBuilder.Texts();
      if (texts) [[likely]] {
        const auto size = static_cast<std::size_t>(Text.End - Text.Begin);
        char* const to = texts->Room(size);
        std::size_t done = CopyASCII(Text.Begin, Text.End, FWindow.Readable, to);
        if (done < size) [[unlikely]] {
          if (!IsWellFormedUTF8(Text.Begin + done, Text.End)) return PutWide(Node, Text);
          std::memcpy(to + done, Text.Begin + done, size - done);
        }
        texts->Keep(to + size);
        return FBuilder.SetText(Node, {to, size}, false, true);
      }
      if (IsWellFormedUTF8(Text.Begin, Text.End))
        return FBuilder.SetText(Node, {Text.Begin, static_cast<std::size_t>(Text.End - Text.Begin)}, false, false);
    }
    PutWide(Node, Text);
  }
  ZM_NOINLINE void PutWide(TZmDOMNode* Node, Slice Text) {
    FScratch.Reset();
    FBuilder.SetText(Node, FWiden(Text, FScratch));
  }

  TTreeBuilder& FBuilder;
  const TTextWindow& FWindow;
  const TWidener<S> FWiden;
  TTextScratch& FScratch;
  bool FInCDATA = false;
};

}  // namespace

void TTreeReader::InternalParse() {
  const TFinally forget([this] { FParser = nullptr; });
  Guarded([this] {
    FParser = static_cast<TZmXMLParser*>(TZmSAXReader::FParser);
    FPage = FParser->Window().Page();
    switch (FParser->Window().Storage()) {
      case TStorage::Wide:
        return Build<TStorage::Wide>(*FParser);
      case TStorage::UTF8:
        return Build<TStorage::UTF8>(*FParser);
      case TStorage::Bytes:
        return Build<TStorage::Bytes>(*FParser);
    }
  });
}

template <TStorage S>
void TTreeReader::Build(TZmXMLParser& Parser) {
  const TTextWindow& window = Parser.Window();
  if (window.Stays()) FBuilder.Expect(static_cast<std::size_t>(window.End - window.Begin));
  TTreeSink<S> sink(FBuilder, Parser.Window(), FScratch->Texts);
  TXMLScanner<S, TTreeSink<S>> scanner(Parser, *FNamespaceList, FScratch->ElementNames, FScratch->AttributeNames, sink,
                                       FCheckSingleRootElm);
  scanner.ParseDocument();
}

}  // namespace zm::detail
