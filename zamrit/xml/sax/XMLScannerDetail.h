#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string_view>
#include <type_traits>

#include "zamrit/common/TextSlicesDetail.h"
#include "zamrit/xml/sax/Attributes.h"
#include "zamrit/xml/sax/NameCacheDetail.h"
#include "zamrit/xml/sax/NamespaceList.h"
#include "zamrit/xml/sax/XMLErrors.h"
#include "zamrit/xml/sax/XMLParser.h"

namespace zm::detail {

/// The buffers of a reader that serve parse after parse.
struct TXMLScratch {
  TNameCache ElementNames;
  TNameCache AttributeNames;
  TTextScratch Texts;
  TZmSAXXMAttributes Attributes;
};

/// The XML reader's loops over one storage. It finds the delimiters in the window, and hands slices of the source to
/// the sink, which makes of them what its consumer wants. The window's cursor is where it must be at each event and
/// error.
template <TStorage S, class Sink>
class TXMLScanner : private TWindowCursor<S> {
  using Base = TWindowCursor<S>;

 public:
  using typename Base::Lanes;
  using typename Base::Slice;
  using typename Base::U;

  TXMLScanner(TZmXMLParser& Parser, TZmSAXNamespaceList& Namespaces, TNameCache& ElementNames,
              TNameCache& AttributeNames, Sink& Out, bool SingleRoot)
      : Base(Parser.Window()),
        FParser(Parser),
        FNamespaces(Namespaces),
        FElementNames(ElementNames),
        FAttributeNames(AttributeNames),
        FOut(Out),
        FSingleRoot(SingleRoot),
        FWiden(FWindow) {}

  void ParseDocument() {
    FParser.SkipWhile(tsoNotEqual, FParser.FLt);
    FOut.StartDocument();
    ParseProlog();
    FParser.SkipWhile(tsoSmallerEqual, FParser.FSpace);
    FParser.CheckCurrChar(FParser.FLt, true);
    for (const U* p = Cursor(); Has(p); p = Cursor()) {
      if (FBehindRoot) [[unlikely]]
        ParseBehindRoot();
      else
        ParseContent(p);
    }
    FOut.EndDocument();
  }

 private:
  using Base::Cursor;
  using Base::End;
  using Base::FWindow;
  using Base::Grow;
  using Base::Has;
  using Base::HasUnits;
  using Base::IsSpaceOrControl;
  using Base::SetCursor;
  using Base::SkipTo;

  void BeginConstruct(const U* P) { FWindow.Token = reinterpret_cast<const char*>(P); }

  template <char... Chars>
  ZM_INLINE void SkipToAny(const U*& P, const U*& Keep) {
    SkipTo(P, Keep, TAnyOf<Lanes, Chars...>());
  }
  template <char... Chars>
  ZM_INLINE void SkipToAny(const U*& P) {
    SkipTo(P, TAnyOf<Lanes, Chars...>());
  }
  template <class Test>
  ZM_INLINE void SkipWhile(const U*& P, const U*& Keep, Test Goes) {
    do
      while (P != End() && Goes(*P)) ++P;
    while (P == End() && (Grow(P, Keep), P != End()));
  }
  template <class Test>
  ZM_INLINE void SkipWhile(const U*& P, Test Goes) {
    do
      while (P != End() && Goes(*P)) ++P;
    while (P == End() && Has(P));
  }

  [[noreturn]] void Raise(const U* P, StringView Message, int Code) {
    SetCursor(P);
    throw EZmXMLParseError(Message, Code);
  }

  void ParseProlog() {
    for (;;) {
      const char16_t next = FParser.PeekChar();
      if (next >= 1 && next <= 32) {
        FParser.Next();
      } else if (next == u'!') {
        FParser.Next();
        if (FParser.PeekChar() == u'-')
          ParseComment();
        else
          ParseDTD();
      } else if (next == u'?') {
        ParseProcessingInstruction();
      } else {
        return;
      }
      FParser.SkipWhile(tsoNotEqual, FParser.FLt);
      if (FParser._GetEOF()) return;
    }
  }

  // One construct in front of the end of the root. What follows the current character decides before that character
  // itself, so text behind a comment, instruction or CDATA section must not go on with "!" or "?".
  ZM_INLINE void ParseContent(const U* P) {
    const U* keep = P;
    SetCursor(P);
    const bool tag = *P == U('<') && HasUnits(P, keep, 2);
    const char16_t next = tag ? static_cast<std::make_unsigned_t<U>>(P[1]) : FParser.PeekChar();
    if (next == u'!') [[unlikely]]
      ParseMarkup();
    else if (next == u'?') [[unlikely]]
      ParseProcessingInstruction();
    else if (tag || *Cursor() == U('<'))
      ParseElement();
    else
      ParseCharacters();
  }

