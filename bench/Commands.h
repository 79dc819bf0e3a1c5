#pragma once

#include "Options.h"

namespace zm::bench {

/// Compares the XML event readers. Answers 0, or 1 when a reader failed or the readers disagree on what they read.
int RunXMLEvents(const TOptions& Options);

/// Measures how time and memory of the XML event reader grow with its input. Answers 0, or 1 when a run failed or was
/// stopped.
int RunXMLEventsLimits(const TOptions& Options);

/// Compares the XML documents. Answers 0.
int RunXMLDocument(const TOptions& Options);

/// Compares node paths with those of pugixml and measures how edits of an XML document grow. Answers 0, or 1 when a run
/// failed or was stopped.
int RunNodePaths(const TOptions& Options);

/// Compares predicates of node paths with those of pugixml and libxml2. Answers 0.
int RunPredicates(const TOptions& Options);

/// Compares the readers of JSON events. Answers 0.
int RunJSONEvents(const TOptions& Options);

/// Compares the JSON models. Answers 0.
int RunJSONModel(const TOptions& Options);

/// Measures reading and writing of members by reflection beside direct access. Answers 0.
int RunReflection(const TOptions& Options);

/// Measures the XML text of values: escaping, entities, numbers, dates. Answers 0.
int RunValues(const TOptions& Options);

}  // namespace zm::bench
