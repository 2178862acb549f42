#include "diagnosis/rule_source/common_part.h"

namespace diagnosis::rule_source {

namespace {

ParamTable ReadParamBlocks(Element parent)
{
    ParamTable table;
    for (const Element params : Children(parent, "params")) {
        table.Add(params);
    }
    table.Finish();
    return table;
}

ThresholdItem ReadThresholdItem(Element element)
{
    ThresholdItem item;
    item.element = element;
    item.condition = ReadThresholdCondition(element.FirstChild("condition"));
    for (const Element threshold : Children(element.FirstChild("thresholds"), "threshold")) {
        if (threshold.Has("id") && threshold.Has("value")) {
            item.thresholds.push_back({threshold, threshold.Value("id"), threshold.Value("value")});
        }
    }
    return item;
}

ThresholdBean ReadThresholdBean(Element element)
{
    ThresholdBean bean;
    bean.element = element;
    bean.name = element.Value("name");
    bean.platform = element.Value("platform");
    bean.type = element.Value("type");
    bean.systemParamTable = element.FirstChild("SystemParamTable");
    bean.systemParams = ReadParamBlocks(bean.systemParamTable);
    bean.thresholdParamTable = element.FirstChild("ThresholdParamTable");
    bean.thresholds = ReadParamBlocks(bean.thresholdParamTable);
    for (const Element item : Children(element.FirstChild("ThresholdMappingTable"), "ThresholdItem")) {
        bean.thresholdItems.push_back(ReadThresholdItem(item));
    }
    bean.retrieveLumbraData = element.FirstChild("retrieveLumbraData");
    for (const Element item : Children(bean.retrieveLumbraData, "alarmId")) {
        bean.dataItems.push_back({item, item.Value("type"), ReadIdRange(item), ReadParamBlocks(item)});
    }
    return bean;
}

DbPath ReadDbPath(Element element)
{
    return {element, element.Value("decompression"), element.Value("type"), element.Value("value"),
        element.Has("decompression") && element.Has("type") && element.Has("value")};
}

TableBean ReadTableBean(Element element)
{
    TableBean bean;
    bean.element = element;
    bean.name = element.Value("name");
    bean.platform = element.Value("platform");
    bean.type = element.Value("type");
    for (const Element path : Children(element.FirstChild("dbPaths"), "dbPath")) {
        bean.paths.push_back(ReadDbPath(path));
    }
    bean.dbNameElement = element.FirstChild("dbName");
    bean.dbName = bean.dbNameElement.Value("name");
    for (const Element table : Children(element.FirstChild("createTables"), "createNewTable")) {
        if (table.Has("tableName")) {
            const Element sql = table.FirstChild("sql");
            bean.createTables.push_back({table, table.Value("tableName"), sql, sql.Text()});
        }
    }
    return bean;
}

template <typename Bean>
const Bean* FindIn(
    const std::vector<Bean>& beans, const std::map<std::string_view, std::size_t>& byName, std::string_view name)
{
    const auto found = name.empty() ? byName.end() : byName.find(name);
    return found == byName.end() ? nullptr : &beans[found->second];
}

} // namespace

const ThresholdBean* CommonPart::FindBean(std::string_view name) const
{
    return FindIn(beans, beansByName, name);
}

const TableBean* CommonPart::FindTable(std::string_view name) const
{
    return FindIn(tables, tablesByName, name);
}

CommonPart ReadCommonPart(Element tag)
{
    CommonPart part;
    part.firstPart = tag.FirstChild("commonPart");
    for (const Element group : Children(tag, "commonPart")) {
        for (const Element entry : Children(group)) {
            if (entry.Name() == "thresholdsOrLumbraData") {
                part.beans.push_back(ReadThresholdBean(entry));
                part.beansByName.emplace(part.beans.back().name, part.beans.size() - 1);
            } else if (entry.Name() == "defDBTable") {
                part.tables.push_back(ReadTableBean(entry));
                part.tablesByName.emplace(part.tables.back().name, part.tables.size() - 1);
            }
        }
    }
    return part;
}

} // namespace diagnosis::rule_source
