#include "zamrit/platform/RegEx.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <new>
#include <utility>

#include "zamrit/platform/ASCIIDetail.h"
#include "zamrit/platform/TextDetail.h"

#define PCRE2_CODE_UNIT_WIDTH 16
#include <pcre2.h>

namespace zm {

using detail::IsDigit;

namespace {

constexpr std::uint32_t cMatchLimit = 10'000'000;
constexpr std::uint32_t cDepthLimit = 1'000'000;
constexpr std::uint32_t cHeapLimitKB = 64 * 1024;
constexpr std::uint32_t cNestLimit = 250;
constexpr std::size_t cJITStack = 64 * 1024 * 1024;

template <auto Free>
struct TFree {
  template <class T>
  void operator()(T* Object) const {
    Free(Object);
  }
};
using TCodePtr = std::unique_ptr<pcre2_code, TFree<pcre2_code_free>>;
using TMatchDataPtr = std::unique_ptr<pcre2_match_data, TFree<pcre2_match_data_free>>;
using TMatchContextPtr = std::unique_ptr<pcre2_match_context, TFree<pcre2_match_context_free>>;
using TCompileContextPtr = std::unique_ptr<pcre2_compile_context, TFree<pcre2_compile_context_free>>;
using TJITStackPtr = std::unique_ptr<pcre2_jit_stack, TFree<pcre2_jit_stack_free>>;

template <class T>
T* Made(T* Object) {
  if (!Object) throw std::bad_alloc();
  return Object;
}

// A view without a text has no address, which is no pointer to a text of length 0 for every version of PCRE2.
PCRE2_SPTR Units(StringView Text) { return reinterpret_cast<PCRE2_SPTR>(Text.data() ? Text.data() : u""); }

// The text with U+FFFD for each lone surrogate: places stay what they are.
String WellFormed(StringView Text) {
  String out(Text);
  for (std::size_t i = 0; i < out.size(); ++i) {
    if (!detail::IsSurrogate(out[i])) continue;
    if (detail::IsHighSurrogate(out[i]) && i + 1 < out.size() && detail::IsLowSurrogate(out[i + 1]))
      ++i;
    else
      out[i] = detail::cReplacement;
  }
  return out;
}

bool IsIllFormed(int Code) { return Code <= PCRE2_ERROR_UTF16_ERR1 && Code >= PCRE2_ERROR_UTF16_ERR3; }

String ErrorText(int Code) {
  PCRE2_UCHAR text[256];
  pcre2_get_error_message(Code, text, std::size(text));
  return reinterpret_cast<const char16_t*>(text);
}

pcre2_code* Compile(StringView Pattern, TRegExOptions Options) {
  constexpr std::pair<TRegExOption, std::uint32_t> options[] = {{roIgnoreCase, PCRE2_CASELESS},
                                                                {roMultiLine, PCRE2_MULTILINE},
                                                                {roExplicitCapture, PCRE2_NO_AUTO_CAPTURE},
                                                                {roSingleLine, PCRE2_DOTALL},
                                                                {roIgnorePatternSpace, PCRE2_EXTENDED}};
  // \C could leave a match between the halves of a pair.
  std::uint32_t bits = PCRE2_UTF | PCRE2_UCP | PCRE2_NEVER_BACKSLASH_C;
  for (const auto& [option, bit] : options)
    if (Options.Has(option)) bits |= bit;

  const TCompileContextPtr context(Made(pcre2_compile_context_create(nullptr)));
  pcre2_set_newline(context.get(), PCRE2_NEWLINE_LF);
  pcre2_set_bsr(context.get(), PCRE2_BSR_UNICODE);
  pcre2_set_parens_nest_limit(context.get(), cNestLimit);

  int error = 0;
  std::size_t offset = 0;
  pcre2_code* code = pcre2_compile(Units(Pattern), Pattern.size(), bits, &error, &offset, context.get());
  if (!code && IsIllFormed(error)) return Compile(WellFormed(Pattern), Options);
  if (!code && error == PCRE2_ERROR_HEAP_FAILED) throw std::bad_alloc();
  if (!code) throw ERegularExpressionError(u"Error in regular expression at offset %d: %s", {offset, ErrorText(error)});
  return code;
}

pcre2_match_context* Limits() {
  static pcre2_match_context* const context = [] {
    pcre2_match_context* made = Made(pcre2_match_context_create(nullptr));
    pcre2_set_match_limit(made, cMatchLimit);
    pcre2_set_depth_limit(made, cDepthLimit);
    pcre2_set_heap_limit(made, cHeapLimitKB);
    return made;
  }();
  return context;
}

}  // namespace

class TRegEx::TCode {
 public:
  TCode(StringView Pattern, TRegExOptions Options) : FCode(Compile(Pattern, Options)) {
    pcre2_jit_compile(FCode.get(), PCRE2_JIT_COMPLETE);  // where there is none, the interpreter takes over
    pcre2_pattern_info(FCode.get(), PCRE2_INFO_CAPTURECOUNT, &FGroupCount);
  }

