#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "zamrit/common/TextParser.h"
#include "zamrit/platform/Objects.h"
#include "zamrit/platform/Strings.h"
#include "zamrit/platform/Variant.h"
#include "zamrit/xml/dom/Collations.h"
#include "zamrit/xml/dom/NodeList.h"
#include "zamrit/xml/dom/Types.h"

namespace zm {

class TZmXPathBaseTerm;
class TZmXPathValueTerm;

namespace detail {

class TValuePath;

/// What a term says about a candidate.
enum class TTruth : std::uint8_t { Empty, No, Yes };

inline TTruth TruthOf(bool Value) { return Value ? TTruth::Yes : TTruth::No; }
/// What the evaluation of other terms has to know about a term.
enum class TTermKind : std::uint8_t { Other, Constant, Path, Function };

/// The value that stands for a truth: null, or a boolean.
inline Variant ToVariant(TTruth Truth) { return Truth == TTruth::Empty ? Null() : Variant(Truth == TTruth::Yes); }

/// How deep parentheses, arguments and predicates may stand within each other.
inline constexpr int cDeepestXPath = 200;

}  // namespace detail

/// How a node of the tree of a predicate joins the one behind it.
enum TZmXPathBoolOperator : std::uint8_t { opNA, opAnd, opOr };

enum TZmXPathValueComparisonOperator : std::uint8_t {
  opUnequal,
  opEqual,
  opSmaller,
  opSmallerEqual,
  opGreater,
  opGreaterEqual
};

/// One operand of a predicate with its place among the others: what is joined to it by "and" and "or" is its sibling,
/// what stands in its parentheses its child. "and" and "or" have the same rank and are taken from left to right.
class TZmXPathEquation : public TObject {
  ZM_OBJECT(TZmXPathEquation, TObject)
 public:
  /// MatchOption is soLocalName or soQualifiedName.
  TZmXPathEquation(TZmDOMSelectMatchOption MatchOption, TZmXPathCollationClass Collation)
      : TZmXPathEquation(MatchOption, Collation, nullptr, 0) {}
  /// For a predicate that stands so deep within others.
  TZmXPathEquation(TZmDOMSelectMatchOption MatchOption, TZmXPathCollationClass Collation, int Depth)
      : TZmXPathEquation(MatchOption, Collation, nullptr, Depth) {}

  TZmDOMSelectMatchOption GetMatchOption() const { return FMatchOption; }
  TZmXPathCollationClass GetCollation() const { return FCollation; }
  TZmXPathBoolOperator GetOperation() const { return FOperation; }
  TZmXPathEquation* GetParent() const { return FParent; }
  TZmXPathEquation* GetSibling() const { return FSibling.get(); }
  const std::vector<TZmOwner<TZmXPathEquation>>& GetChilds() const { return FChilds; }
  TZmXPathBaseTerm* GetTerm() const { return FTerm.get(); }
  int GetDepth() const { return FDepth; }
  /// Whether a term anywhere in the predicate looks at more than the candidate and the tree: at its place among the
  /// others, or at what only a function of an application knows.
  bool DependsOnPlace() const { return FFirst->FDependsOnPlace; }
  /// Says that a term does.
  void NotePlace() { FFirst->FDependsOnPlace = true; }

  /// Takes a term, and frees the one that was there.
  void SetValue(TZmOwner<TZmXPathBaseTerm> Term);
  /// \name New nodes with the same options, owned by this one, which gets the operation. EZmDomSyntax for a child that
  /// would stand too deep: 200 levels of brackets and calls are taken
  ///@{
  TZmXPathEquation* AddFirstChild();
  TZmXPathEquation* AddChild(TZmXPathBoolOperator Op);
  TZmXPathEquation* AddSibling(TZmXPathBoolOperator Op);
  ///@}
  /// The options of a selection within the predicate: case-insensitive under TZmXPathCollationASCIICI alone.
  TZmDOMSelectOptions GetSelectOptions() const;

  /// Whether the predicate holds for List[Position]. False too where an operand that counts has no value. Raises what
  /// the terms raise.
  bool Evaluate(const TZmDOMObjectList& List, int Position);
  /// The same, telling in HasEmpty where an operand has had no value; it is never reset. Each operand is evaluated once
  /// at most, and the cost is linear in the number of siblings.
  bool Evaluate(const TZmDOMObjectList& List, int Position, bool& HasEmpty);

