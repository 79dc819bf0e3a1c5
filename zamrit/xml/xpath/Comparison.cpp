#include <algorithm>
#include <optional>
#include <string_view>
#include <unordered_set>

#include "zamrit/common/ComparisonDetail.h"
#include "zamrit/common/SysUtils.h"
#include "zamrit/common/ZmTypes.h"
#include "zamrit/platform/ASCIIDetail.h"
#include "zamrit/xml/xpath/ValuePathDetail.h"

namespace zm {

using detail::ComparesAs;
using detail::IsASCII;
using detail::IsDigit;
using detail::LowerASCII;
using detail::TTermKind;
using detail::TTruth;
using detail::TValuePath;

namespace {

/// One value of a side, in the form in which it compares. Not copied: it may point into itself.
struct TOperand {
  enum class TKind { Null, Whole, Real, Plain, Text, Other };

  TOperand() = default;
  TOperand(const TOperand&) = delete;
  TOperand& operator=(const TOperand&) = delete;

  void Set(const Variant& Value);
  void Set(const TZmDOMNode* Node);
  bool IsText() const { return Kind == TKind::Plain || Kind == TKind::Text; }
  /// The text in UTF-16.
  StringView Wide() const {
    if (Kind == TKind::Plain && FWidened.size() != Narrow.size()) FWidened.assign(Narrow.begin(), Narrow.end());
    return Kind == TKind::Plain ? StringView(FWidened) : WideText;
  }
  Variant ToVariant() const { return IsText() ? Variant(Wide()) : Held; }

  TKind Kind = TKind::Null;
  std::string_view Narrow;  // of a plain text: ASCII
  StringView WideText;      // of any other text
  Variant Held;             // of what is no text, and what holds the text of a Variant

 private:
  std::string FNarrow;
  mutable String FWidened;
};

void TOperand::Set(const Variant& Value) {
  Held = Value;
  switch (TZmTypes::VarMainTypeKind(Value)) {
    case mtkNone:
      Kind = TKind::Null;
      break;
    case mtkInteger:
      Kind = TKind::Whole;
      break;
    case mtkFloat:
      Kind = TKind::Real;
      break;
    case mtkString:
      WideText = Held.TextRef();
      Kind = IsASCII(WideText) ? TKind::Plain : TKind::Text;
      if (Kind == TKind::Plain) {
        FNarrow.assign(WideText.size(), '\0');
        std::transform(WideText.begin(), WideText.end(), FNarrow.begin(),
                       [](char16_t c) { return static_cast<char>(c); });
        Narrow = FNarrow;
        FWidened = WideText;
      }
      break;
    default:
      Kind = TKind::Other;
  }
}

void TOperand::Set(const TZmDOMNode* Node) {
  if (detail::PlainValue(Node, Narrow)) {
    Kind = TKind::Plain;
    FWidened.clear();
  } else if (detail::NodeValue(Node, FWidened)) {
    Kind = TKind::Text;
    WideText = FWidened;
  } else {
    Kind = TKind::Null;
  }
}

/// A value as a number: which of the two is told by the flag.
struct TNumber {
  bool IsWhole;
  std::int64_t Whole;
  double Real;

