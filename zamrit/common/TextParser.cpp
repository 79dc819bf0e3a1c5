#include "zamrit/common/TextParser.h"

#include <algorithm>

#include "zamrit/platform/TextDetail.h"

namespace zm {

using detail::TStorage;

namespace {

constexpr std::uint16_t cPageUTF16 = 1200, cPageUTF8 = 65001;

// Whether P lies between the two halves that four bytes of UTF-8 make.
bool IsBetweenHalves(const char* Begin, const char* P, const char* End) {
  return P - Begin >= 2 && End - P >= 2 && detail::IsTrail(*P) && detail::DecodeUTF8(P - 2, End).Length == 4;
}

}  // namespace

EZmTextParserEOF::EZmTextParserEOF() : EZmException(u"Unexpected end of input!", 0) {}

// The operations of one storage. Each reads on where the window ends.
template <TStorage S>
struct TZmTextParser::TOperations {
  using Unit = std::conditional_t<S == TStorage::Wide, char16_t, char>;

  static const Unit* At(const TZmTextParser& Parser) { return reinterpret_cast<const Unit*>(Parser.FWindow.Cur); }

  static Unit Raw(TZmTextParser& Parser) {
    return Parser.FWindow.Cur != Parser.FWindow.End || Parser.More() ? *At(Parser) : Unit{};
  }

  // The character Ahead units from the cursor, which the window holds.
  static detail::TCodePoint Decode(const TZmTextParser& Parser, std::ptrdiff_t Ahead) {
    const Unit* p = At(Parser) + Ahead;
    if constexpr (S == TStorage::Wide) return {*p, 1};
    if constexpr (S == TStorage::Bytes) return {Parser.FWindow.Table()[static_cast<unsigned char>(*p)], 1};
    if constexpr (S == TStorage::UTF8) return detail::DecodeUTF8(p, Parser.FWindow.End);
  }

  static char16_t FirstUnit(char32_t Code) {
    return Code < 0x10000 ? static_cast<char16_t>(Code) : detail::HighSurrogate(Code);
  }

  // Whether there is a character Ahead units from the cursor; the window then holds all of it.
  static bool HaveChar(TZmTextParser& Parser, std::ptrdiff_t Ahead) {
    const auto ahead = static_cast<std::size_t>(Ahead);
    if (!Parser.Have(ahead + 1)) return false;
    if (S == TStorage::UTF8 && (At(Parser)[Ahead] & 0x80)) Parser.Have(ahead + 4);
    return true;
  }

  static const char16_t& Curr(TZmTextParser& Parser) {
    if (HaveChar(Parser, 0)) {
      const char32_t code = Decode(Parser, 0).Code;
      Parser.FChar = Parser.FLowHalf ? detail::LowSurrogate(code) : FirstUnit(code);
    } else {
      Parser.FChar = cZmEOF;
    }
    return Parser.FChar;
  }

  static void Next(TZmTextParser& Parser) {
    if (!HaveChar(Parser, 0)) return;
    const detail::TCodePoint c = Decode(Parser, 0);
    Parser.FLowHalf = c.Code >= 0x10000 && !Parser.FLowHalf;
    if (!Parser.FLowHalf) Parser.FWindow.Cur += c.Length * static_cast<int>(sizeof(Unit));
  }

  static const char16_t& Read(TZmTextParser& Parser) {
    Curr(Parser);
    Next(Parser);
    return Parser.FChar;
  }

  static const char16_t& Peek(TZmTextParser& Parser) {
    Parser.FPeek = cZmEOF;
    if (HaveChar(Parser, 0)) {
      const detail::TCodePoint c = Decode(Parser, 0);
      if (c.Code >= 0x10000 && !Parser.FLowHalf)
        Parser.FPeek = detail::LowSurrogate(c.Code);
      else if (HaveChar(Parser, c.Length))
        Parser.FPeek = FirstUnit(Decode(Parser, c.Length).Code);
    }
    return Parser.FPeek;
  }

