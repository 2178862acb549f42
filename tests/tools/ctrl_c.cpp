// Presses Ctrl-C on the console of another program.
//
//     ctrl_c PROCESS TIMES
#include <cstdlib>

#include <windows.h>

int main(int argc, char** argv)
{
    if (argc != 3) {
        return 2;
    }
    FreeConsole();
    if (AttachConsole(std::strtoul(argv[1], nullptr, 10)) == 0) {
        return 1;
    }
    SetConsoleCtrlHandler(nullptr, TRUE); // not for this program
    for (int times = std::atoi(argv[2]); times > 0; --times) {
        if (GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0) == 0) {
            return 1;
        }
    }
    return 0;
}
