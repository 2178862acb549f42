#include "tools/arborist/commands/output.h"

#include <iostream>

#include "tools/arborist/text/printable.h"

namespace command {

void PrintResult(const std::string& text)
{
    std::cout << text << std::flush;
}

void PrintError(const std::string& message)
{
    std::cerr << "arborist: " + Printable(message) + "\n";
}

void PrintProblems(const std::string& about, const std::vector<Warning>& warnings, const Failure* failure)
{
    for (const Warning& warning : warnings) {
        PrintError(about + ": warning: " + warning.message);
    }
    if (failure != nullptr) {
        PrintError(about + ": " + failure->message + " [" + failure->code + "]");
    }
}

ExitStatus FinishOutput(ExitStatus status)
{
    std::cout.flush();
    if (std::cout.good()) {
        return status;
    }
    PrintError("standard output could not be written");
    return ExitStatus::INTERNAL;
}

} // namespace command
