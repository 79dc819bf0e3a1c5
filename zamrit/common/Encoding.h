#pragma once

#include <cstdint>
#include <string_view>

#include "zamrit/platform/Streams.h"
#include "zamrit/platform/Strings.h"

namespace zm {

/// The code pages that are stored as they stand: UTF-16 little endian and UTF-8.
constexpr std::uint16_t cZmPageUTF16 = 1200, cZmPageUTF8 = 65001;

/// The byte order marks of these pages.
inline constexpr unsigned char cZmUTF8[3] = {0xEF, 0xBB, 0xBF};
inline constexpr unsigned char cZmUTF16LE[2] = {0xFF, 0xFE};

/// The code page of an encoding name, whatever its case. Raises EConvertError naming it when it is unknown.
std::uint16_t ZmCodePage(StringView Name);
/// The encoding name of a code page; "UTF-8" for 0, the platform's 8-bit page. Raises EConvertError for an unknown
/// page.
String ZmCodePage(std::uint16_t Page);

/// The page that a byte order mark at the stream's position shows (65001, 1200 or 1201), with the position behind the
/// mark; or 0, with the position where it was. A stream that cannot be moved raises EStreamError where it has no mark
/// and is not at its end.
std::uint16_t ZmGetCodePage(TStream* Stream);

/// Conversions between texts and the bytes of a code page; page 0 is the platform's 8-bit page, UTF-8. An unknown page
/// raises EConvertError.
struct TZmEncoding {
  /// The 8-bit form of a text. A character that the page does not have becomes "?".
  static RawByteString ConvertW(StringView Text, std::uint16_t CodePage);
  /// The text of bytes. Each maximal bad sequence becomes U+FFFD.
  static String ConvertA(std::string_view Bytes, std::uint16_t CodePage = 0);
  /// The text of Size bytes; a negative size is none.
  static String ConvertA(const unsigned char* Bytes, int Size, std::uint16_t CodePage);
};

}  // namespace zm
