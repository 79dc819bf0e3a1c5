#include "zamrit/xml/json/FormReader.h"

#include <vector>

#include "zamrit/common/Encoding.h"
#include "zamrit/platform/ASCIIDetail.h"
#include "zamrit/platform/Numbers.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/Values.h"

namespace zm {
namespace {

constexpr TZmCharSet cKeyEnds("=%[]"), cValueEnds("&%+\n\r");
constexpr StringView cOpening = u"%5B", cClosing = u"%5D";

enum class TLevelKind { Member, Array };

/// A part of a key, and what was begun with it.
struct TLevel {
  String Name;
  TLevelKind Kind;
};

/// One post on its way from the parser to the handler.
class TFormPost {
 public:
  TFormPost(TZmTextParser& Parser, const TZmIntf<IZmJSONContentHandler>& Content)
      : FParser(Parser), FContent(Content) {}

  void Parse() {
    Content().StartDocument();
    Content().StartObject();
    while (ParsePair()) {
    }
    CloseAtEnd();
    Content().EndObject();
    Content().EndDocument();
  }

 private:
  // False where it was the last one.
  bool ParsePair() {
    FPath.clear();
    FEndsInMember = false;
    String name = ReadKeyPart();
    if (FParser._GetEOF() && name.substr(0, 1) == u"_") return false;
    if (!FPrevious.empty() && FPrevious[0].Name != name) ClosePrevious();
    if (FPrevious.empty()) Content().StartMember(name);
    FPath.push_back({std::move(name), TLevelKind::Member});
    while (!FParser._GetEOF() && FParser.CurrChar() != u'=') ParseBrackets();
    TellValue(ReadValue());
    if (FPath.back().Kind == TLevelKind::Member) {
      Content().EndMember();
      FPath.pop_back();
    }
    FEndsInMember = FPath.size() >= 2 && FPath[FPath.size() - 2].Kind == TLevelKind::Member;
    FPrevious.swap(FPath);
    FParser.NextChar();
    return !FParser._GetEOF() && FParser.CurrChar() != u'_';
  }

  // A level of the key: what the pair before had open there and this one leaves is closed, what is new is begun.
  void ParseBrackets() {
    SkipOpeningBracket();
    String name = ReadKeyPart();
    FParser.SkipChars(IsAt(cClosing) ? 3 : 1);
    const std::size_t depth = FPath.size();
    if (FPrevious.size() > depth && FPrevious[depth].Name != name) Leave(name);
    TLevelKind kind = TLevelKind::Member;
    if (FPrevious.size() > depth) {
      kind = FPrevious[depth].Kind;
    } else if (name.empty()) {
      Content().StartArray();
      kind = TLevelKind::Array;
    } else if (detail::IsDigit(name[0])) {
      if (name == u"0") Content().StartArray();
      kind = TLevelKind::Array;
    } else {
      if (depth > FPrevious.size()) Content().StartObject();
      Content().StartMember(name);
    }
    FPath.push_back({std::move(name), kind});
  }

  void SkipOpeningBracket() {
    const bool escaped = IsAt(cOpening);
    if (!escaped && FParser.CurrChar() != u'[')
      throw Exception(u"The parser expected to read a \"[\" character, but \"%s\", was read instead!",
                      {FParser.PeekString(3)});
    FParser.SkipChars(escaped ? 3 : 1);
  }
  bool IsAt(StringView Escape) { return FParser.CurrChar() == u'%' && FParser.PeekString(3) == Escape; }

  // Closes what the pair before had open below the path, now that Name stands there.
  void Leave(const String& Name) {
    while (FPrevious.size() > FPath.size()) {
      if (FPrevious.back().Kind == TLevelKind::Member) {
        Content().EndObject();
        Content().EndMember();
        FPrevious.pop_back();
        continue;
      }
      if (FPrevious.size() == FPath.size() + 1 && IsNextElement(Name, FPrevious.back().Name)) {
        if (FPrevious[FPrevious.size() - 2].Kind == TLevelKind::Member) Content().EndObject();
      } else {
        Content().EndArray();
      }
      FPrevious.pop_back();
      if (FPrevious.size() > FPath.size() && FPrevious.back().Kind == TLevelKind::Member) {
        Content().EndMember();
        FPrevious.pop_back();
      }
    }
  }
  static bool IsNextElement(const String& Name, const String& Before) {
    return StrToIntDef(Name, -1) == std::int64_t{StrToIntDef(Before, -1)} + 1;
  }

