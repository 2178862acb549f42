#include <gtest/gtest.h>

#include "diagnosis/lint/lint.h"
#include "tests/support/case_name.h"

namespace {

using diagnosis::rule_source::RuleSetFiles;
using diagnosis::rule_source::SourceFile;

// What is told of a formula over the nodes "a", "b" and "c": the id of the check, and the message behind the rule's name.
std::string FoundIn(const std::string& formula)
{
    RuleSetFiles files;
    files.rules = SourceFile::Of("FaultTreeRules.xml", R"(<Rules><RuleList><Laptop><rule>
        <nodeRule name="r" detectScene="1"><nodeInfo param="a" path="a"/><nodeInfo param="b" path="b"/>
        <nodeInfo param="c" path="c"/><params><param id="1" key="a" type="int"/><param id="2" key="b" type="int"/>
        <param id="3" key="c" type="int"/><param id="4" key="sum" type="double"/></params>
        <logicExpression type="double" ret="sum" express=")" + formula + R"("/></nodeRule>
        </rule></Laptop></RuleList></Rules>)");
    std::string found;
    for (const auto& finding : diagnosis::lint::LintFiles(files, {}).findings) {
        const std::string start = "the formula of the rule \"r\" ";
        if (finding.message.starts_with(start)) {
            found += found.empty() ? "" : "; ";
            found += finding.check->id + (" " + finding.message.substr(start.size()));
        }
    }
    return found;
}

struct FormulaCase {
    const char* name;
    const char* formula;
    const char* found;
};
void PrintTo(const FormulaCase& formula, std::ostream* out) { *out << formula.formula; }

class FormulaOf : public testing::TestWithParam<FormulaCase> {};

TEST_P(FormulaOf, IsLintedAsTheEngineReadsIt)
{
    EXPECT_EQ(FoundIn(GetParam().formula), GetParam().found);
}

INSTANTIATE_TEST_SUITE_P(All, FormulaOf, testing::Values(
    FormulaCase{"OneName", "a", ""},
    FormulaCase{"Sums", "a + b + c", ""},
    FormulaCase{"SumBeforeADifference", "a + b - c", ""},
    FormulaCase{"DifferenceBeforeASum", "a - b + c", "A702 is worked out as a - (b + c)"},
    FormulaCase{"ProductBetweenDifferences", "a - b * 2 - c", "A702 is worked out as a - ((b * 2) - c)"},
    FormulaCase{"DifferencesInParentheses", "(a - b) - c", ""},
    FormulaCase{"ChainInParentheses", "2 * (a - b - c)", "A702 is worked out as 2 * (a - (b - c))"},
    FormulaCase{"QuotientsOfTwoSums", "a / 2 + b / 3", ""},
    FormulaCase{"QuotientOfAQuotient", "a / 8 / 2", "A702 is worked out as a / (8 / 2)"},
    FormulaCase{"MinusAtTheStart", "-a", "A701 has no result: there is no number or name before \"-\""},
    FormulaCase{"OperatorAtTheEnd", "a *", "A701 has no result: there is no number or name at its end"},
    FormulaCase{"NotClosed", "(a + b", "A701 has no result: a \"(\" has no \")\""},
    FormulaCase{"NotOpened", "a + b)", "A701 has no result: a \")\" has no \"(\""},
    FormulaCase{"EmptyParentheses", "a + ()", "A701 has no result: there is no number or name before \")\""},
    FormulaCase{"NoOperator", "2 (a)", "A701 has no result: there is no operator before \"(\""},
    FormulaCase{"UnknownNameTwice", "d + d", "A704 names \"d\", which is the key of no parameter"},
    FormulaCase{"Number", "a + 1.5", ""},
    FormulaCase{"Exponent", "a * 1e-5", "A705 cuts \"1e-5\" at its sign"},
    FormulaCase{"ExponentInCapitals", "a * 1E-5", "A705 cuts \"1E-5\" at its sign"},
    FormulaCase{"ExponentWithAPlus", "a * 1e+5", "A705 cuts \"1e+5\" at its sign"},
    FormulaCase{"ExponentOfAName", "a * 1e+b", "A704 names \"1e\", which is the key of no parameter"},
    FormulaCase{"ExponentTimesANumber", "a + 1e * 5", "A704 names \"1e\", which is the key of no parameter"},
    FormulaCase{"NameInE", "a + de - 5", "A704 names \"de\", which is the key of no parameter"},
    FormulaCase{"BlankInAName", "a b + c", "A705 joins \"a b\" to one name"},
    FormulaCase{"DivisionByAName", "a / b", "A706 divides by what may be 0"},
    FormulaCase{"DivisionByZero", "a / 0.0", "A706 divides by what may be 0"},
    FormulaCase{"DivisionByANumber", "a / 100", ""}),
    CaseName());

} // namespace
