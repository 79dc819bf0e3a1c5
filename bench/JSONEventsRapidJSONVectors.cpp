#define RAPIDJSON_NAMESPACE rapidjson_vectors
#define RAPIDJSON_NAMESPACE_BEGIN namespace rapidjson_vectors {
#define RAPIDJSON_NAMESPACE_END }
#if defined(__SSE2__)
#define RAPIDJSON_SSE2
#elif defined(__ARM_NEON)
#define RAPIDJSON_NEON
#endif
#define rapidjson rapidjson_vectors
#include "JSONEventsRapidJSONReadings.h"

namespace zm::bench {

TJSONEventCounts ReadWithRapidJSONVectors(const TJSONSource& Source) { return ReadTo<rapidjson::UTF8<>>(Source); }

TJSONEventCounts ReadWithRapidJSONVectorsToUTF16(const TJSONSource& Source) {
  return ReadTo<rapidjson::UTF16<char16_t>>(Source);
}

}  // namespace zm::bench
