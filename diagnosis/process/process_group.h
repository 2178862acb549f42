#ifndef ARBORIST_DIAGNOSIS_PROCESS_PROCESS_GROUP_H
#define ARBORIST_DIAGNOSIS_PROCESS_PROCESS_GROUP_H

#include <sys/types.h>

namespace diagnosis {

/// Kills the processes of a group that a program was started in. On Windows `group` is the number of the program, which
/// alone is ended at once; what it has started goes with this process. Async-signal-safe.
void KillGroup(pid_t group);

} // namespace diagnosis

#endif
