#include <algorithm>
#include <unordered_set>

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

}  // namespace

namespace {

constexpr std::size_t cManyDeclarations = 16;

StringView PrefixOf(const TZmDOMAttribute* Declaration) {
  return Declaration->GetPrefix().empty() ? StringView() : Declaration->GetLocalName();
}

bool IsASCII(StringView Text) {
  return std::all_of(Text.begin(), Text.end(), [](char16_t c) { return c < 0x80; });
}

TZmDOMAttribute* FindOwn(TDOMScope& Scope, StringView Prefix, TZmXPathCollationClass Collation) {
  if (Scope.Own.size() > cManyDeclarations && IsASCII(Prefix)) {
    if (!Scope.ByPrefix) {
      Scope.ByPrefix = std::make_unique<std::unordered_map<String, TZmDOMAttribute*>>();
      bool ascii = true;
      for (TZmDOMAttribute* const declaration : Scope.Own) {
        ascii = ascii && IsASCII(PrefixOf(declaration));
        (*Scope.ByPrefix)[LowerCase(PrefixOf(declaration))] = declaration;
      }
      if (!ascii) Scope.ByPrefix->clear();
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
      } else if (!known.insert(collation->IgnoresCase() ? LowerCase(name) : String(name)).second) {
        continue;
      }
      Out.push_back(scope->Own[i]);
    }
  std::reverse(Out.begin(), Out.end());
}

TZmDOMAttribute* TDOMTree::FindNamespaceURI(TZmDOMElement* Element, StringView URI) {
  for (const TDOMScope* scope = Element->FScope; scope; scope = scope->Up)
    for (std::size_t i = scope->Own.size(); i-- > 0;) {
      TZmDOMAttribute* const declaration = scope->Own[i];
      // It may be covered by a nearer declaration of the same prefix.
      if (Decoded(declaration) == URI && FindPrefix(Element->FScope, PrefixOf(declaration)) == declaration)
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
  if (!Has(Element, dfOwnScope)) {
    TZmDOMDocument* const document = Up ? Up->Document : nullptr;
    if (document && Home(document).Loading) {
      Element->FScope = Home(document).NewScope(Element);
    } else {
      Element->FScope = new TDOMScope{nullptr, nullptr, Element, false, {}, nullptr, {}, {}};
      Spoil(document);
    }
    Element->FFlags |= dfOwnScope;
  }
  TDOMScope& scope = *Element->FScope;
  scope.Clear();
  scope.Up = Up;
  scope.Document = Up ? Up->Document : nullptr;
  for (TZmDOMNode* node = First(Element); node; node = node->FNext)
    if (Has(node, dfDeclaration)) scope.Own.push_back(static_cast<TZmDOMAttribute*>(node));
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
  CutLink(Element);
  if (Has(Element, dfOwnScope)) {
    if (TZmDOMAttribute* const own = FindOwn(*Element->FScope, prefix, Element->GetCollation())) {
      Element->FNamespace = own;
      Element->FFlags |= dfNamespaceSet | dfNamespaceOwn;
      return;
    }
  }
  const TZmDOMElement* const parent = AsElement(above);
  if (!parent || !SamePrefix(Element, parent)) {
    Element->FNamespace = FindPrefix(Element->FScope, prefix);
  } else if (heldNone && prefix.empty() && parent->FNamespace) {
    Element->SetNamespaceURI(StringView());
  } else {
    Element->FNamespace = parent->FNamespace;
  }
}

void TDOMTree::RefreshBelow(TZmDOMNode* Top) {
  for (TZmDOMNode* node = Following(Top, Top); node;) {
    const bool element = node->GetNodeType() == ntElement;
    if (IsDerived(node)) {
      node->RefreshNamespaces();
      node = Following(node, Top, false);
      continue;
    }
    if (element) RefreshElement(static_cast<TZmDOMElement*>(node));
    node = Following(node, Top);
  }
}

void TDOMTree::DeclarationsChanged(TZmDOMNode* Node) {
  TZmDOMElement* const element = AsElement(Node);
  if (!element) return;
  bool declares = false;
  for (const TZmDOMNode* node = First(element); node && !declares; node = node->FNext)
    declares = Has(node, dfDeclaration);
  element->SetFlag(dfDeclares, declares);
  if (element->IsDestroying()) return;
  if (element->FScope) return element->RefreshNamespaces();
  for (TZmDOMNode* node = element; node; node = Following(node, element))  // without a document nothing is sought anew
    if (TZmDOMElement* const e = AsElement(node); e && e->FNamespace)
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

// Links to declarations outside are cut where there is no document: it may go before the nodes do.
void TDOMTree::EnterDocument(TZmDOMNode* Top, TZmDOMDocument* Document) {
  for (TZmDOMNode* node = Top; node; node = Following(node, Top)) {
    if (node->GetNodeType() != ntElement) continue;
    auto* const element = static_cast<TZmDOMElement*>(node);
    DropScope(element);
    ForgetNamespaces(element);
    if (Document) element->FScope = Document->FScope.get();
    if (Has(element, dfDeclares))
      for (TZmDOMNode* child = First(element); child; child = child->FNext)
        if (Has(child, dfDeclaration)) child->FFlags |= dfMarked;
    if (element->FNamespace && !Has(element->FNamespace, dfMarked)) CutLink(element);
  }
  for (TZmDOMNode* node = Top; node; node = Following(node, Top)) node->FFlags &= ~dfMarked;
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
  EnterDocument(Top, nullptr);
}

}  // namespace zm::detail
