#include "zamrit/platform/CodePages.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstring>
#include <iterator>
#include <mutex>
#include <new>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/TextDetail.h"

namespace zm {
namespace {

using detail::cReplacement;

constexpr std::uint16_t cUTF8 = 65001, cUTF16LE = 1200, cUTF16BE = 1201;
constexpr std::uint16_t cUTF32LE = 12000, cUTF32BE = 12001, cUTF7 = 65000;

struct TKnownPage {
  std::uint16_t Page;
  std::string_view Name;
  const char* ICUName;
};

// The first row of a page has its preferred name and its converter; further rows are names that lead elsewhere in ICU.
constexpr TKnownPage cKnownPages[] = {
    {cUTF8, "UTF-8", "UTF-8"},
    {cUTF16LE, "UTF-16", "UTF-16"},
    {cUTF16LE, "UTF-16LE", "UTF-16LE"},
    {cUTF16BE, "UTF-16BE", "UTF-16BE"},
    {cUTF32LE, "UTF-32LE", "UTF-32LE"},
    {cUTF32LE, "UTF-32", "UTF-32"},
    {cUTF32BE, "UTF-32BE", "UTF-32BE"},
    {cUTF7, "UTF-7", "UTF-7"},
    {20127, "US-ASCII", "US-ASCII"},
    {28591, "ISO-8859-1", "ISO-8859-1"},
    {28592, "ISO-8859-2", "ISO-8859-2"},
    {28593, "ISO-8859-3", "ISO-8859-3"},
    {28594, "ISO-8859-4", "ISO-8859-4"},
    {28595, "ISO-8859-5", "ISO-8859-5"},
    {28596, "ISO-8859-6", "ISO-8859-6"},
    {28597, "ISO-8859-7", "ISO-8859-7"},
    {28598, "ISO-8859-8", "ISO-8859-8"},
    {28599, "ISO-8859-9", "ISO-8859-9"},
    {28600, "ISO-8859-10", "ISO-8859-10"},
    {28601, "ISO-8859-11", "ISO-8859-11"},
    {28603, "ISO-8859-13", "ISO-8859-13"},
    {28604, "ISO-8859-14", "ISO-8859-14"},
    {28605, "ISO-8859-15", "ISO-8859-15"},
    {28606, "ISO-8859-16", "ISO-8859-16"},
    {38598, "ISO-8859-8-I", "ISO-8859-8-I"},
    {1250, "windows-1250", "windows-1250"},
    {1251, "windows-1251", "windows-1251"},
    {1252, "windows-1252", "windows-1252"},
    {1253, "windows-1253", "windows-1253"},
    {1254, "windows-1254", "windows-1254"},
    {1255, "windows-1255", "windows-1255"},
    {1256, "windows-1256", "windows-1256"},
    {1257, "windows-1257", "windows-1257"},
    {1258, "windows-1258", "windows-1258"},
    {874, "windows-874", "windows-874-2000"},
    {20866, "KOI8-R", "KOI8-R"},
    {21866, "KOI8-U", "KOI8-U"},
    {932, "Shift_JIS", "ibm-943_P15A-2003"},
    {936, "GBK", "windows-936-2000"},
    {936, "GB2312", "windows-936-2000"},
    {949, "EUC-KR", "windows-949-2000"},
    {950, "Big5", "windows-950-2000"},
    {54936, "GB18030", "gb18030"},
    {51932, "EUC-JP", "euc-jp-2007"},
    {50220, "ISO-2022-JP", "ISO-2022-JP"},
    {50225, "ISO-2022-KR", "ISO-2022-KR"},
    {52936, "HZ-GB-2312", "HZ"},
    {437, "IBM437", "ibm-437"},
    {720, "DOS-720", "ibm-720"},
    {737, "IBM737", "ibm-737"},
    {775, "IBM775", "ibm-775"},
    {850, "IBM850", "ibm-850"},
    {852, "IBM852", "ibm-852"},
    {855, "IBM855", "ibm-855"},
    {857, "IBM857", "ibm-857"},
    {858, "IBM00858", "ibm-858"},
    {860, "IBM860", "ibm-860"},
    {861, "IBM861", "ibm-861"},
    {862, "IBM862", "ibm-862"},
    {863, "IBM863", "ibm-863"},
    {864, "IBM864", "ibm-864"},
    {865, "IBM865", "ibm-865"},
    {866, "IBM866", "ibm-866"},
    {869, "IBM869", "ibm-869"},
    {37, "IBM037", "ibm-37"},
    {500, "IBM500", "ibm-500"},
    {870, "IBM870", "ibm-870"},
    {875, "cp875", "ibm-875"},
    {1026, "IBM1026", "ibm-1026"},
    {1047, "IBM01047", "ibm-1047"},
    {1140, "IBM01140", "ibm-1140"},
    {1141, "IBM01141", "ibm-1141"},
    {1142, "IBM01142", "ibm-1142"},
    {1143, "IBM01143", "ibm-1143"},
    {1144, "IBM01144", "ibm-1144"},
    {1145, "IBM01145", "ibm-1145"},
    {1146, "IBM01146", "ibm-1146"},
    {1147, "IBM01147", "ibm-1147"},
    {1148, "IBM01148", "ibm-1148"},
    {1149, "IBM01149", "ibm-1149"},
    {10000, "macintosh", "macintosh"},
    {10006, "x-mac-greek", "x-mac-greek"},
    {10007, "x-mac-cyrillic", "x-mac-cyrillic"},
    {10029, "x-mac-ce", "x-mac-centraleurroman"},
    {10081, "x-mac-turkish", "x-mac-turkish"},
};

const TKnownPage* FindRow(std::uint16_t Page) {
  const auto* row = std::find_if(std::begin(cKnownPages), std::end(cKnownPages),
                                 [Page](const TKnownPage& known) { return known.Page == Page; });
  return row == std::end(cKnownPages) ? nullptr : row;
}

// The name by which ICU calls the converter of an alias, or nil. Lives as long as the program.
const char* CanonicalName(const char* Alias) {
  UErrorCode error = U_ZERO_ERROR;
  const char* name = ucnv_getAlias(Alias, 0, &error);
  return U_SUCCESS(error) ? name : nullptr;
}

// What ICU calls the converter of a page that has no row, or nil.
const char* CanonicalNameOfNumber(std::uint16_t Page) {
  for (const char* prefix : {"windows-", "ibm-"})
    if (const char* name = CanonicalName((prefix + std::to_string(Page)).c_str())) return name;
  return nullptr;
}

struct TCloseConverter {
  void operator()(UConverter* Converter) const { ucnv_close(Converter); }
};
using TConverterHandle = std::unique_ptr<UConverter, TCloseConverter>;

void ReplaceBadBytes(const void*, UConverterToUnicodeArgs* Args, const char*, int32_t, UConverterCallbackReason Reason,
                     UErrorCode* Error) {
  if (Reason > UCNV_IRREGULAR) return;
  *Error = U_ZERO_ERROR;
  constexpr UChar replacement = cReplacement;
  ucnv_cbToUWriteUChars(Args, &replacement, 1, 0, Error);
}

// The context says which character stands for one that the page does not have.
void ReplaceCharacter(const void* Context, UConverterFromUnicodeArgs* Args, const UChar*, int32_t, UChar32,
                      UConverterCallbackReason Reason, UErrorCode* Error) {
  if (Reason > UCNV_IRREGULAR) return;
  *Error = U_ZERO_ERROR;
  const auto* replacement = static_cast<const UChar*>(Context);
  ucnv_cbFromUWriteUChars(Args, &replacement, replacement + 1, 0, Error);
}

// Nil for a page that ICU names but has no table of.
TConverterHandle OpenConverter(const char* Name) {
  UErrorCode error = U_ZERO_ERROR;
  TConverterHandle converter(ucnv_open(Name, &error));
  if (error == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  if (U_FAILURE(error)) return nullptr;
  ucnv_setToUCallBack(converter.get(), ReplaceBadBytes, nullptr, nullptr, nullptr, &error);
  return converter;
}

using TTable = std::array<char16_t, 256>;

// A single-byte page that agrees with ASCII, both ways.
struct TSingleBytes {
  explicit TSingleBytes(const TTable& Table) : Characters(Table) {
    for (unsigned byte = 0x80; byte < 256; ++byte)
      if (Table[byte] != cReplacement)
        Bytes.emplace_back(Table[byte], static_cast<char>(static_cast<unsigned char>(byte)));
    std::stable_sort(Bytes.begin(), Bytes.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
  }

  char ByteOf(char16_t Character) const {
    if (Character < 0x80) return static_cast<char>(Character);
    const auto at = std::lower_bound(Bytes.begin(), Bytes.end(), Character,
                                     [](const auto& pair, char16_t c) { return pair.first < c; });
    return at != Bytes.end() && at->first == Character ? at->second : '?';
  }

  TTable Characters;
  std::vector<std::pair<char16_t, char>> Bytes;  // in the order of the characters
};

struct TPage {
  const char* ICUName;
  int MaxCharSize;
  std::optional<TSingleBytes> Single;
};

// The pages whose characters have up to four bytes; ICU counts by UTF-16 unit.
bool IsUnicode(std::uint16_t Page) { return Page == cUTF8 || Page == cUTF16LE || Page == cUTF16BE; }

TTable ReadTable(UConverter* Converter) {
  TTable table;
  for (unsigned byte = 0; byte < 256; ++byte) {
    const char in = static_cast<char>(static_cast<unsigned char>(byte));
    UChar out[4];
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = ucnv_toUChars(Converter, out, std::size(out), &in, 1, &error);
    table[byte] = U_SUCCESS(error) && length == 1 ? out[0] : cReplacement;
  }
  return table;
}

// Tables of the PC pages exchange three control characters that every use of these pages takes as they stand.
bool AgreesWithASCII(TTable& Table) {
  if (Table[0x1A] == 0x1C && Table[0x1C] == 0x7F && Table[0x7F] == 0x1A)
    for (const unsigned c : {0x1Au, 0x1Cu, 0x7Fu}) Table[c] = static_cast<char16_t>(c);
  for (unsigned c = 0; c < 0x80; ++c)
    if (Table[c] != c) return false;
  return true;
}

std::optional<TPage> LoadPage(std::uint16_t Page) {
  const TKnownPage* row = FindRow(Page);
  const char* name = row ? row->ICUName : CanonicalNameOfNumber(Page);
  if (!name) return std::nullopt;
  const TConverterHandle converter = OpenConverter(name);
  if (!converter) return std::nullopt;
  TPage page{name, IsUnicode(Page) ? 4 : ucnv_getMaxCharSize(converter.get()), std::nullopt};
  if (page.MaxCharSize == 1) {
    TTable table = ReadTable(converter.get());
    if (AgreesWithASCII(table)) page.Single.emplace(table);
  }
  return page;
}

// What is known of a page, or nil. There are as many entries at most as ICU has numbers.
const TPage* FindPage(std::uint16_t Page) {
  struct TCache {
    std::mutex Mutex;
    std::unordered_map<std::uint16_t, TPage> Pages;
  };
  static auto& cache = *new TCache;
  const std::lock_guard lock(cache.Mutex);
  if (const auto found = cache.Pages.find(Page); found != cache.Pages.end()) return &found->second;
  std::optional<TPage> page = LoadPage(Page);
  return page ? &cache.Pages.emplace(Page, *std::move(page)).first->second : nullptr;
}

const TPage& NeedPage(std::uint16_t Page) {
  if (const TPage* page = FindPage(Page)) return *page;
  throw EConvertError(u"Unknown code page %d", {Page});
}

std::uint16_t PlatformPage(std::uint16_t Page) { return Page == 0 ? cUTF8 : Page; }

bool IsUTF16(std::uint16_t Page) { return Page == cUTF16LE || Page == cUTF16BE; }

// Whether the units of a UTF-16 page stand in memory with their bytes the other way round.
bool IsSwapped(std::uint16_t Page) { return (Page == cUTF16LE) != (std::endian::native == std::endian::little); }

void SwapBytes(char16_t* P, const char16_t* End) {
  for (; P != End; ++P) *P = static_cast<char16_t>(*P << 8 | *P >> 8);
}

bool SameASCII(std::string_view Left, std::string_view Right) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  return std::equal(Left.begin(), Left.end(), Right.begin(), Right.end(),
                    [&](char left, char right) { return lower(left) == lower(right); });
}

// The number of a name "<Prefix>N", or 0.
std::uint16_t NumberBehind(std::string_view Prefix, std::string_view Name) {
  if (!SameASCII(Name.substr(0, Prefix.size()), Prefix)) return 0;
  Name.remove_prefix(Prefix.size());
  std::uint16_t number = 0;
  const auto [end, error] = std::from_chars(Name.data(), Name.data() + Name.size(), number);
  return error == std::errc() && end == Name.data() + Name.size() ? number : 0;
}

// The page whose row has the converter that ICU finds for a name, or 0.
std::uint16_t PageOfAlias(const std::string& Name) {
  static const auto& canonical = *new std::vector<const char*>([] {
    std::vector<const char*> names;
    for (const TKnownPage& known : cKnownPages) names.push_back(CanonicalName(known.ICUName));
    return names;
  }());
  const char* found = CanonicalName(Name.c_str());
  if (!found) return 0;
  for (std::size_t i = 0; i < canonical.size(); ++i)
    if (canonical[i] && std::strcmp(canonical[i], found) == 0) return cKnownPages[i].Page;
  return 0;
}

std::uint16_t PageOfName(const std::string& Name) {
  for (const TKnownPage& known : cKnownPages)
    if (SameASCII(known.Name, Name)) return known.Page;
  for (const char* prefix : {"windows-", "cp"})
    if (const std::uint16_t page = NumberBehind(prefix, Name); FindRow(page)) return page;
  if (const std::uint16_t page = PageOfAlias(Name)) return page;
  for (const char* prefix : {"windows-", "cp", "ibm-", "ibm"})
    if (const std::uint16_t page = NumberBehind(prefix, Name); page != 0 && FindPage(page)) return page;
  return 0;
}

constexpr std::size_t cLongestName = 64;

// Names are printable ASCII without blanks.
bool CanBeName(StringView Name) {
  return !Name.empty() && Name.size() <= cLongestName &&
         std::all_of(Name.begin(), Name.end(), [](char16_t c) { return c > u' ' && c < 0x7F; });
}

StringView CutForMessage(StringView Name, String& Buffer) {
  if (Name.size() <= cLongestName) return Name;
  const bool splits = detail::IsHighSurrogate(Name[cLongestName - 1]);
  Buffer.assign(Name.substr(0, cLongestName - splits)).append(u"\u2026");
  return Buffer;
}

String Widen(std::string_view ASCII) { return String(ASCII.begin(), ASCII.end()); }

std::string EncodeSingleBytes(StringView Text, const TSingleBytes& Page) {
  std::string out;
  out.reserve(Text.size());
  for (std::size_t i = 0; i < Text.size(); ++i) {
    out.push_back(Page.ByteOf(Text[i]));
    const bool pair = detail::IsHighSurrogate(Text[i]) && i + 1 < Text.size() && detail::IsLowSurrogate(Text[i + 1]);
    if (pair) ++i;
  }
  return out;
}

String DecodeSingleBytes(std::string_view Bytes, const char16_t* Table) {
  String out(Bytes.size() + detail::cWidenPad, u'\0');
  const char* const end = Bytes.data() + Bytes.size();
  detail::WidenBytes(Bytes.data(), end, end, out.data(), Table);
  out.resize(Bytes.size());
  return out;
}

std::string EncodeUTF16(StringView Text, bool Swapped) {
  std::string out(Text.size() * 2, '\0');
  char* to = out.data();
  for (char16_t unit : Text) {
    if (Swapped) SwapBytes(&unit, &unit + 1);
    std::memcpy(to, &unit, 2);
    to += 2;
  }
  return out;
}

constexpr std::ptrdiff_t cGreatestPiece = 1 << 28;  // ICU refuses texts of 2 GB

// Whether a conversion has to go on with more room.
bool NeedsRoom(UErrorCode Error) {
  if (U_FAILURE(Error) && Error != U_BUFFER_OVERFLOW_ERROR)
    throw EConvertError(u"Code page conversion failed: %s", {Widen(u_errorName(Error))});
  return U_FAILURE(Error);
}

std::string EncodeByICU(StringView Text, const char* ICUName, char16_t Replacement) {
  const TConverterHandle converter = OpenConverter(ICUName);
  UErrorCode error = U_ZERO_ERROR;
  ucnv_setFromUCallBack(converter.get(), ReplaceCharacter, &Replacement, nullptr, nullptr, &error);
  std::string out;
  const char16_t *in = Text.data(), *const end = in + Text.size();
  bool more;
  do {
    char buffer[4096];
    char* to = buffer;
    const char16_t* const pieceEnd = in + std::min(end - in, cGreatestPiece);
    error = U_ZERO_ERROR;
    ucnv_fromUnicode(converter.get(), &to, std::end(buffer), &in, pieceEnd, nullptr, pieceEnd == end, &error);
    out.append(buffer, to);
    more = NeedsRoom(error);
  } while (more || in != end);
  return out;
}

}  // namespace

std::uint16_t CodePageOfName(StringView Name) {
  const StringView name = Trim(Name);
  if (CanBeName(name))
    if (const std::uint16_t page = PageOfName(std::string(name.begin(), name.end())); FindPage(page)) return page;
  String buffer;
  throw EConvertError(u"Unknown encoding \"%s\"", {CutForMessage(name, buffer)});
}

String CodePageName(std::uint16_t Page) {
  const std::uint16_t number = PlatformPage(Page);
  const char* canonical = NeedPage(number).ICUName;
  if (const TKnownPage* row = FindRow(number)) return Widen(row->Name);
  for (const char* standard : {"MIME", "IANA"}) {
    UErrorCode error = U_ZERO_ERROR;
    if (const char* name = ucnv_getStandardName(canonical, standard, &error)) return Widen(name);
  }
  return u"cp" + IntToStr(number);
}

bool IsKnownCodePage(std::uint16_t Page) { return FindPage(PlatformPage(Page)) != nullptr; }

int MaxCharSize(std::uint16_t Page) {
  if (IsUnicode(PlatformPage(Page))) return 4;  // most texts should not wait for a converter to be opened
  const TPage* page = FindPage(PlatformPage(Page));
  return page ? page->MaxCharSize : 0;
}

const char16_t* SingleBytePage(std::uint16_t Page) {
  static constexpr TTable same = [] {
    TTable table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte) table[byte] = static_cast<char16_t>(byte);
    return table;
  }();
  if (Page == 0) return same.data();
  if (Page == cUTF8 || IsUTF16(Page)) return nullptr;
  const TPage* page = FindPage(Page);
  return page && page->Single ? page->Single->Characters.data() : nullptr;
}

std::string EncodePage(StringView Text, std::uint16_t Page) {
  const std::uint16_t number = PlatformPage(Page);
  if (number == cUTF8) return ToUTF8(Text);
  if (IsUTF16(number)) return EncodeUTF16(Text, IsSwapped(number));
  const TPage& page = NeedPage(number);
  if (page.Single) return EncodeSingleBytes(Text, *page.Single);
  const bool unicode = number == cUTF32LE || number == cUTF32BE || number == cUTF7;
  return EncodeByICU(Text, page.ICUName, unicode ? cReplacement : u'?');
}

String DecodePage(std::string_view Bytes, std::uint16_t Page) {
  const std::uint16_t number = PlatformPage(Page);
  if (number == cUTF8) return FromUTF8(Bytes);
  if (const char16_t* table = SingleBytePage(number)) return DecodeSingleBytes(Bytes, table);
  TPageDecoder decoder(number);
  String out;
  const char *in = Bytes.data(), *const end = in + Bytes.size();
  std::size_t written = 0;
  for (;;) {
    // A byte makes a unit at most almost everywhere, so that the first room is nearly always enough.
    out.resize(written + static_cast<std::size_t>(end - in) / (IsUTF16(number) ? 2 : 1) + 8);
    char16_t* to = out.data() + written;
    decoder.Decode(in, end, to, out.data() + out.size(), true);
    const auto total = static_cast<std::size_t>(to - out.data());
    if (in == end && total == written) break;
    written = total;
  }
  out.resize(written);
  return out;
}

class TPageDecoder::TConverter {
 public:
  virtual ~TConverter() = default;
  virtual void Decode(const char*& In, const char* InEnd, char16_t*& Out, char16_t* OutEnd, bool Flush) = 0;
  virtual void Reset() {}
};

class TPageDecoder::TTableConverter : public TConverter {
 public:
  explicit TTableConverter(const TTable& Table) : FTable(Table) {}

