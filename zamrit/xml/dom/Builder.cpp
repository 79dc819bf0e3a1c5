#include <limits>

#include "zamrit/platform/ASCIIDetail.h"
#include "zamrit/platform/ScopeDetail.h"
#include "zamrit/xml/dom/BuilderDetail.h"
#include "zamrit/xml/dom/TreeReaderDetail.h"
#include "zamrit/xml/json/SAXJSONReader.h"
#include "zamrit/xml/sax/SkipBlanksDetail.h"

namespace zm::detail {

namespace {

/// A node that did not come into the tree goes.
class TMade {
 public:
  explicit TMade(TZmDOMNode* Node) : FNode(Node) {}
  ~TMade() {
    if (!FNode->GetParent()) [[unlikely]]
      TDOMTree::Dispose(FNode);
  }
  TMade(const TMade&) = delete;
  TMade& operator=(const TMade&) = delete;

 private:
  TZmDOMNode* const FNode;
};

}  // namespace

TTreeBuilder::TTreeBuilder(TZmDOMNode* Target)
    : FTarget(Target),
      FCurrent(Target),
      FDocument(Target->GetDOMDocument()),
      FNames(FDocument ? &TDOMTree::Home(FDocument) : nullptr),
      FTargetDerived(TDOMTree::IsOwnClass(*Target)) {
  if (Target == FDocument && FNames->IsEmpty()) FArena = FNames;
  if (!FArena) TDOMTree::Spoil(FDocument);
  if (FArena) FArena->Loading = true;
  if (FNames) ++FNames->Loads;
}

TTreeBuilder::~TTreeBuilder() {
  if (FArena) FArena->Loading = false;
  if (FPending && !FPending->GetParent()) TDOMTree::Dispose(FPending);
}

void TTreeBuilder::RaiseTooLong() { throw EZmDomStringSize(u"A value of 4 GB and more cannot be held!"); }

void TTreeBuilder::RaiseNoPlace(StringView Event) {
  throw EZmDomHierarchyRequest(u"There is no node that the event %s could add to!", {Event});
}

void TTreeBuilder::NoteAttribute(TZmDOMAttribute* Attribute, const TDOMName& Name) {
  FHasSpace |= Name.IsSpace;
  if (!Name.IsDeclaration) return;
  TDOMTree::Flags(Attribute) |= dfDeclaration;
  TDOMTree::Flags(FPending) |= dfDeclares;
}

void TTreeBuilder::StartElement(const TDOMName* Name, StringView QName, StringView URI) {
  CheckPlace(u"StartElement");
  TZmDOMElement* const element = FPending ? FPending : NewElement();
  SetName(element, Name, QName);
  if (TDOMTree::Has(element, dfDeclares)) [[unlikely]]
    for (TZmDOMAttribute& attribute : TDOMTree::AttributesOf(element))
      if (attribute.IsNamespace() && attribute.GetNodeValue() == URI) {
        TDOMTree::Namespace(element) = &attribute;
        TDOMTree::Flags(element) |= dfNamespaceSet | dfNamespaceOwn;
      }
  FPending = nullptr;
  Append(element);
  if (FCurrent != FTarget || !FTargetDerived) PlaceElement(element);
  if (FCurrent->GetNodeType() == ntDocument) NoteSchema(element);
  FCurrent = element;
}

// The target may be of an application's class; what has been there before may have lists that are to be told.
void TTreeBuilder::AppendWithCare(TZmDOMNode* Node) {
  const TMade made(Node);
  if (FCurrent == FTarget && FTargetDerived) return FTarget->AppendChild(Node);
  TDOMTree::Parent(Node) = FCurrent;
  TDOMTree::LinkLast(FCurrent, Node);
  if (TDOMTree::Has(FCurrent, dfExtra)) TDOMTree::ChildAdded(FCurrent, Node, nullptr, rdpLast);
}

void TTreeBuilder::PlaceElement(TZmDOMElement* Element) {
  if (FCurrent->GetNodeType() == ntDocument) [[unlikely]] {
    auto* const document = static_cast<TZmDOMDocument*>(FCurrent);
    if (!document->GetRootNode()) TDOMTree::SetRoot(document, Element);
    TDOMTree::Flags(Element) |= DefaultPreserveCase ? dfPreserveSpace : 0u;
  } else {
    TDOMTree::Flags(Element) |= TDOMTree::Flags(FCurrent) & dfPreserveSpace;
  }
  if (FDocument) LinkNamespace(Element);
  if (!FHasSpace) return;
  FHasSpace = false;
  for (TZmDOMAttribute& attribute : TDOMTree::AttributesOf(Element))
    if (TDOMTree::Name(&attribute).IsSpace)
      TDOMTree::SetFlag(Element, dfPreserveSpace, SameText(attribute.GetNodeValue(), u"preserve"));
}

void TTreeBuilder::LinkNamespace(TZmDOMElement* Element) {
  constexpr std::size_t many = 32;
  if (FDeclaring.size() >= many) [[unlikely]]
    FindAhead(TDOMTree::Name(Element));
  if (TDOMTree::Has(Element, dfDeclares)) [[unlikely]] {
    TDOMTree::RefreshElement(Element);
    const String uri = TDOMTree::HeldURI(Element);
    if (!uri.empty()) Element->SetNamespaceURI(uri);
    if (FByPrefix) OpenDeclarations(Element);
    FDeclaring.push_back(Element);
    return;
  }
  TDOMScope* const scope = TDOMTree::ScopeOf(FCurrent);
  TDOMTree::Scope(Element) = scope;
  auto& name = const_cast<TDOMName&>(TDOMTree::Name(Element));
  if (FCurrent->GetNodeType() == ntElement && TDOMTree::Name(FCurrent).Prefix == name.Prefix) {
    TDOMTree::Namespace(Element) = TDOMTree::Namespace(static_cast<TZmDOMElement*>(FCurrent));
    return;
  }
  if (name.Scope != scope || name.Load != FNames->Loads) {
    name.Load = FNames->Loads;
    name.Scope = scope;
    name.Namespace = TDOMTree::FindPrefix(scope, name.Prefix);
  }
  TDOMTree::Namespace(Element) = name.Namespace;
}

namespace {

/// Gives the prefix that each declaration of an element declares.
template <class F>
void EachDeclared(const TZmDOMElement* Element, F Use) {
  for (TZmDOMAttribute& attribute : TDOMTree::AttributesOf(const_cast<TZmDOMElement*>(Element)))
    if (TDOMTree::Has(&attribute, dfDeclaration)) Use(attribute, TDOMTree::DeclaredPrefix(&attribute));
}

}  // namespace

/// Leaves what a search for the prefix from the current element on would find where it will look first.
void TTreeBuilder::FindAhead(const TDOMName& Name) {
  TDOMScope* const scope = TDOMTree::ScopeOf(FCurrent);
  if (!FByPrefix) {
    FByPrefix.emplace();
    for (const TZmDOMElement* const element : FDeclaring) OpenDeclarations(element);
  }
  if (!scope || !Name.IsASCII || FNotPlain > 0 || !FDocument->GetCollation()->IsBuiltIn()) return;
  const auto found = FByPrefix->find(FDocument->GetCaseSensitive() ? String(Name.Prefix) : LowerCase(Name.Prefix));
  const bool isBelow = found != FByPrefix->end() && !found->second.empty();
  if (TZmDOMAttribute* const declaration =
          isBelow ? found->second.back() : TDOMTree::FindPrefix(TDOMTree::ScopeOf(FTarget), Name.Prefix))
    scope->Found = declaration;
  else
    scope->Missed = Name.Prefix;
}

void TTreeBuilder::OpenDeclarations(const TZmDOMElement* Element) {
  const bool sensitive = FDocument->GetCaseSensitive();
  EachDeclared(Element, [&](TZmDOMAttribute& declaration, StringView prefix) {
    FNotPlain += !IsASCII(prefix);
    (*FByPrefix)[sensitive ? String(prefix) : LowerCase(prefix)].push_back(&declaration);
  });
}

void TTreeBuilder::CloseDeclarations() {
  const TZmDOMElement* const element = FDeclaring.back();
  FDeclaring.pop_back();
  if (!FByPrefix) return;
  const bool sensitive = FDocument->GetCaseSensitive();
  EachDeclared(element, [&](TZmDOMAttribute&, StringView prefix) {
    FNotPlain -= !IsASCII(prefix);
    std::vector<TZmDOMAttribute*>& declarations = (*FByPrefix)[sensitive ? String(prefix) : LowerCase(prefix)];
    if (!declarations.empty()) declarations.pop_back();
  });
}

void TTreeBuilder::NoteSchema(TZmDOMElement* Element) {
  for (TZmDOMAttribute& attribute : TDOMTree::AttributesOf(Element))
    if (SameText(TDOMTree::Text(&attribute), cZmSchemaInstanceURI) && FDocument)
      TDOMTree::NoteSchemaInstance(FDocument);
}

void TTreeBuilder::EndElement() {
  if (!FCurrent) RaiseNoPlace(u"EndElement");
  if (!FDeclaring.empty() && FDeclaring.back() == FCurrent) [[unlikely]]
    CloseDeclarations();
  FCurrent = FCurrent->ParentNode();
}

TZmDOMNode* TTreeBuilder::AddOtherText(TZmDOMNodeType Type) {
  if (Type == ntComment) {
    CheckPlace(u"Comment");
    return Append(Make<TZmDOMComment>());
  }
  CheckPlace(u"Characters");
  if (FCurrent->GetNodeType() != ntElement) RaiseNoPlace(u"Characters");
  return Append(Make<TZmDOMCDATA>());
}

TZmDOMNode* TTreeBuilder::AddInstruction(StringView Target) {
  CheckPlace(u"ProcessingInstruction");
  const TDOMName* const name = NameOf(Target);
  auto* const node = Make<TZmDOMProcessingInstruction>();
  try {
    SetName(node, name, Target);
  } catch (...) {
    TDOMTree::Dispose(node);
    throw;
  }
  Append(node);
  return node;
}

void TTreeBuilder::SetText(TZmDOMNode* Node, StringView Text) {
  if (!FArena) return TDOMTree::SetText(Node, Text);
  std::string narrow;
  const bool lone = TDOMTree::Narrow(Text, narrow);
  SetText(Node, FArena->Texts().Copy(narrow), lone, true);
}

TZmDOMParser::TZmDOMParser(TZmDOMNode* Target) : TComponent(nullptr), FBuilder(Target), FTarget(Target) {}

std::uint16_t TZmDOMParser::Parse(TStream* Stream, std::uint16_t CodePage) {
  if (SkipBlanks(*Stream, CodePage) == u'<') return ParseXML(Stream, CodePage, FTarget->GetNodeType() == ntDocument);
  const TZmOwner<TZmSAXJSONReader> reader = Create<TZmSAXJSONReader>();
  ParseWith(*reader, Stream, CodePage);
  return CodePage;
}

void TZmDOMParser::ParseBetweenTags(TStream* Stream, std::uint16_t CodePage, int TagSize) {
  FTagSize = TagSize;
  ParseXML(Stream, CodePage, true);
}

std::uint16_t TZmDOMParser::ParseXML(TStream* Stream, std::uint16_t CodePage, bool SingleRoot) {
  const TZmOwner<TTreeReader> reader = Create<TTreeReader>(FBuilder);
  reader->SetCheckSingleRootElement(SingleRoot);
  ParseWith(*reader, Stream, CodePage);
  return reader->CodePage();
}

void TZmDOMParser::ParseWith(TZmSAXReader& Reader, TStream* Stream, std::uint16_t CodePage) {
  Reader.SetErrorHandler(this);
  Reader.SetLexicalHandler(this);
  Reader.SetContentHandler(this);
  Reader.ParseStream(Stream, CodePage, {});
}

void TZmDOMParser::StartElement(StringView URI, StringView, StringView QName, IZmSAXAttributes& Attributes) {
  FBuilder.NewElement();
  for (PZmSAXXMAttribute a = Attributes.FirstAttribute(); a; a = a->Next)
    FBuilder.SetText(FBuilder.AddAttribute(FBuilder.NameOf(a->QName), a->QName), a->Value);
  FBuilder.StartElement(FBuilder.NameOf(QName), QName, URI);
}

void TZmDOMParser::EndElement(StringView, StringView, StringView) { FBuilder.EndElement(); }
void TZmDOMParser::Characters(StringView Text) {
  FBuilder.SetText(FBuilder.AddText(FInCDATA ? ntCDATA : ntText), Text);
}
void TZmDOMParser::IgnorableWhitespace(StringView Text) {
  if (FBuilder.Current() && FBuilder.WantsBlanks()) Characters(Text);
}
void TZmDOMParser::ProcessingInstruction(StringView Target, StringView Data) {
  FBuilder.SetText(FBuilder.AddInstruction(Target), Data);
}
void TZmDOMParser::Comment(StringView Text) { FBuilder.SetText(FBuilder.AddText(ntComment), Text); }

void TZmDOMParser::Warning(IZmSAXLocator* Locator, StringView Message) {
  bool handled = false;
  if (OnWarning) OnWarning(Locator, Message, handled);
}
void TZmDOMParser::Error(IZmSAXLocator* Locator, StringView Message) {
  bool handled = false;
  if (OnError) OnError(Locator, Message, handled);
}
void TZmDOMParser::FatalError(IZmSAXLocator* Locator, StringView Message) {
  bool handled = false;
  if (OnFatalError) OnFatalError(Locator, Message, handled);
  if (handled) return;
  const int line = Locator->GetLineNr();
  throw EZmDomSyntax(u"Line %d, column %d: %s", {line, Locator->GetColNr() - (line == 1 ? FTagSize : 0), Message});
}

}  // namespace zm::detail
