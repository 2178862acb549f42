#include "arborist/evaluation/common_part_preparation.h"

#include <gmock/gmock.h>

#include "arborist/evaluation/rule_engine.h"
#include "arborist/frame/settings.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/common_part.h"
#include "tests/evaluation/rule_set.h"
#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/recording_observer.h"
#include "tests/support/settings_guard.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t NOW = 1700000000;
constexpr char DERIVED[] = "root/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db";

Xml ThresholdsXml(const std::string& name)
{
    return Xml("thresholdsOrLumbraData")
        .Attr("name", name)
        .Child(Xml("SystemParamTable").Child(ParamsXml({ParamXml("cpu", "CPU_NAME", "string")})))
        .Child(Xml("retrieveLumbraData")
                   .Child(Xml("alarmId")
                              .Attr("Eventid_Min", "7")
                              .Attr("Eventid_Max", "7")
                              .Child(ParamsXml({ParamXml("1", "n", "int")}))));
}

Xml TablesXml(const std::string& directory)
{
    return Xml("defDBTable")
        .Attr("name", "Ext")
        .Child(Xml("dbPaths").Child(
            Xml("dbPath").Attr("decompression", "false").Attr("type", "").Attr("value", directory)))
        .Child(Xml("dbName").Attr("name", ".*\\.db"));
}

class CommonPartPreparation : public testing::Test {
protected:
    CommonPartPreparation()
    {
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("root"));
        mSettings.Set(Settings::APP_DATABASE_DIR, mDir.Path("copies"));
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW));
        EventLogBuilder().Row({NOW - 1, 7, "", R"({"n":3})"}).WriteTo(mDir.Path("root/Comms/Lumbra/workDir/0/log.db"));
        mDir.MakeDir("device");
        EventLogBuilder::Run(mDir.Path("device/ext.db"), "create table e(a)");
    }

    // Prepares a rule set with these entries in its common part; without entries it has none.
    void Init(const std::vector<Xml>& entries)
    {
        const auto detectInfo = DetectInfoFor(mDir, TAG);
        detectInfo->mDeviceDetails = mDevice;
        RuleXml rules(TAG);
        if (!entries.empty()) {
            rules.CommonPart(entries);
        }
        mParser = Load(mDir, TreeXml(TAG).Tree("T", Or({Basic("A")})), rules, detectInfo);
        mLog.Clear();
        RuleEngine engine(detectInfo, mParser);
        engine.SetObserver(&mObserver);
        engine.Init();
    }

    std::vector<std::string> DerivedRows() const
    {
        return DatabaseRows(mDir.Path(DERIVED), "select * from Jank");
    }

    // The place of an element of the rule file.
    std::string RuleLine(int line) const
    {
        return mParser->GetRuleFileReport().path + ":" + std::to_string(line);
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::shared_ptr<DeviceDetails> mDevice =
        std::make_shared<DeviceDetails>("", "", "", "i7", "16G", "4K", "5000");
    RecordingObserver mObserver;
    std::shared_ptr<FaultTreeParser> mParser;
};

