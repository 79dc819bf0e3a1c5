#pragma once

#include <string>
#include <string_view>

#include "Output.h"

namespace zmtool {

/// Writes one JSON array a line, by the letter of JSON, so that any parser reads the texts back exactly; a lone
/// surrogate goes out as an escape.
class TJSONLines {
 public:
  explicit TJSONLines(TOutput& Out) : FOut(Out) {}

  /// A whole line: the name of an event and its texts.
  template <class... Texts>
  void Print(std::string_view Event, Texts... Values) {
    Begin(Event);
    PutTexts(Values...);
    End();
  }
  /// The line of what has gone wrong, and where.
  template <class Locator>
  void PrintFailure(Locator* Place, zm::StringView Message) {
    Begin("FatalError");
    Number(Place->GetLineNr());
    Number(Place->GetColNr());
    Text(Message);
    End();
  }

  /// Begins a line whose first item is the name of an event.
  void Begin(std::string_view Event);
  void Text(zm::StringView Value);
  template <class... Texts>
  void PutTexts(Texts... Values) {
    (Text(Values), ...);
  }
  void Number(long long Value);
  /// An array within the line.
  void OpenArray();
  void CloseArray();
  void End();

 private:
  void Comma();

  TOutput& FOut;
  std::string FLine;
  bool FFirst = true;
};

}  // namespace zmtool
