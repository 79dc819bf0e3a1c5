#pragma once

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

/// The folder of larger test documents; an empty path, told in one line, where there is none.
inline std::filesystem::path DataFolder() {
  const std::filesystem::path folder = ZM_TEST_DATA;
  if (std::filesystem::is_directory(folder / "xml" / "xmlconf")) return folder;
  std::cout << "left out: there are no test documents in " << folder << '\n';
  return {};
}

inline std::string BytesOf(const std::filesystem::path& File) {
  std::ifstream in(File, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}
