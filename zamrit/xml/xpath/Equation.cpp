#include <array>
#include <utility>

#include "zamrit/platform/ASCIIDetail.h"
#include "zamrit/xml/xpath/Functions.h"
#include "zamrit/xml/xpath/ParsingDetail.h"
#include "zamrit/xml/xpath/Terms.h"

namespace zm {

using detail::IsDigit;
using detail::TTruth;

TZmXPathEquation::~TZmXPathEquation() {
  while (FSibling) FSibling = std::move(FSibling->FSibling);
}

void TZmXPathEquation::SetValue(TZmOwner<TZmXPathBaseTerm> Term) { FTerm = std::move(Term); }

TZmOwner<TZmXPathEquation> TZmXPathEquation::Make(TZmXPathEquation* Parent, int Depth) const {
  if (Depth > detail::cDeepestXPath) detail::RaiseTooDeep();
  TZmOwner<TZmXPathEquation> made(new TZmXPathEquation(FMatchOption, FCollation, Parent, Depth));
  made->FFirst = FFirst;
  return made;
}

TZmXPathEquation* TZmXPathEquation::AddFirstChild() {
  FOperation = opNA;
  return FChilds.insert(FChilds.begin(), Make(this, FDepth + 1))->get();
}

TZmXPathEquation* TZmXPathEquation::AddChild(TZmXPathBoolOperator Op) {
  FOperation = Op;
  return FChilds.emplace_back(Make(this, FDepth + 1)).get();
}

TZmXPathEquation* TZmXPathEquation::AddSibling(TZmXPathBoolOperator Op) {
  FOperation = Op;
  FSibling = Make(FParent, FDepth);
  return FSibling.get();
}

TZmDOMSelectOptions TZmXPathEquation::GetSelectOptions() const {
  TZmDOMSelectOptions options{FCollation == TZmXPathCollationASCIICI ? soCaseInsensitive : soCaseSensitive};
  const bool isKnown = FMatchOption == soQualifiedName || FMatchOption == soLocalName;
  return options.Include(isKnown ? FMatchOption : DefaultSelectMatchOption);
}

TTruth TZmXPathEquation::TermTruth(const TZmDOMObjectList& List, int Position) const {
  return FTerm ? FTerm->Truth(List, Position) : TTruth::Empty;
}

/// The evaluation of a node with its siblings. The value of a node is that of its term, led along the siblings: where
/// "and" finds it true, or "or" false, it becomes the value of the sibling, which has been led along all that is behind
/// it. So what counts is the place and what has come of it until there; each such pair is worked out once.
class TZmXPathEquation::TChain {
 public:
  TChain(const TZmXPathEquation& First, const TZmDOMObjectList& List, int Position) : FList(List), FPosition(Position) {
    for (const TZmXPathEquation* node = &First; node; node = node->FSibling.get()) FNodes.push_back({node, {}});
  }

  bool Evaluate(bool& HasEmpty) {
    TOutcome outcome = Start(0);
    for (;;) {
      if (outcome.State == TState::Open) {
        outcome = Lead();
        continue;
      }
      // What has been worked out is what the place on top waits for.
      if (FWaiting.empty()) break;
      TPlace& place = FWaiting.back();
      place.Empty |= outcome.Empty;
      if (place.State == TState::Sibling) {
        place.State = TState::Rest;
        outcome = Enter(place.At + 1, outcome.Value);
        continue;
      }
      outcome.Empty = place.Empty;
      FNodes[place.At].Known[place.Value] = outcome;
      FWaiting.pop_back();
    }
    HasEmpty |= outcome.Empty;
    return outcome.Value;
  }

 private:
  enum class TState : std::uint8_t { Open, Known, Sibling, Rest };
  struct TOutcome {
    TState State = TState::Open;
    bool Value = false;
    bool Empty = false;
  };
  struct TNode {
    const TZmXPathEquation* Node;
    std::array<TOutcome, 2> Known;  // by what has come of it until there
  };
  /// A place that has been entered and is not worked out. Sibling: it waits for the sibling's value, Rest: for what
  /// comes of that.
  struct TPlace {
    std::size_t At;
    bool Value;
    TState State;
    bool Empty;
  };

  /// The value of a node with all behind it.
  TOutcome Start(std::size_t At) {
    const TTruth truth = FNodes[At].Node->TermTruth(FList, FPosition);
    if (truth == TTruth::Empty) return {TState::Known, false, true};
    return Enter(At, truth == TTruth::Yes);
  }
  /// What comes of a value at a place; open where that is still to be worked out.
  TOutcome Enter(std::size_t At, bool Value) {
    if (At + 1 == FNodes.size()) return {TState::Known, Value, false};
    if (FNodes[At].Known[Value].State == TState::Known) return FNodes[At].Known[Value];
    FWaiting.push_back({At, Value, TState::Open, false});
    return {};
  }
  /// One step on from the place on top.
  TOutcome Lead() {
    const std::size_t at = FWaiting.back().At;
    const bool value = FWaiting.back().Value;
    const TZmXPathBoolOperator operation = FNodes[at].Node->FOperation;
    if (operation == opNA) throw Exception(u"An invalid operation has been detected!");
    const bool asks = (operation == opAnd) == value;
    FWaiting.back().State = asks ? TState::Sibling : TState::Rest;
    return asks ? Start(at + 1) : Enter(at + 1, value);
  }

