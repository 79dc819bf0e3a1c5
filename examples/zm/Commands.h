#pragma once

#include <cstdint>
#include <string>

namespace zmtool {

/// What a command is to read.
struct TSource {
  std::string File;            ///< "-" is standard input
  std::uint16_t CodePage = 0;  ///< 0: a byte order mark or the text itself tells
};

/// Exit codes of the program.
enum TExitCode { ecDone = 0, ecNothing = 1, ecUsage = 2, ecRefused = 3 };

/// Prints each event of an XML text as a JSON array on a line of its own.
int PrintXMLEvents(const TSource& Source);
/// Prints how many events of each kind an XML text has, its size, the speed of reading and the peak memory.
int PrintXMLStats(const TSource& Source);

}  // namespace zmtool
