#include "tools/arborist/render/test_text.h"

#include <map>

#include "diagnosis/cases/difference_text.h"
#include "diagnosis/text/printable.h"
#include "tools/arborist/terminal/colour.h"

namespace diagnosis::command {

namespace {

/// Outcomes that cases have shown, of all.
struct Share {
    std::size_t covered = 0;
    std::size_t total = 0;
};

std::string ShareText(const Share& share)
{
    return std::to_string(share.covered) + " of " + std::to_string(share.total);
}

// Rounded down: 100% means all.
std::string PercentText(const Share& share)
{
    return std::to_string(share.total == 0 ? 100 : share.covered * 100 / share.total) + "%";
}

} // namespace

std::string CaseText(const cases::CaseOutcome& outcome, bool isColoured)
{
    const Colour colour(isColoured);
    const std::string name = ": " + Shown(outcome.name);
    const std::string file = Printable(outcome.file);
    if (outcome.HasPassed()) {
        return colour.Green("PASS") + " " + file + name + (outcome.isReviewed ? "" : " (recorded, not reviewed)") + "\n";
    }
    std::string text = colour.Red("FAIL") + " " + file + ":" + std::to_string(outcome.line) + name + "\n";
    if (outcome.failure) {
        text += "  " + Printable(outcome.failure->message) + "\n";
    }
    for (const cases::Difference& difference : outcome.differences) {
        text += cases::DifferenceText(difference, "  ");
    }
    return text;
}

std::string TestCountsText(const cases::TestRun& run)
{
    const std::size_t total = run.cases.size();
    const std::size_t failed = total - run.Passed();
    std::string text = total == 0 ? "no cases" : std::to_string(total) + (total == 1 ? " case: " : " cases: ")
        + std::to_string(run.Passed()) + " passed";
    text += failed == 0 ? "" : ", " + std::to_string(failed) + " failed";
    text += run.Unreviewed() == 0 ? "" : ", " + std::to_string(run.Unreviewed()) + " not reviewed";
    return text + "\n";
}

std::string CoverageText(const cases::RuleSetCoverage& coverage)
{
    using Kind = cases::CoverageItem::Kind;
    std::map<Kind, Share> kinds;
    Share all;
    std::string uncovered;
    for (const cases::CoverageItem& item : coverage.items) {
        for (Share* share : {&all, &kinds[item.kind]}) {
            share->covered += item.Covered();
            share->total += 2;
        }
        if (item.Covered() < 2) {
            uncovered += Printable(item.file) + ":" + std::to_string(item.line) + ": " + Printable(item.subject)
                + ": never " + Joined(item.Missing(), ", never ") + "\n";
        }
    }
    std::string text = "coverage of " + Printable(coverage.folder) + ", tag " + Shown(coverage.tag) + ": "
        + ShareText(all) + " outcomes, " + PercentText(all) + "\n";
    for (const auto& [kind, share] : kinds) {
        text += std::string("  ") + cases::CoverageKindText(kind) + " " + ShareText(share) + "\n";
    }
    return text + uncovered;
}

} // namespace diagnosis::command
