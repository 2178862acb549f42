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
/// The text in place of a node file's: the hash of it without the line ends at its end, and a line end. An empty one stays, so
/// does one of line ends only.
std::string RedactedNodeText(const Redaction& redaction, const std::string& text);

} // namespace diagnosis

#endif
