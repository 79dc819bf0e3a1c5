#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include "zamrit/platform/AnyText.h"
#include "zamrit/platform/DateTime.h"
#include "zamrit/platform/Interfaces.h"
#include "zamrit/platform/Streams.h"
#include "zamrit/platform/Strings.h"
#include "zamrit/platform/Variant.h"
#include "zamrit/platform/reflection/Value.h"
#include "zamrit/xml/dom/Collations.h"
#include "zamrit/xml/dom/DOMObject.h"
#include "zamrit/xml/dom/Types.h"

namespace zm {

class IZmDOMNode;
class IZmDOMNodeList;
class IZmDOMElementList;
class IZmDOMAttrList;
class IZmDOMText;
class IZmDOMCDATA;
class IZmDOMComment;
class IZmDOMAttribute;
class IZmDOMProcessingInstruction;
class IZmDOMElement;
class IZmDOMDocument;

/// A handle's way to any node. `Supports<IZmDOMNode>(node)` takes one. A handle keeps the node alive, and with it the
/// nodes above and their document; only Free on one of those cuts the node, or the branch that it is in, loose. What
/// each operation does, and what it refuses, stands at the class of the same name; a node that is handed in must not be
/// nil where its class asks for one. EZmDomInvalidState where the node has been freed all the same.
class IZmDOMNode : public virtual IZmDOMObject {
 public:
  virtual TZmDOMNodeType GetNodeType() = 0;
  virtual String GetLocalName() = 0;
  virtual String GetPrefix() = 0;
  virtual String GetQualifiedName() = 0;
  virtual void SetLocalName(const TZmAnyText& Name) = 0;
  virtual void SetPrefix(const TZmAnyText& Prefix) = 0;
  virtual void SetQualifiedName(const TZmAnyText& Name) = 0;
  virtual String GetNodeValue() = 0;
  virtual void SetNodeValue(const TZmAnyText& Value) = 0;
  virtual String GetText() = 0;
  virtual String GetNamespaceURI() = 0;
  virtual bool GetPreserveSpace() = 0;
  virtual bool GetCaseSensitive() = 0;
  virtual TZmXPathCollationClass GetCollation() = 0;
  virtual TZmDOMSelectMatchOption GetSelectMatchOption() = 0;
  virtual TZmDOMLoadState GetLoadState() = 0;
  virtual void SetLoadState(TZmDOMLoadState State) = 0;

  virtual TZmIntf<IZmDOMDocument> GetDOMDocument() = 0;
  virtual TZmIntf<IZmDOMNode> ParentNode() = 0;
  virtual TZmIntf<IZmDOMNodeList> ChildNodes() = 0;
  virtual bool HasChildNodes() = 0;
  virtual TZmIntf<IZmDOMNode> FirstChild() = 0;
  virtual TZmIntf<IZmDOMNode> LastChild() = 0;
  virtual TZmIntf<IZmDOMNode> NextSibling() = 0;
  virtual TZmIntf<IZmDOMNode> PreviousSibling() = 0;

  virtual void AddChild(const TZmIntf<IZmDOMNode>& Node, const TZmIntf<IZmDOMNode>& Ref, TZmDOMPosition Position) = 0;
  virtual void AppendChild(const TZmIntf<IZmDOMNode>& Node) = 0;
  virtual void RemoveChild(const TZmIntf<IZmDOMNode>& Node) = 0;
  virtual void Clear() = 0;
  virtual TZmIntf<IZmDOMNode> CloneNode(bool Deep) = 0;
  virtual void RefreshNamespaces() = 0;
  virtual void NormalizeTextNodes() = 0;

  virtual String GetInnerXML() = 0;
  virtual String GetFormattedInnerXML() = 0;
  virtual void SetInnerXML(const TZmAnyText& XML) = 0;
  virtual void LoadFromStream(TStream* Stream, std::uint16_t CodePage) = 0;
  virtual void SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted) = 0;
  virtual void SaveToJSONStream(TStream* Stream, std::uint16_t CodePage, bool Formatted) = 0;
  virtual void SetOnParseWarning(TZmDOMParseError Event) = 0;
  virtual void SetOnParseError(TZmDOMParseError Event) = 0;
  virtual void SetOnParseFatalError(TZmDOMParseError Event) = 0;

