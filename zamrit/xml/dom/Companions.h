#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "zamrit/xml/dom/Document.h"
#include "zamrit/xml/dom/Interfaces.h"

namespace zm {

// The companions pass on what their interfaces offer to the object, and give out handles for the nodes it answers with.

class TZmDOMNodeImpl : public TZmDOMObjectImpl, public virtual IZmDOMNode {
  ZM_OBJECT(TZmDOMNodeImpl, TZmDOMObjectImpl)
 public:
  using TZmDOMObjectImpl::TZmDOMObjectImpl;

  TZmDOMNodeType GetNodeType() override { return Of<TZmDOMNode>().GetNodeType(); }
  String GetLocalName() override { return String(Of<TZmDOMNode>().GetLocalName()); }
  String GetPrefix() override { return String(Of<TZmDOMNode>().GetPrefix()); }
  String GetQualifiedName() override { return String(Of<TZmDOMNode>().GetQualifiedName()); }
  void SetLocalName(const TZmAnyText& Name) override { Of<TZmDOMNode>().SetLocalName(Name); }
  void SetPrefix(const TZmAnyText& Prefix) override { Of<TZmDOMNode>().SetPrefix(Prefix); }
  void SetQualifiedName(const TZmAnyText& Name) override { Of<TZmDOMNode>().SetQualifiedName(Name); }
  String GetNodeValue() override { return Of<TZmDOMNode>().GetNodeValue(); }
  void SetNodeValue(const TZmAnyText& Value) override { Of<TZmDOMNode>().SetNodeValue(Value); }
  String GetText() override { return Of<TZmDOMNode>().GetText(); }
  String GetNamespaceURI() override { return Of<TZmDOMNode>().GetNamespaceURI(); }
  bool GetPreserveSpace() override { return Of<TZmDOMNode>().GetPreserveSpace(); }
  bool GetCaseSensitive() override { return Of<TZmDOMNode>().GetCaseSensitive(); }
  TZmXPathCollationClass GetCollation() override { return Of<TZmDOMNode>().GetCollation(); }
  TZmDOMSelectMatchOption GetSelectMatchOption() override { return Of<TZmDOMNode>().GetSelectMatchOption(); }
  TZmDOMLoadState GetLoadState() override { return Of<TZmDOMNode>().GetLoadState(); }
  void SetLoadState(TZmDOMLoadState State) override { Of<TZmDOMNode>().SetLoadState(State); }
  TZmIntf<IZmDOMDocument> GetDOMDocument() override {
    return HandleOf<IZmDOMDocument>(Of<TZmDOMNode>().GetDOMDocument());
  }
  TZmIntf<IZmDOMNode> ParentNode() override { return HandleOf<IZmDOMNode>(Of<TZmDOMNode>().ParentNode()); }
  TZmIntf<IZmDOMNodeList> ChildNodes() override { return HandleOf<IZmDOMNodeList>(&Of<TZmDOMNode>().ChildNodes()); }
  bool HasChildNodes() override { return Of<TZmDOMNode>().HasChildNodes(); }
  TZmIntf<IZmDOMNode> FirstChild() override { return HandleOf<IZmDOMNode>(Of<TZmDOMNode>().FirstChild()); }
  TZmIntf<IZmDOMNode> LastChild() override { return HandleOf<IZmDOMNode>(Of<TZmDOMNode>().LastChild()); }
  TZmIntf<IZmDOMNode> NextSibling() override { return HandleOf<IZmDOMNode>(Of<TZmDOMNode>().NextSibling()); }
  TZmIntf<IZmDOMNode> PreviousSibling() override { return HandleOf<IZmDOMNode>(Of<TZmDOMNode>().PreviousSibling()); }
  void AddChild(const TZmIntf<IZmDOMNode>& Node, const TZmIntf<IZmDOMNode>& Ref, TZmDOMPosition Position) override {
    Of<TZmDOMNode>().AddChild(NodeOf(Node), NodeOf(Ref), Position);
  }
  void AppendChild(const TZmIntf<IZmDOMNode>& Node) override { Of<TZmDOMNode>().AppendChild(NodeOf(Node)); }
  void RemoveChild(const TZmIntf<IZmDOMNode>& Node) override { Of<TZmDOMNode>().RemoveChild(NodeOf(Node)); }
  void Clear() override { Of<TZmDOMNode>().Clear(); }
  TZmIntf<IZmDOMNode> CloneNode(bool Deep) override { return HandleOf<IZmDOMNode>(Of<TZmDOMNode>().CloneNode(Deep)); }
  void RefreshNamespaces() override { Of<TZmDOMNode>().RefreshNamespaces(); }
  void NormalizeTextNodes() override { Of<TZmDOMNode>().NormalizeTextNodes(); }
  String GetInnerXML() override { return Of<TZmDOMNode>().GetInnerXML(); }
  String GetFormattedInnerXML() override { return Of<TZmDOMNode>().GetFormattedInnerXML(); }
  void SetInnerXML(const TZmAnyText& XML) override { Of<TZmDOMNode>().SetInnerXML(XML); }
  void LoadFromStream(TStream* Stream, std::uint16_t CodePage) override {
    Of<TZmDOMNode>().LoadFromStream(Stream, CodePage);
  }
  void SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted) override {
    Of<TZmDOMNode>().SaveToStream(Stream, CodePage, Formatted);
  }
  void SaveToJSONStream(TStream* Stream, std::uint16_t CodePage, bool Formatted) override {
    Of<TZmDOMNode>().SaveToJSONStream(Stream, CodePage, Formatted);
  }
  void SetOnParseWarning(TZmDOMParseError Event) override { Of<TZmDOMNode>().SetOnParseWarning(std::move(Event)); }
  void SetOnParseError(TZmDOMParseError Event) override { Of<TZmDOMNode>().SetOnParseError(std::move(Event)); }
  void SetOnParseFatalError(TZmDOMParseError Event) override {
    Of<TZmDOMNode>().SetOnParseFatalError(std::move(Event));
  }
  TZmIntf<IZmDOMNode> SelectSingleNode(const TZmAnyText& Path, TZmDOMSelectOptions Options) override {
    return HandleOf<IZmDOMNode>(Of<TZmDOMNode>().SelectSingleNode(Path, Options));
  }
  TZmIntf<IZmDOMNodeList> CreateNodeList(const TZmAnyText& Path, TZmDOMSelectOptions Options) override {
    return HandleOf<IZmDOMNodeList>(Of<TZmDOMNode>().CreateNodeList(Path, Options));
  }
  TZmIntf<IZmDOMNodeList> selectNodes(const TZmAnyText& Path) override {
    return HandleOf<IZmDOMNodeList>(Of<TZmDOMNode>().CreateNodeList(Path));
  }
};

