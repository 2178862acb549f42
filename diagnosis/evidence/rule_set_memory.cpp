#include "diagnosis/evidence/rule_set_memory.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <utility>
#include <vector>

#include "arborist/frame/rule_set_summary.h"
#include "diagnosis/digest/digest.h"

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
    const Key key(paths.treeFile, paths.ruleFile, tag, DigestOfTexts(contents));
    if (const auto known = mKnown.find(key); known != mKnown.end()) {
        return known->second;
    }
    if (mKnown.size() == LARGEST_NUMBER) {
        mKnown.clear();
    }
    return mKnown[key] = WarningsOf(std::move(contents), tag);
}

std::string RuleSetMemory::Digest(const rule_source::RuleSetContents& contents)
{
    return rule_source::AreRead(contents) ? rule_source::DIGEST_KIND + DigestOfTexts(contents) : "";
}

// A file that can't be read is like an empty one.
const std::string& RuleSetMemory::DigestOfTexts(const rule_source::RuleSetContents& contents)
{
    const std::string& trees = contents.trees.text;
    const std::string& rules = contents.rules.text;
    const auto known = std::find_if(mTexts.begin(), mTexts.end(),
        [&](const Texts& texts) { return texts.trees == trees && texts.rules == rules; });
    if (known != mTexts.end()) {
        return known->digest;
    }
    ++mComputed;
    MakeRoomFor(trees.size() + rules.size());
    return mTexts.emplace_back(Texts{trees, rules, Sha256HexOf({trees, rules})}).digest;
}

// The texts that come next are kept whatever their size: until others take their place.
void RuleSetMemory::MakeRoomFor(std::size_t bytes)
{
    const auto isFull = [&] {
        std::size_t kept = bytes;
        for (const Texts& texts : mTexts) {
            kept += texts.Bytes();
        }
        return mTexts.size() >= MOST_TEXTS || kept > MOST_BYTES;
    };
    while (!mTexts.empty() && isFull()) {
        mTexts.pop_front();
    }
}

RuleSetMemory::Name RuleSetMemory::NameOf(const DetectInfo& info)
{
    return {info.mRuleFileDir, info.mRuleFilePrefix, info.mTreeTag};
}

void RuleSetMemory::CheckFolder(const std::string& folder)
{
    for (const std::string& prefix : PrefixesIn(folder)) {
        CheckTags(folder, prefix);
    }
}

void RuleSetMemory::CheckTags(const std::string& folder, const std::string& prefix)
{
    const RuleSetPaths paths{TreeFilePath(folder, prefix), RuleFilePath(folder, prefix)};
    auto contents = rule_source::ReadRuleSetContents(paths);
    const std::string digest = DigestOfTexts(contents);
    DetectInfo info;
    info.mRuleFileDir = folder;
    info.mRuleFilePrefix = prefix;
    const bool areRead = rule_source::AreRead(contents);
    const rule_source::RuleSetFiles files = rule_source::ParseRuleSetFiles(std::move(contents));
    for (const std::string& tag : rule_source::TagsOf(files.TreeRoot(), rule_source::Element())) {
        if (mKnown.size() >= LARGEST_NUMBER) {
            return;
        }
        const auto warnings = std::make_shared<RuleSetWarnings>(files, tag);
        mKnown[Key(paths.treeFile, paths.ruleFile, tag, digest)] = warnings;
        if (areRead) {
            info.mTreeTag = tag;
            mHeld[NameOf(info)] = {rule_source::DIGEST_KIND + digest, warnings, std::make_shared<LoadedRuleSet>(info)};
        }
    }
}

const HeldRuleSet* RuleSetMemory::FindHeld(
    const std::string& folder, const std::string& prefix, const std::string& tag) const
{
    const auto held = mHeld.find(Name(folder, prefix, tag));
    return held == mHeld.end() ? nullptr : &held->second;
}

std::shared_ptr<LoadedRuleSet> RuleSetMemory::KeptOrLoad(
    const DetectInfo& info, const rule_source::RuleSetContents& contents)
{
    std::string digest = mKeepsLast ? Digest(contents) : "";
    if (digest.empty()) {
        return nullptr;
    }
    if (mLast.loaded == nullptr || mLast.digest != digest || mLastName != NameOf(info)) {
        mLast = {std::move(digest), nullptr, std::make_shared<LoadedRuleSet>(info)};
        mLastName = NameOf(info);
    }
    return mLast.loaded;
}

} // namespace diagnosis
