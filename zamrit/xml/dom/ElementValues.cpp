#include "zamrit/common/ValueHelper.h"
#include "zamrit/platform/reflection/Reflection.h"
#include "zamrit/xml/dom/SchemaDetail.h"
#include "zamrit/xml/values/DateTimes.h"
#include "zamrit/xml/values/Escaping.h"
#include "zamrit/xml/values/Numbers.h"
#include "zamrit/xml/values/Values.h"

namespace zm {

using detail::SchemaSpaceOf;
using detail::TDOMTree;
using detail::TSchemaSpace;

namespace {

/// Outside a document declarations are not kept at hand.
const TZmDOMAttribute* DeclarationAbove(const TZmDOMAttribute* Attribute) {
  const StringView prefix = Attribute->GetPrefix();
  for (const TZmDOMElement* element = Attribute->OwnerElement(); element; element = element->ParentElement())
    for (const TZmDOMAttribute* a = element->FirstAttribute(); a; a = a->NextAttribute())
      if (a->IsNamespace() && (prefix.empty() ? a->GetPrefix().empty() : a->GetLocalName() == prefix)) return a;
  return nullptr;
}

}  // namespace

TSchemaSpace detail::SchemaSpaceOf(const TZmDOMAttribute* Attribute) {
  const TZmDOMAttribute* declaration = Attribute->GetNamespace();
  if (!declaration && !Attribute->GetDOMDocument()) declaration = DeclarationAbove(Attribute);
  const String uri = declaration ? TDOMTree::Decoded(declaration) : TDOMTree::HeldURI(Attribute);
  return uri == cZmSchemaInstanceURI ? TSchemaSpace::Instance
         : uri == cZmSchemaURI       ? TSchemaSpace::Schema
                                     : TSchemaSpace::None;
}

namespace {

const StringView cType = u"type", cNil = u"nil";

/// Whether an attribute says of what type the text of its element is, or that it is none.
bool SaysType(const TZmDOMAttribute* Attribute, TSchemaSpace& Space) {
  const StringView name = Attribute->GetLocalName();
  if (name != cType && name != cNil) return false;
  Space = SchemaSpaceOf(Attribute);
  return Space == TSchemaSpace::Instance || (Space == TSchemaSpace::Schema && name == cType);
}

const TZmTypeInfo& TypeByName(StringView Name) {
  const StringView name = Trim(Name);
  const TZmTypeInfo* info = TZmTypes::GetTypeInfo(name, tntSchemaName, false);
  if (!info) {  // one that is held as text
    const StringView local = name.substr(name.find(u':') + 1);
    for (const TZmSchemaDataType type : {sdtBase64Binary, sdtHexBinary, sdtDuration})
      if (TZmTypeInfo::VirtualType(type)->Name == local) info = TZmTypes::Of<String>();
  }
  if (!info || !info->GetIsSimpleType()) throw EZmDomException(u"The type attribute does not contain valid typeinfo.");
  return *info;
}

/// What the attributes of an element say about its text.
struct TContent {
  bool IsNull = false;
  const TZmTypeInfo* Type = TZmTypes::Of<String>();
};

TContent ContentOf(const TZmDOMElement& Element) {
  TContent content;
  const TZmDOMAttribute* type = nullptr;
  for (const TZmDOMAttribute* a = Element.FirstAttribute(); a; a = a->NextAttribute()) {
    TSchemaSpace space;
    if (!SaysType(a, space)) continue;
    if (a->GetLocalName() == cNil)
      content.IsNull = ZmXMLToBool(a->GetNodeValue());
    else if (!type || space == TSchemaSpace::Instance)
      type = a;
  }
  if (type && !content.IsNull) content.Type = &TypeByName(type->GetNodeValue());
  return content;
}

/// The prefix that stands for a namespace in an element; it is declared there if there is none.
String PrefixFor(TZmDOMElement& Element, StringView URI, StringView Usual) {
  const TZmDOMAttribute* const known = TDOMTree::FindNamespaceURI(&Element, URI);
  if (known && !known->GetPrefix().empty()) return String(known->GetLocalName());
  const String name = String(u"xmlns:").append(Usual);
  TZmDOMAttribute* declaration = Element.FindAttribute(name, {soQualifiedName});
  if (!declaration) declaration = Element.AddAttribute(name);
  declaration->SetNodeValue(URI);
  return String(Usual);
}

/// Leaves one attribute of those that say what the text is.
void SayType(TZmDOMElement& Element, StringView Name, const String& Value) {
  TZmDOMAttribute* kept = nullptr;
  for (TZmDOMAttribute *a = Element.FirstAttribute(), *next; a; a = next) {
    next = a->NextAttribute();
    TSchemaSpace space;
    if (!SaysType(a, space)) continue;
    if (!kept && a->GetLocalName() == Name && space == TSchemaSpace::Instance)
      kept = a;
    else
      Element.RemoveChild(a);
  }
  if (!kept) kept = Element.AddAttribute(PrefixFor(Element, cZmSchemaInstanceURI, u"xsi").append(u":").append(Name));
  kept->SetNodeValue(Value);
}

void SetNull(TZmDOMElement& Element) {
  Element.SetNodeValue(StringView());
  SayType(Element, cNil, u"true");
}

void SetTyped(TZmDOMElement& Element, const TZmTypeInfo& Type, StringView Escaped) {
  Element.SetNodeValue(ZmXMLToStr(Escaped));
  const String name = Type.SchemaName({});
  const bool builtIn = Type.SchemaName(u"xsd") != name;
  SayType(Element, cType, builtIn ? PrefixFor(Element, cZmSchemaURI, u"xsd") + u":" + name : name);
}

}  // namespace

bool TZmDOMElement::GetAsBoolean() const { return ZmXMLToBool(GetText()); }
TDateTime TZmDOMElement::GetAsDateTime() const { return ZmXMLToDateTime(GetText()); }
double TZmDOMElement::GetAsDouble() const { return ZmXMLToDouble(GetText()); }
std::int64_t TZmDOMElement::GetAsInt64() const { return ZmXMLToInt64(GetText()); }
std::int32_t TZmDOMElement::GetAsInteger() const { return ZmXMLToInt(GetText()); }
std::string TZmDOMElement::GetAsAnsiString() const { return ToUTF8(GetText()); }

void TZmDOMElement::SetAsBoolean(bool Value) { SetNodeValue(ZmBoolToXML(Value)); }
void TZmDOMElement::SetAsDateTime(TDateTime Value) { SetNodeValue(ZmDateTimeToXML(Value)); }
void TZmDOMElement::SetAsDouble(double Value) { SetNodeValue(ZmDoubleToXML(Value)); }
void TZmDOMElement::SetAsInt64(std::int64_t Value) { SetNodeValue(ZmInt64ToXML(Value)); }
void TZmDOMElement::SetAsInteger(std::int32_t Value) { SetNodeValue(ZmIntToXML(Value)); }
void TZmDOMElement::SetAsString(const TZmAnyText& Value) { SetNodeValue(Value); }
void TZmDOMElement::SetAsAnsiString(std::string_view Value) { SetNodeValue(Value); }

Variant TZmDOMElement::GetAsVariant() {
  const TContent content = ContentOf(*this);
  if (content.IsNull) return Null();
  String text = GetText();
  switch (content.Type->GetMainTypeKind()) {
    case mtkString:
      if (content.Type->TypeKind < rtkBoolean) return text;
      return ZmXMLToValue(text, content.Type).AsVariant();  // an enumeration or a set
    case mtkNone:
      return ZmXMLToVariant(ZmStrToXML(text, true, true), varVariant);
    default:
      return ZmXMLToVariant(text, content.Type->TypeKind);
  }
}

TValue TZmDOMElement::GetAsValue() {
  const TContent content = ContentOf(*this);
  if (content.IsNull) return TValue();
  const String text = GetText();
  if (content.Type == TZmTypes::Of<String>()) return TValue::From(text);
  const TZmMainTypeKind kind = content.Type->GetMainTypeKind();
  const bool decodes = kind == mtkString || kind == mtkNone;
  return ZmXMLToValue(decodes ? ZmStrToXML(text, true, true) : text, content.Type);
}

void TZmDOMElement::SetAsVariant(const Variant& Value) {
  if (VarIsNull(Value) || VarIsEmpty(Value)) return SetNull(*this);
  SetTyped(*this, *TZmTypes::VarTypeInfo(Value), ZmVariantToXML(Value));
}

void TZmDOMElement::SetAsValue(const TValue& Value) {
  const TValueClassHelper helper(Value);
  if (helper.IsNull()) return SetNull(*this);
  const String text = ZmValToXML(Value);
  SetTyped(*this, *helper.ZmTypeInfo(), text);
}

void TZmDOMDocument::SetUseSchemaInstance(bool Value) {
  FUseSchemaInstance = Value;
  if (!Value || !FRootNode) return;
  if (!FRootNode->FindNamespace(cZmSchemaInstanceURI)) FRootNode->SetAttribute(u"xmlns:xsi", cZmSchemaInstanceURI);
  if (!FRootNode->FindNamespace(String(cZmSchemaURI) + u"-")) FRootNode->SetAttribute(u"xmlns:xsd", cZmSchemaURI);
}

}  // namespace zm
