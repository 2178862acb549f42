#include "bench/rule_set_generator.h"

#include <utility>

namespace bench {

namespace {

// Appends elements to a text, a line for each.
class XmlWriter {
public:
    void Open(const std::string& nameAndAttributes) { mText += "<" + nameAndAttributes + ">\n"; }
    void Close(const char* name) { mText += std::string("</") + name + ">\n"; }
    void Empty(const std::string& nameAndAttributes) { mText += "<" + nameAndAttributes + "/>\n"; }
    void Leaf(const char* name, const std::string& text)
    {
        mText += std::string("<") + name + ">" + text + "</" + name + ">\n";
    }
    std::string Take() { return std::move(mText); }

private:
    std::string mText = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
};

std::string Attribute(const char* name, const std::string& value)
{
    return std::string(" ") + name + "=\"" + value + "\"";
}

std::string BasicId(std::size_t number)
{
    return "EVT_" + std::to_string(860'000'000 + number);
}

std::string RuleName(std::size_t number)
{
    return "rule_" + std::to_string(500'000 + number);
}

void WriteEventTexts(XmlWriter& xml, const std::string& id, const std::string& name)
{
    xml.Leaf("ID", id);
    xml.Leaf("Name", name);
    xml.Leaf("DetectMode", "1");
}

void WriteTree(XmlWriter& xml, const RuleSetSize& size, std::size_t tree)
{
    const std::string treeId = "TREE_" + std::to_string(tree);
    xml.Open("FaultTree" + Attribute("id", treeId) + Attribute("version", "1.0.0") + Attribute("type", "performance"));
    xml.Open("Intermediate-Event");
    WriteEventTexts(xml, treeId, "The device answers too slowly");
    xml.Open("Or-Gate");
    for (std::size_t inner = 0; inner < size.innerEventsOfTree; ++inner) {
        const char* gate = inner % 2 == 0 ? "Or-Gate" : "And-Gate";
        xml.Open("Intermediate-Event");
        WriteEventTexts(xml, treeId + "_" + std::to_string(inner), "Memory pressure in the foreground");
        xml.Open(gate);
        for (std::size_t basic = 0; basic < size.basicEventsOfInner; ++basic) {
            const std::size_t number = (tree * size.innerEventsOfTree + inner) * size.basicEventsOfInner + basic;
            xml.Open("Basic-Event");
            WriteEventTexts(xml, BasicId(number), "Free memory below its floor");
            xml.Close("Basic-Event");
        }
        xml.Close(gate);
        xml.Close("Intermediate-Event");
    }
    xml.Close("Or-Gate");
    xml.Close("Intermediate-Event");
    xml.Close("FaultTree");
}

void WriteCondition(XmlWriter& xml, const char* word, const char* value)
{
    xml.Open("condition");
    xml.Open("or" + Attribute("type", "single_logic"));
    xml.Open(word);
    xml.Leaf("id", "p1");
    xml.Leaf("value", value);
    xml.Close(word);
    xml.Close("or");
    xml.Close("condition");
}

void WriteParams(XmlWriter& xml, const char* key)
{
    xml.Open("params");
    xml.Empty("param" + Attribute("id", "p1") + Attribute("key", key) + Attribute("type", "long"));
    xml.Close("params");
}

void WriteAlarmRule(XmlWriter& xml, std::size_t number)
{
    xml.Open("alarmId" + Attribute("type", "param_eventid") + Attribute("Eventid_Min", std::to_string(number))
        + Attribute("Eventid_Max", std::to_string(number + 9)) + Attribute("BeginFlag", "1"));
    xml.Empty("time" + Attribute("type", "duration") + Attribute("period", "7") + Attribute("threshold", "3"));
    xml.Empty("time" + Attribute("type", "latest") + Attribute("period", "1") + Attribute("threshold", "1"));
    WriteParams(xml, "DURATION");
    WriteCondition(xml, "gt", "300");
    xml.Close("alarmId");
}

void WriteCommandRule(XmlWriter& xml, std::size_t number)
{
    xml.Open("referenceCommonPart");
    xml.Leaf("commonPartDomain", "memory");
    xml.Leaf("commonPartName", "MEMORY_TABLE");
    xml.Close("referenceCommonPart");
    xml.Open("queryReturnParam");
    WriteParams(xml, "total");
    xml.Close("queryReturnParam");
    xml.Open("AnalysisMethod" + Attribute("type", "SQL"));
    xml.Open("SQL_Condition" + Attribute("type", "normalization"));
    xml.Open("SQLItem");
    xml.Leaf("sql", "SELECT SUM(DURATION) AS total FROM MEMORY_TABLE WHERE LEVEL = " + std::to_string(number));
    xml.Empty("time" + Attribute("type", "duration") + Attribute("period", "7") + Attribute("threshold", "0"));
    WriteCondition(xml, "ge", "1000");
    xml.Close("SQLItem");
    xml.Close("SQL_Condition");
    xml.Close("AnalysisMethod");
}

void WriteCodeRule(XmlWriter& xml, std::size_t number)
{
    xml.Empty("detectInfo" + Attribute("id", std::to_string(850'000'000 + number)));
    xml.Leaf("userDefinedInfo", "{\"timeout\": 30, \"level\": 2}");
}

void WriteNodeRule(XmlWriter& xml, std::size_t number)
{
    xml.Empty("nodeInfo" + Attribute("type", "file")
        + Attribute("path", "/sys/class/zone" + std::to_string(number) + "/temp") + Attribute("param", "a"));
    WriteParams(xml, "result");
    xml.Empty("logicExpression" + Attribute("type", "calc") + Attribute("ret", "result")
        + Attribute("express", "a*100/4096"));
    WriteCondition(xml, "gt", "90");
}

void WriteRule(XmlWriter& xml, std::size_t number)
{
    struct Family { const char* element; void (*writeBody)(XmlWriter&, std::size_t); };
    static constexpr Family FAMILIES[] = {{"alarmRule", WriteAlarmRule}, {"commandRule", WriteCommandRule},
        {"codeRule", WriteCodeRule}, {"nodeRule", WriteNodeRule}};
    const Family& family = FAMILIES[number % 4];
    xml.Open("rule");
    xml.Open(family.element + Attribute("name", RuleName(number)) + Attribute("type", "single")
        + Attribute("detectScene", "1,2"));
    family.writeBody(xml, number);
    xml.Close(family.element);
    xml.Close("rule");
}

void WriteEventRule(XmlWriter& xml, std::size_t event, std::size_t rules)
{
    xml.Open("Event");
    xml.Leaf("ID", BasicId(event));
    xml.Open("or" + Attribute("type", "singleRule"));
    xml.Open("Rule");
    xml.Leaf("Rule-name", RuleName(event % rules));
    xml.Close("Rule");
    xml.Close("or");
    xml.Close("Event");
}

void WriteDescription(XmlWriter& xml, std::size_t event, const char* list, const char* entry)
{
    xml.Open("Event");
    xml.Leaf("ID", BasicId(event));
    xml.Open(list);
    xml.Empty(entry + Attribute("id", std::to_string(870'000'000 + event)));
    xml.Close(list);
    xml.Close("Event");
}

// Writes a section with an element for the tag, which `writeContent` fills.
template <typename WriteContent>
void WriteSection(XmlWriter& xml, const char* name, WriteContent&& writeContent)
{
    xml.Open(name);
    xml.Open(RULE_SET_TAG);
    writeContent();
    xml.Close(RULE_SET_TAG);
    xml.Close(name);
}

} // namespace

std::string TreeFileText(const RuleSetSize& size)
{
    XmlWriter trees;
    trees.Open("FaultTrees" + Attribute("version", "1.0"));
    trees.Open(RULE_SET_TAG);
    for (std::size_t tree = 0; tree < size.trees; ++tree) {
        WriteTree(trees, size, tree);
    }
    trees.Close(RULE_SET_TAG);
    trees.Close("FaultTrees");
    return trees.Take();
}

std::string RuleFileText(const RuleSetSize& size)
{
    const std::size_t events = size.trees * size.innerEventsOfTree * size.basicEventsOfInner;
    struct Table { const char* section; const char* list; const char* entry; };
    static constexpr Table TABLES[] = {{"EventFaultDescriptions", "FaultDescriptions", "description"},
        {"EventSolutions", "Solutions", "solution"}, {"RepairDescriptions", "Descriptions", "description"}};
    XmlWriter xml;
    xml.Open("FaultTreeRules");
    WriteSection(xml, "RuleList", [&] {
        for (std::size_t rule = 0; rule < size.rules; ++rule) {
            WriteRule(xml, rule);
        }
    });
    WriteSection(xml, "EventRules", [&] {
        for (std::size_t event = 0; event < events; ++event) {
            WriteEventRule(xml, event, size.rules);
        }
    });
    for (const Table& table : TABLES) {
        WriteSection(xml, table.section, [&] {
            for (std::size_t event = 0; event < events; event += size.describedOneIn) {
                WriteDescription(xml, event, table.list, table.entry);
            }
        });
    }
    xml.Close("FaultTreeRules");
    return xml.Take();
}

} // namespace bench
