#include "diagnosis/redaction/line_redaction.h"

#include <cstddef>

#include "diagnosis/redaction/hash_key.h"

namespace diagnosis {

namespace {

using results_db::ResultOpenCheck;
using results_db::ResultTree;
using results_db::ResultWarning;

// So many records are kept; foreign lines may have any number of different ones.
constexpr std::size_t MOST_KNOWN = 4096;

} // namespace

LineRedaction::LineRedaction(const Redaction& redaction) : mRedaction(redaction)
{
    for (const std::string& part : redaction.results) {
        mCounts[part] = 0;
    }
}

void LineRedaction::Replace(const char* part, std::string& value)
{
    if (Has(part) && !value.empty()) {
        value = HashedValue(mRedaction.key, value);
        ++mCounts[part];
    }
}

void LineRedaction::Redact(results_db::ResultLine& line)
{
    Replace("bundle", line.bundle);
    Replace("device", line.device);
    Replace("error", line.error.message);
    for (auto& warning : line.warnings) {
        warning = Has("warnings") ? Redacted(warning) : warning;
    }
    for (auto& tree : line.trees) {
        tree = Has("details") ? Redacted(tree) : tree;
    }
    if (Has("explanation")) {
        mCounts["explanation"] += line.evidence.size();
        line.evidence.clear();
    }
}

std::shared_ptr<const ResultWarning> LineRedaction::Redacted(const std::shared_ptr<const ResultWarning>& warning)
{
    if (mWarnings.size() > MOST_KNOWN) {
        mWarnings.clear();
    }
    auto& [source, redacted] = mWarnings[warning.get()];
    if (redacted == nullptr) {
        auto copy = std::make_shared<ResultWarning>(*warning);
        copy->message = HashedValue(mRedaction.key, copy->message);
        copy->file = HashedValue(mRedaction.key, copy->file);
        source = warning;
        redacted = std::move(copy);
    }
    ++mCounts["warnings"];
    return redacted;
}

std::shared_ptr<const ResultTree> LineRedaction::Redacted(const std::shared_ptr<const ResultTree>& tree)
{
    if (mTrees.size() > MOST_KNOWN) {
        mTrees.clear();
    }
    auto& [source, redacted] = mTrees[tree.get()];
    if (redacted == nullptr) {
        auto copy = std::make_shared<ResultTree>(*tree);
        for (ResultOpenCheck& open : copy->open) {
            open.detail = HashedValue(mRedaction.key, open.detail);
        }
        source = tree;
        redacted = std::move(copy);
    }
    for (const ResultOpenCheck& open : redacted->open) {
        mCounts["details"] += open.detail.empty() ? 0U : 1U;
    }
    return redacted;
}

} // namespace diagnosis
