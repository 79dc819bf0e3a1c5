#pragma once

#include <cstdint>
#include <string>

#include "Output.h"
#include "zamrit/platform/Exceptions.h"

namespace zmtool {

/// What a text is written in; tkUnknown leaves it to the text.
enum TTextKind { tkUnknown, tkXML, tkJSON, tkForm };

/// What a command line asks for.
struct TRequest {
  std::string File;            ///< "-" is standard input
  std::string Path;            ///< what to select
  std::string To;              ///< what to convert to
  std::uint16_t CodePage = 0;  ///< 0: a byte order mark or the text itself tells
  TTextKind Kind = tkUnknown;
  bool Compact = false;
  bool Mark = false;           ///< whether a byte order mark goes in front
  bool CountOnly = false;      ///< whether the number of hits stands for the hits
  bool ZeroEnded = false;      ///< whether hits end in a NUL instead of a line
  bool LocalNames = false;     ///< whether prefixes do not matter to a path
  bool CaseSensitive = false;  ///< whether case matters to a path
};

/// Exit codes of the program.
enum TExitCode { ecDone = 0, ecNothing = 1, ecUsage = 2, ecRefused = 3 };

/// Wrong usage.
class EUsage : public zm::Exception {
 public:
  using Exception::Exception;
};

/// Prints each event of a text as a JSON array on a line of its own.
int PrintEvents(const TRequest& Request, TOutput& Out);
/// Prints how many events of each kind a text has, its size, the speed of reading and the peak memory.
int PrintStats(const TRequest& Request, TOutput& Out);
/// Prints a text as its document saves it.
int PrintFormatted(const TRequest& Request, TOutput& Out);
/// Prints what a path selects in a document.
int PrintSelected(const TRequest& Request, TOutput& Out);
/// Prints JSON as XML, or XML as JSON.
int PrintConverted(const TRequest& Request, TOutput& Out);

}  // namespace zmtool
