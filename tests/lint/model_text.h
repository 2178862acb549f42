#ifndef ARBORIST_TESTS_LINT_MODEL_TEXT_H
#define ARBORIST_TESTS_LINT_MODEL_TEXT_H

#include <string>

#include "diagnosis/rule_source/rule_set.h"

/// All that the engine reads of a folder's rule set for a tag, a line for each thing. Two rule sets with one text are
/// read the same.
std::string EngineModelText(const std::string& folder, const std::string& tag);

/// The same of the view that the checks look at, by its own reading.
std::string ViewModelText(const diagnosis::rule_source::RuleSet& rules);

#endif
