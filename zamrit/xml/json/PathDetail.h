#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "zamrit/platform/TextDetail.h"
#include "zamrit/xml/json/ModelInterfaces.h"
#include "zamrit/xml/json/PathFilterDetail.h"
#include "zamrit/xml/json/TreeDetail.h"

namespace zm::detail {

/// What a path leads to.
struct TJSONSelection {
  std::vector<TJSONNode*> Nodes;  ///< in order; a node found twice stands twice
  TJSONTree* Tree;                ///< theirs, or nil where there may be several
};
TJSONSelection SelectJSON(TZmJSONBase& Start, StringView Path, TZmJDOCSelectOptions Options);

[[noreturn]] void RaiseTooComplex();

/// The character of a text, both halves of a pair; empty at the end and for NUL.
inline StringView CharAt(StringView Text, std::size_t At) {
  if (At >= Text.size() || Text[At] == u'\0') return {};
  const bool pair = IsHighSurrogate(Text[At]) && At + 1 < Text.size() && IsLowSurrogate(Text[At + 1]);
  return Text.substr(At, pair ? 2 : 1);
}

/// One item between the commas of a step.
struct TPathItem {
  enum TKind { pkFilter, pkIndexExpression, pkSlice, pkIndex, pkName };

  StringView Text;
  TKind Kind;
  // What is made of the text when the item is first used.
  std::optional<TJSONName> Name;
  String NameText;
  bool All = false;
  std::unique_ptr<TPathFilter> Filter;
};

struct TPathStep {
  bool Recursive = false;
  bool BehindDescent = false;  // a step before it is recursive
  bool Repeats = false;        // can come to the same node again
  std::vector<TPathItem> Items;
  std::size_t End = 0;  // where the rest of the path begins
};

/// The children of a container, one after the other, as its class gives them.
struct TChildCursor {
  TJSONNode* Node;
  TJSONNode* Child = nullptr;
  int Index = 0;
  bool InChain;

  explicit TChildCursor(TJSONNode* Container);
};

/// One alternative of a path, without its first character. Its steps are cut when the selection comes to them.
class TPathAlternative {
 public:
  explicit TPathAlternative(StringView Text) : FText(Text) {}

  bool IsEnd(std::size_t Step) const { return StartOf(Step) >= FText.size(); }
  /// The step of an index; those before it have been asked for.
  TPathStep& Step(std::size_t Index);

 private:
  std::size_t StartOf(std::size_t Step) const { return Step == 0 ? 0 : FSteps[Step - 1].End; }

  StringView FText;
  std::deque<TPathStep> FSteps;
};

/// A path that can be followed from one node after the other.
class TJSONPath {
 public:
  /// Depth counts the filters that the path stands in. In a filter it is asked for the first node alone, and remembers
  /// what it has been led to: a tree that changes needs a new one.
  TJSONPath(StringView Text, TZmJDOCSelectOptions Options, int Depth, TJSONMemory Memory);
  ~TJSONPath();

  /// What the path leads to from a node, a member's value where AsMember says so; in a filter the first node and
  /// perhaps others. Valid until the next call. Root is that of the node, or nil to look for it.
  std::span<TJSONNode* const> Follow(TJSONTree& Tree, TJSONNode* Start, bool AsMember, TJSONRoot* Root);
  /// Whether it has come to a node of another tree.
  bool LeavesTree() const { return FLeavesTree; }
  /// Whether it is the same from each node that has the same root.
  bool IsOfRoot() const;

 private:
  struct TTask;
  struct TOutcome {
    std::size_t Made;        // nodes, when a step came to a node
    std::size_t Begin, End;  // in what is found, of what the path from that step on has led to
  };
  using TStepAtNode = std::pair<const TPathStep*, const TJSONNode*>;
  struct THash {
    std::size_t operator()(const TStepAtNode& Key) const {
      return std::hash<const TJSONNode*>()(Key.second) * 31 + std::hash<const TPathStep*>()(Key.first);
    }
  };

  void Run(TPathAlternative& Path, TJSONNode* Start);
  void Take(TPathAlternative& Path, std::size_t Index, TJSONNode* Node);
  bool FindAgain(const TPathStep& Step, TJSONNode* Node);
  void Forget();
  void Use(TPathItem& Item, TJSONNode* Node);
  void UseFilter(TPathItem& Item, TJSONNode* Node);
  void UseSlice(StringView Text, TJSONNode* Node);
  void UseIndex(std::int64_t Index, TJSONNode* Node);
  void UseName(TPathItem& Item, TJSONNode* Node);
  void CreateMember(TPathItem& Item, TJSONNode* Node);
  std::int64_t IndexOf(StringView Expression, TJSONNode* Node);
  TJSONNode* NextChild(TChildCursor& Children);
  void Note(TZmJSONBase& Object, TJSONNode* Container);
  TJSONTree& TreeOf(TJSONNode* Node);

  struct TPart {
    String Text;
    std::optional<TPathAlternative> Path;
  };

  std::deque<TPart> FParts;
  TZmJDOCSelectOptions FOptions;
  int FDepth;
  TJSONMemory FMemory;
  TJSONTree* FTree = nullptr;
  bool FLeavesTree = false;
  bool FLeavesOwner = false;  // has come to a node that does not stand under the one it was found in
  TJSONRoot* FRoot = nullptr;
  std::vector<TJSONNode*> FFound;
  std::vector<TJSONNode*> FList;
  std::vector<TJSONNode*> FFresh;
  std::size_t FMade = 0;  // where each node made may lead to several
  std::vector<TTask> FTasks;
  std::unordered_map<TStepAtNode, TOutcome, THash> FKnown;  // where steps come to a node again
};

}  // namespace zm::detail