  virtual TZmIntf<IZmDOMNode> SelectSingleNode(const TZmAnyText& Path, TZmDOMSelectOptions Options = {}) = 0;
  virtual TZmIntf<IZmDOMNodeList> CreateNodeList(const TZmAnyText& Path, TZmDOMSelectOptions Options = {}) = 0;
  /// CreateNodeList without options.
  virtual TZmIntf<IZmDOMNodeList> selectNodes(const TZmAnyText& Path) = 0;
};

/// A list of nodes. One that a selection has found does not keep its nodes alive; the handles that it gives out do.
class IZmDOMNodeList : public virtual IZmDOMObject {
 public:
  virtual int Count() = 0;
  virtual TZmIntf<IZmDOMNode> GetItem(int Index) = 0;
  virtual bool ContainsNode(const TZmIntf<IZmDOMNode>& Node) = 0;
  virtual void Add(const TZmIntf<IZmDOMNode>& Node, TZmDOMAbsPosition Position) = 0;
  virtual void Add(const TZmIntf<IZmDOMNode>& Node, const TZmIntf<IZmDOMNode>& Ref, TZmDOMPosition Position) = 0;
  virtual void Add(const TZmIntf<IZmDOMNode>& Node, TZmDOMRelPosition Position, const TZmIntf<IZmDOMNode>& Ref) = 0;
  virtual TZmIntf<IZmDOMNode> Delete(const TZmIntf<IZmDOMNode>& Node) = 0;
  virtual TZmIntf<IZmDOMNode> Delete(const TZmAnyText& Name, TZmDOMSelectOptions Options) = 0;
  virtual TZmIntf<IZmDOMNode> Delete(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName) = 0;
  virtual void Clear() = 0;
  virtual TZmIntf<IZmDOMNode> First() = 0;
  virtual TZmIntf<IZmDOMNode> Last() = 0;
  virtual TZmIntf<IZmDOMNode> Next(const TZmIntf<IZmDOMNode>& Node) = 0;
  virtual TZmIntf<IZmDOMNode> Previous(const TZmIntf<IZmDOMNode>& Node) = 0;
  virtual TZmIntf<IZmDOMNode> Find(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName) = 0;
  virtual TZmIntf<IZmDOMNode> Find(const TZmAnyText& Name, TZmDOMSelectOptions Options) = 0;
};

class IZmDOMElementList : public virtual IZmDOMNodeList {
 public:
  /// GetItem as an element.
  virtual TZmIntf<IZmDOMElement> GetElement(int Index) = 0;
  virtual TZmIntf<IZmDOMElement> GetItemEx(const Variant& Index, TZmDOMSelectCheckOption CheckOption) = 0;
  virtual TZmIntf<IZmDOMElement> GetItemEx(const Variant& Index) = 0;
};

class IZmDOMAttrList : public virtual IZmDOMNodeList {
 public:
  /// GetItem as an attribute.
  virtual TZmIntf<IZmDOMAttribute> GetAttribute(int Index) = 0;
  virtual TZmIntf<IZmDOMAttribute> FindNamespace(const TZmAnyText& URI) = 0;
};

/// Goes over a list by index: where the current node is removed, the one behind it is passed over.
class TZmDOMNodeListIterator {
 public:
  TZmDOMNodeListIterator(IZmDOMNodeList& List, int Index) : FList(List), FIndex(Index) {}
  TZmIntf<IZmDOMNode> operator*() const { return FList.GetItem(FIndex); }
  TZmDOMNodeListIterator& operator++() {
    ++FIndex;
    return *this;
  }
  bool operator!=(const TZmDOMNodeListIterator&) const { return FIndex < FList.Count(); }

 private:
  IZmDOMNodeList& FList;
  int FIndex;
};

/// \name For range-for over the handle of a list: `for (const auto& node : element->ChildNodes())`
///@{
template <class I, class = std::enable_if_t<std::is_base_of_v<IZmDOMNodeList, I>>>
TZmDOMNodeListIterator begin(const TZmIntf<I>& List) {
  return {*List, 0};
}
template <class I, class = std::enable_if_t<std::is_base_of_v<IZmDOMNodeList, I>>>
TZmDOMNodeListIterator end(const TZmIntf<I>& List) {
  return {*List, 0};
}
///@}

