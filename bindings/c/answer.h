#ifndef ARBORIST_BINDINGS_C_ANSWER_H
#define ARBORIST_BINDINGS_C_ANSWER_H

#include <optional>
#include <string>
#include <vector>

#include "diagnosis/problem.h"

namespace diagnosis::bindings {

/// What a call gives: a failure or none, and in either case what the command prints.
struct Answer {
    std::optional<Failure> failure;
    /// What the command prints on standard output under --json, line ends included.
    std::string output;
    std::vector<Warning> warnings;
};

/// The warnings as a JSON array.
std::string WarningsJson(const std::vector<Warning>& warnings);

/// `text` with every byte that is no UTF-8 replaced by U+FFFD.
std::string ValidUtf8(const std::string& text);

/// `text` on one line for people: as Printable has it, and cut where it is very long. It may quote names from outside.
std::string OneLine(const std::string& text);

} // namespace diagnosis::bindings

/// The handles of the interface.
struct arborist_result {
    std::string output;
    std::string warnings;
};

struct arborist_error {
    diagnosis::Failure failure;
    std::string output;
};

#endif
