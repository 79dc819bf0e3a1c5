#include "zamrit/xml/sax/Attributes.h"

#include <algorithm>
#include <bit>

#include "zamrit/xml/sax/XMLErrors.h"

namespace zm {
namespace {

constexpr std::size_t cFirstBlock = 16;
constexpr std::size_t cBlocksKept = 6;  // about a thousand records stay for the next element

}  // namespace

void TZmSAXXMAttributes::Add(StringView LocalName, StringView QName, StringView URI, StringView Value,
                             TZmSAXAttributeType AttrType) {
  const auto copy = [this](StringView text) {
    auto to = static_cast<char16_t*>(FTexts.allocate(text.size() * sizeof(char16_t), alignof(char16_t)));
    std::copy(text.begin(), text.end(), to);
    return StringView(to, text.size());
  };
  FHasTexts = true;
  AddBorrowed(copy(LocalName), copy(QName), copy(URI), copy(Value), AttrType);
}

// Back to the first block of records and no texts.
void TZmSAXXMAttributes::GiveBack() {
  if (FHasTexts) FTexts.release();
  FHasTexts = false;
  if (FBlocks.size() > cBlocksKept) FBlocks.resize(cBlocksKept);
  FBlocksUsed = 1;
  FFreeEnd = FBlocks[0].get() + cFirstBlock;
}

TZmSAXXMAttribute* TZmSAXXMAttributes::NewBlock() {
  const std::size_t size = cFirstBlock << FBlocksUsed;
  if (FBlocksUsed == FBlocks.size()) FBlocks.push_back(std::make_unique_for_overwrite<TZmSAXXMAttribute[]>(size));
  FFree = FBlocks[FBlocksUsed++].get();
  FFreeEnd = FFree + size;
  return FFree;
}

TZmSAXXMAttribute* TZmSAXXMAttributes::At(int Index) const {
  if (Index < 0 || Index >= FCount) return nullptr;
  const auto index = static_cast<std::size_t>(Index);
  const std::size_t block = static_cast<std::size_t>(std::bit_width(index / cFirstBlock + 1)) - 1;
  return &FBlocks[block][index - cFirstBlock * ((std::size_t{1} << block) - 1)];
}

PZmSAXXMAttribute TZmSAXXMAttributes::GetAttribute(int Index) {
  TZmSAXXMAttribute* record = At(Index);
  if (!record) throw EZmXMLParseError(_cZmXMLListIndexOutOfBounds1, {Index}, xecListIndexOutOfBounds);
  FCurrent = record;
  return record;
}

template <class Test>
TZmSAXXMAttribute* TZmSAXXMAttributes::FindFirst(Test Matches) {
  for (TZmSAXXMAttribute* a = FFirst; a; a = a->Next) {
    if (!Matches(*a)) continue;
    FCurrent = a;
    return a;
  }
  return nullptr;
}

TZmSAXXMAttribute* TZmSAXXMAttributes::FindName(StringView QName) {
  return FindFirst([QName](const TZmSAXXMAttribute& a) { return SameText(a.QName, QName); });
}

TZmSAXXMAttribute* TZmSAXXMAttributes::FindName(StringView URI, StringView LocalName, bool AnyURI) {
  return FindFirst(
      [=](const TZmSAXXMAttribute& a) { return SameText(a.LocalName, LocalName) && (AnyURI || SameText(a.URI, URI)); });
}

TZmSAXXMAttribute& TZmSAXXMAttributes::Get(StringView QName) {
  if (TZmSAXXMAttribute* record = FindName(QName)) return *record;
  throw EZmXMLParseError(_cZmXMLListIndexOutOfBounds2, {QName}, xecListIndexOutOfBounds);
}

TZmSAXXMAttribute& TZmSAXXMAttributes::Get(StringView URI, StringView LocalName, bool AnyURI) {
  if (TZmSAXXMAttribute* record = FindName(URI, LocalName, AnyURI)) return *record;
  throw EZmXMLParseError(_cZmXMLListIndexOutOfBounds3, {URI, LocalName}, xecListIndexOutOfBounds);
}

int TZmSAXXMAttributes::GetIndex(StringView QName) {
  const TZmSAXXMAttribute* record = FindName(QName);
  return record ? record->Idx : -1;
}

int TZmSAXXMAttributes::GetIndex(StringView URI, StringView LocalName) {
  const TZmSAXXMAttribute* record = FindName(URI, LocalName, false);
  return record ? record->Idx : -1;
}

TZmSAXAttributeType TZmSAXXMAttributes::GetType(StringView URI, StringView LocalName) {
  return Get(URI, LocalName, false).AttrType;
}

StringView TZmSAXXMAttributes::GetValue(StringView URI, StringView LocalName) {
  return Get(URI, LocalName, URI == u"*").Value;
}

}  // namespace zm
