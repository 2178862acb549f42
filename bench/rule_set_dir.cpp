#include "bench/rule_set_dir.h"

#include <cstdlib>
#include <fstream>

namespace bench {

RuleSetDir::RuleSetDir(const RuleSetSize& size)
{
    std::ofstream(TreeFile()) << TreeFileText(size);
    std::ofstream(RuleFile()) << RuleFileText(size);
}

std::unique_ptr<FaultTreeParser> Parsed(const RuleSetDir& dir, const RuleSetSize& size)
{
    auto detectInfo = std::make_shared<DetectInfo>();
    detectInfo->mTreeTag = RULE_SET_TAG;
    detectInfo->mRuleFileDir = dir.Path();
    auto parser = std::make_unique<FaultTreeParser>(detectInfo);
    parser->StartParse();
    if (parser->GetFaultTrees().size() != size.trees || parser->GetRuleMap().size() != size.rules) {
        std::abort();
    }
    return parser;
}

} // namespace bench
