#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace zm::bench {

/// One side of a comparison. Run does the whole work once.
struct TContestant {
  std::string Name;
  std::function<void()> Run;
};

/// Seconds of processor time that one run takes: the median of all samples, and the best of them.
struct TTiming {
  double Median = 0;
  double Best = 0;
};

/// Times the contestants against each other for about Seconds each, at least five samples, after a run that is not
/// timed. They take turns, in another order every time, so that what disturbs the machine hits all alike; short work is
/// repeated within a sample. The results stand in the order of the contestants. What a Run throws is passed on.
std::vector<TTiming> Race(const std::vector<TContestant>& Contestants, double Seconds);

/// Seconds of processor time that Work takes: what the clock on the wall would show if nothing else ever had the core.
double Stopwatch(const std::function<void()>& Work);

/// The value in the middle, the upper one of two. Values must not be empty.
double Median(std::vector<double> Values);
/// The geometric mean of positive values. Values must not be empty.
double GeometricMean(const std::vector<double>& Values);

/// Keeps this process on one core. Answers whether the system did so.
bool PinToOneCore();
/// Lets the heap keep its pages, as in a service that has run for a while, where the C library can.
void KeepHeapWarm();

/// All bytes of a file. Throws std::runtime_error with the name when it cannot be read.
std::string ReadFile(const std::filesystem::path& File);
/// Makes or replaces a file and the folders it needs. Throws std::runtime_error with the name when that fails.
void WriteFile(const std::filesystem::path& File, const std::string& Text);

/// The folder for documents that are made here: under the build folder, else among the system's temporary files.
std::filesystem::path CacheFolder();

}  // namespace zm::bench
