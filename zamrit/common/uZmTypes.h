#pragma once

// Encodings, character constants, kinds of types and the texts with a meaning of their own.
#include "zamrit/common/CharacterConstants.h"
#include "zamrit/common/Encoding.h"
#include "zamrit/common/TextTypes.h"
#include "zamrit/common/TypeKinds.h"
#include "zamrit/common/ZmTypes.h"
