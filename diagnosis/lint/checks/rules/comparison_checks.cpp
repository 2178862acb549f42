#include <algorithm>
#include <array>

#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/reading/binding_walk.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/reading/condition_walk.h"
#include "diagnosis/rule_source/numbers.h"

namespace diagnosis::lint {

namespace {

using rule_source::Param;
using rule_source::WholeNumber;

constexpr std::array<const char*, 5> TYPES = {"int", "long", "float", "double", "string"};

bool IsWhole(const Param& param)
{
    return param.type == "int" || param.type == "long";
}

bool IsDecimal(const Param& param)
{
    return param.type == "float" || param.type == "double";
}

bool IsString(const Param& param)
{
    return param.type == "string";
}

bool Any(const AskedTest& asked, bool (*is)(const Param&))
{
    return std::any_of(asked.params.begin(), asked.params.end(), is);
}

void CheckIn(const Subject& subject, Report& report)
{
    ForEachAskedTest(subject.rules, [&report](const AskedTest& asked) {
        if (asked.test.word == "in") {
            report.Add(asked.test.element, "a test of the rule " + Quoted(asked.RuleName()) + " compares with \"in\"",
                {.help = "write an alternative with \"eq\" for each value"});
        }
    });
}

void CheckOrderOfTexts(const Subject& subject, Report& report)
{
    static constexpr std::array<std::string_view, 4> WORDS = {"gt", "lt", "ge", "le"};
    ForEachAskedTest(subject.rules, [&report](const AskedTest& asked) {
        const bool isOrder = std::find(WORDS.begin(), WORDS.end(), asked.test.word) != WORDS.end();
        const bool areTexts = !asked.params.empty() && std::all_of(asked.params.begin(), asked.params.end(), IsString);
        if (isOrder && areTexts) {
            report.Add(asked.test.element, "a test of the rule " + Quoted(asked.RuleName()) + " compares texts with "
                    + Quoted(asked.test.word),
                {.help = "give the parameter a type of numbers, or compare with \"eq\" or \"ne\""});
        }
    });
}

void CheckTypes(const Subject& subject, Report& report)
{
    NearNames near(TYPES.begin(), TYPES.end());
    ForEachAskedTest(subject.rules, [&](const AskedTest& asked) {
        for (const Param& param : asked.params) {
            const bool isKnown = std::find(TYPES.begin(), TYPES.end(), param.type) != TYPES.end();
            if (!isKnown) {
                report.Add(param.element, "the parameter " + Quoted(param.id) + " of the rule "
                        + Quoted(asked.RuleName()) + " has the unknown type " + Quoted(param.type),
                    {.attribute = param.element.Find("type"), .near = near.Find(param.type)});
            }
        }
    });
}

// How the engine reads a text that is no valid number; empty for a number.
std::string ReadAs(const AskedTest& asked)
{
    const std::string_view text = Trimmed(asked.test.value);
    const WholeNumber whole = rule_source::ReadWholeNumber(text);
    if (Any(asked, IsWhole) && !whole.isWhole) {
        return ", which is read as " + std::to_string(whole.value);
    }
    return Any(asked, IsDecimal) && !rule_source::IsDecimalNumber(text) ? ", which is no number" : "";
}

void CheckNumbers(const Subject& subject, Report& report)
{
    ForEachAskedTest(subject.rules, [&report](const AskedTest& asked) {
        const bool hasValue = asked.HasOwnValue() && !asked.test.value.empty();
        const std::string readAs = hasValue ? ReadAs(asked) : "";
        if (!readAs.empty()) {
            report.Add(asked.test.valueElement, "a test of the rule " + Quoted(asked.RuleName())
                    + " compares numbers with " + Quoted(asked.test.value) + readAs,
                {.help = "write a number of the parameter's type", .isAboutText = true});
        }
    });
}

void CheckLongNumbers(const Subject& subject, Report& report)
{
    ForEachAskedTest(subject.rules, [&report](const AskedTest& asked) {
        const WholeNumber whole = rule_source::ReadWholeNumber(asked.test.value);
        if (whole.isCut && asked.HasOwnValue() && Any(asked, IsWhole)) {
            report.Add(asked.test.valueElement, "a test of the rule " + Quoted(asked.RuleName()) + " compares with "
                    + Quoted(asked.test.value) + ", of which " + std::to_string(whole.value) + " is left",
                {.help = "give the parameter the type \"double\", which is exact up to 2 to the 53rd",
                    .isAboutText = true});
        }
    });
}

void CheckExactNumbers(const Subject& subject, Report& report)
{
    ForEachAskedTest(subject.rules, [&report](const AskedTest& asked) {
        const bool isExact = asked.test.word == "eq" || asked.test.word == "ne";
        if (isExact && Any(asked, IsDecimal)) {
            report.Add(asked.test.element, "a test of the rule " + Quoted(asked.RuleName())
                    + " compares decimal numbers with " + Quoted(asked.test.word),
                {.help = "ask for a lowest and a highest value"});
        }
    });
}

constexpr Check CHECKS[] = {
    {"A420", Severity::ERROR, CheckClass::STATIC, "comparison \"in\" in a rule",
        "A test of a rule named \"in\", which is a word of threshold tables.", "the test never holds", CheckIn},
    {"A421", Severity::ERROR, CheckClass::STATIC, "order of texts",
        "A test with \"gt\", \"lt\", \"ge\" or \"le\" of a parameter of the type \"string\".",
        "the test never holds: texts are equal or different", CheckOrderOfTexts},
    {"A422", Severity::ERROR, CheckClass::STATIC, "unknown type of a parameter",
        "A parameter that is tested, and whose type is none of \"int\", \"long\", \"float\", \"double\" and \"string\".",
        "no test of it ever holds", CheckTypes},
    {"A423", Severity::WARNING, CheckClass::STATIC, "number that is none",
        "A test of a parameter with a type of numbers whose \"value\" is no number.",
        "the number that it begins with counts, and without any it is 0", CheckNumbers},
    {"A424", Severity::WARNING, CheckClass::STATIC, "number of more than 32 bits",
        "A test of a parameter of the type \"int\" or \"long\" whose \"value\" needs more than 32 bits.",
        "the low 32 bits are compared", CheckLongNumbers},
    {"A425", Severity::WARNING, CheckClass::STATIC, "exact comparison of decimal numbers",
        "A test with \"eq\" or \"ne\" of a parameter of the type \"float\" or \"double\".",
        "the numbers are compared to the last digit, so that 0.1 + 0.2 is not 0.3", CheckExactNumbers},
};

} // namespace

std::span<const Check> ComparisonChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
