#include <new>

#include "zamrit/platform/ASCIIDetail.h"
#include "zamrit/platform/TextDetail.h"
#include "zamrit/xml/json/TreeDetail.h"

namespace zm::detail {

namespace {

void AppendUnit(std::string& Out, char16_t Unit) {
  Out += static_cast<char>(0xE0 | Unit >> 12);
  Out += static_cast<char>(0x80 | (Unit >> 6 & 0x3F));
  Out += static_cast<char>(0x80 | (Unit & 0x3F));
}

}  // namespace

void NarrowText(StringView Text, std::string& Out, bool& Surrogates) {
  std::size_t run = 0;
  for (std::size_t i = 0; i < Text.size(); ++i) {
    if (!IsSurrogate(Text[i])) continue;
    if (IsHighSurrogate(Text[i]) && i + 1 < Text.size() && IsLowSurrogate(Text[i + 1])) {
      ++i;
      continue;
    }
    AppendUTF8(Text.substr(run, i - run), Out);
    AppendUnit(Out, Text[i]);
    Surrogates = true;
    run = i + 1;
  }
  AppendUTF8(Text.substr(run), Out);
}

String WidenText(std::string_view Text, bool Surrogates) {
  if (!Surrogates) return FromUTF8(Text);
  String out;
  std::size_t run = 0;
  for (std::size_t i = 0; i + 2 < Text.size(); ++i) {
    if (static_cast<unsigned char>(Text[i]) != 0xED || static_cast<unsigned char>(Text[i + 1]) < 0xA0) continue;
    AppendUTF16(Text.substr(run, i - run), out);
    out += static_cast<char16_t>(0xD000 | TrailBits(Text[i + 1]) << 6 | TrailBits(Text[i + 2]));
    i += 2;
    run = i + 1;
  }
  AppendUTF16(Text.substr(run), out);
  return out;
}

TJSONName::TJSONName(const TZmAnyText& Name, bool IgnoreCase) : FIgnoreCase(IgnoreCase) {
  bool surrogates = false;
  if (Name.IsWide())
    NarrowText(Name.Wide(), FName, surrogates);
  else
    FName = IsASCII(Name.UTF8()) ? std::string(Name.UTF8()) : ToUTF8(FromUTF8(Name.UTF8()));
  FIsASCII = IsASCII(FName);
  if (IgnoreCase) FWide = Name.Text();
}

bool TJSONName::IsFolded(const TJSONMemberNode& Node) const {
  const std::string_view name = Node.RawName();
  if (FIsASCII && IsASCII(name)) {
    if (name.size() != FName.size()) return false;
    for (std::size_t i = 0; i < name.size(); ++i)
      if (LowerASCII(name[i]) != LowerASCII(FName[i])) return false;
    return true;
  }
  return SameText(NameOf(Node), FWide);
}

void TJSONTree::End() { delete this; }

void TJSONTree::Recycle(TJSONNode* Node) {
  const bool member = Node->Has(jfWide);
  DropName(Node);
  Node->Flags = jfFree | (member ? jfWide : 0u);
  Node->First = nullptr;
  TJSONNode*& list = FViews > 0 ? FResting[member] : FFree[member];
  Node->Next = list;
  list = Node;
}

void TJSONTree::DropName(TJSONNode* Node) {
  if (Node->Has(jfOwnName)) ::operator delete(const_cast<char*>(AsMember(*Node).Name));
  Node->Flags &= ~(jfOwnName | jfNameSurrogates);
}

void TJSONTree::RemoveView() {
  if (--FViews == 0) {
    for (int member = 0; member < 2; ++member) {
      while (TJSONNode* const node = FResting[member]) {
        FResting[member] = node->Next;
        node->Next = FFree[member];
        FFree[member] = node;
      }
    }
  }
  Release();
}

TJSONExtra& TJSONTree::ExtraOf(TJSONNode* Node) {
  if (Node->Has(jfExtra)) return *Node->Extra;
  void* room = FFreeExtras;
  if (room)
    FFreeExtras = *static_cast<TJSONExtra**>(room);
  else
    room = FArena.Take(sizeof(TJSONExtra));
  TJSONExtra* const extra = new (room) TJSONExtra{{Node->Text}, nullptr, nullptr, Variant()};
  Node->Extra = extra;
  Node->Flags |= jfExtra;
  for (TJSONNode* owner = Node->Owner; owner && !owner->Has(jfMarked); owner = owner->Owner) owner->Flags |= jfMarked;
  return *extra;
}

void TJSONTree::DropExtra(TJSONNode* Node) {
  if (!Node->Has(jfExtra)) return;
  TJSONExtra* const extra = Node->Extra;
  Node->Text = extra->Text;
  Node->Flags &= ~std::uint32_t{jfExtra};
  extra->~TJSONExtra();
  *reinterpret_cast<TJSONExtra**>(extra) = FFreeExtras;
  FFreeExtras = extra;
}

void TJSONTree::SetName(TJSONMemberNode* Node, const TZmAnyText& Name) {
  std::string text;
  bool surrogates = false;
  NarrowText(Name.Text(), text, surrogates);
  char* const to = static_cast<char*>(::operator new(text.size() + 1));
  text.copy(to, text.size());
  DropName(Node);
  Node->Name = to;
  Node->NameSize = static_cast<std::uint32_t>(text.size());
  Node->Flags |= jfOwnName | (surrogates ? jfNameSurrogates : 0u);
}

}  // namespace zm::detail
