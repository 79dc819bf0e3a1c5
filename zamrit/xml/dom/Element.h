#pragma once

#include <cstdint>
#include <string>

#include "zamrit/platform/DateTime.h"
#include "zamrit/platform/reflection/Value.h"
#include "zamrit/xml/dom/Attribute.h"
#include "zamrit/xml/dom/CharacterData.h"
#include "zamrit/xml/dom/NodeList.h"

namespace zm {

/// An element. Beside all its children it knows its elements, its attributes and its texts by kind; a child that is put
/// next to one of another kind goes to the front or the end of the list of its kind.
class TZmDOMElement : public detail::TDOMNamedNode {
  ZM_OBJECT(TZmDOMElement, TZmDOMNode)
 public:
  TZmDOMElement() : TDOMNamedNode(ntElement) {}
  explicit TZmDOMElement(const TZmAnyText& Name);

  /// \name Children by kind, as list objects that the element keeps
  ///@{
  TZmDOMAttrList& Attributes();
  TZmDOMElementList& Elements();
  /// Texts, CDATA sections and comments.
  TZmDOMNodeList& CharNodes();
  /// The namespace declarations in force here: inherited ones, then its own. Made anew when they have changed.
  TZmDOMAttrList& Namespaces();
  ///@}
  /// \name The same without a list object, for a range-for
  ///@{
  detail::TDOMRange<TZmDOMElement> ChildElements() const { return detail::TDOMRange<TZmDOMElement>(FirstElement()); }
  detail::TDOMRange<TZmDOMAttribute> AllAttributes() const {
    return detail::TDOMRange<TZmDOMAttribute>(FirstAttribute());
  }
  ///@}

  int ElementCount() const;
  int AttributeCount() const;
  bool HasAttributes() const { return FirstAttribute() != nullptr; }
  bool HasChildElements() const { return FirstElement() != nullptr; }
  bool HasAttribute(const TZmAnyText& Name, TZmDOMSelectOptions Options = {});
  bool HasChildElement(const TZmAnyText& Name, TZmDOMSelectOptions Options = {});
  TZmDOMElement* FirstElement() const;
  TZmDOMElement* LastElement() const;
  /// The element behind this one among the elements of its parent, nil for the last.
  TZmDOMElement* NextElement() const;
  TZmDOMElement* PreviousElement() const;
  TZmDOMElement* ParentElement() const;
  TZmDOMAttribute* FirstAttribute() const;
  TZmDOMAttribute* LastAttribute() const;
  /// The declaration of a namespace that is in force here, nil where there is none.
  TZmDOMAttribute* FindNamespace(const TZmAnyText& URI);
  /// The last child of that name, nil where there is none.
  TZmDOMElement* FindElement(const TZmAnyText& Name, TZmDOMSelectOptions Options = {});
  TZmDOMElement* FindElement(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName);
  TZmDOMAttribute* FindAttribute(const TZmAnyText& Name, TZmDOMSelectOptions Options = {});
  TZmDOMAttribute* FindAttribute(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName);
  /// The same; with soCreate or coCreate an element or attribute is added where there is none, with soRaise or coRaise
  /// EZmDomNotFound is raised. By namespace and local name coCreate takes this element's own local name, and returns
  /// nil where the namespace had to be declared.
  TZmDOMElement* ElementByName(const TZmAnyText& Name, TZmDOMSelectOptions Options);
  TZmDOMElement* ElementByName(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName,
                               TZmDOMSelectCheckOption CheckOption);
  /// By the local part of a qualified name. Where there is none it is added, and its namespace declared, or
  /// EZmDomNotFound is raised.
  TZmDOMElement* ElementByName(const TZmAnyText& NamespaceURI, const TZmAnyText& QualifiedName, bool Create);
  TZmDOMAttribute* AttributeByName(const TZmAnyText& Name, TZmDOMSelectOptions Options);
  TZmDOMAttribute* AttributeByName(const TZmAnyText& NamespaceURI, const TZmAnyText& QualifiedName, bool Create);
  /// What those do, in any list; what is added is made of NodeClass and comes to this element. Exception where it is to
  /// be made without a class.
  TZmDOMNode* NodeByName(TZmDOMNodeListBase& List, const TZmAnyText& Name, TZmDOMSelectOptions Options,
                         const TZmDOMNodeClass& NodeClass = {});
  TZmDOMNode* NodeByName(TZmDOMNodeListBase& List, const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName,
                         TZmDOMSelectCheckOption CheckOption);
  TZmDOMNode* NodeByName(TZmDOMNodeListBase& List, const TZmAnyText& NamespaceURI, const TZmAnyText& QualifiedName,
                         bool Create, const TZmDOMNodeClass& NodeClass);

