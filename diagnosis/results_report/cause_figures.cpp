#include "diagnosis/results_report/cause_figures.h"

#include <algorithm>
#include <bitset>

namespace diagnosis {

namespace {

constexpr std::int64_t NO_BUNDLE = -1;

struct CauseCount {
    std::uint64_t bundles = 0;
    std::int64_t last = NO_BUNDLE;
};

std::vector<CauseCount> CountBundles(Questions& questions, const CauseNumbers& numbers)
{
    std::vector<CauseCount> counts(numbers.Count());
    questions.Ask("SELECT bundle, cause_def FROM root_cause ORDER BY bundle", [&](const Statement& row) {
        const auto number = numbers.Of(row.Integer(1));
        if (number && counts[*number].last != row.Integer(0)) {
            counts[*number].last = row.Integer(0);
            ++counts[*number].bundles;
        }
    });
    return counts;
}

// Their numbers go by tree and event.
std::vector<std::size_t> Commonest(const std::vector<CauseCount>& counts)
{
    std::vector<std::size_t> numbers(counts.size());
    for (std::size_t number = 0; number < numbers.size(); ++number) {
        numbers[number] = number;
    }
    const auto end = numbers.begin() + static_cast<std::ptrdiff_t>(std::min(numbers.size(), CommonCauses::MOST));
    std::partial_sort(numbers.begin(), end, numbers.end(), [&counts](std::size_t one, std::size_t other) {
        return counts[one].bundles != counts[other].bundles ? counts[one].bundles > counts[other].bundles : one < other;
    });
    numbers.erase(end, numbers.end());
    return numbers;
}

/// Counts which of the commonest causes are in one bundle, and in which week.
class Together {
public:
    Together(const std::vector<std::size_t>& commonest, const TrendWeeks& weeks, CommonCauses& causes)
        : mCommonest(commonest), mWeeks(weeks), mCounts(causes.together)
    {
        const std::size_t size = std::min(commonest.size(), CommonCauses::MOST_TOGETHER);
        mCounts.assign(size, std::vector<std::uint64_t>(size));
    }

    void Add(std::int64_t bundle, std::optional<std::int64_t> moment, std::size_t cause)
    {
        if (bundle != mBundle) {
            EndBundle();
            mBundle = bundle;
            mWeek = moment ? mWeeks.Of(*moment) : nullptr;
        }
        for (std::size_t rank = 0; rank < mCounts.size(); ++rank) {
            mFound[rank] = mFound[rank] || mCommonest[rank] == cause;
        }
    }

    void EndBundle()
    {
        for (std::size_t one = 0; one < mCounts.size(); ++one) {
            for (std::size_t other = 0; mFound[one] && other < mCounts.size(); ++other) {
                mCounts[one][other] += mFound[other] ? 1 : 0;
            }
            if (mWeek != nullptr && one < mWeek->causes.size() && mFound[one]) {
                ++mWeek->causes[one];
            }
        }
        mFound.reset();
    }

private:
    const std::vector<std::size_t>& mCommonest;
    const TrendWeeks& mWeeks;
    std::vector<std::vector<std::uint64_t>>& mCounts;
    std::int64_t mBundle = NO_BUNDLE;
    FleetWeek* mWeek = nullptr;
    std::bitset<CommonCauses::MOST_TOGETHER> mFound;
};

} // namespace

CauseNumbers::CauseNumbers(Questions& questions)
{
    questions.Ask("SELECT cause_def.id, dense_rank() OVER (ORDER BY tree_def.tree, cause_def.event) FROM cause_def "
                  "JOIN tree_def ON tree_def.id = cause_def.tree_def ORDER BY cause_def.id",
        [this](const Statement& row) {
            const auto number = static_cast<std::size_t>(row.Integer(1) - 1);
            mNumbers.emplace_back(row.Integer(0), number);
            mDefinitions.resize(std::max(mDefinitions.size(), number + 1));
            mDefinitions[number] = row.Integer(0);
        });
}

std::optional<std::size_t> CauseNumbers::Of(std::int64_t definition) const
{
    const auto found = std::lower_bound(mNumbers.begin(), mNumbers.end(), std::pair(definition, std::size_t{0}));
    return found == mNumbers.end() || found->first != definition ? std::nullopt : std::optional(found->second);
}

void ReadCauseFigures(Questions& questions, const CauseNumbers& numbers, const TrendWeeks& weeks, CommonCauses& causes)
{
    const std::vector<CauseCount> counts = CountBundles(questions, numbers);
    const std::vector<std::size_t> commonest = Commonest(counts);
    causes.different = numbers.Count();
    for (const std::size_t number : commonest) {
        questions.Ask("SELECT tree_def.tree, cause_def.event, cause_def.name FROM cause_def "
                      "JOIN tree_def ON tree_def.id = cause_def.tree_def WHERE cause_def.id = "
                + std::to_string(numbers.DefinitionOf(number)),
            [&](const Statement& row) {
                causes.causes.push_back({row.Text(0), row.Text(1), row.Text(2), counts[number].bundles});
            });
    }
    Together together(commonest, weeks, causes);
    questions.Ask("SELECT root_cause.bundle, bundle.now, cause_def FROM root_cause CROSS JOIN bundle "
                  "ON bundle.id = root_cause.bundle ORDER BY root_cause.bundle",
        [&](const Statement& row) {
            const auto number = numbers.Of(row.Integer(2));
            if (number) {
                together.Add(row.Integer(0), row.IsNull(1) ? std::nullopt : std::optional(row.Integer(1)), *number);
            }
        });
    together.EndBundle();
}

} // namespace diagnosis
