#pragma once

#include "zamrit/common/CharacterConstants.h"
#include "zamrit/platform/Strings.h"

namespace zm {

/// Whether two texts are equal when case is ignored: ASCII first, simple Unicode folding beyond it.
inline bool ZmSameText(StringView Left, StringView Right) { return SameText(Left, Right); }

/// Whether a character is in a set; a character above U+00FF is in none.
inline bool ZmCharInSet(char16_t Char, const TZmCharSet& Set) { return Set.Has(Char); }
inline bool ZmCharInSet(char Char, const TZmCharSet& Set) { return Set.Has(static_cast<unsigned char>(Char)); }

}  // namespace zm