  void ClosePrevious() {
    for (; !FPrevious.empty(); FPrevious.pop_back()) {
      if (FPrevious.back().Kind == TLevelKind::Member)
        Content().EndObject();
      else
        Content().EndArray();
    }
  }
  void CloseAtEnd() {
    for (; !FPrevious.empty(); FPrevious.pop_back()) {
      const bool array = FPrevious.back().Kind == TLevelKind::Array;
      if (!array || FEndsInMember) Content().EndObject();
      if (array) Content().EndArray();
    }
  }

  String ReadKeyPart() {
    String part;
    for (;;) {
      AppendTo(part, cKeyEnds);
      if (FParser.CurrChar() != u'%' || IsAt(cOpening) || IsAt(cClosing)) return part;
      part += ReadEscape();
    }
  }

  String ReadValue() {
    FParser.NextChar();
    String value;
    for (;;) {
      AppendTo(value, cValueEnds);
      switch (FParser.CurrChar()) {
        case u'%':
          if (const String text = ReadEscape(); text >= u" ") value += text;
          break;
        case u'+':
          value += u' ';
          FParser.NextChar();
          break;
        case u'\n':
        case u'\r':
          FParser.NextChar();
          break;
        default:
          return value;
      }
    }
  }

  // Takes the text in front of the next of the characters in Ends.
  void AppendTo(String& Text, const TZmCharSet& Ends) {
    FParser.SetMark(tppMark1);
    FParser.SkipWhileSet(tsoNotInSet, Ends);
    Text += FParser.Selected(tppMark1, tppCurrent, true);
  }

  // The character that escapes make: as many as its first byte says.
  String ReadEscape() {
    RawByteString bytes(1, ReadEscapedByte());
    unsigned left = static_cast<unsigned char>(bytes[0]);
    if (left > 127) {
      for (left *= 2; (left & 0x80) != 0; left *= 2) {
        if (FParser.CurrChar() != u'%') throw Exception(u"Invalid UTF8 Encoding detected");
        bytes += ReadEscapedByte();
      }
    }
    return TZmEncoding::ConvertA(bytes, cZmPageUTF8);
  }
  char ReadEscapedByte() {
    FParser.NextChar();
    String digits = u"$";
    for (int i = 0; i < 2 && !FParser._GetEOF(); ++i) digits += FParser.ReadChar();
    if (digits.size() < 3) throw EConvertError(u"'%s' is not a valid integer value", {digits});
    return static_cast<char>(StrToInt(digits));
  }

  void TellValue(const String& Value) {
    const bool isJSON = !Value.empty() && (Value[0] == u'[' || Value[0] == u'{');
    Content().Value(jdtString, isJSON ? Value : ZmStrToJSON(Value));
  }

  // A handler may take another's place from inside an event.
  IZmJSONContentHandler& Content() const {
    if (!FContent) throw EZmJSONException(_cZmJSONNoContentHandler, jecNoContentHandler);
    return *FContent;
  }

  TZmTextParser& FParser;
  const TZmIntf<IZmJSONContentHandler>& FContent;
  std::vector<TLevel> FPath;      // the levels of the pair being read, outermost first
  std::vector<TLevel> FPrevious;  // those that stayed open behind the pair before
  bool FEndsInMember = false;     // the pair before the end left its last level open in a member
};

}  // namespace

void TZmFormURLEncodedJSONReader::InternalParse() {
  Assert(FParser != nullptr, u"Assertion failure (xml/uZmJSON)");
  TFormPost(*FParser, FContentHandler).Parse();
}

}  // namespace zm