  const pcre2_code* Get() const { return FCode.get(); }
  std::uint32_t GroupCount() const { return FGroupCount; }

  int GroupNumber(StringView Name) const {
    const String name(Name);  // NUL-terminated
    PCRE2_SPTR first = nullptr, last = nullptr;
    if (name.find(u'\0') != String::npos) return -1;
    const int found = pcre2_substring_nametable_scan(FCode.get(), Units(name), &first, &last);
    return found < 0 ? -1 : *first;
  }

 private:
  TCodePtr FCode;
  std::uint32_t FGroupCount = 0;
};

// Goes over the matches in one input.
class TRegEx::TSearch {
 public:
  TSearch(const TCode& Code, StringView Input)
      : FCode(Code),
        FInput(Input),
        FSubject(Units(Input)),
        FData(Made(pcre2_match_data_create_from_pattern(Code.Get(), nullptr))),
        FPlaces(pcre2_get_ovector_pointer(FData.get())),
        FEnd(std::chrono::steady_clock::now() + cTime + Input.size() * cTimeAUnit) {}

  bool Next() {
    if (FFrom > FInput.size()) return false;
    const int count = Run();
    if (std::chrono::steady_clock::now() > FEnd) Raise(PCRE2_ERROR_MATCHLIMIT);
    if (count == PCRE2_ERROR_NOMATCH) {
      FFrom = FInput.size() + 1;
      return false;
    }
    if (count < 0) Raise(count);
    FGroupsSet = static_cast<std::uint32_t>(count);
    // Only \K inside an assertion can do this.
    if (Start() < FFrom || End() < Start())
      throw ERegularExpressionError(u"The regular expression sets the start of a match outside of it!");
    FFrom = End();
    FOptions = PCRE2_NO_UTF_CHECK | (Start() == End() ? PCRE2_NOTEMPTY_ATSTART : 0);
    return true;
  }

  std::size_t Start() const { return FPlaces[0]; }
  std::size_t End() const { return FPlaces[1]; }

  TRegExGroup Group(std::uint32_t Number) const {
    if (Number >= FGroupsSet || FPlaces[2 * Number] == PCRE2_UNSET) return {};
    const std::size_t start = FPlaces[2 * Number];
    return {true, start, FInput.substr(start, FPlaces[2 * Number + 1] - start)};
  }

  TRegExMatch Match() const {
    const TRegExGroup whole = Group(0);
    TRegExMatch match{true, whole.Index, whole.Value, {}};
    match.Groups.reserve(FCode.GroupCount() + 1);
    for (std::uint32_t i = 0; i <= FCode.GroupCount(); ++i) match.Groups.push_back(Group(i));
    return match;
  }

 private:
  int RunOnce() {
    return pcre2_match(FCode.Get(), FSubject, FInput.size(), FFrom, FOptions, FData.get(),
                       FOwnLimits ? FOwnLimits.get() : Limits());
  }

