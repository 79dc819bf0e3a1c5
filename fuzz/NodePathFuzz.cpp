// Node paths over any path and document: they select or raise, one node is the first of all, and none comes twice.

#include <cstdint>
#include <string_view>
#include <unordered_set>

#include "fuzz/Check.h"
#include "zamrit/xml/uZmXMLDOM.h"

using namespace zm;

namespace {

// Selects from a node in both ways. Behind a "/" of its own, which adds its node whatever is there, a node may come
// again.
void Select(TZmDOMNode* From, std::string_view Path, TZmDOMSelectOptions Options) {
  TZmOwner<TZmDOMNodeList> list;
  TZmDOMNode* first = nullptr;
  const bool found = Try([&] { list = From->CreateNodeList(Path, Options); });
  const bool alternatives = Path.find('|') != std::string_view::npos;
  const bool single = Try([&] { first = From->SelectSingleNode(Path, Options); });
  Require(single == found || (single && alternatives));  // a later alternative may be refused, or lead nowhere
  if (!found) return;
  Require(list->Count() == 0 ? first == nullptr : list->GetItem(0) == first);
  if (alternatives) return;
  std::unordered_set<TZmDOMNode*> seen;
  for (TZmDOMNode* const node : *list) Require(node != nullptr && seen.insert(node).second);
}

}  // namespace

// The first byte chooses the options, the path ends at the first line break.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  if (Size < 1) return 0;
  TZmDOMSelectOptions options;
  if (Data[0] & 1) options.Include(soRaise);
  if (Data[0] & 2) options.Include(soCaseSensitive);
  if (Data[0] & 4) options.Include(soCaseInsensitive);
  if (Data[0] & 8) options.Include(soLocalName);
  if (Data[0] & 16) options.Include(soQualifiedName);
  const std::string_view text(reinterpret_cast<const char*>(Data) + 1, Size - 1);
  const std::string_view path = text.substr(0, text.find('\n'));
  TZmDOMDocument document;
  Try([&] { document.LoadFromXML(text.substr(std::min(text.size(), path.size() + 1))); });

  Select(&document, path, options);
  if (TZmDOMElement* const root = document.GetRootNode()) {
    Select(root, path, options);
    if (root->FirstChild()) Select(root->FirstChild(), path, options);
    Try([&] { root->CreateElementList(path, options); });
    Try([&] { root->Elements().GetItemEx(Variant(FromUTF8(path)), coReturnNil); });
  }
  if (Data[0] & 32) {
    options.Include(soCreate);
    Try([&] { document.CreateNodeList(path, options); });
    if (document.GetRootNode()) Try([&] { document.GetRootNode()->SelectSingleNode(path, options); });
  }
  return 0;
}
