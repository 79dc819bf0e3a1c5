#include "Values.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <string_view>

#include "Allocations.h"
#include "Commands.h"
#include "Harness.h"
#include "Report.h"
#include "XMLEvents.h"
#include "zamrit/xml/uZmXMLUtils.h"

namespace zm::bench {
namespace {

enum TGoalKind { goNone, goSpeed, goTime, goTimes };

// At least so many GB/s, at most so many ns for each piece, or at most so many times the time of the other.
struct TGoal {
  TGoalKind Kind = goNone;
  double Value = 0;
};

struct TRow {
  std::string What;
  TValuesWork Ours;
  std::string Other;  // who does the same; empty: nobody
  TValuesWork Theirs;
  std::size_t Bytes = 0;       // of the source of one call, as we take it; 0: not told
  std::size_t OtherBytes = 0;  // and as the other takes it
  std::size_t Pieces = 1;      // references in one call
  TGoal Goal = {};
};

template <class F>
TValuesWork Repeated(F Convert) {
  return [Convert](std::size_t Count) {
    for (std::size_t i = 0; i < Count; ++i) Use(Convert(i));
  };
}

std::mt19937_64& Random() {
  static std::mt19937_64 random(20240301);
  return random;
}

// Words of ASCII letters, with EveryOther of the characters one that is to be escaped; 0: none.
std::string MakeText(std::size_t Length, std::size_t EveryOther) {
  std::string text;
  while (text.size() < Length) {
    if (EveryOther > 0 && Random()() % EveryOther == 0)
      text += "<>&\"'"[Random()() % 5];
    else
      text += "etaoin shrdlu cmfwypvbgkqjxz "[Random()() % 29];
  }
  return text;
}

// References between short words.
std::string MakeReferences(const std::vector<std::string_view>& Names, std::size_t Count) {
  std::string text;
  for (std::size_t i = 0; i < Count; ++i) {
    ((text += '&') += Names[Random()() % Names.size()]) += ';';
    text += MakeText(4, 0);
  }
  return text;
}

// The values that the rows stand on.
struct TInputs {
  struct TText {
    std::string UTF8;
    String UTF16;
    explicit TText(std::string Text) : UTF8(std::move(Text)), UTF16(FromUTF8(UTF8)) {}
  };

  static constexpr std::size_t cValues = 1000, cReferences = 1000;

  std::vector<TText> Plain, Marked, Escaped;
  TText Common{MakeReferences({"lt", "gt", "amp", "quot", "apos"}, cReferences)};
  TText Named{MakeReferences({"nbsp",   "eacute", "Auml", "szlig",  "ouml",   "ndash", "mdash", "hellip", "euro",
                              "alpha",  "Omega",  "pi",   "thinsp", "frac12", "deg",   "times", "laquo",  "raquo",
                              "ccedil", "Ntilde", "sup2", "spades", "there4", "rarr",  "copy",  "plusmn", "alefsym"},
                             cReferences)};
  TText Numeric{MakeReferences({"#9", "#10", "#13", "#38", "#233", "#8364", "#xE9", "#x20AC", "#x1F600"}, cReferences)};
  std::vector<double> Prices, Doubles;
  std::vector<std::int64_t> Integers;
  std::vector<TMoment> Moments;
  std::vector<TDateTime> Dates;
  std::vector<TText> PriceTexts, DoubleTexts, IntegerTexts, DateTexts;
  std::vector<std::string> PriceChars, DoubleChars, IntegerChars;

