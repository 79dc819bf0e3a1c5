#include <algorithm>
#include <numeric>
#include <utility>

#include "zamrit/common/SysUtils.h"
#include "zamrit/platform/ScanDetail.h"
#include "zamrit/xml/xpath/NodePathDetail.h"
#include "zamrit/xml/xpath/PredicateDetail.h"

namespace zm::detail {

using TKind = TDOMTree::TKind;

// Sets and lists of nodes.

bool TNodeSet::Insert(TZmDOMNode* Node) {
  if (2 * FCount >= FSlots.size()) Grow();
  std::size_t at = Slot(Node);
  while (FSlots[at]) {
    if (FSlots[at] == Node) return false;
    at = (at + 1) & (FSlots.size() - 1);
  }
  FSlots[at] = Node;
  ++FCount;
  return true;
}

void TNodeSet::Grow() {
  std::vector<TZmDOMNode*> old(FSlots.empty() ? 16 : 2 * FSlots.size());
  old.swap(FSlots);
  FShift = old.empty() ? 60 : FShift - 1;
  FCount = 0;
  for (TZmDOMNode* const node : old)
    if (node) Insert(node);
}

void TFoundNodes::StartChecking() {
  if (std::exchange(FChecking, true)) return;
  for (TZmDOMNode* const node : Nodes) FSet.Insert(node);
}

void TFoundNodes::Check(std::size_t From) {
  if (!FChecking) return;
  std::size_t kept = From;
  for (std::size_t i = From; i < Nodes.size(); ++i)
    if (FSet.Insert(Nodes[i])) Nodes[kept++] = Nodes[i];
  Nodes.resize(kept);
}

void TFoundNodes::Append(TZmDOMNode* Node) {
  Nodes.push_back(Node);
  if (FChecking) FSet.Insert(Node);
}

TZmDOMNode* TDescent::EnterList() {
  const TZmDOMNodeListBase* const list = TDOMTree::OwnList(FNode, FKind);
  if (!list) return OfKind(TDOMTree::First(FNode));
  if (list->Count() == 0) return nullptr;
  TList& entered = FLists.emplace_back(TList{FTop, FNode, {}, 0});
  for (TZmDOMNode* const node : *list) entered.Items.push_back(node);
  return FTop = entered.Items.front();
}

bool TDescent::LeaveList() {
  FNode = nullptr;
  if (FLists.empty()) return false;
  TList& list = FLists.back();
  if (++list.At < list.Items.size()) {
    FTop = FNode = list.Items[list.At];
    return false;
  }
  FTop = list.Top;
  FNode = list.Node;
  FLists.pop_back();
  return true;
}

// By counting: those of each parent keep their order.
void TSweep::Order(std::vector<TZmDOMNode*>& Nodes, std::size_t From, std::size_t Parents) {
  std::vector<std::size_t> places(Parents + 1);
  for (const std::size_t parent : FParents) ++places[parent + 1];
  std::partial_sum(places.begin(), places.end(), places.begin());
  const std::vector<TZmDOMNode*> found(Nodes.begin() + static_cast<std::ptrdiff_t>(From), Nodes.end());
  for (std::size_t i = 0; i < found.size(); ++i) Nodes[From + places[FParents[i]]++] = found[i];
}

// The walk.

namespace {

constexpr int cDeepestGroup = 200;

}  // namespace

/// The contexts of a step, and where the walk stands in them.
struct TPathWalk::TLevel {
  std::size_t Begin = 0, At = 0, End = 0;  // in FContexts
  TDescent Descent;                        // from the one in front of At
  bool WentBelow = true;                   // whether what is below the current node is still to come
  bool Sweeps = false;                     // whether all contexts below one are gathered at a time
  TNodeSet Seen;
  std::optional<TNameTest> Names;
  std::unique_ptr<TGroup> Group;
};

/// The path in parentheses.
struct TPathWalk::TGroup {
  TGroup(const TNodeStep& Step, const TWalkRules& Rules)
      : Path(Step.Text.size() > 1 ? Step.Text.substr(1, Step.Text.size() - 2) : StringView(), Step.Deep, true,
             Rules.LocalNames),
        Found(Nodes),
        Walk(Path, Inside(Rules)) {
    Found.StartChecking();
  }
  static TWalkRules Inside(TWalkRules Rules) {
    Rules.OneWillDo = false;
    ++Rules.Depth;
    return Rules;
  }

