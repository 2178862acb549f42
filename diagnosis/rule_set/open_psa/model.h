#ifndef ARBORIST_DIAGNOSIS_RULE_SET_OPEN_PSA_MODEL_H
#define ARBORIST_DIAGNOSIS_RULE_SET_OPEN_PSA_MODEL_H

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/problem.h"
#include "diagnosis/rule_source/source_file.h"

namespace diagnosis::rule_set::open_psa {

/// The formula of a gate, or a part of one.
struct Formula {
    enum class Kind { AND, OR, AT_LEAST, GATE, BASIC_EVENT };

    Kind kind = Kind::OR;
    /// Of AT_LEAST: how many arguments must be true, from 1 to their number.
    std::size_t least = 0;
    /// Of GATE and BASIC_EVENT.
    std::string name = {};
    /// True for a reference that doesn't say which of the two it is.
    bool isOfAnyKind = false;
    std::vector<Formula> arguments = {};
    int line = 0;
};

struct GateDefinition {
    std::string name;
    /// The id of its event: the attribute "event-id", or its name.
    std::string eventId;
    std::string label;
    Formula formula;
    int line = 0;
    /// Index into Model::trees.
    std::size_t tree = 0;
};

struct BasicEventDefinition {
    std::string label;
    bool isUndeveloped = false;
    int line = 0;
};

/// What a file in the Open-PSA Model Exchange Format says of fault trees. Every name that a formula refers to is defined,
/// and no gate is part of itself.
struct Model {
    std::string path;
    /// Names of the fault trees, in order.
    std::vector<std::string> trees;
    /// In order of the file.
    std::vector<GateDefinition> gates;
    std::map<std::string, std::size_t> gatesByName;
    std::map<std::string, BasicEventDefinition> basicEvents;
    /// All gates, as indices into gates, ordered so that each comes after its arguments.
    std::vector<std::size_t> argumentsFirst;
    /// How many definitions have something that a tree file can't have: probabilities and parameters.
    std::size_t withProbabilities = 0;
};

/// Reads a file. Fails, with file and line, for everything but AND, OR and k of n over gates and basic events.
std::optional<Failure> ReadModel(const std::string& path, Model& model);

/// A failure with its place.
Failure FailureAt(const std::string& path, int line, const std::string& message);

} // namespace diagnosis::rule_set::open_psa

#endif
