// The XML document over any bytes: what is saved loads again and is saved alike, and edits in two documents, with
// handles in hand, leave trees whose links agree.

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/Check.h"
#include "tests/support/AllWays.h"
#include "zamrit/xml/dom/TreeDetail.h"
#include "zamrit/xml/uZmXMLDOM.h"

using namespace zm;
using detail::TDOMTree;

namespace {

using TKind = TDOMTree::TKind;
using TNodeHandle = TZmIntf<IZmDOMNode>;

std::string Saved(TZmDOMDocument& Document, std::uint16_t Page = cZmPageUTF8, bool Format = false) {
  TMemoryStream stream;
  Document.SaveToStream(&stream, Page, Format, false);
  return {static_cast<const char*>(stream.GetMemory()), static_cast<std::size_t>(stream.GetSize())};
}

bool Load(TZmDOMDocument& Document, const std::string& Text, std::uint16_t Page = cZmPageUTF8,
          std::size_t Read = 1 << 20) {
  TShortStream stream(Text, Read);
  return Try([&] { Page == 0 ? Document.LoadFromStream(&stream) : Document.LoadFromStream(&stream, Page); });
}

// Whether a document need not come back from its bytes: JSON goes into the tree without being escaped (its root
// declares the namespace of schema instances), a value with a double quote is written between such, and a NUL in a tag
// may have ended the source in front of the root.
bool IsBroken(TZmDOMDocument& Document) {
  if (!Document.GetRootNode() || Document.GetUseSchemaInstance()) return true;
  for (TZmDOMNode* node = Document.FirstChild(); node; node = TDOMTree::Following(node, &Document))
    if (node->GetNodeType() == ntAttribute && TDOMTree::RawText(node).find('"') != std::string_view::npos) return true;
  return false;
}

// Instructions alone in an element are lost by the first saving; from the second on nothing changes.
void RequireFixedPoint(TZmDOMDocument& Document, bool Kept) {
  const std::string first = Saved(Document);
  TZmDOMDocument second, third, wide, formatted;
  const bool again = Load(second, first);
  Require((again && second.GetRootNode()) || !Kept);
  if (!again || !second.GetRootNode()) return;
  const std::string saved = Saved(second);
  Require(Load(third, saved));
  Require(Saved(third) == saved);
  if (saved.find("\xEF\xBF\xBD") == std::string::npos) {  // a lone surrogate is kept in UTF-16 alone
    Require(FromUTF8(saved) == second.GetXML());
    Require(Load(wide, Saved(second, cZmPageUTF16), cZmPageUTF16));
    Require(Saved(wide) == saved);
  }
  Require(Load(formatted, Saved(second, cZmPageUTF8, true)));
}

// Whether a list shows the children of its kind in the order of the chain.
void RequireList(TZmDOMNode* Node, TKind Kind) {
  const TZmDOMNodeListBase& list = TDOMTree::List(Node, Kind);
  int count = 0;
  for (TZmDOMNode* child = Node->FirstChild(); child; child = child->NextSibling())
    if (TDOMTree::IsOfKind(child, Kind)) Require(list.GetItem(count++) == child);
  Require(list.Count() == count);
}

// Whether a list that says something else holds nothing but children, and is what the way from one to the next shows.
void RequireOwnList(TZmDOMNode* Node, TKind Kind) {
  const TZmDOMNodeListBase& list = TDOMTree::List(Node, Kind);
  TZmDOMNode *child = TDOMTree::FirstOfKind(Node, Kind), *last = nullptr;
  for (TZmDOMNode* const item : list) {
    Require(item == child && item->ParentNode() == Node);
    Require(TDOMTree::PreviousOfKind(item, Kind) == last);
    last = item;
    child = TDOMTree::NextOfKind(item, Kind);
  }
  Require(child == nullptr && TDOMTree::LastOfKind(Node, Kind) == last);
}

bool Declares(const TZmDOMAttribute* Attribute, StringView Prefix) {
  return Prefix.empty() ? SameText(Attribute->GetQualifiedName(), u"xmlns")
                        : SameText(Attribute->GetPrefix(), u"xmlns") && SameText(Attribute->GetLocalName(), Prefix);
}

// The declaration that a prefix is bound to: the last one in the nearest element that has one.
TZmDOMAttribute* Binding(TZmDOMElement* Element, StringView Prefix) {
  for (; Element; Element = Element->ParentElement()) {
    TZmDOMAttribute* last = nullptr;
    for (TZmDOMNode* child = TDOMTree::First(Element); child; child = TDOMTree::Next(child))
      if (child->GetNodeType() == ntAttribute && Declares(static_cast<TZmDOMAttribute*>(child), Prefix))
        last = static_cast<TZmDOMAttribute*>(child);
    if (last) return last;
  }
  return nullptr;
}

void RequireNamespace(TZmDOMElement* Element) {
  TZmDOMAttribute* const declaration = Element->GetNamespace();
  // Who asks for a namespace under another prefix is linked to the declaration that there is.
  if (Element->GetDOMDocument() && !(declaration && !Declares(declaration, Element->GetPrefix())))
    Require(declaration == Binding(Element, Element->GetPrefix()));
  if (!declaration) return;
  Require(declaration->IsNamespace());
  TZmDOMNode* above = Element;
  while (above && above != declaration->ParentNode()) above = above->ParentNode();
  Require(above != nullptr);
}

// Whether all links in and below a node agree.
void RequireWhole(TZmDOMNode* Top) {
  constexpr TKind kinds[] = {TKind::All, TKind::Elements, TKind::Attributes, TKind::Characters};
  for (TZmDOMNode* node = Top; node; node = TDOMTree::Following(node, Top)) {
    Require(node == Top || node->GetDOMDocument() == Top->GetDOMDocument());
    Require(!node->IsDestroying());
    if (!TDOMTree::CanHaveChildren(node)) continue;
    const bool own = TDOMTree::Has(node, detail::dfOwnLists), element = node->GetNodeType() == ntElement;
    TZmDOMNode* last = nullptr;
    for (TZmDOMNode* child = TDOMTree::First(node); child; child = TDOMTree::Next(child)) {
      Require(child->ParentNode() == node && TDOMTree::Previous(child) == last);
      last = child;
    }
    Require(TDOMTree::Last(node) == last);
    for (const TKind kind : kinds)
      if (element || kind == TKind::All) own ? RequireOwnList(node, kind) : RequireList(node, kind);
    if (element) RequireNamespace(static_cast<TZmDOMElement*>(node));
  }
}

constexpr const char* cNames[] = {"a", "b", "p:a", "q:b", "xmlns", "xmlns:p", "xmlns:q", "XMLNS", "xml:space", "P:c"};
constexpr const char* cValues[] = {"", "u", "v", "preserve", " ", "a<b>&\"'", "\xF0\x9F\x98\x80", "]]>"};
constexpr const char* cPaths[] = {"a/p:b", "//a", "*/..", "b/@p", "..", "text()|a"};

// Edits two documents, a byte for what is done and a byte for how.
class TEditor {
 public:
  explicit TEditor(TZmDOMDocument& First) {
    FTops.push_back(Supports<IZmDOMNode>(&First));
    FTops.push_back(Supports<IZmDOMNode>(Create<TZmDOMDocument>().get()));
    FAt = FTops[0];
  }