class IZmDOMCharacterData : public virtual IZmDOMNode {};
class IZmDOMText : public virtual IZmDOMCharacterData {};
class IZmDOMCDATA : public virtual IZmDOMText {};
class IZmDOMComment : public virtual IZmDOMCharacterData {};

class IZmDOMAttribute : public virtual IZmDOMNode {
 public:
  virtual bool IsNamespace() = 0;
  virtual TZmIntf<IZmDOMAttribute> GetNamespace() = 0;
  virtual TZmIntf<IZmDOMElement> OwnerElement() = 0;
  virtual TZmIntf<IZmDOMAttribute> NextAttribute() = 0;
};

class IZmDOMProcessingInstruction : public virtual IZmDOMNode {
 public:
  virtual String GetData() = 0;
  virtual void SetData(const TZmAnyText& Data) = 0;
};

class IZmDOMElement : public virtual IZmDOMNode {
 public:
  virtual TZmIntf<IZmDOMAttrList> Attributes() = 0;
  virtual TZmIntf<IZmDOMElementList> Elements() = 0;
  virtual TZmIntf<IZmDOMNodeList> CharNodes() = 0;
  virtual TZmIntf<IZmDOMAttrList> Namespaces() = 0;
  virtual int ElementCount() = 0;
  virtual int AttributeCount() = 0;
  virtual bool HasAttributes() = 0;
  virtual bool HasChildElements() = 0;
  virtual bool HasAttribute(const TZmAnyText& Name, TZmDOMSelectOptions Options = {}) = 0;
  virtual bool HasChildElement(const TZmAnyText& Name, TZmDOMSelectOptions Options = {}) = 0;
  virtual TZmIntf<IZmDOMElement> FirstElement() = 0;
  virtual TZmIntf<IZmDOMElement> LastElement() = 0;
  virtual TZmIntf<IZmDOMElement> NextElement() = 0;
  virtual TZmIntf<IZmDOMElement> PreviousElement() = 0;
  virtual TZmIntf<IZmDOMElement> ParentElement() = 0;
  virtual TZmIntf<IZmDOMAttribute> FirstAttribute() = 0;
  virtual TZmIntf<IZmDOMAttribute> LastAttribute() = 0;
  virtual TZmIntf<IZmDOMAttribute> GetNamespace() = 0;
  virtual TZmIntf<IZmDOMAttribute> FindNamespace(const TZmAnyText& URI) = 0;
  virtual TZmIntf<IZmDOMElement> FindElement(const TZmAnyText& Name, TZmDOMSelectOptions Options = {}) = 0;
  virtual TZmIntf<IZmDOMElement> FindElement(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName) = 0;
  virtual TZmIntf<IZmDOMAttribute> FindAttribute(const TZmAnyText& Name, TZmDOMSelectOptions Options = {}) = 0;
  virtual TZmIntf<IZmDOMAttribute> FindAttribute(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName) = 0;
  virtual TZmIntf<IZmDOMElement> ElementByName(const TZmAnyText& Name, TZmDOMSelectOptions Options) = 0;
  virtual TZmIntf<IZmDOMElement> ElementByName(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName,
                                               TZmDOMSelectCheckOption CheckOption) = 0;
  virtual TZmIntf<IZmDOMElement> ElementByName(const TZmAnyText& NamespaceURI, const TZmAnyText& QualifiedName,
                                               bool Create) = 0;
  virtual TZmIntf<IZmDOMAttribute> AttributeByName(const TZmAnyText& Name, TZmDOMSelectOptions Options) = 0;
  virtual TZmIntf<IZmDOMAttribute> AttributeByName(const TZmAnyText& NamespaceURI, const TZmAnyText& QualifiedName,
                                                   bool Create) = 0;

