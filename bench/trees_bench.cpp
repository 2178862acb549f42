// Costs that must not grow with the rule set: the run of one tree, and a query for one detect code.

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <unordered_map>

#include "arborist/deduction/fault_tree_visitor.h"
#include "arborist/evaluation/rule_engine.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/arborist.h"
#include "arborist/frame/detect_info.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/fault_tree.h"
#include "bench/compare.h"
#include "bench/scratch_folder.h"

namespace {

constexpr int ROUNDS = 7;
constexpr int QUERY_ROUNDS = 51;
constexpr int EVENTS_OF_A_TREE = 5;
constexpr int EVENT_RULES = 50000;
constexpr int CALLS = 20000;

struct NoFaults : CodeRuleRunner {
    bool RunCodeRule(std::vector<std::string>, std::vector<std::string>, std::vector<std::string>,
                     const std::string&) override
    {
        return false;
    }
};

std::string Id(const char* word, int number)
{
    return std::string(word).append(std::to_string(number));
}

void WriteTrees(const std::string& folder, int trees)
{
    std::ofstream out(folder + "/FaultTrees.xml");
    out << "<FaultTrees version=\"1\"><bench>\n";
    for (int tree = 0; tree < trees; ++tree) {
        out << "<Fault-Tree id=\"" << Id("T", tree) << "\" version=\"1\" type=\"t\"><Intermediate-Event><ID>"
            << Id("T", tree) << "</ID><Or-Gate>";
        for (int event = 0; event < EVENTS_OF_A_TREE; ++event) {
            out << "<Basic-Event><ID>" << Id("E", tree * EVENTS_OF_A_TREE + event) << "</ID></Basic-Event>";
        }
        out << "</Or-Gate></Intermediate-Event></Fault-Tree>\n";
    }
    out << "</bench></FaultTrees>";
}

// Each event has a code rule of its own, as long as there are rules.
void WriteRules(const std::string& folder, int eventRules, int codeRules)
{
    std::ofstream out(folder + "/FaultTreeRules.xml");
    out << "<FaultTreeRules><EventRules><bench>\n";
    for (int event = 0; event < eventRules; ++event) {
        out << "<Event><ID>" << Id("E", event) << "</ID><or type=\"singleRule\"><Rule><Rule-name>"
            << Id("rule", event % codeRules) << "</Rule-name></Rule></or></Event>\n";
    }
    out << "</bench></EventRules><EventFaultDescriptions><bench>\n";
    for (int event = 0; event < eventRules; ++event) {
        out << "<Event><ID>" << Id("E", event) << "</ID><FaultDescriptions><description id=\"" << Id("F", event)
            << "\"/></FaultDescriptions></Event>\n";
    }
    out << "</bench></EventFaultDescriptions><RuleList><bench>\n";
    for (int rule = 0; rule < codeRules; ++rule) {
        out << "<rule><codeRule name=\"" << Id("rule", rule) << "\" detectScene=\"1\"><detectInfo id=\""
            << Id("CODE", 100000 + rule) << "\"/></codeRule></rule>\n";
    }
    out << "</bench></RuleList></FaultTreeRules>";
}

std::shared_ptr<DetectInfo> InfoFor(const std::string& folder)
{
    auto info = std::make_shared<DetectInfo>();
    info->mDetectScene = 1;
    info->mTreeTag = "bench";
    info->mRuleFileDir = folder;
    info->mDeviceDetails = std::make_shared<DeviceDetails>();
    info->mCodeRuleRunner = std::make_shared<NoFaults>();
    return info;
}

// The engine of a rule set with this many trees, loaded and ready to run.
class Loaded {
public:
    Loaded(const std::string& folder, int trees) : mInfo(InfoFor(folder))
    {
        WriteTrees(folder, trees);
        mParser->StartParse();
    }

