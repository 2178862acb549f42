#ifndef ARBORIST_LOADING_CONDITION_ELEMENT_PARSE_H
#define ARBORIST_LOADING_CONDITION_ELEMENT_PARSE_H

#include <memory>
#include <vector>

#include "arborist/model/condition.h"

namespace tinyxml2 {
class XMLElement;
}

/// Reads one "condition" element in one of two forms; the caller knows which. Skips in silence what it can't use.
/// Use an object for one call; the element must outlive it.
class ConditionElementParse {
public:
    /// A null element reads as an empty one.
    explicit ConditionElementParse(const tinyxml2::XMLElement* element) : mElement(element) {}

    /// The form of rules: appends one alternative for each "or" to `conditions`. True if the list is not empty
    /// afterwards.
    bool Parse(ConditionList& conditions) const;
    /// The form of threshold items: appends the tests of the first "or" to `tests`. True if the list is not empty
    /// afterwards; false without an "or", without its "type" and without a test.
    bool Parse(std::vector<std::shared_ptr<Logic>>& tests) const;

private:
    static bool ParseOrLogicItem(const tinyxml2::XMLElement& element, OrLogic& alternative);
    static bool ParseSingleLogic(const tinyxml2::XMLElement& element, OrLogic& alternative);
    static bool ParseMultipleLogic(const tinyxml2::XMLElement& element, OrLogic& alternative);
    static bool ParseLogicValue(const tinyxml2::XMLElement& element, Logic& test);

    const tinyxml2::XMLElement* mElement;
};

#endif
