#ifndef ARBORIST_TOOLS_BATCH_PROCESSORS_H
#define ARBORIST_TOOLS_BATCH_PROCESSORS_H

#include <vector>

namespace diagnosis::command {

/// The processors that the calling thread may run on, by the system's numbers; empty if the system doesn't say.
std::vector<int> AllowedProcessors();

/// Binds the calling thread, and everything that it starts from now on, to one processor. Has no effect if the system
/// refuses.
void StayOn(int processor);

} // namespace diagnosis::command

#endif
