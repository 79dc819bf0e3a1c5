#include "Input.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zmtool {
namespace {

constexpr std::size_t cHead = 4096;
constexpr std::int64_t cProgressStep = 64 << 20;

zm::TZmOwner<zm::TStream> Open(const std::string& Name) {
  if (Name == "-") return zm::Create<zm::THandleStream>(STDIN_FILENO);
  return zm::Create<zm::TFileStream>(std::string_view(Name), zm::fmOpenRead);
}

}  // namespace

TInput::TInput(const std::string& Name) : FSource(Open(Name)), FTerminal(isatty(STDERR_FILENO) != 0) {}

TInput::~TInput() {
  if (FShown > 0) std::fputs("\r\x1b[K", stderr);
}

std::size_t TInput::Read(void* Buffer, std::size_t Count) {
  if (FBytesRead < static_cast<std::int64_t>(cHead) && FPosition == FBytesRead) {
    char head[cHead];
    const std::size_t count = FSource->Read(head, cHead - static_cast<std::size_t>(FBytesRead));
    FHead.append(head, count);
    FBytesRead += static_cast<std::int64_t>(count);
  }
  std::size_t count;
  if (const auto at = static_cast<std::size_t>(FPosition); at < FHead.size()) {
    count = FHead.copy(static_cast<char*>(Buffer), Count, at);
  } else {
    count = FSource->Read(Buffer, Count);
    FBytesRead = std::max(FBytesRead, FPosition + static_cast<std::int64_t>(count));
  }
  FPosition += static_cast<std::int64_t>(count);
  if (FTerminal) ShowProgress();
  return count;
}

std::int64_t TInput::Seek(std::int64_t Offset, zm::TSeekOrigin Origin) {
  const auto head = static_cast<std::int64_t>(FHead.size());
  const std::int64_t to = Origin == zm::soCurrent ? FPosition + Offset : Offset;
  const bool within = Origin != zm::soEnd && to >= 0 && to <= head && FPosition <= head && FBytesRead == head;
  if (!within && !(Origin == zm::soCurrent && Offset == 0))
    FPosition = FSource->Seek(Origin == zm::soEnd ? Offset : to, Origin == zm::soEnd ? zm::soEnd : zm::soBeginning);
  else
    FPosition = to;
  return FPosition;
}

void TInput::ShowProgress() {
  if (FPosition - FShown < cProgressStep) return;
  FShown = FPosition;
  std::fprintf(stderr, "\r%lld MB", static_cast<long long>(FPosition / 1000000));
}

}  // namespace zmtool
