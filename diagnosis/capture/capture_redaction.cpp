#include "diagnosis/capture/capture_redaction.h"

#include <algorithm>
#include <regex>
#include <utility>

#include "diagnosis/bundle/rule_paths.h"
#include "diagnosis/redaction/affected_rules.h"
#include "diagnosis/redaction/bundle_redaction.h"
#include "diagnosis/redaction/log_redaction.h"
#include "diagnosis/text/file_text.h"

namespace diagnosis {

std::optional<Failure> CaptureRedaction::WriteLog(const std::string& plain, const std::string& target)
{
    return RedactLog(plain, target, *mRedaction, mReport);
}

void CaptureRedaction::LeaveDerivedDatabaseOut(const std::string& path)
{
    diagnosis::LeaveDerivedDatabaseOut(path, mReport);
}

std::optional<Failure> CaptureRedaction::ReplaceNodeFiles(const std::vector<std::string>& paths,
    const std::function<std::optional<std::string>(const std::string& path)>& nameOf)
{
    if (mRedaction == nullptr || mRedaction->nodes.empty()) {
        return std::nullopt;
    }
    const std::set<std::string> captured(mFiles.GetNames().begin(), mFiles.GetNames().end());
    std::set<std::string> replaced;
    for (const std::string& path : paths) {
        const auto name = IsRedactedNode(*mRedaction, path) ? nameOf(path) : std::nullopt;
        if (!name || captured.count(*name) == 0) {
            continue;
        }
        mReport.nodeFiles.push_back(path);
        if (!replaced.insert(*name).second) {
            continue; // by another spelling of its path
        }
        const auto text = FileText(mFiles.Path(*name));
        auto failure = text ? mFiles.Replace(*name, RedactedNodeText(*mRedaction, *text))
                            : Failure{FailureCode::NOT_PACKED, path + ": can't be redacted"};
        if (failure) {
            return failure;
        }
    }
    return std::nullopt;
}

void CaptureRedaction::ReplaceKeys(Bundle& bundle)
{
    if (mRedaction != nullptr) {
        RedactBundle(*mRedaction, bundle, mReport);
    }
}

std::optional<RedactionReport> CaptureRedaction::Finish(const Bundle& own, const RuleSetSummary& ruleSet)
{
    if (mRedaction == nullptr) {
        return std::nullopt;
    }
    for (const NodePattern& node : mRedaction->nodes) {
        const bool isThere = std::any_of(mReport.nodeFiles.begin(), mReport.nodeFiles.end(),
            [&node](const std::string& path) { return std::regex_match(path, node.pattern); });
        if (!isThere) {
            mReport.notThere.push_back("node file: " + node.text);
        }
    }
    if (TouchesLog() && !mReport.hasLog) {
        mReport.notThere.emplace_back("event log");
    }
    mReport.keptFolders = ruleSet.searchedFolders;
    const auto files = rule_source::ReadRuleSetFiles(rule_source::RuleSetPaths{TreeFilePath(own), RuleFilePath(own)});
    mReport.rules = AffectedRules(rule_source::RuleSet(files, own.treeTag), mReport);
    return std::move(mReport);
}

} // namespace diagnosis
