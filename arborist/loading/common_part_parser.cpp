#include "arborist/loading/common_part_parser.h"

#include <cstring>
#include <utility>
#include <vector>

#include <tinyxml2.h>

#include "arborist/frame/log.h"
#include "arborist/loading/condition_element_parse.h"
#include "arborist/loading/params_element_parse.h"
#include "arborist/loading/xml_walk.h"

using tinyxml2::XMLElement;
using XmlWalk::Attribute;

namespace {

constexpr char THRESHOLDS_OR_LUMBRA_DATA[] = "thresholdsOrLumbraData";
constexpr char DEF_DB_TABLE[] = "defDBTable";

// Collects the parameters of all "params" blocks of `parent` in one map; of two with the same id the first stays.
ParamMap ParseParamTable(const XMLElement* parent)
{
    ParamMap params;
    for (const XMLElement& block : XmlWalk::Children(parent, "params")) {
        ParamsElementParse(&block).Parse(params);
    }
    return params;
}

ThresholdOrLumbraBean::ThresholdItem::ThresholdList ParseThresholds(const XMLElement* parent)
{
    ThresholdOrLumbraBean::ThresholdItem::ThresholdList thresholds;
    for (const XMLElement& element : XmlWalk::Children(parent, "threshold")) {
        const char* id = element.Attribute("id");
        const char* value = element.Attribute("value");
        if (id == nullptr || value == nullptr) {
            continue;
        }
        auto threshold = std::make_shared<ThresholdOrLumbraBean::Threshold>();
        threshold->SetId(id);
        threshold->SetValue(value);
        thresholds.push_back(std::move(threshold));
    }
    return thresholds;
}

ThresholdOrLumbraBean::ThresholdItemList ParseThresholdItemList(const XMLElement* parent)
{
    ThresholdOrLumbraBean::ThresholdItemList items;
    for (const XMLElement& element : XmlWalk::Children(parent, "ThresholdItem")) {
        auto item = std::make_shared<ThresholdOrLumbraBean::ThresholdItem>();
        item->SetType(Attribute(element, "type"));
        ThresholdOrLumbraBean::ThresholdItem::LogicList conditions;
        ConditionElementParse(element.FirstChildElement("condition")).Parse(conditions);
        item->SetConditionList(conditions);
        item->SetThresholdList(ParseThresholds(element.FirstChildElement("thresholds")));
        items.push_back(std::move(item));
    }
    return items;
}

ThresholdOrLumbraBean::LumbraDataList ParseLumbraDataList(const XMLElement* parent)
{
    ThresholdOrLumbraBean::LumbraDataList items;
    for (const XMLElement& element : XmlWalk::Children(parent, "alarmId")) {
        auto item = std::make_shared<ThresholdOrLumbraBean::LumbraDataItem>();
        item->SetAlarmIdMin(Attribute(element, "Eventid_Min"));
        item->SetAlarmIdMax(Attribute(element, "Eventid_Max"));
        item->SetType(Attribute(element, "type"));
        item->SetParamMap(ParseParamTable(&element));
        items.push_back(std::move(item));
    }
    return items;
}

// Collects the texts of the "type" children; a child without text is left out.
std::vector<std::string> ParseDecompressionType(const XMLElement* parent)
{
    std::vector<std::string> types;
    for (const XMLElement& element : XmlWalk::Children(parent, "type")) {
        const char* text = XmlWalk::TextOf(&element);
        if (text != nullptr && *text != '\0') {
            types.emplace_back(text);
        }
    }
    return types;
}

DefDbTableBean::DbPathList ParseDbPaths(const XMLElement* parent)
{
    DefDbTableBean::DbPathList paths;
    for (const XMLElement& element : XmlWalk::Children(parent, "dbPath")) {
        const char* decompression = element.Attribute("decompression");
        const char* type = element.Attribute("type");
        const char* value = element.Attribute("value");
        if (decompression == nullptr || type == nullptr || value == nullptr) {
            continue;
        }
        auto path = std::make_shared<DefDbTableBean::DbPath>();
        path->SetDecompress(std::strcmp(decompression, "true") == 0);
        path->SetType(type);
        path->SetPathValue(value);
        path->SetDecompressTypeList(ParseDecompressionType(element.FirstChildElement("decompressionType")));
        paths.push_back(std::move(path));
    }
    return paths;
}

DefDbTableBean::CreateTableList ParseCreateTables(const XMLElement* parent)
{
    DefDbTableBean::CreateTableList tables;
    for (const XMLElement& element : XmlWalk::Children(parent, "createNewTable")) {
        const char* tableName = element.Attribute("tableName");
        if (tableName == nullptr) {
            continue;
        }
        auto table = std::make_shared<DefDbTableBean::CreateTable>();
        table->SetTableName(tableName);
        const char* text = XmlWalk::ChildText(element, "sql");
        table->SetSql(text == nullptr ? "" : text);
        tables.push_back(std::move(table));
    }
    return tables;
}

template <typename Bean>
void ParseCommonPartAttr(const XMLElement& element, Bean& bean)
{
    bean.SetName(Attribute(element, "name"));
    bean.SetPlatform(Attribute(element, "platform"));
    bean.SetType(Attribute(element, "type"));
    bean.SetLine(element.GetLineNum());
}

struct Entries {
    CommonPart::CombineCommonPart::ThresholdLumbraList thresholds;
    CommonPart::CombineCommonPart::DefDbTableCommonList tables;
};

void ParseCommonPartElement(const XMLElement& commonPart, Entries& entries)
{
    for (const XMLElement& child : XmlWalk::Children(commonPart)) {
        if (XmlWalk::IsNamed(child, THRESHOLDS_OR_LUMBRA_DATA)) {
            entries.thresholds.push_back(ThresholdOrLumbraElementParse(&child).Parse());
        } else if (XmlWalk::IsNamed(child, DEF_DB_TABLE)) {
            entries.tables.push_back(DefDbTableElementParse(&child).Parse());
        } else {
            FT::Log::GetInstance().Output(FT::LEVEL_ERROR,
                "FUNc:%s: CommonPartParser::ParseCommonPartElement: ParseCommonPartElement can not parse this element",
                "CommonPartParser::ParseCommonPartElement");
        }
    }
}

} // namespace