  // One construct once the root has been closed. What follows is not taken back by a depth above 0: a second element at
  // the top level is read under the same rules.
  void ParseBehindRoot() {
    const U* p = Cursor();
    SkipWhile(p, IsSpaceOrControl);
    SetCursor(p);
    if (p == End()) return;
    if (*p != U('<')) {
      if (FSingleRoot) Raise(p, _cZmXMLInvalidTextAtRoot, xecInvalidTextAtRoot);
      return ParseCharacters();
    }
    const char16_t next = FParser.PeekChar();
    if (next == u'!') return ParseMarkup();
    if (next == u'?') return ParseProcessingInstruction();
    if (FSingleRoot) Raise(Cursor(), _cZmXMLMultipleRoot, xecMultipleRoot);
    ParseElement();
  }

  void ParseMarkup() {
    FParser.Next();
    if (FParser.PeekChar() == u'-')
      ParseComment();
    else
      ParseCDATA();
  }

  void ParseProcessingInstruction() {
    BeginConstruct(Cursor());
    FParser.CheckCurrChar(FParser.FLt, true);
    FParser.SkipChars(2);
    const U* p = Cursor();
    const U* target = p;
    SkipToAny<' ', '?'>(p, target);
    const std::ptrdiff_t targetSize = p - target;
    std::ptrdiff_t data, dataSize = 0;
    if (p != End() && *p == U(' ')) {
      SkipWhile(p, target, [](U c) { return c == U(' '); });
      data = p - target;
      SkipToAny<'?'>(p, target);
      dataSize = p - target - data;
    } else {
      SkipWhile(p, target, [](U c) { return c == U(' ') || c == U('?'); });
      data = p - target;
    }
    SetCursor(p);
    FOut.ProcessingInstruction(Slice{target, target + targetSize}, Slice{target + data, target + data + dataSize});
    EndMarkup(p);
  }

  // Steps over the next ">".
  void EndMarkup(const U* P) {
    SkipToAny<'>'>(P);
    SetCursor(P == End() ? P : P + 1);
  }

  // On the "!" of what looks like a comment: a dash follows.
  void ParseComment() {
    const U* p = Cursor();
    BeginConstruct(p);
    p += 2;
    const bool fromLowHalf = SkipThirdOfOpener(p);
    const U* text = p;
    const bool told = FOut.WantsComments();
    for (;; ++p) {
      if (told) {
        SkipToAny<'-'>(p, text);
      } else {
        SkipToAny<'-'>(p);
        text = p;
      }
      if (p == End() || (HasUnits(p, text, 3) && p[1] == U('-') && p[2] == U('>'))) break;
    }
    SetCursor(p);
    if (told) FOut.Comment(Slice{text, p}, fromLowHalf);
    EndMarkup(p);
  }

  // The third character of a comment's opener may be any. Where it makes two surrogates only the first is stepped over,
  // and the comment begins with the second: true, and P stays on the bytes of both.
  bool SkipThirdOfOpener(const U*& P) {
    if (!Has(P)) return false;
    if constexpr (S == TStorage::UTF8) {
      const U* keep = P;
      if (*P & 0x80) HasUnits(P, keep, 4);
      const TCodePoint c = DecodeUTF8(P, End());
      if (c.Length == 4) return true;
      P += c.Length;
    } else {
      ++P;
    }
    return false;
  }

  // On the "!" of what is no comment in front of the root. Quotes and comments inside are not looked at.
  void ParseDTD() {
    BeginConstruct(Cursor());
    const U* p = Cursor() + 1;
    const U* keyword = p;
    SkipToAny<' '>(p, keyword);
    SetCursor(p);
    static constexpr char expected[] = {'D', 'O', 'C', 'T', 'Y', 'P', 'E'};
    if (!std::equal(keyword, p, std::begin(expected), std::end(expected)))
      throw EZmXMLParseError(_cZmXMLDOCTypeExpected, {FWiden({keyword, p}, FTemporary)}, xecDOCTypeExpected);
    FOut.StartDTD();
    std::int64_t depth = 1;
    while (depth > 0 && Has(p)) {
      ++p;
      SkipToAny<'<', '>'>(p);
      if (p != End()) depth += *p == U('<') ? 1 : -1;
    }
    SetCursor(p);
    FOut.EndDTD();
    EndMarkup(p);
  }

