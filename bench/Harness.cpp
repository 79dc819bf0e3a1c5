#include "Harness.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <fstream>
#include <numeric>
#include <sstream>
#include <stdexcept>

#ifdef __linux__
#include <malloc.h>
#include <sched.h>
#endif

namespace zm::bench {
namespace {

constexpr double cShortestSample = 0.02;
constexpr std::size_t cFewestSamples = 5;

// Work that is done with again and again until the sample is long enough for the clock and the caches.
struct TLane {
  const TContestant* Contestant;
  int Repeats = 1;
  std::vector<double> Samples;

  void Calibrate() {
    Contestant->Run();
    const double once = Stopwatch(Contestant->Run);
    Repeats = std::max(1, static_cast<int>(std::ceil(cShortestSample / std::max(once, 1e-6))));
  }

  void TakeSample() {
    const double seconds = Stopwatch([this] {
      for (int i = 0; i < Repeats; ++i) Contestant->Run();
    });
    Samples.push_back(seconds / Repeats);
  }

  double Spent() const { return std::accumulate(Samples.begin(), Samples.end(), 0.0) * Repeats; }
};

}  // namespace

std::vector<TTiming> Race(const std::vector<TContestant>& Contestants, double Seconds) {
  std::vector<TLane> lanes;
  for (const TContestant& contestant : Contestants) lanes.push_back({&contestant, 1, {}});
  for (TLane& lane : lanes) lane.Calibrate();
  const auto done = [Seconds](const TLane& Lane) {
    return Lane.Samples.size() >= cFewestSamples && Lane.Spent() >= Seconds;
  };
  for (std::size_t turn = 0; !std::all_of(lanes.begin(), lanes.end(), done); ++turn)
    for (std::size_t i = 0; i < lanes.size(); ++i)
      if (TLane& lane = lanes[(turn + i) % lanes.size()]; !done(lane)) lane.TakeSample();

  std::vector<TTiming> timings;
  for (const TLane& lane : lanes)
    timings.push_back({Median(lane.Samples), *std::min_element(lane.Samples.begin(), lane.Samples.end())});
  return timings;
}

double Stopwatch(const std::function<void()>& Work) {
  const auto now = [] {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
  };
  const double start = now();
  Work();
  return now() - start;
}

double Median(std::vector<double> Values) {
  const auto middle = Values.begin() + static_cast<std::ptrdiff_t>(Values.size() / 2);
  std::nth_element(Values.begin(), middle, Values.end());
  return *middle;
}

double GeometricMean(const std::vector<double>& Values) {
  double logarithms = 0;
  for (const double value : Values) logarithms += std::log(value);
  return std::exp(logarithms / static_cast<double>(Values.size()));
}

bool PinToOneCore() {
#ifdef __linux__
  cpu_set_t allowed;
  if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) return false;
  for (int core = CPU_SETSIZE - 1; core >= 0; --core) {
    if (!CPU_ISSET(core, &allowed)) continue;
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(core, &one);
    return sched_setaffinity(0, sizeof one, &one) == 0;
  }
#endif
  return false;
}

void KeepHeapWarm() {
#ifdef __GLIBC__
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, -1);
#endif
}

std::string ReadFile(const std::filesystem::path& File) {
  std::ifstream stream(File, std::ios::binary);
  std::ostringstream bytes;
  if (!stream || !(bytes << stream.rdbuf())) throw std::runtime_error("cannot read " + File.string());
  return std::move(bytes).str();
}

void WriteFile(const std::filesystem::path& File, const std::string& Text) {
  if (File.has_parent_path()) std::filesystem::create_directories(File.parent_path());
  std::ofstream stream(File, std::ios::binary | std::ios::trunc);
  if (!stream.write(Text.data(), static_cast<std::streamsize>(Text.size())).flush())
    throw std::runtime_error("cannot write " + File.string());
}

std::filesystem::path CacheFolder() {
#ifdef ZAMRIT_BENCH_CACHE
  return ZAMRIT_BENCH_CACHE;
#else
  return std::filesystem::temp_directory_path() / "zamrit-bench";
#endif
}

}  // namespace zm::bench
