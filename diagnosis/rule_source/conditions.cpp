#include "diagnosis/rule_source/conditions.h"

#include <algorithm>
#include <array>

namespace diagnosis::rule_source {

namespace {

using Kind = ConditionAlternative::Kind;

bool ReadSingle(Element element, ConditionAlternative& alternative)
{
    const Element first = element.FirstChild();
    if (!first) {
        return false;
    }
    if (!IsComparisonWord(first.Name())) {
        alternative.kind = Kind::EMPTY;
        return true;
    }
    alternative.tests.push_back(ReadTest(first));
    return alternative.tests.back().idElement.HasText();
}

bool ReadMultiple(Element element, ConditionAlternative& alternative, std::vector<Element>& droppedTests)
{
    alternative.kind = Kind::MULTIPLE;
    for (const Element child : Children(element.FirstChild("and"))) {
        if (!IsComparisonWord(child.Name())) {
            continue;
        }
        const Test test = ReadTest(child);
        if (test.idElement.HasText() && test.valueElement.HasText()) {
            alternative.tests.push_back(test);
        } else {
            droppedTests.push_back(child);
        }
    }
    return !alternative.tests.empty();
}

} // namespace

bool IsComparisonWord(std::string_view word)
{
    static constexpr std::array<std::string_view, 7> WORDS = {"eq", "gt", "lt", "ge", "le", "ne", "in"};
    return std::find(WORDS.begin(), WORDS.end(), word) != WORDS.end();
}

Test ReadTest(Element element)
{
    Test test;
    test.element = element;
    test.word = element.Name();
    test.logicType = element.Value("type");
    test.idElement = element.FirstChild("id");
    test.valueElement = element.FirstChild("value");
    test.commonPartParamIdElement = element.FirstChild("commonPartParamId");
    test.id = test.idElement.Text();
    test.value = test.valueElement.Text();
    test.commonPartParamId = test.commonPartParamIdElement.Text();
    return test;
}

Condition ReadCondition(Element element)
{
    Condition condition;
    condition.element = element;
    for (const Element child : Children(element, "or")) {
        ConditionAlternative alternative;
        alternative.element = child;
        const std::string_view type = child.Value("type");
        const bool isKept = type == "single_logic" ? ReadSingle(child, alternative)
            : type == "multiple_logic"             ? ReadMultiple(child, alternative, condition.droppedTests)
                                                   : false;
        if (isKept) {
            condition.alternatives.push_back(std::move(alternative));
        } else {
            condition.dropped.push_back(child);
        }
    }
    return condition;
}

ThresholdCondition ReadThresholdCondition(Element element)
{
    ThresholdCondition condition;
    condition.element = element;
    condition.alternative = element.FirstChild("or");
    if (!condition.alternative.Has("type")) {
        return condition;
    }
    for (const Element child : Children(condition.alternative)) {
        if (!IsComparisonWord(child.Name()) || !child.FirstChild("id").HasText()) {
            continue;
        }
        ThresholdTest test{ReadTest(child), {}};
        // Every element after the first value counts as a value.
        for (Element value = child.FirstChild("set").FirstChild("value"); value; value = value.Next()) {
            test.values.push_back(value);
        }
        condition.tests.push_back(std::move(test));
    }
    return condition;
}

} // namespace diagnosis::rule_source
