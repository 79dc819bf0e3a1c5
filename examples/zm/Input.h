#pragma once

#include <cstdint>
#include <string>

#include "Commands.h"
#include "zamrit/platform/Streams.h"

namespace zmtool {

/// The input of a command: a file or, for "-", standard input. Shows progress on standard error when that is a
/// terminal, and lets the first bytes be read again where the source itself cannot go back.
class TInput : public zm::TStream {
  ZM_OBJECT(TInput, zm::TStream)
 public:
  explicit TInput(const std::string& Name);
  ~TInput() override;

  std::size_t Read(void* Buffer, std::size_t Count) override;
  std::int64_t Seek(std::int64_t Offset, zm::TSeekOrigin Origin) override;

  /// Whether it has a size, and any place of it can be gone to.
  bool IsSeekable() const { return FSeekable; }
  /// Bytes read from the source so far.
  std::int64_t BytesRead() const { return FBytesRead; }
  /// What the text is by its first visible ASCII character: XML where that is "<", else JSON. To be asked before
  /// anything else is read; looks no further than the first few KB.
  TTextKind FindKind();

 private:
  void ShowProgress();

  zm::TZmOwner<zm::TStream> FSource;
  std::string FHead;  // the first bytes of a source that cannot go back, as long as nothing behind them has been read
  std::int64_t FPosition = 0;
  std::int64_t FBytesRead = 0;
  std::int64_t FShown = 0;
  bool FSeekable;
  bool FTerminal;
};

}  // namespace zmtool
