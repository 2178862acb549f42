#include <algorithm>
#include <filesystem>
#include <fstream>

#include <CLI/CLI.hpp>

#include "diagnosis/text/near_match.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/manual/reference.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

struct HelpOptions {
    std::vector<std::string> words;
    bool asMan = false;
    std::string folder;
    std::string shell;
};

bool WritePages(const CommandReference& command, const std::filesystem::path& folder)
{
    std::ofstream file(folder / ManPageName(command), std::ios::binary);
    file << ManPage(command);
    file.close();
    if (!file) {
        PrintError((folder / ManPageName(command)).string() + ": can't be written");
        return false;
    }
    for (const CommandReference& below : command.commands) {
        if (!WritePages(below, folder)) {
            return false;
        }
    }
    return true;
}

ExitStatus Help(CLI::App& root, const HelpOptions& options)
{
    if (!options.folder.empty()) {
        return WritePages(MakeReference(root, root.get_name()), options.folder) ? ExitStatus::SUCCESS
                                                                                : ExitStatus::WRONG_USE;
    }
    CLI::App* named = &root;
    std::string words = root.get_name();
    for (const std::string& word : options.words) {
        std::vector<std::string> names;
        for (const CLI::App* command : named->get_subcommands([](const CLI::App*) { return true; })) {
            names.push_back(command->get_name());
        }
        if (std::find(names.begin(), names.end(), word) == names.end()) {
            PrintError("no such command: " + words + " " + word + DidYouMean(word, names));
            return ExitStatus::WRONG_USE;
        }
        named = named->get_subcommand(word);
        words += " " + word;
    }
    PrintResult(options.asMan ? ManPage(MakeReference(*named, words)) : named->help("", CLI::AppFormatMode::Sub));
    return ExitStatus::SUCCESS;
}

} // namespace

void AddHelpCommand(CLI::App& app, ExitStatus& status)
{
    auto options = std::make_shared<HelpOptions>();
    CLI::App* help = app.add_subcommand("help", "Show the help of a command, or its man page");
    help->add_option("COMMAND", options->words, "Words of the command; none for arborist itself");
    help->add_flag("--man", options->asMan, "Print the man page");
    help->add_option("--man-to", options->folder, "Write the man pages of all commands into this folder")
        ->type_name("DIR");
    help->footer("Examples:\n  arborist help log import\n  arborist help --man detect | man -l -");
    help->callback([options, &app, &status] { status = Help(app, *options); });

    CLI::App* completion = app.add_subcommand("completion", "Print the completion script of a shell");
    completion->add_option("SHELL", options->shell, "bash, zsh or fish")->required()
        ->check(CLI::IsMember({"bash", "zsh", "fish"}));
    completion->footer("Examples:\n  source <(arborist completion bash)\n"
                       "  arborist completion fish > ~/.config/fish/completions/arborist.fish");
    completion->callback([options, &app, &status] {
        PrintResult(Completion(MakeReference(app, app.get_name()), options->shell));
        status = ExitStatus::SUCCESS;
    });
}

} // namespace diagnosis::command
