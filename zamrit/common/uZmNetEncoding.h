#pragma once

// Bytes as text.
#include "zamrit/common/NetEncoding.h"
