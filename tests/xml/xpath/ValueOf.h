#pragma once

#include <string>

#include "zamrit/xml/uZmXPath.h"

namespace zm {

/// A value in short: texts between quotation marks, null and unset for none.
inline std::string Shown(const Variant& Value) {
  if (Value.IsEmpty()) return "unset";
  if (Value.IsNull()) return "null";
  if (VarType(Value) == varBoolean) return Value.AsBoolean() ? "true" : "false";
  const std::string text = ToUTF8(VarToStr(Value));
  return VarIsStr(Value) ? '"' + text + '"' : text;
}

/// The value of an expression for a node; or the message of what it raises, behind the code that it may have.
inline std::string ValueOf(TZmDOMNode& Node, const std::string& Expression,
                           TZmXPathCollationClass Collation = TZmXPathCollationASCIICI,
                           TZmDOMSelectMatchOption MatchOption = soQualifiedName) {
  try {
    const auto equation = Create<TZmXPathEquation>(MatchOption, Collation);
    const String text = FromUTF8(Expression);
    const auto parser = Create<TZmTextParser>(text);
    Variant value;
    equation->ReadTerm(*parser)->Value(value, {&Node}, 0);
    return Shown(value);
  } catch (const EZmXPathException& e) {
    return ToUTF8(e.GetErrorCode()) + ": " + e.what();
  } catch (const Exception& e) {
    return e.what();
  }
}

}  // namespace zm
