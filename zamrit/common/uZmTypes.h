#pragma once

// Encodings and character constants.
#include "zamrit/common/CharacterConstants.h"
#include "zamrit/common/Encoding.h"
