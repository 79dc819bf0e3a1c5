#include <gtest/gtest.h>

#include <iostream>

#include "tests/conformance/DataFolder.h"

#ifdef ZM_EXPAT
#include <expat.h>
#include <iconv.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "tests/support/EventRecorder.h"

// The well-formed documents of the conformance suite and the larger ones, read by this reader and by expat: elements,
// attributes, text, comments and instructions in order must be equal. This reader decodes nothing, so its side is
// decoded here. References to entities in text stay as they stand on both sides.
//
// This reader's own rules for what is well-formed, as far as the documents show them:
// - A DOCTYPE is followed by a blank; any other white space is refused with code 5.
// - In a tag without attributes only blanks may follow the name; other white space is refused, with code 7 in a start
//   tag and with code 2 in an end tag.
// - The data of an instruction ends at its first "?".
// - A DOCTYPE ends where its angle brackets balance, also those in literals and comments.

namespace {

namespace fs = std::filesystem;

/// Events, a line each. Adjacent runs of text are joined.
class TEventLines {
 public:
  void Add(const char* Name, std::initializer_list<zm::StringView> Texts) {
    if (FRefused) return;
    if (!FText.empty()) FLines += EventText("Text", {FText}) + '\n';
    FText.clear();
    FLines += EventText(Name, Texts) + '\n';
  }
  void AddText(zm::StringView Text) { FText += Text; }
  /// What follows is not read.
  void Refuse(int Code) {
    Add("Refused", {zm::IntToStr(Code)});
    FRefused = true;
  }
  bool Refused() const { return FRefused; }
  const std::string& Lines() const { return FLines; }

 private:
  std::string FLines;
  zm::String FText;
  bool FRefused = false;
};

/// What the DTD of a document says.
struct TDeclarations {
  std::map<zm::String, zm::String> Entities;                  // internal ones
  std::map<std::pair<zm::String, zm::String>, bool> IsCDATA;  // attributes by element; the first declaration holds
};

/// A document as expat reads it, with this reader's rules applied. The source is in an encoding that has ASCII in it.
class TExpatSide {
 public:
  TEventLines Events;
  TDeclarations Declarations;
  std::string UnknownEncoding;
  bool Failed, UnbalancedDTD = false;

  TExpatSide(std::string_view Source, const char* Encoding) : FSource(Source) {
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate(Encoding),
                                                                              XML_ParserFree);
    FParser = parser.get();
    SetHandlers();
    Failed = XML_Parse(FParser, Source.data(), static_cast<int>(Source.size()), 1) != XML_STATUS_OK;
  }

 private:
  static TExpatSide& Self(void* UserData) { return *static_cast<TExpatSide*>(UserData); }
  static zm::String Wide(const char* Text) { return zm::FromUTF8(Text); }
  static zm::String Wide(const char* Text, int Size) { return zm::FromUTF8({Text, static_cast<std::size_t>(Size)}); }

  void SetHandlers() {
    XML_SetUserData(FParser, this);
    XML_SetUnknownEncodingHandler(
        FParser,
        [](void* u, const char* name, XML_Encoding*) {
          Self(u).UnknownEncoding = name;
          return 0;
        },
        this);
    XML_SetXmlDeclHandler(FParser, [](void* u, auto...) { Self(u).Events.Add("Declaration", {}); });
    XML_SetDoctypeDeclHandler(
        FParser, [](void* u, auto...) { Self(u).StartDTD(); }, [](void* u) { Self(u).EndDTD(); });
    XML_SetEntityDeclHandler(FParser,
                             [](void* u, const char* n, int isParameter, const char* value, int size, auto...) {
                               if (!isParameter && value) Self(u).Declarations.Entities[Wide(n)] = Wide(value, size);
                             });
    XML_SetAttlistDeclHandler(FParser, [](void* u, const char* element, const char* n, const char* type, auto...) {
      Self(u).Declarations.IsCDATA.try_emplace({Wide(element), Wide(n)}, std::string_view(type) == "CDATA");
    });
    XML_SetElementHandler(
        FParser, [](void* u, const char* n, const char** a) { Self(u).StartElement(n, a); },
        [](void* u, const char* n) { Self(u).EndElement(n); });
    XML_SetCharacterDataHandler(FParser, [](void* u, const char* t, int n) { Self(u).Events.AddText(Wide(t, n)); });
    XML_SetCommentHandler(FParser, [](void* u, const char* t) {
      if (!Self(u).FInDTD) Self(u).Events.Add("Comment", {Wide(t)});
    });
    XML_SetProcessingInstructionHandler(FParser, [](void* u, const char* t, const char* data) {
      if (!Self(u).FInDTD) Self(u).Events.Add("Instruction", {Wide(t), Wide(data, int(std::strcspn(data, "?")))});
    });
    // With it expat expands no entity in text, and brings the reference here.
    XML_SetDefaultHandler(FParser, [](void* u, const char* t, int n) {
      if (*t == '&' && !Self(u).FInDTD) Self(u).Events.AddText(Wide(t, n));
    });
  }