  const TZmDOMObjectList& FList;
  int FPosition;
  std::vector<TNode> FNodes;
  std::vector<TPlace> FWaiting;
};

bool TZmXPathEquation::Evaluate(const TZmDOMObjectList& List, int Position, bool& HasEmpty) {
  if (FSibling && !IsUniform()) return TChain(*this, List, Position).Evaluate(HasEmpty);
  TTruth truth = TermTruth(List, Position);
  bool value = truth == TTruth::Yes, empty = truth == TTruth::Empty;
  HasEmpty |= empty;
  if (empty) return false;
  for (const TZmXPathEquation* node = FSibling.get(); node; node = node->FSibling.get()) {
    if (value != (FOperation == opAnd)) return value;
    truth = node->TermTruth(List, Position);
    value = truth == TTruth::Yes;
    HasEmpty |= truth == TTruth::Empty;
  }
  return value;
}

/// Whether only "and" or only "or" joins the siblings: then nothing is asked for twice.
bool TZmXPathEquation::IsUniform() const {
  for (const TZmXPathEquation* node = this; node->FSibling; node = node->FSibling.get())
    if (node->FOperation != FOperation || FOperation == opNA) return false;
  return true;
}

bool TZmXPathEquation::Evaluate(const TZmDOMObjectList& List, int Position) {
  bool hasEmpty = false;
  return Evaluate(List, Position, hasEmpty) && !hasEmpty;
}

// Reading.

namespace {

/// Whether a character ends the name of a path or a function.
bool EndsName(char16_t C) {
  switch (C) {
    case u'=':
    case u'<':
    case u'>':
    case u'!':
    case u'(':
    case u')':
    case u'[':
    case u']':
    case u'"':
    case u' ':
    case u',':
      return true;
    default:
      return false;
  }
}

/// What stands in brackets from the cursor on, with them and all brackets inside: so many at most in each other.
String ReadBrackets(TZmTextParser& Parser, int Most) {
  String text;
  int depth = 0;
  do {
    const char16_t c = Parser.ReadChar();
    text += c;
    depth += c == u'[' ? 1 : c == u']' ? -1 : 0;
    if (depth > Most) detail::RaiseTooDeep();
  } while (depth > 0 && !Parser._GetEOF());
  return text;
}

template <class T, class... Args>
TZmOwner<TZmXPathBaseTerm> CreateTerm(Args&&... Arguments) {
  return Create<T>(std::forward<Args>(Arguments)...);
}

}  // namespace

TZmOwner<TZmXPathBaseTerm> TZmXPathEquation::ReadTerm(TZmTextParser& Parser) {
  if (FDepth + FNesting >= detail::cDeepestXPath) detail::RaiseTooDeep();
  ++FNesting;
  struct TLeave {
    int& Nesting;
    ~TLeave() { --Nesting; }
  } leave{FNesting};
  detail::SkipBlanks(Parser);
  const char16_t c = Parser.CurrChar();
  if (IsDigit(c) || c == u'"' || (c == u'.' && IsDigit(Parser.PeekChar())))
    return CreateTerm<TZmXPathConstantTerm>(this, Parser);
  if (c == u'(') return CreateTerm<TZmXPathSequenceTerm>(this, Parser);
  if (c == u'[') return CreateTerm<TZmXPathArrayTerm>(this, Parser);
  return ReadNamedTerm(Parser);
}

TZmOwner<TZmXPathBaseTerm> TZmXPathEquation::ReadNamedTerm(TZmTextParser& Parser) {
  String name;
  char16_t c = Parser.CurrChar();
  for (; !EndsName(c) && !detail::IsEnd(Parser, c); c = Parser.CurrChar()) {
    name += c;
    Parser.Next();
  }
  detail::SkipBlanks(Parser);
  c = Parser.CurrChar();
  if (c == u'(') {
    Parser.Next();
    if (name == u"first" || name == u"last" || name == u"position") NotePlace();
    if (name == u"first") return CreateTerm<TZmXPathFirstNode>(this, &Parser);
    if (name == u"last") return CreateTerm<TZmXPathLastNode>(this, &Parser);
    if (name == u"position") return CreateTerm<TZmXPathFnPositionTerm>(this, &Parser);
    if (name == u"node") return CreateTerm<TZmXPathFnNodeTerm>(this, &Parser);
    return CreateFunctionTerm(name, this, &Parser);
  }
  if (IsDigit(c) || c == u'.' || c == u'"') return CreateTerm<TZmXPathConstantTerm>(this, Parser);
  const int depth = FDepth + FNesting - 1;  // of the path
  if (c == u'[') name += ReadBrackets(Parser, detail::cDeepestXPath - depth);
  if (name.empty()) throw EZmDomSyntax(u"The specified XPath statement is not valid!");
  return CreateTerm<TZmXPathValueTerm>(this, std::move(name), depth);
}

namespace detail {

void RaiseTooDeep() { throw EZmDomSyntax(u"The XPath expression is nested too deeply!"); }

std::vector<TZmOwner<TZmXPathBaseTerm>> ReadTerms(TZmXPathEquation& Equation, TZmTextParser& Parser, char16_t Closing) {
  std::vector<TZmOwner<TZmXPathBaseTerm>> terms;
  SkipBlanks(Parser);
  if (Parser.CurrChar() != Closing) do {
      terms.push_back(Equation.ReadTerm(Parser));
      if (Parser.CurrChar() == u',') Parser.Next();
    } while (!Parser._GetEOF() && Parser.CurrChar() != Closing);
  if (!Parser._GetEOF()) Parser.Next();
  return terms;
}

}  // namespace detail

}  // namespace zm
