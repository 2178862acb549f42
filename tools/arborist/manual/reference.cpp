#include "tools/arborist/manual/reference.h"

#include <CLI/CLI.hpp>

namespace diagnosis::command {

namespace {

// The name of the value without the types and limits that CLI11 appends.
std::string ValueName(const CLI::Option& option)
{
    const std::string type = option.get_type_name();
    return type.substr(0, type.find(':'));
}

// The choices in a text such as "FORMAT:{dot,svg}".
std::vector<std::string> Choices(const CLI::Option& option)
{
    const std::string type = option.get_type_name();
    const auto first = type.find(":{");
    const auto last = type.find('}', first);
    return first == std::string::npos || last == std::string::npos
        ? std::vector<std::string>() : CLI::detail::split(type.substr(first + 2, last - first - 2), ',');
}

OptionReference MakeOption(const CLI::Option& option)
{
    OptionReference made;
    for (const std::string& name : option.get_snames()) {
        made.names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        made.names.push_back("--" + name);
    }
    made.value = option.get_items_expected_max() > 0 ? ValueName(option) : "";
    made.description = option.get_description();
    if (!option.get_default_str().empty()) {
        made.description += " (" + option.get_default_str() + " unless given)";
    }
    made.choices = Choices(option);
    return made;
}

OptionReference MakeArgument(const CLI::Option& option)
{
    const bool isRepeated = option.get_expected_max() > 1;
    return {{option.get_name(true) + (isRepeated ? "..." : "")}, "", option.get_description(), Choices(option)};
}

} // namespace

CommandReference MakeReference(const Command& command, const std::string& words)
{
    const CLI::App& app = command.App();
    CommandReference made{words, app.get_description(), app.get_footer(), {}, {}, {}};
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_positional()) {
            made.arguments.push_back(MakeArgument(*option));
        } else {
            made.options.push_back(MakeOption(*option));
        }
    }
    for (const Command& below : command.Commands()) {
        made.commands.push_back(MakeReference(below, words + " " + below.Name()));
    }
    return made;
}

} // namespace diagnosis::command
