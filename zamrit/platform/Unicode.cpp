#include "zamrit/platform/Unicode.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/TextDetail.h"

namespace zm {
namespace {

const UNormalizer2* Normalizer(TNormalForm Form) {
  UErrorCode error = U_ZERO_ERROR;
  const UNormalizer2* normalizer = nullptr;
  switch (Form) {
    case nfC:
      normalizer = unorm2_getNFCInstance(&error);
      break;
    case nfD:
      normalizer = unorm2_getNFDInstance(&error);
      break;
    case nfKC:
      normalizer = unorm2_getNFKCInstance(&error);
      break;
    case nfKD:
      normalizer = unorm2_getNFKDInstance(&error);
      break;
    default:
      throw ERangeError(u"There is no normalization form %d", {static_cast<int>(Form)});
  }
  if (U_FAILURE(error)) throw ENotSupportedException(u"The tables of the normalization forms are missing");
  return normalizer;
}

// Runs of marks up to here are left to the normalizer.
constexpr std::size_t cLongRun = 64;

// The end of the run of marks that begins at From.
std::size_t EndOfMarks(const UNormalizer2* Decomposer, StringView Text, std::size_t From) {
  while (From < Text.size()) {
    std::size_t next = From;
    UChar32 c;
    U16_NEXT(Text.data(), next, Text.size(), c);
    if (c < 0x300 || unorm2_hasBoundaryBefore(Decomposer, c)) break;
    From = next;
  }
  return From;
}

// Marks, decomposed and in canonical order.
void AppendMarks(const UNormalizer2* Decomposer, StringView Marks, String& Out) {
  std::vector<std::pair<std::uint8_t, UChar32>> marks;
  const auto add = [&marks](UChar32 c) { marks.emplace_back(u_getCombiningClass(c), c); };
  for (std::size_t i = 0; i < Marks.size();) {
    UChar32 c;
    U16_NEXT(Marks.data(), i, Marks.size(), c);
    UErrorCode error = U_ZERO_ERROR;
    char16_t parts[32];
    const std::int32_t length = unorm2_getDecomposition(Decomposer, c, parts, std::size(parts), &error);
    if (length < 0 || U_FAILURE(error)) {
      add(c);
      continue;
    }
    for (std::int32_t j = 0; j < length;) {
      U16_NEXT(parts, j, length, c);
      add(c);
    }
  }
  std::stable_sort(marks.begin(), marks.end(),
                   [](const auto& Left, const auto& Right) { return Left.first < Right.first; });
  for (const auto& [order, c] : marks) {
    char16_t units[2];
    Out.append(units, detail::PutUTF16(static_cast<char32_t>(c), units));
  }
}

// An equivalent text in which long runs of marks stand in canonical order: the normalizer moves each mark by itself,
// which takes quadratic time. Empty where there are none.
String WithOrderedMarks(StringView Text, TNormalForm Form) {
  const UNormalizer2* decomposer = Normalizer(Form == nfC || Form == nfD ? nfD : nfKD);
  String out;
  std::size_t done = 0;
  for (std::size_t i = 0; i < Text.size(); ++i) {
    if (Text[i] < 0x300) continue;
    const std::size_t end = EndOfMarks(decomposer, Text, i);
    if (end - i > cLongRun) {
      out += Text.substr(done, i - done);
      AppendMarks(decomposer, Text.substr(i, end - i), out);
      done = end;
    }
    if (end > i) i = end - 1;
  }
  return done > 0 ? out += Text.substr(done) : String();
}

}  // namespace

String NormalizeText(StringView Text, TNormalForm Form) {
  const UNormalizer2* normalizer = Normalizer(Form);
  const String ordered = WithOrderedMarks(Text, Form);
  if (!ordered.empty()) Text = ordered;
  if (Text.empty()) return String();

  // Most texts keep their length.
  String out(Text.size() + Text.size() / 8 + 16, u'\0');
  for (;;) {
    if (out.size() > INT32_MAX) throw ERangeError(u"The text is too long to be normalized");
    UErrorCode error = U_ZERO_ERROR;
    const std::int32_t length = unorm2_normalize(normalizer, Text.data(), static_cast<std::int32_t>(Text.size()),
                                                 out.data(), static_cast<std::int32_t>(out.size()), &error);
    if (U_FAILURE(error) && error != U_BUFFER_OVERFLOW_ERROR) throw std::bad_alloc();
    out.resize(static_cast<std::size_t>(length));
    if (U_SUCCESS(error)) return out;
  }
}

char32_t UpperChar(char32_t Char) { return static_cast<char32_t>(u_toupper(static_cast<UChar32>(Char))); }
char32_t LowerChar(char32_t Char) { return static_cast<char32_t>(u_tolower(static_cast<UChar32>(Char))); }

}  // namespace zm
