#include "tools/arborist/terminal/console.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace diagnosis::command {

namespace {

// Consoles understand the escapes of colours and of the progress line only if they are asked to.
void TakeEscapes(DWORD stream)
{
    const HANDLE console = GetStdHandle(stream);
    DWORD mode = 0;
    if (GetConsoleMode(console, &mode) != 0) {
        SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
        SetConsoleOutputCP(CP_UTF8);
    }
}

} // namespace

void KeepStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        _setmode(stream, _O_BINARY);
    }
    TakeEscapes(STD_OUTPUT_HANDLE);
    TakeEscapes(STD_ERROR_HANDLE);
}

std::optional<std::size_t> TerminalWidth()
{
    CONSOLE_SCREEN_BUFFER_INFO screen;
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &screen) == 0) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(screen.srWindow.Right - screen.srWindow.Left + 1);
}

std::FILE* OpenLineByLine(const std::string& path)
{
    std::FILE* file = std::fopen(path.c_str(), "wbN"); // "N": not inherited
    if (file != nullptr) {
        std::setvbuf(file, nullptr, _IONBF, 0); // there is no buffer of lines
    }
    return file;
}

} // namespace diagnosis::command
