#include "XMLEvents.h"
#include "zamrit/zamrit.h"

namespace zm::bench {
namespace {

class TCountingHandler : public TZmSAXDefaultHandler {
 public:
  TXMLEventCounts Counts;

  void StartElement(StringView URI, StringView LocalName, StringView QName, IZmSAXAttributes& Attributes) override {
    ++Counts.Elements;
    TouchAll(URI, LocalName, QName);
    for (PZmSAXXMAttribute attribute = Attributes.FirstAttribute(); attribute; attribute = attribute->Next) {
      ++Counts.Attributes;
      TouchAll(attribute->URI, attribute->LocalName, attribute->QName, attribute->Value);
    }
  }
  void EndElement(StringView URI, StringView LocalName, StringView QName) override { TouchAll(URI, LocalName, QName); }
  void Characters(StringView Text) override { TouchAll(Text); }
  void IgnorableWhitespace(StringView Text) override { TouchAll(Text); }

 private:
  template <class... T>
  void TouchAll(T... Texts) {
    (Counts.Touch(Texts.data(), Texts.size()), ...);
  }
};

template <class F>
TXMLEventCounts Read(F Parse) {
  TCountingHandler handler;
  const auto reader = Create<TZmSAXXMLReader>();
  reader->SetHandler(&handler);
  Parse(*reader);
  return handler.Counts;
}

}  // namespace

TXMLEventCounts ReadWithZamrit(const TXMLSource& Source) {
  return Read([&](TZmSAXXMLReader& Reader) { Reader.Parse(std::string_view(Source.UTF8), 65001); });
}

TXMLEventCounts ReadWithZamritFromFile(const TXMLSource& Source) {
  return Read([&](TZmSAXXMLReader& Reader) {
    const auto stream = Create<TFileStream>(Source.File.native(), fmOpenRead);
    Reader.ParseStream(stream.get(), 65001);
  });
}

TXMLEventCounts ReadWithZamritFromUTF16(const TXMLSource& Source) {
  return Read([&](TZmSAXXMLReader& Reader) { Reader.Parse(StringView(Source.UTF16)); });
}

}  // namespace zm::bench
