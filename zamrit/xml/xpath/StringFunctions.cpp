#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

#include "zamrit/common/SysUtils.h"
#include "zamrit/common/ZmTypes.h"
#include "zamrit/platform/RegEx.h"
#include "zamrit/platform/TextDetail.h"
#include "zamrit/xml/xpath/FunctionLibrary.h"

namespace zm {

namespace {

constexpr int cAnyNumber = std::numeric_limits<int>::max();

bool IsText(const Variant& Value) { return TZmTypes::VarMainTypeKind(Value) == mtkString; }
bool IsWhole(const Variant& Value) { return TZmTypes::VarMainTypeKind(Value) == mtkInteger; }

// Length characters from the one at Start, which counts from 1; as many of them as there are.
StringView Copy(StringView Text, std::int64_t Start, std::int64_t Length) {
  const std::int64_t from = std::clamp<std::int64_t>(Start, 1, static_cast<std::int64_t>(Text.size()) + 1) - 1;
  return Text.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(std::max<std::int64_t>(Length, 0)));
}

// Writes items with a separator between them.
class TJoined {
 public:
  explicit TJoined(StringView Separator) : FSeparator(Separator) {}
  void Add(StringView Item) {
    if (std::exchange(FHasItems, true)) FText += FSeparator;
    FText += Item;
  }
  String& Text() { return FText; }

 private:
  StringView FSeparator;
  String FText;
  bool FHasItems = false;
};

// What looks like a sequence of these items, which Write turns into text.
template <class TItems, class F>
String SequenceText(const TItems& Items, F Write) {
  TJoined joined(u", ");
  for (const auto& item : Items) joined.Add(Write(item));
  return u"(" + joined.Text() + u")";
}

// The runs between blanks, with one blank between them.
String WithSingleBlanks(StringView Text) {
  String out;
  for (const char16_t c : Text)
    if (c != u' ' || (!out.empty() && out.back() != u' ')) out += c;
  if (!out.empty() && out.back() == u' ') out.pop_back();
  return out;
}

// The text of a value with the ASCII letters from First on, 26 of them, in the other case; null for what is no text.
Variant WithOtherCase(const Variant& Value, char16_t First) {
  if (!IsText(Value)) return Null();
  String text = Value.TextRef();
  for (char16_t& c : text)
    if (c >= First && c < First + 26) c = static_cast<char16_t>(c ^ 0x20);
  return text;
}

TRegExOptions OptionsOf(StringView Letters, const TZmXPathCollation& Collation) {
  constexpr std::pair<StringView, TRegExOption> letters[] = {{u"s", roSingleLine},
                                                             {u"m", roMultiLine},
                                                             {u"i", roIgnoreCase},
                                                             {u"x", roIgnorePatternSpace},
                                                             {u"q", roExplicitCapture}};
  TRegExOptions options;
  for (const auto& [letter, option] : letters)
    if (Collation.Pos(letter, Letters) > 0) options.Include(option);
  return options;
}

// Whether the collation finds a text at the very start, which the library's own ones tell from what stands there.
bool StartsWith(StringView Text, StringView Sought, TZmXPathCollationClass Collation) {
  if (Collation == TZmXPathCollationASCIICI || Collation == TZmXPathCollationCodepoint)
    Text = Text.substr(0, Sought.size());
  return Collation->Pos(Sought, Text) == 1;
}

}  // namespace

void TZmXPathFnCodepointsToString::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(0, 1,
             u"The \"fn:codepoints-to-string((int,int,...))\" function may contain 0 or 1 parameter, but not more!");
  Result = Null();
  if (ParamCount() == 0) return;
  const auto* codes = dynamic_cast<const TZmXPathListTerm*>(&Param(0));
  if (!codes) throw EZmDomSyntax(u"The \"fn:codepoints-to-string((int,int,...))\" requires a list of integers!");
  String text;
  for (int i = 0; i < codes->Count(); ++i) {
    Variant code;
    codes->GetTerm(i)->Value(code, List, Position);
    if (!IsWhole(code)) return;
    text += static_cast<char16_t>(code.AsInteger());
  }
  Result = std::move(text);
}

void TZmXPathFnStringToCodepoints::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(1, 1, u"The \"fn:string-to-codepoints(string)\" function must contain 1 parameter!");
  const Variant text = ParamValue(0, List, Position);
  Result = IsText(text) ? Variant(SequenceText(text.TextRef(), [](char16_t c) { return IntToStr(c); })) : Null();
}

