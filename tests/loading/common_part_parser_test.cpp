#include "arborist/loading/common_part_parser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tinyxml2.h>

#include "arborist/frame/log.h"
#include "tests/support/log_capture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CommonPartParserTest : public testing::Test {
protected:
    // Parses a document that holds `section` below its root.
    bool ParseDocument(const std::string& section, const std::string& tag = "jank")
    {
        tinyxml2::XMLDocument document;
        EXPECT_EQ(document.Parse(("<root>" + section + "</root>").c_str()), tinyxml2::XML_SUCCESS);
        CommonPartParser parser;
        const bool done = parser.Parse(document, tag);
        mBlock = parser.GetCommonPart();
        return done;
    }

    void ParseContent(const std::string& content)
    {
        EXPECT_TRUE(ParseDocument("<RuleCommonPart><jank>" + content + "</jank></RuleCommonPart>"));
        ASSERT_NE(mBlock, nullptr);
    }

    const ThresholdOrLumbraBean& Bean(const std::string& content)
    {
        ParseContent("<commonPart><thresholdsOrLumbraData>" + content + "</thresholdsOrLumbraData></commonPart>");
        return *mBlock->GetThresholdLumbraList().at(0);
    }

    const DefDbTableBean& Table(const std::string& content)
    {
        ParseContent("<commonPart><defDBTable>" + content + "</defDBTable></commonPart>");
        return *mBlock->GetDefDbTableCommonList().at(0);
    }

    std::vector<std::string> BeanNames() const
    {
        std::vector<std::string> names;
        for (const auto& bean : mBlock->GetThresholdLumbraList()) {
            names.push_back(bean->GetName());
        }
        return names;
    }

    std::shared_ptr<CommonPart::CombineCommonPart> mBlock;
    LogCapture mLog;
};

std::string Text(const ParamMap& params)
{
    std::string text;
    for (const auto& [id, param] : params) {
        text += id + "=" + param->id + ":" + param->key + ":" + param->type + ":" + param->value + ";";
    }
    return text;
}

std::string Text(const ThresholdOrLumbraBean::ThresholdItem& item)
{
    std::string text = item.GetType() + "|";
    for (const auto& condition : item.GetConditionList()) {
        text += condition->GetLogic() + " " + condition->GetParamId() + " " + condition->GetValue();
        for (const std::string& value : condition->GetSetList()) {
            text += "," + value;
        }
        text += ";";
    }
    text += "|";
    for (const auto& threshold : item.GetThresholdList()) {
        text += threshold->GetId() + "=" + threshold->GetValue() + ";";
    }
    return text;
}

TEST_F(CommonPartParserTest, EmptyTagIsAnError)
{
    EXPECT_FALSE(ParseDocument("<RuleCommonPart/>", ""));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:CommonPartParser::Parse: CommonPartParser::Parse:Parse input tag empty"));
}

TEST_F(CommonPartParserTest, DocumentWithoutRootIsAnError)
{
    tinyxml2::XMLDocument document;
    CommonPartParser parser;
    EXPECT_FALSE(parser.Parse(document, "jank"));
    EXPECT_THAT(
        mLog.Lines(FT::LEVEL_ERROR), ElementsAre("FUNc:CommonPartParser::Parse: CommonPartParser::Parse:root is nullptr"));
}

TEST_F(CommonPartParserTest, MissingSectionIsAWarningAndNoBlock)
{
    EXPECT_TRUE(ParseDocument(""));
    EXPECT_EQ(mBlock, nullptr);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
        ElementsAre("FUNc:CommonPartParser::ParseCommonPartList: RuleCommonPart element is nullptr"));
}

TEST_F(CommonPartParserTest, MissingTagIsAWarningAndNoBlock)
{
    EXPECT_TRUE(ParseDocument("<RuleCommonPart><other/></RuleCommonPart>"));
    EXPECT_EQ(mBlock, nullptr);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
        ElementsAre("FUNc:CommonPartParser::ParseCommonPartList: "
                    "CommonPartParser::ParseCommonPartList:tagRoot is nullptr"));
}

