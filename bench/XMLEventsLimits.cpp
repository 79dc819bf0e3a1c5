#include <algorithm>
#include <cstdio>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "Commands.h"
#include "Generator.h"
#include "Harness.h"
#include "Isolated.h"
#include "Report.h"
#include "zamrit/zamrit.h"

namespace zm::bench {
namespace {

constexpr std::uint16_t cUTF8Page = 65001;
constexpr unsigned cLimit = 600;  // seconds for one measurement

/// Records without end: a block of them, whose numbers are written anew each time it comes round, until at least Size
/// bytes have been given.
class TEndlessRecords : public TStream {
 public:
  explicit TEndlessRecords(std::uint64_t Size) : FPiece(TRecordGenerator::Head), FSize(Size) {
    TRecordGenerator().AppendRecords(FBlock, 1000000);
    for (std::size_t at = 0; (at = FBlock.find(TRecordGenerator::RecordStart, at)) != std::string::npos;)
      FNumbers.push_back(at += TRecordGenerator::RecordStart.size());
  }

  std::size_t Read(void* Buffer, std::size_t Count) override {
    if (FPiece.empty()) NextPiece();
    const std::size_t count = FPiece.copy(static_cast<char*>(Buffer), Count);
    FPiece.remove_prefix(count);
    FPosition += count;
    return count;
  }
  std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin) override {
    return SeekNowhere(static_cast<std::int64_t>(FPosition), Offset, Origin);
  }

  std::uint64_t RecordsGiven() const { return FRecords; }

 private:
  void NextPiece() {
    if (FEnded) return;
    if ((FEnded = FPosition >= FSize)) {
      FPiece = TRecordGenerator::Tail;
      return;
    }
    for (const std::size_t at : FNumbers) {
      const std::string number = RecordNumber(++FRecords);
      number.copy(&FBlock[at], number.size());
    }
    FPiece = FBlock;
  }

  std::string FBlock;
  std::vector<std::size_t> FNumbers;  // where they stand in the block
  std::string_view FPiece;            // what is to be given next
  std::uint64_t FSize;
  std::uint64_t FPosition = 0;
  std::uint64_t FRecords = 0;
  bool FEnded = false;
};

/// A text in pieces of at most 4096 bytes.
class TShortReads : public TStream {
 public:
  explicit TShortReads(std::string_view Text) : FText(Text) {}

  std::size_t Read(void* Buffer, std::size_t Count) override {
    const std::size_t count = FText.copy(static_cast<char*>(Buffer), std::min<std::size_t>(Count, 4096), FPosition);
    FPosition += count;
    return count;
  }
  std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin) override {
    return SeekNowhere(static_cast<std::int64_t>(FPosition), Offset, Origin);
  }

 private:
  std::string_view FText;
  std::size_t FPosition = 0;
};

struct TTotals {
  std::uint64_t Elements = 0;
  std::uint64_t Attributes = 0;
  std::uint64_t Units = 0;  // of text, values and the URIs of elements

  bool operator==(const TTotals&) const = default;
};

class TTotalsHandler : public TZmSAXDefaultHandler {
 public:
  TTotals Totals;

  void StartElement(StringView URI, StringView, StringView, IZmSAXAttributes& Attributes) override {
    ++Totals.Elements;
    Totals.Units += URI.size();
    const int count = Attributes.Count();
    for (int i = 0; i < count; ++i) Totals.Units += Attributes.GetValue(i).size();
    Totals.Attributes += static_cast<std::uint64_t>(count);
  }
  void Characters(StringView Text) override { Totals.Units += Text.size(); }
};

template <class F>
TTotals Read(bool SingleRoot, F Parse) {
  TTotalsHandler handler;
  const auto reader = Create<TZmSAXXMLReader>();
  reader->SetHandler(&handler);
  reader->SetCheckSingleRootElement(SingleRoot);
  Parse(*reader);
  return handler.Totals;
}

