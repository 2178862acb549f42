#include "diagnosis/log_db/log_density.h"

#include "diagnosis/sqlite/connection.h"

namespace diagnosis {

namespace {

constexpr char SPAN[] = "SELECT min(occurrence_time), max(occurrence_time) FROM event_info_flow "
                        "WHERE typeof(occurrence_time) = 'integer' AND occurrence_time BETWEEN 0 AND 4294967295";
constexpr char TIMES[] = "SELECT occurrence_time FROM event_info_flow "
                         "WHERE typeof(occurrence_time) = 'integer' AND occurrence_time BETWEEN ?1 AND ?2";

} // namespace

LoggedSpan SpanOfLog(const std::string& path, std::string& problem)
{
    LoggedSpan span;
    Connection database;
    auto rows = database.Open(path, Connection::Mode::READ_ONLY) ? database.Prepare(SPAN) : std::nullopt;
    if (rows && rows->Step() && !rows->IsNull(0)) {
        span.first = rows->Integer(0);
        span.last = rows->Integer(1);
    }
    problem = database.HasError() ? database.GetError() : "";
    return span;
}

std::vector<std::uint64_t> DensityOfLog(
    const std::string& path, std::int64_t from, std::int64_t until, std::size_t parts)
{
    std::vector<std::uint64_t> counts(parts);
    Connection database;
    auto rows = database.Open(path, Connection::Mode::READ_ONLY) ? database.Prepare(TIMES) : std::nullopt;
    if (!rows || until < from) {
        return counts;
    }
    rows->Bind(1, from);
    rows->Bind(2, until);
    const double length = static_cast<double>(until - from) + 1;
    while (rows->Step()) {
        const double place = static_cast<double>(rows->Integer(0) - from) / length;
        ++counts[static_cast<std::size_t>(place * static_cast<double>(parts))];
    }
    return counts;
}

} // namespace diagnosis
