#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

#include "zamrit/common/TextSlicesDetail.h"
#include "zamrit/common/TypeKinds.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/JSONTextParser.h"

// What a sink offers to the scanner, with U the unit of the source's storage (char for bytes and UTF-8, char16_t):
//
//   static constexpr bool cToldBehind;
//   void StartDocument();
//   void StartObject();
//   void StartMember(TSlice<U> Name);
//   void StartArray();
//   void Value(TZmJSONDataType Type, TSlice<U> Text, bool Escapes);
//   void EndArray();
//   void EndMember();
//   void EndObject();
//   void EndDocument();
//
// Slices are the source as it stands: names and strings without their quotation marks and with their escapes, numbers
// and the words true, false and null as written. Type is jdtNull, jdtString, jdtNumber or jdtBoolean, a constant where
// the call is inlined. Escapes says whether there is a backslash in a string. UTF-8 may be ill-formed, UTF-16 have lone
// surrogates, and a slice may be empty. Slices hold until the call returns; memory may be read up to Readable of the
// parser's window. A simple value at the top level comes outside any StartObject or StartArray. What a sink throws ends
// the scan, and so does an error of the text: no event comes after either.
//
// The window's cursor is where it must be for a locator: on the closing quotation mark of a name or string, on the
// brace or bracket at the start and end of an object or array, behind a number or word. With cToldBehind the end of an
// object or array is told behind its brace or bracket, and a number where the search for the next ",", "]" or "}" has
// stopped.

namespace zm::detail {

/// Bits, the last one first: what the open objects and arrays take.
class TBitStack {
 public:
  void Push(bool Bit) {
    if (FCount++ % 64 == 0) FFull.push_back(FTop);
    FTop = FTop << 1 | static_cast<std::uint64_t>(Bit);
  }
  void Pop() {
    FTop >>= 1;
    if (--FCount % 64 != 0) return;
    FTop = FFull.back();
    FFull.pop_back();
  }
  /// False where there is none.
  bool Top() const { return (FTop & 1) != 0; }
  bool IsEmpty() const { return FCount == 0; }

 private:
  std::vector<std::uint64_t> FFull;
  std::uint64_t FTop = 0;
  std::size_t FCount = 0;
};

/// Matches what no number has in it: all but digits, signs, points and exponents.
template <class Lanes>
struct TNoneOfNumber {
  ZM_INLINE typename Lanes::TMask operator()(const typename Lanes::TVector& V) const {
    using U = typename Lanes::Unit;
    const auto upToNine = Lanes::Or(Lanes::AtMost(V, U('9')), TAnyOf<Lanes, 'e', 'E'>()(V));
    return Lanes::Or(Lanes::Or(Lanes::AtMost(V, U('*')), TAnyOf<Lanes, ',', '/'>()(V)), Lanes::Not(upToNine));
  }
};

/// The JSON readers' loops over one storage. It finds the delimiters in the window, and hands slices of the source to
/// the sink described above. Objects and arrays are a stack of bits; the scan itself never recurses.
template <TStorage S, class Sink>
class TJSONScanner : private TWindowCursor<S> {
  using Base = TWindowCursor<S>;

 public:
  using typename Base::Slice;
  using typename Base::U;

  TJSONScanner(TZmJSONTextParser& Parser, Sink& Out, bool AllowSurroundingSpace)
      : Base(Parser.Window()), FParser(Parser), FOut(Out), FAllowSurroundingSpace(AllowSurroundingSpace) {}

  void ParseDocument() {
    SkipAhead();
    FOut.StartDocument();
    for (const U* p = Cursor(); Has(p); p = Cursor()) {
      if (*p == U('[') || *p == U('{')) {
        SetCursor(p);
        ParseContainer();
        if (FAllowSurroundingSpace) SkipAhead();
      } else {
        ParseTopValue(p);
      }
    }
    FOut.EndDocument();
  }

  /// From the bracket or brace under the cursor to behind its end.
  void ParseContainer() {
    const U* p = Cursor();
    bool goesOn = Open(p);
    for (;;) {
      while (!goesOn) {
        Close(p);
        if (FOpen.IsEmpty()) return SetCursor(p);
        goesOn = EndItem(p);
      }
      if (InObject())
        ParseName(p);
      else
        ++p;
      SkipSpace(p);
      const U c = Has(p) ? *p : U();
      if (c == U('{') || c == U('[')) {
        goesOn = Open(p);
      } else {
        if (c != U(']') || InObject()) ParseSimpleValue(p);
        goesOn = EndItem(p);
      }
    }
  }

 private:
  using Base::Cursor;
  using Base::End;
  using Base::Grow;
  using Base::Has;
  using Base::HasUnits;
  using Base::IsSpaceOrControl;
  using Base::SetCursor;
  using Base::SkipTo;
  using typename Base::Lanes;
  using typename Base::TPlaces;

