#include <algorithm>
#include <numeric>
#include <utility>

#include "zamrit/common/SysUtils.h"
#include "zamrit/platform/ScanDetail.h"
#include "zamrit/xml/xpath/NodePathDetail.h"
#include "zamrit/xml/xpath/ParsingDetail.h"
#include "zamrit/xml/xpath/PredicateDetail.h"

namespace zm::detail {

using TKind = TDOMTree::TKind;

// Sets and lists of nodes.

void TNodeSet::Grow() {
  std::vector<TPage> old(FPages.empty() ? 16 : 2 * FPages.size());
  old.swap(FPages);
  FShift = old.empty() ? 60 : FShift - 1;
  FCount = 0;
  for (const TPage& page : old)
    if (page.Number != 0) Page(page.Number) = page;
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

void TFoundNodes::Clear() {
  Nodes.clear();
  FSet = {};
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
  for (std::size_t i = 0; i + 1 < FGroups.size(); ++i)
    places[FGroups[i].Parent + 1] += FGroups[i + 1].Begin - FGroups[i].Begin;
  places[0] = From;
  std::partial_sum(places.begin(), places.end(), places.begin());
  const std::vector<TZmDOMNode*> found(Nodes.begin() + static_cast<std::ptrdiff_t>(From), Nodes.end());
  for (std::size_t i = 0; i + 1 < FGroups.size(); ++i) {
    std::size_t& place = places[FGroups[i].Parent];
    for (std::size_t at = FGroups[i].Begin; at < FGroups[i + 1].Begin; ++at) Nodes[place++] = found[at - From];
  }

  FGroups.clear();  // of each parent, its place is now where the next one begins
  for (std::size_t parent = 0, begin = From; parent < Parents; begin = places[parent++])
    if (begin < places[parent]) FGroups.push_back({parent, begin});
  FGroups.push_back({Parents, Nodes.size()});
}

// The walk.

/// The contexts of a step, and where the walk stands in them.
struct TPathWalk::TLevel {
  std::size_t Begin = 0, At = 0, End = 0;  // in FContexts
  TDescent Descent;                        // from the one in front of At
  bool WentBelow = true;                   // whether what is below the current node is still to come
  bool Sweeps = false;                     // whether all contexts below one are gathered at a time
  bool PassesLeaves = false;               // nothing can come of contexts without children
  TNodeSet Seen;
  std::optional<TNameTest> Names;
  std::vector<TPredicate> Predicates;  // that have been read
  std::unique_ptr<TGroup> Group;
};

/// The path in parentheses.
struct TPathWalk::TGroup {
  TGroup(const TNodeStep& Step, const TWalkRules& Rules)
      : Path(Step.Text.size() > 1 ? Step.Text.substr(1, Step.Text.size() - 2) : StringView(), Step.Deep, true,
             Rules.LocalNames),
        Found(Nodes),
        Walk(Path, Inside(Rules), true) {
    Found.StartChecking();
  }
  void Forget() {
    Found.Clear();
    Walk.Forget();
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

TPathWalk::TPathWalk(const TNodePath& Path, const TWalkRules& Rules, bool Overlaps)
    : FPath(Path), FRules(Rules), FOverlaps(Rules.Depth > 0 && (Overlaps || Path.Overlaps())) {
  FRules.OneWillDo = Rules.OneWillDo && !Rules.Create && Path.CannotRaise();
  FLevels.reserve(std::min<std::size_t>(Path.Steps().size(), 8));
}

TPathWalk::~TPathWalk() = default;

void TPathWalk::Forget() {
  for (TLevel& level : FLevels) {
    level.Descent.Stop();
    level.Seen = {};
    if (level.Group) level.Group->Forget();
  }
}

void TPathWalk::Run(TZmDOMNode* Start, TFoundNodes& Found) {
  FFound = &Found;
  if (FPath.FindsTwice()) Found.StartChecking();
  FContexts.reserve(16);
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
      made.Names.emplace(step.Prefix, u"*", FRules.Collation);
    else if (step.Kind == TStepKind::Named || step.Kind == TStepKind::Attributes || step.SeesUnnamedTwice)
      made.Names.emplace(step.Prefix, step.LocalName, FRules.Collation);
  }
  TLevel& level = FLevels[Step];
  level.Sweeps =
      step.Deep && !step.Repeats && !FOwnLists && !step.SeesUnnamedTwice && !FRules.Create && !FRules.OneWillDo;
  level.PassesLeaves = step.TakesChildren() && !FRules.Create;
  level.Begin = level.At = Begin;
  level.End = FContexts.size();
}

// The next node to which a step is to be applied, nil where there is none.
ZM_INLINE TZmDOMNode* TPathWalk::NextContext(std::size_t Step) {
  const TNodeStep& step = FPath.Steps()[Step];
  TLevel& level = FLevels[Step];
  const auto passes = [&](const TZmDOMNode* node) { return level.PassesLeaves && IsLeaf(node); };
  for (;;) {
    TZmDOMNode* node = level.Descent.Node();
    if (node) {
      do {
        level.Descent.Next(level.WentBelow);
        node = level.Descent.Node();
        level.WentBelow = !(node && FRules.Created && FRules.Created->count(node) > 0);
      } while (node && (IsAttribute(node) || !level.WentBelow || passes(node)));
      if (!node) continue;
    } else {
      if (level.At == level.End) return nullptr;
      node = FContexts[level.At++];
      if (passes(node)) continue;
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
  const bool swept = FLevels[Step].Sweeps && Sweep(Step, Context, out);
  if (swept)
    FLevels[Step].Descent.Stop();
  else
    Gather(Step, Context, out);
  if (!step.Predicates.empty() && out.size() > from) {
    if (swept)
      FilterSwept(Step, out, from);
    else
      Filter(Step, out, from);
  }
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
      EachAttribute(Context, *level.Names, FRules.LocalNames, [&](TZmDOMNode* node) { return take(node, true); });
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
  const bool grouped = !step.Predicates.empty();
  if (step.Kind == TStepKind::Named)
    level.Sweeps =
        FSweep.Run(Top, grouped, Out, [&](TZmDOMNode* node) { return IsNamed(node) && level.Names->Matches(node); });
  else if (step.Kind == TStepKind::All)
    level.Sweeps = FSweep.Run(Top, grouped, Out, [](TZmDOMNode* node) { return !IsAttribute(node); });
  else if (step.Kind == TStepKind::Elements)
    level.Sweeps = FSweep.Run(Top, grouped, Out, [&](TZmDOMNode* node) {
      return IsElement(node) && level.Names->Matches(node) &&
             (!IsDocument(Top) || node->GetParent() != Top || node == RootOf(Top));
    });
  else if (step.Kind == TStepKind::Texts)
    level.Sweeps = FSweep.Run(Top, grouped, Out, [](TZmDOMNode* node) { return IsText(node); });
  else
    level.Sweeps = false;
  if (!level.Sweeps) Out.resize(from);
  return level.Sweeps;
}

// Without predicates it does no harm that a node which the group has led to before is not given again.
void TPathWalk::GatherGroup(std::size_t Step, TZmDOMNode* Context, std::vector<TZmDOMNode*>& Out) {
  const TNodeStep& step = FPath.Steps()[Step];
  if (FRules.Depth >= cDeepestXPath) RaiseTooDeep();
  std::unique_ptr<TGroup>& group = FLevels[Step].Group;
  if (!group)
    group = std::make_unique<TGroup>(step, FRules);
  else if (!step.Predicates.empty())
    group->Forget();
  group->Walk.Run(Context, group->Found);
  Out.insert(Out.end(), group->Nodes.begin(), group->Nodes.end());
  group->Nodes.clear();
}

// A predicate is read when the first candidates come to it.
void TPathWalk::Filter(std::size_t Step, std::vector<TZmDOMNode*>& Nodes, std::size_t From) {
  const TNodeStep& step = FPath.Steps()[Step];
  std::vector<TPredicate>& predicates = FLevels[Step].Predicates;
  if (FRules.Created && !FRules.Created->empty()) predicates.clear();  // what held before need not hold now
  FCandidates.assign(Nodes.begin() + static_cast<std::ptrdiff_t>(From), Nodes.end());
  Nodes.resize(From);  // at once: a predicate may raise
  for (std::size_t i = 0; i < step.Predicates.size() && !FCandidates.empty(); ++i) {
    if (i == predicates.size())
      predicates.emplace_back(step.Predicates[i], FRules.LocalNames, FRules.Collation, FRules.Depth + 1, FOverlaps);
    predicates[i].Filter(FCandidates, FKept);
  }
  for (TZmDOMObject* const object : FCandidates) Nodes.push_back(static_cast<TZmDOMNode*>(object));
}

// The children of each parent are the candidates of one context.
void TPathWalk::FilterSwept(std::size_t Step, std::vector<TZmDOMNode*>& Nodes, std::size_t From) {
  const auto swept = Nodes.begin() + static_cast<std::ptrdiff_t>(From);
  FSwept.assign(swept, Nodes.end());
  Nodes.erase(swept, Nodes.end());
  const std::vector<TSweep::TGroup>& groups = FSweep.Groups();
  for (std::size_t i = 0; i + 1 < groups.size(); ++i) {
    const std::size_t begin = Nodes.size();
    const auto at = [&](std::size_t group) {
      return FSwept.begin() + static_cast<std::ptrdiff_t>(groups[group].Begin - From);
    };
    Nodes.insert(Nodes.end(), at(i), at(i + 1));
    Filter(Step, Nodes, begin);
  }
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
        Walk(Path, Rules, IsRooted) {}

  bool IsRooted;  // from the document
  bool IsStart;   // the node itself
  bool IsDeep;
  TNodePath Path;
  TPathWalk Walk;
};

TPathSelection::TPathSelection(String Path, const TWalkRules& Rules) : FPath(std::move(Path)), FRules(Rules) {
  if (FRules.Create) FRules.Created = &FCreated;
  if (FPath.find(u'|') != String::npos) FParts = ZmTokenize(FPath, u"|");
}

TPathSelection::~TPathSelection() = default;

void TPathSelection::Run(TZmDOMNode* From, std::vector<TZmDOMNode*>& Nodes) {
  TFoundNodes found(Nodes);
  auto alternative = FAlternatives.begin();
  for (std::size_t i = 0; i < std::max<std::size_t>(FParts.size(), 1); ++i, ++alternative) {
    if (alternative == FAlternatives.end())
      alternative = FAlternatives.emplace(alternative, Trim(FParts.empty() ? FPath : FParts[i]), FRules);
    if (!Nodes.empty()) found.StartChecking();
    if (alternative->IsStart) {
      found.Append(From);
    } else if (TZmDOMNode* const start = alternative->IsRooted ? From->GetDOMDocument() : From) {
      alternative->Walk.Forget();
      alternative->Walk.Run(start, found);
    }
    if (FRules.FirstOnly && !Nodes.empty()) return;
  }
}

}  // namespace zm::detail
