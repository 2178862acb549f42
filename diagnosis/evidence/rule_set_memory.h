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
std::shared_ptr<const RuleSetWarnings> CheckRuleSet(rule_source::RuleSetContents contents, const std::string& tag);

/// The files of a rule set as they were when they were read, for all that is asked about them.
struct RuleSetReading {
    rule_source::RuleSetContents contents;
    std::string digestOfTexts;

    /// The digest of the rule set, with the word "sha256:" for how it was made before it; empty if a file can't be read.
    std::string GetDigest() const;
};

/// A rule set that was read and checked once, under one tag, for many detections.
struct HeldRuleSet {
    /// See RuleSetReading::GetDigest.
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
    /// Reads the files of a rule set.
    RuleSetReading Read(const rule_source::RuleSetPaths& paths);
    /// What a check of these files finds under a tag.
    std::shared_ptr<const RuleSetWarnings> Check(
        const rule_source::RuleSetPaths& paths, const std::string& tag, RuleSetReading files);

    /// Reads and checks every rule set of a folder under each of its tags, until the memory is full, and holds them: later
    /// changes of the files are not noticed. For a process that is about to fork workers, which then share what was read.
    void CheckFolder(const std::string& folder);
    /// A rule set that is held; null if it is not. Valid as long as the memory.
    const HeldRuleSet* FindHeld(const std::string& folder, const std::string& prefix, const std::string& tag) const;

    /// From now on KeptOrLoad keeps the rule sets that it has loaded last. For a process that runs one detection at a time.
    void KeepLoaded() { mKeepsLoaded = true; }
    /// The rule set that the input names, whose files were read before: one that is kept, if it has the same names and
    /// digest, or a new one. Null without KeepLoaded, and if a file can't be read or has changed since.
    std::shared_ptr<LoadedRuleSet> KeptOrLoad(
        const DetectInfo& info, const rule_source::RuleSetPaths& paths, const RuleSetReading& files);

    /// How many rule sets are remembered, each under one tag.
    std::size_t Count() const { return mKnown.size(); }
    /// How many digests were computed.
    std::size_t CountDigests() const { return mComputed; }

private:
    /// At this many entries the memory is cleared, as a batch of foreign bundles may have a rule set for each.
    static constexpr std::size_t LARGEST_NUMBER = 64;

    /// What is kept of rule sets: beyond so many of them, or so many bytes of files, the oldest go.
    struct Room {
        std::size_t entries;
        std::size_t bytes;
    };
    /// Texts to compare with, and loaded sets, which take several times the memory of their files.
    static constexpr Room ROOM_FOR_TEXTS = {8, std::size_t{64} << 20};
    static constexpr Room ROOM_FOR_LOADED = {4, std::size_t{16} << 20};

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

    struct Kept {
        Name name;
        std::string digestOfTexts;
        std::size_t bytes;
        std::shared_ptr<LoadedRuleSet> loaded;

        std::size_t Bytes() const { return bytes; }
    };

    static Name NameOf(const DetectInfo& info);
    const std::string& DigestOfTexts(const rule_source::RuleSetContents& contents);
    template <typename Entry>
    static void MakeRoom(std::deque<Entry>& entries, std::size_t bytes, const Room& room);
    void CheckTags(const std::string& folder, const std::string& prefix);

    std::map<Key, std::shared_ptr<const RuleSetWarnings>> mKnown;
    std::map<Name, HeldRuleSet> mHeld;
    std::deque<Texts> mTexts;
    std::size_t mComputed = 0;
    bool mKeepsLoaded = false;
    std::deque<Kept> mKept; // the one that was loaded last is at the end
};

} // namespace diagnosis

#endif
