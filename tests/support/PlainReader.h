#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/EventRecorder.h"
#include "zamrit/xml/sax/XMLErrors.h"

/// Reads XML text one character at a time, with no concern for speed, and tells the events as EventsOf does: a second
/// opinion on the reader of the library. What a failed parse leaves behind is in force for the next one, as there.
class TPlainReader {
 public:
  bool SingleRoot = true, Lexical = true;

  std::string Parse(zm::StringView Text) {
    FText = Text;
    FLine = FColumn = 1;
    FDepth = 0;
    FPos = 0;
    FEvents.clear();
    try {
      ReadDocument();
    } catch (const zm::EZmException& e) {
      FUnexpectedEOF = dynamic_cast<const zm::EZmTextParserEOF*>(&e) != nullptr;
      Tell("FatalError", {e.GetMessage()});
      FEvents += FailureText(e);
    }
    return FEvents;
  }

 private:
  struct TName {
    zm::StringView Prefix, Local, QName;
  };
  struct TNamespace {
    int Level;
    zm::String Prefix, URI;
  };

  bool AtEnd() const { return FPos == FText.size(); }
  char16_t Current() const { return AtEnd() ? u'\0' : FText[FPos]; }
  char16_t Peek() const { return FPos + 1 < FText.size() ? FText[FPos + 1] : u'\0'; }

  void Next(int Count = 1) {
    for (; Count > 0 && !AtEnd(); Count--) {
      const char16_t passed = FText[FPos++];
      const bool endsLine = passed == u'\n' || (passed == u'\r' && Current() != u'\n');
      FLine += endsLine;
      FColumn = endsLine ? 1 : FColumn + 1;
    }
  }
  template <class F>
  void SkipWhile(F Holds) {
    while (!AtEnd() && Holds(Current())) Next();
  }
  void SkipTo(zm::StringView Set) {
    SkipWhile([Set](char16_t c) { return Set.find(c) == Set.npos; });
  }
  void SkipAll(zm::StringView Set) {
    SkipWhile([Set](char16_t c) { return Set.find(c) != Set.npos; });
  }
  void StepOverTagEnd() {
    SkipTo(u">");
    Next();
  }
  zm::StringView TextFrom(std::size_t Begin) const { return FText.substr(Begin, FPos - Begin); }
  zm::StringView TakeTo(zm::StringView Set) {
    const auto begin = FPos;
    SkipTo(Set);
    return TextFrom(begin);
  }
  zm::StringView TakeToCloser(zm::StringView Closer) {
    const auto begin = FPos;
    for (; !AtEnd(); Next()) {
      SkipTo(Closer.substr(0, 1));
      if (FText.substr(FPos, 3) == Closer) break;
    }
    return TextFrom(begin);
  }

  template <class... TArgs>
  [[noreturn]] static void Fail(int Code, zm::StringView Message, const TArgs&... Arguments) {
    throw zm::EZmXMLParseError(Message, {zm::TFormatArg(Arguments)...}, Code);
  }
  zm::StringView Found() const {
    const bool isPair = (Current() & 0xFC00) == 0xD800 && (Peek() & 0xFC00) == 0xDC00;
    return FText.substr(FPos, Current() == u'\0' ? 0 : isPair ? 2 : 1);
  }
  void Expect(zm::StringView Char) const {
    if (Current() != Char[0]) Fail(2, zm::_cZmXMLNotWellFormed, Char, Found());
  }
  void ExpectNameStart() const {
    static const char16_t ranges[][2] = {{u'A', u'Z'},     {u'_', u'_'},     {u'a', u'z'},     {0xC0, 0xD6},
                                         {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},   {0x37F, 0x1FFF},
                                         {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF}, {0x3001, 0xD7FF},
                                         {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}};
    const char16_t c = Current();
    if (c == u':') Fail(3, zm::_cZmXMLInvalidNameStartchar1, Found());
    if (std::none_of(std::begin(ranges), std::end(ranges), [c](auto& r) { return c >= r[0] && c <= r[1]; }))
      Fail(3, zm::_cZmXMLInvalidNameStartchar2, Found());
  }
  void ExpectValue() const {
    if (Current() == u'<' || Current() == u'>') Fail(7, zm::_cZmXMLMissingAttribute);
  }

