#ifndef ARBORIST_DIAGNOSIS_CASES_RULE_SETS_H
#define ARBORIST_DIAGNOSIS_CASES_RULE_SETS_H

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::cases {

/// The rule sets of cases with their lines, each read once.
class RuleSets {
public:
    struct Key {
        std::string folder;
        std::string prefix;
        std::string tag;

        auto operator<=>(const Key&) const = default;
    };

    /// The tags of a rule set; empty for files that can't be read.
    const std::vector<std::string>& TagsOf(const std::string& folder, const std::string& prefix);
    /// The rule set of a tag. Without sections for files that can't be read, and for an unknown tag.
    const rule_source::RuleSet& Get(const Key& key);

    /// A folder as messages name it: relative to the working directory if it is below it.
    static std::string ShownFolder(const std::string& folder);

private:
    struct Files {
        rule_source::RuleSetFiles files;
        std::vector<std::string> tags;
    };

    const Files& FilesOf(const std::string& folder, const std::string& prefix);

    std::map<std::pair<std::string, std::string>, Files> mFiles;
    std::map<Key, std::unique_ptr<rule_source::RuleSet>> mRuleSets;
};

} // namespace diagnosis::cases

#endif
