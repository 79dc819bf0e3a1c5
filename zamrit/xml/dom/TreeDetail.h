#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "zamrit/platform/Arena.h"
#include "zamrit/platform/ScanDetail.h"
#include "zamrit/xml/dom/Document.h"
#include "zamrit/xml/dom/WatchDetail.h"

namespace zm::detail {

/// A name of a node in its parts.
struct TDOMName {
  StringView Prefix;
  StringView LocalName;
  StringView QName;
  std::string_view UTF8;  ///< of QName; 16 bytes behind its start can be read
  bool IsASCII;
  bool IsDeclaration;                ///< xmlns, or of the prefix xmlns, in any case
  bool IsSpace;                      ///< xml:space, in any case
  std::uint32_t PlainSize;           ///< of UTF8; cNotPlain where lone surrogates are in it, three bytes each
  const TDOMScope* Scope = nullptr;  ///< where Namespace was sought last, in the load of that number
  TZmDOMAttribute* Namespace = nullptr;
  std::uint32_t Load = 0;

  static constexpr std::uint32_t cNotPlain = ~std::uint32_t{0};
  bool HasSurrogates() const { return PlainSize == cNotPlain; }
};

/// Where the attributes that declare namespaces are found: those of one element, above which others stand.
struct TDOMScope {
  TZmDOMDocument* Document;
  TDOMScope* Up;         ///< nil for the scope of the document
  TZmDOMElement* Owner;  ///< nil for the scope of the document
  bool Loaded;           ///< belongs to the home
  std::vector<TZmDOMAttribute*> Own;
  /// What the last search from here has found, and the prefix of the last one that has found nothing.
  TZmDOMAttribute* Found = nullptr;
  std::optional<String> Missed;
  /// Where there are many: by prefix in lower case, if all are ASCII.
  std::unique_ptr<std::unordered_map<String, TZmDOMAttribute*>> ByPrefix;

  void Clear() {
    Own.clear();
    ByPrefix = nullptr;
    ForgetSearches();
  }
  void ForgetSearches() {
    Found = nullptr;
    Missed.reset();
  }
  /// A declaration has come in front of all others or behind them, or is to be forgotten, which never fails.
  void Add(TZmDOMAttribute* Declaration, bool InFront);
  void Remove(const TZmDOMNode* Declaration) noexcept;
  /// The same for ByPrefix alone: a declaration has got a name, or is about to lose it.
  void NoteName(TZmDOMAttribute* Declaration) noexcept;
  void ForgetName(const TZmDOMAttribute* Declaration) noexcept;
};

/// Long ways over children of other kinds, from one child of a kind to the next in the chain, so that none is gone
/// twice. Nil is an end of the chain.
class TDOMGaps {
 public:
  using TWays = std::unordered_map<const TZmDOMNode*, TZmDOMNode*>;

  const TWays& Ways(bool Back) const { return Back ? FBefore : FBehind; }
  void Note(TZmDOMNode* Left, TZmDOMNode* Right);
  /// A child has come. Left and Right are those next to it, without a value where they are far.
  void Came(TZmDOMNode* Node, std::optional<TZmDOMNode*> Left, std::optional<TZmDOMNode*> Right);
  void Leaves(TZmDOMNode* Node, std::optional<TZmDOMNode*> Left, std::optional<TZmDOMNode*> Right);

 private:
  static bool Rename(TWays& From, TWays& To, TZmDOMNode* Old, TZmDOMNode* New);
  static void Drop(TWays& From, TWays& To, TZmDOMNode* Node);

  TWays FBehind, FBefore;
};

/// What only some nodes have.
struct TDOMExtra {
  union {
    TZmDOMNode* First;
    const char* Text;
  };
  TZmDOMObjectImpl* Impl = nullptr;
  String NamespaceURI;
  TZmDOMLoadState LoadState = lsUninitialized;
  TZmDOMParseError OnParseWarning, OnParseError, OnParseFatalError;
  std::unique_ptr<TZmDOMNodeList> ChildNodes, CharNodes;
  std::unique_ptr<TZmDOMElementList> Elements;
  std::unique_ptr<TZmDOMAttrList> Attributes, Namespaces;
  std::unique_ptr<TDOMGaps> ElementGaps, AttributeGaps, CharacterGaps;
};

/// The memory of the nodes that a document has loaded, with their texts and names. It lives as long as the document or
/// one of the nodes. Each page of nodes says whose it is.
class TDOMHome {
 public:
  TDOMHome() = default;
  TDOMHome(const TDOMHome&) = delete;
  TDOMHome& operator=(const TDOMHome&) = delete;

