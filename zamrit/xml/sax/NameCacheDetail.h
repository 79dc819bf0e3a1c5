#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <deque>
#include <string>

#include "zamrit/platform/ScanDetail.h"
#include "zamrit/platform/Strings.h"

namespace zm::detail {

/// What a name says to the namespace rules.
enum class TNameRole : std::uint8_t {
  Ordinary,
  DefaultNamespace,  // xmlns
  Prefix             // xmlns:p
};

/// A name of the source in its parts. The texts stay where they are as long as the record lives.
struct TXMLName {
  std::uint64_t Head = 0;  // the first bytes of Raw and the last, for the cache
  std::uint64_t Tail = 0;
  std::uint64_t Size = 0;
  std::uint64_t Generation = 0;  // of the namespace list that URI was taken from
  StringView URI;
  StringView LocalName;
  StringView QName;
  StringView Prefix;
  TNameRole Role = TNameRole::Ordinary;
  void* Record = nullptr;  // what the consumer knows the name by
  // What came next the last time, as a guess that spares cutting and looking up a name.
  TXMLName* AfterStart = nullptr;      // the element that began after the start tag of this one
  TXMLName* AfterEnd = nullptr;        // and after its end tag
  TXMLName* FirstAttribute = nullptr;  // the first attribute of this element
  TXMLName* NextAttribute = nullptr;   // the attribute after this one
  String Text;                         // what the views point into
  std::string Raw;                     // as it stood in the source
};

/// Leads from the bytes of a name to its record, so that a name that recurs is converted once. Holds a bounded number
/// of names of bounded size; what does not fit is made anew each time by the caller.
class TNameCache {
 public:
  /// What the bytes of a name look like to the table.
  struct TKey {
    const char* Bytes;
    std::size_t Size;
    std::uint64_t Head;
    std::uint64_t Tail;
    std::uint32_t Slot;
  };

  /// Readable bounds what may be read behind the name.
  static ZM_INLINE TKey KeyOf(const char* Bytes, std::size_t Size, const char* Readable) {
    TKey key{Bytes, Size, 0, 0, 0};
    if (Size <= 16) {
      if (Readable - Bytes >= 16) {
        key.Head = Word(Bytes) & cMasks[Size];
        key.Tail = Word(Bytes + 8) & cMasks[Size < 8 ? 0 : Size - 8];
      } else {
        char padded[16] = {};
        std::memcpy(padded, Bytes, Size);
        key.Head = Word(padded);
        key.Tail = Word(padded + 8);
      }
    } else {
      key.Head = Word(Bytes);
      key.Tail = Word(Bytes + Size - 8);
    }
    const std::uint64_t mixed = (key.Head ^ std::rotl(key.Tail, 29) ^ Size) * 0x9E3779B97F4A7C15;
    key.Slot = static_cast<std::uint32_t>(mixed >> 54);
    return key;
  }

  /// Whether the text at Bytes begins with the name, with more of the text, up to End, behind it. Nil is no name.
  static ZM_INLINE bool IsAt(const TXMLName* Name, const char* Bytes, const char* End) {
    if (!Name) return false;
    const auto left = static_cast<std::size_t>(End - Bytes);
    if (Name->Size > 16) return left > Name->Size && IsLongAt(*Name, Bytes);
    if (left <= 16) return false;
    const std::uint64_t head = Word(Bytes), tail = Word(Bytes + 8);
    return (((head & cMasks[Name->Size]) ^ Name->Head) |
            ((tail & cMasks[Name->Size < 8 ? 0 : Name->Size - 8]) ^ Name->Tail)) == 0;
  }

  ZM_INLINE TXMLName* Find(const TKey& Key) {
    for (std::uint32_t i = 0; i < cProbes; ++i) {
      TXMLName* name = FSlots[(Key.Slot + i) % cSlots];
      if (!name) return nullptr;
      if (name->Head == Key.Head && name->Tail == Key.Tail && name->Size == Key.Size &&
          (Key.Size <= 16 || IsLongAt(*name, Key.Bytes)))
        return name;
    }
    return nullptr;
  }

  /// A new record for a name that Find did not find, or nil where there is no room for it.
  TXMLName* Add(const TKey& Key) {
    if (Key.Size > cLongest || FFull) return nullptr;
    for (std::uint32_t i = 0; i < cProbes; ++i) {
      TXMLName*& slot = FSlots[(Key.Slot + i) % cSlots];
      if (slot) continue;
      slot = &FNames.emplace_back();
      slot->Raw.assign(Key.Bytes, Key.Size);
      slot->Head = Key.Head;
      slot->Tail = Key.Tail;
      slot->Size = Key.Size;
      FFull = FNames.size() == cMost;
      return slot;
    }
    return nullptr;
  }

  /// A record for a name that is not in a cache; IsAt never finds it.
  static TXMLName Unlisted() {
    TXMLName name;
    name.Size = ~std::uint64_t{0};
    return name;
  }

  bool IsFull() const { return FFull; }

  void Clear() {
    if (FNames.empty()) return;
    FSlots.fill(nullptr);
    FNames.clear();
    FFull = false;
  }

 private:
  static ZM_INLINE std::uint64_t Word(const char* Bytes) {
    std::uint64_t word;
    std::memcpy(&word, Bytes, 8);
    return word;
  }

  static ZM_INLINE bool IsLongAt(const TXMLName& Name, const char* Bytes) {
    const char *const raw = Name.Raw.data(), *const rawEnd = raw + Name.Size, *const end = Bytes + Name.Size;
    const std::uint64_t ends = (Word(Bytes) ^ Word(raw)) | (Word(Bytes + 8) ^ Word(raw + 8)) |
                               (Word(end - 16) ^ Word(rawEnd - 16)) | (Word(end - 8) ^ Word(rawEnd - 8));
    return ends == 0 && (Name.Size <= 32 || std::memcmp(Bytes, raw, Name.Size) == 0);
  }

  static constexpr std::uint32_t cSlots = 1024;
  static constexpr std::uint32_t cProbes = 16;
  static constexpr std::size_t cMost = 512;
  static constexpr std::size_t cLongest = 256;
  // The bytes of a word that a name of so many bytes fills, in the order in which memory is loaded.
  static constexpr std::array<std::uint64_t, 17> cMasks = [] {
    std::array<std::uint64_t, 17> masks{};
    for (unsigned i = 0; i < masks.size(); ++i) {
      if (i >= 8)
        masks[i] = ~std::uint64_t{0};
      else if constexpr (std::endian::native == std::endian::little)
        masks[i] = (std::uint64_t{1} << (8 * i)) - 1;
      else
        masks[i] = i == 0 ? 0 : ~std::uint64_t{0} << (64 - 8 * i);
    }
    return masks;
  }();

  std::array<TXMLName*, cSlots> FSlots{};
  std::deque<TXMLName> FNames;
  bool FFull = false;
};

}  // namespace zm::detail
