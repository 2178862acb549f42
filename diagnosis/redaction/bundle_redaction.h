#ifndef ARBORIST_DIAGNOSIS_REDACTION_BUNDLE_REDACTION_H
#define ARBORIST_DIAGNOSIS_REDACTION_BUNDLE_REDACTION_H

#include <string>

#include "diagnosis/bundle/bundle.h"
#include "diagnosis/redaction/redaction_file.h"
#include "diagnosis/redaction/redaction_report.h"

namespace diagnosis {

/// Replaces the listed keys of a bundle.json. An empty value stays empty: it means that nothing is known.
void RedactBundle(const Redaction& redaction, Bundle& bundle, RedactionReport& report);

/// True if a pattern of the redaction matches the whole path of a node file, as the rule set names it.
bool IsRedactedNode(const Redaction& redaction, const std::string& path);
/// Replaces the text of a node file by the hash of it, without the line ends at its end, and a line end. A text that is
/// empty or has only line ends stays.
std::string RedactedNodeText(const Redaction& redaction, const std::string& text);

} // namespace diagnosis

#endif
