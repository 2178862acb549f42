#include "tools/arborist/render/lint_text.h"

#include <set>
#include <sstream>

#include "diagnosis/lint/registry.h"
#include "diagnosis/text/markup.h"
#include "diagnosis/text/printable.h"
#include "tools/arborist/terminal/colour.h"

namespace diagnosis::command {

namespace {

using lint::Check;
using lint::CheckClass;
using lint::Finding;
using lint::Severity;

constexpr std::size_t WIDTH = 100;

std::string ColouredSeverity(Severity severity, const Colour& colour)
{
    const std::string word = lint::SeverityWord(severity);
    return severity == Severity::ERROR ? colour.Red(word)
        : severity == Severity::WARNING ? colour.Yellow(word)
                                        : colour.Bold(word);
}

// Replaces tabs by single blanks, so that the caret is in the right column.
std::string OneColumnEach(std::string line)
{
    for (char& character : line) {
        character = character == '\t' ? ' ' : character;
    }
    return line;
}

// The line of the file and the caret below it. The caret is right only if each character takes one column.
std::string Frame(const Finding& finding, const Colour& colour)
{
    static constexpr std::size_t LONGEST = 160;
    const std::string shown = Printable(OneColumnEach(finding.source));
    if (finding.line == 0 || shown.empty() || shown.size() > LONGEST) {
        return "";
    }
    const std::string number = std::to_string(finding.line);
    const std::string margin(number.size(), ' ');
    std::string frame = colour.Faint(" " + number + " |") + " " + shown + "\n";
    if (finding.column > 0 && shown.size() == finding.source.size()) {
        frame += colour.Faint(" " + margin + " |") + " " + std::string(static_cast<std::size_t>(finding.column) - 1, ' ')
            + colour.Red(std::string(static_cast<std::size_t>(finding.columns), '^')) + "\n";
    }
    return frame;
}

std::string Note(const std::string& word, const std::string& text)
{
    std::string note;
    for (const std::string& line : Wrapped(text, WIDTH, 20)) {
        note += (note.empty() ? "   = " + word + ": " : std::string(word.size() + 7, ' ')) + line + "\n";
    }
    return note;
}

std::string FindingText(const Finding& finding, bool withNote, const Colour& colour)
{
    const std::string place =
        Printable(finding.file) + (finding.line > 0 ? ":" + std::to_string(finding.line) : "") + ": ";
    std::string text = colour.Bold(place) + ColouredSeverity(finding.check->severity, colour) + " "
        + colour.Bold(finding.check->id) + ": " + finding.check->title + "\n";
    for (const std::string& line : Wrapped(Printable(finding.message), WIDTH, 20)) {
        text += "  " + line + "\n";
    }
    text += Frame(finding, colour);
    text += finding.help.empty() ? "" : Note("help", finding.help);
    text += withNote ? Note("note", std::string("at run time ") + finding.check->atRunTime) : "";
    return text + "\n";
}

std::string Needs(CheckClass kind)
{
    return kind == CheckClass::DEVICE ? "  (with --device)" : kind == CheckClass::HOST ? "  (with --log or --device-root)" : "";
}

std::string Paragraph(const std::string& text, const std::string& indent)
{
    std::string paragraph;
    for (const std::string& line : Wrapped(text, WIDTH, 20)) {
        paragraph += indent + line + "\n";
    }
    return paragraph;
}

std::string SampleText(const std::string& what, const char* file, const char* sample)
{
    std::string text = "\n" + what + ", " + file + ":\n\n";
    std::istringstream lines(sample);
    for (std::string line; std::getline(lines, line);) {
        text += "    " + line + "\n";
    }
    return text;
}

} // namespace

std::string LintText(const lint::LintRun& run, bool isColoured)
{
    const Colour colour(isColoured);
    std::set<const Check*> told;
    std::string text;
    for (const Finding& finding : run.findings) {
        text += FindingText(finding, told.insert(finding.check).second, colour);
    }
    return text + CountsText(run) + "\n";
}

std::string CheckListText()
{
    std::string text;
    for (const Check* check : lint::AllChecks()) {
        std::string severity = lint::SeverityWord(check->severity);
        severity.resize(7, ' ');
        text += std::string(check->id) + "  " + severity + "  " + check->title + Needs(check->kind) + "\n";
    }
    return text;
}

std::string CheckText(const Check& check)
{
    std::string text = std::string(check.id) + " (" + lint::SeverityWord(check.severity) + "): " + check.title + "\n\n";
    text += Paragraph(check.finds, "") + "\n" + Paragraph(std::string("At run time ") + check.atRunTime + ".", "");
    if (const lint::Sample* sample = lint::FindSample(check.id)) {
        text += SampleText("Bad", sample->file, sample->bad) + SampleText("Good", sample->file, sample->good);
    }
    return text;
}

} // namespace diagnosis::command
