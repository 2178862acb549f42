#include "diagnosis/cases/rule_sets.h"

#include <filesystem>

#include "diagnosis/rule_source/sections.h"

namespace diagnosis::cases {

std::string RuleSets::ShownFolder(const std::string& folder)
{
    std::error_code error;
    const std::string near = std::filesystem::proximate(folder, error).generic_string();
    return near.empty() || near == "." || near.rfind("..", 0) == 0 ? folder : near;
}

const RuleSets::Files& RuleSets::FilesOf(const std::string& folder, const std::string& prefix)
{
    const auto [place, isNew] = mFiles.try_emplace({folder, prefix});
    Files& files = place->second;
    if (isNew) {
        files.files = rule_source::ReadRuleSetFiles(ShownFolder(folder), prefix);
        files.tags = rule_source::TagsOf(files.files.TreeRoot(), rule_source::Element());
    }
    return files;
}

const std::vector<std::string>& RuleSets::TagsOf(const std::string& folder, const std::string& prefix)
{
    return FilesOf(folder, prefix).tags;
}

const rule_source::RuleSet& RuleSets::Get(const Key& key)
{
    auto& ruleSet = mRuleSets[key];
    if (ruleSet == nullptr) {
        ruleSet = std::make_unique<rule_source::RuleSet>(FilesOf(key.folder, key.prefix).files, key.tag);
    }
    return *ruleSet;
}

} // namespace diagnosis::cases
