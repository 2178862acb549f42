#ifndef ARBORIST_DIAGNOSIS_RESULTS_REPORT_CAUSE_FIGURES_H
#define ARBORIST_DIAGNOSIS_RESULTS_REPORT_CAUSE_FIGURES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "diagnosis/results_report/bundle_figures.h"
#include "diagnosis/results_report/fleet.h"
#include "diagnosis/sqlite/questions.h"

namespace diagnosis {

/// Numbers the causes of a database from 0 on; definitions with the same tree and event have the same number. Needs twenty
/// bytes for each definition.
class CauseNumbers {
public:
    explicit CauseNumbers(Questions& questions);

    /// Nullopt for a definition that the database doesn't have.
    std::optional<std::size_t> Of(std::int64_t definition) const;
    /// How many there are.
    std::size_t Count() const { return mDefinitions.size(); }
    /// A definition of a cause.
    std::int64_t DefinitionOf(std::size_t number) const { return mDefinitions[number]; }

private:
    /// Definition and number, by definition.
    std::vector<std::pair<std::int64_t, std::size_t>> mNumbers;
    std::vector<std::int64_t> mDefinitions;
};

/// Fills in the commonest causes, what occurs together, and the causes of the trend. A cause counts once for a bundle.
/// Reads the root causes twice; memory grows with the number of different causes.
void ReadCauseFigures(Questions& questions, const CauseNumbers& numbers, const TrendWeeks& weeks, CommonCauses& causes);

} // namespace diagnosis

#endif
