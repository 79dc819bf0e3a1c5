#include "zamrit/xml/xpath/PredicateDetail.h"

#include <optional>
#include <utility>

#include "zamrit/common/SysUtils.h"
#include "zamrit/platform/ASCIIDetail.h"
#include "zamrit/platform/ScanDetail.h"
#include "zamrit/xml/dom/TreeDetail.h"
#include "zamrit/xml/xpath/ParsingDetail.h"

namespace zm::detail {

namespace {

std::optional<TZmXPathValueComparisonOperator> OperatorOf(StringView Text) {
  if (Text == u"=") return opEqual;
  if (Text == u"!=" || Text == u"<>") return opUnequal;
  if (Text == u"<" || Text == u"&lt;") return opSmaller;
  if (Text == u">" || Text == u"&gt;") return opGreater;
  if (Text == u"<=" || Text == u"&lt;=") return opSmallerEqual;
  if (Text == u">=" || Text == u"&gt;=") return opGreaterEqual;
  return std::nullopt;
}

/// A parser that need not stand on the heap.
class TLocalParser final : public TZmTextParser {
 public:
  using TZmTextParser::TZmTextParser;
  ~TLocalParser() override = default;
};

/// Reads the text of a predicate into an equation.
class TPredicateReader {
 public:
  TPredicateReader(StringView Text, TZmXPathEquation* Equation) : FText(Text), FParser(Text), FCursor(Equation) {}

  void Read() {
    if (FParser.ReadCharA() != '[') RaiseInvalid();
    do {
      SkipBlanks(FParser);
      FHandled = false;
      ReadOpening();
      ReadClosing();
      if (!FHandled && !FCursor->GetTerm()) ReadOperand();
      if (!FHandled) RaiseInvalid();
      SkipBlanks(FParser);
    } while (FParser.CurrChar() != u']' && !IsEnd(FParser, FParser.CurrChar()));
  }

 private:
  [[noreturn]] void RaiseInvalid() const { throw Exception(u"\"%s\" is an invalid filter expression!", {FText}); }

  /// What may begin or join an operand.
  void ReadOpening() {
    const char16_t c = FParser.CurrChar();
    if (!FCursor->GetTerm()) {
      if (c == u'(') {
        FCursor->SetValue(Create<TZmXPathChildTerm>(FCursor));
        FCursor = FCursor->AddFirstChild();
        StepOver();
      } else if (SkipWord(u"not")) {
        ReadNot();
      }
    } else if (SkipWord(u"and")) {
      ReadJoin(opAnd);
    } else if (SkipWord(u"or")) {
      ReadJoin(opOr);
    }
  }

  /// Skips a word, its first letter as it is and the others in any case.
  bool SkipWord(StringView Word) {
    if (FParser.CurrChar() != Word[0]) return false;
    const int length = static_cast<int>(Word.size());
    if (!SameText(FParser.PeekString(length), Word)) return false;
    FParser.SkipChars(length);
    return true;
  }

  void StepOver() {
    FParser.Next();
    FHandled = true;
  }

  /// Whether an operand may follow a word without a blank between them.
  bool IsAtOperand() {
    const char16_t c = FParser.CurrChar();
    return c == u'(' || c == u'@' || IsDigit(c);
  }

  // What stands behind a "not" without parentheses hangs on it to the end. Without an operand behind it, it is nothing.
  void ReadNot() {
    SkipBlanks(FParser);
    if (!IsAtOperand()) return;
    FCursor->SetValue(Create<TZmXPathNot>(FCursor));
    FCursor = FCursor->AddFirstChild();
    if (FParser.CurrChar() == u'(')
      StepOver();
    else
      FNotPending = true;
  }

  // A parenthesis behind an operand that had none becomes its child, which nobody asks.
  void ReadJoin(TZmXPathBoolOperator Operator) {
    const bool blank = FParser.CurrChar() == u' ';
    SkipBlanks(FParser);
    if (!IsAtOperand() && !blank) return;
    const bool asChild = FParser.CurrChar() == u'(' && FCursor->GetChilds().empty();
    FCursor = asChild ? FCursor->AddChild(Operator) : FCursor->AddSibling(Operator);
    FHandled = true;
  }

