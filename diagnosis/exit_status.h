#ifndef ARBORIST_DIAGNOSIS_EXIT_STATUS_H
#define ARBORIST_DIAGNOSIS_EXIT_STATUS_H

namespace diagnosis {

/// Exit status of the process. For several bundles it is the most serious: the highest number, except that UNDECIDED
/// counts less than any other but SUCCESS.
enum class ExitStatus {
    SUCCESS = 0, ///< everything was done, fault or not
    FAULT_FOUND = 1, ///< a fault was found and --fail-on-fault was given
    WRONG_USE = 2, ///< the command line can't be understood or carried out
    RULE_SET = 3, ///< a rule set could not be used
    INPUT = 4, ///< other input could not be used
    INTERNAL = 5, ///< an internal error or a limit
    UNDECIDED = 6, ///< a tree is undecided and --fail-on-undecided was given
};

/// Whether a bundle with this status has no results, or not all that were asked for.
constexpr bool IsFailure(ExitStatus status)
{
    return status == ExitStatus::RULE_SET || status == ExitStatus::INPUT || status == ExitStatus::INTERNAL;
}

constexpr ExitStatus MoreSerious(ExitStatus one, ExitStatus other)
{
    const auto rank = [](ExitStatus status) {
        return status == ExitStatus::UNDECIDED ? 1 : 2 * static_cast<int>(status);
    };
    return rank(one) < rank(other) ? other : one;
}

} // namespace diagnosis

#endif