class TZmDOMNodeListImpl : public TZmDOMObjectImpl, public virtual IZmDOMNodeList {
  ZM_OBJECT(TZmDOMNodeListImpl, TZmDOMObjectImpl)
 public:
  using TZmDOMObjectImpl::TZmDOMObjectImpl;

  int Count() override { return Of<TZmDOMNodeListBase>().Count(); }
  TZmIntf<IZmDOMNode> GetItem(int Index) override {
    return HandleOf<IZmDOMNode>(Of<TZmDOMNodeListBase>().GetItem(Index));
  }
  bool ContainsNode(const TZmIntf<IZmDOMNode>& Node) override {
    return Of<TZmDOMNodeListBase>().ContainsNode(NodeOf(Node));
  }
  void Add(const TZmIntf<IZmDOMNode>& Node, TZmDOMAbsPosition Position) override {
    Of<TZmDOMNodeListBase>().Add(NodeOf(Node), Position);
  }
  void Add(const TZmIntf<IZmDOMNode>& Node, const TZmIntf<IZmDOMNode>& Ref, TZmDOMPosition Position) override {
    Of<TZmDOMNodeListBase>().Add(NodeOf(Node), NodeOf(Ref), Position);
  }
  void Add(const TZmIntf<IZmDOMNode>& Node, TZmDOMRelPosition Position, const TZmIntf<IZmDOMNode>& Ref) override {
    Of<TZmDOMNodeListBase>().Add(NodeOf(Node), Position, NodeOf(Ref));
  }
  TZmIntf<IZmDOMNode> Delete(const TZmIntf<IZmDOMNode>& Node) override {
    return HandleOf<IZmDOMNode>(Of<TZmDOMNodeListBase>().Delete(NodeOf(Node)));
  }
  TZmIntf<IZmDOMNode> Delete(const TZmAnyText& Name, TZmDOMSelectOptions Options) override {
    return HandleOf<IZmDOMNode>(Of<TZmDOMNodeListBase>().Delete(Name, Options));
  }
  TZmIntf<IZmDOMNode> Delete(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName) override {
    return HandleOf<IZmDOMNode>(Of<TZmDOMNodeListBase>().Delete(NamespaceURI, LocalName));
  }
  void Clear() override { Of<TZmDOMNodeListBase>().Clear(); }
  TZmIntf<IZmDOMNode> First() override { return HandleOf<IZmDOMNode>(Of<TZmDOMNodeListBase>().First()); }
  TZmIntf<IZmDOMNode> Last() override { return HandleOf<IZmDOMNode>(Of<TZmDOMNodeListBase>().Last()); }
  TZmIntf<IZmDOMNode> Next(const TZmIntf<IZmDOMNode>& Node) override {
    return HandleOf<IZmDOMNode>(Of<TZmDOMNodeListBase>().Next(NodeOf(Node)));
  }
  TZmIntf<IZmDOMNode> Previous(const TZmIntf<IZmDOMNode>& Node) override {
    return HandleOf<IZmDOMNode>(Of<TZmDOMNodeListBase>().Previous(NodeOf(Node)));
  }
  TZmIntf<IZmDOMNode> Find(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName) override {
    return HandleOf<IZmDOMNode>(Of<TZmDOMNodeListBase>().Find(NamespaceURI, LocalName));
  }
  TZmIntf<IZmDOMNode> Find(const TZmAnyText& Name, TZmDOMSelectOptions Options) override {
    return HandleOf<IZmDOMNode>(Of<TZmDOMNodeListBase>().Find(Name, Options));
  }
};

