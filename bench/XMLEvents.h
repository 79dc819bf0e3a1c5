#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace zm::bench {

/// A document as each reader takes it.
struct TXMLSource {
  std::filesystem::path File;
  std::string UTF8;
  std::u16string UTF16;
};

/// What a handler was told. It looks at every argument, so that no reader gets away with not making it.
struct TXMLEventCounts {
  std::uint64_t Elements = 0;
  std::uint64_t Attributes = 0;    // those with a value, as the reader tells them
  std::uint64_t Declarations = 0;  // of namespaces, where told beside the attributes
  std::uint64_t Defaulted = 0;     // attributes that come from the DTD, where told
  std::uint64_t Units = 0;         // lengths of all texts
  std::uint64_t Touched = 0;       // sum of what was read of the texts

  bool operator==(const TXMLEventCounts&) const = default;

  /// A text whose length is known.
  template <class Unit>
  void Touch(const Unit* Text, std::size_t Length) {
    Units += Length;
    if (Length > 0) Touched += static_cast<std::uint64_t>(Text[0]) + static_cast<std::uint64_t>(Text[Length - 1]);
  }
  /// A name that ends with a NUL, or nil. Its length is not asked for, in favour of readers that do not tell it.
  template <class Unit>
  void TouchName(const Unit* Name) {
    if (Name) Touched += static_cast<std::uint64_t>(Name[0]);
  }
};

// One whole reading each, from making the reader to freeing it. They throw std::exception when the reader refuses the
// document.
TXMLEventCounts ReadWithZamrit(const TXMLSource& Source);
TXMLEventCounts ReadWithZamritFromFile(const TXMLSource& Source);
TXMLEventCounts ReadWithZamritFromUTF16(const TXMLSource& Source);
TXMLEventCounts ReadWithLibxml2(const TXMLSource& Source);
TXMLEventCounts ReadWithExpat(const TXMLSource& Source);
TXMLEventCounts ReadWithExpatNamespaces(const TXMLSource& Source);
TXMLEventCounts ReadWithXerces(const TXMLSource& Source);

/// Name and version of each library compared with.
std::string Libxml2Version();
std::string ExpatVersion();
std::string XercesVersion();

}  // namespace zm::bench
