#include "Readers.h"

namespace zmtool {
namespace {

void FormatXML(TInput& Input, const TRequest& Request, TOutput& Out) {
  zm::TZmDOMDocument document;
  LoadXML(Input, Request.CodePage, document);
  if (document.FindProcessingInstruction("xml")) document.SetEncoding("UTF-8");  // else that is understood
  document.SaveToStream(&Out, zm::cZmPageUTF8, !Request.Compact, Request.Mark);
}

void FormatJSON(TInput& Input, const TRequest& Request, TOutput& Out) {
  zm::TZmJSONDocument document;
  LoadJSON(Input, Request.CodePage, document);
  document.SaveToStream(&Out, !Request.Compact, zm::cZmPageUTF8, Request.Mark);
}

}  // namespace

int PrintFormatted(const TRequest& Request, TOutput& Out) {
  TInput input(Request.File);
  (input.FindKind() == tkXML ? FormatXML : FormatJSON)(input, Request, Out);
  return ecDone;
}

}  // namespace zmtool
