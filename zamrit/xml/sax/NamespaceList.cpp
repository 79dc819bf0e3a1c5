#include "zamrit/xml/sax/NamespaceList.h"

#include <algorithm>

#include "zamrit/xml/sax/XMLReader.h"

namespace zm {

void TZmSAXNamespaceList::AddURI(int Level, StringView Prefix, StringView URI) {
  auto entry = std::make_unique<TEntry>(TEntry{{Level, String(Prefix), String(URI)}, ++FGeneration, nullptr});
  TEntry* const added = entry.get();
  TEntry*& innermost = FInnermost[FoldCase(Prefix)];
  FLevels[Level].push_back(std::move(entry));  // the last step that can fail: what follows ties the entry in
  added->Outer = innermost;
  if (innermost) innermost->Inner = added;
  innermost = added;
  FDeepest = std::max(FDeepest, Level);
  if (auto* handler = FOwner ? FOwner->GetContentHandler() : nullptr) handler->StartPrefixMapping(Prefix, URI);
}

PZmSAXNamespace TZmSAXNamespaceList::GetNamespace(StringView Prefix) {
  if (FInnermost.empty()) return nullptr;
  const auto found = FInnermost.find(FoldCase(Prefix));
  return found == FInnermost.end() ? nullptr : found->second;
}

StringView TZmSAXNamespaceList::GetURI(StringView Prefix) {
  const TZmSAXNamespace* entry = GetNamespace(Prefix);
  return entry ? StringView(entry->URI) : StringView();
}

void TZmSAXNamespaceList::RemoveLevels(int Level) {
  // As a rule they are all of one level. After a parse that failed there may be more, in any order.
  std::vector<TEntry*> doomed;
  for (auto level = FLevels.lower_bound(Level); level != FLevels.end(); ++level)
    for (const auto& entry : level->second) doomed.push_back(entry.get());
  std::sort(doomed.begin(), doomed.end(), [](const TEntry* a, const TEntry* b) { return a->Sequence > b->Sequence; });
  for (TEntry* entry : doomed) {
    if (auto* handler = FOwner ? FOwner->GetContentHandler() : nullptr) handler->EndPrefixMapping(entry->Prefix);
    Remove(entry);
  }
}

// Removes the last declaration of its level.
void TZmSAXNamespaceList::Remove(TEntry* Entry) {
  ++FGeneration;
  if (Entry->Outer) Entry->Outer->Inner = Entry->Inner;
  if (Entry->Inner) {
    Entry->Inner->Outer = Entry->Outer;
  } else {
    const auto innermost = FInnermost.find(FoldCase(Entry->Prefix));
    if (Entry->Outer)
      innermost->second = Entry->Outer;
    else
      FInnermost.erase(innermost);
  }
  const auto level = FLevels.find(Entry->Level);
  level->second.pop_back();
  if (level->second.empty()) FLevels.erase(level);
  FDeepest = FLevels.empty() ? INT_MIN : FLevels.rbegin()->first;
}

void TZmSAXNamespaceList::Clear() {
  ++FGeneration;
  FInnermost.clear();
  FLevels.clear();
  FDeepest = INT_MIN;
}

}  // namespace zm