  void KeepPlace() {
    FKeptLine = FLine;
    FKeptColumn = FColumn;
  }
  void Tell(const char* Name, std::initializer_list<zm::StringView> Texts) {
    FEvents += FUnexpectedEOF ? PlaceText(FKeptLine, FKeptColumn) : PlaceText(FLine, FColumn);
    FEvents += EventText(Name, Texts) + '\n';
  }
  void TellLexical(const char* Name) {
    if (!Lexical) Fail(13, zm::_cZmXMLNoLexicalHandler);
    Tell(Name, {});
  }

  static bool IsXmlns(zm::StringView Name) {
    const zm::StringView lower = u"xmlns", upper = u"XMLNS";
    for (std::size_t i = 0; i < Name.size() && i < 5; i++)
      if (Name[i] != lower[i] && Name[i] != upper[i]) return false;
    return Name.size() == 5;
  }
  zm::String FindURI(zm::StringView Prefix) const {
    for (auto i = FNamespaces.rbegin(); i != FNamespaces.rend(); i++)
      if (zm::SameText(i->Prefix, Prefix)) return i->URI;
    return {};
  }
  void AddNamespace(zm::StringView Prefix, zm::StringView URI) {
    FNamespaces.push_back({FDepth, zm::String(Prefix), zm::String(URI)});
    Tell("StartPrefixMapping", {Prefix, URI});
  }
  void RemoveLevel() {
    for (auto i = FNamespaces.end(); i != FNamespaces.begin();) {
      if ((--i)->Level < FDepth) continue;
      Tell("EndPrefixMapping", {i->Prefix});
      i = FNamespaces.erase(i);
    }
  }

  void ReadDocument() {
    SkipTo(u"<");
    Tell("StartDocument", {});
    for (; !AtEnd(); SkipTo(u"<")) {
      if (Peek() >= 1 && Peek() <= 32)
        Next();
      else if (!ReadMarkup(&TPlainReader::ReadDTD))
        break;
    }
    SkipWhile([](char16_t c) { return c <= u' '; });
    Expect(u"<");
    while (!AtEnd())
      if (!ReadMarkup(&TPlainReader::ReadCDATA)) Current() == u'<' ? ReadElement() : ReadCharacters();
    Tell("EndDocument", {});
  }

  // What the character after the cursor decides, whatever stands under it.
  bool ReadMarkup(void (TPlainReader::*ReadOther)()) {
    if (Peek() == u'?') {
      ReadInstruction();
    } else if (Peek() == u'!') {
      Next();
      Peek() == u'-' ? ReadComment() : (this->*ReadOther)();
    } else {
      return false;
    }
    return true;
  }

  void ReadInstruction() {
    KeepPlace();
    Expect(u"<");
    Next(2);
    const auto target = TakeTo(u" ?");
    const bool hasData = Current() == u' ';
    SkipAll(hasData ? u" " : u" ?");
    const auto data = hasData ? TakeTo(u"?") : zm::StringView();
    Tell("ProcessingInstruction", {target, data});
    StepOverTagEnd();
  }

  void ReadComment() {
    KeepPlace();
    Next(3);
    const auto text = TakeToCloser(u"-->");
    if (Lexical) Tell("Comment", {text});
    StepOverTagEnd();
  }

  void ReadDTD() {
    KeepPlace();
    Next();
    const auto keyword = TakeTo(u" ");
    if (keyword != u"DOCTYPE") Fail(5, zm::_cZmXMLDOCTypeExpected, keyword);
    TellLexical("StartDTD");
    int brackets = 1;
    do {
      Next();
      brackets += (Current() == u'<') - (Current() == u'>');
    } while (brackets != 0 && !AtEnd());
    TellLexical("EndDTD");
    StepOverTagEnd();
  }

  void ReadCDATA() {
    KeepPlace();
    const auto opener = FText.substr(FPos, 8);
    Next(7);
    if (opener != u"![CDATA[") Fail(6, zm::_cZmXMLCDATAExpected, opener);
    TellLexical("StartCDATA");
    Next();
    const auto text = TakeToCloser(u"]]>");
    Tell("Characters", {text});
    TellLexical("EndCDATA");
    StepOverTagEnd();
  }

