#include <array>
#include <cstring>
#include <limits>

#include "zamrit/platform/ScopeDetail.h"
#include "zamrit/platform/TextDetail.h"
#include "zamrit/platform/UTF8CopyDetail.h"
#include "zamrit/xml/json/FormReader.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/JSONHandler.h"
#include "zamrit/xml/json/JSONReader.h"
#include "zamrit/xml/json/JSONScannerDetail.h"
#include "zamrit/xml/json/LoaderDetail.h"
#include "zamrit/xml/json/NodesDetail.h"
#include "zamrit/xml/json/Values.h"
#include "zamrit/xml/sax/NameCacheDetail.h"

namespace zm::detail {

namespace {

struct TKept {
  const char* Bytes;
  std::uint32_t Size;
  bool Surrogates;
};

int HexDigit(char C) {
  if (C >= '0' && C <= '9') return C - '0';
  const char lower = static_cast<char>(C | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// The unit that four hexadecimal digits make, or -1.
int HexUnit(const char* P, const char* End) {
  if (End - P < 4) return -1;
  int unit = 0;
  for (int i = 0; i < 4; ++i) {
    const int digit = HexDigit(P[i]);
    if (digit < 0) return -1;
    unit = unit << 4 | digit;
  }
  return unit;
}

char* PutUTF8(char32_t Code, char* Out) {
  if (Code < 0x80) {
    *Out++ = static_cast<char>(Code);
  } else if (Code < 0x800) {
    *Out++ = static_cast<char>(0xC0 | Code >> 6);
    *Out++ = static_cast<char>(0x80 | (Code & 0x3F));
  } else {
    if (Code < 0x10000) {
      *Out++ = static_cast<char>(0xE0 | Code >> 12);
    } else {
      *Out++ = static_cast<char>(0xF0 | Code >> 18);
      *Out++ = static_cast<char>(0x80 | (Code >> 12 & 0x3F));
    }
    *Out++ = static_cast<char>(0x80 | (Code >> 6 & 0x3F));
    *Out++ = static_cast<char>(0x80 | (Code & 0x3F));
  }
  return Out;
}

/// The well-formed UTF-8 text [P, End) without its escapes; nil where an escape is not of the usual form. Out has room
/// for the text as it stands.
char* Unescape(const char* P, const char* End, char* Out) {
  while (P < End) {
    if (*P != '\\') {
      const void* const found = std::memchr(P, '\\', static_cast<std::size_t>(End - P));
      const char* const to = found ? static_cast<const char*>(found) : End;
      std::memcpy(Out, P, static_cast<std::size_t>(to - P));
      Out += to - P;
      P = to;
      continue;
    }
    if (End - P < 2) return nullptr;
    switch (const char letter = P[1]; letter) {
      case '"':
      case '/':
      case '\\':
        *Out++ = letter;
        break;
      case 'b':
        *Out++ = '\b';
        break;
      case 'f':
        *Out++ = '\f';
        break;
      case 'n':
        *Out++ = '\n';
        break;
      case 'r':
        *Out++ = '\r';
        break;
      case 't':
        *Out++ = '\t';
        break;
      case 'u': {
        const int unit = HexUnit(P + 2, End);
        if (unit < 0) return nullptr;
        auto code = static_cast<char32_t>(unit);
        if (IsSurrogate(code)) {
          if (End - P < 12 || P[6] != '\\' || P[7] != 'u' || !IsHighSurrogate(code)) return nullptr;
          const int low = HexUnit(P + 8, End);
          if (low < 0 || !IsLowSurrogate(static_cast<char32_t>(low))) return nullptr;
          code = JoinSurrogates(static_cast<char16_t>(unit), static_cast<char16_t>(low));
          P += 6;
        }
        Out = PutUTF8(code, Out);
        P += 4;
        break;
      }
      default:
        return nullptr;
    }
    P += 2;
  }
  return Out;
}

/// Names of the source that have been seen, so that one that recurs is kept once.
class TKeptNames {
 public:
  struct TSlot {
    std::uint64_t Head = 0, Tail = 0;
    TKept Name{nullptr, 0, false};
  };

  static bool IsIn(const TSlot& Slot, const TNameCache::TKey& Key) {
    return Slot.Name.Bytes && Slot.Head == Key.Head && Slot.Tail == Key.Tail && Slot.Name.Size == Key.Size &&
           (Key.Size <= 16 || std::memcmp(Slot.Name.Bytes, Key.Bytes, Key.Size) == 0);
  }
  TSlot& SlotOf(const TNameCache::TKey& Key) { return FSlots[Key.Slot % FSlots.size()]; }
  void Clear() { FSlots.fill(TSlot()); }

 private:
  std::array<TSlot, 256> FSlots;
};

/// The sink that makes records of the events. Texts are copied into the arena as they stand, in UTF-8; those with an
/// escape are decoded.
template <TStorage S>
class TTreeSink {
 public:
  using Unit = typename TWidener<S>::Unit;
  using Slice = TSlice<Unit>;
  static constexpr bool cToldBehind = false;

  TTreeSink(TZmJSONBase& Target, const TTextWindow& Window) : FTarget(Target), FWindow(Window), FWiden(Window) {
    Bind();
    const TJSONList& list = TJSONNodes::ListOf(Target);
    FLast = list.Count() > 0 ? list[list.Count() - 1] : nullptr;
  }

  void StartDocument() {}
  void EndDocument() {}
  void StartObject() { Start(jdtObject); }
  void StartArray() { Start(jdtArray); }
  void EndArray() { End(); }
  void EndObject() { End(); }
  void EndMember() {}
  ZM_INLINE void StartMember(Slice Name) {
    TJSONMemberNode& node = AsMember(*Append(jfMember));
    const TKept name = KeepName(Name);
    node.Name = name.Bytes;
    node.NameSize = name.Size;
    if (name.Surrogates) node.Flags |= jfNameSurrogates;
  }
  ZM_INLINE void Value(TZmJSONDataType Type, Slice Text, bool Escapes) {
    if (Type == jdtString && Escapes) return EscapedValue(Text);
    SetText(NewValue(ClassFlags(jcSimple, Type)), Type == jdtString ? KeepText(Text) : KeepASCII(Text));
  }

 private:
  // An escape that is none leaves a null in a member, an empty text in an array.
  ZM_NOINLINE void EscapedValue(Slice Text) {
    TJSONNode* const node = NewValue(ClassFlags(jcSimple, FCurrent->Class() == jcObject ? jdtNull : jdtString));
    SetText(node, KeepDecoded(Text));
    node->SetType(jdtString);
  }
  ZM_INLINE static void SetText(TJSONNode* Node, const TKept& Text) {
    Node->Text = Text.Bytes;
    Node->Size = Text.Size;
    if (Text.Surrogates) Node->Flags |= jfSurrogates;
  }

  void Bind() {
    FTree = &TJSONNodes::Tree(FTarget);
    FCurrent = TJSONNodes::Node(FTarget);
    // Records and texts mostly take what the source does, or more.
    if (FWindow.Stays()) FTree->Arena().Expect(static_cast<std::size_t>(FWindow.End - FWindow.Begin) / sizeof(Unit));
  }

  ZM_INLINE TJSONNode* Append(std::uint32_t Flags) {
    TJSONNode* const node = FTree->NewNode(Flags | jfLinked);
    node->Owner = FCurrent;
    if (FLast)
      FLast->Next = node;
    else
      FCurrent->FirstChild() = node;
    ++FCurrent->Size;
    return FLast = node;
  }

  // A value where the document stands: the member that has come last, or a new element.
  ZM_INLINE TJSONNode* NewValue(std::uint32_t Flags) {
    if (FCurrent->Class() == jcObject) {
      FLast->Flags |= Flags;
      return FLast;
    }
    if (FCurrent->Class() == jcDocument) [[unlikely]]
      NewRoot(Flags);
    return Append(Flags);
  }
  ZM_NOINLINE void NewRoot(std::uint32_t Flags) {
    if ((Flags & jfClassMask) == ClassFlags(jcSimple, jdtNull)) throw EZmJSONException(u"oeps?", 0);
    FTarget.DestroyObjects();
    FNames.Clear();
    Bind();
    FLast = nullptr;
  }

  ZM_INLINE void Start(TZmJSONDataType Type) {
    FCurrent = NewValue(ClassFlags(ClassOf(Type), Type));
    FLast = nullptr;
  }
  ZM_INLINE void End() {
    FLast = FCurrent;
    FCurrent = FCurrent->Owner;
  }

  static std::uint32_t Checked(std::size_t Size) {
    if (Size > std::numeric_limits<std::uint32_t>::max()) [[unlikely]]
      throw EZmJSONException(u"A text of 4 GB or more does not fit the model!", 0);
    return static_cast<std::uint32_t>(Size);
  }
  TKept Keep(char* Begin, char* TextEnd, bool Surrogates) {
    const TKept kept{Begin, Checked(static_cast<std::size_t>(TextEnd - Begin)), Surrogates};
    FTree->Arena().Keep(TextEnd);
    return kept;
  }
  TKept KeepCopy(std::string_view Text, bool Surrogates) {
    const std::uint32_t size = Checked(Text.size());
    return {FTree->Arena().Copy(Text).data(), size, Surrogates};
  }
  ZM_NOINLINE TKept KeepWide(StringView Text) {
    FNarrow.clear();
    bool surrogates = false;
    NarrowText(Text, FNarrow, surrogates);
    return KeepCopy(FNarrow, surrogates);
  }
  StringView Widen(Slice Text) {
    FWide.Reset();
    return FWiden(Text, FWide);
  }

  ZM_INLINE TKept KeepASCII(Slice Text) {
    const auto size = static_cast<std::size_t>(Text.End - Text.Begin);
    char* const to = FTree->Arena().Room(size);
    if constexpr (sizeof(Unit) == 1) {
      if (size <= 16 && FWindow.Readable - reinterpret_cast<const char*>(Text.Begin) >= 16)
        std::memcpy(to, Text.Begin, 16);
      else
        std::memcpy(to, Text.Begin, size);
    } else {
      for (std::size_t i = 0; i < size; ++i) to[i] = static_cast<char>(Text.Begin[i]);
    }
    return Keep(to, to + size, false);
  }

  ZM_INLINE TKept KeepText(Slice Text) {
    const auto size = static_cast<std::size_t>(Text.End - Text.Begin);
    if constexpr (S == TStorage::UTF8) {
      char* const to = FTree->Arena().Room(size);
      std::size_t done = CopyASCII(Text.Begin, Text.End, FWindow.Readable, to);
      if (done < size) [[unlikely]] {
        std::memcpy(to + done, Text.Begin + done, size - done);
        if (!IsWellFormedUTF8(to + done, to + size)) return KeepWide(Widen(Text));
      }
      return Keep(to, to + size, false);
    } else if constexpr (S == TStorage::Wide) {
      char* const to = FTree->Arena().Room(size);
      char16_t all = 0;
      for (std::size_t i = 0; i < size; ++i) {
        all = static_cast<char16_t>(all | Text.Begin[i]);
        to[i] = static_cast<char>(Text.Begin[i]);
      }
      if (all < 0x80) return Keep(to, to + size, false);
      return KeepWide({Text.Begin, size});
    } else {
      return KeepWide(Widen(Text));
    }
  }

  TKept KeepDecoded(Slice Text) {
    if constexpr (S == TStorage::UTF8) {
      if (IsWellFormedUTF8(Text.Begin, Text.End)) {
        char* const to = FTree->Arena().Room(static_cast<std::size_t>(Text.End - Text.Begin));
        if (char* const end = Unescape(Text.Begin, Text.End, to)) return Keep(to, end, false);
      }
    }
    return KeepWide(ZmJSONtoStr(Widen(Text), jdtString));
  }

  ZM_INLINE TKept KeepName(Slice Name) {
    if constexpr (S == TStorage::UTF8) {
      const auto key = TNameCache::KeyOf(Name.Begin, static_cast<std::size_t>(Name.End - Name.Begin), FWindow.Readable);
      TKeptNames::TSlot& slot = FNames.SlotOf(key);
      if (TKeptNames::IsIn(slot, key)) return slot.Name;
      const TKept kept = KeepText(Name);
      if (kept.Size == key.Size) slot = {key.Head, key.Tail, kept};
      return kept;
    } else {
      const TKept kept = KeepText(Name);
      const auto key = TNameCache::KeyOf(kept.Bytes, kept.Size, kept.Bytes + kept.Size + TArena::cPad);
      TKeptNames::TSlot& slot = FNames.SlotOf(key);
      if (TKeptNames::IsIn(slot, key) && slot.Name.Surrogates == kept.Surrogates) {
        FTree->Arena().Keep(const_cast<char*>(kept.Bytes));
        return slot.Name;
      }
      slot = {key.Head, key.Tail, kept};
      return kept;
    }
  }

  TZmJSONBase& FTarget;
  const TTextWindow& FWindow;
  TWidener<S> FWiden;
  TJSONTree* FTree;
  TJSONNode* FCurrent;
  TJSONNode* FLast;
  TKeptNames FNames;
  TTextScratch FWide;
  std::string FNarrow;
};

void LoadRecords(TZmJSONBase& Target, TStream* Stream, std::uint16_t CodePage, bool AllowSurroundingSpace) {
  const auto parser = Create<TZmJSONTextParser>(Stream, false, CodePage);
  WithStorage(parser->Window(), [&](auto Storage) {
    TTreeSink<Storage()> sink(Target, parser->Window());
    TJSONScanner<Storage(), TTreeSink<Storage()>>(*parser, sink, AllowSurroundingSpace).ParseDocument();
  });
}

}  // namespace

void LoadJSON(TZmJSONBase& Target, TStream* Stream, std::uint16_t CodePage, bool FormURLEncoded) {
  TJSONNode* const node = TJSONNodes::Node(Target);
  const bool document = node->Class() == jcDocument;
  const bool space = document && static_cast<TZmJSONDocument&>(Target).GetAllowSurroundingSpace();
  const bool records = (document || node->Class() == jcArray) && !node->Has(jfList) && !TJSONNodes::IsMember(Target) &&
                       !TJSONNodes::IsDerived(Target);
  if (!FormURLEncoded && records) return LoadRecords(Target, Stream, CodePage, space);

  const TZmOwner<TZmJSONReader> reader =
      FormURLEncoded ? TZmOwner<TZmJSONReader>(Create<TZmFormURLEncodedJSONReader>()) : Create<TZmJSONReader>();
  reader->SetAllowSurroundingSpace(space);
  TZmJSONHandler handler(reader.get(), &Target);
  reader->SetHandler(&handler);
  const TFinally unset([&] {
    reader->SetContentHandler(nullptr);
    reader->SetErrorHandler(nullptr);
  });
  reader->ParseStream(Stream, CodePage);
}

}  // namespace zm::detail
