#pragma once

#include <memory>

#include "zamrit/xml/json/JSONTextParser.h"
#include "zamrit/xml/sax/SAXReader.h"

namespace zm {

namespace detail {
struct TSAXJSONScratch;
}

/// The text cursor of TZmSAXJSONReader.
class TZmJSONTextParserEx : public TZmJSONTextParser {
  ZM_OBJECT(TZmJSONTextParserEx, TZmJSONTextParser)
 public:
  using TZmJSONTextParser::TZmJSONTextParser;
};

/// Reads JSON text and pushes it into the handlers of XML events, so that what takes XML can hold JSON. It scans as
/// TZmJSONReader does, but takes any text in front of the first brace or bracket and white space behind values, and no
/// simple value at the top level.
///
/// The root element is "object" or "array", after the first value; all top-level values stand in it. A member is an
/// element of its name, in which each character that an XML name cannot have is "_"; an array is an element whose name
/// ends in "Array" (in "Arr" as the local name at the start of a member's array), with its elements under the member's
/// own name. A simple value is an element with its raw text and its type: xsd:type "string", "decimal" or "boolean", or
/// xsi:nil "true". Texts keep their escapes.
///
/// ParseFile does not look for a byte order mark: files that may have one are given to ParseStream with the page that
/// ZmGetCodePage answers.
///
/// Errors are those of the JSON readers, EZmJSONParseError and EZmJSONException, code 18 for a second parse; a missing
/// handler is not told to the error handler. Time is linear; memory is that of the largest name or value and of the
/// names of the open members. Nesting takes no stack.
class TZmSAXJSONReader : public TZmSAXReader {
  ZM_OBJECT(TZmSAXJSONReader, TZmSAXReader)
 public:
  TZmSAXJSONReader();
  ~TZmSAXJSONReader() override;

 protected:
  TZmOwner<TZmTextParser> CreateParser(TStream* Stream, bool OwnsStream, bool DetectCodePage,
                                       std::uint16_t CodePage) override;
  void InternalParse() override;
  [[noreturn]] void RaiseAlreadyParsing() const override;

  TZmJSONTextParserEx* FParser = nullptr;  // the base's parser under its own type

 private:
  void ParseDocument(TZmSAXXMAttributes& Attributes);

  std::unique_ptr<detail::TSAXJSONScratch> FScratch;  // buffers that serve parse after parse
};

}  // namespace zm
