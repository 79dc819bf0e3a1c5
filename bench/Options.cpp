#include "Options.h"

#include <cmath>
#include <cstdlib>
#include <string>

namespace zm::bench {
namespace {

double PositiveNumber(const std::string& Name, const std::string& Text) {
  char* end = nullptr;
  const double value = std::strtod(Text.c_str(), &end);
  if (Text.empty() || *end || !std::isfinite(value) || value <= 0)
    throw EUsage(Name + " needs a positive number, not '" + Text + "'");
  return value;
}

bool Offers(std::string_view Synopsis, const std::string& Name) {
  return Synopsis.find("[" + Name + "]") != Synopsis.npos || Synopsis.find("[" + Name + " ") != Synopsis.npos;
}

}  // namespace

TOptions ParseOptions(const std::vector<std::string_view>& Arguments, std::string_view Synopsis) {
  TOptions options;
  for (auto at = Arguments.begin(); at != Arguments.end(); ++at) {
    const std::string name(*at);
    if (!Offers(Synopsis, name)) throw EUsage("there is no argument '" + name + "' here");
    if (name == "--quick") {
      options.Quick = true;
      continue;
    }
    if (++at == Arguments.end()) throw EUsage(name + " needs a value");
    if (name == "--data") options.Data = *at;
    if (name == "--markdown") options.Markdown = *at;
    if (name == "--seconds") options.Seconds = PositiveNumber(name, std::string(*at));
    if (name == "--gigabytes") options.Gigabytes = PositiveNumber(name, std::string(*at));
  }
  return options;
}

}  // namespace zm::bench
