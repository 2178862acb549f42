#include "diagnosis/rule_source/rules.h"

namespace diagnosis::rule_source {

namespace {

constexpr std::string_view DEFAULT_BEGIN_FLAG = "1";

void ReadShared(Element element, Family family, Rule& rule)
{
    rule.element = element;
    rule.family = family;
    for (const Attribute attribute : Attributes(element)) {
        const std::string_view name = attribute.Name();
        std::string_view* const slot = name == "name" ? &rule.name
            : name == "type"                          ? &rule.type
            : name == "platform"                      ? &rule.platform
            : name == "production"                    ? &rule.production
            : name == "blackProducts"                 ? &rule.blackProducts
            : name == "detectScene"                   ? &rule.detectScene
            : name == "deviceType"                    ? &rule.deviceType
                                                      : nullptr;
        if (slot != nullptr) {
            *slot = attribute.Value();
        }
    }
    rule.isKept = !rule.name.empty();
}

AlarmItem ReadAlarmItem(Element element)
{
    AlarmItem item;
    item.element = element;
    item.type = element.Value("type");
    item.beginFlag = element.Has("BeginFlag") ? element.Value("BeginFlag") : DEFAULT_BEGIN_FLAG;
    item.ids = ReadIdRange(element);
    for (const Element time : Children(element, "time")) {
        item.times.push_back(ReadTimeWindow(time));
        for (std::size_t kind = 0; kind < WINDOW_WORDS.size(); ++kind) {
            if (item.times.back().type == WINDOW_WORDS[kind]) {
                item.windows[kind] = item.times.back();
            }
        }
    }
    item.params.Add(element.FirstChild("params"));
    item.params.Finish();
    item.condition = ReadCondition(element.FirstChild("condition"));
    return item;
}

void ReadAlarmRule(Element element, AlarmRule& rule)
{
    for (const Element alarmId : Children(element, "alarmId")) {
        rule.items.push_back(ReadAlarmItem(alarmId));
    }
}

void ReadCodeRule(Element element, CodeRule& rule)
{
    rule.detectInfo = element.FirstChild("detectInfo");
    rule.code = rule.detectInfo.Value("id");
    rule.userDefinedInfo = element.FirstChild("userDefinedInfo");
    rule.isKept = rule.isKept && rule.detectInfo;
}

std::vector<Element> WithId(Element parent, const char* name)
{
    std::vector<Element> found;
    for (const Element child : Children(parent, name)) {
        if (child.Has("id")) {
            found.push_back(child);
        }
    }
    return found;
}

void ReadSqlItem(CommandRule& rule)
{
    rule.sqlElement = rule.sqlItem.FirstChild("sql");
    rule.sql = rule.sqlElement.Text();
    rule.time = ReadTimeWindow(rule.sqlItem.FirstChild("time"));
    rule.beginFlagElement = rule.sqlItem.FirstChild("BeginFlag");
    rule.beginFlag = rule.beginFlagElement.Has("value") ? rule.beginFlagElement.Value("value") : DEFAULT_BEGIN_FLAG;
    rule.condition = ReadCondition(rule.sqlItem.FirstChild("condition"));
    rule.normalization = rule.sqlItem.FirstChild("normalization");
    rule.normalizationParams = WithId(rule.normalization.FirstChild("normalizationParam"), "defineNormalizationProp");
    rule.timeParams = WithId(rule.normalization.FirstChild("timeParam"), "defineTimeProp");
}

void ReadCommandRule(Element element, CommandRule& rule)
{
    rule.referenceCommonPart = element.FirstChild("referenceCommonPart");
    rule.commonPartNameElement = rule.referenceCommonPart.FirstChild("commonPartName");
    rule.commonPartName = rule.commonPartNameElement.Text();
    rule.referenceDefDb = element.FirstChild("referenceDefDB");
    rule.referenceType = rule.referenceDefDb.Value("type");
    rule.defDbNameElement = rule.referenceDefDb.FirstChild("defDBName");
    rule.defDbName = rule.defDbNameElement.Text();
    rule.defDbNumElement = rule.referenceDefDb.FirstChild("defDBNum");
    rule.defDbNum = rule.defDbNumElement.Text();
    for (const Element params : Children(element.FirstChild("queryReturnParam"), "params")) {
        rule.params.Add(params);
    }
    rule.params.Finish();
    rule.analysisMethod = element.FirstChild("AnalysisMethod");
    rule.analysisType = rule.analysisMethod.Value("type");
    rule.sqlCondition = rule.analysisMethod.FirstChild("SQL_Condition");
    rule.sqlConditionType = rule.sqlCondition.Value("type");
    rule.sqlItem = rule.sqlCondition.FirstChild("SQLItem");
    ReadSqlItem(rule);
}

void ReadNodeRule(Element element, NodeRule& rule)
{
    for (const Element node : Children(element, "nodeInfo")) {
        rule.nodes.push_back({node, node.Value("param"), node.Value("path"), node.Value("type")});
    }
    rule.params.Add(element.FirstChild("params"));
    rule.params.Finish();
    rule.expression = element.FirstChild("logicExpression");
    rule.expressionType = rule.expression.Value("type");
    rule.ret = rule.expression.Value("ret");
    rule.express = rule.expression.Value("express");
    rule.condition = ReadCondition(element.FirstChild("condition"));
}

/// Reads one element after another into the lists.
class RuleReader {
public:
    void Read(Element element)
    {
        const std::string_view name = element.Name();
        if (name == "alarmRule") {
            ReadAlarmRule(element, Add(element, Family::ALARM, mRules.alarmRules));
        } else if (name == "commandRule") {
            ReadCommandRule(element, Add(element, Family::COMMAND, mRules.commandRules));
        } else if (name == "codeRule") {
            ReadCodeRule(element, Add(element, Family::CODE, mRules.codeRules));
        } else if (name == "nodeRule") {
            ReadNodeRule(element, Add(element, Family::NODE, mRules.nodeRules));
        } else {
            return;
        }
        Name();
    }