  bool InObject() const { return FOpen.Top(); }

  // What may stand in front of a top-level value.
  void SkipAhead() {
    if (FAllowSurroundingSpace)
      FParser.SkipWhile(tsoSmallerEqual, FParser.FSpace);
    else
      FParser.SkipWhile(tsoEqual, FParser.FSpace);
  }

  // The character behind the value, whatever it is, and white space are stepped over.
  void ParseTopValue(const U* P) {
    ParseSimpleValue(P);
    SetCursor(P);
    if (FParser._GetEOF()) return;
    bool space = FParser.CurrChar() <= u' ';
    FParser.NextChar();
    space |= FParser.CurrChar() <= u' ';
    FParser.SkipWhile(tsoSmallerEqual, FParser.FSpace);
    if (FParser._GetEOF() || (FAllowSurroundingSpace && space)) return;
    FParser.RaiseNotWellFormed({});
  }

  // Begins the array or object at P. True where it goes on with an element or member: P then stands on the bracket or
  // on the quotation mark of the name.
  ZM_INLINE bool Open(const U*& P) {
    const bool object = *P == U('{');
    SetCursor(P);
    FOpen.Push(object);
    if (!object) {
      FOut.StartArray();
      return true;
    }
    FOut.StartObject();
    ++P;
    SkipToNear<'}', '"'>(P);
    return P != End() && *P == U('"');
  }

  // Ends the innermost array or object, at its bracket or brace or at the end of the input, and steps over that.
  ZM_INLINE void Close(const U*& P) {
    if constexpr (!Sink::cToldBehind) TellEnd(P);
    if (P != End()) ++P;
    Has(P);
    if constexpr (Sink::cToldBehind) TellEnd(P);
    FOpen.Pop();
  }
  ZM_INLINE void TellEnd(const U* P) {
    SetCursor(P);
    if (InObject())
      FOut.EndObject();
    else
      FOut.EndArray();
  }

  // Behind an element or a member's value. True where P then stands on the comma in front of the next one, false where
  // it stands on the bracket, on the brace or at the end of the input.
  ZM_INLINE bool EndItem(const U*& P) {
    const bool object = InObject();
    if (object) {
      SetCursor(P);
      FOut.EndMember();
    }
    if (P != End() && *P == U('"')) ++P;
    if (object)
      SkipToNear<'}', ','>(P);
    else
      SkipToNear<']', ','>(P);
    return P != End() && *P == U(',');
  }

  // From the quotation mark or comma in front of a member to behind the colon.
  ZM_INLINE void ParseName(const U*& P) {
    SkipToNear<'"'>(P);
    bool escapes;
    const Slice name = ReadString(P, escapes);
    SetCursor(P);
    FOut.StartMember(name);
    if (P != End()) ++P;
    SkipToNear<':'>(P);
    if (P != End()) ++P;
  }

  ZM_INLINE void ParseSimpleValue(const U*& P) {
    switch (P == End() ? U() : *P) {
      case U('"'): {
        bool escapes;
        const Slice text = ReadString(P, escapes);
        SetCursor(P);
        return FOut.Value(jdtString, text, escapes);
      }
      case U('t'):
        return ParseWord(P, "true", jdtBoolean);
      case U('f'):
        return ParseWord(P, "false", jdtBoolean);
      case U('n'):
        return ParseWord(P, "null", jdtNull);
      case U('0'):
      case U('1'):
      case U('2'):
      case U('3'):
      case U('4'):
      case U('5'):
      case U('6'):
      case U('7'):
      case U('8'):
      case U('9'):
      case U('.'):
      case U('-'):
      case U('+'):
      case U('e'):
      case U('E'):
        return ParseNumber(P);
      default:
        Raise(P, u"\", t, f, n, 0..9, ., + or -");
    }
  }

  ZM_INLINE void ParseWord(const U*& P, std::string_view Word, TZmJSONDataType Type) {
    const auto size = static_cast<std::ptrdiff_t>(Word.size());
    const U* begin = P;
    if (!HasUnits(P, begin, size) || !std::equal(Word.begin(), Word.end(), P)) RaiseWrongLetter(P, Word);
    P += size;
    if (P == End()) Grow(P, begin);
    SetCursor(P);
    FOut.Value(Type, Slice{begin, P}, false);
  }
  // The letters are read one by one, and the one that is wrong has been passed when it is found to be.
  [[noreturn]] ZM_NOINLINE void RaiseWrongLetter(const U* P, std::string_view Word) {
    auto letter = Word.begin();
    for (; P != End() && *P == U(*letter); ++P) ++letter;
    SetCursor(P);
    FParser.NextChar();
    const auto expected = static_cast<char16_t>(*letter);
    FParser.RaiseNotWellFormed({&expected, 1});
  }

