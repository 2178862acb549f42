#include "diagnosis/log_db/hidden_rows.h"

namespace diagnosis {

namespace {

// The keys of all events with a time that meets `condition`.
std::string KeysWhere(const std::string& condition)
{
    return "(SELECT time._ID FROM event_info_flow AS time WHERE time._ID IS NOT NULL AND " + condition
        + " UNION SELECT time.event_pid FROM event_info_flow AS time WHERE time.event_pid IS NOT NULL AND " + condition
        + ")";
}

} // namespace

std::string hidden_rows::IsLater(const std::string& flow)
{
    const std::string time = flow + ".occurrence_time";
    return "ifnull(typeof(" + time + ") IN ('integer', 'real') AND " + time + " > ?1, 0)";
}

std::string hidden_rows::IsHidden(const std::string& info)
{
    const std::string later = IsLater("time");
    return "(?1 IS NOT NULL AND " + info + "._ID IN " + KeysWhere(later) + " AND " + info + "._ID NOT IN "
        + KeysWhere("NOT " + later) + ")";
}

} // namespace diagnosis
