#pragma once

#include <string>

#include "tests/support/JSONRecorder.h"

/// Reads JSON text one character at a time, with no concern for speed, and tells the events with their places as
/// TJSONRecorder does: a second opinion on the reader of the library.
class TPlainJSONReader {
 public:
  bool AllowSurroundingSpace = false;

  std::string Parse(zm::StringView Text) {
    FText = Text;
    FPos = 0;
    FLine = FColumn = 1;
    FDepth = 0;
    FEvents.clear();
    try {
      ReadDocument();
    } catch (const zm::EZmException& e) {
      Tell("FatalError", {e.GetMessage()});
      FEvents += JSONFailureText(e);
    }
    return FEvents;
  }

 private:
  bool AtEnd() const { return FPos == FText.size(); }
  char16_t Current() const { return AtEnd() ? u'\0' : FText[FPos]; }
  bool IsAt(zm::StringView Set) const { return !AtEnd() && Set.find(Current()) != Set.npos; }

  void Next(int Count = 1) {
    for (; Count > 0 && !AtEnd(); --Count) {
      const char16_t passed = FText[FPos++];
      const bool endsLine = passed == u'\n' || (passed == u'\r' && Current() != u'\n');
      FLine += endsLine;
      FColumn = endsLine ? 1 : FColumn + 1;
    }
  }
  void SkipTo(zm::StringView Set) {
    while (!AtEnd() && !IsAt(Set)) Next();
  }
  void SkipSpace() {
    while (!AtEnd() && Current() <= u' ') Next();
  }

  [[noreturn]] void Fail(zm::StringView Expected) const {
    const bool isPair =
        (Current() & 0xFC00) == 0xD800 && FPos + 1 < FText.size() && (FText[FPos + 1] & 0xFC00) == 0xDC00;
    const auto found = FText.substr(FPos, Current() == u'\0' ? 0 : isPair ? 2 : 1);
    throw zm::EZmJSONParseError(zm::_cZmJSONNotWellFormed, {Expected, found}, 2);
  }
  void Tell(const char* Name, std::initializer_list<zm::StringView> Texts) {
    FEvents += PlaceText(FLine, FColumn) + EventText(Name, Texts) + '\n';
  }

  void SkipAhead() {
    while (!AtEnd() && (Current() == u' ' || (AllowSurroundingSpace && Current() <= u' '))) Next();
  }
  void ReadDocument() {
    SkipAhead();
    Tell("StartDocument", {});
    while (!AtEnd()) {
      if (IsAt(u"[{")) {
        ReadContainer();
        if (AllowSurroundingSpace) SkipAhead();
        continue;
      }
      ReadSimpleValue();
      if (AtEnd()) break;
      do Next();
      while (!AtEnd() && Current() <= u' ');
      if (!AtEnd() && !(AllowSurroundingSpace && FText[FPos - 1] <= u' ')) Fail(u"");
    }
    Tell("EndDocument", {});
  }

  void ReadContainer() {
    ++FDepth;
    Current() == u'[' ? ReadArray() : ReadObject();
    --FDepth;
  }
  void ReadValue() {
    if (IsAt(u"[{"))
      ReadContainer();
    else
      ReadSimpleValue();
  }

  void ReadObject() {
    Tell("StartObject", {});
    SkipTo(u"}\"");
    if (Current() == u'"') {
      do {
        SkipTo(u"\"");
        const auto name = ReadString();
        Tell("StartMember", {name});
        Next();
        SkipTo(u":");
        Next();
        SkipSpace();
        ReadValue();
        Tell("EndMember", {});
        SkipTo(u"},");
      } while (!AtEnd() && Current() != u'}');
    }
    Tell("EndObject", {});
    Next();
  }

  void ReadArray() {
    Tell("StartArray", {});
    do {
      Next();
      SkipSpace();
      if (Current() != u']') ReadValue();
      SkipTo(u"],");
    } while (!AtEnd() && Current() != u']');
    Tell("EndArray", {});
    Next();
  }

  void ReadSimpleValue() {
    if (IsAt(u"\"")) {
      const auto text = ReadString();
      Tell("String", {text});
    } else if (IsAt(u"t")) {
      ReadWord(u"true", "Boolean");
    } else if (IsAt(u"f")) {
      ReadWord(u"false", "Boolean");
    } else if (IsAt(u"n")) {
      ReadWord(u"null", "Null");
    } else if (IsAt(u"0123456789.-+eE")) {
      const auto begin = FPos;
      while (IsAt(u"0123456789.-+eE")) Next();
      Tell("Number", {FText.substr(begin, FPos - begin)});
      const bool isLeft = AllowSurroundingSpace && FDepth == 0 && !AtEnd() && Current() <= u' ';
      if (!isLeft) SkipTo(u"]},");
    } else {
      Fail(u"\", t, f, n, 0..9, ., + or -");
    }
  }

  void ReadWord(zm::StringView Word, const char* Name) {
    const auto begin = FPos;
    for (const char16_t& expected : Word) {
      const char16_t c = Current();
      Next();
      if (c != expected) Fail({&expected, 1});
    }
    Tell(Name, {FText.substr(begin, FPos - begin)});
  }

  zm::StringView ReadString() {
    if (Current() != u'"') Fail(u"\"");
    Next();
    const auto begin = FPos;
    do {
      SkipTo(u"\\\"");
      if (Current() == u'\\') {
        Next();
        if (IsAt(u"\"/\\bfnrt"))
          Next();
        else if (IsAt(u"u"))
          Next(4);
        else
          Fail(u"\", \\, /, b, f, n, r, t or u");
        if (!AtEnd() && !IsAt(u"\"\\")) Next();
      }
    } while (!AtEnd() && Current() != u'"');
    return FText.substr(begin, FPos - begin);
  }

  zm::StringView FText;
  std::size_t FPos = 0;
  int FLine = 1, FColumn = 1, FDepth = 0;
  std::string FEvents;
};
