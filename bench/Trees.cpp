#include "Trees.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "Harness.h"
#include "Isolated.h"
#include "Report.h"

namespace zm::bench {

const char* const cTreeNotes =
    "## How it was measured\n"
    "\n"
    "- UTF-8 in memory becomes a document of its own, and a document UTF-8 in memory. MB/s are 10^6 bytes of the "
    "source, "
    "of a save those that it writes, in a second of processor time; the median of all samples.\n"
    "- Warm: again and again in one process whose heap keeps its pages, freeing included. Cold: once in a process of "
    "its "
    "own, the best of five; so is the growth of resident memory, which counts the code that is touched first, too. A "
    "walk visits every node and reads both ends of every name and value.\n";

namespace {

constexpr const char* cTasks[ttCount] = {"load and free, warm, MB/s",    "load, cold, MB/s",
                                         "save, MB/s of output",         "save formatted, MB/s of output",
                                         "walk, MB/s of source",         "free, MB/s of source",
                                         "resident growth, bytes a byte"};

/// The comparison of all libraries in one document.
class TContest {
 public:
  TContest(std::span<const TTreeLibrary> Libraries, const TTreeSource& Source)
      : FLibraries(Libraries), FSource(Source), FResults(Libraries.size()) {}

  double Result(std::size_t Library, TTreeTask Task) const { return FResults[Library].Of[Task]; }

  void MeasureCold() {
    for (std::size_t i = 0; i < FLibraries.size(); ++i) {
      double& best = FResults[i].Of[ttColdLoad];
      for (int round = 0; round < 5; ++round) {
        const TIsolated run = RunIsolated(
            [&] {
              const auto tree = FLibraries[i].Make();
              return Stopwatch([&] { tree->Load(FSource.Text); });
            },
            120);
        if (!run.Failure.empty()) throw std::runtime_error(std::string(FLibraries[i].Name) + ": " + run.Failure);
        best = std::max(best, Megabytes() / run.Seconds);
        FResults[i].Of[ttMemory] = static_cast<double>(run.PeakGrowth) / static_cast<double>(FSource.Text.size());
      }
    }
  }

  void MeasureWarm(std::size_t Counted, double Seconds) {
    for (const TTreeLibrary& library : FLibraries) FTrees.push_back(library.Make());
    Measure(ttWarmLoad, Seconds, [&](TTree& Tree) { Tree.Load(FSource.Text), Tree.Free(); });
    for (std::size_t i = 0; i < FTrees.size(); ++i) {
      double best = 1e9;
      for (int round = 0; round < 3; ++round) {
        FTrees[i]->Load(FSource.Text);
        best = std::min(best, Stopwatch([&] { FTrees[i]->Free(); }));
      }
      FResults[i].Of[ttFree] = Megabytes() / best;
      FTrees[i]->Load(FSource.Text);
    }
    for (const TTreeTask task : {ttSave, ttSaveFormatted}) {
      const bool formatted = task == ttSaveFormatted;
      Measure(task, Seconds, [&](TTree& Tree) { Tree.Save(formatted); });
      for (std::size_t i = 0; i < FTrees.size(); ++i)
        FResults[i].Of[task] *= static_cast<double>(FTrees[i]->Save(formatted)) / 1e6 / Megabytes();
    }
    Measure(ttWalk, Seconds, [](TTree& Tree) { Tree.Walk(); });

    const TTreeCounts ours = FTrees[0]->Walk(), theirs = FTrees[Counted]->Walk();
    if (theirs.Nodes != ours.Nodes || theirs.Names != ours.Names)
      throw std::runtime_error(FSource.Name + ": the libraries count differently: " + std::to_string(ours.Nodes) + "+" +
                               std::to_string(ours.Names) + " and " + std::to_string(theirs.Nodes) + "+" +
                               std::to_string(theirs.Names));
    FTrees.clear();
  }

 private:
  struct TResults {
    double Of[ttCount] = {};
  };

  double Megabytes() const { return static_cast<double>(FSource.Text.size()) / 1e6; }

  template <class F>
  void Measure(TTreeTask Task, double Seconds, const F& Run) {
    std::vector<TContestant> contestants;
    for (std::size_t i = 0; i < FTrees.size(); ++i)
      contestants.push_back({FLibraries[i].Name, [&Run, &tree = *FTrees[i]] { Run(tree); }});
    const std::vector<TTiming> timings = Race(contestants, Seconds);
    for (std::size_t i = 0; i < FTrees.size(); ++i) FResults[i].Of[Task] = Megabytes() / timings[i].Median;
  }

