#pragma once

#include <cstdint>

#include "zamrit/common/CharacterConstants.h"
#include "zamrit/common/TextWindowDetail.h"
#include "zamrit/common/ZmObject.h"
#include "zamrit/platform/Strings.h"

namespace zm {

namespace detail {
template <class Parser>
class TSourceForms;
}  // namespace detail

/// Input ended in the middle of something.
class EZmTextParserEOF : public EZmException {
 public:
  EZmTextParserEOF();
};

/// How a source is stored.
enum TZmCharacterSetType {
  cstAnsi = 0,  ///< one byte a character, through the content code page
  cstWide = 1,  ///< UTF-16; pages that cannot be read byte by byte are turned into it on the way in
  cstUTF8 = 2   ///< UTF-8
};

/// A place in the text: the cursor, or one of two marks.
enum TZmTextParserPosType {
  tppCurrent = 1,      ///< the cursor, the current character not included
  tppCurrentIncl = 2,  ///< the cursor, the current character included
  tppMark1 = 3,
  tppMark2 = 4
};

/// The comparison that a skip goes on with while it is true of the current character.
enum TZmTextParserSkipOp { tsoEqual = 0, tsoNotEqual = 3, tsoSmallerEqual = 4, tsoInSet = 6, tsoNotInSet = 7 };

class TZmTextParser;

/// A reference to one of the parser's operations in the form that suits the source; called like the operation.
template <class R, class... Args>
class TZmTextParserRef {
 public:
  R operator()(Args... Arguments) const { return FOperation(*FParser, Arguments...); }
  void Bind(TZmTextParser* Parser, R (*Operation)(TZmTextParser&, Args...)) {
    FParser = Parser;
    FOperation = Operation;
  }

 private:
  TZmTextParser* FParser = nullptr;
  R (*FOperation)(TZmTextParser&, Args...) = nullptr;
};

/// The cursor over source text under every reader and expression parser. It reads a stream or a memory block through a
/// code page and gives the text character by character as UTF-16, whatever the source is stored as; a code point above
/// U+FFFF is two characters, high surrogate first, and an ill-formed sequence is U+FFFD. Text is cut between marks
/// without being copied on the way.
///
/// A block, and a stream that holds its content in memory, is read in place. Any other stream is read through a window
/// that keeps what lies from the lowest mark or the cursor on, so that a mark that stays set keeps the text behind it
/// in memory; First, and a selection from a place that is no longer held, seek the stream back.
///
/// Reading past the end raises nothing: the current character is then cZmEOF. Offsets count units of the source's
/// storage from the start of the content (UTF-16 units for a page that is turned into UTF-16 on the way in).
class TZmTextParser : public TObject {
  ZM_OBJECT(TZmTextParser, TObject)
 public:
  /// Reads a stream from its present position on, and frees it at the end when OwnsStream says so. CodePage 0 means
  /// unknown as yet: each byte reads as the character of its value until SetContentCodePage tells better.
  TZmTextParser(TStream* Stream, bool OwnsStream, std::uint16_t CodePage);
  /// Reads a block of Size bytes, which must stay as it is while the parser lives. Owns nothing.
  TZmTextParser(const void* Buffer, unsigned long long Size, std::uint16_t CodePage);
  /// Reads a text, which must stay as it is while the parser lives.
  explicit TZmTextParser(StringView Text);

  /// Binds the function references to the storage. A descendant calls the inherited one first, then binds its own, and
  /// calls its own once in its constructor.
  virtual void SetCharacterSetType(TZmCharacterSetType Type);
  /// The page through which bytes become characters from here on. Binds the references anew where the storage changes.
  /// Where the text so far had to be converted, the cursor goes back to the start. Raises EConvertError for a page that
  /// is not known.
  void SetContentCodePage(std::uint16_t CodePage);
  /// The cursor to the start of the content.
  void First();
  /// The cursor to the end of the content; reads a stream to its end.
  void Last();

