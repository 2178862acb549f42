#include "arborist/loading/condition_element_parse.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/loading/xml_text.h"
#include "tests/support/case_name.h"

namespace {

using testing::ElementsAre;

// An alternative as text: "single_logic static p gt 5 c" or "multiple_logic [p gt 5] [q lt 6]"; "-" for an empty text.
std::string Told(const OrLogic& alternative)
{
    const auto orDash = [](const std::string& text) { return text.empty() ? "-" : text; };
    std::string told = alternative.GetType();
    if (alternative.GetLogicItemList().empty()) {
        return told + " " + orDash(alternative.GetLogicType()) + " " + orDash(alternative.GetParamId()) + " "
            + orDash(alternative.GetLogic()) + " " + orDash(alternative.GetValue()) + " "
            + orDash(alternative.GetCommonPartParamId());
    }
    for (const auto& item : alternative.GetLogicItemList()) {
        told += " [" + item->GetParamId() + " " + item->GetLogic() + " " + orDash(item->GetValue()) + "]";
    }
    return told;
}

struct RuleForm { const char* name; const char* alternatives; std::vector<std::string> expected; };
void PrintTo(const RuleForm& ruleForm, std::ostream* out) { *out << ruleForm.name; }
class RuleFormCondition : public testing::TestWithParam<RuleForm> {};

TEST_P(RuleFormCondition, GivesItsAlternatives)
{
    const XmlText xml(Xml("condition").Raw(GetParam().alternatives));
    ConditionList conditions;
    EXPECT_EQ(ConditionElementParse(&xml.Root()).Parse(conditions), !GetParam().expected.empty());
    std::vector<std::string> told;
    for (const auto& alternative : conditions) {
        told.push_back(Told(*alternative));
    }
    EXPECT_EQ(told, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, RuleFormCondition, testing::Values(
    RuleForm{"Empty", "", {}},
    RuleForm{"SingleWithAll", R"(<or type="single_logic"><gt type="static"><id>p</id><value>5</value>
        <commonPartParamId>c</commonPartParamId></gt></or>)", {"single_logic static p gt 5 c"}},
    RuleForm{"SingleNeedsNoValue", R"(<or type="single_logic"><eq><id>p</id></eq></or>)", {"single_logic - p eq - -"}},
    RuleForm{"SingleLooksAtItsFirstChildAlone",
        R"(<or type="single_logic"><foo/><eq><id>p</id><value>5</value></eq></or>)", {"single_logic - - - - -"}},
    RuleForm{"SingleWithoutIdIsDroppedAndItsSiblingStays",
        R"(<or type="single_logic"><eq><value>1</value></eq></or><or type="single_logic"><ne><id>q</id></ne></or>)",
        {"single_logic - q ne - -"}},
    RuleForm{"SingleWithoutTextInItsIdIsDropped", R"(<or type="single_logic"><eq><id/></eq></or>)", {}},
    RuleForm{"SingleWithAnEmptyCdataAsIdStays",
        R"(<or type="single_logic"><eq><id><![CDATA[]]></id></eq></or>)", {"single_logic - - eq - -"}},
    RuleForm{"SingleWithoutATestIsDropped", R"(<or type="single_logic"/>)", {}},
    RuleForm{"UnknownTypeIsDropped", R"(<or type="foo"><eq><id>p</id></eq></or>)", {}},
    RuleForm{"NoTypeIsDropped", R"(<or><eq><id>p</id></eq></or>)", {}},
    RuleForm{"AllComparisonWords", R"(<or type="multiple_logic"><and><eq><id>a</id><value>1</value></eq>
        <gt><id>a</id><value>1</value></gt><lt><id>a</id><value>1</value></lt><ge><id>a</id><value>1</value></ge>
        <le><id>a</id><value>1</value></le><ne><id>a</id><value>1</value></ne><in><id>a</id><value>1</value></in>
        <EQ><id>a</id><value>1</value></EQ></and></or>)",
        {"multiple_logic [a eq 1] [a gt 1] [a lt 1] [a ge 1] [a le 1] [a ne 1] [a in 1]"}},
    RuleForm{"MultipleDropsATestWithoutValue", R"(<or type="multiple_logic"><and><gt><id>p</id><value>1</value></gt>
        <lt><id>q</id></lt><eq><id>r</id><value>3</value></eq></and></or>)", {"multiple_logic [p gt 1] [r eq 3]"}},
    RuleForm{"MultipleDropsATestWithoutId",
        R"(<or type="multiple_logic"><and><gt><value>1</value></gt><lt><id>q</id><value>2</value></lt></and></or>)",
        {"multiple_logic [q lt 2]"}},
    RuleForm{"MultipleKeepsAnEmptyCdataValue",
        R"(<or type="multiple_logic"><and><gt><id>p</id><value><![CDATA[]]></value></gt></and></or>)",
        {"multiple_logic [p gt -]"}},
    RuleForm{"MultipleWithoutAndIsDropped",
        R"(<or type="multiple_logic"><gt><id>p</id><value>1</value></gt></or>)", {}},
    RuleForm{"MultipleWithoutAValidTestIsDropped",
        R"(<or type="multiple_logic"><and><foo><id>p</id><value>1</value></foo></and></or>)", {}},
    RuleForm{"SecondAndIsNotRead", R"(<or type="multiple_logic"><and><gt><id>p</id><value>1</value></gt></and>
        <and><gt><id>q</id><value>1</value></gt></and></or>)", {"multiple_logic [p gt 1]"}}),
    CaseName());

TEST(ConditionElementParseTest, AlternativesAreAppended)
{
    const XmlText xml(ConditionXml({SingleLogicXml(TestXml("gt", "p", "5"))}));
    ConditionList conditions;
    EXPECT_TRUE(ConditionElementParse(&xml.Root()).Parse(conditions));
    EXPECT_TRUE(ConditionElementParse(&xml.Root()).Parse(conditions));
    EXPECT_EQ(conditions.size(), 2U);
    EXPECT_TRUE(ConditionElementParse(nullptr).Parse(conditions)) << "what is there counts";
}

// A threshold test as text: "any p in {1,2}" or "any p eq 5".
std::string Told(const Logic& test)
{
    std::string told = test.GetType() + " " + test.GetParamId() + " " + test.GetLogic() + " " + test.GetValue();
    if (test.GetLogic() == "in") {
        told += "{";
        for (const auto& value : test.GetSetList()) {
            told += value + ",";
        }
        told += "}";
    }
    return told;
}

class ThresholdFormCondition : public testing::TestWithParam<RuleForm> {};

TEST_P(ThresholdFormCondition, GivesItsTests)
{
    const XmlText xml(Xml("condition").Raw(GetParam().alternatives));
    std::vector<std::shared_ptr<Logic>> tests;
    EXPECT_EQ(ConditionElementParse(&xml.Root()).Parse(tests), !GetParam().expected.empty());
    std::vector<std::string> told;
    for (const auto& test : tests) {
        told.push_back(Told(*test));
    }
    EXPECT_EQ(told, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, ThresholdFormCondition, testing::Values(
    RuleForm{"Empty", "", {}},
    RuleForm{"TypeIsFreeButRequired", R"(<or type="any"><eq><id>p</id><value>5</value></eq></or>)", {"any p eq 5"}},
    RuleForm{"NoTypeGivesNothing", R"(<or><eq><id>p</id><value>5</value></eq></or>)", {}},
    RuleForm{"NoTestGivesNothing", R"(<or type="any"/>)", {}},
    RuleForm{"SecondOrIsNotRead", R"(<or type="a"><eq><id>p</id><value>5</value></eq></or>
        <or type="b"><eq><id>q</id><value>6</value></eq></or>)", {"a p eq 5"}},
    RuleForm{"OtherNamesArePassedOver",
        R"(<or type="a"><foo><id>p</id></foo><ge><id>q</id><value>6</value></ge></or>)", {"a q ge 6"}},
    RuleForm{"TestWithoutIdIsDropped",
        R"(<or type="a"><eq><value>5</value></eq><eq><id/><value>5</value></eq></or>)", {}},
    RuleForm{"TestWithoutValueStaysWithAnEmptyOne", R"(<or type="a"><eq><id>p</id></eq></or>)", {"a p eq "}},
    RuleForm{"SetTakesEverythingAfterItsFirstValue", R"(<or type="a"><in><id>p</id><set><first>0</first>
        <value>1</value><other>2</other><value/><value>3</value></set></in></or>)", {"a p in {1,2,3,}"}},
    RuleForm{"SetWithoutValueIsEmpty", R"(<or type="a"><in><id>p</id><set><other>2</other></set></in></or>)",
        {"a p in {}"}},
    RuleForm{"InWithoutSetStays", R"(<or type="a"><in><id>p</id><value>5</value></in></or>)", {"a p in {}"}}),
    CaseName());

TEST(ConditionElementParseTest, ThresholdFormOfNoElementGivesNothing)
{
    std::vector<std::shared_ptr<Logic>> tests;
    EXPECT_FALSE(ConditionElementParse(nullptr).Parse(tests));
}

TEST(ConditionElementParseTest, LogicTypeOfTestsIsOptional)
{
    const XmlText xml(R"(<condition><or type="multiple_logic"><and>
        <eq type="dynamic"><id>p</id><value>1</value></eq></and></or></condition>)");
    ConditionList conditions;
    ConditionElementParse(&xml.Root()).Parse(conditions);
    EXPECT_THAT(conditions, testing::SizeIs(1));
    EXPECT_THAT(conditions.at(0)->GetLogicType(), "") << "that of an item is the item's own";
}

} // namespace