  // On the "!" of what is no comment.
  void ParseCDATA() {
    static constexpr std::string_view opener = "![CDATA[";
    const U* p = Cursor();
    BeginConstruct(p);
    const U* keep = p;
    const bool fits = HasUnits(p, keep, opener.size()) && std::equal(opener.begin(), opener.end(), p);
    SetCursor(p);
    if (!fits) RaiseNoCDATA();
    SetCursor(p + opener.size() - 1);
    FOut.StartCDATA();
    p += opener.size();
    const U* text = p;
    for (;; ++p) {
      SkipToAny<']'>(p, text);
      if (p == End() || (HasUnits(p, text, 3) && p[1] == U(']') && p[2] == U('>'))) break;
    }
    SetCursor(p);
    FOut.Characters(Slice{text, p});
    FOut.EndCDATA();
    EndMarkup(p);
  }

  [[noreturn]] void RaiseNoCDATA() {
    FParser.SetMark(tppMark1);
    FParser.SkipChars(7);
    const String found = FParser.Selected(tppMark1, tppCurrentIncl, true).substr(0, 8);
    throw EZmXMLParseError(_cZmXMLCDATAExpected, {found}, xecCDATAExpected);
  }

  void ParseCharacters() {
    const U* p = Cursor();
    const U* text = p;
    BeginConstruct(p);
    bool blank = IsSpaceOrControl(*p);
    do {
      if (blank) {
        p = Find<Lanes>(p, End(), [](const auto& v) { return Lanes::Not(Lanes::AtMost(v, static_cast<U>(' '))); });
        blank = p == End() || *p == U('<');
      }
      if (!blank) p = Find<Lanes>(p, End(), TAnyOf<Lanes, '<'>());
    } while (p == End() && (Grow(p, text), p != End()));
    SetCursor(p);
    const bool cutOff = p == End();
    if (cutOff && FSingleRoot) throw EZmTextParserEOF();
    if (blank) {
      FOut.IgnorableWhitespace(Slice{text, p});
    } else {
      FOut.Characters(Slice{text, p});
      if (cutOff) FOut.IgnorableWhitespace(Slice{p, p});
    }
  }

  // A start or end tag and the text behind it.
  void ParseElement() {
    if (FElementNames.IsFull() || FAttributeNames.IsFull()) [[unlikely]]
      ForgetNames();
    const U* p = Cursor();
    BeginConstruct(p);
    ++p;
    const bool endTag = Has(p) && *p == U('/');
    if (endTag) ++p;
    TXMLName*& guess = endTag ? FOpen[static_cast<std::size_t>(FDepth) % cOpen] : *FNext;
    if (IsNameAt(guess, p)) [[likely]]
      p += guess->Size / sizeof(U);
    else
      guess = ParseElementName(p);
    TXMLName& name = *guess;
    SkipWhile(p, [](U c) { return c == U(' '); });
    SetCursor(p);
    if (endTag) {
      const StringView uri = URIOf(name);
      if (p == End() || *p != U('>')) FParser.RaiseNotWellFormed(u">");
      EndElement(uri, name);
    } else {
      ++FDepth;
      const bool bare = p != End() && (*p == U('/') || *p == U('>'));
      if (!bare) {
        p = ParseAtrributes(p, name);
        SetCursor(p);
      }
      FNext = &name.AfterStart;
      FOpen[static_cast<std::size_t>(FDepth) % cOpen] = &name;
      if (p != End()) {
        const StringView uri = URIOf(name);
        FOut.StartElement(uri, name, !bare);
        if (*p == U('/')) EndElement(uri, name);
      }
    }
    if (p == End() || *p != U('>')) SkipToAny<'>'>(p);
    if (p != End()) ++p;
    SetCursor(p);
    if (FDepth == 0) {
      FBehindRoot = true;
    } else if (Has(p)) {
      SetCursor(p);
      if (*p != U('<')) ParseCharacters();
    }
  }

  ZM_INLINE void EndElement(StringView URI, TXMLName& Name) {
    FNext = &Name.AfterEnd;
    FOut.EndElement(URI, Name);
    FNamespaces.RemoveLevel(Level());
    --FDepth;
  }

