#include "diagnosis/results_report/repair_figures.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace diagnosis {

namespace {

constexpr std::int64_t DAY = 86400;
// Far behind all dates, and so that differences can be taken.
constexpr std::int64_t FARTHEST_MOMENT = 1'000'000'000'000;

std::int64_t MomentIn(const Statement& row, int column)
{
    return std::clamp(row.Integer(column), -FARTHEST_MOMENT, FARTHEST_MOMENT);
}

std::uint64_t CountOf(Questions& questions, const std::string& sql)
{
    std::uint64_t count = 0;
    questions.Ask(sql, [&count](const Statement& row) { count = static_cast<std::uint64_t>(row.Integer(0)); });
    return count;
}

void ReadDevices(Questions& questions, RepairFigures& figures)
{
    figures.devices = CountOf(questions, "SELECT count(DISTINCT device) FROM bundle WHERE device <> ''");
    figures.bundlesWithoutDevice = CountOf(questions, "SELECT count(*) FROM bundle WHERE device = ''");
    figures.withoutCause = CountOf(questions,
        "SELECT count(DISTINCT repair) FROM repaired WHERE repair NOT IN (SELECT repair FROM repair)");
}

/// The repairs that are followed, by id.
using Places = std::map<std::string, std::size_t>;

// Those on record on the most devices.
std::vector<RepairAim> ReadAims(Questions& questions, RepairFigures& figures)
{
    std::vector<RepairAim> aims;
    questions.Ask("SELECT repaired.repair, count(DISTINCT bundle.device) FROM repaired "
                  "JOIN bundle ON bundle.id = repaired.bundle "
                  "WHERE bundle.device <> '' AND repaired.repair IN (SELECT repair FROM repair) "
                  "GROUP BY repaired.repair ORDER BY 2 DESC, 1",
        [&](const Statement& row) {
            if (aims.size() < RepairFigures::MOST) {
                aims.push_back({row.Text(0), {}, {}});
            } else {
                ++figures.leftOut;
            }
        });
    return aims;
}

Places PlacesOf(const std::vector<RepairAim>& aims)
{
    Places places;
    for (std::size_t place = 0; place < aims.size(); ++place) {
        places.emplace(aims[place].id, place);
    }
    return places;
}

/// Numbers of trees, whatever their versions, by tree_def.
using TreeNumbers = std::map<std::int64_t, std::int64_t>;

TreeNumbers ReadTreeNumbers(Questions& questions)
{
    TreeNumbers numbers;
    questions.Ask("SELECT id, dense_rank() OVER (ORDER BY tree) FROM tree_def",
        [&numbers](const Statement& row) { numbers.emplace(row.Integer(0), row.Integer(1)); });
    return numbers;
}

std::int64_t NumberOf(const TreeNumbers& trees, std::int64_t definition)
{
    const auto found = trees.find(definition);
    return found == trees.end() ? 0 : found->second;
}

void Aim(Questions& questions, const CauseNumbers& causes, const TreeNumbers& trees, std::vector<RepairAim>& aims)
{
    const Places places = PlacesOf(aims);
    std::vector<std::set<std::int64_t>> causesOf(aims.size());
    std::vector<std::set<std::int64_t>> treesOf(aims.size());
    questions.Ask("SELECT repair.repair, cause_def.id, cause_def.tree_def FROM repair "
                  "JOIN cause_def ON cause_def.id = repair.cause_def",
        [&](const Statement& row) {
            const auto place = places.find(row.Text(0));
            const auto cause = causes.Of(row.Integer(1));
            if (place != places.end() && cause) {
                causesOf[place->second].insert(static_cast<std::int64_t>(*cause));
                treesOf[place->second].insert(NumberOf(trees, row.Integer(2)));
            }
        });
    for (std::size_t place = 0; place < aims.size(); ++place) {
        aims[place].causes.assign(causesOf[place].begin(), causesOf[place].end());
        aims[place].trees.assign(treesOf[place].begin(), treesOf[place].end());
    }
}

/// Gives out the repairs on record, device by device.
class RecordedRepairs {
public:
    RecordedRepairs(Questions& questions, const std::vector<RepairAim>& aims)
        : mQuestions(questions), mPlaces(PlacesOf(aims)),
          mRows(questions.Prepare("SELECT DISTINCT bundle.device, repaired.repair, repaired.date FROM repaired "
                                  "JOIN bundle ON bundle.id = repaired.bundle WHERE bundle.device <> '' ORDER BY 1"))
    {
        Next();
    }