  static TDOMHome& Of(const TZmDOMNode* Node) {
    const auto page = reinterpret_cast<std::uintptr_t>(Node) & ~std::uintptr_t{TArena::cPage - 1};
    return **reinterpret_cast<TDOMHome**>(page);  // NOLINT(performance-no-int-to-ptr)
  }

  /// Room for a node, which counts as living from here on.
  void* TakeNode(std::size_t Size) {
    if (static_cast<std::size_t>(FPageEnd - FFree) < Size) [[unlikely]]
      NextPage();
    ++FLiving;
    return std::exchange(FFree, FFree + Size);
  }
  /// A node has been destroyed.
  void NodeGone() {
    if (--FLiving == 0 && !FHasDocument) delete this;
  }
  /// The document goes; with Plain all nodes go with it, without being destroyed.
  void DocumentGone(bool Plain) {
    FHasDocument = false;
    if (Plain || FLiving == 0) delete this;
  }

  TArena& Texts() { return FTexts; }
  /// A source of Size bytes is going to be loaded. What needs a huge page in the end begins in one.
  void Expect(std::size_t Size) {
    constexpr std::size_t large = std::size_t{256} << 10;
    if (Size < large) return;
    FPages.Expect(2 * Size);
    FTexts.Expect(Size / 4);
  }
  /// The record of a name, the same for the same parts. It lives as long as the home.
  TDOMName* Intern(StringView Prefix, StringView LocalName);
  TDOMName* Intern(StringView QName);
  std::size_t NameCount() const { return FNames.size(); }
  /// Whether nothing has been loaded yet.
  bool IsEmpty() const { return !FFree; }
  /// A scope that goes with the home.
  TDOMScope* NewScope(TZmDOMElement* Owner);

  bool Loading = false;  ///< what is made now goes with the home
  std::uint32_t Loads = 0;

 private:
  ~TDOMHome() = default;
  void NextPage();

  char* FFree = nullptr;
  char* FPageEnd = nullptr;
  std::size_t FLiving = 0;
  bool FHasDocument = true;
  TArena FPages;  // of nodes
  TArena FTexts;
  TArena FNameArena;
  std::unordered_multimap<std::size_t, TDOMName*> FNames;  // by hash
  std::deque<TDOMScope> FScopes;
};

/// Holds an object for the length of an operation that may let go of the last handles on it.
class TDOMKeep {
 public:
  explicit TDOMKeep(const TZmDOMObject* Object) : FImpl(Object->GetDOMImpl()) {
    if (FImpl && FImpl->RefCount() == 0) FImpl = nullptr;
    if (FImpl) FImpl->_AddRef();
  }
  ~TDOMKeep() {
    if (FImpl) FImpl->_Release();
  }
  TDOMKeep(const TDOMKeep&) = delete;
  TDOMKeep& operator=(const TDOMKeep&) = delete;

 private:
  TZmDOMObjectImpl* FImpl;
};

/// The operations below the classes of nodes.
class TDOMTree {
 public:
  // The chain of children.
  static TZmDOMNode* First(const TZmDOMNode* Node) {
    return Node->HasFlag(dfExtra) ? Node->FExtra->First : Node->FFirst;
  }
  static TZmDOMNode* Last(const TZmDOMNode* Node) {
    TZmDOMNode* const first = First(Node);
    return first ? first->FPrevious : nullptr;
  }
  static TZmDOMNode* Next(const TZmDOMNode* Node) { return Node->FNext; }
  static TZmDOMNode* Previous(const TZmDOMNode* Node) {
    return Node->FPrevious && Node->FPrevious->FNext ? Node->FPrevious : nullptr;
  }
  static bool CanHaveChildren(const TZmDOMNode* Node) {
    return Node->GetNodeType() == ntElement || Node->GetNodeType() == ntDocument;
  }
  /// The node behind another in document order below Top, attributes among them; nil at the end. Deep says whether to
  /// go below it first.
  static TZmDOMNode* Following(const TZmDOMNode* Node, const TZmDOMNode* Top, bool Deep = true);
  /// Puts a node in the chain: in front of Before, or at the end.
  static void Link(TZmDOMNode* Parent, TZmDOMNode* Node, TZmDOMNode* Before);
  static void LinkLast(TZmDOMNode* Parent, TZmDOMNode* Node) {
    TZmDOMNode*& first = FirstOf(Parent);
    Node->FNext = nullptr;
    if (first) {
      Node->FPrevious = first->FPrevious;
      first->FPrevious->FNext = Node;
      first->FPrevious = Node;
    } else {
      Node->FPrevious = first = Node;
    }
    Node->FFlags |= dfLinked;
  }
  static void Unlink(TZmDOMNode* Parent, TZmDOMNode* Node);

