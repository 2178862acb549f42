#ifndef ARBORIST_TESTS_TOOLS_ALL_COMMANDS_H
#define ARBORIST_TESTS_TOOLS_ALL_COMMANDS_H

#include <string>
#include <vector>

/// The words of `words` and of all commands below, collected from the lists of subcommands in the help; {} is arborist
/// itself.
std::vector<std::vector<std::string>> AllCommands(const std::vector<std::string>& words = {});

#endif
