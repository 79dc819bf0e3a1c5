#pragma once

// The functions that predicates of node paths call, and the registries of functions and collations.
#include "zamrit/xml/uZmXMLDOM.h"
#include "zamrit/xml/xpath/FunctionLibrary.h"
#include "zamrit/xml/xpath/Functions.h"