class TZmDOMElementListImpl : public TZmDOMNodeListImpl, public virtual IZmDOMElementList {
  ZM_OBJECT(TZmDOMElementListImpl, TZmDOMNodeListImpl)
 public:
  using TZmDOMNodeListImpl::TZmDOMNodeListImpl;

  TZmIntf<IZmDOMElement> GetElement(int Index) override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMElementList>().GetItem(Index));
  }
  TZmIntf<IZmDOMElement> GetItemEx(const Variant& Index, TZmDOMSelectCheckOption CheckOption) override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMElementList>().GetItemEx(Index, CheckOption));
  }
  TZmIntf<IZmDOMElement> GetItemEx(const Variant& Index) override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMElementList>().GetItemEx(Index));
  }
};

class TZmDOMAttrListImpl : public TZmDOMNodeListImpl, public virtual IZmDOMAttrList {
  ZM_OBJECT(TZmDOMAttrListImpl, TZmDOMNodeListImpl)
 public:
  using TZmDOMNodeListImpl::TZmDOMNodeListImpl;

  TZmIntf<IZmDOMAttribute> GetAttribute(int Index) override {
    return HandleOf<IZmDOMAttribute>(Of<TZmDOMAttrList>().GetItem(Index));
  }
  TZmIntf<IZmDOMAttribute> FindNamespace(const TZmAnyText& URI) override {
    return HandleOf<IZmDOMAttribute>(Of<TZmDOMAttrList>().FindNamespace(URI));
  }
};

class TZmDOMCharacterDataImpl : public TZmDOMNodeImpl, public virtual IZmDOMCharacterData {
  ZM_OBJECT(TZmDOMCharacterDataImpl, TZmDOMNodeImpl)
 public:
  using TZmDOMNodeImpl::TZmDOMNodeImpl;
};

class TZmDOMTextImpl : public TZmDOMCharacterDataImpl, public virtual IZmDOMText {
  ZM_OBJECT(TZmDOMTextImpl, TZmDOMCharacterDataImpl)
 public:
  using TZmDOMCharacterDataImpl::TZmDOMCharacterDataImpl;
};

class TZmDOMCDATAImpl : public TZmDOMTextImpl, public virtual IZmDOMCDATA {
  ZM_OBJECT(TZmDOMCDATAImpl, TZmDOMTextImpl)
 public:
  using TZmDOMTextImpl::TZmDOMTextImpl;
};

