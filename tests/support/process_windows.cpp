#include "tests/support/process.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <windows.h>

namespace fs = std::filesystem;

namespace {

std::wstring Wide(const std::string& text)
{
    return fs::path(text).wstring(); // UTF-8
}

// As the C library of the program splits it again.
std::wstring Quoted(const std::wstring& argument)
{
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t letter : argument) {
        if (letter == L'"') {
            quoted.append(backslashes + 1, L'\\');
        }
        backslashes = letter == L'\\' ? backslashes + 1 : 0;
        quoted += letter;
    }
    return quoted.append(backslashes, L'\\') + L'"';
}

std::wstring CommandLine(const std::vector<std::string>& command)
{
    std::wstring line;
    for (const std::string& argument : command) {
        line += (line.empty() ? L"" : L" ") + Quoted(Wide(argument));
    }
    return line;
}

// The environment of the test with what the setup adds.
class Environment {
public:
    explicit Environment(const std::map<std::string, std::string>& added)
    {
        for (const auto& [name, value] : added) {
            const char* const before = std::getenv(name.c_str());
            mBefore[name] = before == nullptr ? "" : before;
            SetEnvironmentVariableW(Wide(name).c_str(), Wide(value).c_str());
        }
    }
    ~Environment()
    {
        for (const auto& [name, value] : mBefore) {
            SetEnvironmentVariableW(Wide(name).c_str(), value.empty() ? nullptr : Wide(value).c_str());
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    std::map<std::string, std::string> mBefore;
};

// A file that a program inherits as one of its standard streams, removed at the end.
class StreamFile {
public:
    explicit StreamFile(const std::string& content)
    {
        wchar_t name[MAX_PATH];
        GetTempFileNameW(fs::temp_directory_path().c_str(), L"arb", 0, name);
        mPath = name;
        std::ofstream(mPath, std::ios::binary) << content;
        SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
        mHandle = CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
            OPEN_EXISTING, 0, nullptr);
    }
    ~StreamFile()
    {
        CloseHandle(mHandle);
        std::error_code ignored;
        fs::remove(mPath, ignored);
    }
    StreamFile(const StreamFile&) = delete;
    StreamFile& operator=(const StreamFile&) = delete;

    HANDLE Get() const { return mHandle; }
    std::string Content() const
    {
        std::ifstream file(mPath, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

private:
    fs::path mPath;
    HANDLE mHandle = INVALID_HANDLE_VALUE;
};

ProcessResult Run(const std::vector<std::string>& command, const ProcessSetup& setup, DWORD flags,
    const std::function<void(unsigned long)>& meanwhile)
{
    const StreamFile in(setup.input);
    const StreamFile out("");
    const StreamFile err("");
    const Environment environment(setup.environment);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = in.Get();
    startup.hStdOutput = out.Get();
    startup.hStdError = err.Get();
    PROCESS_INFORMATION process{};
    std::wstring line = CommandLine(command);
    const std::wstring directory = Wide(setup.directory);
    if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, flags, nullptr,
            directory.empty() ? nullptr : directory.c_str(), &startup, &process) == 0) {
        throw std::runtime_error("can't run " + command[0]);
    }
    meanwhile(process.dwProcessId);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return {static_cast<int>(status), out.Content(), err.Content()};
}

} // namespace

ProcessResult RunProcess(const std::vector<std::string>& command, const ProcessSetup& setup)
{
    return Run(command, setup, 0, [](unsigned long) {});
}

ProcessResult RunOnConsole(const std::vector<std::string>& command, const std::function<void(unsigned long)>& meanwhile,
    const ProcessSetup& setup)
{
    return Run(command, setup, CREATE_NO_WINDOW, meanwhile);
}

ProcessResult RunOnTerminal(const std::vector<std::string>&, const ProcessSetup&)
{
    throw std::runtime_error("no terminal");
}
