#include <sstream>

#include "tests/diagnosis/rule_source/model_text.h"

namespace {

using namespace diagnosis::rule_source;

class ViewText {
public:
    explicit ViewText(const RuleSet& rules) : mRules(rules) {}

    std::string Text()
    {
        for (const Tree& tree : mRules.trees.trees) {
            if (tree.isKept) {
                mText << "tree " << tree.id << "\n";
                AddEvent(tree.begin, 1);
            }
        }
        for (const auto& [id, index] : mRules.bindings.byId) {
            AddBinding(mRules.bindings.all[index]);
        }
        for (const auto& [name, rule] : mRules.rules.byName) {
            AddRule(*rule);
        }
        AddItems("faults", mRules.faultDescriptions);
        AddItems("solutions", mRules.solutions);
        AddRepairs();
        AddCommonPart();
        return mText.str();
    }

private:
    void AddEvent(std::size_t index, std::size_t depth)
    {
        const TreeEvent& event = mRules.trees.events[index];
        mText << std::string(depth, ' ')
              << (event.kind == EventKind::INTERMEDIATE  ? "inner "
                         : event.kind == EventKind::BASIC ? "basic "
                                                          : "undeveloped ")
              << event.id << "|" << event.nameElement.Text() << "|" << event.userDefined.Text() << "|"
              << event.detectMode.Text()
              << (event.gateKind == GateKind::NONE ? "" : event.gateKind == GateKind::OR ? " or" : " and") << "\n";
        mRules.trees.ForEachChild(index, [&](std::size_t child) { AddEvent(child, depth + 1); });
    }

    void AddBinding(const Binding& binding)
    {
        using Kind = BindingAlternative::Kind;
        mText << "event " << binding.id << "\n";
        for (const auto& alternative : binding.alternatives) {
            if (alternative.kind == Kind::DROPPED) {
                continue;
            }
            mText << " " << (alternative.kind == Kind::SINGLE ? "single"
                                    : alternative.kind == Kind::GROUP ? "group"
                                                                      : "unknown");
            for (const RuleName& name : alternative.names) {
                mText << " " << name.name;
            }
            mText << "\n";
        }
    }

    void AddRule(const Rule& rule)
    {
        mText << "rule " << rule.name << "|" << rule.type << "|" << rule.platform << "|" << rule.production << "|"
              << rule.blackProducts << "|" << rule.detectScene << "|" << rule.deviceType << "\n";
        switch (rule.family) {
        case Family::ALARM:
            return AddAlarm(static_cast<const AlarmRule&>(rule));
        case Family::COMMAND:
            return AddCommand(static_cast<const CommandRule&>(rule));
        case Family::NODE:
            return AddNode(static_cast<const NodeRule&>(rule));
        case Family::CODE:
            mText << " code " << static_cast<const CodeRule&>(rule).code << "|"
                  << static_cast<const CodeRule&>(rule).userDefinedInfo.Text() << "\n";
        }
    }

    void AddAlarm(const AlarmRule& rule)
    {
        for (const AlarmItem& item : rule.items) {
            mText << " alarm " << item.type << "|" << item.ids.min.value << "|" << item.ids.max.value << "|"
                  << item.beginFlag << "\n";
            for (const TimeWindow& window : item.windows) {
                if (window.element) {
                    mText << "  " << window.type << " " << window.period << " " << window.threshold << "\n";
                }
            }
            AddParams(item.params);
            AddCondition(item.condition);
        }
    }

    void AddCommand(const CommandRule& rule)
    {
        mText << " command " << rule.commonPartName << "|" << rule.analysisType << "|" << rule.sqlConditionType << "|"
              << rule.sql << "|" << rule.time.period << "|" << rule.beginFlag << "\n";
        if (rule.referenceDefDb) {
            mText << "  database " << rule.referenceType << "|" << rule.defDbName << "|" << rule.defDbNum << "\n";
        }
        AddElementIds("times", rule.timeParams);
        AddElementIds("normalized", rule.normalizationParams);
        AddParams(rule.params);
        AddCondition(rule.condition);
    }