  virtual TZmIntf<IZmDOMText> AddText(const TZmAnyText& Text) = 0;
  virtual TZmIntf<IZmDOMCDATA> AddCDATA(const TZmAnyText& Text) = 0;
  virtual TZmIntf<IZmDOMComment> AddComment(const TZmAnyText& Text) = 0;
  virtual TZmIntf<IZmDOMElement> AddElement(const TZmAnyText& Name) = 0;
  virtual TZmIntf<IZmDOMElement> AddElement(const TZmAnyText& NamespaceURI, const TZmAnyText& Name) = 0;
  virtual TZmIntf<IZmDOMAttribute> AddAttribute(const TZmAnyText& Name) = 0;
  virtual TZmIntf<IZmDOMAttribute> AddAttribute(const TZmAnyText& NamespaceURI, const TZmAnyText& Name) = 0;
  virtual TZmIntf<IZmDOMText> InsertText(const TZmAnyText& Text, TZmDOMPosition Position,
                                         const TZmIntf<IZmDOMNode>& Ref = {}) = 0;
  virtual TZmIntf<IZmDOMCDATA> InsertCDATA(const TZmAnyText& Text, TZmDOMPosition Position,
                                           const TZmIntf<IZmDOMNode>& Ref = {}) = 0;
  virtual TZmIntf<IZmDOMComment> InsertComment(const TZmAnyText& Text, TZmDOMPosition Position,
                                               const TZmIntf<IZmDOMNode>& Ref = {}) = 0;
  virtual TZmIntf<IZmDOMElement> InsertElement(const TZmAnyText& Name, TZmDOMPosition Position,
                                               const TZmIntf<IZmDOMNode>& Ref = {}) = 0;
  virtual void RemoveElement(const TZmIntf<IZmDOMElement>& Element) = 0;
  virtual void RemoveElement(const TZmAnyText& Name) = 0;
  virtual void RemoveAttribute(const TZmIntf<IZmDOMAttribute>& Attribute) = 0;
  virtual void RemoveAttribute(const TZmAnyText& Name) = 0;

  virtual String GetAttribute(const TZmAnyText& Name) = 0;
  virtual String GetAttributeNS(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName) = 0;
  virtual void SetAttribute(const TZmAnyText& Name, const TZmAnyText& Value) = 0;
  virtual void SetAttributeNS(const TZmAnyText& NamespaceURI, const TZmAnyText& QualifiedName,
                              const TZmAnyText& Value) = 0;
  virtual int GetCDATACount() = 0;
  virtual String GetCDATA(int Index) = 0;
  virtual String GetChildElementValue(const Variant& Index) = 0;

  virtual bool GetAsBoolean() = 0;
  virtual TDateTime GetAsDateTime() = 0;
  virtual double GetAsDouble() = 0;
  virtual std::int64_t GetAsInt64() = 0;
  virtual std::int32_t GetAsInteger() = 0;
  virtual String GetAsString() = 0;
  virtual std::string GetAsAnsiString() = 0;
  virtual Variant GetAsVariant() = 0;
  virtual TValue GetAsValue() = 0;
  virtual void SetAsBoolean(bool Value) = 0;
  virtual void SetAsDateTime(TDateTime Value) = 0;
  virtual void SetAsDouble(double Value) = 0;
  virtual void SetAsInt64(std::int64_t Value) = 0;
  virtual void SetAsInteger(std::int32_t Value) = 0;
  virtual void SetAsString(const TZmAnyText& Value) = 0;
  virtual void SetAsAnsiString(std::string_view Value) = 0;
  virtual void SetAsVariant(const Variant& Value) = 0;
  virtual void SetAsValue(const TValue& Value) = 0;

  virtual void SetNodeValueEx(const TZmAnyText& Value) = 0;
  virtual void SetNodeValueEx(const TZmAnyText& Value, bool AsCDATA) = 0;
  virtual void SetNamespaceURI(const TZmAnyText& URI) = 0;
  virtual void SetPreseveSpace(bool Value) = 0;
  virtual TZmIntf<IZmDOMElement> SelectSingleElement(const TZmAnyText& Path, TZmDOMSelectOptions Options = {}) = 0;
  virtual TZmIntf<IZmDOMElementList> CreateElementList(const TZmAnyText& Path, TZmDOMSelectOptions Options = {}) = 0;
};

