#ifndef ARBORIST_TOOLS_MANUAL_REFERENCE_H
#define ARBORIST_TOOLS_MANUAL_REFERENCE_H

#include <string>
#include <vector>

#include "tools/arborist/options/options.h"

namespace diagnosis::command {

/// One option as its command declares it.
struct OptionReference {
    /// The names with their dashes, short ones first.
    std::vector<std::string> names;
    /// Placeholder of the value; empty for a flag.
    std::string value;
    std::string description;
    /// The words that the value may be; empty if it may be any text.
    std::vector<std::string> choices = {};
};

/// One command with everything that its --help shows: the source of both man pages and completions.
struct CommandReference {
    /// The full name, "arborist log import".
    std::string words;
    std::string description;
    /// Notes and examples.
    std::string footer;
    /// Positional arguments in order, "BUNDLE..." if there may be several.
    std::vector<OptionReference> arguments;
    std::vector<OptionReference> options;
    std::vector<CommandReference> commands;
};

/// `words` is the full name of `command`.
CommandReference MakeReference(const Command& command, const std::string& words);

/// The man page for section 1, written with the man macros.
std::string ManPage(const CommandReference& command);
/// The name of its file: "arborist-log-import.1".
std::string ManPageName(const CommandReference& command);

/// The completion script for "bash", "zsh" or "fish".
std::string Completion(const CommandReference& root, const std::string& shell);

} // namespace diagnosis::command

#endif
