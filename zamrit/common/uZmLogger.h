#pragma once

// Where traces go.
#include "zamrit/common/Logger.h"
