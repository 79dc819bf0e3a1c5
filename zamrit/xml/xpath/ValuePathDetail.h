#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "zamrit/xml/xpath/NodePathDetail.h"
#include "zamrit/xml/xpath/Terms.h"

namespace zm::detail {

/// The nodes that a path leads to from one candidate after the other. A path of plain steps is followed straight from
/// node to node; any other goes the way of all selections.
class TValuePath {
 public:
  /// The path, which stands so deep within brackets, stays where it is while this lives.
  TValuePath(const String& Path, const TZmXPathEquation& Equation, int Depth);
  ~TValuePath();
  TValuePath(const TValuePath&) = delete;
  TValuePath& operator=(const TValuePath&) = delete;

  /// Gives the nodes that the path leads to, until Use answers true.
  template <class F>
  void Each(TZmDOMNode* From, F Use) {
    if (FSteps.size() != 1 || TDOMTree::Has(From, dfOwnLists)) {
      const TNodes nodes(*this, From);
      for (std::size_t i = 0; i < nodes.Count(); ++i)
        if (Use(nodes[i])) return;
    } else {
      EachOf(FSteps[0], From, Use);
    }
  }

  /// Whether the path leads to anything. A path that cannot raise is followed no further than that.
  bool LeadsToAny(TZmDOMNode* From);

  /// What the path leads to. Its room is used again by the next one.
  class TNodes {
   public:
    TNodes(TValuePath& Path, TZmDOMNode* From) : FPath(Path), FNodes(std::move(Path.FSpare)) {
      FNodes.clear();
      Path.Collect(From, FNodes);
    }
    ~TNodes() { FPath.FSpare = std::move(FNodes); }
    TNodes(const TNodes&) = delete;
    TNodes& operator=(const TNodes&) = delete;

    std::size_t Count() const { return FNodes.size(); }
    TZmDOMNode* operator[](std::size_t Index) const { return FNodes[Index]; }

   private:
    TValuePath& FPath;
    std::vector<TZmDOMNode*> FNodes;
  };

 private:
  struct TStep {
    TStep(const TNodeStep& Step, TZmXPathCollationClass Collation)
        : Kind(Step.Kind), Names(Step.Prefix, Step.LocalName, Collation) {}

    TStepKind Kind;
    TNameTest Names;
  };

  template <class F>
  void EachOf(TStep& Step, TZmDOMNode* From, F Use) {
    if (Step.Kind == TStepKind::Attributes)
      EachAttribute(From, Step.Names, FRules.LocalNames, Use);
    else
      EachChild(From, TDOMTree::TKind::All,
                [&](TZmDOMNode* node) { return IsNamed(node) && Step.Names.Matches(node) && Use(node); });
  }

  void Collect(TZmDOMNode* From, std::vector<TZmDOMNode*>& Nodes);
  void Select(std::unique_ptr<TPathSelection>& Selection, const TWalkRules& Rules, TZmDOMNode* From,
              std::vector<TZmDOMNode*>& Nodes) const;
  bool Follow(TZmDOMNode* From, std::vector<TZmDOMNode*>& Nodes);

  const String& FText;
  TWalkRules FRules;
  std::vector<TStep> FSteps;                   // none where the path is not plain
  std::unique_ptr<TPathSelection> FSelection;  // made when it is needed
  std::unique_ptr<TPathSelection> FAny;        // which stops at the first node
  std::vector<TZmDOMNode*> FSpare;
};

/// The value of a node as it stands in the tree, where that is ASCII and needs no decoding; else false.
bool PlainValue(const TZmDOMNode* Node, std::string_view& Value);

/// The value of a node. False where it has none, which is so of a namespace declaration.
bool NodeValue(const TZmDOMNode* Node, String& Value);

}  // namespace zm::detail
