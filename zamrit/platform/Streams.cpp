#include "zamrit/platform/Streams.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <system_error>
#include <utility>

#include "zamrit/platform/Exceptions.h"

namespace zm {
namespace {

static_assert(sizeof(off_t) == 8, "offsets of files need 64 bits");

constexpr StringView cReadError = u"Stream read error", cWriteError = u"Stream write error",
                     cSeekError = u"Stream seek error", cResizeError = u"Stream resize error";
constexpr std::size_t cGreatestTransfer = 1 << 30;  // of one call to the system, which limits it to about 2 GB
constexpr std::size_t cGreatestSize = std::numeric_limits<std::ptrdiff_t>::max();

#if defined(__GLIBC__)
#if __GLIBC_PREREQ(2, 32)
#define ZM_HAS_STRERRORDESC 1
#endif
#endif

// The system's words for an error, in English whatever the locale where the system offers that.
String Reason(int Error) {
#ifdef ZM_HAS_STRERRORDESC
  if (const char* text = strerrordesc_np(Error)) return FromUTF8(text);
#endif
  return FromUTF8(std::generic_category().message(Error));
}

template <class E>
[[noreturn]] void RaiseErrno(StringView What) {
  throw E(u"%s. %s", {What, Reason(errno)});
}

// Repeats a call to the system that a signal has interrupted.
template <class F>
auto Uninterrupted(F Call) {
  auto result = Call();
  while (result == -1 && errno == EINTR) result = Call();
  return result;
}

bool IsCreate(std::uint16_t Mode) { return (Mode & fmCreate) == fmCreate; }

// The descriptor, or -1 with the reason in errno.
int TryOpen(const std::string& Name, std::uint16_t Mode) {
  constexpr int access[] = {O_RDONLY, O_WRONLY, O_RDWR};
  const unsigned wanted = Mode & 3u;
  if (Name.find('\0') != std::string::npos || (!IsCreate(Mode) && wanted == 3)) {
    errno = EINVAL;
    return -1;
  }
  const int flags = O_CLOEXEC | (IsCreate(Mode) ? O_RDWR | O_CREAT | O_TRUNC : access[wanted]);
  const int handle = Uninterrupted([&] { return ::open(Name.c_str(), flags, 0666); });
  struct stat status;
  if (handle >= 0 && ::fstat(handle, &status) == 0 && S_ISDIR(status.st_mode)) {
    ::close(handle);
    errno = EISDIR;
    return -1;
  }
  return handle;
}

int OpenFile(const String& Name, std::uint16_t Mode) {
  const int handle = TryOpen(ToUTF8(Name), Mode);
  if (handle >= 0) return handle;
  const String reason = Reason(errno);
  if (IsCreate(Mode)) throw EFCreateError(u"Cannot create file \"%s\". %s", {Name, reason});
  throw EFOpenError(u"Cannot open file \"%s\". %s", {Name, reason});
}

}  // namespace

std::size_t TStream::Read(void*, std::size_t) { throw EStreamError(u"%s cannot be read", {ClassName()}); }

std::size_t TStream::Write(const void*, std::size_t) { throw EStreamError(u"%s cannot be written", {ClassName()}); }

std::int64_t TStream::Seek(std::int64_t, TSeekOrigin) { throw EStreamError(u"%s cannot be moved", {ClassName()}); }

std::int64_t TStream::GetSize() {
  const std::int64_t position = GetPosition();
  const std::int64_t size = Seek(0, soEnd);
  SetPosition(position);
  return size;
}

void TStream::SetSize(std::int64_t) { throw EStreamError(u"%s cannot be resized", {ClassName()}); }

void TStream::ReadBuffer(void* Buffer, std::size_t Count) {
  auto* to = static_cast<char*>(Buffer);
  while (Count > 0) {
    const std::size_t count = Read(to, Count);
    if (count == 0) throw EReadError(cReadError);
    to += count;
    Count -= count;
  }
}

void TStream::WriteBuffer(const void* Buffer, std::size_t Count) {
  const auto* from = static_cast<const char*>(Buffer);
  while (Count > 0) {
    const std::size_t count = Write(from, Count);
    if (count == 0) throw EWriteError(cWriteError);
    from += count;
    Count -= count;
  }
}

std::uint64_t TStream::CopyFrom(TStream* Source, std::uint64_t Count, std::size_t BufferSize) {
  if (Source == this) throw EStreamError(u"A stream cannot be copied to itself");
  const bool all = Count == 0;
  if (all) {
    Source->SetPosition(0);
    Count = std::numeric_limits<std::uint64_t>::max();
  }
  const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(Count, std::max<std::size_t>(BufferSize, 1)));
  const auto buffer = std::make_unique_for_overwrite<char[]>(size);
  std::uint64_t copied = 0;
  while (copied < Count) {
    const std::size_t count =
        Source->Read(buffer.get(), static_cast<std::size_t>(std::min<std::uint64_t>(size, Count - copied)));
    if (count == 0) break;
    WriteBuffer(buffer.get(), count);
    copied += count;
  }
  if (!all && copied < Count) throw EReadError(cReadError);
  return copied;
}

