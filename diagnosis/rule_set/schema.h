#ifndef ARBORIST_DIAGNOSIS_RULE_SET_SCHEMA_H
#define ARBORIST_DIAGNOSIS_RULE_SET_SCHEMA_H

#include <string>

#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::rule_set {

enum class RuleFileKind { TREES, RULES };

/// A RELAX NG schema (XML syntax) of one file for all tags: the elements and attributes that the loader reads, those
/// that it needs, and nothing else. docs/schema/ has both.
std::string RelaxNgOf(RuleFileKind kind);

/// An XML Schema of both files for one tag. As XML Schema has no elements of any name, it knows the names that the files
/// use: of the roots, the trees, the undeveloped events, and other tags, whose content it accepts as it is. A file that
/// is null has the usual names: "FaultTrees", "tree" and "FaultTreeRules".
std::string XmlSchemaOf(const rule_source::RuleSetFiles& files, const std::string& tag);

} // namespace diagnosis::rule_set

#endif
