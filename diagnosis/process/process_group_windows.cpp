#include "diagnosis/process/process_group.h"

#include <windows.h>

namespace diagnosis {

void KillGroup(pid_t group)
{
    const HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, static_cast<DWORD>(group));
    if (process != nullptr) {
        TerminateProcess(process, STATUS_CONTROL_C_EXIT); // no answer to a code rule, unlike 1
        CloseHandle(process);
    }
}

} // namespace diagnosis