const void* TStream::InPlace(std::uint64_t& Size) {
  Size = 0;
  return nullptr;
}

std::int64_t TStream::SeekNowhere(std::int64_t Position, std::int64_t Offset, TSeekOrigin Origin) const {
  const bool stays = Origin == soBeginning ? Offset == Position : Origin == soCurrent && Offset == 0;
  if (!stays) throw EStreamError(u"%s cannot be moved", {ClassName()});
  return Position;
}

THandleStream::THandleStream(int Handle) : FHandle(Handle), FSeekable(::lseek(Handle, 0, SEEK_CUR) >= 0) {}

std::size_t THandleStream::Read(void* Buffer, std::size_t Count) {
  const auto count = Uninterrupted([&] { return ::read(FHandle, Buffer, std::min(Count, cGreatestTransfer)); });
  if (count < 0) RaiseErrno<EReadError>(cReadError);
  return Passed(count);
}

std::size_t THandleStream::Write(const void* Buffer, std::size_t Count) {
  const auto count = Uninterrupted([&] { return ::write(FHandle, Buffer, std::min(Count, cGreatestTransfer)); });
  if (count < 0) RaiseErrno<EWriteError>(cWriteError);
  return Passed(count);
}

std::size_t THandleStream::Passed(std::ptrdiff_t Count) {
  if (!FSeekable) FPosition += Count;
  return static_cast<std::size_t>(Count);
}

std::int64_t THandleStream::Seek(std::int64_t Offset, TSeekOrigin Origin) {
  if (!FSeekable) return SeekNowhere(FPosition, Offset, Origin);
  const off_t position = ::lseek(FHandle, Offset,
                                 Origin == soBeginning ? SEEK_SET
                                 : Origin == soEnd     ? SEEK_END
                                                       : SEEK_CUR);
  if (position < 0) RaiseErrno<EStreamError>(cSeekError);
  return position;
}

void THandleStream::SetSize(std::int64_t Value) {
  if (Uninterrupted([&] { return ::ftruncate(FHandle, Value); }) != 0) RaiseErrno<EStreamError>(cResizeError);
  if (GetPosition() > Value) SetPosition(Value);
}

TFileStream::TFileStream(StringView FileName, std::uint16_t Mode) : TFileStream(String(FileName), Mode, nullptr) {}

TFileStream::TFileStream(std::string_view FileName, std::uint16_t Mode)
    : TFileStream(FromUTF8(FileName), Mode, nullptr) {}

TFileStream::TFileStream(String&& FileName, std::uint16_t Mode, std::nullptr_t)
    : THandleStream(OpenFile(FileName, Mode)), FFileName(std::move(FileName)) {}

TFileStream::~TFileStream() { ::close(GetHandle()); }