  std::span<const TTreeLibrary> FLibraries;
  const TTreeSource& FSource;
  std::vector<TResults> FResults;
  std::vector<std::unique_ptr<TTree>> FTrees;
};

std::vector<std::string> Heads(const char* First, const std::vector<TTreeSource>& Sources) {
  std::vector<std::string> heads{First};
  for (const TTreeSource& source : Sources) heads.push_back(source.Name);
  return heads;
}

std::string ResultTable(std::span<const TTreeLibrary> Libraries, const std::vector<TTreeSource>& Sources,
                        const std::vector<TContest>& Contests, TTreeTask Task) {
  TTable table(Heads(cTasks[Task], Sources));
  for (std::size_t i = 0; i < Libraries.size(); ++i) {
    std::vector<std::string> cells{Libraries[i].Name};
    for (const TContest& contest : Contests) cells.push_back(Fixed(contest.Result(i, Task), Task == ttMemory ? 2 : 0));
    table.Add(cells);
  }
  return table.Markdown();
}

std::string GoalTable(std::span<const TTreeLibrary> Libraries, const std::vector<TTreeSource>& Sources,
                      const std::vector<TContest>& Contests, std::span<const TTreeGoal> Goals) {
  std::vector<std::string> heads = Heads("ratio of speeds", Sources);
  for (const char* head : {"geometric mean", "goal", "verdict"}) heads.push_back(head);
  TTable table(heads);
  for (const TTreeGoal& goal : Goals) {
    const std::string task = cTasks[goal.Task];
    std::vector<std::string> cells{task.substr(0, task.find(", MB/s")) + ", to " + Libraries[goal.One].Name +
                                   (goal.One == goal.Other ? "" : " or " + std::string(Libraries[goal.Other].Name))};
    std::vector<double> ratios;
    for (const TContest& contest : Contests) {
      ratios.push_back(contest.Result(0, goal.Task) /
                       std::max(contest.Result(goal.One, goal.Task), contest.Result(goal.Other, goal.Task)));
      cells.push_back(Fixed(ratios.back(), 2));
    }
    const double mean = GeometricMean(ratios);
    cells.push_back(Fixed(mean, 2));
    cells.push_back(Fixed(goal.Goal, 2));
    cells.push_back(mean >= goal.Goal ? "reached" : "missed");
    table.Add(cells);
  }
  return table.Markdown();
}

}  // namespace

std::vector<TTreeSource> LoadSources(const std::filesystem::path& Folder, std::initializer_list<const char*> Suffixes,
                                     std::uintmax_t Smallest) {
  std::vector<TTreeSource> sources;
  if (!std::filesystem::is_directory(Folder)) {
    std::fprintf(stderr, "no documents in %s: only generated ones are measured\n", Folder.c_str());
    return sources;
  }
  for (const auto& entry : std::filesystem::directory_iterator(Folder))
    if (entry.is_regular_file() && entry.file_size() >= Smallest &&
        std::find(Suffixes.begin(), Suffixes.end(), entry.path().extension()) != Suffixes.end())
      sources.push_back({entry.path().filename().string(), ReadFile(entry.path())});
  std::sort(sources.begin(), sources.end(), [](const auto& L, const auto& R) { return L.Name < R.Name; });
  return sources;
}

std::string CompareTrees(std::span<const TTreeLibrary> Libraries, const std::vector<TTreeSource>& Sources,
                         std::span<const TTreeGoal> Goals, std::size_t Counted, double Seconds) {
  const bool pinned = PinToOneCore();
  std::vector<TContest> contests;
  for (const TTreeSource& source : Sources) contests.emplace_back(Libraries, source).MeasureCold();
  KeepHeapWarm();
  for (std::size_t i = 0; i < Sources.size(); ++i) {
    std::fprintf(stderr, "%s ...\n", Sources[i].Name.c_str());
    contests[i].MeasureWarm(Counted, Seconds);
  }
  std::string text = pinned ? "" : "The process could not be kept on one core.\n\n";
  text += GoalTable(Libraries, Sources, contests, Goals);
  for (int task = 0; task < ttCount; ++task)
    text += ResultTable(Libraries, Sources, contests, static_cast<TTreeTask>(task));
  return text;
}

}  // namespace zm::bench
