// Linting a rule set against the engine's own reading of it.

#include "bench/compare.h"
#include "bench/rule_set_dir.h"
#include "diagnosis/lint/lint.h"

namespace {

void Measure(const char* name, const bench::RuleSetSize& size, double goal)
{
    const bench::RuleSetDir dir(size);
    std::size_t findings = 0;
    const auto lint = [&] { findings = diagnosis::lint::LintFolder(dir.Path(), {}).findings.size(); };
    const auto load = [&] { bench::Keep(bench::Parsed(dir, size)); };
    const bench::Pair times = bench::Alternate(7, lint, load);
    std::printf("# %s: %zu findings\n", name, findings);
    bench::Report(name, times, goal);
}

} // namespace

int main()
{
    bench::SilenceLog();
    bench::RuleSetSize described;
    described.trees = 1'500;
    described.rules = 15'000;
    described.describedOneIn = 1;
    Measure("lint of 20 MB", described, 2);
    // Most basic events lack a description, which is a finding each.
    Measure("lint of 20 MB with a finding for every second event", {}, 2.5);
    return 0;
}
