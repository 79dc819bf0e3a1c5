#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

/// Puts the process into a time zone for a scope.
class TZone {
 public:
  explicit TZone(const char* Name) {
    if (const char* old = std::getenv("TZ")) FOld = old;
    setenv("TZ", Name, 1);
    tzset();
  }
  ~TZone() {
    FOld ? setenv("TZ", FOld->c_str(), 1) : unsetenv("TZ");
    tzset();
  }
  TZone(const TZone&) = delete;
  TZone& operator=(const TZone&) = delete;

 private:
  std::optional<std::string> FOld;
};
