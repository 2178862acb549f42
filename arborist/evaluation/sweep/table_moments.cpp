#include "arborist/evaluation/sweep/table_moments.h"

#include <algorithm>

#include "arborist/evaluation/sweep/moment_in_force.h"
#include "arborist/stores/common_part/derived_tables.h"
#include "arborist/stores/common_part/event_id_list.h"
#include "arborist/stores/common_part/event_selection.h"
#include "arborist/stores/common_part/event_times.h"
#include "arborist/stores/common_part/lower_case.h"
#include "arborist/utilities/device_paths.h"

TableMoments::TableMoments(
    std::shared_ptr<const CommonPart::CombineCommonPart> commonPart, const MomentRange& range)
    : mCommonPart(std::move(commonPart)), mRange(range)
{
}

void TableMoments::Add(const CommandRule& rule, const StartTimes::Floors& floors, Moments& moments)
{
    if (rule.referenceDefDb != nullptr || mCommonPart == nullptr) {
        return;
    }
    for (const std::int64_t repair : floors.repairs) {
        mRange.Add(repair, moments);
        mRange.Add(repair + 1, moments); // the limit excludes its own second, in which a table's fixed row lies
    }
    const std::string sql = LowerCase(rule.analysisMethod.sqlItem.sql);
    for (const auto& bean : mCommonPart->GetThresholdLumbraList()) {
        // Whether the table of its common part is whole matters to a rule whatever its statement reads.
        const bool isMeant = bean != nullptr && bean->TakesEvents() &&
            (bean->GetName() == rule.commonPartName || sql.find(LowerCase(bean->GetName())) != std::string::npos);
        if (!isMeant) {
            continue;
        }
        const Table& table = TableOf(*bean);
        for (const std::int64_t time : table.times) {
            mRange.Add(time, moments);
            mRange.Add(time + table.period, moments);
            mRange.Add(time + floors.period, moments);
        }
    }
}

const TableMoments::Table& TableMoments::TableOf(const ThresholdOrLumbraBean& bean)
{
    const auto [known, isNew] = mTables.try_emplace(&bean);
    EventIdList ids;
    if (isNew && DerivedTables::GetEventIdList(bean.GetLumbraDataList(), ids)) {
        // As of the first moment the table has the events of one period before it.
        MomentInForce moment;
        moment.Set(mRange.first, mRange.last);
        known->second = {EventTimes::Read(ids, DevicePaths::EventLog()), EventSelection::PeriodOf(ids)};
    }
    return known->second;
}