  TNodePath Path;
  std::vector<TZmDOMNode*> Nodes;
  TFoundNodes Found;
  TPathWalk Walk;
};

TPathWalk::TPathWalk(const TNodePath& Path, const TWalkRules& Rules) : FPath(Path), FRules(Rules) {
  FRules.OneWillDo = Rules.OneWillDo && !Rules.Create && Path.CannotRaise();
  FLevels.reserve(std::min<std::size_t>(Path.Steps().size(), 8));
}

TPathWalk::~TPathWalk() = default;

void TPathWalk::Forget() {
  for (TLevel& level : FLevels) {
    level.Descent.Stop();
    level.Seen = {};
    level.Group.reset();
  }
}

void TPathWalk::Run(TZmDOMNode* Start, TFoundNodes& Found) {
  FFound = &Found;
  if (FPath.FindsTwice()) Found.StartChecking();
  FContexts.assign(1, Start);
  std::size_t step = 0;
  Enter(step, 0);
  for (;;) {
    TZmDOMNode* const context = NextContext(step);
    if (!context) {
      FContexts.resize(FLevels[step].Begin);
      if (step == 0) return;
      --step;
      continue;
    }
    Apply(step, context);
    if (FPath.Steps()[step].IsLast) {
      if (FRules.OneWillDo && !FFound->Nodes.empty()) return;
    } else if (const std::size_t end = FLevels[step].End; FContexts.size() > end) {
      Enter(++step, end);
    }
  }
}

void TPathWalk::Enter(std::size_t Step, std::size_t Begin) {
  const TNodeStep& step = FPath.Steps()[Step];
  if (!step.Error.empty()) throw EZmDomSyntax(step.Error);
  if (Step == FLevels.size()) {
    TLevel& made = FLevels.emplace_back();
    if (step.Kind == TStepKind::Elements)
      made.Names = TNameTest::OfParts(step.Prefix, u"*", FRules.Collation);
    else if (step.Kind == TStepKind::Named || step.Kind == TStepKind::Attributes || step.SeesUnnamedTwice)
      made.Names = TNameTest::OfParts(step.Prefix, step.LocalName, FRules.Collation);
  }
  TLevel& level = FLevels[Step];
  level.Sweeps =
      step.Deep && !step.Repeats && !FOwnLists && step.Predicates.empty() && !FRules.Create && !FRules.OneWillDo;
  level.Begin = level.At = Begin;
  level.End = FContexts.size();
}

// The next node to which a step is to be applied, nil where there is none.
ZM_INLINE TZmDOMNode* TPathWalk::NextContext(std::size_t Step) {
  const TNodeStep& step = FPath.Steps()[Step];
  TLevel& level = FLevels[Step];
  for (;;) {
    TZmDOMNode* node = level.Descent.Node();
    if (node) {
      do {
        level.Descent.Next(level.WentBelow);
        node = level.Descent.Node();
        level.WentBelow = !(node && FRules.Created && FRules.Created->count(node) > 0);
      } while (node && (IsAttribute(node) || !level.WentBelow));
      if (!node) continue;
    } else {
      if (level.At == level.End) return nullptr;
      node = FContexts[level.At++];
      if (step.Deep) level.Descent.Start(node);
    }
    level.WentBelow = !(step.Repeats || FOwnLists) || level.Seen.Insert(node);
    if (level.WentBelow) return node;
  }
}

void TPathWalk::Apply(std::size_t Step, TZmDOMNode* Context) {
  const TNodeStep& step = FPath.Steps()[Step];
  if (TDOMTree::Has(Context, dfOwnLists) && !FOwnLists) [[unlikely]] {
    FOwnLists = true;
    FFound->StartChecking();
  }
  std::vector<TZmDOMNode*>& out = step.IsLast ? FFound->Nodes : FContexts;
  const std::size_t from = out.size();
  if (FLevels[Step].Sweeps && Sweep(Step, Context, out))
    FLevels[Step].Descent.Stop();
  else
    Gather(Step, Context, out);
  if (!step.Predicates.empty()) Filter(step, out, from);
  if (FRules.Create && out.size() == from) CreateMissing(step, Context, out);
  if (step.IsLast) FFound->Check(from);
}

ZM_INLINE void TPathWalk::Gather(std::size_t Step, TZmDOMNode* Context, std::vector<TZmDOMNode*>& Out) {
  const TNodeStep& step = FPath.Steps()[Step];
  TLevel& level = FLevels[Step];
  const bool one = FRules.OneWillDo && step.IsLast;
  const auto take = [&](TZmDOMNode* node, bool isCandidate) {
    if (isCandidate) Out.push_back(node);
    return isCandidate && one;
  };
  switch (step.Kind) {
    case TStepKind::Named:
      EachChild(Context, TKind::All,
                [&](TZmDOMNode* node) { return take(node, IsNamed(node) && level.Names->Matches(node)); });
      break;
    case TStepKind::Elements:
      if (IsDocument(Context)) {
        TZmDOMElement* const root = RootOf(Context);
        take(root, root && level.Names->Matches(root));
      } else {
        EachChild(Context, TKind::Elements,
                  [&](TZmDOMNode* node) { return take(node, IsElement(node) && level.Names->Matches(node)); });
      }
      break;
    case TStepKind::All:
      EachChild(Context, TKind::All, [&](TZmDOMNode* node) { return take(node, !IsAttribute(node)); });
      if (step.SeesUnnamedTwice)
        EachChild(Context, TKind::All,
                  [&](TZmDOMNode* node) { return take(node, !IsAttribute(node) && level.Names->Matches(node)); });
      break;
    case TStepKind::Texts:
      EachChild(Context, TKind::All, [&](TZmDOMNode* node) { return take(node, IsText(node)); });
      break;
    case TStepKind::Attributes:
      EachAttribute(Context, *level.Names, FRules.LocalNames, [&](TZmDOMNode* node) { Out.push_back(node); });
      break;
    case TStepKind::Self:
      Out.push_back(Context);
      break;
    case TStepKind::Parent:
      take(Context->ParentNode(), Context->ParentNode() != nullptr);
      break;
    case TStepKind::Group:
      GatherGroup(Step, Context, Out);
      break;
    case TStepKind::Nothing:
      break;
  }
}

bool TPathWalk::Sweep(std::size_t Step, TZmDOMNode* Top, std::vector<TZmDOMNode*>& Out) {
  const TNodeStep& step = FPath.Steps()[Step];
  TLevel& level = FLevels[Step];
  const std::size_t from = Out.size();
  if (step.Kind == TStepKind::Named)
    level.Sweeps = FSweep.Run(Top, Out, [&](TZmDOMNode* node) { return IsNamed(node) && level.Names->Matches(node); });
  else if (step.Kind == TStepKind::All)
    level.Sweeps = FSweep.Run(Top, Out, [](TZmDOMNode* node) { return !IsAttribute(node); });
  else if (step.Kind == TStepKind::Elements)
    level.Sweeps = FSweep.Run(Top, Out, [&](TZmDOMNode* node) {
      return IsElement(node) && level.Names->Matches(node) &&
             (!IsDocument(Top) || node->GetParent() != Top || node == RootOf(Top));
    });
  else if (step.Kind == TStepKind::Texts)
    level.Sweeps = FSweep.Run(Top, Out, [](TZmDOMNode* node) { return IsText(node); });
  else
    level.Sweeps = false;
  if (!level.Sweeps) Out.resize(from);
  return level.Sweeps;
}

// Without predicates it does no harm that a node which the group has led to before is not given again.
void TPathWalk::GatherGroup(std::size_t Step, TZmDOMNode* Context, std::vector<TZmDOMNode*>& Out) {
  const TNodeStep& step = FPath.Steps()[Step];
  if (FRules.Depth == cDeepestGroup) throw EZmDomSyntax(u"The XPath expression is nested too deeply!");
  std::unique_ptr<TGroup>& group = FLevels[Step].Group;
  if (!group || !step.Predicates.empty()) group = std::make_unique<TGroup>(step, FRules);
  group->Walk.Run(Context, group->Found);
  Out.insert(Out.end(), group->Nodes.begin(), group->Nodes.end());
  group->Nodes.clear();
}

void TPathWalk::Filter(const TNodeStep& Step, std::vector<TZmDOMNode*>& Nodes, std::size_t From) const {
  const auto begin = Nodes.begin() + static_cast<std::ptrdiff_t>(From);
  TZmDOMObjectList candidates(begin, Nodes.end());
  for (const StringView predicate : Step.Predicates) {
    if (candidates.empty()) break;
    FilterByPredicate(candidates, predicate, FRules.LocalNames, FRules.Collation);
  }
  Nodes.resize(From);
  for (TZmDOMObject* const object : candidates) Nodes.push_back(static_cast<TZmDOMNode*>(object));
}

void TPathWalk::CreateMissing(const TNodeStep& Step, TZmDOMNode* Context, std::vector<TZmDOMNode*>& Out) const {
  const bool canBe = Step.PredicateText.empty() || Step.PredicateText == u"[0]";
  if (!canBe || !IsElement(Context) || Step.Kind == TStepKind::Parent || Step.Kind == TStepKind::Group) return;
  if (Step.Deep) throw Exception(u"The soCreate option cannot be used in combination with the \"//\" search option!");
  String name(Step.Prefix == u"*" ? StringView() : Step.Prefix);
  if (!name.empty()) name += u':';
  if (Step.Kind == TStepKind::Attributes) name += u'@';
  Out.push_back(static_cast<TZmDOMElement*>(Context)->AddElement(name += Step.LocalName));
  FRules.Created->insert(Out.back());
}

// Alternatives.

struct TPathSelection::TAlternative {
  TAlternative(StringView Part, const TWalkRules& Rules)
      : IsRooted(Part.starts_with(u'/')),
        IsStart(Part == u"/"),
        IsDeep(Part.starts_with(u"//")),
        Path(Part.substr(IsDeep     ? 2
                         : IsRooted ? 1
                                    : 0),
             IsDeep, false, Rules.LocalNames),
        Walk(Path, Rules) {}

