#include "diagnosis/drawing/dot_program.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

// NOLINTNEXTLINE(readability-redundant-declaration): not every system's header has it
extern char** environ;

namespace diagnosis {

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, FileCloser>;

// Files instead of pipes, so that neither process waits for the other.
bool Fill(std::FILE* file, const std::string& text)
{
    return std::fwrite(text.data(), 1, text.size(), file) == text.size() && std::fflush(file) == 0
        && lseek(fileno(file), 0, SEEK_SET) == 0;
}

std::string Content(std::FILE* file)
{
    std::string content;
    char buffer[65536];
    std::rewind(file);
    for (std::size_t length = 0; (length = std::fread(buffer, 1, sizeof buffer, file)) > 0;) {
        content.append(buffer, length);
    }
    return content;
}

// Returns 0, or the error number if the program could not be started.
int Start(std::FILE* input, std::FILE* output, pid_t& child)
{
    char name[] = "dot";
    char format[] = "-Tsvg";
    char* const arguments[] = {name, format, nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fileno(input), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fileno(output), STDOUT_FILENO);
    const int error = posix_spawnp(&child, name, &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

} // namespace

DotRun RunDot(const std::string& graph, std::string& svg)
{
    const File input(std::tmpfile());
    const File output(std::tmpfile());
    if (input == nullptr || output == nullptr || !Fill(input.get(), graph)) {
        return {true, std::strerror(errno)};
    }
    pid_t child = 0;
    const int error = Start(input.get(), output.get(), child);
    if (error != 0) {
        return {error != ENOENT, std::strerror(error)};
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        return {true, WIFEXITED(status) ? "exit status " + std::to_string(WEXITSTATUS(status)) : "it was killed"};
    }
    svg = Content(output.get());
    return {};
}

} // namespace diagnosis
