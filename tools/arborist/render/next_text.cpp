#include "tools/arborist/render/next_text.h"

#include "diagnosis/analysis/next_checks.h"
#include "diagnosis/results/verdict_text.h"
#include "diagnosis/text/printable.h"
#include "tools/arborist/render/explanation_words.h"

namespace diagnosis::command {

namespace {

std::string Number(std::uint32_t number, bool isAtMost)
{
    return (isAtMost && number > 1 ? "at most " : "") + std::to_string(number);
}

std::string CountedChecks(std::uint32_t number, bool isAtMost)
{
    return Number(number, isAtMost) + (number == 1 ? " check" : " checks");
}

// "1 check can prove a fault, 4 rule it out".
std::string FewestText(const FewestChecks& fewest, const NextChecks& next)
{
    if (next.aim == NextChecks::Aim::FIRST_ANSWER) {
        return "no check can prove a fault, but nothing was decided yet: " + CountedChecks(fewest.toRuleOut, next.isAtMost)
            + (fewest.toRuleOut == 1 ? " is" : " are") + " enough for no fault";
    }
    if (next.aim == NextChecks::Aim::TOP_EVENT) {
        return "no check can prove a fault; " + CountedChecks(fewest.toRuleOut, next.isAtMost)
            + (fewest.toRuleOut == 1 ? " rules" : " rule") + " out that the top event is in error";
    }
    return CountedChecks(fewest.toProve, next.isAtMost) + " can prove a fault, " + Number(fewest.toRuleOut, next.isAtMost)
        + (fewest.toRuleOut == 1 ? " rules it out" : " rule it out");
}

std::string CheckText(const TreeReport& report, std::size_t event)
{
    const std::string& id = report.tree.events[event].id;
    const Evidence::OpenCheck* const open = OpenCheckOf(report, id);
    if (open == nullptr) {
        return Shown(id);
    }
    const MissingSource source = SourceOf(report, *open);
    return Shown(id) + (open->ruleName.empty() ? "" : ", rule " + Shown(open->ruleName)) + ", because "
        + MissingText(source.reason, source.detail) + " is missing";
}

} // namespace

std::string NextChecksText(const TreeReport& report, std::size_t most, Colour colour)
{
    if (!report.IsUndecided()) {
        return "";
    }
    const NextChecks next = FindNextChecks(report, most);
    if (next.checks.empty()) {
        return "";
    }
    std::string text = "  " + colour.Bold("Fewest checks") + ", not likeliest cause: " + FewestText(next.fewest, next) + "\n";
    for (const NextCheck& check : next.checks) {
        const bool isFirst = &check == &next.checks.front();
        text += std::string("    ") + (isFirst ? "next: " : "then: ") + CheckText(report, check.event) + "\n";
    }
    return text;
}

std::string MissingSourcesText(const TreeReports& reports, Colour colour)
{
    const MissingSources missing = FindMissingSources(reports);
    std::string text;
    for (const MissingSource& source : missing.sources) {
        text += "  " + colour.Yellow(MissingText(source.reason, source.detail)) + " would decide "
            + std::to_string(source.decides) + " of " + Counted(missing.undecided, "undecided tree", "undecided trees") + " ("
            + Counted(source.checks, "check", "checks") + ")\n";
    }
    return text;
}

} // namespace diagnosis::command
