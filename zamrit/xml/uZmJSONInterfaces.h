#pragma once

// What JSON events go through: handlers, locator and reader as interfaces.
#include "zamrit/xml/json/Interfaces.h"