  double AsReal() const { return IsWhole ? static_cast<double>(Whole) : Real; }
};

std::optional<TNumber> ToNumber(StringView Text) {
  if (Text.empty() || !(IsDigit(Text[0]) || Text[0] == u'.')) return std::nullopt;
  TNumber number{true, 0, 0};
  if (TryStrToInt64(Text, number.Whole)) return number;
  number.IsWhole = false;
  if (TryStrToFloat(Text, number.Real)) return number;
  return std::nullopt;
}

/// Whether a text is digits alone, no more than always fit.
bool FewDigits(std::string_view Text, std::int64_t& Whole) {
  if (Text.empty() || Text.size() > 18) return false;
  Whole = 0;
  for (const char c : Text) {
    if (c < '0' || c > '9') return false;
    Whole = 10 * Whole + (c - '0');
  }
  return true;
}

std::optional<TNumber> ToNumber(const TOperand& Operand) {
  switch (Operand.Kind) {
    case TOperand::TKind::Whole:
      return TNumber{true, Operand.Held.AsInteger(), 0};
    case TOperand::TKind::Real:
      return TNumber{false, 0, Operand.Held.AsDouble()};
    case TOperand::TKind::Plain: {
      std::int64_t whole = 0;
      if (FewDigits(Operand.Narrow, whole)) return TNumber{true, whole, 0};
      return ToNumber(Operand.Wide());
    }
    case TOperand::TKind::Text:
      return ToNumber(Operand.WideText);
    default:
      return ToNumber(ZmVarToStr(Operand.Held));
  }
}

bool Holds(TZmXPathValueComparisonOperator Operator, const Variant& Left, const Variant& Right) {
  switch (Operator) {
    case opUnequal:
      return VarCmpNE(Left, Right);
    case opEqual:
      return VarCmpEQ(Left, Right);
    case opSmaller:
      return VarCmpLT(Left, Right);
    case opSmallerEqual:
      return VarCmpLE(Left, Right);
    case opGreater:
      return VarCmpGT(Left, Right);
    default:
      return VarCmpGE(Left, Right);
  }
}

bool SamePlain(std::string_view Left, std::string_view Right, bool IgnoreCase) {
  if (Left == Right) return true;
  return IgnoreCase && std::equal(Left.begin(), Left.end(), Right.begin(), Right.end(),
                                  [](char a, char b) { return LowerASCII(a) == LowerASCII(b); });
}

bool CompareTexts(TZmXPathValueComparisonOperator Operator, const TOperand& Left, const TOperand& Right,
                  TZmXPathCollationClass Collation) {
  if (Operator == opEqual || Operator == opUnequal) {
    const bool plain = Left.Kind == TOperand::TKind::Plain && Right.Kind == TOperand::TKind::Plain;
    const bool same = plain && Collation->IsBuiltIn()
                          ? SamePlain(Left.Narrow, Right.Narrow, Collation == TZmXPathCollationASCIICI)
                          : Collation->SameText(Left.Wide(), Right.Wide());
    return same == (Operator == opEqual);
  }
  return ComparesAs(Operator, Collation->Compare(Left.Wide(), Right.Wide()), 0);
}

TTruth Compare(TZmXPathValueComparisonOperator Operator, const TOperand& Left, const TOperand& Right,
               TZmXPathCollationClass Collation) {
  using TKind = TOperand::TKind;
  if (Left.Kind == TKind::Null || Right.Kind == TKind::Null) return TTruth::Empty;
  if (Left.IsText() && Right.IsText()) return detail::TruthOf(CompareTexts(Operator, Left, Right, Collation));
  const std::optional<TNumber> left = ToNumber(Left), right = ToNumber(Right);
  if (!left || !right) return detail::TruthOf(Holds(Operator, Left.ToVariant(), Right.ToVariant()));
  if (left->IsWhole && right->IsWhole) return detail::TruthOf(ComparesAs(Operator, left->Whole, right->Whole));
  return detail::TruthOf(ComparesAs(Operator, left->AsReal(), right->AsReal()));
}

/// The common case, without a copy of the value.
TTruth CompareNode(TZmXPathValueComparisonOperator Operator, const TZmDOMNode* Node, const TOperand& Constant,
                   TZmXPathCollationClass Collation) {
  std::string_view value;
  if (detail::PlainValue(Node, value)) {
    const bool forEquality = Operator == opEqual || Operator == opUnequal;
    if (Constant.Kind == TOperand::TKind::Plain && forEquality && Collation->IsBuiltIn())
      return detail::TruthOf(SamePlain(value, Constant.Narrow, Collation == TZmXPathCollationASCIICI) ==
                             (Operator == opEqual));
    std::int64_t whole = 0;
    if (Constant.Kind == TOperand::TKind::Whole && FewDigits(value, whole))
      return detail::TruthOf(ComparesAs(Operator, whole, Constant.Held.AsInteger()));
  }
  TOperand operand;
  operand.Set(Node);
  return Compare(Operator, operand, Constant, Collation);
}

}  // namespace

/// A side as it has been written: a path, whose nodes are read off the tree, a constant, or anything else.
struct TZmXPathValueComparison::TSide {
  explicit TSide(TZmXPathBaseTerm& Of)
      : Term(Of), IsPath(Of.GetKind() == TTermKind::Path), IsConstant(Of.GetKind() == TTermKind::Constant) {
    if (IsConstant) Constant.Set(static_cast<TZmXPathConstantTerm&>(Of).GetValue());
  }
  TValuePath& Path() const { return static_cast<TZmXPathValueTerm&>(Term).Reader(); }

