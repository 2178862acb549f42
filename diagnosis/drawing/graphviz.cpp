#include "diagnosis/drawing/graphviz.h"

#include "diagnosis/drawing/dot_program.h"

namespace diagnosis {

std::optional<Failure> DrawWithGraphviz(const std::string& graph, std::string& svg)
{
    const DotRun run = RunDot(graph, svg);
    if (!run.isInstalled) {
        return Failure{FailureCode::NO_GRAPHVIZ, "--format svg needs Graphviz's program dot, which is not installed (Debian: "
            "apt-get install graphviz); --format dot, mermaid and openpsa, and arborist report, do without"};
    }
    if (!run.trouble.empty()) {
        return Failure{FailureCode::GRAPHVIZ, "Graphviz's program dot could not draw the graph: " + run.trouble};
    }
    return std::nullopt;
}

} // namespace diagnosis
