#pragma once

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace zm::bench {

/// What a walk over a tree has met. It reads both ends of every text, so that every text is made.
struct TTreeCounts {
  std::uint64_t Nodes = 0;  // without attributes and members
  std::uint64_t Names = 0;  // attributes or members
  std::uint64_t Units = 0;
  std::uint64_t Touched = 0;

  template <class Unit>
  void Touch(const Unit* Text, std::size_t Length) {
    Units += Length;
    if (Length > 0) Touched += static_cast<std::uint64_t>(Text[0]) + static_cast<std::uint64_t>(Text[Length - 1]);
  }
};

/// A document in one library. Load replaces what there is; all throw std::exception.
class TTree {
 public:
  virtual ~TTree() = default;
  virtual void Load(const std::string& UTF8) = 0;
  virtual TTreeCounts Walk() const = 0;
  /// Writes UTF-8 to memory and returns its size.
  virtual std::size_t Save(bool Formatted) const = 0;
  virtual void Free() = 0;
};

struct TTreeLibrary {
  const char* Name;
  std::unique_ptr<TTree> (*Make)();
};

struct TTreeSource {
  std::string Name;
  std::string Text;
};

enum TTreeTask { ttWarmLoad, ttColdLoad, ttSave, ttSaveFormatted, ttWalk, ttFree, ttMemory, ttCount };

/// A ratio of the first library to the faster of two others (which may be the same one) that is to be reached as a
/// geometric mean over the documents.
struct TTreeGoal {
  TTreeTask Task;
  std::size_t One;
  std::size_t Other;
  double Goal;
};

/// Documents of a folder with one of the suffixes and of at least Smallest bytes, by name; none, with a word on
/// standard error, where there is no such folder.
std::vector<TTreeSource> LoadSources(const std::filesystem::path& Folder, std::initializer_list<const char*> Suffixes,
                                     std::uintmax_t Smallest);

/// Measures all tasks with all libraries, the first of which is ours, and answers the tables. Throws
/// std::runtime_error where a library fails, or where Counted, another library, counts other nodes and names than ours.
std::string CompareTrees(std::span<const TTreeLibrary> Libraries, const std::vector<TTreeSource>& Sources,
                         std::span<const TTreeGoal> Goals, std::size_t Counted, double Seconds);

/// What the notes of all such comparisons begin with.
extern const char* const cTreeNotes;

}  // namespace zm::bench
