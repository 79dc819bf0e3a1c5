#pragma once

#include "zamrit/xml/xpath/Functions.h"

namespace zm {

/// The functions of the library, but for "string": name, class behind TZmXPathFn.
#define ZM_XPATH_FUNCTIONS(F)                                 \
  F(u"text", Text)                                            \
  F(u"node-name", NodeName)                                   \
  F(u"nilled", Nilled)                                        \
  F(u"data", Data)                                            \
  F(u"base-uri", BaseUri)                                     \
  F(u"document-uri", DocumentUri)                             \
  F(u"error", Error)                                          \
  F(u"trace", Trace)                                          \
  F(u"abs", Abs)                                              \
  F(u"ceiling", Ceiling)                                      \
  F(u"floor", Floor)                                          \
  F(u"round", Round)                                          \
  F(u"half-to-even", RoundHalfToEven)                         \
  F(u"number", Number)                                        \
  F(u"codepoints-to-string", CodepointsToString)              \
  F(u"string-to-codepoints", StringToCodepoints)              \
  F(u"compare", Compare)                                      \
  F(u"codepoint-equal", CodepointEqual)                       \
  F(u"concat", Concat)                                        \
  F(u"string-join", StringJoin)                               \
  F(u"substring", Substring)                                  \
  F(u"string-length", StringLength)                           \
  F(u"normalize-space", NormalizeSpace)                       \
  F(u"normalize-unicode", NormalizeUnicode)                   \
  F(u"simplify", Simplify)                                    \
  F(u"upper-case", UpperCase)                                 \
  F(u"lower-case", LowerCase)                                 \
  F(u"translate", Translate)                                  \
  F(u"contains", Contains)                                    \
  F(u"starts-with", StartsWith)                               \
  F(u"ends-with", EndsWith)                                   \
  F(u"substring-before", SubstringBefore)                     \
  F(u"substring-after", SubstringAfter)                       \
  F(u"matches", Matches)                                      \
  F(u"replace", Replace)                                      \
  F(u"tokenize", Tokenize)                                    \
  F(u"true", True)                                            \
  F(u"false", False)                                          \
  F(u"boolean", Boolean)                                      \
  F(u"not", Not)                                              \
  F(u"years-from-duration", YearsFromDuration)                \
  F(u"months-from-duration", MonthsFromDuration)              \
  F(u"days-from-duration", DaysFromDuration)                  \
  F(u"hours-from-duration", HoursFromDuration)                \
  F(u"minutes-from-duration", MinutesFromDuration)            \
  F(u"seconds-from-duration", SecondsFromDuration)            \
  F(u"dateTime", DateTime)                                    \
  F(u"year-from-dateTime", YearFromDateTime)                  \
  F(u"month-from-dateTime", MonthFromDateTime)                \
  F(u"day-from-dateTime", DayFromDateTime)                    \
  F(u"hours-from-dateTime", HoursFromDateTime)                \
  F(u"minutes-from-dateTime", MinutesFromDateTime)            \
  F(u"seconds-from-dateTime", SecondsFromDateTime)            \
  F(u"timezone-from-dateTime", TimeZoneFromDateTime)          \
  F(u"year-from-date", YearFromDate)                          \
  F(u"month-from-date", MonthFromDate)                        \
  F(u"day-from-date", DayFromDate)                            \
  F(u"timezone-from-date", TimeZoneFromDate)                  \
  F(u"hours-from-time", HoursFromTime)                        \
  F(u"minutes-from-time", MinutesFromTime)                    \
  F(u"seconds-from-time", SecondsFromTime)                    \
  F(u"timezone-from-time", TimeZoneFromTime)                  \
  F(u"adjust-dateTime-to-timezone", AdjustDateTimeToTimeZone) \
  F(u"adjust-date-to-timezone", AdjustDateToTimeZone)         \
  F(u"adjust-time-to-timezone", AdjustTimeToTimeZone)

#define ZM_XPATH_FUNCTION_CLASS(Name, Suffix)                                         \
  class TZmXPathFn##Suffix : public TZmXPathFunction {                                \
    ZM_OBJECT(TZmXPathFn##Suffix, TZmXPathFunction)                                   \
   public:                                                                            \
    using TZmXPathFunction::TZmXPathFunction;                                         \
    void Value(Variant& Result, const TZmDOMObjectList& List, int Position) override; \
                                                                                      \
   protected:                                                                         \
    ~TZmXPathFn##Suffix() override = default;                                         \
  };
ZM_XPATH_FUNCTIONS(ZM_XPATH_FUNCTION_CLASS)
#undef ZM_XPATH_FUNCTION_CLASS

/// string(): it refuses lists while it is read.
class TZmXPathFnString : public TZmXPathFunction {
  ZM_OBJECT(TZmXPathFnString, TZmXPathFunction)
 public:
  using TZmXPathFunction::TZmXPathFunction;
  void Value(Variant& Result, const TZmDOMObjectList& List, int Position) override;

 protected:
  ~TZmXPathFnString() override = default;
  void ParseParams(TZmTextParser& Parser) override;
};

}  // namespace zm