class TZmDOMCommentImpl : public TZmDOMCharacterDataImpl, public virtual IZmDOMComment {
  ZM_OBJECT(TZmDOMCommentImpl, TZmDOMCharacterDataImpl)
 public:
  using TZmDOMCharacterDataImpl::TZmDOMCharacterDataImpl;
};

class TZmDOMAttributeImpl : public TZmDOMNodeImpl, public virtual IZmDOMAttribute {
  ZM_OBJECT(TZmDOMAttributeImpl, TZmDOMNodeImpl)
 public:
  using TZmDOMNodeImpl::TZmDOMNodeImpl;

  bool IsNamespace() override { return Of<TZmDOMAttribute>().IsNamespace(); }
  TZmIntf<IZmDOMAttribute> GetNamespace() override {
    return HandleOf<IZmDOMAttribute>(Of<TZmDOMAttribute>().GetNamespace());
  }
  TZmIntf<IZmDOMElement> OwnerElement() override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMAttribute>().OwnerElement());
  }
  TZmIntf<IZmDOMAttribute> NextAttribute() override {
    return HandleOf<IZmDOMAttribute>(Of<TZmDOMAttribute>().NextAttribute());
  }
};

class TZmDOMProcessingInstructionImpl : public TZmDOMNodeImpl, public virtual IZmDOMProcessingInstruction {
  ZM_OBJECT(TZmDOMProcessingInstructionImpl, TZmDOMNodeImpl)
 public:
  using TZmDOMNodeImpl::TZmDOMNodeImpl;

  String GetData() override { return Of<TZmDOMProcessingInstruction>().GetData(); }
  void SetData(const TZmAnyText& Data) override { Of<TZmDOMProcessingInstruction>().SetData(Data); }
};

class TZmDOMElementImpl : public TZmDOMNodeImpl, public virtual IZmDOMElement {
  ZM_OBJECT(TZmDOMElementImpl, TZmDOMNodeImpl)
 public:
  using TZmDOMNodeImpl::TZmDOMNodeImpl;

