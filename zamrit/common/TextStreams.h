#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>

#include "zamrit/common/Encoding.h"
#include "zamrit/platform/Objects.h"
#include "zamrit/platform/Streams.h"
#include "zamrit/platform/Strings.h"

namespace zm {

/// Says that a stream only shows the text it is given, which must outlive it.
struct TZmBorrow {};
inline constexpr TZmBorrow cZmBorrow;

/// A memory stream that holds text in a code page: 1200, 65001, any other 8-bit page, or 0 for the platform's 8-bit
/// page. A stream that shows a text or block of somebody else cannot be written to; any other takes raw bytes at its
/// position and texts at its end.
class TZmStringStream : public TMemoryStream {
  ZM_OBJECT(TZmStringStream, TMemoryStream)
 public:
  /// An empty stream with room for Capacity bytes.
  explicit TZmStringStream(std::uint16_t CodePage = cZmPageUTF16, std::uint64_t Capacity = 16);
  /// Holds a copy of a text, as UTF-16.
  explicit TZmStringStream(StringView Text);
  explicit TZmStringStream(const char16_t* Text) : TZmStringStream(StringView(Text)) {}
  /// Takes over a text, as UTF-16.
  explicit TZmStringStream(String&& Text);
  /// Holds a copy of bytes.
  TZmStringStream(std::string_view Bytes, std::uint16_t CodePage);
  TZmStringStream(const char* Bytes, std::uint16_t CodePage) : TZmStringStream(std::string_view(Bytes), CodePage) {}
  /// Takes over bytes.
  TZmStringStream(RawByteString&& Bytes, std::uint16_t CodePage);
  /// Shows Size bytes of a block.
  TZmStringStream(const void* Block, int Size, std::uint16_t CodePage);
  TZmStringStream(TZmBorrow, StringView Text);
  TZmStringStream(TZmBorrow, std::string_view Bytes, std::uint16_t CodePage);

  std::uint16_t GetCodePage() const { return FCodePage; }

  /// Appends a text in the stream's page, and moves the position to the end. A surrogate at the end and one at the
  /// start of the next text make one character.
  void Add(StringView Text);
  void AddChar(char16_t Char);

  /// The content as text.
  String GetAsString() const { return GetWString(); }
  String GetWString() const;
  /// The stored bytes.
  RawByteString GetDataString() const { return RawByteString(Bytes()); }
  /// The stored bytes of an 8-bit page; UTF-16 in the platform's 8-bit page.
  RawByteString GetAString() const;
  /// The content in UTF-8.
  RawByteString GetAsUTF8() const { return StringData(cZmPageUTF8); }
  /// The content in a page: the stored bytes where it is the stream's own.
  RawByteString StringData(std::uint16_t CodePage) const;

  std::size_t Write(const void* Buffer, std::size_t Count) override;
  const void* InPlace(std::uint64_t& Size) override { return InPlaceFor(typeid(TZmStringStream), Size); }

 private:
  std::string_view Bytes() const { return {FMemory, FSize}; }
  void AddInPage(StringView Text);

  std::uint16_t FCodePage;
  char16_t FHigh = 0;          // a high surrogate that was added last, and stands in the content as what replaces it
  std::size_t FHighStart = 0;  // where that stands, up to the end as it was
  std::size_t FHighEnd = 0;
  String FText;  // texts taken over
  RawByteString FBytes;
};

/// A memory stream for bytes: over a block of somebody else, which is only read, or over memory of its own.
class TZmMemoryStream : public TMemoryStream {
  ZM_OBJECT(TZmMemoryStream, TMemoryStream)
 public:
  TZmMemoryStream(const void* Block, std::uint64_t Size);
  /// An empty stream with room for Capacity bytes.
  explicit TZmMemoryStream(std::uint64_t Capacity = 0);

  /// Writes two bytes, the low one first.
  void WriteWord(std::uint16_t Value);

  const void* InPlace(std::uint64_t& Size) override { return InPlaceFor(typeid(TZmMemoryStream), Size); }
};

/// Stands in front of a stream of UTF-8 text as a stream of UTF-16 little endian: turns what is written to it and what
/// is read from it, in pieces of any size, and keeps no more than a buffer. It only goes forward.
class TZmUTF8StreamAdapter : public TStream {
  ZM_OBJECT(TZmUTF8StreamAdapter, TStream)
 public:
  /// Target is freed at the end where OwnsStream says so. With WriteBOM the UTF-8 mark goes out before the first text.
  TZmUTF8StreamAdapter(TStream* Target, bool OwnsStream, bool WriteBOM);
  /// Flushes; what then fails is lost, so call Flush first where that matters.
  ~TZmUTF8StreamAdapter() override;

  std::size_t Read(void* Buffer, std::size_t Count) override;
  std::size_t Write(const void* Buffer, std::size_t Count) override;
  /// Answers the number of UTF-16 bytes that have passed, refuses to move.
  std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin) override;

  /// Ends the text written so far: what is left of a character becomes U+FFFD.
  void Flush();

 private:
  struct TReading;

  void Send(StringView Text);
  bool ReadOn();

  TStream* FTarget;
  TZmOwner<TStream> FOwned;
  bool FMarkDue;
  std::int64_t FPosition = 0;
  char FHeld[3];  // a surrogate that may be half of a pair, a byte that is half of a unit
  std::size_t FHeldCount = 0;
  std::unique_ptr<TReading> FReading;
};

}  // namespace zm
