// Random rule sets, each loaded once for several random devices: results, evidence and log lines are those of engines
// that read the files themselves.

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "arborist/frame/arborist.h"
#include "arborist/frame/loaded_rule_set.h"
#include "arborist/frame/log.h"
#include "tests/frame/arborist_fixture.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/random_cases.h"
#include "tests/support/recording_observer.h"

namespace {

constexpr std::int64_t NOW = 1700000000;
constexpr std::int64_t DAY = 86400;
constexpr int DEVICES = 4;

class LoadedRuleSetProperty : public ArboristTest {
protected:
    LoadedRuleSetProperty()
    {
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW));
        mSettings.Set(Settings::APP_DATABASE_DIR, mDir.Path("copies"));
    }

    std::string Number(std::size_t end) { return std::to_string(mRandom.Below(end)); }

    Xml Conditions()
    {
        const auto test = [this] {
            return TestXml(mRandom.OneOf({"gt", "lt", "eq", "ne"}), mRandom.OneOf({"p", "q", "r"}), Number(4));
        };
        return ConditionXml({mRandom.OnceIn(2) ? SingleLogicXml(test()) : MultipleLogicXml({test(), test()})});
    }

    Xml AlarmRule(const std::string& name)
    {
        std::vector<Xml> parts;
        for (const char* const kind : {"duration", "daily_peak", "latest"}) {
            if (mRandom.OnceIn(2)) {
                parts.push_back(TimeXml(kind, Number(40), mRandom.OnceIn(9) ? "x" : Number(4)));
            }
        }
        parts.push_back(ParamsXml({ParamXml("p", "a", "int"), ParamXml("q", "b", "string")}));
        parts.push_back(Conditions());
        return AlarmRuleXml(name, {AlarmIdXml(Number(3), mRandom.OnceIn(9) ? "x" : "5", parts)
            .Attr("type", mRandom.OnceIn(2) ? "param_eventid" : "")});
    }

    Xml CommandRule(const std::string& name)
    {
        Xml test("ge");
        if (mRandom.OnceIn(2)) {
            test.Attr("type", "dynamic").TextChild("id", "n").TextChild("commonPartParamId", "limit");
        } else {
            test.Attr("type", "static").TextChild("id", "n").TextChild("value", Number(4));
        }
        return CommandRuleXml(name).Child(Xml("referenceCommonPart").TextChild("commonPartName", "lag"))
            .Child(Xml("queryReturnParam").Child(ParamsXml({ParamXml("n", "n", "int")})))
            .Child(AnalysisMethodXml("", {Xml("sql").Text(mRandom.OneOf({"select count(*) as n from lag",
                "select max(ms) as n from lag", "select n from missing"})), ConditionXml({SingleLogicXml(test)})}));
    }

    Xml NodeRule(const std::string& name)
    {
        std::vector<Xml> parts{NodeInfoXml("a", "/sys/a"), NodeInfoXml("b", "/sys/b"),
            ParamsXml({ParamXml("p", "a", "int"), ParamXml("q", "b", "int"), ParamXml("r", "r", "double")}), Conditions()};
        if (mRandom.OnceIn(2)) {
            parts.push_back(LogicExpressionXml("a - b", "r", "calc"));
        }
        return NodeRuleXml(name, parts);
    }

    static Xml LagXml()
    {
        const Xml condition = Xml("condition").Child(Xml("or").Attr("type", "multiple_logic").Child(
            Xml("in").TextChild("id", "ram").Child(Xml("set").TextChild("value", "8G").TextChild("value", "16G"))));
        return Xml("thresholdsOrLumbraData").Attr("name", "lag")
            .Child(Xml("SystemParamTable").Child(ParamsXml({ParamXml("ram", "RAM_SIZE", "string")})))
            .Child(Xml("ThresholdParamTable").Child(ParamsXml({ParamXml("limit", "limit", "int")})))
            .Child(Xml("ThresholdMappingTable").Child(Xml("ThresholdItem").Child(condition).Child(
                Xml("thresholds").Child(Xml("threshold").Attr("id", "limit").Attr("value", "2")))))
            .Child(Xml("retrieveLumbraData").Child(AlarmIdXml("1", "3", {ParamsXml({ParamXml("1", "a", "int")})})));
    }

    std::vector<Xml> Events(std::size_t depth)
    {
        std::vector<Xml> events;
        for (std::size_t event = 1 + mRandom.Below(3); event > 0; --event) {
            if (depth < 3 && mRandom.OnceIn(3)) {
                const auto below = Events(depth + 1);
                events.push_back(Intermediate("G" + Number(4), mRandom.OnceIn(2) ? Or(below) : And(below)));
            } else if (mRandom.OnceIn(6)) {
                events.push_back(Xml("Other").TextChild("ID", "E" + Number(6)));
            } else {
                events.push_back(Basic("E" + Number(6)));
            }
        }
        return events;
    }

    void WriteRuleSet()
    {
        TreeXml trees(TAG);
        for (const char* const tree : {"T1", "T2"}) {
            trees.Tree(tree, mRandom.OnceIn(2) ? Or(Events(0)) : And(Events(0)));
        }
        RuleXml rules(TAG);
        const std::vector<std::string> names{"A1", "A2", "C1", "C2", "N1", "N2", "Q", "missing"};
        for (const char* const id : {"E0", "E1", "E2", "E3", "E4", "G0", "G1"}) {
            std::vector<Xml> alternatives;
            for (std::size_t count = 1 + mRandom.Below(2); count > 0; --count) {
                alternatives.push_back(mRandom.OnceIn(3) ? Multiple({mRandom.OneOf(names), mRandom.OneOf(names)})
                                                         : Single(mRandom.OneOf(names)));
            }
            rules.EventRule(id, alternatives).FaultDescription(id, {"F"});
        }
        rules.Rule(AlarmRule("A1")).Rule(AlarmRule("A2")).Rule(CommandRule("C1")).Rule(CommandRule("C2"));
        rules.Rule(NodeRule("N1")).Rule(NodeRule("N2")).Rule(CodeRuleXml("Q", "CODE"));
        if (!mRandom.OnceIn(5)) {
            rules.CommonPart({LagXml()});
        }
        WriteTrees(trees);
        WriteRules(rules);
        if (mRandom.OnceIn(12)) {
            mDir.Write("FaultTreeRules.xml", "<broken 100%s");
        }
    }

    void MakeDevice()
    {
        const std::string path = mDir.Path("programdata/Comms/Lumbra/workDir/0/log.db");
        std::filesystem::remove(path);
        if (!mRandom.OnceIn(5)) {
            EventLogBuilder log;
            for (std::size_t row = mRandom.Below(40); row > 0; --row) {
                log.Row({NOW - static_cast<std::int64_t>(mRandom.Below(50 * DAY)), static_cast<std::int64_t>(mRandom.Below(6)),
                    "", mRandom.OnceIn(8) ? "{" : R"({"a":)" + Number(4) + R"(,"b":"2"})"});
            }
            log.WriteTo(path);
        }
        WriteNode("a", Number(5));
        WriteNode("b", Number(5));
        mRunner->answer = mRandom.OnceIn(2);
        mInfo->mDetectScene = mRandom.OnceIn(6) ? 2 : 1;
        mInfo->mDeviceDetails = mRandom.OnceIn(2) ? std::make_shared<DeviceDetails>()
            : std::make_shared<DeviceDetails>("", "", "", "i7", mRandom.OneOf({"4G", "8G"}), "4K", "5000");
    }

    std::vector<std::string> Told(Arborist& engine)
    {
        mLog.Clear();
        const auto observer = std::make_shared<RecordingObserver>();
        engine.SetObserver(observer);
        auto told = Texts(engine.StartDetection());
        mFaults += std::any_of(told.begin(), told.end(), [](const std::string& text) { return text.find(" fault ") != std::string::npos; });
        told.insert(told.end(), observer->Lines().begin(), observer->Lines().end());
        for (int level = FT::LEVEL_TRACE; level <= FT::LEVEL_FATAL; ++level) {
            for (const std::string& line : mLog.Lines(level)) {
                told.push_back(std::to_string(level) + line);
            }
        }
        const auto lines = mLog.Lines();
        told.insert(told.end(), lines.begin(), lines.end());
        return told;
    }

    RandomCases mRandom{12};
    int mFaults = 0;
};

TEST_F(LoadedRuleSetProperty, EveryDetectionFromItIsThatOfAFreshReading)
{
    for (int number = 0; number < mRandom.GetCount(); ++number) {
        WriteRuleSet();
        const auto ruleSet = std::make_shared<LoadedRuleSet>(*mInfo);
        for (int device = 0; device < DEVICES; ++device) {
            MakeDevice();
            Arborist plain(mInfo);
            Arborist loaded(mInfo, ruleSet);
            const auto expected = Told(plain);
            ASSERT_EQ(Told(loaded), expected)
                << "seed " << mRandom.GetSeed() << ", rule set " << number << ", device " << device;
        }
    }
    EXPECT_GT(mFaults, 0);
}

} // namespace
