#include "diagnosis/evidence/rule_set_memory.h"

#include <fstream>
#include <functional>
#include <iterator>
#include <string_view>

namespace diagnosis {

namespace {

using rule_source::RuleSetPaths;

std::string TextOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace

std::shared_ptr<const RuleSetWarnings> CheckRuleSet(const RuleSetPaths& paths, const std::string& tag)
{
    return std::make_shared<RuleSetWarnings>(rule_source::ReadRuleSetFiles(paths), tag);
}

std::shared_ptr<const RuleSetWarnings> RuleSetMemory::Check(const RuleSetPaths& paths, const std::string& tag)
{
    const auto digest = [](const std::string& path) { return std::hash<std::string>()(TextOf(path)); };
    const Key key(paths.treeFile, paths.ruleFile, tag, digest(paths.treeFile), digest(paths.ruleFile));
    if (const auto known = mKnown.find(key); known != mKnown.end()) {
        return known->second;
    }
    if (mKnown.size() == LARGEST_NUMBER) {
        mKnown.clear();
    }
    return mKnown[key] = CheckRuleSet(paths, tag);
}

} // namespace diagnosis
