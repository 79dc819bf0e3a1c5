#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "zamrit/common/TextStreams.h"
#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/Numbers.h"
#include "zamrit/xml/values/EntitiesDetail.h"
#include "zamrit/xml/values/Escaping.h"

/// Escaping and its reverse one character at a time through a string stream, with no concern for speed: a second
/// opinion on those of the library.
template <class U>
class TPlainEscaping {
 public:
  using TText = std::basic_string<U>;
  using TView = std::basic_string_view<U>;

  static TText Escape(TView Text, bool EscapeApos, bool EscapeQuot) {
    TPlainEscaping plain(Text);
    for (plain.FCursor = 0; plain.FCursor < Text.size(); ++plain.FCursor) {
      const U c = Text[plain.FCursor];
      if (c == '<') plain.Replace(u"&lt;");
      if (c == '>') plain.Replace(u"&gt;");
      if (c == '&') plain.Replace(u"&amp;");
      if (c == '\'' && EscapeApos) plain.Replace(u"&apos;");
      if (c == '"' && EscapeQuot) plain.Replace(u"&quot;");
      if (c >= 1 && c <= 31) plain.Replace(u"&#" + zm::IntToStr(c) + u";");
      if (c == 0 && cWide) plain.Replace(u"");
    }
    return plain.Result();
  }

  static TText Decode(TView Text) {
    TPlainEscaping plain(Text);
    std::size_t& cursor = plain.FCursor;
    while (cursor < Text.size()) {
      if (Text[cursor] != '&') {
        ++cursor;
        continue;
      }
      plain.WriteRun();
      do ++cursor;
      while (cursor < Text.size() && Text[cursor] != ' ' && Text[cursor] != ';');
      if (cursor < Text.size() && Text[cursor] == ';') plain.Reference();
    }
    return plain.Result();
  }

 private:
  static constexpr bool cWide = sizeof(U) == 2;

  explicit TPlainEscaping(TView Text) : FText(Text), FStream(cWide ? zm::cZmPageUTF16 : std::uint16_t{0}, 16) {}

  void WriteRun() {
    if (FCursor > FRun) FStream.WriteBuffer(&FText[FRun], (FCursor - FRun) * sizeof(U));
    FRun = FCursor;
  }
  void Replace(zm::StringView By) {
    WriteRun();
    FStream.Add(By);
    FRun = FCursor + 1;
  }
  TText Result() {
    WriteRun();
    if constexpr (cWide)
      return FStream.GetWString();
    else
      return FStream.GetAString();
  }

  // The run starts at the "&", the cursor stands on the ";".
  void Reference() {
    zm::String name;
    for (std::size_t i = FRun + 1; i < FCursor; ++i) name += static_cast<char16_t>(FText[i]);
    if (name.starts_with(u'#')) {
      name.erase(0, 1);
      if (name.starts_with(u'x') || name.starts_with(u'X')) name[0] = u'$';
      Put(static_cast<char16_t>(zm::StrToInt(name)));
    } else if (const char16_t code = cWide ? zm::detail::EntityOf(name) : Narrow(name)) {
      Put(code);
    }
  }
  void Put(char16_t Code) {
    FRun = FCursor + 1;
    if constexpr (cWide)
      FStream.WriteBuffer(&Code, 2);
    else
      FStream.AddChar(Code);
  }

  static char16_t Narrow(const zm::String& Name) {
    const char16_t first = Name.empty() ? u'\0' : Name[0], second = Name.size() > 1 ? Name[1] : u'\0';
    if (first == 'a' || first == 'A') return second == 'm' || second == 'M' ? u'&' : u'\'';
    if (first == 'g' || first == 'G') return u'>';
    if (first == 'l' || first == 'L') return u'<';
    return first == 'q' || first == 'Q' ? u'"' : u'\0';
  }

  TView FText;
  zm::TZmStringStream FStream;
  std::size_t FRun = 0, FCursor = 0;
};

/// Whether the library and the plain implementation make the same of a text, and escaping it loses nothing. The text
/// stands in a block of exactly its size, so that a sanitizer sees a read behind the end.
template <class U>
bool EscapingAgrees(std::basic_string_view<U> Text, bool EscapeApos, bool EscapeQuot) {
  using TPlain = TPlainEscaping<U>;
  const auto outcome = [](auto Decode) -> std::optional<std::basic_string<U>> {
    try {
      return Decode();
    } catch (const zm::EConvertError&) {
      return std::nullopt;
    }
  };
  const std::unique_ptr<U[]> block(new U[Text.size()]);
  std::copy(Text.begin(), Text.end(), block.get());
  const std::basic_string_view<U> text(block.get(), Text.size());
  std::basic_string<U> kept(Text);
  if (sizeof(U) == 2) std::erase(kept, U{0});
  const std::basic_string<U> escaped = zm::ZmStrToXML(text, EscapeApos, EscapeQuot);
  return escaped == TPlain::Escape(text, EscapeApos, EscapeQuot) && zm::ZmXMLToStr(escaped) == kept &&
         outcome([&] { return zm::ZmXMLToStr(text); }) == outcome([&] { return TPlain::Decode(text); });
}
