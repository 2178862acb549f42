#include <filesystem>
#include <random>

#include <gtest/gtest.h>

#include "arborist/frame/arborist.h"
#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/detection/code_answers.h"
#include "diagnosis/evidence/detection_recorder.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"

namespace {

/// Results and log of one detection, as text.
struct Run {
    std::string results;
    std::vector<std::string> log;
};

std::string Text(const std::vector<std::shared_ptr<FaultTreeResult>>& results)
{
    std::string text;
    for (const auto& result : results) {
        text += result->mTreeId + " " + result->mVersion + (result->mIsFault ? " fault" : " no fault");
        for (const auto& cause : result->mRootCauseResults) {
            text += " " + cause->mNode->mId + "|" + cause->mFaultDescription;
            for (const auto& suggestion : cause->mSuggestions) {
                text += "," + suggestion;
            }
            for (const auto& repair : cause->mRepairInfos) {
                text += ";" + repair.mId;
            }
        }
        text += "\n";
    }
    return text;
}

Run RunBundle(const std::string& path, bool isObserved)
{
    LogCapture log;
    diagnosis::BundleSession session;
    const auto failure = session.Enter({path, path}, {});
    EXPECT_FALSE(failure.has_value()) << failure->message;
    const auto info = session.MakeDetectInfo();
    info->mCodeRuleRunner =
        std::make_shared<diagnosis::CodeAnswers>(session.GetBundle().codeAnswers, diagnosis::CodeRunner());
    Arborist engine(info);
    if (isObserved) {
        engine.SetObserver(std::make_shared<diagnosis::DetectionRecorder>(diagnosis::DetectionRecorder::Detail::EVIDENCE));
    }
    Run run;
    run.results = Text(engine.StartDetection());
    run.log = log.Lines();
    return run;
}

void ExpectSameRuns(const std::string& path)
{
    RunBundle(path, false); // creates what the first run of a bundle creates
    const Run plain = RunBundle(path, false);
    const Run observed = RunBundle(path, true);
    EXPECT_FALSE(plain.results.empty());
    EXPECT_EQ(observed.results, plain.results);
    EXPECT_EQ(observed.log, plain.log);
}

TEST(ObservedRunsTest, TheLaptopIsDiagnosedTheSame)
{
    const TempDir dir;
    PrepareLaptop("laptop");
    ExpectSameRuns(dir.Path("laptop"));
}

TEST(ObservedRunsTest, TheLinuxHostIsDiagnosedTheSame)
{
    const TempDir dir;
    std::filesystem::copy(std::string(ARBORIST_SOURCE_DIR) + "/examples/linux-host", dir.Path("host"),
        std::filesystem::copy_options::recursive);
    dir.Write("host/bundle.json",
        R"({"detectScene": 1, "treeTag": "LinuxHost", "settings": {"DeviceRootDir": "root"}})");
    dir.Write("host/root/proc/sys/vm/swappiness", "180\n");
    ExpectSameRuns(dir.Path("host"));
}

/// Random bundles with rules of all four families, some of them broken.
class RandomBundle {
public:
    explicit RandomBundle(unsigned seed) : mRandom(seed) {}

    void Write(const TempDir& dir)
    {
        RuleXml rules("Tag");
        std::vector<Xml> events;
        for (int number = 0; number < 12; ++number) {
            const std::string id = "E" + std::to_string(number);
            const std::string name = "r" + std::to_string(number);
            rules.Rule(AnyRule(name));
            rules.EventRule(id, {Chance(3) ? Multiple({name, "r" + std::to_string(mRandom() % 12)}) : Single(name)});
            rules.Repair(id, {{"R" + std::to_string(number), ""}});
            events.push_back(Basic(id));
        }
        const auto gate = Intermediate("G", And({events[0], events[1], events[2]}));
        std::vector<Xml> all(events.begin() + 3, events.end());
        all.push_back(gate);
        rules.CommonPart({Xml("thresholdsOrLumbraData").Attr("name", "C").Child(Xml("retrieveLumbraData").Child(
            AlarmIdXml("7", "9", {ParamsXml({ParamXml("1", "N", "int")})})))});
        dir.Write("b/bundle.json", BundleJson(R"(, "now": 1700000000, "tz": "UTC0")"));
        dir.Write("b/rules/FaultTrees.xml", TreeXml("Tag").Tree("T", Or(all)).Text());
        dir.Write("b/rules/FaultTreeRules.xml", rules.Text());
        dir.Write("b/node0", std::to_string(mRandom() % 10));
        WriteLog(dir);
    }

private:
    bool Chance(unsigned of) { return mRandom() % of == 0; }
    std::string Number(unsigned end) { return std::to_string(mRandom() % end); }
    Xml Test(const std::string& id) { return TestXml(Chance(2) ? "gt" : "lt", id, Chance(5) ? "" : Number(10)); }
    Xml Condition(const std::string& id)
    {
        return ConditionXml({Chance(2) ? SingleLogicXml(Test(id)) : MultipleLogicXml({Test(id), Test(id)})});
    }

    Xml AnyRule(const std::string& name)
    {
        const std::string scene = Chance(6) ? "2" : "1";
        switch (mRandom() % 4) {
        case 0:
            return AlarmRuleXml(name, {AlarmIdXml(Number(9), Number(10),
                {TimeXml(Chance(2) ? "latest" : Chance(2) ? "duration" : "daily_peak", Number(3), Number(4)),
                    ParamsXml({ParamXml("p", "N", "int")}), Condition("p")})
                .Attr("type", Chance(2) ? "param_eventid" : "").Attr("BeginFlag", Number(5))}, scene);
        case 1:
            return NodeRuleXml(name, {NodeInfoXml("V", "node" + Number(2)), ParamsXml({ParamXml("v", "V", "int")}),
                LogicExpressionXml("V-3-2", "V", "formula"), Condition("v")}, scene);
        case 2:
            return CodeRuleXml(name, "CODE" + name, "info", scene);
        default:
            return CommandRuleXml(name, scene).Child(Xml("referenceCommonPart").TextChild("commonPartName", "C"))
                .Child(Xml("queryReturnParam").Child(ParamsXml({ParamXml("n", "n", "int")})))
                .Child(AnalysisMethodXml(Chance(3) ? "normalization" : "",
                    {Xml("sql").Text(Chance(4) ? "select no" : "select max(N) as n from C"), Condition("n")}));
        }
    }

    void WriteLog(const TempDir& dir)
    {
        if (Chance(5)) {
            return;
        }
        EventLogBuilder log;
        for (auto row = mRandom() % 30; row > 0; --row) {
            log.Row({1700000000 - static_cast<std::int64_t>(mRandom() % 300000), static_cast<std::int64_t>(7 + mRandom() % 3),
                Number(2), Chance(6) ? "no json" : "{\"N\":" + Number(10) + "}"});
        }
        log.WriteTo(dir.Path("b/programdata/Comms/Lumbra/workDir/0/log.db"));
    }

    std::mt19937 mRandom;
};

TEST(ObservedRunsTest, RandomBundlesAreDiagnosedTheSame)
{
    const unsigned seed = std::random_device()();
    for (unsigned round = 0; round < 40; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed + round));
        const TempDir dir;
        RandomBundle(seed + round).Write(dir);
        ExpectSameRuns(dir.Path("b"));
    }
}

} // namespace
