#include "Events.h"

namespace zmtool {

int PrintEvents(const TRequest& Request, TOutput& Out) {
  TInput input(Request.File);
  const TTextKind kind = Request.Kind == tkUnknown ? input.FindKind() : Request.Kind;
  if (kind == tkXML)
    PrintXMLEvents(input, Request.CodePage, Out);
  else
    PrintJSONEvents(input, kind, Request.CodePage, Out);
  return ecDone;
}

}  // namespace zmtool
