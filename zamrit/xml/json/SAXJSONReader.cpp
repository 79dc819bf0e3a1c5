#include "zamrit/xml/json/SAXJSONReader.h"

#include <vector>

#include "zamrit/platform/ScopeDetail.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/JSONScannerDetail.h"
#include "zamrit/xml/sax/NameCacheDetail.h"
#include "zamrit/xml/sax/NameCharsDetail.h"

namespace zm {
namespace detail {

/// The buffers of a reader that serve parse after parse.
struct TSAXJSONScratch {
  TNameCache Names;  // a record's text is the element name
  TTextScratch Texts;
};

namespace {

constexpr StringView cInstanceURI = u"http://www.w3.org/2001/XMLSchema-instance";
constexpr StringView cSchemaURI = u"http://www.w3.org/2001/XMLSchema";
// What stands in place of the URI at a member's value.
constexpr StringView cInstanceDeclaration = u"xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"";
constexpr StringView cSchemaDeclaration = u"xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\"";
constexpr StringView cArraySuffix = u"Array", cArrayStartSuffix = u"Arr";

String RepairName(StringView Name) {
  String repaired;
  if (Name.empty() || !IsNameStartChar(IsNameChar(Name[0]) ? Name[0] : u'_')) repaired = u'_';
  for (const char16_t c : Name) repaired += IsNameChar(c) ? c : u'_';
  return repaired;
}

/// The names of the open members, each with the suffix of arrays behind it.
class TOpenNames {
 public:
  void Push(StringView Name) {
    FStarts.push_back(FTexts.size());
    FTexts.append(Name).append(cArraySuffix);
  }
  void Pop() {
    FTexts.resize(FStarts.back());
    FStarts.pop_back();
  }
  /// The last name and a part of the suffix. Valid until the next Push or Pop.
  StringView Name(StringView Suffix = {}) const {
    return StringView(FTexts).substr(FStarts.back(),
                                     FTexts.size() - FStarts.back() - cArraySuffix.size() + Suffix.size());
  }

 private:
  String FTexts;
  std::vector<std::size_t> FStarts;
};

/// The sink that tells JSON as elements.
template <TStorage S>
class TElementSink {
 public:
  using Slice = TSlice<typename TWidener<S>::Unit>;
  static constexpr bool cToldBehind = true;

  TElementSink(const TZmIntf<IZmSAXContentHandler>& Content, TZmSAXXMAttributes& NoAttributes,
               TZmSAXXMAttributes& Attributes, TSAXJSONScratch& Scratch, const TTextWindow& Window, StringView Root)
      : FContent(Content),
        FNoAttributes(NoAttributes),
        FAttributes(Attributes),
        FScratch(Scratch),
        FWindow(Window),
        FWiden(Window) {
    FOpen.Push(Root);
  }

  void StartObject() {
    if (HasElement()) Content().StartElement({}, FOpen.Name(), FOpen.Name(), FNoAttributes);
    Begin();
  }
  void EndObject() {
    if (End()) EndElement();
    FArrayEnds = false;
  }
  void StartArray() {
    if (HasElement())
      Content().StartElement({}, FOpen.Name(FInMember ? cArrayStartSuffix : cArraySuffix), FOpen.Name(cArraySuffix),
                             FNoAttributes);
    Begin();
  }
  void EndArray() {
    if (End()) EndElement(cArraySuffix);
    FArrayEnds = true;
  }

  void StartMember(Slice Name) {
    const auto* bytes = reinterpret_cast<const char*>(Name.Begin);
    const auto key = TNameCache::KeyOf(bytes, static_cast<std::size_t>(reinterpret_cast<const char*>(Name.End) - bytes),
                                       FWindow.Readable);
    TXMLName* name = FScratch.Names.Find(key);
    if (name) {
      FOpen.Push(name->Text);
    } else {
      String repaired = RepairName(Text(Name));
      FOpen.Push(repaired);
      if ((name = FScratch.Names.Add(key))) name->Text = std::move(repaired);
    }
    FInMember = true;
  }
  void EndMember() {
    EndElement(FArrayEnds ? cArraySuffix : StringView());
    FOpen.Pop();
  }

  void Value(TZmJSONDataType Type, Slice Raw, bool) {
    FAttributes.Clear();
    if (Type == jdtNull)
      FAttributes.AddBorrowed(u"nil", u"xsi:nil", FInMember ? cInstanceDeclaration : cInstanceURI, u"true", CDATA);
    else
      FAttributes.AddBorrowed(u"type", u"xsd:type", FInMember ? cSchemaDeclaration : cSchemaURI, TypeName(Type), CDATA);
    Content().StartElement({}, FOpen.Name(), FOpen.Name(), FAttributes);
    Content().Characters(Text(Raw));
    if (!FInMember) EndElement();
    FInMember = FArrayEnds = false;
  }

