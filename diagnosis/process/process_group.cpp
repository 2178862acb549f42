#include "diagnosis/process/process_group.h"

#include <csignal>

namespace diagnosis {

void KillGroup(pid_t group)
{
    kill(-group, SIGKILL);
}

} // namespace diagnosis