TEST_F(CommonPartPreparation, WithoutACommonPartOnlyTheDirectoryIsMade)
{
    Init({});
    EXPECT_TRUE(mDir.Has("root/Comms/Lumbra/zxdetectrepair/databases"));
    EXPECT_FALSE(mDir.Has(DERIVED));
    EXPECT_FALSE(mDir.Has("copies"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    EXPECT_THAT(mObserver.Lines(), IsEmpty());
}

TEST_F(CommonPartPreparation, WithoutAParserOrDetectInfoOnlyTheDirectoryIsMade)
{
    RuleEngine(nullptr, nullptr).Init();
    EXPECT_TRUE(mDir.Has("root/Comms/Lumbra/zxdetectrepair/databases"));
}

TEST_F(CommonPartPreparation, TablesAloneAreCopiedAndNothingIsDerived)
{
    Init({TablesXml(mDir.Path("device"))});
    EXPECT_FALSE(mDir.Has(DERIVED));
    EXPECT_THAT(mParser->GetCommonPart()->GetDefDbTableCommonList()[0]->GetCopyDbFileList(),
        ElementsAre(mDir.Path("copies/ext.db")));
}

TEST_F(CommonPartPreparation, BothKindsArePreparedAndTheDeviceSetsItsParameters)
{
    Init({TablesXml(mDir.Path("device")), ThresholdsXml("Jank")});
    EXPECT_THAT(DerivedRows(), ElementsAre("1|3|1699999999"));
    EXPECT_TRUE(mDir.Has("copies/ext.db"));
    EXPECT_EQ(mParser->GetCommonPart()->GetThresholdLumbraList()[0]->GetSystemParamMap().at("cpu")->value, "i7");
}

TEST_F(CommonPartPreparation, DatabasesWithoutAFolderForTheirCopiesAreTrouble)
{
    mSettings.Set(Settings::APP_DATABASE_DIR, "");
    Init({TablesXml(mDir.Path("device"))});
    EXPECT_THAT(mObserver.Lines(), ElementsAre("trouble copies Ext " + RuleLine(3)));
}

TEST_F(CommonPartPreparation, AFileThatCannotBeCopiedBesideASoundOneIsTroubleAndMissed)
{
    const Xml found = TablesXml(mDir.Path("device"));
    Init({found});
    EXPECT_THAT(mObserver.Lines(), IsEmpty());
    EXPECT_FALSE(mParser->GetCommonPart()->GetDefDbTableCommonList().front()->LacksCopies());
    const std::string archive = mDir.Write("device/zipped.db", "no archive");
    Init({found});
    EXPECT_THAT(mObserver.Lines(), ElementsAre(testing::HasSubstr(archive)));
    const auto& bean = *mParser->GetCommonPart()->GetDefDbTableCommonList().front();
    EXPECT_TRUE(bean.LacksCopies());
    EXPECT_EQ(bean.GetCopyDbFileList().size(), 1U);
}

TEST_F(CommonPartPreparation, AStatementThatFailsIsTroubleBeforeAnyRule)
{
    Init({ThresholdsXml("drop")});
    EXPECT_THAT(mObserver.Lines(),
        ElementsAre("trouble statement " + mDir.Path(DERIVED) + ": near \"drop\": syntax error",
            "trouble table drop " + RuleLine(3)));
}

TEST_F(CommonPartPreparation, EachTableThatIsNotBuiltIsTroubleAtItsLine)
{
    Init({ThresholdsXml("drop"), ThresholdsXml("Jank").Raw("\n\n"), ThresholdsXml("table")});
    EXPECT_THAT(mObserver.Lines("trouble table"),
        ElementsAre("trouble table drop " + RuleLine(3), "trouble table table " + RuleLine(5)));
}

TEST_F(CommonPartPreparation, AnEventThatIsNoJsonIsTroubleOfTheLog)
{
    EventLogBuilder().Row({NOW - 1, 7, "", "{n"}).WriteTo(mDir.Path("root/Comms/Lumbra/workDir/0/log.db"));
    Init({ThresholdsXml("Jank")});
    EXPECT_THAT(mObserver.Lines(), ElementsAre(testing::StartsWith(
        "trouble extra " + mDir.Path("root/Comms/Lumbra/workDir/0/log.db") + ": ")));
}

TEST_F(CommonPartPreparation, ATableOfValuesThatCannotBeUsedIsIncomplete)
{
    using State = ThresholdOrLumbraBean::TableState;
    const auto stateOf = [this](const std::string& extra) {
        EventLogBuilder().Rows({{NOW - 1, 7, "", R"({"n":3})"}, {NOW - 1, 7, "", extra}})
            .WriteTo(mDir.Path("root/Comms/Lumbra/workDir/0/log.db"));
        mObserver = {};
        Init({ThresholdsXml("Jank")});
        return mParser->GetCommonPart()->GetThresholdLumbraList().front()->GetTableState();
    };
    for (const char* const extra : {"{n", "[1]", "1", R"({"n":true})", R"({"n":[1]})", R"({"N":{}})"}) {
        EXPECT_EQ(stateOf(extra), State::INCOMPLETE) << extra;
        EXPECT_EQ(mObserver.Lines("trouble extra").size(), 1U) << extra;
    }
    for (const char* const extra : {"", "{}", R"({"n":"x"})", R"({"n":null})", R"({"m":true})"}) {
        EXPECT_EQ(stateOf(extra), State::WHOLE) << extra;
        EXPECT_THAT(mObserver.Lines(), IsEmpty()) << extra;
    }
}

TEST_F(CommonPartPreparation, ThresholdsThatAreSetAreNoTrouble)
{
    Init({TablesXml(mDir.Path("device")), ThresholdsXml("Jank"), ThresholdsXml("More")});
    EXPECT_THAT(mObserver.Lines(), IsEmpty());
}

TEST_F(CommonPartPreparation, TheObserverHearsThatThresholdsStayUnset)
{
    const std::vector<std::shared_ptr<DeviceDetails>> devices{
        std::make_shared<DeviceDetails>("", "", "", "", "16G", "4K", "5000"),
        std::make_shared<DeviceDetails>("", "", "", "i7", "", "4K", "5000"),
        std::make_shared<DeviceDetails>("", "", "", "i7", "16G", "", "5000"),
        std::make_shared<DeviceDetails>("", "", "", "i7", "16G", "4K", ""), nullptr};
    for (const auto& device : devices) {
        mDevice = device;
        mObserver.Clear();
        Init({ThresholdsXml("Jank")});
        EXPECT_THAT(mObserver.Lines(), ElementsAre("trouble thresholds Jank " + RuleLine(3)));
        EXPECT_EQ(mParser->GetCommonPart()->GetThresholdLumbraList()[0]->GetSystemParamMap().at("cpu")->value, "");
    }
}

TEST_F(CommonPartPreparation, TablesAreDerivedBeforeTheCopiesAreMade)
{
    mSettings.Set(Settings::APP_DATABASE_DIR, "");
    Init({TablesXml(mDir.Path("device")), ThresholdsXml("Jank")});
    const std::vector<std::string> lines = mLog.Lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_THAT(lines.front(), testing::HasSubstr("CommonPartDbHelper::GetLumbraDataByFilter"));
    EXPECT_THAT(lines.back(), testing::HasSubstr("CommonPartDbHelper::CopyDbFile: database dir is empty."));
}

TEST_F(CommonPartPreparation, SourcesStayByteForByteAsTheyWere)
{
    const std::string log = mDir.Read("root/Comms/Lumbra/workDir/0/log.db");
    const std::string external = mDir.Read("device/ext.db");
    Init({TablesXml(mDir.Path("device")), ThresholdsXml("Jank")});
    EXPECT_EQ(mDir.Read("root/Comms/Lumbra/workDir/0/log.db"), log);
    EXPECT_EQ(mDir.Read("device/ext.db"), external);
    EXPECT_FALSE(mDir.Has("root/Comms/Lumbra/workDir/0/log.db-wal"));
    EXPECT_FALSE(mDir.Has("root/Comms/Lumbra/workDir/0/log.db-journal"));
}

} // namespace
