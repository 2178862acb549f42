#include "diagnosis/lint/lint.h"

#include <algorithm>
#include <utility>

#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/registry.h"
#include "diagnosis/lint/sql/prepared_queries.h"
#include "diagnosis/lint/suppressions.h"

namespace diagnosis::lint {

namespace {

using rule_source::RuleSet;
using rule_source::RuleSetFiles;
using rule_source::SourceFile;

bool IsWanted(const Check& check, const LintOptions& options)
{
    if (options.disabled.count(check.id) != 0 || (!options.only.empty() && options.only.count(check.id) == 0)) {
        return false;
    }
    return check.kind == CheckClass::DEVICE ? !options.devices.empty()
        : check.kind == CheckClass::HOST    ? options.counts != nullptr || !options.deviceRoot.empty()
                                            : true;
}

std::vector<const Check*> WantedChecks(const LintOptions& options)
{
    std::vector<const Check*> wanted;
    for (const Check* check : AllChecks()) {
        if (check->run != nullptr && IsWanted(*check, options)) {
            wanted.push_back(check);
        }
    }
    return wanted;
}

void RunChecks(const RuleSet& rules, const LintOptions& options, Report& report)
{
    PreparedQueries queries(rules);
    const Subject subject{rules, queries, options.devices.empty() ? nullptr : &options.devices, options.counts,
        options.deviceRoot};
    for (const Check* check : WantedChecks(options)) {
        report.Begin(*check);
        check->run(subject, report);
    }
}

// The tags of the trees; what the rule file has under others belongs to nothing. A rule set without any tag is looked
// at all the same: its files have traits of their own.
std::vector<std::string> TagsToCheck(const RuleSetFiles& files, const LintOptions& options)
{
    static constexpr std::size_t MOST_TAGS = 100;
    std::vector<std::string> tags = options.tags;
    if (tags.empty()) {
        tags = rule_source::TagsOf(files.TreeRoot(), {});
    }
    if (tags.empty()) {
        tags = rule_source::TagsOf({}, files.RuleRoot());
    }
    tags.resize(std::clamp<std::size_t>(tags.size(), 1, MOST_TAGS));
    return tags;
}

void DropSuppressed(const RuleSetFiles& files, const LintOptions& options, Report& report)
{
    const Check* const unused = FindCheck("A001");
    const bool isUnusedWanted = unused != nullptr && IsWanted(*unused, options);
    if (report.Findings().empty() && !isUnusedWanted) {
        return;
    }
    Suppressions suppressions(files);
    std::erase_if(report.Findings(), [&](const Reported& reported) { return suppressions.Covers(reported); });
    if (!isUnusedWanted) {
        return;
    }
    report.Begin(*unused);
    suppressions.ReportUnused(report, [&](std::string_view id) {
        const Check* const check = FindCheck(id);
        return check == nullptr || IsWanted(*check, options);
    });
}

bool IsReadable(const std::unique_ptr<SourceFile>& file)
{
    return file == nullptr || file->IsLoaded();
}

LintReport Finished(const RuleSetFiles& files, const LintOptions& options, Report report)
{
    DropSuppressed(files, options, report);
    return {PlaceFindings(std::move(report.Findings()), options.details), IsReadable(files.trees) && IsReadable(files.rules)};
}

} // namespace

LintReport LintFolder(const std::string& folder, const LintOptions& options)
{
    return LintFiles(rule_source::ReadRuleSetFiles(folder, options.prefix), options);
}

LintReport LintRuleSet(const RuleSet& rules, const LintOptions& options)
{
    Report report;
    RunChecks(rules, options, report);
    return Finished(rules.files, options, std::move(report));
}

LintReport LintFiles(const RuleSetFiles& files, const LintOptions& options)
{
    Report report;
    for (const std::string& tag : TagsToCheck(files, options)) {
        RunChecks(RuleSet(files, tag), options, report);
    }
    return Finished(files, options, std::move(report));
}

} // namespace diagnosis::lint
