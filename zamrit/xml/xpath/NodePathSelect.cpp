#include "zamrit/xml/xpath/NodePathDetail.h"

namespace zm {

using detail::TDOMTree;
using detail::TLookupRules;
using detail::TNameTest;
using TKind = TDOMTree::TKind;

void TZmDOMNode::_SelectNodes(TZmDOMNodeListBase& List, const TZmAnyText& Path, bool FirstOnly, bool LocalNames,
                              bool Create, TZmXPathCollationClass Collation) {
  const detail::TWalkRules rules{{Collation, LocalNames}, Create, FirstOnly};
  std::vector<TZmDOMNode*>& items = TDOMTree::Items(List);
  const std::size_t from = items.size();
  const auto note = [&] {  // a list of children is to know which of them it holds
    const std::vector<TZmDOMNode*> found(items.begin() + static_cast<std::ptrdiff_t>(from), items.end());
    items.resize(from);
    for (TZmDOMNode* const node : found) List.Add(node, rdpLast);
  };
  try {
    detail::TPathSelection(Path.Text(), rules).Run(this, items);
  } catch (...) {
    note();
    throw;
  }
  note();
}

namespace {

template <class T>
TZmOwner<T> Selected(TZmDOMNode& From, const TZmAnyText& Path, TZmDOMSelectOptions Options, bool One,
                     StringView NotFound) {
  detail::TWalkRules rules{TLookupRules::Of(From, Options), Options.Has(soCreate), One, One};
  if (rules.Create && Options.Has(soRaise))
    throw Exception(u"It is not possible to specify both soRaise and soCreate!");
  TZmOwner<T> list = Create<T>();
  detail::TPathSelection(Path.Text(), rules).Run(&From, TDOMTree::Items(*list));
  if (list->Count() == 0 && Options.Has(soRaise)) throw EZmDomNotFound(NotFound, {Path.Text()});
  if (list->Count() == 0 && rules.Create)
    throw EZmDomNotFound(u"The given path \"%s\" was too complex to use the soCreate option!", {Path.Text()});
  if (!One) TDOMTree::Watch(*list);
  return list;
}

TZmDOMElement* AsElement(TZmDOMNode* Node) {
  if (Node && !detail::IsElement(Node)) throw EInvalidCast(u"Invalid class typecast");
  return static_cast<TZmDOMElement*>(Node);
}

}  // namespace

TZmDOMNode* TZmDOMNode::SelectSingleNode(const TZmAnyText& Path, TZmDOMSelectOptions Options) {
  const auto list =
      Selected<TZmDOMNodeList>(*this, Path, Options, true, u"There is no node for the given path \"%s\"!");
  return list->Count() > 0 ? list->GetItem(0) : nullptr;
}

TZmOwner<TZmDOMNodeList> TZmDOMNode::CreateNodeList(const TZmAnyText& Path, TZmDOMSelectOptions Options) {
  return Selected<TZmDOMNodeList>(*this, Path, Options, false, u"There are no nodes for the given path \"%s!.");
}

TZmDOMElement* TZmDOMElement::SelectSingleElement(const TZmAnyText& Path, TZmDOMSelectOptions Options) {
  return AsElement(SelectSingleNode(Path, Options));
}

TZmOwner<TZmDOMElementList> TZmDOMElement::CreateElementList(const TZmAnyText& Path, TZmDOMSelectOptions Options) {
  return Selected<TZmDOMElementList>(*this, Path, Options, false, u"There are no nodes for the given path \"%s\"!");
}

namespace {

void RequireRoot(const TZmDOMDocument& Document, const TZmAnyText& Path, TZmDOMSelectOptions Options) {
  if (Document.GetRootNode()) return;
  if (Options.Has(soRaise)) throw EZmDomNotFound(u"There is no node for the given path \"%s\".", {Path.Text()});
  if (Options.Has(soCreate))
    throw EZmDomNotFound(u"It is not possible to use XPath statements on documents without rootnode!");
}

}  // namespace

TZmDOMElement* TZmDOMDocument::SelectSingleElement(const TZmAnyText& Path, TZmDOMSelectOptions Options) {
  if (Path.Text().empty()) throw EZmDomNotFound(u"The specified nodePath is empty!");
  RequireRoot(*this, Path, Options);
  return FRootNode ? FRootNode->SelectSingleElement(Path, Options) : nullptr;
}

TZmOwner<TZmDOMElementList> TZmDOMDocument::CreateElementList(const TZmAnyText& Path, TZmDOMSelectOptions Options) {
  RequireRoot(*this, Path, Options);
  return FRootNode ? FRootNode->CreateElementList(Path, Options) : Create<TZmDOMElementList>();
}

// Gatherers.

namespace {

/// Gives the children of a node, and with Recurse all below it, by the lists of a kind; nodes of other kinds may be
/// among them.
template <class F>
void EachBelow(TZmDOMNode* Top, bool Recurse, TKind Kind, F Use) {
  if (!Recurse)
    return detail::EachChild(Top, Kind, [&](TZmDOMNode* node) {
      Use(node);
      return false;
    });
  detail::TDescent descent;
  descent.Start(Top, Kind);
  for (descent.Next(true); descent.Node(); descent.Next(true)) Use(descent.Node());
}

}  // namespace

void TZmDOMNode::_SelectAllChildNodes(TZmDOMObjectList& List, bool Recurse, TZmXPathCollationClass) {
  EachBelow(this, Recurse, TKind::All, [&](TZmDOMNode* node) { List.push_back(node); });
}

void TZmDOMNode::_SelectAllChildTextNodes(TZmDOMObjectList& List, bool Recurse, TZmXPathCollationClass) {
  EachBelow(this, Recurse, TKind::All, [&](TZmDOMNode* node) {
    if (detail::IsText(node)) List.push_back(node);
  });
}

void TZmDOMNode::_SelectAllChildAttributes(TZmDOMObjectList& List, bool Recurse, StringView, StringView LocalName,
                                           StringView Prefix, TZmXPathCollationClass Collation, bool LocalNames) {
  TNameTest names(Prefix, LocalName, Collation);
  const auto take = [&](TZmDOMNode* of) {
    detail::EachAttribute(of, names, LocalNames, [&](TZmDOMNode* node) {
      List.push_back(node);
      return false;
    });
  };
  take(this);
  TZmDOMNode* const top = detail::IsDocument(this) ? detail::RootOf(this) : this;
  if (Recurse && top) EachBelow(top, true, TKind::Elements, take);
}

void TZmDOMNode::_SelectAllChildNodesExceptAttr(TZmDOMObjectList& List, bool Recurse, StringView, StringView LocalName,
                                                StringView Prefix, TZmXPathCollationClass Collation) {
  TNameTest names(Prefix, LocalName, Collation);
  EachBelow(this, Recurse, TKind::All, [&](TZmDOMNode* node) {
    if (!detail::IsAttribute(node) && names.Matches(node)) List.push_back(node);
  });
}

void TZmDOMNode::_SelectAllChildElements(TZmDOMObjectList& List, bool Recurse, StringView, StringView LocalName,
                                         StringView Prefix, TZmXPathCollationClass Collation) {
  TNameTest names(Prefix, LocalName, Collation);
  const auto take = [&](TZmDOMNode* node) {
    if (detail::IsElement(node) && names.Matches(node)) List.push_back(node);
  };
  if (!detail::IsDocument(this)) return EachBelow(this, Recurse, TKind::Elements, take);
  TZmDOMElement* const root = detail::RootOf(this);
  if (!root) return;
  take(root);
  if (Recurse) EachBelow(root, true, TKind::Elements, take);
}

namespace {

template <class F>
void EachElementFrom(TZmDOMElement& Top, bool Recurse, F Use) {
  detail::TDescent descent;
  for (descent.Start(&Top, TKind::Elements); descent.Node(); descent.Next(Recurse)) Use(descent.Node());
}

}  // namespace

void TZmDOMElement::_GetChildElements(TZmDOMNodeListBase& List, const TZmAnyText& Prefix, const TZmAnyText& LocalName,
                                      bool Recurse, TZmDOMSelectOptions Options) {
  const TLookupRules rules = TLookupRules::Of(*this, Options);
  if (Options.Has(soRaise) || Options.Has(soCreate))
    throw Exception(u"It is not possible to specify either soRaise or soCreate!");
  TNameTest names(rules.LocalNames ? String(u"*") : Prefix.Text(), LocalName.Text(), rules.Collation);
  EachElementFrom(*this, Recurse, [&](TZmDOMNode* node) {
    if (names.Matches(node)) List.Add(node, rdpLast);
  });
}

void TZmDOMElement::_GetChildElements(TZmDOMNodeListBase& List, const TZmAnyText& NamespaceURI,
                                      const TZmAnyText& LocalName, bool Recurse) {
  const TZmXPathCollationClass collation = GetCollation();
  const String uri = NamespaceURI.Text(), local = LocalName.Text();
  EachElementFrom(*this, Recurse, [&](TZmDOMNode* node) {
    if (collation->SameText(node->GetLocalName(), local) && collation->SameText(node->GetNamespaceURI(), uri))
      List.Add(node, rdpLast);
  });
}

}  // namespace zm
