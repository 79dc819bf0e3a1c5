#include "JSONLines.h"

namespace zmtool {
namespace {

bool IsSurrogate(char16_t C) { return (C & 0xF800) == 0xD800; }

// Whether the unit at I begins a well-formed pair.
bool IsPairAt(zm::StringView Value, std::size_t I) {
  return Value[I] < 0xDC00 && I + 1 < Value.size() && (Value[I + 1] & 0xFC00) == 0xDC00;
}

void AppendEscaped(std::string& Out, char16_t C) {
  static constexpr char digits[] = "0123456789abcdef";
  switch (C) {
    case u'"':
      Out += "\\\"";
      return;
    case u'\\':
      Out += "\\\\";
      return;
    case u'\n':
      Out += "\\n";
      return;
    case u'\r':
      Out += "\\r";
      return;
    case u'\t':
      Out += "\\t";
      return;
    default:
      Out += "\\u";
      for (int shift = 12; shift >= 0; shift -= 4) Out += digits[C >> shift & 15];
  }
}

}  // namespace

void TJSONLines::Begin(std::string_view Event) {
  FLine += "[\"";
  FLine += Event;
  FLine += '"';
  FFirst = false;
}

void TJSONLines::Comma() {
  if (!FFirst) FLine += ',';
  FFirst = false;
}

void TJSONLines::Text(zm::StringView Value) {
  Comma();
  FLine += '"';
  std::size_t plain = 0;
  const auto putPlain = [&](std::size_t end) { FLine += zm::ToUTF8(Value.substr(plain, end - plain)); };
  for (std::size_t i = 0; i < Value.size(); ++i) {
    const char16_t c = Value[i];
    if (c >= 0x20 && c != u'"' && c != u'\\' && !IsSurrogate(c)) continue;
    if (IsSurrogate(c) && IsPairAt(Value, i)) {
      ++i;
      continue;
    }
    putPlain(i);
    AppendEscaped(FLine, c);
    plain = i + 1;
  }
  putPlain(Value.size());
  FLine += '"';
}

void TJSONLines::Number(long long Value) {
  Comma();
  FLine += std::to_string(Value);
}

void TJSONLines::OpenArray() {
  Comma();
  FLine += '[';
  FFirst = true;
}

void TJSONLines::CloseArray() {
  FLine += ']';
  FFirst = false;
}

void TJSONLines::End() {
  FLine += "]\n";
  FOut.Put(FLine);
  FLine.clear();
}

}  // namespace zmtool