  /// The current character; valid until the next call.
  TZmTextParserRef<const char16_t&> CurrChar;
  /// The current character, then one step on.
  TZmTextParserRef<const char16_t&> ReadChar;
  /// The character after the current one.
  TZmTextParserRef<const char16_t&> PeekChar;
  /// One step on.
  TZmTextParserRef<void> Next;
  /// Skips while the current character is (tsoInSet) or is not (tsoNotInSet) in a set; stops at the end.
  TZmTextParserRef<void, TZmTextParserSkipOp, const TZmCharSet&> SkipWhileSet;
  /// The current unit as stored, one reference for each storage; cZmEOF at the end. Only the one of the parser's own
  /// storage is meaningful.
  TZmTextParserRef<char> SrcACurrChar;
  TZmTextParserRef<char16_t> SrcWCurrChar;
  TZmTextParserRef<char> SrcUCurrChar;

  void NextChar() { Next(); }
  void SkipChars(int Count);
  /// Skips while the comparison holds against C, in characters.
  void SkipWhile(TZmTextParserSkipOp Op, char16_t C);
  /// The same in units as stored, for each storage.
  void SrcASkipWhileA(TZmTextParserSkipOp Op, char C) { SkipUnits<char>(Op, C); }
  void SrcUSkipWhileA(TZmTextParserSkipOp Op, char C) { SkipUnits<char>(Op, C); }
  void SrcWSkipWhileW(TZmTextParserSkipOp Op, char16_t C) { SkipUnits<char16_t>(Op, C); }

  /// The current character as 8 bits; "?" for one above U+00FF.
  char CurrCharA();
  char16_t CurrCharW() { return CurrChar(); }
  char ReadCharA();
  char16_t ReadCharW() { return ReadChar(); }
  /// The character before the cursor; cZmEOF at the start.
  char16_t PrevCharW();
  /// Up to Count characters from the current one on; fewer at the end.
  String PeekString(int Count);
  String PeekStringW(int Count) { return PeekString(Count); }

  /// Records the cursor in a mark. At offset 0 the mark looks like a clear one.
  void SetMark(TZmTextParserPosType Mark);
  void ClearMark(TZmTextParserPosType Mark);
  /// The offset of a mark, or of the cursor. 0 for a clear mark.
  std::int64_t GetPos(TZmTextParserPosType Pos) const;
  std::int64_t GetCurPos() const { return GetPos(tppCurrent); }
  /// The text between two places, empty when the end does not lie behind the start. A clear mark as the start is offset
  /// 0. Clears the start mark when ClearStart says so. Costs one conversion of the text.
  String Selected(TZmTextParserPosType Start, TZmTextParserPosType End, bool ClearStart);
  String SelectedW(TZmTextParserPosType Start, TZmTextParserPosType End, bool ClearStart) {
    return Selected(Start, End, ClearStart);
  }
  /// The same in UTF-8 where the source is UTF-8 or UTF-16, in the bytes of the source where it is single-byte.
  RawByteString SelectedA(TZmTextParserPosType Start, TZmTextParserPosType End, bool ClearStart);

  /// Line and column of the cursor, from 1, columns in UTF-16 units; CR LF, LF and CR each end a line. Counted when
  /// asked for, from the place last asked for on.
  int GetLineNr();
  int GetColNr();
  /// The offset of the cursor.
  std::int64_t GetPosition() const { return GetCurPos(); }

  /// Whether the cursor has passed the last character.
  bool _GetEOF();
  /// Raises EZmTextParserEOF when the cursor is at the end.
  void CheckEOF();

  /// What lies under the cursor; the library's own readers scan it directly.
  detail::TTextWindow& Window() { return FWindow; }

 protected:
  ~TZmTextParser() override = default;

  TZmCharacterSetType FCharacterSetType = cstAnsi;
  std::int64_t FMark1 = 0;
  std::int64_t FMark2 = 0;

 private:
  template <detail::TStorage S>
  struct TOperations;
  template <class Operations>
  void Bind();
  template <class U>
  void SkipUnits(TZmTextParserSkipOp Op, U C);
  template <class U, class Test>
  void SkipUnitsWhile(Test Goes);
  template <class Test>
  void SkipCharsWhile(Test Goes);
  bool More();
  bool Have(std::size_t Units);
  TZmCharacterSetType WindowType() const;
  std::int64_t EndOffset(TZmTextParserPosType Pos);
  String Cut(std::int64_t From, std::int64_t To);

  detail::TTextWindow FWindow;
  bool FLowHalf = false;  // the cursor is on the low surrogate of the four bytes at Cur
  char16_t FChar = 0;
  char16_t FPeek = 0;
};

}  // namespace zm
