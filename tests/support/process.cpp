#include "tests/support/process.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>

#include <fcntl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, FileCloser>;

// Files instead of pipes, so that nothing can block, however much is written.
File TemporaryFile(const std::string& content)
{
    File file(std::tmpfile());
    if (file == nullptr || std::fwrite(content.data(), 1, content.size(), file.get()) != content.size()) {
        throw std::runtime_error("no temporary file");
    }
    std::rewind(file.get());
    return file;
}

std::string Content(std::FILE* file)
{
    std::string content;
    char piece[4096];
    std::rewind(file);
    for (std::size_t length = 0; (length = std::fread(piece, 1, sizeof piece, file)) > 0;) {
        content.append(piece, length);
    }
    return content;
}

[[noreturn]] void Become(const std::vector<std::string>& command, const ProcessSetup& setup, int in, int out, int err)
{
    dup2(in, STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    for (const auto& [name, value] : setup.environment) {
        setenv(name.c_str(), value.c_str(), 1);
    }
    std::vector<char*> arguments;
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    if (setup.directory.empty() || chdir(setup.directory.c_str()) == 0) {
        execvp(arguments[0], arguments.data());
    }
    std::fprintf(stderr, "%s: %s\n", arguments[0], std::strerror(errno));
    _exit(127);
}

pid_t Start(const std::vector<std::string>& command, const ProcessSetup& setup, int in, int out, int err)
{
    const pid_t child = fork();
    if (child == 0) {
        Become(command, setup, in, out, err);
    }
    if (child < 0) {
        throw std::runtime_error("can't run " + command[0]);
    }
    return child;
}

int StatusAtTheEndOf(pid_t child)
{
    int status = 0;
    if (waitpid(child, &status, 0) != child) {
        throw std::runtime_error("can't wait");
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

struct Descriptor {
    explicit Descriptor(int opened) : number(opened)
    {
        if (number < 0) {
            throw std::runtime_error("no terminal");
        }
    }
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    void Close()
    {
        if (number >= 0) {
            close(number);
        }
        number = -1;
    }

    int number;
};

// Ends when no process has the other side open any more.
std::string Received(int terminal)
{
    std::string text;
    char piece[4096];
    for (ssize_t length = 0; (length = read(terminal, piece, sizeof piece)) > 0 || (length < 0 && errno == EINTR);) {
        text.append(piece, length > 0 ? static_cast<std::size_t>(length) : 0);
    }
    return text;
}

} // namespace

ProcessResult RunProcess(const std::vector<std::string>& command, const ProcessSetup& setup)
{
    const File in = TemporaryFile(setup.input);
    const File out = TemporaryFile("");
    const File err = TemporaryFile("");
    const pid_t child = Start(command, setup, fileno(in.get()), fileno(out.get()), fileno(err.get()));
    const int status = StatusAtTheEndOf(child);
    return {status, Content(out.get()), Content(err.get())};
}

ProcessResult RunOnTerminal(const std::vector<std::string>& command, const ProcessSetup& setup)
{
    const File in = TemporaryFile(setup.input);
    const File err = TemporaryFile("");
    const Descriptor ours(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (grantpt(ours.number) != 0 || unlockpt(ours.number) != 0) {
        throw std::runtime_error("no terminal");
    }
    Descriptor theirs(open(ptsname(ours.number), O_RDWR | O_NOCTTY | O_CLOEXEC));
    termios mode{};
    tcgetattr(theirs.number, &mode);
    cfmakeraw(&mode);
    tcsetattr(theirs.number, TCSANOW, &mode);
    const pid_t child = Start(command, setup, fileno(in.get()), theirs.number, fileno(err.get()));
    theirs.Close();
    const std::string out = Received(ours.number);
    const int status = StatusAtTheEndOf(child);
    return {status, out, Content(err.get())};
}
