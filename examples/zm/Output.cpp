#include "Output.h"

#include <unistd.h>

#include <utility>

#include "zamrit/platform/Exceptions.h"

namespace zmtool {

constexpr std::size_t cBuffer = 1 << 16;

TOutput::TOutput() : FTarget(STDOUT_FILENO) {}

TOutput::~TOutput() {
  try {
    Flush();
  } catch (const zm::EWriteError&) {  // what ended the command is under way, and is told
  }
}

std::size_t TOutput::Write(const void* Buffer, std::size_t Count) {
  FBuffer.append(static_cast<const char*>(Buffer), Count);
  FPosition += static_cast<std::int64_t>(Count);
  if (FBuffer.size() >= cBuffer) Flush();
  return Count;
}

void TOutput::Flush() {
  const std::string text = std::exchange(FBuffer, {});
  FTarget.WriteBuffer(text.data(), text.size());
}

}  // namespace zmtool
