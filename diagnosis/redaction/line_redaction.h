#ifndef ARBORIST_DIAGNOSIS_REDACTION_LINE_REDACTION_H
#define ARBORIST_DIAGNOSIS_REDACTION_LINE_REDACTION_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

#include "diagnosis/redaction/redaction_file.h"
#include "diagnosis/results_db/result_line.h"

namespace diagnosis {

/// Replaces the listed parts of result lines by keyed hashes, one line after the other.
///
/// Everything else in a line comes from the rule set, or is a verdict, a count or a time. Where the bundle's name is
/// listed, each text that quotes its last part is replaced, too, as if the text's own part was listed, and evidence
/// that quotes it is left out.
class LineRedaction {
public:
    /// The redaction must outlive it.
    explicit LineRedaction(const Redaction& redaction);

    void Redact(results_db::ResultLine& line);

    /// How many values of each part were replaced so far; of the explanation, how many events were left out.
    const std::map<std::string, std::uint64_t>& GetCounts() const { return mCounts; }

private:
    template <typename Record>
    using Known = std::unordered_map<const Record*, std::pair<std::shared_ptr<const Record>, std::shared_ptr<const Record>>>;

    bool Has(const char* part) const { return mCounts.count(part) != 0; }
    void RedactQuotes(results_db::ResultLine& line);
    void Replace(const char* part, std::string& value);
    std::shared_ptr<const results_db::ResultWarning> Redacted(const std::shared_ptr<const results_db::ResultWarning>& warning);
    std::shared_ptr<const results_db::ResultTree> Redacted(const std::shared_ptr<const results_db::ResultTree>& tree);

    const Redaction& mRedaction;
    /// The listed parts.
    std::map<std::string, std::uint64_t> mCounts;
    /// Objects that were redacted before, by the original: lines of a fleet share most of them.
    Known<results_db::ResultWarning> mWarnings;
    Known<results_db::ResultTree> mTrees;
};

} // namespace diagnosis

#endif
