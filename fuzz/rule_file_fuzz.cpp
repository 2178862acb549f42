// Any bytes as the rule file of a rule set, with the tag "t" in its sections; then every look-up for all that was read.

#include "arborist/loading/fault_tree_parser.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDir dir;
    dir.Write(FaultTreeParser::FAULT_TREE_RULES_FILE, data, size);
    auto detectInfo = std::make_shared<DetectInfo>();
    detectInfo->mTreeTag = "t";
    detectInfo->mRuleFileDir = dir.Path("");
    FaultTreeParser parser(detectInfo);
    parser.StartParse();
    for (const auto& codeRule : parser.GetCodeRuleList()) {
        parser.GetRuleByRuleName(parser.GetCodeRuleNameById(codeRule->codeItem.id));
    }
    for (const auto& entry : parser.GetEventRuleMap()) {
        parser.GetEventRuleByEventId(entry.first)->CheckResult();
        parser.GetRepairListById(entry.first);
    }
    for (const auto* items : {&parser.GetFaultDescList(), &parser.GetSuggestionList()}) {
        for (const auto& item : *items) {
            parser.GetFaultDescListById(item->GetFaultItemId());
            parser.GetSuggestionListById(item->GetFaultItemId());
            parser.GetRepairListById(item->GetFaultItemId());
        }
    }
    return 0;
}
