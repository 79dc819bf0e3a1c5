#pragma once

#include "Input.h"
#include "JSONLines.h"

namespace zmtool {

void PrintXMLEvents(TInput& Input, std::uint16_t CodePage, TOutput& Out);
/// Kind is tkJSON or tkForm.
void PrintJSONEvents(TInput& Input, TTextKind Kind, std::uint16_t CodePage, TOutput& Out);

}  // namespace zmtool