  // A number runs as far as its characters go, and what stands between it and the next delimiter is passed over.
  ZM_INLINE void ParseNumber(const U*& P) {
    const U* begin = P;
    SkipTo(P, begin, TNoneOfNumber<Lanes>());
    if constexpr (Sink::cToldBehind) {
      if (P != End() && (*P == U(']') || *P == U('}') || *P == U(','))) return TellNumber(P, {begin, P});
      // What is passed over must not be held with the number.
      const auto size = static_cast<std::size_t>(P - begin);
      FNumber.assign(begin, P);
      FNumber.resize(size + 16);  // so much is read at once
      if (!EndsAtSpace(P)) SkipToNear<']', '}', ','>(P);
      TellNumber(P, {FNumber.data(), FNumber.data() + size});
    } else {
      TellNumber(P, {begin, P});
      if (!EndsAtSpace(P)) SkipToNear<']', '}', ','>(P);
    }
  }
  // Whether a number at the top level is left at once, so that another value may follow.
  bool EndsAtSpace(const U* P) const {
    return FAllowSurroundingSpace && FOpen.IsEmpty() && P != End() && IsSpaceOrControl(*P);
  }
  ZM_INLINE void TellNumber(const U* P, Slice Number) {
    SetCursor(P);
    FOut.Value(jdtNumber, Number, false);
  }

  // What stands between quotation marks. P goes from the first one to the closing one or the end of the input.
  ZM_INLINE Slice ReadString(const U*& P, bool& Escapes) {
    if (P == End() || *P != U('"')) Raise(P, u"\"");
    const U* begin = ++P;
    SkipToAny<'"', '\\'>(P, begin);
    Escapes = P != End() && *P == U('\\');
    if (Escapes) [[unlikely]] {
      const TPlaces places = SkipEscapes(P, begin);
      P = places.P;
      begin = places.Keep;
    }
    return {begin, P};
  }
  ZM_NOINLINE TPlaces SkipEscapes(const U* P, const U* Keep) {
    while (P != End() && *P == U('\\')) {
      ++P;
      HasUnits(P, Keep, 16);
      switch (P == End() ? U() : *P) {
        case U('"'):
        case U('/'):
        case U('\\'):
        case U('b'):
        case U('f'):
        case U('n'):
        case U('r'):
        case U('t'):
          ++P;
          break;
        case U('u'):
          ++P;
          SkipDigits(P);
          break;
        default:
          Raise(P, u"\", \\, /, b, f, n, r, t or u");
      }
      if (P == End() || *P == U('"') || *P == U('\\')) continue;
      ++P;
      SkipToAny<'"', '\\'>(P, Keep);
    }
    return {P, Keep};
  }
  // The first three of the four digits, whatever characters stand there.
  void SkipDigits(const U*& P) {
    for (int left = 3; left > 0 && P != End(); --left) {
      if constexpr (S == TStorage::UTF8) {
        const TCodePoint c = DecodeUTF8(P, End());
        P += c.Length;
        if (c.Code >= 0x10000) --left;
      } else {
        ++P;
      }
    }
  }

  template <char... Chars>
  ZM_INLINE void SkipToAny(const U*& P, const U*& Keep) {
    SkipTo(P, Keep, TAnyOf<Lanes, Chars...>());
  }
  // Skips to what mostly stands at P already.
  template <char... Chars>
  ZM_INLINE void SkipToNear(const U*& P) {
    if (P != End() && ((*P == U(Chars)) || ...)) return;
    SkipTo(P, TAnyOf<Lanes, Chars...>());
  }
  ZM_INLINE void SkipSpace(const U*& P) {
    if (End() - P >= 2 && *P == U(' ')) ++P;
    if (P != End() && !IsSpaceOrControl(*P)) return;
    SkipTo(P, [](const auto& v) { return Lanes::Not(Lanes::AtMost(v, U(' '))); });
  }

  [[noreturn]] ZM_NOINLINE void Raise(const U* P, StringView Expected) {
    SetCursor(P);
    FParser.RaiseNotWellFormed(Expected);
  }

  TZmJSONTextParser& FParser;
  Sink& FOut;
  const bool FAllowSurroundingSpace;
  TBitStack FOpen;  // the objects and arrays that are open: 1 for an object
  std::basic_string<U> FNumber;
};

/// Calls Body with the storage of a text as a constant: `Body(std::integral_constant<TStorage, ...>())`.
template <class F>
void WithStorage(const TTextWindow& Window, F Body) {
  switch (Window.Storage()) {
    case TStorage::Wide:
      return Body(std::integral_constant<TStorage, TStorage::Wide>());
    case TStorage::UTF8:
      return Body(std::integral_constant<TStorage, TStorage::UTF8>());
    case TStorage::Bytes:
      return Body(std::integral_constant<TStorage, TStorage::Bytes>());
  }
}

}  // namespace zm::detail
