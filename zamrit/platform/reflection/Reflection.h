#pragma once

// Describing types, and reading and writing what is described.
#include "zamrit/platform/reflection/AccessDetail.h"
#include "zamrit/platform/reflection/Members.h"
#include "zamrit/platform/reflection/Rtti.h"
#include "zamrit/platform/reflection/TypeBuilder.h"
#include "zamrit/platform/reflection/TypeDirectory.h"
#include "zamrit/platform/reflection/Value.h"
