#include "diagnosis/drawing/dot_program.h"

#include <system_error>

#include "diagnosis/process/child_windows.h"

namespace diagnosis {

namespace {

DotRun Trouble(DWORD error)
{
    return {true, std::system_category().message(static_cast<int>(error))};
}

} // namespace

DotRun RunDot(const std::string& graph, std::string& svg)
{
    const StreamFile input;
    const StreamFile output;
    if (!input.IsOpen() || !output.IsOpen() || !input.Fill(graph)) {
        return Trouble(GetLastError());
    }
    ChildProcess program;
    const DWORD error = program.Start("", "dot.exe -Tsvg", input.Get(), output.Get());
    if (error == ERROR_FILE_NOT_FOUND) {
        return {false, ""};
    }
    if (error != 0) {
        return Trouble(error);
    }
    program.Wait(std::nullopt);
    if (const DWORD status = program.ExitStatus()) {
        return {true, "exit status " + std::to_string(status)};
    }
    svg = output.Content();
    return {};
}

} // namespace diagnosis
