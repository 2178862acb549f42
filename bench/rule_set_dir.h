#ifndef ARBORIST_BENCH_RULE_SET_DIR_H
#define ARBORIST_BENCH_RULE_SET_DIR_H

#include <memory>
#include <string>

#include "arborist/loading/fault_tree_parser.h"
#include "bench/rule_set_generator.h"
#include "bench/scratch_folder.h"

namespace bench {

/// A folder with the two files of a generated rule set, removed at the end.
class RuleSetDir {
public:
    explicit RuleSetDir(const RuleSetSize& size);

    const std::string& Path() const { return mFolder.Path(); }
    std::string TreeFile() const { return Path() + "/" + FaultTreeParser::FAULT_TREE_FILE; }
    std::string RuleFile() const { return Path() + "/" + FaultTreeParser::FAULT_TREE_RULES_FILE; }

private:
    ScratchFolder mFolder;
};

/// Lets the engine's loader read such a folder.
std::unique_ptr<FaultTreeParser> Parsed(const RuleSetDir& dir, const RuleSetSize& size);

} // namespace bench

#endif
