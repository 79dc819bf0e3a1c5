#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "zamrit/platform/Strings.h"

namespace zm {

// Page 0 is the platform's 8-bit page, UTF-8, except for SingleBytePage.

/// The page of an encoding name, whatever its case: a registered name, an alias of one, or "cp", "windows-" or "ibm-"
/// with a number. Blanks around it do not count. Raises EConvertError for a name that it does not know.
std::uint16_t CodePageOfName(StringView Name);
/// The preferred encoding name of a page. Raises EConvertError for a page that it does not know.
String CodePageName(std::uint16_t Page);
/// Whether texts can be converted from and to a page.
bool IsKnownCodePage(std::uint16_t Page);
/// The greatest number of bytes that a character takes in a page: 1 for single-byte pages, 0 for unknown ones.
int MaxCharSize(std::uint16_t Page);

/// The 256 characters of a single-byte page that agrees with ASCII below 0x80, U+FFFD for bytes that mean nothing; nil
/// for every other page. Page 0 answers the table in which each byte is its own code point. Valid as long as the
/// program runs.
const char16_t* SingleBytePage(std::uint16_t Page);

/// The bytes of a text in a page. A character that the page does not have becomes
/// "?", a lone surrogate in UTF-8 or UTF-32 U+FFFD. Raises EConvertError for an unknown page. Linear.
std::string EncodePage(StringView Text, std::uint16_t Page);
/// The text of bytes in a page. Each maximal bad sequence becomes U+FFFD. Raises EConvertError for an unknown page.
/// Linear.
String DecodePage(std::string_view Bytes, std::uint16_t Page);

/// Turns the bytes of a page into text piece by piece. However the input is cut, the text is the same.
class TPageDecoder {
 public:
  /// Raises EConvertError for an unknown page.
  explicit TPageDecoder(std::uint16_t Page);
  ~TPageDecoder();
  TPageDecoder(const TPageDecoder&) = delete;
  TPageDecoder& operator=(const TPageDecoder&) = delete;

  /// Converts from In on to Out on, and moves both, until the input or the room is used up. With Flush the input ends
  /// here: the text is complete once a call with no input left writes nothing.
  void Decode(const char*& In, const char* InEnd, char16_t*& Out, char16_t* OutEnd, bool Flush);
  /// Forgets what has been read, ready for another text.
  void Reset();

 private:
  class TConverter;
  class TTableConverter;
  class TUTF16Converter;
  class TICUConverter;

  std::unique_ptr<TConverter> FConverter;
};

}  // namespace zm
