// Node rules against only reading their files.

#include <fcntl.h>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

#include "arborist/evaluation/node_rule_engine.h"
#include "arborist/model/rule.h"
#include "bench/compare.h"
#include "bench/scratch_folder.h"

namespace {

constexpr int FILES = 5000;
constexpr int ROUNDS = 21;

std::shared_ptr<NodeRule> RuleOver(const std::string& path)
{
    auto rule = std::make_shared<NodeRule>();
    auto node = std::make_shared<NodeInfo>();
    node->SetParam("value");
    node->SetPath(path);
    rule->InsertNodeInfoList({node});
    rule->InsertParamMap({{"1", std::make_shared<Param>(Param{"value", "", "1", ""})},
                          {"2", std::make_shared<Param>(Param{"share", "double", "2", ""})}});
    NodeRule::LogicExpression expression;
    expression.SetType("calc");
    expression.SetRet("share");
    expression.SetExpress("value * 100 / (40000 + 8000)");
    rule->SetLogicExpression(expression);
    auto item = std::make_shared<OrLogic::LogicItem>();
    item->SetParamId("2");
    item->SetLogic("gt");
    item->SetValue("80");
    auto condition = std::make_shared<OrLogic>();
    condition->SetType(std::string(RuleChecker::MULTIPLE_LOGIC));
    condition->InsertLogicItemList({item});
    rule->InsertConditionList({condition});
    return rule;
}

std::size_t ReadAll(const std::vector<std::string>& paths)
{
    std::size_t bytes = 0;
    char block[4096];
    for (const auto& path : paths) {
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        std::string value;
        for (ssize_t got = 0; (got = read(file, block, sizeof(block))) > 0;) {
            value.append(block, static_cast<std::size_t>(got));
        }
        close(file);
        bytes += value.size();
    }
    return bytes;
}

std::size_t AskAll(const std::vector<std::shared_ptr<NodeRule>>& rules)
{
    NodeRuleEngine engine;
    std::size_t fired = 0;
    for (const auto& rule : rules) {
        fired += engine.IsFaultHappened(rule, "event") ? 1U : 0U;
    }
    return fired;
}

} // namespace

int main()
{
    bench::SilenceLog();
    const bench::ScratchFolder scratch;
    const std::string& folder = scratch.Path();
    std::vector<std::string> paths;
    std::vector<std::shared_ptr<NodeRule>> rules;
    for (int i = 0; i < FILES; ++i) {
        paths.push_back(folder + "/value" + std::to_string(i));
        std::ofstream(paths.back()) << 30000 + i << '\n';
        rules.push_back(RuleOver(paths.back()));
    }
    const auto times = bench::Alternate(
        ROUNDS, [&] { bench::Keep(AskAll(rules)); }, [&] { bench::Keep(ReadAll(paths)); });
    bench::Report("node rules: 5,000 files and formulas", times, 1.3);
}
