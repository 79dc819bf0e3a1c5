#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <string>

/// What became of each file: its path leads to the rest of its line in a record, which stands beside the tests as a
/// table with tabs. A record says what a reader does, not what it should do. After a change that is meant, record anew
/// and look at the difference: ZM_RECORD_OUTCOMES=1 zamrit-tests --gtest_filter=*Suite.*
using TOutcomes = std::map<std::string, std::string>;

inline std::string ShortHash(const std::string& Text) {
  std::uint32_t hash = 2166136261;
  for (const char c : Text) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619;
  char digits[9];
  std::snprintf(digits, sizeof digits, "%08x", hash);
  return digits;
}

/// Expects the recorded outcomes, or records these when the environment says so.
inline void CompareWithRecord(const TOutcomes& Outcomes, const char* RecordName) {
  const auto record = std::filesystem::path(__FILE__).replace_filename(RecordName);
  if (std::getenv("ZM_RECORD_OUTCOMES")) {
    std::ofstream out(record, std::ios::binary);
    for (const auto& [path, outcome] : Outcomes) out << path << '\t' << outcome << '\n';
    std::cout << "recorded: the outcomes of " << Outcomes.size() << " files\n";
    return;
  }
  TOutcomes recorded;
  std::ifstream in(record);
  for (std::string line; std::getline(in, line);) {
    const auto tab = line.find('\t');
    recorded[line.substr(0, tab)] = line.substr(tab + 1);
  }
  EXPECT_EQ(Outcomes.size(), recorded.size());
  for (const auto& [path, outcome] : Outcomes) EXPECT_EQ(outcome, recorded[path]) << path;
}
