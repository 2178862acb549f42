#ifndef ARBORIST_TESTS_STORES_COMMON_PART_COMMON_PART_DB_HELPER_PEER_H
#define ARBORIST_TESTS_STORES_COMMON_PART_COMMON_PART_DB_HELPER_PEER_H

#include <string>
#include <vector>

#include <json/value.h>

#include "arborist/stores/common_part/common_part_db_helper.h"
#include "arborist/stores/sql/sql_database.h"

/// Reaches the private steps of the helper.
struct CommonPartDbHelperPeer {
    static std::vector<Json::Value> Fetch(const EventIdList& ids, const std::string& path)
    {
        std::vector<Json::Value> rows;
        CommonPartDbHelper::GetLumbraDataByFilter(ids, path, rows);
        return rows;
    }
    static std::vector<Json::Value> Query(const std::string& path, const std::string& sql, std::int64_t minTime)
    {
        FT::sql::SqlDatabase database;
        database.Open(path);
        std::vector<Json::Value> rows;
        CommonPartDbHelper::QueryDataSet(database, sql, rows, minTime);
        return rows;
    }
    static std::string Sql(const EventIdList& ids) { return CommonPartDbHelper::GenerateSql(ids, "BASE "); }
    static std::int64_t Version(const std::string& path)
    {
        FT::sql::SqlDatabase database;
        if (!path.empty()) {
            database.Open(path);
        }
        return CommonPartDbHelper::QueryVersion(database);
    }
    static Json::Value ToJson(const std::string& extra) { return CommonPartDbHelper::ExtraStrToJson(extra); }
    static std::vector<std::string> UnZip(const std::string& path, const std::string& directory)
    {
        return CommonPartDbHelper::UnZipFile(path, directory);
    }
};

#endif
