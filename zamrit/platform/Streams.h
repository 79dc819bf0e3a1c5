#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <typeinfo>

#include "zamrit/platform/Objects.h"
#include "zamrit/platform/Strings.h"

namespace zm {

/// What an offset of TStream::Seek counts from.
enum TSeekOrigin { soBeginning, soCurrent, soEnd };

/// A sequence of bytes with a position. What a stream cannot do raises EStreamError. Streams may also stand on the
/// stack or in a member.
class TStream : public TObject {
  ZM_OBJECT(TStream, TObject)
 public:
  /// Reads up to Count bytes and returns how many came: fewer than asked for at any time, 0 only at the end.
  virtual std::size_t Read(void* Buffer, std::size_t Count);
  /// Writes up to Count bytes and returns how many were taken.
  virtual std::size_t Write(const void* Buffer, std::size_t Count);
  /// Moves the position and returns it. A place in front of the beginning is refused.
  virtual std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin);

  std::int64_t GetPosition() { return Seek(0, soCurrent); }
  void SetPosition(std::int64_t Value) { Seek(Value, soBeginning); }
  /// The number of bytes from the beginning to the end. The position stays.
  virtual std::int64_t GetSize();
  /// Cuts the stream, or lengthens it with zero bytes. The position stays, or becomes the new end if it lies behind it.
  virtual void SetSize(std::int64_t Value);

  /// Reads exactly Count bytes, however many reads it takes. Raises EReadError when the stream ends before.
  void ReadBuffer(void* Buffer, std::size_t Count);
  /// Writes exactly Count bytes, however many writes it takes. Raises EWriteError when the stream takes no more.
  void WriteBuffer(const void* Buffer, std::size_t Count);
  /// Copies Count bytes from where Source stands, or all of Source from its beginning where Count is 0. Returns how
  /// many were copied. BufferSize bounds the memory that it takes. Raises EReadError when Source ends before Count.
  std::uint64_t CopyFrom(TStream* Source, std::uint64_t Count = 0, std::size_t BufferSize = 1 << 20);

  /// The whole content, Size bytes from the beginning on, where it lies in memory and reads as it lies; else nil. Valid
  /// until the stream is written to or ends. The position stays.
  virtual const void* InPlace(std::uint64_t& Size);

 protected:
  /// The Seek of a stream that only goes forward and counts its position: answers where it stands, refuses to move.
  std::int64_t SeekNowhere(std::int64_t Position, std::int64_t Offset, TSeekOrigin Origin) const;
};

/// A stream over an open descriptor, which it does not close. Over a pipe or a terminal it counts its own position, and
/// cannot be moved.
class THandleStream : public TStream {
  ZM_OBJECT(THandleStream, TStream)
 public:
  explicit THandleStream(int Handle);

  std::size_t Read(void* Buffer, std::size_t Count) override;
  std::size_t Write(const void* Buffer, std::size_t Count) override;
  std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin) override;
  void SetSize(std::int64_t Value) override;

  int GetHandle() const { return FHandle; }

 private:
  std::size_t Passed(std::ptrdiff_t Count);

  int FHandle;
  bool FSeekable;
  std::int64_t FPosition = 0;  // of a descriptor that cannot be moved
};

/// How TFileStream opens a file. The share modes are accepted and have no effect.
constexpr std::uint16_t fmOpenRead = 0x0000, fmOpenWrite = 0x0001, fmOpenReadWrite = 0x0002, fmCreate = 0xFF00;
constexpr std::uint16_t fmShareExclusive = 0x0010, fmShareDenyWrite = 0x0020, fmShareDenyNone = 0x0040;

/// A stream over a file, which is closed with it. A new file, or one to be emptied, is opened by fmCreate for reading
/// and writing; what else Mode says is then ignored. Raises EFOpenError, or EFCreateError with fmCreate, which name the
/// file and the system's reason.
class TFileStream : public THandleStream {
  ZM_OBJECT(TFileStream, THandleStream)
 public:
  TFileStream(StringView FileName, std::uint16_t Mode);
  /// The name is in UTF-8.
  TFileStream(std::string_view FileName, std::uint16_t Mode);
  ~TFileStream() override;

  const String& GetFileName() const { return FFileName; }

 private:
  TFileStream(String&& FileName, std::uint16_t Mode, std::nullptr_t);

  String FFileName;
};

/// A stream over a block of memory that it does not own and does not write to. Descendants say where the block is.
class TCustomMemoryStream : public TStream {
  ZM_OBJECT(TCustomMemoryStream, TStream)
 public:
  std::size_t Read(void* Buffer, std::size_t Count) override;
  std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin) override;
  std::int64_t GetSize() override { return static_cast<std::int64_t>(FSize); }

  /// The content; nil where there is none. Valid until the stream is written to or ends.
  const void* GetMemory() const { return FMemory; }
  /// Writes the whole content where Stream stands.
  void SaveToStream(TStream* Stream) const;
  void SaveToFile(StringView FileName) const;

 protected:
  /// InPlace for a class that reads as the content lies; a descendant of it, which may not, gets nil.
  const void* InPlaceFor(const std::type_info& Own, std::uint64_t& Size) const;

  const char* FMemory = nullptr;
  std::size_t FSize = 0;
  std::size_t FPosition = 0;
};

/// A stream over memory of its own, which grows by doubling. Out of memory raises std::bad_alloc and changes nothing.
class TMemoryStream : public TCustomMemoryStream {
  ZM_OBJECT(TMemoryStream, TCustomMemoryStream)
 public:
  TMemoryStream() = default;
  ~TMemoryStream() override;

  std::size_t Write(const void* Buffer, std::size_t Count) override;
  void SetSize(std::int64_t Value) override;
  const void* InPlace(std::uint64_t& Size) override;

  /// Forgets the content and gives the memory back.
  void Clear();
  /// Replaces the content by all of Stream, from its beginning. The position is then the end.
  void LoadFromStream(TStream* Stream);
  /// Replaces the content by that of a file. The position is then the beginning.
  void LoadFromFile(StringView FileName);

 protected:
  /// Makes the room Value bytes, no less than the content takes.
  void Reserve(std::size_t Value);
  /// For constructors: shows a block that stands elsewhere. It is copied when it is first written to, or writing is
  /// refused where ReadOnly says so.
  void Lend(const void* Block, std::size_t Size, bool ReadOnly);

 private:
  void CheckWritable() const;
  void Grow(std::size_t Value);

  char* FOwn = nullptr;
  std::size_t FCapacity = 0;
  bool FReadOnly = false;
};

}  // namespace zm
