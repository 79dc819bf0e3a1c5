#pragma once

// Texts, and values in a type that is known.
#include "zamrit/common/SysUtils.h"