std::size_t TCustomMemoryStream::Read(void* Buffer, std::size_t Count) {
  const std::size_t count = FPosition < FSize ? std::min(Count, FSize - FPosition) : 0;
  if (count > 0) std::memcpy(Buffer, FMemory + FPosition, count);
  FPosition += count;
  return count;
}

std::int64_t TCustomMemoryStream::Seek(std::int64_t Offset, TSeekOrigin Origin) {
  const auto base = static_cast<std::int64_t>(Origin == soBeginning ? 0 : Origin == soEnd ? FSize : FPosition);
  if (Offset < -base || Offset > std::numeric_limits<std::int64_t>::max() - base) throw EStreamError(cSeekError);
  FPosition = static_cast<std::size_t>(base + Offset);
  return base + Offset;
}

void TCustomMemoryStream::SaveToStream(TStream* Stream) const { Stream->WriteBuffer(FMemory, FSize); }

void TCustomMemoryStream::SaveToFile(StringView FileName) const {
  TFileStream file(FileName, fmCreate);
  SaveToStream(&file);
}

const void* TCustomMemoryStream::InPlaceFor(const std::type_info& Own, std::uint64_t& Size) const {
  if (typeid(*this) != Own) {
    Size = 0;
    return nullptr;
  }
  Size = FSize;
  return FMemory ? FMemory : "";
}

TMemoryStream::~TMemoryStream() { std::free(FOwn); }

const void* TMemoryStream::InPlace(std::uint64_t& Size) { return InPlaceFor(typeid(TMemoryStream), Size); }

void TMemoryStream::CheckWritable() const {
  if (FReadOnly) throw EStreamError(u"%s cannot be written", {ClassName()});
}

std::size_t TMemoryStream::Write(const void* Buffer, std::size_t Count) {
  CheckWritable();
  if (Count == 0) return 0;
  if (Count > cGreatestSize - FPosition) throw std::bad_alloc();
  const std::size_t end = FPosition + Count;
  Grow(end);
  if (FPosition > FSize) std::memset(FOwn + FSize, 0, FPosition - FSize);
  std::memcpy(FOwn + FPosition, Buffer, Count);
  FPosition = end;
  FSize = std::max(FSize, end);
  return Count;
}

void TMemoryStream::SetSize(std::int64_t Value) {
  CheckWritable();
  if (Value < 0) throw EStreamError(cResizeError);
  const auto size = static_cast<std::size_t>(Value);
  if (size > FSize) {
    Grow(size);
    std::memset(FOwn + FSize, 0, size - FSize);
  }
  FSize = size;
  FPosition = std::min(FPosition, size);
}

void TMemoryStream::Grow(std::size_t Value) {
  if (Value > FCapacity) Reserve(std::max({Value, FCapacity * 2, FSize}));
}

void TMemoryStream::Reserve(std::size_t Value) {
  if (Value == 0) return;
  const bool lent = FMemory != FOwn;
  auto* own = static_cast<char*>(std::realloc(FOwn, Value));
  if (!own) throw std::bad_alloc();
  if (lent) std::memcpy(own, FMemory, FSize);
  FMemory = FOwn = own;
  FCapacity = Value;
}

void TMemoryStream::Lend(const void* Block, std::size_t Size, bool ReadOnly) {
  FMemory = static_cast<const char*>(Block);
  FSize = Size;
  FReadOnly = ReadOnly;
}

void TMemoryStream::Clear() {
  CheckWritable();
  std::free(std::exchange(FOwn, nullptr));
  FMemory = nullptr;
  FSize = FPosition = FCapacity = 0;
}

void TMemoryStream::LoadFromStream(TStream* Stream) {
  SetSize(0);
  CopyFrom(Stream);
}

void TMemoryStream::LoadFromFile(StringView FileName) {
  TFileStream file(FileName, fmOpenRead);
  LoadFromStream(&file);
  SetPosition(0);
}

}  // namespace zm
