#pragma once

// Events from XML text, and from JSON as if it were XML: readers, handlers, attributes and namespaces.
#include "zamrit/xml/json/SAXJSONReader.h"
#include "zamrit/xml/json/SAXParser.h"
#include "zamrit/xml/sax/Attributes.h"
#include "zamrit/xml/sax/Handlers.h"
#include "zamrit/xml/sax/LambdaHandler.h"
#include "zamrit/xml/sax/NamespaceList.h"
#include "zamrit/xml/sax/SAXReader.h"
#include "zamrit/xml/sax/XMLErrors.h"
#include "zamrit/xml/sax/XMLParser.h"
#include "zamrit/xml/sax/XMLReader.h"