    /// The device whose repairs come next; nothing behind the last one.
    const std::optional<std::string>& Device() const { return mDevice; }

    std::vector<RepairDone> Take()
    {
        const std::optional<std::string> device = mDevice;
        std::vector<RepairDone> repairs;
        for (; mDevice && mDevice == device; Next()) {
            const auto place = mPlaces.find(mRows->Text(1));
            if (place != mPlaces.end()) {
                // A repair without a date comes before every bundle, so that nothing follows from it.
                repairs.push_back({place->second,
                    mRows->IsNull(2) ? std::numeric_limits<std::int64_t>::min() : MomentIn(*mRows, 2)});
            }
        }
        return repairs;
    }

private:
    void Next()
    {
        mDevice = mRows && mQuestions.Next(*mRows) ? std::optional(mRows->Text(0)) : std::nullopt;
    }

    Questions& mQuestions;
    Places mPlaces;
    std::optional<Statement> mRows;
    std::optional<std::string> mDevice;
};

/// Gives what one bundle says.
class Visits {
public:
    Visits(Questions& questions, const CauseNumbers& causes, const TreeNumbers& trees)
        : mQuestions(questions), mCauses(causes), mTrees(trees),
          mFound(questions.Prepare("SELECT cause_def FROM root_cause WHERE bundle = ?1")),
          mComplete(questions.Prepare("SELECT tree.tree_def FROM tree JOIN outcome_def ON outcome_def.id = tree.outcome_def "
                                      "WHERE tree.bundle = ?1 AND outcome_def.complete "
                                      "AND outcome_def.verdict IN ('fault', 'no_fault')"))
    {
    }

    DeviceVisit Of(std::int64_t bundle, std::int64_t moment)
    {
        DeviceVisit visit{moment, {}, {}};
        ForEach(mFound, bundle, [&](std::int64_t definition) {
            const auto cause = mCauses.Of(definition);
            if (cause) {
                visit.causes.push_back(static_cast<std::int64_t>(*cause));
            }
        });
        ForEach(mComplete, bundle,
            [&](std::int64_t definition) { visit.complete.push_back(NumberOf(mTrees, definition)); });
        std::sort(visit.complete.begin(), visit.complete.end());
        return visit;
    }

private:
    template <typename Take>
    void ForEach(std::optional<Statement>& statement, std::int64_t bundle, Take take)
    {
        if (statement) {
            statement->Bind(1, bundle);
            mQuestions.Ask(*statement, [&take](const Statement& row) { take(row.Integer(0)); });
        }
    }

    Questions& mQuestions;
    const CauseNumbers& mCauses;
    const TreeNumbers& mTrees;
    std::optional<Statement> mFound;
    std::optional<Statement> mComplete;
};

// Devices with repairs alone, up to before one; all of them before nothing.
void PassDevicesBefore(const std::optional<std::string>& device, RecordedRepairs& repairs, RepairEffects& effects)
{
    while (repairs.Device() && (!device || *repairs.Device() < *device)) {
        effects.BeginDevice(repairs.Take());
    }
}

// Bundles and repairs come by device in the same order, that of the bytes.
void Follow(Questions& questions, RecordedRepairs& repairs, Visits& visits, RepairEffects& effects)
{
    std::optional<std::string> device;
    questions.Ask("SELECT device, id, now FROM bundle WHERE device <> '' AND ok AND now IS NOT NULL ORDER BY device, now, id",
        [&](const Statement& row) {
            if (!device || *device != row.Text(0)) {
                device = row.Text(0);
                PassDevicesBefore(device, repairs, effects);
                effects.BeginDevice(repairs.Device() == device ? repairs.Take() : std::vector<RepairDone>());
            }
            effects.Add(visits.Of(row.Integer(1), MomentIn(row, 2)));
        });
    PassDevicesBefore(std::nullopt, repairs, effects);
}

} // namespace

void ReadRepairFigures(
    Questions& questions, const CauseNumbers& numbers, std::int64_t withinDays, RepairFigures& figures)
{
    figures.withinDays = withinDays;
    ReadDevices(questions, figures);
    std::vector<RepairAim> aims = ReadAims(questions, figures);
    if (aims.empty()) {
        return;
    }
    const TreeNumbers trees = ReadTreeNumbers(questions);
    Aim(questions, numbers, trees, aims);
    RecordedRepairs repairs(questions, aims);
    Visits visits(questions, numbers, trees);
    RepairEffects effects(std::move(aims), withinDays * DAY);
    Follow(questions, repairs, visits, effects);
    figures.effects = effects.Finish();
}

} // namespace diagnosis
