#include <algorithm>
#include <bit>
#include <cstring>

#include "zamrit/common/TextWindowDetail.h"
#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/TextDetail.h"

namespace zm::detail {
namespace {

constexpr std::size_t cFirstWindow = 64 * 1024;
constexpr std::size_t cFullWindow = 256 * 1024;
constexpr std::size_t cByteChunk = 64 * 1024;
constexpr std::size_t cPad = 64;       // vectors may read so far past the window
constexpr std::ptrdiff_t cBehind = 4;  // units kept before the place that is needed, for a look back
constexpr std::uint16_t cUTF16 = 1200, cUTF8 = 65001;

// UTF-16 units that the text makes.
std::int64_t CountUnits(const char* P, const char* End, TStorage Storage) {
  if (Storage == TStorage::Bytes) return End - P;
  using Lanes = TVectorLanes<char>;
  std::int64_t units = 0;
  while (P < End) {
    if (End - P >= 16 && Lanes::Bits(Lanes::AtMost(Lanes::Load(P), '\x7F')) == 0xFFFF) {
      P += 16;
      units += 16;
      continue;
    }
    const TCodePoint c = DecodeUTF8(P, End);
    P += c.Length;
    units += c.Code < 0x10000 ? 1 : 2;
  }
  return units;
}
std::int64_t CountUnits(const char16_t* P, const char16_t* End, TStorage) { return End - P; }

// Without the instruction, which the baseline of x86-64 lacks, the library call would cost more than the comparison.
int CountBits(std::uint64_t Bits) {
  Bits -= Bits >> 1 & 0x5555555555555555;
  Bits = (Bits & 0x3333333333333333) + (Bits >> 2 & 0x3333333333333333);
  return static_cast<int>(((Bits + (Bits >> 4)) & 0x0F0F0F0F0F0F0F0F) * 0x0101010101010101 >> 56);
}

// Which of 64 units from P on are C.
template <class U>
std::uint64_t BitsOf64(const U* P, U C) {
  using Lanes = TVectorLanes<U>;
  std::uint64_t bits = 0;
  for (int i = 0; i < 64; i += 16)
    bits |= static_cast<std::uint64_t>(Lanes::Bits(Lanes::Eq(Lanes::Load(P + i), C))) << i;
  return bits;
}

// The line ends in [P, End), which is not empty; what stands at End is no line feed behind a carriage return.
template <class U>
std::int64_t CountLineEnds(const U* P, const U* End) {
  const U* const last = End - 1;
  std::int64_t lines = *last == U('\n') || *last == U('\r') ? 1 : 0;
  for (; last - P >= 64; P += 64) {
    const std::uint64_t lf = BitsOf64(P, U('\n')), cr = BitsOf64(P, U('\r'));
    const std::uint64_t lfNext = lf >> 1 | static_cast<std::uint64_t>(P[64] == U('\n')) << 63;
    lines += CountBits(lf | (cr & ~lfNext));
  }
  for (; P < last; ++P) lines += *P == U('\n') || (*P == U('\r') && P[1] != U('\n'));
  return lines;
}

// The place behind the last line end in [P, End), or nil.
template <class U>
const U* LastLineStart(const U* P, const U* End) {
  using Lanes = TVectorLanes<U>;
  for (const U* q = End; q > P;) {
    const U* const block = q - P > 16 ? q - 16 : P;
    if (const std::uint32_t ends = BitsAt<Lanes>(block, q, TAnyOf<Lanes, '\n', '\r'>()))
      return block + std::bit_width(ends);
    q = block;
  }
  return nullptr;
}

// Moves a place that stands at P on to End. A carriage return in front of End waits to see what follows it.
template <class U>
void AdvancePlace(TPlace& Place, const U* P, const U* End, TStorage Storage) {
  if (P == End) return;
  Place.Offset += End - P;
  if (Place.AfterCR && *P != U('\n')) {
    ++Place.Line;
    Place.Column = 1;
  }
  Place.AfterCR = End[-1] == U('\r');
  const U* const stop = Place.AfterCR ? End - 1 : End;
  const U* const lineStart = LastLineStart(P, stop);
  if (lineStart) Place.Line += CountLineEnds(P, lineStart);
  Place.Column = (lineStart ? 1 : Place.Column) + CountUnits(lineStart ? lineStart : P, End, Storage);
}

}  // namespace

TByteFeed::TByteFeed(const void* Block, std::size_t Size) : FBlock(static_cast<const char*>(Block)), FBlockSize(Size) {
  if (!FBlock) FBlock = "";
}

TByteFeed::TByteFeed(TStream* Stream, bool OwnsStream) : FStream(Stream), FOwnsStream(OwnsStream) {
  Assert(Stream != nullptr, u"Assertion failure (base/uZmClasses)");
  FStart = Stream->GetPosition();
  std::uint64_t size = 0;
  const auto start = static_cast<std::uint64_t>(FStart);
  if (const void* block = Stream->InPlace(size); block && start <= size) {
    FBlock = static_cast<const char*>(block) + start;
    FBlockSize = static_cast<std::size_t>(size - start);
    Stream->Seek(0, soEnd);
  }
}

TByteFeed::~TByteFeed() {
  if (FOwnsStream) FStream->Free();
}

std::size_t TByteFeed::Read(char* To, std::size_t Room) {
  std::size_t count;
  if (FBlock) {
    count = std::min<std::size_t>(Room, FBlockSize - static_cast<std::size_t>(FPosition));
    std::memcpy(To, FBlock + FPosition, count);
  } else if (FPosition < FStash.size()) {
    count = FStash.copy(To, Room, static_cast<std::size_t>(FPosition));
  } else {
    count = FStream->Read(To, Room);
  }
  FPosition += count;
  return count;
}

void TByteFeed::GoTo(std::uint64_t Offset) {
  if (!FBlock && Offset != FPosition) {
    // Behind the stash the stream stands where the stash ends; elsewhere it has to be moved.
    const bool stashed = Offset <= FStash.size() && FPosition <= FStash.size();
    if (!stashed) {
      FStash.clear();
      FStream->Seek(FStart + static_cast<std::int64_t>(Offset), soBeginning);
    }
  }
  FPosition = Offset;
}

void TByteFeed::Stash(std::string Bytes) { FStash = std::move(Bytes); }

TTextWindow::TTextWindow(const void* Block, std::size_t Size, std::uint16_t Page) : FFeed(Block, Size), FPage(Page) {
  OpenAt(0);
}

TTextWindow::TTextWindow(TStream* Stream, bool OwnsStream, std::uint16_t Page)
    : FFeed(Stream, OwnsStream), FPage(Page) {
  OpenAt(0);
}

void TTextWindow::OpenAt(std::uint64_t ByteOffset) {
  constexpr bool littleEndian = std::endian::native == std::endian::little;
  FTable = SingleBytePage(FPage);
  FStorage = FTable ? TStorage::Bytes : FPage == cUTF8 ? TStorage::UTF8 : TStorage::Wide;
  const bool convert = FStorage == TStorage::Wide && (FPage != cUTF16 || !littleEndian);
  FDecoder = convert ? std::make_unique<TPageDecoder>(FPage) : nullptr;
  FBytesCur = FBytesEnd = nullptr;
  FBytesEnded = false;
  FBase = static_cast<std::int64_t>(ByteOffset / UnitSize());
  FLoose = 0;
  Token = nullptr;
  FBegun = FCounted = TPlace{FBase};

  const char* const block = FFeed.Block() ? FFeed.Block() + ByteOffset : nullptr;
  const std::size_t size = block ? FFeed.BlockSize() - static_cast<std::size_t>(ByteOffset) : 0;
  const bool aligned = reinterpret_cast<std::uintptr_t>(block) % UnitSize() == 0 && size % UnitSize() == 0;
  if (block && !convert && aligned) {
    Begin = Cur = block;
    End = Readable = block + size;
    FEnded = true;
    return;
  }
  FFeed.GoTo(ByteOffset);
  Begin = Cur = End = FBuffer.get();
  Readable = Begin ? Begin + FCapacity + cPad : nullptr;
  FEnded = false;
}

const char* TTextWindow::PointerTo(std::int64_t Offset) const {
  return Begin + (Offset - FBase) * static_cast<std::ptrdiff_t>(UnitSize());
}

bool TTextWindow::More(const char*& Keep) {
  if (FEnded) return false;
  MakeRoom(Keep);
  char* const to = FBuffer.get() + (End - Begin);
  const std::size_t unit = UnitSize();
  for (;;) {
    const std::size_t count = Fill(to + FLoose, FCapacity - static_cast<std::size_t>(to - FBuffer.get()) - FLoose);
    FLoose += count;
    if (count == 0) {
      FEnded = true;
      if (FLoose == 0) return false;
      std::memcpy(to, &cReplacement, sizeof cReplacement);  // half a unit at the very end
      FLoose = unit;
    }
    if (const std::size_t whole = FLoose / unit * unit) {
      End += whole;
      FLoose -= whole;
      return true;
    }
  }
}

// Finds room for two units or more behind End. Moves only when the buffer is full, and grows when more than half of it
// is kept, so that a byte is moved a bounded number of times however short the reads are.
void TTextWindow::MakeRoom(const char*& Keep) {
  const std::size_t used = static_cast<std::size_t>(End - Begin) + FLoose;
  if (FBuffer && FCapacity - used >= 4) return;
  const std::ptrdiff_t cur = Cur - Keep;
  const auto unit = static_cast<std::ptrdiff_t>(UnitSize());
  const char* from = Keep - Begin > cBehind * unit ? Keep - cBehind * unit : Begin;
  if (FStorage == TStorage::UTF8)
    for (int i = 0; i < 3 && from > Begin && IsTrail(*from); ++i) --from;
  const std::ptrdiff_t keep = Keep - from;
  const std::size_t kept = static_cast<std::size_t>(End - from) + FLoose;
  const bool grows = !FBuffer || kept > FCapacity / 2;
  const std::size_t capacity = !FBuffer ? cFirstWindow : grows ? std::max(FCapacity * 2, cFullWindow) : FCapacity;
  auto bigger = grows ? std::make_unique_for_overwrite<char[]>(capacity + cPad) : nullptr;
  if (from != Begin) Forget(from);
  const std::ptrdiff_t token = Token ? Token - from : -1;
  if (kept) std::memmove(grows ? bigger.get() : FBuffer.get(), from, kept);
  if (grows) FBuffer = std::move(bigger);
  FCapacity = capacity;
  Begin = FBuffer.get();
  End = Begin + (kept - FLoose);
  Readable = Begin + FCapacity + cPad;
  Keep = Begin + keep;
  Cur = Keep + cur;
  Token = token >= 0 ? Begin + token : nullptr;
}

void TTextWindow::Forget(const char* Keep) {
  if (Token && Token < Keep) {
    FTokenPlace = PlaceOf(Token);
    Token = nullptr;
  }
  FBegun = CountTo(Keep);
  FBase = FBegun.Offset;
}

std::size_t TTextWindow::Fill(char* To, std::size_t Room) {
  if (!FDecoder) return FFeed.Read(To, Room);
  return Convert(reinterpret_cast<char16_t*>(To), Room / 2) * 2;
}

std::size_t TTextWindow::Convert(char16_t* To, std::size_t Room) {
  char16_t* out = To;
  while (out == To) {
    if (FBytesCur == FBytesEnd && !FBytesEnded) {
      if (!FBytes) FBytes = std::make_unique_for_overwrite<char[]>(cByteChunk);
      const std::size_t count = FFeed.Read(FBytes.get(), cByteChunk);
      FBytesCur = FBytes.get();
      FBytesEnd = FBytesCur + count;
      FBytesEnded = count == 0;
    }
    FDecoder->Decode(FBytesCur, FBytesEnd, out, To + Room, FBytesEnded);
    if (FBytesEnded && FBytesCur == FBytesEnd) break;
  }
  return static_cast<std::size_t>(out - To);
}

void TTextWindow::Rewind() {
  if (FBase == 0)
    Cur = Begin;
  else
    OpenAt(0);
}

void TTextWindow::SetPage(std::uint16_t Page) {
  if (Page == FPage) return;
  const auto scannedAsBytes = [](std::uint16_t page) { return page == cUTF8 || SingleBytePage(page); };
  if (!FDecoder && scannedAsBytes(FPage) && scannedAsBytes(Page)) {
    FPage = Page;
    FTable = SingleBytePage(Page);
    FStorage = FTable ? TStorage::Bytes : TStorage::UTF8;
    return;
  }
  if (FDecoder) {
    FPage = Page;
    OpenAt(0);
    return;
  }
  TPlace here = CursorPlace();
  const std::size_t unit = UnitSize();
  if (FBase == 0 && !FFeed.Block()) FFeed.Stash(std::string(Begin, static_cast<std::size_t>(End - Begin) + FLoose));
  const std::uint64_t offset = static_cast<std::uint64_t>(OffsetOf(Cur)) * unit;
  FPage = Page;
  OpenAt(offset);
  here.Offset = FBase;
  FBegun = FCounted = here;
}

const char* TTextWindow::Recall(std::int64_t From, std::int64_t To) {
  if (From >= FBase) return PointerTo(From);
  const std::int64_t cursor = OffsetOf(Cur);
  if (Token) FTokenPlace = PlaceOf(Token);
  const TPlace token = FTokenPlace;
  OpenAt(0);
  const char* keep = End;
  while (OffsetOf(End) < From && More(keep)) Cur = keep = End;
  Cur = keep = PointerTo(std::min(From, OffsetOf(End)));
  while (OffsetOf(End) < std::max(To, cursor) && More(keep)) {
  }
  Cur = PointerTo(cursor);
  FTokenPlace = token;
  return keep;
}

const TPlace& TTextWindow::CountTo(const char* P) {
  if (FCounted.Offset > OffsetOf(P)) FCounted = FBegun;
  const char* from = PointerTo(FCounted.Offset);
  if (FStorage == TStorage::Wide)
    AdvancePlace(FCounted, reinterpret_cast<const char16_t*>(from), reinterpret_cast<const char16_t*>(P), FStorage);
  else
    AdvancePlace(FCounted, from, P, FStorage);
  return FCounted;
}

TPlace TTextWindow::PlaceOf(const char* P) {
  TPlace place = CountTo(P);
  const bool atLF =
      P != End && (FStorage == TStorage::Wide ? *reinterpret_cast<const char16_t*>(P) == u'\n' : *P == '\n');
  if (place.AfterCR && !atLF) {
    ++place.Line;
    place.Column = 1;
  }
  return place;
}

TPlace TTextWindow::CursorPlace() {
  const char* keep = Cur;
  if (Cur == End) More(keep);
  return PlaceOf(Cur);
}

TPlace TTextWindow::TokenPlace() { return Token ? PlaceOf(Token) : FTokenPlace; }

}  // namespace zm::detail
