#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "zamrit/common/ValueHelper.h"
#include "zamrit/platform/reflection/Reflection.h"
#include "zamrit/xml/dom/SchemaDetail.h"
#include "zamrit/xml/dom/WriterDetail.h"
#include "zamrit/xml/json/Values.h"

namespace zm {

namespace detail {

namespace {

String JSONName(StringView Name) {
  String name(Name);
  std::replace(name.begin(), name.end(), u'.', u'_');
  return name;
}

/// Whether an attribute is a value of its own, and not a part of the markup.
bool IsShown(const TZmDOMAttribute* Attribute) {
  return !Attribute->IsNamespace() && SchemaSpaceOf(Attribute) == TSchemaSpace::None;
}

/// The names of the child elements of an element, as a search for a child finds them.
class TChildNames {
 public:
  explicit TChildNames(const TZmDOMElement* Element)
      : FElement(Element), FFolded(Element->GetCollation() == TZmXPathCollationASCIICI) {}

  bool Has(StringView Name) {
    if (!FFilled) Fill();
    return FNames.count(Key(Name)) > 0;
  }

 private:
  String Key(StringView Name) const { return FFolded ? LowerCase(Name) : String(Name); }
  void Fill() {
    FFilled = true;
    const bool local = FElement->GetSelectMatchOption() == soLocalName;
    for (const TZmDOMElement* e = FElement->FirstElement(); e; e = e->NextElement())
      FNames.insert(Key(local ? e->GetLocalName() : e->GetQualifiedName()));
  }

  const TZmDOMElement* FElement;
  bool FFolded;
  bool FFilled = false;
  std::unordered_set<String> FNames;
};

/// Writes elements as members of JSON objects, in a loop over the depth.
class TJSONTreeWriter {
 public:
  TJSONTreeWriter(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level)
      : FOut(Stream, CodePage), FPage(CodePage), FFormatted(Formatted), FLevel(Level) {}

  /// The element is written by the rules of the library, whoever has derived from its class.
  void Write(TZmDOMElement* Element);
  void Write(const TZmDOMAttribute* Attribute);

 private:
  static constexpr std::size_t cNone = ~std::size_t{0};

  struct TChild {
    TZmDOMElement* Element;
    std::size_t Same;  // the next child of the same local name
    bool IsFirst;      // of its name
  };
  /// An element that is open: its children are those from First on, up to those of the next one.
  struct TObject {
    std::size_t First, Next;
    std::size_t InArray;  // the child that is written in the array that is open
  };

  void CloseOrGoOn();
  void PutMember(TZmDOMElement* Element);
  void PutMemberBelow(TZmDOMElement* Element);
  void PutName(const TZmDOMElement* Element);
  void PutValue(TZmDOMElement* Element, bool InArray);
  void PutLeaf(TZmDOMElement* Element);
  void PutAttributesBehind(TZmDOMElement* Element);
  void PutAttribute(TZmDOMAttribute* Attribute, TChildNames& Names);
  void PutAttribute(const TZmDOMAttribute* Attribute, const TZmDOMElement* Element, TChildNames& Names);
  void Collect(TZmDOMElement* Element);
  void PutQuoted(StringView Text);
  bool PutPlain(const TZmDOMNode* Node);

  void LineEnd() {
    if (FFormatted) FOut.PutMark("\r\n");
  }
  void Pad() {
    if (FFormatted && FLevel > 0) FOut.PutBlanks(2 * static_cast<std::size_t>(FLevel));
  }

