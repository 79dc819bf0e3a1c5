#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace zm::bench {

/// Writes orders as indented XML: elements, attributes, prose with letters beyond ASCII and with references. The same
/// records come in the same order on every machine.
class TRecordGenerator {
 public:
  /// What stands before the first record and behind the last, in UTF-8.
  static constexpr std::string_view Head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<orders>\n";
  static constexpr std::string_view Tail = "</orders>\n";
  /// What every record begins with; ten digits of its number follow.
  static constexpr std::string_view RecordStart = "  <order id=\"";

  /// Appends the next record.
  void AppendRecord(std::string& To);
  /// Appends records until To has at least Size bytes.
  void AppendRecords(std::string& To, std::size_t Size);

 private:
  std::uint32_t Below(std::uint32_t Limit);
  std::string_view Word();
  void AppendItem(std::string& To);

  std::uint64_t FState = 0x9E3779B97F4A7C15;
  std::uint64_t FNumber = 0;
};

/// Ten digits of a record's number.
std::string RecordNumber(std::uint64_t Number);

/// A document of records of at least Size bytes, made on first use in the cache folder and kept there.
/// Throws std::runtime_error when it cannot be written.
std::filesystem::path GeneratedDocument(std::size_t Size);

}  // namespace zm::bench
