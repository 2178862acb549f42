#ifndef ARBORIST_DIAGNOSIS_PROCESS_CHILD_WINDOWS_H
#define ARBORIST_DIAGNOSIS_PROCESS_CHILD_WINDOWS_H

#include <chrono>
#include <optional>
#include <string>

#include <windows.h>

namespace diagnosis {

/// A temporary file that programs inherit as a standard stream: neither side waits for the other, as they would for a
/// pipe. Gone with the object.
class StreamFile {
public:
    StreamFile();
    ~StreamFile();
    StreamFile(const StreamFile&) = delete;
    StreamFile& operator=(const StreamFile&) = delete;

    bool IsOpen() const { return mFile != INVALID_HANDLE_VALUE; }
    /// Writes what a program is to read.
    bool Fill(const std::string& text) const;
    /// What a program has written.
    std::string Content() const;
    HANDLE Get() const { return mFile; }

private:
    HANDLE mFile;
};

/// A program that was started, with all that it starts: they end with the object, and with this process.
class ChildProcess {
public:
    ChildProcess() = default;
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// `program` is a path, or empty for the first word of `command`, which is looked up. Messages go to the standard
    /// error of this process. Returns the error of the system, 0 if there is none.
    DWORD Start(const std::string& program, const std::string& command, HANDLE input, HANDLE output);
    /// Waits for the end of the program; false if it is still running at the limit.
    bool Wait(std::optional<std::chrono::milliseconds> limit) const;
    /// The program must have ended.
    DWORD ExitStatus() const;
    DWORD Number() const { return mProcess.dwProcessId; }

private:
    HANDLE mJob = nullptr;
    PROCESS_INFORMATION mProcess{};
};

} // namespace diagnosis

#endif
