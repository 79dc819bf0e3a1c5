#include <unordered_set>
#include <vector>

#include "zamrit/common/TextStreams.h"
#include "zamrit/xml/dom/TreeDetail.h"
#include "zamrit/xml/dom/WriterDetail.h"

namespace zm {

namespace detail {

namespace {

using TKind = TDOMTree::TKind;

/// Writes a node and all below it, in a loop over the depth. A node below of an application's own class is asked to
/// write itself.
class TXMLWriter {
 public:
  TXMLWriter(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level)
      : FOut(Stream, CodePage), FPage(CodePage), FFormatted(Formatted), FLevel(Level) {}

  /// The start is written by the rules of the library, whoever has derived from its class.
  void Write(TZmDOMNode* Start) { WriteFrom(Start, Begin(Start)); }
  /// What stands in an element, without its tags.
  void WriteContent(TZmDOMNode* Element) {
    FBare = Element;
    WriteFrom(Element, FirstIn(Element));
  }

 private:
  /// A place in the children of a node whose list is not what the chain says.
  struct TPlace {
    TZmDOMNode* Parent;
    const TZmDOMNodeListBase* List;
    int Index;
    TZmDOMNode* Node;
  };

  void WriteFrom(TZmDOMNode* Start, TZmDOMNode* First);
  ZM_INLINE TZmDOMNode* BeginBelow(TZmDOMNode* Node) {
    if (!TDOMTree::IsDerived(Node)) [[likely]]
      return Begin(Node);
    WriteDerived(Node);
    return nullptr;
  }
  ZM_INLINE TZmDOMNode* Begin(TZmDOMNode* Node);
  void WriteDerived(TZmDOMNode* Node);
  ZM_INLINE TZmDOMNode* Behind(TZmDOMNode*& Node);
  TZmDOMNode* FirstIn(TZmDOMNode* Parent);
  TZmDOMNode* NextInList();

  ZM_INLINE TZmDOMNode* Open(TZmDOMNode* Element);
  bool PutScattered(TZmDOMNode* Element);
  void Close(TZmDOMNode* Element);
  ZM_INLINE void WriteAttribute(TZmDOMNode* Attribute) {
    if (!TDOMTree::IsDerived(Attribute)) [[likely]]
      PutAttribute(Attribute);
    else
      WriteDerived(Attribute);
  }
  ZM_INLINE void PutAttribute(const TZmDOMNode* Attribute);
  void PutComment(TZmDOMNode* Comment);
  void PutInstruction(TZmDOMNode* Instruction);
  ZM_INLINE void PutText(const TZmDOMNode* Node);
  ZM_NOINLINE void PutAnyText(const TZmDOMNode* Node);

  /// Whether there is room for a name and three characters, and nothing to be said of it.
  static bool IsShort(const TDOMName& Name) { return Name.PlainSize < TTreeOutput::cMost - 2; }
  static bool IsAttribute(const TZmDOMNode* Node) { return Node->GetNodeType() == ntAttribute; }
  static bool PreservesSpace(const TZmDOMNode* Node) {
    const bool plain = Node->GetNodeType() == ntElement && !TDOMTree::IsDerived(Node);
    return plain ? TDOMTree::Has(Node, dfPreserveSpace) : Node->GetPreserveSpace();
  }
  void Indent() {
    if (FLevel >= 0) FOut.PutBlanks(2 * (static_cast<std::size_t>(FLevel) + 1));
  }
  void IndentIn(const TZmDOMNode* Parent) {
    if (Parent && Parent->GetNodeType() == ntElement && !PreservesSpace(Parent)) Indent();
  }
  bool IsBehindText();
  bool IsLong();

