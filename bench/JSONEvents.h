#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace zm::bench {

/// A document as each reader takes it.
struct TJSONSource {
  std::filesystem::path File;
  std::string UTF8;
  std::u16string UTF16;
};

/// What a handler was told. It looks at every argument, so that no reader gets away with not making it.
struct TJSONEventCounts {
  std::uint64_t Objects = 0;
  std::uint64_t Arrays = 0;
  std::uint64_t Members = 0;
  std::uint64_t Strings = 0;
  std::uint64_t Numbers = 0;
  std::uint64_t Words = 0;    // true, false, null
  std::uint64_t Units = 0;    // lengths of all texts
  std::uint64_t Touched = 0;  // sum of what was read of the texts and numbers

  bool operator==(const TJSONEventCounts&) const = default;
  /// Whether the same values were told, however their texts are made.
  bool SameShape(const TJSONEventCounts& Other) const {
    return Objects == Other.Objects && Arrays == Other.Arrays && Members == Other.Members && Strings == Other.Strings &&
           Numbers == Other.Numbers && Words == Other.Words;
  }

  template <class Unit>
  void Touch(const Unit* Text, std::size_t Length) {
    Units += Length;
    if (Length > 0) Touched += static_cast<std::uint64_t>(Text[0]) + static_cast<std::uint64_t>(Text[Length - 1]);
  }
};

// One whole reading each, from making the reader to freeing it. They throw std::exception when the reader refuses the
// document.
TJSONEventCounts ReadWithZamrit(const TJSONSource& Source);
TJSONEventCounts ReadWithZamritFromFile(const TJSONSource& Source);
TJSONEventCounts ReadWithZamritFromUTF16(const TJSONSource& Source);
TJSONEventCounts ReadWithRapidJSON(const TJSONSource& Source);
TJSONEventCounts ReadWithRapidJSONToUTF16(const TJSONSource& Source);
TJSONEventCounts ReadWithRapidJSONVectors(const TJSONSource& Source);
TJSONEventCounts ReadWithRapidJSONVectorsToUTF16(const TJSONSource& Source);
TJSONEventCounts ReadWithNlohmann(const TJSONSource& Source);
TJSONEventCounts ReadFormWithZamrit(const std::string& Post);

/// Name and version of each library compared with.
std::string RapidJSONVersion();
std::string NlohmannVersion();

}  // namespace zm::bench
