#ifndef ARBORIST_LOADING_CONDITION_ELEMENT_PARSE_H
#define ARBORIST_LOADING_CONDITION_ELEMENT_PARSE_H

#include <memory>
#include <vector>

#include "arborist/model/condition.h"

namespace tinyxml2 {
class XMLElement;
}

/// Reads one "condition" element. Which of its two forms it has depends on who asks; what can't be used is skipped in
/// silence. Made for one call; the element must outlive it.
class ConditionElementParse {
public:
    /// A null element reads as an empty one.
    explicit ConditionElementParse(const tinyxml2::XMLElement* element) : mElement(element) {}

    /// The form of rules: every "or" is an alternative, appended to `conditions`. True when the list is not empty
    /// afterwards.
    bool Parse(ConditionList& conditions) const;
    /// The form of threshold items: the tests of the first "or", appended to `tests`. True when the list is not empty
    /// afterwards; false without an "or", its "type" or a test.
    bool Parse(std::vector<std::shared_ptr<Logic>>& tests) const;

private:
    static bool ParseOrLogicItem(const tinyxml2::XMLElement& element, OrLogic& alternative);
    static bool ParseSingleLogic(const tinyxml2::XMLElement& element, OrLogic& alternative);
    static bool ParseMultipleLogic(const tinyxml2::XMLElement& element, OrLogic& alternative);
    static bool ParseLogicValue(const tinyxml2::XMLElement& element, Logic& test);

    const tinyxml2::XMLElement* mElement;
};

#endif
