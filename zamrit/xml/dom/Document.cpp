#include "zamrit/xml/dom/Document.h"

#include <typeinfo>

#include "zamrit/common/Encoding.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/xml/dom/BuilderDetail.h"
#include "zamrit/xml/sax/SkipBlanksDetail.h"

namespace zm {

using detail::TDOMTree;

TZmDOMDocument::TZmDOMDocument()
    : TZmDOMNode(ntDocument),
      FScope(new detail::TDOMScope{this, nullptr, nullptr, false, {}, nullptr, {}, {}}),
      FHome(new detail::TDOMHome) {
  SetFlag(detail::dfMade);  // one on the stack stays its scope's
}

TZmDOMDocument::TZmDOMDocument(const TZmAnyText& RootName) : TZmDOMDocument() {
  TZmDOMDocument::CreateRootNode(RootName);
}
TZmDOMDocument::TZmDOMDocument(const TZmAnyText& RootName, const TZmAnyText& NamespaceURI) : TZmDOMDocument() {
  TZmDOMDocument::CreateRootNode(RootName, NamespaceURI);
}
TZmDOMDocument::TZmDOMDocument(const TZmAnyText& FileName, std::uint16_t Mode) : TZmDOMDocument() {
  LoadFromFile(FileName, Mode);
}
TZmDOMDocument::TZmDOMDocument(TStream* Stream) : TZmDOMDocument() { TZmDOMDocument::LoadFromStream(Stream); }

TZmDOMDocument::~TZmDOMDocument() {
  if (!IsDestroying()) TZmDOMDocument::BeforeDestruction();
}

// What nobody has touched since it was loaded goes with its memory, without a walk.
void TZmDOMDocument::BeforeDestruction() {
  SetFlag(detail::dfDestroying);
  if (FPlain && !TDOMTree::IsDerived(this) && !detail::TDOMWatch::IsOn()) {
    TDOMTree::ForgetChildren(this);
    std::exchange(FHome, nullptr)->DocumentGone(true);
  } else {
    TZmDOMNode::BeforeDestruction();
    std::exchange(FHome, nullptr)->DocumentGone(false);
  }
  FRootNode = nullptr;
}

void TZmDOMDocument::Clear() {
  const detail::TDOMKeep keep(this);
  const bool plain = FPlain && !FHome->Loading && !TDOMTree::IsDerived(this) && !detail::TDOMWatch::IsOn();
  if (plain)
    TDOMTree::ForgetChildren(this);
  else
    TZmDOMNode::Clear();
  FRootNode = nullptr;
  FScanned = nullptr;
  if (IsDestroying() || FHome->Loading || (FHome->IsEmpty() && FPlain)) return;
  auto* const home = new detail::TDOMHome;
  std::exchange(FHome, home)->DocumentGone(plain);
  FPlain = true;
}

void TZmDOMDocument::SetCaseSensitive(bool Value) {
  if (Value != GetCaseSensitive()) FCollation = Value ? TZmXPathCollationCodepoint : TZmXPathCollationASCIICI;
}

void TZmDOMDocument::LoadFromStream(TStream* Stream) {
  SetLoadState(lsLoading);
  std::uint16_t page = ZmGetCodePage(Stream);
  const char16_t first = detail::SkipBlanks(*Stream, page);
  if (page == 0) {
    page = 65001;
    if (first == u'<') {
      const std::int64_t start = Stream->GetPosition();
      std::string head;
      for (char c = 0; head.size() < 1025 && c != '>' && Stream->Read(&c, 1) == 1;) head += c;
      const String encoding = TDOMTree::EncodingIn(FromUTF8(head));
      if (!encoding.empty()) page = ZmCodePage(encoding);
      Stream->Seek(start, soBeginning);
    }
  }
  NoteLoaded(Load(Stream, page, 0));
  SetLoadState(lsLoaded);
  DoXMLLoaded();
}

void TZmDOMDocument::LoadFromStream(TStream* Stream, std::uint16_t CodePage) {
  NoteLoaded(Load(Stream, CodePage, 0));
  DoXMLLoaded();
}

void TZmDOMNode::LoadFromStream(TStream* Stream, std::uint16_t CodePage) { Load(Stream, CodePage, 0); }

std::uint16_t TZmDOMNode::Load(TStream* Stream, std::uint16_t CodePage, int TagSize) {
  detail::TZmDOMParser parser(this);
  parser.OnWarning = [this](IZmSAXLocator* locator, StringView message, bool& handled) {
    DoDOMParseWarning(locator, message, handled);
  };
  parser.OnError = [this](IZmSAXLocator* locator, StringView message, bool& handled) {
    DoDOMParseError(locator, message, handled);
  };
  parser.OnFatalError = [this](IZmSAXLocator* locator, StringView message, bool& handled) {
    DoDOMParseFatalError(locator, message, handled);
  };
  if (TagSize > 0)
    parser.ParseBetweenTags(Stream, CodePage, TagSize);
  else
    CodePage = parser.Parse(Stream, CodePage);
  return CodePage;
}

// Both tell what the text was read in; of a text that has no bytes (0) the declaration tells what they are to be.
void TZmDOMDocument::NoteLoaded(std::uint16_t CodePage) {
  ReCalcEncoding();
  std::uint16_t declared = cZmPageUTF8;
  try {
    declared = ZmCodePage(FEncoding);
  } catch (const EConvertError&) {  // it has been read all the same
  }
  FCodePage = CodePage == 0 ? declared : CodePage;
  if (FCodePage != declared) FEncoding = ZmCodePage(FCodePage);
}

void TZmDOMDocument::LoadFromFile(const TZmAnyText& FileName, std::uint16_t Mode) {
  const String name = FileName.Text();
  const auto stream = Create<TFileStream>(name, Mode);
  LoadFromStream(stream.get());
  FDocumentURI = name;
}

void TZmDOMDocument::LoadXML(const TZmAnyText& FileName, std::uint16_t Mode) {
  const auto stream = Create<TFileStream>(FileName.Text(), Mode);
  LoadFromStream(stream.get());
}

void TZmDOMDocument::LoadText(TStream* Stream, std::uint16_t CodePage) {
  SetLoadState(lsLoading);
  const std::uint16_t page = Load(Stream, CodePage, 0);
  NoteLoaded(CodePage == cZmPageUTF16 ? std::uint16_t{0} : page);
  SetLoadState(lsLoaded);
  DoXMLLoaded();
}

void TZmDOMDocument::LoadFromXML(StringView XML) {
  const detail::TDOMKeep keep(this);
  Clear();
  if (XML.empty()) return;
  const auto stream = Create<TZmStringStream>(cZmBorrow, XML);
  LoadText(stream.get(), cZmPageUTF16);
}

void TZmDOMDocument::LoadFromXML(std::string_view XML) {
  const detail::TDOMKeep keep(this);
  Clear();
  if (XML.empty()) return;
  const auto stream = Create<TZmStringStream>(cZmBorrow, XML, std::uint16_t{0});
  LoadText(stream.get(), 0);
}

TZmDOMElement* TZmDOMDocument::CreateRootNode(const TZmAnyText& QName) {
  if (FRootNode) throw EZmDomException(u"This DOM document already contains a rootnode!");
  return TZmDOMNode::AppendChild(Create<TZmDOMElement>(QName));
}

TZmDOMElement* TZmDOMDocument::CreateRootNode(const TZmAnyText& QName, const TZmAnyText& NamespaceURI) {
  if (FRootNode) throw EZmDomException(u"This DOM document already contains a rootnode!");
  TZmOwner<TZmDOMElement> root = Create<TZmDOMElement>(QName);
  root->SetNamespaceURI(NamespaceURI);
  return TZmDOMNode::AppendChild(std::move(root));
}

String TZmDOMDocument::GetText() const { return FRootNode ? FRootNode->GetText() : String(); }

void TZmDOMDocument::AppendChild(TZmDOMNode* Node) {
  TZmDOMNode::AppendChild(Node);
  if (!FRootNode && Node->GetNodeType() == ntElement) FRootNode = static_cast<TZmDOMElement*>(Node);
}

void TZmDOMDocument::RemoveChild(TZmDOMNode* Node) {
  if (Node && Node == FRootNode) FRootNode = nullptr;
  TZmDOMNode::RemoveChild(Node);
}

TZmOwner<TZmDOMNode> TZmDOMDocument::CreateClone() const {
  throw EZmDomNotSupported(u"It is not possible to clone a TZmDOMDocument using the CloneNode method!");
}

}  // namespace zm