  // A handler may take another's place from inside an event.
  IZmSAXContentHandler& Content() const {
    if (!FContent) throw EZmJSONException(_cZmJSONNoContentHandler, jecNoContentHandler);
    return *FContent;
  }

 private:
  static StringView TypeName(TZmJSONDataType Type) {
    return Type == jdtString ? u"string" : Type == jdtNumber ? u"decimal" : u"boolean";
  }

  // A top-level value is the root itself.
  bool HasElement() const { return FInMember || !FNested.IsEmpty(); }
  void Begin() {
    FNested.Push(HasElement() && !FInMember);
    FInMember = false;
  }
  // True for an element of an array, whose end no EndMember tells.
  bool End() {
    const bool element = FNested.Top();
    FNested.Pop();
    return element;
  }
  void EndElement(StringView Suffix = {}) { Content().EndElement({}, FOpen.Name(Suffix), FOpen.Name(Suffix)); }

  StringView Text(Slice Raw) {
    FScratch.Texts.Reset();
    return FWiden(Raw, FScratch.Texts);
  }

  const TZmIntf<IZmSAXContentHandler>& FContent;
  TZmSAXXMAttributes& FNoAttributes;
  TZmSAXXMAttributes& FAttributes;
  TSAXJSONScratch& FScratch;
  const TTextWindow& FWindow;
  const TWidener<S> FWiden;
  TOpenNames FOpen;
  TBitStack FNested;        // the open objects and arrays: 1 for an element of an array
  bool FInMember = false;   // a member has begun, and its value not yet
  bool FArrayEnds = false;  // the value that ended last is an array
};

}  // namespace
}  // namespace detail

TZmSAXJSONReader::TZmSAXJSONReader() : FScratch(std::make_unique<detail::TSAXJSONScratch>()) {}

TZmSAXJSONReader::~TZmSAXJSONReader() = default;

TZmOwner<TZmTextParser> TZmSAXJSONReader::CreateParser(TStream* Stream, bool OwnsStream, bool, std::uint16_t CodePage) {
  return Create<TZmJSONTextParserEx>(Stream, OwnsStream, CodePage);
}

void TZmSAXJSONReader::RaiseAlreadyParsing() const {
  throw EZmJSONException(_cZmJSONAlreadyParsing, jecAlreadyParsing);
}

void TZmSAXJSONReader::InternalParse() {
  const detail::TFinally forget([this] {
    FParser = nullptr;
    FScratch->Texts.Trim();
  });
  if (!FContentHandler) throw EZmJSONException(_cZmJSONNoContentHandler, jecNoContentHandler);
  if (!FErrorHandler) throw EZmJSONException(_cZmJSONNoErrorHandler, jecNoErrorHandler);
  FParser = dynamic_cast<TZmJSONTextParserEx*>(TZmSAXReader::FParser);
  Assert(FParser != nullptr, u"Assertion failure (xml/uZmSAX)");
  Guarded([this] {
    const auto attributes = Create<TZmSAXXMAttributes>();
    ParseDocument(*attributes);
  });
}

void TZmSAXJSONReader::ParseDocument(TZmSAXXMAttributes& Attributes) {
  TZmJSONTextParserEx& parser = *FParser;
  parser.SkipWhileSet(tsoNotInSet, TZmCharSet("{["));
  if (parser._GetEOF()) parser.RaiseNotWellFormed({});
  const StringView root = parser.CurrChar() == u'[' ? u"array" : u"object";
  Attributes.AddBorrowed(u"xsi", u"xmlns:xsi", {}, detail::cInstanceURI, CDATA);
  Attributes.AddBorrowed(u"xsd", u"xmlns:xsd", {}, detail::cSchemaURI, CDATA);
  FScratch->Names.Clear();  // the same bytes may mean another name in another encoding
  detail::WithStorage(parser.Window(), [&](auto Storage) {
    using TSink = detail::TElementSink<Storage()>;
    TSink sink(FContentHandler, *FEmptyAttributes, Attributes, *FScratch, parser.Window(), root);
    detail::TJSONScanner<Storage(), TSink> scanner(parser, sink, false);
    sink.Content().StartDocument();
    sink.Content().StartElement({}, root, root, Attributes);
    while (!parser._GetEOF()) {
      const char16_t c = parser.CurrChar();
      if (c == u'{' || c == u'[')
        scanner.ParseContainer();
      else if (c <= u' ')
        parser.SkipWhile(tsoSmallerEqual, parser.FSpace);
      else
        parser.RaiseNotWellFormed({});
    }
    sink.Content().EndElement({}, root, root);
    sink.Content().EndDocument();
  });
}

}  // namespace zm
