#ifndef ARBORIST_TOOLS_RENDER_RULE_JSON_H
#define ARBORIST_TOOLS_RENDER_RULE_JSON_H

#include "tools/arborist/explanation/explanation.h"
#include "tools/arborist/render/json_writer.h"

namespace command {

/// A rule with all that it looked at, as an object. Members that the family or the reason leaves empty are not written.
void WriteRule(JsonWriter& json, const ExplainedRule& rule);

} // namespace command

#endif
