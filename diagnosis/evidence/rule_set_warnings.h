#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_RULE_SET_WARNINGS_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_RULE_SET_WARNINGS_H

#include <map>
#include <optional>
#include <set>
#include <string>

#include "arborist/frame/detect_info.h"
#include "diagnosis/evidence/warning_list.h"
#include "diagnosis/lint/base/check.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis {

/// The code of the warnings that the findings of a check become; nothing for a check that only lint runs. Of the checks
/// that need nothing but the rule set these are all errors, and those of mistakes that change in silence what is read.
std::optional<WarningCode> CodeOfMistakes(const lint::Check& check);

/// The mistakes that lint finds in a rule set under one tag, as warnings of a detection. Owns all its texts.
class RuleSetWarnings {
public:
    /// Checks files that were read already.
    RuleSetWarnings(const rule_source::RuleSetFiles& files, const std::string& tag);

    /// Adds the mistakes to the warnings of a detection. If the detection has already warned of a mistake, adds only
    /// its check id and place to that warning. Rule warnings without a place get the file and line of the rule.
    void AddTo(WarningList& told) const;

    /// Adds a warning for each attribute that rules are filtered by and the device doesn't have: an empty one is part of
    /// every list, black lists included.
    void AddEmptyAttributes(const DeviceDetails& device, WarningList& told) const;

private:
    WarningList mMistakes;
    std::string mRuleFile;
    /// The lines of the rules by name.
    std::map<std::string, int> mRuleLines;
    /// The names of attributes by which a rule is filtered.
    std::set<std::string> mFilters;
};

} // namespace diagnosis

#endif
