#include "diagnosis/evidence/warning_list.h"

namespace diagnosis {

void WarningList::Add(const std::string& code, const std::string& message)
{
    const auto known = mPlaces.find({code, message});
    if (known != mPlaces.end()) {
        ++mEntries[known->second].count;
        return;
    }
    if (++mNumbers[code] <= LARGEST_NUMBER) {
        mPlaces[{code, message}] = mEntries.size();
        mEntries.push_back({{code, message}, 1});
    }
}

void WarningList::Add(const std::vector<Warning>& warnings)
{
    for (const Warning& warning : warnings) {
        Add(warning.code, warning.message);
    }
}

std::vector<Warning> WarningList::Told() const
{
    std::vector<Warning> warnings;
    for (const Entry& entry : mEntries) {
        const std::string times = entry.count > 1 ? " (" + std::to_string(entry.count) + " times)" : "";
        warnings.push_back({entry.warning.code, entry.warning.message + times});
    }
    for (const auto& [code, number] : mNumbers) {
        if (number > LARGEST_NUMBER) {
            warnings.push_back({code, "and " + std::to_string(number - LARGEST_NUMBER) + " more of this kind"});
        }
    }
    return warnings;
}

ExitStatus StrictStatus(const Warning& warning)
{
    const bool isOfRuleSet =
        warning.code == "no_rules" || warning.code == "sql_failed" || warning.code == "true_without_cause";
    return isOfRuleSet ? ExitStatus::RULE_SET : ExitStatus::INPUT;
}

} // namespace diagnosis
