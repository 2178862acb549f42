#ifndef ARBORIST_STORES_COMMON_PART_COMMON_PART_DB_HELPER_H
#define ARBORIST_STORES_COMMON_PART_COMMON_PART_DB_HELPER_H

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "arborist/model/common_part.h"

class EventIdList;

namespace DerivedTables {
struct Table;
}

namespace FT::sql {
struct SqlLimits;
}

/// Builds what command rules query: the tables of the derived database, one for each threshold bean, from the event
/// log; and copies of external databases, with the rule set's SQL run on them.
///
/// Event log and external files are only read. The work is done in DerivedTables and ExternalDatabases; this class goes
/// through the rule set's entries and sees to it that Init, each of the two ways to build a table, and CreateTable run
/// once at a time: each holds one mutex of its own for its whole length, and none is taken inside another. Nothing is
/// kept between calls.
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
    CommonPartDbHelper() = default;
    ~CommonPartDbHelper() = default;

    bool IsSuccessCreatePerfDb(
        const DerivedTables::Table& table, const EventIdList& ids, const std::string& eventDbPath);
    bool IsSuccessCreateLumbraPlusDb(const DerivedTables::Table& table);
    void IsCreateDbByFileComplete(const std::vector<std::string>& files,
        const DefDbTableBean::CreateTableList& createTables, FT::sql::SqlLimits& limits);
    bool CreateTable(const std::string& dbPath, const std::string& sql, FT::sql::SqlLimits& limits);

    std::mutex initMutex;
    std::mutex perfDbMutex;
    std::mutex plusDbMutex;
    std::mutex createTableMutex;
};

#endif
