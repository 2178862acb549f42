#ifndef ARBORIST_TOOLS_RENDER_REDACTION_TEXT_H
#define ARBORIST_TOOLS_RENDER_REDACTION_TEXT_H

#include <string>

#include "diagnosis/redaction/redaction_report.h"

namespace diagnosis::command {

/// What a redaction replaced, left out, did not find and kept, and which rules may answer differently, a line each.
std::string RedactionText(const RedactionReport& report);

} // namespace diagnosis::command

#endif
