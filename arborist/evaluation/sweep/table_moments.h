#ifndef ARBORIST_EVALUATION_SWEEP_TABLE_MOMENTS_H
#define ARBORIST_EVALUATION_SWEEP_TABLE_MOMENTS_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "arborist/evaluation/start_times.h"
#include "arborist/evaluation/sweep/moment_range.h"
#include "arborist/model/common_part.h"
#include "arborist/model/rule.h"

/// Finds the moments at which a command rule on derived tables may answer differently than a second before: where an
/// event enters or leaves a table that its statement names, or the statement's own time limit, and at repairs.
///
/// Takes every event of such a table for one that matters, as only the statement knows what it reads. Two kinds of
/// statements may change at other moments: one that reads the clock, and one that gives the name occurrence_time to
/// something that it calculates.
class TableMoments {
public:
    /// `commonPart` may be null: then there are no tables.
    TableMoments(std::shared_ptr<const CommonPart::CombineCommonPart> commonPart, const MomentRange& range);

    /// Adds the moments of a rule; `floors` determine the time limit of its statement. A rule on copies of external
    /// databases has none.
    void Add(const CommandRule& rule, const StartTimes::Floors& floors, Moments& moments);

private:
    /// The events of one table.
    struct Table {
        std::vector<std::int64_t> times;
        std::int64_t period = 0;
    };

    const Table& TableOf(const ThresholdOrLumbraBean& bean);

    std::shared_ptr<const CommonPart::CombineCommonPart> mCommonPart;
    MomentRange mRange;
    std::map<const ThresholdOrLumbraBean*, Table> mTables;
};

#endif
