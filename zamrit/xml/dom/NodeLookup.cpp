#include <algorithm>

#include "zamrit/common/ZmTypes.h"
#include "zamrit/platform/ASCIIDetail.h"
#include "zamrit/xml/dom/LookupDetail.h"

namespace zm {

using detail::SplitName;
using detail::TDOMTree;
using detail::TLookupRules;
using detail::TNameTest;
using TKind = TDOMTree::TKind;

namespace detail {

TLookupRules TLookupRules::Of(const TZmDOMObject& Object, TZmDOMSelectOptions Options) {
  const bool sensitive = Options.Has(soCaseSensitive), insensitive = Options.Has(soCaseInsensitive);
  if (sensitive && insensitive)
    throw Exception(u"It is not possible to specify both soCaseSensitive and soCaseInsensitive!");
  TLookupRules rules{};
  rules.Collation = sensitive     ? TZmXPathCollationCodepoint
                    : insensitive ? TZmXPathCollationASCIICI
                                  : Object.GetCollation();
  rules.LocalNames =
      Options.Has(soLocalName) || (!Options.Has(soQualifiedName) && Object.GetSelectMatchOption() == soLocalName);
  return rules;
}

TTextTest::TTextTest(StringView Text, TZmXPathCollationClass Collation)
    : FText(Text),
      FCollation(Collation),
      FIsASCII(Collation->IsBuiltIn() && IsASCII(Text)),
      FIsFolded(FIsASCII && Collation == TZmXPathCollationASCIICI) {
  if (FIsFolded) std::transform(FText.begin(), FText.end(), FText.begin(), LowerASCII<char16_t>);
}

bool TTextTest::MatchesFolded(StringView Text) const {
  return std::equal(Text.begin(), Text.end(), FText.begin(), [](char16_t a, char16_t b) { return LowerASCII(a) == b; });
}

TNameTest TNameTest::OfName(StringView Name, const TLookupRules& Rules) {
  TNameTest test;
  (Rules.LocalNames ? test.FLocalName : test.FQName).emplace(Name, Rules.Collation);
  return test;
}

TNameTest::TNameTest(StringView Prefix, StringView LocalName, TZmXPathCollationClass Collation) {
  if (Prefix != u"*") FPrefix.emplace(Prefix, Collation);
  if (LocalName != u"*") FLocalName.emplace(LocalName, Collation);
}

bool TNameTest::Compare(const TZmDOMNode* Node, const TDOMName& Name) {
  const auto same = [&](const std::optional<TTextTest>& test, StringView part) {
    return !test || test->Matches(part, Name.IsASCII);
  };
  const bool matches = same(FLocalName, Name.LocalName) && same(FPrefix, Name.Prefix) && same(FQName, Name.QName);
  // A name of the node's own may go, and another one come to its place.
  if (!TDOMTree::Has(Node, dfOwnName)) {
    const auto key = reinterpret_cast<std::uintptr_t>(&Name);
    FSeen[Slot(key)] = key | (matches ? 1 : 0);
    if (matches) FMatching = &Name;
  }
  return matches;
}

}  // namespace detail

namespace {

/// Where a name is sought: in a list, or among the children of a kind, for which no list need be made.
class TPlace {
 public:
  explicit TPlace(const TZmDOMNodeListBase& List) : FList(&List) {}
  TPlace(const TZmDOMNode& Parent, TKind Kind) : FParent(&Parent), FKind(Kind) {}

  TZmDOMNode* Find(StringView Name, const TLookupRules& Rules) const {
    TNameTest test = TNameTest::OfName(Name, Rules);
    return FindLast([&](const TZmDOMNode* node) { return test.Matches(node); });
  }

  TZmDOMNode* Find(StringView NamespaceURI, StringView LocalName, TZmXPathCollationClass Collation) const {
    TNameTest test = TNameTest::OfName(LocalName, {Collation, true});
    return FindLast([&](const TZmDOMNode* node) {
      return test.Matches(node) && (NamespaceURI.empty() || Collation->SameText(node->GetNamespaceURI(), NamespaceURI));
    });
  }

 private:
  template <class F>
  TZmDOMNode* FindLast(F Matches) const {
    if (FList) {
      for (int i = FList->Count(); i-- > 0;)
        if (TZmDOMNode* const node = FList->GetItem(i); Matches(node)) return node;
      return nullptr;
    }
    TZmDOMNode* node = TDOMTree::LastOfKind(FParent, FKind);
    while (node && !Matches(node)) node = TDOMTree::PreviousOfKind(node, FKind);
    return node;
  }

