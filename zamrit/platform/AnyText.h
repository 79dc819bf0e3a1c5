#pragma once

#include <string>
#include <string_view>

#include "zamrit/platform/Strings.h"

namespace zm {

/// A parameter that takes a text in UTF-16 or in UTF-8, and only points at it: valid as long as what it was made from.
class TZmAnyText {
 public:
  TZmAnyText(StringView Text) : FWide(Text), FIsWide(true) {}                  // NOLINT(google-explicit-constructor)
  TZmAnyText(const String& Text) : TZmAnyText(StringView(Text)) {}             // NOLINT(google-explicit-constructor)
  TZmAnyText(const char16_t* Text) : TZmAnyText(StringView(Text)) {}           // NOLINT(google-explicit-constructor)
  TZmAnyText(std::string_view UTF8) : FNarrow(UTF8), FIsWide(false) {}         // NOLINT(google-explicit-constructor)
  TZmAnyText(const std::string& UTF8) : TZmAnyText(std::string_view(UTF8)) {}  // NOLINT(google-explicit-constructor)
  TZmAnyText(const char* UTF8) : TZmAnyText(std::string_view(UTF8)) {}         // NOLINT(google-explicit-constructor)

  /// The text in UTF-16.
  String Text() const { return FIsWide ? String(FWide) : FromUTF8(FNarrow); }

  /// In which form it was given, and that form; the other one is empty.
  bool IsWide() const { return FIsWide; }
  StringView Wide() const { return FWide; }
  std::string_view UTF8() const { return FNarrow; }

 private:
  StringView FWide;
  std::string_view FNarrow;
  bool FIsWide;
};

}  // namespace zm
