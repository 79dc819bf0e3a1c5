#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "zamrit/platform/AnyText.h"
#include "zamrit/platform/Streams.h"
#include "zamrit/xml/dom/DOMObject.h"

namespace zm {

class TZmDOMElement;
class TZmDOMAttribute;
class TZmDOMNodeListBase;
class TZmDOMNodeList;
class TZmDOMElementList;

namespace detail {

struct TDOMName;
class TDOMHome;

/// The name of what has none.
extern const TDOMName cNoDOMName;

/// Goes over siblings of one kind; the current one may be removed meanwhile.
template <class T>
class TDOMIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = T*;
  using difference_type = std::ptrdiff_t;
  using pointer = T**;
  using reference = T*;

  TDOMIterator() = default;
  explicit TDOMIterator(T* First) : FNode(First), FNext(First ? Behind(First) : nullptr) {}
  T* operator*() const { return FNode; }
  TDOMIterator& operator++() {
    FNode = FNext;
    FNext = FNode ? Behind(FNode) : nullptr;
    return *this;
  }
  bool operator==(const TDOMIterator& Other) const { return FNode == Other.FNode; }

 private:
  static T* Behind(T* Node);

  T* FNode = nullptr;
  T* FNext = nullptr;
};

/// The children of one kind, for range-for.
template <class T>
class TDOMRange {
 public:
  explicit TDOMRange(T* First) : FFirst(First) {}
  TDOMIterator<T> begin() const { return TDOMIterator<T>(FFirst); }
  TDOMIterator<T> end() const { return {}; }

 private:
  T* FFirst;
};

}  // namespace detail

/// Makes nodes of a class: a class reference.
using TZmDOMNodeClass = TClassOf<TZmDOMNode>;

/// Any node of the XML tree. A node belongs to its parent, which frees it; a node without parent belongs to its owner
/// or to its handles. Pointers are valid as long as the node is in a tree that lives, or is held. Names, paths and
/// values are taken in UTF-16 and in UTF-8. Values stand in the tree in the escaped form in which they are written.
/// No operation recurses on the depth of the tree.
class TZmDOMNode : public TZmDOMObject {
  ZM_OBJECT(TZmDOMNode, TZmDOMObject)
 public:
  TZmDOMNodeType GetNodeType() const { return static_cast<TZmDOMNodeType>(FFlags & detail::dfTypeMask); }
  /// The parts of the name, empty for nodes that have none. Valid until the node is renamed or goes.
  StringView GetLocalName() const;
  StringView GetPrefix() const;
  /// The prefix, a colon and the local name, or the local name alone.
  StringView GetQualifiedName() const;
  void SetLocalName(const TZmAnyText& Name);
  TZmDOMNode* ParentNode() const { return static_cast<TZmDOMNode*>(FParent); }
  TZmDOMDocument* GetDOMDocument() const override;
  TZmDOMObjectImpl* GetDOMImpl() const override;

  /// All children in document order, attributes among them, as a list object that the node keeps.
  TZmDOMNodeList& ChildNodes();
  /// The same without a list object, for a range-for. Cheaper than the list.
  detail::TDOMRange<TZmDOMNode> Children() const { return detail::TDOMRange<TZmDOMNode>(FirstChild()); }
  TZmDOMNode* FirstChild() const;
  TZmDOMNode* LastChild() const;
  TZmDOMNode* NextSibling() const;
  TZmDOMNode* PreviousSibling() const;
  bool HasChildNodes() const { return FirstChild() != nullptr; }

  TZmDOMLoadState GetLoadState() const;
  void SetLoadState(TZmDOMLoadState State);
  const TZmDOMParseError& GetOnParseWarning() const;
  const TZmDOMParseError& GetOnParseError() const;
  const TZmDOMParseError& GetOnParseFatalError() const;
  void SetOnParseWarning(TZmDOMParseError Event);
  void SetOnParseError(TZmDOMParseError Event);
  void SetOnParseFatalError(TZmDOMParseError Event);