class IZmDOMDocument : public virtual IZmDOMNode {
 public:
  virtual TZmIntf<IZmDOMElement> GetRootNode() = 0;
  virtual TZmIntf<IZmDOMElement> CreateRootNode(const TZmAnyText& QName) = 0;
  virtual TZmIntf<IZmDOMElement> CreateRootNode(const TZmAnyText& QName, const TZmAnyText& NamespaceURI) = 0;
  virtual void SetCollation(TZmXPathCollationClass Collation) = 0;
  virtual void SetCaseSensitive(bool Value) = 0;
  virtual void SetSelectMatchOption(TZmDOMSelectMatchOption Value) = 0;
  virtual TZmDOMSelectCheckOption GetSelectCheckOption() = 0;
  virtual void SetSelectCheckOption(TZmDOMSelectCheckOption Value) = 0;

  /// \name Loose nodes, for AddChild
  ///@{
  virtual TZmIntf<IZmDOMElement> CreateElement(const TZmAnyText& Name) = 0;
  virtual TZmIntf<IZmDOMAttribute> CreateAttribute(const TZmAnyText& Name) = 0;
  virtual TZmIntf<IZmDOMText> CreateText(const TZmAnyText& Text) = 0;
  virtual TZmIntf<IZmDOMCDATA> CreateCDATA(const TZmAnyText& Text) = 0;
  virtual TZmIntf<IZmDOMComment> CreateComment(const TZmAnyText& Text) = 0;
  virtual TZmIntf<IZmDOMProcessingInstruction> CreateProcessingInstruction(const TZmAnyText& Target,
                                                                           const TZmAnyText& Data) = 0;
  ///@}

  /// EZmDomNotSupported: LoadFromStreamEx is what loads.
  virtual void LoadFromStream(TStream* Stream) = 0;
  using IZmDOMNode::LoadFromStream;
  virtual void LoadFromStreamEx(TStream* Stream) = 0;
  virtual void LoadFromStreamEx(TStream* Stream, std::uint16_t CodePage) = 0;
  virtual void LoadFromFile(const TZmAnyText& FileName, std::uint16_t Mode = fmOpenRead) = 0;
  virtual void LoadFromXML(StringView XML) = 0;
  virtual void LoadFromXML(std::string_view XML) = 0;
  virtual void LoadXML(StringView XML) = 0;
  virtual void LoadXML(TStream* Stream) = 0;
  virtual void LoadXML(const TZmAnyText& FileName, std::uint16_t Mode) = 0;
  /// EZmDomNotSupported: SaveToStreamEx is what saves.
  virtual void SaveToStream(TStream* Stream) = 0;
  using IZmDOMNode::SaveToStream;
  virtual void SaveToStreamEx(TStream* Stream, bool Formatted, bool WriteBOM) = 0;
  virtual void SaveToStreamEx(TStream* Stream, std::uint16_t CodePage, bool Formatted, bool WriteBOM) = 0;
  virtual void SaveToFile(const TZmAnyText& FileName, bool Formatted, bool WriteBOM) = 0;
  virtual String GetXML() = 0;
  virtual String GetFormattedXML() = 0;
  using IZmDOMNode::SaveToJSONStream;
  virtual void SaveToJSONStream(TStream* Stream, bool Formatted, bool WriteBOM) = 0;

  virtual String GetEncoding() = 0;
  virtual void SetEncoding(const TZmAnyText& Name) = 0;
  virtual std::uint16_t GetCodePage() = 0;
  virtual void SetCodePage(std::uint16_t CodePage) = 0;
  virtual void ReCalcEncoding() = 0;
  virtual String GetDocumentURI() = 0;
  virtual void SetDocumentURI(const TZmAnyText& URI) = 0;
  virtual TZmIntf<IZmDOMProcessingInstruction> FindProcessingInstruction(const TZmAnyText& Target) = 0;
  virtual String GetProcessingInstruction(const TZmAnyText& Target) = 0;
  virtual void SetProcessingInstruction(const TZmAnyText& Target, const TZmAnyText& Data) = 0;
  virtual bool GetUseSchemaInstance() = 0;
  virtual void SetUseSchemaInstance(bool Value) = 0;
  virtual TZmIntf<IZmDOMElement> SelectSingleElement(const TZmAnyText& Path, TZmDOMSelectOptions Options = {}) = 0;
  virtual TZmIntf<IZmDOMElementList> CreateElementList(const TZmAnyText& Path, TZmDOMSelectOptions Options = {}) = 0;
};

}  // namespace zm
