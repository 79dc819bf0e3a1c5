#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <unordered_set>
#include <utility>
#include <vector>

#include "zamrit/xml/dom/LookupDetail.h"

namespace zm::detail {

/// A vector that begins with the memory of the last one of its kind in this thread, if that was small: paths are mostly
/// short, and used once.
template <class T, int Kind = 0>
class TReusedVector : public std::vector<T> {
 public:
  TReusedVector() : std::vector<T>(std::move(Spare())) {}
  ~TReusedVector() {
    constexpr std::size_t most = 16;
    this->clear();
    if (this->capacity() <= most) Spare().swap(*this);
  }
  TReusedVector(const TReusedVector&) = delete;
  TReusedVector& operator=(const TReusedVector&) = delete;

 private:
  static std::vector<T>& Spare() {
    thread_local std::vector<T> spare;
    return spare;
  }
};

/// What a step of a path takes from its context.
enum class TStepKind : std::uint8_t { Group, All, Texts, Attributes, Elements, Named, Self, Parent, Nothing };

/// One step. The views point into the text of the path.
struct TNodeStep {
  TStepKind Kind = TStepKind::Nothing;
  bool Deep = false;  ///< behind "//": for every node at and below the context
  bool IsLast = false;
  bool SeesUnnamedTwice = false;  ///< nodes without a name are candidates as children, and once more by their name
  bool Repeats = false;           ///< the same context may come twice, or below another one
  StringView Text;                ///< without predicates
  StringView Prefix;              ///< "*" is any
  StringView LocalName;           ///< "*" is any; of an attribute without the "@"
  StringView PredicateText;
  std::vector<StringView> Predicates;  ///< each with its brackets
  String Error;                        ///< raised when the walk comes to the step

  /// Whether the candidates stand right below the context.
  bool TakesChildren() const { return Kind >= TStepKind::All && Kind <= TStepKind::Named; }
};

/// One alternative of a path, cut into steps up to the first that is wrong.
class TNodePath {
 public:
  /// Deep is whether the path stood behind "//", Repeats whether it is walked from several nodes.
  TNodePath(StringView Path, bool Deep, bool Repeats, bool LocalNames);

  const std::vector<TNodeStep>& Steps() const { return FSteps; }
  /// Whether a node may be found twice.
  bool FindsTwice() const { return FFindsTwice; }
  /// Whether no document can make the walk raise.
  bool CannotRaise() const;
  /// Whether walks from nodes that stand elsewhere may come to the same nodes.
  bool Overlaps() const;

 private:
  TReusedVector<TNodeStep> FSteps;
  bool FFindsTwice = false;
};

/// A set of nodes. Nodes that are near in memory are near in the set: of each page it has one bit for each place where
/// a node may begin.
class TNodeSet {
 public:
  /// False where the node is in it.
  bool Insert(const TZmDOMNode* Node) {
    const auto place = reinterpret_cast<std::uintptr_t>(Node) / cPlace;
    TPage& page = Page(place / cPlaces);
    std::uint64_t& places = page.Places[place % cPlaces / 64];
    const std::uint64_t bit = std::uint64_t{1} << place % 64;
    if ((places & bit) != 0) return false;
    places |= bit;
    return true;
  }
  bool Has(const TZmDOMNode* Node) const {
    const auto place = reinterpret_cast<std::uintptr_t>(Node) / cPlace;
    if (FCount == 0) return false;
    const TPage& page = FPages[At(place / cPlaces)];
    return page.Number != 0 && (page.Places[place % cPlaces / 64] >> place % 64 & 1) != 0;
  }

 private:
  static constexpr std::size_t cPlace = 32, cPlaces = TArena::cPage / cPlace;
  static_assert(cPlace <= sizeof(TZmDOMNode), "no two nodes begin in one place");
  struct TPage {
    std::uintptr_t Number;  // 0 where there is none
    std::uint64_t Places[cPlaces / 64];
  };

