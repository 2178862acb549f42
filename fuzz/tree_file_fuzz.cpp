// Any bytes as the tree file of a rule set, with the section "t".

#include "arborist/loading/fault_tree_parser.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDir dir;
    dir.Write(FaultTreeParser::FAULT_TREE_FILE, data, size);
    auto detectInfo = std::make_shared<DetectInfo>();
    detectInfo->mTreeTag = "t";
    detectInfo->mRuleFileDir = dir.Path("");
    FaultTreeParser parser(detectInfo);
    parser.StartParse();
    for (const auto& tree : parser.GetFaultTrees()) {
        tree->Reset();
        tree->Check();
    }
    return 0;
}
