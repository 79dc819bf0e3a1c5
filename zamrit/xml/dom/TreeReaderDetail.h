#pragma once

#include "zamrit/xml/dom/BuilderDetail.h"
#include "zamrit/xml/sax/XMLReader.h"

namespace zm::detail {

/// The XML reader that builds a tree from the raw text, without events. Handlers are told of errors alone.
class TTreeReader : public TZmSAXXMLReader {
  ZM_OBJECT(TTreeReader, TZmSAXXMLReader)
 public:
  explicit TTreeReader(TTreeBuilder& Builder) : FBuilder(Builder) {}

  /// What the text was read in.
  std::uint16_t CodePage() const { return FPage; }

 protected:
  void InternalParse() override;

 private:
  template <TStorage S>
  void Build(TZmXMLParser& Parser);

  TTreeBuilder& FBuilder;
  std::uint16_t FPage = 0;
};

}  // namespace zm::detail
