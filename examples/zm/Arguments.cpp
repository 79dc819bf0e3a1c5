#include "Arguments.h"

#include <algorithm>

#include "zamrit/common/Encoding.h"

namespace zmtool {
namespace {

// Whether the arguments of a command name a word.
bool Takes(const TCommand& Command, std::string_view Word) {
  constexpr std::string_view parting = " []|";
  for (std::size_t at = 0; at < Command.Arguments.size();) {
    const std::size_t end = std::min(Command.Arguments.find_first_of(parting, at), Command.Arguments.size());
    if (Command.Arguments.substr(at, end - at) == Word) return true;
    at = end + 1;
  }
  return false;
}

// Takes in a switch that stands for itself. False where it is none.
bool SetSwitch(TRequest& Request, std::string_view Switch) {
  static constexpr struct {
    std::string_view Switch;
    bool TRequest::*Field;
  } flags[] = {{"--compact", &TRequest::Compact},        {"--bom", &TRequest::Mark},
               {"--count", &TRequest::CountOnly},        {"-0", &TRequest::ZeroEnded},
               {"--local-names", &TRequest::LocalNames}, {"--case-sensitive", &TRequest::CaseSensitive}};
  static constexpr struct {
    std::string_view Switch;
    TTextKind Kind;
  } kinds[] = {{"--xml", tkXML}, {"--json", tkJSON}, {"--form", tkForm}};
  for (const auto& flag : flags)
    if (flag.Switch == Switch) return Request.*flag.Field = true;
  for (const auto& kind : kinds) {
    if (kind.Switch != Switch) continue;
    if (Request.Kind != tkUnknown && Request.Kind != kind.Kind) throw EUsage(u"the text cannot be of two kinds");
    Request.Kind = kind.Kind;
    return true;
  }
  return false;
}

void SetValue(TRequest& Request, std::string_view Switch, std::string_view Value) {
  if (Switch == "--to") {
    if (Value != "xml" && Value != "json") throw EUsage(u"--to needs xml or json");
    Request.To = Value;
    return;
  }
  try {
    Request.CodePage = zm::ZmCodePage(zm::FromUTF8(Value));
  } catch (const zm::EConvertError& e) {
    throw EUsage(e.GetMessage());
  }
}

}  // namespace

TRequest ParseArguments(const TCommand& Command, const std::vector<std::string_view>& Arguments) {
  TRequest request;
  std::vector<std::string*> places{&request.File};
  if (Takes(Command, "PATH")) places.push_back(&request.Path);
  std::size_t filled = 0;
  for (std::size_t i = 0; i < Arguments.size(); ++i) {
    const std::string_view argument = Arguments[i];
    if (argument.size() > 1 && argument[0] == '-') {
      if (!Takes(Command, argument))
        throw EUsage(u"%s is not known to %s", {zm::FromUTF8(argument), zm::FromUTF8(Command.Name)});
      if (SetSwitch(request, argument)) continue;
      if (++i == Arguments.size()) throw EUsage(u"%s needs a value", {zm::FromUTF8(argument)});
      SetValue(request, argument, Arguments[i]);
    } else {
      if (filled == places.size()) throw EUsage(u"an argument too many");
      *places[filled++] = argument;
    }
  }
  if (filled < places.size()) throw EUsage(filled == 0 ? u"no file" : u"no path");
  if (Takes(Command, "--to") && request.To.empty()) throw EUsage(u"--to is missing");
  return request;
}

}  // namespace zmtool
