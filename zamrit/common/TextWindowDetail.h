#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include "zamrit/platform/CodePages.h"
#include "zamrit/platform/Streams.h"

namespace zm::detail {

/// How the text in a window is stored.
enum class TStorage { Bytes, Wide, UTF8 };

/// Line and column from 1, columns in UTF-16 units, at an offset in units of the storage.
struct TPlace {
  std::int64_t Offset = 0;
  std::int64_t Line = 1;
  std::int64_t Column = 1;
  bool AfterCR = false;  // the unit before is a carriage return whose line is not counted as ended yet

  /// As a locator tells them; what is beyond its type stays at the greatest value.
  int LineNr() const { return Told(Line); }
  int ColNr() const { return Told(Column); }

 private:
  static int Told(std::int64_t Number) {
    return static_cast<int>(std::min<std::int64_t>(Number, std::numeric_limits<int>::max()));
  }
};

/// The bytes of a source from its content start on, from a block or from a stream, as often as asked.
class TByteFeed {
 public:
  TByteFeed(const void* Block, std::size_t Size);
  TByteFeed(TStream* Stream, bool OwnsStream);
  ~TByteFeed();
  TByteFeed(const TByteFeed&) = delete;
  TByteFeed& operator=(const TByteFeed&) = delete;

  /// At least one byte, or 0 at the end.
  std::size_t Read(char* To, std::size_t Room);
  /// Goes back to an offset from the content start. Raises what the stream raises when it cannot.
  void GoTo(std::uint64_t Offset);
  /// Keeps the bytes that stand before the stream's position, all from the content start on, so that GoTo within them
  /// needs no seek.
  void Stash(std::string Bytes);

  /// The whole content where it lies in memory, else nil.
  const char* Block() const { return FBlock; }
  std::size_t BlockSize() const { return FBlockSize; }

 private:
  const char* FBlock = nullptr;
  std::size_t FBlockSize = 0;
  TStream* FStream = nullptr;
  bool FOwnsStream = false;
  std::int64_t FStart = 0;
  std::string FStash;
  std::uint64_t FPosition = 0;
};

/// A window that slides over the text of a source: what lies from the lowest place that is still needed up to what has
/// been read. A block in memory whose page can be scanned as it stands is its own window. A stream is read as more is
/// asked for; a page that cannot be scanned byte by byte is converted to UTF-16 on the way in. Offsets count storage
/// units from the start of the content.
class TTextWindow {
 public:
  TTextWindow(const void* Block, std::size_t Size, std::uint16_t Page);
  TTextWindow(TStream* Stream, bool OwnsStream, std::uint16_t Page);

  const char* Begin = nullptr;
  const char* Cur = nullptr;
  const char* End = nullptr;
  /// Memory may be read up to here; End or behind it.
  const char* Readable = nullptr;
  /// Where the construct being read began; nil when the window has passed it.
  const char* Token = nullptr;

  /// Whether the text stays where it is for good: a block that is its own window.
  bool Stays() const { return Begin != FBuffer.get(); }
  TStorage Storage() const { return FStorage; }
  std::size_t UnitSize() const { return FStorage == TStorage::Wide ? 2 : 1; }
  /// What the bytes of a single-byte page mean.
  const char16_t* Table() const { return FTable; }

  /// Reads more behind End, and forgets what lies before Keep, a place in the window not behind Cur. Keep and Cur move
  /// with the text. Returns false, and changes nothing, when the source has no more.
  bool More(const char*& Keep);

  /// Back to the start of the content.
  void Rewind();
  /// The source through another page from the cursor on. Where the text so far was converted the cursor goes back to
  /// the start of the content.
  void SetPage(std::uint16_t Page);
  std::uint16_t Page() const { return FPage; }

  std::int64_t OffsetOf(const char* P) const { return FBase + (P - Begin) / static_cast<std::ptrdiff_t>(UnitSize()); }
  /// Makes [From, To) part of the window and returns where From stands, seeking the source back where the text has been
  /// forgotten. Cur keeps its place in the text.
  const char* Recall(std::int64_t From, std::int64_t To);

  /// Line and column of Cur. Places asked in rising order cost a count of the text between them.
  TPlace CursorPlace();
  /// Line and column of Token, also after the window has passed it; at offset -1 where there has been none.
  TPlace TokenPlace();

 private:
  void OpenAt(std::uint64_t ByteOffset);
  const char* PointerTo(std::int64_t Offset) const;
  void Forget(const char* Keep);
  void MakeRoom(const char*& Keep);
  std::size_t Fill(char* To, std::size_t Room);
  std::size_t Convert(char16_t* To, std::size_t Room);
  const TPlace& CountTo(const char* P);
  TPlace PlaceOf(const char* P);

  TByteFeed FFeed;
  std::uint16_t FPage;
  TStorage FStorage = TStorage::Bytes;
  const char16_t* FTable = nullptr;
  std::int64_t FBase = 0;  // the offset of Begin
  bool FEnded = false;     // nothing more comes behind End
  std::unique_ptr<char[]> FBuffer;
  std::size_t FCapacity = 0;
  std::size_t FLoose = 0;  // bytes behind End that do not make a unit yet
  std::unique_ptr<TPageDecoder> FDecoder;
  std::unique_ptr<char[]> FBytes;  // what the decoder has not taken yet
  const char* FBytesCur = nullptr;
  const char* FBytesEnd = nullptr;
  bool FBytesEnded = false;
  TPlace FBegun;    // the place of Begin
  TPlace FCounted;  // the place last counted
  TPlace FTokenPlace{-1};
};

}  // namespace zm::detail
