#include "Readers.h"

namespace zmtool {
namespace {

void Put(zm::TZmDOMNode* Hit, TOutput& Out) {
  if (Hit->GetNodeType() == zm::ntElement || Hit->GetNodeType() == zm::ntDocument)
    Hit->SaveToStream(&Out, zm::cZmPageUTF8, false);
  else
    Out.Put(zm::StringView(Hit->GetNodeValue()));
}

void Put(zm::TZmJSONBase* Hit, TOutput& Out) { Out.Put(zm::StringView(Hit->GetAsJSON())); }

// The document is read by now: what fails here is the path.
template <class T, class... Options>
int PrintHits(const TRequest& Request, TOutput& Out, T& Document, Options... How) {
  decltype(Document.CreateNodeList(Request.Path, How...)) hits;
  try {
    hits = Document.CreateNodeList(Request.Path, How...);
  } catch (const zm::Exception& e) {
    throw EUsage(e.GetMessage());
  }
  if (Request.CountOnly) {
    Out.Put(std::to_string(hits->Count()) + '\n');
  } else {
    const std::string_view end(Request.ZeroEnded ? "\0" : "\n", 1);
    for (auto* hit : *hits) {
      Put(hit, Out);
      Out.Put(end);
    }
  }
  return hits->Count() > 0 ? ecDone : ecNothing;
}

}  // namespace

int PrintSelected(const TRequest& Request, TOutput& Out) {
  TInput input(Request.File);
  if (Request.Kind == tkJSON) {
    if (Request.LocalNames || Request.CaseSensitive) throw EUsage(u"--local-names and --case-sensitive are for XML");
    zm::TZmJSONDocument document;
    LoadJSON(input, Request.CodePage, document);
    return PrintHits(Request, Out, document);
  }
  if (input.FindKind() != tkXML) throw EUsage(u"the text is no XML; --json selects from JSON");
  zm::TZmDOMSelectOptions options;
  if (Request.LocalNames) options.Include(zm::soLocalName);
  if (Request.CaseSensitive) options.Include(zm::soCaseSensitive);
  zm::TZmDOMDocument document;
  LoadXML(input, Request.CodePage, document);
  return PrintHits(Request, Out, document, options);
}

}  // namespace zmtool
