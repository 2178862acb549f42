#include "bench/rule_set_dir.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace bench {

RuleSetDir::RuleSetDir(const RuleSetSize& size)
{
    std::string pattern = (std::filesystem::temp_directory_path() / "arborist-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        std::abort();
    }
    mPath = pattern;
    std::ofstream(TreeFile()) << TreeFileText(size);
    std::ofstream(RuleFile()) << RuleFileText(size);
}

RuleSetDir::~RuleSetDir()
{
    std::filesystem::remove_all(mPath);
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