    Rules Take()
    {
        for (const auto& [name, rule] : mNamed) {
            mRules.byName.emplace_hint(mRules.byName.end(), name, rule);
        }
        TakeConditions();
        return std::move(mRules);
    }

private:
    template <typename FamilyRule>
    FamilyRule& Add(Element element, Family family, std::deque<FamilyRule>& rules)
    {
        rules.emplace_back();
        ReadShared(element, family, rules.back());
        mRules.all.push_back(&rules.back());
        mLast = &rules.back();
        return rules.back();
    }

    // Of rules with one name the last is kept.
    void Name()
    {
        if (!mLast->isKept) {
            return;
        }
        const auto named = mNamed.emplace_hint(mNamed.end(), mLast->name, mLast);
        if (named->second != mLast) {
            named->second->isReplaced = true;
            named->second = mLast;
        }
    }

    void TakeConditions()
    {
        const auto take = [this](const Rule& rule, const ParamTable& params, const Condition& condition,
                              const AlarmItem* item = nullptr) {
            if (rule.isKept && condition.element) {
                mRules.conditions.push_back({&rule, &params, &condition, item});
            }
        };
        for (const AlarmRule& rule : mRules.alarmRules) {
            for (const AlarmItem& item : rule.items) {
                take(rule, item.params, item.condition, &item);
            }
        }
        for (const CommandRule& rule : mRules.commandRules) {
            take(rule, rule.params, rule.condition);
        }
        for (const NodeRule& rule : mRules.nodeRules) {
            take(rule, rule.params, rule.condition);
        }
    }

    Rules mRules;
    Rule* mLast = nullptr;
    std::map<std::string_view, Rule*> mNamed;
};

} // namespace

TimeWindow ReadTimeWindow(Element element)
{
    return {element, element.Value("type"), element.Number("period").value_or(0),
        element.Number("threshold").value_or(0)};
}

IdRange ReadIdRange(Element alarmId)
{
    IdRange range;
    range.min = ReadWholeNumber(alarmId.Value("Eventid_Min"));
    range.max = ReadWholeNumber(alarmId.Value("Eventid_Max"));
    range.last = range.max.value;
    // Without a lowest id the range is the highest id only.
    range.first = range.min.value == 0 ? range.last : range.min.value;
    return range;
}

Rules ReadRules(Element tag)
{
    RuleReader reader;
    for (const Element rule : Children(tag, "rule")) {
        for (const Element element : Children(rule)) {
            reader.Read(element);
        }
    }
    return reader.Take();
}

} // namespace diagnosis::rule_source
