#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_RULE_SET_MEMORY_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_RULE_SET_MEMORY_H

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <tuple>

#include "diagnosis/evidence/rule_set_warnings.h"

namespace diagnosis {

/// Checks a rule set under a tag.
std::shared_ptr<const RuleSetWarnings> CheckRuleSet(const rule_source::RuleSetPaths& paths, const std::string& tag);

/// Checks rule sets and remembers what was found, and their digests, so that many bundles with equal rule sets cost one
/// check and one digest. Rule sets are equal if their files are, byte for byte.
///
/// For one thread at a time. A process that forks shares what it remembers with its children.
class RuleSetMemory {
public:
    std::shared_ptr<const RuleSetWarnings> Check(const rule_source::RuleSetPaths& paths, const std::string& tag);

    /// The digest of a rule set: DigestOf(contents).
    std::string Digest(const rule_source::RuleSetContents& contents);

    /// Checks every rule set of a folder under each of its tags, until the memory is full. For a process that is about to
    /// fork workers, which then share what was found.
    void CheckFolder(const std::string& folder);

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

    const std::string& DigestOfTexts(const rule_source::RuleSetContents& contents);
    void MakeRoomFor(std::size_t bytes);
    void CheckTags(const rule_source::RuleSetPaths& paths);

    std::map<Key, std::shared_ptr<const RuleSetWarnings>> mKnown;
    std::deque<Texts> mTexts;
    std::size_t mComputed = 0;
};

} // namespace diagnosis

#endif
