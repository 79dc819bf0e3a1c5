#pragma once

#include <string_view>
#include <vector>

#include "Commands.h"

namespace zmtool {

struct TCommand {
  std::string_view Name;
  /// Its arguments, as a user is shown them; what is not named here is not taken.
  std::string_view Arguments;
  int (*Run)(const TRequest& Request, TOutput& Out);
};

/// Reads the arguments behind the name of a command. Raises EUsage for what the command does not take.
TRequest ParseArguments(const TCommand& Command, const std::vector<std::string_view>& Arguments);

}  // namespace zmtool
