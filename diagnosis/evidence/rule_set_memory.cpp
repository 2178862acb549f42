#include "diagnosis/evidence/rule_set_memory.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include "arborist/frame/rule_set_summary.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

using rule_source::RuleSetPaths;

// The prefixes of the rule sets in a folder, in order; an empty one for the rule set without.
std::vector<std::string> PrefixesIn(const std::string& folder)
{
    static constexpr std::string_view TREE_FILE = "FaultTrees.xml";
    std::vector<std::string> prefixes;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (name == TREE_FILE) {
            prefixes.emplace_back();
        } else if (name.ends_with("_" + std::string(TREE_FILE))) {
            prefixes.push_back(name.substr(0, name.size() - TREE_FILE.size() - 1));
        }
    }
    std::sort(prefixes.begin(), prefixes.end());
    return prefixes;
}

// A file that can't be read is like an empty one.
std::size_t DigestOf(const rule_source::SourceFile::Content& file)
{
    return std::hash<std::string>()(file.text);
}

std::shared_ptr<const RuleSetWarnings> WarningsOf(rule_source::RuleSetContents contents, const std::string& tag)
{
    return std::make_shared<RuleSetWarnings>(rule_source::ParseRuleSetFiles(std::move(contents)), tag);
}

} // namespace

std::shared_ptr<const RuleSetWarnings> CheckRuleSet(const RuleSetPaths& paths, const std::string& tag)
{
    return WarningsOf(rule_source::ReadRuleSetContents(paths), tag);
}

std::shared_ptr<const RuleSetWarnings> RuleSetMemory::Check(const RuleSetPaths& paths, const std::string& tag)
{
    auto contents = rule_source::ReadRuleSetContents(paths);
    const Key key(paths.treeFile, paths.ruleFile, tag, DigestOf(contents.trees), DigestOf(contents.rules));
    if (const auto known = mKnown.find(key); known != mKnown.end()) {
        return known->second;
    }
    if (mKnown.size() == LARGEST_NUMBER) {
        mKnown.clear();
    }
    return mKnown[key] = WarningsOf(std::move(contents), tag);
}

void RuleSetMemory::CheckFolder(const std::string& folder)
{
    for (const std::string& prefix : PrefixesIn(folder)) {
        CheckTags({TreeFilePath(folder, prefix), RuleFilePath(folder, prefix)});
    }
}

void RuleSetMemory::CheckTags(const RuleSetPaths& paths)
{
    auto contents = rule_source::ReadRuleSetContents(paths);
    const std::size_t trees = DigestOf(contents.trees);
    const std::size_t rules = DigestOf(contents.rules);
    const rule_source::RuleSetFiles files = rule_source::ParseRuleSetFiles(std::move(contents));
    for (const std::string& tag : rule_source::TagsOf(files.TreeRoot(), rule_source::Element())) {
        if (mKnown.size() < LARGEST_NUMBER) {
            mKnown[Key(paths.treeFile, paths.ruleFile, tag, trees, rules)] = std::make_shared<RuleSetWarnings>(files, tag);
        }
    }
}

} // namespace diagnosis
