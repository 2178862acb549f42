#include "tests/support/common_part_builder.h"

std::shared_ptr<Param> ParamOf(const std::string& key, const std::string& type)
{
    return std::make_shared<Param>(Param{key, type, key, ""});
}

ParamMap ParamMapOf(const std::vector<std::shared_ptr<Param>>& params)
{
    ParamMap map;
    for (const auto& param : params) {
        map[param->id] = param;
    }
    return map;
}

std::shared_ptr<ThresholdOrLumbraBean::LumbraDataItem> EventsOf(
    const std::string& min, const std::string& max, const std::vector<std::shared_ptr<Param>>& params)
{
    auto item = std::make_shared<ThresholdOrLumbraBean::LumbraDataItem>();
    item->SetAlarmIdMin(min);
    item->SetAlarmIdMax(max);
    item->SetParamMap(ParamMapOf(params));
    return item;
}

std::shared_ptr<ThresholdOrLumbraBean> BeanOf(
    const std::string& name, const ThresholdOrLumbraBean::LumbraDataList& events, const std::string& type)
{
    auto bean = std::make_shared<ThresholdOrLumbraBean>();
    bean->SetName(name);
    bean->SetType(type);
    bean->SetLumbraDataList(events);
    return bean;
}

std::shared_ptr<DefDbTableBean> TableBeanOf(const std::string& name, const std::vector<std::string>& directories,
    const std::string& dbName, const std::vector<std::string>& sql)
{
    auto bean = std::make_shared<DefDbTableBean>();
    bean->SetName(name);
    bean->SetDbName(dbName);
    DefDbTableBean::DbPathList paths;
    for (const std::string& directory : directories) {
        paths.push_back(std::make_shared<DefDbTableBean::DbPath>());
        paths.back()->SetPathValue(directory);
    }
    bean->SetDbPathList(paths);
    DefDbTableBean::CreateTableList tables;
    for (const std::string& text : sql) {
        tables.push_back(std::make_shared<DefDbTableBean::CreateTable>());
        tables.back()->SetTableName("made");
        tables.back()->SetSql(text);
    }
    bean->SetCreateTableList(tables);
    return bean;
}

std::shared_ptr<CommonPart> PartOf(const CommonPart::CombineCommonPart::ThresholdLumbraList& beans,
    const CommonPart::CombineCommonPart::DefDbTableCommonList& tables)
{
    auto block = std::make_shared<CommonPart::CombineCommonPart>();
    block->SetThresholdLumbraList(beans);
    block->SetDefDbTableCommonList(tables);
    auto part = std::make_shared<CommonPart>();
    part->SetCombineCommon(block);
    return part;
}