  void Decode(const char*& In, const char* InEnd, char16_t*& Out, char16_t* OutEnd, bool) override {
    while (In != InEnd && Out != OutEnd) *Out++ = FTable[static_cast<unsigned char>(*In++)];
  }

 private:
  const TTable& FTable;
};

class TPageDecoder::TUTF16Converter : public TConverter {
 public:
  explicit TUTF16Converter(bool Swapped) : FSwapped(Swapped) {}

  void Decode(const char*& In, const char* InEnd, char16_t*& Out, char16_t* OutEnd, bool Flush) override {
    if (FHasOdd && In != InEnd && Out != OutEnd) {
      const char unit[2] = {FOdd, *In++};
      FHasOdd = false;
      Take(unit, Out, 1);
    }
    const auto units = std::min((InEnd - In) / 2, OutEnd - Out);
    if (!FHasOdd) {
      Take(In, Out, units);
      In += units * 2;
    }
    if (InEnd - In == 1 && !FHasOdd) {
      FOdd = *In++;
      FHasOdd = true;
    }
    if (Flush && FHasOdd && In == InEnd && Out != OutEnd) {
      *Out++ = cReplacement;
      FHasOdd = false;
    }
  }

  void Reset() override { FHasOdd = false; }

 private:
  void Take(const char* In, char16_t*& Out, std::ptrdiff_t Units) const {
    if (Units > 0) std::memcpy(Out, In, static_cast<std::size_t>(Units) * 2);
    if (FSwapped) SwapBytes(Out, Out + Units);
    Out += Units;
  }

