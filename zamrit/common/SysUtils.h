#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "zamrit/common/CharacterConstants.h"
#include "zamrit/platform/DateTime.h"
#include "zamrit/platform/Numbers.h"
#include "zamrit/platform/Set.h"
#include "zamrit/platform/Strings.h"
#include "zamrit/platform/Unicode.h"
#include "zamrit/platform/Variant.h"

namespace zm {

/// Whether two texts are equal when case is ignored: ASCII first, simple Unicode folding beyond it.
inline bool ZmSameText(StringView Left, StringView Right) { return SameText(Left, Right); }

/// Whether a character is in a set; a character above U+00FF is in none.
inline bool ZmCharInSet(char16_t Char, const TZmCharSet& Set) { return Set.Has(Char); }
inline bool ZmCharInSet(char Char, const TZmCharSet& Set) { return Set.Has(static_cast<unsigned char>(Char)); }

/// How StringReplace works: on every occurrence in place of the first, and without regard to case.
enum TReplaceFlag { rfReplaceAll, rfIgnoreCase };
using TReplaceFlags = TSet<TReplaceFlag>;

/// The text with the first occurrence of Old replaced by New, or every one from left to right. Case is ignored as
/// SameText does. An empty Old occurs nowhere. Linear.
String StringReplace(StringView Text, StringView Old, StringView New, TReplaceFlags Flags = {});

/// The parts of a text between occurrences of a separator, which is plain text. Empty parts are kept; an empty text has
/// none, and an empty separator splits nothing. Linear.
std::vector<String> ZmTokenize(StringView Text, StringView Separator);

/// The text without one pair of quotation marks or apostrophes around it.
String ZmStripLiterals(StringView Text);

/// The text filled on the left to a width; a longer one stays whole.
String ZmPadLeft(StringView Text, std::size_t Width, char16_t Fill = u' ');

/// The spellings of ZmCharCase. The ordinals are fixed.
enum TZmCharCase {
  ccNone,        ///< as it is
  ccUpper,       ///< all letters in upper case
  ccLower,       ///< all letters in lower case
  ccInvert,      ///< upper case becomes lower case and the reverse
  ccTitle,       ///< every word begins in upper case and goes on in lower case
  ccSentence,    ///< the text begins in upper case and goes on in lower case
  ccUpperCamel,  ///< a name that begins in upper case: "firstName" is "FirstName"
  ccLowerCamel,  ///< a name that begins in lower case: "FirstName" is "firstName", "ID" is "iD"
};

/// The text in a spelling, by simple Unicode mapping. Words stand apart by Separator, or by blanks where it is 0. The
/// two forms for names take a given separator out and begin each word behind one in upper case: with a blank, "First
/// name" is "firstName" in the last.
String ZmCharCase(StringView Text, TZmCharCase Mode, char16_t Separator = 0);

/// NormalizeText under the name of the base units.
inline String ZmNormalizeString(StringView Text, TNormalForm Form) { return NormalizeText(Text, Form); }
/// The text without white space at both ends and with one blank for every run of it within; white space are the
/// characters up to U+0020, as for Trim. Linear.
String ZmSimplifyString(StringView Text);

/// Whether a value is null or unassigned.
inline bool ZmVarIsEmpty(const Variant& Value) { return Value.IsNull() || Value.IsEmpty(); }

/// \name The value in a type
/// Null and unassigned give the default. What cannot be converted gives the default too or, with Raise, raises what the
/// conversion of Variant raises.
///@{
bool ZmVarToBool(const Variant& Value, bool Default, bool Raise = false);
std::int32_t ZmVarToInt(const Variant& Value, std::int32_t Default, bool Raise = false);
std::int64_t ZmVarToInt64(const Variant& Value, std::int64_t Default, bool Raise = false);
double ZmVarToDouble(const Variant& Value, double Default, bool Raise = false);
Extended ZmVarToExtended(const Variant& Value, Extended Default, bool Raise = false);
String ZmVarToStr(const Variant& Value, StringView Default = u"", bool Raise = false);
TDateTime ZmVarToDateTime(const Variant& Value, TDateTime Default, bool Raise = false);
///@}
/// The value as a boolean, as 1 or 0; the default, as it is, where it has none.
int ZmVarBool(const Variant& Value, int Default);

}  // namespace zm
