#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "zamrit/platform/Components.h"
#include "zamrit/platform/ScanDetail.h"
#include "zamrit/xml/dom/TreeDetail.h"
#include "zamrit/xml/sax/SAXReader.h"

namespace zm::detail {

/// Makes the nodes of a load under a target, and moves down and up with its elements. A document that holds nothing
/// yet takes them into its own memory; else each stands for itself.
class TTreeBuilder {
 public:
  explicit TTreeBuilder(TZmDOMNode* Target);
  ~TTreeBuilder();
  TTreeBuilder(const TTreeBuilder&) = delete;
  TTreeBuilder& operator=(const TTreeBuilder&) = delete;

  TZmDOMNode* Current() const { return FCurrent; }
  /// Where texts may be put, nil where they go to the heap.
  TArena* Texts() const { return FArena ? &FArena->Texts() : nullptr; }
  /// A source of Size bytes is going to come.
  void Expect(std::size_t Size) {
    if (FArena) FArena->Expect(Size);
  }

  /// Names are made once for all nodes that bear them, where the target has a document.
  TDOMName* NameOf(StringView QName) { return FNames ? FNames->Intern(QName) : nullptr; }

  /// An element that is not in the tree yet, and its attributes.
  TZmDOMElement* NewElement() { return FPending = Make<TZmDOMElement>(); }
  TZmDOMElement* Pending() const { return FPending; }
  ZM_INLINE TZmDOMAttribute* AddAttribute(const TDOMName* Name, StringView QName) {
    auto* const attribute = Make<TZmDOMAttribute>();
    TDOMTree::Parent(attribute) = FPending;
    TDOMTree::LinkLast(FPending, attribute);
    SetName(attribute, Name, QName);
    const TDOMName& name = TDOMTree::Name(attribute);
    if (name.IsDeclaration || name.IsSpace) [[unlikely]]
      NoteAttribute(attribute, name);
    return attribute;
  }
  /// Puts the element in the tree and goes down to it.
  void StartElement(const TDOMName* Name, StringView QName, StringView URI);
  void EndElement();

  ZM_INLINE TZmDOMNode* AddText(TZmDOMNodeType Type) {
    if (Type != ntText) [[unlikely]]
      return AddOtherText(Type);
    CheckPlace(u"Characters");
    return Append(Make<TZmDOMText>());
  }
  bool WantsBlanks() const {
    return FCurrent->GetNodeType() == ntElement ? TDOMTree::Has(FCurrent, dfPreserveSpace)
                                                : FCurrent->GetPreserveSpace();
  }
  TZmDOMNode* AddInstruction(StringView Target);
  /// The text of a node that has just been made: UTF-8 in the memory that Texts gives, or anywhere.
  void SetText(TZmDOMNode* Node, std::string_view UTF8, bool Surrogates, bool InArena) {
    if (UTF8.size() > ~std::uint32_t{0}) [[unlikely]]
      RaiseTooLong();
    // An application that has been given the node may hold it, or have set its text.
    if (InArena && !TDOMTree::Has(Node, static_cast<TDOMFlags>(dfExtra | dfHeapText))) [[likely]]
      return TDOMTree::SetLoadedText(Node, UTF8, Surrogates);
    TDOMTree::SetRawText(Node, UTF8, Surrogates);
  }
  void SetText(TZmDOMNode* Node, StringView Text);

