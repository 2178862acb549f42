#ifndef ARBORIST_TOOLS_RENDER_QUERY_REPORT_H
#define ARBORIST_TOOLS_RENDER_QUERY_REPORT_H

#include <string>

#include "tools/arborist/detection/query.h"

namespace command {

/// One line of JSON, schema "arborist.query.1", without the line end.
std::string QueryJson(const QueryReport& report);

/// For people, ends with a line end.
std::string QueryText(const QueryReport& report);

} // namespace command

#endif