  int Run() {
    int count = RunOnce();
    if (IsIllFormed(count)) {
      FRepaired = WellFormed(FInput);
      FSubject = Units(FRepaired);
      FOptions |= PCRE2_NO_UTF_CHECK;
      count = RunOnce();
    }
    if (count == PCRE2_ERROR_JIT_STACKLIMIT && !FStack) {
      FStack.reset(Made(pcre2_jit_stack_create(64 * 1024, cJITStack, nullptr)));
      FOwnLimits.reset(Made(pcre2_match_context_copy(Limits())));
      pcre2_jit_stack_assign(FOwnLimits.get(), nullptr, FStack.get());
      count = RunOnce();
    }
    return count;
  }

  [[noreturn]] static void Raise(int Code) {
    switch (Code) {
      case PCRE2_ERROR_NOMEMORY:
        throw std::bad_alloc();
      case PCRE2_ERROR_MATCHLIMIT:
      case PCRE2_ERROR_DEPTHLIMIT:
      case PCRE2_ERROR_HEAPLIMIT:
      case PCRE2_ERROR_JIT_STACKLIMIT:
        throw ERegularExpressionError(u"The regular expression needs too many steps for this text!");
      default:
        throw ERegularExpressionError(u"The regular expression failed: %s", {ErrorText(Code)});
    }
  }

