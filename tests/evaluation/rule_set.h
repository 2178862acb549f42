#ifndef ARBORIST_TESTS_EVALUATION_RULE_SET_H
#define ARBORIST_TESTS_EVALUATION_RULE_SET_H

#include <memory>
#include <string>

#include "arborist/loading/fault_tree_parser.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

/// The tag of every rule set in these tests.
inline const std::string TAG = "test";

/// Writes both files of a rule set and reads them.
inline std::shared_ptr<FaultTreeParser> Load(const TempDir& dir, const TreeXml& trees, const RuleXml& rules,
                                             const std::shared_ptr<DetectInfo>& detectInfo)
{
    dir.Write("FaultTrees.xml", trees.Text());
    dir.Write("FaultTreeRules.xml", rules.Text());
    auto parser = std::make_shared<FaultTreeParser>(detectInfo);
    parser->StartParse();
    return parser;
}

#endif