  // Whether the name stands at P, whole.
  ZM_INLINE bool IsNameAt(const TXMLName* Name, const U* P) const {
    if (!TNameCache::IsAt(Name, reinterpret_cast<const char*>(P), FWindow.End)) return false;
    const U c = P[Name->Size / sizeof(U)];
    return c == U('>') || IsSpaceOrControl(c) || c == U('/');
  }

  void ForgetNames() {
    FElementNames.Clear();
    FAttributeNames.Clear();
    FElementName = FAttributeName = TNameCache::Unlisted();
    FOpen.fill(nullptr);
    FNext = &FFirstElement;
    FFirstElement = nullptr;
  }

  // Cuts the name at P and leaves P behind it. The record holds until the next element name.
  ZM_INLINE TXMLName* ParseElementName(const U*& P) {
    const TNamed named = CutElementName(P);
    P = named.Behind;
    return named.Name;
  }
  struct TNamed {
    TXMLName* Name;
    const U* Behind;
  };
  ZM_NOINLINE TNamed CutElementName(const U* P) {
    const U* begin = P;
    SkipTo(P, begin, TSpaceOrAnyOf<Lanes, ':', '<', '>', '/'>());
    std::ptrdiff_t colon = -1;
    if (P != End() && *P == U(':')) {
      colon = P - begin;
      ++P;
      SkipTo(P, begin, TSpaceOrAnyOf<Lanes, '>', '/'>());
    } else if (P != End() && *P == U('<')) {
      CheckNameStart(begin);
      RaiseNotClosed(P);
    }
    HasUnits(P, begin, 4);  // so that the checks find a whole character without moving the window
    const TNameCache::TKey key = KeyOf(begin, P);
    if (TXMLName* name = FElementNames.Find(key)) return {name, P};
    CheckNameStart(begin);
    if (colon >= 0) CheckNameStart(begin + colon + 1);
    TXMLName* name = FElementNames.Add(key);
    if (!name) name = &FElementName;
    SetParts(*name, {begin, P}, colon, colon + 1);
    return {name, P};
  }

  void CheckNameStart(const U* P) {
    SetCursor(P);
    FParser.CheckValidNameStartChar();
  }

  [[noreturn]] void RaiseNotClosed(const U* P) {
    const TPlace place = FWindow.TokenPlace();
    SetCursor(P);
    throw EZmXMLParseError(_cZmXMLELMNotClosed, {place.Line, place.Column}, xecElementNotClosed);
  }

  // From behind the blanks after an element name to the end of the tag or of the input, which is returned. A
  // declaration holds from its own place on: not for an attribute in front of it.
  const U* ParseAtrributes(const U* P, TXMLName& Element) {
    BeginConstruct(P);
    FOut.BeginAttributes();
    TXMLName** guess = &Element.FirstAttribute;
    for (;;) {
      if (IsAttributeAt(*guess, P)) [[likely]] {
        P += (*guess)->Size / sizeof(U);
      } else {
        const TNamed named = CutAttributeName(P);
        P = named.Behind;
        if (P == End() && !named.Name) return P;
        *guess = named.Name;
      }
      TXMLName& name = **guess;
      guess = &name.NextAttribute;
      if (End() - P > 1 && (P[1] == U('"') || P[1] == U('\''))) [[likely]] {
        ++P;
      } else {
        SkipToAny<'"', '\'', '>', '<'>(P);
        CheckValueFollows(P);
      }
      const U* value = P;
      if (P != End()) {
        const U quote = *P;
        value = ++P;
        SkipTo(P, value, [quote](const auto& v) { return Lanes::Eq(v, quote); });
      }
      AddAttribute(name, {value, P});
      if (P != End()) ++P;
      SkipWhile(P, [](U c) { return IsSpaceOrControl(c) || c == U('"') || c == U('\''); });
      if (P == End() || *P == U('>') || *P == U('/')) return P;
    }
  }

  ZM_INLINE bool IsAttributeAt(const TXMLName* Name, const U* P) const {
    return TNameCache::IsAt(Name, reinterpret_cast<const char*>(P), FWindow.End) && P[Name->Size / sizeof(U)] == U('=');
  }

