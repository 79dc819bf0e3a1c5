#include "JSONModelRapidJSON.h"

namespace zm::bench {

std::unique_ptr<TTree> MakeRapidJSONModel() { return std::make_unique<TRapidModel<rj::UTF8<>>>(); }
std::unique_ptr<TTree> MakeRapidJSONWideModel() { return std::make_unique<TRapidModel<rj::UTF16<char16_t>>>(); }

}  // namespace zm::bench
