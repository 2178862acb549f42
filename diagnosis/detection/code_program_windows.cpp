#include "diagnosis/detection/code_program.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <system_error>

#include <strings.h>

#include "diagnosis/process/child_windows.h"
#include "diagnosis/process/interruption.h"
#include "diagnosis/text/in_seconds.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

constexpr char ENDING[] = ".exe";

ProgramOutcome Trouble(const std::string& trouble)
{
    ProgramOutcome outcome;
    outcome.trouble = trouble;
    return outcome;
}

ProgramOutcome CannotBeStarted(DWORD error)
{
    return Trouble("can't be started: " + std::system_category().message(static_cast<int>(error)));
}

bool IsFile(const fs::path& path)
{
    std::error_code error;
    return fs::is_regular_file(path, error);
}

} // namespace

// Only worker processes have such a place.
void NoteProgramGroup(std::atomic<pid_t>*) {}

std::string FindProgram(const std::string& name)
{
    std::error_code error;
    const std::string file = fs::path(name).has_extension() ? name : name + ENDING;
    if (name.find_first_of("/\\:") == std::string::npos) {
        const char* path = std::getenv("PATH");
        std::istringstream folders(path == nullptr ? "" : path);
        for (std::string folder; std::getline(folders, folder, ';');) {
            const fs::path candidate = fs::absolute(fs::path(folder.empty() ? "." : folder) / file, error);
            if (IsFile(candidate)) {
                return candidate.generic_string();
            }
        }
    }
    return fs::absolute(IsFile(name) ? name : file, error).generic_string();
}

std::optional<std::string> ProgramProblem(const std::string& path)
{
    std::error_code error;
    if (!fs::exists(path, error)) {
        return std::strerror(ENOENT);
    }
    if (!IsFile(path)) {
        return "is no file";
    }
    const bool isProgram = strcasecmp(fs::path(path).extension().string().c_str(), ENDING) == 0;
    return isProgram ? std::nullopt : std::optional<std::string>("is no .exe, and Windows starts no scripts");
}

ProgramOutcome RunProgram(const std::string& path, const std::string& input, std::chrono::milliseconds timeout)
{
    const StreamFile file;
    if (!file.IsOpen() || !file.Fill(input)) {
        return CannotBeStarted(GetLastError());
    }
    Interruption interruption;
    ChildProcess program;
    if (const DWORD error = program.Start(path, "\"" + path + "\"", file.Get(), GetStdHandle(STD_ERROR_HANDLE))) {
        return CannotBeStarted(error);
    }
    interruption.Kill(static_cast<pid_t>(program.Number()));
    if (!program.Wait(timeout)) {
        return Trouble("ran longer than " + InSeconds(timeout) + " and was killed");
    }
    ProgramOutcome outcome;
    outcome.kind = ProgramOutcome::Kind::EXITED;
    outcome.exitStatus = static_cast<int>(program.ExitStatus());
    return outcome;
}

} // namespace diagnosis
