#include "arborist/loading/condition_element_parse.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "arborist/loading/xml_walk.h"

namespace {

using tinyxml2::XMLElement;
using XmlWalk::Children;
using XmlWalk::ChildText;

bool IsComparisonWord(std::string_view word)
{
    static constexpr std::array<std::string_view, 7> COMPARISON_WORDS = {"eq", "gt", "lt", "ge", "le", "ne", "in"};
    return std::find(COMPARISON_WORDS.begin(), COMPARISON_WORDS.end(), word) != COMPARISON_WORDS.end();
}

// Reads one test of a "multiple_logic"; null if its id or its value is missing.
std::shared_ptr<OrLogic::LogicItem> ParseLogicItem(const XMLElement& element)
{
    const XMLElement* id = nullptr;
    const XMLElement* value = nullptr;
    XmlWalk::FindFirstChildren(element, {{"id", &id}, {"value", &value}});
    const char* idText = XmlWalk::TextOf(id);
    const char* valueText = XmlWalk::TextOf(value);
    if (idText == nullptr || valueText == nullptr) {
        return nullptr;
    }
    auto item = std::make_shared<OrLogic::LogicItem>();
    item->SetLogic(element.Name());
    if (const char* logicType = element.Attribute("type")) {
        item->SetLogicType(logicType);
    }
    item->SetParamId(idText);
    item->SetValue(valueText);
    return item;
}

// Every element after the first "value" counts as a value, whatever its name: rule sets rely on it.
std::vector<std::string> ParseSet(const XMLElement& set)
{
    std::vector<std::string> values;
    for (const XMLElement* value = set.FirstChildElement("value"); value != nullptr;
         value = value->NextSiblingElement()) {
        if (const char* text = value->GetText()) {
            values.emplace_back(text);
        }
    }
    return values;
}

} // namespace

bool ConditionElementParse::Parse(ConditionList& conditions) const
{
    for (const XMLElement& element : Children(mElement, "or")) {
        auto alternative = std::make_shared<OrLogic>();
        if (ParseOrLogicItem(element, *alternative)) {
            conditions.push_back(std::move(alternative));
        }
    }
    return !conditions.empty();
}

bool ConditionElementParse::ParseOrLogicItem(const XMLElement& element, OrLogic& alternative)
{
    const char* type = element.Attribute("type");
    if (type == nullptr) {
        return false;
    }
    alternative.SetType(type);
    if (alternative.GetType() == "multiple_logic") {
        return ParseMultipleLogic(element, alternative);
    }
    return alternative.GetType() == "single_logic" && ParseSingleLogic(element, alternative);
}

bool ConditionElementParse::ParseSingleLogic(const XMLElement& element, OrLogic& alternative)
{
    const XMLElement* test = element.FirstChildElement();
    if (test == nullptr) {
        return false;
    }
    if (!IsComparisonWord(test->Name())) {
        // The alternative stays, empty but for its type: rule files rely on a checker that finds no logic in it.
        return true;
    }
    alternative.SetLogic(test->Name());
    if (const char* logicType = test->Attribute("type")) {
        alternative.SetLogicType(logicType);
    }
    const char* id = ChildText(*test, "id");
    if (id == nullptr) {
        return false;
    }
    alternative.SetParamId(id);
    if (const char* value = ChildText(*test, "value")) {
        alternative.SetValue(value);
    }
    if (const char* commonPartParamId = ChildText(*test, "commonPartParamId")) {
        alternative.SetCommonPartParamId(commonPartParamId);
    }
    return true;
}

bool ConditionElementParse::ParseMultipleLogic(const XMLElement& element, OrLogic& alternative)
{
    OrLogic::LogicItemList items;
    for (const XMLElement& test : Children(element.FirstChildElement("and"))) {
        if (!IsComparisonWord(test.Name())) {
            continue;
        }
        if (auto item = ParseLogicItem(test)) {
            items.push_back(std::move(item));
        }
    }
    alternative.SetLogicItemList(std::move(items));
    return !alternative.GetLogicItemList().empty();
}

bool ConditionElementParse::Parse(std::vector<std::shared_ptr<Logic>>& tests) const
{
    const XMLElement* alternative = mElement == nullptr ? nullptr : mElement->FirstChildElement("or");
    const char* type = alternative == nullptr ? nullptr : alternative->Attribute("type");
    if (type == nullptr || alternative->FirstChildElement() == nullptr) {
        return false;
    }
    for (const XMLElement& element : Children(alternative)) {
        const char* id = IsComparisonWord(element.Name()) ? ChildText(element, "id") : nullptr;
        if (id == nullptr) {
            continue;
        }
        auto test = std::make_shared<Logic>();
        test->SetType(type);
        test->SetLogic(element.Name());
        test->SetParamId(id);
        // A test without a value is kept, with an empty value.
        ParseLogicValue(element, *test);
        tests.push_back(std::move(test));
    }
    return !tests.empty();
}

bool ConditionElementParse::ParseLogicValue(const XMLElement& element, Logic& test)
{
    if (test.GetLogic() == "in") {
        const XMLElement* set = element.FirstChildElement("set");
        if (set == nullptr) {
            return false;
        }
        test.SetSetList(ParseSet(*set));
        return true;
    }
    const char* value = ChildText(element, "value");
    if (value == nullptr) {
        return false;
    }
    test.SetValue(value);
    return true;
}