  /// Reads an operand: a constant, a function call, a list or a path. EZmDomSyntax for what is none, and beyond 200
  /// levels.
  TZmOwner<TZmXPathBaseTerm> ReadTerm(TZmTextParser& Parser);

 protected:
  ~TZmXPathEquation() override;

 private:
  class TChain;

  TZmXPathEquation(TZmDOMSelectMatchOption MatchOption, TZmXPathCollationClass Collation, TZmXPathEquation* Parent,
                   int Depth)
      : FMatchOption(MatchOption), FCollation(Collation), FParent(Parent), FFirst(this), FDepth(Depth) {}
  TZmOwner<TZmXPathEquation> Make(TZmXPathEquation* Parent, int Depth) const;
  bool IsUniform() const;
  detail::TTruth TermTruth(const TZmDOMObjectList& List, int Position) const;
  TZmOwner<TZmXPathBaseTerm> ReadNamedTerm(TZmTextParser& Parser);

  TZmDOMSelectMatchOption FMatchOption;
  TZmXPathBoolOperator FOperation = opNA;
  TZmXPathCollationClass FCollation;
  TZmXPathEquation* FParent;
  TZmXPathEquation* FFirst;  // of the predicate
  TZmOwner<TZmXPathEquation> FSibling;
  std::vector<TZmOwner<TZmXPathEquation>> FChilds;
  TZmOwner<TZmXPathBaseTerm> FTerm;
  int FDepth;
  int FNesting = 0;  // of the term that is being read
  bool FDependsOnPlace = false;
};

/// Part of a predicate that has a value. It is evaluated for one candidate after the other, and may be entered again
/// from within its own evaluation.
class TZmXPathBaseTerm : public TObject {
  ZM_OBJECT(TZmXPathBaseTerm, TObject)
 public:
  /// The value for List[Position], where List holds all candidates of the step: null, or unassigned, for none; a
  /// boolean, number or text; an array from 0 for several nodes.
  virtual void Value(Variant& Result, const TZmDOMObjectList& List, int Position) = 0;
  TZmXPathEquation* GetEquation() const { return FEquation; }
  bool GetIsBoolean() const { return FIsBoolean; }
  detail::TTermKind GetKind() const { return FKind; }

 protected:
  friend class TZmXPathEquation;
  friend class TZmXPathFunction;

  explicit TZmXPathBaseTerm(TZmXPathEquation* Equation, bool IsBoolean = false,
                            detail::TTermKind Kind = detail::TTermKind::Other)
      : FEquation(Equation), FIsBoolean(IsBoolean), FKind(Kind) {}
  ~TZmXPathBaseTerm() override = default;

  /// The value as an operand of "and" and "or", and as a text, empty for none. The text stands in the term or in
  /// Scratch, and is valid until either changes. What overrides them says the same as Value, but faster.
  virtual detail::TTruth Truth(const TZmDOMObjectList& List, int Position);
  virtual StringView Text(const TZmDOMObjectList& List, int Position, String& Scratch);

  TZmXPathEquation* FEquation;  // not owned
  bool FIsBoolean;

 private:
  detail::TTermKind FKind;
};

/// A text in double quotation marks, or a number without sign and exponent.
class TZmXPathConstantTerm final : public TZmXPathBaseTerm {
  ZM_OBJECT(TZmXPathConstantTerm, TZmXPathBaseTerm)
 public:
  /// Reads the constant. EZmDomSyntax for what is none.
  TZmXPathConstantTerm(TZmXPathEquation* Equation, TZmTextParser& Parser);
  TZmXPathConstantTerm(TZmXPathEquation* Equation, Variant Value)
      : TZmXPathBaseTerm(Equation, false, detail::TTermKind::Constant), FValue(std::move(Value)) {}
  const Variant& GetValue() const { return FValue; }
  void Value(Variant& Result, const TZmDOMObjectList& List, int Position) override;

 protected:
  ~TZmXPathConstantTerm() override = default;
  StringView Text(const TZmDOMObjectList& List, int Position, String& Scratch) override;

 private:
  Variant FValue;
};

/// A path from the candidate. The value of a node is its text; a namespace declaration has none.
class TZmXPathValueTerm final : public TZmXPathBaseTerm {
  ZM_OBJECT(TZmXPathValueTerm, TZmXPathBaseTerm)
 public:
  TZmXPathValueTerm(TZmXPathEquation* Equation, String Path)
      : TZmXPathValueTerm(Equation, std::move(Path), Equation->GetDepth()) {}
  /// For a path that stands so deep within brackets.
  TZmXPathValueTerm(TZmXPathEquation* Equation, String Path, int Depth);
  const String& GetPath() const { return FPath; }
  /// The nodes that the path leads to from List[Position], in a list that the caller owns.
  TZmOwner<TZmDOMNodeList> Nodes(const TZmDOMObjectList& List, int Position) const;
  void Value(Variant& Result, const TZmDOMObjectList& List, int Position) override;
  /// What reads the nodes without a list, made at first use.
  detail::TValuePath& Reader();

