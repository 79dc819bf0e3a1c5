#include <utility>

#include "zamrit/common/ComparisonDetail.h"
#include "zamrit/common/SysUtils.h"
#include "zamrit/common/ZmTypes.h"
#include "zamrit/platform/Numbers.h"
#include "zamrit/platform/TextDetail.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/NodesDetail.h"
#include "zamrit/xml/json/PathDetail.h"
#include "zamrit/xml/json/SimpleDetail.h"

namespace zm::detail {

namespace {

/// What an operand can be compared as.
struct TReading {
  std::int32_t Integer = 0;
  double Float = 0;
  bool Boolean = false;
  bool IsInteger = false, IsFloat = false, IsBoolean = false;

  explicit TReading(StringView Text) {
    if (TryStrToInt(Text, Integer)) {
      IsInteger = IsFloat = true;
      Float = Integer;
    } else if (TryStrToFloat(Text, Float)) {
      IsFloat = true;
    } else {
      Boolean = SameText(Text, u"true");
      IsBoolean = Boolean || SameText(Text, u"false");
    }
  }
};

bool StartsQuoted(StringView Text) { return Text.starts_with(u'\'') || Text.starts_with(u'"'); }

}  // namespace

/// The cursor over the expression.
class TPathFilter::TScan {
 public:
  explicit TScan(StringView Text) : FText(Text) {}

  bool AtEnd() const { return FAt >= FText.size(); }
  /// NUL at the end, as in the text itself.
  char16_t Char() const { return AtEnd() ? u'\0' : FText[FAt]; }
  void Next() {
    if (!AtEnd()) ++FAt;
  }
  void SkipBlanks() {
    while (!AtEnd() && FText[FAt] == u' ') ++FAt;
  }
  void Expect(const char16_t* Expected) {
    if (!AtEnd() && FText[FAt] == *Expected) return Next();
    throw EZmJSONException(_cZmJSONInvalidCharInPath1, {Expected, CharAt(FText, FAt)}, 14);
  }
  StringView Operand() {
    const std::size_t begin = FAt;
    Next();
    while ((FAt = FText.find_first_of(u"!&)<=>|[(", FAt)) != StringView::npos) {
      if (FText[FAt] != u'[' && FText[FAt] != u'(') break;
      FAt = FText.find(FText[FAt] == u'[' ? u']' : u')', FAt);
      if (FAt == StringView::npos) break;
      ++FAt;
    }
    FAt = std::min(FAt, FText.size());
    return Trim(FText.substr(begin, FAt - begin));
  }

