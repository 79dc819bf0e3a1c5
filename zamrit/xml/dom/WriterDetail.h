#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include "zamrit/common/Encoding.h"
#include "zamrit/platform/ScanDetail.h"
#include "zamrit/platform/Streams.h"
#include "zamrit/platform/Strings.h"

namespace zm::detail {

/// UTF-8 on its way to a stream in some code page. What has been put goes out when the block is full, or on Flush,
/// which must be called at the end. What is not well-formed or has no place in the page goes out as U+FFFD or "?".
class TTreeOutput {
 public:
  /// Bytes that Room has beyond those that are asked for, for short texts to be copied as 16 bytes.
  static constexpr std::size_t cPad = 16;

  TTreeOutput(TStream* Stream, std::uint16_t CodePage)
      : FStream(Stream), FPage(CodePage == 0 ? cZmPageUTF8 : CodePage) {
    NewBlock(cFirst);
  }

  /// Room for Count bytes, no more than cMost of them.
  static constexpr std::size_t cMost = 512;
  ZM_INLINE char* Room(std::size_t Count) {
    if (static_cast<std::size_t>(FEnd - FAt) < Count + cPad) [[unlikely]]
      MakeRoom();
    return FAt;
  }
  /// Takes the room up to End.
  void Take(char* End) { FAt = End; }

  /// Of a text at which 16 bytes can be read.
  static ZM_INLINE char* CopyShort(char* To, std::string_view Text) {
    std::memcpy(To, Text.data(), 16);
    if (Text.size() > 16) [[unlikely]]
      std::memcpy(To + 16, Text.data() + 16, Text.size() - 16);
    return To + Text.size();
  }
  template <std::size_t N>
  static ZM_INLINE char* CopyMark(char* To, const char (&Text)[N]) {
    std::memcpy(To, Text, N - 1);
    return To + (N - 1);
  }
  template <std::size_t N>
  ZM_INLINE void PutMark(const char (&Text)[N]) {
    Take(CopyMark(Room(N - 1), Text));
  }
  ZM_INLINE void Put(std::string_view Text) {
    if (Text.size() > cMost) [[unlikely]]
      return PutLong(Text);
    char* const to = Room(Text.size());
    if (!Text.empty()) std::memcpy(to, Text.data(), Text.size());
    Take(to + Text.size());
  }
  void Put(StringView Text) { Put(std::string_view(ToUTF8(Text))); }
  /// A text with lone surrogates of three bytes each. They go out as they are in UTF-16.
  void PutSurrogates(std::string_view Text);
  void Put(std::string_view Text, bool Surrogates) { Surrogates ? PutSurrogates(Text) : Put(Text); }
  ZM_INLINE void PutBlanks(std::size_t Count) {
    if (Count > cPad) return PutManyBlanks(Count);
    char* const to = Room(Count);
    std::memset(to, ' ', cPad);
    Take(to + Count);
  }

  /// Writes what has been put.
  void Flush();
  TStream* Stream() const { return FStream; }
  std::uint16_t CodePage() const { return FPage; }

 private:
  static constexpr std::size_t cFirst = 2048;
  static constexpr std::size_t cBlock = 1 << 16;

  void NewBlock(std::size_t Size);
  ZM_NOINLINE void MakeRoom();
  ZM_NOINLINE void PutLong(std::string_view Text);
  ZM_NOINLINE void PutManyBlanks(std::size_t Count);
  void WriteConverted();

  TStream* const FStream;
  const std::uint16_t FPage;
  bool FSurrogates = false;  // lone ones stand in the block
  std::unique_ptr<char[]> FBlock;
  char* FAt = nullptr;
  char* FEnd = nullptr;
  String FWide;
};

}  // namespace zm::detail
