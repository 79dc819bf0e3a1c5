#include <algorithm>
#include <tuple>

#include "zamrit/xml/xpath/NodePathDetail.h"

namespace zm::detail {

namespace {

/// Behind the parenthesis that closes the one at the start of Text, or the end.
std::size_t EndOfGroup(StringView Text) {
  int depth = 0;
  for (std::size_t at = 0; at < Text.size(); ++at) {
    if (Text[at] == u'(') ++depth;
    if (Text[at] == u')' && --depth == 0) return at + 1;
  }
  return Text.size();
}

/// The place of the "/" that ends a step, or npos. Brackets are not nested here.
std::size_t EndOfStep(StringView Path, std::size_t At) {
  for (; At < Path.size() && Path[At] != u'/'; ++At)
    if (Path[At] == u'[') At = std::min(Path.find(u']', At), Path.size() - 1);
  return At < Path.size() ? At : StringView::npos;
}

std::vector<StringView> SplitPredicates(StringView Text) {
  std::vector<StringView> predicates;
  std::size_t begin = 0;
  int depth = 0;
  for (std::size_t at = 0; at < Text.size(); ++at) {
    if (Text[at] == u'[' && depth++ == 0) begin = at;
    if (Text[at] == u']' && depth > 0 && --depth == 0) predicates.push_back(Trim(Text.substr(begin, at + 1 - begin)));
  }
  if (depth > 0) predicates.push_back(Trim(Text.substr(begin)));
  return predicates;
}

/// Cuts a step from the path and leaves the rest there.
TNodeStep CutStep(StringView& Path, bool& NextDeep) {
  TNodeStep step;
  if (Path.starts_with(u'/')) {
    step.Error = u"The specified nodePath started with an unexpected token (/)!";
    return step;
  }
  const std::size_t begin = Path.starts_with(u'(') ? EndOfGroup(Path) : 0;
  const std::size_t end = EndOfStep(Path, begin);
  if (end == StringView::npos) {
    step.Text = Path;
    step.IsLast = true;
  } else {
    step.Text = Path.substr(begin, end - begin);  // of a group only what stands behind it
    Path.remove_prefix(end + 1);
    NextDeep = Path.starts_with(u'/');
    if (NextDeep) Path.remove_prefix(1);
    if (Path.empty() && !NextDeep) step.Error = u"The XPath expression does not return a DOM Node!";
  }
  const std::size_t bracket = std::min(step.Text.find(u'['), step.Text.size());
  step.PredicateText = Trim(step.Text.substr(bracket));
  step.Predicates = SplitPredicates(step.PredicateText);
  step.Text = Trim(step.Text.substr(0, bracket));
  return step;
}

bool IsCall(StringView Text, StringView Name) { return Text.front() == Name.front() && SameText(Text, Name); }

/// Finds out what the text of a step asks for.
void Classify(TNodeStep& Step, bool LocalNames, bool BehindSelf) {
  const auto fail = [&](StringView message) {
    Step.Error = Format(u"The XPath expression contains an error at \"%s\"!\r\n", {Step.Text}) + String(message);
  };
  if (Step.Text.empty() && !Step.Deep) {
    Step.Error = u"The XPath expression is not valid!";
    return;
  }
  StringView& prefix = Step.Prefix;
  StringView& local = Step.LocalName;
  std::tie(prefix, local) = SplitName(Step.Text);
  if (prefix.empty() && (LocalNames || local == u"*" || local == u".")) prefix = u"*";
  const bool attributePrefix = prefix.starts_with(u'@');
  if (attributePrefix) prefix.remove_prefix(1);
  if (Step.Text.starts_with(u'(')) {
    Step.Kind = TStepKind::Group;
  } else if (attributePrefix || local.starts_with(u'@')) {
    Step.Kind = TStepKind::Attributes;
    if (!attributePrefix) local.remove_prefix(1);
    if (LocalNames || (local == u"*" && prefix.empty())) prefix = u"*";
  } else if (local.empty()) {
    Step.Kind = TStepKind::All;
    Step.SeesUnnamedTwice = !Step.Predicates.empty() && (prefix.empty() || prefix == u"*");
  } else if (IsCall(local, u"node()")) {
    Step.Kind = TStepKind::All;
  } else if (IsCall(local, u"text()")) {
    Step.Kind = TStepKind::Texts;
  } else if (local.front() == u'*') {
    Step.Kind = TStepKind::Elements;
    if (local.size() > 1) fail(u"a \"/\" or \"[\" was expected after the \"*\".");
  } else if (local == u".") {
    Step.Kind = BehindSelf && !Step.Deep ? TStepKind::Nothing : TStepKind::Self;
  } else if (local == u"..") {
    Step.Kind = TStepKind::Parent;
    if (Step.Deep) fail(u"The \"//\" cannot be used in combination with \"..\".");
  } else if (local.front() == u'.') {
    fail(u"a \"/\" or \"[\" was expected after the \"..\".");
  } else {
    Step.Kind = TStepKind::Named;
  }
}

}  // namespace

TNodePath::TNodePath(StringView Path, bool Deep, bool Repeats, bool LocalNames) {
  bool nested = Repeats, twice = Repeats, last = false;
  StringView before;
  FSteps.reserve(1 + static_cast<std::size_t>(std::count(Path.begin(), Path.end(), u'/')));
  while (!last) {
    bool nextDeep = false;
    TNodeStep& step = FSteps.emplace_back(CutStep(Path, nextDeep));
    step.Deep = Deep;
    if (step.Error.empty()) Classify(step, LocalNames, before == u".");
    step.Repeats = twice || (nested && Deep);
    // A document gives the attributes of its root, which gives them too.
    twice = step.Repeats || step.Kind == TStepKind::Parent ||
            (step.Kind == TStepKind::Attributes && (nested || Deep)) || step.SeesUnnamedTwice ||
            (step.Kind == TStepKind::Group && !step.Predicates.empty());
    nested |= Deep || step.Kind == TStepKind::Group;
    last = step.IsLast || !step.Error.empty();
    before = step.Text;
    Deep = nextDeep;
  }
  FFindsTwice = twice;
}

bool TNodePath::Overlaps() const {
  return std::any_of(FSteps.begin(), FSteps.end(), [](const TNodeStep& step) {
    return step.Deep || step.Kind == TStepKind::Parent || step.Kind == TStepKind::Group;
  });
}

bool TNodePath::CannotRaise() const {
  return std::all_of(FSteps.begin(), FSteps.end(), [](const TNodeStep& step) {
    return step.Error.empty() && step.Predicates.empty() && step.Kind != TStepKind::Group;
  });
}

}  // namespace zm::detail
