#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <memory>

#include "zamrit/common/Encoding.h"
#include "zamrit/common/SysUtils.h"
#include "zamrit/common/ZmTypes.h"
#include "zamrit/platform/TextDetail.h"
#include "zamrit/xml/json/EscapesDetail.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/NodesDetail.h"
#include "zamrit/xml/json/SimpleDetail.h"
#include "zamrit/xml/json/Values.h"
#include "zamrit/xml/json/WriterDetail.h"

namespace zm::detail {

namespace {

constexpr char cPlain = 0, cFar = 2;

/// What ZmStrToJSON makes of the first byte of a character: cFar from U+0100 on, else what JSONEscape says.
constexpr std::array<char, 256> cEscapes = [] {
  std::array<char, 256> escapes{};
  for (unsigned c = 0; c < 256; ++c) escapes[c] = c < 0xC4 ? JSONEscape(static_cast<char16_t>(c)) : cFar;
  return escapes;
}();

/// Counts how deep writing has come, in this thread, into lists and into writers within writers.
class TDeeper {
 public:
  TDeeper() {
    constexpr int deepest = 1000;
    if (FDepth == deepest) throw EStackOverflow(u"Stack overflow");
    ++FDepth;
  }
  ~TDeeper() { --FDepth; }
  TDeeper(const TDeeper&) = delete;
  TDeeper& operator=(const TDeeper&) = delete;

 private:
  static inline thread_local int FDepth = 0;
};

/// Text in units of one kind on its way to a stream or, without one, into a string.
template <class U>
class TOutput {
 public:
  explicit TOutput(TStream* Stream) : FStream(Stream) { NewBuffer(Stream ? cBuffer : 256); }

  /// Room for Units units.
  ZM_INLINE U* Room(std::size_t Units) {
    if (static_cast<std::size_t>(FEnd - FAt) < Units) [[unlikely]]
      MakeRoom(Units);
    return FAt;
  }
  ZM_INLINE void Take(U* To) { FAt = To; }
  ZM_INLINE void Put(char C) {
    *Room(1) = static_cast<U>(C);
    ++FAt;
  }
  template <std::size_t N>
  ZM_INLINE void Put(const char (&Text)[N]) {
    U* const to = Room(N - 1);
    for (std::size_t i = 0; i + 1 < N; ++i) to[i] = static_cast<U>(Text[i]);
    FAt += N - 1;
  }
  void PutBlanks(std::size_t Count) {
    for (; Count > 0; --Count) Put(' ');
  }
  void Flush() {
    if (!FStream || FAt == FBuffer.get()) return;
    const std::size_t bytes = static_cast<std::size_t>(FAt - FBuffer.get()) * sizeof(U);
    FAt = FBuffer.get();
    FStream->WriteBuffer(FBuffer.get(), bytes);
  }
  std::basic_string_view<U> Text() const { return {FBuffer.get(), static_cast<std::size_t>(FAt - FBuffer.get())}; }

 private:
  static constexpr std::size_t cBuffer = 1 << 16;

  void NewBuffer(std::size_t Size) {
    auto buffer = std::make_unique_for_overwrite<U[]>(Size);
    const std::size_t used = static_cast<std::size_t>(FAt - FBuffer.get());
    if (used > 0) std::memcpy(buffer.get(), FBuffer.get(), used * sizeof(U));
    FBuffer = std::move(buffer);
    FAt = FBuffer.get() + used;
    FEnd = FBuffer.get() + Size;
  }
  ZM_NOINLINE void MakeRoom(std::size_t Units) {
    Flush();
    const auto used = static_cast<std::size_t>(FAt - FBuffer.get());
    const auto size = static_cast<std::size_t>(FEnd - FBuffer.get());
    if (size - used < Units) NewBuffer(std::max(2 * size, used + Units));
  }