TEST_F(CommonPartParserTest, MissingCommonPartIsAWarningAndNoBlock)
{
    EXPECT_TRUE(ParseDocument("<RuleCommonPart><jank/></RuleCommonPart>"));
    EXPECT_EQ(mBlock, nullptr);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
        ElementsAre("FUNc:CommonPartParser::ParseCommonPartList: commonPart element is nullptr"));
}

TEST_F(CommonPartParserTest, OnlyTheFirstSectionAndTagCount)
{
    EXPECT_TRUE(ParseDocument("<RuleCommonPart><jank><commonPart/></jank>"
                              "<jank><commonPart><defDBTable/></commonPart></jank></RuleCommonPart>"
                              "<RuleCommonPart><jank><commonPart><defDBTable/></commonPart></jank></RuleCommonPart>"));
    ASSERT_NE(mBlock, nullptr);
    EXPECT_THAT(mBlock->GetDefDbTableCommonList(), IsEmpty());
}

TEST_F(CommonPartParserTest, AllCommonPartsFeedOneBlockInFileOrder)
{
    ParseContent("<commonPart><thresholdsOrLumbraData name='A' platform='p' type='t'/></commonPart>"
                 "<commonPart><thresholdsOrLumbraData name='B'/></commonPart>");
    EXPECT_THAT(BeanNames(), ElementsAre("A", "B"));
    EXPECT_EQ(mBlock->GetThresholdLumbraList()[0]->GetPlatform(), "p");
    EXPECT_EQ(mBlock->GetThresholdLumbraList()[0]->GetType(), "t");
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(CommonPartParserTest, EachKindOfEntryGoesToItsListAndOthersAreRefused)
{
    ParseContent("<commonPart><defDBTable name='D' platform='p' type='t'/><foo/><thresholdsOrLumbraData name='A'/>"
                 "</commonPart>");
    EXPECT_THAT(BeanNames(), ElementsAre("A"));
    ASSERT_EQ(mBlock->GetDefDbTableCommonList().size(), 1u);
    const DefDbTableBean& table = *mBlock->GetDefDbTableCommonList()[0];
    EXPECT_EQ(table.GetName() + table.GetPlatform() + table.GetType(), "Dpt");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:CommonPartParser::ParseCommonPartElement: CommonPartParser::ParseCommonPartElement: "
                    "ParseCommonPartElement can not parse this element"));
}

TEST_F(CommonPartParserTest, ParameterTablesReadAllBlocksAndTheFirstOfAnId)
{
    const auto& bean = Bean("<SystemParamTable><params><param id='1' key='CPU_NAME' type='string'/></params>"
                            "<params><param id='1' key='X' type='int'/><param id='2' key='RAM_SIZE' type='int'/></params>"
                            "</SystemParamTable><SystemParamTable><params><param id='3' key='a' type='b'/></params>"
                            "</SystemParamTable><ThresholdParamTable><params><param id='T' key='k' type='long'/>"
                            "<param id='U' key='k'/></params></ThresholdParamTable>");
    EXPECT_EQ(Text(bean.GetSystemParamMap()), "1=1:CPU_NAME:string:;2=2:RAM_SIZE:int:;");
    EXPECT_EQ(Text(bean.GetThresholdMap()), "T=T:k:long:;");
}

TEST_F(CommonPartParserTest, ThresholdItemsHoldConditionsAndThresholds)
{
    const auto& bean = Bean("<ThresholdMappingTable><ThresholdItem type='x'><condition><or type='multiple_logic'>"
                            "<eq><id>1</id><value>i7</value></eq><in><id>2</id><set><value>8G</value>"
                            "<value>16G</value></set></in></or></condition><thresholds><threshold id='T' value='7'/>"
                            "<threshold value='8'/><threshold id='V'/><threshold id='U' value=''/></thresholds>"
                            "</ThresholdItem></ThresholdMappingTable>");
    ASSERT_EQ(bean.GetThresholdItemList().size(), 1u);
    EXPECT_EQ(Text(*bean.GetThresholdItemList()[0]), "x|eq 1 i7;in 2 ,8G,16G;|T=7;U=;");
}

TEST_F(CommonPartParserTest, ThresholdItemWithoutContentIsKept)
{
    const auto& bean = Bean("<ThresholdMappingTable><ThresholdItem/><ThresholdItem><thresholds/></ThresholdItem>"
                            "</ThresholdMappingTable>");
    ASSERT_EQ(bean.GetThresholdItemList().size(), 2u);
    EXPECT_EQ(Text(*bean.GetThresholdItemList()[0]), "||");
    EXPECT_EQ(Text(*bean.GetThresholdItemList()[1]), "||");
}