 private:
  template <class T>
  T* Make() {
    if (!FArena) {
      T* const node = new T();
      return node;
    }
    T* const node = new (FArena->TakeNode(sizeof(T))) T();
    TDOMTree::Flags(node) |= dfArena;
    return node;
  }
  void SetName(TDOMNamedNode* Node, const TDOMName* Name, StringView QName) {
    if (Name) [[likely]]
      TDOMTree::SetInternedName(Node, Name);
    else
      Node->SetQualifiedName(QName);
  }
  ZM_INLINE TZmDOMNode* Append(TZmDOMNode* Node) {
    if (FCurrent == FTarget || TDOMTree::Has(FCurrent, dfExtra)) [[unlikely]] {
      AppendWithCare(Node);
    } else {
      TDOMTree::Parent(Node) = FCurrent;
      TDOMTree::LinkLast(FCurrent, Node);
    }
    return Node;
  }
  void AppendWithCare(TZmDOMNode* Node);
  TZmDOMNode* AddOtherText(TZmDOMNodeType Type);
  void NoteAttribute(TZmDOMAttribute* Attribute, const TDOMName& Name);
  void LinkNamespace(TZmDOMElement* Element);
  void FindAhead(const TDOMName& Name);
  void OpenDeclarations(const TZmDOMElement* Element);
  void CloseDeclarations();
  void PlaceElement(TZmDOMElement* Element);
  void NoteSchema(TZmDOMElement* Element);
  [[noreturn]] static void RaiseTooLong();
  [[noreturn]] static void RaiseNoPlace(StringView Event);
  void CheckPlace(StringView Event) const {
    if (!FCurrent || !TDOMTree::CanHaveChildren(FCurrent)) [[unlikely]]
      RaiseNoPlace(Event);
  }

  TZmDOMNode* const FTarget;
  TZmDOMNode* FCurrent;
  TZmDOMElement* FPending = nullptr;
  TZmDOMDocument* const FDocument;
  TDOMHome* const FNames;
  TDOMHome* FArena = nullptr;
  bool FHasSpace = false;  // the pending element has an attribute xml:space
  const bool FTargetDerived;
  // The elements up to the current one that declare namespaces. Where there are many, so that it would take long to
  // look through them, their declarations are found by prefix, the innermost last.
  std::vector<TZmDOMElement*> FDeclaring;
  std::optional<std::unordered_map<String, std::vector<TZmDOMAttribute*>>> FByPrefix;
  int FNotPlain = 0;  // so many of those are not ASCII, and found by the collation alone
};

/// The handlers that build the tree from events.
class TZmDOMParser : public TComponent,
                     public IZmSAXContentHandler,
                     public IZmSAXLexicalHandler,
                     public IZmSAXErrorHandler {
  ZM_OBJECT(TZmDOMParser, TComponent)
 public:
  explicit TZmDOMParser(TZmDOMNode* Target);

  /// Reads XML or JSON, as the first character says that is no blank. Returns the code page, which XML finds for 0.
  std::uint16_t Parse(TStream* Stream, std::uint16_t CodePage);
  /// Reads XML that stands between a start tag of TagSize characters and its end tag. Columns are told without it.
  void ParseBetweenTags(TStream* Stream, std::uint16_t CodePage, int TagSize);

  TZmDOMParseError OnWarning, OnError, OnFatalError;

  void* QueryInterface(const TInterfaceId& Id) override { return Id.Cast(static_cast<IZmSAXContentHandler*>(this)); }
  int _AddRef() override { return -1; }
  int _Release() override { return -1; }

  void SetDocumentLocator(IZmSAXLocator*) override {}
  void StartDocument() override {}
  void EndDocument() override {}
  void StartPrefixMapping(StringView, StringView) override {}
  void EndPrefixMapping(StringView) override {}
  void StartElement(StringView URI, StringView LocalName, StringView QName, IZmSAXAttributes& Attributes) override;
  void EndElement(StringView URI, StringView LocalName, StringView QName) override;
  void Characters(StringView Text) override;
  void IgnorableWhitespace(StringView Text) override;
  void ProcessingInstruction(StringView Target, StringView Data) override;
  void SkippedEntity(StringView) override {}
  void Comment(StringView Text) override;
  void StartCDATA() override { FInCDATA = true; }
  void EndCDATA() override { FInCDATA = false; }
  void StartDTD() override {}
  void EndDTD() override {}
  void StartEntity(StringView) override {}
  void EndEntity(StringView) override {}
  void Warning(IZmSAXLocator* Locator, StringView Message) override;
  void Error(IZmSAXLocator* Locator, StringView Message) override;
  void FatalError(IZmSAXLocator* Locator, StringView Message) override;

 private:
  std::uint16_t ParseXML(TStream* Stream, std::uint16_t CodePage, bool SingleRoot);
  void ParseWith(TZmSAXReader& Reader, TStream* Stream, std::uint16_t CodePage);

  TTreeBuilder FBuilder;
  TZmDOMNode* const FTarget;
  int FTagSize = 0;
  bool FInCDATA = false;
};

}  // namespace zm::detail