  static std::uint32_t& Flags(TZmDOMObject* Object) { return Object->FFlags; }
  static bool Has(const TZmDOMObject* Object, TDOMFlags Flag) { return (Object->FFlags & Flag) != 0; }
  static void SetFlag(TZmDOMObject* Object, TDOMFlags Flag, bool Value) { Object->SetFlag(Flag, Value); }
  static TZmDOMObject*& Parent(TZmDOMObject* Object) { return Object->FParent; }
  /// Whether the class is one of an application, whose overrides are to be called.
  static bool IsDerived(const TZmDOMObject* Object) { return (Object->FFlags & dfDerived) != 0; }
  static bool IsOwnClass(const TZmDOMObject& Object);

  static TDOMExtra& Extra(TZmDOMNode* Node);
  static TDOMExtra* ExtraIfAny(const TZmDOMNode* Node) { return Node->HasFlag(dfExtra) ? Node->FExtra : nullptr; }
  static void DropExtra(TZmDOMNode* Node);
  /// The document is no longer one block of memory that can go as a whole.
  static void Spoil(TZmDOMDocument* Document) {
    if (Document) Document->FPlain = false;
  }
  static TDOMHome& Home(TZmDOMDocument* Document) { return *Document->FHome; }

  // Names.
  static const TDOMName& Name(const TZmDOMNode* Node) {
    return HasName(Node) ? *static_cast<const TDOMNamedNode*>(Node)->FName : cNoDOMName;
  }
  static bool HasName(const TZmDOMNode* Node) {
    const TZmDOMNodeType type = Node->GetNodeType();
    return type == ntElement || type == ntAttribute || type == ntProcessingInstruction;
  }
  static void SetName(TZmDOMNode* Node, StringView Prefix, StringView LocalName);
  static void SetInternedName(TDOMNamedNode* Node, const TDOMName* Name) { Node->FName = Name; }
  /// A node that leaves its document keeps a name of its own.
  static void OwnName(TZmDOMNode* Node);
  static const TDOMName* NewName(StringView Prefix, StringView LocalName);
  static void FreeName(const TDOMName* Name) noexcept;

  // Texts, in UTF-8 as they are held.
  static std::string_view RawText(const TZmDOMNode* Node) {
    return {Node->HasFlag(dfExtra) ? Node->FExtra->Text : Node->FText, Node->FSize};
  }
  static String Text(const TZmDOMNode* Node);
  /// UTF-8 with lone surrogates as three bytes each. Returns whether there are any.
  static bool Narrow(StringView Text, std::string& Out);
  /// Appends the UTF-16 of such a text.
  static void Widen(std::string_view UTF8, bool Surrogates, String& Out);
  /// A text of the node's own.
  static void SetText(TZmDOMNode* Node, StringView Text);
  static void SetRawText(TZmDOMNode* Node, std::string_view UTF8, bool Surrogates);
  /// A text in the memory of the home, at the start of which 16 bytes can be read.
  static void SetLoadedText(TZmDOMNode* Node, std::string_view UTF8, bool Surrogates) {
    Node->FText = UTF8.data();
    Node->FSize = static_cast<std::uint32_t>(UTF8.size());
    if (Surrogates) Node->FFlags |= dfSurrogates;
  }
  /// Text without references, as a getter gives it.
  static String Decoded(const TZmDOMNode* Node);

