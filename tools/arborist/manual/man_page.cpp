#include <algorithm>
#include <sstream>

#include "tools/arborist/manual/exit_statuses.h"
#include "tools/arborist/manual/reference.h"

namespace diagnosis::command {

namespace {

// Escapes a text for the formatter, so that no character of it is read as a request, an escape or a typographic hyphen.
std::string Escaped(const std::string& text)
{
    std::string escaped;
    bool isLineStart = true;
    for (const char letter : text) {
        if (isLineStart && (letter == '.' || letter == '\'')) {
            escaped += "\\&";
        }
        escaped += letter == '\\' ? "\\e" : letter == '-' ? "\\-" : std::string(1, letter);
        isLineStart = letter == '\n';
    }
    return escaped;
}

std::string Bold(const std::string& text)
{
    return "\\fB" + Escaped(text) + "\\fR";
}

std::string Italic(const std::string& text)
{
    return "\\fI" + Escaped(text) + "\\fR";
}

std::string Dashed(std::string words)
{
    std::replace(words.begin(), words.end(), ' ', '-');
    return words;
}

std::string OptionHead(const OptionReference& option)
{
    std::string head;
    for (const std::string& name : option.names) {
        head += (head.empty() ? "" : ", ") + Bold(name);
    }
    return option.value.empty() ? head : head + " " + Italic(option.value);
}

// True for a command that can also read a list of bundles: its synopsis has two forms.
bool TakesBatch(const CommandReference& command)
{
    return std::any_of(command.options.begin(), command.options.end(), [](const OptionReference& option) {
        return option.names.back() == "--batch";
    });
}

std::string Synopsis(const CommandReference& command)
{
    const std::string start = Bold(command.words) + " [" + Italic("OPTION") + "]...";
    std::string text = ".SH SYNOPSIS\n" + start;
    for (const OptionReference& argument : command.arguments) {
        text += " " + Italic(argument.names.front());
    }
    text += command.commands.empty() ? "\n" : " " + Italic("COMMAND") + "\n";
    return TakesBatch(command) ? text + ".br\n" + start + " " + Bold("--batch") + " " + Italic("LIST") + "\n" : text;
}

std::string Items(const std::string& title, const std::vector<OptionReference>& items)
{
    std::string text = items.empty() ? "" : ".SH " + title + "\n";
    for (const OptionReference& item : items) {
        text += ".TP\n" + OptionHead(item) + "\n" + Escaped(item.description) + "\n";
    }
    return text;
}

std::string Commands(const CommandReference& command)
{
    std::string text = command.commands.empty() ? "" : ".SH COMMANDS\n";
    for (const CommandReference& below : command.commands) {
        text += ".TP\n" + Bold(below.words) + "\n" + Escaped(below.description) + "\n";
    }
    return text;
}

// A footer split into examples, from a line "Examples:" or "Example:" up to the next empty line, and notes, which are
// the rest. Leaves out the exit statuses of the main help, which have a section of their own.
struct Footer {
    std::string notes;
    std::string examples;
};

Footer SplitFooter(const std::string& footer)
{
    std::istringstream lines(footer);
    Footer split;
    std::string* part = &split.notes;
    std::string exitStatuses;
    for (std::string line; std::getline(lines, line);) {
        if (line == "Examples:" || line == "Example:") {
            part = &split.examples;
        } else if (line == "Exit status:") {
            part = &exitStatuses;
        } else if (!line.empty()) {
            *part += line + "\n";
        }
    }
    return split;
}

// Keeps the lines unchanged, as they are commands and their input.
std::string AsWritten(const std::string& title, const std::string& lines)
{
    return lines.empty() ? "" : ".SH " + title + "\n.nf\n" + Escaped(lines) + ".fi\n";
}

struct Item {
    const char* name;
    const char* meaning;
};

constexpr Item ENVIRONMENT[] = {
    {"TMPDIR", "Folder of the scratch folders; /tmp unless set."},
    {"TZ", "Time zone of local times where neither --tz nor the bundle names one."},
    {"TZDIR", "Folder of the time zone database; /usr/share/zoneinfo unless set."},
    {"NO_COLOR", "If not empty, texts have no colours unless --color=always is given."},
    {"PATH", "Searched for the program of --code-runner and for dot."},
};

constexpr Item FILES[] = {
    {"bundle.json", "Describes the bundle whose folder holds it: device, scene, tag, moment and settings."},
    {"rules/FaultTrees.xml, rules/FaultTreeRules.xml", "The rule set of a bundle."},
    {"programdata/Comms/Lumbra/workDir/0/log.db", "The event log of a bundle, a SQLite database."},
    {"programdata/Comms/Lumbra/zxdetectrepair/databases/repair_record.db", "The repair records of a bundle."},
};

template <std::size_t COUNT>
std::string Section(const std::string& title, const Item (&items)[COUNT])
{
    std::string text = ".SH " + title + "\n";
    for (const Item& item : items) {
        text += ".TP\n" + Bold(item.name) + "\n" + Escaped(item.meaning) + "\n";
    }
    return text;
}

std::string ExitStatuses()
{
    std::string text = ".SH EXIT STATUS\n";
    for (const ExitStatusMeaning& meaning : EXIT_STATUSES) {
        text += ".TP\n" + Bold(std::to_string(static_cast<int>(meaning.status))) + "\n" + Escaped(meaning.meaning) + "\n";
    }
    return text;
}

std::string Description(const CommandReference& command, const std::string& notes)
{
    return ".SH DESCRIPTION\n" + Escaped(command.description) + ".\n"
        + (notes.empty() ? "" : ".PP\n.nf\n" + Escaped(notes) + ".fi\n");
}

std::string SeeAlso(const CommandReference& command)
{
    std::string pages;
    for (const CommandReference& below : command.commands) {
        pages += (pages.empty() ? "" : ",\n") + Bold(Dashed(below.words)) + "(1)";
    }
    const auto lastWord = command.words.rfind(' ');
    if (pages.empty() && lastWord != std::string::npos) {
        pages = Bold(Dashed(command.words.substr(0, lastWord))) + "(1)";
    }
    return pages.empty() ? "" : ".SH SEE ALSO\n" + pages + "\n";
}

} // namespace

std::string ManPageName(const CommandReference& command)
{
    return Dashed(command.words) + ".1";
}

std::string ManPage(const CommandReference& command)
{
    const Footer footer = SplitFooter(command.footer);
    const std::string name = Escaped(Dashed(command.words));
    return ".TH \"" + name + "\" 1 \"\" \"arborist\" \"User Commands\"\n"
        + ".SH NAME\n" + name + " \\- " + Escaped(command.description) + "\n"
        + Synopsis(command) + Description(command, footer.notes) + Commands(command)
        + Items("ARGUMENTS", command.arguments) + Items("OPTIONS", command.options) + ExitStatuses()
        + Section("ENVIRONMENT", ENVIRONMENT) + Section("FILES", FILES) + AsWritten("EXAMPLES", footer.examples)
        + SeeAlso(command);
}

} // namespace diagnosis::command
