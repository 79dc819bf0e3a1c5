#pragma once

#include <climits>
#include <cstdint>
#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

#include "zamrit/platform/Objects.h"

namespace zm {

class TZmSAXXMLReader;

/// One declaration in force.
struct TZmSAXNamespace {
  std::int32_t Level;  ///< the element depth of the declaration
  String Prefix;       ///< empty for the default namespace
  String URI;
};
using PZmSAXNamespace = TZmSAXNamespace*;

/// The namespace declarations in force, in order of declaration. Prefixes that differ only in case are the same. The
/// prefix xml has no binding of its own. A look-up costs the same however many declarations there are.
class TZmSAXNamespaceList : public TObject {
  ZM_OBJECT(TZmSAXNamespaceList, TObject)
 public:
  /// Owner, which may be nil, is not owned; its content handler is told of the mappings.
  explicit TZmSAXNamespaceList(TZmSAXXMLReader* Owner) : FOwner(Owner) {}

  /// Adds a declaration, then calls StartPrefixMapping.
  void AddURI(int Level, StringView Prefix, StringView URI);
  /// The latest declaration of a prefix, or nil. Valid until it is removed.
  PZmSAXNamespace GetNamespace(StringView Prefix);
  /// The URI of that declaration, or an empty text. Valid until it is removed.
  StringView GetURI(StringView Prefix);
  /// Removes all declarations at Level or deeper, last one first; calls EndPrefixMapping before each goes.
  void RemoveLevel(int Level) {
    if (FDeepest >= Level) RemoveLevels(Level);
  }
  /// Removes all declarations and tells nobody.
  void Clear();

  /// Changes whenever a declaration comes or goes: an answer of GetURI holds as long as this stays the same.
  std::uint64_t Generation() const { return FGeneration; }

 private:
  struct TEntry : TZmSAXNamespace {
    std::uint64_t Sequence;
    TEntry* Outer;            // the declaration of the same prefix before this one
    TEntry* Inner = nullptr;  // and the one after it
  };
  using TInnermost = std::unordered_map<String, TEntry*>;

  void RemoveLevels(int Level);
  void Remove(TEntry* Entry);

  TZmSAXXMLReader* FOwner;
  TInnermost FInnermost;                                        // by folded prefix
  std::map<int, std::vector<std::unique_ptr<TEntry>>> FLevels;  // in each, in order of declaration
  int FDeepest = INT_MIN;
  std::uint64_t FGeneration = 1;
};

}  // namespace zm
