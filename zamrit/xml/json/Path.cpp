#include <algorithm>
#include <unordered_set>

#include "zamrit/common/SysUtils.h"
#include "zamrit/platform/ASCIIDetail.h"
#include "zamrit/platform/ScopeDetail.h"
#include "zamrit/platform/TextDetail.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/NodesDetail.h"
#include "zamrit/xml/json/PathDetail.h"

namespace zm::detail {

namespace {

bool HasChildren(const TJSONNode* Node) { return Node->Class() == jcObject || Node->Class() == jcArray; }

bool IsIndex(StringView Text) {
  return !Text.empty() && std::all_of(Text.begin(), Text.end(), [](char16_t c) { return IsDigit(c) || c == u'-'; });
}

TPathItem MakeItem(StringView Text) {
  TPathItem item{Text, TPathItem::pkName, {}, {}, false, nullptr};
  if (Text.starts_with(u'?'))
    item.Kind = TPathItem::pkFilter;
  else if (Text.starts_with(u'('))
    item.Kind = TPathItem::pkIndexExpression;
  else if (Text.find(u':') != StringView::npos)
    item.Kind = TPathItem::pkSlice;
  else if (IsIndex(Text))
    item.Kind = TPathItem::pkIndex;
  return item;
}

/// Behind the closing bracket of the one at the start of Text.
std::size_t EndOfBrackets(StringView Text) {
  for (std::size_t at = 1;;) {
    at = Text.find_first_of(u"[]", at);
    if (at == StringView::npos) return Text.size();
    if (Text[at] == u']') return at + 1;
    at = Text.find(u']', at);
    if (at == StringView::npos) return Text.size();
    ++at;
  }
}

/// The items between the commas that do not stand in apostrophes.
std::vector<TPathItem> SplitBrackets(StringView Step) {
  StringView text = Step.substr(1, EndOfBrackets(Step) - 1);
  if (text.ends_with(u']')) text.remove_suffix(1);
  std::vector<TPathItem> items;
  std::size_t begin = 0;
  for (std::size_t at = text.find_first_of(u"',"); at != StringView::npos; at = text.find_first_of(u"',", at)) {
    if (text[at] == u',') {
      items.push_back(MakeItem(Trim(text.substr(begin, at - begin))));
      begin = ++at;
    } else {
      at = text.find(u'\'', at + 1);
      if (at == StringView::npos) break;
      ++at;
    }
  }
  if (const StringView last = Trim(text.substr(begin)); !last.empty()) items.push_back(MakeItem(last));
  return items;
}

/// Whether two items of a step that has been used may give the same node.
bool MayMeet(const std::vector<TPathItem>& Items) {
  std::unordered_set<String> names;
  return Items.size() > 1 && std::any_of(Items.begin(), Items.end(), [&](const TPathItem& item) {
           return item.Kind != TPathItem::pkName || item.All || !IsASCII(item.NameText) ||
                  !names.insert(LowerCase(item.NameText)).second;
         });
}

constexpr int cDeepestFilter = 20;
// What a path may find where it comes to the same nodes again, and remember, and make where each node made may lead to
// several: it could be exponential otherwise.
constexpr std::size_t cMostRepeated = std::size_t{1} << 24;
constexpr std::size_t cMostMade = std::size_t{1} << 16;
// What filters keep from one candidate to the next.
constexpr std::size_t cMostKept = std::size_t{1} << 22;

}  // namespace

void RaiseTooComplex() { throw EZmJSONException(_cZmJSONScriptExprTooComplex, 17); }

TChildCursor::TChildCursor(TJSONNode* Container)
    : Node(Container),
      InChain(!Container->Has(jfList) && !(Container->Object() && TJSONNodes::IsDerived(*Container->Object()))) {
  if (InChain) Child = Container->FirstChild();
}

// The next child that has a value, or nil.
ZM_INLINE TJSONNode* TJSONPath::NextChild(TChildCursor& Children) {
  while (Children.InChain) {
    TJSONNode* const child = Children.Child;
    if (child) Children.Child = child->Next;
    if (!child || child->Class() != jcNone) return child;
  }
  TZmJSONBase& object = *Children.Node->Object();
  while (Children.Index < object.Count()) {
    TZmJSONBase* const child = object.Item(Children.Index++);
    if (!child) continue;
    Note(*child, Children.Node);
    if (TJSONNodes::Node(*child)->Class() != jcNone) return TJSONNodes::Node(*child);
  }
  return nullptr;
}

void TJSONPath::Note(TZmJSONBase& Object, TJSONNode* Container) {
  FLeavesTree |= &TJSONNodes::Tree(Object) != FTree;
  FLeavesOwner |= TJSONNodes::Node(Object)->Owner != Container;
}

TJSONTree& TJSONPath::TreeOf(TJSONNode* Node) { return FLeavesTree ? TJSONNodes::TreeOf(Node) : *FTree; }

TPathStep& TPathAlternative::Step(std::size_t Index) {
  if (Index < FSteps.size()) return FSteps[Index];
  const std::size_t start = StartOf(Index);
  const StringView text = FText.substr(start);
  if (text[0] == u'$' || text[0] == u'@') throw EZmJSONException(_cZmJSONInvalidCharInPath2, {CharAt(text, 0)}, 15);
  TPathStep step;
  std::size_t begin = 0, end = 0;
  if (text[0] == u'.') {
    step.Recursive = text.size() > 1 && text[1] == u'.';
    begin = step.Recursive ? 2 : 1;
    end = std::min(text.find_first_of(u".[", begin + 1), text.size());
  } else if (text[0] == u'[') {
    end = EndOfBrackets(text);
  } else {
    throw EZmJSONException(_cZmJSONInvalidCharInPath1, {u". or [", CharAt(text, 0)}, 14);
  }
  const StringView cut = text.substr(begin, end - begin);
  if (cut.starts_with(u'['))
    step.Items = SplitBrackets(cut);
  else
    step.Items.push_back(MakeItem(cut));
  step.End = start + end;
  if (Index > 0) {
    const TPathStep& before = FSteps[Index - 1];
    step.BehindDescent = before.BehindDescent || before.Recursive;
    step.Repeats = before.Repeats || MayMeet(before.Items) || (step.Recursive && step.BehindDescent);
  }
  FSteps.push_back(std::move(step));
  return FSteps.back();
}

struct TJSONPath::TTask {
  TJSONNode* Node;
  std::size_t Step;
  std::optional<TChildCursor> Children;  // of the node, each of which the step is to be applied to
  bool Ends = false;                     // what has been found since the step came to the node is its outcome
};

TJSONPath::TJSONPath(StringView Text, TZmJDOCSelectOptions Options, int Depth, TJSONMemory Memory)
    : FOptions(Options), FDepth(Depth), FMemory(std::move(Memory)) {
  if (Depth > cDeepestFilter) RaiseTooComplex();
  if (Text.find(u" | ") == StringView::npos) {
    FParts.push_back({String(Trim(Text)), {}});
  } else {
    for (const String& part : ZmTokenize(Text, u" | ")) FParts.push_back({String(Trim(part)), {}});
  }
}

TJSONPath::~TJSONPath() { Forget(); }

void TJSONPath::Forget() {
  *FMemory -= FKnown.size();
  if (!FKnown.empty()) FKnown = {};
}

bool TJSONPath::IsOfRoot() const {
  return std::all_of(FParts.begin(), FParts.end(), [](const TPart& part) { return part.Text.starts_with(u'$'); });
}

std::span<TJSONNode* const> TJSONPath::Follow(TJSONTree& Tree, TJSONNode* Start, bool AsMember, TJSONRoot* Root) {
  TJSONRoot own;
  if (*FMemory > cMostKept) Forget();
  if (FKnown.empty()) FFound.clear();
  const std::size_t begin = FFound.size();
  FTree = &Tree;
  FRoot = Root ? Root : &own;
  const auto rootOf = [](TJSONNode* Document) -> TJSONNode* {
    if (Document->Class() != jcDocument || !Document->Object()) RaiseNotOfClass();
    TZmJSONBase* const root = static_cast<TZmJSONDocument*>(Document->Object())->GetRootValue();
    return root ? TJSONNodes::Node(*root) : nullptr;
  };
  for (TPart& part : FParts) {
    const char16_t first = part.Text.empty() ? u'\0' : part.Text[0];
    if (first != u'$' && first != u'@') throw EZmJSONException(_cZmJSONInvalidPath, 13);
    TJSONNode* start = Start;
    const bool underDocument = !Start->Has(jfMember) && Start->Owner && Start->Owner->Class() == jcDocument;
    if (first == u'$' && !underDocument) {
      if (!FRoot->IsKnown) {
        while (start->Owner) start = start->Owner;
        *FRoot = {true, rootOf(start)};
      }
      start = FRoot->Node;
    } else if (Start->Class() == jcDocument) {
      start = rootOf(start);
    } else if (AsMember && start->Class() == jcNone) {
      start = nullptr;
    }
    if (!part.Path) part.Path.emplace(StringView(part.Text).substr(1));
    if (start) Run(*part.Path, start);
  }
  return std::span(FFound).subspan(begin);
}

void TJSONPath::Run(TPathAlternative& Path, TJSONNode* Start) {
  const TFinally settled([this] {
    for (TJSONNode* const node : FFresh) node->Flags &= ~std::uint32_t{jfFresh};
    FFresh.clear();
    FTasks.clear();
    if (FDepth == 0) Forget();
  });
  FTasks.push_back({Start, 0, {}});
  while (!FTasks.empty()) {
    TTask& task = FTasks.back();
    if (task.Children) {
      if (TJSONNode* const child = NextChild(*task.Children); !child)
        FTasks.pop_back();
      else if (!child->Has(jfFresh))  // or it would be created in without end
        FTasks.push_back({child, task.Step, {}});
      continue;
    }
    const TTask now = task;
    FTasks.pop_back();
    if (now.Ends)
      FKnown.find({&Path.Step(now.Step), now.Node})->second.End = FFound.size();
    else if (Path.IsEnd(now.Step))
      FFound.push_back(now.Node);
    else if (HasChildren(now.Node) || now.Node->Has(jfFresh))
      Take(Path, now.Step, now.Node);
  }
}

void TJSONPath::Take(TPathAlternative& Path, std::size_t Index, TJSONNode* Node) {
  TPathStep& step = Path.Step(Index);
  // In a filter other candidates may lead to the same nodes; what holds itself would be come to without end.
  if (step.Repeats || (FDepth > 0 && (step.Recursive || step.BehindDescent)) || FLeavesOwner) {
    if (FindAgain(step, Node)) return;
    FTasks.push_back({Node, Index, {}, true});
  }
  FList.clear();
  const bool branches = step.Recursive || step.BehindDescent || (Node->Has(jfFresh) && step.Items.size() > 1);
  const std::size_t made = FFresh.size();
  for (TPathItem& item : step.Items)
    if (item.Kind == TPathItem::pkName || HasChildren(Node)) Use(item, Node);
  if (branches && (FMade += FFresh.size() - made) > cMostMade) RaiseTooComplex();
  if (step.Recursive && HasChildren(Node)) FTasks.push_back({Node, Index, TChildCursor(Node)});
  if (Path.IsEnd(Index + 1)) {
    FFound.insert(FFound.end(), FList.begin(), FList.end());
  } else {
    for (std::size_t i = FList.size(); i-- > 0;) FTasks.push_back({FList[i], Index + 1, {}});
  }
}

// Steps that descend, one behind the other, come to a node as often as there are ways to share out the levels above it.
// What lies behind is found the first time, and copied from then on as long as nothing is made; in a filter the first
// node of it.
bool TJSONPath::FindAgain(const TPathStep& Step, TJSONNode* Node) {
  const std::size_t size = FFound.size(), made = FFresh.size();
  const auto [known, isNew] = FKnown.try_emplace({&Step, Node}, TOutcome{made, size, size});
  if (isNew && ++*FMemory > cMostRepeated) RaiseTooComplex();
  TOutcome& outcome = known->second;
  if (isNew || outcome.Made != made) {
    outcome = {made, size, size};
    return false;
  }
  std::size_t count = outcome.End - outcome.Begin;
  if (FDepth > 0) count = std::min<std::size_t>(count, 1);
  if (count > 0 && size + count > cMostRepeated) RaiseTooComplex();
  FFound.resize(size + count);
  std::copy_n(FFound.begin() + static_cast<std::ptrdiff_t>(outcome.Begin), count,
              FFound.begin() + static_cast<std::ptrdiff_t>(size));
  return true;
}

void TJSONPath::Use(TPathItem& Item, TJSONNode* Node) {
  switch (Item.Kind) {
    case TPathItem::pkFilter:
      return UseFilter(Item, Node);
    case TPathItem::pkIndexExpression:
      return UseIndex(IndexOf(Item.Text, Node), Node);
    case TPathItem::pkSlice:
      return UseSlice(Item.Text, Node);
    case TPathItem::pkIndex:
      if (Node->Class() == jcArray) UseIndex(StrToInt64(Item.Text), Node);
      return;
    case TPathItem::pkName:
      return UseName(Item, Node);
  }
}

void TJSONPath::UseFilter(TPathItem& Item, TJSONNode* Node) {
  if (!Item.Filter || !FFresh.empty())  // it remembers what was before
    Item.Filter = std::make_unique<TPathFilter>(Item.Text, FOptions.Has(jsoCaseInsensitive), FDepth + 1, FMemory);
  if (!HasChildren(Node)) return;
  TChildCursor children(Node);
  std::unordered_set<TJSONNode*> there(FList.begin(), FList.end());
  const bool distinct = there.empty() && children.InChain;
  while (TJSONNode* const child = NextChild(children)) {
    if (!Item.Filter->Holds(TreeOf(child), child, FLeavesOwner ? nullptr : FRoot)) continue;
    if (distinct || there.insert(child).second) FList.push_back(child);
  }
}

std::int64_t TJSONPath::IndexOf(StringView Expression, TJSONNode* Node) {
  StringView text = Expression.substr(1);
  if (!text.empty()) text.remove_suffix(1);
  std::int64_t base = 0;
  String rest(text);
  if (text.find(u"@.length") != StringView::npos) {
    if (Node->Class() == jcArray) base = TJSONNodes::ValueOf(TreeOf(Node), Node)->Count();
    rest = StringReplace(text, u"@.length", u"", {rfIgnoreCase});
  }
  std::int32_t number = 0;
  if (!TryStrToInt(rest, number)) RaiseTooComplex();
  return base + number;
}

void TJSONPath::UseIndex(std::int64_t Index, TJSONNode* Node) {
  if (Node->Class() != jcArray) return;
  TZmJSONBase& array = *TJSONNodes::ValueOf(TreeOf(Node), Node);
  if (Index < 0) Index += array.Count();
  if (Index < 0 || Index >= array.Count()) return;
  if (!TJSONNodes::IsDerived(array) && !Node->Has(jfList)) {
    FList.push_back(TJSONNodes::ListOf(array)[static_cast<std::size_t>(Index)]);
  } else if (TZmJSONBase* const item = array.Item(static_cast<int>(Index))) {
    Note(*item, Node);
    if (TJSONNodes::Node(*item)->Class() != jcNone) FList.push_back(TJSONNodes::Node(*item));
  }
}

void TJSONPath::UseSlice(StringView Text, TJSONNode* Node) {
  if (Node->Class() != jcArray) return;
  std::int64_t parts[3] = {};
  String text(Text.starts_with(u':') ? u"0" : u"");
  text += Text;
  std::size_t from = 0;
  for (std::int64_t& part : parts) {
    const std::size_t end = std::min(text.find_first_of(u":\r\n", from), text.size());
    part = StrToIntDef(StringView(text).substr(from, end - from), 0);
    if (end == text.size()) break;
    from = end + (text.compare(end, 2, u"\r\n") == 0 ? 2 : 1);
  }
  const std::int64_t count = TJSONNodes::ValueOf(TreeOf(Node), Node)->Count();
  const std::int64_t stop = parts[1] == 0 ? count : parts[1];
  const std::int64_t step = parts[2] == 0 ? 1 : parts[2];
  std::int64_t index = parts[0] < 0 ? parts[0] + count : parts[0];
  if (index < 0 || index >= count) return;
  do {
    UseIndex(index, Node);
    index += step;
  } while (index >= 0 && index < count && index < stop);
}

void TJSONPath::UseName(TPathItem& Item, TJSONNode* Node) {
  if (!Item.Name) {
    StringView name = Item.Text;
    const bool quoted = name.starts_with(u'\'');
    if (quoted) {
      name.remove_prefix(1);
      if (!name.empty()) name.remove_suffix(1);
    }
    Item.NameText = name.empty() && !quoted ? u"*" : String(name);
    Item.All = Item.NameText == u"*";
    Item.Name.emplace(Item.NameText, FOptions.Has(jsoCaseInsensitive));
  }
  const std::size_t before = FList.size();
  if (HasChildren(Node) && (Item.All || Node->Class() == jcObject)) {
    TChildCursor children(Node);
    while (TJSONNode* const child = NextChild(children))
      if (Item.All || Item.Name->Is(AsMember(*child))) FList.push_back(child);
  }
  const bool canCreate = Node->Class() == jcObject || Node->Has(jfFresh);
  if (FList.size() == before && canCreate && !Item.All && FOptions.Has(jsoCreate)) CreateMember(Item, Node);
}

// A member that has been made on the way becomes an object when the path goes on by a name.
void TJSONPath::CreateMember(TPathItem& Item, TJSONNode* Node) {
  if (Node->Class() != jcObject) TJSONNodes::MemberOf(TreeOf(Node), Node)->CreateValue(jdtObject);
  TZmJDOCSelectOptions options{jsoCreate};
  if (FOptions.Has(jsoCaseInsensitive)) options.Include(jsoCaseInsensitive);
  TZmJSONMember* const member = TJSONNodes::ValueOf(TreeOf(Node), Node)->GetMember(Item.NameText, options);
  TJSONNode* const value = TJSONNodes::Node(*member->CreateValue(jdtNull));
  value->Flags |= jfFresh;
  FFresh.push_back(value);
  FList.push_back(value);
}

TJSONSelection SelectJSON(TZmJSONBase& Start, StringView Path, TZmJDOCSelectOptions Options) {
  TJSONNode* const node = TJSONNodes::Node(Start);
  TJSONTree* const shown = node->Has(jfList) ? TJSONNodes::ListOf(Start).Shown : nullptr;
  TJSONSelection found{{}, shown ? shown : &TJSONNodes::Tree(Start)};
  TJSONPath path(Path, Options, 0, std::make_shared<std::size_t>(0));
  const auto nodes = path.Follow(*found.Tree, node, TJSONNodes::IsMember(Start), nullptr);
  found.Nodes.assign(nodes.begin(), nodes.end());
  // A list that shows others stands in a tree of its own.
  const bool itself = shown && std::find(found.Nodes.begin(), found.Nodes.end(), node) != found.Nodes.end();
  if (path.LeavesTree() || itself) found.Tree = nullptr;
  return found;
}

}  // namespace zm::detail
