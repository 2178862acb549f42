#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/diagnosis/lint/rule_findings.h"
#include "tests/support/case_name.h"

namespace {

using testing::ElementsAreArray;

struct ConditionCase {
    const char* name;
    std::set<std::string> checks;
    std::string rule;
    std::vector<std::string> findings;
};

void PrintTo(const ConditionCase& conditionCase, std::ostream* out) { *out << conditionCase.rule; }

class ConditionChecks : public testing::TestWithParam<ConditionCase> {};

TEST_P(ConditionChecks, FindWhatIsWrongWithATest)
{
    EXPECT_THAT(FindingsInRules(GetParam().rule, GetParam().checks), ElementsAreArray(GetParam().findings));
}

std::string Param(const std::string& id, const std::string& type)
{
    return "<param id=\"" + id + "\" key=\"k" + id + "\" type=\"" + type + "\"/>";
}

std::string Test(const std::string& word, const std::string& id, const std::string& value, const std::string& type = "")
{
    return "<" + word + (type.empty() ? "" : " type=\"" + type + "\"") + "><id>" + id + "</id>"
        + (value.empty() ? "" : "<value>" + value + "</value>") + "</" + word + ">";
}

std::string Single(const std::string& test)
{
    return "<or type=\"single_logic\">" + test + "</or>";
}

std::string Several(const std::string& tests)
{
    return "<or type=\"multiple_logic\"><and>" + tests + "</and></or>";
}

std::string AlarmOf(const std::string& type, const std::string& time, const std::string& params,
    const std::string& alternatives)
{
    return "<alarmRule name=\"r\" detectScene=\"1\"><alarmId" + type + " Eventid_Max=\"5\">" + time + "<params>" + params
        + "</params><condition>" + alternatives + "</condition></alarmId></alarmRule>";
}

std::string Alarm(const std::string& params, const std::string& alternatives)
{
    return AlarmOf(" type=\"param_eventid\"", "<time type=\"duration\" period=\"7\" threshold=\"1\"/>", params,
        alternatives);
}

std::string Command(const std::string& params, const std::string& alternatives)
{
    return "<commandRule name=\"r\" detectScene=\"1\"><queryReturnParam><params>" + params
        + "</params></queryReturnParam><AnalysisMethod type=\"SQL\"><SQL_Condition><SQLItem><condition>" + alternatives
        + "</condition></SQLItem></SQL_Condition></AnalysisMethod></commandRule>";
}

std::string Node(const std::string& params, const std::string& alternatives)
{
    return "<nodeRule name=\"r\" detectScene=\"1\"><params>" + params + "</params><condition>" + alternatives
        + "</condition></nodeRule>";
}

const std::string INT = Param("1", "int");
const std::string TEST_OF_R = "a test of the rule \"r\" ";

INSTANTIATE_TEST_SUITE_P(Comparisons, ConditionChecks, testing::Values(
    ConditionCase{"TestsThatAreNotAsked", {"A420", "A421", "A422", "A423", "A426", "A427", "A430"},
        AlarmOf("", "<time type=\"latest\" period=\"7\" threshold=\"1\"/>", Param("1", "text"),
            Single(Test("in", "1", "x")) + Single("<gte/>") + "<or/>"), {}},
    ConditionCase{"InAmongSeveralOfACommandRule", {"A420"}, Command(INT, Several(Test("in", "1", "x"))),
        {"A420: " + TEST_OF_R + "compares with \"in\""}},
    ConditionCase{"EqualTexts", {"A421"}, Alarm(Param("1", "string"), Single(Test("eq", "1", "x"))), {}},
    ConditionCase{"SingleNodeTestOfTextsAlone", {"A421"},
        Node(Param("1", "string") + Param("2", "string"), Single(Test("le", "1", "5"))),
        {"A421: " + TEST_OF_R + "compares texts with \"le\""}},
    ConditionCase{"SingleNodeTestOfATextAndANumber", {"A421"},
        Node(Param("1", "string") + Param("2", "int"), Single(Test("le", "1", "5"))), {}},
    ConditionCase{"SecondSingleNodeTestIsNeverAsked", {"A421"},
        Node(Param("1", "string"), Single(Test("eq", "1", "5")) + Single(Test("le", "1", "5"))), {}},
    ConditionCase{"SeveralTestsOfACommandRuleGoByTheFirst", {"A421"},
        Command(INT + Param("2", "string"), Several(Test("le", "1", "5") + Test("le", "2", "5"))), {}},
    ConditionCase{"UnknownTypeOfAParameterThatNobodyTests", {"A422"},
        Alarm(INT + Param("2", "text"), Single(Test("le", "1", "5"))), {}},
    ConditionCase{"UnknownTypeIsToldOnce", {"A422"},
        Alarm(Param("1", "int32"), Single(Test("le", "1", "5")) + Single(Test("ge", "1", "7"))),
        {"A422: the parameter \"1\" of the rule \"r\" has the unknown type \"int32\""}},
    ConditionCase{"NumberWithAUnit", {"A423"}, Alarm(INT, Single(Test("le", "1", "5 MB"))),
        {"A423: " + TEST_OF_R + "compares numbers with \"5 MB\", which is read as 5"}},
    ConditionCase{"NumberWithBlanks", {"A423"}, Alarm(INT, Single(Test("le", "1", " 5\n"))), {}},
    ConditionCase{"DecimalCommaInADouble", {"A423"}, Alarm(Param("1", "double"), Single(Test("le", "1", "1,5"))),
        {"A423: " + TEST_OF_R + "compares numbers with \"1,5\", which is no number"}},
    ConditionCase{"DecimalNumberInADouble", {"A423"}, Alarm(Param("1", "double"), Single(Test("le", "1", "-1.5e3"))), {}},
    ConditionCase{"TextThatIsNoNumber", {"A423"}, Alarm(Param("1", "string"), Single(Test("eq", "1", "on"))), {}},
    ConditionCase{"ValueThatACommandRuleDoesNotRead", {"A423", "A424", "A427"},
        Command(INT, Single(Test("le", "1", "x", "dynamic")) + Single(Test("le", "1", "", "systemParam"))), {}},
    ConditionCase{"ValueThatACommandRuleReads", {"A423"}, Command(INT, Single(Test("le", "1", "x", "static"))),
        {"A423: " + TEST_OF_R + "compares numbers with \"x\", which is read as 0"}},
    ConditionCase{"LargeNumberOfTheTypeInt", {"A424"}, Node(INT, Several(Test("le", "1", "4294967298"))),
        {"A424: " + TEST_OF_R + "compares with \"4294967298\", of which 2 is left"}},
    ConditionCase{"LargeNumberOfTheTypeDouble", {"A424"}, Node(Param("1", "double"), Several(Test("le", "1", "4294967298"))),
        {}},
    ConditionCase{"DifferentFloats", {"A425"}, Node(Param("1", "float"), Several(Test("ne", "1", "0"))),
        {"A425: " + TEST_OF_R + "compares decimal numbers with \"ne\""}},
    ConditionCase{"OrderOfFloats", {"A425"}, Node(Param("1", "float"), Several(Test("gt", "1", "0"))), {}}),
    CaseName());

const std::string ALTERNATIVE_OF_R = "an alternative of the rule \"r\" ";

INSTANTIATE_TEST_SUITE_P(Forms, ConditionChecks, testing::Values(
    ConditionCase{"EmptySingle", {"A426", "A427"}, Alarm(INT, Single("")), {"A427: " + ALTERNATIVE_OF_R + "has no test"}},
    ConditionCase{"SingleWithoutAnId", {"A427"}, Alarm(INT, Single("<eq><value>5</value></eq>")),
        {"A427: " + ALTERNATIVE_OF_R + "has a test without an \"id\""}},
    ConditionCase{"SeveralWithoutAnAnd", {"A427"}, Alarm(INT, "<or type=\"multiple_logic\"/>"),
        {"A427: " + ALTERNATIVE_OF_R + "has no \"and\""}},
    ConditionCase{"SeveralOfWhichNoneIsLeft", {"A427", "A428"}, Alarm(INT, Several("<eq><id>1</id></eq>")),
        {"A427: " + ALTERNATIVE_OF_R + "has no test with an \"id\" and a \"value\""}},
    ConditionCase{"UnknownTypeOfAnAlternative", {"A427"}, Alarm(INT, "<or type=\"single\">" + Test("eq", "1", "5") + "</or>"),
        {"A427: " + ALTERNATIVE_OF_R + "has the unknown type \"single\""}},
    ConditionCase{"StaticTestOfACommandRuleWithoutAValue", {"A427"}, Command(INT, Single(Test("le", "1", "", "static"))),
        {"A427: " + TEST_OF_R + "has no \"value\""}},
    ConditionCase{"OneOfSeveralWithoutAValue", {"A428"}, Alarm(INT, Several(Test("eq", "1", "5") + Test("lt", "1", ""))),
        {"A428: " + TEST_OF_R + "has no \"value\""}},
    ConditionCase{"ParametersOfSharedData", {"A429"}, Command("<param key=\"a\" type=\"int\"/>" + INT + INT, ""),
        {"A429: a parameter has no \"id\"",
            "A429: the parameter \"1\" is declared again, and the one in line 1 counts"}},
    ConditionCase{"ParameterOfANodeRuleWithoutAKey", {"A429"}, Node("<param id=\"1\" type=\"int\"/>", ""),
        {"A429: a parameter has no \"key\""}}),
    CaseName());

const std::string NONE = "A430: no value of the parameter \"1\" of the rule \"r\" passes this alternative";
const std::string EVERY = "A430: every value of the parameter \"1\" of the rule \"r\" passes one of its alternatives";
const std::string ABOVE = Test("ge", "1", "10");
const std::string BELOW = Test("le", "1", "5");
const std::string BELOW_MORE = Test("le", "1", "15");
const std::string LATEST = "<time type=\"latest\" period=\"7\" threshold=\"1\"/>";
const std::string TWICE = "<time type=\"duration\" period=\"7\" threshold=\"2\"/>";
const std::string TESTED = " type=\"param_eventid\"";

INSTANTIATE_TEST_SUITE_P(Values, ConditionChecks, testing::Values(
    ConditionCase{"ExclusiveTestsOfANode", {"A430"}, Node(INT, Several(ABOVE + BELOW)), {NONE}},
    ConditionCase{"ExclusiveTestsOfRowsOfTheirOwn", {"A430"}, AlarmOf(TESTED, LATEST, INT, Several(ABOVE + BELOW)), {}},
    ConditionCase{"ExclusiveTestsOfTwoParameters", {"A430"},
        Node(INT + Param("2", "int"), Several(ABOVE + Test("le", "2", "5"))), {}},
    ConditionCase{"TestsOfACommandRuleOfTheFirstParameter", {"A430"},
        Command(INT + Param("2", "int"), Several(ABOVE + Test("le", "2", "5"))), {NONE}},
    ConditionCase{"SingleTestThatNothingPasses", {"A430"}, Alarm(INT, Single(Test("gt", "1", "2147483647"))), {NONE}},
    ConditionCase{"ExhaustiveAlternativesOfACommandRule", {"A430"},
        Command(INT, Single(Test("ge", "1", "10", "static")) + Single(Test("le", "1", "15", "static"))), {EVERY}},
    ConditionCase{"AlternativesOfACommandRuleWithThresholdsFromElsewhere", {"A430"},
        Command(INT, Single(Test("ge", "1", "10", "dynamic")) + Single(Test("le", "1", "15", "dynamic"))), {}},
    ConditionCase{"ExhaustiveAlternativesThatRowsAreCountedFor", {"A430"},
        AlarmOf(TESTED, TWICE, INT, Single(ABOVE) + Single(BELOW_MORE)), {}},
    ConditionCase{"ExhaustiveAlternativesThatOneRowIsEnoughFor", {"A430"}, Alarm(INT, Single(ABOVE) + Single(BELOW_MORE)),
        {EVERY}},
    ConditionCase{"AlternativesOfANodeRuleAfterTheFirstAreNotAsked", {"A430"},
        Node(INT, Single(ABOVE) + Single(BELOW_MORE)), {}}),
    CaseName());

} // namespace
