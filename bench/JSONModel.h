#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace zm::bench {

/// What a walk over a tree has met. It reads both ends of every text, so that every text is made.
struct TJSONCounts {
  std::uint64_t Values = 0;
  std::uint64_t Members = 0;
  std::uint64_t Units = 0;
  std::uint64_t Touched = 0;

  template <class Unit>
  void Touch(const Unit* Text, std::size_t Length) {
    Units += Length;
    if (Length > 0) Touched += static_cast<std::uint64_t>(Text[0]) + static_cast<std::uint64_t>(Text[Length - 1]);
  }
};

/// A document in one library. Load replaces what there is; all throw std::exception.
class TJSONModel {
 public:
  virtual ~TJSONModel() = default;
  virtual void Load(const std::string& UTF8) = 0;
  virtual TJSONCounts Walk() const = 0;
  /// Writes UTF-8 to memory and returns its size.
  virtual std::size_t Save() const = 0;
  virtual void Free() = 0;
};

std::unique_ptr<TJSONModel> MakeZamritModel();
std::unique_ptr<TJSONModel> MakeRapidJSONModel();
std::unique_ptr<TJSONModel> MakeRapidJSONVectorModel();
std::unique_ptr<TJSONModel> MakeRapidJSONWideModel();
std::unique_ptr<TJSONModel> MakeRapidJSONWideVectorModel();
std::unique_ptr<TJSONModel> MakeNlohmannModel();
std::unique_ptr<TJSONModel> MakeBoostModel();
std::unique_ptr<TJSONModel> MakeSimdjsonModel();

/// Selects by a filter from an array of Count objects, and answers the seconds of one selection.
double SelectWithZamrit(std::size_t Count, double Seconds, std::size_t& Hits);

}  // namespace zm::bench