void TZmXPathFnCompare::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(2, cAnyNumber, u"The \"fn:compare(comp1, comp2, collation*)\" function must contain at least parameters!");
  CheckCount(2, 3, u"The \"fn:compare(comp1, comp2, collation*)\" function has a maximum of 3 paramaters!");
  const Variant left = ParamValue(0, List, Position), right = ParamValue(1, List, Position);
  const TZmXPathCollationClass collation =
      ParamCount() < 3 ? FEquation->GetCollation() : FindXPathCollation(ParamText(2, List, Position));
  if (ZmVarIsEmpty(left) || ZmVarIsEmpty(right))
    Result = Null();
  else
    Result = collation->Compare(ZmVarToStr(left), ZmVarToStr(right));
}

void TZmXPathFnCodepointEqual::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(2, 2, u"The \"fn:codepoint-equal(comp1, comp2)\" function must contain 2 parameters!");
  const Variant left = ParamValue(0, List, Position), right = ParamValue(1, List, Position);
  Result = IsText(left) ? Variant(VarCmpEQ(left, right)) : Null();
}

void TZmXPathFnConcat::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  const Variant nothing(u"");
  String text;
  bool hasNull = false;
  for (int i = 0; i < ParamCount(); ++i) {
    const Variant value = ParamValue(i, List, Position);
    hasNull |= value.IsNull();
    if (!hasNull) text += VarAdd(nothing, value).TextRef();
  }
  Result = hasNull ? Null() : Variant(std::move(text));
}

void TZmXPathFnStringJoin::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(1, cAnyNumber,
             u"The \"fn:string-join((string,string,...),sep*)\" function must contain at least 1 parameter!");
  CheckCount(1, 2,
             u"The \"fn:string-join((string,string,...),sep*)\" function may not contain more than 2 parameters!");
  const String separator(ParamCount() > 1 ? String(ParamText(1, List, Position)) : String());
  TJoined joined(separator);
  if (const auto* sequence = dynamic_cast<const TZmXPathSequenceTerm*>(&Param(0))) {
    for (int i = 0; i < sequence->Count(); ++i) {
      Variant item;
      sequence->GetTerm(i)->Value(item, List, Position);
      if (VarIsArray(item))  // of a path that leads to several nodes
        for (std::int64_t node = 0; node <= VarArrayHighBound(item); ++node)
          joined.Add(ZmVarToStr(VarArrayGet(item, node)));
      else
        joined.Add(ZmVarToStr(item));
    }
  } else {
    const auto text = ParamText(0, List, Position);
    const StringView rest(text);
    for (std::size_t i = 0; i < rest.size();) {
      const bool isPair =
          detail::IsHighSurrogate(rest[i]) && i + 1 < rest.size() && detail::IsLowSurrogate(rest[i + 1]);
      const std::size_t length = isPair ? 2 : 1;
      joined.Add(rest.substr(i, length));
      i += length;
    }
  }
  Result = std::move(joined.Text());
}

void TZmXPathFnSubstring::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  Variant text(u""), start(0), length(0);
  if (ParamCount() > 0) text = ParamValue(0, List, Position);
  if (ParamCount() > 1) {
    start = ParamValue(1, List, Position);
    length = std::numeric_limits<std::int64_t>::max();
  }
  if (ParamCount() > 2) length = ParamValue(2, List, Position);
  CheckCount(0, 3, u"The \"fn:substring(string,start,len)\" function must contain 3 or less parameters!");
  if (IsText(text) && IsWhole(start) && IsWhole(length))
    Result = Copy(text.TextRef(), start.AsInteger(), length.AsInteger());
  else
    Result = Null();
}

void TZmXPathFnStringLength::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(0, 1, u"Too many parameters specified for \"fn:string-length(string)\"!");
  const auto text = ParamOrContextText(List, Position);
  Result = static_cast<std::int64_t>(StringView(text).size());
}

void TZmXPathFnNormalizeSpace::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(0, 1, u"Too many parameters specified for \"fn:normalize-space(string)\"!");
  Result = WithSingleBlanks(ParamOrContextText(List, Position));
}

void TZmXPathFnNormalizeUnicode::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(0, 2, u"Too many parameters specified for \"fn:normalize-unicode(string, normalizationForm)\"!");
  constexpr std::pair<StringView, TNormalForm> forms[] = {
      {u"NFC", nfC}, {u"NFD", nfD}, {u"NFKC", nfKC}, {u"NFKD", nfKD}};
  const auto text = ParamOrContextText(List, Position);
  const String form = ParamCount() < 2 ? String(u"NFC") : String(ParamText(1, List, Position));
  if (form.empty()) {
    Result = StringView(text);
    return;
  }
  const auto found = std::find_if(std::begin(forms), std::end(forms), [&](const auto& f) { return f.first == form; });
  if (found == std::end(forms))
    throw EZmDomSyntax(
        u"An unsupported normalizationForm was specified for \"fn:normalize-unicode(string, normalizationForm)\"!");
  Result = ZmNormalizeString(text, found->second);
}

