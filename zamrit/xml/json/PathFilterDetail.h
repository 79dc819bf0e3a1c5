#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "zamrit/platform/Strings.h"
#include "zamrit/platform/Variant.h"

namespace zm::detail {

class TJSONPath;
class TJSONTree;
struct TJSONNode;

/// How much the paths of a selection remember, those in its filters among them.
using TJSONMemory = std::shared_ptr<std::size_t>;

/// The root that the nodes of a selection stand under, looked up when it is asked for first.
struct TJSONRoot {
  bool IsKnown = false;
  TJSONNode* Node = nullptr;  ///< nil where the document is empty
};

/// The expression of a filter, made of terms in chains. The terms of a chain are joined by "&&" and "||" without
/// precedence: the first term is joined with the chain that begins at the second, the outcome with the chain that
/// begins at the third, and so on. Its paths remember what they led to: a tree that changes needs a new filter.
class TPathFilter {
 public:
  /// The text of the item, "?(" and all. Depth counts the filters that it stands in.
  TPathFilter(StringView Item, bool IgnoreCase, int Depth, const TJSONMemory& Memory);
  ~TPathFilter();

  /// Whether the expression holds for a node. Root is that of the node, or nil to look for it.
  bool Holds(TJSONTree& Tree, TJSONNode* Node, TJSONRoot* Root);

 private:
  enum TComparison { opUnequal, opEqual, opSmaller, opSmallerEqual, opGreater, opGreaterEqual };
  enum TKind { tkNone, tkChild, tkNot, tkExists, tkComparison };
  static constexpr int cNone = -1;

  struct TOperand {
    String Text;
    std::unique_ptr<TJSONPath> Path;   // of all that are asked whether they lead to anything, or begin with "$" or "@"
    std::optional<TJSONNode*> OfRoot;  // what it leads to, where that is the same for all nodes
  };
  struct TTerm {
    TKind Kind = tkNone;
    bool And = false;  // how Next is joined
    int Parent = cNone, Next = cNone, Child = cNone;
    TComparison Operator = opEqual;
    TOperand Left, Right;
    // What is known of it for the node of this round.
    unsigned Round = 0;
    std::int8_t FromHere = cNone;          // the chain that begins here
    std::int8_t Rest[2] = {cNone, cNone};  // what follows here, with false or true up to here
  };
  class TScan;
  struct TFrame;

  TTerm& Fresh(int Term);
  bool WholeChain();
  bool ValueOf(TTerm& Term);
  bool Compare(TTerm& Term);
  TJSONNode* FirstOf(TOperand& Operand);
  Variant OperandValue(TOperand& Operand);
  TOperand MakeOperand(StringView Text, bool IsCompared) const;

  std::vector<TTerm> FTerms;
  bool FIgnoreCase;
  int FDepth;
  TJSONMemory FMemory;
  unsigned FRound = 0;
  bool FInvalid = false;
  TJSONTree* FTree = nullptr;
  TJSONNode* FNode = nullptr;
  TJSONRoot* FRoot = nullptr;
};

}  // namespace zm::detail