  TZmIntf<IZmDOMAttrList> Attributes() override { return HandleOf<IZmDOMAttrList>(&Of<TZmDOMElement>().Attributes()); }
  TZmIntf<IZmDOMElementList> Elements() override {
    return HandleOf<IZmDOMElementList>(&Of<TZmDOMElement>().Elements());
  }
  TZmIntf<IZmDOMNodeList> CharNodes() override { return HandleOf<IZmDOMNodeList>(&Of<TZmDOMElement>().CharNodes()); }
  TZmIntf<IZmDOMAttrList> Namespaces() override { return HandleOf<IZmDOMAttrList>(&Of<TZmDOMElement>().Namespaces()); }
  int ElementCount() override { return Of<TZmDOMElement>().ElementCount(); }
  int AttributeCount() override { return Of<TZmDOMElement>().AttributeCount(); }
  bool HasAttributes() override { return Of<TZmDOMElement>().HasAttributes(); }
  bool HasChildElements() override { return Of<TZmDOMElement>().HasChildElements(); }
  bool HasAttribute(const TZmAnyText& Name, TZmDOMSelectOptions Options) override {
    return Of<TZmDOMElement>().HasAttribute(Name, Options);
  }
  bool HasChildElement(const TZmAnyText& Name, TZmDOMSelectOptions Options) override {
    return Of<TZmDOMElement>().HasChildElement(Name, Options);
  }
  TZmIntf<IZmDOMElement> FirstElement() override { return HandleOf<IZmDOMElement>(Of<TZmDOMElement>().FirstElement()); }
  TZmIntf<IZmDOMElement> LastElement() override { return HandleOf<IZmDOMElement>(Of<TZmDOMElement>().LastElement()); }
  TZmIntf<IZmDOMElement> NextElement() override { return HandleOf<IZmDOMElement>(Of<TZmDOMElement>().NextElement()); }
  TZmIntf<IZmDOMElement> PreviousElement() override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMElement>().PreviousElement());
  }
  TZmIntf<IZmDOMElement> ParentElement() override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMElement>().ParentElement());
  }
  TZmIntf<IZmDOMAttribute> FirstAttribute() override {
    return HandleOf<IZmDOMAttribute>(Of<TZmDOMElement>().FirstAttribute());
  }
  TZmIntf<IZmDOMAttribute> LastAttribute() override {
    return HandleOf<IZmDOMAttribute>(Of<TZmDOMElement>().LastAttribute());
  }
  TZmIntf<IZmDOMAttribute> GetNamespace() override {
    return HandleOf<IZmDOMAttribute>(Of<TZmDOMElement>().GetNamespace());
  }
  TZmIntf<IZmDOMAttribute> FindNamespace(const TZmAnyText& URI) override {
    return HandleOf<IZmDOMAttribute>(Of<TZmDOMElement>().FindNamespace(URI));
  }
  TZmIntf<IZmDOMElement> FindElement(const TZmAnyText& Name, TZmDOMSelectOptions Options) override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMElement>().FindElement(Name, Options));
  }
  TZmIntf<IZmDOMElement> FindElement(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName) override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMElement>().FindElement(NamespaceURI, LocalName));
  }
  TZmIntf<IZmDOMAttribute> FindAttribute(const TZmAnyText& Name, TZmDOMSelectOptions Options) override {
    return HandleOf<IZmDOMAttribute>(Of<TZmDOMElement>().FindAttribute(Name, Options));
  }
  TZmIntf<IZmDOMAttribute> FindAttribute(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName) override {
    return HandleOf<IZmDOMAttribute>(Of<TZmDOMElement>().FindAttribute(NamespaceURI, LocalName));
  }
  TZmIntf<IZmDOMElement> ElementByName(const TZmAnyText& Name, TZmDOMSelectOptions Options) override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMElement>().ElementByName(Name, Options));
  }
  TZmIntf<IZmDOMElement> ElementByName(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName,
                                       TZmDOMSelectCheckOption CheckOption) override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMElement>().ElementByName(NamespaceURI, LocalName, CheckOption));
  }
  TZmIntf<IZmDOMElement> ElementByName(const TZmAnyText& NamespaceURI, const TZmAnyText& QualifiedName,
                                       bool Create) override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMElement>().ElementByName(NamespaceURI, QualifiedName, Create));
  }
  TZmIntf<IZmDOMAttribute> AttributeByName(const TZmAnyText& Name, TZmDOMSelectOptions Options) override {
    return HandleOf<IZmDOMAttribute>(Of<TZmDOMElement>().AttributeByName(Name, Options));
  }
  TZmIntf<IZmDOMAttribute> AttributeByName(const TZmAnyText& NamespaceURI, const TZmAnyText& QualifiedName,
                                           bool Create) override {
    return HandleOf<IZmDOMAttribute>(Of<TZmDOMElement>().AttributeByName(NamespaceURI, QualifiedName, Create));
  }
  TZmIntf<IZmDOMText> AddText(const TZmAnyText& Text) override {
    return HandleOf<IZmDOMText>(Of<TZmDOMElement>().AddText(Text));
  }
  TZmIntf<IZmDOMCDATA> AddCDATA(const TZmAnyText& Text) override {
    return HandleOf<IZmDOMCDATA>(Of<TZmDOMElement>().AddCDATA(Text));
  }
  TZmIntf<IZmDOMComment> AddComment(const TZmAnyText& Text) override {
    return HandleOf<IZmDOMComment>(Of<TZmDOMElement>().AddComment(Text));
  }
  TZmIntf<IZmDOMElement> AddElement(const TZmAnyText& Name) override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMElement>().AddElement(Name));
  }
  TZmIntf<IZmDOMElement> AddElement(const TZmAnyText& NamespaceURI, const TZmAnyText& Name) override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMElement>().AddElement(NamespaceURI, Name));
  }
  TZmIntf<IZmDOMAttribute> AddAttribute(const TZmAnyText& Name) override {
    return HandleOf<IZmDOMAttribute>(Of<TZmDOMElement>().AddAttribute(Name));
  }
  TZmIntf<IZmDOMAttribute> AddAttribute(const TZmAnyText& NamespaceURI, const TZmAnyText& Name) override {
    return HandleOf<IZmDOMAttribute>(Of<TZmDOMElement>().AddAttribute(NamespaceURI, Name));
  }
  TZmIntf<IZmDOMText> InsertText(const TZmAnyText& Text, TZmDOMPosition Position,
                                 const TZmIntf<IZmDOMNode>& Ref) override {
    return HandleOf<IZmDOMText>(Of<TZmDOMElement>().InsertText(Text, Position, NodeOf(Ref)));
  }
  TZmIntf<IZmDOMCDATA> InsertCDATA(const TZmAnyText& Text, TZmDOMPosition Position,
                                   const TZmIntf<IZmDOMNode>& Ref) override {
    return HandleOf<IZmDOMCDATA>(Of<TZmDOMElement>().InsertCDATA(Text, Position, NodeOf(Ref)));
  }
  TZmIntf<IZmDOMComment> InsertComment(const TZmAnyText& Text, TZmDOMPosition Position,
                                       const TZmIntf<IZmDOMNode>& Ref) override {
    return HandleOf<IZmDOMComment>(Of<TZmDOMElement>().InsertComment(Text, Position, NodeOf(Ref)));
  }
  TZmIntf<IZmDOMElement> InsertElement(const TZmAnyText& Name, TZmDOMPosition Position,
                                       const TZmIntf<IZmDOMNode>& Ref) override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMElement>().InsertElement(Name, Position, NodeOf(Ref)));
  }
  void RemoveElement(const TZmIntf<IZmDOMElement>& Element) override {
    Of<TZmDOMElement>().RemoveElement(NodeOf<TZmDOMElement>(Element));
  }
  void RemoveElement(const TZmAnyText& Name) override { Of<TZmDOMElement>().RemoveElement(Name); }
  void RemoveAttribute(const TZmIntf<IZmDOMAttribute>& Attribute) override {
    Of<TZmDOMElement>().RemoveAttribute(NodeOf<TZmDOMAttribute>(Attribute));
  }
  void RemoveAttribute(const TZmAnyText& Name) override { Of<TZmDOMElement>().RemoveAttribute(Name); }
  String GetAttribute(const TZmAnyText& Name) override { return Of<TZmDOMElement>().GetAttribute(Name); }
  String GetAttributeNS(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName) override {
    return Of<TZmDOMElement>().GetAttributeNS(NamespaceURI, LocalName);
  }
  void SetAttribute(const TZmAnyText& Name, const TZmAnyText& Value) override {
    Of<TZmDOMElement>().SetAttribute(Name, Value);
  }
  void SetAttributeNS(const TZmAnyText& NamespaceURI, const TZmAnyText& QualifiedName,
                      const TZmAnyText& Value) override {
    Of<TZmDOMElement>().SetAttributeNS(NamespaceURI, QualifiedName, Value);
  }
  int GetCDATACount() override { return Of<TZmDOMElement>().GetCDATACount(); }
  String GetCDATA(int Index) override { return Of<TZmDOMElement>().GetCDATA(Index); }
  String GetChildElementValue(const Variant& Index) override { return Of<TZmDOMElement>().GetChildElementValue(Index); }
  bool GetAsBoolean() override { return Of<TZmDOMElement>().GetAsBoolean(); }
  TDateTime GetAsDateTime() override { return Of<TZmDOMElement>().GetAsDateTime(); }
  double GetAsDouble() override { return Of<TZmDOMElement>().GetAsDouble(); }
  std::int64_t GetAsInt64() override { return Of<TZmDOMElement>().GetAsInt64(); }
  std::int32_t GetAsInteger() override { return Of<TZmDOMElement>().GetAsInteger(); }
  String GetAsString() override { return Of<TZmDOMElement>().GetAsString(); }
  std::string GetAsAnsiString() override { return Of<TZmDOMElement>().GetAsAnsiString(); }
  Variant GetAsVariant() override { return Of<TZmDOMElement>().GetAsVariant(); }
  TValue GetAsValue() override { return Of<TZmDOMElement>().GetAsValue(); }
  void SetAsBoolean(bool Value) override { Of<TZmDOMElement>().SetAsBoolean(Value); }
  void SetAsDateTime(TDateTime Value) override { Of<TZmDOMElement>().SetAsDateTime(Value); }
  void SetAsDouble(double Value) override { Of<TZmDOMElement>().SetAsDouble(Value); }
  void SetAsInt64(std::int64_t Value) override { Of<TZmDOMElement>().SetAsInt64(Value); }
  void SetAsInteger(std::int32_t Value) override { Of<TZmDOMElement>().SetAsInteger(Value); }
  void SetAsString(const TZmAnyText& Value) override { Of<TZmDOMElement>().SetAsString(Value); }
  void SetAsAnsiString(std::string_view Value) override { Of<TZmDOMElement>().SetAsAnsiString(Value); }
  void SetAsVariant(const Variant& Value) override { Of<TZmDOMElement>().SetAsVariant(Value); }
  void SetAsValue(const TValue& Value) override { Of<TZmDOMElement>().SetAsValue(Value); }
  void SetNodeValueEx(const TZmAnyText& Value) override { Of<TZmDOMElement>().SetNodeValueEx(Value); }
  void SetNodeValueEx(const TZmAnyText& Value, bool AsCDATA) override {
    Of<TZmDOMElement>().SetNodeValueEx(Value, AsCDATA);
  }
  void SetNamespaceURI(const TZmAnyText& URI) override { Of<TZmDOMElement>().SetNamespaceURI(URI); }
  void SetPreseveSpace(bool Value) override { Of<TZmDOMElement>().SetPreseveSpace(Value); }
  TZmIntf<IZmDOMElement> SelectSingleElement(const TZmAnyText& Path, TZmDOMSelectOptions Options) override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMElement>().SelectSingleElement(Path, Options));
  }
  TZmIntf<IZmDOMElementList> CreateElementList(const TZmAnyText& Path, TZmDOMSelectOptions Options) override {
    return HandleOf<IZmDOMElementList>(Of<TZmDOMElement>().CreateElementList(Path, Options));
  }
};

