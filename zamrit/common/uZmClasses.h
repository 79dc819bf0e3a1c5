#pragma once

// Reference-counted bases, text streams and the text cursor.
#include "zamrit/common/TextParser.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/common/ZmObject.h"