    void AddNode(const NodeRule& rule)
    {
        mText << " node " << rule.expressionType << "|" << rule.ret << "|" << rule.express << "\n";
        for (const NodeInfo& node : rule.nodes) {
            mText << "  file " << node.param << "|" << node.path << "|" << node.type << "\n";
        }
        AddParams(rule.params);
        AddCondition(rule.condition);
    }

    void AddElementIds(const char* word, const std::vector<Element>& elements)
    {
        for (const Element element : elements) {
            mText << "  " << word << " " << element.Value("id") << "\n";
        }
    }

    void AddParams(const ParamTable& params)
    {
        for (const Param& param : params.Params()) {
            mText << "  param " << param.id << "|" << param.key << "|" << param.type << "\n";
        }
    }

    void AddCondition(const Condition& condition)
    {
        using Kind = ConditionAlternative::Kind;
        for (const ConditionAlternative& alternative : condition.alternatives) {
            mText << "  or " << (alternative.kind == Kind::MULTIPLE ? "multiple_logic" : "single_logic") << "\n";
            for (const Test& test : alternative.tests) {
                mText << "   " << test.word << " " << test.id << "|" << test.value << "|"
                      << (alternative.kind == Kind::SINGLE ? test.commonPartParamId : "") << "\n";
            }
        }
    }

    void AddItems(const char* word, const Descriptions& section)
    {
        for (const DescriptionItem& item : section.items) {
            if (item.isKept) {
                mText << word << " " << item.id << "\n";
                for (const DescriptionEntry& entry : item.entries) {
                    mText << "  entry " << entry.id << "\n";
                }
            }
        }
    }

    void AddRepairs()
    {
        for (const auto& [id, index] : mRules.bindings.byId) {
            const DescriptionItem* const item = mRules.repairs.Find(id);
            for (const auto& entry : item == nullptr ? std::vector<DescriptionEntry>() : item->entries) {
                mText << "repair of " << id << " " << entry.id << "|" << entry.extra << "\n";
            }
        }
    }

    void AddCommonPart()
    {
        for (const ThresholdBean& bean : mRules.commonPart.beans) {
            mText << "bean " << bean.name << "|" << bean.platform << "|" << bean.type << "\n";
            AddParams(bean.systemParams);
            AddParams(bean.thresholds);
            for (const ThresholdItem& item : bean.thresholdItems) {
                AddThresholdItem(item);
            }
            for (const DataItem& item : bean.dataItems) {
                mText << " data " << item.type << "|" << item.ids.min.value << "|" << item.ids.max.value << "\n";
                AddParams(item.params);
            }
        }
        for (const TableBean& table : mRules.commonPart.tables) {
            AddTable(table);
        }
    }

    void AddThresholdItem(const ThresholdItem& item)
    {
        mText << " item\n";
        for (const ThresholdTest& test : item.condition.tests) {
            const bool isSet = test.test.word == "in";
            mText << "  " << test.test.word << " " << test.test.id << "|" << (isSet ? "" : test.test.value) << "\n";
            for (const Element value : isSet ? test.values : std::vector<Element>()) {
                if (value.HasText()) {
                    mText << "  in " << value.Text() << "\n";
                }
            }
        }
        for (const Threshold& threshold : item.thresholds) {
            mText << "  threshold " << threshold.id << "|" << threshold.value << "\n";
        }
    }

    void AddTable(const TableBean& table)
    {
        mText << "table " << table.name << "|" << table.platform << "|" << table.type << "|" << table.dbName << "\n";
        for (const DbPath& path : table.paths) {
            if (path.isKept) {
                mText << " path " << path.value << "|" << path.type << "\n";
            }
        }
        for (const CreateTable& create : table.createTables) {
            mText << " create " << create.tableName << "|" << create.sql << "\n";
        }
    }

    const RuleSet& mRules;
    std::ostringstream mText;
};

} // namespace

std::string ViewModelText(const RuleSet& rules)
{
    return ViewText(rules).Text();
}