  TZmDOMText* AddText(const TZmAnyText& Text);
  TZmDOMCDATA* AddCDATA(const TZmAnyText& Text);
  TZmDOMComment* AddComment(const TZmAnyText& Text);
  TZmDOMElement* AddElement(const TZmAnyText& Name);
  /// Adds an element of a namespace, which is declared here if it is not in force. Name may have a prefix.
  TZmDOMElement* AddElement(const TZmAnyText& NamespaceURI, const TZmAnyText& Name);
  /// Adds an attribute, also where there is one of that name.
  TZmDOMAttribute* AddAttribute(const TZmAnyText& Name);
  TZmDOMAttribute* AddAttribute(const TZmAnyText& NamespaceURI, const TZmAnyText& Name);
  TZmDOMText* InsertText(const TZmAnyText& Text, TZmDOMPosition Position, TZmDOMNode* Ref = nullptr);
  TZmDOMCDATA* InsertCDATA(const TZmAnyText& Text, TZmDOMPosition Position, TZmDOMNode* Ref = nullptr);
  TZmDOMComment* InsertComment(const TZmAnyText& Text, TZmDOMPosition Position, TZmDOMNode* Ref = nullptr);
  TZmDOMElement* InsertElement(const TZmAnyText& Name, TZmDOMPosition Position, TZmDOMNode* Ref = nullptr);
  void RemoveElement(TZmDOMElement* Element) { RemoveChild(Element); }
  /// Nothing where there is no child of that name.
  void RemoveElement(const TZmAnyText& Name) { RemoveChild(FindElement(Name)); }
  void RemoveAttribute(TZmDOMAttribute* Attribute) { RemoveChild(Attribute); }
  void RemoveAttribute(const TZmAnyText& Name) { RemoveChild(FindAttribute(Name)); }

  /// The decoded value of an attribute, empty where there is none.
  String GetAttribute(const TZmAnyText& Name);
  String GetAttributeNS(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName);
  /// Sets an attribute, which is added where there is none.
  void SetAttribute(const TZmAnyText& Name, const TZmAnyText& Value);
  void SetAttributeNS(const TZmAnyText& NamespaceURI, const TZmAnyText& QualifiedName, const TZmAnyText& Value);
  int GetCDATACount() const;
  /// The text of the CDATA section of that number, from 0. EZmDomNotFound where there is none.
  String GetCDATA(int Index) const;
  /// The text of a child element by index or name, empty where none has the name. EListError for an index outside.
  String GetChildElementValue(const Variant& Index);

  /// \name The text of the element as a value
  /// In the forms of XML. An empty text is 0, and true is "true" and "1" alone; what is no such value otherwise raises
  /// EConvertError. The setters replace the element's own texts.
  ///@{
  bool GetAsBoolean() const;
  TDateTime GetAsDateTime() const;
  double GetAsDouble() const;
  std::int64_t GetAsInt64() const;
  std::int32_t GetAsInteger() const;
  String GetAsString() const { return GetText(); }
  /// In UTF-8.
  std::string GetAsAnsiString() const;
  /// By the type that the attribute xsi:type names, or xsd:type, text where there is none; null, or an empty value,
  /// where xsi:nil is true. EZmDomException "The type attribute does not contain valid typeinfo." for a name that is no
  /// simple type, Exception for a text that is not of the type.
  Variant GetAsVariant();
  TValue GetAsValue();
  void SetAsBoolean(bool Value);
  void SetAsDateTime(TDateTime Value);
  void SetAsDouble(double Value);
  void SetAsInt64(std::int64_t Value);
  void SetAsInteger(std::int32_t Value);
  void SetAsString(const TZmAnyText& Value);
  void SetAsAnsiString(std::string_view Value);
  /// Also writes the type into xsi:type, and xsi:nil for null, unassigned and empty. Namespaces that are not in force
  /// are declared here. A Variant array comes back as one of texts. Exception, and no change, for what has no text.
  void SetAsVariant(const Variant& Value);
  void SetAsValue(const TValue& Value);
  ///@}