  // Namespaces.
  static TDOMScope*& Scope(TZmDOMElement* Element) { return Element->FScope; }
  static TDOMScope* Scope(TZmDOMDocument* Document) { return Document->FScope.get(); }
  /// The scope in force in a parent, nil without a document.
  static TDOMScope* ScopeOf(const TZmDOMNode* Parent) {
    if (!Parent) return nullptr;
    return Parent->GetNodeType() == ntElement ? static_cast<const TZmDOMElement*>(Parent)->FScope
                                              : static_cast<const TZmDOMDocument*>(Parent)->FScope.get();
  }
  /// The prefix that a declaration declares.
  static StringView DeclaredPrefix(const TZmDOMAttribute* Declaration);
  static TZmDOMAttribute*& Namespace(TZmDOMElement* Element) { return Element->FNamespace; }
  /// The declaration of a prefix, "" the default one, nil where there is none.
  static TZmDOMAttribute* FindPrefix(TDOMScope* Scope, StringView Prefix);
  static bool SamePrefix(const TZmDOMNode* A, const TZmDOMNode* B);
  /// The URI that an element or attribute holds itself.
  static String HeldURI(const TZmDOMNode* Node);
  static void HoldURI(TZmDOMNode* Node, StringView URI);
  /// Whether it is one that was declared above, before the element or one above was moved.
  static bool IsKept(const TZmDOMElement* Element);
  static void RefreshElement(TZmDOMElement* Element);
  static void RefreshScope(TZmDOMElement* Element, TDOMScope* Up);
  static void RefreshBelow(TZmDOMNode* Top);
  /// The same as Following, for elements alone.
  static TZmDOMNode* FollowingElement(const TZmDOMNode* Node, const TZmDOMNode* Top, bool Deep = true);
  static void DropScope(TZmDOMElement* Element);
  /// The declarations in force in an element, outer ones first.
  static void CollectNamespaces(TZmDOMElement* Element, std::vector<TZmDOMNode*>& Out);
  static TZmDOMAttribute* FindNamespaceURI(TZmDOMElement* Element, StringView URI);
  /// A node, with all below it, is about to leave its document, and has come to one or to none.
  static void LeaveDocument(TZmDOMNode* Top, TZmDOMDocument* Document);
  static void EnterDocument(TZmDOMNode* Top, TZmDOMDocument* Document);
  /// Declarations have come to an element, have gone from it or have got other names.
  static void DeclarationsChanged(TZmDOMNode* Node);
  /// One has come to the chain, or has left it. Linear in the elements below, not in the declarations.
  static void DeclarationCame(TZmDOMNode* Node, TZmDOMNode* Declaration);
  static void DeclarationLeft(TZmDOMNode* Node, TZmDOMNode* Declaration);
  /// Forgets a declaration that goes, where another cannot be sought for those who are linked to it.
  static void CutLinksTo(const TZmDOMNode* Declaration, TZmDOMNode* Node) noexcept;
  /// Links an element and those below anew, once its scope is right.
  static void Relink(TZmDOMNode* Node);
  static void CutLink(TZmDOMElement* Element);
  /// Forgets a declaration of the element's own, which is about to go.
  static void CutLinkToOwn(TZmDOMElement* Element);
  static void ForgetNamespaces(TZmDOMElement* Element);
  /// The copies of declarations by those that they were made from.
  using TCopies = std::unordered_map<const TZmDOMNode*, TZmDOMAttribute*>;
  /// A copy is about to come to the copy of its parent, and has come to it.
  static void CopyNamespace(const TZmDOMNode* Node, TZmDOMNode* Copy, const TCopies& Declarations);
  static void LinkCopy(const TZmDOMNode* Node, TZmDOMNode* Copy, TCopies& Declarations);

  // Lists of children.
  using TKind = TZmDOMNodeListBase::TKind;
  static TZmDOMNodeListBase& List(TZmDOMNode* Node, TKind Kind);
  static TZmDOMNodeListBase* ListIfAny(const TZmDOMNode* Node, TKind Kind);
  static TZmDOMNodeListBase* OwnList(const TZmDOMNode* Parent, TKind Kind);
  static TZmDOMNode* ChildIn(const TZmDOMNodeListBase& List, int Index, int Step);
  /// What a list holds, which from here on is what it shows.
  static std::vector<TZmDOMNode*>& Items(TZmDOMNodeListBase& List) {
    List.Depart();
    List.FList.erase(List.FList.begin(), List.FList.begin() + static_cast<std::ptrdiff_t>(List.FHead));
    List.FHead = 0;
    return List.FList;
  }
  /// Debug builds find out when the list is asked for a node that has been freed.
  static void Watch(TZmDOMNodeListBase& List) {
    TDOMWatch::Begin(List.FList);
    List.FWatched = true;
  }
  static TKind KindOf(const TZmDOMNode* Node);
  static bool IsOfKind(const TZmDOMNode* Node, TKind Kind) { return Kind == TKind::All || KindOf(Node) == Kind; }
  /// The first child of a kind, and the one behind a child, as the lists have them.
  static TZmDOMNode* FirstOfKind(const TZmDOMNode* Parent, TKind Kind);
  static TZmDOMNode* LastOfKind(const TZmDOMNode* Parent, TKind Kind);
  static TZmDOMNode* NextOfKind(const TZmDOMNode* Node, TKind Kind);
  static TZmDOMNode* PreviousOfKind(const TZmDOMNode* Node, TKind Kind);
  /// The child of a kind that the chain has next to a child, or to an end of it where From is nil.
  template <bool Back>
  static TZmDOMNode* Beside(const TZmDOMNode* Parent, const TZmDOMNode* From, TKind Kind) {
    TZmDOMNode* node = Back ? (From ? Previous(From) : Last(Parent)) : (From ? From->FNext : First(Parent));
    for (int i = 0; i < cFar; ++i) {
      if (!node || IsOfKind(node, Kind)) return node;
      node = Back ? Previous(node) : node->FNext;
    }
    return BesideFar(Parent, From, node, Kind, Back);
  }
  /// A child has come to the chain, or is about to leave it.
  static void ChildAdded(TZmDOMNode* Parent, TZmDOMNode* Node, TZmDOMNode* Ref, TZmDOMPosition Position);
  static void ChildLeaves(TZmDOMNode* Parent, TZmDOMNode* Node);

