#include "tools/arborist/options/options.h"

#include <CLI/CLI.hpp>

namespace diagnosis::command {

Option::Option(CLI::Option& option) : mOption(&option) {}

Option& Option::Takes(const std::string& valueName)
{
    mOption->type_name(valueName);
    return *this;
}

Option& Option::Required()
{
    mOption->required();
    return *this;
}

Option& Option::OneOf(const std::vector<std::string>& words)
{
    mOption->check(CLI::IsMember(words));
    return *this;
}

Option& Option::Within(std::size_t least, std::size_t most)
{
    mOption->check(CLI::Range(least, most));
    return *this;
}

Option& Option::Within(std::int64_t least, std::int64_t most)
{
    mOption->check(CLI::Range(least, most));
    return *this;
}

Option& Option::Check(const std::function<std::string(const std::string& text)>& problem)
{
    mOption->check(problem);
    return *this;
}

Option& Option::NotEmpty()
{
    return Check([](const std::string& text) { return std::string(text.empty() ? "must not be empty" : ""); });
}

Option& Option::SplitAt(char separator)
{
    mOption->delimiter(separator);
    return *this;
}

Option& Option::ShowDefault()
{
    mOption->capture_default_str();
    return *this;
}

Option& Option::Default(const std::string& text)
{
    mOption->default_str(text);
    return *this;
}

Option& Option::Needs(const Option& other)
{
    mOption->needs(other.mOption);
    return *this;
}

Option& Option::Excludes(const Option& other)
{
    mOption->excludes(other.mOption);
    return *this;
}

Command::Command(CLI::App& app) : mApp(&app) {}

Option Command::Add(const std::string& name, std::string& value, const std::string& description)
{
    return Option(*mApp->add_option(name, value, description));
}

Option Command::Add(const std::string& name, std::vector<std::string>& values, const std::string& description)
{
    CLI::Option* const option = mApp->add_option(name, values, description);
    // Otherwise an option would take the arguments behind its value as more values.
    return Option(*option->allow_extra_args(option->get_positional()));
}

Option Command::Add(const std::string& name, std::size_t& value, const std::string& description)
{
    return Option(*mApp->add_option(name, value, description));
}

Option Command::Add(const std::string& name, std::int64_t& value, const std::string& description)
{
    return Option(*mApp->add_option(name, value, description));
}

Option Command::Add(const std::string& name, double& value, const std::string& description)
{
    return Option(*mApp->add_option(name, value, description));
}

Option Command::Add(const std::string& name, const std::function<void(const std::string& value)>& take,
    const std::string& description)
{
    return Option(*mApp->add_option_function<std::string>(name, take, description));
}

Option Command::AddFlag(const std::string& name, bool& isGiven, const std::string& description)
{
    return Option(*mApp->add_flag(name, isGiven, description));
}

Option Command::Get(const std::string& name) const
{
    return Option(*mApp->get_option(name));
}

Command Command::AddCommand(const std::string& name, const std::string& description)
{
    return Command(*mApp->add_subcommand(name, description));
}

void Command::RequireCommand()
{
    mApp->require_subcommand(1);
}

void Command::Footer(const std::string& text)
{
    mApp->footer(text);
}

void Command::OnCall(const std::function<void()>& run)
{
    mApp->callback(run);
}

std::string Command::Name() const
{
    return mApp->get_name();
}

std::vector<Command> Command::Commands() const
{
    std::vector<Command> commands;
    for (CLI::App* command : mApp->get_subcommands([](CLI::App*) { return true; })) {
        commands.emplace_back(*command);
    }
    return commands;
}

std::string Command::Help() const
{
    return mApp->help("", CLI::AppFormatMode::Sub);
}

std::vector<std::string> CommandNames(const Command& command)
{
    std::vector<std::string> names;
    for (const Command& below : command.Commands()) {
        names.push_back(below.Name());
    }
    return names;
}

void FailMissing(const std::string& argument)
{
    throw CLI::RequiredError(argument);
}

void FailExcluded(const std::string& option, const std::string& other)
{
    throw CLI::ExcludesError(option, other);
}

void FailUse(const std::string& message)
{
    throw CLI::ValidationError(message, CLI::ExitCodes::ValidationError);
}

} // namespace diagnosis::command
