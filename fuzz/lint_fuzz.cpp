// Any bytes as the rule file of a rule set with the tag "t", and as its tree file; then every check on both, where each
// finding stands, what would mend it, and every format.

#include <cstdlib>

#include "diagnosis/lint/lint.h"
#include "diagnosis/lint/output/formats.h"
#include "fuzz/fuzz_support.h"

namespace {

namespace lint = diagnosis::lint;
using diagnosis::rule_source::RuleSetFiles;
using diagnosis::rule_source::SourceFile;

constexpr char TREES[] = "<r version='1'><t><T id='T' version='1' type='t'><Intermediate-Event><ID>T</ID><And-Gate>"
                         "<Basic-Event><ID>E</ID></Basic-Event><Basic-Event><ID>F</ID></Basic-Event></And-Gate>"
                         "</Intermediate-Event></T></t></r>";
constexpr char RULES[] = "<r><EventRules><t><Event><ID>E</ID><or type='singleRule'><Rule><Rule-name>r</Rule-name></Rule>"
                         "</or></Event></t></EventRules></r>";

void Lint(const std::string& trees, const std::string& rules)
{
    const RuleSetFiles files{SourceFile::Of("FaultTrees.xml", trees), SourceFile::Of("FaultTreeRules.xml", rules)};
    lint::LintOptions options;
    options.devices.push_back({"LAP-A", "x86", "laptop", {1}});
    lint::LintRun run;
    run.findings = lint::LintFiles(files, options).findings;
    for (const lint::Finding& finding : run.findings) {
        for (const lint::Edit& edit : finding.edits) {
            const std::string& text = finding.file == "FaultTrees.xml" ? trees : rules;
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
    Lint(TREES, text);
    Lint(text, RULES);
    return 0;
}