  TZmXPathBaseTerm& Term;
  bool IsPath;
  bool IsConstant;
  TOperand Constant;
};

struct TZmXPathValueComparison::TSides {
  TSides(TZmXPathBaseTerm& Value1, TZmXPathBaseTerm& Value2) : Left(Value1), Right(Value2) {}

  TSide Left, Right;
};

/// The values of a side for one candidate: one, which may be null, or those of several nodes or of an array.
class TZmXPathValueComparison::TValues {
 public:
  TValues(TSide& Side, const TZmDOMObjectList& List, int Position) : FSide(Side) {
    if (Side.IsPath) {
      FNodes.emplace(Side.Path(), static_cast<TZmDOMNode*>(List[static_cast<std::size_t>(Position)]));
      FCount = std::max<std::size_t>(FNodes->Count(), 1);
    } else if (!Side.IsConstant) {
      Side.Term.Value(FValue, List, Position);
      if (VarIsArray(FValue)) FCount = static_cast<std::size_t>(VarArrayHighBound(FValue) + 1);
    }
  }
  std::size_t Count() const { return FCount; }
  bool AreNodes() const { return FNodes.has_value(); }
  /// A value, which stands in Room or in the side.
  const TOperand& At(std::size_t Index, TOperand& Room) const {
    if (FSide.IsConstant) return FSide.Constant;
    if (!FNodes)
      Room.Set(VarIsArray(FValue) ? VarArrayGet(FValue, static_cast<std::int64_t>(Index)) : FValue);
    else if (FNodes->Count() > 0)
      Room.Set((*FNodes)[Index]);
    else
      Room.Kind = TOperand::TKind::Null;
    return Room;
  }
  /// The texts of the nodes that have a value. Tells in LastIsNull whether the last one has none.
  std::vector<String> Texts(bool& LastIsNull) const {
    std::vector<String> texts;
    texts.reserve(FCount);
    TOperand room;
    for (std::size_t i = 0; i < FCount; ++i) {
      At(i, room);
      LastIsNull = room.Kind == TOperand::TKind::Null;
      if (!LastIsNull) texts.emplace_back(room.Wide());
    }
    return texts;
  }

 private:
  TSide& FSide;
  std::optional<TValuePath::TNodes> FNodes;
  Variant FValue;
  std::size_t FCount = 1;
};

namespace {

/// Finds the texts that a text is equal to under a collation of the library.
class TTextIndex {
 public:
  TTextIndex(std::vector<String> Texts, TZmXPathCollationClass Collation) : FCollation(Collation) {
    for (String& text : Texts) {
      if (IsASCII(text))
        FASCII.insert(Folded(text));
      else
        FOthers.push_back(text);
      FAll.push_back(std::move(text));
    }
    Sort(FAll);
    Sort(FOthers);
  }
  bool Has(const String& Text) const {
    if (!IsASCII(Text)) return Has(FAll, Text);
    return FASCII.count(Folded(Text)) > 0 || Has(FOthers, Text);
  }

 private:
  auto Before() const {
    return [this](const String& a, const String& b) { return FCollation->Compare(a, b) < 0; };
  }
  void Sort(std::vector<String>& Texts) const { std::sort(Texts.begin(), Texts.end(), Before()); }
  bool Has(const std::vector<String>& Texts, const String& Text) const {
    return std::binary_search(Texts.begin(), Texts.end(), Text, Before());
  }
  String Folded(const String& Text) const { return FCollation == TZmXPathCollationASCIICI ? LowerCase(Text) : Text; }

