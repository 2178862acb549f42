#include "arborist/loading/event_rule_parser.h"

#include "arborist/loading/xml_walk.h"

using tinyxml2::XMLElement;
using XmlWalk::Children;

void EventRuleParser::Parse(const tinyxml2::XMLDocument& document)
{
    for (const XMLElement& event : Children(XmlWalk::FindTagElement(document, "EventRules", mTreeTag), "Event")) {
        ParseEvent(event);
    }
}

void EventRuleParser::ParseEvent(const XMLElement& element)
{
    // Stored as written. Unlike in the tree file, spaces at its ends stay, and such an id matches no event.
    const char* id = XmlWalk::ChildText(element, "ID");
    if (id == nullptr) {
        return;
    }
    OrRuleList rules;
    for (const XMLElement& alternative : Children(element, "or")) {
        ParseOrRule(alternative, rules);
    }
    rules.shrink_to_fit();
    auto eventRule = std::make_shared<EventRule>();
    eventRule->SetEventId(id);
    eventRule->SetRuleList(std::move(rules));
    // Most rule sets list their events in order of id, so the end of the map is nearly always the right place.
    mEventRuleMap.insert_or_assign(mEventRuleMap.end(), eventRule->SetEventId(), std::move(eventRule));
}

void EventRuleParser::ParseOrRule(const XMLElement& element, OrRuleList& rules)
{
    const char* type = element.Attribute("type");
    if (type == nullptr) {
        return;
    }
    auto rule = std::make_shared<OrRuleSingle>();
    rule->type = type;
    if (rule->type == "singleRule") {
        ParseSingleRule(element, *rule);
    } else if (rule->type == "multipleRule") {
        ParseMultipleRule(element, *rule);
    }
    // Keeps an alternative without rule names, which is never true.
    rules.push_back(std::move(rule));
}

void EventRuleParser::ParseSingleRule(const XMLElement& element, OrRuleSingle& rule)
{
    if (const XMLElement* named = element.FirstChildElement("Rule")) {
        XmlWalk::AssignText(named->FirstChildElement("Rule-name"), rule.ruleName);
    }
}

void EventRuleParser::ParseMultipleRule(const XMLElement& element, OrRuleSingle& rule)
{
    for (const XMLElement& named : Children(element.FirstChildElement("and"), "Rule")) {
        if (const char* name = XmlWalk::ChildText(named, "Rule-name")) {
            rule.ruleNameList.emplace_back(name);
        }
    }
}