  const TZmDOMNodeListBase* FList = nullptr;
  const TZmDOMNode* FParent = nullptr;
  TKind FKind = TKind::All;
};

TZmDOMNode* Find(const TPlace& Place, const TZmDOMObject& By, const TZmAnyText& Name, TZmDOMSelectOptions Options) {
  const TLookupRules rules = TLookupRules::Of(By, Options);
  if (Options.Has(soCreate)) throw Exception(u"It is not possible to specify soCreate!");
  const String name = Name.Text();
  TZmDOMNode* const found = Place.Find(name, rules);
  if (!found && Options.Has(soRaise)) throw EZmDomNotFound(u"There is no node for the given name \"%s\".", {name});
  return found;
}

TZmDOMNode* NodeByName(const TPlace& Place, const TZmDOMObject& By, TZmDOMElement& Element, const TZmAnyText& Name,
                       TZmDOMSelectOptions Options, const TZmDOMNodeClass& NodeClass) {
  const bool create = Options.Has(soCreate);
  if (TZmDOMNode* const found = Find(Place, By, Name, Options.Exclude(soCreate)); found || !create) return found;
  if (!NodeClass.Class) throw Exception(u"A NodeClass is required when soCreate is specified!");
  TZmDOMNode* const node = Element.AddChild(NodeClass, nullptr, rdpAfter);
  node->SetQualifiedName(Name);
  return node;
}

// The message and the new element go by the element's own name.
TZmDOMNode* NodeByName(const TPlace& Place, const TZmDOMObject& By, TZmDOMElement& Element,
                       const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName,
                       TZmDOMSelectCheckOption CheckOption) {
  const String uri = NamespaceURI.Text(), local = LocalName.Text();
  if (TZmDOMNode* const found = Place.Find(uri, local, By.GetCollation())) return found;
  if (CheckOption == coRaise)
    throw EZmDomNotFound(u"There is no child with the localname \"%s\" and namespace \"%s\"!",
                         {Element.GetLocalName(), uri});
  if (CheckOption == coReturnNil) return nullptr;
  const TZmDOMAttribute* const declaration = Element.FindNamespace(uri);
  if (!declaration) {
    Element.AddElement(uri, local);
    return nullptr;
  }
  const StringView prefix = declaration->GetPrefix().empty() ? StringView() : declaration->GetLocalName();
  String name(prefix);
  if (!prefix.empty()) name += u':';
  return Element.AddElement(name += Element.GetLocalName());
}

// Declares the namespace of a new attribute of an element, or of a new element itself.
void Declare(TZmDOMElement& In, TZmDOMNode* For, StringView URI) {
  if (In.FindNamespace(URI)) return;
  const StringView prefix = For->GetPrefix();
  TZmOwner<TZmDOMAttribute> declaration = Create<TZmDOMAttribute>();
  declaration->SetQualifiedName(prefix.empty() ? String(u"xmlns") : u"xmlns:" + String(prefix));
  declaration->SetNodeValue(URI);
  const bool attribute = For->GetNodeType() == ntAttribute;
  In.AddChild(declaration.get(), attribute ? For : nullptr, attribute ? rdpBefore : rdpAfter);
  if (!attribute) TDOMTree::Namespace(&In) = declaration.get();
  declaration.reset();
}

TZmDOMNode* NodeByName(const TPlace& Place, const TZmDOMObject& By, TZmDOMElement& Element,
                       const TZmAnyText& NamespaceURI, const TZmAnyText& QualifiedName, bool Create,
                       const TZmDOMNodeClass& NodeClass) {
  const String uri = NamespaceURI.Text(), name = QualifiedName.Text();
  const auto [prefix, local] = SplitName(name);
  if (TZmDOMNode* const found = Place.Find(uri, local, By.GetCollation())) return found;
  if (!Create || !NodeClass.Class)
    throw EZmDomNotFound(u"There is no child with the localname \"%s\" and namespace \"%s\"!", {local, uri});
  TZmOwner<TZmDOMNode> made = NodeClass.Create();
  TZmDOMNode* const node = made.get();
  TDOMTree::SetName(node, prefix, local);
  Element.AddChild(node, nullptr, rdpAfter);
  made.reset();
  if (node->GetNodeType() == ntAttribute)
    Declare(Element, node, uri);
  else if (node->GetNodeType() == ntElement)
    Declare(static_cast<TZmDOMElement&>(*node), node, uri);
  return node;
}

TPlace ElementsOf(const TZmDOMElement& Element) { return {Element, TKind::Elements}; }
TPlace AttributesOf(const TZmDOMElement& Element) { return {Element, TKind::Attributes}; }
TZmDOMElement* AsElement(TZmDOMNode* Node) { return static_cast<TZmDOMElement*>(Node); }
TZmDOMAttribute* AsAttribute(TZmDOMNode* Node) { return static_cast<TZmDOMAttribute*>(Node); }

const TZmDOMNodeClass& ElementClass() {
  static const TZmDOMNodeClass is = TZmDOMNodeClass::Of<TZmDOMElement>();
  return is;
}
const TZmDOMNodeClass& AttributeClass() {
  static const TZmDOMNodeClass is = TZmDOMNodeClass::Of<TZmDOMAttribute>();
  return is;
}

}  // namespace

TZmDOMNode* TZmDOMNodeListBase::Find(const TZmAnyText& Name, TZmDOMSelectOptions Options) const {
  return zm::Find(TPlace(*this), *this, Name, Options);
}
TZmDOMNode* TZmDOMNodeListBase::Find(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName) const {
  return TPlace(*this).Find(NamespaceURI.Text(), LocalName.Text(), GetCollation());
}

TZmDOMElement* TZmDOMElement::FindElement(const TZmAnyText& Name, TZmDOMSelectOptions Options) {
  return AsElement(zm::Find(ElementsOf(*this), *this, Name, Options));
}
TZmDOMElement* TZmDOMElement::FindElement(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName) {
  return AsElement(ElementsOf(*this).Find(NamespaceURI.Text(), LocalName.Text(), GetCollation()));
}
TZmDOMAttribute* TZmDOMElement::FindAttribute(const TZmAnyText& Name, TZmDOMSelectOptions Options) {
  return AsAttribute(zm::Find(AttributesOf(*this), *this, Name, Options));
}
TZmDOMAttribute* TZmDOMElement::FindAttribute(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName) {
  return AsAttribute(AttributesOf(*this).Find(NamespaceURI.Text(), LocalName.Text(), GetCollation()));
}

TZmDOMNode* TZmDOMElement::NodeByName(TZmDOMNodeListBase& List, const TZmAnyText& Name, TZmDOMSelectOptions Options,
                                      const TZmDOMNodeClass& NodeClass) {
  return zm::NodeByName(TPlace(List), List, *this, Name, Options, NodeClass);
}
TZmDOMNode* TZmDOMElement::NodeByName(TZmDOMNodeListBase& List, const TZmAnyText& NamespaceURI,
                                      const TZmAnyText& LocalName, TZmDOMSelectCheckOption CheckOption) {
  return zm::NodeByName(TPlace(List), List, *this, NamespaceURI, LocalName, CheckOption);
}
TZmDOMNode* TZmDOMElement::NodeByName(TZmDOMNodeListBase& List, const TZmAnyText& NamespaceURI,
                                      const TZmAnyText& QualifiedName, bool Create, const TZmDOMNodeClass& NodeClass) {
  return zm::NodeByName(TPlace(List), List, *this, NamespaceURI, QualifiedName, Create, NodeClass);
}

TZmDOMElement* TZmDOMElement::ElementByName(const TZmAnyText& Name, TZmDOMSelectOptions Options) {
  return AsElement(zm::NodeByName(ElementsOf(*this), *this, *this, Name, Options, ElementClass()));
}
TZmDOMElement* TZmDOMElement::ElementByName(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName,
                                            TZmDOMSelectCheckOption CheckOption) {
  return AsElement(zm::NodeByName(ElementsOf(*this), *this, *this, NamespaceURI, LocalName, CheckOption));
}
TZmDOMElement* TZmDOMElement::ElementByName(const TZmAnyText& NamespaceURI, const TZmAnyText& QualifiedName,
                                            bool Create) {
  return AsElement(
      zm::NodeByName(ElementsOf(*this), *this, *this, NamespaceURI, QualifiedName, Create, ElementClass()));
}
TZmDOMAttribute* TZmDOMElement::AttributeByName(const TZmAnyText& Name, TZmDOMSelectOptions Options) {
  return AsAttribute(zm::NodeByName(AttributesOf(*this), *this, *this, Name, Options, AttributeClass()));
}
TZmDOMAttribute* TZmDOMElement::AttributeByName(const TZmAnyText& NamespaceURI, const TZmAnyText& QualifiedName,
                                                bool Create) {
  return AsAttribute(
      zm::NodeByName(AttributesOf(*this), *this, *this, NamespaceURI, QualifiedName, Create, AttributeClass()));
}

TZmDOMElement* TZmDOMElementList::GetItemEx(const Variant& Index, TZmDOMSelectCheckOption CheckOption) {
  if (TZmTypes::VarMainTypeKind(Index) == mtkInteger) return GetItem(VarToInteger(Index));
  if (!VarIsStr(Index)) throw EListError(u"Invalid idx value");
  const String name = VarToStr(Index);
  auto* const owner = static_cast<TZmDOMElement*>(GetParent());
  if (name == u".") return owner;
  TZmDOMSelectOptions options{GetCaseSensitive() ? soCaseSensitive : soCaseInsensitive,
                              name.find(u':') != String::npos ? soQualifiedName : soLocalName};
  if (CheckOption == coCreate) options.Include(soCreate);
  if (CheckOption == coRaise) options.Include(soRaise);
  TZmDOMElement* found = nullptr;
  if (CheckOption != coCreate && name.find(u'/') == String::npos) {
    TZmDOMNode* const node = Find(name, options);
    if (node && node->GetNodeType() != ntElement) throw EInvalidCast(u"Invalid class typecast");
    found = AsElement(node);
  } else if (owner) {
    found = owner->SelectSingleElement(name, options);
  }
  if (!found && CheckOption == coRaise) throw EListError(u"There is no childelement with the name %s!", {name});
  return found;
}

TZmDOMElement* TZmDOMElementList::GetItemEx(const Variant& Index) {
  const TZmDOMDocument* const document = GetDOMDocument();
  return GetItemEx(Index, document ? document->GetSelectCheckOption() : DefaultSelectCheckOption);
}

}  // namespace zm