  TTreeOutput FOut;
  const std::uint16_t FPage;
  const bool FFormatted;
  int& FLevel;
  std::vector<TObject> FObjects;
  std::vector<TChild> FChildren;
};

void TJSONTreeWriter::Write(TZmDOMElement* Element) {
  PutMember(Element);
  while (!FObjects.empty()) CloseOrGoOn();
  FOut.Flush();
}

void TJSONTreeWriter::Write(const TZmDOMAttribute* Attribute) {
  if (!IsShown(Attribute)) return;
  const TZmDOMElement* const element = Attribute->OwnerElement();
  if (element) {
    TChildNames names(element);
    PutAttribute(Attribute, element, names);
  }
  FOut.Flush();
}

// One step with the innermost element that is open.
void TJSONTreeWriter::CloseOrGoOn() {
  TObject& object = FObjects.back();
  if (object.InArray != cNone) {
    object.InArray = FChildren[object.InArray].Same;
    if (object.InArray != cNone) {
      FOut.PutMark(",");
      LineEnd();
      return PutValue(FChildren[object.InArray].Element, true);
    }
    LineEnd();
    Pad();
    FOut.PutMark("]");
  }
  const bool isFirst = object.Next == object.First;
  while (object.Next < FChildren.size() && !FChildren[object.Next].IsFirst) ++object.Next;
  if (object.Next == FChildren.size()) {
    FChildren.resize(object.First);
    FObjects.pop_back();
    LineEnd();
    Pad();
    --FLevel;
    return FOut.PutMark("}");
  }
  if (!isFirst) {
    FOut.PutMark(",");
    LineEnd();
  }
  const TChild& child = FChildren[object.Next];
  if (child.Same == cNone) {
    ++object.Next;
    return PutMemberBelow(child.Element);
  }
  object.InArray = object.Next++;
  Pad();
  PutName(child.Element);
  FOut.PutMark("[");
  PutValue(child.Element, true);
}

void TJSONTreeWriter::PutMemberBelow(TZmDOMElement* Element) {
  if (!TDOMTree::IsDerived(Element)) return PutMember(Element);
  FOut.Flush();
  Element->_SaveToJSONStream(FOut.Stream(), FPage, FFormatted, FLevel);
}

void TJSONTreeWriter::PutMember(TZmDOMElement* Element) {
  Pad();
  PutName(Element);
  PutValue(Element, false);
}

void TJSONTreeWriter::PutName(const TZmDOMElement* Element) {
  const TDOMName& name = TDOMTree::Name(Element);
  FOut.PutMark("\"");
  if (name.Prefix.empty() && name.UTF8.find('.') == std::string_view::npos)
    FOut.Put(name.UTF8, name.HasSurrogates());
  else
    FOut.Put(StringView(JSONName(name.LocalName)));
  FOut.PutMark("\": ");
}

// Writes a value, or opens it where it is an object.
void TJSONTreeWriter::PutValue(TZmDOMElement* Element, bool InArray) {
  if (!Element->HasChildElements()) {
    PutLeaf(Element);
    if (!InArray) PutAttributesBehind(Element);
    return;
  }
  FOut.PutMark("{");
  ++FLevel;
  TChildNames names(Element);
  for (TZmDOMAttribute* a = Element->FirstAttribute(); a; a = a->NextAttribute()) {
    if (!IsShown(a)) continue;
    LineEnd();
    PutAttribute(a, names);
    FOut.PutMark(",");
  }
  LineEnd();
  Collect(Element);
}

void TJSONTreeWriter::Collect(TZmDOMElement* Element) {
  const std::size_t first = FChildren.size();
  FObjects.push_back({first, first, cNone});
  std::unordered_map<StringView, std::size_t> last;  // the last child of each name
  for (TZmDOMElement* e = Element->FirstElement(); e; e = e->NextElement()) {
    const std::size_t index = FChildren.size();
    const auto [known, isNew] = last.emplace(e->GetLocalName(), index);
    if (!isNew) FChildren[std::exchange(known->second, index)].Same = index;
    FChildren.push_back({e, cNone, isNew});
  }
}

void TJSONTreeWriter::PutLeaf(TZmDOMElement* Element) {
  if (!Element->HasAttributes()) {  // a text
    const TZmDOMNode* const text = TDOMTree::FirstOfKind(Element, TDOMTree::TKind::Characters);
    if (text && !TDOMTree::IsDerived(Element) && !TDOMTree::NextOfKind(text, TDOMTree::TKind::Characters) &&
        PutPlain(text))
      return;
  }
  const TValue value = Element->GetAsValue();
  const TValueClassHelper helper(value);
  if (helper.IsNull()) return FOut.PutMark("null");
  const TZmTypeKind kind = helper.TypeKind();
  if (kind == rtkVariant) return FOut.Put(StringView(ZmVarToJSON(value.AsVariant())));
  if (helper.MainTypeKind() == mtkString && kind < rtkBoolean) return PutQuoted(value.AsString());
  if (helper.MainTypeKind() == mtkFloat && !std::isfinite(value.AsDouble())) return FOut.PutMark("null");
  FOut.Put(StringView(ZmValToJSON(value)));
}

void TJSONTreeWriter::PutAttributesBehind(TZmDOMElement* Element) {
  TChildNames names(Element);
  for (TZmDOMAttribute* a = Element->FirstAttribute(); a; a = a->NextAttribute()) {
    if (!IsShown(a)) continue;
    FOut.PutMark(", ");
    LineEnd();
    Pad();
    PutAttribute(a, names);
  }
}

void TJSONTreeWriter::PutAttribute(TZmDOMAttribute* Attribute, TChildNames& Names) {
  if (!TDOMTree::IsDerived(Attribute)) return PutAttribute(Attribute, Attribute->OwnerElement(), Names);
  FOut.Flush();
  Attribute->_SaveToJSONStream(FOut.Stream(), FPage, FFormatted, FLevel);
}

void TJSONTreeWriter::PutAttribute(const TZmDOMAttribute* Attribute, const TZmDOMElement* Element, TChildNames& Names) {
  String name = JSONName(String(Element->GetLocalName()).append(u"_").append(Attribute->GetLocalName()));
  while (Names.Has(name)) name.insert(name.begin(), u'_');
  Pad();
  FOut.PutMark("\"");
  FOut.Put(StringView(name));
  FOut.PutMark("\": ");
  if (!PutPlain(Attribute)) PutQuoted(Attribute->GetNodeValue());
}

void TJSONTreeWriter::PutQuoted(StringView Text) {
  FOut.PutMark("\"");
  FOut.Put(StringView(ZmStrToJSON(Text)));
  FOut.PutMark("\"");
}

// Writes a text in which nothing is to be decoded or escaped. Returns false, and writes nothing, where something is.
bool TJSONTreeWriter::PutPlain(const TZmDOMNode* Node) {
  if (TDOMTree::IsDerived(Node)) return false;
  const std::string_view text = TDOMTree::RawText(Node);
  const auto isPlain = [](char c) {
    return static_cast<signed char>(c) > '\r' && c != '"' && c != '/' && c != '\\' && c != '&';
  };
  if (!std::all_of(text.begin(), text.end(), isPlain)) return false;
  FOut.PutMark("\"");
  FOut.Put(text);
  FOut.PutMark("\"");
  return true;
}

}  // namespace

}  // namespace detail

void TZmDOMNode::_SaveToJSONStream(TStream*, std::uint16_t, bool, int&) {}

void TZmDOMAttribute::_SaveToJSONStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) {
  detail::TJSONTreeWriter(Stream, CodePage, Formatted, Level).Write(this);
}

void TZmDOMElement::_SaveToJSONStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) {
  detail::TJSONTreeWriter(Stream, CodePage, Formatted, Level).Write(this);
}

void TZmDOMElement::SaveToJSONStream(TStream* Stream, std::uint16_t CodePage, bool Formatted) {
  const auto putBrace = [&](StringView Text) {
    detail::TTreeOutput out(Stream, CodePage);
    out.Put(Text);
    out.Flush();
  };
  putBrace(Formatted ? u"{\r\n" : u"{");
  TZmDOMNode::SaveToJSONStream(Stream, CodePage, Formatted);
  putBrace(Formatted ? u"\r\n}" : u"}");
}

void TZmDOMDocument::_SaveToJSONStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) {
  for (TZmDOMNode* node = FirstChild(); node; node = node->NextSibling())
    node->_SaveToJSONStream(Stream, CodePage, Formatted, Level);
}

void TZmDOMDocument::SaveToJSONStream(TStream* Stream, bool Formatted, bool WriteBOM) {
  if (WriteBOM) Stream->WriteBuffer(cZmUTF8, sizeof cZmUTF8);
  SaveToJSONStream(Stream, cZmPageUTF8, Formatted);
}

}  // namespace zm