  std::size_t Place() const { return static_cast<std::size_t>(XML_GetCurrentByteIndex(FParser)); }

  void StartDTD() {
    FInDTD = true;
    FDTD = FSource.rfind("<!DOCTYPE", Place());
  }
  void EndDTD() {
    FInDTD = false;
    if (FSource[FDTD + 9] != ' ') return Events.Refuse(5);
    int depth = 0;
    for (std::size_t i = FDTD; i <= Place(); i++) {
      depth += (FSource[i] == '<') - (FSource[i] == '>');
      if ((depth == 0) != (i == Place())) UnbalancedDTD = true;
    }
  }

  void StartElement(const char* Name, const char** Attributes) {
    const int count = XML_GetSpecifiedAttributeCount(FParser);
    if (count == 0) CheckTag("/>", 7);
    Events.Add("StartElement", {Wide(Name)});
    for (int i = 0; i < count; i += 2) Events.Add("  Attribute", {Wide(Attributes[i]), Wide(Attributes[i + 1])});
  }
  void EndElement(const char* Name) {
    if (FSource.substr(Place(), 2) == "</") CheckTag(">", 2);
    Events.Add("EndElement", {Wide(Name)});
  }
  /// Only blanks may stand between the name of the tag and one of Closers.
  void CheckTag(std::string_view Closers, int Code) {
    const auto behind = FSource.find_first_not_of(' ', FSource.find_first_of(" \t\r\n/>", Place() + 2));
    if (Closers.find(FSource[behind]) == Closers.npos) Events.Refuse(Code);
  }

  const std::string_view FSource;
  XML_Parser FParser;
  std::size_t FDTD = 0;  // where it begins
  bool FInDTD = false;
};

zm::String NormalizedLines(zm::StringView Text) {
  zm::String result;
  for (std::size_t i = 0; i < Text.size(); i++) {
    if (Text[i] != u'\r')
      result += Text[i];
    else if (i + 1 == Text.size() || Text[i + 1] != u'\n')
      result += u'\n';
  }
  return result;
}

zm::String CharacterText(const std::string& Number) {
  const bool isHex = Number[0] == 'x';
  const auto c = std::stoul(Number.substr(isHex), nullptr, isHex ? 16 : 10);
  if (c < 0x10000) return {static_cast<char16_t>(c)};
  return {static_cast<char16_t>(0xD7C0 + (c >> 10)), static_cast<char16_t>(0xDC00 + (c & 0x3FF))};
}

/// A document as this reader reads it, decoded.
class TOwnSide : public zm::TZmSAXDefaultHandler {
 public:
  TEventLines Events;

  TOwnSide(const fs::path& File, const TDeclarations& Declarations) : FDeclarations(Declarations) {
    zm::TZmSAXXMLReader reader;
    reader.SetHandler(this);
    try {
      reader.ParseFile(File.u16string());
    } catch (const zm::EZmException& e) {
      Events.Refuse(e.GetCode());
    }
  }

  void StartElement(zm::StringView, zm::StringView, zm::StringView QName, zm::IZmSAXAttributes& Attributes) override {
    Events.Add("StartElement", {QName});
    for (auto a = Attributes.FirstAttribute(); a; a = a->Next)
      Events.Add("  Attribute", {a->QName, AttributeValue(QName, *a)});
  }
  void EndElement(zm::StringView, zm::StringView, zm::StringView QName) override { Events.Add("EndElement", {QName}); }
  void Characters(zm::StringView Text) override {
    const auto text = NormalizedLines(Text);
    Events.AddText(FInCDATA ? text : Decoded(text, false));
  }
  void IgnorableWhitespace(zm::StringView Text) override { Characters(Text); }
  void StartCDATA() override { FInCDATA = true; }
  void EndCDATA() override { FInCDATA = false; }
  void Comment(zm::StringView Text) override { Events.Add("Comment", {NormalizedLines(Text)}); }
  void ProcessingInstruction(zm::StringView Target, zm::StringView Data) override {
    if (Target == u"xml") return Events.Add("Declaration", {});
    const auto data = NormalizedLines(Data);
    Events.Add("Instruction", {Target, data.substr(std::min(data.find_first_not_of(u"\t\n "), data.size()))});
  }