  TZmXPathCollationClass FCollation;
  std::vector<String> FAll, FOthers;
  std::unordered_set<String> FASCII;  // in lower case where case does not matter
};

/// Whether the operator holds between one of these texts and one of those, without comparing each with each.
bool AnyHolds(TZmXPathValueComparisonOperator Operator, std::vector<String> Left, std::vector<String> Right,
              TZmXPathCollationClass Collation) {
  if (Left.empty() || Right.empty()) return false;
  const auto before = [&](const String& a, const String& b) { return Collation->Compare(a, b) < 0; };
  const auto least = [&](const auto& texts) { return *std::min_element(texts.begin(), texts.end(), before); };
  const auto greatest = [&](const auto& texts) { return *std::max_element(texts.begin(), texts.end(), before); };
  const auto differs = [&](const auto& texts, const String& from) {
    return std::any_of(texts.begin(), texts.end(),
                       [&](const String& text) { return !Collation->SameText(text, from); });
  };
  switch (Operator) {
    case opEqual: {
      const TTextIndex index(std::move(Right), Collation);
      return std::any_of(Left.begin(), Left.end(), [&](const String& text) { return index.Has(text); });
    }
    case opUnequal:  // what is equal to one text is taken to be equal to what that is equal to
      return differs(Right, Left.front()) || differs(Left, Right.front());
    case opSmaller:
    case opSmallerEqual:
      return ComparesAs(Operator, Collation->Compare(least(Left), greatest(Right)), 0);
    default:
      return ComparesAs(Operator, Collation->Compare(greatest(Left), least(Right)), 0);
  }
}

}  // namespace

TZmXPathValueComparison::TZmXPathValueComparison(TZmXPathEquation* Equation, TZmOwner<TZmXPathBaseTerm> Value1,
                                                 TZmOwner<TZmXPathBaseTerm> Value2,
                                                 TZmXPathValueComparisonOperator Operator)
    : TZmXPathBaseTerm(Equation), FValue1(std::move(Value1)), FValue2(std::move(Value2)), FOperator(Operator) {}

TZmXPathValueComparison::~TZmXPathValueComparison() = default;

TTruth TZmXPathValueComparison::Truth(const TZmDOMObjectList& List, int Position) {
  constexpr std::size_t many = 10000;  // pairs, from which on it pays to put the values in order
  if (!FSides) FSides = std::make_unique<TSides>(*FValue1, *FValue2);
  const TZmXPathCollationClass collation = FEquation->GetCollation();
  if (FSides->Left.IsPath && FSides->Right.IsConstant) {
    TTruth truth = TTruth::Empty;
    FSides->Left.Path().Each(static_cast<TZmDOMNode*>(List[static_cast<std::size_t>(Position)]), [&](TZmDOMNode* node) {
      truth = CompareNode(FOperator, node, FSides->Right.Constant, collation);
      return truth == TTruth::Yes;
    });
    return truth;
  }
  const TValues left(FSides->Left, List, Position), right(FSides->Right, List, Position);
  TOperand leftRoom, rightRoom;
  if (left.AreNodes() && right.AreNodes() && collation->IsBuiltIn() && left.Count() * right.Count() > many) {
    bool leftNull = false, rightNull = false;
    std::vector<String> leftTexts = left.Texts(leftNull), rightTexts = right.Texts(rightNull);
    if (AnyHolds(FOperator, std::move(leftTexts), std::move(rightTexts), collation)) return TTruth::Yes;
    return leftNull || rightNull ? TTruth::Empty : TTruth::No;
  }
  TTruth truth = TTruth::No;
  for (std::size_t i = 0; i < left.Count(); ++i) {
    const TOperand& value = left.At(i, leftRoom);
    for (std::size_t j = 0; j < right.Count(); ++j) {
      truth = Compare(FOperator, value, right.At(j, rightRoom), collation);
      if (truth == TTruth::Yes) return truth;
    }
  }
  return truth;
}

void TZmXPathValueComparison::Value(Variant& Result, const TZmDOMObjectList& List, int Position) {
  Result = ToVariant(Truth(List, Position));
}

Variant TZmXPathValueComparison::CompareValues(const Variant& Value1, const Variant& Value2) const {
  TOperand left, right;
  left.Set(Value1);
  right.Set(Value2);
  return ToVariant(Compare(FOperator, left, right, FEquation->GetCollation()));
}

}  // namespace zm
