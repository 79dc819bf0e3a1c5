#include "zamrit/xml/xpath/ValuePathDetail.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace zm::detail {

using TKind = TDOMTree::TKind;

TValuePath::TValuePath(const String& Path, const TZmXPathEquation& Equation, int Depth) : FText(Path) {
  const TZmDOMSelectOptions options = Equation.GetSelectOptions();
  FRules.Collation = options.Has(soCaseSensitive) ? TZmXPathCollationCodepoint : TZmXPathCollationASCIICI;
  FRules.LocalNames = options.Has(soLocalName);
  FRules.Depth = Depth;
  if (Path.find_first_of(u"|[(") != String::npos || Path.starts_with(u'/')) return;
  const TNodePath path(Trim(Path), false, false, FRules.LocalNames);
  if (path.FindsTwice()) return;
  FSteps.reserve(path.Steps().size());
  for (const TNodeStep& step : path.Steps()) {
    const bool isPlain = step.Error.empty() && !step.Deep && !step.Repeats &&
                         (step.Kind == TStepKind::Named || step.Kind == TStepKind::Attributes);
    if (!isPlain) {
      FSteps.clear();
      return;
    }
    FSteps.emplace_back(step, FRules.Collation);
  }
}

TValuePath::~TValuePath() = default;

void TValuePath::Collect(TZmDOMNode* From, std::vector<TZmDOMNode*>& Nodes) {
  if (!FSteps.empty() && Follow(From, Nodes)) return;
  Nodes.clear();
  Select(FSelection, FRules, From, Nodes);
}

bool TValuePath::LeadsToAny(TZmDOMNode* From) {
  bool any = false;
  if (FSteps.size() == 1 && !TDOMTree::Has(From, dfOwnLists)) {
    EachOf(FSteps[0], From, [&](TZmDOMNode*) { return any = true; });
    return any;
  }
  TWalkRules rules = FRules;
  rules.OneWillDo = true;
  std::vector<TZmDOMNode*> nodes;
  Select(FAny, rules, From, nodes);
  return !nodes.empty();
}

void TValuePath::Select(std::unique_ptr<TPathSelection>& Selection, const TWalkRules& Rules, TZmDOMNode* From,
                        std::vector<TZmDOMNode*>& Nodes) const {
  // Taken out, so that a predicate in the path that comes back here finds its own.
  std::unique_ptr<TPathSelection> selection = std::move(Selection);
  if (!selection) selection = std::make_unique<TPathSelection>(FText, Rules);
  selection->Run(From, Nodes);
  Selection = std::move(selection);
}

// False where a list of children is not the chain, and may hold anything. Each step puts what it leads to behind the
// contexts that it starts from.
bool TValuePath::Follow(TZmDOMNode* From, std::vector<TZmDOMNode*>& Nodes) {
  std::size_t at = 0;
  for (TStep& step : FSteps) {
    const std::size_t end = Nodes.size();
    const bool isFirst = &step == FSteps.data();
    for (; isFirst || at < end; ++at) {
      TZmDOMNode* const context = isFirst ? From : Nodes[at];
      if (TDOMTree::Has(context, dfOwnLists)) return false;
      EachOf(step, context, [&](TZmDOMNode* node) {
        Nodes.push_back(node);
        return false;
      });
      if (isFirst) break;
    }
    at = end;
  }
  Nodes.erase(Nodes.begin(), Nodes.begin() + static_cast<std::ptrdiff_t>(at));
  return true;
}

namespace {

/// Whether a text is ASCII without "&". Of a loaded one 16 bytes can be read.
bool IsPlain(std::string_view Text, bool IsLoaded) {
  constexpr std::uint64_t ones = 0x0101010101010101u, tops = 0x80 * ones;
  std::uint64_t bad = 0;
  const auto look = [&](std::uint64_t eight) {
    const std::uint64_t apart = eight ^ ('&' * ones);  // a byte of 0 for each "&"
    bad |= eight | ((apart - ones) & ~apart);
  };
  std::size_t at = 0;
  std::uint64_t eight;
  if (std::endian::native == std::endian::little && IsLoaded && !Text.empty() && Text.size() < 8) {
    std::memcpy(&eight, Text.data(), 8);
    look(eight & ((std::uint64_t{1} << 8 * Text.size()) - 1));
    return (bad & tops) == 0;
  }
  for (; at + 8 <= Text.size(); at += 8) {
    std::memcpy(&eight, Text.data() + at, 8);
    look(eight);
  }
  for (; at < Text.size(); ++at) look(static_cast<unsigned char>(Text[at]));
  return (bad & tops) == 0;
}

bool IsText(const TZmDOMNode* Node, std::string_view& Value) {
  Value = TDOMTree::RawText(Node);
  return !TDOMTree::IsDerived(Node) && IsPlain(Value, TDOMTree::Has(Node, dfArena) && !TDOMTree::Has(Node, dfHeapText));
}

}  // namespace

bool PlainValue(const TZmDOMNode* Node, std::string_view& Value) {
  if (Node->GetNodeType() == ntAttribute) return !TDOMTree::Has(Node, dfDeclaration) && IsText(Node, Value);
  if (!IsElement(Node) || TDOMTree::IsDerived(Node) || TDOMTree::Has(Node, dfOwnLists)) return false;
  const TZmDOMNode* text = nullptr;
  for (const TZmDOMNode* child = TDOMTree::First(Node); child; child = TDOMTree::Next(child)) {
    if (TDOMTree::KindOf(child) != TKind::Characters) continue;
    if (text || child->GetNodeType() != ntText) return false;
    text = child;
  }
  Value = {};
  return !text || IsText(text, Value);
}

bool NodeValue(const TZmDOMNode* Node, String& Value) {
  if (IsAttribute(Node) && TDOMTree::Has(Node, dfDeclaration)) return false;
  std::string_view plain;
  if (!PlainValue(Node, plain)) {
    Value = Node->GetNodeValue();
    return true;
  }
  Value.resize(plain.size());  // assigning from bytes would make a text in between
  std::copy(plain.begin(), plain.end(), Value.begin());
  return true;
}

}  // namespace zm::detail
