#include "Generator.h"

#include <cstdio>
#include <iterator>

#include "Harness.h"

namespace zm::bench {
namespace {

constexpr int cGeneration = 1;  // counts up with every change of what is generated

constexpr std::string_view cWords[] = {"light", "brass",   "valve",  "for",    "the",    "upper",   "tank", "with",
                                       "two",   "spare",   "pipes",  "and",    "please", "noon",    "call", "at",
                                       "gate",  "fragile", "keep",   "dry",    "return", "empty",   "to",   "deliver",
                                       "seven", "gaskets", "before", "crates", "sender", "fittings"};
constexpr std::string_view cForeignWords[] = {"größer", "façade", "señal", "øvre", "κλειδί", "ключ", "鍵"};
constexpr std::string_view cReferences[] = {"&lt;B&gt;", "R&amp;D", "&#8364;"};
constexpr std::string_view cNames[] = {"Ada Brandt", "Zoë Müller",      "Łukasz Wójcik",   "Inès Faure",
                                       "Jonas Berg", "Σοφία Παππά",     "Ольга Громова",   "佐藤 健",
                                       "Mary Field", "Tom O&apos;Hara", "José de la Peña", "Eva Lind"};
constexpr std::string_view cStates[] = {"open", "packed", "shipped", "closed"};

}  // namespace

// Knuth's linear congruential generator; only the upper half of its state is good enough to use.
std::uint32_t TRecordGenerator::Below(std::uint32_t Limit) {
  FState = FState * 6364136223846793005 + 1442695040888963407;
  return static_cast<std::uint32_t>((FState >> 32) * Limit >> 32);
}

std::string_view TRecordGenerator::Word() {
  const std::uint32_t kind = Below(50);
  if (kind == 0) return cReferences[Below(std::size(cReferences))];
  if (kind < 6) return cForeignWords[Below(std::size(cForeignWords))];
  return cWords[Below(std::size(cWords))];
}

void TRecordGenerator::AppendItem(std::string& To) {
  char text[96];
  std::snprintf(text, sizeof text, "    <item sku=\"KX-%06u\" quantity=\"%u\">\n      <title>", Below(1000000),
                1 + Below(40));
  To += text;
  for (std::uint32_t words = 2 + Below(4); words > 0; --words) To.append(Word()).append(words > 1 ? " " : "</title>\n");
  std::snprintf(text, sizeof text, "      <price currency=\"EUR\">%u.%02u</price>\n    </item>\n", Below(900),
                Below(100));
  To += text;
}

void TRecordGenerator::AppendRecord(std::string& To) {
  To.append(RecordStart).append(RecordNumber(++FNumber));
  To.append("\" state=\"").append(cStates[Below(std::size(cStates))]).append("\">\n    <customer>");
  To.append(cNames[Below(std::size(cNames))]).append("</customer>\n");
  for (std::uint32_t items = 1 + Below(4); items > 0; --items) AppendItem(To);
  To += "    <note>";
  for (std::uint32_t words = 4 + Below(16); words > 0; --words) To.append(Word()).append(words > 1 ? " " : "</note>\n");
  To += Below(3) == 0 ? "    <urgent/>\n  </order>\n" : "  </order>\n";
}

void TRecordGenerator::AppendRecords(std::string& To, std::size_t Size) {
  while (To.size() < Size) AppendRecord(To);
}

std::string RecordNumber(std::uint64_t Number) {
  char digits[24];
  std::snprintf(digits, sizeof digits, "%010llu", static_cast<unsigned long long>(Number % 10000000000));
  return digits;
}

std::filesystem::path GeneratedDocument(std::size_t Size) {
  const std::filesystem::path file =
      CacheFolder() / ("records-" + std::to_string(cGeneration) + "-" + std::to_string(Size / 1000000) + "MB.xml");
  if (std::filesystem::exists(file)) return file;
  std::string text(TRecordGenerator::Head);
  TRecordGenerator().AppendRecords(text, Size);
  text += TRecordGenerator::Tail;
  std::filesystem::path part = file;
  WriteFile(part += ".part", text);
  std::filesystem::rename(part, file);  // so that an interrupted run leaves no half document
  return file;
}

}  // namespace zm::bench
