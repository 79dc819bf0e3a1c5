#pragma once

// JSON: events from JSON texts and form posts, the document model with its paths, and the text forms of values.
#include "zamrit/xml/json/FormReader.h"
#include "zamrit/xml/json/Interfaces.h"
#include "zamrit/xml/json/JSONArray.h"
#include "zamrit/xml/json/JSONBase.h"
#include "zamrit/xml/json/JSONDocument.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/JSONHandler.h"
#include "zamrit/xml/json/JSONMember.h"
#include "zamrit/xml/json/JSONObject.h"
#include "zamrit/xml/json/JSONParser.h"
#include "zamrit/xml/json/JSONReader.h"
#include "zamrit/xml/json/JSONSimpleType.h"
#include "zamrit/xml/json/JSONTextParser.h"
#include "zamrit/xml/json/ModelInterfaces.h"
#include "zamrit/xml/json/Values.h"
