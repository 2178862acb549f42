#include "diagnosis/process/interruption.h"
#include "tools/arborist/commands/command_line.h"

int main(int argc, char** argv)
{
    const auto status = diagnosis::command::RunCommandLine(argc, argv);
    diagnosis::EndIfStoppedBySignal(); // as without a handler: the shell ends its loop, too
    return static_cast<int>(status);
}