  // Cuts the name of an attribute; none where the input ends before the name does. The record holds until the next one.
  ZM_NOINLINE TNamed CutAttributeName(const U* P) {
    const U* begin = P;
    SkipToAny<'=', ':', '>', '<'>(P, begin);
    if (P == End()) return {nullptr, P};
    std::ptrdiff_t colon = -1, local = 0;
    if (*P == U(':')) {
      colon = P - begin;
      SkipWhile(P, begin, [](U c) { return c == U(':'); });
      local = P - begin;
      SkipToAny<'=', '>', '<'>(P, begin);
    }
    CheckValueFollows(P);
    const TNameCache::TKey key = KeyOf(begin, P);
    TXMLName* name = FAttributeNames.Find(key);
    if (name) return {name, P};
    name = FAttributeNames.Add(key);
    if (!name) name = &FAttributeName;
    SetParts(*name, {begin, P}, colon, local);
    return {name, P};
  }

  void CheckValueFollows(const U* P) {
    if (P != End() && (*P == U('<') || *P == U('>'))) Raise(P, _cZmXMLMissingAttribute, xecMissingAttribute);
  }

  ZM_INLINE void AddAttribute(TXMLName& Name, Slice Value) {
    const bool lasting = &Name != &FAttributeName;
    if (Name.Role == TNameRole::Ordinary) return FOut.Attribute(Name, lasting, URIOf(Name), Value);
    FOut.Attribute(Name, lasting, {}, Value);
    const StringView prefix = Name.Role == TNameRole::Prefix ? Name.LocalName : StringView();
    SetCursor(Value.End);
    FNamespaces.AddURI(Level(), prefix, FWiden(Value, FTemporary));
    FTemporary.Reset();
  }

  // The depth as the namespaces count it, in 32 bits.
  int Level() const {
    constexpr std::int64_t least = std::numeric_limits<int>::min(), most = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(FDepth, least, most));
  }

  ZM_INLINE StringView URIOf(TXMLName& Name) {
    if (Name.Generation != FNamespaces.Generation()) [[unlikely]] {
      Name.URI = FNamespaces.GetURI(Name.Prefix);
      Name.Generation = FNamespaces.Generation();
    }
    return Name.URI;
  }

  ZM_INLINE TNameCache::TKey KeyOf(const U* Begin, const U* Behind) const {
    return TNameCache::KeyOf(reinterpret_cast<const char*>(Begin), static_cast<std::size_t>(Behind - Begin) * sizeof(U),
                             FWindow.Readable);
  }

  // Fills a record from the name as it stands in the source. Without a prefix Colon is -1.
  ZM_NOINLINE void SetParts(TXMLName& Name, Slice Raw, std::ptrdiff_t Colon, std::ptrdiff_t Local) {
    const StringView prefix = Colon < 0 ? StringView() : FWiden({Raw.Begin, Raw.Begin + Colon}, FTemporary);
    const StringView qname = Trim(FWiden(Raw, FTemporary));
    const StringView local = Colon < 0 ? qname : Trim(FWiden({Raw.Begin + Local, Raw.End}, FTemporary));
    Name.Text.clear();
    Name.Text.append(prefix).append(qname).append(local);
    const StringView all = Name.Text;
    Name.Prefix = all.substr(0, prefix.size());
    Name.QName = all.substr(prefix.size(), qname.size());
    Name.LocalName = all.substr(prefix.size() + qname.size());
    Name.Role = IsNamespaceKeyword(Name.QName)    ? TNameRole::DefaultNamespace
                : IsNamespaceKeyword(Name.Prefix) ? TNameRole::Prefix
                                                  : TNameRole::Ordinary;
    Name.Generation = 0;
    Name.Record = nullptr;
    FTemporary.Reset();
  }

  static bool IsNamespaceKeyword(StringView Name) {
    static constexpr StringView keyword = u"xmlns";
    return std::equal(Name.begin(), Name.end(), keyword.begin(), keyword.end(),
                      [](char16_t c, char16_t k) { return (c | 0x20) == k; });
  }

  TZmXMLParser& FParser;
  TZmSAXNamespaceList& FNamespaces;
  TNameCache& FElementNames;
  TNameCache& FAttributeNames;
  Sink& FOut;
  const bool FSingleRoot;
  const TWidener<S> FWiden;
  TTextScratch FTemporary;
  static constexpr std::size_t cOpen = 64;
  TXMLName FElementName = TNameCache::Unlisted();    // of a name that the cache does not take
  TXMLName FAttributeName = TNameCache::Unlisted();  // likewise
  std::array<TXMLName*, cOpen> FOpen{};              // by depth, the element that was begun there last
  TXMLName* FFirstElement = nullptr;
  TXMLName** FNext = &FFirstElement;  // where the guess at the next element stands
  std::int64_t FDepth = 0;
  bool FBehindRoot = false;  // the depth has been 0 once
};

}  // namespace zm::detail
