#pragma once

#include "zamrit/platform/reflection/Rtti.h"

namespace elsewhere {

/// The descriptor of a class that is described in a library, whose description no header shows.
const zm::TRttiType* ThingType();

}  // namespace elsewhere
