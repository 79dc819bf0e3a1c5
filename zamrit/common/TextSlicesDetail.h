#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "zamrit/common/TextWindowDetail.h"
#include "zamrit/platform/TextDetail.h"

namespace zm::detail {

/// A piece of the source as it is stored.
template <class U>
struct TSlice {
  const U* Begin;
  const U* End;
};

/// Room for the UTF-16 form of what one event tells. What has been put stays in place until Reset.
class TTextScratch {
 public:
  /// Room for Units units and the pad of a widening.
  ZM_INLINE char16_t* Room(std::size_t Units) {
    return static_cast<std::size_t>(FEnd - FFree) >= Units + cWidenPad ? FFree : NewBlock(Units + cWidenPad);
  }
  /// Takes the room up to End.
  void Take(char16_t* End) { FFree = End; }
  /// A copy of a text.
  StringView Copy(StringView Text) {
    char16_t* const to = Room(Text.size());
    Take(std::copy(Text.begin(), Text.end(), to));
    return {to, Text.size()};
  }
  /// Forgets all texts. Keeps the last block, which is the largest.
  void Reset() {
    FFree = FBegin;
    if (!FOlder.empty()) FOlder.clear();
  }
  /// Gives back what a huge text has taken.
  void Trim() {
    if (FEnd - FBegin > cKept) *this = TTextScratch();
  }

 private:
  static constexpr std::ptrdiff_t cFirst = 4096, cKept = 512 * 1024;

  ZM_NOINLINE char16_t* NewBlock(std::size_t Units) {
    const std::size_t size =
        std::max({static_cast<std::size_t>(cFirst), 2 * static_cast<std::size_t>(FEnd - FBegin), Units});
    auto block = std::make_unique_for_overwrite<char16_t[]>(size);
    if (FBlock) FOlder.push_back(std::move(FBlock));
    FBlock = std::move(block);
    FBegin = FFree = FBlock.get();
    FEnd = FBegin + size;
    return FFree;
  }

  std::unique_ptr<char16_t[]> FBlock;
  std::vector<std::unique_ptr<char16_t[]>> FOlder;
  char16_t* FBegin = nullptr;
  char16_t* FFree = nullptr;
  char16_t* FEnd = nullptr;
};

/// Turns slices of the source into UTF-16.
template <TStorage S>
class TWidener {
 public:
  using Unit = std::conditional_t<S == TStorage::Wide, char16_t, char>;

  explicit TWidener(const TTextWindow& Window) : FWindow(Window) {}

  /// A view of the slice that holds until the window moves: in the scratch or, where the source is UTF-16, in the
  /// window.
  ZM_INLINE StringView operator()(TSlice<Unit> Slice, TTextScratch& Scratch) const {
    const auto size = static_cast<std::size_t>(Slice.End - Slice.Begin);
    if constexpr (S == TStorage::Wide) {
      return {Slice.Begin, size};
    } else {
      char16_t* const to = Scratch.Room(size);
      char16_t* end;
      if constexpr (S == TStorage::UTF8)
        end = WidenUTF8(Slice.Begin, Slice.End, FWindow.Readable, to);
      else
        end = WidenBytes(Slice.Begin, Slice.End, FWindow.Readable, to, FWindow.Table());
      Scratch.Take(end);
      return {to, static_cast<std::size_t>(end - to)};
    }
  }

  /// A view of the slice that holds until the scratch is reset.
  ZM_INLINE StringView Keep(TSlice<Unit> Slice, TTextScratch& Scratch) const {
    const StringView text = (*this)(Slice, Scratch);
    return S == TStorage::Wide && !FWindow.Stays() ? Scratch.Copy(text) : text;
  }

 private:
  const TTextWindow& FWindow;
};

/// The window's cursor in a scanner's hands. Scanners derive from it, and keep the place they stand at in a local P:
/// another pointer with it, Keep, is the first place that the routine still needs, and where the window has to move on,
/// both move with it.
template <TStorage S>
class TWindowCursor {
 public:
  using U = std::conditional_t<S == TStorage::Wide, char16_t, char>;
  using Lanes = TVectorLanes<U>;
  using Slice = TSlice<U>;

 protected:
  explicit TWindowCursor(TTextWindow& Window) : FWindow(Window) {}

  // The cursor, and the end of what the window holds.
  const U* Cursor() const { return reinterpret_cast<const U*>(FWindow.Cur); }
  const U* End() const { return reinterpret_cast<const U*>(FWindow.End); }
  void SetCursor(const U* P) { FWindow.Cur = reinterpret_cast<const char*>(P); }

  struct TPlaces {
    const U* P;
    const U* Keep;
  };
  // Reads on. Keep is not behind P, and both move with the window. Nothing comes behind P at the end of the input.
  ZM_NOINLINE TPlaces Grown(const U* P, const U* Keep) {
    SetCursor(P);
    auto keep = reinterpret_cast<const char*>(Keep);
    FWindow.More(keep);
    return {Cursor(), reinterpret_cast<const U*>(keep)};
  }
  // The same for two variables; they stay in registers, since their addresses go nowhere.
  ZM_INLINE void Grow(const U*& P, const U*& Keep) {
    const TPlaces places = Grown(P, Keep);
    P = places.P;
    Keep = places.Keep;
  }

  // Whether there is a unit at P.
  ZM_INLINE bool Has(const U*& P) {
    if (P == End()) [[unlikely]]
      P = Grown(P, P).P;
    return P != End();
  }
  // Whether Count units can be had from P on.
  ZM_INLINE bool HasUnits(const U*& P, const U*& Keep, std::ptrdiff_t Count) {
    while (End() - P < Count) {
      const std::ptrdiff_t held = End() - P;
      Grow(P, Keep);
      if (End() - P == held) return false;
    }
    return true;
  }

  template <class Match>
  ZM_INLINE void SkipTo(const U*& P, const U*& Keep, Match Matches) {
    do P = Find<Lanes>(P, End(), Matches);
    while (P == End() && (Grow(P, Keep), P != End()));
  }
  template <class Match>
  ZM_INLINE void SkipTo(const U*& P, Match Matches) {
    do P = Find<Lanes>(P, End(), Matches);
    while (P == End() && Has(P));
  }
  static bool IsSpaceOrControl(U C) { return static_cast<std::make_unsigned_t<U>>(C) <= ' '; }

  TTextWindow& FWindow;
};

}  // namespace zm::detail
