#include <sys/resource.h>

#include <chrono>
#include <cstdio>

#include "Commands.h"
#include "XMLRun.h"

namespace zmtool {
namespace {

struct TCounter : zm::TZmSAXDefaultHandler {
  long long Elements = 0, Attributes = 0, Texts = 0, TextUnits = 0, Blanks = 0, Comments = 0, Instructions = 0,
            Sections = 0, DocumentTypes = 0, Namespaces = 0, Depth = 0, Deepest = 0;

  void StartElement(zm::StringView, zm::StringView, zm::StringView, zm::IZmSAXAttributes& List) override {
    ++Elements;
    Attributes += List.Count();
    if (++Depth > Deepest) Deepest = Depth;
  }
  void EndElement(zm::StringView, zm::StringView, zm::StringView) override { --Depth; }
  void Characters(zm::StringView Text) override {
    ++Texts;
    TextUnits += static_cast<long long>(Text.size());
  }
  void IgnorableWhitespace(zm::StringView) override { ++Blanks; }
  void Comment(zm::StringView) override { ++Comments; }
  void ProcessingInstruction(zm::StringView, zm::StringView) override { ++Instructions; }
  void StartCDATA() override { ++Sections; }
  void StartDTD() override { ++DocumentTypes; }
  void StartPrefixMapping(zm::StringView, zm::StringView) override { ++Namespaces; }
};

}  // namespace

int PrintXMLStats(const TSource& Source) {
  using TClock = std::chrono::steady_clock;
  TCounter counter;
  TInput input(Source.File);
  const auto begin = TClock::now();
  ReadXML(input, Source.CodePage, counter);
  const double seconds = std::chrono::duration<double>(TClock::now() - begin).count();

  const struct {
    const char* Name;
    long long Count;
  } rows[] = {{"elements", counter.Elements},
              {"greatest depth", counter.Deepest},
              {"attributes", counter.Attributes},
              {"texts", counter.Texts},
              {"units of text", counter.TextUnits},
              {"blank texts", counter.Blanks},
              {"CDATA sections", counter.Sections},
              {"comments", counter.Comments},
              {"instructions", counter.Instructions},
              {"document types", counter.DocumentTypes},
              {"namespace declarations", counter.Namespaces},
              {"bytes", input.BytesRead()}};
  for (const auto& row : rows) std::printf("%-24s%14lld\n", row.Name, row.Count);
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::printf("%-24s%14.1f\n", "MB/s", static_cast<double>(input.BytesRead()) / seconds / 1e6);
  std::printf("%-24s%14.1f\n", "peak memory, MB", static_cast<double>(usage.ru_maxrss) / 1024);
  return std::fflush(stdout) == 0 ? ecDone : ecRefused;
}

}  // namespace zmtool
