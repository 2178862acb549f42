#include <functional>

#include "tools/arborist/manual/reference.h"

namespace diagnosis::command {

namespace {

std::string Names(const std::vector<OptionReference>& options)
{
    std::string words;
    for (const OptionReference& option : options) {
        for (const std::string& name : option.names) {
            words += (words.empty() ? "" : " ") + name;
        }
    }
    return words;
}

std::string LastWord(const std::string& words)
{
    return words.substr(words.rfind(' ') + 1);
}

std::string Joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

std::string CommandNames(const CommandReference& command)
{
    std::vector<std::string> names;
    for (const CommandReference& below : command.commands) {
        names.push_back(LastWord(below.words));
    }
    return Joined(names);
}

// The words that may follow a command: its subcommands, or the choices of an argument.
std::string NextWords(const CommandReference& command)
{
    std::string words = CommandNames(command);
    for (const OptionReference& argument : command.arguments) {
        words += Joined(argument.choices);
    }
    return words;
}

using Visitor = std::function<void(const CommandReference& command)>;

void Visit(const CommandReference& command, const Visitor& visitor)
{
    visitor(command);
    for (const CommandReference& below : command.commands) {
        Visit(below, visitor);
    }
}

// Escapes a text for use between single quotes of a shell.
std::string Quoted(const std::string& text)
{
    std::string quoted = "'";
    for (const char letter : text) {
        quoted += letter == '\'' ? "'\\''" : std::string(1, letter == '\n' ? ' ' : letter);
    }
    return quoted + "'";
}

// The cases of a shell script for options with a choice of words: the option after its command, and the words.
std::string ChoiceCases(const CommandReference& root, const std::string& open, const std::string& close)
{
    std::string lines;
    Visit(root, [&](const CommandReference& command) {
        for (const OptionReference& option : command.options) {
            for (const std::string& name : option.names) {
                lines += option.choices.empty() ? "" : "    " + Quoted(command.words + " " + name) + ") values=" + open
                        + Joined(option.choices) + close + " ;;\n";
            }
        }
    });
    return lines;
}

// The cases for commands: the options and the words that may follow.
std::string CommandCases(const CommandReference& root, const std::string& open, const std::string& close)
{
    std::string lines;
    Visit(root, [&](const CommandReference& command) {
        lines += "    " + Quoted(command.words) + ") options=" + open + Names(command.options) + close + " commands="
            + open + NextWords(command) + close + " ;;\n";
    });
    return lines;
}

// A pattern that any command matches.
std::string AnyCommand(const CommandReference& root)
{
    std::string commands;
    Visit(root, [&commands](const CommandReference& command) { commands += "|" + Quoted(command.words); });
    return commands.substr(1);
}

// The words up to the cursor select a command; the script completes its options, subcommands and files.
std::string Bash(const CommandReference& root)
{
    return "# Completion for arborist: made by \"arborist completion bash\".\n"
           "_arborist() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}\n"
           "    local words=arborist options= commands= values= word\n"
           "    if [[ $current == = ]]; then\n" // "--color=al" arrives as three words
           "        current=\n"
           "    elif [[ $previous == = ]]; then\n"
           "        previous=${COMP_WORDS[COMP_CWORD-2]}\n"
           "    fi\n"
           "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
           "        case \"$words $word\" in\n"
           "        " + AnyCommand(root) + ") words=\"$words $word\" ;;\n"
           "        esac\n"
           "    done\n"
           "    case \"$words\" in\n" + CommandCases(root, "'", "'") + "    esac\n"
           "    case \"$words $previous\" in\n" + ChoiceCases(root, "'", "'") + "    esac\n"
           "    if [[ -n $values ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W \"$values\" -- \"$current\")\n"
           "    elif [[ $current == -* ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W \"$options\" -- \"$current\")\n"
           "    elif [[ -n $commands ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W \"$commands\" -- \"$current\")\n"
           "    else\n"
           "        mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n"
           "    fi\n"
           "}\n"
           "complete -o filenames -F _arborist arborist\n";
}

std::string Zsh(const CommandReference& root)
{
    return "#compdef arborist\n"
           "# Completion for arborist: made by \"arborist completion zsh\".\n"
           "_arborist() {\n"
           "    local current=${words[CURRENT]} previous=${words[CURRENT-1]} path_words=arborist word\n"
           "    local -a options commands values\n"
           "    for word in \"${(@)words[2,CURRENT-1]}\"; do\n"
           "        case \"$path_words $word\" in\n"
           "        (" + AnyCommand(root) + ") path_words=\"$path_words $word\" ;;\n"
           "        esac\n"
           "    done\n"
           "    case \"$path_words\" in\n" + CommandCases(root, "(", ")") + "    esac\n"
           "    case \"$path_words $previous\" in\n" + ChoiceCases(root, "(", ")") + "    esac\n"
           "    if (( $#values )); then\n"
           "        compadd -- $values\n"
           "    elif [[ $current == -* ]]; then\n"
           "        compadd -- $options\n"
           "    elif (( $#commands )); then\n"
           "        compadd -- $commands\n"
           "    else\n"
           "        _files\n"
           "    fi\n"
           "}\n"
           "_arborist \"$@\"\n";
}

// A command is selected if the line has all its words and none of a subcommand.
std::string FishCondition(const CommandReference& command)
{
    std::string condition;
    const std::string& words = command.words;
    for (auto at = words.find(' '); at != std::string::npos; at = words.find(' ', at + 1)) {
        const std::string word = words.substr(at + 1, words.find(' ', at + 1) - at - 1);
        condition += (condition.empty() ? "" : "; and ") + ("__fish_seen_subcommand_from " + word);
    }
    if (!command.commands.empty()) {
        condition += (condition.empty() ? "" : "; and ")
            + ("not __fish_seen_subcommand_from " + CommandNames(command));
    }
    return Quoted(condition);
}

std::string FishOption(const CommandReference& command, const OptionReference& option)
{
    std::string line = "complete -c arborist -n " + FishCondition(command);
    for (const std::string& name : option.names) {
        line += name.compare(0, 2, "--") == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    const std::string value = option.value.empty() ? ""
        : option.choices.empty()                   ? " -r"
                                                   : " -x -a " + Quoted(Joined(option.choices));
    return line + value + " -d " + Quoted(option.description) + "\n";
}

std::string Fish(const CommandReference& root)
{
    std::string text = "# Completion for arborist: made by \"arborist completion fish\".\n";
    Visit(root, [&text](const CommandReference& command) {
        for (const CommandReference& below : command.commands) {
            text += "complete -c arborist -f -n " + FishCondition(command) + " -a " + LastWord(below.words) + " -d "
                + Quoted(below.description) + "\n";
        }
        for (const OptionReference& argument : command.arguments) {
            text += argument.choices.empty() ? "" : "complete -c arborist -f -n " + FishCondition(command) + " -a "
                    + Quoted(Joined(argument.choices)) + "\n";
        }
        for (const OptionReference& option : command.options) {
            text += FishOption(command, option);
        }
    });
    return text;
}

} // namespace

std::string Completion(const CommandReference& root, const std::string& shell)
{
    return shell == "bash" ? Bash(root) : shell == "zsh" ? Zsh(root) : Fish(root);
}

} // namespace diagnosis::command