 protected:
  ~TZmXPathValueTerm() override;
  StringView Text(const TZmDOMObjectList& List, int Position, String& Scratch) override;

 private:
  String FPath;
  int FDepth;
  std::unique_ptr<detail::TValuePath> FReader;
};

/// A function call. What stands in its parentheses is read after construction by ParseParams, where there is a parser.
class TZmXPathFunctionTerm : public TZmXPathBaseTerm {
  ZM_OBJECT(TZmXPathFunctionTerm, TZmXPathBaseTerm)
 public:
  /// The cursor of the parser, which may be nil, stands behind the opening parenthesis.
  TZmXPathFunctionTerm(TZmXPathEquation* Equation, TZmTextParser* Parser)
      : TZmXPathBaseTerm(Equation, false, detail::TTermKind::Function), FParser(Parser) {}
  void AfterConstruction() override;

 protected:
  ~TZmXPathFunctionTerm() override = default;
  /// Skips to behind the parenthesis that closes the call.
  virtual void ParseParams(TZmTextParser& Parser);

 private:
  TZmTextParser* FParser;  // until the call has been read
};

/// first(): whether the candidate is the first of the step.
class TZmXPathFirstNode final : public TZmXPathFunctionTerm {
  ZM_OBJECT(TZmXPathFirstNode, TZmXPathFunctionTerm)
 public:
  using TZmXPathFunctionTerm::TZmXPathFunctionTerm;
  void Value(Variant& Result, const TZmDOMObjectList& List, int Position) override;

 protected:
  ~TZmXPathFirstNode() override = default;
};

/// last(): whether the candidate is the last of the step.
class TZmXPathLastNode final : public TZmXPathFunctionTerm {
  ZM_OBJECT(TZmXPathLastNode, TZmXPathFunctionTerm)
 public:
  using TZmXPathFunctionTerm::TZmXPathFunctionTerm;
  void Value(Variant& Result, const TZmDOMObjectList& List, int Position) override;

 protected:
  ~TZmXPathLastNode() override = default;
};

/// position(): the place of the candidate in the step, from 1.
class TZmXPathFnPositionTerm final : public TZmXPathFunctionTerm {
  ZM_OBJECT(TZmXPathFnPositionTerm, TZmXPathFunctionTerm)
 public:
  using TZmXPathFunctionTerm::TZmXPathFunctionTerm;
  void Value(Variant& Result, const TZmDOMObjectList& List, int Position) override;

 protected:
  ~TZmXPathFnPositionTerm() override = default;
};

/// node(): true.
class TZmXPathFnNodeTerm final : public TZmXPathFunctionTerm {
  ZM_OBJECT(TZmXPathFnNodeTerm, TZmXPathFunctionTerm)
 public:
  using TZmXPathFunctionTerm::TZmXPathFunctionTerm;
  void Value(Variant& Result, const TZmDOMObjectList& List, int Position) override;

 protected:
  ~TZmXPathFnNodeTerm() override = default;
};

/// What stands in parentheses: the child of the equation. False where the child has no value.
class TZmXPathChildTerm : public TZmXPathBaseTerm {
  ZM_OBJECT(TZmXPathChildTerm, TZmXPathBaseTerm)
 public:
  explicit TZmXPathChildTerm(TZmXPathEquation* Equation) : TZmXPathBaseTerm(Equation, true) {}
  /// Raises Exception where the equation does not have exactly one child.
  void Value(Variant& Result, const TZmDOMObjectList& List, int Position) override;

 protected:
  ~TZmXPathChildTerm() override = default;
  detail::TTruth ChildTruth(const TZmDOMObjectList& List, int Position, StringView Complaint) const;
};

/// The negation of what stands behind it. False too where that has no value.
class TZmXPathNot final : public TZmXPathChildTerm {
  ZM_OBJECT(TZmXPathNot, TZmXPathChildTerm)
 public:
  using TZmXPathChildTerm::TZmXPathChildTerm;
  void Value(Variant& Result, const TZmDOMObjectList& List, int Position) override;

