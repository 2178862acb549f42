#include "arborist/frame/check.h"

#include <numeric>

namespace Evidence {

const char* CheckText(Check check)
{
    switch (check) {
    case Check::NONE:
        return "";
    case Check::NOT_APPLICABLE:
        return "not_applicable";
    case Check::NOT_SELECTED:
        return "not_selected";
    case Check::DECIDED:
        return "decided";
    case Check::NOT_CHECKED:
        return "not_checked";
    case Check::DATA_MISSING:
        return "no_data";
    case Check::RULE_UNUSABLE:
        return "error";
    }
    return "";
}

Check CheckOf(Reason reason)
{
    switch (reason) {
    case Reason::NONE:
    case Reason::GROUP_ENDED:
        return Check::NONE;
    case Reason::FILTERED_BLACK_PRODUCT:
    case Reason::FILTERED_PRODUCT:
    case Reason::FILTERED_PLATFORM:
    case Reason::FILTERED_DEVICE_TYPE:
        return Check::NOT_APPLICABLE;
    case Reason::INTERACTION_EVENT:
    case Reason::FILTERED_SCENE:
        return Check::NOT_SELECTED;
    case Reason::WINDOW_SHORT:
    case Reason::WINDOW_REACHED:
    case Reason::HITS_SHORT:
    case Reason::HITS_REACHED:
    case Reason::RUNNER_ANSWERED:
    case Reason::CONDITION_MET:
    case Reason::CONDITION_NOT_MET:
        return Check::DECIDED;
    case Reason::NO_EVENT_RULE:
    case Reason::NO_RULE_NAMES:
    case Reason::NO_SUCH_RULE:
    case Reason::STOPPED:
    case Reason::NO_RUNNER:
        return Check::NOT_CHECKED;
    case Reason::LOG_UNAVAILABLE:
    case Reason::LOG_DAMAGED:
    case Reason::NEGATIVE_WEIGHT:
    case Reason::ROWS_UNSEEN:
    case Reason::ROWS_AFTER_NOW:
    case Reason::REPAIR_UNREADABLE:
    case Reason::DATABASE_UNAVAILABLE:
    case Reason::TABLE_INCOMPLETE:
    case Reason::STATEMENT_FAILED:
    case Reason::ROW_COUNT:
    case Reason::NO_INTERVAL:
    case Reason::NODE_UNREADABLE:
    case Reason::RUNNER_FAILED:
    case Reason::DIVISION_BY_ZERO:
    case Reason::VERSION_UNKNOWN:
    case Reason::NO_VALUE:
        return Check::DATA_MISSING;
    case Reason::NO_GATE:
    case Reason::NO_CHECKER:
    case Reason::NO_ITEMS:
    case Reason::NO_IDS:
    case Reason::WINDOW_ABSENT:
    case Reason::WINDOW_EMPTY:
    case Reason::NO_EVENT_ID:
    case Reason::NO_COMMON_PART:
    case Reason::NOT_SQL:
    case Reason::NO_SUCH_DATABASE:
    case Reason::NO_THRESHOLD:
    case Reason::NO_NODES:
    case Reason::NO_CONDITION:
    case Reason::UNKNOWN_CONDITION:
    case Reason::BAD_FORMULA:
    case Reason::BAD_NUMBER:
    case Reason::UNKNOWN_NAME:
        return Check::RULE_UNUSABLE;
    }
    return Check::NONE;
}

void CheckCounts::Add(Check check)
{
    if (check != Check::NONE) {
        ++mCounts[static_cast<std::size_t>(check)];
    }
}

std::size_t CheckCounts::Total() const
{
    return std::accumulate(mCounts.begin(), mCounts.end(), std::size_t{0});
}

std::size_t CheckCounts::Open() const
{
    return Of(Check::NOT_CHECKED) + Of(Check::DATA_MISSING) + Of(Check::RULE_UNUSABLE);
}

} // namespace Evidence
