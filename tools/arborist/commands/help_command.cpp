#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>

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
        PrintError((folder / ManPageName(command)).generic_string() + ": can't be written");
        return false;
    }
    for (const CommandReference& below : command.commands) {
        if (!WritePages(below, folder)) {
            return false;
        }
    }
    return true;
}

ExitStatus Help(Command root, const HelpOptions& options)
{
    if (!options.folder.empty()) {
        return WritePages(MakeReference(root, root.Name()), options.folder) ? ExitStatus::SUCCESS
                                                                                : ExitStatus::WRONG_USE;
    }
    Command named = root;
    std::string words = root.Name();
    for (const std::string& word : options.words) {
        const std::vector<std::string> names = CommandNames(named);
        const auto found = std::find(names.begin(), names.end(), word);
        if (found == names.end()) {
            PrintError("no such command: " + words + " " + word + DidYouMean(word, names));
            return ExitStatus::WRONG_USE;
        }
        named = named.Commands()[static_cast<std::size_t>(found - names.begin())];
        words += " " + word;
    }
    PrintResult(options.asMan ? ManPage(MakeReference(named, words)) : named.Help());
    return ExitStatus::SUCCESS;
}

} // namespace

void AddHelpCommand(Command app, ExitStatus& status)
{
    auto options = std::make_shared<HelpOptions>();
    Command help = app.AddCommand("help", "Show the help of a command, or its man page");
    help.Add("COMMAND", options->words, "Words of the command; none for arborist itself");
    help.AddFlag("--man", options->asMan, "Print the man page");
    help.Add("--man-to", options->folder, "Write the man pages of all commands into this folder")
        .Takes("DIR");
    help.Footer("Examples:\n  arborist help log import\n  arborist help --man detect | man -l -");
    help.OnCall([options, app, &status] { status = Help(app, *options); });

    Command completion = app.AddCommand("completion", "Print the completion script of a shell");
    completion.Add("SHELL", options->shell, "bash, zsh or fish").Required()
        .OneOf({"bash", "zsh", "fish"});
    completion.Footer("Examples:\n  source <(arborist completion bash)\n"
                       "  arborist completion fish > ~/.config/fish/completions/arborist.fish");
    completion.OnCall([options, app, &status] {
        PrintResult(Completion(MakeReference(app, app.Name()), options->shell));
        status = ExitStatus::SUCCESS;
    });
}

} // namespace diagnosis::command
