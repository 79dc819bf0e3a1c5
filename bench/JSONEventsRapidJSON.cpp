#include "JSONEventsRapidJSONReadings.h"

namespace zm::bench {

TJSONEventCounts ReadWithRapidJSON(const TJSONSource& Source) { return ReadTo<rapidjson::UTF8<>>(Source); }

TJSONEventCounts ReadWithRapidJSONToUTF16(const TJSONSource& Source) {
  return ReadTo<rapidjson::UTF16<char16_t>>(Source);
}

std::string RapidJSONVersion() { return "RapidJSON " RAPIDJSON_VERSION_STRING; }

}  // namespace zm::bench