  TStream* FStream;
  std::unique_ptr<U[]> FBuffer;
  U* FAt = nullptr;
  U* FEnd = nullptr;
};

template <class U>
class TJSONWriter {
 public:
  TJSONWriter(TStream* Stream, bool Format) : FOut(Stream), FStream(Stream), FFormat(Format) {}

  /// The start is written by the rules of its class, whoever has derived from that.
  void Write(TZmJSONBase& Start, int Level, bool Indent) {
    TJSONNode* const node = TJSONNodes::Node(Start);
    if (node->Class() == jcDocument && !TJSONNodes::IsMember(Start)) {
      for (std::size_t i = 0; i < TJSONNodes::CountOf(Start); ++i)
        WriteNode(TJSONNodes::Node(*TJSONNodes::ItemOf(Start, static_cast<int>(i))), false, Level, Indent, false);
    } else {
      WriteNode(node, TJSONNodes::IsMember(Start), Level, Indent, true);
    }
  }

  TOutput<U>& Out() { return FOut; }

 private:
  void WriteNode(TJSONNode* Start, bool WithName, int Level, bool Indent, bool ByOwnRules) {
    TJSONNode* node = Start;
    bool indent = Indent, withName = WithName, ownRules = ByOwnRules;
    for (;;) {
      if (Begin(node, withName, Level, indent, ownRules)) {
        node = node->FirstChild();
        ++Level;
        indent = true;
      } else {
        for (;; Close(node, --Level)) {
          if (node == Start) return;
          if (node->Next) break;
          node = node->Owner;
        }
        FOut.Put(", ");
        node = node->Next;
        indent = false;
      }
      withName = node->Has(jfMember);
      ownRules = false;
    }
  }

  // Writes a node up to its first child, which is to follow where the answer is true.
  ZM_INLINE bool Begin(TJSONNode* Node, bool WithName, int Level, bool Indent, bool OwnRules) {
    if (Node->Has(jfExtra) && !OwnRules && WriteDerived(Node, WithName, Level, Indent)) return false;
    if (Indent) Pad(Level);
    if (WithName) {
      const TJSONMemberNode& member = AsMember(*Node);
      FOut.Put('"');
      PutEscaped(member.RawName(), !Node->Has(jfOwnName), Node->Has(jfNameSurrogates));
      FOut.Put("\": ");
      if (Node->Has(jfExtra) && Node->Extra->Node && WriteDerived(Node, false, Level, false)) return false;
    }
    switch (Node->Class()) {
      case jcSimple:
        WriteSimple(*Node);
        return false;
      case jcNone:
        FOut.Put("null");
        return false;
      default:
        break;
    }
    if (Node->Class() == jcObject) {
      if (FFormat)
        FOut.Put("{ \r\n");
      else
        FOut.Put('{');
    } else {
      if (FFormat)
        FOut.Put("[\r\n");
      else
        FOut.Put('[');
    }
    if (Node->Has(jfList)) [[unlikely]]
      WriteList(Node, Level + 1);
    else if (Node->FirstChild())
      return true;
    Close(Node, Level);
    return false;
  }

  void Close(TJSONNode* Node, int Level) {
    if (FFormat) FOut.Put("\r\n");
    Pad(Level);
    FOut.Put(Node->Class() == jcObject ? '}' : ']');
  }

  void Pad(int Level) {
    if (FFormat && Level > 0) FOut.PutBlanks(2 * static_cast<std::size_t>(Level));
  }

  // A node of an application's own class is asked to write itself.
  bool WriteDerived(TJSONNode* Node, bool WithName, int Level, bool Indent) {
    TZmJSONBase* const object = WithName ? Node->Extra->Member : Node->Extra->Node;
    if (!object || !TJSONNodes::IsDerived(*object)) return false;
    const TDeeper deeper;
    FOut.Flush();
    if (sizeof(U) == 2 && FStream) {
      object->SaveToStream(FStream, FFormat, Level, Indent);
      return true;
    }
    TMemoryStream stream;
    object->SaveToStream(&stream, FFormat, Level, Indent);
    PutWide({static_cast<const char16_t*>(stream.GetMemory()), static_cast<std::size_t>(stream.GetSize() / 2)});
    return true;
  }