  TPage& Page(std::uintptr_t Number) {
    if (2 * FCount >= FPages.size()) Grow();
    TPage& page = FPages[At(Number)];
    FCount += page.Number == 0;
    page.Number = Number;
    return page;
  }
  /// Where the page is, or a free place for it.
  std::size_t At(std::uintptr_t Number) const {
    std::size_t at = static_cast<std::size_t>(Number * 0x9E3779B97F4A7C15u >> FShift);
    while (FPages[at].Number != Number && FPages[at].Number != 0) at = (at + 1) & (FPages.size() - 1);
    return at;
  }
  void Grow();

  std::vector<TPage> FPages;
  std::size_t FCount = 0;
  int FShift = 64;
};

/// A list of nodes that is to hold none twice. Only where that can happen is it looked for.
class TFoundNodes {
 public:
  explicit TFoundNodes(std::vector<TZmDOMNode*>& In) : Nodes(In) {}

  std::vector<TZmDOMNode*>& Nodes;

  bool IsChecking() const { return FChecking; }
  void StartChecking();
  /// Takes out, from an index on, what has been there before.
  void Check(std::size_t From);
  /// Appends a node without a look.
  void Append(TZmDOMNode* Node);
  /// Takes out all; none has been there before.
  void Clear();

 private:
  TNodeSet FSet;
  bool FChecking = false;
};

/// Goes over a node and all below it in document order, by the lists of children of a kind.
class TDescent {
 public:
  void Start(TZmDOMNode* Top, TDOMTree::TKind Kind = TDOMTree::TKind::All) {
    FTop = FNode = Top;
    FKind = Kind;
  }
  /// Nil at the end.
  TZmDOMNode* Node() const { return FNode; }
  void Stop() { FNode = nullptr; }
  /// Deep says whether to go below the node first.
  void Next(bool Deep) {
    if (Deep && TDOMTree::CanHaveChildren(FNode)) {
      const bool own = TDOMTree::Has(FNode, dfOwnLists);
      if (TZmDOMNode* const first = own ? EnterList() : OfKind(TDOMTree::First(FNode))) {
        FNode = first;
        return;
      }
    }
    do {
      while (FNode != FTop) {
        if (TZmDOMNode* const next = OfKind(TDOMTree::Next(FNode))) {
          FNode = next;
          return;
        }
        FNode = FNode->ParentNode();
      }
    } while (LeaveList());
  }

 private:
  /// The list that rules the children of a node. Its items are tops of their own: they may stand anywhere.
  struct TList {
    TZmDOMNode* Top;
    TZmDOMNode* Node;
    std::vector<TZmDOMNode*> Items;
    std::size_t At;
  };

  TZmDOMNode* OfKind(TZmDOMNode* Node) const {
    while (Node && !TDOMTree::IsOfKind(Node, FKind)) Node = TDOMTree::Next(Node);
    return Node;
  }
  TZmDOMNode* EnterList();
  bool LeaveList();  // whether it is back at the node whose list it was

