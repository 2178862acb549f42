#ifndef ARBORIST_DIAGNOSIS_DRAWING_DOT_PROGRAM_H
#define ARBORIST_DIAGNOSIS_DRAWING_DOT_PROGRAM_H

#include <string>

namespace diagnosis {

/// How a run of Graphviz's program ended.
struct DotRun {
    /// False if there is no such program.
    bool isInstalled = true;
    /// The reason if it has failed.
    std::string trouble = {};
};

/// Runs "dot -Tsvg" from PATH with `graph` on its standard input and sets `svg` to its output; its messages go to
/// standard error.
DotRun RunDot(const std::string& graph, std::string& svg);

} // namespace diagnosis

#endif
