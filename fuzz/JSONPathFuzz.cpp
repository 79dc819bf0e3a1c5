// JSON paths over any path and document: they select or raise, one node is the first of all, and what is found is found
// again.

#include <cstdint>
#include <string_view>
#include <vector>

#include "fuzz/Check.h"
#include "zamrit/xml/uZmJSON.h"

using namespace zm;

// The first byte chooses the options, the path ends at the first line break.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  if (Size < 1) return 0;
  TZmJDOCSelectOptions options;
  if (Data[0] & 1) options.Include(jsoRaise);
  if (Data[0] & 2) options.Include(jsoCreate);
  if (Data[0] & 4) options.Include(jsoCaseInsensitive);
  const std::string_view text(reinterpret_cast<const char*>(Data) + 1, Size - 1);
  const std::string_view path = text.substr(0, text.find('\n'));
  TZmJSONDocument document;
  Try([&] { document.SetAsJSON(FromUTF8(text.substr(std::min(text.size(), path.size() + 1)))); });

  Try([&] { document.CreateNodeList(path, options)->GetAsJSON(); });
  if (document.GetRootValue() && document.GetRootValue()->GetJSONType() == jdtArray)
    Try([&] { document.GetRootValue()->GetAsArray()->Item(0)->CreateNodeList(path, options); });
  options.Exclude(jsoCreate);  // which may find more the second time
  TZmOwner<TZmJSONArray> list;
  TZmJSONBase* first = nullptr;
  const bool all = Try([&] { list = document.CreateNodeList(path, options); });
  Require(Try([&] { first = document.SelectSingleNode(path, options); }) == all);
  if (!all) return 0;
  Require(list->Count() == 0 ? first == nullptr : list->Item(0) == first);
  Require(document.CreateNodeList(path, options)->GetAsJSON() == list->GetAsJSON());
  Try([&] { list->CreateNodeList("@" + std::string(path.substr(std::min<std::size_t>(1, path.size()))), options); });
  document.SetAsJSON(u"");
  list->GetAsJSON();
  return 0;
}
