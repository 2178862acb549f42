#include <algorithm>
#include <sstream>

#include "tools/arborist/manual/reference.h"

namespace diagnosis::command {

namespace {

// Text for the formatter: no character of it is a request, an escape or a hyphen of typography.
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

std::string Synopsis(const CommandReference& command)
{
    std::string text = ".SH SYNOPSIS\n" + Bold(command.words) + " [" + Italic("OPTION") + "]...";
    for (const OptionReference& argument : command.arguments) {
        text += " " + Italic(argument.names.front());
    }
    return text + (command.commands.empty() ? "" : " " + Italic("COMMAND")) + "\n";
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

// Lines stand as they were written: examples are among them.
std::string Notes(const std::string& footer)
{
    return footer.empty() ? "" : ".SH NOTES\n.nf\n" + Escaped(footer) + "\n.fi\n";
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
    return ".TH \"" + Escaped(Dashed(command.words)) + "\" 1 \"\" \"arborist\" \"User Commands\"\n"
        + ".SH NAME\n" + Escaped(Dashed(command.words)) + " \\- " + Escaped(command.description) + "\n"
        + Synopsis(command) + Commands(command) + Items("ARGUMENTS", command.arguments)
        + Items("OPTIONS", command.options) + Notes(command.footer) + SeeAlso(command);
}

} // namespace diagnosis::command
