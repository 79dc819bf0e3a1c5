#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace zm::bench {

/// A number with a fixed count of decimals, as C writes it.
std::string Fixed(double Value, int Decimals);
/// The processor, the number of its cores and the compiler, in one line of text.
std::string DescribeMachine();

/// A table in Markdown, first column to the left, the others to the right.
class TTable {
 public:
  explicit TTable(std::vector<std::string> Heads) : FRows{std::move(Heads)} {}

  /// Adds a row of as many cells as there are heads.
  void Add(std::vector<std::string> Cells) { FRows.push_back(std::move(Cells)); }
  /// The table with an empty line behind it.
  std::string Markdown() const;

 private:
  std::vector<std::vector<std::string>> FRows;
};

/// Prints a text on standard output and, unless File is empty, writes it there too.
void Publish(const std::string& Markdown, const std::filesystem::path& File);

}  // namespace zm::bench
