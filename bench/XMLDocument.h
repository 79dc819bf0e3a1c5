#pragma once

#include "Trees.h"

namespace zm::bench {

std::unique_ptr<TTree> MakeZamritDocument();
std::unique_ptr<TTree> MakePugixmlDocument();
std::unique_ptr<TTree> MakeLibxml2Document();
std::unique_ptr<TTree> MakeXercesDocument();
std::unique_ptr<TTree> MakeTinyXML2Document();

}  // namespace zm::bench
