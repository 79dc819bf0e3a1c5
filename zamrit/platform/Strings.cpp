#include "zamrit/platform/Strings.h"

#include <unicode/uchar.h>

#include <charconv>
#include <initializer_list>

#include "zamrit/platform/ASCIIDetail.h"
#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/TextDetail.h"

namespace zm {
namespace {

// Applies a simple mapping, one code point to one; both of the mappings used take ASCII to lower case.
template <class F>
String MapCodePoints(StringView Text, F Map) {
  String out;
  out.reserve(Text.size());
  for (std::size_t i = 0; i < Text.size(); ++i) {
    char32_t c = Text[i];
    if (c < 0x80) {
      out.push_back(c >= 'A' && c <= 'Z' ? static_cast<char16_t>(c + 32) : static_cast<char16_t>(c));
      continue;
    }
    if (detail::IsHighSurrogate(c) && i + 1 < Text.size() && detail::IsLowSurrogate(Text[i + 1]))
      c = detail::JoinSurrogates(static_cast<char16_t>(c), Text[++i]);
    char16_t units[2];
    const char16_t* end = detail::PutUTF16(Map(c), units);
    out.append(units, static_cast<std::size_t>(end - units));
  }
  return out;
}

}  // namespace

void detail::AppendUTF8(StringView Text, std::string& Out) {
  const char16_t *p = Text.data(), *end = p + Text.size();
  while (p != end) {
    char32_t c = *p++;
    if (c < 0x80) {
      Out.push_back(static_cast<char>(c));
      continue;
    }
    if (IsSurrogate(c)) {
      if (IsHighSurrogate(c) && p != end && IsLowSurrogate(*p))
        c = JoinSurrogates(static_cast<char16_t>(c), *p++);
      else
        c = cReplacement;
    }
    const auto put = [&Out](char32_t Byte) { Out.push_back(static_cast<char>(static_cast<unsigned char>(Byte))); };
    if (c < 0x800) {
      put(0xC0 | c >> 6);
    } else {
      if (c < 0x10000) {
        put(0xE0 | c >> 12);
      } else {
        put(0xF0 | c >> 18);
        put(0x80 | (c >> 12 & 0x3F));
      }
      put(0x80 | (c >> 6 & 0x3F));
    }
    put(0x80 | (c & 0x3F));
  }
}

void detail::AppendUTF16(std::string_view Text, String& Out) {
  const std::size_t old = Out.size();
  Out.resize(old + Text.size() + cWidenPad);
  const char* end = Text.data() + Text.size();
  const char16_t* behind = WidenUTF8(Text.data(), end, end, Out.data() + old);
  Out.resize(static_cast<std::size_t>(behind - Out.data()));
}

std::string ToUTF8(StringView Text) {
  std::string out;
  out.reserve(Text.size() + Text.size() / 8);
  detail::AppendUTF8(Text, out);
  return out;
}

String FromUTF8(std::string_view Text) {
  String out;
  detail::AppendUTF16(Text, out);
  return out;
}

String Format(StringView Pattern, std::initializer_list<TFormatArg> Arguments) {
  String out;
  const TFormatArg* next = Arguments.begin();
  for (std::size_t i = 0; i < Pattern.size(); ++i) {
    if (Pattern[i] != u'%') {
      out.push_back(Pattern[i]);
      continue;
    }
    const char16_t kind = ++i < Pattern.size() ? Pattern[i] : u'\0';
    if (kind == u'%') {
      out.push_back(kind);
      continue;
    }
    if ((kind != u's' && kind != u'd') || next == Arguments.end() || (kind == u'd' && !next->FIsNumber))
      throw EConvertError(u"Format \"" + String(Pattern) + u"\" invalid or incompatible with argument");
    out += next->FIsNumber ? IntToStr(next->FNumber) : String(next->FText);
    ++next;
  }
  return out;
}

String IntToStr(std::int64_t Value) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, Value).ptr;
  return String(digits, end);
}

StringView Trim(StringView Text) {
  while (!Text.empty() && Text.front() <= u' ') Text.remove_prefix(1);
  while (!Text.empty() && Text.back() <= u' ') Text.remove_suffix(1);
  return Text;
}

String LowerCase(StringView Text) {
  return MapCodePoints(Text, [](char32_t c) { return static_cast<char32_t>(u_tolower(static_cast<UChar32>(c))); });
}

String FoldCase(StringView Text) {
  return MapCodePoints(
      Text, [](char32_t c) { return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT)); });
}

bool SameText(StringView Left, StringView Right) {
  if (Left.size() != Right.size()) return false;  // simple folding keeps the length
  for (std::size_t i = 0; i < Left.size(); ++i) {
    if (Left[i] == Right[i]) continue;
    if ((Left[i] | Right[i]) >= 0x80) {
      if (i > 0) --i;  // a pair may differ in its low half alone
      return FoldCase(Left.substr(i)) == FoldCase(Right.substr(i));
    }
    if (detail::LowerASCII(Left[i]) != detail::LowerASCII(Right[i])) return false;
  }
  return true;
}

}  // namespace zm
