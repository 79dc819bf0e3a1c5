#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "Arguments.h"

namespace {

using zmtool::TCommand;

constexpr TCommand cCommands[] = {
    {"events", "[--xml|--json|--form] [--encoding NAME] FILE", zmtool::PrintEvents},
    {"stats", "[--xml|--json|--form] [--encoding NAME] FILE", zmtool::PrintStats},
    {"format", "[--compact] [--bom] [--encoding NAME] FILE", zmtool::PrintFormatted},
    {"select", "[--json] [--local-names] [--case-sensitive] [--count] [-0] [--encoding NAME] FILE PATH",
     zmtool::PrintSelected},
    {"convert", "--to xml|json [--encoding NAME] FILE", zmtool::PrintConverted}};

std::string UsageOf(const TCommand& Command) {
  return "zm " + std::string(Command.Name) + ' ' + std::string(Command.Arguments);
}

void PrintHelp(zmtool::TOutput& Out) {
  for (const TCommand& command : cCommands) Out.Put(UsageOf(command) + '\n');
  Out.Put(
      "FILE may be - for standard input. Without a switch a text is XML if it begins with <, else JSON. PATH is a "
      "node\n"
      "path, with --json a JSON path.\n"
      "Exit code: 0, 1 nothing selected, 2 wrong usage, 3 input refused.\n");
}

// In one line, whatever the reason says.
int RefuseUsage(std::string Why, const std::string& Usage) {
  std::replace(Why.begin(), Why.end(), '\n', ' ');
  Why.erase(std::remove(Why.begin(), Why.end(), '\r'), Why.end());
  std::fprintf(stderr, "zm: %s; usage: %s\n", Why.c_str(), Usage.c_str());
  return zmtool::ecUsage;
}

int Run(std::vector<std::string_view> Args) {
  const std::string usage = "zm events|stats|format|select|convert [SWITCH...] FILE, or zm help";
  if (Args.empty()) return RefuseUsage("no command", usage);
  zmtool::TOutput out;
  const auto* const command =
      std::find_if(std::begin(cCommands), std::end(cCommands), [&](const TCommand& c) { return c.Name == Args[0]; });
  int result = zmtool::ecDone;
  if (command != std::end(cCommands)) {
    Args.erase(Args.begin());
    try {
      result = command->Run(ParseArguments(*command, Args), out);
    } catch (const zmtool::EUsage& e) {
      return RefuseUsage(e.what(), UsageOf(*command));
    }
  } else if (Args[0] == "help" || Args[0] == "--help") {
    PrintHelp(out);
  } else {
    return RefuseUsage("unknown command", usage);
  }
  out.Flush();
  return result;
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
