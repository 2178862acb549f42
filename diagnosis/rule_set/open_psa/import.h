#ifndef ARBORIST_DIAGNOSIS_RULE_SET_OPEN_PSA_IMPORT_H
#define ARBORIST_DIAGNOSIS_RULE_SET_OPEN_PSA_IMPORT_H

#include <optional>
#include <string>

#include "diagnosis/problem.h"

namespace diagnosis::rule_set::open_psa {

/// A tree file that was made of another format.
struct ImportedTrees {
    /// The text of FaultTrees.xml.
    std::string text;
    std::size_t trees = 0;
    /// How many definitions had probabilities, which a tree file can't have.
    std::size_t withProbabilities = 0;
};

/// Turns the fault trees of a file in the Open-PSA Model Exchange Format into a tree file with one tag. Each gate that no
/// other names is the top event of a tree. Shared gates are written out, and so is k of n: as an OR of ANDs. Fails, with
/// file and line, for everything else, and for trees that are too large or too deep.
std::optional<Failure> Import(const std::string& path, const std::string& tag, ImportedTrees& imported);

} // namespace diagnosis::rule_set::open_psa

#endif
