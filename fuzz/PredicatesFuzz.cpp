// Predicates over any expression and document: they keep some of the candidates or raise, one node is the first of
// all, and a comparison that reads the tree itself says the same as one of the values of its sides.

#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/Check.h"
#include "zamrit/xml/uZmXPath.h"

using namespace zm;

namespace {

void Select(TZmDOMNode* From, const std::string& Path, TZmDOMSelectOptions Options) {
  TZmOwner<TZmDOMNodeList> list;
  if (!Try([&] { list = From->CreateNodeList(Path, Options); })) return;
  Require(From->SelectSingleNode(Path, Options) == (list->Count() > 0 ? list->GetItem(0) : nullptr));
}

/// The value as a row of values.
Variant Row(const Variant& Value) { return VarIsArray(Value) ? Value : VarArrayOf({Value}); }

/// Each value of one side with each of the other, up to the first pair that fits.
Variant InPairs(const TZmXPathValueComparison& Comparison, const Variant& Left, const Variant& Right) {
  Variant result(false);
  const Variant left = Row(Left), right = Row(Right);
  for (std::int64_t i = 0; i <= VarArrayHighBound(left); ++i)
    for (std::int64_t j = 0; j <= VarArrayHighBound(right); ++j) {
      result = Comparison.CompareValues(VarArrayGet(left, i), VarArrayGet(right, j));
      if (result == Variant(true)) return result;
    }
  return result;
}

/// Two terms that follow each other in a text, compared for every candidate.
void Compare(const std::string& Text, const TZmDOMObjectList& List, TZmXPathValueComparisonOperator Operator) {
  const auto equation = Create<TZmXPathEquation>(soLocalName, TZmXPathCollationASCIICI);
  const String text = FromUTF8(Text);
  const auto parser = Create<TZmTextParser>(StringView(text));
  auto left = equation->ReadTerm(*parser), right = equation->ReadTerm(*parser);
  TZmXPathBaseTerm &first = *left, &second = *right;
  const auto comparison = Create<TZmXPathValueComparison>(equation.get(), std::move(left), std::move(right), Operator);
  for (int i = 0; i < static_cast<int>(List.size()); ++i) {
    Variant one, other, quick, slow;
    if (!Try([&] { first.Value(one, List, i); }) || !Try([&] { second.Value(other, List, i); })) return;
    const bool raises = !Try([&] { slow = InPairs(*comparison, one, other); });
    Require(raises == !Try([&] { comparison->Value(quick, List, i); }));
    Require(raises || quick == slow);
  }
}

}  // namespace

// The first byte chooses options and operator, the expression ends at the first line break.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  if (Size < 1 || Size > 4096) return 0;
  const std::string_view text(reinterpret_cast<const char*>(Data) + 1, Size - 1);
  const std::string predicate(text.substr(0, text.find('\n')));
  TZmDOMDocument document;
  Try([&] { document.LoadFromXML(text.substr(std::min(text.size(), predicate.size() + 1))); });
  if (!document.GetRootNode()) return 0;

  TZmDOMSelectOptions options;
  options.Include(Data[0] & 1 ? soCaseSensitive : soCaseInsensitive);
  options.Include(Data[0] & 2 ? soLocalName : soQualifiedName);
  Select(&document, "//*[" + predicate + "]", options);
  Select(document.GetRootNode(), "*[" + predicate + "][" + predicate + "]", options);

  TZmDOMObjectList list;
  for (TZmDOMNode* const node : document.GetRootNode()->Children())
    if (list.size() < 8) list.push_back(node);
  Try([&] { Compare(predicate, list, static_cast<TZmXPathValueComparisonOperator>((Data[0] >> 2) % 6)); });
  return 0;
}
