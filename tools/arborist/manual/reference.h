#ifndef ARBORIST_TOOLS_MANUAL_REFERENCE_H
#define ARBORIST_TOOLS_MANUAL_REFERENCE_H

#include <string>
#include <vector>

#include "tools/arborist/options/options.h"

namespace diagnosis::command {

/// One option as its command declares it.
struct OptionReference {
    /// With their dashes, short ones first.
    std::vector<std::string> names;
    /// What stands for the value; empty for a flag.
    std::string value;
    std::string description;
    /// The words of which the value must be one; none where it may be any text.
    std::vector<std::string> choices = {};
};

/// One command with everything that its --help shows: the one source of man pages and completions.
struct CommandReference {
    /// All words, "arborist log import".
    std::string words;
    std::string description;
    /// Notes and examples.
    std::string footer;
    /// Positional arguments in their order, "BUNDLE..." where several are taken.
    std::vector<OptionReference> arguments;
    std::vector<OptionReference> options;
    std::vector<CommandReference> commands;
};

/// `words` are those that lead to `command`.
CommandReference MakeReference(const Command& command, const std::string& words);

/// The man page, section 1, in the man macros.
std::string ManPage(const CommandReference& command);
/// "arborist-log-import.1".
std::string ManPageName(const CommandReference& command);

/// The script for "bash", "zsh" or "fish".
std::string Completion(const CommandReference& root, const std::string& shell);

} // namespace diagnosis::command

#endif