 protected:
  ~TZmXPathNot() override = default;
};

/// Whether the candidate has an index, from 0.
class TZmXPathChildNodeX final : public TZmXPathBaseTerm {
  ZM_OBJECT(TZmXPathChildNodeX, TZmXPathBaseTerm)
 public:
  TZmXPathChildNodeX(TZmXPathEquation* Equation, int Index) : TZmXPathBaseTerm(Equation, true), FIndex(Index) {}
  void Value(Variant& Result, const TZmDOMObjectList& List, int Position) override;

 protected:
  ~TZmXPathChildNodeX() override = default;

 private:
  int FIndex;
};

/// Whether a path leads to a node, or another term has a value.
class TZmXPathHasNode final : public TZmXPathBaseTerm {
  ZM_OBJECT(TZmXPathHasNode, TZmXPathBaseTerm)
 public:
  TZmXPathHasNode(TZmXPathEquation* Equation, TZmOwner<TZmXPathBaseTerm> Path)
      : TZmXPathBaseTerm(Equation, true), FPath(std::move(Path)) {}
  void Value(Variant& Result, const TZmDOMObjectList& List, int Position) override;

 protected:
  ~TZmXPathHasNode() override = default;
  detail::TTruth Truth(const TZmDOMObjectList& List, int Position) override;

 private:
  TZmOwner<TZmXPathBaseTerm> FPath;
};

/// A comparison. Of several nodes one that fits is enough. Null where a side has no value.
class TZmXPathValueComparison final : public TZmXPathBaseTerm {
  ZM_OBJECT(TZmXPathValueComparison, TZmXPathBaseTerm)
 public:
  /// Where CompareValues is all that is asked for, the sides may be nil.
  TZmXPathValueComparison(TZmXPathEquation* Equation, TZmOwner<TZmXPathBaseTerm> Value1,
                          TZmOwner<TZmXPathBaseTerm> Value2, TZmXPathValueComparisonOperator Operator);
  void Value(Variant& Result, const TZmDOMObjectList& List, int Position) override;
  /// A boolean, or null where either value is null. Texts compare by the collation; a number and a text that begins
  /// like one as numbers; all else as Variants do, which may raise EVariantTypeCastError.
  Variant CompareValues(const Variant& Value1, const Variant& Value2) const;

 protected:
  ~TZmXPathValueComparison() override;
  detail::TTruth Truth(const TZmDOMObjectList& List, int Position) override;

 private:
  struct TSide;
  struct TSides;
  class TValues;

  TZmOwner<TZmXPathBaseTerm> FValue1, FValue2;
  std::unique_ptr<TSides> FSides;
  TZmXPathValueComparisonOperator FOperator;
};

/// Terms in a row. The value is the text of them all, joined by ", "; empty where one has no value.
class TZmXPathListTerm : public TZmXPathBaseTerm {
  ZM_OBJECT(TZmXPathListTerm, TZmXPathBaseTerm)
 public:
  int Count() const { return static_cast<int>(FList.size()); }
  TZmXPathBaseTerm* GetTerm(int Index) const { return FList.at(static_cast<std::size_t>(Index)).get(); }
  void Value(Variant& Result, const TZmDOMObjectList& List, int Position) override;

 protected:
  /// Reads the terms up to a closing bracket; the cursor stands on the opening one.
  TZmXPathListTerm(TZmXPathEquation* Equation, TZmTextParser& Parser, char16_t Closing);
  ~TZmXPathListTerm() override = default;

 private:
  std::vector<TZmOwner<TZmXPathBaseTerm>> FList;
};

/// A list in parentheses.
class TZmXPathSequenceTerm final : public TZmXPathListTerm {
  ZM_OBJECT(TZmXPathSequenceTerm, TZmXPathListTerm)
 public:
  TZmXPathSequenceTerm(TZmXPathEquation* Equation, TZmTextParser& Parser) : TZmXPathListTerm(Equation, Parser, u')') {}

 protected:
  ~TZmXPathSequenceTerm() override = default;
};

/// A list in brackets.
class TZmXPathArrayTerm final : public TZmXPathListTerm {
  ZM_OBJECT(TZmXPathArrayTerm, TZmXPathListTerm)
 public:
  TZmXPathArrayTerm(TZmXPathEquation* Equation, TZmTextParser& Parser) : TZmXPathListTerm(Equation, Parser, u']') {}

 protected:
  ~TZmXPathArrayTerm() override = default;
};

}  // namespace zm