// The time that making endless records takes alone, and that of making and reading them.
double SecondsToMakeRecords(std::uint64_t Size) {
  TEndlessRecords records(Size);
  std::vector<char> buffer(1 << 18);
  return Stopwatch([&] {
    while (records.Read(buffer.data(), buffer.size()) > 0) continue;
  });
}

double SecondsToReadRecords(std::uint64_t Size) {
  TEndlessRecords records(Size);
  TTotals totals;
  const double seconds = Stopwatch(
      [&] { totals = Read(true, [&](TZmSAXXMLReader& Reader) { Reader.ParseStream(&records, cUTF8Page); }); });
  if (totals.Elements <= records.RecordsGiven()) throw std::runtime_error("elements are missing");
  return seconds;
}

struct TCase {
  const char* Name;
  bool OneToken;  // of N bytes; otherwise N things
  bool SingleRoot;
  std::string (*Make)(std::size_t N);
  TTotals (*Expect)(std::size_t N);
};

// N times what Append adds for the number it is given, between two texts.
template <class F>
std::string Repeat(std::string_view Before, std::size_t N, F Append, std::string_view After) {
  std::string text(Before);
  for (std::size_t i = 0; i < N; ++i) Append(text, RecordNumber(i));
  return text.append(After);
}

std::string MakeText(std::size_t N) { return "<a>" + std::string(N, 'x') + "</a>"; }
std::string MakeValue(std::size_t N) { return "<a b=\"" + std::string(N, 'x') + "\"/>"; }
std::string MakeAttributes(std::size_t N) {
  const auto add = [](std::string& To, const std::string& Number) { To.append(" a").append(Number).append("=\"v\""); };
  return Repeat("<a", N, add, "/>");
}
std::string MakeNamespaces(std::size_t N) {
  const auto declare = [](std::string& To, const std::string& Number) {
    To.append(" xmlns:p").append(Number).append("=\"").append(Number).append("\"");
  };
  const auto use = [](std::string& To, const std::string& Number) { To.append("<p").append(Number).append(":e/>"); };
  return Repeat("<a", N, declare, ">") + Repeat("", N, use, "</a>");
}
std::string MakeFragments(std::size_t N) {
  return Repeat(
      "", N, [](std::string& To, const std::string&) { To += "<a>x</a>"; }, "");
}
std::string MakeNested(std::size_t N) {
  const auto open = [](std::string& To, const std::string&) { To += "<a>"; };
  const auto close = [](std::string& To, const std::string&) { To += "</a>"; };
  return Repeat("", N, open, "") + Repeat("", N, close, "");
}

constexpr TCase cCases[] = {
    {"one text, bytes", true, true, MakeText,
     [](std::size_t N) {
       return TTotals{1, 0, N};
     }},
    {"one attribute value, bytes", true, true, MakeValue,
     [](std::size_t N) {
       return TTotals{1, 1, N};
     }},
    {"attributes of one element", false, true, MakeAttributes,
     [](std::size_t N) {
       return TTotals{1, N, N};
     }},
    {"namespaces declared and used", false, true, MakeNamespaces,
     [](std::size_t N) {
       return TTotals{N + 1, N, 20 * N};
     }},
    {"elements at the top", false, false, MakeFragments,
     [](std::size_t N) {
       return TTotals{N, 0, N};
     }},
    {"nested elements", false, true, MakeNested,
     [](std::size_t N) {
       return TTotals{N, 0, 0};
     }},
};

void ReadOnce(const TCase& Case, const std::string& Text, std::size_t N, bool Whole) {
  const TTotals totals = Read(Case.SingleRoot, [&](TZmSAXXMLReader& Reader) {
    if (Whole) {
      Reader.Parse(std::string_view(Text), cUTF8Page);
    } else {
      TShortReads stream(Text);
      Reader.ParseStream(&stream, cUTF8Page);
    }
  });
  if (totals != Case.Expect(N)) throw std::runtime_error("wrong events");
}

// On a warm heap: fresh pages would weigh more than the reading of a huge token.
double WarmSeconds(const std::function<void()>& Work) {
  KeepHeapWarm();
  return Race({{"", Work}}, 0).front().Median;
}

