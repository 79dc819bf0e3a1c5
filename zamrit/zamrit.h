#pragma once

/// \mainpage
/// Zamrit reads, holds, queries and writes structured text. This header brings in all of it; each unit header stands
/// for itself.
#include "zamrit/common/uZmClasses.h"
#include "zamrit/common/uZmDateTimeUtils.h"
#include "zamrit/common/uZmLogger.h"
#include "zamrit/common/uZmNetEncoding.h"
#include "zamrit/common/uZmRTTI.h"
#include "zamrit/common/uZmSysUtils.h"
#include "zamrit/common/uZmTypes.h"
#include "zamrit/xml/uZmJSON.h"
#include "zamrit/xml/uZmSAX.h"
#include "zamrit/xml/uZmXMLDOM.h"
#include "zamrit/xml/uZmXMLUtils.h"
#include "zamrit/xml/uZmXPath.h"
