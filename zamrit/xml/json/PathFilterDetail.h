#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "zamrit/platform/Strings.h"
#include "zamrit/platform/Variant.h"

namespace zm::detail {

class TJSONPath;
class TJSONTree;
struct TJSONNode;

/// The root that the nodes of a selection stand under, looked up when it is asked for first.
struct TJSONRoot {
  bool IsKnown = false;
  TJSONNode* Node = nullptr;  ///< nil where the document is empty
};

/// The expression of a filter, made of terms in chains. The terms of a chain are joined by "&&" and "||" without
/// precedence: the first term is joined with the chain that begins at the second, the outcome with the chain that
/// begins at the third, and so on. A filter inside another remembers what it held for: a tree that changes needs a new
/// one.
class TPathFilter {
 public:
  /// The text of the item, "?(" and all. Depth counts the filters that it stands in.
  TPathFilter(StringView Item, bool IgnoreCase, int Depth);
  ~TPathFilter();

  /// Whether the expression holds for a node. Root is that of the node, or nil to look for it.
  bool Holds(TJSONTree& Tree, TJSONNode* Node, TJSONRoot* Root);

 private:
  enum TComparison { opUnequal, opEqual, opSmaller, opSmallerEqual, opGreater, opGreaterEqual };
  enum TKind { tkNone, tkChild, tkNot, tkExists, tkComparison };
  static constexpr int cNone = -1;

  struct TOperand {
    String Text;
    std::unique_ptr<TJSONPath> Path;  // where the text begins with "$" or "@"
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
  bool Chain(int Term);
  bool ValueOf(TTerm& Term);
  bool Compare(TTerm& Term);
  Variant OperandValue(TOperand& Operand);
  TOperand MakeOperand(StringView Text, bool IgnoreCase) const;

  std::vector<TTerm> FTerms;
  bool FIgnoreCase;
  int FDepth;
  unsigned FRound = 0;
  bool FInvalid = false;
  TJSONTree* FTree = nullptr;
  TJSONNode* FNode = nullptr;
  TJSONRoot* FRoot = nullptr;
  std::vector<TJSONNode*> FFound;
  std::unordered_map<const TJSONNode*, bool> FKnown;  // where it stands in another filter, which may come again
};

}  // namespace zm::detail