  void Run(const std::uint8_t* Script, std::size_t Size) {
    for (std::size_t i = 0; i + 1 < Size; i += 2) {
      Try([&] { Do(Script[i], Script[i + 1]); });
      Check();
    }
    FAt = nullptr;
    while (!FHeld.empty()) {
      FHeld.pop_back();
      if (FHeld.size() == 4) FTops.clear();
    }
  }

 private:
  static TZmDOMNode* NodeOf(const TNodeHandle& Handle) { return static_cast<TZmDOMNode*>(Handle->GetDOMObject()); }
  TZmDOMNode* At() const { return NodeOf(FAt); }
  TZmDOMElement& Element() const {
    if (At()->GetNodeType() != ntElement) throw Exception(u"no element");
    return *static_cast<TZmDOMElement*>(At());
  }
  TZmDOMNode* Child(int Index) const {
    if (!TDOMTree::CanHaveChildren(At())) return nullptr;
    for (TZmDOMNode* child = TDOMTree::First(At()); child; child = TDOMTree::Next(child))
      if (Index-- == 0) return child;
    return nullptr;
  }
  TZmDOMNode* AnyHeld(int Index) const {
    return FHeld.empty() ? nullptr : NodeOf(FHeld[static_cast<std::size_t>(Index) % FHeld.size()]);
  }
  void Hold(TZmDOMNode* Node) {
    if (Node && FHeld.size() < 16) FHeld.push_back(Supports<IZmDOMNode>(Node));
  }
  TZmDOMNodeListBase& AnyList(int Index) const {
    constexpr TKind kinds[] = {TKind::All, TKind::Elements, TKind::Attributes, TKind::Characters};
    Element();
    return TDOMTree::List(At(), kinds[Index & 3]);
  }

  void Check() const {
    std::vector<TZmDOMNode*> tops{At()};
    for (const auto* const handles : {&FTops, &FHeld})
      for (const TNodeHandle& handle : *handles) tops.push_back(NodeOf(handle));
    for (TZmDOMNode*& top : tops)
      while (top->ParentNode()) top = top->ParentNode();
    std::sort(tops.begin(), tops.end());
    tops.erase(std::unique(tops.begin(), tops.end()), tops.end());
    for (TZmDOMNode* const top : tops) RequireWhole(top);
  }

