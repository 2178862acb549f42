#include "arborist/loading/rule_set_record.h"

#include <gmock/gmock.h>

#include "arborist/loading/fault_tree_parser.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RuleSetRecordTest : public testing::Test {
protected:
    Evidence::RuleSet Record() const
    {
        FaultTreeParser parser(DetectInfoFor(mDir, "Tag"));
        parser.StartParse();
        return RuleSetRecordOf(parser);
    }

    static Xml TableXml(const std::string& name, const std::string& type = "")
    {
        return Xml("thresholdsOrLumbraData").Attr("name", name).Attr("type", type)
            .Child(Xml("retrieveLumbraData").Child(AlarmIdXml("1", "2", {})));
    }

    TempDir mDir;
    LogCapture mLog;
};

TEST_F(RuleSetRecordTest, TablesAreThoseThatTakeEventsOfTheLog)
{
    mDir.Write("FaultTreeRules.xml", RuleXml("Tag").CommonPart({TableXml("FIRST"),
        TableXml("FIXED", "lumbraPlusData"), Xml("thresholdsOrLumbraData").Attr("name", "BARE"), TableXml("LAST")})
        .Text());
    EXPECT_THAT(Record().eventTables, ElementsAre("FIRST", "LAST"));
}

TEST_F(RuleSetRecordTest, DatabasesHaveTheirNamesAndPatterns)
{
    mDir.Write("FaultTreeRules.xml", RuleXml("Tag").CommonPart({Xml("defDBTable").Attr("name", "battery")
        .Child(Xml("dbName").Attr("name", "bat.*[.]db"))}).Text());
    const Evidence::RuleSet record = Record();
    ASSERT_EQ(record.databases.size(), 1U);
    EXPECT_EQ(record.databases[0].name, "battery");
    EXPECT_EQ(record.databases[0].pattern, "bat.*[.]db");
    EXPECT_THAT(record.eventTables, IsEmpty());
}

TEST_F(RuleSetRecordTest, WithoutACommonPartThereAreNeither)
{
    mDir.Write("FaultTreeRules.xml", RuleXml("Tag").Rule(CodeRuleXml("C", "850")).Text());
    const Evidence::RuleSet record = Record();
    EXPECT_THAT(record.databases, IsEmpty());
    EXPECT_THAT(record.eventTables, IsEmpty());
}

} // namespace
