#include "tools/arborist/batch/processors.h"

#if defined(__linux__)
#include <sched.h>
#endif

namespace diagnosis::command {

#if defined(__linux__)

std::vector<int> AllowedProcessors()
{
    std::vector<int> allowed;
    cpu_set_t processors;
    if (sched_getaffinity(0, sizeof processors, &processors) == 0) {
        for (int number = 0; number < CPU_SETSIZE; ++number) {
            if (CPU_ISSET(static_cast<unsigned>(number), &processors)) {
                allowed.push_back(number);
            }
        }
    }
    return allowed;
}

void StayOn(int processor)
{
    cpu_set_t processors;
    CPU_ZERO(&processors);
    CPU_SET(static_cast<unsigned>(processor), &processors);
    sched_setaffinity(0, sizeof processors, &processors);
}

#else

std::vector<int> AllowedProcessors()
{
    return {};
}

void StayOn(int)
{
}

#endif

} // namespace diagnosis::command
