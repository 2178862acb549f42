#ifndef ARBORIST_STORES_COMMON_PART_COMMON_PART_DB_HELPER_H
#define ARBORIST_STORES_COMMON_PART_COMMON_PART_DB_HELPER_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "arborist/model/common_part.h"
#include "arborist/stores/common_part/event_id_list.h"

class FileNamePattern;

namespace FT::sql {
class SqlDatabase;
struct SqlLimits;
}

namespace Json {
class Value;
}

/// Builds what command rules query: the tables of the derived database, one for each threshold bean, from the event
/// log; and copies of external databases, with the rule set's SQL run on them.
///
/// Event log and external files are only read. Each public operation and each build takes one mutex of its own for its
/// whole length; they are never nested. Nothing is kept between calls: every build opens and closes its connections.
class CommonPartDbHelper {
public:
    CommonPartDbHelper(const CommonPartDbHelper&) = delete;
    CommonPartDbHelper& operator=(const CommonPartDbHelper&) = delete;

    static CommonPartDbHelper& GetInstance();

    /// Makes sure that the derived database's directory exists. False, with a line, when it can't be made.
    bool Init();

    /// Drops, makes and fills the table of each threshold bean that selects event data, in list order. A bean that
    /// fails logs its line and the next one goes on; one whose ids are both 0 ends the call. The answer is that of the
    /// last bean that was built: false without any, and for a null part.
    bool IsSuccessCreateJankDb(const std::string& eventDbPath, const std::shared_ptr<CommonPart>& commonPart);

    /// Searches the directories of each table bean, copies or unpacks what matches into the directory
    /// Settings::APP_DATABASE_DIR, notes the copies in the bean and runs the bean's SQL on each. Failures log lines
    /// and end nothing. Raises std::regex_error for a name pattern that is no regular expression.
    void CopyDbAndCreateTable(const std::shared_ptr<CommonPart>& commonPart);

private:
    friend struct CommonPartDbHelperPeer; // tests reach the steps through it

    using ParamList = std::vector<std::shared_ptr<Param>>;
    using RowList = std::vector<Json::Value>;
    using LumbraDataList = ThresholdOrLumbraBean::LumbraDataList;

    CommonPartDbHelper() = default;
    ~CommonPartDbHelper() = default;

    // Says of a database that this class writes what statements may do to it and whether they wait for the disk.
    static void PrepareForWriting(FT::sql::SqlDatabase& database, const FT::sql::SqlLimits& limits);

    // The tables of the derived database.
    static ParamList ColumnsOf(const LumbraDataList& dataItems);
    static bool GetEventIdList(const LumbraDataList& dataItems, EventIdList& ids);
    bool IsSuccessCreatePerfDb(const EventIdList& ids, const ParamList& params, const std::string& tableName,
        const std::string& eventDbPath);
    bool IsSuccessCreateLumbraPlusDb(const ParamList& params, const std::string& tableName);
    // Opens the derived database and drops the table that is to be built anew. `function` names the log lines.
    static bool OpenWithoutTable(
        FT::sql::SqlDatabase& database, const std::string& tableName, const char* function);
    static std::string GenerateCreateSql(const ParamList& params, const std::string& tableName);
    static bool IsTableExist(const FT::sql::SqlDatabase& database, const std::string& tableName);
    static bool IsSetedDataToTable(FT::sql::SqlDatabase& database, const std::string& tableName,
        const ParamList& params, const RowList& rows);

    // The rows of a table, from the event log.
    static void GetLumbraDataByFilter(const EventIdList& ids, const std::string& eventDbPath, RowList& rows);
    static std::string GenerateSql(const EventIdList& ids, const std::string& baseSql);
    static std::int64_t QueryVersion(const FT::sql::SqlDatabase& database);
    static void QueryDataSet(
        const FT::sql::SqlDatabase& database, const std::string& sql, RowList& rows, std::int64_t minTime);
    static Json::Value ExtraStrToJson(const std::string& extra);

    // External databases.
    static std::vector<std::string> CopyDbFile(const std::string& path, const std::string& dbName);
    static std::vector<std::string> GetFileList(
        const std::string& directory, const std::string& pattern, bool recursive);
    static bool CheckFileName(const std::string& pattern, const std::string& name);
    static bool CopyFile(const std::string& source, const std::string& directory);
    static std::vector<std::string> UnZipFile(const std::string& zipPath, const std::string& directory);
    void IsCreateDbByFileComplete(
        const std::vector<std::string>& files, const DefDbTableBean::CreateTableList& createTables,
        FT::sql::SqlLimits& limits);
    bool CreateTable(const std::string& dbPath, const std::string& sql, FT::sql::SqlLimits& limits);

    std::mutex initMutex;
    std::mutex perfDbMutex;
    std::mutex plusDbMutex;
    std::mutex createTableMutex;
};

#endif