  /// The attribute that declares the element's namespace, nil where there is none.
  TZmDOMAttribute* GetNamespace() const { return FNamespace; }
  /// Moves the element to a namespace. A loose one holds it, and declares it when it comes to a place where no fitting
  /// declaration is in force. In a tree it is linked to the declaration in force, and declares it where that is one of
  /// another kind (default or prefix); what nobody has declared stays so, unless the element held a namespace.
  void SetNamespaceURI(const TZmAnyText& URI);
  /// Sets xml:space, and the elements below that have none of their own go by it.
  void SetPreseveSpace(bool Value);
  /// Saves the element as a JSON object of one member. An element with child elements is an object of its attributes
  /// and those, the ones of one local name together in an array; its own texts are left out. Another one is its value,
  /// by its type: texts between quotation marks, numbers, booleans and dates bare; its attributes are members behind
  /// it, or left out in an array. Raises what GetAsValue does. Linear.
  void SaveToJSONStream(TStream* Stream, std::uint16_t CodePage, bool Formatted) override;

  /// \name Paths
  ///@{
  /// The first node of a path as an element, nil where there is none. EInvalidCast where it is none.
  TZmDOMElement* SelectSingleElement(const TZmAnyText& Path, TZmDOMSelectOptions Options = {});
  /// All nodes of a path in a list of elements, which is what they should be.
  TZmOwner<TZmDOMElementList> CreateElementList(const TZmAnyText& Path, TZmDOMSelectOptions Options = {});
  /// Appends this element, and with Recurse those below, where prefix and local name are those asked for; "*" is any.
  /// Exception for soRaise and soCreate.
  void _GetChildElements(TZmDOMNodeListBase& List, const TZmAnyText& Prefix, const TZmAnyText& LocalName, bool Recurse,
                         TZmDOMSelectOptions Options);
  /// The same by namespace.
  void _GetChildElements(TZmDOMNodeListBase& List, const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName,
                         bool Recurse);
  ///@}

  bool GetPreserveSpace() const override { return HasFlag(detail::dfPreserveSpace); }
  /// The texts of its own, concatenated.
  String GetNodeValue() const override;
  /// Its own texts, comments among them, then those of each child element.
  String GetText() const override;
  String GetNamespaceURI() const override;
  String GetInnerXML() const override;
  String GetFormattedInnerXML() const override;
  /// Replaces its own texts by one.
  void SetNodeValue(const TZmAnyText& Value) override;
  /// Replaces all children but attributes by one text.
  void SetNodeValueEx(const TZmAnyText& Value);
  /// The same, as a CDATA section where asked for.
  void SetNodeValueEx(const TZmAnyText& Value, bool AsCDATA);
  /// Links the element to the declaration of the prefix. Where there is none it is in no namespace until there is.
  void SetPrefix(const TZmAnyText& Prefix) override;
  void SetQualifiedName(const TZmAnyText& Name) override;
  /// Replaces all children but attributes by what the text holds, which may be text and elements in any number. Blanks
  /// between tags are dropped as in a load. EZmDomSyntax for what is not well-formed; what came before stays.
  void SetInnerXML(const TZmAnyText& XML) override;
  void RefreshNamespaces() override;
  void NormalizeTextNodes() override;
  void _SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) override;
  void _SaveToJSONStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) override;
  TZmOwner<TZmDOMNode> CreateClone() const override;
  using TZmDOMNode::AddChild;
  void AddChild(TZmDOMNode* Node, TZmDOMNode* Ref, TZmDOMPosition Position) override;
  /// Nil does nothing. EAssertionFailed for a node of another parent.
  void RemoveChild(TZmDOMNode* Node) override;
  void SetParentNode(TZmDOMObject* Parent) override;
  void SetDOMDocument(TZmDOMDocument* Document) override;
  TZmDOMDocument* GetDOMDocument() const override;

 protected:
  friend class detail::TDOMTree;
  ~TZmDOMElement() override;
  TZmDOMObjectImpl* CreateDOMImpl(TZmDOMObject* Object) override;
  void _SetPreseveSpace(bool Value);

 private:
  void DeclareNamespace(StringView URI);

  detail::TDOMScope* FScope = nullptr;  // the declarations in force, nil without a document
  TZmDOMAttribute* FNamespace = nullptr;
};

template <class T>
T* detail::TDOMIterator<T>::Behind(T* Node) {
  if constexpr (std::is_same_v<T, TZmDOMElement>)
    return Node->NextElement();
  else if constexpr (std::is_same_v<T, TZmDOMAttribute>)
    return Node->NextAttribute();
  else
    return Node->NextSibling();
}

}  // namespace zm