    void RunTrees()
    {
        for (const auto& tree : mParser->GetFaultTrees()) {
            mEngine.StartRunRules(tree);
            mVisitor.DeduceRootCause(tree);
        }
    }

private:
    std::shared_ptr<DetectInfo> mInfo;
    std::shared_ptr<FaultTreeParser> mParser = std::make_shared<FaultTreeParser>(mInfo);
    RuleEngine mEngine{mInfo, mParser};
    FaultTreeVisitor mVisitor{mParser};
};

void CompareTrees(const std::string& folder)
{
    WriteRules(folder, EVENT_RULES, 20000);
    Loaded few(folder, 1000);
    Loaded many(folder, 10000);
    auto times = bench::Alternate(
        ROUNDS, [&] { many.RunTrees(); }, [&] { few.RunTrees(); });
    bench::Report("many trees: 10,000 against 1,000, 50,000 event rules", times, 11.0);
}

template <typename Call>
void AskAll(int codeRules, Call call)
{
    for (int i = 0; i < CALLS; ++i) {
        bench::Keep(call(Id("CODE", 100000 + i * 7919 % codeRules)));
    }
}

std::unordered_map<std::string, std::string> IdsByCode(int codeRules)
{
    std::unordered_map<std::string, std::string> ids;
    for (int i = 0; i < codeRules; ++i) {
        ids[Id("CODE", 100000 + i)] = Id("F", i);
    }
    return ids;
}

void CompareQueries(const std::string& few, const std::string& many)
{
    constexpr int FEW = 2000;
    constexpr int MANY = 20000;
    WriteTrees(few, FEW / EVENTS_OF_A_TREE);
    WriteRules(few, FEW, FEW);
    WriteTrees(many, MANY / EVENTS_OF_A_TREE);
    WriteRules(many, MANY, MANY);
    Arborist ofFew(InfoFor(few));
    Arborist ofMany(InfoFor(many));
    ofFew.GetCodeRuleFaultDescId("CODE100000");
    ofMany.GetCodeRuleFaultDescId("CODE100000");
    // Queries every code of both sets. Only the distance of the records in memory may make a difference, as in a hash
    // look-up.
    const auto askForIds = [](Arborist& arborist, int codeRules) {
        AskAll(codeRules, [&](const std::string& code) { return arborist.GetCodeRuleFaultDescId(code).size(); });
    };
    const auto lookUpIds = [](const auto& ids, int codeRules) {
        AskAll(codeRules, [&](const std::string& code) { return ids.at(code).size(); });
    };
    const auto ours = bench::Alternate(
        QUERY_ROUNDS, [&] { askForIds(ofMany, MANY); }, [&] { askForIds(ofFew, FEW); });
    const auto hashed = bench::Alternate(
        QUERY_ROUNDS, [&, ids = IdsByCode(MANY)] { lookUpIds(ids, MANY); },
        [&, ids = IdsByCode(FEW)] { lookUpIds(ids, FEW); });
    bench::Report("queries: growth of a call from 2,000 to 20,000 code rules against that of a hash look-up",
                  {ours.ours / ours.baseline, hashed.ours / hashed.baseline}, 1.2);
    std::printf("# queries: an id in %.3f microseconds, by a hash look-up in %.3f\n", ours.ours * 1000 / CALLS,
                hashed.ours * 1000 / CALLS);
    std::string codes;
    for (int i = 0; i < MANY; ++i) {
        codes += Id("CODE", 100000 + i) + '\n';
    }
    const auto times = bench::Alternate(
        ROUNDS, [&] { AskAll(MANY, [&](const std::string& code) { return ofMany.IsRunRule(code); }); },
        [&] { AskAll(MANY, [&](const std::string& code) { return codes.find(code); }); });
    bench::Report("queries: IsRunRule, 20,000 rules, against one pass over the codes", times, 1.1);
}

} // namespace

int main()
{
    bench::SilenceLog();
    const bench::ScratchFolder scratch;
    const std::string& folder = scratch.Path();
    std::filesystem::create_directory(folder + "/few");
    std::filesystem::create_directory(folder + "/many");
    CompareTrees(folder);
    CompareQueries(folder + "/few", folder + "/many");
}
