#pragma once

// Reflection: describing types, values of any type, and the directory of types.
#include "zamrit/common/SerializerHint.h"
#include "zamrit/common/SimpleType.h"
#include "zamrit/common/ValueHelper.h"
#include "zamrit/common/ZmTypes.h"
#include "zamrit/platform/reflection/Reflection.h"
