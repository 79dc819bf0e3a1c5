#include <algorithm>
#include <unordered_set>

#include "zamrit/platform/ASCIIDetail.h"
#include "zamrit/platform/ScopeDetail.h"
#include "zamrit/xml/dom/TreeDetail.h"

namespace zm::detail {

namespace {

TZmDOMElement* AsElement(const TZmDOMObject* Object) {
  const auto* const node = static_cast<const TZmDOMNode*>(Object);
  if (!node || node->GetNodeType() != ntElement) return nullptr;
  return const_cast<TZmDOMElement*>(static_cast<const TZmDOMElement*>(node));
}

bool Declares(const TZmDOMAttribute* Attribute, StringView Prefix, TZmXPathCollationClass Collation) {
  if (Prefix.empty()) return Attribute->GetPrefix().empty() && Collation->SameText(Attribute->GetLocalName(), u"xmlns");
  return Collation->SameText(Attribute->GetLocalName(), Prefix) &&
         Collation->SameText(Attribute->GetPrefix(), u"xmlns");
}

constexpr std::size_t cManyDeclarations = 16;

String KeyOf(const TZmDOMAttribute* Declaration) { return LowerCase(TDOMTree::DeclaredPrefix(Declaration)); }

TZmDOMAttribute* FindOwn(TDOMScope& Scope, StringView Prefix, TZmXPathCollationClass Collation) {
  if (Scope.Own.size() > cManyDeclarations && IsASCII(Prefix)) {
    if (!Scope.ByPrefix) {
      auto known = std::make_unique<std::unordered_map<String, TZmDOMAttribute*>>();
      bool ascii = true;
      for (TZmDOMAttribute* const declaration : Scope.Own) {
        ascii = ascii && IsASCII(TDOMTree::DeclaredPrefix(declaration));
        (*known)[KeyOf(declaration)] = declaration;
      }
      if (!ascii) known->clear();
      Scope.ByPrefix = std::move(known);
    }
    const auto found = Scope.ByPrefix->find(LowerCase(Prefix));
    if (found == Scope.ByPrefix->end() && !Scope.ByPrefix->empty()) return nullptr;
    if (found != Scope.ByPrefix->end() && Declares(found->second, Prefix, Collation)) return found->second;
  }
  for (std::size_t i = Scope.Own.size(); i-- > 0;)
    if (Declares(Scope.Own[i], Prefix, Collation)) return Scope.Own[i];
  return nullptr;
}

}  // namespace

StringView TDOMTree::DeclaredPrefix(const TZmDOMAttribute* Declaration) {
  return Declaration->GetPrefix().empty() ? StringView() : Declaration->GetLocalName();
}

void TDOMScope::Add(TZmDOMAttribute* Declaration, bool InFront) {
  Own.insert(InFront ? Own.begin() : Own.end(), Declaration);
  NoteName(Declaration);
}

void TDOMScope::Remove(const TZmDOMNode* Declaration) noexcept {
  ForgetSearches();
  if (Own.empty()) return;
  std::size_t behind = Own.front() == Declaration ? 1 : Own.size();
  while (behind > 0 && Own[behind - 1] != Declaration) --behind;
  if (behind == 0) return;
  ForgetName(Own[behind - 1]);
  Own.erase(Own.begin() + static_cast<std::ptrdiff_t>(behind - 1));
}

// Of several of one prefix the last one counts: which one that is then, the next search finds out.
void TDOMScope::NoteName(TZmDOMAttribute* Declaration) noexcept {
  ForgetSearches();
  if (!ByPrefix || ByPrefix->empty()) return;
  if (!IsASCII(TDOMTree::DeclaredPrefix(Declaration))) return ByPrefix->clear();
  try {
    if (ByPrefix->emplace(KeyOf(Declaration), Declaration).second) return;
  } catch (...) {
  }
  ByPrefix = nullptr;
}

void TDOMScope::ForgetName(const TZmDOMAttribute* Declaration) noexcept {
  if (!ByPrefix || ByPrefix->empty()) return;
  try {
    const auto known = ByPrefix->find(KeyOf(Declaration));
    if (ByPrefix->size() == Own.size() && known != ByPrefix->end()) {
      ByPrefix->erase(known);
      return;
    }
  } catch (...) {
  }
  ByPrefix = nullptr;
}

TZmDOMAttribute* TDOMTree::FindPrefix(TDOMScope* Scope, StringView Prefix) {
  if (!Scope) return nullptr;
  const TZmXPathCollationClass collation = Scope->Document ? Scope->Document->GetCollation() : DefaultXPathCollation;
  TZmDOMAttribute* found = nullptr;
  for (TDOMScope* scope = Scope; scope && !found; scope = scope->Up) {
    found = FindOwn(*scope, Prefix, collation);
    if (!found && scope->Found && Declares(scope->Found, Prefix, collation)) found = scope->Found;
    if (!found && scope->Missed == Prefix) break;
  }
  if (found)
    Scope->Found = found;
  else
    Scope->Missed = Prefix;
  return found;
}

bool TDOMTree::SamePrefix(const TZmDOMNode* A, const TZmDOMNode* B) {
  const TDOMName &a = Name(A), &b = Name(B);
  return &a == &b || A->GetCollation()->SameText(a.Prefix, b.Prefix);
}

String TDOMTree::HeldURI(const TZmDOMNode* Node) {
  if (Has(Node, dfNamespaceOwn)) {
    const TZmDOMAttribute* const declaration = static_cast<const TZmDOMElement*>(Node)->FNamespace;
    return declaration ? declaration->GetNodeValue() : String();
  }
  const TDOMExtra* const extra = ExtraIfAny(Node);
  return extra ? extra->NamespaceURI : String();
}

void TDOMTree::HoldURI(TZmDOMNode* Node, StringView URI) {
  Node->FFlags &= ~dfNamespaceOwn;
  if (!URI.empty() || Has(Node, dfExtra)) Extra(Node).NamespaceURI = URI;
}

void TDOMTree::CollectNamespaces(TZmDOMElement* Element, std::vector<TZmDOMNode*>& Out) {
  const TZmXPathCollationClass collation = Element->GetCollation();
  std::unordered_set<String> known;  // of ASCII names
  std::vector<StringView> others;
  for (const TDOMScope* scope = Element->FScope; scope; scope = scope->Up)
    for (std::size_t i = scope->Own.size(); i-- > 0;) {
      const StringView name = scope->Own[i]->GetQualifiedName();
      const auto same = [&](StringView other) { return collation->SameText(other, name); };
      if (!IsASCII(name)) {
        if (std::any_of(others.begin(), others.end(), same)) continue;
        others.push_back(name);
      } else if (!known.insert(collation == TZmXPathCollationASCIICI ? LowerCase(name) : String(name)).second) {
        continue;
      }
      Out.push_back(scope->Own[i]);
    }
  std::reverse(Out.begin(), Out.end());
}

namespace {

/// Compares values of attributes with a text, most of them as they stand.
class TValueTest {
 public:
  explicit TValueTest(StringView Text) : FText(Text) {
    TDOMTree::Narrow(Text, FUTF8);
    FIsPlain = FUTF8.find('&') == std::string::npos;
  }
  bool Matches(const TZmDOMAttribute* Attribute) const {
    const std::string_view raw = TDOMTree::RawText(Attribute);
    if (FIsPlain && raw == FUTF8) return true;
    return raw.find('&') == std::string_view::npos ? false : TDOMTree::Decoded(Attribute) == FText;
  }

