#ifndef ARBORIST_TESTS_LINT_MODEL_TEXT_H
#define ARBORIST_TESTS_LINT_MODEL_TEXT_H

#include <string>

#include "diagnosis/rule_source/rule_set.h"

/// Everything that the engine reads from a folder's rule set for a tag, one item a line. Rule sets with equal texts are
/// read alike.
std::string EngineModelText(const std::string& folder, const std::string& tag);

/// The same for the view of the checks, from its own reading.
std::string ViewModelText(const diagnosis::rule_source::RuleSet& rules);

#endif
