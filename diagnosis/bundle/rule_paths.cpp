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

std::optional<std::string> Inside(const std::string& path)
{
    std::string normal = std::filesystem::path(path).lexically_normal().generic_string();
    while (normal.size() > 1 && normal.back() == '/') {
        normal.pop_back();
    }
    const bool isOutside = normal.empty() || std::filesystem::path(normal).has_root_path() || normal == ".."
        || normal.rfind("../", 0) == 0;
    return isOutside ? std::nullopt : std::optional(normal);
}

std::string NameOnDevice(const std::string& root, const std::string& path)
{
    const bool isAbsolute = !path.empty() && path.front() == '/';
    return isAbsolute ? root + std::filesystem::path(path).lexically_normal().generic_string() : path;
}

} // namespace diagnosis
