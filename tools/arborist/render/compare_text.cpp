#include "tools/arborist/render/compare_text.h"

#include <cmath>
#include <cstdio>

#include "tools/arborist/render/results_diff_text.h"
#include "tools/arborist/render/rule_set_text.h"

namespace diagnosis::command {

namespace {

// "run time: 12.30 s before, 14.10 s after, 15 % more".
std::string TimeText(const results_db::ResultsDiff& diff)
{
    const double before = diff.before.seconds;
    const double after = diff.after.seconds;
    char text[128];
    std::snprintf(text, sizeof text, "\nrun time: %.2f s before, %.2f s after", before, after);
    const double percent = before > 0 ? std::round((after / before - 1) * 100) : 0;
    char change[64];
    std::snprintf(change, sizeof change, ", %.0f %% %s", std::abs(percent), percent < 0 ? "less" : "more");
    return std::string(text) + (percent == 0 ? "" : change) + "\n";
}

} // namespace

std::string CompareText(
    const std::vector<rule_set::Change>& changes, const results_db::ResultsDiff& diff, const Colour& colour)
{
    return "rules:\n" + DifferenceText(changes, colour) + "\n" + ResultsDiffText(diff, colour) + TimeText(diff);
}

} // namespace diagnosis::command