  void ReadClosing() {
    if (FParser.CurrChar() != u')') return;
    if (FCursor->GetParent()) FCursor = FCursor->GetParent();
    StepOver();
  }

  void ReadOperand() {
    FHandled = true;
    if (IsDigit(FParser.CurrChar())) {
      String digits;
      while (IsDigit(FParser.CurrChar())) digits += FParser.ReadChar();
      FCursor->NotePlace();
      FCursor->SetValue(Create<TZmXPathChildNodeX>(FCursor, StrToInt(digits)));
      FNotPending = false;
      return;
    }
    TZmOwner<TZmXPathBaseTerm> left = FCursor->ReadTerm(FParser);
    SkipBlanks(FParser);
    if (left->GetKind() == TTermKind::Function && left->GetIsBoolean()) {
      SetComparison(std::move(left), Create<TZmXPathConstantTerm>(FCursor, Variant(true)), opEqual);
    } else if (const String text = ReadOperator(); !text.empty()) {
      SkipBlanks(FParser);
      TZmOwner<TZmXPathBaseTerm> right = FCursor->ReadTerm(FParser);
      SkipBlanks(FParser);
      const auto found = OperatorOf(text);
      if (!found) throw EZmDomSyntax(u"The filter \"%s\" contains an invalid compare operator (%s)!", {FText, text});
      SetComparison(std::move(left), std::move(right), *found);
    } else {
      FCursor->SetValue(Wrapped(std::move(left)));
    }
    FNotPending = false;
  }

  // A "not" that waits for its operand takes the left side alone: whether there is such a node.
  void SetComparison(TZmOwner<TZmXPathBaseTerm> Left, TZmOwner<TZmXPathBaseTerm> Right,
                     TZmXPathValueComparisonOperator Operator) {
    if (FNotPending)
      FCursor->SetValue(Wrapped(std::move(Left)));
    else
      FCursor->SetValue(Create<TZmXPathValueComparison>(FCursor, std::move(Left), std::move(Right), Operator));
  }

  String ReadOperator() {
    String text;
    while (StringView(u"!<=>").find(FParser.CurrChar()) != StringView::npos) text += FParser.ReadChar();
    return text;
  }

  TZmOwner<TZmXPathBaseTerm> Wrapped(TZmOwner<TZmXPathBaseTerm> Term) const {
    if (Term->GetKind() != TTermKind::Path) return Term;
    return Create<TZmXPathHasNode>(FCursor, std::move(Term));
  }

  StringView FText;
  TLocalParser FParser;
  TZmXPathEquation* FCursor;
  bool FHandled = false;
  bool FNotPending = false;
};

}  // namespace

TPredicate::TPredicate(StringView Text, bool LocalNames, TZmXPathCollationClass Collation, int Depth, bool Repeats)
    : FEquation(Create<TZmXPathEquation>(LocalNames ? soLocalName : soQualifiedName, Collation, Depth)) {
  TPredicateReader(Text, FEquation.get()).Read();
  FRemembers = Repeats && !FEquation->DependsOnPlace();
}

bool TPredicate::Holds(const TZmDOMObjectList& Candidates, int Index) {
  if (!FRemembers) return FEquation->Evaluate(Candidates, Index);
  const auto* const node = static_cast<TZmDOMNode*>(Candidates[static_cast<std::size_t>(Index)]);
  if (!FAsked.Insert(node)) return FHolds.Has(node);
  return FEquation->Evaluate(Candidates, Index) && FHolds.Insert(node);
}

void TPredicate::Filter(TZmDOMObjectList& Candidates, TZmDOMObjectList& Kept) {
  constexpr std::size_t ahead = 8;
  Kept.clear();
  for (std::size_t i = 0; i < Candidates.size(); ++i) {
    // Predicates look at what is in a node, which in a large tree is far from it.
    if (i + 2 * ahead < Candidates.size()) {
      ZM_PREFETCH(Candidates[i + 2 * ahead]);
      const auto* const node = static_cast<TZmDOMNode*>(Candidates[i + ahead]);
      if (TDOMTree::CanHaveChildren(node)) ZM_PREFETCH(TDOMTree::First(node));
    }
    if (Holds(Candidates, static_cast<int>(i))) Kept.push_back(Candidates[i]);
  }
  Candidates.swap(Kept);
}

}  // namespace zm::detail
