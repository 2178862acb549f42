#ifndef ARBORIST_TOOLS_BATCH_PROCESSORS_H
#define ARBORIST_TOOLS_BATCH_PROCESSORS_H

#include <vector>

namespace diagnosis::command {

/// The processors that the calling thread may run on, by the system's numbers; empty where the system can't tell.
std::vector<int> AllowedProcessors();

/// Keeps the calling thread, and what it starts from now on, on one processor. Where that can't be, nothing changes.
void StayOn(int processor);

} // namespace diagnosis::command

#endif
