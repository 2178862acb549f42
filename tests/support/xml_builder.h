#ifndef ARBORIST_TESTS_SUPPORT_XML_BUILDER_H
#define ARBORIST_TESTS_SUPPORT_XML_BUILDER_H

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "arborist/frame/detect_info.h"
#include "tests/support/temp_dir.h"

/// One XML element as text. Escapes texts and attribute values; Raw takes XML that the builder can't write.
///
///     Xml("param").Attr("id", "p1").Child(Xml("value").Text("5")).ToText()
class Xml {
public:
    explicit Xml(std::string name) : mName(std::move(name)) {}

    Xml& Attr(const std::string& name, const std::string& value);
    Xml& Text(const std::string& text);
    Xml& Raw(const std::string& xml);
    Xml& Child(const Xml& child) { return Raw(child.ToText()); }
    Xml& Children(const std::vector<Xml>& children);
    /// A child with this text.
    Xml& TextChild(const std::string& name, const std::string& text) { return Child(Xml(name).Text(text)); }

    std::string ToText() const;

private:
    std::string mName;
    std::string mAttributes;
    std::string mContent;
};

// ---- The tree file. ----

/// The texts of an event beside its id; empty ones are not written.
struct EventTexts {
    std::string name;
    std::string value;
    std::string userDefined;
    std::string detectMode;
};

/// An element of any other name makes an undeveloped event: `Xml("Foo").TextChild("ID", "U")`.
Xml Basic(const std::string& id, const EventTexts& texts = {});
/// `gate` is an Or or an And.
Xml Intermediate(const std::string& id, const Xml& gate, const EventTexts& texts = {});
Xml Or(const std::vector<Xml>& events);
Xml And(const std::vector<Xml>& events);

/// "FaultTrees.xml" with the trees of one tag.
///
///     TreeXml("jank").Tree("T", Or({Basic("A"), Basic("B")})).Text()
class TreeXml {
public:
    explicit TreeXml(std::string tag) : mTag(std::move(tag)) {}

    /// The file's version; without this call the root has none.
    TreeXml& Version(const std::string& version);
    /// A tree whose top event has the tree's id.
    TreeXml& Tree(const std::string& id, const Xml& gate);
    /// Any element in the tag's section.
    TreeXml& Element(const Xml& element);
    /// Any text in the root, after the section: other sections.
    TreeXml& Raw(const std::string& xml);

    std::string Text() const;

private:
    std::string mTag;
    std::string mTrees;
    std::string mRaw;
    Xml mRoot{"FaultTrees"};
};

// ---- The rule file. ----

/// Alternatives of an event's rules.
Xml Single(const std::string& ruleName);
Xml Multiple(const std::vector<std::string>& ruleNames);

/// Rules of the four families. They run in one scene only: pass another number or a list as the rule file would.
Xml AlarmRuleXml(const std::string& name, const std::vector<Xml>& alarmIds, const std::string& detectScene = "1");
Xml CodeRuleXml(const std::string& name, const std::string& detectCode, const std::string& userDefinedInfo = "",
    const std::string& detectScene = "1");
/// A "commandRule" with nothing but its attributes; add to it what it needs.
Xml CommandRuleXml(const std::string& name, const std::string& detectScene = "1");
/// An "AnalysisMethod" of type "SQL" whose "SQLItem" holds `parts` ("sql", "time", "condition", ...).
Xml AnalysisMethodXml(const std::string& sqlConditionType, const std::vector<Xml>& parts);
/// A "nodeRule" of `parts`: NodeInfoXml, ParamsXml, LogicExpressionXml, ConditionXml.
Xml NodeRuleXml(const std::string& name, const std::vector<Xml>& parts, const std::string& detectScene = "1");

Xml AlarmIdXml(const std::string& first, const std::string& last, const std::vector<Xml>& parts);
Xml TimeXml(const std::string& type, const std::string& period, const std::string& threshold);
Xml NodeInfoXml(const std::string& param, const std::string& path, const std::string& type = "");
Xml LogicExpressionXml(const std::string& express, const std::string& ret, const std::string& type = "");

Xml ParamXml(const std::string& id, const std::string& key, const std::string& type);
Xml ParamsXml(const std::vector<Xml>& params);
/// A test that compares a parameter: an element named by a comparison word.
Xml TestXml(const std::string& word, const std::string& paramId, const std::string& value);
Xml ConditionXml(const std::vector<Xml>& alternatives);
Xml SingleLogicXml(const Xml& test);
Xml MultipleLogicXml(const std::vector<Xml>& tests);

/// "FaultTreeRules.xml" with the sections of one tag; a section that is given nothing is not written.
class RuleXml {
public:
    explicit RuleXml(std::string tag) : mTag(std::move(tag)) {}

    /// What decides an event: alternatives of Single and Multiple.
    RuleXml& EventRule(const std::string& eventId, const std::vector<Xml>& alternatives);
    /// A rule in a "rule" element of its own.
    RuleXml& Rule(const Xml& rule);
    RuleXml& FaultDescription(const std::string& eventId, const std::vector<std::string>& ids);
    RuleXml& Solution(const std::string& eventId, const std::vector<std::string>& ids);
    /// Each repair with its id and its "extra"; an empty extra is not written.
    RuleXml& Repair(
        const std::string& eventId, const std::vector<std::pair<std::string, std::string>>& idsWithExtra);
    /// A "commonPart" of these entries.
    RuleXml& CommonPart(const std::vector<Xml>& entries);
    /// Any element under the tag in any section.
    RuleXml& In(const std::string& section, const Xml& element);

    std::string Text() const;

private:
    std::string mTag;
    // Text under the tag, by section.
    std::map<std::string, std::string> mSections;
};

/// An input for the rule set in a folder: scene 1, empty device details, no runner.
std::shared_ptr<DetectInfo> DetectInfoFor(const TempDir& dir, const std::string& treeTag);

#endif
