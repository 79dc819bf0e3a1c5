#define RAPIDJSON_NAMESPACE rapidjson_vectors
#define RAPIDJSON_NAMESPACE_BEGIN namespace rapidjson_vectors {
#define RAPIDJSON_NAMESPACE_END }
#if defined(__SSE2__)
#define RAPIDJSON_SSE2
#elif defined(__ARM_NEON)
#define RAPIDJSON_NEON
#endif
#include "JSONModelRapidJSON.h"

namespace zm::bench {

std::unique_ptr<TTree> MakeRapidJSONVectorModel() { return std::make_unique<TRapidModel<rj::UTF8<>>>(); }
std::unique_ptr<TTree> MakeRapidJSONWideVectorModel() { return std::make_unique<TRapidModel<rj::UTF16<char16_t>>>(); }

}  // namespace zm::bench
