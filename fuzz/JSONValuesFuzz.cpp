// The text forms of JSON values, and Variant arrays in XML, over any text: they answer or raise, and escaping can be
// taken back.

#include <cstdint>
#include <cstring>
#include <memory>

#include "fuzz/Check.h"
#include "zamrit/platform/Exceptions.h"
#include "zamrit/xml/uZmJSON.h"
#include "zamrit/xml/uZmXMLUtils.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace zm;
  const std::size_t length = Size / sizeof(char16_t);
  const std::unique_ptr<char16_t[]> block(new char16_t[length]);  // of the exact size, so that reading on is noticed
  if (length > 0) std::memcpy(block.get(), Data, length * sizeof(char16_t));
  const StringView text(block.get(), length);

  String kept;
  for (char16_t unit : text)
    if (unit == 0 || unit > 7) kept += unit;
  Require(ZmJSONtoStr(ZmStrToJSON(text), jdtString) == kept);
  Require(ZmVarToJSON(VarArrayOf({Variant(text)})) == u"[\"" + ZmStrToJSON(text) + u"\"]");
  for (TZmJSONDataType type : {jdtString, jdtNumber})
    Try([&] { Require(ZmJSONtoStr(text, type).size() <= text.size()); });
  Try([&] { ZmJSONToDateTime(text); });
  Require(ZmJSONToTimeDef(text, 0) >= -1);

  Try([&] { ZmVariantToXML(ZmXMLToVariant(text, std::uint16_t{varArray | varVariant})); });
  Try([&] {
    const std::uint16_t texts = varArray | varUString;
    const Variant read = ZmXMLToVariant(text, texts);
    Require(ZmXMLToVariant(ZmVariantToXML(read), texts) == read || text.find(u'\0') != text.npos ||
            text.find(u"&#") != text.npos);  // the XML form drops code 0
  });
  for (const char16_t* type : {u"Integer", u"TDateTime", u"string", u"Variant", u"Currency"})
    Try([&] { ZmJSONToVal(text, type, true); });
  return 0;
}