std::string Megabytes(std::uint64_t Bytes) { return Fixed(static_cast<double>(Bytes) / 1e6, 1); }

// Adds the three rows of a case in one way of reading. Answers whether all went well.
bool AddCase(TTable& Table, const TCase& Case, std::size_t Base, bool Whole) {
  bool good = true;
  double before = 0;
  for (const std::size_t n : {Base, 2 * Base, 4 * Base}) {
    const std::string text = Case.Make(n);
    const auto read = [&] { ReadOnce(Case, text, n, Whole); };
    const TIsolated once = RunIsolated([&] { return Stopwatch(read); }, cLimit);
    const TIsolated warm = RunIsolated([&] { return WarmSeconds(read); }, cLimit);
    const std::string& failure = once.Failure.empty() ? warm.Failure : once.Failure;
    std::vector<std::string> cells{Case.Name, std::to_string(n), Whole ? "memory" : "stream"};
    if (!failure.empty()) {
      good = false;
      cells.insert(cells.end(), {failure, "", "", ""});
    } else {
      const double each = warm.Seconds * 1e9 / static_cast<double>(n);
      cells.insert(cells.end(), {Fixed(warm.Seconds * 1e3, 1), Fixed(each, 2),
                                 before > 0 ? Fixed(each / before, 2) : "", Megabytes(once.PeakGrowth)});
      before = each;
    }
    Table.Add(cells);
  }
  return good;
}

bool AddEndless(TTable& Table, std::uint64_t Size) {
  const TIsolated making = RunIsolated([&] { return SecondsToMakeRecords(Size); }, cLimit);
  const TIsolated reading = RunIsolated([&] { return SecondsToReadRecords(Size); }, cLimit);
  const std::string& failure = making.Failure.empty() ? reading.Failure : making.Failure;
  const double megabytes = static_cast<double>(Size) / 1e6;
  if (!failure.empty())
    Table.Add({Fixed(megabytes, 0), failure, "", ""});
  else
    Table.Add({Fixed(megabytes, 0), Fixed(megabytes / reading.Seconds, 0), Fixed(megabytes / making.Seconds, 0),
               Megabytes(reading.PeakGrowth)});
  return failure.empty();
}

}  // namespace

int RunXMLEventsLimits(const TOptions& Options) {
  PinToOneCore();
  bool good = true;

  TTable endless({"MB of records", "MB/s read", "MB/s of making them alone", "peak growth, MB"});
  const double largest = Options.Quick ? 0.1 : Options.Gigabytes;
  for (const double gigabytes : std::set<double>{std::min(0.01, largest), std::min(1.0, largest), largest}) {
    std::fprintf(stderr, "%g GB ...\n", gigabytes);
    good &= AddEndless(endless, static_cast<std::uint64_t>(gigabytes * 1e9));
  }

  TTable growth({"what", "N", "from", "ms", "ns each", "growth", "peak growth, MB"});
  for (const TCase& item : cCases) {
    std::fprintf(stderr, "%s ...\n", item.Name);
    const std::size_t base = (item.OneToken ? 50000000 : 250000) / (Options.Quick ? 10 : 1);
    for (const bool whole : {true, false}) good &= AddCase(growth, item, base, whole);
  }

  Publish("# Limits of XML events\n\n" + DescribeMachine() +
              ".\n\n"
              "## Memory over endless input\n\n"
              "Records are made while they are read, so the first speed includes the second. "
              "The growth is that of the resident memory of a process of its own, over what it had at its start.\n\n" +
              endless.Markdown() +
              "## Time over huge tokens, lists and depths\n\n"
              "Medians of five samples of processor time on a warm heap, in a process of its own for each row; "
              "*growth* is the time "
              "for one against the row above with half as many: 1.00 is exactly linear, what no longer fits into the "
              "caches adds to it. From memory means whole and in place, from a stream in reads of 4096 bytes. The peak "
              "is that of a single reading.\n\n" +
              growth.Markdown(),
          Options.Markdown);
  return good ? 0 : 1;
}

}  // namespace zm::bench
