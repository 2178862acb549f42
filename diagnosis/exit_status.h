#ifndef ARBORIST_DIAGNOSIS_EXIT_STATUS_H
#define ARBORIST_DIAGNOSIS_EXIT_STATUS_H

#include <algorithm>

namespace diagnosis {

/// Exit status of the process. For several bundles it is the highest number, which is the most serious.
enum class ExitStatus {
    SUCCESS = 0, ///< everything was done, fault or not
    FAULT_FOUND = 1, ///< a fault was found and --fail-on-fault was given
    WRONG_USE = 2, ///< the command line can't be understood or carried out
    RULE_SET = 3, ///< a rule set could not be used
    INPUT = 4, ///< other input could not be used
    INTERNAL = 5, ///< an internal error or a limit
};

constexpr ExitStatus MoreSerious(ExitStatus one, ExitStatus other)
{
    return std::max(one, other);
}

} // namespace diagnosis

#endif