  // Children of any owner, which may hold each other.
  void WriteList(TJSONNode* Node, int Level) {
    const TDeeper deeper;
    TZmJSONBase* const object = Node->Object();
    const TJSONList& list = TJSONNodes::ListOf(*object);
    for (std::size_t i = 0; i < list.Count(); ++i) {
      if (i > 0) FOut.Put(", ");
      const bool member = list.HeldAt(i) ? TJSONNodes::IsMember(*list.HeldAt(i)) : Node->Class() == jcObject;
      if (list.IsGone(i))
        FOut.Put("null");
      else
        WriteNode(list[i], member, Level, i == 0, false);
    }
  }

  void WriteSimple(const TJSONNode& Node) {
    switch (Node.Type()) {
      case jdtNull:
        FOut.Put("null");
        return;
      case jdtString:
        WriteString(Node);
        return;
      case jdtNumber:
      case jdtBoolean:
        if (!Node.Has(jfVariant) && Node.RawText().data() && !Node.Has(jfSurrogates))
          PutRaw(Node.RawText());
        else
          PutWide(TextOfSimple(Node));
        return;
      default:
        throw EZmJSONException(_cZmJSONUnexpectedType, 6);
    }
  }

  void WriteString(const TJSONNode& Node) {
    const bool loaded = !Node.Has(jfVariant);
    if (!loaded && TZmTypes::VarMainTypeKind(Node.Extra->Value) == mtkDateTime)
      return PutWide(ZmVarToStr(Node.Extra->Value));
    FOut.Put('"');
    if (loaded)
      PutEscaped(Node.RawText(), true, Node.Has(jfSurrogates));
    else
      PutWide(ZmStrToJSON(ZmVarToStr(Node.Extra->Value)));
    FOut.Put('"');
  }

  void PutWide(StringView Text) {
    if constexpr (sizeof(U) == 2) {
      U* const to = FOut.Room(Text.size());
      FOut.Take(std::copy(Text.begin(), Text.end(), to));
    } else {
      PutBytes(ToUTF8(Text));
    }
  }
  void PutBytes(std::string_view Text) {
    U* const to = FOut.Room(Text.size());
    if (!Text.empty()) std::memcpy(to, Text.data(), Text.size());
    FOut.Take(to + Text.size());
  }
  // Well-formed UTF-8 as it stands.
  ZM_INLINE void PutRaw(std::string_view Text) {
    if constexpr (sizeof(U) == 1) {
      if (Text.size() > 16) return PutBytes(Text);
      U* const to = FOut.Room(16);
      std::memcpy(to, Text.data(), 16);  // of the arena, which may be read behind a text
      FOut.Take(to + Text.size());
    } else {
      const char* const end = Text.data() + Text.size();
      U* const to = FOut.Room(Text.size() + cWidenPad);
      FOut.Take(WidenUTF8(Text.data(), end, end + TArena::cPad, to));
    }
  }

  static ZM_INLINE void Copy16(const char* From, U* To) {
    if constexpr (sizeof(U) == 1)
      std::memcpy(To, From, 16);
    else
      TVectorLanes<char>::Widen(TVectorLanes<char>::Load(From), To);
  }
  /// The bytes among 16 that may not stay as they stand.
  static ZM_INLINE std::uint32_t Specials(const char* From) {
    using Lanes = TVectorLanes<char>;
    const auto v = Lanes::Load(From);
    const auto named = TAnyOf<Lanes, '"', '/', '\\'>()(v);
    // As UTF-16, bytes of more than one to a character have to be joined.
    const auto plain = Lanes::AtMost(v, sizeof(U) == 1 ? '\xC3' : '\x7F');
    return Lanes::Bits(Lanes::Or(Lanes::Or(named, Lanes::AtMost(v, '\x0D')), Lanes::Not(plain)));
  }

