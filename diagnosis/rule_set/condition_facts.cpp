#include "diagnosis/rule_set/fact_list.h"

namespace diagnosis::rule_set {

namespace {

using rule_source::ConditionAlternative;
using rule_source::Test;
using rule_source::ThresholdTest;

std::string Bracketed(std::string_view text)
{
    return text.empty() ? "" : " [" + std::string(text) + "]";
}

// "10 ge 5 [static]", "10 ge common part 3 [dynamic]"
std::string TestText(const Test& test)
{
    std::string text = std::string(test.id) + " " + std::string(test.word);
    text += test.value.empty() ? "" : " " + std::string(test.value);
    text += test.commonPartParamId.empty() ? "" : " common part " + std::string(test.commonPartParamId);
    return text + Bracketed(test.logicType);
}

std::string ValuesText(const ThresholdTest& test)
{
    std::string text = std::string(test.test.id) + " in";
    for (const rule_source::Element value : test.values) {
        text += " \"" + std::string(value.Text()) + "\"";
    }
    return text;
}

void AddTo(std::string& text, const std::string& test)
{
    text += (text.empty() ? "" : " and ") + test;
}

std::string AlternativeText(const ConditionAlternative& alternative)
{
    if (alternative.kind == ConditionAlternative::Kind::EMPTY) {
        return "single without a test";
    }
    std::string tests;
    for (const Test& test : alternative.tests) {
        AddTo(tests, TestText(test));
    }
    return (alternative.kind == ConditionAlternative::Kind::SINGLE ? "single: " : "multiple: ") + tests;
}

} // namespace

void FactList::Add(const rule_source::Condition& condition)
{
    int number = 0;
    for (const ConditionAlternative& alternative : condition.alternatives) {
        Add("condition " + std::to_string(++number), AlternativeText(alternative), alternative.element);
    }
}

std::string ConditionText(const rule_source::ThresholdCondition& condition)
{
    std::string text;
    for (const ThresholdTest& test : condition.tests) {
        AddTo(text, test.test.word == "in" ? ValuesText(test) : TestText(test.test));
    }
    return text;
}

} // namespace diagnosis::rule_set
