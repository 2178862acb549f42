// Linting a rule set against the engine's own reading of it.

#include "bench/compare.h"
#include "bench/rule_set_dir.h"
#include "diagnosis/lint/lint.h"

int main()
{
    bench::SilenceLog();
    const bench::RuleSetSize size;
    const bench::RuleSetDir dir(size);
    std::size_t findings = 0;
    const auto lint = [&] { findings = diagnosis::lint::LintFolder(dir.Path(), {}).findings.size(); };
    const auto load = [&] { bench::Keep(bench::Parsed(dir, size)); };
    const bench::Pair times = bench::Alternate(7, lint, load);
    std::printf("# %zu findings\n", findings);
    bench::Report("lint of 20 MB", times, 2);
    return 0;
}
