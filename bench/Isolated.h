#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace zm::bench {

/// What became of work in a process of its own.
struct TIsolated {
  std::string Failure;  // empty: the work came to its end
  double Seconds = 0;
  std::uint64_t PeakGrowth = 0;  // bytes that its resident memory grew by at most
};

/// Runs Work in a child process, so that its memory can be told apart and a crash or an endless loop does not end the
/// benchmark. Work answers the seconds that count; what it throws is its failure. It is ended after Limit seconds.
TIsolated RunIsolated(const std::function<double()>& Work, unsigned Limit);

}  // namespace zm::bench
