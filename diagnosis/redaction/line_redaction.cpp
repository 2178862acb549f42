#include "diagnosis/redaction/line_redaction.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>

#include "diagnosis/redaction/hash_key.h"

namespace diagnosis {

namespace {

using results_db::ResultOpenCheck;
using results_db::ResultTree;
using results_db::ResultWarning;

// So many records are kept; foreign lines may have any number of different ones.
constexpr std::size_t MOST_KNOWN = 4096;

// How messages quote a bundle: by its path, or by the last part of that.
std::string QuotedName(const std::string& bundle)
{
    const std::filesystem::path path = std::filesystem::path(bundle + "/.").lexically_normal().parent_path().filename();
    return path.empty() ? bundle : path.generic_string();
}

std::uint64_t CountDetails(const ResultTree& tree)
{
    const auto hasDetail = [](const ResultOpenCheck& open) { return !open.detail.empty(); };
    return static_cast<std::uint64_t>(std::count_if(tree.open.begin(), tree.open.end(), hasDetail));
}

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
    if (Has("bundle")) {
        RedactQuotes(line);
    }
    Replace("bundle", line.bundle);
    Replace("device", line.device);
    Replace("error", line.error.message);
    if (Has("warnings")) {
        for (auto& warning : line.warnings) {
            warning = Redacted(warning);
        }
        mCounts["warnings"] += line.warnings.size();
    }
    if (Has("details")) {
        for (auto& tree : line.trees) {
            tree = Redacted(tree);
            mCounts["details"] += CountDetails(*tree);
        }
    }
    if (Has("explanation")) {
        mCounts["explanation"] += line.evidence.size();
        line.evidence.clear();
    }
}

// Passes over the parts that are replaced as a whole.
void LineRedaction::RedactQuotes(results_db::ResultLine& line)
{
    const std::string name = QuotedName(line.bundle);
    const auto quotes = [&name](const std::string& text) { return !name.empty() && text.find(name) != std::string::npos; };
    if (!Has("error") && quotes(line.error.message)) {
        Replace("bundle", line.error.message);
    }
    for (auto& warning : line.warnings) {
        if (!Has("warnings") && (quotes(warning->message) || quotes(warning->file))) {
            warning = Redacted(warning);
            ++mCounts["bundle"];
        }
    }
    for (auto& tree : line.trees) {
        const auto quotesIt = [&quotes](const ResultOpenCheck& open) { return quotes(open.detail); };
        if (!Has("details") && std::any_of(tree->open.begin(), tree->open.end(), quotesIt)) {
            tree = Redacted(tree);
            mCounts["bundle"] += CountDetails(*tree);
        }
    }
    if (!Has("explanation")) {
        mCounts["bundle"] += std::erase_if(line.evidence, [&quotes](const auto& evidence) { return quotes(evidence.json); });
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
    return redacted;
}

} // namespace diagnosis
