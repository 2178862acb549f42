#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_CONDITIONS_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_CONDITIONS_H

#include <string_view>
#include <vector>

#include "diagnosis/rule_source/element.h"

namespace diagnosis::rule_source {

/// "eq", "gt", "lt", "ge", "le", "ne" or "in".
bool IsComparisonWord(std::string_view word);

/// One test: an element named by a comparison word.
struct Test {
    Element element;
    /// The word, which is the element's name.
    std::string_view word;
    /// The attribute "type": "static", "dynamic", "systemParam".
    std::string_view logicType;
    /// The first children of these names; null if there is none.
    Element idElement;
    Element valueElement;
    Element commonPartParamIdElement;
    /// Their texts.
    std::string_view id;
    std::string_view value;
    std::string_view commonPartParamId;
};

Test ReadTest(Element element);

/// An alternative of a condition that the engine keeps: an "or".
struct ConditionAlternative {
    enum class Kind {
        SINGLE, ///< one test
        MULTIPLE, ///< tests that must all be true
        EMPTY, ///< a "single_logic" whose first child is no test: kept without a test, and of no kind that checkers know
    };

    Element element;
    Kind kind = Kind::SINGLE;
    /// The tests that the engine keeps.
    std::vector<Test> tests;
};

/// A "condition" in the form of rules, as the engine reads it.
struct Condition {
    /// Null if the rule has none.
    Element element;
    std::vector<ConditionAlternative> alternatives;
    /// The "or" elements that the engine drops.
    std::vector<Element> dropped;
    /// The tests of a "multiple_logic" that the engine drops for lack of an id or a value.
    std::vector<Element> droppedTests;
};

Condition ReadCondition(Element element);

/// A test in the form of threshold items.
struct ThresholdTest {
    Test test;
    /// For the word "in": the elements whose texts are its values.
    std::vector<Element> values;
};

/// A "condition" in the form of threshold items: only the first "or" is read.
struct ThresholdCondition {
    Element element;
    Element alternative;
    std::vector<ThresholdTest> tests;
};

ThresholdCondition ReadThresholdCondition(Element element);

} // namespace diagnosis::rule_source

#endif
