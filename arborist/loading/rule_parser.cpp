#include "arborist/loading/rule_parser.h"

#include "arborist/frame/log.h"
#include "arborist/loading/rule_element_parse.h"
#include "arborist/loading/xml_walk.h"

using tinyxml2::XMLElement;
using XmlWalk::Children;
using XmlWalk::IsNamed;

namespace {

// Reads the rule in one child of a "rule" element; null if it gives none. False for a child of no known family.
bool ParseFamilyElement(const XMLElement& element, std::shared_ptr<Rule>& rule)
{
    if (IsNamed(element, "alarmRule")) {
        rule = AlarmRuleElementParse(element).Parse();
    } else if (IsNamed(element, "commandRule")) {
        rule = CommandRuleElementParse(element).Parse();
    } else if (IsNamed(element, "codeRule")) {
        rule = CodeRuleElementParse(element).Parse();
    } else if (IsNamed(element, "nodeRule")) {
        rule = NodeAlarmElementParse(element).Parse();
    } else {
        return false;
    }
    return true;
}

} // namespace

bool RuleParser::Parse(const tinyxml2::XMLDocument& document, const std::string& treeTag)
{
    if (treeTag.empty()) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: Parse input tag empty", "RuleParser::Parse");
        return false;
    }
    if (document.RootElement() == nullptr) {
        return false;
    }
    HandleParseRuleList(document, treeTag);
    return true;
}

void RuleParser::HandleParseRuleList(const tinyxml2::XMLDocument& document, const std::string& treeTag)
{
    for (const XMLElement& rule : Children(XmlWalk::FindTagElement(document, "RuleList", treeTag), "rule")) {
        HandleParseRuleElement(rule);
    }
}

void RuleParser::HandleParseRuleElement(const XMLElement& element)
{
    for (const XMLElement& child : Children(element)) {
        std::shared_ptr<Rule> rule;
        if (!ParseFamilyElement(child, rule)) {
            FT::Log::GetInstance().Output(FT::LEVEL_ERROR,
                "FUNc:%s: HandleParseRuleElement can not parse this element", "RuleParser::HandleParseRuleElement");
            continue;
        }
        if (rule == nullptr || rule->name.empty()) {
            continue;
        }
        if (auto codeRule = std::dynamic_pointer_cast<CodeRule>(rule)) {
            mCodeRuleNames.push_back(codeRule->name);
            mCodeRuleList.push_back(std::move(codeRule));
        }
        // Rule sets are mostly sorted by name, so the end of the map is nearly always the right place.
        mRuleMap.insert_or_assign(mRuleMap.end(), rule->name, std::move(rule));
    }
}
