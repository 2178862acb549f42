#include "tests/support/xml_builder.h"

namespace {

std::string Escaped(const std::string& text)
{
    std::string escaped;
    for (const char letter : text) {
        switch (letter) {
        case '&': escaped += "&amp;"; break;
        case '<': escaped += "&lt;"; break;
        case '>': escaped += "&gt;"; break;
        case '"': escaped += "&quot;"; break;
        default: escaped += letter;
        }
    }
    return escaped;
}

Xml& AddEventTexts(Xml& event, const std::string& id, const EventTexts& texts)
{
    event.TextChild("ID", id);
    const std::pair<const char*, const std::string&> children[] = {{"Name", texts.name}, {"Value", texts.value},
        {"UserDefined", texts.userDefined}, {"DetectMode", texts.detectMode}};
    for (const auto& [name, text] : children) {
        if (!text.empty()) {
            event.TextChild(name, text);
        }
    }
    return event;
}

Xml RuleElement(const char* family, const std::string& name, const std::string& detectScene)
{
    return Xml(family).Attr("name", name).Attr("detectScene", detectScene);
}

// An "Event" of one of the description sections.
Xml DescriptionEvent(const std::string& eventId, const char* list, const std::vector<Xml>& entries)
{
    return Xml("Event").TextChild("ID", eventId).Child(Xml(list).Children(entries));
}

std::vector<Xml> EntriesWithIds(const char* entry, const std::vector<std::string>& ids)
{
    std::vector<Xml> entries;
    for (const auto& id : ids) {
        entries.push_back(Xml(entry).Attr("id", id));
    }
    return entries;
}

} // namespace

Xml& Xml::Attr(const std::string& name, const std::string& value)
{
    mAttributes += " " + name + "=\"" + Escaped(value) + "\"";
    return *this;
}

Xml& Xml::Text(const std::string& text)
{
    return Raw(Escaped(text));
}

Xml& Xml::Raw(const std::string& xml)
{
    mContent += xml;
    return *this;
}

Xml& Xml::Children(const std::vector<Xml>& children)
{
    for (const auto& child : children) {
        Child(child);
    }
    return *this;
}

std::string Xml::ToText() const
{
    const std::string start = "<" + mName + mAttributes;
    return mContent.empty() ? start + "/>" : start + ">" + mContent + "</" + mName + ">";
}

Xml Basic(const std::string& id, const EventTexts& texts)
{
    Xml event("Basic-Event");
    return AddEventTexts(event, id, texts);
}

Xml Intermediate(const std::string& id, const Xml& gate, const EventTexts& texts)
{
    Xml event("Intermediate-Event");
    return AddEventTexts(event, id, texts).Child(gate);
}

Xml Or(const std::vector<Xml>& events)
{
    return Xml("Or-Gate").Children(events);
}

Xml And(const std::vector<Xml>& events)
{
    return Xml("And-Gate").Children(events);
}

TreeXml& TreeXml::Version(const std::string& version)
{
    mRoot.Attr("version", version);
    return *this;
}

TreeXml& TreeXml::Tree(const std::string& id, const Xml& gate)
{
    return Element(Xml("Fault-Tree").Attr("id", id).Attr("version", "1").Attr("type", "test")
        .Child(Intermediate(id, gate)));
}

TreeXml& TreeXml::Element(const Xml& element)
{
    mTrees += element.ToText() + "\n";
    return *this;
}

TreeXml& TreeXml::Raw(const std::string& xml)
{
    mRaw += xml;
    return *this;
}

std::string TreeXml::Text() const
{
    Xml root = mRoot;
    return root.Raw("\n").Child(Xml(mTag).Raw("\n" + mTrees)).Raw("\n" + mRaw).ToText();
}

Xml Single(const std::string& ruleName)
{
    return Xml("or").Attr("type", "singleRule").Child(Xml("Rule").TextChild("Rule-name", ruleName));
}

Xml Multiple(const std::vector<std::string>& ruleNames)
{
    Xml all("and");
    for (const auto& ruleName : ruleNames) {
        all.Child(Xml("Rule").TextChild("Rule-name", ruleName));
    }
    return Xml("or").Attr("type", "multipleRule").Child(all);
}

Xml AlarmRuleXml(const std::string& name, const std::vector<Xml>& alarmIds, const std::string& detectScene)
{
    return RuleElement("alarmRule", name, detectScene).Children(alarmIds);
}

Xml CodeRuleXml(const std::string& name, const std::string& detectCode, const std::string& userDefinedInfo,
    const std::string& detectScene)
{
    Xml rule = RuleElement("codeRule", name, detectScene).Child(Xml("detectInfo").Attr("id", detectCode));
    return userDefinedInfo.empty() ? rule : rule.TextChild("userDefinedInfo", userDefinedInfo);
}