 private:
  const StringView FText;
  std::string FUTF8;
  bool FIsPlain;
};

}  // namespace

// That of the element's own prefix comes first, which is found at once.
TZmDOMAttribute* TDOMTree::FindNamespaceURI(TZmDOMElement* Element, StringView URI) {
  const TValueTest test(URI);
  if (TZmDOMAttribute* const own = FindPrefix(Element->FScope, Element->GetPrefix()); own && test.Matches(own))
    return own;
  for (const TDOMScope* scope = Element->FScope; scope; scope = scope->Up)
    for (std::size_t i = scope->Own.size(); i-- > 0;) {
      TZmDOMAttribute* const declaration = scope->Own[i];
      // It may be covered by a nearer declaration of the same prefix.
      if (test.Matches(declaration) &&
          FindPrefix(Element->FScope, TDOMTree::DeclaredPrefix(declaration)) == declaration)
        return declaration;
    }
  return nullptr;
}

void TDOMTree::DropScope(TZmDOMElement* Element) {
  TDOMScope* const scope = std::exchange(Element->FScope, nullptr);  // without the flag it may have gone already
  if (!Has(Element, dfOwnScope)) return;
  Element->SetFlag(dfOwnScope, false);
  if (scope->Loaded)
    scope->Clear();
  else
    delete scope;
}

// The scope of an element that declares is kept as an object: those below look at it until they are refreshed too.
void TDOMTree::RefreshScope(TZmDOMElement* Element, TDOMScope* Up) {
  TZmDOMDocument* const document = Up ? Up->Document : nullptr;
  if (!Has(Element, dfOwnScope)) {
    Element->FScope = Up;  // it is in the document, also where memory runs out
    const bool loaded = document && Home(document).Loading;
    std::unique_ptr<TDOMScope> made;
    if (!loaded) made = std::make_unique<TDOMScope>(TDOMScope{nullptr, nullptr, Element, false, {}, nullptr, {}, {}});
    TDOMScope* const scope = loaded ? Home(document).NewScope(Element) : made.get();
    FillScope(Element, *scope);
    if (!loaded) Spoil(document);
    Element->FScope = scope;
    static_cast<void>(made.release());
    Element->FFlags |= dfOwnScope;
  }
  Element->FScope->ForgetSearches();
  Element->FScope->Up = Up;
  Element->FScope->Document = document;
}

void TDOMTree::FillScope(const TZmDOMElement* Element, TDOMScope& Scope) {
  std::vector<TZmDOMAttribute*> own;
  for (TZmDOMNode* node = First(Element); node; node = node->FNext)
    if (Has(node, dfDeclaration)) own.push_back(static_cast<TZmDOMAttribute*>(node));
  Scope.Clear();
  Scope.Own = std::move(own);
}

void TDOMTree::RefreshElement(TZmDOMElement* Element) {
  TZmDOMObject* const above = Element->FParent;
  if (!above) {
    if (Element->FNamespace && Element->FNamespace->FParent != Element) CutLink(Element);
    return;
  }
  TDOMScope* const up = ScopeOf(Element->ParentNode());
  if (Has(Element, dfDeclares)) {
    RefreshScope(Element, up);
  } else {
    DropScope(Element);
    Element->FScope = up;
  }
  ForgetNamespaces(Element);
  const StringView prefix = Name(Element).Prefix;
  const bool heldNone = Has(Element, dfNamespaceSet) && HeldURI(Element).empty();
  const TZmDOMAttribute* const old = Element->FNamespace;
  const String kept = IsKept(Element) ? HeldURI(Element) : String();
  if (!kept.empty()) HoldURI(Element, {});
  CutLink(Element);
  if (Has(Element, dfOwnScope)) {
    if (TZmDOMAttribute* const own = FindOwn(*Element->FScope, prefix, Element->GetCollation()))
      return LinkToOwn(Element, own);
  }
  const TZmDOMElement* const parent = AsElement(above);
  if (!parent || !SamePrefix(Element, parent)) {
    Element->FNamespace = FindPrefix(Element->FScope, prefix);
    if (!Element->FNamespace && !Has(Element, dfMoving)) KeepNamespace(Element, old, kept);
  } else if (heldNone && prefix.empty() && parent->FNamespace) {
    Element->FFlags |= dfDeclaring;
    const TFinally declared([Element] { Element->FFlags &= ~dfDeclaring; });
    Element->SetNamespaceURI(StringView());
    if (Element->FNamespace && Element->FNamespace->FParent == Element) LinkToOwn(Element, Element->FNamespace);
  } else {
    Element->FNamespace = parent->FNamespace;
  }
}

void TDOMTree::LinkToOwn(TZmDOMElement* Element, TZmDOMAttribute* Declaration) {
  Element->FNamespace = Declaration;
  Element->FFlags |= dfNamespaceSet | dfNamespaceOwn;
}

// An element below one that has been moved may have left the declaration of its prefix behind. Where none is in force
// it declares what it had.
void TDOMTree::KeepNamespace(TZmDOMElement* Element, const TZmDOMAttribute* Old, StringView Kept) {
  String uri(Kept);
  if (uri.empty() && Old && Old->FParent && Declares(Old, Element->GetPrefix(), Element->GetCollation()))
    uri = Old->GetNodeValue();
  if (uri.empty()) return;
  Element->FFlags |= dfDeclaring;
  const TFinally declared([Element] { Element->FFlags &= ~dfDeclaring; });
  Element->DeclareNamespace(uri);
  LinkToOwn(Element, Element->FNamespace);
}

TZmDOMNode* TDOMTree::FollowingElement(const TZmDOMNode* Node, const TZmDOMNode* Top, bool Deep) {
  if (Deep && CanHaveChildren(Node))
    if (TZmDOMNode* const first = Beside<false>(Node, nullptr, TKind::Elements)) return first;
  while (Node != Top) {
    const auto* const parent = static_cast<const TZmDOMNode*>(Node->FParent);
    if (TZmDOMNode* const next = Beside<false>(parent, Node, TKind::Elements)) return next;
    Node = parent;
  }
  return nullptr;
}

// Of an application's classes all nodes are told, of others there is nothing to be done but for elements.
void TDOMTree::RefreshBelow(TZmDOMNode* Top) {
  const auto tellChildren = [](TZmDOMNode* node) {
    if (!Has(node, dfHasDerived)) return;
    for (TZmDOMNode* child = First(node); child; child = child->FNext)
      if (IsDerived(child) && child->GetNodeType() != ntElement) child->RefreshNamespaces();
  };
  tellChildren(Top);
  for (TZmDOMNode* node = FollowingElement(Top, Top); node;) {
    const bool derived = IsDerived(node);
    if (derived) {
      node->RefreshNamespaces();
    } else {
      RefreshElement(static_cast<TZmDOMElement*>(node));
      tellChildren(node);
    }
    node = FollowingElement(node, Top, !derived);
  }
}

void TDOMTree::DeclarationsChanged(TZmDOMNode* Node) {
  TZmDOMElement* const element = AsElement(Node);
  if (!element || element->IsDestroying()) return;
  bool declares = false;
  for (const TZmDOMNode* node = First(element); node && !declares; node = node->FNext)
    declares = Has(node, dfDeclaration);
  element->SetFlag(dfDeclares, declares);
  if (Has(element, dfOwnScope)) FillScope(element, *element->FScope);
  Relink(element);
}

void TDOMTree::DeclarationCame(TZmDOMNode* Node, TZmDOMNode* Declaration) {
  TZmDOMElement* const element = AsElement(Node);
  if (!element || element->IsDestroying()) return;
  element->FFlags |= dfDeclares;
  if (Has(element, dfOwnScope)) {
    const bool first = !Previous(Declaration);
    if (first || !Declaration->FNext)
      element->FScope->Add(static_cast<TZmDOMAttribute*>(Declaration), first);
    else
      FillScope(element, *element->FScope);
  }
  if (element->FScope) Relink(element);
}

void TDOMTree::DeclarationLeft(TZmDOMNode* Node, TZmDOMNode* Declaration) {
  TZmDOMElement* const element = AsElement(Node);
  if (!element || element->IsDestroying()) return;
  if (!Has(element, dfOwnScope)) return DeclarationsChanged(element);
  element->FScope->Remove(Declaration);
  element->SetFlag(dfDeclares, !element->FScope->Own.empty());
  Relink(element);
}

void TDOMTree::CutLinksTo(const TZmDOMNode* Declaration, TZmDOMNode* Node) noexcept {
  for (TZmDOMNode* node = Node; node; node = Following(node, Node)) {
    TZmDOMElement* const element = AsElement(node);
    if (!element) continue;
    if (element->FNamespace == Declaration) CutLink(element);
    if (Has(element, dfOwnScope)) element->FScope->Remove(Declaration);
  }
}

void TDOMTree::Relink(TZmDOMNode* Node) {
  TZmDOMElement* const element = AsElement(Node);
  if (!element || element->IsDestroying()) return;
  if (Has(element, dfDeclaring)) {
    RefreshScope(element, ScopeOf(element->ParentNode()));
    return ForgetNamespaces(element);
  }
  if (element->FScope) return element->RefreshNamespaces();
  for (TZmDOMNode* node = element; node;
       node = FollowingElement(node, element))  // without a document nothing is sought
    if (TZmDOMElement* const e = AsElement(node); e->FNamespace)
      if (!e->FNamespace->FParent || !Declares(e->FNamespace, e->GetPrefix(), e->GetCollation())) CutLink(e);
}

void TDOMTree::ForgetNamespaces(TZmDOMElement* Element) {
  if (TZmDOMNodeListBase* const list = ListIfAny(Element, TKind::Namespaces)) list->Forget();
}

void TDOMTree::CutLink(TZmDOMElement* Element) {
  if (Has(Element, dfNamespaceOwn)) {
    HoldURI(Element, {});
    Element->SetFlag(dfNamespaceSet, false);
  }
  Element->FNamespace = nullptr;
}

void TDOMTree::CutLinkToOwn(TZmDOMElement* Element) {
  if (Element->FNamespace && Element->FNamespace->FParent == Element) CutLink(Element);
}

// What a copy is linked to, or inherits, it need not declare.
void TDOMTree::CopyNamespace(const TZmDOMNode* Node, TZmDOMNode* Copy, const TCopies& Declarations) {
  const TZmDOMElement* const element = AsElement(Node);
  if (!element || !element->FNamespace) return;
  const TZmDOMElement* const parent = AsElement(Node->FParent);
  const bool known = element->FNamespace->FParent == element || Declarations.count(element->FNamespace) > 0 ||
                     (parent && parent->FNamespace == element->FNamespace && SamePrefix(element, parent));
  if (!known) return;
  HoldURI(Copy, {});
  Copy->SetFlag(dfNamespaceSet, false);
}

void TDOMTree::LinkCopy(const TZmDOMNode* Node, TZmDOMNode* Copy, TCopies& Declarations) {
  TZmDOMElement* const copied = AsElement(Copy->FParent);
  if (Has(Node, dfDeclaration)) {
    auto* const declaration = static_cast<TZmDOMAttribute*>(Copy);
    Declarations[Node] = declaration;
    if (static_cast<const TZmDOMElement*>(Node->FParent)->FNamespace != Node) return;
    copied->FNamespace = declaration;
    copied->FFlags |= dfNamespaceSet | dfNamespaceOwn;
  }
  TZmDOMElement* const copy = AsElement(Copy);
  const TZmDOMElement* const element = AsElement(Node);
  if (!copy || !element || copy->FNamespace) return;
  const auto found = Declarations.find(element->FNamespace);
  if (found != Declarations.end())
    copy->FNamespace = found->second;
  else if (copied && SamePrefix(copy, copied))
    copy->FNamespace = copied->FNamespace;
}

void TDOMTree::LeaveDocument(TZmDOMNode* Top, TZmDOMDocument* Document) {
  Spoil(Document);
  for (TZmDOMNode* node = Top; node; node = Following(node, Top)) OwnName(node);
}

// A namespace that was declared above what is moved, and is not that of the parent, too, stays with the element until
// it comes to a document again. It is lost where memory runs out.
void TDOMTree::HoldOuter(TZmDOMElement* Element) noexcept {
  const TZmDOMElement* const parent = AsElement(Element->FParent);
  if (parent && SamePrefix(Element, parent)) return;
  try {
    HoldURI(Element, Element->FNamespace->GetNodeValue());
    Element->FFlags &= ~dfNamespaceSet;
  } catch (...) {
  }
}

bool TDOMTree::IsKept(const TZmDOMElement* Element) {
  return !Has(Element, dfNamespaceSet) && !Has(Element, dfNamespaceOwn) && !HeldURI(Element).empty();
}

// Links to declarations outside are cut where there is no document: it may go before the nodes do.
void TDOMTree::EnterDocument(TZmDOMNode* Top, TZmDOMDocument* Document) {
  if (Has(Top, dfEntering)) return;
  bool derived = false;
  for (TZmDOMNode* node = Top; node; node = Following(node, Top)) {
    derived |= IsDerived(node) && node != Top;
    if (node->GetNodeType() != ntElement) continue;
    auto* const element = static_cast<TZmDOMElement*>(node);
    DropScope(element);
    ForgetNamespaces(element);
    if (Document) element->FScope = Document->FScope.get();
    if (Has(element, dfDeclares))
      for (TZmDOMNode* child = First(element); child; child = child->FNext)
        if (Has(child, dfDeclaration)) child->FFlags |= dfMarked;
    if (!element->FNamespace || Has(element->FNamespace, dfMarked)) continue;
    if (element != Top) HoldOuter(element);
    CutLink(element);
  }
  for (TZmDOMNode* node = Top; node; node = Following(node, Top)) node->FFlags &= ~dfMarked;
  if (!derived) return;
  for (TZmDOMNode* node = Following(Top, Top); node; node = Following(node, Top)) {
    if (!IsDerived(node)) continue;
    node->FFlags |= dfEntering;
    const TFinally entered([node] { node->FFlags &= ~dfEntering; });
    node->SetDOMDocument(Document);
  }
}

void TDOMTree::CutLoose(TZmDOMNode* Top) noexcept {
  for (TZmDOMNode* node = Top; node; node = Following(node, Top)) {
    try {
      OwnName(node);
    } catch (...) {
      static_cast<TDOMNamedNode*>(node)->FName = &cNoDOMName;
    }
  }
  Top->FParent = nullptr;
  if (TZmDOMObjectImpl* const impl = Top->GetDOMImpl()) impl->SetParent(nullptr);
  try {
    EnterDocument(Top, nullptr);
  } catch (...) {  // of an application's class, which has been told
  }
}

}  // namespace zm::detail
