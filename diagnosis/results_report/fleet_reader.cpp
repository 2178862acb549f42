#include "diagnosis/results_report/fleet_reader.h"

#include "diagnosis/results_db/results_database.h"
#include "diagnosis/results_report/bundle_figures.h"
#include "diagnosis/results_report/cause_figures.h"
#include "diagnosis/results_report/open_figures.h"
#include "diagnosis/results_report/repair_figures.h"
#include "diagnosis/sqlite/questions.h"

namespace diagnosis {

std::optional<Failure> ReadFleet(const std::string& path, std::int64_t withinDays, Fleet& fleet)
{
    ReadOnlyDatabase database;
    if (const auto failure = results_db::OpenResults(path, database)) {
        return failure;
    }
    Questions questions(database.Get());
    const TrendWeeks weeks = ReadBundleFigures(questions, fleet);
    const CauseNumbers causes(questions);
    ReadCauseFigures(questions, causes, weeks, fleet.causes);
    ReadOpenFigures(questions, fleet.open);
    ReadRepairFigures(questions, causes, withinDays, fleet.repairs);
    return questions.Problem().empty() ? std::nullopt
                                       : std::optional(Failure{FailureCode::BAD_RESULTS, path + ": " + questions.Problem()});
}

} // namespace diagnosis
