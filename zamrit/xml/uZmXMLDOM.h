#pragma once

// The XML document: a tree that loads, is walked and edited by pointers or by counted handles, selects by paths, and
// saves as XML or JSON.
#include "zamrit/xml/dom/Attribute.h"
#include "zamrit/xml/dom/CharacterData.h"
#include "zamrit/xml/dom/Collations.h"
#include "zamrit/xml/dom/Companions.h"
#include "zamrit/xml/dom/DOMObject.h"
#include "zamrit/xml/dom/Document.h"
#include "zamrit/xml/dom/Element.h"
#include "zamrit/xml/dom/Functions.h"
#include "zamrit/xml/dom/Interfaces.h"
#include "zamrit/xml/dom/Node.h"
#include "zamrit/xml/dom/NodeList.h"
#include "zamrit/xml/dom/Types.h"
#include "zamrit/xml/xpath/Terms.h"
