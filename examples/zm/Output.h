#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "zamrit/platform/Streams.h"

namespace zmtool {

/// Standard output, buffered. Its beginning is where the program started to write. Raises EWriteError where it takes no
/// more.
class TOutput : public zm::TStream {
  ZM_OBJECT(TOutput, zm::TStream)
 public:
  TOutput();
  ~TOutput() override;

  std::size_t Write(const void* Buffer, std::size_t Count) override;
  std::int64_t Seek(std::int64_t Offset, zm::TSeekOrigin Origin) override {
    return SeekNowhere(FPosition, Offset, Origin);
  }
  std::int64_t GetSize() override { return FPosition; }
  void Put(std::string_view Text) { Write(Text.data(), Text.size()); }
  /// The text in UTF-8.
  void Put(zm::StringView Text) { Put(zm::ToUTF8(Text)); }
  void Flush();

 private:
  zm::THandleStream FTarget;
  std::string FBuffer;
  std::int64_t FPosition = 0;
};

}  // namespace zmtool
