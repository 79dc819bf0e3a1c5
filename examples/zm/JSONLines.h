#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "zamrit/platform/Strings.h"

namespace zmtool {

/// Writes one JSON array a line to a file, by the letter of JSON, so that any parser reads the texts back exactly; a
/// lone surrogate goes out as an escape.
class TJSONLines {
 public:
  explicit TJSONLines(std::FILE* File) : FFile(File) {}
  ~TJSONLines() { Flush(); }
  TJSONLines(const TJSONLines&) = delete;
  TJSONLines& operator=(const TJSONLines&) = delete;

  /// Begins a line whose first item is the name of an event.
  void Begin(std::string_view Event);
  void Text(zm::StringView Value);
  void Number(long long Value);
  /// An array within the line.
  void OpenArray();
  void CloseArray();
  void End();
  /// Hands on what is buffered. False when the file has not taken all.
  bool Flush();

 private:
  void Comma();

  std::FILE* FFile;
  std::string FBuffer;
  bool FFirst = true;
};

}  // namespace zmtool
