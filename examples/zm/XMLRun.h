#pragma once

#include "Commands.h"
#include "Input.h"
#include "zamrit/zamrit.h"

namespace zmtool {

/// Reads an XML text into a handler.
inline void ReadXML(TInput& Input, std::uint16_t CodePage, zm::TZmSAXDefaultHandler& Handler) {
  const std::uint16_t marked = zm::ZmGetCodePage(&Input);
  const auto reader = zm::Create<zm::TZmSAXXMLReader>();
  reader->SetHandler(&Handler);
  reader->ParseStream(&Input, CodePage ? CodePage : marked);
}

}  // namespace zmtool
