#include "Input.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace zmtool {
namespace {

constexpr std::size_t cHead = 4096;
constexpr std::int64_t cProgressStep = 64 << 20;

zm::TZmOwner<zm::TStream> Open(const std::string& Name) {
  if (Name == "-") return zm::Create<zm::THandleStream>(STDIN_FILENO);
  return zm::Create<zm::TFileStream>(std::string_view(Name), zm::fmOpenRead);
}

bool CanMove(zm::TStream& Stream) {
  try {
    Stream.GetSize();
    return true;
  } catch (const zm::EStreamError&) {
    return false;
  }
}

}  // namespace

// Standard input may begin in the middle of a file, so it is never moved.
TInput::TInput(const std::string& Name)
    : FSource(Open(Name)), FSeekable(Name != "-" && CanMove(*FSource)), FTerminal(isatty(STDERR_FILENO) != 0) {}

TInput::~TInput() {
  if (FShown > 0) std::fputs("\r\x1b[K", stderr);
}

std::size_t TInput::Read(void* Buffer, std::size_t Count) {
  std::size_t count;
  if (const auto at = static_cast<std::size_t>(FPosition); !FSeekable && at < FHead.size()) {
    count = FHead.copy(static_cast<char*>(Buffer), Count, at);
  } else {
    const bool toHead = !FSeekable && at < cHead;
    count = FSource->Read(Buffer, toHead ? std::min(Count, cHead - at) : Count);
    if (toHead) FHead.append(static_cast<const char*>(Buffer), count);
    FBytesRead = std::max(FBytesRead, FPosition + static_cast<std::int64_t>(count));
  }
  FPosition += static_cast<std::int64_t>(count);
  if (FTerminal) ShowProgress();
  return count;
}

std::int64_t TInput::Seek(std::int64_t Offset, zm::TSeekOrigin Origin) {
  if (FSeekable) return FPosition = FSource->Seek(Offset, Origin);
  const std::int64_t to = Origin == zm::soCurrent ? FPosition + Offset : Offset;
  const auto head = static_cast<std::int64_t>(FHead.size());
  if (Origin != zm::soEnd && to >= 0 && to <= head && FBytesRead == head) return FPosition = to;
  return SeekNowhere(FPosition, Offset, Origin);
}

TTextKind TInput::FindKind() {
  char bytes[cHead];
  const char* visible = bytes;
  const char* end = bytes;
  while (visible == end && end < bytes + cHead) {
    const std::size_t count = Read(bytes + (end - bytes), static_cast<std::size_t>(bytes + cHead - end));
    if (count == 0) break;
    end += count;
    visible = std::find_if(visible, end, [](char c) { return c > ' ' && c < '\x7F'; });
  }
  SetPosition(0);
  return visible != end && *visible == '<' ? tkXML : tkJSON;
}

void TInput::ShowProgress() {
  if (FPosition - FShown < cProgressStep) return;
  FShown = FPosition;
  std::fprintf(stderr, "\r%lld MB", static_cast<long long>(FPosition / 1000000));
}

}  // namespace zmtool
