#pragma once

#include <cstdint>

#include "zamrit/platform/DateTime.h"

namespace zm {

/// \name The offset of local time
/// Seconds east of UTC that are in force at a local time, or at a moment in UTC, by the time zone of the process. Of a
/// local time that comes twice, standard time counts; one that is left out counts by the offset before the gap. A time
/// zone that changes while the process runs is noticed as the C library notices it. Safe from several threads.
/// EConvertError outside the years 1 to 9999.
///@{
std::int32_t LocalOffset(TDateTime Local);
std::int32_t LocalOffsetAtUTC(TDateTime UTC);
///@}

}  // namespace zm
