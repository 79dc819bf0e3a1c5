#include "Readers.h"

namespace zmtool {

int PrintFormatted(const TRequest& Request, TOutput& Out) {
  TInput input(Request.File);
  if (input.FindKind() == tkXML) throw EUsage(u"XML cannot be formatted yet, only JSON");
  zm::TZmJSONDocument document;
  LoadJSON(input, Request.CodePage, document);
  document.SaveToStream(&Out, !Request.Compact, zm::cZmPageUTF8, Request.Mark);
  return ecDone;
}

}  // namespace zmtool
