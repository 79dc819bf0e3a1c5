#include <gtest/gtest.h>

#include "tests/conformance/DataFolder.h"
#ifdef ZM_EXPAT

#include <expat.h>
#include <iconv.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <utility>

#include "tests/support/EventRecorder.h"

// The well-formed documents of the conformance suite and the larger ones, read by this reader and by expat: elements,
// attributes, text, comments and instructions in order must be equal. This reader decodes nothing, so its side is
// decoded here; general entities in text stay as they stand on both sides.

namespace {

namespace fs = std::filesystem;

/// Events as lines. Adjacent runs of text are joined.
class TEventLines {
 public:
  void Add(const char* Name, std::initializer_list<zm::StringView> Texts) {
    if (!FRun.empty()) FLines += EventText("Text", {FRun}) + '\n';
    FRun.clear();
    FLines += EventText(Name, Texts) + '\n';
  }
  void AddText(zm::StringView Text) { FRun += Text; }
  void Refuse(int Code) { Add(("Refused " + std::to_string(Code)).c_str(), {}); }
  const std::string& Lines() const { return FLines; }

 private:
  std::string FLines;
  zm::String FRun;
};

/// What the DTD of a document says; what stands first holds.
struct TDeclarations {
  std::map<zm::String, zm::String> Entities;                          // general and internal ones
  std::map<std::pair<zm::String, zm::String>, bool> IsTokenized;  // by element and attribute
};

/// The rules by which this reader refuses what is well-formed, or reads it otherwise:
/// - "<!DOCTYPE" must be followed by a blank; else code 5.
/// - A start tag without attributes whose name is followed by white space other than blanks is refused with code 7, an
///   end tag likewise with code 2: only a blank ends a name, and attributes and ">" may follow.
/// - The first character of a local part must begin a name; a colon there is code 3.
/// - The data of an instruction ends at the first "?".
/// - The target of an instruction ends at the first blank or "?", not at other white space. [left out]
/// - A DTD ends where its angle brackets balance, also those in its literals and comments. [left out]
class TExpatSide {
 public:
  TEventLines Events;
  TDeclarations Declarations;
  std::string LeftOut;  // why the two sides cannot be compared

  explicit TExpatSide(const std::string& Source) {
    if (Parse(Source, nullptr)) return;
    if (FUnknownEncoding.empty()) return;
    Events = {};
    Declarations = {};
    LeftOut.clear();
    const std::string encoding = std::exchange(FUnknownEncoding, {});
    std::string text;
    if (ToUTF8(encoding, Source, text)) Parse(text, "UTF-8");
  }

 private:
  using TParser = std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)>;

  static bool ToUTF8(const std::string& Encoding, std::string Source, std::string& Text) {
    const iconv_t converter = iconv_open("UTF-8", Encoding.c_str());
    if (converter == iconv_t(-1)) return false;
    Text.resize(Source.size() * 4);
    char *in = Source.data(), *out = Text.data();
    std::size_t inLeft = Source.size(), outLeft = Text.size();
    const bool done = iconv(converter, &in, &inLeft, &out, &outLeft) != std::size_t(-1);
    iconv_close(converter);
    Text.resize(Text.size() - outLeft);
    return done;
  }