  bool FSwapped;
  bool FHasOdd = false;
  char FOdd = 0;
};

class TPageDecoder::TICUConverter : public TConverter {
 public:
  explicit TICUConverter(const char* Name) : FConverter(OpenConverter(Name)) {}

  void Decode(const char*& In, const char* InEnd, char16_t*& Out, char16_t* OutEnd, bool Flush) override {
    do {
      const char* const pieceEnd = In + std::min(InEnd - In, cGreatestPiece);
      char16_t* const roomEnd = Out + std::min(OutEnd - Out, cGreatestPiece);
      UErrorCode error = U_ZERO_ERROR;
      ucnv_toUnicode(FConverter.get(), &Out, roomEnd, &In, pieceEnd, nullptr, Flush && pieceEnd == InEnd, &error);
      NeedsRoom(error);
    } while (In != InEnd && Out != OutEnd);
  }

  void Reset() override { ucnv_resetToUnicode(FConverter.get()); }

 private:
  TConverterHandle FConverter;
};

TPageDecoder::TPageDecoder(std::uint16_t Page) {
  const std::uint16_t number = PlatformPage(Page);
  const TPage& page = NeedPage(number);
  if (IsUTF16(number))
    FConverter = std::make_unique<TUTF16Converter>(IsSwapped(number));
  else if (page.Single)
    FConverter = std::make_unique<TTableConverter>(page.Single->Characters);
  else
    FConverter = std::make_unique<TICUConverter>(page.ICUName);
}

TPageDecoder::~TPageDecoder() = default;

void TPageDecoder::Decode(const char*& In, const char* InEnd, char16_t*& Out, char16_t* OutEnd, bool Flush) {
  FConverter->Decode(In, InEnd, Out, OutEnd, Flush);
}

void TPageDecoder::Reset() { FConverter->Reset(); }

}  // namespace zm