TEST_F(CommonPartParserTest, EventDataHasIdsTypeAndTheParametersOfAllItsBlocks)
{
    const auto& bean = Bean("<retrieveLumbraData><alarmId Eventid_Min='5' Eventid_Max='9' type='t'><params>"
                            "<param id='1' key='COUNT' type='int'/></params><params><param id='2' key='B' type='string'/>"
                            "</params></alarmId><alarmId/></retrieveLumbraData>");
    ASSERT_EQ(bean.GetLumbraDataList().size(), 2u);
    const auto& first = *bean.GetLumbraDataList()[0];
    EXPECT_EQ(first.GetAlarmIdMin(), 5);
    EXPECT_EQ(first.GetAlarmIdMax(), 9);
    EXPECT_EQ(first.GetType(), "t");
    EXPECT_EQ(Text(first.GetParamMap()), "1=1:COUNT:int:;2=2:B:string:;");
    EXPECT_EQ(bean.GetLumbraDataList()[1]->GetAlarmIdMax(), 0);
}

TEST_F(CommonPartParserTest, DbPathNeedsAllThreeAttributesAndOnlyTrueUnpacks)
{
    const auto& table = Table("<dbPaths><dbPath decompression='true' type='a' value='/one'><decompressionType>"
                              "<type>zip</type><type/><type><![CDATA[]]></type><type>gz</type></decompressionType></dbPath>"
                              "<dbPath decompression='True' type='b' value='/two'><decompressionType><type/></decompressionType>"
                              "</dbPath><dbPath decompression='true' value='/three'/><dbPath type='c' value='/four'/>"
                              "<dbPath decompression='true' type='d'/><dbPath decompression='' type='' value=''/></dbPaths>");
    std::vector<std::string> paths;
    for (const auto& path : table.GetDbPathList()) {
        paths.push_back(path->GetPathValue() + " " + path->GetType() + (path->IsDecompress() ? " unpack" : ""));
    }
    EXPECT_THAT(paths, ElementsAre("/one a unpack", "/two b", " "));
    EXPECT_THAT(table.GetDbPathList()[0]->GetDecompressTypeList(), ElementsAre("zip", "gz"));
    EXPECT_THAT(table.GetDbPathList()[1]->GetDecompressTypeList(), IsEmpty());
}

TEST_F(CommonPartParserTest, DbNameIsItsAttribute)
{
    EXPECT_EQ(Table("<dbName name='.*\\.db'/><dbName name='second'/>").GetDbName(), ".*\\.db");
    EXPECT_EQ(Table("<dbName/>").GetDbName(), "");
    EXPECT_EQ(Table("").GetDbName(), "");
}

TEST_F(CommonPartParserTest, CreateTableNeedsItsNameAndNotItsSql)
{
    const auto& table = Table("<createTables><createNewTable tableName='a'><sql>create table a(x);</sql>"
                              "</createNewTable><createNewTable><sql>x</sql></createNewTable>"
                              "<createNewTable tableName='b'/><createNewTable tableName='c'><sql/></createNewTable>"
                              "</createTables>");
    std::vector<std::string> tables;
    for (const auto& create : table.GetCreateTableList()) {
        tables.push_back(create->GetTableName() + ":" + create->GetSql());
    }
    EXPECT_THAT(tables, ElementsAre("a:create table a(x);", "b:", "c:"));
}

TEST(CommonPartElementParse, ElementOfAnotherNameGivesNothing)
{
    tinyxml2::XMLDocument document;
    ASSERT_EQ(document.Parse("<other/>"), tinyxml2::XML_SUCCESS);
    EXPECT_EQ(ThresholdOrLumbraElementParse(document.FirstChildElement()).Parse(), nullptr);
    EXPECT_EQ(DefDbTableElementParse(document.FirstChildElement()).Parse(), nullptr);
    EXPECT_EQ(ThresholdOrLumbraElementParse(nullptr).Parse(), nullptr);
    EXPECT_EQ(DefDbTableElementParse(nullptr).Parse(), nullptr);
}

} // namespace
