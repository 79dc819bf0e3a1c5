#include "Readers.h"

namespace zmtool {
namespace {

// The document is read by now: what fails here is the path.
zm::TZmOwner<zm::TZmJSONArray> Select(zm::TZmJSONDocument& Document, const std::string& Path) {
  try {
    return Document.CreateNodeList(Path);
  } catch (const zm::Exception& e) {
    throw EUsage(e.GetMessage());
  }
}

}  // namespace

int PrintSelected(const TRequest& Request, TOutput& Out) {
  if (Request.Kind != tkJSON) throw EUsage(u"nothing can be selected from XML yet; --json selects from JSON");
  TInput input(Request.File);
  zm::TZmJSONDocument document;
  LoadJSON(input, Request.CodePage, document);
  const auto hits = Select(document, Request.Path);
  if (Request.CountOnly) {
    Out.Put(std::to_string(hits->Count()) + '\n');
  } else {
    const std::string_view end(Request.ZeroEnded ? "\0" : "\n", 1);
    for (zm::TZmJSONBase* hit : *hits) {
      Out.Put(zm::StringView(hit->GetAsJSON()));
      Out.Put(end);
    }
  }
  return hits->Count() > 0 ? ecDone : ecNothing;
}

}  // namespace zmtool
