#pragma once

#include "Trees.h"

namespace zm::bench {

std::unique_ptr<TTree> MakeZamritModel();
std::unique_ptr<TTree> MakeRapidJSONModel();
std::unique_ptr<TTree> MakeRapidJSONVectorModel();
std::unique_ptr<TTree> MakeRapidJSONWideModel();
std::unique_ptr<TTree> MakeRapidJSONWideVectorModel();
std::unique_ptr<TTree> MakeNlohmannModel();
std::unique_ptr<TTree> MakeBoostModel();
std::unique_ptr<TTree> MakeSimdjsonModel();

/// Selects by a filter from an array of Count objects, and answers the seconds of one selection.
double SelectWithZamrit(std::size_t Count, double Seconds, std::size_t& Hits);

}  // namespace zm::bench
