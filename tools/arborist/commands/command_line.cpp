#include "tools/arborist/commands/command_line.h"

#include <exception>
#include <iostream>

#include <CLI/CLI.hpp>

#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/output.h"
#include "tools/arborist/commands/versions.h"
#include "tools/arborist/text/near_match.h"

namespace command {

namespace {

constexpr char DESCRIPTION[] = "Diagnoses a device with fault trees.";
constexpr char EXIT_STATUSES[] =
    "Exit status: 0 everything was done, fault or not; 1 a fault was found and --fail-on-fault was given; 2 wrong use;\n"
    "3 a rule set could not be used; 4 other input could not be used; 5 an internal error or a limit.";

ExitStatus WrongUse(const CLI::App& app, const std::string& message)
{
    PrintError(message);
    std::cerr << "Try '" << app.get_name() << " --help'.\n";
    return ExitStatus::WRONG_USE;
}

std::vector<std::string> CommandNames(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* subcommand : app.get_subcommands([](const CLI::App*) { return true; })) {
        names.push_back(subcommand->get_name());
    }
    return names;
}

// The command that the words name as far as they name one: "arborist log" for "log improt".
const CLI::App* DeepestCommand(const CLI::App& app, int argc, const char* const* argv, int& next)
{
    const CLI::App* deepest = &app;
    for (next = 1; next < argc; ++next) {
        try {
            deepest = deepest->get_subcommand(argv[next]);
        } catch (const CLI::OptionNotFound&) {
            break;
        }
    }
    return deepest;
}

ExitStatus ReportParseError(const CLI::App& app, const CLI::ParseError& error, int argc, const char* const* argv)
{
    int next = 0;
    const CLI::App* deepest = DeepestCommand(app, argc, argv, next);
    const std::vector<std::string> names = CommandNames(*deepest);
    if (next < argc && argv[next][0] != '-' && !names.empty()) {
        return WrongUse(*deepest, "no such command: " + std::string(argv[next]) + DidYouMean(argv[next], names));
    }
    return WrongUse(*deepest, error.what());
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

// The one option that another one changes.
bool AsksForVersions(int argc, const char* const* argv)
{
    return argc == 3 && std::string(argv[1]) == "--version" && std::string(argv[2]) == "--json";
}

} // namespace

ExitStatus RunCommandLine(int argc, const char* const* argv)
{
    try {
        CLI::App app(DESCRIPTION, "arborist");
        app.set_version_flag("--version", "arborist " ARBORIST_VERSION,
            "Show the version; with --json behind it, those of the libraries, too");
        app.footer(EXIT_STATUSES);
        app.require_subcommand(1);
        ExitStatus status = ExitStatus::SUCCESS;
        AddDetectCommand(app, status);
        AddExplainCommand(app, status);
        AddQueryCommand(app, status);
        AddRepairCommand(app, status);
        AddReportCommand(app, status);
        AddGraphCommand(app, status);
        AddLogCommand(app, status);
        AddBundleCommand(app, status);
        AddHelpCommand(app, status);
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

} // namespace command
