// A sweep of a large event log with many alarm rules, against one detection as of its end.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "arborist/arborist.h"
#include "arborist/utilities/device_paths.h"
#include "bench/compare.h"
#include "bench/event_log_generator.h"

namespace {

constexpr int ROUNDS = 5;
constexpr int RULES = 500;
constexpr int RULES_OF_TREE = 25;

// Each rule counts its own part of the ids in three windows, one in five with a test. The thresholds are far above the
// mean, so that some are reached for a while.
std::string RuleText(int number, std::int32_t idsOfRule, std::int32_t idsOfBlock)
{
    const std::int32_t firstNumber = number * idsOfRule;
    const std::int32_t first = FirstIdOfBlock(firstNumber / idsOfBlock) + firstNumber % idsOfBlock;
    const bool isTested = number % 5 == 0;
    const auto window = [](const char* type, int period, int threshold) {
        return std::string("<time type=\"") + type + "\" period=\"" + std::to_string(period) + "\" threshold=\"" +
            std::to_string(threshold) + "\"/>";
    };
    return "<rule><alarmRule name=\"R" + std::to_string(number) + "\" detectScene=\"1\"><alarmId BeginFlag=\"" +
        (number % 2 == 0 ? "1" : "4") + "\"" + (isTested ? " type=\"param_eventid\"" : "") + " Eventid_Min=\"" +
        std::to_string(first) + "\" Eventid_Max=\"" + std::to_string(first + idsOfRule - 1) + "\">" +
        window("duration", 7, 62) + window("daily_peak", 14, 18) + window("latest", 3, 36) +
        (isTested ? "<params><param id=\"L\" key=\"level\" type=\"int\"/></params><condition><or type=\"single_logic\">"
                    "<ge><id>L</id><value>1</value></ge></or></condition>" : "") +
        "</alarmId></alarmRule></rule>\n";
}

void WriteRuleSet(const std::string& folder, const EventLogShape& shape)
{
    std::filesystem::create_directories(folder);
    std::ofstream trees(folder + "/FaultTrees.xml");
    std::ofstream rules(folder + "/FaultTreeRules.xml");
    trees << "<FaultTrees version=\"1\"><bench>\n";
    rules << "<FaultTreeRules><EventRules><bench>\n";
    for (int number = 0; number < RULES; ++number) {
        const std::string event = "E" + std::to_string(number);
        if (number % RULES_OF_TREE == 0) {
            const int tree = number / RULES_OF_TREE;
            trees << "<Fault-Tree id=\"T" << tree << "\" version=\"1\" type=\"bench\"><Intermediate-Event><ID>T" << tree
                  << "</ID><Or-Gate>\n";
        }
        trees << "<Basic-Event><ID>" << event << "</ID></Basic-Event>\n";
        trees << (number % RULES_OF_TREE == RULES_OF_TREE - 1 ? "</Or-Gate></Intermediate-Event></Fault-Tree>\n" : "");
        rules << "<Event><ID>" << event << "</ID><or type=\"singleRule\"><Rule><Rule-name>R" << number
              << "</Rule-name></Rule></or></Event>\n";
    }
    trees << "</bench></FaultTrees>\n";
    rules << "</bench></EventRules><RuleList><bench>\n";
    for (int number = 0; number < RULES; ++number) {
        rules << RuleText(number, shape.ids / RULES, 1000);
    }
    rules << "</bench></RuleList></FaultTreeRules>\n";
}

// Counts what it is told, as an observer of a command would keep it.
class Changes : public SweepObserver {
public:
    void OnPlan(SweepPlan plan) override { moments = plan.moments; }
    void OnTreeJudged(std::int64_t, std::size_t, const Evidence::TreeResult& result,
        const std::vector<Evidence::RootCause>&) override
    {
        ++judged;
        faults += result.isFault ? 1 : 0;
    }

    std::size_t moments = 0;
    std::size_t judged = 0;
    std::size_t faults = 0;
};

} // namespace

int main()
{
    bench::SilenceLog();
    const std::string folder = std::filesystem::temp_directory_path().string() + "/arborist_sweep_bench";
    SetFaultTreeProperty(Settings::PROGRAM_DATA_DIR, folder);
    SetFaultTreeProperty(Settings::VERSION_NAME, GENERATED_VERSION);
    EventLogShape shape;
    GenerateEventLog(DevicePaths::EventLog(), shape);
    WriteRuleSet(folder + "/rules", shape);
    const auto info = std::make_shared<DetectInfo>();
    info->mDetectScene = 1;
    info->mTreeTag = "bench";
    info->mRuleFileDir = folder + "/rules";
    Changes changes;
    const auto sweep = [&] {
        changes = {};
        LogSweep(info).Run({shape.now - std::int64_t{shape.days} * 86400, shape.now}, changes);
    };
    const auto detect = [&] {
        SetFaultTreeProperty(Settings::CURRENT_TIME, std::to_string(shape.now));
        SetFaultTreeProperty(Settings::AS_OF, std::to_string(shape.now));
        Arborist engine(info);
        engine.SetObserver(std::make_shared<DetectionObserver>());
        bench::Keep(engine.StartDetection());
    };
    const bench::Pair pair = bench::Alternate(ROUNDS, sweep, detect);
    bench::Report("sweep", pair, 5);
    std::fprintf(stderr, "sweep: %zu moments, trees judged %zu times, %zu faults\n", changes.moments, changes.judged,
        changes.faults);
    std::filesystem::remove_all(folder);
    return changes.faults == 0 || changes.moments == 0 ? 1 : 0; // a rule set that isn't read would be fast
}