  virtual bool GetPreserveSpace() const;
  /// The decoded value; empty for a node that has none.
  virtual String GetNodeValue() const;
  /// All text in and below the node, decoded.
  virtual String GetText() const;
  virtual String GetNamespaceURI() const;
  /// What stands in the node as XML, on one line or indented. Empty here.
  virtual String GetInnerXML() const;
  virtual String GetFormattedInnerXML() const;
  /// EZmDomNotSupported here.
  virtual void SetNodeValue(const TZmAnyText& Value);
  virtual void SetPrefix(const TZmAnyText& Prefix);
  /// Splits at the first colon; without one there is no prefix.
  virtual void SetQualifiedName(const TZmAnyText& Name);
  /// EZmDomNotSupported here.
  virtual void SetInnerXML(const TZmAnyText& XML);
  /// Links the node and all below it anew to the declarations of their prefixes. Linear in what is below.
  virtual void RefreshNamespaces();
  /// Writes the node in a code page. Level counts indentation: the children of what is saved first stand at 0.
  virtual void _SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level);
  /// Writes the node as a JSON member. Nothing here.
  virtual void _SaveToJSONStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level);
  /// Joins neighbouring texts and removes empty ones, here and below.
  virtual void NormalizeTextNodes();
  /// A loose node of the same class, name and value, without children, attributes among them.
  virtual TZmOwner<TZmDOMNode> CreateClone() const = 0;
  /// Reads XML or JSON from where the stream stands; what it holds becomes children of this node. EZmDomSyntax "Line
  /// %d, column %d: %s" where it is refused; what came before stays.
  virtual void LoadFromStream(TStream* Stream, std::uint16_t CodePage);
  virtual void SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted);
  virtual void SaveToJSONStream(TStream* Stream, std::uint16_t CodePage, bool Formatted);
  /// Removes all children, from the last to the first.
  virtual void Clear();
  /// A loose copy of the node with its attributes; deep with all below it.
  virtual TZmOwner<TZmDOMNode> CloneNode(bool Deep) const;
  /// Makes a node of a class and adds it. Position is next to Ref or, where Ref is nil, at an end.
  virtual TZmDOMNode* AddChild(const TZmDOMNodeClass& NodeClass, TZmDOMNode* Ref, TZmDOMPosition Position);
  /// Adds a node, which leaves the parent that it has. The tree owns it from here on. An element that is moved declares
  /// its namespace anew where that is not in force, and so do those below it whose prefix is not declared there; their
  /// attributes do not. Linear in what is below. EZmDomHierarchyRequest for a node under itself or a document. Where
  /// memory runs out the node is loose: still the caller's, and if it came from another parent and nobody holds it,
  /// freed.
  virtual void AddChild(TZmDOMNode* Node, TZmDOMNode* Ref, TZmDOMPosition Position);
  /// Takes a child out, and frees it unless it is held.
  virtual void RemoveChild(TZmDOMNode* Node);
  virtual void AppendChild(TZmDOMNode* Node);
  /// The same for a node that somebody owns, and gives it to the tree.
  template <class T>
  T* AppendChild(TZmOwner<T> Node) {
    T* const node = Node.get();
    AppendChild(static_cast<TZmDOMNode*>(node));
    Node.reset();
    return node;
  }

  /// \name Paths. EZmDomSyntax for what is no path, EZmDomNotFound where nothing is found under soRaise and soCreate
  ///@{
  /// The first node of a path, or nil. Only the last step ends with its first hit: the steps in front select all that
  /// they lead to.
  TZmDOMNode* SelectSingleNode(const TZmAnyText& Path, TZmDOMSelectOptions Options = {});
  /// All nodes of a path, in a list that the caller owns. A node that is freed meanwhile must not be asked for.
  TZmOwner<TZmDOMNodeList> CreateNodeList(const TZmAnyText& Path, TZmDOMSelectOptions Options = {});
  /// Appends to a list what a path leads to; FirstOnly stops behind the first alternative that has led to something.
  void _SelectNodes(TZmDOMNodeListBase& List, const TZmAnyText& Path, bool FirstOnly, bool LocalNames, bool Create,
                    TZmXPathCollationClass Collation);
  ///@}
  /// \name Children by kind and name, appended to a list; with Recurse all below in document order. A prefix or local
  /// name of "*" is any; Step is not used. The attributes of a document are those of its root, its one element is the
  /// root
  ///@{
  void _SelectAllChildNodes(TZmDOMObjectList& List, bool Recurse, TZmXPathCollationClass Collation);
  /// Texts and CDATA sections.
  void _SelectAllChildTextNodes(TZmDOMObjectList& List, bool Recurse, TZmXPathCollationClass Collation);
  /// Attributes; declarations of namespaces only with LocalNames.
  void _SelectAllChildAttributes(TZmDOMObjectList& List, bool Recurse, StringView Step, StringView LocalName,
                                 StringView Prefix, TZmXPathCollationClass Collation, bool LocalNames);
  void _SelectAllChildNodesExceptAttr(TZmDOMObjectList& List, bool Recurse, StringView Step, StringView LocalName,
                                      StringView Prefix, TZmXPathCollationClass Collation);
  void _SelectAllChildElements(TZmDOMObjectList& List, bool Recurse, StringView Step, StringView LocalName,
                               StringView Prefix, TZmXPathCollationClass Collation);
  ///@}

  void SetDOMDocument(TZmDOMDocument* Document) override;
  void SetParentNode(TZmDOMObject* Parent) override;
  void SetDOMImpl(TZmDOMObjectImpl* Impl) override;
  bool CanAutoDestroy() const override;
  void BeforeDestruction() override;

 protected:
  friend class detail::TDOMTree;

  explicit TZmDOMNode(TZmDOMNodeType Type) : FText(nullptr) { FFlags = Type; }
  ~TZmDOMNode() override;

  /// Loads XML or JSON; with TagSize XML that stands between a start tag of so many characters and its end tag.
  /// Returns the code page.
  std::uint16_t Load(TStream* Stream, std::uint16_t CodePage, int TagSize);
  void DoDOMParseWarning(IZmSAXLocator* Locator, StringView Message, bool& Handled);
  void DoDOMParseError(IZmSAXLocator* Locator, StringView Message, bool& Handled);
  void DoDOMParseFatalError(IZmSAXLocator* Locator, StringView Message, bool& Handled);

 private:
  std::uint32_t FSize = 0;  // of the text, in bytes
  TZmDOMNode* FNext = nullptr;
  TZmDOMNode* FPrevious = nullptr;  // of the first child, the last one
  union {
    TZmDOMNode* FFirst;
    const char* FText;
    detail::TDOMExtra* FExtra;
  };
};

namespace detail {

/// What a node with a name has.
class TDOMNamedNode : public TZmDOMNode {
 protected:
  friend class TDOMTree;
  explicit TDOMNamedNode(TZmDOMNodeType Type) : TZmDOMNode(Type) {}
  ~TDOMNamedNode() override;

 private:
  const TDOMName* FName = &cNoDOMName;
};

}  // namespace detail

}  // namespace zm