  const TCode& FCode;
  StringView FInput;
  PCRE2_SPTR FSubject;
  String FRepaired;
  TJITStackPtr FStack;          // none until the machine's own stack does not suffice
  TMatchContextPtr FOwnLimits;  // with that stack
  TMatchDataPtr FData;
  const std::size_t* FPlaces;
  std::size_t FFrom = 0;
  std::uint32_t FOptions = 0;
  std::uint32_t FGroupsSet = 0;
  // The limit of steps is one for each match, of which there may be many.
  static constexpr std::chrono::seconds cTime{1};
  static constexpr std::chrono::microseconds cTimeAUnit{1};
  std::chrono::steady_clock::time_point FEnd;
};

namespace {

// A piece of a replacement: a group, or a text where Group is below 0.
struct TPiece {
  std::int64_t Group;
  StringView Text;
};

// Longer than any name of a group; without it, braces that are never closed would cost quadratic time.
constexpr std::size_t cLongestReference = 160;

// Takes the number of a group off a text that begins with a digit.
std::int64_t TakeGroupNumber(StringView& Text, std::int64_t GroupCount) {
  std::int64_t number = Text.front() - u'0';
  for (Text.remove_prefix(1); !Text.empty() && IsDigit(Text.front()); Text.remove_prefix(1)) {
    const std::int64_t longer = number * 10 + (Text.front() - u'0');
    if (longer > GroupCount) break;
    number = longer;
  }
  return number;
}

// Takes what begins with "$" or a backslash off a text, without it where it stands for itself.
TPiece TakeReference(StringView& Text, const TRegEx& Expression, std::int64_t GroupCount) {
  const StringView whole = Text;
  const char16_t sign = whole.front(), next = whole.size() > 1 ? whole[1] : u'\0';
  if (IsDigit(next)) {
    Text.remove_prefix(1);
    return {TakeGroupNumber(Text, GroupCount), {}};
  }
  if (next == u'$' || (sign == u'\\' && next == u'\\')) {
    Text.remove_prefix(2);
    return {-1, whole.substr(1, 1)};
  }
  const std::size_t brace = sign == u'$' && next == u'{' ? whole.substr(0, cLongestReference).find(u'}') : 0;
  if (brace != StringView::npos && brace > 2) {
    Text.remove_prefix(brace + 1);
    StringView name = whole.substr(2, brace - 2);
    if (!IsDigit(name.front())) {
      const int number = Expression.GroupNumber(name);
      return number < 0 ? TPiece{-1, {}} : TPiece{number, {}};
    }
    const std::int64_t number = TakeGroupNumber(name, GroupCount);
    return name.empty() ? TPiece{number, {}} : TPiece{-1, {}};
  }
  Text.remove_prefix(1);
  return {-1, whole.substr(0, 1)};
}

std::vector<TPiece> ParseReplacement(StringView Text, const TRegEx& Expression, std::int64_t GroupCount) {
  std::vector<TPiece> pieces;
  while (!Text.empty()) {
    const std::size_t plain = std::min(Text.find_first_of(u"$\\"), Text.size());
    if (plain > 0) pieces.push_back({-1, Text.substr(0, plain)});
    Text.remove_prefix(plain);
    if (!Text.empty()) pieces.push_back(TakeReference(Text, Expression, GroupCount));
  }
  return pieces;
}

}  // namespace

TRegEx::TRegEx(StringView Pattern, TRegExOptions Options) : FCode(std::make_shared<const TCode>(Pattern, Options)) {}

bool TRegEx::IsMatch(StringView Input) const { return TSearch(*FCode, Input).Next(); }

TRegExMatch TRegEx::Match(StringView Input) const {
  TSearch search(*FCode, Input);
  return search.Next() ? search.Match() : TRegExMatch{};
}

std::vector<TRegExMatch> TRegEx::Matches(StringView Input) const {
  std::vector<TRegExMatch> matches;
  for (TSearch search(*FCode, Input); search.Next();) matches.push_back(search.Match());
  return matches;
}

String TRegEx::Replace(StringView Input, StringView Replacement) const {
  const std::vector<TPiece> pieces = ParseReplacement(Replacement, *this, FCode->GroupCount());
  String out;
  std::size_t done = 0;
  for (TSearch search(*FCode, Input); search.Next(); done = search.End()) {
    out += Input.substr(done, search.Start() - done);
    for (const TPiece& piece : pieces)
      out += piece.Group < 0 ? piece.Text : search.Group(static_cast<std::uint32_t>(piece.Group)).Value;
  }
  return out += Input.substr(done);
}

std::vector<StringView> TRegEx::Split(StringView Input) const {
  std::vector<StringView> parts;
  if (Input.empty()) return parts;
  std::size_t done = 0;
  for (TSearch search(*FCode, Input); search.Next();) {
    if (search.Start() == search.End() && (search.Start() == 0 || search.Start() == Input.size())) continue;
    parts.push_back(Input.substr(done, search.Start() - done));
    done = search.End();
  }
  parts.push_back(Input.substr(done));
  return parts;
}

int TRegEx::GroupNumber(StringView Name) const { return FCode->GroupNumber(Name); }

namespace {

const TRegEx& Cached(StringView Pattern, TRegExOptions Options) {
  struct TEntry {
    String Pattern;
    TRegExOptions Options;
    TRegEx Expression;
  };
  constexpr std::size_t cEntries = 8;
  thread_local std::vector<TEntry> cache;  // the one last used in front
  auto entry = std::find_if(cache.begin(), cache.end(),
                            [&](const TEntry& Entry) { return Entry.Options == Options && Entry.Pattern == Pattern; });
  if (entry == cache.end()) {
    TEntry fresh{String(Pattern), Options, TRegEx(Pattern, Options)};
    if (cache.size() == cEntries) cache.pop_back();
    entry = cache.insert(cache.end(), std::move(fresh));
  }
  std::rotate(cache.begin(), entry, entry + 1);
  return cache.front().Expression;
}

}  // namespace

bool TRegEx::IsMatch(StringView Input, StringView Pattern, TRegExOptions Options) {
  return Cached(Pattern, Options).IsMatch(Input);
}

String TRegEx::Replace(StringView Input, StringView Pattern, StringView Replacement, TRegExOptions Options) {
  return Cached(Pattern, Options).Replace(Input, Replacement);
}

std::vector<StringView> TRegEx::Split(StringView Input, StringView Pattern, TRegExOptions Options) {
  return Cached(Pattern, Options).Split(Input);
}

}  // namespace zm