  // Life.
  /// Runs the destructor and gives the memory back, without BeforeDestruction.
  static void Destroy(TZmDOMNode* Node) noexcept;
  /// Frees a node that has left its parent, with all below it; what is held becomes loose.
  static void Dispose(TZmDOMNode* Node);
  static void RunBeforeDestruction(TZmDOMNode* Node);
  static void LetGo(TZmDOMNode* Parent, TZmDOMNode* Node, bool Held);
  /// Takes all children of a node that goes or is cleared.
  static void FreeChildren(TZmDOMNode* Top);
  /// Takes a node out of its parent, whatever it is, without freeing it. It does not know of that yet.
  static void Leave(TZmDOMNode* Node) { LeaveFrom(static_cast<TZmDOMNode*>(Node->FParent), Node); }
  static void LeaveFrom(TZmDOMNode* Parent, TZmDOMNode* Node);
  /// Tells a node that it has no parent any more. Where memory runs out, nothing has changed.
  static void MakeLoose(TZmDOMNode* Node);
  /// The same where it must not fail: names may be lost where memory runs out.
  static void CutLoose(TZmDOMNode* Top) noexcept;
  /// The attributes of an element that has just been built, which stand in front of all else.
  class TAttributes {
   public:
    class TIterator {
     public:
      explicit TIterator(TZmDOMNode* Node) : FNode(Node) {}
      TZmDOMAttribute& operator*() const { return *static_cast<TZmDOMAttribute*>(FNode); }
      TIterator& operator++() {
        FNode = Next(FNode);
        return *this;
      }
      bool operator!=(const TIterator&) const { return FNode && FNode->GetNodeType() == ntAttribute; }

     private:
      TZmDOMNode* FNode;
    };
    explicit TAttributes(TZmDOMNode* First) : FFirst(First) {}
    TIterator begin() const { return TIterator(FFirst); }
    TIterator end() const { return TIterator(nullptr); }

   private:
    TZmDOMNode* FFirst;
  };
  static TAttributes AttributesOf(TZmDOMElement* Element) { return TAttributes(First(Element)); }
  /// The encoding that an XML declaration names: what stands between the first two double quotes behind the word.
  /// Empty where there is none.
  static String EncodingIn(StringView Declaration);
  /// The children have gone without being destroyed.
  static void ForgetChildren(TZmDOMNode* Node);
  static void ClearLists(TZmDOMNode* Node);
  /// The lists that show what the chain has must look again.
  static void ForgetViews(TZmDOMNode* Node);
  static TZmDOMLoadState& LoadState(TZmDOMDocument* Document) { return Document->FLoadState; }
  static void NoteSchemaInstance(TZmDOMDocument* Document) { Document->FUseSchemaInstance = true; }
  /// A child has come somewhere in front of others.
  static void Rescan(TZmDOMDocument* Document) { Document->FScanned = nullptr; }
  static void SetRoot(TZmDOMDocument* Document, TZmDOMElement* Root) { Document->FRootNode = Root; }

 private:
  static constexpr int cFar = 64;  // that many children are passed over as often as somebody asks

  static TZmDOMNode*& FirstOf(TZmDOMNode* Node) { return Node->HasFlag(dfExtra) ? Node->FExtra->First : Node->FFirst; }
  ZM_NOINLINE static TZmDOMNode* BesideFar(const TZmDOMNode* Parent, const TZmDOMNode* From, TZmDOMNode* Node,
                                           TKind Kind, bool Back);
  static std::optional<TZmDOMNode*> Near(const TZmDOMNode* Node, TKind Kind, bool Back);
  static std::unique_ptr<TDOMGaps>* Gaps(TDOMExtra* Extra, TKind Kind);
  static void FillScope(const TZmDOMElement* Element, TDOMScope& Scope);
  static void LinkToOwn(TZmDOMElement* Element, TZmDOMAttribute* Declaration);
  static void KeepNamespace(TZmDOMElement* Element, const TZmDOMAttribute* Old, StringView Kept);
  static void HoldOuter(TZmDOMElement* Element) noexcept;
};

}  // namespace zm::detail
