#include "zamrit/common/NetEncoding.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "zamrit/platform/Exceptions.h"

namespace zm {
namespace {

constexpr std::string_view cBase64 = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t cLine = 76;
constexpr std::string_view cHex = "0123456789ABCDEF";

using TTable = std::array<std::uint8_t, 256>;
constexpr std::uint8_t cBlank = 0xFE, cBad = 0xFF;

constexpr std::uint32_t Byte(char C) { return static_cast<unsigned char>(C); }
constexpr std::uint32_t Look(const TTable& Table, char C) { return Table[Byte(C)]; }

// What a character of base-64 or a hexadecimal digit stands for.
constexpr TTable cBase64Values = [] {
  TTable table{};
  table.fill(cBad);
  for (const char blank : std::string_view(" \t\r\n")) table[Byte(blank)] = cBlank;
  for (std::size_t i = 0; i < cBase64.size(); ++i) table[Byte(cBase64[i])] = static_cast<std::uint8_t>(i);
  return table;
}();
constexpr TTable cHexValues = [] {
  TTable table{};
  table.fill(cBad);
  for (std::size_t i = 0; i < cHex.size(); ++i) {
    table[Byte(cHex[i])] = static_cast<std::uint8_t>(i);
    if (i > 9) table[Byte(cHex[i]) | 0x20] = static_cast<std::uint8_t>(i);
  }
  return table;
}();
// 1 for what stands for itself in a URL.
constexpr TTable cUnreserved = [] {
  TTable table{};
  for (const char c : cBase64.substr(0, 62)) table[Byte(c)] = 1;
  for (const char c : std::string_view("-._~")) table[Byte(c)] = 1;
  return table;
}();

class TBase64 final : public TZmNetEncoding {
 public:
  explicit TBase64(bool InLines) : FInLines(InLines) {}

  std::string Encode(std::string_view Bytes) const override {
    const std::size_t size = (Bytes.size() + 2) / 3 * 4;
    const std::size_t breaks = FInLines && size > 0 ? (size - 1) / cLine : 0;
    std::string out(size + 2 * breaks, '\0');
    char* put = out.data();
    constexpr std::size_t lineBytes = cLine / 4 * 3;
    while (FInLines && Bytes.size() > lineBytes) {
      put = EncodeLine(Bytes.substr(0, lineBytes), put);
      *put++ = '\r';
      *put++ = '\n';
      Bytes.remove_prefix(lineBytes);
    }
    EncodeLine(Bytes, put);
    return out;
  }

  std::string Decode(std::string_view Code) const override {
    std::string out(Code.size() / 4 * 3 + 3, '\0');
    char* put = out.data();
    std::size_t i = 0;
    std::uint32_t bits = 0;
    int count = 0;  // characters of the group of 4 that is being read
    for (;;) {
      for (; count == 0 && Code.size() - i >= 4; i += 4, put += 3) {
        const std::uint32_t a = Look(cBase64Values, Code[i]), b = Look(cBase64Values, Code[i + 1]),
                            c = Look(cBase64Values, Code[i + 2]), d = Look(cBase64Values, Code[i + 3]);
        if ((a | b | c | d) > 63) break;
        PutBytes(a << 18 | b << 12 | c << 6 | d, 3, put);
      }
      if (i == Code.size() || Code[i] == '=') break;
      const std::uint32_t value = Look(cBase64Values, Code[i++]);
      if (value == cBlank) continue;
      if (value == cBad) Refuse();
      bits = bits << 6 | value;
      if (++count == 4) {
        PutBytes(bits, 3, put);
        put += 3;
        count = 0;
        bits = 0;
      }
    }
    put += DecodeEnd(Code.substr(i), bits, count, put);
    out.resize(static_cast<std::size_t>(put - out.data()));
    return out;
  }

 private:
  [[noreturn]] static void Refuse() { throw EConvertError(u"The text is not valid base-64"); }

