#include "Isolated.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <exception>
#include <fstream>
#include <stdexcept>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace zm::bench {
namespace {

// What the child writes into the pipe.
struct TMessage {
  double Seconds = 0;
  std::uint64_t PeakGrowth = 0;
  char Failure[120] = {};
};

// A size in /proc/self/status, in bytes; 0 where there is no such thing.
std::uint64_t StatusSize(const std::string& Key) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.rfind(Key + ":", 0) == 0) return std::stoull(line.substr(Key.size() + 1)) * 1024;
  return 0;
}

TMessage Measure(const std::function<double()>& Work) {
  TMessage message;
  const std::uint64_t before = StatusSize("VmRSS");
  try {
    message.Seconds = Work();
  } catch (const std::exception& e) {
    std::strncpy(message.Failure, e.what(), sizeof message.Failure - 1);
  }
  message.PeakGrowth = StatusSize("VmHWM") - before;
  return message;
}

std::string DescribeEnd(int Status, unsigned Limit) {
  if (!WIFSIGNALED(Status)) return "ended without a result";
  if (WTERMSIG(Status) == SIGALRM) return "stopped after " + std::to_string(Limit) + " s";
  return std::string("crashed: ") + strsignal(WTERMSIG(Status));
}

}  // namespace

TIsolated RunIsolated(const std::function<double()>& Work, unsigned Limit) {
#ifdef __GLIBC__
  malloc_trim(0);  // pages that the child found free would not show as growth
#endif
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process");
  if (child == 0) {
    alarm(Limit);
    const TMessage message = Measure(Work);
    const bool told = write(ends[1], &message, sizeof message) == sizeof message;
    _exit(told ? 0 : 1);
  }
  close(ends[1]);
  TMessage message;
  const bool told = read(ends[0], &message, sizeof message) == sizeof message;
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (!told) return {DescribeEnd(status, Limit), 0, 0};
  return {message.Failure, message.Seconds, message.PeakGrowth};
}

}  // namespace zm::bench