  TTreeOutput FOut;
  const std::uint16_t FPage;
  const bool FFormatted;
  int& FLevel;
  bool FFar = false;   // the stream stands behind any byte order mark
  bool FLong = false;  // the stream is longer than any byte order mark
  const TZmDOMNode* FBare = nullptr;
  std::vector<TPlace> FPlaces;
  std::unordered_set<const TZmDOMNode*> FOpen;  // the parents in FPlaces
};

void TXMLWriter::WriteFrom(TZmDOMNode* Start, TZmDOMNode* First) {
  for (TZmDOMNode *node = Start, *next = First;;) {
    while (!next) {
      if (node == Start && FPlaces.empty()) return FOut.Flush();
      next = Behind(node);
    }
    node = next;
    next = BeginBelow(node);
  }
}

// Writes a node up to its first child, which is the result.
TZmDOMNode* TXMLWriter::Begin(TZmDOMNode* Node) {
  switch (Node->GetNodeType()) {
    case ntElement:
      return Open(Node);
    case ntDocument:
      return FirstIn(Node);
    case ntText:
      PutText(Node);
      break;
    case ntAttribute:
      PutAttribute(Node);
      break;
    case ntCDATA:
      FOut.PutMark("<![CDATA[");
      PutText(Node);
      FOut.PutMark("]]>");
      break;
    case ntComment:
      PutComment(Node);
      break;
    case ntProcessingInstruction:
      PutInstruction(Node);
      break;
    default:
      break;
  }
  return nullptr;
}

void TXMLWriter::WriteDerived(TZmDOMNode* Node) {
  FOut.Flush();
  Node->_SaveToStream(FOut.Stream(), FPage, FFormatted, FLevel);
}

// The sibling behind a node that is written; where there is none the parent is closed and takes the node's place.
TZmDOMNode* TXMLWriter::Behind(TZmDOMNode*& Node) {
  if (!FPlaces.empty() && FPlaces.back().Node == Node) [[unlikely]] {
    Node = FPlaces.back().Parent;
    if (TZmDOMNode* const next = NextInList()) return next;
  } else {
    TZmDOMNode* next = TDOMTree::Next(Node);
    while (next && IsAttribute(next)) next = TDOMTree::Next(next);
    if (next) return next;
    Node = Node->ParentNode();
  }
  if (Node->GetNodeType() == ntElement && Node != FBare) Close(Node);
  return nullptr;
}

TZmDOMNode* TXMLWriter::FirstIn(TZmDOMNode* Parent) {
  if (const TZmDOMNodeListBase* const list = TDOMTree::OwnList(Parent, TKind::All)) [[unlikely]] {
    if (!FOpen.insert(Parent).second) throw EStackOverflow(u"Stack overflow");  // it stands below itself
    FPlaces.push_back({Parent, list, -1, nullptr});
    return NextInList();
  }
  TZmDOMNode* node = TDOMTree::First(Parent);
  while (node && IsAttribute(node)) node = TDOMTree::Next(node);
  return node;
}

TZmDOMNode* TXMLWriter::NextInList() {
  TPlace& place = FPlaces.back();
  while (++place.Index < place.List->Count()) {
    place.Node = place.List->GetItem(place.Index);
    if (!IsAttribute(place.Node)) return place.Node;
  }
  FOpen.erase(place.Parent);
  FPlaces.pop_back();
  return nullptr;
}

TZmDOMNode* TXMLWriter::Open(TZmDOMNode* Element) {
  if (FFormatted && !PreservesSpace(Element)) {
    if (FFar || IsBehindText()) FOut.PutMark("\r\n");
    Indent();
  }
  const TDOMName& record = TDOMTree::Name(Element);
  const std::string_view name = record.UTF8;
  if (IsShort(record)) [[likely]] {
    char* const to = FOut.Room(name.size() + 1);
    *to = '<';
    FOut.Take(TTreeOutput::CopyShort(to + 1, name));
  } else {
    FOut.PutMark("<");
    FOut.Put(name, record.HasSurrogates());
  }
  TZmDOMNode* first = nullptr;
  bool content;
  if (!TDOMTree::Has(Element, static_cast<TDOMFlags>(dfOwnLists | dfLateAttributes))) [[likely]] {
    first = TDOMTree::First(Element);
    for (; first && IsAttribute(first); first = TDOMTree::Next(first)) WriteAttribute(first);
    const TZmDOMNode* some = first;
    while (some && some->GetNodeType() == ntProcessingInstruction) some = TDOMTree::Next(some);
    content = some != nullptr;
  } else {
    content = PutScattered(Element);
    if (content) first = FirstIn(Element);
  }
  if (!content) {
    FOut.PutMark(" />");
    return nullptr;
  }
  FOut.PutMark(">");
  ++FLevel;
  if (!first) Close(Element);
  return first;
}

// The attributes where they stand in a list of their own or among other children. Returns whether there is content.
bool TXMLWriter::PutScattered(TZmDOMNode* Element) {
  if (const TZmDOMNodeListBase* const list = TDOMTree::OwnList(Element, TKind::Attributes)) {
    for (int i = 0; i < list->Count(); ++i)
      if (IsAttribute(list->GetItem(i))) WriteAttribute(list->GetItem(i));
  } else {
    for (TZmDOMNode* node = TDOMTree::First(Element); node; node = TDOMTree::Next(node))
      if (IsAttribute(node)) WriteAttribute(node);
  }
  return TDOMTree::FirstOfKind(Element, TKind::Elements) || TDOMTree::FirstOfKind(Element, TKind::Characters);
}

void TXMLWriter::Close(TZmDOMNode* Element) {
  --FLevel;
  if (FFormatted && !PreservesSpace(Element) && TDOMTree::FirstOfKind(Element, TKind::Elements)) {
    FOut.PutMark("\r\n");
    Indent();
  }
  const TDOMName& record = TDOMTree::Name(Element);
  const std::string_view name = record.UTF8;
  if (IsShort(record)) [[likely]] {
    char* to = TTreeOutput::CopyMark(FOut.Room(name.size() + 3), "</");
    to = TTreeOutput::CopyShort(to, name);
    *to = '>';
    FOut.Take(to + 1);
  } else {
    FOut.PutMark("</");
    FOut.Put(name, record.HasSurrogates());
    FOut.PutMark(">");
  }
}

void TXMLWriter::PutAttribute(const TZmDOMNode* Attribute) {
  const TDOMName& record = TDOMTree::Name(Attribute);
  const std::string_view name = record.UTF8;
  if (IsShort(record)) [[likely]] {
    char* to = FOut.Room(name.size() + 3);
    *to = ' ';
    to = TTreeOutput::CopyShort(to + 1, name);
    FOut.Take(TTreeOutput::CopyMark(to, "=\""));
  } else {
    FOut.PutMark(" ");
    FOut.Put(name, record.HasSurrogates());
    FOut.PutMark("=\"");
  }
  PutText(Attribute);
  FOut.PutMark("\"");
}

void TXMLWriter::PutComment(TZmDOMNode* Comment) {
  if (FFormatted) {
    if (!PreservesSpace(Comment)) FOut.PutMark("\r\n");
    IndentIn(Comment->ParentNode());
  }
  FOut.PutMark("<!--");
  PutText(Comment);
  FOut.PutMark("-->");
}

void TXMLWriter::PutInstruction(TZmDOMNode* Instruction) {
  if (FFormatted && (FLong || IsLong())) {
    FOut.PutMark("\r\n");
    IndentIn(Instruction->ParentNode());
  }
  FOut.PutMark("<?");
  FOut.Put(TDOMTree::Name(Instruction).UTF8, TDOMTree::Name(Instruction).HasSurrogates());
  if (!TDOMTree::RawText(Instruction).empty()) {
    FOut.PutMark(" ");
    PutText(Instruction);
  }
  FOut.PutMark("?>");
}

void TXMLWriter::PutText(const TZmDOMNode* Node) {
  const std::string_view text = TDOMTree::RawText(Node);
  // Behind a text of a load 16 bytes can be read.
  const bool far = TDOMTree::Has(Node, static_cast<TDOMFlags>(dfHeapText | dfSurrogates));
  if (far || text.size() - 1 >= TTreeOutput::cMost) [[unlikely]]
    return PutAnyText(Node);
  FOut.Take(TTreeOutput::CopyShort(FOut.Room(text.size()), text));
}

void TXMLWriter::PutAnyText(const TZmDOMNode* Node) {
  if (TDOMTree::Has(Node, dfSurrogates))
    FOut.PutSurrogates(TDOMTree::RawText(Node));
  else
    FOut.Put(TDOMTree::RawText(Node));
}

// Whether something stands in front of the place in the stream, other than a mark of UTF-16.
bool TXMLWriter::IsBehindText() {
  FOut.Flush();
  TStream& stream = *FOut.Stream();
  const std::int64_t position = stream.GetPosition();
  FFar = position > 2;
  if (position != 2) return position > 0;
  try {
    stream.SetPosition(0);
  } catch (const EStreamError&) {
    return false;  // a stream that only goes forward: two bytes of markup do not end anything
  }
  unsigned char bytes[2] = {};
  const std::size_t read = stream.Read(bytes, 2);
  stream.SetPosition(2);
  return read != 2 || bytes[0] != cZmUTF16LE[0] || bytes[1] != cZmUTF16LE[1];
}

bool TXMLWriter::IsLong() {
  FOut.Flush();
  TStream& stream = *FOut.Stream();
  try {
    FLong = stream.GetSize() > 4;
  } catch (const EStreamError&) {  // of a stream that only goes forward
    FLong = stream.GetPosition() > 4;
  }
  return FLong;
}

void Save(const TZmDOMNode* Node, TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) {
  TXMLWriter(Stream, CodePage, Formatted, Level).Write(const_cast<TZmDOMNode*>(Node));
}

String InnerXML(const TZmDOMElement* Element, bool Formatted) {
  const auto stream = Create<TZmStringStream>(cZmPageUTF16);
  int level = -1;
  TXMLWriter(stream.get(), cZmPageUTF16, Formatted, level).WriteContent(const_cast<TZmDOMElement*>(Element));
  return stream->GetAsString();
}

}  // namespace

}  // namespace detail

void TZmDOMNode::_SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) {
  detail::Save(this, Stream, CodePage, Formatted, Level);
}
void TZmDOMCharacterData::_SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) {
  detail::Save(this, Stream, CodePage, Formatted, Level);
}
void TZmDOMAttribute::_SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) {
  detail::Save(this, Stream, CodePage, Formatted, Level);
}
void TZmDOMProcessingInstruction::_SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) {
  detail::Save(this, Stream, CodePage, Formatted, Level);
}
void TZmDOMElement::_SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) {
  detail::Save(this, Stream, CodePage, Formatted, Level);
}
void TZmDOMDocument::_SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) {
  detail::Save(this, Stream, CodePage, Formatted, Level);
}

