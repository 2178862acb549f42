#include "tests/tools/all_commands.h"

#include <regex>

#include "tests/tools/command_bundle.h"

using Words = std::vector<std::string>;

std::vector<Words> AllCommands(const Words& words)
{
    std::vector<Words> commands = {words};
    Words arguments = words;
    arguments.emplace_back("--help");
    const std::string help = RunArborist(arguments).out;
    const auto list = help.find("\nSubcommands:\n");
    if (list == std::string::npos) {
        return commands;
    }
    const std::string entries = help.substr(list, help.find("\n\n", list + 1) - list);
    static const std::regex entry("\n  ([a-z]+) ");
    for (std::sregex_iterator found(entries.begin(), entries.end(), entry), end; found != end; ++found) {
        Words below = words;
        below.push_back((*found)[1]);
        const auto more = AllCommands(below);
        commands.insert(commands.end(), more.begin(), more.end());
    }
    return commands;
}
