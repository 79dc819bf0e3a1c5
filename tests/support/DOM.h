#pragma once

#include <string>
#include <string_view>

#include "zamrit/common/TextStreams.h"
#include "zamrit/xml/uZmXMLDOM.h"

/// A document with what the text holds.
inline zm::TZmOwner<zm::TZmDOMDocument> Loaded(std::string_view Text) {
  auto document = zm::Create<zm::TZmDOMDocument>();
  document->LoadFromXML(Text);
  return document;
}

/// What a node writes, in UTF-8.
inline std::string Saved(zm::TZmDOMNode& Node) {
  const auto stream = zm::Create<zm::TZmStringStream>(std::uint16_t{65001});
  Node.SaveToStream(stream.get(), 65001, false);
  return stream->GetDataString();
}
