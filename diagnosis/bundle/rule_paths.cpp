#include "diagnosis/bundle/rule_paths.h"

#include <filesystem>

namespace diagnosis {

std::string RuleFilePath(const Bundle& bundle)
{
    return ::RuleFilePath(bundle.ruleFileDir, bundle.ruleFilePrefix);
}

std::string TreeFilePath(const Bundle& bundle)
{
    return ::TreeFilePath(bundle.ruleFileDir, bundle.ruleFilePrefix);
}

RuleSetSummary SummariseRuleSet(const Bundle& bundle)
{
    return ::SummariseRuleSet(bundle.ruleFileDir, bundle.ruleFilePrefix, bundle.treeTag);
}

std::string OnDevice(const std::string& root, const std::string& path)
{
    if (root.empty() || path.empty() || path.front() != '/') {
        return path;
    }
    const bool isPlain = path.find("..") == std::string::npos;
    return root + (isPlain ? path : std::filesystem::path(path).lexically_normal().string());
}

} // namespace diagnosis