  TZmDOMNode* FTop = nullptr;
  TZmDOMNode* FNode = nullptr;
  TDOMTree::TKind FKind = TDOMTree::TKind::All;
  std::vector<TList> FLists;
};

/// Gives each child of a kind, in the order of the list of that kind, until Use says that it is enough; but where the
/// chain rules, nodes of other kinds too.
template <class F>
void EachChild(const TZmDOMNode* Parent, TDOMTree::TKind Kind, F Use) {
  if (!TDOMTree::CanHaveChildren(Parent)) return;
  const bool own = TDOMTree::Has(Parent, dfOwnLists);
  if (const TZmDOMNodeListBase* const list = own ? TDOMTree::OwnList(Parent, Kind) : nullptr) {
    for (TZmDOMNode* const node : *list)
      if (Use(node)) return;
  } else {
    for (TZmDOMNode* node = TDOMTree::First(Parent); node; node = TDOMTree::Next(node))
      if (Use(node)) return;
  }
}

inline bool IsDocument(const TZmDOMNode* Node) { return Node->GetNodeType() == ntDocument; }
inline bool IsElement(const TZmDOMNode* Node) { return Node->GetNodeType() == ntElement; }
inline bool IsText(const TZmDOMNode* Node) { return Node->GetNodeType() == ntText || Node->GetNodeType() == ntCDATA; }
/// Of the nodes that a step by name may lead to.
inline bool IsNamed(const TZmDOMNode* Node) {
  return IsElement(Node) || Node->GetNodeType() == ntProcessingInstruction;
}
inline bool IsAttribute(const TZmDOMNode* Node) { return Node->GetNodeType() == ntAttribute; }
/// Whether neither the chain nor a list has children of the node.
inline bool IsLeaf(const TZmDOMNode* Node) {
  return !TDOMTree::CanHaveChildren(Node) || (!TDOMTree::First(Node) && !TDOMTree::Has(Node, dfOwnLists));
}
inline TZmDOMElement* RootOf(TZmDOMNode* Document) { return static_cast<TZmDOMDocument*>(Document)->GetRootNode(); }

/// Gives the attributes of an element, or of the root of a document, until Use says that it is enough.
template <class F>
void EachAttribute(TZmDOMNode* Of, TNameTest& Names, bool Declarations, F Use) {
  if (IsDocument(Of)) Of = RootOf(Of);
  if (!Of || !IsElement(Of)) return;
  const auto enough = [&](TZmDOMNode* node) {
    return Names.Matches(node) && (Declarations || !TDOMTree::Has(node, dfDeclaration)) && Use(node);
  };
  constexpr auto kind = TDOMTree::TKind::Attributes;
  TZmDOMNode* node = nullptr;
  if ((TDOMTree::Flags(Of) & (dfOwnLists | dfLateAttributes)) == 0) {
    for (node = TDOMTree::First(Of); node && IsAttribute(node); node = TDOMTree::Next(node))
      if (enough(node)) return;
  } else {
    for (node = TDOMTree::FirstOfKind(Of, kind); node && !enough(node);) node = TDOMTree::NextOfKind(node, kind);
  }
}

/// Collects the nodes below a node for which a test holds: those of the node itself, then those of each child in turn.
/// One pass in document order, as memory has it. Where that is another order, it is mended after a second pass, which
/// notes whose children the nodes are and begins as soon as this shows.
class TSweep {
 public:
  /// The nodes found that are children of one parent.
  struct TGroup {
    std::size_t Parent;  // its number
    std::size_t Begin;   // in the list; they end where the next group begins
  };

  /// Grouped asks for the groups. False where some list of children is not the chain; what has been appended then is to
  /// be forgotten.
  template <class F>
  bool Run(TZmDOMNode* Top, bool Grouped, std::vector<TZmDOMNode*>& Out, F Test) {
    if (TDOMTree::Has(Top, dfOwnLists)) return false;
    TZmDOMNode* node = TDOMTree::CanHaveChildren(Top) ? TDOMTree::First(Top) : nullptr;
    if (!node) return true;
    const std::size_t from = Out.size();
    std::size_t parent = 0, parents = 1;  // numbers of those that have children, in document order
    std::size_t last = 0;                 // of the node found last
    bool ordered = true, noting = Grouped;
    FGroups.clear();
    FAbove.clear();
    for (;;) {
      if (Test(node)) {
        ordered = ordered && last <= parent;
        if (!ordered && !noting) {
          noting = true;
          Out.resize(from);
          FAbove.clear();
          parent = 0;
          parents = 1;
          node = TDOMTree::First(Top);
          continue;
        }
        if (noting && (parent != last || FGroups.empty())) FGroups.push_back({parent, Out.size()});
        last = parent;
        Out.push_back(node);
      }
      if (IsElement(node)) {
        if (TDOMTree::Has(node, dfOwnLists)) return false;
        if (TZmDOMNode* const first = TDOMTree::First(node)) {
          FAbove.push_back(parent);
          parent = parents++;
          node = first;
          continue;
        }
      }
      while (!TDOMTree::Next(node)) {
        node = node->ParentNode();
        if (node == Top) {
          if (noting) FGroups.push_back({parents, Out.size()});
          if (!ordered) Order(Out, from, parents);
          return true;
        }
        parent = FAbove.back();
        FAbove.pop_back();
      }
      node = TDOMTree::Next(node);
    }
  }

