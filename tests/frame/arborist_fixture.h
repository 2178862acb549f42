#ifndef ARBORIST_TESTS_FRAME_ARBORIST_FIXTURE_H
#define ARBORIST_TESTS_FRAME_ARBORIST_FIXTURE_H

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "arborist/frame/arborist.h"
#include "arborist/frame/settings.h"
#include "tests/support/code_runner_stub.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

inline const std::string TAG = "Laptop";

/// "id[description suggestions repairs]"
inline std::string Text(const FaultTreeResult::RootCauseResult& cause)
{
    std::string text = cause.mNode->mId + "[" + cause.mFaultDescription;
    for (const auto& suggestion : cause.mSuggestions) {
        text += " " + suggestion;
    }
    for (const auto& repair : cause.mRepairInfos) {
        text += " " + repair.mId;
    }
    return text + "]";
}

/// Each as "id vversion fault cause cause"
inline std::vector<std::string> Texts(const std::vector<std::shared_ptr<FaultTreeResult>>& results)
{
    std::vector<std::string> texts;
    for (const auto& result : results) {
        std::string text = result->mTreeId + " v" + result->mVersion + (result->mIsFault ? " fault" : " no fault");
        for (const auto& cause : result->mRootCauseResults) {
            text += " " + Text(*cause);
        }
        texts.push_back(text);
    }
    return texts;
}

/// A node rule that compares a formula over its nodes, which are named like their files, with a limit.
inline Xml FormulaRule(const std::string& name, const std::vector<std::string>& files, const std::string& formula,
                       const Xml& test)
{
    std::vector<Xml> parts;
    std::vector<Xml> params{ParamXml("result", "result", "double")};
    for (const auto& file : files) {
        parts.push_back(NodeInfoXml(file, "/sys/" + file));
        params.push_back(ParamXml(file, file, "int"));
    }
    parts.push_back(ParamsXml(params));
    parts.push_back(LogicExpressionXml(formula, "result", "calc"));
    parts.push_back(ConditionXml({MultipleLogicXml({test})}));
    return NodeRuleXml(name, parts);
}

/// An engine's input: a rule set in the current directory, and a device whose node files are below "device".
class ArboristTest : public testing::Test {
protected:
    ArboristTest()
    {
        mInfo->mCodeRuleRunner = mRunner;
        mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("device"));
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("programdata"));
    }

    void WriteTrees(const TreeXml& trees) { mDir.Write("FaultTrees.xml", trees.Text()); }
    void WriteRules(const RuleXml& rules) { mDir.Write("FaultTreeRules.xml", rules.Text()); }
    void WriteNode(const std::string& file, const std::string& value) { mDir.Write("device/sys/" + file, value); }

    // A rule set for a worn and old battery, with an AND beside an OR.
    void WriteBattery()
    {
        WriteTrees(TreeXml(TAG).Version("7").Tree(
            "battery",
            Or({Intermediate("aged", And({Basic("wear", {"Wear", "", "{}", ""}), Basic("cycles")})), Basic("hot")})));
        WriteRules(RuleXml(TAG)
                       .Rule(FormulaRule("worn", {"full", "design"}, "full / design", TestXml("lt", "result", "0.6")))
                       .Rule(FormulaRule("old", {"count"}, "count", TestXml("ge", "result", "500")))
                       .Rule(FormulaRule("heat", {"temp"}, "temp - 40 - 5", TestXml("gt", "result", "20")))
                       .EventRule("wear", {Single("worn")})
                       .EventRule("cycles", {Single("old")})
                       .EventRule("hot", {Single("heat")})
                       .FaultDescription("wear", {"F1", "F2"})
                       .Solution("wear", {"S1", "S2"})
                       .Repair("wear", {{"R1", ""}, {"R2", ""}}));
        WriteNode("full", "29000\n");
        WriteNode("design", "50000\n");
        WriteNode("count", "612\n");
        WriteNode("temp", "31\n");
    }

    // The lines of the facade, without those of its helpers.
    std::vector<std::string> OwnLines(int level) const
    {
        std::vector<std::string> lines;
        for (const auto& line : mLog.Lines(level)) {
            if (line.rfind("FUNc:Arborist::", 0) == 0) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::shared_ptr<CodeRunnerStub> mRunner = std::make_shared<CodeRunnerStub>();
    std::shared_ptr<DetectInfo> mInfo = DetectInfoFor(mDir, TAG);
};

#endif