void TZmXPathFnSimplify::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(1, 1, u"The \"fn:simplify(string)\" function must have a single parameter!");
  const Variant text = ParamValue(0, List, Position);
  Result = IsText(text) ? Variant(ZmSimplifyString(text.TextRef())) : Null();
}

void TZmXPathFnUpperCase::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(1, 1, u"The \"fn:upper-case(string)\" function must have a single parameter!");
  Result = WithOtherCase(ParamValue(0, List, Position), u'a');
}

void TZmXPathFnLowerCase::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(1, 1, u"The \"fn:lower-case(string)\" function must have a single parameter!");
  Result = WithOtherCase(ParamValue(0, List, Position), u'A');
}

void TZmXPathFnTranslate::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(3, 3, u"The \"fn:translate(string1,string2,string3)\" function must have 3 parameters!");
  const auto text = ParamText(0, List, Position), from = ParamText(1, List, Position),
             to = ParamText(2, List, Position);
  Result = StringReplace(text, from, to, {rfReplaceAll});
}

void TZmXPathFnContains::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(2, 2, u"The \"fn:contains(string1,string2)\" function must have 2 parameters!");
  const auto text = ParamText(0, List, Position), sought = ParamText(1, List, Position);
  Result = FEquation->GetCollation()->Pos(sought, text) >= 1;
}

void TZmXPathFnStartsWith::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(2, 2, u"The \"fn:starts-with(string1,string2)\" function must have 2 parameters!");
  const auto text = ParamText(0, List, Position), sought = ParamText(1, List, Position);
  Result = StartsWith(text, sought, FEquation->GetCollation());
}

void TZmXPathFnEndsWith::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(2, 2, u"The \"fn:ends-with(string1,string2)\" function must have 2 parameters!");
  const auto text = ParamText(0, List, Position), sought = ParamText(1, List, Position);
  Result = StringView(text).ends_with(sought);
}

namespace {
constexpr StringView cSubstringCount = u"The \"fn:substring-before(string1,string2)\" function must have 2 parameters!";
}

void TZmXPathFnSubstringBefore::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(2, 2, cSubstringCount);
  const auto text = ParamText(0, List, Position), sought = ParamText(1, List, Position);
  Result = Copy(text, 1, FEquation->GetCollation()->Pos(sought, text) - 1);
}

// From the character behind the first one of the match on.
void TZmXPathFnSubstringAfter::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(2, 2, cSubstringCount);
  const auto text = ParamText(0, List, Position), sought = ParamText(1, List, Position);
  Result = Copy(text, std::int64_t{FEquation->GetCollation()->Pos(sought, text)} + 1,
                std::numeric_limits<std::int64_t>::max());
}

void TZmXPathFnMatches::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(2, 3, u"Invalid parameter for \"fn:matches(string,pattern,flags*)\"!");
  TRegExOptions options;
  const auto text = ParamText(0, List, Position), pattern = ParamText(1, List, Position);
  if (ParamCount() == 3) options = OptionsOf(ParamText(2, List, Position), *FEquation->GetCollation());
  Result = TRegEx::IsMatch(text, pattern, options);
}

// The options stand in the replacement.
void TZmXPathFnReplace::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(3, 4, u"Invalid parameter for \"fn:replace(input,pattern,replacement,flags*)\"!");
  const auto text = ParamText(0, List, Position), pattern = ParamText(1, List, Position);
  const auto replacement = ParamText(2, List, Position);
  Result = TRegEx::Replace(text, pattern, replacement, OptionsOf(replacement, *FEquation->GetCollation()));
}

void TZmXPathFnTokenize::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  CheckCount(1, 3, u"Invalid parameter for \"fn:tokenize()\"!");
  const auto quoted = [](StringView token) { return u'"' + String(token) + u'"'; };
  const auto text = ParamText(0, List, Position);
  if (ParamCount() == 1) {
    Result = SequenceText(ZmTokenize(WithSingleBlanks(text), u" "), quoted);
    return;
  }
  const auto separator = ParamText(1, List, Position);
  TRegExOptions options;
  if (ParamCount() == 3) options = OptionsOf(ParamText(2, List, Position), *FEquation->GetCollation());
  Result = SequenceText(TRegEx::Split(text, separator, options), quoted);
}

}  // namespace zm
