#pragma once

#include <string>
#include <string_view>

#include "zamrit/platform/Strings.h"

namespace zm {

/// A coder of bytes as text, without state: one object serves all threads. Linear.
class TZmNetEncoding {
 public:
  /// Base-64 with padding, in lines of 76 characters that end with CR and LF, and in one line. Decoding is the same for
  /// both: blanks, tabs and line ends are passed over; anything else that the encoder does not write raises
  /// EConvertError "The text is not valid base-64".
  static const TZmNetEncoding& GetBase64Encoding();
  static const TZmNetEncoding& GetBase64ExEncoding();
  /// "%" and two hexadecimal digits for each byte but ASCII letters, digits, "-", ".", "_" and "~". The first is for
  /// forms: a blank is "+". In the second, for components of a URL, "+" has no meaning. Decoding never fails: a "%"
  /// without two hexadecimal digits stands for itself.
  static const TZmNetEncoding& GetURLEncoding();
  static const TZmNetEncoding& GetURLComponentEncoding();

  virtual std::string Encode(std::string_view Bytes) const = 0;
  virtual std::string Decode(std::string_view Code) const = 0;

  /// A text by way of UTF-8: a lone surrogate, or decoded bytes that are no UTF-8, become U+FFFD.
  String Encode(StringView Text) const;
  String Decode(StringView Code) const;

  /// Bytes, where the code is a wide text.
  String EncodeBytesToString(std::string_view Bytes) const;
  std::string DecodeStringToBytes(StringView Code) const;

 protected:
  ~TZmNetEncoding() = default;
};

}  // namespace zm
