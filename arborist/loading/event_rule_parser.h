#ifndef ARBORIST_LOADING_EVENT_RULE_PARSER_H
#define ARBORIST_LOADING_EVENT_RULE_PARSER_H

#include <map>
#include <memory>
#include <string>
#include <utility>

#include "arborist/model/event_rule.h"

namespace tinyxml2 {
class XMLDocument;
class XMLElement;
}

/// Reads the "EventRules" of one tag: which rules decide which event. Keeps the names of rules as texts: the
/// evaluation looks up the rules.
class EventRuleParser {
public:
    using EventRuleMap = std::map<std::string, std::shared_ptr<EventRule>>;

    explicit EventRuleParser(std::string treeTag) : mTreeTag(std::move(treeTag)) {}

    /// Adds the events of the tag to the map; a later event of the same id replaces the earlier. Logs nothing.
    void Parse(const tinyxml2::XMLDocument& document);
    const EventRuleMap& GetEventRuleMap() const { return mEventRuleMap; }
    /// Moves the map out of the parser, which is empty afterwards.
    EventRuleMap TakeEventRuleMap() { return std::move(mEventRuleMap); }

private:
    void ParseEvent(const tinyxml2::XMLElement& element);
    static void ParseOrRule(const tinyxml2::XMLElement& element, OrRuleList& rules);
    static void ParseSingleRule(const tinyxml2::XMLElement& element, OrRuleSingle& rule);
    static void ParseMultipleRule(const tinyxml2::XMLElement& element, OrRuleSingle& rule);

    std::string mTreeTag;
    EventRuleMap mEventRuleMap;
};

#endif
