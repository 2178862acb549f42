#ifndef ARBORIST_TOOLS_OPTIONS_OPTIONS_H
#define ARBORIST_TOOLS_OPTIONS_OPTIONS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}

namespace diagnosis::command {

/// One option or argument of a command. Each call adds a property and returns the object.
///
/// A handle, valid as long as its command line. Hides CLI11, whose headers take seconds to compile, from the commands.
class Option {
public:
    explicit Option(CLI::Option& option);

    /// Sets the placeholder of the value in the help: "FILE".
    Option& Takes(const std::string& valueName);
    Option& Required();
    /// Accepts only one of these words.
    Option& OneOf(const std::vector<std::string>& words);
    /// Accepts only values in this range, ends included.
    Option& Within(std::size_t least, std::size_t most);
    Option& Within(std::int64_t least, std::int64_t most);
    /// Accepts a text if `problem` returns an empty text for it; otherwise that is the message.
    Option& Check(const std::function<std::string(const std::string& text)>& problem);
    /// Accepts no empty value.
    Option& NotEmpty();
    /// Splits one text into several values at `separator`.
    Option& SplitAt(char separator);
    /// Shows its current value as the default in the help.
    Option& ShowDefault();
    /// Shows this text as the default in the help.
    Option& Default(const std::string& text);
    /// Allows the option only together with `other`.
    Option& Needs(const Option& other);
    /// Forbids the option together with `other`.
    Option& Excludes(const Option& other);

private:
    CLI::Option* mOption;
};

/// A command, or the whole command line, to which options and commands are added.
///
/// A handle, valid as long as the command line. The variables of its options must outlive the parse.
class Command {
public:
    explicit Command(CLI::App& app);

    /// Adds an option; a name without dashes makes a positional argument.
    Option Add(const std::string& name, std::string& value, const std::string& description);
    Option Add(const std::string& name, std::vector<std::string>& values, const std::string& description);
    Option Add(const std::string& name, std::size_t& value, const std::string& description);
    Option Add(const std::string& name, std::int64_t& value, const std::string& description);
    Option Add(const std::string& name, double& value, const std::string& description);
    /// Adds an option whose value is passed to `take`.
    Option Add(const std::string& name, const std::function<void(const std::string& value)>& take,
        const std::string& description);
    Option AddFlag(const std::string& name, bool& isGiven, const std::string& description);
    /// Returns an option that was added before.
    Option Get(const std::string& name) const;

    Command AddCommand(const std::string& name, const std::string& description);
    /// Requires one of its subcommands.
    void RequireCommand();
    /// Sets notes and examples at the end of its help.
    void Footer(const std::string& text);
    /// Sets the function that runs during the parse if the line names the command.
    void OnCall(const std::function<void()>& run);

    std::string Name() const;
    /// Its subcommands in the order in which they were added.
    std::vector<Command> Commands() const;
    /// The text of its --help.
    std::string Help() const;
    const CLI::App& App() const { return *mApp; }

private:
    CLI::App* mApp;
};

/// The names of the subcommands of `command`, in the order of Commands.
std::vector<std::string> CommandNames(const Command& command);

/// To call from OnCall: ends the parse with the error that an argument is missing, or that two exclude each other.
[[noreturn]] void FailMissing(const std::string& argument);
[[noreturn]] void FailExcluded(const std::string& option, const std::string& other);
/// The same with a message of its own.
[[noreturn]] void FailUse(const std::string& message);

} // namespace diagnosis::command

#endif
