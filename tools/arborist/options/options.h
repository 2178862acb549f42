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

/// One option or argument of a command. Each call describes it further and returns it.
///
/// A handle, valid as long as the command line that it belongs to. It is the door to CLI11, whose headers take seconds
/// to compile: the commands see only this one.
class Option {
public:
    explicit Option(CLI::Option& option);

    /// What stands for the value in the help: "FILE".
    Option& Takes(const std::string& valueName);
    Option& Required();
    /// The value must be one of these words.
    Option& OneOf(const std::vector<std::string>& words);
    /// The value must be in this range, ends included.
    Option& Within(std::size_t least, std::size_t most);
    Option& Within(std::int64_t least, std::int64_t most);
    /// `problem` tells what is wrong with a text; it returns an empty text when nothing is.
    Option& Check(const std::function<std::string(const std::string& text)>& problem);
    /// The value must not be empty.
    Option& NotEmpty();
    /// One text may hold several values with `separator` between.
    Option& SplitAt(char separator);
    /// Shows in the help the value that it has now.
    Option& ShowDefault();
    /// Shows this text as the value that it has unless given.
    Option& Default(const std::string& text);
    /// It may be given only together with `other`.
    Option& Needs(const Option& other);
    /// It may not be given together with `other`.
    Option& Excludes(const Option& other);

private:
    CLI::Option* mOption;
};

/// A command, or the whole command line, to which options and commands are added.
///
/// A handle, valid as long as the command line. What options are read into must outlive its parse.
class Command {
public:
    explicit Command(CLI::App& app);

    /// A name without dashes is a positional argument.
    Option Add(const std::string& name, std::string& value, const std::string& description);
    Option Add(const std::string& name, std::vector<std::string>& values, const std::string& description);
    Option Add(const std::string& name, std::size_t& value, const std::string& description);
    Option Add(const std::string& name, std::int64_t& value, const std::string& description);
    Option Add(const std::string& name, double& value, const std::string& description);
    /// Hands the value to `take`.
    Option Add(const std::string& name, const std::function<void(const std::string& value)>& take,
        const std::string& description);
    Option AddFlag(const std::string& name, bool& isGiven, const std::string& description);
    /// One that was added before.
    Option Get(const std::string& name) const;

    Command AddCommand(const std::string& name, const std::string& description);
    /// One of the commands below it must be named.
    void RequireCommand();
    /// Notes and examples at the end of its help.
    void Footer(const std::string& text);
    /// What runs when the line names it, while the line is parsed.
    void OnCall(const std::function<void()>& run);

    std::string Name() const;
    /// The commands below it, in the order of their adding.
    std::vector<Command> Commands() const;
    /// What its --help shows.
    std::string Help() const;
    const CLI::App& App() const { return *mApp; }

private:
    CLI::App* mApp;
};

/// The names of the commands below `command`, in the order of Commands.
std::vector<std::string> CommandNames(const Command& command);

/// From OnCall: end the parse with the error that the argument is missing, or that the two exclude each other.
[[noreturn]] void FailMissing(const std::string& argument);
[[noreturn]] void FailExcluded(const std::string& option, const std::string& other);

} // namespace diagnosis::command

#endif
