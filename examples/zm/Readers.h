#pragma once

#include "Input.h"
#include "zamrit/zamrit.h"

namespace zmtool {

/// Reads an XML text into a handler.
void ReadXML(TInput& Input, std::uint16_t CodePage, zm::TZmSAXDefaultHandler& Handler);
/// Reads a JSON text into a handler of XML events.
void ReadJSONAsXML(TInput& Input, std::uint16_t CodePage, zm::TZmSAXDefaultHandler& Handler);
/// Reads a JSON text or, where Kind says so, a form post into a handler.
void ReadJSON(TInput& Input, TTextKind Kind, std::uint16_t CodePage, zm::TZmJSONDefaultHandler& Handler);
/// Reads an XML text into a document.
void LoadXML(TInput& Input, std::uint16_t CodePage, zm::TZmDOMDocument& Document);
/// Reads a JSON text into a document.
void LoadJSON(TInput& Input, std::uint16_t CodePage, zm::TZmJSONDocument& Document);

}  // namespace zmtool
