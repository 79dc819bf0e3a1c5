#pragma once

#include "zamrit/common/TextParser.h"

namespace zm::detail {

/// A delimiter in the form of the source, whose units are U.
template <class U>
const void* FormOf(const char& Narrow, const char16_t& Wide) {
  return sizeof(U) == 1 ? static_cast<const void*>(&Narrow) : &Wide;
}

/// Binds what the readers' parsers have besides the operations of TZmTextParser: SkipWhile and CheckCurrChar, whose
/// operands point at characters in the form of the source, and by BindDelimiters<U> these characters themselves. The
/// parser has a RaiseNotWellFormed that takes the character expected.
template <class Parser>
class TSourceForms {
 public:
  static void Bind(Parser& Target, TZmCharacterSetType Type) {
    switch (Type) {
      case cstWide:
        return Bind<char16_t, &Parser::SrcWCurrChar>(Target);
      case cstUTF8:
        return Bind<char, &Parser::SrcUCurrChar>(Target);
      case cstAnsi:
        return Bind<char, &Parser::SrcACurrChar>(Target);
    }
  }

 private:
  template <class U, auto CurrentUnit>
  static void Bind(Parser& Target) {
    Target.template BindDelimiters<U>();
    Target.SkipWhile.Bind(&Target, Skip<U>);
    Target.CheckCurrChar.Bind(&Target, Check<U, CurrentUnit>);
  }

  template <class U>
  static void Skip(TZmTextParser& Target, TZmTextParserSkipOp Op, const void* Char) {
    const U unit = *static_cast<const U*>(Char);
    if constexpr (sizeof(U) == 1)
      Target.SrcUSkipWhileA(Op, unit);
    else
      Target.SrcWSkipWhileW(Op, unit);
  }

  template <class U, auto CurrentUnit>
  static bool Check(TZmTextParser& Target, const void* Char, bool Raise) {
    const U expected = *static_cast<const U*>(Char);
    if ((Target.*CurrentUnit)() == expected) return true;
    const auto wide = static_cast<char16_t>(expected);
    if (Raise) static_cast<Parser&>(Target).RaiseNotWellFormed({&wide, 1});
    return false;
  }
};

}  // namespace zm::detail
