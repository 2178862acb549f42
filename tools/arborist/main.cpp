#include "tools/arborist/commands/command_line.h"

int main(int argc, char** argv)
{
    return static_cast<int>(diagnosis::command::RunCommandLine(argc, argv));
}