  // What ZmStrToJSON makes of a text. InArena says that memory behind it may be read.
  ZM_INLINE void PutEscaped(std::string_view Text, bool InArena, bool Surrogates) {
    if (Text.empty()) return;
    const char* p = Text.data();
    const char* const end = p + Text.size();
    const char* const readable = InArena ? end + TArena::cPad : end;
    while (p < end) {
      if (readable - p >= 16) {
        U* const to = FOut.Room(16);
        Copy16(p, to);
        const std::ptrdiff_t run = std::min<std::ptrdiff_t>(std::countr_zero(Specials(p) | 0x10000), end - p);
        p += run;
        FOut.Take(to + run);
        if (run == 16 || p == end) continue;
      }
      p = PutSpecial(p, end, Surrogates);
    }
  }

  // One character, or a run of those from U+0100 on.
  ZM_NOINLINE const char* PutSpecial(const char* P, const char* End, bool Surrogates) {
    const auto lead = static_cast<unsigned char>(*P);
    const char escape = cEscapes[lead];
    if (escape == cFar) return PutFar(P, End, Surrogates);
    if (lead >= 0xC2 && sizeof(U) == 2 && End - P >= 2) {
      *FOut.Room(1) = static_cast<U>((lead & 0x1Fu) << 6 | TrailBits(P[1]));
      FOut.Take(FOut.Room(1) + 1);
      return P + 2;
    }
    if (escape == cPlain) {
      FOut.Put(*P);
    } else if (escape != cJSONDropped) {
      FOut.Put('\\');
      FOut.Put(escape);
    }
    return P + 1;
  }

  const char* PutFar(const char* P, const char* End, bool Surrogates) {
    while (P < End && static_cast<unsigned char>(*P) >= 0xC4) {
      TCodePoint c = DecodeUTF8(P, End);
      if (Surrogates && *P == '\xED' && c.Length < 3 && End - P >= 3)
        c = {static_cast<char32_t>(0xD000 | TrailBits(P[1]) << 6 | TrailBits(P[2])), 3};
      P += c.Length;
      if (c.Code < 0x10000) {
        PutUnit(static_cast<char16_t>(c.Code));
      } else {
        PutUnit(HighSurrogate(c.Code));
        PutUnit(LowSurrogate(c.Code));
      }
    }
    return P;
  }
  ZM_INLINE void PutUnit(char16_t Unit) {
    static constexpr char digits[] = "0123456789ABCDEF";
    U* const to = FOut.Room(6);
    to[0] = '\\';
    to[1] = 'u';
    to[2] = static_cast<U>(digits[Unit >> 12]);
    to[3] = static_cast<U>(digits[Unit >> 8 & 15]);
    to[4] = static_cast<U>(digits[Unit >> 4 & 15]);
    to[5] = static_cast<U>(digits[Unit & 15]);
    FOut.Take(to + 6);
  }

  TOutput<U> FOut;
  TStream* FStream;
  bool FFormat;
};

}  // namespace

void WriteJSON(TZmJSONBase& Node, TStream* Stream, bool Format, int Level, bool Indent, std::uint16_t CodePage) {
  const auto write = [&](auto&& Writer) {
    Writer.Write(Node, Level, Indent);
    Writer.Out().Flush();
  };
  if (CodePage == cZmPageUTF8)
    write(TJSONWriter<char>(Stream, Format));
  else
    write(TJSONWriter<char16_t>(Stream, Format));
}

String JSONTextOf(TZmJSONBase& Node, bool Format) {
  if (TJSONNodes::IsDerived(Node)) {  // what it writes is up to it
    TMemoryStream stream;
    Node.SaveToStream(&stream, Format, 0, false);
    return String(static_cast<const char16_t*>(stream.GetMemory()), static_cast<std::size_t>(stream.GetSize() / 2));
  }
  TJSONWriter<char16_t> writer(nullptr, Format);
  writer.Write(Node, 0, false);
  return String(writer.Out().Text());
}

}  // namespace zm::detail
