// Any bytes as the rule file of a rule set with the tag "t", and as its tree file; then every check on both, where each
// finding stands, what would mend it, and every format.

#include <cstdlib>

#include "diagnosis/lint/lint.h"
#include "diagnosis/lint/output/formats.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/small_rule_set.h"

namespace {

namespace lint = diagnosis::lint;
using diagnosis::rule_source::RuleSetFiles;
using diagnosis::rule_source::SourceFile;

void Lint(const std::string& trees, const std::string& rules)
{
    const RuleSetFiles files{SourceFile::Of("FaultTrees.xml", trees), SourceFile::Of("FaultTreeRules.xml", rules)};
    lint::LintOptions options;
    options.devices.push_back({"LAP-A", "x86", "laptop", {1}});
    lint::LintRun run;
    run.findings = lint::LintFiles(files, options).findings;
    for (const lint::Finding& finding : run.findings) {
        for (const lint::Edit& edit : finding.edits) {
            const std::string& text = edit.file == "FaultTrees.xml" ? trees : rules;
            if (text.compare(edit.offset, edit.length, edit.old) != 0) {
                std::abort();
            }
        }
    }
    for (const auto format : {lint::RunJson, lint::RunShort, lint::RunGithub, lint::RunGitlab, lint::RunSarif,
             lint::RunJunit}) {
        format(run);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDir quiet;
    const std::string text(reinterpret_cast<const char*>(data), size);
    Lint(SMALL_TREE_FILE, text);
    Lint(text, SMALL_RULE_FILE);
    return 0;
}
