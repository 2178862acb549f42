#ifndef ARBORIST_FRAME_EVIDENCE_NODE_H
#define ARBORIST_FRAME_EVIDENCE_NODE_H

#include <optional>
#include <string>
#include <vector>

#include "arborist/frame/comparable.h"
#include "arborist/frame/evidence_values.h"

namespace Evidence {

/// A file that a node rule reads.
struct NodeFile {
    /// The name in the formula that takes its value.
    std::string param;
    /// The path that the rule names.
    std::string path;
    /// False if the file is missing, unreadable or too large.
    bool readable = false;
    /// The content of the file.
    std::string value;

    ARBORIST_COMPARABLE(NodeFile)
};

/// The formula of a node rule.
struct Formula {
    /// The formula of the rule.
    std::string expression;
    /// The formula with every grouping in parentheses, in the order of calculation; empty if ill-formed.
    std::string grouping;
    /// The value as text.
    std::string result;
    /// The name of the result, which conditions refer to.
    std::string resultKey;

    ARBORIST_COMPARABLE(Formula)
};

/// The part of a node rule: its files, its formula and its conditions.
struct Node {
    /// The files in the order of reading.
    std::vector<NodeFile> files;
    /// Set if a formula was calculated.
    std::optional<Formula> formula;
    /// The comparisons in the order in which they were made.
    std::vector<Comparison> comparisons;

    ARBORIST_COMPARABLE(Node)
};

} // namespace Evidence

#endif
