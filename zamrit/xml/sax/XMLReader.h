#pragma once

#include <memory>

#include "zamrit/xml/sax/NamespaceList.h"
#include "zamrit/xml/sax/SAXReader.h"
#include "zamrit/xml/sax/XMLParser.h"

namespace zm {

namespace detail {
struct TXMLScratch;
}

/// Reads XML text and pushes it as events into the handlers. It is lenient by design: it cuts the text by its
/// delimiters, does not validate, decodes no reference, reads no DTD and does not compare end tags with start tags. A
/// content and an error handler must be set; the lexical handler only for text with CDATA sections or a DOCTYPE. Every
/// error is an EZmXMLParseError, or an EZmTextParserEOF where text is cut off by the end of the input.
///
/// Time is linear in the input, whatever it holds; memory is that of the largest token, as stored and as UTF-16, and
/// under 1 MB of buffers, beside what the attributes of an element and the namespace declarations in force take.
/// Nesting takes no stack.
class TZmSAXXMLReader : public TZmSAXReader {
  ZM_OBJECT(TZmSAXXMLReader, TZmSAXReader)
 public:
  TZmSAXXMLReader();
  ~TZmSAXXMLReader() override;

  /// Whether a document has one root and nothing but white space, comments, instructions and CDATA sections behind it,
  /// and text cut off by the end of the input is refused: true at first. When false, text and further elements are
  /// taken at the top level and the cut-off text is delivered. A change counts from the next parse on.
  bool GetCheckSingleRootElement() const { return FCheckSingleRootElm; }
  void SetCheckSingleRootElement(bool Value) { FCheckSingleRootElm = Value; }

 protected:
  TZmOwner<TZmTextParser> CreateParser(TStream* Stream, bool OwnsStream, bool DetectCodePage,
                                       std::uint16_t CodePage) override;
  void InternalParse() override;

  bool FCheckSingleRootElm = true;
  TZmOwner<TZmSAXNamespaceList> FNamespaceList;
  TZmXMLParser* FParser = nullptr;                // the base's parser under its own type
  std::unique_ptr<detail::TXMLScratch> FScratch;  // buffers that serve parse after parse

 private:
  template <detail::TStorage S>
  void ParseDocument(TZmXMLParser& Parser);
};

}  // namespace zm