  void Do(int Edit, int How) {
    const char* const name = cNames[How % static_cast<int>(std::size(cNames))];
    const char* const value = cValues[(How >> 4) % static_cast<int>(std::size(cValues))];
    const auto position = static_cast<TZmDOMPosition>(How & 3);
    TZmDOMNode* const child = Child(How >> 2 & 7);
    switch (Edit % 36) {
      case 0:
      case 1:
        if (child) FAt = Supports<IZmDOMNode>(child);
        break;
      case 2:
        if (At()->ParentNode()) FAt = Supports<IZmDOMNode>(At()->ParentNode());
        break;
      case 3:
        FAt = FTops[static_cast<std::size_t>(How & 1)];
        break;
      case 4:
        Hold(child ? child : At());
        break;
      case 5:
        if (!FHeld.empty()) FHeld.erase(FHeld.begin() + How % static_cast<int>(FHeld.size()));
        break;
      case 6:
        if (AnyHeld(How)) FAt = Supports<IZmDOMNode>(AnyHeld(How));
        break;
      case 7:
        Element().InsertElement(name, position, child);
        break;
      case 8:
        Element().AddElement(value, name);
        break;
      case 9:
        Element().AddAttribute(name)->SetNodeValue(value);
        break;
      case 10:
        Element().AddAttribute(value, name);
        break;
      case 11:
        Element().InsertText(value, position, child);
        break;
      case 12:
        if (How & 1)
          Element().AddCDATA(value);
        else
          Element().AddComment(value);
        break;
      case 13: {
        auto instruction = Create<TZmDOMProcessingInstruction>();
        instruction->SetQualifiedName(name);
        At()->AppendChild(std::move(instruction));
        break;
      }
      case 14:
      case 15:
        if (TZmDOMNode* const node = AnyHeld(How >> 4)) At()->AddChild(node, child, position);
        break;
      case 16:
        if (child) At()->RemoveChild(child);
        break;
      case 17:
        if (TZmDOMNode* const first = NodeOf(FTops[static_cast<std::size_t>(How & 1)])->FirstChild())
          if (child) first->AddChild(child, nullptr, rdpLast);
        break;
      case 18:
        At()->SetQualifiedName(name);
        break;
      case 19:
        if (How & 1)
          At()->SetLocalName(name);
        else
          At()->SetPrefix(How & 2 ? "p" : How & 4 ? "q" : "");
        break;
      case 20:
        At()->SetNodeValue(value);
        break;
      case 21:
        Element().SetNamespaceURI(value);
        break;
      case 22:
        Hold(At()->CloneNode((How & 1) != 0).get());
        break;
      case 23:
        if ((How & 7) == 0) At()->Clear();
        break;
      case 24:
        At()->NormalizeTextNodes();
        break;
      case 25:
        At()->SetInnerXML(How & 1 ? "<a xmlns:p='u'><p:b xmlns='v'/>t</a> <?i d?>" : "t<b>");
        break;
      case 26:
        At()->RefreshNamespaces();
        break;
      case 27:
        if (child) AnyList(How).Delete(child);
        break;
      case 28:
        if (child && TDOMTree::IsOfKind(child, How & 3 ? TDOMTree::KindOf(child) : TKind::All))
          TDOMTree::List(&Element(), How & 3 ? TDOMTree::KindOf(child) : TKind::All)
              .Add(child, Child(How >> 5), position);
        break;
      case 29:
        AnyList(How).Clear();
        break;
      case 30:
        Element().SetAttributeNS(value, name, value);
        break;
      case 31:
        Element().ElementByName(name, {How & 64 ? soCreate : soRaise});
        break;
      case 32:
        At()->SelectSingleNode(cPaths[How % static_cast<int>(std::size(cPaths))],
                               How & 64 ? TZmDOMSelectOptions{soCreate} : TZmDOMSelectOptions{});
        break;
      case 33:
        Element().SetPreseveSpace((How & 1) != 0);
        break;
      case 34:
        if (TZmDOMDocument* const document = At()->GetDOMDocument()) {
          if (How & 1)
            document->SetUseSchemaInstance(true);
          else
            document->LoadFromXML(std::string_view(How & 2 ? "<p:r xmlns:p='u'><a/></p:r>" : "<r>"));
        }
        break;
      default:
        Element().SetAsVariant(How & 1 ? Variant(How) : Variant(FromUTF8(value)));
    }
  }

  std::vector<TNodeHandle> FTops;
  std::vector<TNodeHandle> FHeld;
  TNodeHandle FAt;
};

}  // namespace

// The first byte chooses the page and the size of a read, the second the length of the script in front of the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  static constexpr std::uint16_t pages[] = {cZmPageUTF8, 0, cZmPageUTF16, 1252, 932, 1201, cZmPageUTF8, 0};
  if (Size < 2) return 0;
  const std::uint16_t page = pages[Data[0] & 7];
  const std::size_t script = std::min<std::size_t>(Data[1], Size - 2);
  const std::string text(reinterpret_cast<const char*>(Data) + 2 + script, Size - 2 - script);

  auto document = Create<TZmDOMDocument>(), twin = Create<TZmDOMDocument>();
  const bool loaded = Load(*document, text, page);
  Require(Load(*twin, text, page, (Data[0] >> 3) + std::size_t{1}) == loaded);
  Require(Saved(*twin) == Saved(*document));
  RequireWhole(document.get());
  twin.reset();

  if (loaded) RequireFixedPoint(*document, !IsBroken(*document));
  Saved(*document, 932, true);
  Try([&] {
    TMemoryStream json;
    document->SaveToJSONStream(&json, true, true);
  });
  TEditor editor(*document);
  document.reset();
  editor.Run(Data + 2, script);
  return 0;
}