  static char* EncodeLine(std::string_view Bytes, char* Out) {
    const auto put = [&Out](std::uint32_t Bits) {
      for (int shift = 18; shift >= 0; shift -= 6) *Out++ = cBase64[Bits >> shift & 63];
    };
    std::size_t i = 0;
    for (; Bytes.size() - i >= 3; i += 3) put(Byte(Bytes[i]) << 16 | Byte(Bytes[i + 1]) << 8 | Byte(Bytes[i + 2]));
    const std::size_t left = Bytes.size() - i;
    if (left == 0) return Out;
    put(Byte(Bytes[i]) << 16 | (left == 2 ? Byte(Bytes[i + 1]) << 8 : 0));
    Out[-1] = '=';
    if (left == 1) Out[-2] = '=';
    return Out;
  }

  static void PutBytes(std::uint32_t Bits, int Count, char* Out) {
    for (int i = 0; i < Count; ++i) Out[i] = static_cast<char>(static_cast<unsigned char>(Bits >> (16 - 8 * i)));
  }

  // The last group of Count characters, behind which stands its padding and nothing else. Returns the number of bytes.
  static int DecodeEnd(std::string_view Code, std::uint32_t Bits, int Count, char* Out) {
    int padding = 0;
    for (const char c : Code) {
      if (c == '=')
        ++padding;
      else if (Look(cBase64Values, c) != cBlank)
        Refuse();
    }
    if (Count == 0 && padding == 0) return 0;
    const int bytes = Count - 1;
    if (bytes < 1 || Count + padding != 4) Refuse();
    Bits <<= 6 * padding;
    if (Bits & ((1u << 8 * padding) - 1)) Refuse();  // bits that no byte has
    PutBytes(Bits, bytes, Out);
    return bytes;
  }

  bool FInLines;
};

class TURL final : public TZmNetEncoding {
 public:
  explicit TURL(bool IsForm) : FIsForm(IsForm) {}

  std::string Encode(std::string_view Bytes) const override {
    std::string out;
    out.reserve(Bytes.size() + Bytes.size() / 4);
    for (const char c : Bytes) {
      if (Look(cUnreserved, c)) {
        out.push_back(c);
      } else if (FIsForm && c == ' ') {
        out.push_back('+');
      } else {
        const char escape[] = {'%', cHex[Byte(c) >> 4], cHex[Byte(c) & 15]};
        out.append(escape, sizeof escape);
      }
    }
    return out;
  }

  std::string Decode(std::string_view Code) const override {
    std::string out(Code);
    char* put = out.data();
    for (std::size_t i = 0; i < Code.size(); ++i) {
      char c = Code[i];
      if (c == '%' && Code.size() - i > 2) {
        const std::uint32_t high = Look(cHexValues, Code[i + 1]), low = Look(cHexValues, Code[i + 2]);
        if ((high | low) < 16) {
          c = static_cast<char>(static_cast<unsigned char>(high << 4 | low));
          i += 2;
        }
      } else if (FIsForm && c == '+') {
        c = ' ';
      }
      *put++ = c;
    }
    out.resize(static_cast<std::size_t>(put - out.data()));
    return out;
  }

 private:
  bool FIsForm;
};

}  // namespace

const TZmNetEncoding& TZmNetEncoding::GetBase64Encoding() {
  static const TBase64 coder(true);
  return coder;
}

const TZmNetEncoding& TZmNetEncoding::GetBase64ExEncoding() {
  static const TBase64 coder(false);
  return coder;
}

const TZmNetEncoding& TZmNetEncoding::GetURLEncoding() {
  static const TURL coder(true);
  return coder;
}

const TZmNetEncoding& TZmNetEncoding::GetURLComponentEncoding() {
  static const TURL coder(false);
  return coder;
}

String TZmNetEncoding::Encode(StringView Text) const { return EncodeBytesToString(ToUTF8(Text)); }
String TZmNetEncoding::Decode(StringView Code) const { return FromUTF8(DecodeStringToBytes(Code)); }
String TZmNetEncoding::EncodeBytesToString(std::string_view Bytes) const { return FromUTF8(Encode(Bytes)); }
std::string TZmNetEncoding::DecodeStringToBytes(StringView Code) const { return Decode(ToUTF8(Code)); }

}  // namespace zm