bool CommonPartParser::Parse(const tinyxml2::XMLDocument& document, const std::string& treeTag)
{
    if (treeTag.empty()) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: CommonPartParser::Parse:Parse input tag empty", "CommonPartParser::Parse");
        return false;
    }
    const XMLElement* root = document.FirstChildElement();
    if (root == nullptr) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: CommonPartParser::Parse:root is nullptr", "CommonPartParser::Parse");
        return false;
    }
    return ParseCommonPartList(*root, treeTag);
}

bool CommonPartParser::ParseCommonPartList(const XMLElement& root, const std::string& treeTag)
{
    const XMLElement* section = root.FirstChildElement("RuleCommonPart");
    if (section == nullptr) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: RuleCommonPart element is nullptr",
            "CommonPartParser::ParseCommonPartList");
        return true;
    }
    const XMLElement* tagRoot = section->FirstChildElement(treeTag.c_str());
    if (tagRoot == nullptr) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN,
            "FUNc:%s: CommonPartParser::ParseCommonPartList:tagRoot is nullptr",
            "CommonPartParser::ParseCommonPartList");
        return true;
    }
    if (tagRoot->FirstChildElement("commonPart") == nullptr) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_WARN, "FUNc:%s: commonPart element is nullptr", "CommonPartParser::ParseCommonPartList");
        return true;
    }
    Entries entries;
    for (const XMLElement& element : XmlWalk::Children(tagRoot, "commonPart")) {
        ParseCommonPartElement(element, entries);
    }
    mCommonPart = std::make_shared<CommonPart::CombineCommonPart>();
    mCommonPart->SetThresholdLumbraList(std::move(entries.thresholds));
    mCommonPart->SetDefDbTableCommonList(std::move(entries.tables));
    return true;
}

std::shared_ptr<ThresholdOrLumbraBean> ThresholdOrLumbraElementParse::Parse() const
{
    if (mElement == nullptr || !XmlWalk::IsNamed(*mElement, THRESHOLDS_OR_LUMBRA_DATA)) {
        return nullptr;
    }
    auto bean = std::make_shared<ThresholdOrLumbraBean>();
    ParseCommonPartAttr(*mElement, *bean);
    bean->SetSystemParaMap(ParseParamTable(mElement->FirstChildElement("SystemParamTable")));
    bean->SetThresholdMap(ParseParamTable(mElement->FirstChildElement("ThresholdParamTable")));
    bean->SetThresholdItemList(ParseThresholdItemList(mElement->FirstChildElement("ThresholdMappingTable")));
    bean->SetLumbraDataList(ParseLumbraDataList(mElement->FirstChildElement("retrieveLumbraData")));
    return bean;
}

std::shared_ptr<DefDbTableBean> DefDbTableElementParse::Parse() const
{
    if (mElement == nullptr || !XmlWalk::IsNamed(*mElement, DEF_DB_TABLE)) {
        return nullptr;
    }
    auto bean = std::make_shared<DefDbTableBean>();
    ParseCommonPartAttr(*mElement, *bean);
    bean->SetDbPathList(ParseDbPaths(mElement->FirstChildElement("dbPaths")));
    if (const XMLElement* dbName = mElement->FirstChildElement("dbName"); dbName != nullptr) {
        bean->SetDbName(Attribute(*dbName, "name"));
    }
    bean->SetCreateTableList(ParseCreateTables(mElement->FirstChildElement("createTables")));
    return bean;
}
