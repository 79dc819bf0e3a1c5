#pragma once

#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace zm::bench {

/// The arguments of the program are wrong; the message says which.
class EUsage : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What the user may ask of a command.
struct TOptions {
  std::filesystem::path Data = "../shared/data";
  double Seconds = 1;
  double Gigabytes = 10;
  std::filesystem::path Markdown;
  bool Quick = false;
};

/// Reads options of the form "--name value" and "--quick". Allowed are the names that stand in Synopsis. Throws EUsage.
TOptions ParseOptions(const std::vector<std::string_view>& Arguments, std::string_view Synopsis);

}  // namespace zm::bench