  TInputs() {
    for (const std::size_t length : {10u, 100u, 10000u}) {
      Plain.emplace_back(MakeText(length, 0));
      Marked.emplace_back(MakeText(length, 20));
      Escaped.emplace_back(ToUTF8(ZmStrToXML(Marked.back().UTF16, true, true)));
    }
    for (std::size_t i = 0; i < cValues; ++i) {
      const auto bits = Random()();
      Prices.push_back(static_cast<double>(bits % 10000000) / 100);
      Doubles.push_back(std::ldexp(static_cast<double>(Random()()), static_cast<int>(bits % 120) - 120));
      Integers.push_back(static_cast<std::int64_t>(Random()()) >> bits % 60);
      Moments.push_back({1970 + static_cast<int>(bits % 80), 1 + static_cast<int>(bits % 12),
                         1 + static_cast<int>(bits % 28), static_cast<int>(bits % 24), static_cast<int>(bits % 60),
                         static_cast<int>(bits % 59), static_cast<int>(bits % 1000)});
      const TMoment& m = Moments.back();
      Dates.push_back(EncodeDateTime(m.Year, m.Month, m.Day, m.Hour, m.Minute, m.Second, m.Millisecond));
      PriceTexts.emplace_back(ToUTF8(ZmDoubleToXML(Prices.back())));
      DoubleTexts.emplace_back(ToUTF8(ZmDoubleToXML(Doubles.back())));
      IntegerTexts.emplace_back(ToUTF8(ZmInt64ToXML(Integers.back())));
      DateTexts.emplace_back(ToUTF8(ZmDateTimeToXML(Dates.back())));
      PriceChars.push_back(PriceTexts.back().UTF8);
      DoubleChars.push_back(DoubleTexts.back().UTF8);
      IntegerChars.push_back(IntegerTexts.back().UTF8);
    }
  }
};

std::vector<TRow> EscapingRows(const TInputs& In) {
  std::vector<TRow> rows;
  const auto escape = [&rows](const std::string& What, const TInputs::TText& Text, const char* Other,
                              TValuesWork Theirs, TGoal Goal) {
    rows.push_back({"escape " + What, Repeated([&Text](std::size_t) { return ZmStrToXML(Text.UTF16, true, true); }),
                    Other, std::move(Theirs), Text.UTF16.size() * 2, Text.UTF8.size(), 1, Goal});
  };
  const auto decode = [&rows](const std::string& What, const TInputs::TText& Text, TGoal Goal, bool ByReference) {
    rows.push_back({"decode " + What, Repeated([&Text](std::size_t) { return ZmXMLToStr(Text.UTF16); }),
                    ByReference ? "" : "xmlStringLenDecodeEntities",
                    ByReference ? TValuesWork() : DecodeWithLibxml2(Text.UTF8), Text.UTF16.size() * 2, Text.UTF8.size(),
                    ByReference ? TInputs::cReferences : 1, Goal});
  };
  for (std::size_t i = 0; i < In.Plain.size(); ++i) {
    const TGoal goal = i == 0 ? TGoal{} : TGoal{goSpeed, 4};
    const std::string size = std::to_string(In.Plain[i].UTF8.size()) + " characters";
    escape(size + ", none to replace", In.Plain[i], "xmlEncodeSpecialChars", EscapeWithLibxml2(In.Plain[i].UTF8), goal);
    decode(size + ", no reference", In.Plain[i], goal, false);
  }
  for (std::size_t i = 1; i < In.Marked.size(); ++i) {
    const std::string size = std::to_string(In.Marked[i].UTF8.size()) + " characters, 5% to replace";
    escape(size, In.Marked[i], "xmlEncodeSpecialChars", EscapeWithLibxml2(In.Marked[i].UTF8), {});
    if (i == 2)
      escape(size, In.Marked[i], "xmlEncodeEntitiesReentrant", EscapeEntitiesWithLibxml2(In.Marked[i].UTF8), {});
    decode(std::to_string(In.Escaped[i].UTF8.size()) + " characters, the same escaped", In.Escaped[i], {}, false);
  }
  decode("the five names of XML, each", In.Common, {goTime, 25}, true);
  decode("names of HTML, each", In.Named, {goTime, 25}, true);
  decode("numeric references, each", In.Numeric, {goTime, 25}, true);
  return rows;
}

std::vector<TRow> NumberRows(const TInputs& In) {
  constexpr std::size_t mask = TInputs::cValues;
  const auto writeDoubles = [](const std::vector<double>& Values) {
    return Repeated([&Values](std::size_t I) { return ZmDoubleToXML(Values[I % mask]); });
  };
  const auto readDoubles = [](const std::vector<TInputs::TText>& Texts) {
    return Repeated([&Texts](std::size_t I) { return ZmXMLToDouble(Texts[I % mask].UTF16); });
  };
  const TGoal close{goTimes, 1.5};
  return {
      {"ZmDoubleToXML, prices", writeDoubles(In.Prices), "std::to_chars, general, 15", WriteDoublesWithStd(In.Prices),
       0, 0, 1, close},
      {"ZmDoubleToXML, any", writeDoubles(In.Doubles), "std::to_chars, general, 15", WriteDoublesWithStd(In.Doubles), 0,
       0, 1, close},
      {"ZmXMLToDouble, prices", readDoubles(In.PriceTexts), "std::from_chars", ReadDoublesWithStd(In.PriceChars), 0, 0,
       1, close},
      {"ZmXMLToDouble, 15 digits", readDoubles(In.DoubleTexts), "std::from_chars", ReadDoublesWithStd(In.DoubleChars),
       0, 0, 1, close},
      {"ZmInt64ToXML", Repeated([&In](std::size_t I) { return ZmInt64ToXML(In.Integers[I % mask]); }), "std::to_chars",
       WriteIntegersWithStd(In.Integers)},
      {"ZmXMLToInt64", Repeated([&In](std::size_t I) { return ZmXMLToInt64(In.IntegerTexts[I % mask].UTF16); }),
       "std::from_chars", ReadIntegersWithStd(In.IntegerChars)},
      {"ZmDateTimeToXML", Repeated([&In](std::size_t I) { return ZmDateTimeToXML(In.Dates[I % mask]); }),
       "snprintf of the fields", WriteMomentsWithStd(In.Moments)},
      {"ZmDateTimeToXML, UTC",
       Repeated([&In](std::size_t I) { return ZmDateTimeToXML(In.Dates[I % mask], tzfUTC); }),
       "",
       {}},
      {"ZmXMLToDateTime",
       Repeated([&In](std::size_t I) { return ZmXMLToDateTime(In.DateTexts[I % mask].UTF16); }),
       "",
       {}},
      {"ZmDurationToXML",
       Repeated([](std::size_t I) {
         return ZmDurationToXML({false, 14, 90061.5 + static_cast<double>(I)});
       }),
       "",
       {}},
      {"ZmXMLToDuration", Repeated([](std::size_t) { return ZmXMLToDuration(u"P1Y2M1DT1H1M1.5S"); }), "", {}},
  };
}

std::string Speed(double Seconds, std::size_t Bytes) {
  return Bytes == 0 ? "" : Fixed(static_cast<double>(Bytes) / Seconds / 1e9, 2);
}

std::string Told(const TGoal& Goal) {
  switch (Goal.Kind) {
    case goSpeed:
      return Fixed(Goal.Value, 0) + " GB/s or more";
    case goTime:
      return Fixed(Goal.Value, 0) + " ns or less";
    case goTimes:
      return "at most " + Fixed(Goal.Value, 1) + " times";
    default:
      return "";
  }
}

bool IsReached(const TGoal& Goal, double Ours, double Theirs, std::size_t Bytes) {
  switch (Goal.Kind) {
    case goSpeed:
      return static_cast<double>(Bytes) / Ours / 1e9 >= Goal.Value;
    case goTime:
      return Ours * 1e9 <= Goal.Value;
    case goTimes:
      return Ours <= Goal.Value * Theirs;
    default:
      return true;
  }
}

std::string Table(const std::vector<TRow>& Rows, double Seconds) {
  TTable table(
      {"what", "ns", "GB/s", "allocations", "the other", "ns", "GB/s", "times the other's ns", "goal", "verdict"});
  for (const TRow& row : Rows) {
    const std::size_t count = std::max<std::size_t>(1, 100000 / std::max<std::size_t>(100, row.Bytes));
    std::vector<TContestant> contestants{{"Zamrit", [&] { row.Ours(count); }}};
    if (row.Theirs) contestants.push_back({row.Other, [&] { row.Theirs(count); }});
    const std::uint64_t before = Allocations();
    row.Ours(TInputs::cValues);
    const double allocations = static_cast<double>(Allocations() - before) / TInputs::cValues;
    const std::vector<TTiming> timings = Race(contestants, Seconds);
    const double pieces = static_cast<double>(count * row.Pieces);
    const double ours = timings[0].Median / pieces, theirs = row.Theirs ? timings[1].Median / pieces : 0;
    table.Add({row.What, Fixed(ours * 1e9, 1), Speed(ours * static_cast<double>(row.Pieces), row.Bytes),
               Fixed(allocations, 1), row.Other, row.Theirs ? Fixed(theirs * 1e9, 1) : "",
               row.Theirs ? Speed(theirs, row.OtherBytes) : "", row.Theirs ? Fixed(ours / theirs, 2) : "",
               Told(row.Goal),
               row.Goal.Kind == goNone                        ? ""
               : IsReached(row.Goal, ours, theirs, row.Bytes) ? "reached"
                                                              : "missed"});
  }
  return table.Markdown();
}

constexpr char cNotes[] =
    R"(Each figure is the median of samples in turns, on one core, from the first call's argument to a result that is freed again. The texts are ASCII and come from the cache. GB/s count the bytes of the source: Zamrit takes UTF-16, two bytes a character, libxml2 takes UTF-8, one byte; the nanoseconds are for the same characters. Zamrit replaces `<`, `>`, `&`, both quotes and control codes; `xmlEncodeSpecialChars` leaves apostrophes and control codes but CR, `xmlEncodeEntitiesReentrant` both quotes and control codes. `xmlStringLenDecodeEntities` knows the five names of XML.

*Allocations* counts calls of operator new in one call: the result is one, none where it has at most 7 units. `std::to_chars` and `snprintf` write into a buffer on the stack and make no text; `std::from_chars` reads 8-bit text.
)";

}  // namespace

int RunValues(const TOptions& Options) {
  const double seconds = Options.Quick ? 0.02 : Options.Seconds / 2;
  const bool pinned = PinToOneCore();
  KeepHeapWarm();
  const TInputs inputs;
  std::string text = "# Values as XML text\n\n" + DescribeMachine() + "; " + Libxml2Version() + ".\n\n";
  if (Options.Quick) text += "A quick run: the figures prove nothing.\n\n";
  if (!pinned) text += "The process could not be kept on one core.\n\n";
  text += "## Escaping and entities\n\n" + Table(EscapingRows(inputs), seconds);
  text += "## Numbers, dates and durations\n\n" + Table(NumberRows(inputs), seconds);
  Publish(text + cNotes, Options.Markdown);
  return 0;
}

}  // namespace zm::bench
