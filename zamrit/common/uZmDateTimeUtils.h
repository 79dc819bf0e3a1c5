#pragma once

// Date and time as text, time zones and durations.
#include "zamrit/common/DateTimeUtils.h"
