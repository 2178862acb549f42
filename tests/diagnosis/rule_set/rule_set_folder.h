#ifndef ARBORIST_TESTS_DIAGNOSIS_RULE_SET_RULE_SET_FOLDER_H
#define ARBORIST_TESTS_DIAGNOSIS_RULE_SET_RULE_SET_FOLDER_H

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "diagnosis/rule_set/read_rule_set.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

/// Writes the two files of a rule set to a folder below `dir`.
inline void WriteRuleSet(const TempDir& dir, const std::string& folder, const TreeXml& trees, const RuleXml& rules)
{
    dir.Write(folder + "/FaultTrees.xml", trees.Text());
    dir.Write(folder + "/FaultTreeRules.xml", rules.Text());
}

/// Reads the rule set of a folder, which must be readable.
inline std::unique_ptr<diagnosis::rule_set::ReadRuleSet> ReadFolder(const std::string& folder)
{
    auto rules = std::make_unique<diagnosis::rule_set::ReadRuleSet>();
    const auto failure = ReadInto({folder, "", ""}, *rules);
    EXPECT_FALSE(failure) << failure->message;
    return rules;
}

#endif