Xml CommandRuleXml(const std::string& name, const std::string& detectScene)
{
    return RuleElement("commandRule", name, detectScene);
}

Xml AnalysisMethodXml(const std::string& sqlConditionType, const std::vector<Xml>& parts)
{
    return Xml("AnalysisMethod").Attr("type", "SQL").Child(
        Xml("SQL_Condition").Attr("type", sqlConditionType).Child(Xml("SQLItem").Children(parts)));
}

Xml NodeRuleXml(const std::string& name, const std::vector<Xml>& parts, const std::string& detectScene)
{
    return RuleElement("nodeRule", name, detectScene).Children(parts);
}

Xml AlarmIdXml(const std::string& first, const std::string& last, const std::vector<Xml>& parts)
{
    return Xml("alarmId").Attr("Eventid_Min", first).Attr("Eventid_Max", last).Children(parts);
}

Xml TimeXml(const std::string& type, const std::string& period, const std::string& threshold)
{
    return Xml("time").Attr("type", type).Attr("period", period).Attr("threshold", threshold);
}

Xml NodeInfoXml(const std::string& param, const std::string& path, const std::string& type)
{
    return Xml("nodeInfo").Attr("type", type).Attr("path", path).Attr("param", param);
}

Xml LogicExpressionXml(const std::string& express, const std::string& ret, const std::string& type)
{
    return Xml("logicExpression").Attr("type", type).Attr("ret", ret).Attr("express", express);
}

Xml ParamXml(const std::string& id, const std::string& key, const std::string& type)
{
    return Xml("param").Attr("id", id).Attr("key", key).Attr("type", type);
}

Xml ParamsXml(const std::vector<Xml>& params)
{
    return Xml("params").Children(params);
}

Xml TestXml(const std::string& word, const std::string& paramId, const std::string& value)
{
    return Xml(word).TextChild("id", paramId).TextChild("value", value);
}

Xml ConditionXml(const std::vector<Xml>& alternatives)
{
    return Xml("condition").Children(alternatives);
}

Xml SingleLogicXml(const Xml& test)
{
    return Xml("or").Attr("type", "single_logic").Child(test);
}

Xml MultipleLogicXml(const std::vector<Xml>& tests)
{
    return Xml("or").Attr("type", "multiple_logic").Child(Xml("and").Children(tests));
}

RuleXml& RuleXml::EventRule(const std::string& eventId, const std::vector<Xml>& alternatives)
{
    return In("EventRules", Xml("Event").TextChild("ID", eventId).Children(alternatives));
}

RuleXml& RuleXml::Rule(const Xml& rule)
{
    return In("RuleList", Xml("rule").Child(rule));
}

RuleXml& RuleXml::FaultDescription(const std::string& eventId, const std::vector<std::string>& ids)
{
    return In("EventFaultDescriptions",
        DescriptionEvent(eventId, "FaultDescriptions", EntriesWithIds("description", ids)));
}

RuleXml& RuleXml::Solution(const std::string& eventId, const std::vector<std::string>& ids)
{
    return In("EventSolutions", DescriptionEvent(eventId, "Solutions", EntriesWithIds("solution", ids)));
}

RuleXml& RuleXml::Repair(
    const std::string& eventId, const std::vector<std::pair<std::string, std::string>>& idsWithExtra)
{
    std::vector<Xml> entries;
    for (const auto& [id, extra] : idsWithExtra) {
        Xml entry = Xml("description").Attr("id", id);
        entries.push_back(extra.empty() ? entry : entry.Attr("extra", extra));
    }
    return In("RepairDescriptions", DescriptionEvent(eventId, "Descriptions", entries));
}

RuleXml& RuleXml::CommonPart(const std::vector<Xml>& entries)
{
    return In("RuleCommonPart", Xml("commonPart").Children(entries));
}

RuleXml& RuleXml::In(const std::string& section, const Xml& element)
{
    mSections[section] += element.ToText() + "\n";
    return *this;
}

std::string RuleXml::Text() const
{
    Xml root("FaultTreeRules");
    for (const auto& [section, content] : mSections) {
        root.Raw("\n").Child(Xml(section).Child(Xml(mTag).Raw("\n" + content)));
    }
    return root.ToText();
}

std::shared_ptr<DetectInfo> DetectInfoFor(const TempDir& dir, const std::string& treeTag)
{
    auto detectInfo = std::make_shared<DetectInfo>();
    detectInfo->mDetectScene = 1;
    detectInfo->mTreeTag = treeTag;
    detectInfo->mRuleFileDir = dir.Path();
    detectInfo->mDeviceDetails = std::make_shared<DeviceDetails>();
    return detectInfo;
}
