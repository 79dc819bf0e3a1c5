#include "zamrit/common/TextStreams.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <typeinfo>
#include <utility>

#include "zamrit/platform/CodePages.h"
#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/TextDetail.h"

namespace zm {
namespace {

constexpr bool cLittleEndian = std::endian::native == std::endian::little;

// A piece of text is turned over at a time, so that the memory is bounded however much is written at once.
constexpr std::size_t cPieceUnits = 4096;
constexpr std::size_t cPieceBytes = 8192;

// UTF-16 little endian bytes as text.
String UnitsOf(const char* Bytes, std::size_t Count) {
  String text(Count / 2, u'\0');
  std::memcpy(text.data(), Bytes, Count);
  if constexpr (!cLittleEndian)
    for (char16_t& unit : text) unit = static_cast<char16_t>(unit << 8 | unit >> 8);
  return text;
}

}  // namespace

TZmStringStream::TZmStringStream(std::uint16_t CodePage, std::uint64_t Capacity) : FCodePage(CodePage) {
  Reserve(static_cast<std::size_t>(Capacity));
}

TZmStringStream::TZmStringStream(StringView Text) : TZmStringStream(String(Text)) {}

TZmStringStream::TZmStringStream(String&& Text) : FCodePage(cZmPageUTF16) {
  if constexpr (cLittleEndian) {
    FText = std::move(Text);
    Lend(FText.data(), FText.size() * 2, false);
  } else {
    FBytes = EncodePage(Text, cZmPageUTF16);
    Lend(FBytes.data(), FBytes.size(), false);
  }
}

TZmStringStream::TZmStringStream(std::string_view Bytes, std::uint16_t CodePage)
    : TZmStringStream(RawByteString(Bytes), CodePage) {}

TZmStringStream::TZmStringStream(RawByteString&& Bytes, std::uint16_t CodePage)
    : FCodePage(CodePage), FBytes(std::move(Bytes)) {
  Lend(FBytes.data(), FBytes.size(), false);
}

TZmStringStream::TZmStringStream(const void* Block, int Size, std::uint16_t CodePage) : FCodePage(CodePage) {
  Lend(Block, static_cast<std::size_t>(std::max(Size, 0)), true);
}

TZmStringStream::TZmStringStream(TZmBorrow, StringView Text) : FCodePage(cLittleEndian ? cZmPageUTF16 : 1201) {
  Lend(Text.data(), Text.size() * 2, true);
}

TZmStringStream::TZmStringStream(TZmBorrow, std::string_view Bytes, std::uint16_t CodePage) : FCodePage(CodePage) {
  Lend(Bytes.data(), Bytes.size(), true);
}

std::size_t TZmStringStream::Write(const void* Buffer, std::size_t Count) {
  FHigh = 0;
  return TMemoryStream::Write(Buffer, Count);
}

void TZmStringStream::Add(StringView Text) {
  if (Text.empty()) return;
  FPosition = FSize;
  String joined;
  if (FHigh && FSize == FHighEnd && detail::IsLowSurrogate(Text[0])) {
    SetSize(static_cast<std::int64_t>(FHighStart));
    joined.assign(1, FHigh).append(Text);
    Text = joined;
  }
  const char16_t last = Text.back();
  const bool cut = detail::IsHighSurrogate(last);
  if (cut) Text.remove_suffix(1);
  AddInPage(Text);
  FHighStart = FSize;
  if (cut) AddInPage({&last, 1});
  FHighEnd = FSize;
  FHigh = cut ? last : u'\0';
}

void TZmStringStream::AddChar(char16_t Char) { Add({&Char, 1}); }

void TZmStringStream::AddInPage(StringView Text) {
  if (Text.empty()) return;
  if (cLittleEndian && FCodePage == cZmPageUTF16) {
    WriteBuffer(Text.data(), Text.size() * 2);
  } else {
    const std::string bytes = EncodePage(Text, FCodePage);
    WriteBuffer(bytes.data(), bytes.size());
  }
}

String TZmStringStream::GetWString() const { return DecodePage(Bytes(), FCodePage); }

RawByteString TZmStringStream::GetAString() const {
  const bool wide = FCodePage == cZmPageUTF16 || FCodePage == 1201;
  return wide ? StringData(0) : GetDataString();
}

RawByteString TZmStringStream::StringData(std::uint16_t CodePage) const {
  return CodePage == FCodePage ? GetDataString() : EncodePage(GetWString(), CodePage);
}

TZmMemoryStream::TZmMemoryStream(const void* Block, std::uint64_t Size) {
  Lend(Block, static_cast<std::size_t>(Size), true);
}

TZmMemoryStream::TZmMemoryStream(std::uint64_t Capacity) { Reserve(static_cast<std::size_t>(Capacity)); }

void TZmMemoryStream::WriteWord(std::uint16_t Value) {
  const unsigned char bytes[] = {static_cast<unsigned char>(Value & 0xFF), static_cast<unsigned char>(Value >> 8)};
  WriteBuffer(bytes, sizeof bytes);
}

// What has come from the target and not been handed on.
struct TZmUTF8StreamAdapter::TReading {
  TPageDecoder Decoder{cZmPageUTF8};
  char Bytes[cPieceBytes];
  const char* BytesCur = Bytes;
  const char* BytesEnd = Bytes;
  std::string Units;  // UTF-16 little endian
  std::size_t UnitsCur = 0;
  bool Ended = false;
};

TZmUTF8StreamAdapter::TZmUTF8StreamAdapter(TStream* Target, bool OwnsStream, bool WriteBOM)
    : FTarget(Target), FOwned(OwnsStream ? Target : nullptr), FMarkDue(WriteBOM) {}

TZmUTF8StreamAdapter::~TZmUTF8StreamAdapter() {
  try {
    Flush();
  } catch (...) {  // NOLINT(bugprone-empty-catch): whoever wants to know calls Flush
  }
}

std::size_t TZmUTF8StreamAdapter::Write(const void* Buffer, std::size_t Count) {
  const auto* from = static_cast<const char*>(Buffer);
  for (std::size_t left = Count; left > 0;) {
    const std::size_t size = std::min(left, cPieceUnits * 2);
    std::string bytes(FHeld, FHeldCount);
    bytes.append(from, size);
    String text = UnitsOf(bytes.data(), bytes.size() / 2 * 2);
    std::size_t held = bytes.size() % 2;
    if (!text.empty() && detail::IsHighSurrogate(text.back())) {
      text.pop_back();
      held += 2;
    }
    Send(text);
    FHeldCount = bytes.copy(FHeld, held, bytes.size() - held);
    from += size;
    left -= size;
  }
  FPosition += static_cast<std::int64_t>(Count);
  return Count;
}

void TZmUTF8StreamAdapter::Flush() {
  if (FHeldCount == 0) return;
  FHeldCount = 0;
  Send({&detail::cReplacement, 1});
}

void TZmUTF8StreamAdapter::Send(StringView Text) {
  if (Text.empty()) return;
  if (FMarkDue) FTarget->WriteBuffer(cZmUTF8, sizeof cZmUTF8);
  FMarkDue = false;
  const std::string bytes = ToUTF8(Text);
  FTarget->WriteBuffer(bytes.data(), bytes.size());
}

std::size_t TZmUTF8StreamAdapter::Read(void* Buffer, std::size_t Count) {
  if (!FReading) FReading = std::make_unique<TReading>();
  if (FReading->UnitsCur == FReading->Units.size() && !ReadOn()) return 0;
  const std::size_t count = FReading->Units.copy(static_cast<char*>(Buffer), Count, FReading->UnitsCur);
  FReading->UnitsCur += count;
  FPosition += static_cast<std::int64_t>(count);
  return count;
}

// Turns the next bytes of the target into units. False at the end.
bool TZmUTF8StreamAdapter::ReadOn() {
  TReading& r = *FReading;
  for (;;) {
    if (r.BytesCur == r.BytesEnd && !r.Ended) {
      const std::size_t count = FTarget->Read(r.Bytes, sizeof r.Bytes);
      r.BytesCur = r.Bytes;
      r.BytesEnd = r.Bytes + count;
      r.Ended = count == 0;
    }
    char16_t units[cPieceUnits];
    char16_t* out = units;
    r.Decoder.Decode(r.BytesCur, r.BytesEnd, out, units + cPieceUnits, r.Ended);
    if (out != units) {
      r.Units = EncodePage({units, static_cast<std::size_t>(out - units)}, cZmPageUTF16);
      r.UnitsCur = 0;
      return true;
    }
    if (r.Ended) return false;
  }
}

std::int64_t TZmUTF8StreamAdapter::Seek(std::int64_t Offset, TSeekOrigin Origin) {
  return SeekNowhere(FPosition, Offset, Origin);
}

}  // namespace zm