  bool IsRooted;  // from the document
  bool IsStart;   // the node itself
  bool IsDeep;
  TNodePath Path;
  TPathWalk Walk;
};

TPathSelection::TPathSelection(String Path, const TWalkRules& Rules) : FRules(Rules) {
  if (FRules.Create) FRules.Created = &FCreated;
  if (Path.find(u'|') != String::npos)
    FParts = ZmTokenize(Path, u"|");
  else
    FParts.push_back(std::move(Path));
}

TPathSelection::~TPathSelection() = default;

void TPathSelection::Run(TZmDOMNode* From, std::vector<TZmDOMNode*>& Nodes) {
  TFoundNodes found(Nodes);
  for (std::size_t i = 0; i < FParts.size(); ++i) {
    if (i == FAlternatives.size()) FAlternatives.emplace_back(Trim(FParts[i]), FRules);
    TAlternative& alternative = FAlternatives[i];
    if (!Nodes.empty()) found.StartChecking();
    if (alternative.IsStart) {
      found.Append(From);
    } else if (TZmDOMNode* const start = alternative.IsRooted ? From->GetDOMDocument() : From) {
      alternative.Walk.Forget();
      alternative.Walk.Run(start, found);
    }
    if (FRules.FirstOnly && !Nodes.empty()) return;
  }
}

}  // namespace zm::detail
