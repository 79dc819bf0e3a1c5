#include <cstdio>
#include <optional>
#include <string_view>
#include <vector>

#include "Commands.h"
#include "zamrit/zamrit.h"

namespace {

constexpr const char* cUsage =
    "usage: zm events|stats [--xml] [--encoding NAME] FILE   (FILE may be - for standard input)";

int RefuseUsage(const char* Why) {
  std::fprintf(stderr, "zm: %s; %s\n", Why, cUsage);
  return zmtool::ecUsage;
}

int Run(const std::vector<std::string_view>& Args) {
  if (Args.empty()) return RefuseUsage("no command");
  if (Args[0] == "--help" || Args[0] == "help") return std::puts(cUsage) < 0 ? zmtool::ecRefused : zmtool::ecDone;
  int (*const command)(const zmtool::TSource&) = Args[0] == "events"  ? zmtool::PrintXMLEvents
                                                 : Args[0] == "stats" ? zmtool::PrintXMLStats
                                                                      : nullptr;
  if (!command) return RefuseUsage("unknown command");
  zmtool::TSource source;
  std::optional<std::string> file;
  for (std::size_t i = 1; i < Args.size(); ++i) {
    if (Args[i] == "--xml") continue;
    if (Args[i] == "--encoding") {
      if (++i == Args.size()) return RefuseUsage("--encoding needs a name");
      try {
        source.CodePage = zm::ZmCodePage(zm::FromUTF8(Args[i]));
      } catch (const zm::EConvertError& e) {
        return RefuseUsage(e.what());
      }
    } else if (file || (Args[i].size() > 1 && Args[i][0] == '-')) {
      return RefuseUsage("an argument too many, or one that is not known");
    } else {
      file = Args[i];
    }
  }
  if (!file) return RefuseUsage("no file");
  source.File = *file;
  return command(source);
}

}  // namespace

int main(int Count, char** Values) {
  try {
    return Run({Values + 1, Values + Count});
  } catch (const std::exception& e) {
    std::fprintf(stderr, "zm: %s\n", e.what());
    return zmtool::ecRefused;
  }
}
