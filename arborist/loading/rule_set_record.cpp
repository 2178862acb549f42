#include "arborist/loading/rule_set_record.h"

#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/common_part.h"

Evidence::RuleSet RuleSetRecordOf(const FaultTreeParser& parser)
{
    Evidence::RuleSet record;
    for (const auto& file : {parser.GetTreeFileReport(), parser.GetRuleFileReport()}) {
        if (!file.path.empty()) {
            record.files.push_back(file);
        }
    }
    if (const auto commonPart = parser.GetCommonPart()) {
        for (const auto& bean : commonPart->GetDefDbTableCommonList()) {
            if (bean != nullptr) {
                record.databases.push_back({bean->GetName(), bean->GetDbName()});
            }
        }
        for (const auto& bean : commonPart->GetThresholdLumbraList()) {
            if (bean != nullptr && bean->TakesEvents()) {
                record.eventTables.push_back(bean->GetName());
            }
        }
    }
    return record;
}
