// If an element may occur only once, the first one counts, even if it is empty.

#include <string>

#include <gtest/gtest.h>

#include "arborist/loading/common_part_parser.h"
#include "arborist/loading/rule_parser.h"
#include "tests/loading/xml_text.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"

namespace {

std::string Text(const ParamMap& params)
{
    std::string text = "params(";
    for (const auto& [id, param] : params) {
        text += id + ":" + param->key + ":" + param->type + " ";
    }
    return text + ")";
}

std::string Text(const ConditionList& conditions)
{
    std::string text = "condition(";
    for (const auto& condition : conditions) {
        text += condition->GetLogic() + ":" + condition->GetParamId() + ":" + condition->GetValue() + " ";
    }
    return text + ")";
}

std::string Text(const TimeSet& time)
{
    return "time(" + time.type + " " + std::to_string(time.period) + " " + std::to_string(time.threshold) + ")";
}

std::string Text(const std::vector<std::string>& texts)
{
    std::string text = "list(";
    for (const std::string& one : texts) {
        text += one + " ";
    }
    return text + ")";
}

std::string Text(const AlarmRule& rule)
{
    std::string text;
    for (const auto& item : rule.alarmItemList) {
        text += Text(item->params) + Text(item->conditionList);
    }
    return text;
}

std::string Text(const CodeRule& rule)
{
    return "code(" + rule.codeItem.id + ") info(" + rule.userDefinedInfo + ")";
}

std::string Text(const CommandRule& rule)
{
    const CommandRule::SqlItem& item = rule.analysisMethod.sqlItem;
    std::string text = rule.commonPartDomain + "/" + rule.commonPartName + Text(rule.params) +
        rule.analysisMethod.type + "/" + item.type + "/" + item.sql + Text(item.time) + Text(item.conditionList) +
        Text(item.timeParamList) + Text(item.normalizationParamList) + item.BeginFlag;
    if (const auto& database = rule.referenceDefDb) {
        text += "|" + database->type + "/" + database->defDBDomain + "/" + database->defDBName + "/" +
            database->defDBNum;
    }
    return text;
}

std::string Text(const NodeRule& rule)
{
    const NodeRule::LogicExpression& expression = rule.GetLogicExpression();
    return Text(rule.GetParamMap()) + Text(rule.GetConditionList()) + expression.GetType() + "/" +
        expression.GetRet() + "/" + expression.GetExpress();
}

std::string Text(const Rule& rule)
{
    if (const auto* const alarm = dynamic_cast<const AlarmRule*>(&rule)) {
        return Text(*alarm);
    }
    if (const auto* const code = dynamic_cast<const CodeRule*>(&rule)) {
        return Text(*code);
    }
    if (const auto* const command = dynamic_cast<const CommandRule*>(&rule)) {
        return Text(*command);
    }
    return Text(dynamic_cast<const NodeRule&>(rule));
}

std::string Text(const ThresholdOrLumbraBean& bean)
{
    std::string text = Text(bean.GetSystemParamMap()) + Text(bean.GetThresholdMap());
    for (const auto& item : bean.GetThresholdItemList()) {
        text += "item(" + item->GetType();
        for (const auto& condition : item->GetConditionList()) {
            text += " " + condition->GetLogic() + ":" + condition->GetValue();
        }
        for (const auto& threshold : item->GetThresholdList()) {
            text += " " + threshold->GetId() + "=" + threshold->GetValue();
        }
        text += ")";
    }
    for (const auto& item : bean.GetLumbraDataList()) {
        text += "ids(" + std::to_string(item->GetAlarmIdMax()) + ")";
    }
    return text;
}

std::string Text(const DefDbTableBean& bean)
{
    std::string text = bean.GetDbName();
    for (const auto& path : bean.GetDbPathList()) {
        text += " path(" + path->GetPathValue() + Text(path->GetDecompressTypeList()) + ")";
    }
    for (const auto& table : bean.GetCreateTableList()) {
        text += " table(" + table->GetTableName() + " " + table->GetSql() + ")";
    }
    return text;
}

// Everything that a rule file says about rules and common parts, as one text.
std::string Read(const std::string& file)
{
    const XmlText xml(file);
    RuleParser rules;
    rules.Parse(xml.Document(), "jank");
    std::string text;
    for (const auto& [name, rule] : rules.TakeRuleMap()) {
        text += name + "{" + Text(*rule) + "}";
    }
    CommonPartParser parser;
    parser.Parse(xml.Document(), "jank");
    if (const auto part = parser.GetCommonPart()) {
        for (const auto& bean : part->GetThresholdLumbraList()) {
            text += "thresholds{" + Text(*bean) + "}";
        }
        for (const auto& bean : part->GetDefDbTableCommonList()) {
            text += "databases{" + Text(*bean) + "}";
        }
    }
    return text;
}

// An element that may occur once, at the "?" of `place`: one, another one, and an empty one.
struct OnceCase {
    const char* name;
    std::string place;
    std::string one;
    std::string other;
    std::string empty;
};
void PrintTo(const OnceCase& onceCase, std::ostream* out) { *out << onceCase.name; }
class ElementThatStandsOnce : public testing::TestWithParam<OnceCase> {};

std::string Filled(const std::string& place, const std::string& elements)
{
    std::string file = place;
    return "<root>" + file.replace(file.find('?'), 1, elements) + "</root>";
}

TEST_P(ElementThatStandsOnce, CountsWhereItStandsFirst)
{
    const LogCapture log;
    const auto& [name, place, one, other, empty] = GetParam();
    const std::string readOne = Read(Filled(place, one));
    const std::string readOther = Read(Filled(place, other));
    EXPECT_NE(readOne, readOther);
    EXPECT_EQ(Read(Filled(place, one + other)), readOne);
    EXPECT_EQ(Read(Filled(place, other + one)), readOther);
    EXPECT_NE(Read(Filled(place, empty)), readOne);
    EXPECT_EQ(Read(Filled(place, empty + one)), Read(Filled(place, empty)));
}

OnceCase Once(const char* name, const std::string& before, const std::string& element, const std::string& one,
    const std::string& other, const std::string& behind)
{
    const auto whole = [&element](const std::string& content) { return "<" + element + ">" + content + "</" + element + ">"; };
    return {name, before + "?" + behind, whole(one), whole(other), "<" + element + "/>"};
}

OnceCase InRule(const char* name, const std::string& before, const std::string& element, const std::string& one,
    const std::string& other, const std::string& behind)
{
    return Once(name, "<RuleList><jank><rule>" + before, element, one, other, behind + "</rule></jank></RuleList>");
}

OnceCase InPart(const char* name, const std::string& before, const std::string& element, const std::string& one,
    const std::string& other, const std::string& behind)
{
    return Once(name, "<RuleCommonPart><jank><commonPart>" + before, element, one, other,
        behind + "</commonPart></jank></RuleCommonPart>");
}

// The same with a value in an attribute.
OnceCase WithAttribute(OnceCase onceCase, const std::string& element, const std::string& attribute,
    const std::string& one = "1", const std::string& other = "2")
{
    onceCase.one = "<" + element + " " + attribute + "=\"" + one + "\"/>";
    onceCase.other = "<" + element + " " + attribute + "=\"" + other + "\"/>";
    onceCase.empty = "<" + element + "/>";
    return onceCase;
}

const std::string PARAM_1 = "<param id=\"1\" key=\"one\" type=\"int\"/>";
const std::string PARAM_2 = "<param id=\"2\" key=\"two\" type=\"int\"/>";
const std::string OR_1 = "<or type=\"single_logic\"><gt type=\"static\"><id>1</id><value>1</value></gt></or>";
const std::string OR_2 = "<or type=\"single_logic\"><lt type=\"static\"><id>2</id><value>2</value></lt></or>";
const std::string RULE_1 = "<rule><codeRule name=\"one\"><detectInfo id=\"1\"/></codeRule></rule>";
const std::string RULE_2 = "<rule><codeRule name=\"two\"><detectInfo id=\"2\"/></codeRule></rule>";
const std::string COMMAND = "<commandRule name=\"r\">";
const std::string SQL = COMMAND + "<AnalysisMethod><SQL_Condition><SQLItem>";
const std::string SQL_END = "</SQLItem></SQL_Condition></AnalysisMethod></commandRule>";
const std::string TABLE_1 = "<defDBTable><dbName name=\"one\"/></defDBTable>";
const std::string TABLE_2 = "<defDBTable><dbName name=\"two\"/></defDBTable>";
const std::string DATA = "<thresholdsOrLumbraData>";
const std::string DATA_END = "</thresholdsOrLumbraData>";
const std::string ITEM = DATA + "<ThresholdMappingTable><ThresholdItem>";
const std::string ITEM_END = "</ThresholdItem></ThresholdMappingTable>" + DATA_END;

std::string In(const std::string& element, const std::string& content)
{
    return "<" + element + ">" + content + "</" + element + ">";
}

INSTANTIATE_TEST_SUITE_P(Rules, ElementThatStandsOnce, testing::Values(
    Once("RuleList", "", "RuleList", In("jank", RULE_1), In("jank", RULE_2), ""),
    Once("Tag", "<RuleList>", "jank", RULE_1, RULE_2, "</RuleList>"),
    InRule("AlarmParams", "<alarmRule name=\"r\"><alarmId>", "params", PARAM_1, PARAM_2, "</alarmId></alarmRule>"),
    InRule("AlarmCondition", "<alarmRule name=\"r\"><alarmId>", "condition", OR_1, OR_2, "</alarmId></alarmRule>"),
    WithAttribute(InRule("DetectInfo", "<codeRule name=\"r\">", "detectInfo", "", "", "</codeRule>"), "detectInfo", "id"),
    InRule("UserDefinedInfo", "<codeRule name=\"r\"><detectInfo id=\"1\"/>", "userDefinedInfo", "1", "2", "</codeRule>"),
    InRule("ReferenceCommonPart", COMMAND, "referenceCommonPart", In("commonPartName", "1"), In("commonPartName", "2"),
        "</commandRule>"),
    InRule("CommonPartDomain", COMMAND + "<referenceCommonPart>", "commonPartDomain", "1", "2",
        "</referenceCommonPart></commandRule>"),
    InRule("CommonPartName", COMMAND + "<referenceCommonPart>", "commonPartName", "1", "2",
        "</referenceCommonPart></commandRule>"),
    InRule("ReferenceDefDb", COMMAND, "referenceDefDB", In("defDBName", "1"), In("defDBName", "2"), "</commandRule>"),
    InRule("DefDbDomain", COMMAND + "<referenceDefDB>", "defDBDomain", "1", "2", "</referenceDefDB></commandRule>"),
    InRule("DefDbName", COMMAND + "<referenceDefDB>", "defDBName", "1", "2", "</referenceDefDB></commandRule>"),
    InRule("DefDbNum", COMMAND + "<referenceDefDB>", "defDBNum", "1", "2", "</referenceDefDB></commandRule>"),
    InRule("QueryReturnParam", COMMAND, "queryReturnParam", In("params", PARAM_1), In("params", PARAM_2),
        "</commandRule>"),
    InRule("AnalysisMethod", COMMAND, "AnalysisMethod", In("SQL_Condition", In("SQLItem", In("sql", "1"))),
        In("SQL_Condition", In("SQLItem", In("sql", "2"))), "</commandRule>"),
    InRule("SqlCondition", COMMAND + "<AnalysisMethod>", "SQL_Condition", In("SQLItem", In("sql", "1")),
        In("SQLItem", In("sql", "2")), "</AnalysisMethod></commandRule>"),
    InRule("SqlItem", COMMAND + "<AnalysisMethod><SQL_Condition>", "SQLItem", In("sql", "1"), In("sql", "2"),
        "</SQL_Condition></AnalysisMethod></commandRule>"),
    InRule("Sql", SQL, "sql", "1", "2", SQL_END),
    WithAttribute(InRule("SqlTime", SQL, "time", "", "", SQL_END), "time", "period"),
    WithAttribute(InRule("SqlBeginFlag", SQL, "BeginFlag", "", "", SQL_END), "BeginFlag", "value", "2", "3"),
    InRule("SqlItemCondition", SQL, "condition", OR_1, OR_2, SQL_END),
    InRule("Normalization", SQL, "normalization", In("timeParam", "<defineTimeProp id=\"1\"/>"),
        In("timeParam", "<defineTimeProp id=\"2\"/>"), SQL_END),
    InRule("NormalizationParam", SQL + "<normalization>", "normalizationParam", "<defineNormalizationProp id=\"1\"/>",
        "<defineNormalizationProp id=\"2\"/>", "</normalization>" + SQL_END),
    InRule("TimeParam", SQL + "<normalization>", "timeParam", "<defineTimeProp id=\"1\"/>",
        "<defineTimeProp id=\"2\"/>", "</normalization>" + SQL_END),
    InRule("NodeParams", "<nodeRule name=\"r\">", "params", PARAM_1, PARAM_2, "</nodeRule>"),
    WithAttribute(InRule("LogicExpression", "<nodeRule name=\"r\">", "logicExpression", "", "", "</nodeRule>"),
        "logicExpression", "express"),
    InRule("NodeCondition", "<nodeRule name=\"r\">", "condition", OR_1, OR_2, "</nodeRule>")),
    CaseName());

INSTANTIATE_TEST_SUITE_P(CommonPart, ElementThatStandsOnce, testing::Values(
    Once("RuleCommonPart", "", "RuleCommonPart", In("jank", In("commonPart", TABLE_1)),
        In("jank", In("commonPart", TABLE_2)), ""),
    Once("Tag", "<RuleCommonPart>", "jank", In("commonPart", TABLE_1), In("commonPart", TABLE_2), "</RuleCommonPart>"),
    InPart("SystemParamTable", DATA, "SystemParamTable", In("params", PARAM_1), In("params", PARAM_2), DATA_END),
    InPart("ThresholdParamTable", DATA, "ThresholdParamTable", In("params", PARAM_1), In("params", PARAM_2), DATA_END),
    InPart("ThresholdMappingTable", DATA, "ThresholdMappingTable", "<ThresholdItem type=\"1\"/>",
        "<ThresholdItem type=\"2\"/>", DATA_END),
    InPart("RetrieveLumbraData", DATA, "retrieveLumbraData", "<alarmId Eventid_Max=\"1\"/>",
        "<alarmId Eventid_Max=\"2\"/>", DATA_END),
    InPart("ThresholdCondition", ITEM, "condition", "<or type=\"x\"><eq><id>1</id><value>1</value></eq></or>",
        "<or type=\"x\"><eq><id>1</id><value>2</value></eq></or>", ITEM_END),
    InPart("Thresholds", ITEM, "thresholds", "<threshold id=\"1\" value=\"1\"/>", "<threshold id=\"1\" value=\"2\"/>",
        ITEM_END),
    InPart("DbPaths", "<defDBTable>", "dbPaths", "<dbPath decompression=\"true\" type=\"t\" value=\"1\"/>",
        "<dbPath decompression=\"true\" type=\"t\" value=\"2\"/>", "</defDBTable>"),
    WithAttribute(InPart("DbName", "<defDBTable>", "dbName", "", "", "</defDBTable>"), "dbName", "name"),
    InPart("CreateTables", "<defDBTable>", "createTables", "<createNewTable tableName=\"1\"/>",
        "<createNewTable tableName=\"2\"/>", "</defDBTable>"),
    InPart("DecompressionType", "<defDBTable><dbPaths><dbPath decompression=\"true\" type=\"t\" value=\"v\">",
        "decompressionType", "<type>1</type>", "<type>2</type>", "</dbPath></dbPaths></defDBTable>"),
    InPart("Sql", "<defDBTable><createTables><createNewTable tableName=\"t\">", "sql", "1", "2",
        "</createNewTable></createTables></defDBTable>")),
    CaseName());

} // namespace