  static void SkipSet(TZmTextParser& Parser, TZmTextParserSkipOp Op, const TZmCharSet& Set) {
    const bool in = Op == tsoInSet;
    if (!in && Op != tsoNotInSet) return;
    if (S == TStorage::Wide || Set.IsASCII())
      Parser.SkipUnitsWhile<Unit>([in, &Set](Unit u) { return Set.Has(AsCharacter(u)) == in; });
    else
      Parser.SkipCharsWhile([in, &Set](char16_t c) { return Set.Has(c) == in; });
  }

  static char16_t AsCharacter(Unit u) {
    if constexpr (S == TStorage::Wide)
      return u;
    else
      return static_cast<unsigned char>(u);
  }
};

template <class Operations>
void TZmTextParser::Bind() {
  CurrChar.Bind(this, Operations::Curr);
  ReadChar.Bind(this, Operations::Read);
  PeekChar.Bind(this, Operations::Peek);
  Next.Bind(this, Operations::Next);
  SkipWhileSet.Bind(this, Operations::SkipSet);
}

TZmTextParser::TZmTextParser(TStream* Stream, bool OwnsStream, std::uint16_t CodePage)
    : FWindow(Stream, OwnsStream, CodePage) {
  TZmTextParser::SetCharacterSetType(WindowType());
}

TZmTextParser::TZmTextParser(const void* Buffer, unsigned long long Size, std::uint16_t CodePage)
    : FWindow(Buffer, static_cast<std::size_t>(Size), CodePage) {
  TZmTextParser::SetCharacterSetType(WindowType());
}

TZmTextParser::TZmTextParser(StringView Text)
    : TZmTextParser(Text.data(), Text.size() * sizeof(char16_t), cPageUTF16) {}

TZmCharacterSetType TZmTextParser::WindowType() const {
  switch (FWindow.Storage()) {
    case TStorage::Wide:
      return cstWide;
    case TStorage::UTF8:
      return cstUTF8;
    default:
      return cstAnsi;
  }
}

void TZmTextParser::SetCharacterSetType(TZmCharacterSetType Type) {
  if (Type != WindowType()) FWindow.SetPage(Type == cstWide ? cPageUTF16 : Type == cstUTF8 ? cPageUTF8 : 0);
  FCharacterSetType = Type;
  SrcACurrChar.Bind(this, TOperations<TStorage::Bytes>::Raw);
  SrcWCurrChar.Bind(this, TOperations<TStorage::Wide>::Raw);
  SrcUCurrChar.Bind(this, TOperations<TStorage::UTF8>::Raw);
  switch (Type) {
    case cstWide:
      return Bind<TOperations<TStorage::Wide>>();
    case cstUTF8:
      return Bind<TOperations<TStorage::UTF8>>();
    case cstAnsi:
      return Bind<TOperations<TStorage::Bytes>>();
  }
}

void TZmTextParser::SetContentCodePage(std::uint16_t CodePage) {
  FWindow.SetPage(CodePage);
  if (FCharacterSetType != WindowType()) SetCharacterSetType(WindowType());
}

void TZmTextParser::First() {
  FWindow.Rewind();
  FLowHalf = false;
}

void TZmTextParser::Last() {
  do FWindow.Cur = FWindow.End;
  while (More());
  FLowHalf = false;
}

bool TZmTextParser::More() {
  const char* keep = FWindow.Cur;
  for (const std::int64_t mark : {FMark1, FMark2}) {
    const std::int64_t back = FWindow.OffsetOf(FWindow.Cur) - mark;
    if (mark == 0 || mark < FWindow.OffsetOf(FWindow.Begin)) continue;
    keep = std::min(keep, FWindow.Cur - back * static_cast<std::ptrdiff_t>(FWindow.UnitSize()));
  }
  return FWindow.More(keep);
}

bool TZmTextParser::Have(std::size_t Units) {
  while (static_cast<std::size_t>(FWindow.End - FWindow.Cur) < Units * FWindow.UnitSize())
    if (!More()) return false;
  return true;
}

void TZmTextParser::SkipChars(int Count) {
  for (; Count > 0 && !_GetEOF(); --Count) Next();
}

template <class Test>
void TZmTextParser::SkipCharsWhile(Test Goes) {
  while (!_GetEOF() && Goes(CurrChar())) Next();
}

template <class U, class Test>
void TZmTextParser::SkipUnitsWhile(Test Goes) {
  if (FLowHalf) {
    if (!Goes(static_cast<U>(0xFF))) return;  // no unit that is compared as stored is a surrogate
    Next();
  }
  do {
    auto p = reinterpret_cast<const U*>(FWindow.Cur);
    const auto end = reinterpret_cast<const U*>(FWindow.End);
    while (p != end && Goes(*p)) ++p;
    FWindow.Cur = reinterpret_cast<const char*>(p);
  } while (FWindow.Cur == FWindow.End && More());
}

template <class U>
void TZmTextParser::SkipUnits(TZmTextParserSkipOp Op, U C) {
  using Lanes = detail::TVectorLanes<U>;
  const auto value = [](U u) { return static_cast<std::make_unsigned_t<U>>(u); };
  if (FWindow.UnitSize() != sizeof(U)) return SkipWhile(Op, static_cast<char16_t>(value(C)));
  switch (Op) {
    case tsoEqual:
      return SkipUnitsWhile<U>([C](U u) { return u == C; });
    case tsoSmallerEqual:
      return SkipUnitsWhile<U>([C, value](U u) { return value(u) <= value(C); });
    case tsoNotEqual:
      if (FLowHalf) Next();
      do
        FWindow.Cur = reinterpret_cast<const char*>(
            detail::Find<Lanes>(reinterpret_cast<const U*>(FWindow.Cur), reinterpret_cast<const U*>(FWindow.End),
                                [C](const auto& v) { return Lanes::Eq(v, C); }));
      while (FWindow.Cur == FWindow.End && More());
      return;
    default:
      return;
  }
}
template void TZmTextParser::SkipUnits<char>(TZmTextParserSkipOp, char);
template void TZmTextParser::SkipUnits<char16_t>(TZmTextParserSkipOp, char16_t);

void TZmTextParser::SkipWhile(TZmTextParserSkipOp Op, char16_t C) {
  if (FWindow.UnitSize() == 2) return SkipUnits<char16_t>(Op, C);
  if (C < 0x80) return SkipUnits<char>(Op, static_cast<char>(C));
  switch (Op) {
    case tsoEqual:
      return SkipCharsWhile([C](char16_t c) { return c == C; });
    case tsoNotEqual:
      return SkipCharsWhile([C](char16_t c) { return c != C; });
    case tsoSmallerEqual:
      return SkipCharsWhile([C](char16_t c) { return c <= C; });
    default:
      return;
  }
}

char TZmTextParser::CurrCharA() {
  const char16_t c = CurrChar();
  return c < 256 ? static_cast<char>(static_cast<unsigned char>(c)) : '?';
}

char TZmTextParser::ReadCharA() {
  const char c = CurrCharA();
  Next();
  return c;
}

char16_t TZmTextParser::PrevCharW() {
  const char *begin = FWindow.Begin, *cur = FWindow.Cur, *end = FWindow.End;
  if (FLowHalf) return detail::HighSurrogate(detail::DecodeUTF8(cur, end).Code);
  if (cur == begin) return cZmEOF;
  switch (FWindow.Storage()) {
    case TStorage::Wide:
      return reinterpret_cast<const char16_t*>(cur)[-1];
    case TStorage::Bytes:
      return FWindow.Table()[static_cast<unsigned char>(cur[-1])];
    default:
      break;
  }
  // The longest sequence that ends here is the character before.
  for (std::ptrdiff_t length = std::min<std::ptrdiff_t>(4, cur - begin); length > 0; --length) {
    const detail::TCodePoint c = detail::DecodeUTF8(cur - length, end);
    if (c.Length != length) continue;
    return c.Code < 0x10000 ? static_cast<char16_t>(c.Code) : detail::LowSurrogate(c.Code);
  }
  return detail::cReplacement;
}

String TZmTextParser::PeekString(int Count) {
  if (Count <= 0) return {};
  const std::size_t perChar = FWindow.Storage() == TStorage::UTF8 ? 4 : 1;
  Have(static_cast<std::size_t>(Count) * perChar);
  const char* const cur = FWindow.Cur;  // the window holds what is read below, so it does not move
  const bool lowHalf = FLowHalf;
  String out;
  while (static_cast<int>(out.size()) < Count && FWindow.Cur != FWindow.End) out.push_back(ReadChar());
  FWindow.Cur = cur;
  FLowHalf = lowHalf;
  return out;
}

void TZmTextParser::SetMark(TZmTextParserPosType Mark) {
  if (Mark == tppMark1) FMark1 = GetCurPos();
  if (Mark == tppMark2) FMark2 = GetCurPos();
}

void TZmTextParser::ClearMark(TZmTextParserPosType Mark) {
  if (Mark == tppMark1) FMark1 = 0;
  if (Mark == tppMark2) FMark2 = 0;
}

std::int64_t TZmTextParser::GetPos(TZmTextParserPosType Pos) const {
  switch (Pos) {
    case tppMark1:
      return FMark1;
    case tppMark2:
      return FMark2;
    default:
      return FWindow.OffsetOf(FWindow.Cur) + (FLowHalf ? 2 : 0);
  }
}

// The offset at which a selection that ends at Pos stops.
std::int64_t TZmTextParser::EndOffset(TZmTextParserPosType Pos) {
  if (Pos != tppCurrentIncl || _GetEOF()) return GetPos(Pos);
  if (FWindow.Storage() != TStorage::UTF8) return GetCurPos() + 1;
  Have(4);
  const int length = detail::DecodeUTF8(FWindow.Cur, FWindow.End).Length;
  return GetCurPos() + (length == 4 ? 2 : length);
}

String TZmTextParser::Selected(TZmTextParserPosType Start, TZmTextParserPosType End, bool ClearStart) {
  String text = Cut(GetPos(Start), EndOffset(End));
  if (ClearStart) ClearMark(Start);
  return text;
}

RawByteString TZmTextParser::SelectedA(TZmTextParserPosType Start, TZmTextParserPosType End, bool ClearStart) {
  if (FWindow.Storage() != TStorage::Bytes) return ToUTF8(Selected(Start, End, ClearStart));
  const std::int64_t from = GetPos(Start), to = EndOffset(End);
  if (ClearStart) ClearMark(Start);
  if (to <= from) return {};
  return RawByteString(FWindow.Recall(from, to), static_cast<std::size_t>(to - from));
}

String TZmTextParser::Cut(std::int64_t From, std::int64_t To) {
  if (To <= From) return {};
  const char* from = FWindow.Recall(From, To);
  const auto size = static_cast<std::size_t>(To - From);
  if (FWindow.Storage() == TStorage::Wide) return String(reinterpret_cast<const char16_t*>(from), size);
  const char* to = from + size;
  String out;
  out.resize(size + 2 + detail::cWidenPad);
  char16_t* put = out.data();
  if (FWindow.Storage() == TStorage::Bytes) {
    put = detail::WidenBytes(from, to, FWindow.Readable, put, FWindow.Table());
  } else {
    const bool endsBetween = IsBetweenHalves(FWindow.Begin, to, FWindow.End);
    if (IsBetweenHalves(FWindow.Begin, from, FWindow.End)) {
      *put++ = detail::LowSurrogate(detail::DecodeUTF8(from - 2, FWindow.End).Code);
      from += 2;
    }
    if (endsBetween) to -= 2;
    put = detail::WidenUTF8(from, to, FWindow.Readable, put);
    if (endsBetween) *put++ = detail::HighSurrogate(detail::DecodeUTF8(to, FWindow.End).Code);
  }
  out.resize(static_cast<std::size_t>(put - out.data()));
  return out;
}

int TZmTextParser::GetLineNr() { return FWindow.CursorPlace().LineNr(); }

int TZmTextParser::GetColNr() {
  detail::TPlace place = FWindow.CursorPlace();
  place.Column += FLowHalf;
  return place.ColNr();
}

bool TZmTextParser::_GetEOF() { return FWindow.Cur == FWindow.End && !More(); }

void TZmTextParser::CheckEOF() {
  if (_GetEOF()) throw EZmTextParserEOF();
}

}  // namespace zm
