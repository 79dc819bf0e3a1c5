#include "Stats.h"

#include <sys/resource.h>

#include <chrono>
#include <cstdio>

namespace zmtool {
namespace {

template <class Number>
void PutRow(TOutput& Out, const char* Format, const char* Name, Number Value) {
  char row[80];
  std::snprintf(row, sizeof row, Format, Name, Value);
  Out.Put(std::string_view(row));
}

}  // namespace

int PrintStats(const TRequest& Request, TOutput& Out) {
  using TClock = std::chrono::steady_clock;
  TInput input(Request.File);
  const TTextKind kind = Request.Kind == tkUnknown ? input.FindKind() : Request.Kind;
  const auto begin = TClock::now();
  TCounts counts = kind == tkXML ? CountXML(input, Request.CodePage) : CountJSON(input, kind, Request.CodePage);
  const double seconds = std::chrono::duration<double>(TClock::now() - begin).count();

  counts.emplace_back("bytes", input.BytesRead());
  for (const auto& [name, count] : counts) PutRow(Out, "%-24s%14lld\n", name, count);
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  PutRow(Out, "%-24s%14.1f\n", "MB/s", static_cast<double>(input.BytesRead()) / seconds / 1e6);
  PutRow(Out, "%-24s%14.1f\n", "peak memory, MB", static_cast<double>(usage.ru_maxrss) / 1024);
  return ecDone;
}

}  // namespace zmtool
