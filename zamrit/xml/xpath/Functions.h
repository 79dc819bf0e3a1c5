#pragma once

#include <utility>
#include <vector>

#include "zamrit/xml/xpath/Terms.h"

namespace zm {

/// A function of a predicate refuses its arguments, or has been called in order to fail.
class EZmXPathException : public EZmDomException {
 public:
  EZmXPathException(StringView ErrorCode, StringView Description, StringView ErrorObject = u"")
      : EZmDomException(Description), FErrorCode(ErrorCode), FErrorObject(ErrorObject) {}
  /// The code that the published standard of functions has for the failure, such as "XPTY0004".
  const String& GetErrorCode() const { return FErrorCode; }
  const String& GetErrorObject() const { return FErrorObject; }

 private:
  String FErrorCode, FErrorObject;
};

/// The base of functions that predicates call by name. A descendant says in Value what the function gives; how many
/// arguments it takes is its own business, and judged there. It is made once for each call that a predicate writes.
/// What it gives is to follow from its arguments, the candidate and its place, as predicates around the one with the
/// call may remember what they held for.
class TZmXPathFunction : public TZmXPathFunctionTerm {
  ZM_OBJECT(TZmXPathFunction, TZmXPathFunctionTerm)
 public:
  using TZmXPathFunctionTerm::TZmXPathFunctionTerm;

 protected:
  /// A text for the time of a call. The room that it takes is used again for the next candidate.
  class TText {
   public:
    TText(const TText&) = delete;
    TText& operator=(const TText&) = delete;
    ~TText() { FRoom = std::move(FScratch); }
    operator StringView() const { return FText; }  // NOLINT(google-explicit-constructor)

   private:
    friend class TZmXPathFunction;
    template <class F>
    TText(String& Room, F Read) : FRoom(Room), FScratch(std::move(Room)), FText(Read(FScratch)) {}

    String& FRoom;
    String FScratch;  // the room, out of reach of a call that comes back here
    StringView FText;
  };

  ~TZmXPathFunction() override = default;
  /// Reads the arguments up to the closing parenthesis.
  void ParseParams(TZmTextParser& Parser) override;

  int ParamCount() const { return static_cast<int>(FParams.size()); }
  TZmXPathBaseTerm& Param(int Index) const { return *FParams[static_cast<std::size_t>(Index)]; }
  /// The value of an argument.
  Variant ParamValue(int Index, const TZmDOMObjectList& List, int Position) const;
  /// The value of an argument as a text, empty for none; that of a node; and that of the first argument or, where there
  /// is none, of the candidate.
  TText ParamText(int Index, const TZmDOMObjectList& List, int Position);
  TText NodeText(const TZmDOMNode& Node);
  TText ParamOrContextText(const TZmDOMObjectList& List, int Position) {
    return ParamCount() > 0 ? ParamText(0, List, Position) : NodeText(Context(List, Position));
  }
  /// The one node that an argument leads to, which must be a path. EZmXPathException "XPDY0002" where there is none,
  /// "XPTY0004" where there are more; Signature names the function there, as in "fn:node-name(node)".
  TZmDOMNode& SingleNode(TZmXPathValueTerm& Argument, const TZmDOMObjectList& List, int Position,
                         StringView Signature) const;
  /// The node that a function is about: that of the first argument as above, nil where the argument is no path; the
  /// candidate where there is no argument.
  TZmDOMNode* NodeParam(const TZmDOMObjectList& List, int Position, StringView Signature) const;
  /// The candidate.
  static TZmDOMNode& Context(const TZmDOMObjectList& List, int Position) {
    return *static_cast<TZmDOMNode*>(List[static_cast<std::size_t>(Position)]);
  }
  /// EZmDomSyntax with a message unless the number of arguments lies within the limits.
  void CheckCount(int Least, int Most, StringView Message) const;

  std::vector<TZmOwner<TZmXPathBaseTerm>> FParams;

 private:
  String FRooms[2];
};

/// A reference to a class of functions.
using TZmXPathFunctionClass = TClassOf<TZmXPathFunction, TZmXPathEquation*, TZmTextParser*>;

/// Makes a function callable under a name, which counts with case. Of several under one name the first holds, those of
/// the library before all. Call it before selections run: it is not guarded against other threads.
void RegisterXPathFunction(StringView Name, TZmXPathFunctionClass FunctionClass);
/// The same for a class.
template <std::derived_from<TZmXPathFunction> T>
void RegisterXPathFunction(StringView Name) {
  RegisterXPathFunction(Name, TZmXPathFunctionClass::Of<T>());
}
/// A call of a function, its arguments read from the parser, which may be nil. EZmDomSyntax for a name that is not
/// registered.
TZmOwner<TZmXPathBaseTerm> CreateFunctionTerm(StringView Name, TZmXPathEquation* Equation, TZmTextParser* Parser);

/// Makes a collation known by a URI, which counts with case. Of several under one URI the first holds. Not guarded, as
/// above.
void RegisterXPathCollation(StringView URI, TZmXPathCollationClass Collation);
/// The collation of a URI. EZmDomSyntax where there is none.
TZmXPathCollationClass FindXPathCollation(StringView URI);

}  // namespace zm
