#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_COMMON_PART_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_COMMON_PART_H

#include <map>
#include <string_view>
#include <vector>

#include "diagnosis/rule_source/conditions.h"
#include "diagnosis/rule_source/params.h"
#include "diagnosis/rule_source/rules.h"

namespace diagnosis::rule_source {

/// A "threshold" of a threshold item.
struct Threshold {
    Element element;
    std::string_view id;
    std::string_view value;
};

/// A "ThresholdItem": the values of thresholds if its condition is true.
struct ThresholdItem {
    Element element;
    ThresholdCondition condition;
    /// Those with both "id" and "value"; the engine skips the others.
    std::vector<Threshold> thresholds;
};

/// An "alarmId" of "retrieveLumbraData": events of a derived table.
struct DataItem {
    Element element;
    std::string_view type;
    IdRange ids;
    ParamTable params;
};

/// A "thresholdsOrLumbraData".
struct ThresholdBean {
    Element element;
    std::string_view name;
    std::string_view platform;
    std::string_view type;
    Element systemParamTable;
    ParamTable systemParams;
    Element thresholdParamTable;
    ParamTable thresholds;
    std::vector<ThresholdItem> thresholdItems;
    Element retrieveLumbraData;
    std::vector<DataItem> dataItems;
};

/// A "dbPath" of an external database.
struct DbPath {
    Element element;
    std::string_view decompression;
    std::string_view type;
    std::string_view value;
    /// True if it has all three attributes; otherwise the engine skips it.
    bool isKept = false;
};

/// A "createNewTable".
struct CreateTable {
    Element element;
    std::string_view tableName;
    Element sqlElement;
    std::string_view sql;
};

/// A "defDBTable": external databases.
struct TableBean {
    Element element;
    std::string_view name;
    std::string_view platform;
    std::string_view type;
    std::vector<DbPath> paths;
    Element dbNameElement;
    std::string_view dbName;
    /// Those with a "tableName"; the engine skips the others.
    std::vector<CreateTable> createTables;
};

/// The shared data of one tag.
struct CommonPart {
    /// The first "commonPart" element; null if there is none, so that the engine creates no common part.
    Element firstPart;
    std::vector<ThresholdBean> beans;
    std::vector<TableBean> tables;
    /// The first of each name, as an index into the list.
    std::map<std::string_view, std::size_t> beansByName;
    std::map<std::string_view, std::size_t> tablesByName;

    /// The bean that a rule's "commonPartName" names; null for an unknown and for the empty name.
    const ThresholdBean* FindBean(std::string_view name) const;
    /// The table that a rule's "defDBName" names; null for an unknown and for the empty name.
    const TableBean* FindTable(std::string_view name) const;
};

/// Reads a tag element; nothing for null.
CommonPart ReadCommonPart(Element tag);

} // namespace diagnosis::rule_source

#endif
