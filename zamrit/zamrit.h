#pragma once

/// \mainpage
/// Zamrit reads, holds, queries and writes structured text. This header brings in all of it; each unit header stands
/// for itself.
#include "zamrit/common/uZmClasses.h"
#include "zamrit/common/uZmSysUtils.h"
#include "zamrit/common/uZmTypes.h"
#include "zamrit/xml/uZmSAX.h"