 private:
  StringView FText;
  std::size_t FAt = 0;
};

TPathFilter::TPathFilter(StringView Item, bool IgnoreCase, int Depth, const TJSONMemory& Memory)
    : FIgnoreCase(IgnoreCase), FDepth(Depth), FMemory(Memory) {
  if (!Item.starts_with(u"?(")) throw EZmJSONException(_cZmJSONInvalidCharInPath1, {u"?(", Item.substr(0, 2)}, 14);
  StringView text = Item.substr(2);
  if (!text.empty()) text.remove_suffix(1);
  TScan scan(text);
  int current = 0;
  FTerms.emplace_back();
  const auto add = [&](int Parent) {
    FTerms.emplace_back().Parent = Parent;
    return static_cast<int>(FTerms.size()) - 1;
  };
  const auto at = [&](int Term) -> TTerm& { return FTerms[static_cast<std::size_t>(Term)]; };
  const auto goDown = [&](TKind Kind) {
    at(current).Kind = Kind;
    const int child = add(current);
    at(current).Child = child;
    current = child;
    scan.Next();
  };
  const auto goUp = [&] {
    current = at(current).Parent;
    if (current == cNone) RaiseTooComplex();
  };
  const auto goOn = [&](const char16_t* Operator) {
    scan.Next();
    scan.Expect(Operator);
    const int next = add(at(current).Parent);
    at(current).Next = next;
    at(current).And = *Operator == u'&';
    current = next;
  };
  const auto compare = [&](TComparison Operator) {
    at(current).Kind = tkComparison;
    at(current).Operator = Operator;
    at(current).Right = MakeOperand(scan.Operand(), true);
  };
  const auto term = [&] {
    const StringView left = scan.Operand();
    const char16_t sign = scan.Char();
    const bool comparison = sign == u'!' || sign == u'=' || sign == u'<' || sign == u'>';
    at(current).Left = MakeOperand(left, comparison);
    if (!comparison) {
      at(current).Kind = tkExists;
      return;
    }
    scan.Next();
    const auto follows = [&](char16_t Char) {
      const bool there = scan.Char() == Char;
      if (there) scan.Next();
      return there;
    };
    if (sign == u'!' || sign == u'=') {
      scan.Expect(u"=");
      compare(sign == u'!' ? opUnequal : opEqual);
    } else if (sign == u'<') {
      compare(follows(u'=') ? opSmallerEqual : follows(u'>') ? opUnequal : opSmaller);
    } else {
      compare(follows(u'=') ? opGreaterEqual : opGreater);
    }
  };

  bool closeTerm = false;
  do {
    switch (scan.AtEnd() ? u'\0' : scan.Char()) {
      case u'(':
        goDown(tkChild);
        break;
      case u')':
        goUp();
        scan.Next();
        break;
      case u'!':
        goDown(tkNot);
        closeTerm = true;
        break;
      case u'&':
        goOn(u"&");
        break;
      case u'|':
        goOn(u"|");
        break;
      default:
        term();
        if (closeTerm) goUp();
        closeTerm = false;
    }
    scan.SkipBlanks();
  } while (!scan.AtEnd());
}

TPathFilter::~TPathFilter() = default;

TPathFilter::TOperand TPathFilter::MakeOperand(StringView Text, bool IsCompared) const {
  TOperand operand{String(Text), nullptr, {}};
  TZmJDOCSelectOptions options;
  if (FIgnoreCase && !IsCompared) options.Include(jsoCaseInsensitive);
  if (!IsCompared || Text.starts_with(u'$') || Text.starts_with(u'@'))
    operand.Path = std::make_unique<TJSONPath>(Text, options, FDepth, FMemory);
  return operand;
}

bool TPathFilter::Holds(TJSONTree& Tree, TJSONNode* Node, TJSONRoot* Root) {
  FTree = &Tree;
  FRoot = Root;
  FNode = Node;
  FInvalid = false;
  ++FRound;
  const bool holds = WholeChain();
  return holds && !FInvalid;
}

TPathFilter::TTerm& TPathFilter::Fresh(int Term) {
  TTerm& term = FTerms[static_cast<std::size_t>(Term)];
  if (term.Round != FRound) {
    term.Round = FRound;
    term.FromHere = term.Rest[0] = term.Rest[1] = cNone;
  }
  return term;
}

struct TPathFilter::TFrame {
  int Term;
  bool WholeChain;  // from the term on; else what follows it, joined to UpToHere
  bool UpToHere = false;
  int Stage = 0;
};

// Each chain, and each rest of one, is computed once, without recursion: expressions may be nested and chained without
// limit.
bool TPathFilter::WholeChain() {
  std::vector<TFrame> stack{{0, true}};
  bool result = false;  // of the frame that has been left last
  while (!stack.empty()) {
    TFrame& frame = stack.back();
    TTerm& term = Fresh(frame.Term);
    std::int8_t& known = frame.WholeChain ? term.FromHere : term.Rest[frame.UpToHere];
    if (known != cNone) {
      result = known != 0;
      stack.pop_back();
      continue;
    }
    if (frame.WholeChain) {
      switch (frame.Stage++) {
        case 0:
          if (term.Kind == tkChild || term.Kind == tkNot) {
            stack.push_back({term.Child, true});
            continue;
          }
          result = ValueOf(term);
          frame.Stage = 2;
          [[fallthrough]];
        case 1:
          if (term.Kind == tkNot) result = !result;
          if (term.Next != cNone) {
            frame.Stage = 2;
            stack.push_back({frame.Term, false, result});
            continue;
          }
          [[fallthrough]];
        default:
          known = result;
          stack.pop_back();
      }
      continue;
    }
    switch (frame.Stage++) {
      case 0:
        if (frame.UpToHere == term.And) {
          stack.push_back({term.Next, true});
          continue;
        }
        result = frame.UpToHere;
        [[fallthrough]];
      case 1:
        frame.Stage = 2;
        if (Fresh(term.Next).Next != cNone) {
          stack.push_back({term.Next, false, result});
          continue;
        }
        [[fallthrough]];
      default:
        known = result;
        stack.pop_back();
    }
  }
  return result;
}

bool TPathFilter::ValueOf(TTerm& Term) {
  Assert(Term.Kind != tkNone, u"An expression without a value!");
  if (Term.Kind == tkComparison) return Compare(Term);
  return FirstOf(Term.Left) != nullptr;
}

TJSONNode* TPathFilter::FirstOf(TOperand& Operand) {
  if (FRoot && Operand.OfRoot) return *Operand.OfRoot;
  const auto found = Operand.Path->Follow(*FTree, FNode, false, FRoot);
  TJSONNode* const first = found.empty() ? nullptr : found[0];
  if (FRoot && Operand.Path->IsOfRoot()) Operand.OfRoot = first;
  return first;
}

Variant TPathFilter::OperandValue(TOperand& Operand) {
  if (Operand.Text.empty()) return Null();
  if (!Operand.Path) return Operand.Text;
  TJSONNode* const node = FirstOf(Operand);
  if (!node) return Null();
  if (node->Class() == jcSimple) return ZmVarToStr(ValueOfSimple(*node));
  return TJSONNodes::ValueOf(*FTree, node)->GetValueObj()->GetAsString();
}

bool TPathFilter::Compare(TTerm& Term) {
  const Variant leftValue = OperandValue(Term.Left), rightValue = OperandValue(Term.Right);
  if (leftValue.IsNull() || rightValue.IsNull()) {
    FInvalid = true;
    return false;
  }
  String left = leftValue.TextRef(), right = rightValue.TextRef();
  if (StartsQuoted(left) || StartsQuoted(right)) {
    left = ZmStripLiterals(left);
    right = ZmStripLiterals(right);
  } else {
    const TReading l(left), r(right);
    if (l.IsInteger && r.IsInteger) return ComparesAs(Term.Operator, l.Integer, r.Integer);
    if (l.IsFloat && r.IsFloat) return ComparesAs(Term.Operator, l.Float, r.Float);
    if (l.IsBoolean && r.IsBoolean) return ComparesAs(Term.Operator, l.Boolean, r.Boolean);
    if (l.IsFloat || r.IsFloat) {
      FInvalid = true;
      return false;
    }
  }
  if (!FIgnoreCase) return ComparesAs(Term.Operator, left, right);
  if (Term.Operator == opEqual || Term.Operator == opUnequal)
    return SameText(left, right) == (Term.Operator == opEqual);
  return ComparesAs(Term.Operator, LowerCase(left), LowerCase(right));
}

}  // namespace zm::detail