  void ReadCharacters() {
    KeepPlace();
    const auto begin = FPos;
    bool blank = true;
    do {
      blank = blank && Current() < 33;
      Next();
    } while (Current() != u'<' && !AtEnd());
    if (AtEnd() && SingleRoot) throw zm::EZmTextParserEOF();
    Tell(blank ? "IgnorableWhitespace" : "Characters", {TextFrom(begin)});
    if (AtEnd() && !blank) Tell("IgnorableWhitespace", {u""});
  }

  std::string ReadAttributes() {
    KeepPlace();
    std::string attributes;
    do {
      const auto begin = FPos;
      TName name;
      name.Local = TakeTo(u"=:><");
      ExpectValue();
      if (AtEnd()) break;  // a name that is cut off is no attribute
      if (Current() == u':') {
        name.Prefix = name.Local;
        SkipAll(u":");
        name.Local = TakeTo(u"=><");
        ExpectValue();
      }
      name.Local = zm::Trim(name.Local);
      name.QName = zm::Trim(TextFrom(begin));
      SkipTo(u"\"'><");
      ExpectValue();
      const char16_t quote = Current();
      Next();
      const auto value = TakeTo({&quote, 1});
      const bool isKeyword = IsXmlns(name.QName), isPrefixed = !isKeyword && IsXmlns(name.Prefix);
      const auto uri = isKeyword || isPrefixed ? zm::String() : FindURI(name.Prefix);
      if (isKeyword || isPrefixed) AddNamespace(isKeyword ? zm::StringView() : name.Local, value);
      attributes += EventText("  Attribute", {uri, name.Local, name.QName, value}) + '\n';
      SkipWhile([](char16_t c) { return c == u'"' || c == u'\'' || c <= u' '; });
    } while (!AtEnd() && Current() != u'>' && Current() != u'/');
    return attributes;
  }

  TName ReadElementName() {
    const auto inName = [](char16_t c) { return c > u' ' && c != u'>' && c != u'/'; };
    const auto begin = FPos;
    TName name;
    ExpectNameStart();
    SkipWhile([inName](char16_t c) { return inName(c) && c != u':' && c != u'<'; });
    if (Current() == u'<') Fail(8, zm::_cZmXMLELMNotClosed, FKeptLine, FKeptColumn);
    name.Local = TextFrom(begin);
    if (Current() == u':') {
      name.Prefix = name.Local;
      Next();
      ExpectNameStart();
      const auto local = FPos;
      SkipWhile(inName);
      name.Local = TextFrom(local);
    }
    name.QName = TextFrom(begin);
    SkipAll(u" ");
    return name;
  }

  void ReadTag() {
    KeepPlace();
    Expect(u"<");
    Next();
    bool ends = Current() == u'/';
    if (ends) Next();
    const auto name = ReadElementName();
    if (ends) {
      Expect(u">");
    } else {
      FDepth++;
      const auto attributes = Current() == u'/' || Current() == u'>' ? std::string() : ReadAttributes();
      if (!AtEnd()) {
        Tell("StartElement", {FindURI(name.Prefix), name.Local, name.QName});
        FEvents += attributes;
      }
      ends = Current() == u'/';
    }
    if (ends) {
      Tell("EndElement", {FindURI(name.Prefix), name.Local, name.QName});
      RemoveLevel();
      FDepth--;
    }
    StepOverTagEnd();
  }

  void ReadElement() {
    ReadTag();
    if (FDepth == 0)
      ReadTail();
    else if (!AtEnd() && Current() != u'<')
      ReadCharacters();
  }

  // Behind the root: everything up to the end of input, also when further elements take the depth away from 0 again.
  void ReadTail() {
    for (;;) {
      SkipWhile([](char16_t c) { return c <= u' '; });
      if (AtEnd()) return;
      if (Current() != u'<') {
        if (SingleRoot) Fail(12, zm::_cZmXMLInvalidTextAtRoot);
        ReadCharacters();
      } else if (!ReadMarkup(&TPlainReader::ReadCDATA)) {
        if (SingleRoot) Fail(9, zm::_cZmXMLMultipleRoot);
        ReadTag();
        if (FDepth != 0 && !AtEnd() && Current() != u'<') ReadCharacters();
      }
    }
  }

  zm::StringView FText;
  std::size_t FPos = 0;
  int FLine = 1, FColumn = 1, FKeptLine = 0, FKeptColumn = 0, FDepth = 0;
  bool FUnexpectedEOF = false;
  std::vector<TNamespace> FNamespaces;
  std::string FEvents;
};
