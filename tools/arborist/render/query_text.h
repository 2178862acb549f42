#ifndef ARBORIST_TOOLS_RENDER_QUERY_TEXT_H
#define ARBORIST_TOOLS_RENDER_QUERY_TEXT_H

#include <string>

#include "diagnosis/detection/query.h"

namespace diagnosis::command {

/// What the rule set says about a code, as text. Ends with a line end.
std::string QueryText(const QueryReport& report);

} // namespace diagnosis::command

#endif