class TZmDOMDocumentImpl : public TZmDOMNodeImpl, public virtual IZmDOMDocument {
  ZM_OBJECT(TZmDOMDocumentImpl, TZmDOMNodeImpl)
 public:
  using TZmDOMNodeImpl::LoadFromStream;
  using TZmDOMNodeImpl::SaveToJSONStream;
  using TZmDOMNodeImpl::SaveToStream;
  using TZmDOMNodeImpl::TZmDOMNodeImpl;

  TZmIntf<IZmDOMElement> CreateElement(const TZmAnyText& Name) override;
  TZmIntf<IZmDOMAttribute> CreateAttribute(const TZmAnyText& Name) override;
  TZmIntf<IZmDOMText> CreateText(const TZmAnyText& Text) override;
  TZmIntf<IZmDOMCDATA> CreateCDATA(const TZmAnyText& Text) override;
  TZmIntf<IZmDOMComment> CreateComment(const TZmAnyText& Text) override;
  TZmIntf<IZmDOMProcessingInstruction> CreateProcessingInstruction(const TZmAnyText& Target,
                                                                   const TZmAnyText& Data) override;
  void LoadFromStream(TStream* Stream) override;
  void SaveToStream(TStream* Stream) override;
  TZmIntf<IZmDOMElement> GetRootNode() override { return HandleOf<IZmDOMElement>(Of<TZmDOMDocument>().GetRootNode()); }
  TZmIntf<IZmDOMElement> CreateRootNode(const TZmAnyText& QName) override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMDocument>().CreateRootNode(QName));
  }
  TZmIntf<IZmDOMElement> CreateRootNode(const TZmAnyText& QName, const TZmAnyText& NamespaceURI) override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMDocument>().CreateRootNode(QName, NamespaceURI));
  }
  void SetCollation(TZmXPathCollationClass Collation) override { Of<TZmDOMDocument>().SetCollation(Collation); }
  void SetCaseSensitive(bool Value) override { Of<TZmDOMDocument>().SetCaseSensitive(Value); }
  void SetSelectMatchOption(TZmDOMSelectMatchOption Value) override {
    Of<TZmDOMDocument>().SetSelectMatchOption(Value);
  }
  TZmDOMSelectCheckOption GetSelectCheckOption() override { return Of<TZmDOMDocument>().GetSelectCheckOption(); }
  void SetSelectCheckOption(TZmDOMSelectCheckOption Value) override {
    Of<TZmDOMDocument>().SetSelectCheckOption(Value);
  }
  void LoadFromStreamEx(TStream* Stream) override { Of<TZmDOMDocument>().LoadFromStream(Stream); }
  void LoadFromStreamEx(TStream* Stream, std::uint16_t CodePage) override {
    Of<TZmDOMDocument>().LoadFromStream(Stream, CodePage);
  }
  void LoadFromFile(const TZmAnyText& FileName, std::uint16_t Mode) override {
    Of<TZmDOMDocument>().LoadFromFile(FileName, Mode);
  }
  void LoadFromXML(StringView XML) override { Of<TZmDOMDocument>().LoadFromXML(XML); }
  void LoadFromXML(std::string_view XML) override { Of<TZmDOMDocument>().LoadFromXML(XML); }
  void LoadXML(StringView XML) override { Of<TZmDOMDocument>().LoadXML(XML); }
  void LoadXML(TStream* Stream) override { Of<TZmDOMDocument>().LoadXML(Stream); }
  void LoadXML(const TZmAnyText& FileName, std::uint16_t Mode) override {
    Of<TZmDOMDocument>().LoadXML(FileName, Mode);
  }
  void SaveToStreamEx(TStream* Stream, bool Formatted, bool WriteBOM) override {
    Of<TZmDOMDocument>().SaveToStream(Stream, Formatted, WriteBOM);
  }
  void SaveToStreamEx(TStream* Stream, std::uint16_t CodePage, bool Formatted, bool WriteBOM) override {
    Of<TZmDOMDocument>().SaveToStream(Stream, CodePage, Formatted, WriteBOM);
  }
  void SaveToFile(const TZmAnyText& FileName, bool Formatted, bool WriteBOM) override {
    Of<TZmDOMDocument>().SaveToFile(FileName, Formatted, WriteBOM);
  }
  String GetXML() override { return Of<TZmDOMDocument>().GetXML(); }
  String GetFormattedXML() override { return Of<TZmDOMDocument>().GetFormattedXML(); }
  void SaveToJSONStream(TStream* Stream, bool Formatted, bool WriteBOM) override {
    Of<TZmDOMDocument>().SaveToJSONStream(Stream, Formatted, WriteBOM);
  }
  String GetEncoding() override { return Of<TZmDOMDocument>().GetEncoding(); }
  void SetEncoding(const TZmAnyText& Name) override { Of<TZmDOMDocument>().SetEncoding(Name); }
  std::uint16_t GetCodePage() override { return Of<TZmDOMDocument>().GetCodePage(); }
  void SetCodePage(std::uint16_t CodePage) override { Of<TZmDOMDocument>().SetCodePage(CodePage); }
  void ReCalcEncoding() override { Of<TZmDOMDocument>().ReCalcEncoding(); }
  String GetDocumentURI() override { return Of<TZmDOMDocument>().GetDocumentURI(); }
  void SetDocumentURI(const TZmAnyText& URI) override { Of<TZmDOMDocument>().SetDocumentURI(URI); }
  TZmIntf<IZmDOMProcessingInstruction> FindProcessingInstruction(const TZmAnyText& Target) override {
    return HandleOf<IZmDOMProcessingInstruction>(Of<TZmDOMDocument>().FindProcessingInstruction(Target));
  }
  String GetProcessingInstruction(const TZmAnyText& Target) override {
    return Of<TZmDOMDocument>().GetProcessingInstruction(Target);
  }
  void SetProcessingInstruction(const TZmAnyText& Target, const TZmAnyText& Data) override {
    Of<TZmDOMDocument>().SetProcessingInstruction(Target, Data);
  }
  bool GetUseSchemaInstance() override { return Of<TZmDOMDocument>().GetUseSchemaInstance(); }
  void SetUseSchemaInstance(bool Value) override { Of<TZmDOMDocument>().SetUseSchemaInstance(Value); }
  TZmIntf<IZmDOMElement> SelectSingleElement(const TZmAnyText& Path, TZmDOMSelectOptions Options) override {
    return HandleOf<IZmDOMElement>(Of<TZmDOMDocument>().SelectSingleElement(Path, Options));
  }
  TZmIntf<IZmDOMElementList> CreateElementList(const TZmAnyText& Path, TZmDOMSelectOptions Options) override {
    return HandleOf<IZmDOMElementList>(Of<TZmDOMDocument>().CreateElementList(Path, Options));
  }
};

}  // namespace zm
