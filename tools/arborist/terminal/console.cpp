#include "tools/arborist/terminal/console.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace diagnosis::command {

void KeepStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) {
            // Opening takes the lowest free number, which is this one. The mode is the opposite one, so that using the
            // stream fails.
            [[maybe_unused]] const int opened = open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

std::optional<std::size_t> TerminalWidth()
{
    winsize size = {};
    if (isatty(STDOUT_FILENO) != 1 || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) {
        return std::nullopt;
    }
    return size.ws_col;
}

std::FILE* OpenLineByLine(const std::string& path)
{
    std::FILE* file = std::fopen(path.c_str(), "we");
    if (file != nullptr) {
        std::setvbuf(file, nullptr, _IOLBF, BUFSIZ);
    }
    return file;
}

} // namespace diagnosis::command
