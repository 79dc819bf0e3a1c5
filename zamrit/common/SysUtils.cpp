#include "zamrit/common/SysUtils.h"

#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/TextDetail.h"

namespace zm {
namespace {

// Finds a text in others, in linear time also where both repeat themselves.
class TFinder {
 public:
  explicit TFinder(StringView Sought) : FSought(Sought) {
    if (Sought.size() <= cShort) return;
    FBorders.resize(Sought.size() + 1);
    for (std::size_t i = 1; i < Sought.size(); ++i) FBorders[i + 1] = Extend(FBorders[i], Sought[i]);
  }

  std::size_t Find(StringView Text, std::size_t From) const {
    if (FSought.empty()) return StringView::npos;
    if (FSought.size() <= cShort) return Text.find(FSought, From);
    std::size_t matched = 0;
    for (std::size_t i = From; i < Text.size(); ++i) {
      matched = Extend(matched, Text[i]);
      if (matched == FSought.size()) return i + 1 - matched;
    }
    return StringView::npos;
  }

 private:
  // How much of the sought text ends at a character, where Matched of it ended before.
  std::size_t Extend(std::size_t Matched, char16_t Char) const {
    while (Matched > 0 && FSought[Matched] != Char) Matched = FBorders[Matched];
    return FSought[Matched] == Char ? Matched + 1 : 0;
  }

  static constexpr std::size_t cShort = 16;  // up to here the plain search wins
  StringView FSought;
  std::vector<std::size_t> FBorders;  // for each length of a prefix, that of the longest proper one that ends it too
};

char32_t MapCase(char32_t Char, TZmCharCase Mode, bool BeginsWord, bool BeginsText) {
  switch (Mode) {
    case ccUpper:
      return UpperChar(Char);
    case ccLower:
      return LowerChar(Char);
    case ccInvert: {
      const char32_t lower = LowerChar(Char);
      return lower != Char ? lower : UpperChar(Char);
    }
    case ccTitle:
      return BeginsWord ? UpperChar(Char) : LowerChar(Char);
    case ccSentence:
      return BeginsText ? UpperChar(Char) : LowerChar(Char);
    case ccUpperCamel:
      return BeginsWord ? UpperChar(Char) : Char;
    case ccLowerCamel:
      return BeginsText ? LowerChar(Char) : BeginsWord ? UpperChar(Char) : Char;
    default:
      return Char;
  }
}

template <class T, class F>
T ConvertOr(const Variant& Value, T Default, bool Raise, F Convert) {
  if (ZmVarIsEmpty(Value)) return Default;
  try {
    return Convert(Value);
  } catch (const Exception&) {
    if (Raise) throw;
    return Default;
  }
}

// Without the detour through double where that would lose digits.
Extended ToExtended(const Variant& Value) {
  Extended number = 0;
  if (VarIsStr(Value) && TryStrToExtended(Value.TextRef(), number)) return number;
  switch (VarType(Value)) {
    case varInt64:
      return static_cast<Extended>(Value.AsInteger());
    case varUInt64:
      return static_cast<Extended>(Value.AsUInt64());
    case varCurrency:
      return static_cast<Extended>(Value.AsCurrency().GetScaled()) / 10000;
    default:
      return Value.AsDouble();
  }
}

}  // namespace

String StringReplace(StringView Text, StringView Old, StringView New, TReplaceFlags Flags) {
  // Folding keeps the places.
  const bool folds = Flags.Has(rfIgnoreCase);
  const String foldedText = folds ? FoldCase(Text) : String(), foldedOld = folds ? FoldCase(Old) : String();
  const StringView text = folds ? StringView(foldedText) : Text;
  const TFinder finder(folds ? StringView(foldedOld) : Old);

  String out;
  std::size_t done = 0;
  for (std::size_t found; (found = finder.Find(text, done)) != StringView::npos;) {
    out.append(Text, done, found - done).append(New);
    done = found + Old.size();
    if (!Flags.Has(rfReplaceAll)) break;
  }
  return out.append(Text, done);
}

std::vector<String> ZmTokenize(StringView Text, StringView Separator) {
  std::vector<String> tokens;
  if (Text.empty()) return tokens;
  const TFinder finder(Separator);
  std::size_t done = 0;
  for (std::size_t found; (found = finder.Find(Text, done)) != StringView::npos; done = found + Separator.size())
    tokens.emplace_back(Text.substr(done, found - done));
  tokens.emplace_back(Text.substr(done));
  return tokens;
}

String ZmStripLiterals(StringView Text) {
  const bool isLiteral =
      Text.size() > 1 && Text.front() == Text.back() && (Text.front() == cZmQuote || Text.front() == cZmApos);
  return String(isLiteral ? Text.substr(1, Text.size() - 2) : Text);
}

String ZmPadLeft(StringView Text, std::size_t Width, char16_t Fill) {
  String out(Width > Text.size() ? Width - Text.size() : 0, Fill);
  return out += Text;
}

String ZmCharCase(StringView Text, TZmCharCase Mode, char16_t Separator) {
  const bool isName = Mode == ccUpperCamel || Mode == ccLowerCamel;
  const bool hasWords = Separator != 0 || !isName;
  const char16_t blank = Separator != 0 ? Separator : u' ';
  String out;
  out.reserve(Text.size());
  bool beginsText = true, beginsWord = true;
  for (std::size_t i = 0; i < Text.size(); ++i) {
    char32_t c = Text[i];
    if (hasWords && c == blank) {
      if (!isName) out.push_back(blank);
      beginsWord = true;
      continue;
    }
    if (detail::IsHighSurrogate(c) && i + 1 < Text.size() && detail::IsLowSurrogate(Text[i + 1]))
      c = detail::JoinSurrogates(static_cast<char16_t>(c), Text[++i]);
    char16_t units[2];
    out.append(units, detail::PutUTF16(MapCase(c, Mode, beginsWord, beginsText), units));
    beginsText = beginsWord = false;
  }
  return out;
}

String ZmSimplifyString(StringView Text) {
  String out;
  for (const char16_t c : Trim(Text))
    if (c > u' ')
      out += c;
    else if (out.back() != u' ')  // a trimmed text does not begin with white space
      out += u' ';
  return out;
}

bool ZmVarToBool(const Variant& Value, bool Default, bool Raise) {
  return ConvertOr(Value, Default, Raise, [](const Variant& V) { return V.AsBoolean(); });
}

std::int32_t ZmVarToInt(const Variant& Value, std::int32_t Default, bool Raise) {
  return ConvertOr(Value, Default, Raise, VarToInteger);
}

std::int64_t ZmVarToInt64(const Variant& Value, std::int64_t Default, bool Raise) {
  return ConvertOr(Value, Default, Raise, VarToInt64);
}

double ZmVarToDouble(const Variant& Value, double Default, bool Raise) {
  return ConvertOr(Value, Default, Raise, VarToReal);
}

Extended ZmVarToExtended(const Variant& Value, Extended Default, bool Raise) {
  return ConvertOr(Value, Default, Raise, ToExtended);
}

String ZmVarToStr(const Variant& Value, StringView Default, bool Raise) {
  return ConvertOr(Value, String(Default), Raise, VarToStr);
}

TDateTime ZmVarToDateTime(const Variant& Value, TDateTime Default, bool Raise) {
  return ConvertOr(Value, Default, Raise, [](const Variant& V) { return V.AsDateTime(); });
}

int ZmVarBool(const Variant& Value, int Default) {
  return ConvertOr(Value, Default, false, [](const Variant& V) { return V.AsBoolean() ? 1 : 0; });
}

}  // namespace zm
