#include "tools/arborist/commands/command_line.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <iterator>
#include <memory>
#include <string_view>

#include <CLI/CLI.hpp>

#include "diagnosis/text/near_match.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/commands/versions.h"
#include "tools/arborist/manual/exit_statuses.h"
#include "tools/arborist/terminal/console.h"
#include "tools/arborist/terminal/output.h"
#include "tools/arborist/terminal/width.h"

namespace diagnosis::command {

namespace {

constexpr char DESCRIPTION[] = "Diagnoses a device with fault trees.";
constexpr char EXAMPLES[] =
    "Examples:\n"
    "  arborist rules new heat\n"
    "  arborist detect heat\n"
    "  arborist explain heat\n"
    "  arborist help bundle pack";

std::string Footer()
{
    std::string text = std::string(EXAMPLES) + "\n\nExit status:";
    for (const ExitStatusMeaning& meaning : EXIT_STATUSES) {
        text += "\n  " + std::to_string(static_cast<int>(meaning.status)) + "  " + meaning.meaning;
    }
    return text;
}

struct KnownCommand {
    std::string_view name;
    void (*add)(Command app, ExitStatus& status);
};
// "help" comes last, as it shows all others.
constexpr KnownCommand COMMANDS[] = {
    {"detect", AddDetectCommand},
    {"explain", AddExplainCommand},
    {"query", AddQueryCommand},
    {"repair", AddRepairCommand},
    {"report", AddReportCommand},
    {"sweep", AddSweepCommand},
    {"results", AddResultsCommand},
    {"graph", AddGraphCommand},
    {"lint", AddLintCommand},
    {"rules", AddRulesCommand},
    {"test", AddTestCommand},
    {"log", AddLogCommand},
    {"compare", AddCompareCommand},
    {"bundle", AddBundleCommand},
    {"help", AddHelpCommand},
};

// Adds only the command that the line begins with, if there is one: setting up the options of all commands takes a
// tenth of the time of a small detection.
void AddCommands(Command app, ExitStatus& status, std::string_view firstWord)
{
    const auto help = std::prev(std::end(COMMANDS));
    const auto named = std::find_if(std::begin(COMMANDS), help,
        [firstWord](const KnownCommand& command) { return command.name == firstWord; });
    if (named != help) {
        named->add(app, status);
        return;
    }
    for (const KnownCommand& command : COMMANDS) {
        command.add(app, status);
    }
}

void AddColourEverywhere(Command app)
{
    const std::vector<Command> commands = app.Commands();
    if (commands.empty()) {
        AddColour(app);
    }
    for (const Command& command : commands) {
        AddColourEverywhere(command);
    }
}

// The width of help that is printed to a pipe or a file.
constexpr std::size_t WIDTH_WITHOUT_TERMINAL = 80;

/// Wraps the lines of a help at the width of the terminal.
class TerminalFormatter : public CLI::Formatter {
public:
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override
    {
        const std::string help = CLI::Formatter::make_help(app, std::move(name), mode);
        return WrapHelp(help, TerminalWidth().value_or(WIDTH_WITHOUT_TERMINAL));
    }
};

ExitStatus WrongUse(const std::string& words, const std::string& message)
{
    PrintError(message);
    std::cerr << "Try '" << words << " --help'.\n";
    return ExitStatus::WRONG_USE;
}

/// The command that the line names, as far as its words are known: "arborist log" for "log improt".
struct NamedCommand {
    CLI::App* app;
    std::string words;
    /// Index of the first argument behind its words.
    int next;
};

NamedCommand DeepestCommand(CLI::App& app, int argc, const char* const* argv)
{
    NamedCommand named{&app, app.get_name(), 1};
    for (; named.next < argc; ++named.next) {
        try {
            named.app = named.app->get_subcommand(argv[named.next]);
            named.words += " " + named.app->get_name();
        } catch (const CLI::OptionNotFound&) {
            break;
        }
    }
    return named;
}

// The first long option that the command doesn't have; empty if it has all of them.
std::string UnknownOption(const NamedCommand& named, int argc, const char* const* argv)
{
    for (int i = named.next; i < argc && std::string(argv[i]) != "--"; ++i) {
        const std::string option = std::string(argv[i]).substr(0, std::string(argv[i]).find('='));
        if (option.rfind("--", 0) == 0 && named.app->get_option_no_throw(option) == nullptr) {
            return option;
        }
    }
    return "";
}

std::vector<std::string> LongOptions(const CLI::App& app)
{
    std::vector<std::string> options;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            options.push_back("--" + name);
        }
    }
    return options;
}

ExitStatus ReportParseError(CLI::App& app, const CLI::ParseError& error, int argc, const char* const* argv)
{
    const NamedCommand named = DeepestCommand(app, argc, argv);
    const std::vector<std::string> names = CommandNames(Command(*named.app));
    if (named.next < argc && argv[named.next][0] != '-' && !names.empty()) {
        const std::string word = argv[named.next];
        return WrongUse(named.words, "no such command: " + word + DidYouMean(word, names));
    }
    const std::string option = UnknownOption(named, argc, argv);
    return WrongUse(named.words,
        option.empty() ? error.what() : "no such option: " + option + DidYouMean(option, LongOptions(*named.app)));
}

ExitStatus Parse(CLI::App& app, const ExitStatus& status, int argc, const char* const* argv)
{
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& request) {
        app.exit(request, std::cout, std::cerr); // --help, --version
    } catch (const CLI::ParseError& error) {
        return ReportParseError(app, error, argc, argv);
    }
    return status;
}

// True for --version with --json, the only option that another one changes.
bool AsksForVersions(int argc, const char* const* argv)
{
    const auto has = [argc, argv](const char* option) { return std::count(argv, argv + argc, std::string(option)) == 1; };
    return argc == 3 && (has("--version") || has("-V")) && has("--json");
}

} // namespace

ExitStatus RunCommandLine(int argc, const char* const* argv)
{
    KeepStandardStreams();
    try {
        CLI::App app(DESCRIPTION, "arborist");
        app.allow_windows_style_options(false); // there, "/x" is a path, too
        app.formatter(std::make_shared<TerminalFormatter>());
        app.set_version_flag("-V,--version", "arborist " ARBORIST_VERSION,
            "Show the version; with --json behind it, those of the libraries, too");
        app.footer(Footer());
        app.require_subcommand(1);
        ExitStatus status = ExitStatus::SUCCESS;
        AddCommands(Command(app), status, argc > 1 ? argv[1] : "");
        AddColourEverywhere(Command(app));
        if (AsksForVersions(argc, argv)) {
            PrintResult(VersionsJson() + "\n");
            return FinishOutput(status);
        }
        status = Parse(app, status, argc, argv);
        return FinishOutput(status);
    } catch (const std::exception& error) {
        PrintError(std::string("internal error: ") + error.what());
    } catch (...) {
        PrintError("internal error");
    }
    return ExitStatus::INTERNAL;
}

} // namespace diagnosis::command
