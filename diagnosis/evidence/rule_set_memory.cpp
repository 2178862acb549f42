#include "diagnosis/evidence/rule_set_memory.h"

#include <functional>

#include "diagnosis/text/file_text.h"

namespace diagnosis {

namespace {

using rule_source::RuleSetPaths;

// A file that can't be read is like an empty one.
std::size_t DigestOf(const std::string& path)
{
    return std::hash<std::string>()(FileText(path).value_or(""));
}

} // namespace

std::shared_ptr<const RuleSetWarnings> CheckRuleSet(const RuleSetPaths& paths, const std::string& tag)
{
    return std::make_shared<RuleSetWarnings>(rule_source::ReadRuleSetFiles(paths), tag);
}

std::shared_ptr<const RuleSetWarnings> RuleSetMemory::Check(const RuleSetPaths& paths, const std::string& tag)
{
    const Key key(paths.treeFile, paths.ruleFile, tag, DigestOf(paths.treeFile), DigestOf(paths.ruleFile));
    if (const auto known = mKnown.find(key); known != mKnown.end()) {
        return known->second;
    }
    if (mKnown.size() == LARGEST_NUMBER) {
        mKnown.clear();
    }
    return mKnown[key] = CheckRuleSet(paths, tag);
}

} // namespace diagnosis