 private:
  zm::String Decoded(zm::StringView Text, bool InAttribute) const {
    static const std::map<zm::StringView, char16_t> predefined = {
        {u"lt", u'<'}, {u"gt", u'>'}, {u"amp", u'&'}, {u"apos", u'\''}, {u"quot", u'"'}};
    zm::String result;
    for (std::size_t i = 0; i < Text.size(); i++) {
      if (Text[i] != u'&') {
        result += InAttribute && Text[i] < u' ' ? u' ' : Text[i];
        continue;
      }
      const auto end = std::min(Text.find(u';', i), Text.size());
      const zm::String name(Text.substr(i + 1, end - i - 1));
      const auto known = predefined.find(name);
      const auto declared = FDeclarations.Entities.find(name);
      if (known != predefined.end())
        result += known->second;
      else if (name[0] == u'#')
        result += CharacterText(zm::ToUTF8(name).substr(1));
      else if (!InAttribute)
        result += u'&' + name + u';';
      else if (declared != FDeclarations.Entities.end())
        result += Decoded(NormalizedLines(declared->second), true);
      i = end;
    }
    return result;
  }

  zm::String AttributeValue(zm::StringView Element, const zm::TZmSAXXMAttribute& Attribute) const {
    const auto value = Decoded(NormalizedLines(Attribute.Value), true);
    const auto declared = FDeclarations.IsCDATA.find({zm::String(Element), zm::String(Attribute.QName)});
    if (declared == FDeclarations.IsCDATA.end() || declared->second) return value;
    zm::String collapsed;
    for (const char16_t c : value)
      if (c != u' ' || (!collapsed.empty() && collapsed.back() != u' ')) collapsed += c;
    if (!collapsed.empty() && collapsed.back() == u' ') collapsed.pop_back();
    return collapsed;
  }

  const TDeclarations& FDeclarations;
  bool FInCDATA = false;
};

/// UTF-8 from an encoding that expat does not know, or that has no ASCII in it.
std::string Converted(std::string Bytes, const std::string& Encoding) {
  std::string text(Bytes.size() * 4, '\0');
  const auto converter = iconv_open("UTF-8", Encoding.c_str());
  char *in = Bytes.data(), *out = text.data();
  std::size_t inLeft = Bytes.size(), outLeft = text.size();
  const bool done = converter != iconv_t(-1) && iconv(converter, &in, &inLeft, &out, &outLeft) != std::size_t(-1);
  if (converter != iconv_t(-1)) iconv_close(converter);
  text.resize(text.size() - outLeft);
  EXPECT_TRUE(done) << Encoding;
  return text;
}

std::set<fs::path> WellFormedDocuments(const fs::path& Folder) {
  std::set<fs::path> files;
  for (const auto& entry : fs::directory_iterator(Folder / "docs")) files.insert(entry.path());
  std::ifstream index(Folder / "xmlconf-index.tsv");
  for (std::string line; std::getline(index, line);) {
    std::istringstream fields(line);
    std::string path, type;
    fields >> path >> type;
    if (type == "valid" || type == "invalid") files.insert(Folder / "xmlconf" / path);
  }
  return files;
}

/// Where the two first differ, of both.
std::string Difference(const std::string& Left, const std::string& Right) {
  const auto place = std::mismatch(Left.begin(), Left.end(), Right.begin(), Right.end()).first - Left.begin();
  const auto begin = static_cast<std::size_t>(std::max<std::ptrdiff_t>(place - 100, 0));
  return Left.substr(begin, 300) + "\nand\n" + Right.substr(begin, 300);
}

TEST(Expat, TellsTheSameOfWellFormedDocuments) {
  const auto folder = DataFolder();
  if (folder.empty()) return;

  std::map<std::string, int> counts;
  for (const auto& file : WellFormedDocuments(folder / "xml")) {
    auto source = BytesOf(file);
    auto expat = std::make_unique<TExpatSide>(source, nullptr);
    const bool isUTF16 = source.compare(0, 2, "\xFF\xFE") == 0 || source.compare(0, 2, "\xFE\xFF") == 0;
    if (const auto encoding = isUTF16 ? "UTF-16" : expat->UnknownEncoding; !encoding.empty()) {
      source = Converted(source, encoding);
      expat = std::make_unique<TExpatSide>(source, "UTF-8");
    }
    const TOwnSide own(file, expat->Declarations);

    const auto& expected = expat->Events.Lines();
    auto lines = own.Events.Lines();
    std::string outcome = own.Events.Refused() ? "refused by rule" : "equal";
    if (expat->UnbalancedDTD) {
      outcome = "left out (brackets of a DTD)";
      lines = expected;
    } else if (expat->Failed) {
      outcome = "equal as far as expat reads";
      lines.resize(std::min(lines.size(), expected.size()));
    }
    counts[outcome]++;
    EXPECT_TRUE(lines == expected) << file << '\n' << Difference(expected, lines);
  }
  for (const auto& [outcome, count] : counts) std::cout << outcome << ": " << count << "; ";
  std::cout << '\n';
  EXPECT_EQ(counts, (std::map<std::string, int>{{"equal", 361},
                                                {"refused by rule", 2},
                                                {"equal as far as expat reads", 167},
                                                {"left out (brackets of a DTD)", 5}}));
}

}  // namespace

#else

TEST(Expat, TellsTheSameOfWellFormedDocuments) { std::cout << "left out: built without expat\n"; }

#endif