  /// Those of the last run in turn, and one more at the end.
  const std::vector<TGroup>& Groups() const { return FGroups; }

 private:
  void Order(std::vector<TZmDOMNode*>& Nodes, std::size_t From, std::size_t Parents);

  std::vector<TGroup> FGroups;
  std::vector<std::size_t> FAbove;  // of the node that the pass is at, the parents above its own
};

struct TWalkRules : TLookupRules {
  bool Create = false;
  bool FirstOnly = false;  ///< alternatives behind one that has led to something are left out
  bool OneWillDo = false;  ///< the walk may stop at the first node, if nothing behind it can raise
  int Depth = 0;           ///< of parentheses and predicates around the path
  /// What has been created, which no "//" goes below: it might never end.
  std::unordered_set<const TZmDOMNode*>* Created = nullptr;
};

/// Follows a path. At any time it stands in one context of each step up to the one that it has come to, so that neither
/// the depth of the tree nor the length of the path is paid with stack. What a step has been applied to with the rest
/// of the path behind it, it is not applied to again.
class TPathWalk {
 public:
  /// Overlaps is whether it comes to nodes that other walks of it come to, as far as the path does not say so.
  TPathWalk(const TNodePath& Path, const TWalkRules& Rules, bool Overlaps);
  ~TPathWalk();

  /// Appends what the path leads to from a node.
  void Run(TZmDOMNode* Start, TFoundNodes& Found);
  /// The next run is a walk of its own.
  void Forget();

 private:
  struct TLevel;
  struct TGroup;

  void Enter(std::size_t Step, std::size_t Begin);
  TZmDOMNode* NextContext(std::size_t Step);
  void Apply(std::size_t Step, TZmDOMNode* Context);
  void Gather(std::size_t Step, TZmDOMNode* Context, std::vector<TZmDOMNode*>& Out);
  void GatherGroup(std::size_t Step, TZmDOMNode* Context, std::vector<TZmDOMNode*>& Out);
  bool Sweep(std::size_t Step, TZmDOMNode* Top, std::vector<TZmDOMNode*>& Out);
  void Filter(std::size_t Step, std::vector<TZmDOMNode*>& Nodes, std::size_t From);
  void FilterSwept(std::size_t Step, std::vector<TZmDOMNode*>& Nodes, std::size_t From);
  void CreateMissing(const TNodeStep& Step, TZmDOMNode* Context, std::vector<TZmDOMNode*>& Out) const;

  const TNodePath& FPath;
  TWalkRules FRules;
  bool FOverlaps;
  TFoundNodes* FFound = nullptr;
  TReusedVector<TLevel> FLevels;         // of the steps that the walk has been at
  TReusedVector<TZmDOMNode*> FContexts;  // of all levels in turn
  TSweep FSweep;
  std::vector<TZmDOMNode*> FSwept;              // what is to be filtered
  TReusedVector<TZmDOMObject*, 0> FCandidates;  // of the predicates
  TReusedVector<TZmDOMObject*, 1> FKept;
  bool FOwnLists = false;  // children have been seen whose list is not the chain, and may hold anything
};

/// A path with its alternatives, which can be followed from one node after the other as long as no node is renamed.
class TPathSelection {
 public:
  TPathSelection(String Path, const TWalkRules& Rules);
  ~TPathSelection();

  /// Appends what the path leads to from a node, and nothing that is there already.
  void Run(TZmDOMNode* From, std::vector<TZmDOMNode*>& Nodes);

 private:
  struct TAlternative;

  String FPath;
  std::vector<String> FParts;  // of a path with several alternatives
  std::unordered_set<const TZmDOMNode*> FCreated;
  TWalkRules FRules;
  std::list<TAlternative> FAlternatives;  // that have been come to
};

}  // namespace zm::detail
