#include "diagnosis/evidence/rule_set_memory.h"

#include <algorithm>
#include <filesystem>
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
        const std::string name = entry->path().filename().generic_string();
        if (name == TREE_FILE) {
            prefixes.emplace_back();
        } else if (name.ends_with("_" + std::string(TREE_FILE))) {
            prefixes.push_back(name.substr(0, name.size() - TREE_FILE.size() - 1));
        }
    }
    std::sort(prefixes.begin(), prefixes.end());
    return prefixes;
}

} // namespace

std::shared_ptr<const RuleSetWarnings> CheckRuleSet(rule_source::RuleSetContents contents, const std::string& tag)
{
    return std::make_shared<RuleSetWarnings>(rule_source::ParseRuleSetFiles(std::move(contents)), tag);
}

std::string RuleSetReading::GetDigest() const
{
    return rule_source::AreRead(contents) ? "sha256:" + digestOfTexts : "";
}

RuleSetReading RuleSetMemory::Read(const RuleSetPaths& paths)
{
    auto contents = rule_source::ReadRuleSetContents(paths);
    const std::string& digest = DigestOfTexts(contents);
    return {std::move(contents), digest};
}

std::shared_ptr<const RuleSetWarnings> RuleSetMemory::Check(
    const RuleSetPaths& paths, const std::string& tag, RuleSetReading files)
{
    const Key key(paths.treeFile, paths.ruleFile, tag, files.digestOfTexts);
    if (const auto known = mKnown.find(key); known != mKnown.end()) {
        return known->second;
    }
    if (mKnown.size() == LARGEST_NUMBER) {
        mKnown.clear();
    }
    return mKnown[key] = CheckRuleSet(std::move(files.contents), tag);
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
    MakeRoom(mTexts, trees.size() + rules.size(), ROOM_FOR_TEXTS);
    return mTexts.emplace_back(Texts{trees, rules, rule_source::DigestOfTexts(contents)}).digest;
}

// What comes next, of so many bytes, is kept whatever its size: until others take its place.
template <typename Entry>
void RuleSetMemory::MakeRoom(std::deque<Entry>& entries, std::size_t bytes, const Room& room)
{
    for (const Entry& entry : entries) {
        bytes += entry.Bytes();
    }
    while (!entries.empty() && (entries.size() >= room.entries || bytes > room.bytes)) {
        bytes -= entries.front().Bytes();
        entries.pop_front();
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
    RuleSetReading reading = Read(paths);
    const std::string digest = reading.GetDigest();
    DetectInfo info;
    info.mRuleFileDir = folder;
    info.mRuleFilePrefix = prefix;
    const rule_source::RuleSetFiles files = rule_source::ParseRuleSetFiles(std::move(reading.contents));
    for (const std::string& tag : rule_source::TagsOf(files.TreeRoot(), rule_source::Element())) {
        if (mKnown.size() >= LARGEST_NUMBER) {
            return;
        }
        const auto warnings = std::make_shared<RuleSetWarnings>(files, tag);
        mKnown[Key(paths.treeFile, paths.ruleFile, tag, reading.digestOfTexts)] = warnings;
        if (!digest.empty()) {
            info.mTreeTag = tag;
            mHeld[NameOf(info)] = {digest, warnings, std::make_shared<LoadedRuleSet>(info)};
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
    const DetectInfo& info, const RuleSetPaths& paths, const RuleSetReading& files)
{
    if (!mKeepsLoaded || !rule_source::AreRead(files.contents)) {
        return nullptr;
    }
    const Name name = NameOf(info);
    const auto known = std::find_if(mKept.begin(), mKept.end(),
        [&](const Kept& kept) { return kept.name == name && kept.digestOfTexts == files.digestOfTexts; });
    if (known != mKept.end()) {
        return known->loaded;
    }
    auto loaded = std::make_shared<LoadedRuleSet>(info);
    if (Read(paths).digestOfTexts != files.digestOfTexts) {
        return nullptr; // else what was loaded would stand for the bytes that were there before
    }
    const std::size_t bytes = files.contents.trees.text.size() + files.contents.rules.text.size();
    MakeRoom(mKept, bytes, ROOM_FOR_LOADED);
    return mKept.emplace_back(Kept{name, files.digestOfTexts, bytes, std::move(loaded)}).loaded;
}

} // namespace diagnosis
