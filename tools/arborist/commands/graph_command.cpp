#include <memory>

#include "diagnosis/detection/bare_rules.h"
#include "diagnosis/drawing/dot.h"
#include "diagnosis/drawing/graphviz.h"
#include "diagnosis/drawing/mermaid.h"
#include "diagnosis/drawing/open_psa.h"
#include "diagnosis/results/verdict_text.h"
#include "diagnosis/text/near_match.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/drawing_options.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

struct GraphOptions {
    DrawingOptions drawing;
    std::string treeTag;
    std::string tree;
    std::string format = "dot";
};

ExitStatus Fail(const std::string& about, const Failure& failure)
{
    PrintProblems(about, {}, failure);
    return failure.status;
}

std::optional<Failure> Draw(const std::vector<DrawnTree>& trees, const std::string& format, std::string& drawing)
{
    if (format == "svg") {
        return DrawWithGraphviz(Dot(trees), drawing);
    }
    drawing = format == "mermaid" ? Mermaid(trees) : format == "openpsa" ? OpenPsa(trees) : Dot(trees);
    return std::nullopt;
}

// Without a run there are none.
void AddVerdicts(std::vector<DrawnTree>& trees)
{
    for (DrawnTree& tree : trees) {
        if (tree.hasStatuses) {
            tree.verdict = (tree.report->IsFault() ? "FAULT" : "") + VerdictWords(tree.report->verdict);
        }
    }
}

Failure NoSuchTree(const DetectionReport& report, const std::string& tree)
{
    std::vector<std::string> ids;
    for (const TreeReport& known : report.trees) {
        ids.push_back(known.Id());
    }
    return {FailureCode::NO_SUCH_TREE, "no tree with the id \"" + tree + "\"" + DidYouMean(tree, ids)};
}

// Without a bundle the library's lines about missing data of a device mean nothing.
LogOptions LogOf(const GraphOptions& options, bool isBundle)
{
    LogOptions log = options.drawing.run.log;
    if (!isBundle && log.level.empty()) {
        log.level = "none";
    }
    return log;
}

ExitStatus Graph(const GraphOptions& options)
{
    const bool isBundle = options.treeTag.empty();
    if (!IsLogOpen(LogOf(options, isBundle))) {
        return ExitStatus::WRONG_USE;
    }
    const BundlePath path = MakeBundlePath(options.drawing.bundle);
    const BundlePath target = MakeBundlePath(options.drawing.file);
    const DetectionReport report =
        isBundle ? RunForDrawing(path, options.drawing) : ReadBareRules(path, options.treeTag);
    PrintProblems(path.given, report.warnings, report.failure);
    if (report.failure) {
        return report.failure->status;
    }
    std::vector<DrawnTree> trees = DrawTrees(report, isBundle, options.tree);
    if (trees.empty()) {
        return Fail(path.given, NoSuchTree(report, options.tree));
    }
    AddVerdicts(trees);
    std::string drawing;
    if (const auto failure = Draw(trees, options.format, drawing)) {
        return Fail(path.given, *failure);
    }
    return MoreSerious(WriteTextFile(target, drawing), StatusOf(report, options.drawing.run));
}

} // namespace

void AddGraphCommand(Command app, ExitStatus& status)
{
    auto options = std::make_shared<GraphOptions>();
    Command graph = app.AddCommand("graph", "Draw the trees of a bundle after a run, or those of bare rules");
    AddDrawingOptions(graph, options->drawing, "Bundle; with --tree-tag a folder of rules");
    graph.Add("--tree-tag", options->treeTag, "Draw the trees under this tag of a folder with FaultTrees.xml "
        "and FaultTreeRules.xml, without a run and so without statuses")
        .Takes("TAG")
        .Excludes(graph.Get("--rules"));
    graph.Add("--tree", options->tree, "The trees with this id alone").Takes("ID");
    graph.Add("--format", options->format, "dot: for Graphviz; svg: drawn by Graphviz's program dot, where it "
        "is installed; mermaid: for Markdown; openpsa: Open-PSA Model Exchange Format")
        .Takes("FORMAT")
        .OneOf({"dot", "svg", "mermaid", "openpsa"})
        .ShowDefault();
    graph.Footer("Examples:\n  arborist graph examples/laptop --format svg -o laptop.svg\n"
                  "  arborist graph examples/laptop/rules --tree-tag Laptop | dot -Tpdf -o laptop.pdf");
    graph.OnCall([options, &status] { status = Graph(*options); });
}

} // namespace diagnosis::command
