#include "diagnosis/process/child_windows.h"

#include <filesystem>

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

HANDLE OpenTemporaryFile()
{
    wchar_t name[MAX_PATH];
    std::error_code error;
    const fs::path folder = fs::temp_directory_path(error);
    if (error || GetTempFileNameW(folder.c_str(), L"arb", 0, name) == 0) {
        return INVALID_HANDLE_VALUE;
    }
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
}

// A job ends its processes when its last handle is closed, which the system does for a process that dies.
HANDLE MakeJob()
{
    const HANDLE job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

} // namespace

StreamFile::StreamFile() : mFile(OpenTemporaryFile()) {}

StreamFile::~StreamFile()
{
    if (IsOpen()) {
        CloseHandle(mFile);
    }
}

bool StreamFile::Fill(const std::string& text) const
{
    DWORD written = 0;
    return WriteFile(mFile, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != 0
        && written == text.size() && SetFilePointer(mFile, 0, nullptr, FILE_BEGIN) == 0;
}

std::string StreamFile::Content() const
{
    std::string content;
    char buffer[65536];
    DWORD length = 0;
    SetFilePointer(mFile, 0, nullptr, FILE_BEGIN);
    while (ReadFile(mFile, buffer, sizeof buffer, &length, nullptr) != 0 && length > 0) {
        content.append(buffer, length);
    }
    return content;
}

ChildProcess::~ChildProcess()
{
    if (mProcess.hProcess != nullptr) {
        TerminateJobObject(mJob, 1);
        WaitForSingleObject(mProcess.hProcess, INFINITE);
        CloseHandle(mProcess.hThread);
        CloseHandle(mProcess.hProcess);
    }
    if (mJob != nullptr) {
        CloseHandle(mJob);
    }
}

DWORD ChildProcess::Start(const std::string& program, const std::string& command, HANDLE input, HANDLE output)
{
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input;
    startup.hStdOutput = output;
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    const std::wstring path = fs::path(program).make_preferred().wstring();
    std::wstring line = fs::path(command).wstring();
    mJob = MakeJob();
    if (CreateProcessW(path.empty() ? nullptr : path.c_str(), line.data(), nullptr, nullptr, TRUE,
            CREATE_SUSPENDED | CREATE_NEW_PROCESS_GROUP, nullptr, nullptr, &startup, &mProcess) == 0) {
        return GetLastError();
    }
    AssignProcessToJobObject(mJob, mProcess.hProcess);
    ResumeThread(mProcess.hThread);
    return 0;
}

bool ChildProcess::Wait(std::optional<std::chrono::milliseconds> limit) const
{
    const DWORD time = limit ? static_cast<DWORD>(limit->count()) : INFINITE;
    return WaitForSingleObject(mProcess.hProcess, time) == WAIT_OBJECT_0;
}

DWORD ChildProcess::ExitStatus() const
{
    DWORD status = 0;
    GetExitCodeProcess(mProcess.hProcess, &status);
    return status;
}

} // namespace diagnosis
