#include "tools/arborist/render/test_text.h"

#include "diagnosis/results/difference_text.h"
#include "diagnosis/text/printable.h"
#include "tools/arborist/terminal/colour.h"

namespace diagnosis::command {

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
        text += DifferenceText(difference, "  ");
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

} // namespace diagnosis::command
