#include "JSONRecords.h"

#include <cstdint>

namespace zm::bench {

std::string GeneratedJSON(std::size_t Size) {
  std::uint64_t state = 1;
  const auto below = [&state](std::uint64_t limit) {
    state = state * 6364136223846793005 + 1442695040888963407;
    return std::to_string((state >> 33) % limit);
  };
  std::string text = "[";
  for (std::uint64_t id = 0; text.size() < Size; ++id) {
    if (id > 0) text += ",\n";
    text += "{\"id\": " + std::to_string(id) + ", \"name\": \"Customer " + below(100000) + "\", \"price\": ";
    text += below(100000) + "." + below(100) + ", \"active\": " + (below(2) == "1" ? "true" : "false");
    text += ", \"tags\": [\"red\", \"gr\u00FCn\", null], \"place\": {\"street\": \"Hauptstra\u00DFe " + below(300);
    text += "\", \"city\": \"K\u00F6ln\"}}";
  }
  return text + "]";
}

}  // namespace zm::bench
