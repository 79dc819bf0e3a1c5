#pragma once

#include <memory>
#include <memory_resource>
#include <vector>

#include "zamrit/xml/sax/Handlers.h"

namespace zm {

/// The attributes of one element, in order of appearance. Its owner frees it; interface references never do.
class TZmSAXXMAttributes : public TZmObject, public IZmSAXAttributes {
  ZM_OBJECT(TZmSAXXMAttributes, TZmObject)
 public:
  TZmSAXXMAttributes() { SetAutoDestroy(false); }

  /// Appends an attribute; the list copies the texts.
  void Add(StringView LocalName, StringView QName, StringView URI, StringView Value, TZmSAXAttributeType AttrType);
  /// Appends an attribute whose texts the caller keeps as long as the list refers to them.
  void AddBorrowed(StringView LocalName, StringView QName, StringView URI, StringView Value,
                   TZmSAXAttributeType AttrType) {
    TZmSAXXMAttribute* record = FFree != FFreeEnd ? FFree : NewBlock();
    FFree = record + 1;
    *record = {FLast, FCount++, LocalName, QName, URI, AttrType, Value, nullptr};
    (FLast ? FLast->Next : FFirst) = record;
    FLast = record;
    if (!FCurrent) FCurrent = record;
  }
  /// Removes all attributes.
  void Clear() {
    FFirst = FLast = FCurrent = nullptr;
    FCount = 0;
    if (FBlocksUsed > 1 || FHasTexts) GiveBack();
    FFree = FBlocksUsed ? FBlocks[0].get() : nullptr;
  }

  int Count() override { return FCount; }
  PZmSAXXMAttribute FirstAttribute() override { return FFirst; }
  PZmSAXXMAttribute GetAttribute(int Index) override;
  StringView GetLocalName(int Index) override { return GetAttribute(Index)->LocalName; }
  StringView GetQName(int Index) override { return GetAttribute(Index)->QName; }
  StringView GetURI(int Index) override { return GetAttribute(Index)->URI; }
  int GetIndex(StringView QName) override;
  int GetIndex(StringView URI, StringView LocalName) override;
  TZmSAXAttributeType GetType(int Index) override { return GetAttribute(Index)->AttrType; }
  TZmSAXAttributeType GetType(StringView QName) override { return Get(QName).AttrType; }
  TZmSAXAttributeType GetType(StringView URI, StringView LocalName) override;
  StringView GetValue(int Index) override { return GetAttribute(Index)->Value; }
  StringView GetValue(StringView QName) override { return Get(QName).Value; }
  StringView GetValue(StringView URI, StringView LocalName) override;

 private:
  TZmSAXXMAttribute* NewBlock();
  void GiveBack();
  TZmSAXXMAttribute* At(int Index) const;
  template <class Test>
  TZmSAXXMAttribute* FindFirst(Test Matches);
  TZmSAXXMAttribute* FindName(StringView QName);
  TZmSAXXMAttribute* FindName(StringView URI, StringView LocalName, bool AnyURI);
  TZmSAXXMAttribute& Get(StringView QName);
  TZmSAXXMAttribute& Get(StringView URI, StringView LocalName, bool AnyURI);

  TZmSAXXMAttribute* FFirst = nullptr;
  TZmSAXXMAttribute* FLast = nullptr;
  std::int32_t FCount = 0;
  TZmSAXXMAttribute* FCurrent = nullptr;
  // Records stand in blocks, each twice the size of the one before, so that they keep their place and an index leads to
  // its record at once.
  std::vector<std::unique_ptr<TZmSAXXMAttribute[]>> FBlocks;
  TZmSAXXMAttribute* FFree = nullptr;
  TZmSAXXMAttribute* FFreeEnd = nullptr;
  std::size_t FBlocksUsed = 0;
  std::pmr::monotonic_buffer_resource FTexts;
  bool FHasTexts = false;
};

}  // namespace zm
