#include "diagnosis/sweep/rule_texts.h"

#include <algorithm>
#include <string_view>

#include "diagnosis/bundle/rule_paths.h"
#include "diagnosis/lint/sql/derived_tables.h"
#include "diagnosis/rule_source/rule_set.h"
#include "diagnosis/sweep/clock_statements.h"

namespace diagnosis {

namespace {

constexpr char FIXED_TABLE[] = "lumbraPlusData";

bool NamesFixedTable(const rule_source::CommonPart& common, const std::string& sql)
{
    const std::string lower = lint::LowerName(sql);
    return std::any_of(common.beans.begin(), common.beans.end(), [&lower](const rule_source::ThresholdBean& bean) {
        return bean.type == FIXED_TABLE && lower.find(lint::LowerName(bean.name)) != std::string::npos;
    });
}

bool ReadsClock(std::string_view sql)
{
    const char* const use = ClockUseOf(sql, false);
    return use != nullptr && std::string_view(use) == "reads_clock";
}

// External databases have no history, whatever the names of their columns, but a statement on them may read the clock; so
// may one that makes a table in their copies.
const char* ClockUseOfReference(const rule_source::CommandRule& rule, const rule_source::CommonPart& common)
{
    const rule_source::TableBean* const table = common.FindTable(rule.defDbName);
    const bool readsClock = ReadsClock(rule.sql)
        || (table != nullptr && std::any_of(table->createTables.begin(), table->createTables.end(),
            [](const rule_source::CreateTable& made) { return ReadsClock(made.sql); }));
    return readsClock ? "reads_clock" : nullptr;
}

std::map<std::string, std::string> RulesOfTheClock(const rule_source::RuleSet& rules)
{
    std::map<std::string, std::string> found;
    for (const rule_source::CommandRule& rule : rules.rules.commandRules) {
        const std::string sql(rule.sql);
        const char* const reason = rule.referenceDefDb ? ClockUseOfReference(rule, rules.commonPart)
                                                       : ClockUseOf(sql, NamesFixedTable(rules.commonPart, sql));
        if (reason != nullptr && !rule.isReplaced) {
            found.emplace(rule.name, reason);
        }
    }
    return found;
}

void AddTrees(const rule_source::Trees& trees, RuleTexts& texts)
{
    for (const rule_source::Tree& tree : trees.trees) {
        if (!tree.isKept) {
            continue;
        }
        texts.trees.emplace_back(tree.id);
        std::set<std::string>& ids = texts.eventsOfTrees.emplace_back();
        for (std::size_t event = tree.begin; event < tree.end; ++event) {
            ids.emplace(trees.events[event].id);
        }
    }
}

std::vector<std::string> RulesOfEvents(const rule_source::Trees& trees)
{
    std::set<std::string_view> names;
    for (const rule_source::TreeEvent& event : trees.events) {
        if (event.binding == nullptr) {
            continue;
        }
        for (const rule_source::BindingAlternative& alternative : event.binding->alternatives) {
            for (const rule_source::RuleName& rule : alternative.names) {
                names.insert(rule.name);
            }
        }
    }
    return {names.begin(), names.end()};
}

} // namespace

RuleTexts ReadRuleTexts(const Bundle& bundle)
{
    const rule_source::RuleSetFiles files =
        rule_source::ReadRuleSetFiles(rule_source::RuleSetPaths{TreeFilePath(bundle), RuleFilePath(bundle)});
    const rule_source::RuleSet rules(files, bundle.treeTag);
    RuleTexts texts;
    texts.rulesOfTheClock = RulesOfTheClock(rules);
    AddTrees(rules.trees, texts);
    texts.rules = RulesOfEvents(rules.trees);
    texts.areRead = rules.hasTrees && rules.hasRules;
    return texts;
}

} // namespace diagnosis
