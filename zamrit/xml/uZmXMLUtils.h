#pragma once

// Values as XML text: escaping, numbers and booleans, dates, times and durations, Variants and values of
// described types.
#include "zamrit/xml/values/DateTimes.h"
#include "zamrit/xml/values/Escaping.h"
#include "zamrit/xml/values/Numbers.h"
#include "zamrit/xml/values/Values.h"
