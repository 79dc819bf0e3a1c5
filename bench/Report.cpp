#include "Report.h"

#include <cstdio>
#include <fstream>
#include <thread>

#include "Harness.h"

namespace zm::bench {
namespace {

std::string ProcessorName() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);)
    if (line.rfind("model name", 0) == 0) return line.substr(line.find(':') + 2);
  return "unknown processor";
}

std::string CompilerName() {
#ifdef __clang__
  return "clang " __clang_version__;
#else
  return "g++ " __VERSION__;
#endif
}

std::string Line(const std::vector<std::string>& Cells) {
  std::string line = "|";
  for (const std::string& cell : Cells) line += " " + cell + " |";
  return line + "\n";
}

}  // namespace

std::string Fixed(double Value, int Decimals) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", Decimals, Value);
  return text;
}

std::string DescribeMachine() {
  return ProcessorName() + ", " + std::to_string(std::thread::hardware_concurrency()) + " cores; " + CompilerName();
}

std::string TTable::Markdown() const {
  std::string text = Line(FRows.front()) + "|---|";
  for (std::size_t i = 1; i < FRows.front().size(); ++i) text += "---:|";
  text += "\n";
  for (std::size_t i = 1; i < FRows.size(); ++i) text += Line(FRows[i]);
  return text + "\n";
}

void Publish(const std::string& Markdown, const std::filesystem::path& File) {
  std::fputs(Markdown.c_str(), stdout);
  if (!File.empty()) WriteFile(File, Markdown);
}

}  // namespace zm::bench
