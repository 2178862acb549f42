#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_RULE_SET_MEMORY_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_RULE_SET_MEMORY_H

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <tuple>

#include "arborist/frame/loaded_rule_set.h"
#include "diagnosis/evidence/rule_set_warnings.h"

namespace diagnosis {

/// Checks a rule set under a tag.
std::shared_ptr<const RuleSetWarnings> CheckRuleSet(const rule_source::RuleSetPaths& paths, const std::string& tag);

/// A rule set that was read and checked once, under one tag, for many detections.
struct HeldRuleSet {
    /// DigestOf its files.
    std::string digest;
    std::shared_ptr<const RuleSetWarnings> warnings;
    std::shared_ptr<LoadedRuleSet> loaded;
};

/// Checks rule sets and remembers what was found, and their digests, so that many bundles with equal rule sets cost one
/// check and one digest. Rule sets are equal if their files are, byte for byte.
///
/// For one thread at a time. A process that forks shares what it remembers with its children.
class RuleSetMemory {
public:
    std::shared_ptr<const RuleSetWarnings> Check(const rule_source::RuleSetPaths& paths, const std::string& tag);

    /// The digest of a rule set: DigestOf(contents).
    std::string Digest(const rule_source::RuleSetContents& contents);

    /// Reads and checks every rule set of a folder under each of its tags, until the memory is full, and holds them: later
    /// changes of the files are not noticed. For a process that is about to fork workers, which then share what was read.
    void CheckFolder(const std::string& folder);
    /// A rule set that is held; null if it is not. Valid as long as the memory.
    const HeldRuleSet* FindHeld(const std::string& folder, const std::string& prefix, const std::string& tag) const;

    /// From now on KeptOrLoad keeps the rule set that it has loaded last. For a process that runs one detection at a time.
    void KeepLast() { mKeepsLast = true; }
    /// The rule set that the input names, whose files have these contents now: the last one, if it has the same names and
    /// contents, or a new one, which is then the last. Null without KeepLast, and if a file can't be read.
    std::shared_ptr<LoadedRuleSet> KeptOrLoad(const DetectInfo& info, const rule_source::RuleSetContents& contents);

    /// How many rule sets are remembered, each under one tag.
    std::size_t Count() const { return mKnown.size(); }
    /// How many digests were computed.
    std::size_t CountDigests() const { return mComputed; }

private:
    /// At this many entries the memory is cleared, as a batch of foreign bundles may have a rule set for each.
    static constexpr std::size_t LARGEST_NUMBER = 64;
    /// So many rule sets, and so many bytes of files, are kept to be compared with; then the oldest go.
    static constexpr std::size_t MOST_TEXTS = 8;
    static constexpr std::size_t MOST_BYTES = std::size_t{64} << 20;

    /// The texts of both files, and the digest of the texts.
    struct Texts {
        std::string trees;
        std::string rules;
        std::string digest;

        std::size_t Bytes() const { return trees.size() + rules.size(); }
    };

    /// The paths, too, as they stand in warnings.
    using Key = std::tuple<std::string, std::string, std::string, std::string>;

    /// Folder, prefix and tag.
    using Name = std::tuple<std::string, std::string, std::string>;

    static Name NameOf(const DetectInfo& info);
    const std::string& DigestOfTexts(const rule_source::RuleSetContents& contents);
    void MakeRoomFor(std::size_t bytes);
    void CheckTags(const std::string& folder, const std::string& prefix);

    std::map<Key, std::shared_ptr<const RuleSetWarnings>> mKnown;
    std::map<Name, HeldRuleSet> mHeld;
    std::deque<Texts> mTexts;
    std::size_t mComputed = 0;
    bool mKeepsLast = false;
    Name mLastName;
    HeldRuleSet mLast;
};

} // namespace diagnosis

#endif
