#pragma once

// JSON: the text forms of values.
#include "zamrit/xml/json/Values.h"
