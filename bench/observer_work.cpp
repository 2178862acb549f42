// The same work without an observer in two programs: one with the library, one with a variant of it in which every call
// to an observer is empty. Their instructions are counted while ObservedWork runs.

#include <fstream>
#include <memory>
#include <string>

#include "arborist/deduction/fault_tree_visitor.h"
#include "arborist/evaluation/rule_engine.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/settings.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/utilities/device_paths.h"
#include "bench/alarm_rules.h"
#include "bench/compare.h"
#include "bench/event_log_generator.h"
#include "bench/rule_set_generator.h"
#include "bench/scratch_folder.h"

namespace {

struct NoFaults : CodeRuleRunner {
    bool RunCodeRule(std::vector<std::string>, std::vector<std::string>, std::vector<std::string>,
                     const std::string&) override
    {
        return false;
    }
};

struct RuleSet {
    explicit RuleSet(const std::string& folder)
    {
        const bench::RuleSetSize size{200, 4, 5, 2000, 8};
        std::ofstream(folder + "/FaultTrees.xml") << bench::TreeFileText(size);
        std::ofstream(folder + "/FaultTreeRules.xml") << bench::RuleFileText(size);
        info->mTreeTag = bench::RULE_SET_TAG;
        info->mRuleFileDir = folder;
        info->mDetectScene = 1;
        info->mDeviceDetails = std::make_shared<DeviceDetails>();
        info->mCodeRuleRunner = std::make_shared<NoFaults>();
        parser = std::make_shared<FaultTreeParser>(info);
        parser->StartParse();
        engine = std::make_unique<RuleEngine>(info, parser);
        visitor = std::make_unique<FaultTreeVisitor>(parser);
    }

    std::shared_ptr<DetectInfo> info = std::make_shared<DetectInfo>();
    std::shared_ptr<FaultTreeParser> parser;
    std::unique_ptr<RuleEngine> engine;
    std::unique_ptr<FaultTreeVisitor> visitor;
};

} // namespace

/// Runs every tree of a set with rules of all families, then alarm rules with tests over a log.
[[gnu::noinline]] void ObservedWork(RuleSet& rules, const std::vector<std::shared_ptr<AlarmRule>>& alarmRules)
{
    for (const auto& tree : rules.parser->GetFaultTrees()) {
        rules.engine->StartRunRules(tree);
        rules.visitor->DeduceRootCause(tree);
    }
    bench::DecideAll(alarmRules);
}

int main()
{
    bench::SilenceLog();
    const bench::ScratchFolder scratch;
    const std::string& folder = scratch.Path();
    EventLogShape shape;
    shape.rows = 20000;
    SetFaultTreeProperty(Settings::PROGRAM_DATA_DIR, folder);
    SetFaultTreeProperty(Settings::VERSION_NAME, GENERATED_VERSION);
    SetFaultTreeProperty(Settings::CURRENT_TIME, std::to_string(shape.now));
    GenerateEventLog(DevicePaths::EventLog(), shape);
    RuleSet rules(folder);
    ObservedWork(rules,
                 bench::Rules(bench::Tests::ONE_RULE_IN_FIVE, bench::Range::NARROW, shape.ids / 1000));
}
