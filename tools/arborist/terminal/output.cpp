#include "tools/arborist/terminal/output.h"

#include <iostream>

#include "diagnosis/text/printable.h"
#include "tools/arborist/terminal/colour.h"
#include "tools/arborist/terminal/library_log.h"

namespace diagnosis::command {

namespace {

// Messages about the bundle as a whole begin with its path anyway.
std::string About(const std::string& about, const std::string& message)
{
    return message.rfind(about + ": ", 0) == 0 ? message : about + ": " + message;
}

// Writes the line in one piece, as workers of a batch share the stream.
void PrintMessage(const std::string& line)
{
    std::cerr << "arborist: " + line + "\n";
}

} // namespace

void PrintResult(const std::string& text)
{
    std::cout << text << std::flush;
}

void PrintError(const std::string& message)
{
    PrintMessage(Printable(message));
}

void PrintProblems(const std::string& about, const std::vector<Warning>& warnings, const std::optional<Failure>& failure)
{
    const Colour colour(AreMessagesColoured());
    for (const Warning& warning : warnings) {
        const std::string id = warning.id.empty() ? "" : " [" + warning.id + "]";
        PrintMessage(Printable(about) + ": " + colour.Yellow("warning:") + " " + Printable(PlacedMessage(warning)) + id);
    }
    if (failure) {
        const std::string code = "[" + std::string(CodeWord(failure->code)) + "]";
        PrintMessage(Printable(About(about, failure->message)) + " " + colour.Red(code));
    }
}

ExitStatus FinishOutput(ExitStatus status)
{
    std::cout.flush();
    if (!std::cout.good()) {
        PrintError("standard output could not be written");
        status = ExitStatus::INTERNAL;
    }
    if (const auto problem = LibraryLogProblem()) {
        PrintError(*problem);
        status = ExitStatus::INTERNAL;
    }
    return status;
}

} // namespace diagnosis::command