String TZmDOMElement::GetInnerXML() const { return detail::InnerXML(this, false); }
String TZmDOMElement::GetFormattedInnerXML() const { return detail::InnerXML(this, true); }

void TZmDOMDocument::SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, bool WriteBOM) {
  if (WriteBOM && CodePage == cZmPageUTF16) Stream->WriteBuffer(cZmUTF16LE, sizeof cZmUTF16LE);
  if (WriteBOM && CodePage == cZmPageUTF8) Stream->WriteBuffer(cZmUTF8, sizeof cZmUTF8);
  SaveToStream(Stream, CodePage, Formatted);
}

void TZmDOMDocument::SaveToStream(TStream* Stream, bool Formatted, bool WriteBOM) {
  SaveToStream(Stream, FCodePage, Formatted, WriteBOM);
}

void TZmDOMDocument::SaveToFile(const TZmAnyText& FileName, bool Formatted, bool WriteBOM) {
  const auto stream = Create<TFileStream>(FileName.Text(), fmCreate);
  SaveToStream(stream.get(), Formatted, WriteBOM);
}

namespace {

String XMLText(TZmDOMDocument& Document, bool Formatted) {
  const auto stream = Create<TZmStringStream>(cZmPageUTF16);
  Document.SaveToStream(stream.get(), cZmPageUTF16, Formatted);
  return stream->GetWString();
}

}  // namespace

String TZmDOMDocument::GetXML() { return XMLText(*this, false); }
String TZmDOMDocument::GetFormattedXML() { return XMLText(*this, true); }

}  // namespace zm
