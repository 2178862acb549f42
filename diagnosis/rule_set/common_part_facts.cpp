#include "diagnosis/rule_set/common_part_facts.h"

namespace diagnosis::rule_set {

namespace {

void AddThresholdItem(const rule_source::ThresholdItem& item, FactList facts)
{
    facts.Add("condition", ConditionText(item.condition), item.element);
    for (const rule_source::Threshold& threshold : item.thresholds) {
        facts.Add("threshold " + std::string(threshold.id), "\"" + std::string(threshold.value) + "\"",
            threshold.element);
    }
}

void AddDataItem(const rule_source::DataItem& item, FactList facts)
{
    facts.Add("type", item.type, item.element);
    facts.Add("ids", std::to_string(item.ids.min.value) + " to " + std::to_string(item.ids.max.value), item.element);
    facts.Add(item.params);
}

} // namespace

void AddBeanFacts(const rule_source::ThresholdBean& bean, FactList& facts)
{
    facts.Add("platform", bean.platform, bean.element);
    facts.Add("type", bean.type, bean.element);
    facts.Add(bean.systemParams, "system parameter");
    facts.Add(bean.thresholds, "threshold");
    int number = 0;
    for (const rule_source::ThresholdItem& item : bean.thresholdItems) {
        AddThresholdItem(item, facts.Part("threshold item " + std::to_string(++number)));
    }
    number = 0;
    for (const rule_source::DataItem& item : bean.dataItems) {
        AddDataItem(item, facts.Part("data item " + std::to_string(++number)));
    }
}

void AddDatabaseFacts(const rule_source::TableBean& table, FactList& facts)
{
    facts.Add("platform", table.platform, table.element);
    facts.Add("type", table.type, table.element);
    facts.Add("dbName", table.dbName, table.dbNameElement);
    int number = 0;
    for (const rule_source::DbPath& path : table.paths) {
        if (path.isKept) {
            FactList part = facts.Part("path " + std::to_string(++number));
            part.Add("value", path.value, path.element);
            part.Add("type", path.type, path.element);
            part.Add("decompression", path.decompression == "true" ? "true" : "false", path.element);
        }
    }
    number = 0;
    for (const rule_source::CreateTable& create : table.createTables) {
        FactList part = facts.Part("table " + std::to_string(++number));
        part.Add("name", create.tableName, create.element);
        part.Add("sql", create.sql, create.sqlElement);
    }
}

} // namespace diagnosis::rule_set
